// The demo's December VAT advance for the next year, by the historical method: the share of the
// fixed amounts of December's VAT as the settlements step found it (in simulation: the demo
// settles definitively only its first quarter). A trial print: nothing is stored.
#include <ostream>
#include <stdexcept>

#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "cli/LiquidazioneIva.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"

namespace vorn::cli {

namespace {

void Passo(ContestoDemo& ctx) {
  const LiquidazioneDemo* dicembre = nullptr;
  for (const auto& l : ctx.liquidazioni)
    if (l.mese == 12) dicembre = &l;
  if (!dicembre) return;
  // December's VAT before its own advance (the demo pays none in its year).
  const EsitoLiquidazioneIva& e = dicembre->esito;
  clsLiquidazioneIva liq;
  liq.cn = ctx.cn;
  const int anno = ctx.Anno() + 1;
  const AccontoIvaStorico calcolo = liq.CalcolaAccontoIvaStorico(e.saldo - e.maggiorazione);
  const ArgomentiLiquidazioneIva azienda = ArgomentiLiquidazioneIvaAzienda(ctx.cn);
  ArgomentiAccontoIva a;
  a.formAttiva = ctx.form;
  a.AzRagSoc = azienda.AzRagSoc;
  a.AzParIva = azienda.AzParIva;
  a.nomeFile = CartellaStampe() + "/AccontoIva_" + std::to_string(anno) + ".txt";
  a.avar_ImportoIvaPresunto = calcolo.base;
  a.avar_PercentualeAcconto = calcolo.percentuale;
  a.avar_TotaleAcconto = calcolo.totale;
  a.avar_Anno = anno;
  a.avar_ProvaBollato = "P";
  if (!liq.AccontoIva(a)) throw std::runtime_error("La stampa dell'acconto IVA non è stata completata.");
  ctx.fileScritti.push_back(a.nomeFile);
  ctx.FineProgresso();
  ctx.out << RigaEsitoAccontoIva(anno, calcolo) << ", metodo storico dalla liquidazione di dicembre "
          << ctx.Anno() << "; stampa di prova: " << a.nomeFile << " (vorn acconto-iva " << ctx.azienda
          << " --anno " << anno << ")\n";
}

RegistraPassoDemo reg({45, "acconto IVA", Passo});

}  // namespace

}  // namespace vorn::cli
