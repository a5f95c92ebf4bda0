// The family of the small master archives (zones, countries, price lists, agents, ...): every
// one finds a record for the client's screen, saves it under the record protocol, deletes it,
// steps to the next or the previous code and turns a code into its description. What changes
// from one archive to the other is told by a DefinizioneAnagrafica; the work is done once, by
// the functions of namespace anagrafiche, and FamigliaAnagrafiche gives each class the public
// operations with as many key arguments as its table has key parts.
#pragma once
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Valore.h"
#include "frame/VornServer.h"

namespace vorn {

// How a key part is compared.
enum class TipoChiave {
  Testo,        // empty text and null are the same blank key
  TestoBianco,  // as Testo, and a text of blanks too (the sub-zone of a zone's own row)
  Numero,       // a number, kept as its plain text ("1")
};

struct ChiaveAnagrafica {
  std::string colonna;
  TipoChiave tipo = TipoChiave::Testo;
};

struct DefinizioneAnagrafica {
  std::string tabella;
  // Key columns in the order of the operations' key arguments.
  std::vector<ChiaveAnagrafica> chiavi;
  // The column that the description getter reads and ExistCodice gives back.
  std::string descrizione;
  // Caption of "Codice inesistente." from the getters.
  std::string titolo;
  // Data columns that SalvaRecord writes, in the order of its arguments.
  std::vector<std::string> colonne;
  // Stepping moves chiavi[passo]; the key parts before it stay fixed. `filtroPasso`, when not
  // empty, is a further condition on the rows that count (for zones: only the zones' own rows).
  size_t passo = 0;
  std::string filtroPasso = {};
};

namespace anagrafiche {

using Chiavi = std::vector<Valore>;

// The connection of a class; a clear error instead of a crash when the client forgot it.
Connessione& Conn(const std::shared_ptr<Connessione>& cn);

// Condition on the first k.size() key parts, the values appended to `p`. A blank text key finds
// empty text and null alike; `pieno` makes the last part find only a value that is not blank.
std::string FiltroChiavi(const DefinizioneAnagrafica& d, const Chiavi& k, Parametri& p, bool pieno = false);
// The value of a key part as it is compared and stored (a numeric part as its plain text).
Valore ValoreChiave(const ChiaveAnagrafica& c, const Valore& v);

// The record, editable and left open in T; a found row is stamped with the caller.
bool Localizza(Connessione& cn, const DefinizioneAnagrafica& d, Recordset& T, const Chiavi& k, const Valore& clientID,
               long hWnd);
// Saves the columns named in `valori` (each must be one of `colonne`, matched without regard to
// case) with the key parts, adding the row when it is missing. A name outside `colonne` is
// refused with ErroreDb before anything is read or written. NoPrompt true overwrites a row read
// by someone else without asking.
bool Salva(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& k, const RecordValori& valori,
           const std::vector<std::string>& colonne, const Valore& clientID, long hWnd, bool& Cancel,
           bool NoPrompt = false);
// Deletes the rows matching the first k.size() key parts.
bool Cancella(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& k);
// One step of chiavi[passo] with `fissi` for the parts before it. A blank code starts from the
// end: forward gives the last code, backward the first. False, and `codice` untouched, when
// there is nothing further.
bool Passo(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& fissi, Valore& codice, bool avanti);
// One column of the record by LeggiCampo with `predefinito`; nullopt when there is no record.
std::optional<Valore> LeggiColonna(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& k,
                                   std::string_view colonna, const Valore& predefinito = Valore(std::string()),
                                   bool pieno = false);
// LeggiColonna for several records, read together (on PostgreSQL in one round trip), in the
// order of `chiavi`.
std::vector<std::optional<Valore>> LeggiColonnaDi(Connessione& cn, const DefinizioneAnagrafica& d,
                                                  const std::vector<Chiavi>& chiavi, std::string_view colonna,
                                                  const Valore& predefinito = Valore(std::string()));
// An unknown code, when `codice` is not blank: the message when Cancel was passed, the control
// marked when one was passed.
void SegnalaInesistente(const Valore& codice, bool* Cancel, IControllo* ControlloDaSelezionare,
                        const std::string& titolo);
// The getter of the family: the column, or empty text with SegnalaInesistente on `codice`.
Valore Descrizione(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& k, std::string_view colonna,
                   const Valore& codice, bool* Cancel, IControllo* ControlloDaSelezionare, bool pieno = false);
// True when the record exists; `descrizione`, when passed, takes the description column or
// empty text.
bool Esiste(Connessione& cn, const DefinizioneAnagrafica& d, const Chiavi& k, Valore* descrizione);
// The highest value of the stepped key by the database's text order, in mask "000000"; "000000"
// for an empty table.
std::string MaxCodice(Connessione& cn, const DefinizioneAnagrafica& d, size_t chiave);
// The record of named values from parallel lists of names and values (ErroreDb when their
// lengths differ).
RecordValori Record(const std::vector<std::string>& nomi, const std::vector<Valore>& valori);

}  // namespace anagrafiche

// The public operations of a member class `Classe`, which has N key parts and gives its
// definition through `static const DefinizioneAnagrafica& Definizione()`. P is the number of
// the key arguments of the stepping operations, 0 for a class that has none of its own here.
template <class Classe, size_t N, size_t P = 1>
class FamigliaAnagrafiche {
 public:
  ConnessioneClasse cn;

