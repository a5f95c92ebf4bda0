#include "company/PresaNumero.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace vorn {

namespace {

bool ValoreVuoto(const Valore& v) { return v.IsEmpty() || v.IsNull() || (v.IsText() && v.Str().empty()); }

int64_t InteroDi(const Valore& v) {
  if (v.IsNull() || v.IsEmpty()) return 0;
  if (auto i = v.ComeIntero()) return *i;
  return static_cast<int64_t>(Val(v.Testo()));
}

// The statement that reads the counter's row (the columns of `elenco`), locked on PostgreSQL
// until the transaction ends.
std::string SqlContatore(const Connessione& cn, const Contatore& c, const std::string& elenco) {
  VerificaNome(c.tabella);
  VerificaNome(c.colonna, "colonna");
  std::string sql = "SELECT " + elenco + " FROM [" + c.tabella + "]";
  if (!c.where.empty()) sql += " WHERE " + c.where;
  // A blank key part matches both '' and Null, so old archives may hold the counter twice:
  // the highest of them counts, on both engines the same.
  sql += " ORDER BY COALESCE([" + c.colonna + "], 0) DESC LIMIT 1";
  if (cn.IsPostgres()) sql += " FOR UPDATE";
  return sql;
}

Recordset LeggiContatore(Connessione& cn, const Contatore& c) { return cn.ApriSql(SqlContatore(cn, c, "*"), c.parametri); }

// The name under which two clients that both find the counter missing wait for each other.
std::string NomeBlocco(const Contatore& c) {
  std::string s = "vorn|" + c.tabella + "|" + c.colonna + "|" + c.where;
  for (const auto& p : c.parametri) s += "|" + p.Testo();
  return s;
}

int64_t Successivo(const Contatore& c, int64_t ultimo) {
  if (ultimo >= std::numeric_limits<int32_t>::max())
    throw ErroreDb(6, "Il contatore " + c.colonna + " di " + c.tabella + " ha raggiunto il numero massimo " +
                          std::to_string(std::numeric_limits<int32_t>::max()) + ".");
  return ultimo + 1;
}

}  // namespace

FiltroChiave& FiltroChiave::Testo(const std::string& colonna, const Valore& valore) {
  if (ValoreVuoto(valore)) {
    parti_.push_back("(" + colonna + " = '' OR " + colonna + " IS NULL)");
  } else {
    parti_.push_back(colonna + " = ?");
    valori_.push_back(Valore(valore.Testo()));
  }
  return *this;
}

FiltroChiave& FiltroChiave::Numero(const std::string& colonna, const Valore& valore) {
  if (ValoreVuoto(valore)) {
    parti_.push_back("(" + colonna + " = 0 OR " + colonna + " IS NULL)");
    return *this;
  }
  std::optional<int64_t> n;
  if (valore.IsText()) {
    if (auto t = NormalizzaNumero(Trim(valore.Str()))) n = Valore(*t).ComeIntero();
  } else if (valore.IsNumber()) {
    n = valore.ComeIntero();
  }
  if (!n) throw ErroreDb(13, "Valore non numerico in un filtro: " + valore.Testo());
  parti_.push_back(colonna + " = ?");
  valori_.push_back(Valore(static_cast<long long>(*n)));
  return *this;
}

std::string FiltroChiave::Where() const {
  std::string s;
  for (const auto& p : parti_) s += (s.empty() ? "" : " AND ") + p;
  return s.empty() ? s : "(" + s + ")";
}

ChiaveComposta& ChiaveComposta::Testo(const std::string& colonna, const Valore& valore) {
  parti_.emplace_back(colonna, valore);
  numeriche_.push_back(false);
  return *this;
}

ChiaveComposta& ChiaveComposta::Numero(const std::string& colonna, const Valore& valore) {
  parti_.emplace_back(colonna, valore);
  numeriche_.push_back(true);
  return *this;
}

FiltroChiave ChiaveComposta::Filtro() const {
  FiltroChiave f;
  for (size_t i = 0; i < parti_.size(); ++i) {
    std::string colonna = "[" + tabella_ + "].[" + parti_[i].first + "]";
    if (numeriche_[i]) f.Numero(colonna, parti_[i].second);
    else f.Testo(colonna, parti_[i].second);
  }
  return f;
}

void ChiaveComposta::Scrivi(Recordset& rs) const {
  for (const auto& [colonna, valore] : parti_) rs(colonna) = valore;
}

int32_t PrendiNumero(Connessione& cn, const Contatore& c) {
  LettureDopoNumero nessuna;
  return PrendiNumero(cn, c, nessuna);
}

