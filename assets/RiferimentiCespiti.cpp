#include "assets/RiferimentiCespiti.h"

#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "frame/Globali.h"

namespace vorn {

RiferimentiCespiti LeggiRiferimentiCespiti(const std::shared_ptr<Connessione>& cn) {
  clsTabRiferimenti t;
  t.cn = cn;
  Valore ammOrd, ammAnt, acquisto, rivalutazione, svalutazione, dismissione, manutenzione, oneri, conOrd, conAnt,
      varOrd, varAnt, plusval;
  t.GetRiferimentiAmmortamenti(ammOrd, ammAnt, acquisto, rivalutazione, svalutazione, dismissione, manutenzione, oneri,
                               conOrd, conAnt, varOrd, varAnt, plusval);
  RiferimentiCespiti r;
  r.causaleAcquisto = Trim(acquisto.Testo());
  r.causaleVendita = Trim(dismissione.Testo());
  r.causaleSvalutazione = Trim(svalutazione.Testo());
  r.causaleVarFondoOrd = Trim(varOrd.Testo());
  r.causaleAmmOrd = Trim(ammOrd.Testo());
  r.causaleAmmAnt = Trim(ammAnt.Testo());
  r.contabileAmmOrd = Trim(conOrd.Testo());
  r.contabileAmmAnt = Trim(conAnt.Testo());
  for (auto [v, nome] : {std::pair<const std::string*, const char*>{&r.causaleAmmOrd, "CausAmAmmOrd"},
                         {&r.causaleAmmAnt, "CausAmAmmAnt"},
                         {&r.contabileAmmOrd, "CausConAmmOrd"},
                         {&r.contabileAmmAnt, "CausConAmmAnt"}})
    if (v->empty())
      throw ErroreDb(3265, std::string("Manca nei riferimenti contabili la causale degli ammortamenti (") + nome + ").");
  return r;
}

ArgomentiAmmortamento ArgomentiAmmortamentoAzienda(const RiferimentiCespiti& r, int anno) {
  ArgomentiAmmortamento a;
  a.anno = anno;
  a.indMetodoAmmortamento = 1;
  a.indModalitaAnno1Civ = 0;
  a.causaleAmmOrd = r.causaleAmmOrd;
  a.causaleAmmAnt = r.causaleAmmAnt;
  a.riferimentiTestata = "Ammortamenti dell'anno " + std::to_string(anno);
  a.generaAmmortamentiInfrannuali = true;
  a.DecimaliValuta = G().DecimaliImporti;
  return a;
}

}  // namespace vorn
