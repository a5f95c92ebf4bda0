// vorn stampa prima-nota: the journal entries of a selection with the check of each entry's
// balance. vorn stampa piano-conti, clienti, fornitori: the chart and the partners with their
// balances over a period.
#include <functional>
#include <memory>
#include <ostream>

#include "cli/Comandi.h"
#include "cli/OpzioniComando.h"
#include "company/clsAnagraficaAzienda.h"
#include "frame/Comuni.h"
#include "ledger/clsStampaClientiForn.h"
#include "ledger/clsStampaPianoConti.h"
#include "ledger/clsStampaPrimaNota.h"

namespace vorn::cli {

namespace {

// The company (its name and VAT number for the foot), the run's form and the file, on a print's
// arguments.
template <class Argomenti>
void Intestazione(Argomenti& s, clsAnagraficaAzienda& anagrafica, Contesto& ctx, const std::string& uscita) {
  s.AzRagSoc = Trim(anagrafica.GetRagioneSocialeAzienda());
  s.AzParIva = Trim(anagrafica.GetPartitaIVAAzienda());
  s.objAnagraficaAzienda = &anagrafica;
  s.frm_FormAttiva = &ctx.form;
  s.nomeFile = uscita;
}

// Head, heading and foot of the journal print, and one row.
constexpr int kMinimoRighePrimaNota = 9 + 2 + 1;
constexpr int kMinimoRigheSaldi = 9 + 2 + 1;

const char* const kUsoPrimaNota =
    "Uso: vorn stampa prima-nota FILE USCITA [--dal GG/MM/AAAA] [--al GG/MM/AAAA] [--da-reg N] [--a-reg N]\n"
    "                            [--causale C] [--solo-errate] [--conto S [--cliente C|F CODICE]]\n"
    "                            [--valuta V] [--iva CODICE] [--righe N]\n\n"
    "Stampa in USCITA le registrazioni di prima nota della selezione (date di registrazione, numeri),\n"
    "ciascuna intera, con il controllo della quadratura: una registrazione il cui dare differisce\n"
    "dall'avere è segnalata \"Non quadrano i totali\". In fondo i totali generali.\n"
    "  --solo-errate      solo le registrazioni che non quadrano\n"
    "  --conto, --iva     solo le registrazioni con una riga sul sottoconto o con il codice IVA\n"
    "  --valuta V         solo le righe nella valuta\n"
    "  --righe N          righe di una pagina, testata e piede compresi (predefinite 72)\n";

std::string Numero5(const std::optional<std::string>& v, const char* nome) {
  if (!v) return "";
  std::string s = Trim(*v);
  if (s.empty() || s.size() > 5 || s.find_first_not_of("0123456789") != std::string::npos)
    throw ErroreUso(std::string(nome) + " vuole un numero di registrazione: " + *v);
  return std::string(5 - s.size(), '0') + s;
}

int EseguiPrimaNota(Contesto& ctx) {
  Argomenti& a = ctx.args;
  ArgomentiStampaPrimaNota s;
  SelezionePrimaNota& sel = s.selezione;
  sel.avar_DaData = ValoreDataOpzione(a, "--dal", Valore(""));
  sel.avar_AData = ValoreDataOpzione(a, "--al", Valore(""));
  sel.avar_DaRegistrazione = Valore(Numero5(a.Opzione("--da-reg"), "--da-reg"));
  sel.avar_ARegistrazione = Valore(Numero5(a.Opzione("--a-reg"), "--a-reg"));
  sel.avar_Causale = Valore(a.Opzione("--causale").value_or(""));
  sel.avar_SoloErrate = a.Flag("--solo-errate");
  sel.avar_Sottoconto = Valore(a.Opzione("--conto").value_or(""));
  auto cliente = a.Opzione("--cliente");
  sel.avar_CodValuta = Valore(a.Opzione("--valuta").value_or(""));
  sel.avar_CodIva = Valore(a.Opzione("--iva").value_or(""));
  s.avar_RighePagina = RighePagina(a, 72, kMinimoRighePrimaNota);
  AziendaCli az = LeggiAzienda(a);
  std::string uscita = a.Posizionale("il file della stampa (USCITA)");
  if (cliente) {
    std::string c = Trim(*cliente);
    std::string ind = UCase(c.substr(0, 1));
    if (ind != "C" && ind != "F") throw ErroreUso("--cliente vuole l'indicatore C o F: " + c);
    std::string cod = Trim(c.substr(1));
    if (cod.empty()) cod = Trim(a.Posizionale("il codice del cliente o fornitore dopo --cliente " + ind));
    if (TrimTesto(sel.avar_Sottoconto).empty()) throw ErroreUso("--cliente va con --conto");
    sel.avar_IndCliFor = Valore(ind);
    sel.avar_CliFor = Valore(cod);
  }
  a.Fine();
  UscitaStampa(az, uscita);

  auto db = ApriAzienda(az, Accesso::Lettura);
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = db->cn;
  Intestazione(s, anagrafica, ctx, uscita);
  clsStampaPrimaNota stampa;
  stampa.cn = db->cn;
  bool ok = stampa.StampaPrimaNotaTesto(s);
  ctx.form.Fine();
  if (!ok) {
    ctx.out << "Nessun dato da stampare.\n";
    return 0;
  }
  const auto& e = stampa.Esito();
  ctx.out << uscita << "\n"
          << e.registrazioni << " registrazioni, " << e.righe << " righe; dare " << FormattaImporto(Valore(e.dare))
          << ", avere " << FormattaImporto(Valore(e.avere)) << "; registrazioni che non quadrano: " << e.nonQuadrate
          << "\n";
  return 0;
}

const char* const kUsoPianoConti =
    "Uso: vorn stampa piano-conti FILE USCITA [--dal GG/MM/AAAA] [--al GG/MM/AAAA] [--da-gruppo GG]\n"
    "                             [--a-gruppo GG] [--diversi-zero] [--righe N]\n\n"
    "Stampa in USCITA il piano dei conti con i saldi del periodo (per data di competenza): saldo\n"
    "iniziale, progressivi dell'ultimo scarico, dare e avere del periodo, saldo attuale; gruppi e conti\n"
    "sommano i loro sottoconti.\n"
    "  --diversi-zero     tralascia le righe con tutti gli importi a zero\n";

// The two balance prints: the period, a range (`opzioneDa`, `opzioneA`) and --diversi-zero, then
// `stampa` with the company's arguments; the file's path, or the message of an empty selection.
using StampaSaldi = std::function<bool(const std::shared_ptr<Connessione>&, ArgomentiStampaSaldi&, const Valore& da,
                                       const Valore& a, bool diversiZero)>;
int EseguiSaldi(Contesto& ctx, const char* opzioneDa, const char* opzioneA, const StampaSaldi& stampa) {
  Argomenti& a = ctx.args;
  ArgomentiStampaSaldi s;
  s.avar_DaData = ValoreDataOpzione(a, "--dal", Valore(""));
  s.avar_AData = ValoreDataOpzione(a, "--al", Valore(""));
  auto da = a.Opzione(opzioneDa), al = a.Opzione(opzioneA);
  bool diversiZero = a.Flag("--diversi-zero");
  s.avar_RighePagina = RighePagina(a, 72, kMinimoRigheSaldi);
  AziendaCli az = LeggiAzienda(a);
  std::string uscita = a.Posizionale("il file della stampa (USCITA)");
  a.Fine();
  UscitaStampa(az, uscita);
  auto db = ApriAzienda(az, Accesso::Lettura);
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = db->cn;
  Intestazione(s, anagrafica, ctx, uscita);
  bool ok = stampa(db->cn, s, Valore(da.value_or("")), Valore(al.value_or("")), diversiZero);
  ctx.form.Fine();
  ctx.out << (ok ? uscita : std::string("Nessun dato da stampare.")) << "\n";
  return 0;
}

int EseguiPianoConti(Contesto& ctx) {
  return EseguiSaldi(ctx, "--da-gruppo", "--a-gruppo",
                     [](const std::shared_ptr<Connessione>& cn, ArgomentiStampaSaldi& s, const Valore& da,
                        const Valore& a, bool diversiZero) {
                       clsStampaPianoConti stampa;
                       stampa.cn = cn;
                       return stampa.StampaContabilePianoConti(s, da, a, diversiZero);
                     });
}

const char* const kUsoCliFor =
    "Uso: vorn stampa clienti|fornitori FILE USCITA [--dal GG/MM/AAAA] [--al GG/MM/AAAA] [--da-codice X]\n"
    "                                   [--a-codice Y] [--diversi-zero] [--righe N]\n\n"
    "Stampa in USCITA i clienti (o i fornitori) con i saldi del periodo sul loro sottoconto di\n"
    "appartenenza: saldo iniziale, progressivi dell'ultimo scarico, dare e avere del periodo, saldo\n"
    "attuale; in fondo il totale.\n"
    "  --diversi-zero     tralascia le righe con tutti gli importi a zero\n";

int EseguiCliFor(Contesto& ctx, const char* ind) {
  return EseguiSaldi(ctx, "--da-codice", "--a-codice",
                     [ind](const std::shared_ptr<Connessione>& cn, ArgomentiStampaSaldi& s, const Valore& da,
                           const Valore& a, bool diversiZero) {
                       clsStampaClientiForn stampa;
                       stampa.cn = cn;
                       return stampa.StampaContabileClientiFornitori(s, Valore(ind), da, a, diversiZero);
                     });
}

RegistraComando regPrimaNota(Comando{"stampa prima-nota", "stampa delle registrazioni di prima nota con la quadratura",
                                     std::string(kUsoPrimaNota) + kUsoUscitaStampa + "\n" + kUsoAzienda,
                                     EseguiPrimaNota});
RegistraComando regPianoConti(Comando{"stampa piano-conti", "stampa del piano dei conti con i saldi",
                                      std::string(kUsoPianoConti) + kUsoUscitaStampa + "\n" + kUsoAzienda,
                                      EseguiPianoConti});
RegistraComando regClienti(Comando{"stampa clienti", "stampa dei clienti con i saldi",
                                   std::string(kUsoCliFor) + kUsoUscitaStampa + "\n" + kUsoAzienda,
                                   [](Contesto& c) { return EseguiCliFor(c, "C"); }});
RegistraComando regFornitori(Comando{"stampa fornitori", "stampa dei fornitori con i saldi",
                                     std::string(kUsoCliFor) + kUsoUscitaStampa + "\n" + kUsoAzienda,
                                     [](Contesto& c) { return EseguiCliFor(c, "F"); }});

}  // namespace

}  // namespace vorn::cli
