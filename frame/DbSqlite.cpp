// The SQLite engine: the embedded default, one company per file.
#include <sqlite3.h>

#include <cmath>
#include <cstring>
#include <list>
#include <memory>
#include <unordered_map>

#include "frame/Db.h"
#include "frame/Int128.h"

namespace vorn {

namespace {

TipoCampo TipoDaDichiarato(const char* decl) {
  if (!decl) return TipoCampo::Vuoto;
  std::string d = UCase(decl);
  if (d.rfind("IMPORTO", 0) == 0 || d.rfind("NUMERIC(19,4)", 0) == 0 || d.rfind("MONEY", 0) == 0 || d.rfind("CURRENCY", 0) == 0 ||
      d.rfind("DECIMAL", 0) == 0)
    return TipoCampo::Importo;
  if (d.rfind("DATE", 0) == 0 || d.rfind("TIMESTAMP", 0) == 0) return TipoCampo::Data;
  if (d.rfind("BOOL", 0) == 0 || d == "BIT") return TipoCampo::Booleano;
  if (d.rfind("SMALLINT", 0) == 0) return TipoCampo::Intero16;
  if (d.find("INT") != std::string::npos) return TipoCampo::Intero32;
  if (d.rfind("DOUBLE", 0) == 0) return TipoCampo::Doppio;
  if (d.rfind("REAL", 0) == 0 || d.rfind("FLOAT", 0) == 0) return TipoCampo::Singolo;
  if (d.rfind("MEMO", 0) == 0 || d.rfind("CLOB", 0) == 0) return TipoCampo::Memo;
  return TipoCampo::Testo;
}

// What an amount or a sum past kMassimoImportoSqlite is told.
constexpr const char* kOltreIntervallo = " oltre 99.999.999.999,9999: fuori dall'intervallo che SQLite conserva esatto.";

// Exact sum of amounts: values that carry at most four decimals are added as whole
// ten-thousandths in 128 bits, so that millions of them add up to the last decimal; other
// reals fall back to a compensated sum.
struct StatoSomma {
  Int128 scalato = 0;
  long double kahan = 0, comp = 0;
  int64_t interi = 0;
  bool soloInteri = true, esatto = true, overflowInteri = false;
  int64_t n = 0;
};

void SommaPasso(sqlite3_context* ctx, int, sqlite3_value** argv) {
  // The aggregate context is only 8-byte aligned: it holds a pointer to the state.
  auto** slot = static_cast<StatoSomma**>(sqlite3_aggregate_context(ctx, sizeof(StatoSomma*)));
  if (!slot) return;
  if (!*slot) *slot = new StatoSomma();
  StatoSomma* s = *slot;
  int t = sqlite3_value_numeric_type(argv[0]);
  if (t == SQLITE_NULL) return;
  ++s->n;
  long double v;
  if (t == SQLITE_INTEGER) {
    int64_t i = sqlite3_value_int64(argv[0]);
    if (__builtin_add_overflow(s->interi, i, &s->interi)) s->overflowInteri = true;
    s->scalato += static_cast<Int128>(i) * 10000;
    v = static_cast<long double>(i);
  } else {
    s->soloInteri = false;
    if (t != SQLITE_FLOAT) {
      // A text that is no number would count as nothing: the sum is refused instead.
      sqlite3_result_error(ctx, "Valore non numerico in una somma di importi.", -1);
      return;
    }
    double d = sqlite3_value_double(argv[0]);
    long double r = static_cast<long double>(d) * 10000.0L;
    long double rr = std::nearbyint(r);
    long double tol = std::max(1e-4L, std::fabs(r) * 1e-15L);
    if (std::fabs(r - rr) > tol || std::fabs(rr) > 9.2e18L) s->esatto = false;
    else s->scalato += static_cast<Int128>(static_cast<int64_t>(rr));
    v = d;
  }
  long double y = v - s->comp;
  long double tt = s->kahan + y;
  s->comp = (tt - s->kahan) - y;
  s->kahan = tt;
}

void SommaFine(sqlite3_context* ctx, bool total) {
  auto** slot = static_cast<StatoSomma**>(sqlite3_aggregate_context(ctx, 0));
  std::unique_ptr<StatoSomma> s(slot ? *slot : nullptr);
  if (!s || s->n == 0) {
    if (total) sqlite3_result_double(ctx, 0.0);
    else sqlite3_result_null(ctx);
    return;
  }
  if (s->soloInteri && !total) {
    if (s->overflowInteri) sqlite3_result_error(ctx, "integer overflow", -1);
    else sqlite3_result_int64(ctx, s->interi);
    return;
  }
  if (s->esatto) {
    if (s->scalato > kMassimoImportoSqlite || s->scalato < -kMassimoImportoSqlite) {
      sqlite3_result_error(ctx, ("Somma di importi" + std::string(kOltreIntervallo)).c_str(), -1);
      return;
    }
    Int128 q = s->scalato / 10000, r = s->scalato % 10000;
    sqlite3_result_double(ctx, static_cast<double>(q) + static_cast<double>(r) / 10000.0);
    return;
  }
  sqlite3_result_double(ctx, static_cast<double>(s->kahan));
}
void SommaFineSum(sqlite3_context* ctx) { SommaFine(ctx, false); }
void SommaFineTotal(sqlite3_context* ctx) { SommaFine(ctx, true); }

class ConnessioneSqlite final : public Connessione {
 public:
  ConnessioneSqlite(sqlite3* db) : db_(db) {}
  ~ConnessioneSqlite() override { Close(); }

