#include "frame/Db.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

namespace vorn {

bool TipoCarattere(int t) { return t == 129 || t == 130 || (t >= 200 && t <= 203); }

namespace {
[[noreturn]] void TipoNonCorrispondente(const Valore& v) {
  throw ErroreDb(13, "Tipo non corrispondente: " + v.Testo());
}
}  // namespace

Valore Coerci(const Valore& v, TipoCampo tipo) {
  if (v.IsNull()) return v;
  if (v.IsEmpty()) return (tipo == TipoCampo::Testo || tipo == TipoCampo::Memo) ? Valore(std::string()) : Valore::Null();
  switch (tipo) {
    case TipoCampo::Testo:
    case TipoCampo::Memo:
    case TipoCampo::Vuoto:
      if (v.tipo() == Valore::Tipo::Booleano) return Valore(v.Bool() ? "-1" : "0");
      return v.IsText() ? v : Valore(v.Testo());
    case TipoCampo::Intero16:
    case TipoCampo::Intero32: {
      if (v.IsText() && Trim(v.Str()).empty()) return Valore::Null();
      auto i = v.ComeIntero();
      if (!i) TipoNonCorrispondente(v);
      if (tipo == TipoCampo::Intero16 && (*i < -32768 || *i > 32767)) throw ErroreDb(6, "Overflow: " + v.Testo());
      return Valore(static_cast<long long>(*i));
    }
    case TipoCampo::Singolo:
    case TipoCampo::Doppio: {
      if (v.IsText() && Trim(v.Str()).empty()) return Valore::Null();
      auto d = v.ComeDouble();
      if (!d) TipoNonCorrispondente(v);
      if (tipo == TipoCampo::Singolo) return Valore(static_cast<double>(static_cast<float>(*d)));
      return Valore(*d);
    }
    case TipoCampo::Importo: {
      if (v.IsText() && Trim(v.Str()).empty()) return Valore::Null();
      auto i = v.ComeImporto();
      if (!i) TipoNonCorrispondente(v);
      return Valore(*i);
    }
    case TipoCampo::Data: {
      if (v.tipo() == Valore::Tipo::Data) return v;
      if (v.IsText()) {
        if (Trim(v.Str()).empty()) return Valore::Null();
        auto d = v.ComeData();
        if (!d) TipoNonCorrispondente(v);
        return Valore(*d);
      }
      if (v.tipo() == Valore::Tipo::Intero) return Valore(Data::DaSeriale(v.Int()));
      if (v.tipo() == Valore::Tipo::Doppio) return Valore(Data::DaSeriale(static_cast<int64_t>(v.Dbl())));
      TipoNonCorrispondente(v);
    }
    case TipoCampo::Booleano:
      if (v.tipo() == Valore::Tipo::Booleano) return v;
      if (v.IsText() && Trim(v.Str()).empty()) return Valore(false);
      return Valore(v.Vero());
  }
  return v;
}

Valore DataIngresso(const Valore& v, std::string_view cosa) {
  try {
    if (v.IsText() || v.tipo() == Valore::Tipo::Data || v.IsNull() || v.IsEmpty()) return Coerci(v, TipoCampo::Data);
  } catch (const ErroreDb&) {
  }
  throw ErroreDb(13, std::string(cosa) + " non valida: '" + v.Testo() + "' (attesa una data gg/mm/aaaa).");
}

Valore ImportoIngresso(const Valore& v, std::string_view cosa) {
  try {
    return Coerci(v, TipoCampo::Importo);
  } catch (const std::exception&) {
  }
  throw ErroreDb(13, std::string(cosa) + " non valido: '" + v.Testo() + "' (atteso un importo come 1.234,50).");
}

// ---------------------------------------------------------------- Campo

const std::string& Campo::Name() const { return rs_->cols_[idx_].nome; }
TipoCampo Campo::Type() const { return rs_->cols_[idx_].tipo; }
const Valore& Campo::Value() const { return rs_->Get(idx_); }
Campo& Campo::operator=(const Valore& v) {
  rs_->Set(idx_, v);
  return *this;
}

// ---------------------------------------------------------------- Recordset

Recordset::Recordset(Recordset&& o) noexcept { *this = std::move(o); }
Recordset& Recordset::operator=(Recordset&& o) noexcept {
  open_ = o.open_;
  cols_ = std::move(o.cols_);
  rows_ = std::move(o.rows_);
  pos_ = o.pos_;
  cn_ = o.cn_;
  tabella_ = std::move(o.tabella_);
  chiave_ = std::move(o.chiave_);
  rid_ = o.rid_;
  edit_ = o.edit_;
  originale_ = std::move(o.originale_);
  variati_ = std::move(o.variati_);
  campi_.clear();
  for (size_t i = 0; i < cols_.size(); ++i) campi_.emplace_back(new Campo(this, static_cast<int>(i)));
  o.open_ = false;
  o.campi_.clear();
  return *this;
}
Recordset::~Recordset() = default;

Recordset Recordset::DaDati(Dati d) {
  Recordset rs;
  rs.open_ = true;
  rs.cols_ = std::move(d.cols);
  rs.rows_ = std::move(d.rows);
  rs.pos_ = 0;
  for (size_t i = 0; i < rs.cols_.size(); ++i) rs.campi_.emplace_back(new Campo(&rs, static_cast<int>(i)));
  return rs;
}

Recordset Recordset::Modificabile(Connessione& cn, std::string tabella, Dati d, std::vector<int> chiave, int rid) {
  return Modificabile(cn, std::move(tabella), DaDati(std::move(d)), std::move(chiave), rid);
}

Recordset Recordset::Modificabile(Connessione& cn, std::string tabella, Recordset rs, std::vector<int> chiave, int rid) {
  rs.cn_ = &cn;
  rs.tabella_ = std::move(tabella);
  rs.chiave_ = std::move(chiave);
  rs.rid_ = rid;
  return rs;
}

void Recordset::Assicura() const {
  if (!open_) throw ErroreDb(3704, "Operazione non consentita se l'oggetto è chiuso.");
}

void Recordset::MoveFirst() {
  Assicura();
  if (edit_ != adEditNone) Update();
  pos_ = 0;
}
void Recordset::Vai(size_t posizione) {
  Assicura();
  if (edit_ != adEditNone) Update();
  pos_ = std::min(posizione, rows_.size());
}
void Recordset::MoveLast() {
  Assicura();
  if (edit_ != adEditNone) Update();
  pos_ = rows_.empty() ? 0 : rows_.size() - 1;
}
void Recordset::MoveNext() {
  Assicura();
  if (Eof()) throw ErroreDb(3021, "Il record corrente non esiste: EOF.");
  if (edit_ != adEditNone) Update();
  if (pos_ == kBof) pos_ = 0;
  else ++pos_;
}
void Recordset::MovePrevious() {
  Assicura();
  if (Bof()) throw ErroreDb(3021, "Il record corrente non esiste: BOF.");
  if (edit_ != adEditNone) Update();
  pos_ = pos_ == 0 ? kBof : pos_ - 1;
}

int Recordset::Indice(std::string_view nome) const {
  // The hidden row identity is not a field.
  for (size_t i = 0; i < cols_.size(); ++i)
    if (static_cast<int>(i) != rid_ && UgualeNoCase(cols_[i].nome, nome)) return static_cast<int>(i);
  std::string_view n = nome;
  // "[Tabella].[Campo]" or "Tabella.Campo": the field's own name.
  auto dot = n.rfind('.');
  if (dot != std::string_view::npos) {
    n = n.substr(dot + 1);
    if (!n.empty() && n.front() == '[') n = n.substr(1, n.size() - 2);
    return Indice(n);
  }
  return -1;
}

Campo& Recordset::Fields(std::string_view nome) {
  Assicura();
  int i = Indice(nome);
  if (i < 0) throw ErroreDb(3265, "Elemento non trovato nell'insieme: " + std::string(nome));
  return *campi_[i];
}
Campo& Recordset::Fields(int i) {
  Assicura();
  if (i < 0 || i >= static_cast<int>(cols_.size()) || i == rid_)
    throw ErroreDb(3265, "Elemento non trovato nell'insieme: " + std::to_string(i));
  return *campi_[i];
}

const Valore& Recordset::Get(int idx) const {
  Assicura();
  if (pos_ >= rows_.size()) throw ErroreDb(3021, "Nessun record corrente.");
  return rows_[pos_][idx];
}

void Recordset::Set(int idx, const Valore& v) {
  Assicura();
  if (!Modificabile()) throw ErroreDb(3251, "Il recordset non consente aggiornamenti.");
  if (pos_ >= rows_.size()) throw ErroreDb(3021, "Nessun record corrente.");
  Valore nuovo = Coerci(v, cols_[idx].tipo);
  // A stored row's column given the value it already holds (same kind, same value) is not
  // written again: its indexes are left as they are.
  if (edit_ != adEditAdd && rows_[pos_][idx] == nuovo) return;
  if (edit_ == adEditNone) {
    originale_ = rows_[pos_];
    variati_.assign(cols_.size(), false);
    edit_ = adEditInProgress;
  }
  rows_[pos_][idx] = std::move(nuovo);
  variati_[idx] = true;
}

void Recordset::AddNew() {
  Assicura();
  if (!Modificabile()) throw ErroreDb(3251, "Il recordset non consente aggiornamenti.");
  if (edit_ != adEditNone) Update();
  rows_.emplace_back(cols_.size(), Valore::Null());
  pos_ = rows_.size() - 1;
  originale_.clear();
  variati_.assign(cols_.size(), false);
  edit_ = adEditAdd;
}

void Recordset::CancelUpdate() {
  if (edit_ == adEditAdd) {
    rows_.pop_back();
    pos_ = rows_.size();
  } else if (edit_ == adEditInProgress) {
    rows_[pos_] = originale_;
  }
  edit_ = adEditNone;
}

namespace {
std::string Quadre(const std::string& n) { return "[" + n + "]"; }
}  // namespace

// The row's key: "= ?" for a value, IS NULL for a null part, so that the key's index serves.
void Recordset::FiltroChiave(std::string& sql, Parametri& p, const std::vector<Valore>& riga) const {
  for (size_t k = 0; k < chiave_.size(); ++k) {
    if (k) sql += " AND ";
    const Valore& v = riga[chiave_[k]];
    if (v.IsNull() || v.IsEmpty()) {
      sql += Quadre(cols_[chiave_[k]].nome) + " IS NULL";
    } else {
      sql += Quadre(cols_[chiave_[k]].nome) + " = ?";
      p.push_back(v);
    }
  }
}

void Recordset::UpdateInCoda() {
  Assicura();
  if (edit_ != adEditInProgress) {
    Update();
    return;
  }
  std::string sql;
  Parametri p;
  if (!TestoAggiornamento(sql, p)) return;
  cn_->EseguiInCoda(sql, p);
  edit_ = adEditNone;
  originale_.clear();
}

// The UPDATE of the row being edited (by its key, or its row identity); false when no column
// changed.
bool Recordset::TestoAggiornamento(std::string& sql, Parametri& p) {
  const auto& row = rows_[pos_];
  std::string set;
  for (size_t i = 0; i < cols_.size(); ++i) {
    if (static_cast<int>(i) == rid_ || !variati_[i]) continue;
    if (!set.empty()) set += ", ";
    set += Quadre(cols_[i].nome) + " = ?";
    p.push_back(row[i]);
  }
  if (set.empty()) {
    edit_ = adEditNone;
    return false;
  }
  sql = "UPDATE " + Quadre(tabella_) + " SET " + set + " WHERE ";
  if (!chiave_.empty()) {
    FiltroChiave(sql, p, originale_);
  } else {
    sql += cn_->ColonnaRid() + " = ?";
    p.push_back(originale_[rid_]);
  }
  return true;
}

void Recordset::Update() {
  Assicura();
  if (edit_ == adEditNone) return;
  auto& row = rows_[pos_];
  Parametri p;
  std::string sql;
  std::string ridExpr = cn_->ColonnaRid();
  if (edit_ == adEditAdd) {
    std::string cols, vals;
    for (size_t i = 0; i < cols_.size(); ++i) {
      if (static_cast<int>(i) == rid_ || !variati_[i]) continue;
      if (!cols.empty()) {
        cols += ", ";
        vals += ", ";
      }
      cols += Quadre(cols_[i].nome);
      vals += "?";
      p.push_back(row[i]);
    }
    if (cols.empty()) sql = "INSERT INTO " + Quadre(tabella_) + " DEFAULT VALUES";
    else sql = "INSERT INTO " + Quadre(tabella_) + " (" + cols + ") VALUES (" + vals + ")";
  } else if (!TestoAggiornamento(sql, p)) {
    return;
  }
  // The row as the database holds it now: defaults and generated numbers come back too.
  sql += " RETURNING *";
  if (rid_ >= 0) sql += ", " + ridExpr + " AS vorn_rid";
  cn_->PrimaDi(sql);
  auto esito = cn_->EseguiInterno(cn_->Traduci(sql), p, true);
  if (esito.dati.rows.empty())
    throw ErroreDb(3197, "Impossibile trovare la riga per l'aggiornamento: alcuni valori potrebbero essere stati modificati dall'ultima lettura.");
  const auto& nuova = esito.dati.rows[0];
  for (size_t k = 0; k < esito.dati.cols.size(); ++k) {
    if (rid_ >= 0 && k + 1 == esito.dati.cols.size()) {
      row[rid_] = nuova[k];
      continue;
    }
    for (size_t i = 0; i < cols_.size(); ++i) {
      if (static_cast<int>(i) == rid_ || !UgualeNoCase(cols_[i].nome, esito.dati.cols[k].nome)) continue;
      try {
        row[i] = Coerci(nuova[k], cols_[i].tipo);
      } catch (const ErroreDb&) {
        row[i] = nuova[k];
      }
      break;
    }
  }
  edit_ = adEditNone;
  originale_.clear();
}

void Recordset::Delete() {
  Assicura();
  if (!Modificabile()) throw ErroreDb(3251, "Il recordset non consente aggiornamenti.");
  if (pos_ >= rows_.size()) throw ErroreDb(3021, "Nessun record corrente.");
  if (edit_ == adEditAdd) {
    CancelUpdate();
    return;
  }
  const auto& key = edit_ == adEditInProgress ? originale_ : rows_[pos_];
  Parametri p;
  std::string sql = "DELETE FROM " + Quadre(tabella_) + " WHERE ";
  if (!chiave_.empty()) {
    FiltroChiave(sql, p, key);
  } else {
    sql += cn_->ColonnaRid() + " = ?";
    p.push_back(key[rid_]);
  }
  cn_->PrimaDi(sql);
  cn_->EseguiInterno(cn_->Traduci(sql), p, false);
  edit_ = adEditNone;
  rows_.erase(rows_.begin() + static_cast<long>(pos_));
}

void Recordset::Close() {
  open_ = false;
  rows_.clear();
  edit_ = adEditNone;
}

// ---------------------------------------------------------------- Connessione

void VerificaNome(std::string_view nome, std::string_view cosa) {
  bool ok = !nome.empty() && nome.size() <= 128;
  for (unsigned char c : nome)
    if (c < 0x20 || c == 0x7f || c == '[' || c == ']' || c == '"' || c == '\'' || c == ';' || c == '`') ok = false;
  if (!ok)
    throw ErroreDb(3265, "Nome di " + std::string(cosa) + " non valido: '" + std::string(nome) +
                             "' (non può essere vuoto né contenere parentesi quadre, virgolette, apici, punti e virgola o caratteri di controllo).");
}

bool ErroreDiConcorrenza(const ErroreDb& e) {
  const std::string& s = e.SqlState();
  return s == "40P01" || s == "40001" || s == "sqlite:5" || s == "sqlite:6";
}

std::string Connessione::Identificatore(std::string_view nome) const {
  VerificaNome(nome);
  if (!IsPostgres()) return "[" + std::string(nome) + "]";
  std::string out = "\"";
  for (char c : LCase(nome)) {
    if (c == '"') out += '"';
    out += c;
  }
  return out + "\"";
}

namespace {
bool IniziaCon(std::string_view sql, std::string_view parola) {
  size_t i = 0;
  while (i < sql.size() && isspace(static_cast<unsigned char>(sql[i]))) ++i;
  if (sql.size() - i < parola.size()) return false;
  for (size_t k = 0; k < parola.size(); ++k)
    if (toupper(static_cast<unsigned char>(sql[i + k])) != parola[k]) return false;
  size_t j = i + parola.size();
  return j == sql.size() || !isalnum(static_cast<unsigned char>(sql[j]));
}

// SQLite gives a column declared NUMERIC the numeric affinity, which stores 5,0000 as the
// integer 5 (and 5 / 2 is then 2): an amount column is declared there with the real affinity
// under a name that still reads back as an amount.
std::string AmmontareSqlite(std::string sql) {
  static const std::string cerca = "NUMERIC(19,4)";
  std::string up = UCase(sql);
  for (size_t i = up.rfind(cerca); i != std::string::npos; i = i ? up.rfind(cerca, i - 1) : std::string::npos) {
    sql.replace(i, cerca.size(), "IMPORTO REAL");
    if (i == 0) break;
  }
  return sql;
}
}  // namespace

std::string Connessione::Traduci(std::string_view sql) const {
  if (!IsPostgres()) {
    if (IniziaCon(sql, "CREATE") || IniziaCon(sql, "ALTER")) return AmmontareSqlite(std::string(sql));
    return std::string(sql);
  }
  // The same statements come again and again: each is translated once (a bounded memory).
  auto trovata = traduzioni_.find(std::string(sql));
  if (trovata != traduzioni_.end()) return trovata->second;
  if (traduzioni_.size() >= 2048) traduzioni_.clear();
  std::string t = TraduciPostgres(sql);
  traduzioni_.emplace(std::string(sql), t);
  return t;
}

std::string Connessione::TraduciPostgres(std::string_view sql) const {
  std::string out;
  out.reserve(sql.size() + 16);
  int n = 0;
  for (size_t i = 0; i < sql.size(); ++i) {
    char c = sql[i];
    if (c == '\'') {  // string literal, '' inside
      size_t j = i + 1;
      while (j < sql.size()) {
        if (sql[j] == '\'') {
          if (j + 1 < sql.size() && sql[j + 1] == '\'') j += 2;
          else break;
        } else {
          ++j;
        }
      }
      out.append(sql.substr(i, j - i + 1));
      i = j;
    } else if (c == '"') {
      size_t j = sql.find('"', i + 1);
      if (j == std::string_view::npos) j = sql.size() - 1;
      out.append(sql.substr(i, j - i + 1));
      i = j;
    } else if (c == '[') {
      size_t j = sql.find(']', i + 1);
      if (j == std::string_view::npos) {
        out += c;
        continue;
      }
      out += Identificatore(sql.substr(i + 1, j - i - 1));
      i = j;
    } else if (c == '?') {
      out += "$" + std::to_string(++n);
    } else {
      out += c;
    }
  }
  return out;
}

Parametri Connessione::Normalizza(const Parametri& p) {
  Parametri out;
  for (size_t i = 0; i < p.size(); ++i) {
    const Valore& v = p[i];
    if (!v.IsText()) continue;
    const std::string& t = v.Str();
    if (t.size() < 8 || t.size() > 10 || std::count(t.begin(), t.end(), '/') != 2) continue;
    bool cifre = std::all_of(t.begin(), t.end(), [](char c) { return c == '/' || (c >= '0' && c <= '9'); });
    auto b1 = t.find('/'), b2 = t.rfind('/');
    if (!cifre || b1 < 1 || b1 > 2 || b2 - b1 < 2 || b2 - b1 > 3 || t.size() - b2 != 5) continue;
    auto d = Data::DaTesto(t);
    if (!d) continue;
    if (out.empty()) out = p;
    out[i] = Valore(*d);
  }
  return out;
}

namespace {
bool ControlloTransazione(std::string_view sql) {
  for (const char* k : {"BEGIN", "COMMIT", "ROLLBACK", "SAVEPOINT", "RELEASE", "END", "START", "ABORT"})
    if (IniziaCon(sql, k)) return true;
  return false;
}
}  // namespace

namespace {
// A statement that only reads: it starts with SELECT.
bool SoloLettura(std::string_view sql) {
  size_t i = 0;
  while (i < sql.size() && isspace(static_cast<unsigned char>(sql[i]))) ++i;
  auto parola = [&](const char* k) {
    size_t n = std::char_traits<char>::length(k);
    if (sql.size() - i < n) return false;
    for (size_t j = 0; j < n; ++j)
      if (toupper(static_cast<unsigned char>(sql[i + j])) != k[j]) return false;
    return i + n == sql.size() || !isalnum(static_cast<unsigned char>(sql[i + n]));
  };
  return parola("SELECT");
}

}  // namespace

uint64_t Connessione::ScrittureDi(std::string_view tabella) {
  std::string k = LCase(tabella);
  for (const auto& o : osservate_)
    if (o.nome == k) return o.scritture;
  osservate_.push_back({k, "[" + k + "]", "\"" + k + "\"", 0});
  return 0;
}

const Connessione::Impronta& Connessione::ImprontaDi(std::string_view sql) {
  auto it = impronte_.find(sql);
  if (it != impronte_.end() && it->second.osservate == osservate_.size() && it->second.differiti == differiti_.size())
    return it->second;
  if (it == impronte_.end()) {
    // Texts with values written in them could be many: the cache starts again.
    if (impronte_.size() >= 1024) impronte_.clear();
    it = impronte_.emplace(std::string(sql), Impronta{}).first;
  }
  std::string minuscolo(sql);
  for (char& ch : minuscolo)
    if (ch >= 'A' && ch <= 'Z') ch = static_cast<char>(ch - 'A' + 'a');
  Impronta& imp = it->second;
  imp = Impronta{osservate_.size(), differiti_.size(), {}, {}};
  // A write names the table bracketed, or quoted as Identificatore gives it on PostgreSQL.
  for (size_t i = 0; i < osservate_.size(); ++i)
    if (minuscolo.find(osservate_[i].quadre) != std::string::npos ||
        minuscolo.find(osservate_[i].virgolette) != std::string::npos)
      imp.nominate.push_back(i);
  for (size_t i = 0; i < differiti_.size(); ++i)
    if (differiti_[i].second->Tocca(minuscolo)) imp.toccati.push_back(i);
  return imp;
}

void Connessione::PrimaDi(std::string_view sql) {
  const bool osserva = !osservate_.empty() && !SoloLettura(sql);
  const bool differiti = !scrivendo_ && !differiti_.empty();
  if (!osserva && !differiti) return;
  const Impronta& imp = ImprontaDi(sql);
  if (osserva)
    for (size_t i : imp.nominate) ++osservate_[i].scritture;
  if (!differiti) return;
  for (size_t i : imp.toccati) {
    if (!differiti_[i].second->Vuoto()) {
      ScriviDifferiti();
      return;
    }
  }
}

Recordset Connessione::Execute(std::string_view sql, const Parametri& p) {
  PrimaDi(sql);
  Parametri n = Normalizza(p);
  return Recordset::DaDati(EseguiInterno(Traduci(sql), n.empty() ? p : n, true).dati);
}

namespace {
// Transactions go through BeginTrans, CommitTrans and RollbackTrans, never as statements.
void RifiutaControlloTransazione(std::string_view sql) {
  if (ControlloTransazione(sql))
    throw ErroreDb(3246, "Le transazioni si aprono e si chiudono con BeginTrans, CommitTrans e RollbackTrans: " +
                             std::string(sql.substr(0, 40)));
}
}  // namespace

int64_t Connessione::Esegui(std::string_view sql, const Parametri& p) {
  RifiutaControlloTransazione(sql);
  PrimaDi(sql);
  Parametri n = Normalizza(p);
  return EseguiInterno(Traduci(sql), n.empty() ? p : n, false).righe;
}

uint64_t Connessione::EseguiInCoda(std::string_view sql, const Parametri& p, std::shared_ptr<int64_t> righe) {
  RifiutaControlloTransazione(sql);
  PrimaDi(sql);
  Parametri n = Normalizza(p);
  std::string testo = Traduci(sql);
  if (livello_ > 0)
    if (uint64_t id = Accoda(testo, n.empty() ? p : n, righe)) return id;
  const int64_t toccate = EseguiInterno(testo, n.empty() ? p : n, false).righe;
  if (righe) *righe = toccate;
  return 0;
}

bool Connessione::SostituisciInCoda(uint64_t id, std::string_view sql, const Parametri& p) {
  if (id == 0) return false;
  RifiutaControlloTransazione(sql);
  PrimaDi(sql);
  Parametri n = Normalizza(p);
  return SostituisciInterno(id, Traduci(sql), n.empty() ? p : n);
}

void Connessione::InviaCoda() { InviaCodaInterno(); }

std::vector<Connessione::Risposta> Connessione::EseguiInsieme(
    const std::vector<std::pair<std::string, Parametri>>& istruzioni) {
  std::vector<std::pair<std::string, Parametri>> pronte;
  pronte.reserve(istruzioni.size());
  for (const auto& [sql, p] : istruzioni) {
    RifiutaControlloTransazione(sql);
    PrimaDi(sql);
    Parametri n = Normalizza(p);
    pronte.emplace_back(Traduci(sql), n.empty() ? p : std::move(n));
  }
  std::vector<Esito> esiti = EseguiInsiemeInterno(pronte);
  std::vector<Risposta> risposte;
  risposte.reserve(esiti.size());
  for (auto& e : esiti) risposte.push_back({Recordset::DaDati(std::move(e.dati)), e.righe});
  return risposte;
}

std::vector<Connessione::Esito> Connessione::EseguiInsiemeInterno(
    const std::vector<std::pair<std::string, Parametri>>& istruzioni) {
  std::vector<Esito> esiti;
  esiti.reserve(istruzioni.size());
  for (const auto& [sql, p] : istruzioni) esiti.push_back(EseguiInterno(sql, p, true));
  return esiti;
}

void Connessione::Scorri(std::string_view sql, const Parametri& p,
                         const std::function<bool(const std::vector<Colonna>&, const std::vector<Valore>&)>& riga) {
  PrimaDi(sql);
  Parametri n = Normalizza(p);
  ScorriInterno(Traduci(sql), n.empty() ? p : n, riga);
}

Valore Connessione::Scalare(std::string_view sql, const Parametri& p) {
  PrimaDi(sql);
  Parametri n = Normalizza(p);
  auto e = EseguiInterno(Traduci(sql), n.empty() ? p : n, true);
  if (e.dati.rows.empty() || e.dati.cols.empty()) return Valore::Null();
  return e.dati.rows[0][0];
}

const std::vector<std::string>& Connessione::ChiaveTabella(const std::string& tabella) {
  std::string k = LCase(tabella);
  auto it = chiavi_.find(k);
  if (it != chiavi_.end()) return it->second;
  return chiavi_[k] = LeggiChiave(tabella);
}

Recordset Connessione::Apri(std::string_view tabella, std::string_view where, const Parametri& p, std::string_view orderBy) {
  VerificaNome(tabella);
  std::string sql = "SELECT * FROM [" + std::string(tabella) + "]";
  if (!where.empty()) sql += " WHERE " + std::string(where);
  if (!orderBy.empty()) sql += " ORDER BY " + std::string(orderBy);
  return ApriSql(sql, p);
}

namespace {
// The table after the first FROM of a statement: "[Nome Tabella]" or a bare name.
std::string TabellaDi(std::string_view sql) {
  std::string up = UCase(sql);
  size_t f = std::string::npos;
  for (size_t i = 0; i + 4 <= up.size(); ++i) {
    if (up.compare(i, 4, "FROM") == 0 && (i == 0 || !isalnum(static_cast<unsigned char>(up[i - 1]))) &&
        (i + 4 == up.size() || !isalnum(static_cast<unsigned char>(up[i + 4])))) {
      f = i + 4;
      break;
    }
  }
  if (f == std::string::npos) throw ErroreDb(3251, "Recordset modificabile senza tabella: " + std::string(sql));
  while (f < sql.size() && isspace(static_cast<unsigned char>(sql[f]))) ++f;
  if (f < sql.size() && sql[f] == '[') {
    size_t e = sql.find(']', f);
    return std::string(sql.substr(f + 1, e - f - 1));
  }
  size_t e = f;
  while (e < sql.size() && !isspace(static_cast<unsigned char>(sql[e])) && sql[e] != ';' && sql[e] != ')') ++e;
  return std::string(sql.substr(f, e - f));
}

// Inserts ", <rid> AS vorn_rid" after the select list's first "*" or before the first FROM.
std::string ConRid(std::string_view sql, const std::string& rid, const std::string& tabella) {
  std::string s(sql);
  std::string up = UCase(s);
  size_t f = up.find("FROM");
  std::string ins = ", [" + tabella + "]." + rid + " AS vorn_rid ";
  return s.substr(0, f) + ins + s.substr(f);
}
}  // namespace

namespace {
// A table without a key is read with its rows' identity, by which its rows are written back.
Connessione::Apertura PreparaApriSql(std::string_view sql, const Parametri& p, bool usaRid, std::string tabella,
                                     const std::string& rid) {
  Connessione::Apertura a;
  a.sql = usaRid ? ConRid(sql, rid, tabella) : std::string(sql);
  a.p = p;
  a.tabella = std::move(tabella);
  a.rid = usaRid;
  return a;
}
}  // namespace

Connessione::Apertura Connessione::PreparaApri(std::string_view tabella, std::string_view where, const Parametri& p) {
  VerificaNome(tabella);
  std::string sql = "SELECT * FROM [" + std::string(tabella) + "]";
  if (!where.empty()) sql += " WHERE " + std::string(where);
  return PreparaApriSql(sql, p, ChiaveTabella(std::string(tabella)).empty(), std::string(tabella), ColonnaRid());
}

Recordset Connessione::ApriDa(const Apertura& a, Recordset letto) {
  std::vector<int> idx;
  int rid = -1;
  const auto& cols = letto.Colonne();
  if (a.rid) {
    rid = static_cast<int>(cols.size()) - 1;
  } else {
    for (const auto& k : ChiaveTabella(a.tabella)) {
      int found = -1;
      for (size_t i = 0; i < cols.size(); ++i)
        if (UgualeNoCase(cols[i].nome, k)) found = static_cast<int>(i);
      if (found < 0) throw ErroreDb(3251, "Il recordset non contiene la chiave " + k + " di " + a.tabella);
      idx.push_back(found);
    }
  }
  return Recordset::Modificabile(*this, a.tabella, std::move(letto), std::move(idx), rid);
}

Recordset Connessione::ApriSql(std::string_view sql, const Parametri& p) {
  std::string tabella = TabellaDi(sql);
  VerificaNome(tabella);
  PrimaDi(sql);
  const Apertura a = PreparaApriSql(sql, p, ChiaveTabella(tabella).empty(), tabella, ColonnaRid());
  Parametri n = Normalizza(p);
  auto esito = EseguiInterno(Traduci(a.sql), n.empty() ? p : n, true);
  return ApriDa(a, Recordset::DaDati(std::move(esito.dati)));
}

// ---------------------------------------------------------------- transactions

namespace {
std::string NomeSavepoint(int livello) { return "vorn_sp" + std::to_string(livello); }
[[noreturn]] void NessunaTransazione() { throw ErroreDb(3246, "Nessuna transazione attiva.", "25P01"); }
[[noreturn]] void Annullata() { throw ErroreDb(3246, kMsgTransazioneAnnullata, "25P02"); }
}  // namespace

void Connessione::BeginTrans() {
  if (lettura_) throw ErroreDb(3246, "Una lettura in corso non consente scritture: chiuderla prima di aprire una transazione.");
  if (livello_ == 0) {
    if (InTransazione()) throw ErroreDb(3246, "La connessione ha già una transazione aperta fuori da BeginTrans.");
    Controllo(TestoInizio());
    livello_ = 1;
    ++serie_;
    compromessa_ = false;
    sporco_.assign(2, false);
    return;
  }
  Controllo(("SAVEPOINT " + NomeSavepoint(livello_ + 1)).c_str());
  ++livello_;
  sporco_.push_back(false);
  for (auto& [nome, d] : differiti_) d->ApriLivello();
}

void Connessione::ChiudiTutto() {
  try {
    if (InTransazione()) Controllo("ROLLBACK");
  } catch (const ErroreDb&) {
    // A connection that dropped has no transaction left to undo.
  }
  livello_ = 0;
  compromessa_ = false;
  sporco_.clear();
  for (auto& [nome, d] : differiti_) d->Scarta();
}

void Connessione::CommitTrans() { Conferma(nullptr); }

void Connessione::CommitTransSenzaAttesa(EsitoConferma esito) { Conferma(&esito); }

void Connessione::AttendiConferme() { AttendiConfermeInterno(); }

void Connessione::Conferma(EsitoConferma* esito) {
  if (livello_ == 0) NessunaTransazione();
  if (livello_ > 1) {
    std::string sp = NomeSavepoint(livello_);
    bool fallito = InErrore();
    std::optional<ErroreDb> causa;  // a write of the level sent only now may fail here
    if (!fallito) {
      try {
        Controllo(("RELEASE SAVEPOINT " + sp).c_str());
      } catch (const ErroreDb& e) {
        fallito = true;
        causa = e;
      }
    }
    if (fallito) {
      RollbackTrans();
      if (causa) throw *causa;
      Annullata();
    }
    for (auto& [nome, d] : differiti_) d->ChiudiLivello(true);
    bool s = sporco_.back();
    sporco_.pop_back();
    if (s) sporco_.back() = true;
    --livello_;
    if (esito) (*esito)(nullptr);
    return;
  }
  if (!compromessa_ && !InErrore()) {
    try {
      ScriviDifferiti();
    } catch (...) {
      ChiudiTutto();
      throw;
    }
  }
  if (compromessa_ || InErrore()) {
    ChiudiTutto();
    Annullata();
  }
  bool inViaggio = false;
  try {
    if (esito) inViaggio = ConfermaSenzaAttesa(*esito);
    if (!inViaggio) Controllo("COMMIT");
  } catch (...) {
    ChiudiTutto();
    throw;
  }
  livello_ = 0;
  compromessa_ = false;
  sporco_.clear();
  if (esito && !inViaggio) (*esito)(nullptr);
}

void Connessione::RollbackTrans() {
  if (livello_ == 0) NessunaTransazione();
  if (livello_ > 1) {
    std::string sp = NomeSavepoint(livello_);
    bool s = sporco_.back();
    sporco_.pop_back();
    --livello_;
    for (auto& [nome, d] : differiti_) d->ChiudiLivello(false);
    // Deferred work of the levels below was written under this savepoint: undoing it loses
    // that work, so the transaction can no longer commit.
    if (s) compromessa_ = true;
    try {
      Controllo(("ROLLBACK TO SAVEPOINT " + sp).c_str());
      Controllo(("RELEASE SAVEPOINT " + sp).c_str());
    } catch (const ErroreDb&) {
      compromessa_ = true;
      throw;
    }
    return;
  }
  ChiudiTutto();
}

Differito& Connessione::Differimento(const std::string& nome, const std::function<std::unique_ptr<Differito>()>& crea) {
  for (auto& [n, d] : differiti_)
    if (n == nome) return *d;
  differiti_.emplace_back(nome, crea());
  Differito& d = *differiti_.back().second;
  for (int l = 1; l < livello_; ++l) d.ApriLivello();
  return d;
}

void Connessione::ScriviDifferiti() {
  if (scrivendo_) return;
  bool qualcosa = false;
  for (auto& [nome, d] : differiti_) qualcosa = qualcosa || !d->Vuoto();
  if (!qualcosa) return;
  if (livello_ > 1) sporco_.back() = true;
  scrivendo_ = true;
  struct Fine {
    bool& scrivendo;
    ~Fine() { scrivendo = false; }
  } fine{scrivendo_};
  try {
    for (auto& [nome, d] : differiti_) d->Scrivi(*this);
  } catch (...) {
    // Part of it may be written: the transaction cannot commit any more.
    compromessa_ = livello_ > 0;
    throw;
  }
}

void Connessione::IniziaLettura() {
  if (livello_ > 0 || lettura_) return;
  if (InTransazione()) throw ErroreDb(3246, "La connessione ha già una transazione aperta fuori da BeginTrans.");
  Controllo(TestoInizioLettura());
  lettura_ = true;
}

void Connessione::FineLettura() {
  if (!lettura_) return;
  lettura_ = false;
  try {
    Controllo("ROLLBACK");
  } catch (const ErroreDb&) {
  }
}

// ---------------------------------------------------------------- Atomico

Atomico::Atomico(Connessione& cn, bool recuperabile) : cn_(cn) {
  if (cn_.Livello() == 0 || recuperabile || !cn_.IsPostgres()) {
    cn_.BeginTrans();
    livello_ = true;
  }
}

void Atomico::Conferma() {
  if (fatto_) return;
  fatto_ = true;
  // CommitTrans closes the level also when it throws.
  if (livello_) cn_.CommitTrans();
}

void Atomico::ConfermaSenzaAttesa(Connessione::EsitoConferma esito) {
  if (fatto_) return;
  fatto_ = true;
  if (livello_) cn_.CommitTransSenzaAttesa(std::move(esito));
  else esito(nullptr);
}

Atomico::~Atomico() {
  if (fatto_) return;
  try {
    if (livello_) cn_.RollbackTrans();
    else cn_.SegnaCompromessa(true);
  } catch (...) {
  }
}

void ConRiprova(Connessione& cn, const std::function<void()>& unita, int tentativi) {
  if (cn.Livello() > 0 || cn.InTransazione()) {
    unita();
    return;
  }
  for (int i = 1;; ++i) {
    try {
      unita();
      return;
    } catch (const ErroreDb& e) {
      if (i >= tentativi || !ErroreDiConcorrenza(e) || cn.Livello() > 0) throw;
    }
    // A pause that grows and differs between clients, so that two of them do not meet again.
    static std::atomic<unsigned> seme{0x9e3779b9u};
    unsigned x = seme.fetch_add(0x6d2b79f5u) * 2654435761u;
    std::this_thread::sleep_for(std::chrono::milliseconds((2 << std::min(i, 6)) + (x >> 27)));
  }
}

}  // namespace vorn
