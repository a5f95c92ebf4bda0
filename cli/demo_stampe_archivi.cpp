// The demo's prints of the archives: the journal entries of January with the check of each
// entry's balance, the chart of accounts and the clients with their balances over the year.
#include <ostream>
#include <stdexcept>

#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "company/clsAnagraficaAzienda.h"
#include "frame/FileVorn.h"
#include "ledger/clsStampaClientiForn.h"
#include "ledger/clsStampaPianoConti.h"
#include "ledger/clsStampaPrimaNota.h"

namespace vorn::cli {

namespace {

void Passo(ContestoDemo& ctx) {
  const int anno = ctx.Anno();
  const std::string a = std::to_string(anno);
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = ctx.cn;
  const std::string ragione = anagrafica.GetRagioneSocialeAzienda(), piva = anagrafica.GetPartitaIVAAzienda();
  const Data fine = *Data::Crea(anno, 12, 31);

  ArgomentiStampaPrimaNota pn;
  pn.frm_FormAttiva = ctx.form;
  pn.objAnagraficaAzienda = &anagrafica;
  pn.AzRagSoc = ragione;
  pn.AzParIva = piva;
  pn.nomeFile = CartellaStampe() + "/PrimaNotaGennaioDemo.txt";
  pn.DataStampa = *Data::Crea(anno, 1, 31);
  pn.selezione.avar_DaData = Valore("01/01/" + a);
  pn.selezione.avar_AData = Valore("31/01/" + a);
  clsStampaPrimaNota primaNota;
  primaNota.cn = ctx.cn;
  if (!primaNota.StampaPrimaNotaTesto(pn)) throw std::runtime_error("la stampa della prima nota di gennaio è vuota");
  ctx.fileScritti.push_back(pn.nomeFile);

  ArgomentiStampaSaldi s;
  s.frm_FormAttiva = ctx.form;
  s.objAnagraficaAzienda = &anagrafica;
  s.AzRagSoc = ragione;
  s.AzParIva = piva;
  s.avar_DataStampa = fine;
  s.avar_DaData = Valore("01/01/" + a);
  s.avar_AData = Valore(fine);
  s.nomeFile = CartellaStampe() + "/PianoContiDemo.txt";
  clsStampaPianoConti piano;
  piano.cn = ctx.cn;
  if (piano.StampaContabilePianoConti(s, Valore(""), Valore(""), true)) ctx.fileScritti.push_back(s.nomeFile);
  const std::string filePiano = s.nomeFile;
  s.nomeFile = CartellaStampe() + "/ClientiDemo.txt";
  clsStampaClientiForn clienti;
  clienti.cn = ctx.cn;
  if (clienti.StampaContabileClientiFornitori(s, Valore("C"), Valore(""), Valore(""), false))
    ctx.fileScritti.push_back(s.nomeFile);

  ctx.FineProgresso();
  const auto& e = primaNota.Esito();
  ctx.out << "Stampe archivi: prima nota di gennaio " << pn.nomeFile << " (" << e.registrazioni << " registrazioni, "
          << (e.nonQuadrate ? std::to_string(e.nonQuadrate) + " NON QUADRATE" : std::string("tutte quadrate"))
          << "), piano dei conti " << filePiano << ", clienti " << s.nomeFile << "\n";
}

// After the ledger card, before the journal book marks its rows.
RegistraPassoDemo reg({22, "stampe archivi", Passo});

}  // namespace

}  // namespace vorn::cli
