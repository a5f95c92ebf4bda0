// The PostgreSQL engine: the server for companies with many users.
#include <libpq-fe.h>
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <list>
#include <optional>
#include <unordered_map>

#include "frame/Db.h"

namespace vorn {

namespace {

// Type OIDs of the catalogue's built-in types.
enum : Oid {
  kBool = 16,
  kInt8 = 20,
  kInt2 = 21,
  kInt4 = 23,
  kText = 25,
  kOid = 26,
  kFloat4 = 700,
  kFloat8 = 701,
  kUnknown = 705,
  kBpchar = 1042,
  kVarchar = 1043,
  kDate = 1082,
  kTimestamp = 1114,
  kTimestamptz = 1184,
  kNumeric = 1700,
  kName = 19,
};

TipoCampo TipoDaOid(Oid t) {
  switch (t) {
    case kBool:
      return TipoCampo::Booleano;
    case kInt2:
      return TipoCampo::Intero16;
    case kInt4:
    case kInt8:
    case kOid:
      return TipoCampo::Intero32;
    case kFloat4:
      return TipoCampo::Singolo;
    case kFloat8:
      return TipoCampo::Doppio;
    case kNumeric:
      return TipoCampo::Importo;
    case kDate:
    case kTimestamp:
    case kTimestamptz:
      return TipoCampo::Data;
    default:
      return TipoCampo::Testo;
  }
}

Valore Converti(const char* z, int len, TipoCampo tipo) {
  std::string s(z, static_cast<size_t>(len));
  switch (tipo) {
    case TipoCampo::Booleano:
      return Valore(s == "t");
    case TipoCampo::Intero16:
    case TipoCampo::Intero32:
      return Valore(static_cast<long long>(std::strtoll(s.c_str(), nullptr, 10)));
    case TipoCampo::Singolo:
    case TipoCampo::Doppio:
      return Valore(std::strtod(s.c_str(), nullptr));
    case TipoCampo::Importo: {
      if (auto i = Importo::DaTestoPunto(s)) return Valore(*i);
      return Valore(std::strtod(s.c_str(), nullptr));
    }
    case TipoCampo::Data: {
      if (auto d = Data::DaTesto(s.substr(0, 10))) return Valore(*d);
      return Valore(s);
    }
    default:
      return Valore(std::move(s));
  }
}

long NumeroDaSqlState(const char* st) {
  if (!st) return -1;
  long n = 0;
  for (int i = 0; i < 5 && st[i]; ++i) {
    char c = st[i];
    int d = (c >= '0' && c <= '9') ? c - '0' : (c >= 'A' && c <= 'Z') ? c - 'A' + 10 : 0;
    n = n * 36 + d;
  }
  return n;
}

struct Risultato {
  PGresult* r;
  explicit Risultato(PGresult* x) : r(x) {}
  ~Risultato() {
    if (r) PQclear(r);
  }
  Risultato(const Risultato&) = delete;
  Risultato& operator=(const Risultato&) = delete;
};

class ConnessionePostgres final : public Connessione {
 public:
  explicit ConnessionePostgres(PGconn* c) : c_(c) {}
  ~ConnessionePostgres() override { Close(); }

  Motore motore() const override { return Motore::PostgreSQL; }
  bool Aperta() const override { return c_ != nullptr && PQstatus(c_) == CONNECTION_OK; }
  void Close() override {
    if (c_ && volo_.attivo) {
      try {
        Atterra();
      } catch (...) {
        // A connection that dropped: its commit's outcome was told as an error.
      }
    }
    if (c_) PQfinish(c_);
    c_ = nullptr;
    preparate_.clear();
    coda_.clear();
    inizioInCoda_ = false;
  }

  void Controllo(const char* sql) override {
    Assicura();
    // The transaction's start waits for its first statement and goes to the server with it, in
    // the same round trip. Until then the server knows of no transaction.
    if (std::strcmp(sql, TestoInizio()) == 0 && coda_.empty() && !InTransazione()) {
      coda_.push_back({sql, {}, nullptr, 0});
      inizioInCoda_ = true;
      return;
    }
    // A rollback drops the writes waiting to be sent: they were all made inside what it undoes
    // (a savepoint is opened only once the queue has been sent). A transaction whose start is
    // still waiting has nothing on the server to undo.
    if (std::strncmp(sql, "ROLLBACK", 8) == 0) {
      coda_.clear();
      if (inizioInCoda_) {
        inizioInCoda_ = false;
        return;
      }
    }
    if (!coda_.empty()) {
      Esito e;
      Invia(sql, {}, false, e);
      return;
    }
    Atterra();
    Risultato r(PQexec(c_, sql));
    Verifica(r.r);
  }
  const char* TestoInizio() const override { return "BEGIN"; }
  const char* TestoInizioLettura() const override { return "BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY"; }
  bool InErrore() const override { return c_ && !volo_.attivo && PQtransactionStatus(c_) == PQTRANS_INERROR; }
  bool InTransazione() const override {
    if (!c_) return false;
    if (inizioInCoda_) return true;
    // A commit sent without waiting has closed its transaction, as far as this side knows.
    if (volo_.attivo) return false;
    auto s = PQtransactionStatus(c_);
    return s == PQTRANS_INTRANS || s == PQTRANS_INERROR;
  }

