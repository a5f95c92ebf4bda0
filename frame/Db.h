// The data layer: a connection to an SQLite file or a PostgreSQL database, read-only and
// editable recordsets, fields with types.
//
// SQL is written once for both engines: identifiers in square brackets as the archives name
// them ([Piano Dei Conti].[Codice Conto]), values as `?` parameters, LIMIT, CASE, substr,
// COALESCE and || for what differs between the old dialects. On PostgreSQL the bracketed names
// become quoted lower-case identifiers, so that a statement may spell a name in any case.
#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "frame/Valore.h"

namespace vorn {

// The hash of a map keyed by text that finds its keys by std::string_view, without a copy
// (with std::equal_to<> as the map's equality).
struct HashTesto {
  using is_transparent = void;
  size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
};

enum class Motore { SQLite, PostgreSQL };

// A database error: `numero` is the engine's code (SQLite result code, or the PostgreSQL
// SQLSTATE packed as its five characters in base 36), `descrizione` its text.
class ErroreDb : public std::runtime_error {
 public:
  ErroreDb(long numero, std::string descrizione, std::string sqlstate = {})
      : std::runtime_error(descrizione), numero_(numero), descrizione_(std::move(descrizione)), sqlstate_(std::move(sqlstate)) {}
  long Numero() const { return numero_; }
  const std::string& Descrizione() const { return descrizione_; }
  const std::string& SqlState() const { return sqlstate_; }

 private:
  long numero_;
  std::string descrizione_;
  std::string sqlstate_;
};

// What a commit says when a failure inside the transaction has undone it.
inline constexpr const char* kMsgTransazioneAnnullata =
    "Transazione annullata: un'operazione al suo interno non è andata a buon fine, nulla è stato registrato.";

// Field types, with the numbers of the host's field-type enumeration.
enum class TipoCampo : int {
  Vuoto = 0,
  Intero16 = 2,   // adSmallInt
  Intero32 = 3,   // adInteger
  Singolo = 4,    // adSingle
  Doppio = 5,     // adDouble
  Importo = 6,    // adCurrency
  Data = 7,       // adDate
  Booleano = 11,  // adBoolean
  Testo = 202,    // adVarWChar
  Memo = 203,     // adLongVarWChar
};
bool TipoCarattere(int tipo);  // 129, 130, 200..203

// Coerces a value to what a column of the type holds; throws ErroreDb on a type mismatch.
Valore Coerci(const Valore& v, TipoCampo tipo);
// The values a client passes to a public operation, typed once at entry through Coerci: a
// date (a date value or text "dd/mm/yyyy") and an amount (an amount, a number, or text of
// the Italian locale such as "1.234,50"). Null, Empty and blank text give Null; anything else
// is ErroreDb 13 naming `cosa`.
Valore DataIngresso(const Valore& v, std::string_view cosa = "data");
Valore ImportoIngresso(const Valore& v, std::string_view cosa = "importo");

struct Colonna {
  std::string nome;
  TipoCampo tipo = TipoCampo::Testo;
};

class Recordset;

class Campo {
 public:
  const std::string& Name() const;
  TipoCampo Type() const;
  int TypeNumber() const { return static_cast<int>(Type()); }
  // The value in the current row; throws ErroreDb at EOF or BOF.
  const Valore& Value() const;
  bool IsNull() const { return Value().IsNull(); }
  // Assigns through the recordset: starts an edit of the current row when none is in progress.
  Campo& operator=(const Valore& v);
  Campo& operator=(const Campo& other) { return *this = other.Value(); }
  operator const Valore&() const { return Value(); }

 private:
  friend class Recordset;
  Campo(Recordset* rs, int idx) : rs_(rs), idx_(idx) {}
  Recordset* rs_;
  int idx_;
};

class Connessione;

// Edit modes, with the host's numbers.
enum EditMode : int { adEditNone = 0, adEditInProgress = 1, adEditAdd = 2 };

// Rows of a statement held in memory. An editable recordset is opened over one table; its
// Update writes the current row back by the table's key (or, for a table without one, by the
// engine's row identity).
class Recordset {
 public:
  Recordset() = default;
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;
  Recordset(Recordset&&) noexcept;
  Recordset& operator=(Recordset&&) noexcept;
  ~Recordset();

  bool IsOpen() const { return open_; }
  bool Eof() const { return !open_ || pos_ >= rows_.size(); }
  bool Bof() const { return !open_ || rows_.empty() || pos_ == kBof; }
  void MoveFirst();
  void MoveLast();
  void MoveNext();
  void MovePrevious();
  size_t RecordCount() const { return rows_.size(); }
  size_t Posizione() const { return pos_; }
  // To the row at `posizione` (from 0; past the last: Eof).
  void Vai(size_t posizione);

