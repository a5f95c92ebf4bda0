// Rebuilding the balances from the journal, and the repair of double rows in the chart.
//
// A full rebuild runs, in this order: VerificaContiDoppiPianoConti, AzzeraSaldiPianoConti,
// AzzeraSaldiClientiFornitori, RicostruisciSaldiContabili.
#pragma once
#include <memory>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Valore.h"

namespace vorn {

class clsPrimaNota;

class clsRicosContabile {
 public:
  ConnessioneClasse cn;

  // All six balance columns of every sub-account to 0.
  Valore AzzeraSaldiPianoConti();
  // The same on every client and every supplier.
  Valore AzzeraSaldiClientiFornitori();
  // Replays the whole journal through objPrimaNota's movement, telling each row on the form's
  // progress bar (frm may be null). The journal is streamed: memory grows with the number of
  // balance rows, not of journal rows. False, after a message, when the journal is empty.
  bool RicostruisciSaldiContabili(IForm* frm_FormAttiva, clsPrimaNota& objPrimaNota);
  // Finds the chart's codes held by more than one row (they differ only by blanks) and keeps
  // one row of each.
  bool VerificaContiDoppiPianoConti();
  // Keeps the first row of the code and deletes the others, telling each.
  bool EliminaContiDoppiPianoConti(const std::string& CodiceGruppo, const std::string& CodiceConto,
                                   const std::string& CodiceSottoconto);
};

}  // namespace vorn
