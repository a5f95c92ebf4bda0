// The invoice data of a period's statement: the VAT rows of sales and purchases drawn from the
// journal into [DatiFatture] (one row a VAT row), [DatiFattureTestate] (one row a document) and
// [DatiFattureRighe] (one row a VAT row of a document), corrected by the user through the
// client and read back by it, which writes the statement. From 2019 only operations with
// foreign parties are drawn.
//
// An extraction replaces the period's rows of the three tables in one transaction: when it
// fails, the previous extraction, with the user's corrections, stays as it was.
#pragma once
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Valore.h"

namespace vorn {

class clsDatiFatture {
 public:
  ConnessioneClasse cn;

  // The periods: 0 to 3 the quarters, 4 and 5 the half-years, 6 to 17 the months.
  static constexpr int kPeriodi = 18;
  // The text of a period ("1° Trimestre", "Gennaio"...); empty text outside 0..17.
  static std::string TestoPeriodo(int periodo);
  // The texts of the periods in the order of their numbers, as a combo offers them.
  static std::vector<std::string> InitPeriodi();
  // The years of the journal, newest first, the current one included.
  std::vector<int> InitAnni();
  // First and last day of the period of the year; false (dates untouched) for a period or a
  // year out of range.
  static bool GetRangeDate(int anno, int periodo, Data& daData, Data& aData);

  // Draws the period's VAT rows from the journal (tipo 0 is the extraction); the rows of the
  // period are replaced all together. The count of VAT rows drawn; -1 when the run failed
  // (told to the user; the previous extraction stays).
  long EstraiDatiFattureDaPrimaNota(int tipo, int anno, int periodo, IForm* objForm = nullptr);
  bool ExistsDatiAnnoPeriodo(int tipo, int anno, int periodo);

  // The documents of the kind, year and period, by side, counterparty and number.
  bool LocalizzaTuttiRecord(Recordset& T, int tipo, int anno, int periodo);
  // A document's row by the columns of [DatiFattureTestate] (unknown names refused): a new
  // one when `ID` is 0 or not there, replaced otherwise.
  bool SalvaRecord(const Valore& ID, int tipo, int anno, int periodo, const RecordValori& colonne);
  bool SalvaRecordRighe(int tipo, int anno, int periodo, const Valore& numeroRegistrazione,
                        const Valore& NumRigaAVideo, const Valore& CodiceIva, const Valore& Imponib,
                        const Valore& imposta);
  // Removes a document and its VAT rows; the count of documents removed.
  double CancellaRecord(const Valore& ID);

  // The counterparties of the side with documents in the period (summary documents, type 7,
  // or the others), by code.
  bool LocalizzaRiepilogoCliForFatture(Recordset& T, int anno, int periodo, const Valore& indicatoreCliFor,
                                       bool documentiRiepilogativi);
  // The documents of one counterparty, by series and number.
  bool LocalizzaDatiFattureTestateCliFor(Recordset& T, int anno, int periodo, const Valore& indicatoreCliFor,
                                         const Valore& codiceCliFor, bool documentiRiepilogativi);
  bool ExistsDocumentiRiepilogativi(int anno, int periodo, const Valore& indicatoreCliFor);
  // True when the VAT rows of the entry sum to zero taxable and zero tax.
  bool IsRegistrazioneImponibileImpostaZero(int anno, int periodo, const Valore& numeroRegistrazione);
  bool LocalizzaDatiFattureRighe(Recordset& T, int anno, int periodo, const Valore& numeroRegistrazione);
  bool CancellaRecordRighe(int anno, int periodo, const Valore& numeroRegistrazione);
  bool ExistsRegistrazione(int anno, int periodo, const Valore& numeroRegistrazione);
  // The highest entry number of the period's documents; empty text with none.
  std::string GetMaxNumeroRegistrazione(int anno, int periodo);

  // The counterparties of the period's documents, with their VAT number and fiscal code, into
  // [Elaborazione verifica PI CF duplicati] under the client's name; then the readers of those
  // whose VAT number or fiscal code stands under more than one code of the same side.
  void MakeElaborazioneCliForDoppi(const std::string& clientName, int tipo, int anno, int periodo);
  bool LocalizzaCliForPartitaIVADoppia(Recordset& T, const std::string& clientName, const Valore& indicatoreCliFor);
  bool LocalizzaCliForCodiceFiscaleDoppio(Recordset& T, const std::string& clientName,
                                          const Valore& indicatoreCliFor);

 private:
  bool LocalizzaDoppi(Recordset& T, const std::string& clientName, const Valore& indicatoreCliFor,
                      const char* colonna);
};

}  // namespace vorn
