#include "frame/clsDB.h"

#include <sqlite3.h>

#include "company/clsParametriAzienda.h"
#include "frame/Globali.h"
#include "frame/Host.h"

namespace vorn {

namespace {

void FallisciConnessione(const std::string& testo) {
  Host().Clessidra(false);
  Host().MsgBox(testo, vbExclamation, Host().TitoloApplicazione());
}

std::string NonGestito(const std::string& nome, const std::string& numero, const std::string& descrizione) {
  return "Errore non gestito durante il tentativo di connessione al database " + nome + "\r" + numero + " " + descrizione;
}

}  // namespace

bool clsDB::ConnettiDatabaseSQLite(const Valore& NomeDatabase, const Valore& PasswordDB, bool NonSettareParametriGlobali) {
  Host().Clessidra(true);
  nome_ = NomeDatabase.Testo();
  if (!Trim(PasswordDB.Testo()).empty()) {
    FallisciConnessione(
        "Il database SQLite non ha una password propria: il file " + nome_ +
        " va protetto con i permessi del sistema. Connettersi lasciando vuota la password.");
    return false;
  }
  try {
    OpzioniSqlite o;
    o.attesaMs = attesaSQLiteMs;
    o.solaLettura = solaLetturaSQLite;
    cn = Connessione::ApriSqlite(nome_, o);
    G().ConnessioneGlobale = cn;
    if (!NonSettareParametriGlobali) ImpostaVariabiliGlobaliServer();
  } catch (const ErroreDb& e) {
    if (e.Numero() == SQLITE_BUSY || e.Numero() == SQLITE_LOCKED)
      FallisciConnessione("Archivi bloccati in modo esclusivo da un'altro utente o istanza.");
    else
      FallisciConnessione(NonGestito(nome_, std::to_string(e.Numero()), e.Descrizione()));
    return false;
  } catch (const std::exception& e) {
    FallisciConnessione(NonGestito(nome_, "0", e.what()));
    return false;
  }
  Host().Clessidra(false);
  return true;
}

bool clsDB::ConnettiDatabasePostgreSQL(const Valore& NomeDatabase, const Valore& NomeServer, const Valore& NomeUtenteDB,
                                       const Valore& PasswordDB, bool NonSettareParametriGlobali) {
  Host().Clessidra(true);
  nome_ = NomeDatabase.Testo();
  ParametriPostgres p;
  p.database = nome_;
  p.host = NomeServer.Testo();
  p.user = NomeUtenteDB.Testo();
  p.password = PasswordDB.Testo();
  p.schema = schemaPostgreSQL;
  try {
    cn = Connessione::ApriPostgres(p);
    G().ConnessioneGlobale = Connessione::ApriPostgres(p);
    if (!NonSettareParametriGlobali) ImpostaVariabiliGlobaliServer();
  } catch (const ErroreDb& e) {
    const std::string& st = e.SqlState();
    if (st == "28P01")
      FallisciConnessione("Password del database non valida.");
    else if (st.rfind("08", 0) == 0 || st == "3D000" || st == "28000")
      FallisciConnessione("Codice errore: " + st + " " + e.Descrizione());
    else
      FallisciConnessione(NonGestito(nome_, st.empty() ? std::to_string(e.Numero()) : st, e.Descrizione()));
    return false;
  } catch (const std::exception& e) {
    FallisciConnessione(NonGestito(nome_, "0", e.what()));
    return false;
  }
  Host().Clessidra(false);
  return true;
}

void clsDB::ImpostaVariabiliGlobaliServer() {
  clsParametriAzienda par;
  par.cn = cn;
  auto& g = G();
  par.GetParametriGlobali(g.ValutaDiConto, g.SimboloValutaConto, g.DescrizioneValutaConto, g.DecimaliImporti,
                          g.CodiceValutaLire, g.CodiceValutaEuro, g.CambioFissoLireEuro, g.DecimaliCambi,
                          g.DecimaliQuantita, g.DecimaliPrezziValutaConto);
  g.IndSqlServer = std::string(1, cn && cn->IsPostgres() ? '1' : '0');
}

void clsDB::DisconnettiDatabase() {
  try {
    if (G().ConnessioneGlobale) G().ConnessioneGlobale->Close();
  } catch (...) {
  }
  try {
    if (cn) cn->Close();
  } catch (...) {
  }
  G().ConnessioneGlobale.reset();
  cn.reset();
}

Valore clsDB::Begin_Transazione() {
  if (!cn) throw ErroreDb(3709, "La connessione non è aperta.");
  cn->BeginTrans();
  return Valore();
}
Valore clsDB::Commit_Transazione() {
  if (!cn) throw ErroreDb(3709, "La connessione non è aperta.");
  cn->CommitTrans();
  return Valore();
}
Valore clsDB::Rollback_Transazione() {
  if (!cn) throw ErroreDb(3709, "La connessione non è aperta.");
  cn->RollbackTrans();
  return Valore();
}

}  // namespace vorn