  bool LocalizzaRecord(Recordset& T, const Valore& k1, const Valore& clientID, long hWnd)
    requires(N == 1)
  {
    return anagrafiche::Localizza(C(), D(), T, {k1}, clientID, hWnd);
  }
  bool LocalizzaRecord(Recordset& T, const Valore& k1, const Valore& k2, const Valore& clientID, long hWnd)
    requires(N == 2)
  {
    return anagrafiche::Localizza(C(), D(), T, {k1, k2}, clientID, hWnd);
  }
  bool LocalizzaRecord(Recordset& T, const Valore& k1, const Valore& k2, const Valore& k3, const Valore& clientID,
                       long hWnd)
    requires(N == 3)
  {
    return anagrafiche::Localizza(C(), D(), T, {k1, k2, k3}, clientID, hWnd);
  }
  bool LocalizzaRecord(Recordset& T, const Valore& k1, const Valore& k2, const Valore& k3, const Valore& k4,
                       const Valore& clientID, long hWnd)
    requires(N == 4)
  {
    return anagrafiche::Localizza(C(), D(), T, {k1, k2, k3, k4}, clientID, hWnd);
  }

  // The data columns as a record of named values: the columns named are written, the others
  // of an existing row stay as they are.
  bool SalvaRecord(const Valore& k1, const RecordValori& valori, const Valore& clientID, long hWnd, bool& Cancel)
    requires(N == 1)
  {
    return anagrafiche::Salva(C(), D(), {k1}, valori, D().colonne, clientID, hWnd, Cancel);
  }
  bool SalvaRecord(const Valore& k1, const Valore& k2, const RecordValori& valori, const Valore& clientID, long hWnd,
                   bool& Cancel)
    requires(N == 2)
  {
    return anagrafiche::Salva(C(), D(), {k1, k2}, valori, D().colonne, clientID, hWnd, Cancel);
  }
  bool SalvaRecord(const Valore& k1, const Valore& k2, const Valore& k3, const RecordValori& valori,
                   const Valore& clientID, long hWnd, bool& Cancel)
    requires(N == 3)
  {
    return anagrafiche::Salva(C(), D(), {k1, k2, k3}, valori, D().colonne, clientID, hWnd, Cancel);
  }
  bool SalvaRecord(const Valore& k1, const Valore& k2, const Valore& k3, const Valore& k4, const RecordValori& valori,
                   const Valore& clientID, long hWnd, bool& Cancel)
    requires(N == 4)
  {
    return anagrafiche::Salva(C(), D(), {k1, k2, k3, k4}, valori, D().colonne, clientID, hWnd, Cancel);
  }

