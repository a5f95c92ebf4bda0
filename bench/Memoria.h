// The memory of the benchmark's own process, from /proc/self: the resident size now, its peak
// since the last reset, and the reset of that peak (so that a measure starts from its own).
#pragma once
#include <cstdlib>
#include <fstream>
#include <string>

namespace vorn::bench {

// A "Vm...:" line of /proc/self/status in kB; -1 when absent.
inline long StatoKb(const char* voce) {
  std::ifstream f("/proc/self/status");
  std::string riga;
  const std::string v = voce;
  while (std::getline(f, riga))
    if (riga.rfind(v, 0) == 0) return std::strtol(riga.c_str() + v.size(), nullptr, 10);
  return -1;
}
inline long MemoriaKb() { return StatoKb("VmRSS:"); }
inline long PiccoMemoriaKb() { return StatoKb("VmHWM:"); }
inline void AzzeraPiccoMemoria() { std::ofstream("/proc/self/clear_refs") << "5"; }

}  // namespace vorn::bench
