// The references of the fixed assets that every run reads the same way: the asset causals of
// purchase, sale and depreciation and the accounting causals of the posting, from the
// company's account references; and the arguments of a year's depreciation built on them.
#pragma once
#include <memory>
#include <string>

#include "assets/clsCespitiAmm.h"
#include "frame/Db.h"

namespace vorn {

struct RiferimentiCespiti {
  std::string causaleAcquisto, causaleVendita, causaleSvalutazione, causaleVarFondoOrd;
  std::string causaleAmmOrd, causaleAmmAnt;  // asset causals, kinds 11 and 12
  std::string contabileAmmOrd, contabileAmmAnt;  // accounting causals of the posting
};

// ErroreDb naming what is missing when a causal of depreciation or of its posting is not set.
RiferimentiCespiti LeggiRiferimentiCespiti(const std::shared_ptr<Connessione>& cn);

// The depreciation of `anno` with the references' causals, the company's decimals, the
// anticipated depreciation and the movements of the assets sold in the year.
ArgomentiAmmortamento ArgomentiAmmortamentoAzienda(const RiferimentiCespiti& r, int anno);

}  // namespace vorn
