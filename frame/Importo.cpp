#include "frame/Importo.h"
#include "frame/Int128.h"

#include <cmath>
#include <stdexcept>

namespace vorn {

namespace {
[[noreturn]] void Overflow() { throw std::overflow_error("Importo fuori dai limiti"); }

int64_t Pow10(int n) {
  int64_t p = 1;
  while (n-- > 0) p *= 10;
  return p;
}
}  // namespace

Importo Importo::DaDouble(double v) {
  if (!std::isfinite(v)) Overflow();
  // Scale through long double, then round the scaled value half away from zero. A double
  // like 0.285 sits just below its decimal text; the nudge keeps two- to four-decimal
  // inputs on the value their text shows.
  long double scaled = static_cast<long double>(v) * kScala;
  long double r = std::nearbyint(scaled);
  long double diff = scaled - r;
  if (std::fabs(std::fabs(diff) - 0.5L) < 1e-6L) r = (scaled < 0) ? std::floor(scaled) : std::ceil(scaled);
  else r = std::round(scaled);
  if (r > 9.2e18L || r < -9.2e18L) Overflow();
  return DaRaw(static_cast<int64_t>(r));
}

std::optional<Importo> Importo::DaTestoPunto(std::string_view s) {
  size_t i = 0;
  while (i < s.size() && s[i] == ' ') ++i;
  bool neg = false;
  if (i < s.size() && (s[i] == '-' || s[i] == '+')) {
    neg = s[i] == '-';
    ++i;
  }
  size_t end = s.size();
  while (end > i && s[end - 1] == ' ') --end;
  if (i >= end) return std::nullopt;
  Int128 intpart = 0;
  int64_t frac = 0;
  int fracDigits = 0;
  bool anyDigit = false, point = false;
  int roundDigit = -1;
  bool sticky = false;
  for (; i < end; ++i) {
    char c = s[i];
    if (c == '.' && !point) {
      point = true;
      continue;
    }
    if (c < '0' || c > '9') return std::nullopt;
    anyDigit = true;
    int d = c - '0';
    if (!point) {
      intpart = intpart * 10 + d;
      if (intpart > static_cast<Int128>(INT64_MAX / kScala)) return std::nullopt;
    } else if (fracDigits < 4) {
      frac = frac * 10 + d;
      ++fracDigits;
    } else if (roundDigit < 0) {
      roundDigit = d;
    } else if (d) {
      sticky = true;
    }
  }
  (void)sticky;
  if (!anyDigit) return std::nullopt;
  int64_t raw = static_cast<int64_t>(intpart) * kScala + frac * Pow10(4 - fracDigits);
  if (roundDigit >= 5) ++raw;  // halves away from zero on the decimal text
  return DaRaw(neg ? -raw : raw);
}

Importo Importo::Arrotonda(int decimali) const {
  if (decimali >= 4) return *this;
  if (decimali < 0) decimali = 0;
  int64_t step = Pow10(4 - decimali);
  int64_t q = raw_ / step, r = raw_ % step;
  if (r * 2 >= step) ++q;
  else if (r * 2 <= -step) --q;
  return DaRaw(q * step);
}

std::string Importo::TestoPunto4() const {
  uint64_t a = raw_ < 0 ? static_cast<uint64_t>(-(raw_ + 1)) + 1 : static_cast<uint64_t>(raw_);
  std::string frac = std::to_string(a % kScala);
  frac.insert(0, 4 - frac.size(), '0');
  return (raw_ < 0 ? "-" : "") + std::to_string(a / kScala) + "." + frac;
}

std::string Importo::TestoPunto() const {
  std::string t = TestoPunto4();
  while (t.back() == '0') t.pop_back();
  if (t.back() == '.') t.pop_back();
  return t;
}

Importo Importo::operator-() const {
  if (raw_ == INT64_MIN) Overflow();
  return DaRaw(-raw_);
}
Importo& Importo::operator+=(Importo o) {
  if (__builtin_add_overflow(raw_, o.raw_, &raw_)) Overflow();
  return *this;
}
Importo& Importo::operator-=(Importo o) {
  if (__builtin_sub_overflow(raw_, o.raw_, &raw_)) Overflow();
  return *this;
}
Importo Importo::operator*(int64_t n) const {
  int64_t r;
  if (__builtin_mul_overflow(raw_, n, &r)) Overflow();
  return DaRaw(r);
}
Importo Importo::Per(double fattore) const {
  long double v = static_cast<long double>(raw_) * fattore;
  long double r = v < 0 ? -std::floor(-v + 0.5L) : std::floor(v + 0.5L);
  if (!std::isfinite(static_cast<double>(r)) || r > 9.2e18L || r < -9.2e18L) Overflow();
  return DaRaw(static_cast<int64_t>(r));
}
Importo Importo::Diviso(double divisore) const {
  if (divisore == 0) throw std::domain_error("Divisione per zero");
  long double v = static_cast<long double>(raw_) / divisore;
  long double r = v < 0 ? -std::floor(-v + 0.5L) : std::floor(v + 0.5L);
  if (r > 9.2e18L || r < -9.2e18L) Overflow();
  return DaRaw(static_cast<int64_t>(r));
}

Importo ArrotondaRapporto(Int128 num, Int128 den, int decimali) {
  if (den == 0) return Importo();
  if (den < 0) {
    num = -num;
    den = -den;
  }
  if (decimali < 0) decimali = 0;
  if (decimali > 4) decimali = 4;
  Int128 passo = 1;
  for (int i = decimali; i < 4; ++i) passo *= 10;
  Int128 d = den * passo;
  Int128 q = num < 0 ? -num : num;
  Int128 r = (q * 2 + d) / (2 * d) * passo;  // halves away from zero on the magnitude
  if (r > static_cast<Int128>(INT64_MAX)) throw std::overflow_error("Importo fuori dai limiti");
  return Importo::DaRaw(static_cast<int64_t>(num < 0 ? -r : r));
}

}  // namespace vorn
