// Calendar dates, no time of day and no time zone.
#pragma once
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorn {

class Data {
 public:
  constexpr Data() = default;  // 30/12/1899, the zero of the serial count

  // nullopt unless a real calendar day between years 100 and 9999.
  static std::optional<Data> Crea(int anno, int mese, int giorno);
  // Days since 30/12/1899 (the serial count of the host's dates).
  static Data DaSeriale(int64_t seriale);
  // Date test of text: "dd/mm/yyyy", "d/m/yy", with "/", "-" or "." between the parts,
  // and ISO "yyyy-mm-dd". Two-digit years 00-29 are 2000-2029, 30-99 are 1930-1999.
  static std::optional<Data> DaTesto(std::string_view testo);
  static Data Oggi();

  int Anno() const { return anno_; }
  int Mese() const { return mese_; }
  int Giorno() const { return giorno_; }
  int64_t Seriale() const;
  // 1 Sunday .. 7 Saturday, as the host's Weekday.
  int GiornoSettimana() const;

  Data AggiungiGiorni(int64_t n) const { return DaSeriale(Seriale() + n); }
  // Month arithmetic that keeps the day, clamped to the last day of the target month.
  Data AggiungiMesi(int n) const;
  static int GiorniNelMese(int anno, int mese);
  static bool Bisestile(int anno);

  std::string Testo() const;      // dd/mm/yyyy
  std::string Iso() const;        // yyyy-mm-dd
  std::string Formato(std::string_view maschera) const;  // dd, mm, yyyy, yy tokens

  friend constexpr auto operator<=>(const Data&, const Data&) = default;

 private:
  constexpr Data(int a, int m, int g) : anno_(a), mese_(m), giorno_(g) {}
  int anno_ = 1899, mese_ = 12, giorno_ = 30;
};

}  // namespace vorn
