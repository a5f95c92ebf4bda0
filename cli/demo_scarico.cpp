// The demo's unload of the journal, after the year change: January to March of the closed year,
// printed definitively on the journal book and the VAT registers, leave the journal for the
// progressives and the history. The step tells whether the trial balance at a few dates and a few
// ledger cards read the same before and after.
#include <fstream>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsBilancio.h"
#include "ledger/clsCompPrimaNota.h"
#include "ledger/clsStampaMastrini.h"

namespace vorn::cli {

namespace {

// What must not change: the trial balance with no start at each date, and the text of a few
// cards that start after the unload.
std::string Fotografia(ContestoDemo& ctx, const std::vector<Data>& date, const std::vector<VoceMastrino>& schede,
                       const Data& dalScheda) {
  std::ostringstream s;
  clsBilancio bilancio;
  bilancio.cn = ctx.cn;
  for (const Data& d : date)
    s << d.Testo() << "\n" << clsBilancio::TestoBilancioVerifica(bilancio.BilancioVerificaSottoconti(Valore(""), Valore(d)));
  clsStampaMastrini mastrini;
  mastrini.cn = ctx.cn;
  ArgomentiStampaMastrini am;
  am.avar_StampaSaldo = true;
  am.avar_StampaPerArchivio = true;
  for (const auto& v : schede) {
    if (!mastrini.Stampa_Completa_Mastrino(Valore(dalScheda), Valore(""), Valore(v.Sottoconto), Valore(v.IndCliFor),
                                           Valore(v.CodCliFor), am))
      continue;
    std::ifstream in(clsStampaMastrini::FileScheda(), std::ios::binary);
    s << in.rdbuf();
  }
  CancellaFile(clsStampaMastrini::FileScheda());
  CancellaFile(clsStampaMastrini::FileAccumulo());
  return s.str();
}

void Passo(ContestoDemo& ctx) {
  const int anno = ctx.Anno();
  const std::vector<Data> date = {*Data::Crea(anno, 3, 31), *Data::Crea(anno, 6, 30), *Data::Crea(anno, 12, 31),
                                  *Data::Crea(anno + 1, 1, 1)};
  // The clients' and suppliers' control accounts, and the first client on its own.
  std::vector<VoceMastrino> schede = {{"0501001", "", ""}, {"1301001", "", ""}};
  Valore conto = ctx.cn->Scalare("SELECT [SottocontoApparten] FROM [Anagrafica Clienti] WHERE [Codice Cliente] = '1'");
  if (!TrimTesto(conto).empty()) schede.push_back({TrimTesto(conto), "C", "1"});
  const Data dalScheda = *Data::Crea(anno, 4, 1);

  const std::string prima = Fotografia(ctx, date, schede, dalScheda);
  clsCompPrimaNota comp;
  comp.cn = ctx.cn;
  ArgomentiCompattamento a;
  a.frm_FormAttiva = ctx.form;
  a.avar_Mese = 3;
  a.avar_Anno = anno;
  a.abool_GestioneStorico = true;
  a.clientID = Valore("demo");
  EsitoCompattamento e;
  if (!comp.CompattamentoPrimaNota(a, &e)) throw std::runtime_error("lo scarico della prima nota non è stato eseguito");
  const std::string dopo = Fotografia(ctx, date, schede, dalScheda);
  const bool allineati = VerificaSaldi(*ctx.cn).empty();
  ctx.FineProgresso();
  ctx.out << "Scarico prima nota: gennaio-marzo " << anno << " (" << e.registrazioni << " registrazioni, " << e.righe
          << " righe, " << e.righeStorico << " nello storico";
  if (e.registrazioniRimaste) ctx.out << ", " << e.registrazioniRimaste << " rimaste in prima nota";
  ctx.out << "); bilancio di verifica al 31/03, 30/06, 31/12/" << anno << " e 01/01/" << anno + 1 << " e "
          << schede.size() << " schede dal 01/04/" << anno << " "
          << (prima == dopo ? "identici prima e dopo" : "DIVERSI PRIMA E DOPO") << "; "
          << (allineati ? "saldi allineati alla prima nota" : "SALDI NON ALLINEATI ALLA PRIMA NOTA") << "\n";
  if (prima != dopo) throw std::runtime_error("lo scarico della prima nota ha cambiato i saldi");
}

// After the year change: the months unloaded belong to the closed year.
RegistraPassoDemo reg({95, "scarico prima nota", Passo});

}  // namespace

}  // namespace vorn::cli
