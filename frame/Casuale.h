// A small number generator of the project's own, so that a starting number gives the same
// made-up data (the demo's company, the sample documents) on every machine and with every
// compiler and library.
#pragma once
#include <algorithm>
#include <cstdint>
#include <vector>

namespace vorn {

class Casuale {
 public:
  // `scostamento` sets two generators apart that start from the same number.
  explicit Casuale(uint64_t seme, uint64_t scostamento = 0x2545F4914F6CDD1DULL)
      : s_(seme * 0x9E3779B97F4A7C15ULL + scostamento) {}
  uint64_t Prossimo() {
    uint64_t z = (s_ += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
  }
  // Between a and b, both included.
  int64_t Tra(int64_t a, int64_t b) { return a + static_cast<int64_t>(Prossimo() % static_cast<uint64_t>(b - a + 1)); }
  // An index chosen with the given weights.
  size_t Pesato(const std::vector<int>& pesi) {
    int totale = 0;
    for (int p : pesi) totale += p;
    int64_t x = Tra(0, totale - 1);
    for (size_t i = 0; i < pesi.size(); ++i) {
      if (x < pesi[i]) return i;
      x -= pesi[i];
    }
    return pesi.size() - 1;
  }
  template <class T>
  const T& Scegli(const std::vector<T>& v) {
    return v[static_cast<size_t>(Tra(0, static_cast<int64_t>(v.size()) - 1))];
  }
  // An amount in cents, most of them small: a log-like spread between the two bounds.
  int64_t Importo(int64_t minimo, int64_t massimo) {
    int64_t a = Tra(minimo, massimo), b = Tra(minimo, massimo), c = Tra(minimo, massimo);
    return std::min({a, b, c}) + Tra(0, 99);
  }

 private:
  uint64_t s_;
};

}  // namespace vorn
