// The demo's ledger card: the Italian clients' control account over the year, with the
// descriptions of the rows and the running balance.
#include <ostream>

#include "cli/Demo.h"
#include "company/clsAnagraficaAzienda.h"
#include "frame/FileVorn.h"
#include "ledger/clsStampaMastrini.h"

namespace vorn::cli {

namespace {

void Passo(ContestoDemo& ctx) {
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = ctx.cn;
  const std::string anno = std::to_string(ctx.Anno());
  ArgomentiStampaMastrini am;
  am.RagioneSocialeAzienda = anagrafica.GetRagioneSocialeAzienda();
  am.nomeFile = CartellaStampe() + "/MastrinoClientiDemo.txt";
  am.avar_DaData = Valore("01/01/" + anno);
  am.avar_AData = Valore("31/12/" + anno);
  am.avar_StampaDescrizionePN = true;
  am.avar_StampaSaldo = true;
  am.DataStampa = Data::Crea(ctx.Anno(), 12, 31);
  clsStampaMastrini mastrini;
  mastrini.cn = ctx.cn;
  if (mastrini.StampaSottoconti(am, Valore("0501001"), Valore("0501001")) == 0) return;
  ctx.fileScritti.push_back(am.nomeFile);
  ctx.out << "Mastrino: " << am.nomeFile << "\n";
}

RegistraPassoDemo reg({20, "mastrino dei clienti", Passo});

}  // namespace

}  // namespace vorn::cli