  int FieldCount() const { return static_cast<int>(cols_.size()); }
  bool HasField(std::string_view nome) const { return Indice(nome) >= 0; }
  // Case-insensitive; throws ErroreDb when the recordset has no such field.
  Campo& Fields(std::string_view nome);
  Campo& Fields(int i);
  Campo& operator()(std::string_view nome) { return Fields(nome); }
  Campo& operator()(int i) { return Fields(i); }
  const std::vector<Colonna>& Colonne() const { return cols_; }

  bool Modificabile() const { return !tabella_.empty(); }
  int EditMode() const { return edit_; }
  void AddNew();
  void Update();
  // As Update, for a row read from the table (after AddNew it is Update) whose values nobody
  // reads back from the database: inside a transaction on PostgreSQL the write waits and goes
  // to the server with the next statement (Connessione::EseguiInCoda), and a row that is no
  // longer there is not noticed.
  void UpdateInCoda();
  void CancelUpdate();
  void Delete();
  void Close();

  // Internal construction by the connection.
  struct Dati {
    std::vector<Colonna> cols;
    std::vector<std::vector<Valore>> rows;
  };
  static Recordset DaDati(Dati d);
  static Recordset Modificabile(Connessione& cn, std::string tabella, Dati d, std::vector<int> chiave, int rid);
  static Recordset Modificabile(Connessione& cn, std::string tabella, Recordset letto, std::vector<int> chiave, int rid);

 private:
  friend class Campo;
  static constexpr size_t kBof = static_cast<size_t>(-1);
  int Indice(std::string_view nome) const;
  const Valore& Get(int idx) const;
  void Set(int idx, const Valore& v);
  void Assicura() const;
  void FiltroChiave(std::string& sql, std::vector<Valore>& p, const std::vector<Valore>& riga) const;
  bool TestoAggiornamento(std::string& sql, std::vector<Valore>& p);

  bool open_ = false;
  std::vector<Colonna> cols_;
  std::vector<std::vector<Valore>> rows_;
  std::vector<std::unique_ptr<Campo>> campi_;
  size_t pos_ = 0;
  // Editing
  Connessione* cn_ = nullptr;
  std::string tabella_;
  std::vector<int> chiave_;  // key columns; empty: by row identity
  int rid_ = -1;             // hidden row-identity column
  int edit_ = adEditNone;
  std::vector<Valore> originale_;
  std::vector<bool> variati_;
};

using Parametri = std::vector<Valore>;

// Connection options of a PostgreSQL database; each value goes to the client library as a
// keyword/value pair, never pasted into a connection string.
struct ParametriPostgres {
  std::string database;
  std::string host;  // host name, address, or socket folder; may carry ":port"
  std::string port;
  std::string user;
  std::string password;
  std::string schema;  // optional search path (tests run each case in a schema of its own)
};

struct OpzioniSqlite {
  bool crea = false;           // create the file when missing
  int attesaMs = 5000;         // how long a statement waits for another process's lock
  bool solaLettura = false;
};

// Work that units of the library gather in memory and write once, just before the commit of
// the outermost transaction (for instance the balance movement of the journal: each balance
// row is then written once per transaction, and always in the same order, so that concurrent
// posters never wait on each other in a cycle). It follows the savepoint levels: what a level
// gathered is kept by the level below when the level is released, dropped when it is rolled
// back. A statement that reads or writes what it holds back makes it write first (Tocca).
class Differito {
 public:
  virtual ~Differito() = default;
  virtual void ApriLivello() = 0;
  virtual void ChiudiLivello(bool conferma) = 0;
  // Writes everything gathered, at every level, and forgets it.
  virtual void Scrivi(Connessione& cn) = 0;
  // Forgets everything: the whole transaction is rolled back.
  virtual void Scarta() = 0;
  virtual bool Vuoto() const = 0;
  // True when the statement touches what is held back. It comes as written (bracketed names)
  // but in lower case (ASCII letters only), so that a table's name is found by a plain search.
  virtual bool Tocca(std::string_view sqlMinuscolo) const = 0;
};

// A clear error for a name that cannot be pasted into a statement: empty, or with brackets,
// quotes, semicolons or control characters. Table names and prefixes pass through it.
void VerificaNome(std::string_view nome, std::string_view cosa = "tabella");

// The largest amount, in ten-thousandths, that the SQLite engine stores and sums exactly
// (99.999.999.999,9999); a larger one is refused with an error on SQLite. PostgreSQL stores
// every amount of the type (NUMERIC(19,4)).
inline constexpr int64_t kMassimoImportoSqlite = 999999999999999;

// True for an error that a retry of the whole unit may cure: a deadlock or a serialization
// failure on PostgreSQL, a busy or locked database on SQLite.
bool ErroreDiConcorrenza(const ErroreDb& e);

class Connessione : public std::enable_shared_from_this<Connessione> {
 public:
  virtual ~Connessione() = default;