  std::vector<std::string> Tabelle() override {
    std::vector<std::string> out;
    auto rs = Execute(
        "SELECT table_name FROM information_schema.tables WHERE table_schema = current_schema() ORDER BY table_name");
    for (; !rs.Eof(); rs.MoveNext()) out.push_back(rs.Fields(0).Value().Str());
    return out;
  }
  std::vector<Colonna> ColonneTabella(const std::string& t) override {
    std::vector<Colonna> out;
    auto rs = Execute(
        "SELECT a.attname, a.atttypid::int4 FROM pg_attribute a WHERE a.attrelid = to_regclass(quote_ident(?)) "
        "AND a.attnum > 0 AND NOT a.attisdropped ORDER BY a.attnum",
        {LCase(t)});
    for (; !rs.Eof(); rs.MoveNext())
      out.push_back({rs.Fields(0).Value().Str(), TipoDaOid(static_cast<Oid>(rs.Fields(1).Value().Int()))});
    return out;
  }

  // Rows are fetched in batches from a server-side cursor, so that the callback may run
  // other statements on this same connection while the scan goes on. WITH HOLD lets the
  // cursor live outside a transaction block too.
  void ScorriInterno(const std::string& sql, const Parametri& p,
                     const std::function<bool(const std::vector<Colonna>&, const std::vector<Valore>&)>& riga) override {
    Assicura();
    Svuota();
    Atterra();
    std::string cursore = "vorn_cursore_" + std::to_string(++contatore_);
    {
      std::string s = "DECLARE " + cursore + " NO SCROLL CURSOR WITH HOLD FOR " + sql;
      Testi t(p);
      Risultato r(PQexecParams(c_, s.c_str(), t.n(), t.tipi(), t.valori(), nullptr, nullptr, 0));
      Verifica(r.r);
    }
    struct Chiusura {
      ConnessionePostgres* self;
      std::string nome;
      ~Chiusura() {
        if (!self->c_) return;
        Risultato r(PQexec(self->c_, ("CLOSE " + nome).c_str()));
      }
    } chiusura{this, cursore};
    std::string fetch = "FETCH 2000 FROM " + cursore;
    for (;;) {
      Esito e;
      {
        Risultato r(PQexec(c_, fetch.c_str()));
        Verifica(r.r);
        Raccogli(r.r, e, true);
      }
      if (e.dati.rows.empty()) break;
      for (const auto& row : e.dati.rows)
        if (!riga(e.dati.cols, row)) return;
    }
  }

 protected:
  std::string ColonnaRid() const override { return "ctid"; }

  std::vector<std::string> LeggiChiave(const std::string& t) override {
    std::vector<std::string> out;
    // The primary key, or else the first unique key that treats nulls as equal (key columns
    // of old archives may hold nulls). Written for the engine directly: the array brackets
    // are not identifiers.
    auto e = EseguiInterno(
        "SELECT a.attname FROM pg_index i JOIN pg_attribute a ON a.attrelid = i.indrelid AND a.attnum = ANY(i.indkey) "
        "WHERE i.indexrelid = (SELECT i2.indexrelid FROM pg_index i2 WHERE i2.indrelid = to_regclass(quote_ident($1)) "
        "AND (i2.indisprimary OR (i2.indisunique AND i2.indnullsnotdistinct)) "
        "ORDER BY i2.indisprimary DESC, i2.indexrelid LIMIT 1) "
        "ORDER BY array_position(i.indkey::int2[], a.attnum)",
        {LCase(t)}, true);
    for (auto& r : e.dati.rows) out.push_back(r[0].Str());
    return out;
  }

  uint64_t Accoda(const std::string& sql, const Parametri& p, std::shared_ptr<int64_t> righe) override {
    if (!c_ || p.empty() || !DaPreparare(sql) || !InTransazione()) return 0;
    const uint64_t id = ++ultimoInCoda_;
    coda_.push_back({sql, p, std::move(righe), id});
    if (coda_.size() >= kMassimoCoda) Svuota();
    return id;
  }

