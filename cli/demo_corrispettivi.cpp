// The demo's till receipts: the counter sales of 30 December, exempt (art. 10), written as the
// stock side leaves them, and posted as the day's receipts (ElaboraScontrini): cash against
// revenue, a VAT row of the receipts' register. Exempt, so that the year's VAT settlements the
// demo posted stay what the registers give.
#include <ostream>

#include "cli/Demo.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "receivables/clsElaboraFatture.h"

namespace vorn::cli {

namespace {

constexpr const char* kCausale = "CORR";  // the stock causal of the counter sales

void Passo(ContestoDemo& ctx) {
  Connessione& cn = *ctx.cn;
  const Data giorno = *Data::Crea(ctx.Anno(), 12, 30);
  // Three sales at the counter, their amounts with the (nil) VAT inside; the stock side keeps
  // the VAT code with one leading character more.
  {
    Atomico t(cn);
    for (const char* importo : {"48.00", "125.50", "19.90"})
      cn.Esegui("INSERT INTO [Movimenti Magazzino] ([Data Registrazione], [Causale Magazzino], [Codice Iva], "
                "[Importo], [Scorporo iva], [Flag Elaborato Scontrini], [Tipo documento], [Codice valuta], [Cambio]) "
                "VALUES (?, ?, '0E10', ?, ?, ?, 'S', '06', 1)",
                {Valore(giorno), Valore(kCausale), Valore(*Importo::DaTestoPunto(importo)), Valore(true),
                 Valore(false)});
    t.Conferma();
  }
  clsTabRiferimenti rif;
  rif.cn = ctx.cn;
  ArgomentiElaboraScontrini a;
  if (!RiferimentiElaboraScontrini(rif, a))
    throw std::runtime_error("L'azienda non ha i riferimenti contabili dei corrispettivi.");
  a.avar_DaData = Valore(giorno);
  a.avar_AData = Valore(giorno);
  a.causale_magazzino_corrispettivi = Valore(kCausale);
  a.clientID = Valore("demo");
  clsElaboraFatture ef;
  ef.cn = ctx.cn;
  HostSilenzioso silenzio(Host().CartellaApplicazione());
  IHost& prima = Host();
  ImpostaHost(&silenzio);
  EsitoElaborazione e;
  try {
    e = ef.ElaboraScontrini(a);
  } catch (...) {
    ImpostaHost(&prima);
    throw;
  }
  ImpostaHost(&prima);
  if (!e.Errori.empty() || e.Registrazioni != 1)
    throw std::runtime_error("Corrispettivi della demo non contabilizzati" +
                             (e.Errori.empty() ? std::string() : ": " + e.Errori.front()));
  const Importo totale = NullToZeroCy(cn.Scalare(
      "SELECT SUM([ImportoMovimento]) FROM [Prima Nota] WHERE [DataRegistrazione] = ? AND [CodiceCausale] = ? AND "
      "[DareAvere] = 'D'",
      {Valore(giorno), a.CodiceCausale_CorrispettiviScorporo}));
  ctx.FineProgresso();
  ctx.out << "Corrispettivi del " << giorno.Testo() << ": 3 scontrini esenti per " << FormattaImporto(Valore(totale))
          << " in una registrazione sul registro dei corrispettivi (vorn contabilizza-scontrini " << ctx.azienda
          << " --dal " << giorno.Testo() << " --al " << giorno.Testo() << " --causale " << kCausale << ")\n";
}

RegistraPassoDemo reg({4, "corrispettivi", Passo});

}  // namespace

}  // namespace vorn::cli