  static std::shared_ptr<Connessione> ApriSqlite(const std::string& file, const OpzioniSqlite& o = {});
  static std::shared_ptr<Connessione> ApriPostgres(const ParametriPostgres& p);

  virtual Motore motore() const = 0;
  bool IsPostgres() const { return motore() == Motore::PostgreSQL; }
  // The provider name: "SQLite" or "PostgreSQL".
  std::string Provider() const { return IsPostgres() ? "PostgreSQL" : "SQLite"; }
  virtual bool Aperta() const = 0;
  virtual void Close() = 0;

  // Every call runs exactly one statement: a text with a second statement is refused.
  // Parameters: an amount binds as a decimal number (arithmetic on it is decimal on both
  // engines, never an integer division), a date as a date; a text that is exactly a date
  // written "dd/mm/yyyy" binds as that date on both engines.
  //
  // Column types: a column of a table reads back with the table's type; a column computed by
  // an expression (a sum, MAX of a date, CASE) reads back by its value on both engines: whole
  // numbers as integers, other numbers as amounts, dates as dates, the rest as text.

  // Runs a statement and returns its rows (read-only).
  Recordset Execute(std::string_view sql, const Parametri& p = {});
  // Runs a statement that returns no rows; the result is the number of rows it touched.
  int64_t Esegui(std::string_view sql, const Parametri& p = {});
  // A write inside a transaction whose count nobody reads (an INSERT, UPDATE or DELETE with
  // parameters): on PostgreSQL it may wait and go to the server together with the next
  // statement, in one round trip (before any statement, savepoint or commit of this
  // connection). Its error, if any, is then thrown by that later statement, and the transaction
  // can only be rolled back. Outside a transaction, and on SQLite, it runs at once.
  // The id of a write still waiting (0 when it ran at once), for SostituisciInCoda. With
  // `righe`, the count of rows it touched goes there once it has run: at once on SQLite, with
  // the statement it waited for on PostgreSQL; it stays as it was if the write is dropped by a
  // rollback before being sent.
  uint64_t EseguiInCoda(std::string_view sql, const Parametri& p, std::shared_ptr<int64_t> righe = nullptr);
  // The write `id`, still waiting, becomes `sql`: it then runs in the place of the one it
  // replaces. For a write that makes the earlier one needless (it writes again everything that
  // wrote), when nothing queued since reads or writes what it writes. False when the write has
  // already been sent (or ran at once): the caller runs `sql` itself.
  bool SostituisciInCoda(uint64_t id, std::string_view sql, const Parametri& p);
  // The writes waiting, sent now.
  void InviaCoda();
  // Statements sent together and run one after the other, each as Execute would run it: on
  // PostgreSQL in one round trip, behind the writes waiting. Each sees what the ones before
  // it did and what other sessions committed before it began, so a row locked by one
  // (FOR UPDATE) is read by the next as its holder committed it. For each, its rows and the
  // rows it touched. An error is thrown once every statement has answered.
  struct Risposta {
    Recordset rs;
    int64_t righe = 0;
  };
  std::vector<Risposta> EseguiInsieme(const std::vector<std::pair<std::string, Parametri>>& istruzioni);
  // Streams the rows of a statement one by one, without holding them all: for long scans.
  // The callback gets the column list and one row; returning false stops the scan.
  void Scorri(std::string_view sql, const Parametri& p,
              const std::function<bool(const std::vector<Colonna>&, const std::vector<Valore>&)>& riga);
  // First column of the first row, or Null.
  Valore Scalare(std::string_view sql, const Parametri& p = {});
  // An editable recordset: SELECT * FROM [tabella] with the given WHERE and ORDER BY text.
  Recordset Apri(std::string_view tabella, std::string_view where = {}, const Parametri& p = {},
                 std::string_view orderBy = {});
  // An editable recordset on a statement over one table ("SELECT ... FROM [T] ...").
  Recordset ApriSql(std::string_view sql, const Parametri& p = {});
  // An editable recordset read together with other statements: the statement to send
  // (EseguiInsieme), then ApriDa makes the recordset of its answer, as Apri would have.
  struct Apertura {
    std::string sql;  // with the row identity when the table has no key
    Parametri p;
    std::string tabella;
    bool rid = false;
  };
  Apertura PreparaApri(std::string_view tabella, std::string_view where = {}, const Parametri& p = {});
  Recordset ApriDa(const Apertura& a, Recordset letto);