  bool SostituisciInterno(uint64_t id, const std::string& sql, const Parametri& p) override {
    if (p.empty() || !DaPreparare(sql)) return false;
    for (auto& q : coda_) {
      if (q.id != id) continue;
      q.sql = sql;
      q.p = p;
      q.righe.reset();
      return true;
    }
    return false;
  }

  void InviaCodaInterno() override {
    Assicura();
    Svuota();
  }

  // The writes waiting, then the COMMIT in a round of its own (a failed write leaves the
  // transaction failed, and the COMMIT then undoes it, so that what follows starts clean), sent
  // without reading the answer: Atterra reads it.
  bool ConfermaSenzaAttesa(EsitoConferma& esito) override {
    Assicura();
    Atterra();
    if (!InTransazione()) return false;
    std::vector<InCoda> coda = PrendiCoda();
    std::vector<Testi> testi;
    std::vector<std::string> nomi;
    PreparaTutte(coda, testi, nomi);
    if (PQenterPipelineMode(c_) != 1) ErroreConnessione();
    bool inviato = Spedisci(coda, testi, nomi) && (coda.empty() || PQpipelineSync(c_) == 1) &&
                   PQsendQueryParams(c_, "COMMIT", 0, nullptr, nullptr, nullptr, nullptr, 0) == 1 &&
                   PQpipelineSync(c_) == 1;
    if (!inviato) InvioFallito(PQerrorMessage(c_));
    volo_.attivo = true;
    volo_.scritture = std::move(coda);
    volo_.esito = std::move(esito);
    return true;
  }

  void AttendiConfermeInterno() override { Atterra(); }

  std::vector<Esito> EseguiInsiemeInterno(const std::vector<std::pair<std::string, Parametri>>& istruzioni) override {
    Assicura();
    std::vector<InCoda> letture;
    letture.reserve(istruzioni.size());
    for (const auto& [sql, p] : istruzioni) letture.push_back({sql, p, nullptr, 0});
    std::vector<Esito> esiti;
    Invia(std::move(letture), true, esiti);
    return esiti;
  }

  Esito EseguiInterno(const std::string& sql, const Parametri& p, bool righe) override {
    Assicura();
    Esito e;
    if (!coda_.empty()) {
      // The writes waiting go first, in the same round trip.
      Invia(sql, p, righe, e);
      return e;
    }
    Atterra();
    if (p.empty() && !DaPreparare(sql)) {
      // The extended protocol runs exactly one statement.
      Risultato r(PQexecParams(c_, sql.c_str(), 0, nullptr, nullptr, nullptr, nullptr, 0));
      Verifica(r.r);
      Raccogli(r.r, e, righe);
      return e;
    }
    Testi t(p);
    for (int tentativo = 0;; ++tentativo) {
      const std::string& nome = Preparata(sql, t);
      Risultato r(PQexecPrepared(c_, nome.c_str(), t.n(), t.valori(), nullptr, nullptr, 0));
      auto st = PQresultStatus(r.r);
      if (st == PGRES_FATAL_ERROR && tentativo == 0) {
        const char* code = PQresultErrorField(r.r, PG_DIAG_SQLSTATE);
        // A cached plan whose tables changed shape: prepare it again once.
        if (code && std::strcmp(code, "0A000") == 0 && !InTransazione()) {
          Dimentica(sql + t.firma);
          continue;
        }
      }
      Verifica(r.r);
      Raccogli(r.r, e, righe);
      return e;
    }
  }

