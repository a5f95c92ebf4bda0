// The connection object: opens the company database, loads the process-wide parameters,
// wraps the transactions of the working connection.
#pragma once
#include <memory>
#include <string>

#include "frame/Db.h"

namespace vorn {

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

  // Options of the SQLite path (tests shorten the wait for a locked file).
  int attesaSQLiteMs = 5000;
  // The SQLite file opened read-only: nothing of it changes, and a read-only file can be read.
  bool solaLetturaSQLite = false;
  // Extra options of the PostgreSQL path (a search path, for tests).
  std::string schemaPostgreSQL;

 private:
  std::string nome_;
};

}  // namespace vorn
