// Stock causals, read only: the ledger asks which side of the stock a causal moves.
#pragma once
#include <memory>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"

namespace vorn {

class clsCausaliMagazzino {
 public:
  ConnessioneClasse cn;

  // `Controparte` of the causal, "N" when missing.
  Valore GetControparteCausale(const Valore& codice_causale);
};

}  // namespace vorn