 private:
  // Parameter values as text. Amounts go as NUMERIC and doubles as double precision, so that
  // "? / 2" divides decimals; the server infers the type of the others from their place
  // (a date goes as ISO text, which reads the same under any DateStyle).
  struct Testi {
    std::vector<std::string> s;
    std::vector<const char*> v;
    std::vector<Oid> t;
    std::string firma;  // the types, part of the name under which a statement is prepared
    explicit Testi(const Parametri& p) {
      s.reserve(p.size());
      for (const auto& x : p) {
        Oid tipo = x.tipo() == Valore::Tipo::Importo ? Oid{kNumeric} : x.tipo() == Valore::Tipo::Doppio ? Oid{kFloat8} : Oid{0};
        t.push_back(tipo);
        firma += tipo == kNumeric ? 'n' : tipo == kFloat8 ? 'f' : '.';
        switch (x.tipo()) {
          case Valore::Tipo::Vuoto:
          case Valore::Tipo::Nullo:
            s.emplace_back();
            break;
          case Valore::Tipo::Booleano:
            s.push_back(x.Bool() ? "t" : "f");
            break;
          case Valore::Tipo::Intero:
            s.push_back(std::to_string(x.Int()));
            break;
          case Valore::Tipo::Doppio: {
            char b[40];
            std::snprintf(b, sizeof b, "%.17g", x.Dbl());
            s.push_back(b);
            break;
          }
          case Valore::Tipo::Importo:
            s.push_back(x.Imp().TestoPunto4());
            break;
          case Valore::Tipo::Testo:
            s.push_back(x.Str());
            break;
          case Valore::Tipo::Data:
            s.push_back(x.Dat().Iso());
            break;
        }
      }
      for (size_t i = 0; i < p.size(); ++i)
        v.push_back(p[i].IsNull() || p[i].IsEmpty() ? nullptr : s[i].c_str());
    }
    int n() const { return static_cast<int>(v.size()); }
    const char* const* valori() const { return v.empty() ? nullptr : v.data(); }
    const Oid* tipi() const { return t.empty() ? nullptr : t.data(); }
  };

  void Assicura() {
    if (!c_) throw ErroreDb(3709, "La connessione non è aperta.");
  }

  // Writes whose answer nobody reads, waiting to be sent with the next statement.
  struct InCoda {
    std::string sql;
    Parametri p;
    std::shared_ptr<int64_t> righe;  // where the count of rows it touched goes, if anyone reads it
    uint64_t id = 0;
  };
  static constexpr size_t kMassimoCoda = 200;

  // Sends what waits, if anything, on its own.
  void Svuota() {
    if (coda_.empty()) return;
    Esito e;
    Invia({}, {}, false, e);
  }

  // The writes waiting, then `sql` (none when empty; a statement without parameters that need
  // not be prepared, such as COMMIT or SAVEPOINT, goes unnamed), sent in one pipeline: one
  // round trip. The answer of `sql` goes into `e`. The first error met is thrown once every
  // answer has been read (the server skips what follows it, and the transaction is failed).
  void Invia(const std::string& sql, const Parametri& p, bool righe, Esito& e) {
    std::vector<InCoda> letture;
    if (!sql.empty()) letture.push_back({sql, p, nullptr, 0});
    std::vector<Esito> esiti;
    Invia(std::move(letture), righe, esiti);
    if (!esiti.empty()) e = std::move(esiti.front());
  }

  // The writes waiting, then the statements of `letture`, in one pipeline; the answers of
  // `letture`, in order, go into `esiti`. The answer of a commit sent without waiting is read
  // first, in the same round trip.
  void Invia(std::vector<InCoda> letture, bool righe, std::vector<Esito>& esiti) {
    std::vector<InCoda> coda = PrendiCoda();
    const size_t primaLettura = coda.size();
    for (auto& l : letture) coda.push_back(std::move(l));
    esiti.assign(coda.size() - primaLettura, Esito{});
    std::vector<Testi> testi;
    std::vector<std::string> nomi;
    PreparaTutte(coda, testi, nomi);  // a statement to prepare reads a commit's answer first
    const bool dopoVolo = volo_.attivo;
    if (!dopoVolo && PQenterPipelineMode(c_) != 1) ErroreConnessione();
    if (!Spedisci(coda, testi, nomi) || PQpipelineSync(c_) != 1) {
      std::string m = PQerrorMessage(c_);
      if (dopoVolo) {
        // What the server answered before the connection failed can still be read.
        try {
          LeggiVolo();
        } catch (const ErroreDb&) {
          // Told to the commit's outcome.
        }
      }
      InvioFallito(m);
    }
    if (dopoVolo) LeggiVolo();
    size_t letti = 0;
    PGresult* errore = LeggiFinoSync(coda.size(), [&](size_t i, PGresult* r) {
      if (i >= primaLettura) {
        Raccogli(r, esiti[i - primaLettura], righe);
        ++letti;
      } else if (coda[i].righe && PQresultStatus(r) == PGRES_COMMAND_OK) {
        *coda[i].righe = std::atoll(PQcmdTuples(r));
      }
    });
    PQexitPipelineMode(c_);
    if (errore) {
      Risultato r(errore);
      Verifica(r.r);
    }
    if (letti != esiti.size()) throw ErroreDb(NumeroDaSqlState("08006"), "Risposta mancante dal server.", "08006");
  }

  // The writes waiting, taken off the queue (consecutive inserts joined), with the start of the
  // transaction if it waits among them.
  std::vector<InCoda> PrendiCoda() {
    std::vector<InCoda> coda = std::move(coda_);
    coda_.clear();
    inizioInCoda_ = false;
    UnisciInserimenti(coda);
    return coda;
  }

