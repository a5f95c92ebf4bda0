// The company's thresholds and fixed amounts: the one-row table [Importi Fissi] (the steps of the
// stamp duty, the duties on bills of exchange and exempt invoices, the minimum invoice, and the
// figures of the VAT settlement and its advance).
#pragma once
#include <map>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

class clsImportiFissi {
 public:
  ConnessioneClasse cn;

  // Opens the row for the client and stamps it; true when the table has it.
  bool LocalizzaRecord(Recordset& T, const Valore& clientID, long hWnd);
  // Writes the values of `valori`, keyed by column name (ColonneSalvaRecord, matched without
  // regard to case), adding the row to an empty table. A name that is not a column is refused
  // with ErroreDb before anything is read or written. Cancel true: the user kept another
  // reader's row and nothing was written (result false).
  bool SalvaRecord(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd, bool& Cancel);
  // "Fino a 1", "Importo 1" .. "Fino a 10", "Importo 10" (up to that amount, that duty), the
  // duties on bills, the minimum invoice and the settlement's figures, in their order.
  static const std::vector<std::string>& ColonneSalvaRecord();

  // The VAT settlement's figures: the percentage of the advance, the minimum advance and the
  // minimum settlement to pay, amounts exact to four decimals. A null column gives 0; an empty
  // table gives 0 for all three and false.
  bool GetImportiFissiLiquidazioneIva(double& PercCalcoloAcconto, Importo& ImportoMinAcconto,
                                      Importo& ImportoMinLiqIva);
  // The increase of a quarterly settlement and the flat-rate percentage of the simplified
  // regime; the same defaults.
  bool GetImportiFissiLiquidazioneIva2(double& PercMaggTrim, double& PercForfSemp);
};

}  // namespace vorn
