#include "frame/Data.h"

#include <chrono>
#include <cstdio>
#include <ctime>

namespace vorn {

namespace {
// Days from civil, proleptic Gregorian (H. Hinnant's algorithm).
int64_t DaysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}
void CivilFromDays(int64_t z, int& y, int& m, int& d) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t yy = static_cast<int64_t>(yoe) + era * 400;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = static_cast<int>(yy + (m <= 2));
}
const int64_t kEpoch = DaysFromCivil(1899, 12, 30);

bool ParseInt(std::string_view s, int& out) {
  if (s.empty() || s.size() > 4) return false;
  int v = 0;
  for (char c : s) {
    if (c < '0' || c > '9') return false;
    v = v * 10 + (c - '0');
  }
  out = v;
  return true;
}
}  // namespace

bool Data::Bisestile(int a) { return (a % 4 == 0 && a % 100 != 0) || a % 400 == 0; }

int Data::GiorniNelMese(int a, int m) {
  static const int g[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (m < 1 || m > 12) return 0;
  return m == 2 && Bisestile(a) ? 29 : g[m - 1];
}

std::optional<Data> Data::Crea(int a, int m, int g) {
  if (a < 100 || a > 9999 || m < 1 || m > 12 || g < 1 || g > GiorniNelMese(a, m)) return std::nullopt;
  return Data(a, m, g);
}

int64_t Data::Seriale() const { return DaysFromCivil(anno_, static_cast<unsigned>(mese_), static_cast<unsigned>(giorno_)) - kEpoch; }

Data Data::DaSeriale(int64_t s) {
  int y, m, d;
  CivilFromDays(s + kEpoch, y, m, d);
  return Data(y, m, d);
}

int Data::GiornoSettimana() const {
  // 30/12/1899 was a Saturday (7).
  int64_t r = ((Seriale() % 7) + 7) % 7;  // 0 = Saturday
  return static_cast<int>(r == 0 ? 7 : r);
}

Data Data::AggiungiMesi(int n) const {
  int64_t idx = static_cast<int64_t>(anno_) * 12 + (mese_ - 1) + n;
  int a = static_cast<int>(idx / 12), m = static_cast<int>(idx % 12) + 1;
  int g = giorno_;
  int last = GiorniNelMese(a, m);
  if (g > last) g = last;
  return Data(a, m, g);
}

std::optional<Data> Data::DaTesto(std::string_view t) {
  while (!t.empty() && (t.front() == ' ')) t.remove_prefix(1);
  while (!t.empty() && (t.back() == ' ')) t.remove_suffix(1);
  // Drop a time part ("2025-03-15 00:00:00", "2025-03-15T00:00:00").
  if (t.size() > 10 && (t[10] == ' ' || t[10] == 'T') && t[4] == '-') t = t.substr(0, 10);
  std::string_view parts[3];
  int n = 0;
  size_t start = 0;
  char sep = 0;
  for (size_t i = 0; i <= t.size(); ++i) {
    if (i == t.size() || t[i] == '/' || t[i] == '-' || t[i] == '.') {
      if (i < t.size()) {
        if (sep && t[i] != sep) return std::nullopt;
        sep = t[i];
      }
      if (n >= 3) return std::nullopt;
      parts[n++] = t.substr(start, i - start);
      start = i + 1;
    }
  }
  if (n != 3) return std::nullopt;
  int a, b, c;
  if (!ParseInt(parts[0], a) || !ParseInt(parts[1], b) || !ParseInt(parts[2], c)) return std::nullopt;
  if (parts[0].size() == 4) return Crea(a, b, c);  // ISO order
  if (parts[2].size() == 3) return std::nullopt;
  if (parts[2].size() <= 2) c += c < 30 ? 2000 : 1900;
  return Crea(c, b, a);
}

Data Data::Oggi() {
  std::time_t now = std::time(nullptr);
  std::tm tm{};
  localtime_r(&now, &tm);
  return Data(tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday);
}

std::string Data::Testo() const {
  char b[16];
  std::snprintf(b, sizeof b, "%02d/%02d/%04d", giorno_, mese_, anno_);
  return b;
}
std::string Data::Iso() const {
  char b[16];
  std::snprintf(b, sizeof b, "%04d-%02d-%02d", anno_, mese_, giorno_);
  return b;
}

std::string Data::Formato(std::string_view m) const {
  std::string out;
  char b[8];
  for (size_t i = 0; i < m.size();) {
    auto starts = [&](std::string_view tok) { return m.substr(i, tok.size()) == tok; };
    if (starts("yyyy")) {
      std::snprintf(b, sizeof b, "%04d", anno_);
      out += b;
      i += 4;
    } else if (starts("yy")) {
      std::snprintf(b, sizeof b, "%02d", anno_ % 100);
      out += b;
      i += 2;
    } else if (starts("mm")) {
      std::snprintf(b, sizeof b, "%02d", mese_);
      out += b;
      i += 2;
    } else if (starts("dd")) {
      std::snprintf(b, sizeof b, "%02d", giorno_);
      out += b;
      i += 2;
    } else {
      out += m[i++];
    }
  }
  return out;
}

}  // namespace vorn