  Motore motore() const override { return Motore::SQLite; }
  bool Aperta() const override { return db_ != nullptr; }
  void Close() override {
    if (!db_) return;
    for (auto& [k, st] : cache_) sqlite3_finalize(st);
    cache_.clear();
    ordine_.clear();
    sqlite3_close_v2(db_);
    db_ = nullptr;
  }

  void Controllo(const char* sql) override {
    if (!db_) throw ErroreDb(3709, "La connessione non è aperta.");
    // The same few texts come back with every transaction: each is prepared once.
    sqlite3_stmt* st = Prepara(sql, true);
    Guardia g{st, true};
    int rc = sqlite3_step(st);
    if (rc != SQLITE_DONE && rc != SQLITE_ROW) Errore(rc);
  }
  const char* TestoInizio() const override { return "BEGIN IMMEDIATE"; }
  const char* TestoInizioLettura() const override { return "BEGIN DEFERRED"; }
  bool InTransazione() const override { return db_ && !sqlite3_get_autocommit(db_); }

  std::vector<std::string> Tabelle() override {
    std::vector<std::string> out;
    auto rs = Execute("SELECT name FROM sqlite_master WHERE type IN ('table','view') AND name NOT LIKE 'sqlite_%' ORDER BY name");
    for (; !rs.Eof(); rs.MoveNext()) out.push_back(rs.Fields(0).Value().Str());
    return out;
  }
  std::vector<Colonna> ColonneTabella(const std::string& t) override {
    std::vector<Colonna> out;
    auto rs = Execute("SELECT name, type FROM pragma_table_info(?)", {t});
    for (; !rs.Eof(); rs.MoveNext()) {
      TipoCampo tc = TipoDaDichiarato(rs.Fields(1).Value().Str().c_str());
      out.push_back({rs.Fields(0).Value().Str(), tc == TipoCampo::Vuoto ? TipoCampo::Testo : tc});
    }
    return out;
  }

  void ScorriInterno(const std::string& s, const Parametri& p,
                     const std::function<bool(const std::vector<Colonna>&, const std::vector<Valore>&)>& riga) override {
    if (!db_) throw ErroreDb(3709, "La connessione non è aperta.");
    sqlite3_stmt* st = Prepara(s, false);
    Guardia g{st, false};
    Lega(st, p);
    std::vector<Colonna> cols = Colonne(st);
    std::vector<Valore> row(cols.size());
    for (;;) {
      int rc = sqlite3_step(st);
      if (rc == SQLITE_DONE) break;
      if (rc != SQLITE_ROW) Errore(rc);
      for (size_t i = 0; i < cols.size(); ++i) row[i] = Leggi(st, static_cast<int>(i), cols[i].tipo);
      if (!riga(cols, row)) break;
    }
  }

 protected:
  std::string ColonnaRid() const override { return "rowid"; }

