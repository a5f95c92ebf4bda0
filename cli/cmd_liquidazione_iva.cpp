// vorn liquidazione-iva: the VAT settlement of a month, a quarter or the year, in simulation from
// the journal or from the progressives of the definitive register prints, as a trial or
// definitively.
#include <ostream>

#include "cli/Comandi.h"
#include "cli/LiquidazioneIva.h"
#include "cli/RegistroIva.h"
#include "company/clsAnagraficaAzienda.h"
#include "company/clsParametriAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"

namespace vorn::cli {

ArgomentiLiquidazioneIva ArgomentiLiquidazioneIvaAzienda(const std::shared_ptr<Connessione>& cn) {
  ArgomentiLiquidazioneIva a;
  clsParametriAzienda parametri;
  parametri.cn = cn;
  Valore vendite, venditeLiq, acquisti, acquistiLiq, scorporo, scorporoLiq, ventilazione, ventilazioneLiq, sospensione,
      periodicita, ordinamento, pagineIva, pagineGiornale, tipoLiq, numeroLiq, prorata, percentualeProrata, rifDoc;
  int regime = 0;
  std::string soloContiEco;
  parametri.GetParametriIva(vendite, venditeLiq, acquisti, acquistiLiq, scorporo, scorporoLiq, ventilazione,
                            ventilazioneLiq, sospensione, periodicita, ordinamento, pagineIva, pagineGiornale, tipoLiq,
                            numeroLiq, prorata, percentualeProrata, rifDoc, a.str_IndIVAAutotrasportatori, regime,
                            soloContiEco);
  a.NumRegIVAVenditeLiq = NullToZeroLng(venditeLiq);
  a.NumRegIVAAcquistiLiq = NullToZeroLng(acquistiLiq);
  a.NumRegIVACorrispScorpLiq = NullToZeroLng(scorporoLiq);
  a.NumRegIVACorrispVentilLiq = NullToZeroLng(ventilazioneLiq);
  a.avar_RegimeIva = Trim(periodicita.Testo()) == "1" ? "T" : "M";
  a.GestioneProrataIVA = Trim(prorata.Testo());
  a.PercentualeProrata = NullToZeroDbl(percentualeProrata);
  a.str_IndIVAAutotrasportatori = Trim(a.str_IndIVAAutotrasportatori);
  a.TipoRegLiquidazione = Trim(tipoLiq.Testo());
  if (a.TipoRegLiquidazione.empty()) a.TipoRegLiquidazione = "0";
  a.NumRegLiquidazione = Trim(numeroLiq.Testo());
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = cn;
  a.AzRagSoc = anagrafica.GetRagioneSocialeAzienda();
  a.AzParIva = anagrafica.GetPartitaIVAAzienda();
  a.avar_PrefissoTabelleTmp = PrefissoTabelleProcesso();
  a.avar_RighePagina = 72;
  return a;
}

bool LiquidazioneTrimestraleAzienda(const std::shared_ptr<Connessione>& cn) {
  clsParametriAzienda parametri;
  parametri.cn = cn;
  return parametri.GetLiquidazioneTrimestale();
}

std::string NomeFileLiquidazioneIva(int anno, int mese, bool trimestre) {
  return "LiquidazioneIva_" + Format(Valore(anno), "0000") +
         (trimestre ? "T" + std::to_string((mese - 1) / 3 + 1) : Format(Valore(mese), "00")) + ".txt";
}

std::string RigaEsitoLiquidazioneIva(const EsitoLiquidazioneIva& e) {
  auto cifra = [](Importo i) { return FormattaImporto(Valore(i)); };
  if (e.saldo < Importo()) return "IVA a credito: " + cifra(-e.saldo);
  std::string riga = "IVA a debito: " + cifra(e.saldo);
  if (!e.maggiorazione.Zero()) riga += ", maggiorazione trimestrale: " + cifra(e.maggiorazione);
  riga += ", da versare: " + cifra(e.daVersare);
  if (!e.imposta2733.Zero()) riga += " (non supera il minimo: riportata al periodo successivo)";
  return riga;
}

namespace {

// A page must hold the head (two empty lines and seven), the foot (two) and one line.
constexpr int kMinimoRighe = 12;

const char* const kUso =
    "Uso: vorn liquidazione-iva FILE (--mese M | --trimestre T) --anno AAAA\n"
    "                           [--bollata [--definitiva] [--numera-pagine]] [--righe N] [--uscita PERCORSO]\n\n"
    "Stampa la liquidazione IVA del periodo, scrive il percorso del file e, in una riga, l'IVA a\n"
    "debito con l'importo da versare (\"IVA a debito: 1.234,56, da versare: 1.234,56\") o l'IVA a\n"
    "credito (\"IVA a credito: 345,67\"). Un debito che non supera il minimo di versamento (importi\n"
    "fissi) non si versa: è riportato al periodo successivo. Senza registri da liquidare scrive\n"
    "\"Nessun dato da stampare.\".\n\n"
    "Senza --bollata è una simulazione: legge la prima nota attraverso i registri IVA, con il\n"
    "credito o il debito riportato dall'ultima liquidazione definitiva, e non cambia nulla nei\n"
    "libri.\n\n"
    "Opzioni:\n"
    "  --mese M           il mese, da 1 a 12 (aziende che liquidano ogni mese); 13 è la\n"
    "                     liquidazione riepilogativa dell'anno, per ogni azienda\n"
    "  --trimestre T      il trimestre, da 1 a 4 (aziende che liquidano ogni trimestre); con --mese\n"
    "                     va indicato uno solo dei due. La periodicità è quella dei parametri IVA\n"
    "                     dell'azienda: l'altra è rifiutata\n"
    "  --anno AAAA        l'anno, dal 1900 al 9999\n"
    "  --bollata          la liquidazione dai progressivi lasciati dalle stampe definitive dei registri\n"
    "                     IVA; da sola è una prova e non cambia nulla\n"
    "  --definitiva       con --bollata, la stampa definitiva: porta avanti il credito o il debito\n"
    "                     riportato, salva la riga del periodo (liquidazioni periodiche) e i dati della\n"
    "                     comunicazione IVA, azzera i progressivi del periodo e salva l'ultimo foglio;\n"
    "                     tutto insieme con il file della stampa, o niente. Un periodo già liquidato in\n"
    "                     via definitiva è rifiutato\n"
    "  --numera-pagine    con --bollata, numera i fogli sul registro delle liquidazioni indicato nei\n"
    "                     parametri dell'azienda\n"
    "  --righe N          righe di una pagina, testata e piede compresi (predefinite 72, almeno 12)\n"
    "  --uscita PERCORSO  il file della stampa (predefinito: LiquidazioneIva_<AAAA><MM>.txt, per un\n"
    "                     trimestre LiquidazioneIva_<AAAA>T<T>.txt, nella cartella Temp\n"
    "                     dell'applicazione)\n\n"
    "Anche la simulazione scrive nel database (le tabelle di lavoro della stampa, tolte alla fine):\n"
    "l'azienda è aperta in scrittura in ogni caso.\n";

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  auto meseOpzione = a.Opzione("--mese");
  auto trimestreOpzione = a.Opzione("--trimestre");
  auto annoOpzione = a.Opzione("--anno");
  const bool bollata = a.Flag("--bollata");
  const bool definitiva = a.Flag("--definitiva");
  const bool numera = a.Flag("--numera-pagine");
  const int righe = RighePagina(a, 72, kMinimoRighe);
  auto uscitaOpzione = a.Opzione("--uscita");
  if (meseOpzione && trimestreOpzione) throw ErroreUso("--mese e --trimestre insieme: indicarne uno solo");
  if (!meseOpzione && !trimestreOpzione) throw ErroreUso("manca il periodo: --mese M oppure --trimestre T");
  const bool trimestre = trimestreOpzione.has_value();
  const int mese =
      trimestre ? 3 * ValoreIntero("--trimestre", *trimestreOpzione, 1, 4) : ValoreIntero("--mese", *meseOpzione, 1, 13);
  if (!annoOpzione) throw ErroreUso("manca --anno");
  const int anno = ValoreIntero("--anno", *annoOpzione, 1900, 9999);
  if (definitiva && !bollata) throw ErroreUso("--definitiva vale solo con --bollata");
  if (numera && !bollata) throw ErroreUso("--numera-pagine vale solo con --bollata");
  AziendaCli az = LeggiAzienda(a);
  a.Fine();

