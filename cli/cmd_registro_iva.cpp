// vorn registro-iva: the VAT register of one month, as a trial or definitively.
#include <unistd.h>

#include <ostream>

#include "cli/Comandi.h"
#include "cli/RegistroIva.h"
#include "company/clsAnagraficaAzienda.h"
#include "company/clsParametriAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"

namespace vorn::cli {

namespace {

const TipoRegistroCli kTipi[] = {
    {"vendite", registro_iva::kVendite, "Vendite", "vendite", true},
    {"acquisti", registro_iva::kAcquisti, "Acquisti", "acquisti", true},
    {"corrispettivi", registro_iva::kCorrispettivi, "Corrispettivi", "corrispettivi in scorporo", true},
    {"ventilazione", registro_iva::kVentilazione, "Ventilazione", "corrispettivi in ventilazione", true},
    {"sospensione", registro_iva::kSospensione, "Sospensione", "IVA in sospensione", true},
    {"differita-vendite", registro_iva::kDifferitaVendite, "DifferitaVendite",
     "incassi delle fatture di vendita a esigibilità differita", false},
    {"differita-acquisti", registro_iva::kDifferitaAcquisti, "DifferitaAcquisti",
     "pagamenti delle fatture di acquisto a esigibilità differita", false},
};

}  // namespace

const TipoRegistroCli* TipoRegistroDaOpzione(const std::string& opzione) {
  for (const auto& t : kTipi)
    if (opzione == t.opzione) return &t;
  return nullptr;
}

const TipoRegistroCli* TipoRegistroDaCodice(const std::string& tipo) {
  for (const auto& t : kTipi)
    if (tipo == t.tipo) return &t;
  return nullptr;
}

std::string ElencoTipiRegistro() {
  std::string s;
  for (const auto& t : kTipi) s += (s.empty() ? "" : "|") + std::string(t.opzione);
  return s;
}

std::string NomeFileRegistroIva(const TipoRegistroCli& t, int registro, int anno, int mese) {
  return "RegistroIva" + std::string(t.nomeFile) + Format(Valore(registro), "00") + "_" +
         Format(Valore(anno), "0000") + Format(Valore(mese), "00") + ".txt";
}

std::string PrefissoTabelleProcesso() { return "vorn" + std::to_string(static_cast<long>(getpid())) + "_"; }

ArgomentiRegistroIva ArgomentiRegistroIvaAzienda(const std::shared_ptr<Connessione>& cn) {
  ArgomentiRegistroIva a;
  clsParametriAzienda parametri;
  parametri.cn = cn;
  Valore vendite, venditeLiq, acquisti, acquistiLiq, scorporo, scorporoLiq, ventilazione, ventilazioneLiq, sospensione,
      periodicita, ordinamento, pagineIva, pagineGiornale, tipoLiq, numeroLiq, prorata, percentualeProrata, rifDoc;
  parametri.GetParametriIva(vendite, venditeLiq, acquisti, acquistiLiq, scorporo, scorporoLiq, ventilazione,
                            ventilazioneLiq, sospensione, periodicita, ordinamento, pagineIva, pagineGiornale, tipoLiq,
                            numeroLiq, prorata, percentualeProrata, rifDoc, a.str_IndIVAAutotrasportatori,
                            a.avar_RegimeContabile, a.str_RegIVASemSoloContiEco);
  a.IndOrdinamRegistriIVA = Trim(ordinamento.Testo());
  a.RifDocContrRegistriIVA = Trim(rifDoc.Testo());
  a.str_IndIVAAutotrasportatori = Trim(a.str_IndIVAAutotrasportatori);
  a.str_RegIVASemSoloContiEco = Trim(a.str_RegIVASemSoloContiEco);
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = cn;
  a.AzRagSoc = anagrafica.GetRagioneSocialeAzienda();
  a.AzParIva = anagrafica.GetPartitaIVAAzienda();
  a.avar_PrefissoTabelleTmp = PrefissoTabelleProcesso();
  a.avar_ProvaBollato = "P";
  a.avar_RighePagina = 72;
  return a;
}

namespace {

// A page must hold the register's head (two empty lines and seven), its foot (two) and one row.
constexpr int kMinimoRighe = 12;

const char* const kUso =
    "Uso: vorn registro-iva FILE --tipo TIPO --registro N --mese M --anno AAAA\n"
    "                       [--bollato] [--numera-pagine] [--righe N] [--uscita PERCORSO]\n\n"
    "Stampa il registro IVA di un mese e scrive il percorso del file; senza righe da stampare scrive\n"
    "\"Nessun dato da stampare.\". TIPO è uno fra:\n"
    "  vendite, acquisti      le fatture di vendita e di acquisto\n"
    "  corrispettivi          i corrispettivi in scorporo\n"
    "  ventilazione           i corrispettivi in ventilazione\n"
    "  sospensione            le fatture con IVA in sospensione\n"
    "  differita-vendite      gli incassi e i pagamenti delle fatture a esigibilità differita:\n"
    "  differita-acquisti     non hanno stampa; con --bollato aggiungono il mese ai progressivi,\n"
    "                         salvano la data della stampa e segnano le righe\n"
    "Opzioni:\n"
    "  --registro N       il numero del registro, da 1 a 99\n"
    "  --mese M           il mese, da 1 a 12\n"
    "  --anno AAAA        l'anno, dal 1900 al 9999\n"
    "  --bollato          la stampa definitiva: aggiunge il mese ai progressivi IVA, salva la data\n"
    "                     dell'ultima stampa, i numeri degli ultimi documenti e il numero dell'ultimo\n"
    "                     foglio, segna come stampate le righe della prima nota; tutto insieme con il\n"
    "                     file della stampa, o niente. Senza, è una stampa di prova, ripetibile\n"
    "  --numera-pagine    numera i fogli con i dati della numerazione dei registri IVA\n"
    "  --righe N          righe di una pagina, testata e piede compresi (predefinite 72, almeno 12)\n"
    "  --uscita PERCORSO  il file della stampa (predefinito: RegistroIva<Tipo><NN>_<AAAA><MM>.txt\n"
    "                     nella cartella Temp dell'applicazione, per esempio\n"
    "                     RegistroIvaVendite01_202401.txt)\n\n"
    "Anche la stampa di prova scrive nel database (le tabelle di lavoro della stampa, tolte alla\n"
    "fine): l'azienda è aperta in scrittura in ogni caso.\n";

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  auto tipoOpzione = a.Opzione("--tipo");
  bool bollato = a.Flag("--bollato");
  bool numera = a.Flag("--numera-pagine");
  // --righe through the common check, and known to be given: a register without a print refuses it.
  auto righeOpzione = a.Opzione("--righe");
  Argomenti argRighe(righeOpzione ? std::vector<std::string>{"--righe", *righeOpzione} : std::vector<std::string>{});
  int righe = RighePagina(argRighe, 72, kMinimoRighe);
  auto uscitaOpzione = a.Opzione("--uscita");
  if (!tipoOpzione) throw ErroreUso("manca --tipo (" + ElencoTipiRegistro() + ")");
  const TipoRegistroCli* tipo = TipoRegistroDaOpzione(LCase(Trim(*tipoOpzione)));
  if (!tipo) throw ErroreUso("--tipo sconosciuto: " + *tipoOpzione + " (" + ElencoTipiRegistro() + ")");
  int registro = OpzioneIntera(a, "--registro", 1, 99);
  int mese = OpzioneIntera(a, "--mese", 1, 12);
  int anno = OpzioneIntera(a, "--anno", 1900, 9999);
  if (!tipo->stampa && (uscitaOpzione || numera || righeOpzione))
    throw ErroreUso("il registro " + std::string(tipo->opzione) +
                    " non ha stampa: --uscita, --righe e --numera-pagine non valgono");
  AziendaCli az = LeggiAzienda(a);
  a.Fine();

