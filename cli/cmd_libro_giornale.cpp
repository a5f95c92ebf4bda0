// vorn libro-giornale: the journal book of one month, as a trial or definitively.
#include <ostream>

#include "cli/Comandi.h"
#include "cli/LibroGiornale.h"
#include "company/clsAnagraficaAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"

namespace vorn::cli {

std::string NomeFileLibroGiornale(int anno, int mese) {
  return "LibroGiornale_" + Format(Valore(anno), "0000") + Format(Valore(mese), "00") + ".txt";
}

ArgomentiLibroGiornale ArgomentiLibroGiornaleAzienda(const std::shared_ptr<Connessione>& cn) {
  ArgomentiLibroGiornale a;
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = cn;
  a.AzRagSoc = anagrafica.GetRagioneSocialeAzienda();
  a.AzParIva = anagrafica.GetPartitaIVAAzienda();
  a.avar_ProvaBollato = "P";
  a.avar_RighePagina = 72;
  a.avar_NumerazionePagine = true;
  return a;
}

namespace {

const char* const kUso =
    "Uso: vorn libro-giornale FILE --mese M --anno AAAA [--bollato] [--codici-conti] [--righe N]\n"
    "                         [--uscita PERCORSO]\n\n"
    "Stampa il libro giornale di un mese: le righe della prima nota non ancora stampate sul libro, in\n"
    "ordine di data di registrazione, numerate di seguito all'ultima stampa definitiva, con i totali\n"
    "di ogni giorno, i progressivi dare e avere riportati di pagina in pagina e di mese in mese e i\n"
    "fogli numerati dal prossimo foglio del libro; scrive il percorso del file. Senza righe da\n"
    "stampare scrive \"Nessun dato da stampare.\".\n"
    "Opzioni:\n"
    "  --mese M           il mese, da 1 a 12\n"
    "  --anno AAAA        l'anno, dal 1900 al 9999\n"
    "  --bollato          la stampa definitiva: segna come stampate sul libro le righe stampate, salva\n"
    "                     l'ultimo numero di riga, i progressivi dare e avere, la data della stampa e\n"
    "                     il numero del prossimo foglio; tutto insieme con il file della stampa, o\n"
    "                     niente. Senza, è una stampa di prova, ripetibile, con le stesse righe\n"
    "  --codici-conti     il codice del conto (e del cliente o fornitore) davanti alla descrizione\n"
    "  --righe N          righe di una pagina, testata e piede compresi (predefinite 72, almeno 14)\n"
    "  --uscita PERCORSO  il file della stampa (predefinito: LibroGiornale_<AAAA><MM>.txt nella\n"
    "                     cartella Temp dell'applicazione, per esempio LibroGiornale_202401.txt)\n\n"
    "La stampa di prova non scrive nel database: l'azienda è aperta in sola lettura, e in scrittura\n"
    "soltanto con --bollato.\n";

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  bool bollato = a.Flag("--bollato");
  bool codici = a.Flag("--codici-conti");
  int righe = RighePagina(a, 72, kMinimoRighePagina);
  auto uscitaOpzione = a.Opzione("--uscita");
  int mese = OpzioneIntera(a, "--mese", 1, 12);
  int anno = OpzioneIntera(a, "--anno", 1900, 9999);
  AziendaCli az = LeggiAzienda(a);
  a.Fine();

  std::string uscita = uscitaOpzione ? *uscitaOpzione : CartellaStampe() + "/" + NomeFileLibroGiornale(anno, mese);
  UscitaStampa(az, uscita);

  auto db = ApriAzienda(az, bollato ? Accesso::Scrittura : Accesso::Lettura);
  ArgomentiLibroGiornale arg = ArgomentiLibroGiornaleAzienda(db->cn);
  arg.formAttiva = &ctx.form;
  arg.nomeFile = uscita;
  arg.avar_Mese = mese;
  arg.avar_Anno = anno;
  arg.avar_StampaCodiciConti = codici;
  if (bollato) arg.avar_ProvaBollato = "B";
  arg.avar_RighePagina = righe;
  clsLibroGiornale libro;
  libro.cn = db->cn;
  bool ok = libro.StampaLibroGiornale(arg);
  ctx.form.Fine();
  const EsitoLibroGiornale& e = libro.Esito();
  if (!ok && e.nessunDato) {
    ctx.out << "Nessun dato da stampare.\n";
    return 0;
  }
  if (!ok) throw ErroreComando("il libro giornale di " + Format(Valore(mese), "00") + "/" + std::to_string(anno) +
                               " non è stato completato");
  ctx.out << uscita << "\n";
  return 0;
}

RegistraComando reg(Comando{"libro-giornale", "il libro giornale di un mese, in prova o bollato",
                            std::string(kUso) + "\n" + kUsoUscitaStampa + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