  const std::string uscita = uscitaOpzione ? *uscitaOpzione
                                           : CartellaStampe() + "/" + NomeFileLiquidazioneIva(anno, mese, trimestre);
  UscitaStampa(az, uscita);

  // Even a simulation writes: it builds its work tables in the company's database.
  auto db = ApriAzienda(az, Accesso::Scrittura);
  const bool aziendaTrimestrale = LiquidazioneTrimestraleAzienda(db->cn);
  if (mese != 13 && trimestre != aziendaTrimestrale)
    throw ErroreComando(aziendaTrimestrale ? "l'azienda liquida l'IVA ogni trimestre: indicare --trimestre"
                                           : "l'azienda liquida l'IVA ogni mese: indicare --mese");
  ArgomentiLiquidazioneIva arg = ArgomentiLiquidazioneIvaAzienda(db->cn);
  arg.formAttiva = &ctx.form;
  arg.nomeFile = uscita;
  if (trimestre) arg.avar_RegimeIva = "T";
  arg.avar_Mese = mese;
  arg.avar_Anno = anno;
  arg.avar_RighePagina = righe;
  arg.avar_ProvaBollato = definitiva ? "B" : "P";
  arg.avar_NumerazionePagine = numera;
  clsLiquidazioneIva liquidazione;
  liquidazione.cn = db->cn;
  const bool ok = bollata ? liquidazione.LiquidazioneIvaBollata(arg) : liquidazione.LiquidazioneIvaSimulazione(arg);
  ctx.form.Fine();
  if (!ok) throw ErroreComando("la liquidazione IVA non è stata completata");
  const EsitoLiquidazioneIva& esito = liquidazione.Esito();
  if (!esito.stampata) {
    ctx.out << "Nessun dato da stampare.\n";
    return 0;
  }
  ctx.out << uscita << "\n" << RigaEsitoLiquidazioneIva(esito) << "\n";
  return 0;
}

RegistraComando reg(Comando{"liquidazione-iva", "la liquidazione IVA di un periodo, in simulazione o bollata",
                            std::string(kUso) + "\n" + kUsoUscitaStampa + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
