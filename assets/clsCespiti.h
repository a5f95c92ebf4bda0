// The fixed assets: each belongs to a category (which gives the accounts of its depreciation)
// and carries its own rates, the ceiling of its depreciable value, the deductible share and
// the flag of the whole depreciation in the year of purchase.
#pragma once
#include <cstdint>
#include <string>

#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsCespiti : public FamigliaAnagrafiche<clsCespiti, 1> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  // The movements of an asset, read-only, by date of competence, movement and row, with the
  // causal's description and the name of the client or supplier of the movement.
  bool LocalizzaMovimentiCespite(Recordset& T, const Valore& codiceCespite);

  using FamigliaAnagrafiche::SalvaRecord;
  // The columns of [Cespiti] in their order after the code.
  bool SalvaRecord(const Valore& codiceCespite, const Valore& DescrizioneCespite, const Valore& SerialNumber,
                   const Valore& Ubicazione, const Valore& Riferimento, const Valore& CodiceCategoria,
                   const Valore& CodiceCespiteCorr, const Valore& PercAmmOrdCiv, const Valore& PercAmmAntCiv,
                   const Valore& PercAmmOrdFisc, const Valore& PercAmmAntFisc, const Valore& LimiteAmmortizzFisc,
                   const Valore& percDeducFisc, const Valore& IndStato, const Valore& FlagUsato,
                   const Valore& FlagManutenzioneContr, const Valore& FlagAmmIntegraleFisc, const Valore& Immagine,
                   const Valore& clientID, long hWnd, bool& Cancel);
  // A new asset with its category's rates, fiscal and civil (the category must exist: false
  // otherwise, nothing written).
  bool SalvaDaCategoria(const Valore& codiceCespite, const Valore& DescrizioneCespite, const Valore& CodiceCategoria,
                        const Valore& clientID, long hWnd, bool& Cancel);
  // The rows changed (0 for an unknown asset).
  int32_t UpdateStato(const Valore& codiceCespite, const Valore& IndStato);

  Valore GetDescrizioneCespite(const Valore& codiceCespite, bool* Cancel = nullptr,
                               IControllo* ControlloDaSelezionare = nullptr);
  std::string GetCategoriaCespite(const Valore& codiceCespite);
  double GetPercDeducFisc(const Valore& codiceCespite) { return Numero(codiceCespite, "percDeducFisc"); }
  double GetLimiteAmmortizzFisc(const Valore& codiceCespite) { return Numero(codiceCespite, "LimiteAmmortizzFisc"); }
  double GetPercAmmOrdFisc(const Valore& codiceCespite) { return Numero(codiceCespite, "PercAmmOrdFisc"); }
  double GetPercAmmAntFisc(const Valore& codiceCespite) { return Numero(codiceCespite, "PercAmmAntFisc"); }
  double GetPercAmmOrdCiv(const Valore& codiceCespite) { return Numero(codiceCespite, "PercAmmOrdCiv"); }
  double GetPercAmmAntCiv(const Valore& codiceCespite) { return Numero(codiceCespite, "PercAmmAntCiv"); }
  bool GetFlagAmmIntegraleFisc(const Valore& codiceCespite) { return Flag(codiceCespite, "FlagAmmIntegraleFisc"); }
  bool GetFlagManutenzioneContr(const Valore& codiceCespite) { return Flag(codiceCespite, "FlagManutenzioneContr"); }

 private:
  double Numero(const Valore& codiceCespite, const char* colonna);
  bool Flag(const Valore& codiceCespite, const char* colonna);
};

}  // namespace vorn
