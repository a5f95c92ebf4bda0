// Stock causals, read only: the ledger asks which side of the stock a causal moves.
#pragma once
#include <memory>

#include "frame/Db.h"

namespace vorn {

class clsCausaliMagazzino {
 public:
  std::shared_ptr<Connessione> cn;

  // `Controparte` of the causal, "N" when missing.
  Valore GetControparteCausale(const Valore& codice_causale);
};

}  // namespace vorn
