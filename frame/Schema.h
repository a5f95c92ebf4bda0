// Creating a company database and bringing an existing one up to the catalogue.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "frame/Db.h"

namespace vorn {

// Creates every table of the catalogue with its key, the indexes of the journal and balance
// queries and the two saved queries, all in one transaction: on an error nothing is left.
void CreaSchema(Connessione& cn);

// On an existing database adds what the catalogue has and the database lacks: tables,
// columns, saved queries, indexes. Nothing else is changed: no column is retyped or dropped,
// no key is added to an existing table. The result lists what was added, one item each
// ("tabella X", "colonna X.Y", "vista X", "indice X"); a second call adds nothing.
std::vector<std::string> AssicuraSchema(Connessione& cn);

// A new company in a new SQLite file (an existing file is an error, never overwritten).
std::shared_ptr<Connessione> CreaAziendaSqlite(const std::string& percorso);
// A new company in a new PostgreSQL database named p.database on the server of p, created
// through the server's maintenance database; an existing database is an error.
std::shared_ptr<Connessione> CreaAziendaPostgres(const ParametriPostgres& p);

// The statements that create one table of the catalogue on the engine of `cn` (exposed for the
// tests and the upgrade).
std::string SqlCreaTabella(const Connessione& cn, const std::string& tabella);

}  // namespace vorn
