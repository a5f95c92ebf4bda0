// Creating a company database and bringing an existing one up to the catalogue.
#pragma once
#include <functional>
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

// A new company in a new SQLite file. It is built (the schema, then `riempi` when given) in a
// folder of its own beside the file and takes the file's name only when whole, by a link that
// fails when the name exists: an existing file is never overwritten nor removed, of two
// creations of one name only one succeeds, and an interrupted creation leaves nothing under the
// name. ":memory:" and "file:" URIs are refused.
std::shared_ptr<Connessione> CreaAziendaSqlite(const std::string& percorso,
                                                const std::function<void(Connessione&)>& riempi = {});
// A new company in a new PostgreSQL database named p.database on the server of p, created
// through the server's maintenance database. The schema (p.schema, made when missing), its
// tables and what `riempi` loads are one transaction. An existing database takes the company
// only when that schema has no table (an empty database made for it, or one left by an
// interrupted creation); otherwise "esiste già". A database this call made goes again on a
// failure; one it found is left as it was.
std::shared_ptr<Connessione> CreaAziendaPostgres(const ParametriPostgres& p,
                                                  const std::function<void(Connessione&)>& riempi = {});

// Removes a company that CreaAziendaPostgres made and that is to go (a demo stopped half way):
// with p.schema, that schema and everything in it; otherwise the whole database p.database.
void EliminaAziendaPostgres(const ParametriPostgres& p);

// The statements that create one table of the catalogue on the engine of `cn` (exposed for the
// tests and the upgrade).
std::string SqlCreaTabella(const Connessione& cn, const std::string& tabella);

}  // namespace vorn
