// Record access primitives: dropping and probing tables, the last-reader stamp that tells a
// record class that someone else reached a row since its caller read it, and the record
// protocol that every class owning a table follows.
#pragma once
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "frame/Db.h"
#include "frame/Host.h"

namespace vorn {

// The caption of the library's own questions.
inline constexpr const char* kTitoloVorn = "Vorn XP";

bool EliminaTabella(Connessione& cn, const std::string& NomeTabella);
bool EsisteTabella(Connessione& cn, const std::string& NomeTabella);

// Stamps the current row with its reader: at once when no edit is in progress, otherwise as
// part of the caller's own Update.
void MarcaRecord(Recordset& rs, const Valore& clientID, long hWnd);
// MarcaRecord on every row from the current one to the end, then MoveFirst.
void MarcaRecordset(Recordset& rs, const Valore& clientID, long hWnd);
// True when another client or another window stamped the row since.
bool RecordVariato(Recordset& rs, const Valore& clientID, long hWnd);
// Asks whether to overwrite a row that another reader reached; true means: give up.
bool ConfermaSovrascrittura(Recordset& rs, const Valore& clientID, long hWnd);
// "Codice inesistente." with the given caption (the application's title when empty); sets Cancel.
void MsgCodiceInesistente(bool& Cancel, const std::string& titolo = {});

// A control of the client's form, which a build without a screen leaves alone.
class IControllo {
 public:
  virtual ~IControllo() = default;
  virtual void Enabled(bool) {}
  virtual void BackColor(long) {}
  virtual std::string Text() { return {}; }
  virtual void SetText(const std::string&) {}
  virtual void SelStart(int) {}
  virtual void SelLength(int) {}
};
void EvidenziaControllo(IControllo* c);
void EvidenziaTesto(IControllo* c);
void ColoreAbilitato(IControllo* c, bool abilitato);

// Decimals of a currency, read on the global connection; DecimaliImporti when it has no row.
Valore DecimaliValuta(const Valore& CodiceValuta);
// The same on a given connection (a class's own `cn`).
Valore DecimaliValuta(Connessione& cn, const Valore& CodiceValuta);

class clsLookup {
 public:
  std::shared_ptr<Connessione> cn;
  // Runs the statement; true when it gives at least one row. On error, one message and false.
  bool CaricaDati(Recordset& T, const Valore& Istruzioni_sql);
};

// The record protocol of a class that owns a table.
//
// Localizza opens the rows that `where` selects as an editable recordset left with the caller
// and, when found, stamps the first row with the caller's identity.
bool LocalizzaRecordProtocollo(Connessione& cn, Recordset& T, std::string_view tabella, std::string_view where,
                               const Parametri& p, const Valore& clientID, long hWnd);
// Salva opens the row by its key; a missing row is added, an existing one reached by another
// reader asks ConfermaSovrascrittura (no: Cancel true, nothing written, result false). Then
// `assegna` fills the fields (`nuovo` tells an added row), the stamp joins the row, Update.
// `chiedi` false overwrites without asking: how bulk loaders save.
bool SalvaRecordProtocollo(Connessione& cn, std::string_view tabella, std::string_view where, const Parametri& p,
                           const Valore& clientID, long hWnd, bool& Cancel,
                           const std::function<void(Recordset& rs, bool nuovo)>& assegna, bool chiedi = true);

}  // namespace vorn
