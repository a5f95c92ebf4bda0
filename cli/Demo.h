// The demo company of vorn demo: clients, suppliers and a year of journal entries, made up from a
// starting number (--seme) so that the same options always give the same books; then the steps
// that show what the books give, one capability a step, each registered from a file of its own
// (demo_*.cpp): the trial balance of the sub-accounts, a ledger card, the VAT registers, the VAT
// settlements.
#pragma once
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "ledger/clsBilancio.h"
#include "vat/clsLiquidazioneIva.h"

namespace vorn {
class FormConsole;
}

namespace vorn::cli {

struct OpzioniDemo {
  uint64_t seme = 1;
  int clienti = 40;
  int fornitori = 25;
  long registrazioni = 1200;  // entries besides the opening and the VAT settlements
  int anno = 2024;
  int lotto = 500;  // entries per transaction
};

struct EsitoDemo {
  long registrazioni = 0;  // all entries written, opening and settlements included
  long righe = 0;          // journal rows
  long documenti = 0;      // sales documents of [Fatture] posted by the invoice posting
  long registrazioniDocumenti = 0;  // the entries their posting gave, among `registrazioni`
};

// Fills a company loaded from the standard model: the company's identity, the clients and
// suppliers, then the year in date order: the opening; sales invoices and credit notes written
// into [Fatture] as the sales side leaves them once printed (lines, VAT table, instalments with
// the settled rows) and posted by the invoice posting (clsElaboraFatture::ElaboraFatture), a
// run of them at a time, before anything that reads what they leave: split payment, down
// payments, withholdings, rounding allowances and gifts among them; purchase invoices and credit
// notes with their VAT rows (an intra-community purchase integrated on the sales register too),
// receipts and payments of open invoices, giro entries, and each month's VAT settlement with its
// payment, in the figures of the settlement of the registers (a credit and a debt not above the
// minimum payment carried to the next month). Every row goes through clsPrimaNota::SalvaRecord,
// the demo's own entries a batch to a transaction, each posted document a transaction of its
// own; the form shows each entry. Throws on a database error or a document the posting refuses,
// the batch in progress undone.
EsitoDemo RiempiAziendaDemo(Connessione& cn, const OpzioniDemo& o, IForm* form = nullptr);

using RigaBilancioVerifica = vorn::RigaBilancioVerifica;

// The sub-accounts with a debit or a credit, by code, from the whole journal (clsBilancio).
std::vector<RigaBilancioVerifica> BilancioVerificaSottoconti(Connessione& cn);

// The trial balance as text: a heading, one line a sub-account, the totals.
std::string TestoBilancioVerifica(const std::vector<RigaBilancioVerifica>& righe);

// A month's VAT settlement as the demo ran it.
struct LiquidazioneDemo {
  int mese = 0;
  bool bollata = false;  // definitive, from the progressives of the definitive register prints
  EsitoLiquidazioneIva esito;
  std::string file;
};

// What the steps of the demo share: the filled company, its year, where they tell what they did,
// the files they wrote, in the order written, and the settlements run so far, by month.
struct ContestoDemo {
  std::shared_ptr<Connessione> cn;  // the company, open for writing
  std::string azienda;              // its file, as the user named it
  OpzioniDemo opzioni;
  EsitoDemo esito;
  std::ostream& out;
  FormConsole* form = nullptr;  // the progress line; none in the tests
  std::vector<std::string> fileScritti;
  std::vector<LiquidazioneDemo> liquidazioni;
  int Anno() const { return opzioni.anno; }
  // Ends the progress line before a step writes to `out`.
  void FineProgresso();
};

// One step: run after the steps of lower `ordine`; a step that throws ends the demo with its error.
struct PassoDemo {
  int ordine = 0;
  std::string nome;
  std::function<void(ContestoDemo&)> esegui;
};

// Registered from a step's own file by a static RegistraPassoDemo.
void AggiungiPassoDemo(PassoDemo p);
struct RegistraPassoDemo {
  explicit RegistraPassoDemo(PassoDemo p) { AggiungiPassoDemo(std::move(p)); }
};
// The steps in order (by `ordine`, then by name).
std::vector<PassoDemo> PassiDemo();
// Runs every step on the context, in order.
void EseguiPassiDemo(ContestoDemo& ctx);

// The month's definitive VAT settlement (LiquidazioneIvaBollata "B", its sheets numbered), added
// to ctx.liquidazioni. The registers step runs it as soon as it has printed the month's registers
// definitively: the settlement reads the period's progressives, which the next month's definitive
// prints would add to. Throws when the settlement is not completed.
void LiquidazioneIvaBollataDemo(ContestoDemo& ctx, int mese);

}  // namespace vorn::cli