  std::vector<std::string> LeggiChiave(const std::string& t) override {
    std::vector<std::pair<int, std::string>> k;
    auto rs = Execute("SELECT name, pk FROM pragma_table_info(?)", {t});
    for (; !rs.Eof(); rs.MoveNext()) {
      int64_t pk = rs.Fields(1).Value().Int();
      if (pk > 0) k.push_back({static_cast<int>(pk), rs.Fields(0).Value().Str()});
    }
    std::sort(k.begin(), k.end());
    std::vector<std::string> out;
    for (auto& [n, name] : k) out.push_back(name);
    return out;
  }

  Esito EseguiInterno(const std::string& sql, const Parametri& p, bool righe) override {
    if (!db_) throw ErroreDb(3709, "La connessione non è aperta.");
    sqlite3_stmt* st = Prepara(sql, true);
    Guardia g{st, true};
    Lega(st, p);
    Esito e;
    e.dati.cols = Colonne(st);
    std::vector<std::vector<sqlite3_value*>> dummy;
    std::vector<int> senzaTipo;
    for (size_t i = 0; i < e.dati.cols.size(); ++i)
      if (e.dati.cols[i].tipo == TipoCampo::Vuoto) senzaTipo.push_back(static_cast<int>(i));
    for (;;) {
      int rc = sqlite3_step(st);
      if (rc == SQLITE_DONE) break;
      if (rc != SQLITE_ROW) Errore(rc);
      if (!righe) continue;
      std::vector<Valore> row(e.dati.cols.size());
      for (size_t i = 0; i < row.size(); ++i) row[i] = Leggi(st, static_cast<int>(i), e.dati.cols[i].tipo);
      e.dati.rows.push_back(std::move(row));
    }
    // Columns of expressions take the type of their first value.
    for (int i : senzaTipo) {
      TipoCampo t = TipoCampo::Testo;
      for (auto& r : e.dati.rows) {
        auto k = r[i].tipo();
        if (k == Valore::Tipo::Nullo) continue;
        t = k == Valore::Tipo::Intero    ? TipoCampo::Intero32
            : k == Valore::Tipo::Importo ? TipoCampo::Importo
            : k == Valore::Tipo::Data    ? TipoCampo::Data
            : k == Valore::Tipo::Doppio  ? TipoCampo::Doppio
                                         : TipoCampo::Testo;
        break;
      }
      e.dati.cols[i].tipo = t;
    }
    e.righe = sqlite3_changes64(db_);
    return e;
  }

 private:
  struct Guardia {
    sqlite3_stmt* st;
    bool cached;
    ~Guardia() {
      if (cached) {
        sqlite3_reset(st);
        sqlite3_clear_bindings(st);
      } else {
        sqlite3_finalize(st);
      }
    }
  };

  [[noreturn]] void Errore(int rc) {
    int ext = db_ ? sqlite3_extended_errcode(db_) : rc;
    std::string msg = db_ ? sqlite3_errmsg(db_) : sqlite3_errstr(rc);
    (void)ext;
    throw ErroreDb(rc, msg, "sqlite:" + std::to_string(rc));
  }

  sqlite3_stmt* Prepara(const std::string& sql, bool cache) {
    if (cache) {
      auto it = cache_.find(sql);
      if (it != cache_.end()) {
        sqlite3_reset(it->second);
        return it->second;
      }
    }
    sqlite3_stmt* st = nullptr;
    const char* coda = nullptr;
    int rc = sqlite3_prepare_v3(db_, sql.c_str(), static_cast<int>(sql.size()), cache ? SQLITE_PREPARE_PERSISTENT : 0, &st,
                                &coda);
    if (rc != SQLITE_OK) {
      if (st) sqlite3_finalize(st);
      Errore(rc);
    }
    if (!st) throw ErroreDb(SQLITE_MISUSE, "Istruzione SQL vuota.");
    // One statement per call: what follows the first may be blanks, semicolons and comments.
    if (coda && *coda) {
      sqlite3_stmt* altra = nullptr;
      const char* z = coda;
      while (*z) {
        rc = sqlite3_prepare_v2(db_, z, -1, &altra, &z);
        if (altra || rc != SQLITE_OK) {
          if (altra) sqlite3_finalize(altra);
          sqlite3_finalize(st);
          throw ErroreDb(SQLITE_MISUSE, "Una chiamata esegue una sola istruzione SQL: il testo ne contiene più di una.");
        }
      }
    }
    if (cache) {
      if (cache_.size() >= 256) {
        std::string vecchia = ordine_.front();
        ordine_.pop_front();
        sqlite3_finalize(cache_[vecchia]);
        cache_.erase(vecchia);
      }
      cache_[sql] = st;
      ordine_.push_back(sql);
    }
    return st;
  }

