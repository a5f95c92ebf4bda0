#include "frame/Db.h"

#include <algorithm>
#include <atomic>

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
  Recordset rs = DaDati(std::move(d));
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
  if (edit_ == adEditNone) {
    originale_ = rows_[pos_];
    variati_.assign(cols_.size(), false);
    edit_ = adEditInProgress;
  }
  rows_[pos_][idx] = Coerci(v, cols_[idx].tipo);
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
  } else {
    std::string set;
    for (size_t i = 0; i < cols_.size(); ++i) {
      if (static_cast<int>(i) == rid_ || !variati_[i]) continue;
      if (!set.empty()) set += ", ";
      set += Quadre(cols_[i].nome) + " = ?";
      p.push_back(row[i]);
    }
    if (set.empty()) {
      edit_ = adEditNone;
      return;
    }
    sql = "UPDATE " + Quadre(tabella_) + " SET " + set + " WHERE ";
    if (!chiave_.empty()) {
      FiltroChiave(sql, p, originale_);
    } else {
      sql += ridExpr + " = ?";
      p.push_back(originale_[rid_]);
    }
  }
  // The row as the database holds it now: defaults and generated numbers come back too.
  sql += " RETURNING *";
  if (rid_ >= 0) sql += ", " + ridExpr + " AS vorn_rid";
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

std::string Connessione::Identificatore(std::string_view nome) const {
  if (!IsPostgres()) return "[" + std::string(nome) + "]";
  std::string out = "\"";
  for (char c : LCase(nome)) {
    if (c == '"') out += '"';
    out += c;
  }
  return out + "\"";
}

std::string Connessione::Traduci(std::string_view sql) const {
  if (!IsPostgres()) return std::string(sql);
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

Recordset Connessione::Execute(std::string_view sql, const Parametri& p) {
  return Recordset::DaDati(EseguiInterno(Traduci(sql), p, true).dati);
}

int64_t Connessione::Esegui(std::string_view sql, const Parametri& p) { return EseguiInterno(Traduci(sql), p, false).righe; }

Valore Connessione::Scalare(std::string_view sql, const Parametri& p) {
  auto e = EseguiInterno(Traduci(sql), p, true);
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

Recordset Connessione::ApriSql(std::string_view sql, const Parametri& p) {
  std::string tabella = TabellaDi(sql);
  const auto& chiave = ChiaveTabella(tabella);
  std::string testo(sql);
  bool usaRid = chiave.empty();
  if (usaRid) testo = ConRid(sql, ColonnaRid(), tabella);
  auto esito = EseguiInterno(Traduci(testo), p, true);
  std::vector<int> idx;
  int rid = -1;
  auto& cols = esito.dati.cols;
  if (usaRid) {
    rid = static_cast<int>(cols.size()) - 1;
  } else {
    for (const auto& k : chiave) {
      int found = -1;
      for (size_t i = 0; i < cols.size(); ++i)
        if (UgualeNoCase(cols[i].nome, k)) found = static_cast<int>(i);
      if (found < 0) throw ErroreDb(3251, "Il recordset non contiene la chiave " + k + " di " + tabella);
      idx.push_back(found);
    }
  }
  return Recordset::Modificabile(*this, tabella, std::move(esito.dati), std::move(idx), rid);
}

// ---------------------------------------------------------------- Atomico

Atomico::Atomico(Connessione& cn, bool recuperabile) : cn_(cn) {
  if (!cn_.InTransazione()) {
    cn_.BeginTrans();
    propria_ = true;
  } else if (recuperabile || !cn_.IsPostgres()) {
    // Named by depth: the same few names serve every unit, and their statements stay cached.
    savepoint_ = "vorn_sp" + std::to_string(cn_.savepoint_ + 1);
    cn_.Esegui("SAVEPOINT " + savepoint_);
    ++cn_.savepoint_;
  }
}

void Atomico::Conferma() {
  if (fatto_) return;
  if (propria_) {
    cn_.CommitTrans();
  } else if (!savepoint_.empty()) {
    cn_.Esegui("RELEASE SAVEPOINT " + savepoint_);
    --cn_.savepoint_;
  }
  fatto_ = true;
}

Atomico::~Atomico() {
  if (fatto_) return;
  try {
    if (propria_) {
      cn_.RollbackTrans();
    } else if (!savepoint_.empty()) {
      --cn_.savepoint_;
      cn_.Esegui("ROLLBACK TO SAVEPOINT " + savepoint_);
      cn_.Esegui("RELEASE SAVEPOINT " + savepoint_);
    } else {
      cn_.SegnaCompromessa(true);
    }
  } catch (...) {
  }
}

}  // namespace vorn
