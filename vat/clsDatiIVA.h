// The figures of the periodic VAT communication: [DatiIVA], one row per year (anno) and month
// (Mese), with the quarter (trimestre) it belongs to, the flags of the return (Subfornitura,
// EventiEccezionali) and its amounts. Amounts are exact (four decimals) on both engines.
//
// A year or month given as empty text finds a row whose column is 0 or null; a year or month
// that is not a whole number is ErroreDb 13.
#pragma once
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn {

class clsDatiIVA {
 public:
  ConnessioneClasse cn;

  // The columns that SalvaRecord writes beside anno and Mese, in their stored order.
  static const std::vector<std::string>& ColonneSalvaRecord();

  // The months of a year by Mese, for the client; every row is stamped with its reader. True
  // when there is one.
  bool LocalizzaRecordPerAnno(Recordset& T, const Valore& anno, const Valore& clientID, long hWnd);
  // The months of one quarter of a year by Mese; true when there is one.
  bool LocalizzaRecordPerTrimestre(Recordset& T, const Valore& anno, const Valore& trimestre);
  // The row of the year and month, stamped with its reader; true when found.
  bool LocalizzaRecord(Recordset& T, const Valore& anno, const Valore& Mese, const Valore& clientID, long hWnd);
  // Kept for the client, which calls it by name: it checks nothing and gives an empty value.
  Valore VerificaCambiamentiAltriUtenti();
  // Adds or overwrites the row of the year and month. `valori` holds the other columns by name,
  // matched without regard to case (see ColonneSalvaRecord): a column it leaves out keeps its
  // value (Null on a new row); a name that is none of them is refused with ErroreDb before
  // anything is written. A row that another reader reached since the caller's Localizza asks
  // before being overwritten, unless NoPrompt; declined: Cancel true, result false, nothing
  // written.
  bool SalvaRecord(const Valore& anno, const Valore& Mese, const RecordValori& valori, const Valore& clientID,
                   long hWnd, bool& Cancel, bool NoPrompt = false);
  // The rows deleted.
  double CancellaRecord(const Valore& anno, const Valore& Mese);
  double CancellaRecordPerAnno(const Valore& anno);
};

}  // namespace vorn
