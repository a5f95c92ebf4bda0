// The clients or the suppliers with their balances over a period, on their control sub-account:
// the opening, the progressives of the last unload, the period's debit and credit and the present
// balance. As the rows of [Elaborazione stampa contabile clifor] of one client, or as a paginated
// text file.
#pragma once
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Valore.h"
#include "ledger/clsStampaPianoConti.h"

namespace vorn {

class clsStampaClientiForn {
 public:
  ConnessioneClasse cn;
  static const char* const kTitolo;  // "Stampa contabile clienti/fornitori"

  // The clients ("C") or suppliers ("F") with codes from `avar_DaCodice` to `avar_ACodice` (open
  // when empty), by code; with `abool_DiversiZero` the lines with all amounts zero are left
  // out. The last line is the total, code empty.
  std::vector<RigaSaldiArchivio> CalcolaSaldi(const ArgomentiStampaSaldi& a, const Valore& avar_IndCliFor,
                                              const Valore& avar_DaCodice, const Valore& avar_ACodice,
                                              bool abool_DiversiZero);
  // The report table's rows. False, with "Nessun dato da stampare." told, when none is selected.
  bool MakeStampaContabileClientiFornitori(const ArgomentiStampaSaldi& a, const Valore& avar_IndCliFor,
                                           const Valore& avar_DaCodice, const Valore& avar_ACodice,
                                           bool abool_DiversiZero);
  // The paginated text into a.nomeFile; false as above.
  bool StampaContabileClientiFornitori(const ArgomentiStampaSaldi& a, const Valore& avar_IndCliFor,
                                       const Valore& avar_DaCodice, const Valore& avar_ACodice,
                                       bool abool_DiversiZero);
};

}  // namespace vorn
