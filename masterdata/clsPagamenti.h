// Payment terms: one row of [Pagamenti] per code, telling due-date generation the kind of
// payment (a two-letter type), how many instalments, the cumulative day counts from the start
// date to each of the first six, how the due date is built from them ("DF" the document date,
// "DD" a date given apart, "FM" the end of the month, "GF" a fixed day of the month), the step
// between later instalments and what the first instalment carries. The months in which no
// instalment may fall are the counterparty's, not the term's.
#pragma once
#include <string>
#include <vector>

#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsPagamenti : public FamigliaAnagrafiche<clsPagamenti, 1> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  // SalvaRecord(Codice_Pagamento, valori, clientID, hWnd, Cancel) of the family writes the data
  // columns named in `valori`, `Descrizione Pagamento` to `GF Da Fine Mese` (Definizione().colonne).

  Valore GetDescrizionePagamento(const Valore& Codice_Pagamento, bool* Cancel = nullptr,
                                 IControllo* ControlloDaSelezionare = nullptr);
  bool ExistCodicePagamento(const Valore& Codice_Pagamento);
  // `Tipo Pagamento`, empty text when the code is missing.
  Valore GetTipoPagamento(const Valore& Codice_Pagamento);

  // The kinds of payment, in the order the lists show them.
  static const std::vector<std::string>& TipiPagamento();
  // The description of a kind ("RB" -> "Ric.Bancaria"), as due dates show it; empty text for a
  // code that is no kind. The code is taken trimmed.
  static std::string GetDesTipoPagamento(const Valore& a_varTipo);
  // The short description of a kind ("RB" -> "Ric.Banc."), for narrow columns.
  static std::string GetDesTipoPagamentoAbbreviato(const Valore& a_varTipo);
};

}  // namespace vorn
