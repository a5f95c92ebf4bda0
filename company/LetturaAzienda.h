// Reading and writing the company's tables of settings and counters: shared by the parameter,
// profile, progressive and numbering classes of this folder.
#pragma once
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn::azienda {

// A column of the current row: the default when null, text columns trimmed.
Valore LeggiCampoAz(Recordset& rs, std::string_view colonna, const Valore& predefinito);
// A value as a whole number / a double; 0 when it is not a number.
int InteroDi(const Valore& v);
double DoubleDi(const Valore& v);
// The first n characters (not bytes) of a UTF-8 text.
std::string PrimiCaratteri(const std::string& s, size_t n);

// The first row of a one-row table, read-only ("SELECT * FROM [T] LIMIT 1").
Recordset ApriRigaUnica(Connessione& cn, const std::string& tabella);

// A read on a connection that may be inside the caller's transaction: there the statement runs
// in a savepoint of its own, so that a refused statement does not spoil the caller's work.
Recordset LeggiProtetto(Connessione& cn, const std::string& sql);

// Writes without asking the row that `where` selects (the table's first row when `where` is
// empty): a missing row is added and given its first values by `nuova`; then `assegna` fills
// the fields, the row is stamped with its writer and updated.
void ScriviRiga(Connessione& cn, const std::string& tabella, const std::string& where, const Parametri& p,
                const Valore& clientID, long hWnd, const std::function<void(Recordset&)>& assegna,
                const std::function<void(Recordset&)>& nuova = {});

// Saves the values of `valori` whose names are among `colonne` (matched without regard to
// case, written under the column's own spelling) into the first row of a one-row table, adding
// the row when the table is empty, under the record protocol. A name that is not among the
// columns is refused with ErroreDb before anything is read or written.
bool SalvaRigaUnica(Connessione& cn, const std::string& tabella, const std::vector<std::string>& colonne,
                    const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd, bool& Cancel);

}  // namespace vorn::azienda
