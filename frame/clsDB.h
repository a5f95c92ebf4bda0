// The connection object: opens the company database, loads the process-wide parameters,
// wraps the transactions of the working connection.
#pragma once
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "frame/Db.h"
#include "frame/Host.h"

namespace vorn {

// The columns that an earlier-generation database keeps under short names, by table, in the
// order of the copy: the old name and the catalogue's name.
struct CampoDaAggiornare {
  const char* origine;
  const char* destinazione;
};
struct TabellaDaAggiornare {
  const char* tabella;
  std::vector<CampoDaAggiornare> campi;
};
const std::vector<TabellaDaAggiornare>& CampiDaAggiornare();

// What the whole upgrade of an old database did (clsDB::AggiornaArchivi).
struct EsitoAggiornamentoArchivi {
  bool giaNuovo = false;   // the database was already marked new: nothing was done, no report
  bool riuscito = false;   // everything committed and the database marked new
  std::string report;      // AggiornamentoArchivi.txt
  std::vector<std::string> aggiunte;    // what the structure lacked and was added ("colonna T.C", ...)
  std::vector<std::string> rinominate;  // PostgreSQL columns brought to the spelling the statements use
  int copiati = 0;         // columns copied to their new name
  int nonRiusciti = 0;     // columns whose old name the database does not have
  int passwordCifrate = 0; // users' passwords found in clear and replaced by their hash
  std::string errore;      // why the upgrade was undone (riuscito false)
  std::string erroreReport;  // why the report could not be written (report then empty)
};

class clsDB {
 public:
  // The working connection, handed to every other class.
  std::shared_ptr<Connessione> cn;

  Valore NomeDatabase() const { return Valore(nome_); }
  void NomeDatabase(const Valore& v) { nome_ = v.Testo(); }

  // An SQLite company file. The file has no password of its own: a non-blank PasswordDB is
  // refused with a message rather than pretending to protect the file.
  bool ConnettiDatabaseSQLite(const Valore& NomeDatabase, const Valore& PasswordDB = Valore(),
                              bool NonSettareParametriGlobali = false);
  // A PostgreSQL database: NomeServer is "host" or "host:port" (or a socket folder).
  bool ConnettiDatabasePostgreSQL(const Valore& NomeDatabase, const Valore& NomeServer, const Valore& NomeUtenteDB,
                                  const Valore& PasswordDB, bool NonSettareParametriGlobali = false);
  void ImpostaVariabiliGlobaliServer();
  // Closes both connections; never throws.
  void DisconnettiDatabase();

  // The transactions of `cn`; the result is always empty. Errors pass to the caller.
  Valore Begin_Transazione();
  Valore Commit_Transazione();
  Valore Rollback_Transazione();

  // Upgrade of an earlier-generation database. IsNuovoDBVorn: the database is marked new in
  // [Versione Archivi]. SetNuovoDBVorn marks it (creating the table or its row when missing);
  // its result is false also on success, as the clients expect. CopiaCampoInTabella copies one
  // column into its new name and writes its line into the open log (only inside AggiornaCampiDb);
  // AggiornaCampiDb copies every column of the list into AggiornamentoArchivi.txt under the
  // report folder, a column the database lacks being only a " non riuscito." line.
  // RistrutturaPrimaNota replaces the nulls of the journal and chart texts; false at the first
  // failing statement.
  bool IsNuovoDBVorn();
  bool SetNuovoDBVorn();
  bool CopiaCampoInTabella(const Valore& NomeTabella, const Valore& NomeCampoOrigine, const Valore& NomeCampoDestinazione);
  void AggiornaCampiDb();
  bool RistrutturaPrimaNota();
  // The whole upgrade, all or nothing: on PostgreSQL the columns stored with capitals are
  // brought to the spelling the statements use; the structure is completed from the catalogue;
  // every column is copied; the nulls are replaced; passwords kept in clear are replaced by
  // their hash; the database is marked new. Any failure
  // undoes all of it and the report says so. A database already marked new is left alone.
  EsitoAggiornamentoArchivi AggiornaArchivi(IForm* form = nullptr);

  // Options of the SQLite path (tests shorten the wait for a locked file).
  int attesaSQLiteMs = 5000;
  // The SQLite file opened read-only: nothing of it changes, and a read-only file can be read.
  bool solaLetturaSQLite = false;
  // Extra options of the PostgreSQL path (a search path, for tests).
  std::string schemaPostgreSQL;

 private:
  enum class EsitoCopia { Copiata, Mancante, Errore };
  EsitoCopia Copia(const std::string& tabella, const std::string& origine, const std::string& destinazione,
                   std::string& errore);
  Connessione& Cn();
  std::string nome_;
  std::ostream* log_ = nullptr;  // the upgrade's log while AggiornaCampiDb or AggiornaArchivi runs
};

}  // namespace vorn
