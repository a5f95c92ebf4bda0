// The posting of the depreciation to the journal: the depreciation movements of a year, summed
// by category, kind, accounts, currency and date, become one journal entry per date and kind
// (cost in debit, accumulated fund in credit), every row through clsPrimaNota::SalvaRecord so
// that the balances move with it.
//
// ContabilizzaAmmortamenti posts a whole year all-or-nothing: every entry, the journal's
// counters and the mark on the movements (`NumeroRegistrazione` of each head, the entry it
// went to) commit together, or nothing does. A movement already marked is not gathered again:
// a second posting of the same year posts nothing and says that the year is posted.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

class clsPrimaNota;
class clsCausaliContabili;
class clsElaboraFatture;

// A row of the depreciation to post, in the columns the client shows.
struct RigaAmmDaContab {
  int IndNatura = 0;             // 0
  std::string DesNatura;         // 1: "Materiale" or "Immateriale"
  std::string CodiceCategoria;   // 2
  std::string DescrizioneCategoria;  // 3
  int TipoMovimentazione = 0;    // 4: 11 or 12
  std::string DesTipoAmm;        // 5: "Ammort. Ordin." or "Ammort. Anticip."
  std::string CDare, cAvere;     // 6, 7: the cost and the fund sub-accounts
  Importo importo;               // 8: the fiscal amounts summed
  std::string DesCDare, DesCAvere;  // 9, 10
  std::string CodiceValuta;      // 11
  double Cambio = 1;             // 12: the average rate, null counting as 1
  Data DataReg;                  // 13: the date of competence
};

struct EsitoContabilizzazioneCespiti {
  std::vector<int32_t> registrazioni;  // the entries written, in order
  int32_t righe = 0;                   // the rows of the grid posted
  bool giaContabilizzato = false;      // nothing to post: the year's depreciation is posted already
};

class clsCespitiContabilizza {
 public:
  ConnessioneClasse cn;

  // The depreciation of the year not posted yet, by nature and category; true if any.
  bool LocalizzaAmmDaContab(std::vector<RigaAmmDaContab>& T, int anno);
  // The distinct dates of the same movements, in order.
  bool LocalizzaAmmDaContabRiepilogoDate(std::vector<Data>& T, int anno);

  // One entry from the grid's rows of the date and kind with an amount: two journal rows each
  // through clsElaboraFatture::ScriviRecordPrimaNota, then the journal's counters. The number
  // comes back in numeroRegistrazioneCreata; the result is the count of grid rows posted. A row
  // whose sub-account is missing or not in the chart throws ErroreDb. Opens no transaction.
  int32_t GeneraScritturaPrimaNota(IForm* objFormAttiva, clsPrimaNota& objPrimaNota,
                                   clsCausaliContabili& objCausaliContabili, clsElaboraFatture& objElaboraFatture,
                                   const std::vector<RigaAmmDaContab>& vsMovimenti, int tipoMovimentiDiAmmDaContab,
                                   const Data& DataRegistrazione, const std::string& codiceCausaleAmmOrd,
                                   const std::string& codiceCausaleAmmAnt, int32_t& numeroRegistrazioneCreata,
                                   const Valore& clientID, long hWnd);

  // The whole year, all-or-nothing (see above). False when nothing was posted.
  bool ContabilizzaAmmortamenti(int anno, const std::string& codiceCausaleAmmOrd,
                                const std::string& codiceCausaleAmmAnt, EsitoContabilizzazioneCespiti& esito,
                                IForm* objFormAttiva = nullptr, const Valore& clientID = Valore(""), long hWnd = 0);
};

}  // namespace vorn
