// vorn spesometro: the annual statement of operations with VAT: the extraction of the year from
// the journal, the telematic file and its report of signals, the totals read back from a file and
// its CSV.
#include <ostream>
#include <sstream>

#include "cli/Comandi.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "statements/clsSpesometro2013.h"

namespace vorn::cli {

namespace {

const char* const kUso =
    "Uso: vorn spesometro FILE --anno AAAA [--estrai [--senza-filtri]]\n"
    "                     [--file PERCORSO [--segnalazioni PERCORSO] [--formato analitico|aggregato]\n"
    "                      [--quadri FE,FR,...]] [--telematico PERCORSO]\n"
    "                     [--verifica PERCORSO] [--csv PERCORSO]\n\n"
    "La comunicazione annuale delle operazioni rilevanti ai fini IVA (spesometro).\n"
    "Opzioni:\n"
    "  --anno AAAA            l'anno, dal 1900 al 9999\n"
    "  --estrai               estrae dalla prima nota le righe IVA dell'anno di clienti e fornitori e le\n"
    "                         riepiloga per documento; sostituisce l'estrazione precedente dell'anno in\n"
    "                         un'unica transazione: se non riesce, quella precedente resta com'era\n"
    "  --senza-filtri         estrae anche i codici IVA, i soggetti e le causali esclusi dagli allegati\n"
    "                         e le nazioni in black list\n"
    "  --file PERCORSO        scrive il file telematico (record di 1898 caratteri) dai dati estratti\n"
    "  --segnalazioni PERCORSO  il report delle segnalazioni del file (predefinito:\n"
    "                         SegnalazioniSpesometro<AAAA>.txt nella cartella Temp dell'applicazione)\n"
    "  --formato F            analitico (predefinito: quadri FE, FR, NE, NR, DF, FN, SE, TU) oppure\n"
    "                         aggregato (quadri FA, SA, BL); sono richiesti i quadri che hanno dati\n"
    "  --quadri Q,Q,...       i quadri richiesti, al posto di quelli scelti dal formato\n"
    "  --telematico PERCORSO  un file telematico già scritto, da leggere con --verifica e --csv\n"
    "  --verifica PERCORSO    scrive i totali per quadro letti dal file telematico\n"
    "  --csv PERCORSO         scrive i campi del file telematico in un file CSV, uno per riga\n\n"
    "Il file telematico, il CSV e i report sostituiscono un file esistente solo se è vuoto o se è un\n"
    "file dello stesso tipo scritto da vorn: mai un database o un altro file. Un soggetto senza\n"
    "partita IVA e senza codice fiscale ferma il file (non viene scritto nulla); le altre anomalie\n"
    "vanno nel report delle segnalazioni e il comando ne dice il numero.\n";

const char* const kQuadri[] = {"FA", "SA", "BL", "FE", "FR", "NE", "NR", "DF", "FN", "SE", "TU"};

int* Quadro(ArgomentiFileSpesometro& a, const std::string& q) {
  int* campi[] = {&a.quadroFA, &a.quadroSA, &a.quadroBL, &a.quadroFE, &a.quadroFR, &a.quadroNE,
                  &a.quadroNR, &a.quadroDF, &a.quadroFN, &a.quadroSE, &a.quadroTU};
  for (size_t i = 0; i < std::size(kQuadri); ++i)
    if (q == kQuadri[i]) return campi[i];
  return nullptr;
}

void VerificaUscita(const std::string& percorso, const RiconosciFile& nostro, const std::string& cosa) {
  try {
    VerificaUscitaFile(percorso, nostro, cosa);
  } catch (const ErroreStampa& e) {
    throw ErroreComando(e.what());
  }
}

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  bool estrai = a.Flag("--estrai");
  bool senzaFiltri = a.Flag("--senza-filtri");
  auto file = a.Opzione("--file");
  auto segnalazioni = a.Opzione("--segnalazioni");
  auto formato = a.Opzione("--formato");
  auto quadri = a.Opzione("--quadri");
  auto telematico = a.Opzione("--telematico");
  auto verifica = a.Opzione("--verifica");
  auto csv = a.Opzione("--csv");
  int anno = OpzioneIntera(a, "--anno", 1900, 9999);
  AziendaCli az = LeggiAzienda(a);
  a.Fine();
  if (senzaFiltri && !estrai) throw ErroreUso("--senza-filtri vale solo con --estrai");
  if (!file && (segnalazioni || formato || quadri))
    throw ErroreUso("--segnalazioni, --formato e --quadri valgono solo con --file");
  if (file && telematico) throw ErroreUso("--file e --telematico insieme: il file da leggere è quello scritto");
  if ((verifica || csv) && !file && !telematico) throw ErroreUso("--verifica e --csv leggono il file di --file o di --telematico");
  if (!estrai && !file && !verifica && !csv) throw ErroreUso("nulla da fare: indicare --estrai, --file, --verifica o --csv");
  int indiceFormato = 1;
  if (formato) {
    std::string f = LCase(Trim(*formato));
    if (f != "analitico" && f != "aggregato") throw ErroreUso("--formato vuole analitico o aggregato: " + *formato);
    indiceFormato = f == "analitico" ? 1 : 0;
  }
  ArgomentiFileSpesometro arg;
  if (quadri) {
    std::stringstream ss(UCase(*quadri));
    std::string q;
    while (std::getline(ss, q, ',')) {
      int* campo = Quadro(arg, Trim(q));
      if (!campo) throw ErroreUso("--quadri: quadro sconosciuto '" + Trim(q) + "' (FA, SA, BL, FE, FR, NE, NR, DF, FN, SE, TU)");
      *campo = 1;
    }
  }
  // Every output is judged before any work is done.
  const RiconosciFile fileNostro = clsSpesometro2013::SembraFileSpesometro;
  const RiconosciFile reportNostro = clsSpesometro2013::SembraReportSpesometro;
  std::string nomeSegnalazioni;
  if (file) {
    nomeSegnalazioni = segnalazioni ? *segnalazioni
                                    : CartellaStampe() + "/SegnalazioniSpesometro" + std::to_string(anno) + ".txt";
    VerificaUscita(*file, fileNostro, "un file telematico dello spesometro");
    VerificaUscita(nomeSegnalazioni, reportNostro, "un report dello spesometro");
  }
  if (verifica) VerificaUscita(*verifica, reportNostro, "un report dello spesometro");
  if (csv) VerificaUscita(*csv, clsSpesometro2013::SembraCsvSpesometro, "un file CSV dello spesometro");

