// vorn scarica: the unload of closed months of the journal into the progressives, with the copy
// into the history when asked. vorn storico: a card from the history.
#include <ostream>

#include "cli/Comandi.h"
#include "frame/Comuni.h"
#include "ledger/clsCompPrimaNota.h"
#include "ledger/clsVisualizzaStorico.h"

namespace vorn::cli {

namespace {

const char* const kUsoScarica =
    "Uso: vorn scarica FILE --al GG/MM/AAAA [--storico] [--forza]\n\n"
    "Scarica dalla prima nota le registrazioni fino all'ultimo giorno di un mese: quanto movimentano\n"
    "passa nei saldi progressivi dei sottoconti e dei clienti e fornitori, e le righe escono dalla\n"
    "prima nota. I saldi a una data dalla fine dello scarico in poi e le schede che iniziano dopo di\n"
    "essa restano gli stessi. Resta in prima nota una registrazione con una riga di competenza\n"
    "successiva (o senza data) o con un cliente o fornitore su un sottoconto diverso dal suo.\n"
    "Tutto o niente; un periodo già scaricato non viene scaricato una seconda volta (uscita 1).\n"
    "Opzioni:\n"
    "  --al GG/MM/AAAA    l'ultimo giorno del mese fino al quale scaricare\n"
    "  --storico          copia le righe scaricate nello storico contabile\n"
    "  --forza            scarica anche movimenti non stampati su libro giornale o registri IVA\n";

int EseguiScarica(Contesto& ctx) {
  Argomenti& a = ctx.args;
  auto al = a.Opzione("--al");
  bool storico = a.Flag("--storico");
  bool forza = a.Flag("--forza");
  AziendaCli az = LeggiAzienda(a);
  a.Fine();
  if (!al) throw ErroreUso("manca --al");
  auto data = Valore(*al).ComeData();
  if (!Valore(*al).IsDate() || !data) throw ErroreUso("data non valida per --al: " + *al);
  if (data->AggiungiGiorni(1).Giorno() != 1) throw ErroreUso("--al vuole l'ultimo giorno di un mese: " + *al);

  auto db = ApriAzienda(az, Accesso::Scrittura);
  clsCompPrimaNota comp;
  comp.cn = db->cn;
  ArgomentiCompattamento arg;
  arg.frm_FormAttiva = &ctx.form;
  arg.avar_Mese = data->Mese();
  arg.avar_Anno = data->Anno();
  arg.abool_GestioneStorico = storico;
  arg.abool_ForzaCompattamento = forza;
  arg.clientID = Valore("vorn");
  EsitoCompattamento e;
  bool ok = comp.CompattamentoPrimaNota(arg, &e);
  ctx.form.Fine();
  if (!ok) throw ErroreComando("lo scarico della prima nota non è stato eseguito");
  ctx.out << "Scarico prima nota dal " << e.dal.Testo() << " al " << e.al.Testo() << ": " << e.registrazioni
          << " registrazioni, " << e.righe << " righe";
  if (storico) ctx.out << ", " << e.righeStorico << " righe nello storico (fino al n. " << e.ultimoStorico << ")";
  ctx.out << "\n";
  if (e.registrazioniRimaste > 0)
    ctx.out << "Restano in prima nota " << e.registrazioniRimaste << " registrazioni del periodo\n";
  return 0;
}

const char* const kUsoStorico =
    "Uso: vorn storico FILE --conto SOTTOCONTO [--cliente C|F CODICE] [--dal GG/MM/AAAA] [--al GG/MM/AAAA]\n\n"
    "Scrive sul terminale i movimenti scaricati nello storico contabile per il sottoconto (o per il\n"
    "cliente o fornitore sul sottoconto), per data di competenza, con il saldo progressivo e i totali.\n";

// The history card's rows gathered for the terminal.
class FormStorico : public IFormMastrino {
 public:
  explicit FormStorico(FormConsole& f) : f_(f) {}
  class Griglia : public IGrigliaMastrino {
   public:
    std::vector<std::vector<std::string>> righe;
    void Clear() override { righe.clear(); }
    void Cols(int, const std::vector<std::string>&) override {}
    int Rows() const override { return static_cast<int>(righe.size()); }
    void AddItem(const std::string& riga, int) override {
      std::vector<std::string> celle;
      size_t i = 0;
      for (size_t j; (j = riga.find('|', i)) != std::string::npos; i = j + 1) celle.push_back(riga.substr(i, j - i));
      celle.push_back(riga.substr(i));
      righe.push_back(std::move(celle));
    }
    void Cell(Proprieta, int, int, int, int, long) override {}
    void Refresh() override {}
  } griglia;
  IGrigliaMastrino& vsMovimenti() override { return griglia; }
  void msgbar(const std::string& t) override { f_.msgbar(t); }

 private:
  FormConsole& f_;
};

int EseguiStorico(Contesto& ctx) {
  Argomenti& a = ctx.args;
  auto conto = a.Opzione("--conto");
  auto cliente = a.Opzione("--cliente");
  auto dal = a.Opzione("--dal");
  auto al = a.Opzione("--al");
  AziendaCli az = LeggiAzienda(a);
  std::string ind, cod;
  if (cliente) {
    std::string s = Trim(*cliente);
    ind = UCase(s.substr(0, 1));
    if (ind != "C" && ind != "F") throw ErroreUso("--cliente vuole l'indicatore C o F: " + s);
    cod = Trim(s.substr(1));
    if (cod.empty()) cod = Trim(a.Posizionale("il codice del cliente o fornitore dopo --cliente " + ind));
  }
  a.Fine();
  if (!conto || Trim(*conto).empty()) throw ErroreUso("manca --conto");
  for (const auto* d : {&dal, &al})
    if (*d && !Valore(**d).IsDate()) throw ErroreUso("data non valida: " + **d);

  auto db = ApriAzienda(az, Accesso::Lettura);
  clsVisualizzaStorico storico;
  storico.cn = db->cn;
  FormStorico form(ctx.form);
  storico.VisualizzaMastriniStorico(form, Valore(dal.value_or("")), Valore(al.value_or("")), Valore(Trim(*conto)),
                                    Valore(ind), Valore(cod));
  ctx.form.Fine();
  std::vector<std::pair<std::string, Allinea>> testata;
  for (size_t i = 0; i < clsVisualizzaStorico::Intestazioni().size(); ++i) {
    const bool destra = i == clsVisualizzaStorico::colDare || i == clsVisualizzaStorico::colAvere ||
                        i == clsVisualizzaStorico::colSaldo;
    testata.push_back({clsVisualizzaStorico::Intestazioni()[i], destra ? Allinea::Destra : Allinea::Sinistra});
  }
  ScriviTabella(ctx.out, testata, form.griglia.righe, "Nessun movimento nello storico.");
  if (storico.Righe() > 0)
    ctx.out << "Totale dare " << FormattaImporto(Valore(storico.TotaleDare())) << ", avere "
            << FormattaImporto(Valore(storico.TotaleAvere())) << "\n";
  return 0;
}

RegistraComando regScarica(Comando{"scarica", "scarica dalla prima nota i mesi chiusi nei saldi progressivi",
                                   std::string(kUsoScarica) + "\n" + kUsoAzienda, EseguiScarica});
RegistraComando regStorico(Comando{"storico", "la scheda di un sottoconto dallo storico contabile",
                                   std::string(kUsoStorico) + "\n" + kUsoAzienda, EseguiStorico});

}  // namespace

}  // namespace vorn::cli