  [[noreturn]] void InvioFallito(const std::string& m) {
    PQexitPipelineMode(c_);
    throw ErroreDb(NumeroDaSqlState("08006"), Pulisci(m), "08006");
  }

  // Each statement's parameters as text, and the name it is prepared under (empty: sent
  // unnamed). Prepared before the pipeline starts; a cache cleared meanwhile prepares them all
  // again. Reserved: each Testi's values point into its own strings, which must not move.
  void PreparaTutte(const std::vector<InCoda>& coda, std::vector<Testi>& testi, std::vector<std::string>& nomi) {
    testi.reserve(coda.size());
    for (;;) {
      testi.clear();
      nomi.clear();
      const unsigned svuotamenti = svuotamenti_;
      for (const auto& q : coda) {
        testi.emplace_back(q.p);
        bool semplice = q.p.empty() && !DaPreparare(q.sql);
        nomi.push_back(semplice ? std::string() : Preparata(q.sql, testi.back()));
      }
      if (svuotamenti == svuotamenti_) break;
    }
  }

  bool Spedisci(const std::vector<InCoda>& coda, const std::vector<Testi>& testi, const std::vector<std::string>& nomi) {
    for (size_t i = 0; i < coda.size(); ++i) {
      const bool ok =
          nomi[i].empty()
              ? PQsendQueryParams(c_, coda[i].sql.c_str(), 0, nullptr, nullptr, nullptr, nullptr, 0) == 1
              : PQsendQueryPrepared(c_, nomi[i].c_str(), testi[i].n(), testi[i].valori(), nullptr, nullptr, 0) == 1;
      if (!ok) return false;
    }
    return true;
  }

  // The answers of `n` statements of the pipeline and the synchronisation after them: `ogni`
  // gets each answer that is not an error; the first error is returned (the server skipped the
  // statements after it, up to the synchronisation), for the caller to clear.
  PGresult* LeggiFinoSync(size_t n, const std::function<void(size_t, PGresult*)>& ogni) {
    PGresult* errore = nullptr;
    for (size_t i = 0; i < n; ++i) {
      PGresult* r = PQgetResult(c_);
      if (!r) {
        if (errore) PQclear(errore);
        ErroreConnessione();
      }
      auto st = PQresultStatus(r);
      if (st == PGRES_FATAL_ERROR && !errore) {
        errore = r;
      } else {
        if (st != PGRES_PIPELINE_ABORTED && st != PGRES_FATAL_ERROR) ogni(i, r);
        PQclear(r);
      }
      // Each statement's answers end with a null.
      while (PGresult* fine = PQgetResult(c_)) PQclear(fine);
    }
    for (PGresult* r; (r = PQgetResult(c_)) != nullptr;) {
      bool sync = PQresultStatus(r) == PGRES_PIPELINE_SYNC;
      PQclear(r);
      if (sync) break;
    }
    return errore;
  }

  // A commit sent without waiting, until its answer is read.
  struct InVolo {
    bool attivo = false;
    std::vector<InCoda> scritture;  // sent with it, for the counts someone reads
    EsitoConferma esito;
  };
  InVolo volo_;

  // Reads the answer of the commit sent without waiting, if any, and tells it.
  void Atterra() {
    if (!volo_.attivo) return;
    LeggiVolo();
    PQexitPipelineMode(c_);
  }

  // The answers of the commit in flight (the pipeline stays open): its writes, then the COMMIT.
  void LeggiVolo() {
    InVolo v = std::move(volo_);
    volo_ = InVolo{};
    std::optional<ErroreDb> errore;
    try {
      if (!v.scritture.empty()) {
        PGresult* e = LeggiFinoSync(v.scritture.size(), [&](size_t i, PGresult* r) {
          if (v.scritture[i].righe && PQresultStatus(r) == PGRES_COMMAND_OK)
            *v.scritture[i].righe = std::atoll(PQcmdTuples(r));
        });
        if (e) {
          errore = ErroreDa(e);
          PQclear(e);
        }
      }
      PGresult* e = LeggiFinoSync(1, [](size_t, PGresult*) {});
      if (e) {
        if (!errore) errore = ErroreDa(e);
        PQclear(e);
      }
    } catch (const ErroreDb& x) {
      // The connection dropped: whether the commit was done is not known; it is told as failed.
      Racconta(v.esito, &x);
      PQexitPipelineMode(c_);
      throw;
    }
    Racconta(v.esito, errore ? &*errore : nullptr);
  }

