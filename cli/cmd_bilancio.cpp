// vorn bilancio: the balance sheet of a period from the journal, printed and summed up on the
// terminal; with --verifica, the trial balance of the sub-accounts.
#include <ostream>

#include "cli/Comandi.h"
#include "cli/OpzioniComando.h"
#include "company/clsAnagraficaAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"
#include "ledger/clsBilancio.h"

namespace vorn::cli {

namespace {

// A page: the head and foot (11 lines) and one line of body.
constexpr int kMinimoRighe = 12;

const char* const kUso =
    "Uso: vorn bilancio FILE --al GG/MM/AAAA [--dal GG/MM/AAAA] [--verifica] [OPZIONI]\n\n"
    "Il bilancio contabile del periodo, calcolato dalla prima nota per data di competenza: la\n"
    "situazione patrimoniale, il conto economico e i conti tecnici di riepilogo, a sezioni\n"
    "contrapposte, nella stampa impaginata; sul terminale i totali, il risultato di esercizio e\n"
    "l'eventuale mancata quadratura. Senza --dal il periodo comincia dall'inizio e comprende i saldi\n"
    "scaricati dalla prima nota con l'ultimo compattamento.\n"
    "  --verifica         il bilancio di verifica dei sottoconti sul terminale (dare, avere, saldo),\n"
    "                     dalla prima nota del periodo; nessuna stampa\n"
    "  --senza-patrimoniale   senza la situazione patrimoniale\n"
    "  --senza-riepilogo  senza i conti tecnici di riepilogo\n"
    "  --report NOME      righe della tabella di stampa del bilancio per il client NOME, in luogo\n"
    "                     della stampa\n"
    "  --righe N          righe di una pagina, testata e piede compresi (predefinite 72, almeno 12)\n"
    "  --uscita PERCORSO  il file della stampa (predefinito: Bilancio_AAAAMMGG.txt, con la data\n"
    "                     finale, nella cartella Temp dell'applicazione)\n\n"
    "Il bilancio scrive nel database le sue tabelle di lavoro, tolte alla fine: l'azienda è aperta\n"
    "in scrittura, e un solo bilancio alla volta può essere in corso sullo stesso archivio.\n";

std::string Cifra(Importo i) { return FormattaImporto(Valore(i)); }

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  Valore dal = ValoreDataOpzione(a, "--dal", Valore("")), al = ValoreDataOpzione(a, "--al", Valore(""));
  bool verifica = a.Flag("--verifica");
  bool senzaPatrimoniale = a.Flag("--senza-patrimoniale");
  bool senzaRiepilogo = a.Flag("--senza-riepilogo");
  auto report = a.Opzione("--report");
  auto righeOpzione = a.Opzione("--righe");
  Argomenti argRighe(righeOpzione ? std::vector<std::string>{"--righe", *righeOpzione} : std::vector<std::string>{});
  int righe = RighePagina(argRighe, 72, kMinimoRighe);
  auto uscitaOpzione = a.Opzione("--uscita");
  AziendaCli az = LeggiAzienda(a);
  a.Fine();
  if (al.Testo().empty()) throw ErroreUso("manca --al");
  if (!dal.Testo().empty() && *dal.ComeData() > *al.ComeData()) throw ErroreUso("--dal è successiva ad --al");
  if (verifica && (senzaPatrimoniale || senzaRiepilogo || report || righeOpzione || uscitaOpzione))
    throw ErroreUso("--verifica non ha stampa: --senza-patrimoniale, --senza-riepilogo, --report, --righe e --uscita non valgono");
  if (report && uscitaOpzione) throw ErroreUso("--report e --uscita si escludono");

  if (verifica) {
    auto db = ApriAzienda(az, Accesso::Lettura);
    clsBilancio b;
    b.cn = db->cn;
    ctx.out << "Bilancio di verifica dei sottoconti" << clsBilancio::GetStringaPeriodoBilancio(dal, al) << "\n\n"
            << clsBilancio::TestoBilancioVerifica(b.BilancioVerificaSottoconti(dal, al));
    return 0;
  }

  std::string uscita;
  if (!report) {
    uscita = uscitaOpzione ? *uscitaOpzione : CartellaStampe() + "/Bilancio_" + al.ComeData()->Iso().substr(0, 4) +
                                                  al.ComeData()->Iso().substr(5, 2) + al.ComeData()->Iso().substr(8, 2) +
                                                  ".txt";
    UscitaStampa(az, uscita);
  }
  auto db = ApriAzienda(az, Accesso::Scrittura);
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = db->cn;
  ArgomentiBilancio arg;
  arg.frm_FormAttiva = &ctx.form;
  arg.clientName = report ? *report : "";
  arg.AzRagSoc = Trim(anagrafica.GetRagioneSocialeAzienda());
  arg.nomeFile = uscita;
  arg.avar_DataStampa = Valore(Data::Oggi());
  arg.avar_DaData = dal;
  arg.avar_AData = al;
  arg.avar_StampaSituazionePatrimoniale = !senzaPatrimoniale;
  arg.avar_StampaContiRiepilogo = !senzaRiepilogo;
  arg.avar_RighePagina = righe;
  arg.bilancioSuReport = report.has_value();
  clsBilancio b;
  b.cn = db->cn;
  bool ok = b.Bilancio(arg);
  ctx.form.Fine();
  if (!ok) throw ErroreComando("il bilancio non è stato elaborato");

  const SezioneBilancio &p = b.Patrimoniale(), &e = b.Economico();
  ctx.out << "Bilancio contabile" << clsBilancio::GetStringaPeriodoBilancio(dal, al) << "\n";
  std::vector<std::vector<std::string>> t = {
      {"Attività", Cifra(p.totaleSx), "Passività", Cifra(p.totaleDx)},
      {"Costi", Cifra(e.totaleSx), "Ricavi", Cifra(e.totaleDx)},
  };
  ScriviTabella(ctx.out,
                {{"Sezione", Allinea::Sinistra}, {"Totale", Allinea::Destra}, {"Sezione", Allinea::Sinistra}, {"Totale", Allinea::Destra}},
                t);
  Importo utile = e.totaleDx - e.totaleSx;
  ctx.out << (utile < Importo() ? "Perdita di esercizio: " + Cifra(-utile) : "Utile di esercizio: " + Cifra(utile))
          << "\n";
  if (b.MancaQuadratura()) ctx.out << "*---------- MANCA QUADRATURA DI BILANCIO ----------*\n";
  if (report) ctx.out << "Righe del report scritte per il client " << *report << ".\n";
  else ctx.out << "Stampa: " << uscita << "\n";
  return 0;
}

RegistraComando reg(Comando{"bilancio", "il bilancio contabile di un periodo, o il bilancio di verifica",
                            std::string(kUso) + "\n" + kUsoUscitaStampa + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