  void Lega(sqlite3_stmt* st, const Parametri& p) {
    int n = sqlite3_bind_parameter_count(st);
    if (n != static_cast<int>(p.size()))
      throw ErroreDb(SQLITE_RANGE, "Numero di parametri errato: attesi " + std::to_string(n) + ", dati " + std::to_string(p.size()));
    for (int i = 0; i < n; ++i) {
      const Valore& v = p[i];
      int rc = SQLITE_OK;
      switch (v.tipo()) {
        case Valore::Tipo::Vuoto:
        case Valore::Tipo::Nullo:
          rc = sqlite3_bind_null(st, i + 1);
          break;
        case Valore::Tipo::Booleano:
          rc = sqlite3_bind_int(st, i + 1, v.Bool() ? 1 : 0);
          break;
        case Valore::Tipo::Intero:
          rc = sqlite3_bind_int64(st, i + 1, v.Int());
          break;
        case Valore::Tipo::Doppio:
          rc = sqlite3_bind_double(st, i + 1, v.Dbl());
          break;
        case Valore::Tipo::Importo:
          // Always a real, so that arithmetic on it is never an integer division.
          FuoriIntervallo(v.Imp());
          rc = sqlite3_bind_double(st, i + 1, v.Imp().ToDouble());
          break;
        case Valore::Tipo::Testo:
          rc = sqlite3_bind_text(st, i + 1, v.Str().data(), static_cast<int>(v.Str().size()), SQLITE_TRANSIENT);
          break;
        case Valore::Tipo::Data: {
          std::string iso = v.Dat().Iso();
          rc = sqlite3_bind_text(st, i + 1, iso.data(), static_cast<int>(iso.size()), SQLITE_TRANSIENT);
          break;
        }
      }
      if (rc != SQLITE_OK) Errore(rc);
    }
  }

  static std::vector<Colonna> Colonne(sqlite3_stmt* st) {
    int n = sqlite3_column_count(st);
    std::vector<Colonna> cols(n);
    for (int i = 0; i < n; ++i) {
      cols[i].nome = sqlite3_column_name(st, i);
      cols[i].tipo = TipoDaDichiarato(sqlite3_column_decltype(st, i));
    }
    return cols;
  }

  // Beyond this range a double no longer holds every ten-thousandth: refused, never rounded.
  static void FuoriIntervallo(Importo v) {
    if (v.Raw() > kMassimoImportoSqlite || v.Raw() < -kMassimoImportoSqlite)
      throw ErroreDb(6, "Importo " + v.TestoPunto() + kOltreIntervallo, "22003");
  }
  static Valore ImportoLetto(double d) {
    if (!(std::fabs(d) <= static_cast<double>(kMassimoImportoSqlite) / Importo::kScala))
      throw ErroreDb(6, "Importo letto" + std::string(kOltreIntervallo), "22003");
    return Valore(Importo::DaDouble(d));
  }
  // A date written by this layer: "yyyy-mm-dd".
  static bool TestoIso(const unsigned char* z, int n) {
    if (n != 10 || z[4] != '-' || z[7] != '-') return false;
    for (int k : {0, 1, 2, 3, 5, 6, 8, 9})
      if (z[k] < '0' || z[k] > '9') return false;
    return true;
  }

