// vorn acconto-iva: the annotation of the December VAT advance, as a trial or definitively.
#include <ostream>

#include "cli/Comandi.h"
#include "cli/LiquidazioneIva.h"
#include "cli/OpzioniComando.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"

namespace vorn::cli {

std::string RigaEsitoAccontoIva(int anno, const AccontoIvaStorico& a) {
  auto cifra = [](Importo i) { return FormattaImporto(Valore(i)); };
  const std::string quota = " (" + Format(Valore(a.percentuale), "##0.00") + "% di " + cifra(a.base) + ")";
  if (a.dovuto) return "Acconto IVA " + std::to_string(anno) + ": " + cifra(a.totale) + quota;
  return "Acconto IVA " + std::to_string(anno) + " non dovuto: " + cifra(a.calcolato) + quota +
         " non raggiunge il minimo di " + cifra(a.minimo);
}

namespace {

// The head (two empty lines and five) and the foot, with one line of body.
constexpr int kMinimoRighe = 10;

const char* const kUso =
    "Uso: vorn acconto-iva FILE --anno AAAA [--presunto IMPORTO] [--percentuale P]\n"
    "                      [--bollato [--numera-pagine]] [--solo-versamento] [--righe N] [--uscita PERCORSO]\n\n"
    "Stampa l'annotazione dell'acconto IVA di dicembre dell'anno, scrive il percorso del file e,\n"
    "in una riga, l'acconto (\"Acconto IVA 2025: 1.086,41 (88,00% di 1.234,56)\") o perché non è\n"
    "dovuto.\n\n"
    "Senza --presunto l'acconto è calcolato con il metodo storico: la percentuale di calcolo\n"
    "dell'acconto (importi fissi) dell'IVA della liquidazione di dicembre dell'anno prima, prima\n"
    "del suo acconto, come l'ha lasciata la liquidazione definitiva di dicembre. Sotto l'importo\n"
    "minimo dell'acconto (importi fissi) non è dovuto, e la stampa porta 0.\n\n"
    "Opzioni:\n"
    "  --anno AAAA         l'anno dell'acconto, dal 1900 al 9999\n"
    "  --presunto IMPORTO  l'IVA presunta su cui calcolare l'acconto (metodo previsionale o\n"
    "                      analitico), al posto di quella dell'anno prima\n"
    "  --percentuale P     la percentuale dell'acconto (predefinita quella degli importi fissi)\n"
    "  --bollato           la stampa definitiva: salva l'acconto, che la liquidazione di dicembre\n"
    "                      detrae, insieme con il file della stampa, o niente. Rifiutata quando\n"
    "                      dicembre è già stato liquidato in via definitiva\n"
    "  --numera-pagine     con --bollato, numera i fogli sul registro delle liquidazioni indicato\n"
    "                      nei parametri dell'azienda e ne salva l'ultimo\n"
    "  --solo-versamento   stampa la testata e i dati del versamento, senza il calcolo\n"
    "  --righe N           righe di una pagina, testata e piede compresi (predefinite 72, almeno 10)\n"
    "  --uscita PERCORSO   il file della stampa (predefinito: AccontoIva_<AAAA>.txt nella cartella\n"
    "                      Temp dell'applicazione)\n";

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  const int anno = OpzioneIntera(a, "--anno", 1900, 9999);
  const std::optional<Importo> presunto = ImportoOpzione(a, "--presunto");
  const std::optional<Importo> percentuale = ImportoOpzione(a, "--percentuale");
  const bool bollato = a.Flag("--bollato");
  const bool numera = a.Flag("--numera-pagine");
  const bool soloVersamento = a.Flag("--solo-versamento");
  const int righe = RighePagina(a, 72, kMinimoRighe);
  auto uscitaOpzione = a.Opzione("--uscita");
  if (numera && !bollato) throw ErroreUso("--numera-pagine vale solo con --bollato");
  if (presunto && *presunto < Importo()) throw ErroreUso("--presunto non può essere negativo");
  if (percentuale && (*percentuale < Importo() || *percentuale > Importo::DaRaw(100 * 10000)))
    throw ErroreUso("--percentuale vuole un numero da 0 a 100");
  AziendaCli az = LeggiAzienda(a);
  a.Fine();
  const std::string uscita =
      uscitaOpzione ? *uscitaOpzione : CartellaStampe() + "/AccontoIva_" + Format(Valore(anno), "0000") + ".txt";
  UscitaStampa(az, uscita);

  auto db = ApriAzienda(az, bollato ? Accesso::Scrittura : Accesso::Lettura);
  clsLiquidazioneIva liquidazione;
  liquidazione.cn = db->cn;
  const AccontoIvaStorico calcolo = liquidazione.CalcolaAccontoIvaStorico(
      presunto, percentuale ? std::optional<double>(percentuale->ToDouble()) : std::nullopt);
  const ArgomentiLiquidazioneIva liq = ArgomentiLiquidazioneIvaAzienda(db->cn);
  ArgomentiAccontoIva arg;
  arg.formAttiva = &ctx.form;
  arg.AzRagSoc = liq.AzRagSoc;
  arg.AzParIva = liq.AzParIva;
  arg.nomeFile = uscita;
  arg.avar_ImportoIvaPresunto = calcolo.base;
  arg.avar_PercentualeAcconto = calcolo.percentuale;
  arg.avar_TotaleAcconto = calcolo.totale;
  arg.abool_StampaCompleta = !soloVersamento;
  arg.avar_Anno = anno;
  arg.avar_RighePagina = righe;
  arg.avar_ProvaBollato = bollato ? "B" : "P";
  arg.avar_NumerazionePagine = numera;
  arg.TipoRegLiquidazione = liq.TipoRegLiquidazione;
  arg.NumRegLiquidazione = liq.NumRegLiquidazione;
  arg.avar_PrefissoTabelleTmp = liq.avar_PrefissoTabelleTmp;
  const bool ok = liquidazione.AccontoIva(arg);
  ctx.form.Fine();
  if (!ok) throw ErroreComando("l'acconto IVA non è stato stampato");
  ctx.out << uscita << "\n" << RigaEsitoAccontoIva(anno, calcolo);
  ctx.out << (bollato ? ", salvato per la liquidazione di dicembre\n" : "\n");
  return 0;
}

RegistraComando reg(Comando{"acconto-iva", "l'acconto IVA di dicembre: stampa e, bollato, il versamento",
                            std::string(kUso) + "\n" + kUsoUscitaStampa + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
