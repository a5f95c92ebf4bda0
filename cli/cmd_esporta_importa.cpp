// vorn esporta and vorn importa: the archives of a company to and from the text files of the
// exchange with an outside accounting program, one file an archive in a folder.
#include <ostream>
#include <sstream>

#include "cli/Comandi.h"
#include "frame/Comuni.h"
#include "interchange/clsExportVorn.h"

namespace vorn::cli {

namespace {

std::string ElencoArchivi() {
  std::string s;
  for (const auto& d : ArchiviVorn()) s += "                  " + d.nome + std::string(13 - d.nome.size(), ' ') + d.file + "\n";
  return s;
}

// --archivi a,b,...: the archives named (clienti-fornitori names both); all without the option.
std::vector<ArchivioVorn> Archivi(Argomenti& a) {
  std::vector<ArchivioVorn> v;
  auto opz = a.Opzione("--archivi");
  if (!opz) {
    for (ArchivioVorn x : {ArchivioVorn::PianoConti, ArchivioVorn::Causali, ArchivioVorn::CodiciIva,
                           ArchivioVorn::Valute, ArchivioVorn::PrimaNota, ArchivioVorn::Clienti,
                           ArchivioVorn::Fornitori})
      v.push_back(x);
    return v;
  }
  std::stringstream ss(*opz);
  std::string nome;
  while (std::getline(ss, nome, ',')) {
    nome = Trim(nome);
    bool trovato = false;
    for (const auto& d : ArchiviVorn())
      if (d.nome == nome || (nome == "clienti-fornitori" && (d.archivio == ArchivioVorn::Clienti ||
                                                             d.archivio == ArchivioVorn::Fornitori))) {
        v.push_back(d.archivio);
        trovato = true;
      }
    if (!trovato) throw ErroreUso("archivio sconosciuto in --archivi: \"" + nome + "\" (vorn esporta --help)");
  }
  if (v.empty()) throw ErroreUso("--archivi non nomina nessun archivio");
  return v;
}

std::string Uso(bool esporta) {
  std::string s = esporta ? "Uso: vorn esporta FILE CARTELLA [--archivi NOME,...]\n\n"
                            "Scrive gli archivi dell'azienda nei file di testo dello scambio con un programma di\n"
                            "contabilità esterno, un file per archivio nella CARTELLA (creata se manca): un record\n"
                            "per riga, i campi a larghezza fissa separati da \"|\", in UTF-8. Un file che esiste già\n"
                            "viene sostituito solo se è vuoto o è a sua volta un'esportazione dello stesso archivio;\n"
                            "ogni file è scritto per intero o per niente.\n\n"
                          : "Uso: vorn importa FILE CARTELLA [--archivi NOME,...]\n\n"
                            "Legge gli archivi dai file di testo dello scambio nella CARTELLA e li scrive\n"
                            "nell'azienda. Prima di scrivere controlla tutti i file: un file mancante, un file non\n"
                            "UTF-8, una riga corta, un importo, una data o un codice conto non validi, un sottoconto o\n"
                            "una causale che l'azienda non ha fermano l'importazione con il nome del file, la riga e\n"
                            "il campo, e nulla viene scritto. Poi scrive tutto in una transazione: o tutto o niente.\n"
                            "Le registrazioni passano per la prima nota e muovono i saldi; un numero di registrazione\n"
                            "già usato ne prende uno nuovo. Se un archivio dell'azienda contiene già dati chiede\n"
                            "conferma (--si / --no per l'uso non interattivo).\n\n";
  s += "Opzioni:\n"
       "  --archivi NOME,...  gli archivi, tutti se l'opzione manca (clienti-fornitori li indica\n"
       "                      entrambi):\n" +
       ElencoArchivi() + "\n";
  return s;
}

int Esporta(Contesto& ctx) {
  AziendaCli az = LeggiAzienda(ctx.args);
  std::string cartella = ctx.args.Posizionale("la cartella dei file");
  auto archivi = Archivi(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  clsExportVorn ex;
  ex.cn = db->cn;
  ctx.form.Caption("Esportazione archivi");
  auto file = ex.Esporta(&ctx.form, cartella, archivi);
  ctx.form.Fine();
  if (file.empty()) throw ErroreComando(ex.ErroreMostrato() ? "nessun file sostituito dopo l'errore" : ex.Errore());
  for (const auto& f : file) ctx.out << "Scritto " << f << "\n";
  return 0;
}

int Importa(Contesto& ctx) {
  AziendaCli az = LeggiAzienda(ctx.args);
  std::string cartella = ctx.args.Posizionale("la cartella dei file");
  auto archivi = Archivi(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Scrittura);
  clsExportVorn ex;
  ex.cn = db->cn;
  ctx.form.Caption("Importazione archivi");
  std::vector<int64_t> righe;
  bool ok = ex.Importa(&ctx.form, cartella, archivi, Valore("vorn"), 0, kSeparatoreVorn, &righe);
  ctx.form.Fine();
  if (!ok) throw ErroreComando(ex.ErroreMostrato() ? "nessun dato importato" : ex.Errore() + " Nessun dato importato.");
  for (size_t i = 0; i < archivi.size(); ++i)
    ctx.out << "Importato " << DescrizioneArchivio(archivi[i]).file << ": " << righe[i] << " righe\n";
  return 0;
}

RegistraComando regEsporta(Comando{"esporta", "esporta gli archivi nei file di testo dello scambio",
                                   Uso(true) + kUsoAzienda, Esporta});
RegistraComando regImporta(Comando{"importa", "importa gli archivi dai file di testo dello scambio",
                                   Uso(false) + kUsoAzienda, Importa});

}  // namespace

}  // namespace vorn::cli