  static void Racconta(EsitoConferma& esito, const ErroreDb* e) {
    if (!esito) return;
    try {
      esito(e);
    } catch (...) {
      // Whoever receives the outcome must not throw: this statement is not the failed one.
    }
  }

  // The number of parameters of "INSERT INTO ... VALUES ($1, ..., $k)" (a single row of nothing
  // but the parameters in order), and where its row starts; 0 for any other statement.
  static int ParametriRigaSola(const std::string& sql, size_t& riga) {
    if (sql.size() < 12 || !UgualeNoCase(sql.substr(0, 12), "INSERT INTO ")) return 0;
    riga = sql.rfind(" VALUES (");
    if (riga == std::string::npos) return 0;
    riga += 8;
    size_t i = riga + 1;
    int k = 0;
    for (;;) {
      const std::string atteso = "$" + std::to_string(k + 1);
      if (sql.compare(i, atteso.size(), atteso) != 0) return 0;
      i += atteso.size();
      ++k;
      if (i + 1 == sql.size() && sql[i] == ')') return k;
      if (sql.compare(i, 2, ", ") != 0) return 0;
      i += 2;
    }
  }

  // Consecutive inserts of single rows into the same columns, made one insert of their rows:
  // the server plans and runs one statement instead of several. They are writes whose answer
  // nobody reads, inside one transaction, so they land or fail together either way.
  static void UnisciInserimenti(std::vector<InCoda>& coda) {
    constexpr size_t kMassimoRighe = 32;
    bool coppia = false;
    for (size_t i = 1; i < coda.size() && !coppia; ++i) coppia = coda[i].sql == coda[i - 1].sql;
    if (!coppia) return;
    std::vector<InCoda> unite;
    for (size_t i = 0; i < coda.size();) {
      size_t riga = 0;
      const bool seguito = i + 1 < coda.size() && coda[i + 1].sql == coda[i].sql && !coda[i].righe;
      const int k = !seguito || coda[i].p.empty() ? 0 : ParametriRigaSola(coda[i].sql, riga);
      size_t j = i + 1;
      if (k > 0) {
        const size_t massimo = std::min(kMassimoRighe, static_cast<size_t>(65535 / k));
        while (j < coda.size() && j - i < massimo && coda[j].sql == coda[i].sql && !coda[j].righe) ++j;
      }
      if (j - i < 2) {
        unite.push_back(std::move(coda[i++]));
        continue;
      }
      InCoda u;
      u.sql = coda[i].sql.substr(0, riga);
      int n = 0;
      for (size_t r = i; r < j; ++r) {
        u.sql += r > i ? ", (" : "(";
        for (int c = 0; c < k; ++c) u.sql += (c ? ", $" : "$") + std::to_string(++n);
        u.sql += ")";
        u.p.insert(u.p.end(), std::make_move_iterator(coda[r].p.begin()), std::make_move_iterator(coda[r].p.end()));
      }
      unite.push_back(std::move(u));
      i = j;
    }
    coda = std::move(unite);
  }

  static bool DaPreparare(const std::string& sql) {
    size_t i = 0;
    while (i < sql.size() && isspace(static_cast<unsigned char>(sql[i]))) ++i;
    std::string head = UCase(sql.substr(i, 7));
    return head.rfind("SELECT", 0) == 0 || head.rfind("INSERT", 0) == 0 || head.rfind("UPDATE", 0) == 0 ||
           head.rfind("DELETE", 0) == 0 || head.rfind("WITH", 0) == 0;
  }

  const std::string& Preparata(const std::string& sql, const Testi& t) {
    std::string chiave = sql + t.firma;
    auto it = preparate_.find(chiave);
    if (it != preparate_.end()) return it->second;
    // A prepare cannot go while a commit's answer is out in the pipeline: the answer is read
    // first.
    Atterra();
    if (preparate_.size() >= 256) {
      Risultato d(PQexec(c_, "DEALLOCATE ALL"));
      preparate_.clear();
      ++svuotamenti_;
    }
    std::string nome = "vs" + std::to_string(++contatore_);
    Risultato r(PQprepare(c_, nome.c_str(), sql.c_str(), t.n(), t.tipi()));
    Verifica(r.r);
    return preparate_[chiave] = nome;
  }

  void Dimentica(const std::string& sql) {
    auto it = preparate_.find(sql);
    if (it == preparate_.end()) return;
    Atterra();
    Risultato d(PQexec(c_, ("DEALLOCATE " + it->second).c_str()));
    preparate_.erase(it);
  }