  std::string uscita;
  if (tipo->stampa) {
    uscita = uscitaOpzione ? *uscitaOpzione : CartellaStampe() + "/" + NomeFileRegistroIva(*tipo, registro, anno, mese);
    UscitaStampa(az, uscita);
  }

  // Even a trial writes: it builds its work tables in the company's database.
  auto db = ApriAzienda(az, Accesso::Scrittura);
  ArgomentiRegistroIva arg = ArgomentiRegistroIvaAzienda(db->cn);
  arg.formAttiva = &ctx.form;
  arg.nomeFile = uscita;
  arg.avar_NumeroRegistro = Valore(Format(Valore(registro), "00"));
  arg.avar_Mese = mese;
  arg.avar_Anno = anno;
  if (bollato) arg.avar_ProvaBollato = "B";
  arg.avar_RighePagina = righe;
  arg.avar_NumerazionePagine = numera;
  clsRegistriIva registri;
  registri.cn = db->cn;
  bool ok = registri.StampaRegistro(tipo->tipo, arg);
  ctx.form.Fine();
  if (!ok) throw ErroreComando("il registro IVA " + std::string(tipo->descrizione) + " non è stato completato");
  if (!tipo->stampa) {
    ctx.out << "Registro IVA " << tipo->descrizione << " nr. " << arg.avar_NumeroRegistro.Testo() << " di "
            << Format(Valore(mese), "00") << "/" << anno << ": "
            << (bollato ? "progressivi del mese aggiornati e righe segnate.\n"
                        : "nessuna stampa; in prova non scrive nulla.\n");
    return 0;
  }
  if (!registri.Esito().stampato) {
    ctx.out << "Nessun dato da stampare.\n";
    return 0;
  }
  ctx.out << uscita << "\n";
  return 0;
}

RegistraComando reg(Comando{"registro-iva", "il registro IVA di un mese, in prova o bollato",
                            std::string(kUso) + "\n" + kUsoUscitaStampa + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
