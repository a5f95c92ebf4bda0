#include "frame/Valore.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace vorn {

std::string Trim(std::string_view s) {
  size_t b = 0, e = s.size();
  while (b < e && s[b] == ' ') ++b;
  while (e > b && s[e - 1] == ' ') --e;
  return std::string(s.substr(b, e - b));
}

namespace {
// Two-byte UTF-8 letters of Latin-1 (U+00C0..U+00FE): upper and lower differ by 0x20 in the
// second byte, except the multiplication and division signs.
std::string Case(std::string_view s, bool upper) {
  std::string out(s);
  for (size_t i = 0; i < out.size(); ++i) {
    unsigned char c = static_cast<unsigned char>(out[i]);
    if (c < 0x80) {
      if (upper && c >= 'a' && c <= 'z') out[i] = static_cast<char>(c - 32);
      if (!upper && c >= 'A' && c <= 'Z') out[i] = static_cast<char>(c + 32);
    } else if (c == 0xC3 && i + 1 < out.size()) {
      unsigned char d = static_cast<unsigned char>(out[i + 1]);
      if (upper && d >= 0xA0 && d <= 0xBE && d != 0xB7) out[i + 1] = static_cast<char>(d - 0x20);
      if (!upper && d >= 0x80 && d <= 0x9E && d != 0x97) out[i + 1] = static_cast<char>(d + 0x20);
      ++i;
    }
  }
  return out;
}
}  // namespace

std::string UCase(std::string_view s) { return Case(s, true); }
std::string LCase(std::string_view s) { return Case(s, false); }
bool UgualeNoCase(std::string_view a, std::string_view b) {
  // LCase(a) == LCase(b), without making the copies (column names are compared all the time).
  if (a.size() != b.size()) return false;
  auto minuscola = [](unsigned char c) { return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + 32) : c; };
  auto seconda = [](unsigned char d) {
    return d >= 0x80 && d <= 0x9E && d != 0x97 ? static_cast<unsigned char>(d + 0x20) : d;
  };
  const size_t n = a.size();
  for (size_t i = 0; i < n; ++i) {
    unsigned char x = static_cast<unsigned char>(a[i]), y = static_cast<unsigned char>(b[i]);
    if (x == 0xC3 && y == 0xC3 && i + 1 < n) {
      ++i;
      if (seconda(static_cast<unsigned char>(a[i])) != seconda(static_cast<unsigned char>(b[i]))) return false;
    } else if (minuscola(x) != minuscola(y)) {
      return false;
    }
  }
  return true;
}

std::string DoubleInTesto(double d) {
  if (d == 0) return "0";
  char b[64];
  for (int prec = 1; prec <= 17; ++prec) {
    std::snprintf(b, sizeof b, "%.*g", prec, d);
    if (std::strtod(b, nullptr) == d) break;
  }
  std::string s = b;
  if (s.find('e') != std::string::npos && std::fabs(d) < 1e15 && std::fabs(d) >= 1e-5) {
    std::snprintf(b, sizeof b, "%.10f", d);
    s = b;
    while (s.back() == '0') s.pop_back();
    if (s.back() == '.') s.pop_back();
  }
  return s;
}

std::optional<std::string> NormalizzaNumero(std::string_view t) {
  std::string s = Trim(t);
  if (s.empty()) return std::nullopt;
  std::string sign;
  if (s[0] == '-' || s[0] == '+') {
    if (s[0] == '-') sign = "-";
    s.erase(0, 1);
  } else if (s.back() == '-') {  // trailing minus of the locale
    sign = "-";
    s.pop_back();
  }
  s = Trim(s);
  if (s.empty()) return std::nullopt;
  // Exponent
  std::string expo;
  size_t e = s.find_first_of("eE");
  if (e != std::string::npos) {
    expo = s.substr(e + 1);
    s = s.substr(0, e);
    if (expo.empty()) return std::nullopt;
    size_t k = (expo[0] == '+' || expo[0] == '-') ? 1 : 0;
    if (k == expo.size()) return std::nullopt;
    for (size_t i = k; i < expo.size(); ++i)
      if (expo[i] < '0' || expo[i] > '9') return std::nullopt;
  }
  size_t comma = s.find(',');
  if (comma != std::string::npos && s.find(',', comma + 1) != std::string::npos) return std::nullopt;
  std::string ip = comma == std::string::npos ? s : s.substr(0, comma);
  std::string fp = comma == std::string::npos ? "" : s.substr(comma + 1);
  for (char c : fp)
    if (c < '0' || c > '9') return std::nullopt;
  std::string digits;
  if (ip.find('.') != std::string::npos) {
    // Thousands groups: 1 to 3 digits, then groups of exactly 3.
    bool grouped = true;
    size_t first = ip.find('.');
    if (first == 0 || first > 3) grouped = false;
    for (size_t i = first; grouped && i < ip.size(); i += 4) {
      if (ip[i] != '.' || i + 4 > ip.size()) grouped = false;
      else
        for (size_t k = i + 1; k < i + 4; ++k)
          if (ip[k] < '0' || ip[k] > '9') grouped = false;
    }
    for (size_t i = 0; grouped && i < first; ++i)
      if (ip[i] < '0' || ip[i] > '9') grouped = false;
    if (grouped) {
      for (char c : ip)
        if (c != '.') digits += c;
    } else if (comma == std::string::npos && ip.find('.') == ip.rfind('.')) {
      // A lone point that groups nothing: a decimal mark.
      size_t p = ip.find('.');
      fp = ip.substr(p + 1);
      digits = ip.substr(0, p);
      for (char c : fp)
        if (c < '0' || c > '9') return std::nullopt;
    } else {
      return std::nullopt;
    }
  } else {
    digits = ip;
  }
  for (char c : digits)
    if (c < '0' || c > '9') return std::nullopt;
  if (digits.empty() && fp.empty()) return std::nullopt;
  if (digits.empty()) digits = "0";
  std::string out = sign + digits;
  if (!fp.empty()) out += "." + fp;
  if (!expo.empty()) out += "e" + expo;
  return out;
}