  // Transactions, the same on both engines. BeginTrans with none open starts a transaction;
  // BeginTrans inside one opens a savepoint level, which CommitTrans releases (its work joins
  // the level below) and RollbackTrans undoes alone. CommitTrans and RollbackTrans always
  // close their level, also when they throw. The commit of the outermost level writes the
  // deferred work first; it rolls everything back and throws when a unit that could not be
  // undone on its own failed inside the transaction (Compromessa), and that mark lasts until
  // the outermost commit or rollback. A level whose statement failed on PostgreSQL cannot be
  // committed: its CommitTrans undoes it and throws. Transaction statements (BEGIN, COMMIT,
  // SAVEPOINT...) are not accepted through Esegui.
  void BeginTrans();
  void CommitTrans();
  void RollbackTrans();
  // The outcome of a commit whose answer is read later: null when it committed, else why it did
  // not (the transaction was undone).
  using EsitoConferma = std::function<void(const ErroreDb*)>;
  // As CommitTrans, without waiting for the server's answer on PostgreSQL: the writes still
  // waiting and the COMMIT go now, and the answer is read with the next statement of this
  // connection (in the same round trip) or by AttendiConferme, which then call `esito`. The
  // level is closed at once; what is known before anything is sent is thrown here, as by
  // CommitTrans. Elsewhere (SQLite, a savepoint level) it commits as CommitTrans and calls
  // `esito` before returning. `esito` must not throw nor use this connection.
  void CommitTransSenzaAttesa(EsitoConferma esito);
  // Reads the answer of a commit sent without waiting, if one is still out.
  void AttendiConferme();
  virtual bool InTransazione() const = 0;
  // The open levels: 0 outside a transaction, 1 in the transaction, more inside savepoints.
  int Livello() const { return livello_; }

  // For reads that may be kept while the open transaction lasts (a causal's operativity, an
  // account's existence, read again and again by a poster): the serial of the outermost
  // transaction, 0 outside one, and how many statements of this connection have written a
  // table so far (the table is watched from the first call on). A reader keeps what it read
  // while both stay the same. Other sessions' commits are not seen: on SQLite none can happen
  // while this connection holds the write transaction; on PostgreSQL the kept rows are those
  // of the moment they were first read, as in a snapshot.
  uint64_t SerieTransazione() const { return livello_ > 0 ? serie_ : 0; }
  uint64_t ScrittureDi(std::string_view tabella);

  // Deferred work registered under `nome` (made by `crea` the first time).
  Differito& Differimento(const std::string& nome, const std::function<std::unique_ptr<Differito>()>& crea);
  // Writes the deferred work now (a reader that must see it).
  void ScriviDifferiti();

  // Reads of several statements from one snapshot: a read-only transaction (REPEATABLE READ on
  // PostgreSQL, a read transaction on SQLite) that FineLettura ends. Nothing may be written in it.
  void IniziaLettura();
  void FineLettura();

  // The statement as the engine reads it.
  std::string Traduci(std::string_view sql) const;
  // Key columns of a table, in key order (cached); empty when the table has none.
  const std::vector<std::string>& ChiaveTabella(const std::string& tabella);
  // Names of the tables and views, and of the columns of one table.
  virtual std::vector<std::string> Tabelle() = 0;
  virtual std::vector<Colonna> ColonneTabella(const std::string& tabella) = 0;
  void DimenticaSchema() { chiavi_.clear(); }

  // A unit of work that could not be undone on its own has failed inside the open transaction:
  // its commit rolls back and says so.
  bool Compromessa() const { return compromessa_; }
  void SegnaCompromessa(bool c) { compromessa_ = c; }

  // Text helpers of the dialect.
  std::string Like() const { return IsPostgres() ? "ILIKE" : "LIKE"; }
  // A quoted identifier as this engine reads it; VerificaNome first.
  std::string Identificatore(std::string_view nome) const;

