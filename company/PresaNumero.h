// Taking a number from a counter inside the caller's transaction, and the key filters of the
// counter tables.
//
// The usual way to number is in two steps: ask for the next number, use it, save it. Two
// clients between the two steps get the same number. A posting that must not share its number
// takes it here instead: the counter row is read under a row lock (FOR UPDATE on PostgreSQL;
// on SQLite the write transaction, BEGIN IMMEDIATE, already keeps other writers out), raised
// and written back in the same transaction, so that a second client waits for the first to
// commit and then counts on from its number. A rollback gives the number back.
#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn {

// A WHERE text built part by part, with its values bound as parameters.
class FiltroChiave {
 public:
  // A text key part: an empty value (Empty, Null or "") finds both empty text and null, as
  // the key columns of old archives hold either; any other value finds its text.
  FiltroChiave& Testo(const std::string& colonna, const Valore& valore);
  // A numeric key part: an empty value finds 0 and null; text must read as a whole number
  // (ErroreDb 13 otherwise).
  FiltroChiave& Numero(const std::string& colonna, const Valore& valore);
  // The parts joined by AND, in parentheses; empty when there is none.
  std::string Where() const;
  const Parametri& Valori() const { return valori_; }

 private:
  std::vector<std::string> parti_;
  Parametri valori_;
};

// The key of a row of a counter table, part by part: the filter that finds the row, the parts
// written into a row being added, and the parts as the columns of a counter's new row.
class ChiaveComposta {
 public:
  explicit ChiaveComposta(std::string tabella) : tabella_(std::move(tabella)) {}
  // A part on column `colonna` (bare name), compared as FiltroChiave::Testo / ::Numero.
  ChiaveComposta& Testo(const std::string& colonna, const Valore& valore);
  ChiaveComposta& Numero(const std::string& colonna, const Valore& valore);
  FiltroChiave Filtro() const;
  // Every part into its column of the current row.
  void Scrivi(Recordset& rs) const;
  const std::vector<std::pair<std::string, Valore>>& Colonne() const { return parti_; }

 private:
  std::string tabella_;
  std::vector<std::pair<std::string, Valore>> parti_;
  std::vector<bool> numeriche_;
};

// A counter: the row that holds it, and how to make it when it is missing.
struct Contatore {
  std::string tabella;
  std::string colonna;        // the last number given
  std::string where;          // the counter's row; empty for a table of one row
  Parametri parametri;
  // The columns of a row made at the first number (its key); the counter column is set apart.
  std::vector<std::pair<std::string, Valore>> nuovaRiga;
  // Optional: a statement giving the highest number already in use in the numbered table, so
  // that a counter that fell behind never hands out a number that is taken.
  std::string sqlMassimo;
  Parametri parametriMassimo;
};

// The counter raised by one (from the higher of the counter and sqlMassimo), written, and
// returned. Runs inside the caller's transaction (a savepoint of it), or in one of its own
// committed before returning when none is open. ErroreDb with a clear text when the number
// would pass the 32-bit range or when the row cannot be made for another client's.
int32_t PrendiNumero(Connessione& cn, const Contatore& c);

// Rows that the caller reads once the counter is locked, in the same transaction: on
// PostgreSQL in the counter's own round trip. The recordsets come back in `letti`, editable,
// in the order of `aperture`.
// `scrittura` is the counter's write while it waits to be sent (Connessione::EseguiInCoda), 0
// when it has gone.
struct LettureDopoNumero {
  std::vector<Connessione::Apertura> aperture;
  std::vector<Recordset> letti;
  uint64_t scrittura = 0;
};
int32_t PrendiNumero(Connessione& cn, const Contatore& c, LettureDopoNumero& dopo);

// True when the engine refused a row because its key is already in the table: on numbered
// rows, a number that another client committed first.
bool ChiaveDuplicata(const ErroreDb& e);

// "Il numero <numero> di <cosa> è già stato usato da un altro utente: ripetere l'operazione."
std::string MsgNumeroGiaUsato(const std::string& cosa, const Valore& numero);

}  // namespace vorn