  static std::string PrimaRiga(std::string m) {
    auto a = m.find('\n');
    if (a != std::string::npos) m.erase(a);
    return m;
  }

  static std::string Pulisci(std::string m) {
    while (!m.empty() && (m.back() == '\n' || m.back() == ' ')) m.pop_back();
    return m;
  }

  [[noreturn]] void ErroreConnessione() {
    std::string m = c_ ? PQerrorMessage(c_) : "connessione chiusa";
    throw ErroreDb(NumeroDaSqlState("08006"), Pulisci(m), "08006");
  }

  void Verifica(PGresult* r) {
    if (!r) ErroreConnessione();
    auto st = PQresultStatus(r);
    if (st == PGRES_COMMAND_OK || st == PGRES_TUPLES_OK || st == PGRES_EMPTY_QUERY) return;
    throw ErroreDa(r);
  }

  // The error of a failed answer: the server's own sentence, on one line, and its code.
  ErroreDb ErroreDa(PGresult* r) {
    const char* code = PQresultErrorField(r, PG_DIAG_SQLSTATE);
    // The server's own sentence, on one line (without the LINE and HINT block).
    const char* primario = PQresultErrorField(r, PG_DIAG_MESSAGE_PRIMARY);
    std::string msg = primario ? Pulisci(primario) : Pulisci(PQresultErrorMessage(r));
    if (msg.empty()) msg = Pulisci(PQerrorMessage(c_));
    msg = PrimaRiga(msg);
    return ErroreDb(NumeroDaSqlState(code), msg, code ? code : "");
  }

  static std::vector<Colonna> Colonne(PGresult* r) {
    int n = PQnfields(r);
    std::vector<Colonna> cols(n);
    for (int i = 0; i < n; ++i) {
      cols[i].nome = PQfname(r, i);
      cols[i].tipo = TipoDaOid(PQftype(r, i));
    }
    return cols;
  }

  static void Raccogli(PGresult* r, Esito& e, bool righe) {
    const char* tuples = PQcmdTuples(r);
    e.righe = tuples && *tuples ? std::strtoll(tuples, nullptr, 10) : 0;
    if (PQresultStatus(r) != PGRES_TUPLES_OK) return;
    e.dati.cols = Colonne(r);
    if (!righe) return;
    int nr = PQntuples(r), nc = PQnfields(r);
    e.dati.rows.reserve(static_cast<size_t>(nr));
    for (int k = 0; k < nr; ++k) {
      std::vector<Valore> row(static_cast<size_t>(nc));
      for (int i = 0; i < nc; ++i)
        row[i] = PQgetisnull(r, k, i) ? Valore::Null() : Converti(PQgetvalue(r, k, i), PQgetlength(r, k, i), e.dati.cols[i].tipo);
      e.dati.rows.push_back(std::move(row));
    }
  }

