#include "frame/Schema.h"

#include <filesystem>
#include <set>

#include "frame/Catalogo.h"

namespace vorn {

namespace {

std::string Quadre(const std::string& nome) { return "[" + nome + "]"; }

std::string ElencoColonne(const std::vector<std::string>& colonne) {
  std::string s;
  for (const auto& c : colonne) s += (s.empty() ? "" : ", ") + Quadre(c);
  return s;
}

// A short constraint name from the table's name: the engines cut identifiers (PostgreSQL at
// 63 bytes) and the names of the tables are long, accented and blank-ridden.
std::string NomeVincolo(const std::string& tabella) {
  std::string s = "k_";
  for (char c : LCase(tabella)) {
    if (s.size() >= 34) break;
    if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) s += c;
  }
  uint32_t h = 2166136261u;  // FNV-1a, so that two names alike in their letters stay apart
  for (unsigned char c : tabella) h = (h ^ c) * 16777619u;
  static const char* hex = "0123456789abcdef";
  s += '_';
  for (int i = 0; i < 6; ++i) s += hex[(h >> (i * 4)) & 15];
  return s;
}

std::string DefinizioneColonna(const ColonnaCatalogo& c) { return Quadre(c.nome) + " " + TipoSql(c.tipo); }

bool EsisteIndice(Connessione& cn, const std::string& nome) {
  if (cn.IsPostgres())
    return !cn.Scalare("SELECT 1 FROM pg_indexes WHERE schemaname = current_schema() AND indexname = ?", {LCase(nome)})
                .IsNull();
  return !cn.Scalare("SELECT 1 FROM sqlite_master WHERE type = 'index' AND name = ?", {nome}).IsNull();
}

std::string SqlIndice(const IndiceCatalogo& i) {
  return "CREATE INDEX " + Quadre(i.nome) + " ON " + Quadre(i.tabella) + " (" + ElencoColonne(i.colonne) + ")";
}

std::string SqlVista(const VistaCatalogo& v) { return "CREATE VIEW " + Quadre(v.nome) + " AS " + v.select; }

bool Contiene(const std::vector<std::string>& nomi, const std::string& nome) {
  for (const auto& n : nomi)
    if (UgualeNoCase(n, nome)) return true;
  return false;
}

std::string IdentificatorePg(const std::string& nome) {
  std::string s = "\"";
  for (char c : nome) {
    if (c == '"') s += '"';
    s += c;
  }
  return s + "\"";
}

}  // namespace

std::string SqlCreaTabella(const Connessione& cn, const std::string& tabella) {
  const TabellaCatalogo* t = TabellaCatalogoDi(tabella);
  if (!t) throw ErroreDb(0, "Tabella sconosciuta al catalogo: " + tabella);
  std::string sql = "CREATE TABLE " + Quadre(t->nome) + " (";
  bool primo = true;
  for (const auto& c : t->colonne) {
    sql += (primo ? "" : ", ") + DefinizioneColonna(c);
    primo = false;
  }
  if (!t->chiave.empty()) {
    // Key columns of old archives may hold nulls: on PostgreSQL the key is a unique
    // constraint that counts nulls as equal, on SQLite a primary key (which admits them).
    if (cn.IsPostgres())
      sql += ", CONSTRAINT " + NomeVincolo(t->nome) + " UNIQUE NULLS NOT DISTINCT (" + ElencoColonne(t->chiave) + ")";
    else
      sql += ", PRIMARY KEY (" + ElencoColonne(t->chiave) + ")";
  }
  return sql + ")";
}

void CreaSchema(Connessione& cn) {
  Atomico a(cn);
  for (const auto& t : TabelleCatalogo()) cn.Esegui(SqlCreaTabella(cn, t.nome));
  for (const auto& i : IndiciCatalogo()) cn.Esegui(SqlIndice(i));
  for (const auto& v : VisteCatalogo()) cn.Esegui(SqlVista(v));
  a.Conferma();
  cn.DimenticaSchema();
}

