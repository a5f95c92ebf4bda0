#include "frame/Formato.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace vorn {

namespace {

// A decimal number as text: sign, integer digits, fractional digits (magnitudes only).
struct Decimale {
  bool negativo = false;
  std::string intero;    // no leading zeros, "" for zero
  std::string frazione;  // as many digits as known
};

std::string SenzaZeriIniziali(std::string s) {
  size_t k = 0;
  while (k < s.size() && s[k] == '0') ++k;
  return s.substr(k);
}

// Plain text "-123.45" (point, optional sign, digits) into a Decimale.
Decimale DaTestoPunto(std::string_view s) {
  Decimale d;
  if (!s.empty() && (s[0] == '-' || s[0] == '+')) {
    d.negativo = s[0] == '-';
    s.remove_prefix(1);
  }
  size_t p = s.find('.');
  d.intero = SenzaZeriIniziali(std::string(s.substr(0, p)));
  if (p != std::string_view::npos) d.frazione = std::string(s.substr(p + 1));
  return d;
}

Decimale DaIntero(int64_t v) {
  Decimale d;
  d.negativo = v < 0;
  uint64_t a = v < 0 ? static_cast<uint64_t>(-(v + 1)) + 1 : static_cast<uint64_t>(v);
  d.intero = a == 0 ? "" : std::to_string(a);
  return d;
}

// A double read to fifteen significant digits, as the host reads it before formatting.
Decimale DaDouble(double v) {
  Decimale d;
  if (v == 0 || !std::isfinite(v)) return d;
  char b[64];
  std::snprintf(b, sizeof b, "%.14e", v);  // -d.dddddddddddddde+XX
  std::string s = b;
  size_t e = s.find('e');
  int esp = std::atoi(s.c_str() + e + 1);
  std::string mant = s.substr(0, e);
  if (mant[0] == '-') {
    d.negativo = true;
    mant.erase(0, 1);
  }
  std::string cifre;
  for (char c : mant)
    if (c != '.') cifre += c;  // 15 digits, the point after the first
  // value = 0.cifre * 10^(esp+1)
  int puntoDopo = esp + 1;  // digits before the decimal point
  if (puntoDopo <= 0) {
    d.frazione = std::string(static_cast<size_t>(-puntoDopo), '0') + cifre;
  } else if (static_cast<size_t>(puntoDopo) >= cifre.size()) {
    d.intero = cifre + std::string(static_cast<size_t>(puntoDopo) - cifre.size(), '0');
  } else {
    d.intero = cifre.substr(0, static_cast<size_t>(puntoDopo));
    d.frazione = cifre.substr(static_cast<size_t>(puntoDopo));
  }
  d.intero = SenzaZeriIniziali(d.intero);
  return d;
}

// Rounds to `n` decimals, halves away from zero (the digits are magnitudes).
void Arrotonda(Decimale& d, size_t n) {
  if (d.frazione.size() <= n) return;
  bool su = d.frazione[n] >= '5';
  d.frazione.resize(n);
  if (!su) return;
  for (size_t i = n; i-- > 0;) {
    if (d.frazione[i] == '9') {
      d.frazione[i] = '0';
    } else {
      ++d.frazione[i];
      return;
    }
  }
  std::string& in = d.intero;
  for (size_t i = in.size(); i-- > 0;) {
    if (in[i] == '9') {
      in[i] = '0';
    } else {
      ++in[i];
      return;
    }
  }
  in.insert(in.begin(), '1');
}

bool Zero(const Decimale& d) {
  for (char c : d.intero)
    if (c != '0') return false;
  for (char c : d.frazione)
    if (c != '0') return false;
  return true;
}

// The numeric value of a variant; false for text that is not a number and for Null.
bool Numero(const Valore& v, Decimale& d) {
  switch (v.tipo()) {
    case Valore::Tipo::Vuoto:
      d = Decimale{};
      return true;
    case Valore::Tipo::Nullo:
      return false;
    case Valore::Tipo::Booleano:
      d = DaIntero(v.Bool() ? -1 : 0);
      return true;
    case Valore::Tipo::Intero:
      d = DaIntero(v.Int());
      return true;
    case Valore::Tipo::Doppio:
      d = DaDouble(v.Dbl());
      return true;
    case Valore::Tipo::Importo:
      d = DaTestoPunto(v.Imp().TestoPunto4());
      return true;
    case Valore::Tipo::Data:
      d = DaIntero(v.Dat().Seriale());
      return true;
    case Valore::Tipo::Testo: {
      auto n = NormalizzaNumero(v.Str());
      if (!n) return false;
      if (n->find('e') != std::string::npos) d = DaDouble(std::strtod(n->c_str(), nullptr));
      else d = DaTestoPunto(*n);
      return true;
    }
  }
  return false;
}

struct Maschera {
  std::string prima, dopo;  // literal text before the first and after the last placeholder
  int cifreIntere = 0;      // '0' in the integer part
  bool migliaia = false;
  bool punto = false;
  size_t decimaliMin = 0, decimaliMax = 0;
};

Maschera LeggiMaschera(std::string_view m) {
  // The first section only: the system's masks have one.
  Maschera r;
  bool visto = false;  // a placeholder seen
  std::string letterale;
  auto accoda = [&](const std::string& t) {
    if (!visto) r.prima += t;
    else letterale += t;
  };
  for (size_t i = 0; i < m.size(); ++i) {
    char c = m[i];
    if (c == ';') break;
    if (c == '#' || c == '0') {
      visto = true;
      letterale.clear();  // literals between placeholders are dropped
      if (r.punto) {
        ++r.decimaliMax;
        if (c == '0') r.decimaliMin = r.decimaliMax;
      } else if (c == '0') {
        ++r.cifreIntere;
      }
    } else if (c == ',' && !r.punto) {
      if (visto) r.migliaia = true;
      else accoda(",");
    } else if (c == '.' && !r.punto) {
      r.punto = true;
      visto = true;
      letterale.clear();
    } else if (c == '"') {
      size_t j = m.find('"', i + 1);
      if (j == std::string_view::npos) j = m.size();
      accoda(std::string(m.substr(i + 1, j - i - 1)));
      i = j;
    } else if (c == '\\' && i + 1 < m.size()) {
      accoda(std::string(1, m[++i]));
    } else {
      accoda(std::string(1, c));
    }
  }
  r.dopo = letterale;
  return r;
}

std::string FormatoNumero(Decimale d, const Maschera& m) {
  Arrotonda(d, m.decimaliMax);
  while (d.frazione.size() > m.decimaliMin && d.frazione.back() == '0') d.frazione.pop_back();
  while (d.frazione.size() < m.decimaliMin) d.frazione += '0';
  std::string intero = SenzaZeriIniziali(d.intero);
  if (intero.size() < static_cast<size_t>(m.cifreIntere))
    intero.insert(0, static_cast<size_t>(m.cifreIntere) - intero.size(), '0');
  if (m.migliaia && intero.size() > 3) {
    std::string g;
    size_t n = intero.size();
    for (size_t i = 0; i < n; ++i) {
      if (i > 0 && (n - i) % 3 == 0) g += '.';
      g += intero[i];
    }
    intero = g;
  }
  std::string out;
  if (d.negativo && !Zero(d)) out += '-';
  out += m.prima;
  out += intero;
  if (m.punto) out += ',' + d.frazione;
  out += m.dopo;
  return out;
}

}  // namespace

