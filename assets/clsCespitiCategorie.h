// The asset categories: each gives the nature of its assets (0 material, any other value
// immaterial) and the four sub-accounts of their depreciation, cost and accumulated fund,
// ordinary and anticipated. The category's rates are a proposal: an asset's own rates drive
// the calculation.
#pragma once
#include <cstdint>
#include <string>

#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

// "Materiale" for 0, "Immateriale" for any other nature.
std::string DescrizioneNatura(int64_t indNatura);

class clsCespitiCategorie : public FamigliaAnagrafiche<clsCespitiCategorie, 1> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  // Every category in code order, read-only; true if any.
  bool LocalizzaTuttiRecord(Recordset& T);

  using FamigliaAnagrafiche::SalvaRecord;
  bool SalvaRecord(const Valore& codiceCategoria, const Valore& DescrizioneCategoria, const Valore& percAmmOrdFisc,
                   const Valore& percAmmAntFisc, const Valore& PercAmmOrdCiv, const Valore& PercAmmAntCiv,
                   const Valore& indNatura, const Valore& SottCostoAmmOrd, const Valore& SottFondoAmmOrd,
                   const Valore& SottCostoAmmAnt, const Valore& SottFondoAmmAnt, const Valore& clientID, long hWnd,
                   bool& Cancel, bool NoPrompt = false);

  Valore GetDescrizioneCategoria(const Valore& codiceCategoria, bool* Cancel = nullptr,
                                 IControllo* ControlloDaSelezionare = nullptr);
  // The whole row; false, and the outputs empty, for an unknown category.
  bool GetParametriCategoria(const Valore& codiceCategoria, Valore& DescrizioneCategoria, int& indNatura,
                             double& percAmmOrdFisc, double& percAmmAntFisc, double& PercAmmOrdCiv,
                             double& PercAmmAntCiv, std::string& SottCostoAmmOrd, std::string& SottFondoAmmOrd,
                             std::string& SottCostoAmmAnt, std::string& SottFondoAmmAnt);
  bool ExistCespitiCategoria(const Valore& codiceCategoria) { return ExistCodice(codiceCategoria); }
  bool AzzeraCespitiCategorie();
  // 0 for an unknown category.
  int GetIndNatura(const Valore& codiceCategoria);
};

}  // namespace vorn
