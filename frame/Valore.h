// The variant value through which columns, arguments and outputs travel.
#pragma once
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "frame/Data.h"
#include "frame/Importo.h"

namespace vorn {

struct Nullo {
  friend bool operator==(Nullo, Nullo) { return true; }
};

class Valore {
 public:
  enum class Tipo { Vuoto, Nullo, Booleano, Intero, Doppio, Importo, Testo, Data };

  Valore() = default;  // Empty
  Valore(Nullo) : v_(Nullo{}) {}
  Valore(bool b) : v_(b) {}
  Valore(int i) : v_(static_cast<int64_t>(i)) {}
  Valore(long i) : v_(static_cast<int64_t>(i)) {}
  Valore(long long i) : v_(static_cast<int64_t>(i)) {}
  Valore(double d) : v_(d) {}
  Valore(vorn::Importo i) : v_(i) {}
  Valore(std::string s) : v_(std::move(s)) {}
  Valore(std::string_view s) : v_(std::string(s)) {}
  Valore(const char* s) : v_(std::string(s)) {}
  Valore(vorn::Data d) : v_(d) {}
  template <class T>
  Valore(const std::optional<T>& o) {
    if (o) *this = Valore(*o);
    else v_ = Nullo{};
  }

  static Valore Null() { return Valore(Nullo{}); }

  Tipo tipo() const { return static_cast<Tipo>(v_.index()); }
  bool IsEmpty() const { return tipo() == Tipo::Vuoto; }
  bool IsNull() const { return tipo() == Tipo::Nullo; }
  bool IsText() const { return tipo() == Tipo::Testo; }
  bool IsNumber() const {
    auto t = tipo();
    return t == Tipo::Intero || t == Tipo::Doppio || t == Tipo::Importo || t == Tipo::Booleano;
  }

  // Raw access; the caller knows the kind.
  const std::string& Str() const { return std::get<std::string>(v_); }
  bool Bool() const { return std::get<bool>(v_); }
  int64_t Int() const { return std::get<int64_t>(v_); }
  double Dbl() const { return std::get<double>(v_); }
  vorn::Importo Imp() const { return std::get<vorn::Importo>(v_); }
  vorn::Data Dat() const { return std::get<vorn::Data>(v_); }

  // The value as text, in the company's Italian locale: comma as decimal mark, dates
  // "dd/mm/yyyy", booleans "Vero"/"Falso"; Empty and Null give empty text.
  std::string Testo() const;
  // Trimmed Testo().
  std::string TestoTrim() const;

  // Conversions that fail (nullopt) where the host's conversion would raise a type error.
  std::optional<double> ComeDouble() const;
  std::optional<vorn::Importo> ComeImporto() const;
  std::optional<int64_t> ComeIntero() const;  // rounds halves to even, like the host's CLng
  // The date test: a date, or text that reads as a date.
  std::optional<vorn::Data> ComeData() const;
  bool IsDate() const { return ComeData().has_value(); }
  bool IsNumeric() const;
  // True for a true boolean, a non-zero number, or text reading as such ("Vero", "True", "-1").
  bool Vero() const;

  friend bool operator==(const Valore& a, const Valore& b) { return a.v_ == b.v_; }

 private:
  std::variant<std::monostate, Nullo, bool, int64_t, double, vorn::Importo, std::string, vorn::Data> v_;
};

// One record of named values, keyed by the archives' column names: how an operation that
// stores dozens of columns takes them.
using RecordValori = std::map<std::string, Valore>;

// Numeric text of the Italian locale (comma decimal, point thousands), normalised to a text
// with a point as decimal mark. A point that cannot group thousands is taken as a decimal
// mark ("12.50" reads 12,50). nullopt when the text is not a number.
std::optional<std::string> NormalizzaNumero(std::string_view testo);

// The host's Val: the numeric prefix of a text (blanks skipped, point as decimal mark,
// optional exponent), 0 when there is none.
double Val(std::string_view testo);
// The same prefix as an exact amount (four decimals, halves away from zero).
Importo ValImporto(std::string_view testo);

// The shortest decimal text of a double, point as mark, no exponent for ordinary values.
std::string DoubleInTesto(double d);

std::string Trim(std::string_view s);
std::string UCase(std::string_view s);  // ASCII and Latin-1 accented letters
std::string LCase(std::string_view s);
bool UgualeNoCase(std::string_view a, std::string_view b);

}  // namespace vorn