  // No check that the code is still in use anywhere.
  bool CancellaRecord(const Valore& k1)
    requires(N == 1)
  {
    return anagrafiche::Cancella(C(), D(), {k1});
  }
  bool CancellaRecord(const Valore& k1, const Valore& k2)
    requires(N == 2)
  {
    return anagrafiche::Cancella(C(), D(), {k1, k2});
  }
  bool CancellaRecord(const Valore& k1, const Valore& k2, const Valore& k3)
    requires(N == 3)
  {
    return anagrafiche::Cancella(C(), D(), {k1, k2, k3});
  }
  bool CancellaRecord(const Valore& k1, const Valore& k2, const Valore& k3, const Valore& k4)
    requires(N == 4)
  {
    return anagrafiche::Cancella(C(), D(), {k1, k2, k3, k4});
  }

  // The next code by text order (a blank code: the last one), the previous one (a blank code:
  // the first one). The client then calls LocalizzaRecord.
  bool RecordSuccessivo(Valore& codice)
    requires(P == 1)
  {
    return anagrafiche::Passo(C(), D(), {}, codice, true);
  }
  bool RecordPrecedente(Valore& codice)
    requires(P == 1)
  {
    return anagrafiche::Passo(C(), D(), {}, codice, false);
  }
  bool RecordSuccessivo(const Valore& k1, Valore& codice)
    requires(P == 2)
  {
    return anagrafiche::Passo(C(), D(), {k1}, codice, true);
  }
  bool RecordPrecedente(const Valore& k1, Valore& codice)
    requires(P == 2)
  {
    return anagrafiche::Passo(C(), D(), {k1}, codice, false);
  }

  bool ExistCodice(const Valore& k1, Valore* Descrizione = nullptr)
    requires(N == 1)
  {
    return anagrafiche::Esiste(C(), D(), {k1}, Descrizione);
  }
  bool ExistCodice(const Valore& k1, const Valore& k2, Valore* Descrizione = nullptr)
    requires(N == 2)
  {
    return anagrafiche::Esiste(C(), D(), {k1, k2}, Descrizione);
  }
  bool ExistCodice(const Valore& k1, const Valore& k2, const Valore& k3, Valore* Descrizione = nullptr)
    requires(N == 3)
  {
    return anagrafiche::Esiste(C(), D(), {k1, k2, k3}, Descrizione);
  }
  bool ExistCodice(const Valore& k1, const Valore& k2, const Valore& k3, const Valore& k4,
                   Valore* Descrizione = nullptr)
    requires(N == 4)
  {
    return anagrafiche::Esiste(C(), D(), {k1, k2, k3, k4}, Descrizione);
  }

  // The highest code, not the next one.
  std::string GetMaxCodice() { return anagrafiche::MaxCodice(C(), D(), D().passo); }

 protected:
  static const DefinizioneAnagrafica& D() { return Classe::Definizione(); }
  Connessione& C() const { return anagrafiche::Conn(cn); }
  // The getter of the family on the definition's description column; the message is given
  // for the last key part.
  Valore LeggiDescrizione(const anagrafiche::Chiavi& k, bool* Cancel, IControllo* Controllo) const {
    return anagrafiche::Descrizione(C(), D(), k, D().descrizione, k.back(), Cancel, Controllo);
  }
  // Any column in the getter's form.
  Valore LeggiColonna(const anagrafiche::Chiavi& k, std::string_view colonna, bool* Cancel = nullptr,
                      IControllo* Controllo = nullptr) const {
    return anagrafiche::Descrizione(C(), D(), k, colonna, k.back(), Cancel, Controllo);
  }
  // A column with a default and no message.
  Valore LeggiValore(const anagrafiche::Chiavi& k, std::string_view colonna, const Valore& predefinito) const {
    return anagrafiche::LeggiColonna(C(), D(), k, colonna, predefinito).value_or(predefinito);
  }
};

}  // namespace vorn
