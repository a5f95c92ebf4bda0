// The demo's fixed assets: a few assets bought during the year in different categories (a
// telephone under the threshold of the whole depreciation, a machine a quarter of which is sold
// in mid-year), the year's depreciation written and posted to the journal before the trial
// balance, the balance sheet and the year change read it, and the asset register of the year.
#include <ostream>
#include <stdexcept>

#include "assets/RiferimentiCespiti.h"
#include "assets/clsCespiti.h"
#include "assets/clsCespitiAmm.h"
#include "assets/clsCespitiContabilizza.h"
#include "assets/clsCespitiMovimenti.h"
#include "assets/clsCespitiRegistro.h"
#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "company/clsAnagraficaAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"
#include "frame/Globali.h"

namespace vorn::cli {

namespace {

struct AcquistoDemo {
  const char* codice;
  const char* descrizione;
  const char* categoria;
  int mese, giorno;
  double costo;
};

const AcquistoDemo kAcquisti[] = {
    {"PC01", "Personal computer ufficio", "15", 2, 15, 2400.00},
    {"AUTO01", "Autovettura aziendale", "16", 4, 10, 28000.00},
    {"TEL01", "Telefono cellulare", "18", 5, 5, 350.00},
    {"MAC01", "Macchina confezionatrice", "12", 2, 1, 12000.00},
};

void Passo(ContestoDemo& ctx) {
  const int anno = ctx.Anno();
  const RiferimentiCespiti rif = LeggiRiferimentiCespiti(ctx.cn);
  if (rif.causaleAcquisto.empty() || rif.causaleSvalutazione.empty())
    throw std::runtime_error("mancano nei riferimenti contabili le causali cespiti di acquisto e di svalutazione");
  const int decimali = G().DecimaliImporti;
  clsCespiti cespiti;
  cespiti.cn = ctx.cn;
  clsCespitiMovimenti movimenti;
  movimenti.cn = ctx.cn;
  // The assets and their purchases together, or none.
  ConRiprova(*ctx.cn, [&] {
    Atomico unita(*ctx.cn);
    for (const auto& a : kAcquisti) {
      bool cancel = false;
      if (!cespiti.SalvaDaCategoria(Valore(a.codice), Valore(a.descrizione), Valore(a.categoria), Valore(""), 0,
                                    cancel))
        throw std::runtime_error(std::string("la categoria cespiti ") + a.categoria + " non esiste");
      movimenti.RegistraMovimento(rif.causaleAcquisto, *Data::Crea(anno, a.mese, a.giorno), a.codice, a.costo,
                                  a.costo, a.costo, a.descrizione, decimali);
    }
    // A quarter of the machine sold on 30 June: its cost goes out.
    movimenti.RegistraMovimento(rif.causaleSvalutazione, *Data::Crea(anno, 6, 30), "MAC01", 3000, 3000, 3000,
                                "Vendita parziale", decimali);
    unita.Conferma();
  });

  clsCespitiAmm amm;
  amm.cn = ctx.cn;
  ArgomentiAmmortamento aa = ArgomentiAmmortamentoAzienda(rif, anno);
  aa.objFormAttiva = ctx.form;
  EsitoAmmortamento ea;
  amm.CalcolaAmmortamento(aa, ea);
  if (!ea.stringaErroriRiscontrati.empty())
    throw std::runtime_error("ammortamenti dell'anno non calcolati:\n" + ea.stringaErroriRiscontrati);

  clsCespitiContabilizza contabilizza;
  contabilizza.cn = ctx.cn;
  EsitoContabilizzazioneCespiti ec;
  contabilizza.ContabilizzaAmmortamenti(anno, rif.contabileAmmOrd, rif.contabileAmmAnt, ec, ctx.form);

  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = ctx.cn;
  ArgomentiRegistroCespiti ar;
  ar.objFormAttiva = ctx.form;
  ar.clientName = "demo";
  ar.AzRagSoc = Trim(anagrafica.GetRagioneSocialeAzienda());
  ar.AzParIva = Trim(anagrafica.GetPartitaIVAAzienda());
  ar.nomeFile = CartellaStampe() + "/RegistroCespitiDemo.txt";
  ar.anno = anno;
  clsCespitiRegistro registro;
  registro.cn = ctx.cn;
  if (!registro.StampaRegistroCespiti(ar)) throw std::runtime_error("il registro dei cespiti non è stato stampato");
  ctx.FineProgresso();
  ctx.fileScritti.push_back(ar.nomeFile);
  ctx.out << "Cespiti: " << std::size(kAcquisti) << " acquistati nel " << anno
          << " (uno ceduto in parte), ammortamento fiscale dell'anno "
          << FormattaImporto(Valore(registro.Esito().ammortamentoFisc)) << " registrato in prima nota ("
          << ec.registrazioni.size() << " registrazioni)\n";
  ctx.out << "Stampa: " << ar.nomeFile << "\n";
}

// Before the trial balance: the year's depreciation is in the books that the steps after it read.
RegistraPassoDemo reg({6, "cespiti", Passo});

}  // namespace

}  // namespace vorn::cli