  PGconn* c_;
  std::unordered_map<std::string, std::string> preparate_;
  unsigned contatore_ = 0;
  unsigned svuotamenti_ = 0;  // times the prepared statements were all dropped
  std::vector<InCoda> coda_;
  uint64_t ultimoInCoda_ = 0;
  bool inizioInCoda_ = false;  // BEGIN is the first of coda_, not yet sent
};

void AvvisoSilenzioso(void*, const PGresult*) {}

}  // namespace

std::shared_ptr<Connessione> Connessione::ApriPostgres(const ParametriPostgres& p) {
  std::string host = p.host, port = p.port;
  // "host:port", "/socket/folder:port" or "[::1]:port"
  if (port.empty()) {
    auto c = host.rfind(':');
    bool cifre = c != std::string::npos && c + 1 < host.size() &&
                 host.find_first_not_of("0123456789", c + 1) == std::string::npos;
    bool ipv6Nudo = c != std::string::npos && host[0] != '[' && host[0] != '/' && host.find(':') != c;
    if (cifre && !ipv6Nudo) {
      port = host.substr(c + 1);
      host = host.substr(0, c);
      if (host.size() > 2 && host.front() == '[' && host.back() == ']') host = host.substr(1, host.size() - 2);
    }
  }
  std::vector<const char*> k, v;
  auto add = [&](const char* key, const std::string& val) {
    if (val.empty()) return;
    k.push_back(key);
    v.push_back(val.c_str());
  };
  add("dbname", p.database);
  add("host", host);
  add("port", port);
  add("user", p.user);
  add("password", p.password);
  std::string appname = "vorn";
  add("application_name", appname);
  std::string timeout = "10";
  add("connect_timeout", timeout);
  std::string encoding = "UTF8";
  add("client_encoding", encoding);
  k.push_back(nullptr);
  v.push_back(nullptr);
  // Connected step by step, so that the server's errors of the start-up come with their
  // SQLSTATE (verbose messages): the server may speak any language.
  PGconn* c = PQconnectStartParams(k.data(), v.data(), 0);
  if (!c) throw ErroreDb(NumeroDaSqlState("08001"), "Memoria insufficiente per la connessione.", "08001");
  PQsetErrorVerbosity(c, PQERRORS_VERBOSE);
  bool scaduto = false;
  if (PQstatus(c) != CONNECTION_BAD) {
    auto fine = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    PostgresPollingStatusType st = PGRES_POLLING_WRITING;
    while (st != PGRES_POLLING_OK && st != PGRES_POLLING_FAILED) {
      int sock = PQsocket(c);
      if (sock < 0) break;
      auto resto = std::chrono::duration_cast<std::chrono::milliseconds>(fine - std::chrono::steady_clock::now()).count();
      if (resto <= 0) {
        scaduto = true;
        break;
      }
      pollfd pfd{sock, static_cast<short>(st == PGRES_POLLING_READING ? POLLIN : POLLOUT), 0};
      int r = poll(&pfd, 1, static_cast<int>(resto));
      if (r < 0 && errno == EINTR) continue;
      if (r == 0) {
        scaduto = true;
        break;
      }
      st = PQconnectPoll(c);
    }
  }
  if (scaduto || PQstatus(c) != CONNECTION_OK) {
    std::string m = scaduto ? std::string("timeout expired") : std::string(PQerrorMessage(c));
    bool senzaPassword = PQconnectionNeedsPassword(c);
    PQfinish(c);
    // "FATAL:  28P01: ..." : the code, and the sentence on one line.
    std::string codice;
    for (size_t i = m.find(":  "); i != std::string::npos; i = m.find(":  ", i + 1)) {
      size_t a = i + 3;
      if (a + 6 <= m.size() && m[a + 5] == ':' &&
          std::all_of(m.begin() + static_cast<long>(a), m.begin() + static_cast<long>(a + 5),
                      [](char ch) { return (ch >= '0' && ch <= '9') || (ch >= 'A' && ch <= 'Z'); })) {
        codice = m.substr(a, 5);
        m = m.substr(a + 6);
        break;
      }
    }
    auto nl = m.find('\n');
    if (nl != std::string::npos) m.erase(nl);
    while (!m.empty() && (m.back() == ' ' || m.back() == '\r')) m.pop_back();
    while (!m.empty() && m.front() == ' ') m.erase(0, 1);
    std::string st = codice == "28P01" || codice == "28000" || senzaPassword ? "28P01"
                     : codice == "3D000"                                    ? "3D000"
                                                                            : "08001";
    throw ErroreDb(NumeroDaSqlState(st.c_str()), m, st);
  }
  PQsetNoticeReceiver(c, AvvisoSilenzioso, nullptr);
  // The session reads and writes the same whatever the server, the user or the environment
  // (PGDATESTYLE, PGOPTIONS) set: ISO dates (day before month for text input), standard
  // strings, UTF-8, and the schema as a quoted name. A scan (Scorri) reads its cursor to the
  // end: the cursor is planned for the whole result, as the statement run at once would be,
  // not for its first rows (a plan for the first rows can join row by row where a hash join
  // reads each table once).
  std::string sessione =
      "SET DateStyle = 'ISO, DMY'; SET standard_conforming_strings = on; SET client_encoding = 'UTF8'; "
      "SET IntervalStyle = 'postgres'; SET extra_float_digits = 3; SET TimeZone = 'UTC'; "
      "SET cursor_tuple_fraction = 1";
  if (!p.schema.empty()) {
    char* id = PQescapeIdentifier(c, p.schema.c_str(), p.schema.size());
    if (!id) {
      PQfinish(c);
      throw ErroreDb(NumeroDaSqlState("3F000"), "Nome di schema non valido: " + p.schema, "3F000");
    }
    sessione += std::string("; SET search_path = ") + id;
    PQfreemem(id);
  }
  PGresult* r = PQexec(c, sessione.c_str());
  bool ok = r && PQresultStatus(r) == PGRES_COMMAND_OK;
  std::string m = ok ? std::string() : PQerrorMessage(c);
  if (r) PQclear(r);
  if (!ok) {
    PQfinish(c);
    throw ErroreDb(NumeroDaSqlState("08001"), "Impostazione della sessione non riuscita: " + m, "08001");
  }
  return std::make_shared<ConnessionePostgres>(c);
}

}  // namespace vorn
