// The company's chart of accounts, [Piano Dei Conti], and the balance of each sub-account,
// [Saldi Piano Dei Conti].
//
// The chart is a tree of three levels in one table: a group has an empty account and
// sub-account, an account an empty sub-account, a sub-account all three parts. An empty part
// may be stored as empty text, blanks or Null: every filter and every listing of this class
// treats them alike, so that a group row stored either way has the same key. Elsewhere an
// account travels as one seven-character code, group (2) + account (2) + sub-account (3).
//
// Balances are moved by the journal; here they are only read, zeroed or stored whole. A
// sub-account without a balance row has all its balances at zero.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Valore.h"
#include "frame/VornServer.h"

namespace vorn {

class clsPianoConti {
 public:
  ConnessioneClasse cn;

  // The data columns of a chart row, after the key, in the order they are stored.
  static const std::vector<std::string>& ColonneSalvaRecord();

  // Every row: Gruppo, Conto, Sottoconto, Descrizione and SezBilancio ("Patrimoniale",
  // "Economico", "Riepilogo" from IndDiBilancio), in key order. True when there is a row.
  bool LocalizzaTuttiRecord(Recordset& T);
  // Opens the row for update and stamps it with the caller; true when it exists.
  bool LocalizzaRecord(Recordset& T, const Valore& CodiceGruppo, const Valore& CodiceConto,
                       const Valore& CodiceSottoconto, const Valore& clientID, long hWnd);
  // The same on the balance row.
  bool LocalizzaRecordSaldi(Recordset& T, const Valore& CodiceGruppo, const Valore& CodiceConto,
                            const Valore& CodiceSottoconto, const Valore& clientID, long hWnd);

  // Adds or overwrites a chart row. The key parts are stored trimmed; `campi` holds data columns
  // by name (see ColonneSalvaRecord): a column it leaves out is left alone (Null on a new row),
  // a name that is not a data column is refused with ErroreDb before anything is written. A row
  // reached by another reader since the caller's LocalizzaRecord asks before being overwritten,
  // unless NoPrompt; declined: Cancel true, result false, nothing written. No check of values or
  // of a parent row.
  bool SalvaRecord(const Valore& Gruppo, const Valore& Conto, const Valore& sottoconto, const RecordValori& campi,
                   const Valore& clientID, long hWnd, bool& Cancel, bool NoPrompt = false);
  // Adds or overwrites a balance row with all its amounts, under the same protocol (always
  // asking).
  bool SalvaRecordSaldi(const Valore& CodiceGruppo, const Valore& CodiceConto, const Valore& CodiceSottoconto,
                        const Valore& SaldoInizialePeriodo, const Valore& SaldoDarePeriodo,
                        const Valore& SaldoAverePeriodo, const Valore& SaldoInizialeProgr,
                        const Valore& DareProgressivo, const Valore& AvereProgressivo,
                        const Valore& SaldoContoSottocon, const Valore& clientID, long hWnd, bool& Cancel);
  // Deletes the row of the key and nothing else: no check of children, postings or balance.
  bool CancellaRecord(const Valore& CodiceGruppo, const Valore& CodiceConto, const Valore& CodiceSottoconto);
  bool CancellaRecordSaldi(const Valore& CodiceGruppo, const Valore& CodiceConto, const Valore& CodiceSottoconto);

  // Steps through the chart in the order of the seven-digit code in which an empty part counts
  // as zeros: a group comes right before its first account, an account right before its first
  // sub-account. From an empty group the forward step gives the last row of the chart and the
  // backward step the first. On success the arguments take the row's key; with nothing beyond,
  // false and the arguments as they were.
  bool RecordSuccessivo(Valore& CodiceGruppo, Valore& CodiceConto, Valore& CodiceSottoconto);
  bool RecordPrecedente(Valore& CodiceGruppo, Valore& CodiceConto, Valore& CodiceSottoconto);

  // True when the row exists (two names, one operation).
  bool ExistRecord(const Valore& Gruppo, const Valore& Conto, const Valore& Sottoconto);
  bool ExistSottoconto(const Valore& Gruppo, const Valore& Conto, const Valore& Sottoconto);
  // Descrizione of the row, "" when missing.
  std::string GetDescrizione(const Valore& Gruppo, const Valore& Conto, const Valore& Sottoconto);
  // True when the group has an account row / the account has a sub-account row.
  bool GruppoConConti(const Valore& CodiceGruppo);
  bool ContoConSottoconti(const Valore& CodiceGruppo, const Valore& CodiceConto);

  // Descrizione of a seven-character code. An empty code gives "" in silence; a shorter code, or
  // one missing from the chart, gives "" and, when Cancel is passed, the message (titled
  // "Inserire un sottoconto" for a short code) that sets it; a passed control is highlighted.
  std::string GetDescrizioneSottoconto(const Valore& sottoconto, bool* Cancel = nullptr,
                                       IControllo* ControlloDaSelezionare = nullptr);
  // The opening and current balance of a seven-character code, each as a non-negative amount
  // and its side: "D" debit, "A" credit, "" when zero. No balance row: zero and "".
  void GetDareAvereSaldoSottoconto(const Valore& sottoconto, Valore& DareAvereIniziale, Valore& SaldoIniziale,
                                   Valore& DareAvereAttuale, Valore& SaldoAttuale);
  // Zeroes the six balances of every balance row; SaldoContoSottocon stays.
  void AzzeraSaldi();
  // IndDiBilancio of the group row of the code's first two characters; 0 when there is none.
  Valore GetSezioneBilancio(const Valore& sottoconto);
  // Deletes the whole chart; balances stay.
  void AzzeraPianoConti();

  // The rows of one account (its own row included): Gruppo, Conto, Sottoconto, Descrizione in
  // key order. True when any.
  bool LocalizzaRamoConto(Recordset& T, const Valore& Gruppo, const Valore& Conto);
  // The rows of one group without sub-account (the group row and its accounts), and with them
  // every row of the chart whose Sottoconto is Null, whatever its group.
  bool LocalizzaRamoGruppo(Recordset& T, const Valore& Gruppo);
  // The group rows.
  bool LocalizzaTuttiGruppi(Recordset& T);
  // One row per key (Gruppo, Conto, Sottoconto) with the least of its descriptions.
  bool LocalizzaTutti(Recordset& T);

  // The next row, in key order, whose Descrizione contains Testo (SQL wildcards allowed). An empty
  // group searches the whole chart; passing the last hit back continues among the sub-accounts,
  // each part compared by itself (group from the given one, account from the given one,
  // sub-account after the given one). A hit takes the arguments; none leaves them.
  bool Ricerca(const Valore& Testo, Valore& Gruppo, Valore& Conto, Valore& sottoconto);
};

}  // namespace vorn