int32_t PrendiNumero(Connessione& cn, const Contatore& c, LettureDopoNumero& dopo) {
  dopo.letti.clear();
  dopo.scrittura = 0;
  auto leggiDopo = [&] {
    if (dopo.aperture.empty()) return;
    std::vector<std::pair<std::string, Parametri>> letture;
    for (const auto& a : dopo.aperture) letture.emplace_back(a.sql, a.p);
    auto risposte = cn.EseguiInsieme(letture);
    for (size_t i = 0; i < dopo.aperture.size(); ++i)
      dopo.letti.push_back(cn.ApriDa(dopo.aperture[i], std::move(risposte[i].rs)));
  };
  // No savepoint of its own inside the caller's transaction on PostgreSQL (two more round trips
  // for every number): a statement that fails here fails the caller's transaction, and a
  // number refused before anything is written leaves it as it was.
  Atomico transazione(cn, false);
  auto successivo = [&](int64_t ultimo) {
    try {
      return Successivo(c, ultimo);
    } catch (...) {
      transazione.Conferma();
      throw;
    }
  };
  if (cn.IsPostgres()) {
    // The counter under lock and the highest number in use, read in one round trip: the second
    // statement starts once the lock is held, so it sees what the lock's last holder committed.
    // The raised counter goes to the server with the caller's next statement.
    std::vector<std::pair<std::string, Parametri>> letture{{SqlContatore(cn, c, "[" + c.colonna + "], ctid"), c.parametri}};
    if (!c.sqlMassimo.empty()) letture.emplace_back(c.sqlMassimo, c.parametriMassimo);
    const size_t primaDopo = letture.size();
    for (const auto& a : dopo.aperture) letture.emplace_back(a.sql, a.p);
    auto risposte = cn.EseguiInsieme(letture);
    Recordset& contatore = risposte[0].rs;
    if (!contatore.Eof()) {
      for (size_t i = 0; i < dopo.aperture.size(); ++i)
        dopo.letti.push_back(cn.ApriDa(dopo.aperture[i], std::move(risposte[primaDopo + i].rs)));
      int64_t ultimo = InteroDi(contatore(0).Value());
      if (risposte.size() > 1 && !risposte[1].rs.Eof()) ultimo = std::max(ultimo, InteroDi(risposte[1].rs(0).Value()));
      int64_t nuovo = successivo(ultimo);
      dopo.scrittura = cn.EseguiInCoda("UPDATE [" + c.tabella + "] SET [" + c.colonna + "] = ? WHERE ctid = ?",
                                       {Valore(static_cast<long long>(nuovo)), contatore(1).Value()});
      transazione.Conferma();
      return static_cast<int32_t>(nuovo);
    }
  }
  if (!cn.IsPostgres()) {
    // The write transaction keeps other writers out: the counter's row (the highest, as the
    // read below takes it) is raised in one statement from the higher of itself and the highest
    // number in use, and read back. No row: it is made below.
    const std::string riga = SqlContatore(cn, c, "rowid");
    const std::string t = "[" + c.tabella + "]", col = "[" + c.colonna + "]";
    Parametri p;
    std::string massimo = "0";
    if (!c.sqlMassimo.empty()) {
      massimo = "COALESCE((" + c.sqlMassimo + "), 0)";
      p = c.parametriMassimo;
    }
    p.insert(p.end(), c.parametri.begin(), c.parametri.end());
    Recordset alzato = cn.Execute("UPDATE " + t + " SET " + col + " = MAX(COALESCE(CAST(" + col + " AS INTEGER), 0), " +
                                      massimo + ") + 1 WHERE rowid = (" + riga + ") RETURNING " + col + ", rowid",
                                  p);
    if (!alzato.Eof()) {
      const int64_t nuovo = InteroDi(alzato(0).Value());
      if (nuovo > std::numeric_limits<int32_t>::max()) {
        cn.Esegui("UPDATE " + t + " SET " + col + " = ? WHERE rowid = ?",
                  {Valore(static_cast<long long>(nuovo - 1)), alzato(1).Value()});
        successivo(nuovo - 1);
      }
      leggiDopo();
      transazione.Conferma();
      return static_cast<int32_t>(nuovo);
    }
  }
  Recordset rs = LeggiContatore(cn, c);
  if (rs.Eof() && cn.IsPostgres()) {
    // No row yet: whoever comes second waits here for the first to commit the row it makes,
    // then finds it and counts on from it.
    cn.Esegui("SELECT pg_advisory_xact_lock(hashtext(?))", {Valore(NomeBlocco(c))});
    rs = LeggiContatore(cn, c);
  }
  int64_t ultimo = rs.Eof() ? 0 : InteroDi(rs(c.colonna).Value());
  if (!c.sqlMassimo.empty()) ultimo = std::max(ultimo, InteroDi(cn.Scalare(c.sqlMassimo, c.parametriMassimo)));

  if (rs.Eof()) {
    int64_t nuovo = successivo(ultimo);
    try {
      Atomico inserimento(cn);
      rs.AddNew();
      for (const auto& [colonna, valore] : c.nuovaRiga) rs(colonna) = valore;
      rs(c.colonna) = Valore(static_cast<long long>(nuovo));
      rs.Update();
      inserimento.Conferma();
      leggiDopo();
      transazione.Conferma();
      return static_cast<int32_t>(nuovo);
    } catch (const ErroreDb& e) {
      // A client that does not take its numbers here made the row meanwhile: count on from it.
      if (!ChiaveDuplicata(e)) throw;
    }
    rs = LeggiContatore(cn, c);
    if (rs.Eof()) throw ErroreDb(3022, MsgNumeroGiaUsato(c.colonna, Valore(static_cast<long long>(nuovo))));
    ultimo = std::max(ultimo, InteroDi(rs(c.colonna).Value()));
  }
  int64_t nuovo = successivo(ultimo);
  rs(c.colonna) = Valore(static_cast<long long>(nuovo));
  rs.Update();
  leggiDopo();
  transazione.Conferma();
  return static_cast<int32_t>(nuovo);
}

bool ChiaveDuplicata(const ErroreDb& e) {
  if (e.SqlState() == "23505") return true;  // PostgreSQL: unique_violation
  const std::string& d = e.Descrizione();
  return d.find("UNIQUE constraint failed") != std::string::npos ||
         d.find("PRIMARY KEY constraint failed") != std::string::npos;
}

std::string MsgNumeroGiaUsato(const std::string& cosa, const Valore& numero) {
  return "Il numero " + numero.Testo() + " di " + cosa +
         " è già stato usato da un altro utente: ripetere l'operazione.";
}

}  // namespace vorn