  auto db = ApriAzienda(az, estrai || file ? Accesso::Scrittura : Accesso::Lettura);
  clsSpesometro2013 s;
  s.cn = db->cn;
  s.formAttiva = &ctx.form;
  if (estrai) {
    long righe = s.EstraiDatiSpesometroDaPrimaNota(0, anno, "SM", senzaFiltri);
    ctx.form.Fine();
    if (righe < 0) throw ErroreComando("estrazione non eseguita");
    long documenti = NullToZeroLng(db->cn->Scalare(
        "SELECT COUNT(*) FROM [Spesometro2013Riepilogato] WHERE [Tipo] = 0 AND [Anno] = ?", {Valore(anno)}));
    ctx.out << "Spesometro " << anno << ": estratte " << righe << " righe IVA, " << documenti << " documenti.\n";
  }
  std::string leggere = file ? *file : telematico.value_or("");
  if (file) {
    s.DatiAzienda(arg);
    arg.nomeFile = *file;
    arg.nomeFileSegnalazioni = nomeSegnalazioni;
    arg.AnnoRiferimento = anno;
    arg.indiceFormato = indiceFormato;
    if (!quadri) s.QuadriConDati(arg, anno);
    long numero = 0;
    int esito = s.MakeFileTelematicoSpesometro(arg, numero);
    ctx.form.Fine();
    if (esito < 0) throw ErroreComando("il file telematico non è stato scritto");
    const auto& c = s.Contenuto();
    ctx.out << "File telematico: " << *file << " (" << (c.recordB + c.recordC + c.recordD + c.recordE + 2)
            << " record: " << c.recordC << " C, " << c.recordD << " D); segnalazioni: " << numero << " in "
            << nomeSegnalazioni << "\n";
  }
  if (verifica) {
    if (!s.EseguiVerificheFileSpesometroGenerato(leggere, *verifica))
      throw ErroreComando("il file " + leggere + " non è un file telematico conforme");
    ctx.out << "Totali del file telematico: " << *verifica << "\n";
  }
  if (csv) {
    if (!s.MakeFileCSV(leggere, *csv)) throw ErroreComando("il CSV del file " + leggere + " non è stato scritto");
    ctx.out << "CSV del file telematico: " << *csv << " (" << s.Contenuto().campi << " campi)\n";
  }
  return 0;
}

RegistraComando reg(Comando{"spesometro", "lo spesometro: estrazione dalla prima nota, file telematico, verifica e CSV",
                            std::string(kUso) + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
