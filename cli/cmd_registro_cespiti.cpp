// vorn registro-cespiti: the register of the depreciable assets of a year.
#include <ostream>

#include "assets/clsCespitiRegistro.h"
#include "cli/Comandi.h"
#include "cli/RegistroIva.h"
#include "company/clsAnagraficaAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"

namespace vorn::cli {

namespace {

const char* const kUso =
    "Uso: vorn registro-cespiti FILE --anno AAAA [--bollato] [--righe N] [--uscita PERCORSO]\n\n"
    "Stampa il registro dei beni ammortizzabili dell'anno e scrive il percorso del file: per\n"
    "categoria, di ogni cespite acquistato entro l'anno e non dismesso prima, il valore, il fondo\n"
    "dell'anno prima, l'aliquota, l'ammortamento dell'anno, il fondo a fine anno e il residuo,\n"
    "sulla riga fiscale e su quella civile, con i totali fiscali di categoria e dell'anno. Senza\n"
    "cespiti da stampare scrive \"Nessun dato da stampare.\".\n"
    "Opzioni:\n"
    "  --anno AAAA        l'anno, dal 1900 al 9999\n"
    "  --bollato          la stampa definitiva: numera i fogli del registro cespiti e salva la data\n"
    "                     dell'ultima stampa (31/12 dell'anno) insieme con il file della stampa, o\n"
    "                     niente; un anno già stampato in definitivo è rifiutato. Senza, è una\n"
    "                     stampa di prova, ripetibile\n"
    "  --righe N          righe di una pagina, testata e piede compresi (predefinite 72, almeno 14)\n"
    "  --uscita PERCORSO  il file della stampa (predefinito: RegistroCespiti_<AAAA>.txt nella\n"
    "                     cartella Temp dell'applicazione)\n\n"
    "Le schede dei cespiti sono preparate in una tabella di lavoro del database, svuotata alla\n"
    "fine: l'azienda è aperta in scrittura.\n";

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  const bool bollato = a.Flag("--bollato");
  int righe = RighePagina(a, 72, kMinimoRighePaginaCespiti);
  auto uscitaOpzione = a.Opzione("--uscita");
  int anno = OpzioneIntera(a, "--anno", 1900, 9999);
  AziendaCli az = LeggiAzienda(a);
  a.Fine();
  const std::string uscita = uscitaOpzione ? *uscitaOpzione
                                           : CartellaStampe() + "/RegistroCespiti_" + std::to_string(anno) + ".txt";
  UscitaStampa(az, uscita);

  auto db = ApriAzienda(az, Accesso::Scrittura);
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = db->cn;
  ArgomentiRegistroCespiti arg;
  arg.objFormAttiva = &ctx.form;
  arg.clientName = PrefissoTabelleProcesso();
  arg.AzRagSoc = Trim(anagrafica.GetRagioneSocialeAzienda());
  arg.AzParIva = Trim(anagrafica.GetPartitaIVAAzienda());
  arg.nomeFile = uscita;
  arg.anno = anno;
  arg.avar_RighePagina = righe;
  if (bollato) arg.avar_ProvaBollato = "B";
  clsCespitiRegistro registro;
  registro.cn = db->cn;
  const bool ok = registro.StampaRegistroCespiti(arg);
  ctx.form.Fine();
  if (!ok) {
    if (registro.Esito().giaBollato)
      throw ErroreComando("il registro cespiti del " + std::to_string(anno) + " è già stampato in definitivo");
    if (bollato && registro.Esito().cespiti > 0) throw ErroreComando("il registro cespiti non è stato completato");
    ctx.out << "Nessun dato da stampare.\n";
    return 0;
  }
  ctx.out << uscita << "\n";
  return 0;
}

RegistraComando reg(Comando{"registro-cespiti", "il registro dei beni ammortizzabili di un anno",
                            std::string(kUso) + "\n" + kUsoUscitaStampa + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
