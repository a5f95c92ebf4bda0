#include "frame/ConnessioneClasse.h"

namespace vorn {

Connessione& ConnessioneAssegnata(const std::shared_ptr<Connessione>& cn) {
  if (!cn) throw ErroreDb(3709, "La connessione non è stata assegnata alla classe (cn).");
  return *cn;
}

}  // namespace vorn
