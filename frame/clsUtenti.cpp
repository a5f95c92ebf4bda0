#include "frame/clsUtenti.h"

#include <crypt.h>

#include <cstring>
#include <memory>

#include "frame/Comuni.h"
#include "frame/Schema.h"
#include "frame/VornServer.h"

namespace vorn {

namespace {

constexpr const char* kPrefissoHash = "$y$";
constexpr const char* kAutorizzazioni = "Tabella Utenti Autorizzazioni";

// Equal texts, in a time that does not depend on where they differ.
bool UgualiCostante(const std::string& a, const std::string& b) {
  unsigned char diverso = a.size() == b.size() ? 0 : 1;
  const std::string& c = a.size() == b.size() ? b : a;
  for (size_t i = 0; i < a.size(); ++i) diverso |= static_cast<unsigned char>(a[i] ^ c[i]);
  return diverso == 0;
}

std::string Cripta(const std::string& password, const char* impostazione) {
  auto dati = std::make_unique<crypt_data>();
  std::memset(dati.get(), 0, sizeof(crypt_data));
  const char* h = crypt_rn(password.c_str(), impostazione, dati.get(), sizeof(crypt_data));
  if (!h || h[0] == '*') return {};
  return h;
}

}  // namespace

bool IsHashPassword(const std::string& memorizzata) { return memorizzata.rfind(kPrefissoHash, 0) == 0; }

std::string HashPassword(const std::string& password) {
  char sale[CRYPT_GENSALT_OUTPUT_SIZE];
  if (!crypt_gensalt_rn(kPrefissoHash, 0, nullptr, 0, sale, sizeof sale))
    throw ErroreDb(0, "Impossibile preparare il sale della password: " + std::string(std::strerror(errno)));
  std::string h = Cripta(password, sale);
  if (h.empty()) throw ErroreDb(0, "Impossibile calcolare l'impronta della password.");
  return h;
}

bool PasswordCorrisponde(const std::string& password, const Valore& memorizzata) {
  std::string m = memorizzata.IsNull() || memorizzata.IsEmpty() ? std::string() : memorizzata.Testo();
  if (m.empty()) return password.empty();
  if (!IsHashPassword(m)) return UgualiCostante(password, m);  // clear text of an old database
  std::string h = Cripta(password, m.c_str());
  return !h.empty() && UgualiCostante(h, m);
}

// ------------------------------------------------------------------------------ clsUtenti

bool clsUtenti::LocalizzaTuttiRecord(Recordset& T) {
  T = cn->Apri("Tabella Utenti", {}, {}, "[username]");
  return !T.Eof();
}

Valore clsUtenti::Salva_Record(const Valore& username, const Valore& password, const Valore& hWnd,
                               const Valore& Progressivo_rete) {
  const std::string utente = username.Testo();
  const std::string digitata = password.IsNull() || password.IsEmpty() ? std::string() : password.Testo();
  Atomico a(*cn);
  Recordset rs = cn->Execute("SELECT [password] FROM [Tabella Utenti] WHERE [username] = ?", {utente});
  Valore memorizzata = rs.Eof() ? Valore::Null() : rs.Fields(0).Value();
  Valore nuova = Valore::Null();
  if (!digitata.empty())
    nuova = !memorizzata.IsNull() && memorizzata.Testo() == digitata ? memorizzata : Valore(HashPassword(digitata));
  Valore finestra(static_cast<long>(NullToZeroLng(hWnd)));
  Valore rete(static_cast<long>(NullToZeroLng(Progressivo_rete)));
  if (rs.Eof())
    cn->Esegui("INSERT INTO [Tabella Utenti] ([username], [password], [HWnd], [Progressivo rete]) VALUES (?, ?, ?, ?)",
               {utente, nuova, finestra, rete});
  else
    cn->Esegui("UPDATE [Tabella Utenti] SET [password] = ?, [HWnd] = ?, [Progressivo rete] = ? WHERE [username] = ?",
               {nuova, finestra, rete, utente});
  a.Conferma();
  return Valore(true);
}

void clsUtenti::RaddoppiaApiciCampiStringa(Valore& username, Valore& password, Valore& hWnd, Valore& Progressivo_rete) {
  for (Valore* v : {&username, &password, &hWnd, &Progressivo_rete})
    if (v->IsText()) *v = Valore(RaddoppiaApici(v->Str()));
}

bool clsUtenti::EliminaTuttiRecord() {
  cn->Esegui("DELETE FROM [Tabella Utenti]");
  return true;
}

void clsUtenti::Verifica_Crea_Supervisore() {
  if (ExistsUtente(kSupervisore)) return;
  cn->Esegui("INSERT INTO [Tabella Utenti] ([username]) VALUES (?)", {std::string(kSupervisore)});
}

bool clsUtenti::Verifica_Password(const Valore& Nome_Utente, const Valore& Password_digitata) {
  Recordset rs = cn->Execute("SELECT [password] FROM [Tabella Utenti] WHERE [username] = ?", {Nome_Utente.Testo()});
  if (rs.Eof()) return false;
  std::string digitata = Password_digitata.IsNull() || Password_digitata.IsEmpty() ? "" : Password_digitata.Testo();
  return PasswordCorrisponde(digitata, rs.Fields(0).Value());
}

int16_t clsUtenti::GetStatoVoceMenu(const Valore& username, const Valore& bandname, const Valore& toolname) {
  if (!EsisteTabellaUtentiAutorizzazioni()) return 0;
  Recordset rs = cn->Execute(
      "SELECT [Stato] FROM [Tabella Utenti Autorizzazioni] WHERE [username] = ? AND [bandname] = ? AND [toolname] = ?",
      {username.Testo(), bandname.Testo(), toolname.Testo()});
  if (rs.Eof()) return 0;
  return static_cast<int16_t>(NullToZeroLng(rs.Fields(0).Value()));
}

bool clsUtenti::ExistsUtente(const Valore& username) {
  return !cn->Scalare("SELECT 1 FROM [Tabella Utenti] WHERE [username] = ?", {username.Testo()}).IsNull();
}

bool clsUtenti::DeleteUtente(const Valore& username) {
  cn->Esegui("DELETE FROM [Tabella Utenti] WHERE [username] = ?", {username.Testo()});
  return true;
}

bool clsUtenti::DeleteUtenteAutorizzazioni(const Valore& username) {
  if (!EsisteTabellaUtentiAutorizzazioni()) return true;
  cn->Esegui("DELETE FROM [Tabella Utenti Autorizzazioni] WHERE [username] = ?", {username.Testo()});
  return true;
}

bool clsUtenti::SalvaRecordUtenteAutorizzazioni(const Valore& username, const Valore& bandname, const Valore& toolname,
                                                const Valore& Stato) {
  Atomico a(*cn);
  if (!EsisteTabellaUtentiAutorizzazioni()) {
    cn->Esegui(SqlCreaTabella(*cn, kAutorizzazioni));
    cn->DimenticaSchema();
  }
  Recordset rs = cn->Apri(kAutorizzazioni, "[username] = ? AND [bandname] = ? AND [toolname] = ?",
                          {username.Testo(), bandname.Testo(), toolname.Testo()});
  if (rs.Eof()) {
    rs.AddNew();
    rs("username") = username.Testo();
    rs("bandname") = bandname.Testo();
    rs("toolname") = toolname.Testo();
  }
  rs("Stato") = Valore(static_cast<long>(NullToZeroLng(Stato)));
  rs.Update();
  a.Conferma();
  return true;
}

bool clsUtenti::DeleteVoceMenu(const Valore& username, const Valore& bandname, const Valore& toolname) {
  if (!EsisteTabellaUtentiAutorizzazioni()) return false;
  return cn->Esegui(
             "DELETE FROM [Tabella Utenti Autorizzazioni] WHERE [username] = ? AND [bandname] = ? AND [toolname] = ?",
             {username.Testo(), bandname.Testo(), toolname.Testo()}) > 0;
}

bool clsUtenti::EsisteTabellaUtentiAutorizzazioni() { return EsisteTabella(*cn, kAutorizzazioni); }

// ----------------------------------------------------------------- clsRiferimentiStandard

Valore clsRiferimentiStandard::Leggi(const char* colonna, const Valore& nome, const Valore& predefinito) {
  Valore def = predefinito.IsEmpty() ? Valore(std::string()) : predefinito;
  Recordset rs = cn->Execute(std::string("SELECT [") + colonna +
                                 "] FROM [Riferimenti Standard] WHERE [Nome riferimento] = ?",
                             {nome.Testo()});
  if (rs.Eof()) return def;
  return LeggiCampo(rs.Fields(0), def);
}

bool clsRiferimentiStandard::Scrivi(const char* colonna, const Valore& nome, const Valore& valore) {
  Atomico a(*cn);
  const std::string n = nome.Testo();
  Valore v = valore.IsEmpty() ? Valore::Null() : valore;
  if (cn->Scalare("SELECT 1 FROM [Riferimenti Standard] WHERE [Nome riferimento] = ?", {n}).IsNull())
    cn->Esegui(std::string("INSERT INTO [Riferimenti Standard] ([Nome riferimento], [") + colonna + "]) VALUES (?, ?)",
               {n, v});
  else
    cn->Esegui(std::string("UPDATE [Riferimenti Standard] SET [") + colonna + "] = ? WHERE [Nome riferimento] = ?",
               {v, n});
  a.Conferma();
  return true;
}

Valore clsRiferimentiStandard::GetRiferimentoStandard(const Valore& NomeRiferimento, const Valore& Default) {
  return Leggi("Valore riferimento", NomeRiferimento, Default);
}
Valore clsRiferimentiStandard::GetRiferimentoStandardMemo(const Valore& NomeRiferimento, const Valore& Default) {
  return Leggi("Valore riferimento memo", NomeRiferimento, Default);
}
bool clsRiferimentiStandard::SetRiferimentoStandard(const Valore& NomeRiferimento, const Valore& ValoreRiferimento) {
  return Scrivi("Valore riferimento", NomeRiferimento, ValoreRiferimento);
}
bool clsRiferimentiStandard::SetRiferimentoStandardMemo(const Valore& NomeRiferimento,
                                                        const Valore& ValoreRiferimento) {
  return Scrivi("Valore riferimento memo", NomeRiferimento, ValoreRiferimento);
}

}  // namespace vorn
