#include "frame/Host.h"

namespace vorn {

int HostSilenzioso::MsgBox(const std::string& testo, int stile, const std::string& titolo) {
  int r = StileDomanda(stile) ? risposta_ : vbOK;
  messaggi_.push_back({testo, stile, titolo, r});
  return r;
}

namespace {
IHost*& HostCorrente() {
  static IHost* h = nullptr;
  return h;
}
HostSilenzioso& HostPredefinito() {
  static HostSilenzioso h;
  return h;
}
}  // namespace

IHost& Host() {
  IHost* h = HostCorrente();
  return h ? *h : HostPredefinito();
}
void ImpostaHost(IHost* host) { HostCorrente() = host; }

}  // namespace vorn