  static Valore Leggi(sqlite3_stmt* st, int i, TipoCampo tipo) {
    int t = sqlite3_column_type(st, i);
    if (t == SQLITE_NULL) return Valore::Null();
    auto testo = [&] {
      const unsigned char* z = sqlite3_column_text(st, i);
      return std::string(reinterpret_cast<const char*>(z), static_cast<size_t>(sqlite3_column_bytes(st, i)));
    };
    switch (tipo) {
      case TipoCampo::Importo:
        if (t == SQLITE_INTEGER) return ImportoLetto(static_cast<double>(sqlite3_column_int64(st, i)));
        if (t == SQLITE_FLOAT) return ImportoLetto(sqlite3_column_double(st, i));
        {
          Valore v(testo());
          auto imp = v.ComeImporto();
          return imp ? Valore(*imp) : v;
        }
      case TipoCampo::Data: {
        std::string s = testo();
        auto d = Data::DaTesto(s);
        return d ? Valore(*d) : Valore(s);
      }
      case TipoCampo::Booleano:
        if (t == SQLITE_INTEGER) return Valore(sqlite3_column_int64(st, i) != 0);
        return Valore(Valore(testo()).Vero());
      case TipoCampo::Intero16:
      case TipoCampo::Intero32:
        if (t == SQLITE_INTEGER) return Valore(static_cast<long long>(sqlite3_column_int64(st, i)));
        if (t == SQLITE_FLOAT) return Valore(sqlite3_column_double(st, i));
        return Valore(testo());
      case TipoCampo::Singolo:
      case TipoCampo::Doppio:
        if (t == SQLITE_INTEGER || t == SQLITE_FLOAT) return Valore(sqlite3_column_double(st, i));
        return Valore(testo());
      case TipoCampo::Testo:
      case TipoCampo::Memo:
        return Valore(testo());
      case TipoCampo::Vuoto:
        // A computed column, read as the other engine gives it: whole numbers as integers,
        // other numbers as amounts (NUMERIC there), dates as dates.
        if (t == SQLITE_INTEGER) return Valore(static_cast<long long>(sqlite3_column_int64(st, i)));
        if (t == SQLITE_FLOAT) {
          double d = sqlite3_column_double(st, i);
          if (std::fabs(d) <= static_cast<double>(kMassimoImportoSqlite) / Importo::kScala) return Valore(Importo::DaDouble(d));
          return Valore(d);
        }
        if (t == SQLITE_TEXT && TestoIso(sqlite3_column_text(st, i), sqlite3_column_bytes(st, i))) {
          if (auto d = Data::DaTesto(testo())) return Valore(*d);
        }
        return Valore(testo());
    }
    return Valore(testo());
  }

  sqlite3* db_;
  std::unordered_map<std::string, sqlite3_stmt*> cache_;
  std::list<std::string> ordine_;
};

}  // namespace

std::shared_ptr<Connessione> Connessione::ApriSqlite(const std::string& file, const OpzioniSqlite& o) {
  sqlite3* db = nullptr;
  int flags = (o.solaLettura ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE) | SQLITE_OPEN_NOMUTEX;
  if (o.crea && !o.solaLettura) flags |= SQLITE_OPEN_CREATE;
  int rc = sqlite3_open_v2(file.c_str(), &db, flags, nullptr);
  if (rc != SQLITE_OK) {
    std::string msg = db ? sqlite3_errmsg(db) : sqlite3_errstr(rc);
    if (db) sqlite3_close_v2(db);
    throw ErroreDb(rc, msg + ": " + file);
  }
  auto cn = std::make_shared<ConnessioneSqlite>(db);
  sqlite3_busy_timeout(db, o.attesaMs);
  sqlite3_extended_result_codes(db, 0);
  sqlite3_create_function_v2(db, "sum", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, nullptr, SommaPasso, SommaFineSum, nullptr);
  sqlite3_create_function_v2(db, "total", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, nullptr, SommaPasso, SommaFineTotal, nullptr);
  // Reading the schema proves that the file is a database and that no other process holds
  // it exclusively.
  int64_t oggetti = cn->Scalare("SELECT count(*) FROM sqlite_master").Int();
  // Write-ahead logging is a property of the file: it is switched on for a new file and for a
  // company of ours, never for another program's database.
  bool nostro = oggetti == 0 || !cn->Scalare("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = 'Prima Nota'").IsNull();
  if (!o.solaLettura && nostro) {
    cn->Execute("PRAGMA journal_mode=WAL");
    cn->Esegui("PRAGMA synchronous=FULL");
    // The savepoint of each saved row keeps the pages it touches in memory, not in a temporary
    // file written again for every row.
    cn->Esegui("PRAGMA temp_store=MEMORY");
  }
  return cn;
}

}  // namespace vorn
