// The demo's year change, the last step: the year closed with its entries and the next opened at
// the closing balances, as vorn cambio-esercizio does; the step tells the entries, the result
// and whether the balances are still those of the journal.
#include <ostream>
#include <stdexcept>

#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsCambioEsercizio.h"
#include "ledger/clsPrimaNota.h"

namespace vorn::cli {

namespace {

void Passo(ContestoDemo& ctx) {
  const int anno = ctx.Anno();
  ArgomentiCambioEsercizio a;
  if (!ArgomentiCambioEsercizioAzienda(ctx.cn, *Data::Crea(anno, 1, 1), *Data::Crea(anno, 12, 31), a))
    throw std::runtime_error("mancano i riferimenti contabili dell'azienda");
  a.frm_FormAttiva = ctx.form;
  a.clientID = Valore("demo");
  clsCambioEsercizio cambio;
  cambio.cn = ctx.cn;
  clsPrimaNota pn;
  EsitoCambioEsercizio e;
  if (!cambio.CambioEsercizioVorn(a, pn, &e)) throw std::runtime_error("il cambio esercizio non è stato eseguito");
  ctx.FineProgresso();
  const bool allineati = VerificaSaldi(*ctx.cn).empty();
  auto numero = [](int32_t n) { return Format(Valore(n), "00000"); };
  ctx.out << "Cambio esercizio: chiuso il " << anno << " al 31/12/" << anno << " (registrazioni "
          << numero(e.registrazioneChiusuraEconomici) << "-" << numero(e.registrazioneApertura) << ", " << e.righe
          << " righe, " << (e.risultato < Importo() ? "perdita " + FormattaImporto(Valore(-e.risultato))
                                                    : "utile " + FormattaImporto(Valore(e.risultato)))
          << "), aperto il " << anno + 1 << " al 01/01/" << anno + 1 << "; "
          << (allineati ? "saldi allineati alla prima nota" : "SALDI NON ALLINEATI ALLA PRIMA NOTA") << "\n";
}

// The last step: the others read the year as it stands before its closing entries.
RegistraPassoDemo reg({90, "cambio esercizio", Passo});

}  // namespace

}  // namespace vorn::cli
