// The demo's balance sheet of the year: the patrimonial statement, the profit and loss statement
// and the summary accounts from the journal, as vorn bilancio prints them, with the totals and
// the result on the terminal.
#include <ostream>

#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "company/clsAnagraficaAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "ledger/clsBilancio.h"

namespace vorn::cli {

namespace {

void Passo(ContestoDemo& ctx) {
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = ctx.cn;
  ArgomentiBilancio a;
  a.frm_FormAttiva = ctx.form;
  a.AzRagSoc = Trim(anagrafica.GetRagioneSocialeAzienda());
  a.nomeFile = CartellaStampe() + "/BilancioDemo.txt";
  a.avar_DaData = Valore(*Data::Crea(ctx.Anno(), 1, 1));
  a.avar_AData = Valore(*Data::Crea(ctx.Anno(), 12, 31));
  clsBilancio b;
  b.cn = ctx.cn;
  if (!b.Bilancio(a)) throw std::runtime_error("il bilancio dell'anno non è stato elaborato");
  ctx.FineProgresso();
  ctx.fileScritti.push_back(a.nomeFile);
  const SezioneBilancio &p = b.Patrimoniale(), &e = b.Economico();
  Importo utile = e.totaleDx - e.totaleSx;
  ctx.out << "Bilancio contabile dal 01/01/" << ctx.Anno() << " al 31/12/" << ctx.Anno() << ": attività "
          << FormattaImporto(Valore(p.totaleSx)) << ", passività " << FormattaImporto(Valore(p.totaleDx)) << ", costi "
          << FormattaImporto(Valore(e.totaleSx)) << ", ricavi " << FormattaImporto(Valore(e.totaleDx)) << ", "
          << (utile < Importo() ? "perdita " + FormattaImporto(Valore(-utile)) : "utile " + FormattaImporto(Valore(utile)))
          << (b.MancaQuadratura() ? " (MANCA QUADRATURA DI BILANCIO)" : "") << "\n";
  ctx.out << "Bilancio: " << a.nomeFile << "\n";
}

RegistraPassoDemo reg({60, "bilancio", Passo});

}  // namespace

}  // namespace vorn::cli
