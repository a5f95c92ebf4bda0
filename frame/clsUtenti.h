// The users of a company database and their rights on the client's menu entries
// ([Tabella Utenti], [Tabella Utenti Autorizzazioni]), by plain statements, without the stamp.
//
// Passwords are never kept in clear: [password] holds a salted yescrypt hash (a slow hash, so
// that a copy of the database does not give the passwords away). An empty password is kept as
// no password (null): such a user, the supervisor first of all, is let in with empty text. A
// value that is not a hash is a password in clear left by an old database, compared as it is
// until the user's password is saved again.
#pragma once
#include <cstdint>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"

namespace vorn {

// The user that every database has.
inline constexpr const char* kSupervisore = "Supervisore";

// A new salted hash of a password (yescrypt); ErroreDb when the system cannot make one.
std::string HashPassword(const std::string& password);
// True when `password` is the one `memorizzata` keeps: a hash, a clear text of an old
// database, or null/empty text for no password (matched by empty text only).
bool PasswordCorrisponde(const std::string& password, const Valore& memorizzata);
// True when the stored text is a hash of this library.
bool IsHashPassword(const std::string& memorizzata);

class clsUtenti {
 public:
  ConnessioneClasse cn;

  // Every user, by name; true when there is at least one.
  bool LocalizzaTuttiRecord(Recordset& T);
  // Adds or updates the user. The password is hashed; a password equal to the stored value
  // (the hash that LocalizzaTuttiRecord gave) keeps it, so that saving a row read back does not
  // hash a hash. Values are bound, never pasted into the statement. The result is true.
  Valore Salva_Record(const Valore& username, const Valore& password, const Valore& hWnd,
                      const Valore& Progressivo_rete);
  // Apostrophes doubled in the caller's variables, for a caller that pastes them into SQL text
  // itself. Salva_Record and Verifica_Password do not need it and do not call it.
  void RaddoppiaApiciCampiStringa(Valore& username, Valore& password, Valore& hWnd, Valore& Progressivo_rete);
  bool EliminaTuttiRecord();
  // Adds the user "Supervisore" without a password when missing.
  void Verifica_Crea_Supervisore();
  // True when the user exists and the typed password is its password (empty text for none).
  bool Verifica_Password(const Valore& Nome_Utente, const Valore& Password_digitata);
  // The state of a menu entry for the user: 0 with no row, a null, or no table of rights.
  int16_t GetStatoVoceMenu(const Valore& username, const Valore& bandname, const Valore& toolname);
  bool ExistsUtente(const Valore& username);
  // Each deletes from its own table only: the rights of a deleted user stay until deleted too.
  bool DeleteUtente(const Valore& username);
  bool DeleteUtenteAutorizzazioni(const Valore& username);
  // Writes the state of one entry, adding the row (and the table of an old database) when missing.
  bool SalvaRecordUtenteAutorizzazioni(const Valore& username, const Valore& bandname, const Valore& toolname,
                                       const Valore& Stato);
  // Deletes the right on one entry; true when there was one.
  bool DeleteVoceMenu(const Valore& username, const Valore& bandname, const Valore& toolname);
  bool EsisteTabellaUtentiAutorizzazioni();
};

// A small store of named settings ([Riferimenti Standard]): a short and a long value by name.
class clsRiferimentiStandard {
 public:
  ConnessioneClasse cn;

  // The value, or `Default` (empty text when not given) with no row or a null column.
  Valore GetRiferimentoStandard(const Valore& NomeRiferimento, const Valore& Default = Valore());
  Valore GetRiferimentoStandardMemo(const Valore& NomeRiferimento, const Valore& Default = Valore());
  // Adds or updates the value; a row made by one leaves the other column null. True.
  bool SetRiferimentoStandard(const Valore& NomeRiferimento, const Valore& ValoreRiferimento);
  bool SetRiferimentoStandardMemo(const Valore& NomeRiferimento, const Valore& ValoreRiferimento);

 private:
  Valore Leggi(const char* colonna, const Valore& nome, const Valore& predefinito);
  bool Scrivi(const char* colonna, const Valore& nome, const Valore& valore);
};

}  // namespace vorn
