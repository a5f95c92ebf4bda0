// The VAT code master, [Codici Iva]: one row per VAT treatment, with its rate, its
// non-deductible share and the flags that decide where an amount on the code lands in the
// registers, the settlement, the customer and supplier lists and the statements.
//
// Journal rows carry only the code, so a code missing from the table is an ordinary case:
// every getter answers it with a neutral value (0, "0", false, empty text) and never stops the
// caller.
//
// The electronic-invoice getters (GetNaturaIVAFatturaPA, GetFlagSplitPayment, IsReverseCharge
// and the three nature predicates) accept the 8xx and 9xx forms of a code: a three-character
// code starting with "0", "8" or "9" is read as "0" + its last two characters ("905" and "805"
// find row "005"), and the caller's variable is left holding that normalised code. All the
// other getters look the code up as it is given.
#pragma once
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Valore.h"
#include "frame/VornServer.h"

namespace vorn {

class clsCodiciIva {
 public:
  ConnessioneClasse cn;

  // The data columns that SalvaRecord writes, after the key, in their stored order.
  static const std::vector<std::string>& ColonneSalvaRecord();
  // The labels of [Tipo allegato clifor] (0..5) and [Tipo operazione black list] (0..7) as the
  // print shows them; empty text for any other value. Null reads as 0.
  static std::string EtichettaTipoAllegato(const Valore& tipo);
  static std::string EtichettaTipoBlackList(const Valore& tipo);

  // Opens the row of the code for update and stamps it with the caller; true when it exists.
  bool LocalizzaRecord(Recordset& T, const Valore& CodiceIva, const Valore& clientID, long hWnd);
  // Adds or overwrites the row of the code (stored trimmed). `campi` holds the data columns by
  // name, matched without regard to case (see ColonneSalvaRecord): a column it leaves out keeps
  // its value (Null on a new row); a name that is not a data column is refused with ErroreDb
  // before anything is written. A row reached by another reader since the caller's
  // LocalizzaRecord asks before being overwritten, unless NoPrompt; declined: Cancel true,
  // result false, nothing written.
  bool SalvaRecord(const Valore& CodiceIva, const RecordValori& campi, const Valore& clientID, long hWnd,
                   bool& Cancel, bool NoPrompt = false);
  // Deletes the row; no check that journal rows use the code.
  bool CancellaRecord(const Valore& CodiceIva);
  // The next / previous code in text order. From an empty code the forward step gives the last
  // code and the backward step the first. On success the argument takes the code found; with
  // nothing beyond, false and the argument as it was.
  bool RecordSuccessivo(Valore& CodiceIva);
  bool RecordPrecedente(Valore& CodiceIva);

  // The rate as an amount (four decimals); the integer 0 when the code is missing.
  Valore GetAliquotaIva(const Valore& CodiceIva);
  // The non-deductible percentage as an amount; the integer 0 when the code is missing.
  Valore GetPercentualeIndetraibile(const Valore& CodiceIva);
  // The description; "" when the code is missing, and then, for a code that is not blank, the
  // "Codice inesistente." message when Cancel is passed (which it sets) and the control's
  // highlight when one is passed.
  std::string GetDescrizioneIva(const Valore& CodiceIva, bool* Cancel = nullptr,
                                IControllo* ControlloDaSelezionare = nullptr);
  // True when the row exists; Descrizione_Iva, when passed, takes the description or "".
  bool ExistCodiceIva(const Valore& CodiceIva, Valore* Descrizione_Iva = nullptr);
  // Empties the table.
  bool AzzeraCodiciIva();

  // The list of the VAT codes: the body is written to CartellaTemp() + "/StamCIVA.tmp", then
  // paged into `nomeFile` at avar_RighePagina lines a page under the company's head, with the
  // foot naming who printed it (AzRagSoc, AzParIva). avar_DataStampa is used when it is a
  // date, otherwise today. An empty table gives the "Nessun dato da stampare." message and no
  // file. True when `nomeFile` was written; the form, when passed, is told "Operazione
  // completata".
  bool StampaCodiciIVA(IForm* frm_FormAttiva, const Valore& AzRagSoc, const Valore& AzParIva,
                       const std::string& nomeFile, const Valore& avar_DataStampa, const Valore& avar_RighePagina);

  // Electronic-invoice getters: the code is normalised first, in the caller's variable too.
  // True only when the row exists and [Flag Reverse Charge] reads "1".
  bool IsReverseCharge(Valore& Codice_IVA);
  // [Natura operazione fattura PA]; 0 when the row is missing or the field is Null.
  int GetNaturaIVAFatturaPA(Valore& Codice_IVA);
  // [Flag Split Payment fattura PA]; "0" when the row is missing or the field is Null.
  std::string GetFlagSplitPayment(Valore& Codice_IVA);
  // The nature groups: N2 (2, and its sub-natures 8..9), N3 (3, and 10..15), N6 (6, and 16..24).
  bool IsNaturaIvaN2(Valore& Codice_IVA);
  bool IsNaturaIvaN3(Valore& Codice_IVA);
  bool IsNaturaIvaN6(Valore& Codice_IVA);

  // The figures of a code in one query, the code looked up as given: the rate and the
  // non-deductible percentage as amounts, and the five flags as trimmed text. A missing row
  // gives 0 for the two numbers and "0" for the flags; the result tells whether it was found.
  bool GetDatiIVA(const Valore& CodiceIva, Valore& aliquota, Valore& Percentuale_indetraibilità,
                  Valore& Flag_Articolo_8, Valore& Flag_Fatture_Esenti, Valore& Flag_Altre_Esenzioni,
                  Valore& Flag_Monte_Acquisti, Valore& Acquisto_Intracomunitario);

 private:
  // The 8xx/9xx/0xx form of a code brought back to its row's code, written into the argument.
  static void NormalizzaCodiceIva(Valore& Codice_IVA);
  // One column of the row of the code, or nullopt when the row is missing.
  std::optional<Valore> LeggiColonna(const std::string& colonna, const Valore& CodiceIva);
};

}  // namespace vorn
