// The model companies: the archives a new company starts from (chart of accounts, causals, VAT
// codes, payment terms, parameters and account references), kept as readable data files under
// interchange/modelli/<name>/. Each model folder has a list, modello.tsv, naming the tables it
// fills and the file each one is read from; a file may belong to another model's folder, so
// that the models share what they have in common.
//
// Data files are UTF-8, one row a line, fields separated by tabs. The first line that is not a
// comment ("#") gives the column names, spelt as the company tables spell them. An empty field
// is the empty text in a text column and Null elsewhere; \N is Null in any column; \t and \n stand
// for a tab and a line break, a doubled backslash for one backslash. Amounts and other numbers
// are written with a point as decimal mark, dates as yyyy-mm-dd, booleans as 1 or 0.
#pragma once
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "frame/Db.h"
#include "frame/Host.h"

namespace vorn {

// A model that cannot be read: missing folder or file, a column the table does not have, a value
// that is not of its column's kind. The text names the file and the line.
class ErroreModello : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// One table of a model and the file it is read from.
struct TabellaModello {
  std::string tabella;
  std::string file;  // full path
};

// The rows of one table of a model, typed as the company's table types them.
struct DatiModello {
  std::string tabella;
  std::vector<Colonna> colonne;
  std::vector<std::vector<Valore>> righe;
};

// The folder that holds the models: the one the application set (ImpostaCartellaModelli), else
// $VORN_MODELLI when set, else the source tree's interchange/modelli, else share/vorn/modelli of
// the prefix the library was installed to, else share/vorn/modelli beside the running program.
// ErroreModello when none exists.
std::string CartellaModelli();
// The application's own folder of models (a client linked to an installed library passes the one
// its package names: vorn_MODELLI in CMake, the variable modelli in pkg-config); empty text goes
// back to the search above. Set it before any company is created from a model.
void ImpostaCartellaModelli(const std::string& cartella);
// The names of the models found there ("semplificato", "standard"), sorted.
std::vector<std::string> ModelliDisponibili();
// The tables of a model in their load order.
std::vector<TabellaModello> TabelleModello(const std::string& modello);
// The rows of one table of a model; ErroreModello when the model has no such table.
DatiModello LeggiTabellaModello(const std::string& modello, const std::string& tabella);
// Reads a data file for the company table `tabella`.
DatiModello LeggiFileModello(const std::string& file, const std::string& tabella);

// What a load did to one table.
struct EsitoTabellaModello {
  std::string tabella;
  size_t righe = 0;
  bool caricata = false;  // false: the model's table was empty, the company's left as it was
};

// The text of the box that tells a table the model leaves empty: "Piano dei conti dal DB origine
// vuoto" for the chart, "Tabella '...' dal DB origine vuota." for the others.
std::string TestoTabellaModelloVuota(const std::string& tabella);

// Replaces the rows of `tabellaDestinazione` (the model's table when empty) with the rows of
// one table of the model, inside the caller's transaction when there is one; `righe`, when
// given, takes the rows written. A table that the model leaves empty is not copied: a message
// box says so ("Piano dei conti dal DB origine vuoto" for the chart, "Tabella '...' dal DB
// origine vuota." for the others), the company's table stays as it was and the result is false.
bool CaricaTabellaModello(Connessione& cn, const std::string& modello, const std::string& tabella,
                          const std::string& tabellaDestinazione = {}, size_t* righe = nullptr);

// Loads a whole model into the company open on `cn` (clsCaricaTabelleStandard::
// CaricaModelloCompleto): table by table, each table emptied and then filled with the model's
// rows, all in one transaction. An empty table of the model is
// told as above and skipped, and the others go on. An error leaves the company as it was and
// passes to the caller. The form, when given, shows each table as it is loaded.
std::vector<EsitoTabellaModello> CaricaModello(Connessione& cn, const std::string& modello, IForm* form = nullptr);

}  // namespace vorn
