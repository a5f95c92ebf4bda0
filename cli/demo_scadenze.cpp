// The demo's due dates: the instalments of every sales document of the year, worked out from
// the client's payment terms when the document was written, with a settled row for each amount
// it settled at once, and paid by the invoice posting for those amounts. The step writes nothing
// more: it tells what the book holds.
#include <ostream>

#include "cli/Demo.h"
#include "frame/Comuni.h"

namespace vorn::cli {

namespace {

void Passo(ContestoDemo& ctx) {
  Connessione& cn = *ctx.cn;
  const Parametri cl = {Valore("CL")};
  const long rate = NullToZeroLng(cn.Scalare("SELECT COUNT(*) FROM [Scadenziario] WHERE [tipo] = ?", cl));
  const long saldate = NullToZeroLng(cn.Scalare(
      "SELECT COUNT(*) FROM [Scadenziario] WHERE [tipo] = ? AND [Note] LIKE 'Rilevaz.%'", cl));
  const long documenti = NullToZeroLng(
      cn.Scalare("SELECT COUNT(DISTINCT [Progressivo Documento]) FROM [Scadenziario] WHERE [tipo] = ?", cl));
  const Importo totale = NullToZeroCy(cn.Scalare("SELECT SUM([Importo Scadenza]) FROM [Scadenziario] WHERE [tipo] = ?", cl));
  ctx.FineProgresso();
  ctx.out << "Scadenziario: " << rate << " rate di " << documenti << " documenti di vendita (" << saldate
          << " saldate dai documenti stessi), per " << FormattaImporto(Valore(totale)) << " (vorn scadenziario "
          << ctx.azienda << " --aperte)\n";
}

RegistraPassoDemo reg({50, "scadenziario", Passo});

}  // namespace

}  // namespace vorn::cli