namespace {
// The numeric prefix by the Val rule, as normalised text ("" when none).
std::string ValPrefix(std::string_view t) {
  std::string s;
  for (char c : t)
    if (c != ' ' && c != '\t' && c != '\n' && c != '\r') s += c;
  std::string out;
  size_t i = 0;
  if (i < s.size() && (s[i] == '-' || s[i] == '+')) {
    if (s[i] == '-') out += '-';
    ++i;
  }
  bool digit = false, point = false;
  for (; i < s.size(); ++i) {
    char c = s[i];
    if (c >= '0' && c <= '9') {
      out += c;
      digit = true;
    } else if (c == '.' && !point) {
      point = true;
      out += c;
    } else {
      break;
    }
  }
  if (!digit) return "";
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E' || s[i] == 'd' || s[i] == 'D')) {
    size_t k = i + 1;
    std::string ex = "e";
    if (k < s.size() && (s[k] == '-' || s[k] == '+')) ex += s[k++];
    size_t startDigits = k;
    while (k < s.size() && s[k] >= '0' && s[k] <= '9') ex += s[k++];
    if (k > startDigits) out += ex;
  }
  if (!out.empty() && out.back() == '.') out.pop_back();
  return out;
}
}  // namespace

double Val(std::string_view t) {
  std::string p = ValPrefix(t);
  return p.empty() ? 0.0 : std::strtod(p.c_str(), nullptr);
}

Importo ValImporto(std::string_view t) {
  std::string p = ValPrefix(t);
  if (p.empty()) return Importo();
  if (p.find('e') == std::string::npos) {
    if (auto i = Importo::DaTestoPunto(p)) return *i;
  }
  return Importo::DaDouble(std::strtod(p.c_str(), nullptr));
}

std::string Valore::Testo() const {
  switch (tipo()) {
    case Tipo::Vuoto:
    case Tipo::Nullo:
      return "";
    case Tipo::Booleano:
      return Bool() ? "Vero" : "Falso";
    case Tipo::Intero:
      return std::to_string(Int());
    case Tipo::Doppio: {
      std::string s = DoubleInTesto(Dbl());
      for (auto& c : s)
        if (c == '.') c = ',';
      return s;
    }
    case Tipo::Importo: {
      std::string s = Imp().TestoPunto();
      for (auto& c : s)
        if (c == '.') c = ',';
      return s;
    }
    case Tipo::Testo:
      return Str();
    case Tipo::Data:
      return Dat().Testo();
  }
  return "";
}

std::string Valore::TestoTrim() const { return Trim(Testo()); }

std::optional<double> Valore::ComeDouble() const {
  switch (tipo()) {
    case Tipo::Vuoto:
      return 0.0;
    case Tipo::Nullo:
      return std::nullopt;
    case Tipo::Booleano:
      return Bool() ? -1.0 : 0.0;
    case Tipo::Intero:
      return static_cast<double>(Int());
    case Tipo::Doppio:
      return Dbl();
    case Tipo::Importo:
      return Imp().ToDouble();
    case Tipo::Data:
      return static_cast<double>(Dat().Seriale());
    case Tipo::Testo: {
      auto n = NormalizzaNumero(Str());
      if (!n) return std::nullopt;
      return std::strtod(n->c_str(), nullptr);
    }
  }
  return std::nullopt;
}

std::optional<Importo> Valore::ComeImporto() const {
  switch (tipo()) {
    case Tipo::Importo:
      return Imp();
    case Tipo::Intero:
      return Importo(Int());
    case Tipo::Testo: {
      auto n = NormalizzaNumero(Str());
      if (!n) return std::nullopt;
      if (n->find('e') == std::string::npos) return Importo::DaTestoPunto(*n);
      return Importo::DaDouble(std::strtod(n->c_str(), nullptr));
    }
    default: {
      auto d = ComeDouble();
      if (!d) return std::nullopt;
      return Importo::DaDouble(*d);
    }
  }
}

std::optional<int64_t> Valore::ComeIntero() const {
  if (tipo() == Tipo::Intero) return Int();
  auto d = ComeDouble();
  if (!d || !std::isfinite(*d) || std::fabs(*d) > 9.2e18) return std::nullopt;
  return static_cast<int64_t>(std::nearbyint(*d));  // default rounding: halves to even
}

std::optional<Data> Valore::ComeData() const {
  switch (tipo()) {
    case Tipo::Data:
      return Dat();
    case Tipo::Testo:
      return Data::DaTesto(Str());
    default:
      return std::nullopt;
  }
}

bool Valore::IsNumeric() const {
  switch (tipo()) {
    case Tipo::Vuoto:
    case Tipo::Booleano:
    case Tipo::Intero:
    case Tipo::Doppio:
    case Tipo::Importo:
      return true;
    case Tipo::Testo:
      return NormalizzaNumero(Str()).has_value();
    default:
      return false;
  }
}

bool Valore::Vero() const {
  switch (tipo()) {
    case Tipo::Booleano:
      return Bool();
    case Tipo::Testo: {
      std::string t = LCase(Trim(Str()));
      if (t == "vero" || t == "true") return true;
      if (t == "falso" || t == "false") return false;
      auto d = ComeDouble();
      return d && *d != 0;
    }
    default: {
      auto d = ComeDouble();
      return d && *d != 0;
    }
  }
}

}  // namespace vorn
