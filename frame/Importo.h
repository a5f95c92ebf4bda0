// Fixed-point amounts: four decimals held in a 64-bit integer.
#pragma once
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "frame/Int128.h"

namespace vorn {

class Importo {
 public:
  static constexpr int64_t kScala = 10000;  // four decimals

  constexpr Importo() = default;
  // From whole units (Importo(12) is 12,0000).
  constexpr explicit Importo(int64_t unita) : raw_(unita * kScala) {}

  static constexpr Importo DaRaw(int64_t raw) {
    Importo i;
    i.raw_ = raw;
    return i;
  }
  // Nearest amount of four decimals, halves away from zero. Throws on overflow or NaN.
  static Importo DaDouble(double v);
  // Plain decimal text with an optional sign and a point as decimal mark ("-1234.5").
  // More than four decimals are rounded half away from zero. nullopt when not such a text.
  static std::optional<Importo> DaTestoPunto(std::string_view s);

  constexpr int64_t Raw() const { return raw_; }
  double ToDouble() const { return static_cast<double>(raw_) / kScala; }
  bool Zero() const { return raw_ == 0; }

  // Rounded to `decimali` places (0..4), halves away from zero. Negative counts act as 0.
  Importo Arrotonda(int decimali) const;
  // Text with a point and exactly four decimals: "-12.5000". Used for binding and storage.
  std::string TestoPunto4() const;
  // Shortest text with a point: "12.5", "-3", "0.0001".
  std::string TestoPunto() const;

  Importo operator-() const;
  Importo& operator+=(Importo o);
  Importo& operator-=(Importo o);
  friend Importo operator+(Importo a, Importo b) { return a += b; }
  friend Importo operator-(Importo a, Importo b) { return a -= b; }
  // Product by a whole number, exact.
  Importo operator*(int64_t n) const;
  // Product and quotient by a double, rounded to four decimals halves away from zero.
  Importo Per(double fattore) const;
  Importo Diviso(double divisore) const;

  friend constexpr auto operator<=>(Importo a, Importo b) = default;

 private:
  int64_t raw_ = 0;
};

// numeratore / denominatore, where the quotient is read in ten-thousandths, rounded once to
// `decimali` places (0..4), halves away from zero: the exact share of a sum. A denominator of
// 0 gives 0. Throws std::overflow_error when the result does not fit.
Importo ArrotondaRapporto(Int128 numeratore, Int128 denominatore, int decimali);

}  // namespace vorn
