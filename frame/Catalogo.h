// The catalogue of the company database: every persistent table with its columns, their kinds,
// its key, whether it carries the last-reader stamp (clientName, hWnd) and whether it holds one
// row of settings; and the two saved queries that statements join as tables.
//
// Work tables that a run builds for itself (a client's prefix + a fixed name, the
// "Elaborazione ..." report tables, the balance-sheet and year-change scratch tables) are not
// company data and are not listed here: the run that needs them creates them.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "frame/Db.h"

namespace vorn {

struct ColonnaCatalogo {
  std::string nome;
  TipoCampo tipo = TipoCampo::Testo;
  // Numbered by the database when an insert leaves it out; always the table's whole key.
  bool automatico = false;
};

struct TabellaCatalogo {
  std::string nome;
  // In the order of the definition, the stamp columns last when the table has them.
  std::vector<ColonnaCatalogo> colonne;
  // Key columns in key order; empty for a one-row table and for a table without key.
  std::vector<std::string> chiave;
  bool timbro = false;       // clientName (text) and hWnd (32-bit integer)
  bool rigaUnica = false;    // one row of settings, read with no filter
  bool senzaChiave = false;  // rows appended by statements, told apart by no column: edited by row identity

  // The column of that name (without regard to case), or nullptr.
  const ColonnaCatalogo* Colonna(std::string_view nome) const;
};

// A saved query: a view over the tables, read by the statements like a table.
struct VistaCatalogo {
  std::string nome;
  std::vector<std::string> colonne;
  std::string select;  // the SELECT that defines it, with bracketed names
};

// An index that the journal and balance queries need.
struct IndiceCatalogo {
  std::string nome;  // short: the engines share one name space per schema
  std::string tabella;
  std::vector<std::string> colonne;
};

const std::vector<TabellaCatalogo>& TabelleCatalogo();
const std::vector<VistaCatalogo>& VisteCatalogo();
const std::vector<IndiceCatalogo>& IndiciCatalogo();
// The table of that name (without regard to case), or nullptr.
const TabellaCatalogo* TabellaCatalogoDi(std::string_view nome);

// The number of a journal entry read from its text: the trimmed text when it is digits only
// (up to 18 on PostgreSQL), as a whole number; Null for any other text. The index below holds
// it, so that the highest entry number in use is found without reading the journal:
// SELECT MAX(<expression>) FROM [Prima Nota] is answered by the index on both engines.
std::string EspressioneNumeroRegistrazione(bool postgres);
inline constexpr const char* kIndiceNumeroRegistrazione = "ix_pn_numreg_num";
// CREATE INDEX of that index on the engine of `postgres`.
std::string SqlIndiceNumeroRegistrazione(bool postgres);

// The DDL type of a kind, the same word on both engines.
std::string TipoSql(TipoCampo tipo);

}  // namespace vorn
