// The demo's account statements: one for each client, each final balance checked against the
// client's balance summed from the journal rows apart from the statement, and the entries on
// which the due-date book and the journal disagree counted.
#include <ostream>
#include <stdexcept>

#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "frame/Comuni.h"
#include "masterdata/clsValute.h"
#include "receivables/clsEstrattoContoContabile.h"

namespace vorn::cli {

namespace {

constexpr const char* kClientName = "vorn demo estratti conto";

void Passo(ContestoDemo& ctx) {
  Connessione& cn = *ctx.cn;
  clsEstrattoContoContabile e;
  e.cn = ctx.cn;
  clsValute valute;
  valute.cn = ctx.cn;
  std::vector<std::string> clienti;
  cn.Scorri("SELECT [Codice Cliente] FROM [Anagrafica Clienti] ORDER BY [Codice Cliente]", {},
            [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
              clienti.push_back(Trim(v[0].Testo()));
              return true;
            });
  long estratti = 0, differenze = 0;
  std::string discordi;
  for (const auto& codice : clienti) {
    Recordset te;
    if (!e.MakeEstrattoConto(ctx.form, kClientName, &valute, Valore("C"), Valore(codice), Valore(), Valore(), Valore(),
                             te))
      continue;
    ++estratti;
    differenze += e.Differenze();
    const Importo contabile = NullToZeroCy(
        cn.Scalare("SELECT SUM(CASE WHEN [DareAvere] = 'D' THEN [ImportoMovimento] ELSE -[ImportoMovimento] END) "
                   "FROM [Prima Nota] WHERE [IndClienteFornitore] = 'C' AND [CodClienteFornitore] = ?",
                   {Valore(codice)}));
    if (contabile != e.SaldoFinale())
      discordi += " " + codice + " (" + FormattaImporto(Valore(e.SaldoFinale())) + " invece di " +
                  FormattaImporto(Valore(contabile)) + ")";
  }
  cn.Esegui("DELETE FROM [Elaborazione Estratto Conto Vorn] WHERE [ClientName] = ?", {Valore(kClientName)});
  ctx.FineProgresso();
  if (!discordi.empty())
    throw std::runtime_error("Estratti conto con il saldo finale diverso dal saldo del conto in prima nota:" + discordi);
  ctx.out << "Estratti conto: " << estratti << " clienti, il saldo finale di ciascuno uguale al saldo del conto in "
          << "prima nota; " << differenze << " registrazioni con importi diversi fra scadenziario e prima nota "
          << "(vorn estratto-conto " << ctx.azienda << " --cliente C)\n";
}

RegistraPassoDemo reg({75, "estratti conto", Passo});

}  // namespace

}  // namespace vorn::cli