bool MascheraData(std::string_view m) {
  bool token = false;
  bool inQuote = false;
  for (char c : m) {
    if (c == '"') inQuote = !inQuote;
    if (inQuote) continue;
    if (c == '#' || c == '0') return false;
    if (c == 'd' || c == 'm' || c == 'y' || c == 'D' || c == 'M' || c == 'Y') token = true;
  }
  return token;
}

std::string FormatoData(const Valore& v, std::string_view maschera) {
  std::string m = LCase(maschera);
  switch (v.tipo()) {
    case Valore::Tipo::Vuoto:
    case Valore::Tipo::Nullo:
      return "";
    case Valore::Tipo::Data:
      return v.Dat().Formato(m);
    case Valore::Tipo::Testo:
      if (auto d = v.ComeData()) return d->Formato(m);
      if (auto n = v.ComeDouble()) return Data::DaSeriale(static_cast<int64_t>(std::floor(*n))).Formato(m);
      return v.Str();
    default: {
      auto n = v.ComeDouble();
      if (!n || !std::isfinite(*n) || std::fabs(*n) > 2958465.0) return v.Testo();  // beyond 31/12/9999
      return Data::DaSeriale(static_cast<int64_t>(std::floor(*n))).Formato(m);
    }
  }
}

std::string Format(const Valore& v, std::string_view maschera) {
  if (v.IsNull()) return "";
  if (maschera.empty()) return v.Testo();
  if (MascheraData(maschera)) return FormatoData(v, maschera);
  Decimale d;
  if (!Numero(v, d)) return v.Testo();
  return FormatoNumero(std::move(d), LeggiMaschera(maschera));
}

}  // namespace vorn
