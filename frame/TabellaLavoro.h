// Work tables: the tables that a print or a run fills with a statement and reads back, made
// from declared columns so that every column reads back with the same type on both engines
// (an amount as an amount, a date as a date), never with what an engine guesses from a
// "CREATE TABLE ... AS SELECT".
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "frame/Db.h"

namespace vorn {

// A column of a work table, of the catalogue's kinds. A text with a width holds at most that
// many characters on both engines (a longer value is an error on both); width 0 is unbounded.
struct ColonnaLavoro {
  std::string nome;
  TipoCampo tipo = TipoCampo::Testo;
  int larghezza = 0;
};

class TabellaLavoro {
 public:
  // The table is named prefisso + nome. The prefix (a client's or a run's) must be a plain
  // name: letters, digits and underscores, a letter or an underscore first, at most 30
  // characters; the name
  // passes VerificaNome. A name that is a table of the company's catalogue is refused: a work
  // table never takes the place of an archive.
  TabellaLavoro(Connessione& cn, const std::string& prefisso, const std::string& nome, std::vector<ColonnaLavoro> colonne);
  // A work table of a fixed name, without a client's prefix, under the same checks: the runs
  // that use one hold a guard of their own, so that only one of them at a time uses a database.
  struct NomeFisso {};
  TabellaLavoro(Connessione& cn, NomeFisso, const std::string& nome, std::vector<ColonnaLavoro> colonne);

  const std::string& Nome() const { return nome_; }
  const std::vector<ColonnaLavoro>& Colonne() const { return colonne_; }

  // Drops a previous table of the same name and creates the table empty.
  void Crea();
  // INSERT INTO the table (its columns, in order) the rows of `select`, which gives one value
  // per column in the same order. The count of rows added.
  int64_t Riempi(std::string_view select, const Parametri& p = {});
  // Drops the table; nothing when it is not there.
  void Elimina();
  // An index on some of its columns, for the lookups of a run on a large table.
  void CreaIndice(const std::vector<std::string>& colonne);

  // The statement that creates it on the engine of the connection.
  std::string SqlCrea() const;

 private:
  void Verifica();
  Connessione& cn_;
  std::string nome_;
  std::vector<ColonnaLavoro> colonne_;
};

}  // namespace vorn