std::vector<std::string> AssicuraSchema(Connessione& cn) {
  std::vector<std::string> aggiunte;
  Atomico a(cn);
  std::vector<std::string> esistenti = cn.Tabelle();
  for (const auto& t : TabelleCatalogo()) {
    if (!Contiene(esistenti, t.nome)) {
      cn.Esegui(SqlCreaTabella(cn, t.nome));
      aggiunte.push_back("tabella " + t.nome);
      continue;
    }
    std::vector<std::string> presenti;
    for (const auto& c : cn.ColonneTabella(t.nome)) presenti.push_back(c.nome);
    for (const auto& c : t.colonne) {
      if (Contiene(presenti, c.nome)) continue;
      cn.Esegui("ALTER TABLE " + Quadre(t.nome) + " ADD COLUMN " + DefinizioneColonna(c));
      aggiunte.push_back("colonna " + t.nome + "." + c.nome);
    }
  }
  for (const auto& i : IndiciCatalogo()) {
    if (EsisteIndice(cn, i.nome)) continue;
    cn.Esegui(SqlIndice(i));
    aggiunte.push_back("indice " + i.nome);
  }
  for (const auto& v : VisteCatalogo()) {
    if (Contiene(esistenti, v.nome)) continue;
    cn.Esegui(SqlVista(v));
    aggiunte.push_back("vista " + v.nome);
  }
  a.Conferma();
  cn.DimenticaSchema();
  return aggiunte;
}

std::shared_ptr<Connessione> CreaAziendaSqlite(const std::string& percorso) {
  std::error_code ec;
  if (percorso.empty()) throw ErroreDb(0, "Nome del nuovo archivio non indicato.");
  if (std::filesystem::exists(percorso, ec))
    throw ErroreDb(0, "Impossibile creare l'azienda: il file " + percorso + " esiste già.");
  std::shared_ptr<Connessione> cn;
  try {
    OpzioniSqlite o;
    o.crea = true;
    cn = Connessione::ApriSqlite(percorso, o);
    CreaSchema(*cn);
  } catch (const ErroreDb& e) {
    if (cn) cn->Close();
    std::filesystem::remove(percorso, ec);
    throw ErroreDb(e.Numero(), "Impossibile creare l'azienda nel file " + percorso + ": " + e.Descrizione(),
                   e.SqlState());
  }
  return cn;
}

std::shared_ptr<Connessione> CreaAziendaPostgres(const ParametriPostgres& p) {
  if (Trim(p.database).empty()) throw ErroreDb(0, "Nome del nuovo database non indicato.");
  if (p.database.find('\0') != std::string::npos) throw ErroreDb(0, "Nome del database non valido.");
  ParametriPostgres manutenzione = p;
  manutenzione.database = "postgres";
  manutenzione.schema.clear();
  {
    std::shared_ptr<Connessione> admin;
    try {
      admin = Connessione::ApriPostgres(manutenzione);
    } catch (const ErroreDb& e) {
      throw ErroreDb(e.Numero(), "Impossibile collegarsi al server per creare il database " + p.database + ": " +
                                     e.Descrizione(),
                     e.SqlState());
    }
    try {
      // The name is a quoted identifier: it keeps its case and its characters.
      admin->Esegui("CREATE DATABASE " + IdentificatorePg(p.database) +
                    " TEMPLATE template0 ENCODING 'UTF8' LC_COLLATE 'C' LC_CTYPE 'C'");
    } catch (const ErroreDb& e) {
      if (e.SqlState() == "42P04")
        throw ErroreDb(e.Numero(), "Impossibile creare l'azienda: il database " + p.database + " esiste già.",
                       e.SqlState());
      throw ErroreDb(e.Numero(), "Impossibile creare il database " + p.database + ": " + e.Descrizione(),
                     e.SqlState());
    }
  }
  std::shared_ptr<Connessione> cn;
  try {
    if (!p.schema.empty()) {
      ParametriPostgres senzaSchema = p;
      senzaSchema.schema.clear();
      auto c = Connessione::ApriPostgres(senzaSchema);
      c->Esegui("CREATE SCHEMA IF NOT EXISTS " + IdentificatorePg(p.schema));
      c->Close();
    }
    cn = Connessione::ApriPostgres(p);
    CreaSchema(*cn);
    return cn;
  } catch (const ErroreDb& e) {
    if (cn) cn->Close();
    try {
      auto admin = Connessione::ApriPostgres(manutenzione);
      admin->Esegui("DROP DATABASE IF EXISTS " + IdentificatorePg(p.database));
    } catch (...) {
    }
    throw ErroreDb(e.Numero(), "Impossibile creare l'azienda nel database " + p.database + ": " + e.Descrizione(),
                   e.SqlState());
  }
}

}  // namespace vorn
