// The chart of accounts with its balances over a period: each group, account and sub-account of a
// range of groups with the opening, the progressives of the last unload, the period's debit and
// credit and the present balance (a group and an account sum their sub-accounts). As the rows of
// [Elaborazione stampa contabile piano conti] of one client, or as a paginated text file. A period
// that starts inside the months of the last unload takes them as the progressives.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Host.h"
#include "frame/Valore.h"
#include "ledger/StampaSaldiArchivi.h"

namespace vorn {

class clsSaldiContabili;
class clsProgAzienda;
class clsAnagraficaAzienda;

struct ArgomentiStampaSaldi {
  IForm* frm_FormAttiva = nullptr;                 // msgbar: the code being computed
  std::string clientName;                          // the report table's rows
  clsSaldiContabili* objSaldiContabili = nullptr;  // none: the class's own
  clsProgAzienda* objProgAzienda = nullptr;        // the last unload; none: the class's own
  clsAnagraficaAzienda* objAnagraficaAzienda = nullptr;
  std::string AzRagSoc, AzParIva;  // the foot
  std::string nomeFile;            // the text form
  std::optional<Data> avar_DataStampa;  // the date in the head; today when none
  Valore avar_DaData, avar_AData;       // the period (competence dates); not a date: open there
  int avar_RighePagina = 72;
};

class clsStampaPianoConti {
 public:
  ConnessioneClasse cn;
  static const char* const kTitolo;  // "Stampa anagrafica piano dei conti."

  // The lines of the groups `avar_DaGruppo`..`avar_aGruppo` ("01" and "99" when empty), in code
  // order; with `abool_DiversiZero` the lines with all amounts zero are left out. The last line
  // is not part of the chart: it is the total of the sub-accounts, code empty.
  std::vector<RigaSaldiArchivio> CalcolaSaldi(const ArgomentiStampaSaldi& a, const Valore& avar_DaGruppo,
                                              const Valore& avar_aGruppo, bool abool_DiversiZero);
  // The report table's rows. False, with "Nessun dato da stampare." told, when the range has no
  // chart row.
  bool MakeStampaContabilePianoConti(const ArgomentiStampaSaldi& a, const Valore& avar_DaGruppo,
                                     const Valore& avar_aGruppo, bool abool_DiversiZero);
  // The paginated text into a.nomeFile; false as above.
  bool StampaContabilePianoConti(const ArgomentiStampaSaldi& a, const Valore& avar_DaGruppo,
                                 const Valore& avar_aGruppo, bool abool_DiversiZero);
};

}  // namespace vorn
