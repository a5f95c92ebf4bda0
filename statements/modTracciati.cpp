#include "statements/modTracciati.h"

#include <stdexcept>

#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "frame/Host.h"

namespace vorn {

namespace {

std::string Maiuscolo(const Valore& v) { return UCase(Trim(v.Testo())); }
std::string Sx(const std::string& s, int n) { return PadSinistra(Valore(s), n); }
std::string Dx(const std::string& s, int n) { return PadDestra(Valore(s), n); }
std::string Zeri(int n) { return std::string(static_cast<size_t>(n), '0'); }

// The value rounded to the unit, halves away from zero; nullopt when it is no number.
std::optional<Importo> Unita(const Valore& v) {
  if (v.IsNull() || !v.IsNumeric()) return std::nullopt;
  if (v.tipo() == Valore::Tipo::Booleano) return Importo(v.Bool() ? -1 : 0);
  auto i = v.ComeImporto();
  if (!i) return std::nullopt;
  return i->Arrotonda(0);
}

// Whole units zero-filled to `n` characters, a minus sign taking the first of them. A number
// with more digits than the place holds is an error: cut, it would be another figure.
std::string CifreZero(Importo unita, int n) {
  int64_t u = unita.Raw() / Importo::kScala;
  bool negativo = u < 0;
  std::string cifre = std::to_string(negativo ? -u : u);
  int spazio = n - (negativo ? 1 : 0);
  if (static_cast<int>(cifre.size()) > spazio)
    throw std::length_error("Il valore " + std::string(negativo ? "-" : "") + cifre + " non sta in " +
                            std::to_string(n) + " cifre del tracciato telematico.");
  return (negativo ? "-" : "") + Zeri(spazio - static_cast<int>(cifre.size())) + cifre;
}

std::optional<Data> DataDi(const Valore& v) {
  if (v.IsNull() || v.IsEmpty()) return std::nullopt;
  if (v.tipo() != Valore::Tipo::Data && v.tipo() != Valore::Tipo::Testo) return std::nullopt;
  return v.ComeData();
}

bool Vuoto(const Valore& v) { return v.IsNull() || v.IsEmpty() || Trim(v.Testo()).empty(); }

std::string DataMaschera(const Valore& v, const char* maschera, int n, bool vuotaSeNull) {
  if (auto d = DataDi(v)) return Dx(d->Formato(maschera), 16);
  if (vuotaSeNull && Vuoto(v)) return Dx(std::string(static_cast<size_t>(n), ' '), 16);
  return Dx(Zeri(n), 16);
}

std::string MascheraPI(const Valore& v) {
  std::string s = Maiuscolo(v);
  if (!s.empty() && s.find_first_not_of("0123456789") == std::string::npos && s.size() < 11)
    s = Zeri(11 - static_cast<int>(s.size())) + s;
  return s;
}

}  // namespace

// ---------------------------------------------------------------- positional

std::string FormatAN(const Valore& stringa, int Lunghezza) { return Sx(Maiuscolo(stringa), Lunghezza); }
std::string FormatCF(const Valore& stringa) { return Sx(Maiuscolo(stringa), 16); }
std::string FormatPI(const Valore& stringa) { return Sx(MascheraPI(stringa), 16); }

std::string FormatDT(const Valore& stringa, bool stringaVuotaSeNull) {
  if (auto d = DataDi(stringa)) return d->Formato("ddmmyyyy");
  if (stringaVuotaSeNull && Vuoto(stringa)) return std::string(8, ' ');
  return Zeri(8);
}

std::string FormatDA(const Valore& stringa) {
  if (auto d = DataDi(stringa)) return d->Formato("yyyy");
  return Zeri(4);
}

std::string FormatNUProtocolli(const Valore& stringa, int Lunghezza) {
  // Protocols run to 17 digits: read as digits, never through a number that would round them.
  std::string s = Trim(stringa.Testo());
  if (s.empty() || s.find_first_not_of("0123456789") != std::string::npos) return Zeri(Lunghezza);
  s.erase(0, std::min(s.find_first_not_of('0'), s.size()));
  if (static_cast<int>(s.size()) > Lunghezza)
    throw std::length_error("Il protocollo " + s + " non sta in " + std::to_string(Lunghezza) + " cifre.");
  return Zeri(Lunghezza - static_cast<int>(s.size())) + s;
}

std::string FormatNU(const Valore& stringa, int Lunghezza) {
  auto u = Unita(stringa);
  return u ? CifreZero(*u, Lunghezza) : Zeri(Lunghezza);
}

std::string FormatPN(const Valore& stringa, int Lunghezza, bool estero) {
  return estero ? Sx("EE", Lunghezza) : Sx(Maiuscolo(stringa), Lunghezza);
}
std::string FormatPR(const Valore& stringa, int Lunghezza) { return Sx(Maiuscolo(stringa), Lunghezza); }

std::string FormatCB(const Valore& stringa) {
  if (stringa.tipo() == Valore::Tipo::Booleano) return stringa.Bool() ? "1" : "0";
  auto u = Unita(stringa);
  if (!u) return "0";
  int64_t n = u->Raw() / Importo::kScala;
  if (n < 0 || n > 9) throw std::invalid_argument("Valore " + std::to_string(n) + " in un campo di tipo CB.");
  return std::to_string(n);
}

// ---------------------------------------------------------------- non-positional

std::string FormatNonPosAN(const Valore& stringa) { return Sx(Maiuscolo(stringa), 16); }
std::string FormatNonPosCF(const Valore& stringa) { return FormatNonPosAN(stringa); }
std::string FormatNonPosCN(const Valore& stringa) { return FormatNonPosAN(stringa); }
std::string FormatNonPosPR(const Valore& stringa) { return FormatNonPosAN(stringa); }
std::string FormatNonPosPE(const Valore& stringa) { return FormatNonPosAN(stringa); }
std::string FormatNonPosPI(const Valore& stringa) { return Sx(MascheraPI(stringa), 16); }

std::string FormatNonPosCB(const Valore& stringa) {
  auto u = Unita(stringa);
  if (!u) return Dx("0", 16);
  return Dx(std::to_string(u->Raw() / Importo::kScala), 16);
}

std::string FormatNonPosCB12(const Valore& stringa) {
  auto u = Vuoto(stringa) ? std::optional<Importo>(Importo()) : Unita(stringa);
  if (u && (*u == Importo(0) || *u == Importo(1))) return Dx(CifreZero(*u, 12), 16);
  Host().MsgBox("Trovato valore diverso da 0 o 1 in un campo di tipo CB12", vbExclamation, "Metodo FormatNonPosCB12");
  return std::string(16, ' ');
}

std::string FormatNonPosDA(const Valore& stringa) {
  if (auto d = DataDi(stringa)) return Dx(d->Formato("yyyy"), 16);
  if (auto u = Unita(stringa); u && !Vuoto(stringa)) return Dx(CifreZero(*u, 4), 16);
  return std::string(16, ' ');
}

std::string FormatNonPosDT(const Valore& stringa) {
  if (auto d = DataDi(stringa)) return Dx(d->Formato("ddmmyyyy"), 16);
  return std::string(16, ' ');
}
std::string FormatNonPosDN(const Valore& stringa, bool vuota) { return DataMaschera(stringa, "ddmmyyyy", 8, vuota); }
std::string FormatNonPosD4(const Valore& stringa, bool vuota) { return DataMaschera(stringa, "ddmm", 4, vuota); }
std::string FormatNonPosD6(const Valore& stringa, bool vuota) { return DataMaschera(stringa, "mmyyyy", 6, vuota); }

std::string FormatNonPosNP(const Valore& stringa) { return FormatNPNonPosizionale(stringa, 16); }
std::string FormatNonPosNU(const Valore& stringa) { return FormatNUNonPosizionale(stringa, 16); }

std::string FormatNPNonPosizionale(const Valore& stringa, int Lunghezza) {
  auto u = Unita(stringa);
  if (!u || Vuoto(stringa)) return std::string(static_cast<size_t>(Lunghezza), ' ');
  std::string s = std::to_string(u->Raw() / Importo::kScala);
  if (static_cast<int>(s.size()) > Lunghezza)
    throw std::length_error("Il valore " + s + " non sta in " + std::to_string(Lunghezza) + " caratteri.");
  return Dx(s, Lunghezza);
}
std::string FormatNUNonPosizionale(const Valore& stringa, int Lunghezza) {
  return FormatNPNonPosizionale(stringa, Lunghezza);
}

std::string FormatNonPosNx(const Valore& stringa, int x) {
  if (x <= 0 || x > 16) throw std::invalid_argument("Formato Nx con un numero di cifre non valido: " + std::to_string(x));
  auto u = Unita(stringa);
  if (!u || Vuoto(stringa)) return std::string(16, ' ');
  return Dx(CifreZero(*u, x), 16);
}

std::string FormatNonPosUIC(const Valore& stringa) { return FormatNonPosNx(stringa, 3); }

std::string FormatNonPosPC(const Valore& stringa) {
  auto i = Vuoto(stringa) || !stringa.IsNumeric() ? std::nullopt : stringa.ComeImporto();
  return i ? Dx(Format(Valore(*i), "#############0.###"), 16) : std::string(16, ' ');
}
std::string FormatNonPosQU(const Valore& stringa) {
  auto d = Vuoto(stringa) || !stringa.IsNumeric() ? std::nullopt : stringa.ComeDouble();
  return d ? Dx(Format(Valore(*d), "#############0.#####"), 16) : std::string(16, ' ');
}

std::string FormatNonPosPN(const Valore& stringa, bool estero) {
  return estero ? Sx("EE", 16) : FormatNonPosAN(stringa);
}

// ---------------------------------------------------------------- the page body

void AccodaCampoNonPosizionale(std::string& pagina, const std::string& identificativo, const Valore& valore,
                               const std::string& formato, int x) {
  if (identificativo.size() != 8 || !std::isalpha(static_cast<unsigned char>(identificativo[0])) ||
      !std::isalpha(static_cast<unsigned char>(identificativo[1])) ||
      identificativo.find_first_not_of("0123456789", 2) != std::string::npos)
    throw std::invalid_argument("Identificativo di campo non valido: '" + identificativo + "'");
  const std::string id = UCase(identificativo);
  auto accoda = [&](const std::string& valore16) { pagina += id + valore16; };
  const std::string f = UCase(formato);
  if (f == "AN") {
    std::string s = Maiuscolo(valore);
    if (s.empty()) return;
    accoda(FormatNonPosAN(Valore(SinistraTesto(s, 16))));
    // The rest in pieces of 15, each marked "+" as a continuation.
    for (size_t da = 17, n = LunghezzaTesto(s); da <= n; da += 15)
      accoda(Sx("+" + MedioTesto(s, da, 15), 16));
    return;
  }
  if (f == "CB") {
    bool impostato = valore.tipo() == Valore::Tipo::Booleano
                         ? valore.Bool()
                         : (valore.IsNumeric() && !Vuoto(valore) && (Unita(valore) == Importo(1) || Unita(valore) == Importo(-1)));
    if (impostato) accoda(FormatNonPosCB(Valore(1)));
    return;
  }
  if (f == "CB12") {
    if (Vuoto(valore) || valore.IsNumeric()) accoda(FormatNonPosCB12(valore));
    return;
  }
  if (f == "CF" || f == "CN" || f == "PI" || f == "PR" || f == "PN" || f == "PE") {
    if (Maiuscolo(valore).empty()) return;
    accoda(f == "PI" ? FormatNonPosPI(valore) : FormatNonPosAN(valore));
    return;
  }
  if (f == "DA" || f == "DT" || f == "DN" || f == "D4" || f == "D6") {
    if (!DataDi(valore)) return;
    if (f == "DA") accoda(FormatNonPosDA(valore));
    else if (f == "DT") accoda(FormatNonPosDT(valore));
    else if (f == "DN") accoda(FormatNonPosDN(valore));
    else if (f == "D4") accoda(FormatNonPosD4(valore));
    else accoda(FormatNonPosD6(valore));
    return;
  }
  if (f == "NP" || f == "NU" || f == "UIC" || f == "NX") {
    auto u = Vuoto(valore) ? std::nullopt : Unita(valore);
    if (!u || u->Zero()) return;
    if (f == "UIC") accoda(FormatNonPosUIC(valore));
    else if (f == "NX") accoda(FormatNonPosNx(valore, x));
    else accoda(FormatNonPosNP(valore));
    return;
  }
  if (f == "PC" || f == "QU") {
    auto i = Vuoto(valore) || !valore.IsNumeric() ? std::nullopt : valore.ComeImporto();
    if (!i || i->Zero()) return;
    accoda(f == "PC" ? FormatNonPosPC(valore) : FormatNonPosQU(valore));
    return;
  }
  throw std::invalid_argument("Formato di campo non posizionale sconosciuto: '" + formato + "'");
}

std::string InsertWildCardRigaColonna(const std::string& quadroRigaColonna) {
  std::string s = UCase(Trim(quadroRigaColonna));
  if (s.rfind("BL", 0) == 0 || s.size() < 5) return s;
  return s.substr(0, 2) + "XXX" + s.substr(5);
}

// ---------------------------------------------------------------- records

RecordTelematico& RecordTelematico::Campo(int posizione, const std::string& testo) {
  if (posizione != caratteri_ + 1)
    throw std::logic_error("Tracciato telematico: campo alla posizione " + std::to_string(posizione) +
                           ", il record arriva a " + std::to_string(caratteri_));
  testo_ += testo;
  caratteri_ += static_cast<int>(LunghezzaTesto(testo));
  return *this;
}

std::string RecordTelematico::Testo() const {
  if (caratteri_ != kLunghezzaRecordTelematico || testo_.empty() || testo_.back() != 'A')
    throw std::logic_error("Tracciato telematico: record di " + std::to_string(caratteri_) +
                           " caratteri invece di 1898 o senza il carattere di fine \"A\"");
  return testo_;
}

// ---------------------------------------------------------------- code page

namespace {

struct Cp1252 {
  unsigned cp;
  unsigned char b;
};
// The letters of 0x80-0x9F that the texts of the archives may carry.
constexpr Cp1252 kCp1252[] = {{0x20AC, 0x80}, {0x201A, 0x82}, {0x201E, 0x84}, {0x2026, 0x85}, {0x2018, 0x91},
                              {0x2019, 0x92}, {0x201C, 0x93}, {0x201D, 0x94}, {0x2013, 0x96}, {0x2014, 0x97},
                              {0x0160, 0x8A}, {0x0152, 0x8C}, {0x017D, 0x8E}, {0x0178, 0x9F}};

void Utf8(std::string& out, unsigned cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

}  // namespace

std::string TestoTelematico(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  for (size_t i = 0; i < utf8.size();) {
    unsigned char c = static_cast<unsigned char>(utf8[i]);
    unsigned cp = 0;
    size_t n = c < 0x80 ? 1 : (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : (c >> 3) == 30 ? 4 : 0;
    if (n == 0 || i + n > utf8.size()) {
      out += '?';  // not UTF-8: one byte, one unknown character
      ++i;
      continue;
    }
    cp = n == 1 ? c : c & (0x7F >> n);
    bool valido = true;
    for (size_t k = 1; k < n; ++k) {
      unsigned char d = static_cast<unsigned char>(utf8[i + k]);
      if ((d & 0xC0) != 0x80) valido = false;
      cp = (cp << 6) | (d & 0x3F);
    }
    if (!valido) {
      out += '?';
      ++i;
      continue;
    }
    i += n;
    if (cp < 0x20) out += ' ';  // a control character would break the record
    else if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) out += static_cast<char>(cp);
    else {
      char b = '?';
      for (const auto& m : kCp1252)
        if (m.cp == cp) b = static_cast<char>(m.b);
      out += b;
    }
  }
  return out;
}

std::string DaTestoTelematico(std::string_view byte) {
  std::string out;
  out.reserve(byte.size());
  for (char ch : byte) {
    unsigned char c = static_cast<unsigned char>(ch);
    unsigned cp = c;
    if (c >= 0x80 && c < 0xA0) {
      cp = '?';
      for (const auto& m : kCp1252)
        if (m.b == c) cp = m.cp;
    }
    Utf8(out, cp);
  }
  return out;
}

}  // namespace vorn
