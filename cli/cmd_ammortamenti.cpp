// vorn ammortamenti: the depreciation of a year written as asset movements and, with
// --contabilizza, posted to the journal.
#include <ostream>

#include "assets/RiferimentiCespiti.h"
#include "assets/clsCespitiAmm.h"
#include "assets/clsCespitiContabilizza.h"
#include "cli/Comandi.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "frame/Globali.h"
#include "frame/Importo.h"

namespace vorn::cli {

namespace {

const char* const kUso =
    "Uso: vorn ammortamenti FILE --anno AAAA [--contabilizza] [--solo-ordinario]\n\n"
    "Calcola l'ammortamento dell'anno di ogni cespite sui tre valori (fiscale, fiscale deducibile,\n"
    "civile) e lo scrive nei movimenti cespiti: ordinario e anticipato in un movimento ciascuno al\n"
    "31/12, un cespite venduto nell'anno in un movimento suo alla data della vendita. Il primo anno\n"
    "l'aliquota è ridotta della percentuale dei parametri; un cespite entro la soglia dei parametri\n"
    "è ammortizzato per intero nell'anno di acquisto. Scrive una riga per cespite con le quote e\n"
    "una riga per ogni problema riscontrato (il cespite è saltato). Un anno già calcolato non è\n"
    "ricalcolato: i suoi cespiti sono segnalati.\n"
    "Opzioni:\n"
    "  --anno AAAA         l'anno, dal 1900 al 9999\n"
    "  --contabilizza      registra poi in prima nota gli ammortamenti dell'anno non ancora\n"
    "                      registrati, con le causali contabili dei riferimenti: una registrazione\n"
    "                      per data e tipo, costo in dare e fondo in avere per categoria. Tutto\n"
    "                      insieme o niente; un anno già registrato non è registrato di nuovo\n"
    "  --solo-ordinario    senza ammortamento anticipato\n";

std::string Cifra2(double v) { return FormattaImporto(Valore(Importo::DaDouble(v).Arrotonda(G().DecimaliImporti))); }

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  const bool contabilizza = a.Flag("--contabilizza");
  const bool soloOrdinario = a.Flag("--solo-ordinario");
  int anno = OpzioneIntera(a, "--anno", 1900, 9999);
  AziendaCli az = LeggiAzienda(a);
  a.Fine();

  auto db = ApriAzienda(az, Accesso::Scrittura);
  const RiferimentiCespiti rif = LeggiRiferimentiCespiti(db->cn);
  ArgomentiAmmortamento arg = ArgomentiAmmortamentoAzienda(rif, anno);
  arg.objFormAttiva = &ctx.form;
  if (soloOrdinario) arg.indMetodoAmmortamento = 0;
  clsCespitiAmm amm;
  amm.cn = db->cn;
  EsitoAmmortamento esito;
  amm.CalcolaAmmortamento(arg, esito);
  ctx.form.Fine();
  std::vector<std::vector<std::string>> righe;
  for (const auto& q : esito.quote)
    righe.push_back({q.codiceCespite, Cifra2(q.ordinario), Cifra2(q.anticipato), Cifra2(q.ordinarioDed + q.anticipatoDed),
                     Cifra2(q.civile), q.infrannuale ? "venduto nell'anno" : ""});
  ScriviTabella(ctx.out,
                {{"Cespite", Allinea::Sinistra},
                 {"Ordinario", Allinea::Destra},
                 {"Anticipato", Allinea::Destra},
                 {"Deducibile", Allinea::Destra},
                 {"Civile", Allinea::Destra},
                 {"Nota", Allinea::Sinistra}},
                righe, "Nessun ammortamento calcolato.");
  if (!esito.stringaErroriRiscontrati.empty()) ctx.out << "Problemi riscontrati:\n" << esito.stringaErroriRiscontrati;
  ctx.out << "Ammortamenti " << anno << ": " << esito.righe << " righe scritte";
  if (esito.numeroMovimentiInfrannuali > 0)
    ctx.out << ", " << esito.numeroMovimentiInfrannuali << " movimenti infrannuali";
  ctx.out << ".\n";
  if (!contabilizza) return 0;

  clsCespitiContabilizza c;
  c.cn = db->cn;
  EsitoContabilizzazioneCespiti ec;
  c.ContabilizzaAmmortamenti(anno, rif.contabileAmmOrd, rif.contabileAmmAnt, ec, &ctx.form);
  ctx.form.Fine();
  if (ec.registrazioni.empty()) {
    ctx.out << (ec.giaContabilizzato ? "Gli ammortamenti dell'anno sono già registrati in prima nota.\n"
                                     : "Nessun ammortamento da registrare in prima nota.\n");
    return 0;
  }
  ctx.out << "Registrati in prima nota: " << ec.righe << " righe di ammortamento, registrazioni";
  for (int32_t n : ec.registrazioni) ctx.out << " " << Format(Valore(n), "00000");
  ctx.out << ".\n";
  return 0;
}

RegistraComando reg(Comando{"ammortamenti", "gli ammortamenti dell'anno dei cespiti e la loro registrazione",
                            std::string(kUso) + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
