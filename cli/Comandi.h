// The subcommands of vorn. Each file of this folder registers its own commands.
#pragma once
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/HostConsole.h"
#include "frame/clsDB.h"

namespace vorn::cli {

// A usage error or a failure already explained: the command ends with exit code 2 or 1.
class ErroreUso : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};
class ErroreComando : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The arguments of one command: options (--nome VALORE or --nome=VALORE) and positionals.
class Argomenti {
 public:
  explicit Argomenti(std::vector<std::string> a) : a_(std::move(a)) {}
  std::optional<std::string> Opzione(const std::string& nome);
  bool Flag(const std::string& nome);
  // The next positional argument; ErroreUso naming `descrizione` when missing.
  std::string Posizionale(const std::string& descrizione);
  std::optional<std::string> PosizionaleFacoltativo();
  // ErroreUso when an argument was not consumed.
  void Fine() const;
  bool Vuoto() const { return a_.empty(); }

 private:
  std::vector<std::string> a_;
};

struct Contesto {
  Argomenti& args;
  HostConsole& host;
  FormConsole& form;
  std::ostream& out;
  std::string cartella;  // CartellaApplicazione
};

struct Comando {
  std::string nome;     // "piano-conti", or two words: "stampa mastrini"
  std::string sintesi;  // one line for vorn --help
  std::string uso;      // the text of vorn NOME --help
  std::function<int(Contesto&)> esegui;
};

void Registra(Comando c);
const std::map<std::string, Comando>& Registro();
struct RegistraComando {
  explicit RegistraComando(Comando c) { Registra(std::move(c)); }
};

// The company a command works on: an SQLite file as the first positional argument, or a
// PostgreSQL database named by --pg-database with --pg-host HOST[:PORT] and --pg-user USER
// (password from VORN_PG_PASSWORD, else asked on the terminal without echo).
struct AziendaCli {
  bool postgres = false;
  std::string file;
  ParametriPostgres pg;
  std::string Descrizione() const;
};
AziendaCli LeggiAzienda(Argomenti& a);
// How a command uses the company: a command that only reads opens an SQLite file read-only, so
// that it works on a read-only file and leaves the file as it found it.
enum class Accesso { Lettura, Scrittura };
// Connects to the company and loads the process-wide parameters; ErroreComando when it fails
// (a missing SQLite file is told in one line before any connection is tried).
std::unique_ptr<clsDB> ApriAzienda(const AziendaCli& az, Accesso accesso);
extern const char* const kUsoAzienda;

// The file a print writes: never the company's file (nor its journal files), whatever the name
// it goes by, and never an existing file that is not a report (VerificaUscitaStampa).
// ErroreComando when refused; the path as given otherwise.
std::string UscitaStampa(const AziendaCli& az, const std::string& uscita);
extern const char* const kUsoUscitaStampa;

// --righe N: the lines of a page, head and foot included, the same in every print. `minimo` is
// the head and foot of the print plus one line of body; ErroreUso outside minimo..10000.
int RighePagina(Argomenti& a, int predefinite, int minimo);

// A required option of a whole number of digits only, within the bounds; ErroreUso naming the
// option otherwise (--mese, --anno, --registro).
int OpzioneIntera(Argomenti& a, const std::string& nome, int minimo, int massimo);
// The same for an option that may be left out (`predefinito` then).
int OpzioneInteraFacoltativa(Argomenti& a, const std::string& nome, int predefinito, int minimo, int massimo);
// The same check of a value already taken from the arguments.
int ValoreIntero(const std::string& nome, const std::string& valore, int minimo, int massimo);

// A plain table on the terminal: every column as wide as its widest cell, one blank between
// columns, the last without trailing blanks. Without rows, the line `seVuota` when given
// instead of an empty table.
enum class Allinea { Sinistra, Destra };
void ScriviTabella(std::ostream& out, const std::vector<std::pair<std::string, Allinea>>& testata,
                   const std::vector<std::vector<std::string>>& righe, const char* seVuota = nullptr);

// Runs vorn with the given arguments (argv without the program name).
int Esegui(const std::vector<std::string>& argv, std::ostream& out, std::FILE* err = stderr);

}  // namespace vorn::cli