 protected:
  struct Esito {
    Recordset::Dati dati;
    int64_t righe = 0;
  };
  virtual Esito EseguiInterno(const std::string& sql, const Parametri& p, bool righe) = 0;
  // Several statements, translated and normalised, their answers in order; one by one unless
  // the engine can do better.
  virtual std::vector<Esito> EseguiInsiemeInterno(const std::vector<std::pair<std::string, Parametri>>& istruzioni);
  virtual void ScorriInterno(const std::string& sql, const Parametri& p,
                             const std::function<bool(const std::vector<Colonna>&, const std::vector<Valore>&)>& riga) = 0;
  virtual std::vector<std::string> LeggiChiave(const std::string& tabella) = 0;
  // Takes a write to send later (EseguiInCoda) and gives its id; 0: run it now.
  virtual uint64_t Accoda(const std::string& /*sql*/, const Parametri& /*p*/, std::shared_ptr<int64_t> /*righe*/) {
    return 0;
  }
  virtual bool SostituisciInterno(uint64_t /*id*/, const std::string& /*sql*/, const Parametri& /*p*/) { return false; }
  virtual void InviaCodaInterno() {}
  virtual std::string ColonnaRid() const = 0;  // "rowid" or "ctid"
  // Transaction statements of the engine, run outside the checks of Esegui.
  virtual void Controllo(const char* sql) = 0;
  virtual const char* TestoInizio() const = 0;          // "BEGIN IMMEDIATE" or "BEGIN"
  virtual const char* TestoInizioLettura() const = 0;   // a read-only snapshot
  // True when a statement failed in the open transaction and it takes nothing more.
  virtual bool InErrore() const { return false; }
  // Sends the writes waiting and the COMMIT without reading their answer (CommitTransSenzaAttesa);
  // false when the engine commits only waiting.
  virtual bool ConfermaSenzaAttesa(EsitoConferma& /*esito*/) { return false; }
  virtual void AttendiConfermeInterno() {}
  // Parameters as both engines bind them (dates written as text become dates).
  static Parametri Normalizza(const Parametri& p);

 private:
  friend class Recordset;
  friend class Atomico;
  // Before a statement: deferred work it touches is written first.
  void PrimaDi(std::string_view sql);
  void ChiudiTutto();
  void Conferma(EsitoConferma* esito);
  std::string TraduciPostgres(std::string_view sql) const;
  mutable std::unordered_map<std::string, std::string> traduzioni_;
  std::map<std::string, std::vector<std::string>> chiavi_;
  // Watched tables, in lower case, and the writes that named them.
  struct Osservata {
    std::string nome, quadre, virgolette;
    uint64_t scritture = 0;
  };
  std::vector<Osservata> osservate_;
  // What a statement's text names, worked out once per text: the watched tables it names and
  // the deferred work it touches (indices), for as many of each as there were then.
  struct Impronta {
    size_t osservate = 0, differiti = 0;
    std::vector<size_t> nominate, toccati;
  };
  std::unordered_map<std::string, Impronta, HashTesto, std::equal_to<>> impronte_;
  const Impronta& ImprontaDi(std::string_view sql);
  uint64_t serie_ = 0;
  bool compromessa_ = false;
  int livello_ = 0;
  bool lettura_ = false;
  bool scrivendo_ = false;
  // Per level: deferred work of lower levels was written under this level's savepoint.
  std::vector<bool> sporco_;
  std::vector<std::pair<std::string, std::unique_ptr<Differito>>> differiti_;
};

// All-or-nothing over a scope: a transaction of its own when none is open, a savepoint level
// inside the caller's. Without Conferma() the work is undone.
//
// A unit that need not be recoverable (`recuperabile` false) takes no savepoint inside the
// caller's transaction on PostgreSQL, where thousands of savepoints in one transaction slow
// every statement down: when it fails, the caller's whole transaction is undone instead (its
// commit rolls back and throws). Journal and balances still never part.
class Atomico {
 public:
  explicit Atomico(Connessione& cn, bool recuperabile = true);
  ~Atomico();
  void Conferma();
  // Conferma through Connessione::CommitTransSenzaAttesa: `esito` is told the commit's outcome.
  void ConfermaSenzaAttesa(Connessione::EsitoConferma esito);
  Atomico(const Atomico&) = delete;
  Atomico& operator=(const Atomico&) = delete;

 private:
  Connessione& cn_;
  bool livello_ = false;  // opened a level (a transaction or a savepoint)
  bool fatto_ = false;
};

// Runs `unita` (which opens its own Atomico); outside a transaction, a unit that fails for a
// deadlock, a serialization failure or a busy database is run again, up to `tentativi` times,
// with a short growing pause. Inside the caller's transaction it runs once: the caller's
// transaction is what a retry would have to repeat.
void ConRiprova(Connessione& cn, const std::function<void()>& unita, int tentativi = 6);

}  // namespace vorn
