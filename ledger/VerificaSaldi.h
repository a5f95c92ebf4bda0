// The balances are a function of the journal: this check recomputes, by SQL over `Prima Nota`,
// what every sub-account, client and supplier balance of the year should hold and lists every
// column that holds something else. A missing balance row counts as zero.
#pragma once
#include <string>
#include <vector>

#include "frame/Db.h"
#include "frame/Importo.h"

namespace vorn {

struct DifferenzaSaldo {
  std::string archivio;  // "Saldi Piano Dei Conti", "Anagrafica Clienti" or "Anagrafica Fornitori"
  std::string codice;    // the sub-account's seven characters, or the client's or supplier's code
  std::string colonna;   // the balance column
  Importo registrato;    // what the column holds
  Importo ricostruito;   // what the journal gives
};

// Every difference, by archive, code and column.
std::vector<DifferenzaSaldo> VerificaSaldi(Connessione& cn);

// One line: archive, code, column, the two amounts.
std::string DescriviDifferenza(const DifferenzaSaldo& d);

}  // namespace vorn
