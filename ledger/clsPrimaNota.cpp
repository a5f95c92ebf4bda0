#include "ledger/clsPrimaNota.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <stdexcept>

#include "company/clsProgAzienda.h"
#include "frame/Catalogo.h"
#include "frame/ConnessioneClasse.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "frame/Host.h"
#include "frame/Int128.h"
#include "frame/VornServer.h"

namespace vorn {

namespace {

const char* const kTabella = "Prima Nota";
const char* const kTabellaRegistri = "Progressivi Numerazione Vorn";  // the registers' document counters

bool Vuoto(const Valore& v) { return v.IsNull() || v.IsEmpty() || (v.IsText() && v.Str().empty()); }

// The trimmed text of a value; Null and Empty give "".
std::string T(const Valore& v) { return Trim(v.Testo()); }

// " AND col = ?" with the value bound, or, for an empty value, a match of both '' and Null:
// the text keys of old archives hold either for a blank.
void FiltroTesto(std::string& w, Parametri& p, const std::string& col, const Valore& v) {
  if (!w.empty()) w += " AND ";
  if (Vuoto(v)) {
    w += "(" + col + " = '' OR " + col + " IS NULL)";
  } else {
    w += col + " = ?";
    p.push_back(Valore(v.Testo()));
  }
}

// A whole-number column: an empty value finds zeros and nulls; a value that is not a whole
// number finds nothing.
void FiltroNumero(std::string& w, Parametri& p, const std::string& col, const Valore& v) {
  if (!w.empty()) w += " AND ";
  if (Vuoto(v)) {
    w += "(" + col + " = 0 OR " + col + " IS NULL)";
    return;
  }
  std::optional<Importo> i;
  try {
    i = NullToZeroCy(v);
  } catch (const std::exception&) {
  }
  if (!i || i->Raw() % Importo::kScala != 0) {
    w += "1 = 0";
    return;
  }
  w += col + " = ?";
  p.push_back(Valore(static_cast<long long>(i->Raw() / Importo::kScala)));
}

// A date column: Null finds nulls, a date that date, anything else nothing.
void FiltroData(std::string& w, Parametri& p, const std::string& col, const Valore& v) {
  if (!w.empty()) w += " AND ";
  if (v.IsNull()) {
    w += col + " IS NULL";
    return;
  }
  auto d = v.ComeData();
  if (!d) {
    w += "1 = 0";
    return;
  }
  w += col + " = ?";
  p.push_back(Valore(*d));
}

// A value of a read row: the default when null, text trimmed.
Valore Leggi(Recordset& rs, std::string_view nome, const Valore& predefinito) {
  return LeggiCampo(rs.Fields(nome), predefinito);
}

// A date that a statement gives back: engines without a date type give ISO text.
Valore ComeDataONull(const Valore& v) {
  if (v.IsNull() || v.IsEmpty()) return Valore::Null();
  auto d = v.ComeData();
  return d ? Valore(*d) : Valore::Null();
}

std::string DataTesto(const Valore& v) {
  Valore d = ComeDataONull(v);
  return d.IsNull() ? std::string() : d.Dat().Testo();
}

// The catalogue's columns of the journal, and their positions by lower-case name.
const TabellaCatalogo& CatalogoPN() {
  static const TabellaCatalogo* t = [] {
    const TabellaCatalogo* x = TabellaCatalogoDi(kTabella);
    if (!x) throw std::logic_error("Prima Nota assente dal catalogo");
    return x;
  }();
  return *t;
}

const std::unordered_map<std::string, int>& IndiciPN() {
  static const std::unordered_map<std::string, int> m = [] {
    std::unordered_map<std::string, int> r;
    const auto& cols = CatalogoPN().colonne;
    for (size_t i = 0; i < cols.size(); ++i) r[LCase(cols[i].nome)] = static_cast<int>(i);
    return r;
  }();
  return m;
}

int IndicePN(const char* nome) { return IndiciPN().at(LCase(nome)); }

// The positions by the names as the catalogue spells them: a caller that spells them so finds
// them without lowering the case first.
const std::unordered_map<std::string, int, HashTesto, std::equal_to<>>& IndiciEsattiPN() {
  static const std::unordered_map<std::string, int, HashTesto, std::equal_to<>> m = [] {
    std::unordered_map<std::string, int, HashTesto, std::equal_to<>> r;
    const auto& cols = CatalogoPN().colonne;
    for (size_t i = 0; i < cols.size(); ++i) r.emplace(cols[i].nome, static_cast<int>(i));
    return r;
  }();
  return m;
}

const std::string& SqlInserisciRiga() {
  static const std::string s = [] {
    std::string cols, vals;
    for (const auto& c : CatalogoPN().colonne) {
      cols += (cols.empty() ? "[" : ", [") + c.nome + "]";
      vals += vals.empty() ? "?" : ", ?";
    }
    return "INSERT INTO [Prima Nota] (" + cols + ") VALUES (" + vals + ")";
  }();
  return s;
}

// The same INSERT that adds nothing when a row has the key already (no conflict target: the
// caller makes sure the table's key is the journal's four columns).
const std::string& SqlInserisciRigaSeNuova() {
  static const std::string s = SqlInserisciRiga() + " ON CONFLICT DO NOTHING";
  return s;
}

const std::string& SqlAggiornaRigaSet() {
  static const std::string s = [] {
    std::string set;
    for (const auto& c : CatalogoPN().colonne) set += (set.empty() ? "[" : ", [") + c.nome + "] = ?";
    return "UPDATE [Prima Nota] SET " + set + " WHERE ";
  }();
  return s;
}

const char* const kChiavePN[4] = {"NumeroRegistrazione", "TipoRigaIvaNormale", "NumRigaAVideo", "DareAvere"};

// The i-th character (1-based) of a text, a blank beyond its end.
std::string Carattere(const std::string& s, size_t i) {
  std::string c = MedioTesto(s, i, 1);
  return c.empty() ? std::string(" ") : c;
}

// The status string of a saved row: positions 1-2 as given, 3 the causal's operativity,
// 4-10 those of the stored row (of the given value on a new row).
std::string ComponiIndicatori(const Valore& dato, const std::string& operativita, const Valore* memorizzato) {
  std::string d = dato.IsNull() || dato.IsEmpty() ? std::string() : dato.Testo();
  std::string m = memorizzato ? (memorizzato->IsNull() ? std::string() : memorizzato->Testo()) : d;
  std::string s = Carattere(d, 1) + Carattere(d, 2) + Carattere(operativita, 1);
  for (size_t i = 4; i <= 10; ++i) s += Carattere(m, i);
  return s;
}

// Whole-number value of a 32-bit column, 0 when it is not a number.
int32_t Lng(const Valore& v) {
  try {
    return NullToZeroLng(v);
  } catch (const std::exception&) {
    return 0;
  }
}

bool CodiceNumericoNonNullo(const std::string& codice) {
  try {
    return NullToZeroDbl(Valore(codice)) != 0;
  } catch (const std::exception&) {
    return true;  // a number too large to read is not zero
  }
}

// Number and date ranges of the range operations: numbers normalised to five digits, an empty
// start "00000" and end "99999"; dates that are not dates widened to 1900 and 3000.
void FiltroIntervallo(std::string& w, Parametri& p, const Valore& nIni, const Valore& nFin, const Valore& dIni,
                      const Valore& dFin, const std::string& colonnaData) {
  std::string n1, n2;
  try {
    n1 = Formato5Cifre(nIni);
  } catch (const std::exception&) {
  }
  try {
    n2 = Formato5Cifre(nFin);
  } catch (const std::exception&) {
  }
  if (n1.empty()) n1 = "00000";
  if (n2.empty()) n2 = "99999";
  auto d1 = dIni.ComeData();
  auto d2 = dFin.ComeData();
  if (!w.empty()) w += " AND ";
  w += colonnaData + " >= ? AND " + colonnaData + " <= ? AND [NumeroRegistrazione] >= ? AND [NumeroRegistrazione] <= ?";
  p.push_back(Valore(d1 ? *d1 : *Data::Crea(1900, 1, 1)));
  p.push_back(Valore(d2 ? *d2 : *Data::Crea(3000, 12, 31)));
  p.push_back(Valore(n1));
  p.push_back(Valore(n2));
}

void FiltroCausale(std::string& w, Parametri& p, const Valore& causale) {
  if (Vuoto(causale)) return;
  w += " AND [CodiceCausale] = ?";
  p.push_back(Valore(causale.Testo()));
}

// Balance columns, in the order of Delta: opening, debit, credit; then the progressives.
struct ColonneSaldo {
  const char* tabella;
  std::vector<std::string> chiave;
  const char* periodo[3];
  const char* progressivi[3];
};
const ColonneSaldo kSaldiConti{"Saldi Piano Dei Conti",
                               {"CodiceGruppo", "CodiceConto", "CodiceSottoconto"},
                               {"SaldoInizialePeriodo", "SaldoDarePeriodo", "SaldoAverePeriodo"},
                               {"SaldoInizialeProgr", "DareProgressivo", "AvereProgressivo"}};
const ColonneSaldo kSaldiClienti{"Anagrafica Clienti",
                                 {"Codice Cliente"},
                                 {"SaldoInizPeriodo", "SaldoDarePeriodo", "SaldoAverePeriodo"},
                                 {"SaldoInizProgress", "SaldoDareProgress", "SaldoAvereProgress"}};
const ColonneSaldo kSaldiFornitori{"Anagrafica Fornitori",
                                   {"Codice Cliente"},
                                   {"SaldoInizPeriodo", "SaldoDarePeriodo", "SaldoAverePeriodo"},
                                   {"SaldoInizProgress", "SaldoDareProgress", "SaldoAvereProgress"}};

// The statements that move one balance row, by the columns they touch (a mask of three bits).
// Amounts are added in SQL and rounded to the four decimals of an amount, so that a column
// stored as a binary floating value never gathers drift.
struct SqlSaldo {
  std::array<std::string, 8> aggiorna;
  std::string inserisci, esiste;
  // Rows of several keys in one statement, 1 to kRigheUpsert of them: each column takes the
  // row's amount when it moves (a delta of zero leaves it as it is, Null included).
  static constexpr size_t kRigheUpsert = 16;
  std::array<std::string, kRigheUpsert + 1> upsertRighe;
};

std::string SetMovimento(const ColonneSaldo& cs, int mask) {
  std::string set;
  for (int i = 0; i < 3; ++i) {
    if (!(mask & (1 << i))) continue;
    std::string col = std::string("[") + cs.periodo[i] + "]";
    set += (set.empty() ? "" : ", ") + col + " = ROUND(COALESCE(" + col + ", 0) + ?, 4)";
  }
  return set;
}

SqlSaldo CostruisciSqlSaldo(const ColonneSaldo& cs, bool conRagione) {
  SqlSaldo s;
  std::string cols, vals, chiave;
  for (const auto& k : cs.chiave) {
    cols += (cols.empty() ? "[" : ", [") + k + "]";
    vals += vals.empty() ? "?" : ", ?";
    chiave += (chiave.empty() ? "[" : ", [") + k + "]";
  }
  if (conRagione) {
    cols += ", [Ragione Sociale]";
    vals += ", ?";
  }
  for (int i = 0; i < 3; ++i) {
    cols += std::string(", [") + cs.periodo[i] + "]";
    vals += ", ?";
  }
  for (int i = 0; i < 3; ++i) {
    cols += std::string(", [") + cs.progressivi[i] + "]";
    vals += ", 0";
  }
  s.inserisci = std::string("INSERT INTO [") + cs.tabella + "] (" + cols + ") VALUES (" + vals + ")";
  for (int mask = 1; mask < 8; ++mask)
    s.aggiorna[mask] = std::string("UPDATE [") + cs.tabella + "] SET " + SetMovimento(cs, mask) + " WHERE ";
  s.esiste = std::string("SELECT 1 FROM [") + cs.tabella + "] WHERE ";
  std::string set;
  for (int i = 0; i < 3; ++i) {
    const std::string col = std::string("[") + cs.periodo[i] + "]";
    const std::string vecchio = std::string("[") + cs.tabella + "]." + col, nuovo = "EXCLUDED." + col;
    set += (i ? ", " : "") + col + " = CASE WHEN " + nuovo + " = 0 THEN " + vecchio + " ELSE ROUND(COALESCE(" +
           vecchio + ", 0) + " + nuovo + ", 4) END";
  }
  std::string righe;
  for (size_t n = 1; n <= SqlSaldo::kRigheUpsert; ++n) {
    righe += (n > 1 ? ", (" : "(") + vals + ")";
    s.upsertRighe[n] = std::string("INSERT INTO [") + cs.tabella + "] (" + cols + ") VALUES " + righe +
                       " ON CONFLICT (" + chiave + ") DO UPDATE SET " + set;
  }
  return s;
}

const SqlSaldo& SqlConti() {
  static const SqlSaldo s = CostruisciSqlSaldo(kSaldiConti, false);
  return s;
}
const SqlSaldo& SqlClienti() {
  static const SqlSaldo s = CostruisciSqlSaldo(kSaldiClienti, true);
  return s;
}
const SqlSaldo& SqlFornitori() {
  static const SqlSaldo s = CostruisciSqlSaldo(kSaldiFornitori, true);
  return s;
}

}  // namespace

const char* const kColonneMovimento =
    "[CodiceCausale], [ContoPrimaNota], [IndClienteFornitore], [CodClienteFornitore], [DareAvere], "
    "[ImportoMovimento], [Cambio], [DataCompetenza]";

MovimentoPrimaNota MovimentoDaRiga(const std::vector<Valore>& r, size_t da) {
  MovimentoPrimaNota m;
  m.CodiceCausale = r[da];
  m.ContoPrimaNota = r[da + 1];
  m.IndClienteFornitore = r[da + 2];
  m.CodClienteFornitore = r[da + 3];
  m.DareAvere = r[da + 4];
  m.ImportoMovimento = r[da + 5];
  m.Cambio = r[da + 6];
  m.DataCompetenza = r[da + 7];
  return m;
}

// ---------------------------------------------------------------- connection and caches

void clsPrimaNota::AssicuraConnessione() const { ConnessioneAssegnata(cn); }

void clsPrimaNota::DimenticaCache() {
  causali_.clear();
  sottoconti_.clear();
  causaliComplete_ = pianoCompleto_ = false;
  upsert_.clear();
}

bool clsPrimaNota::GetParametriCausaleMovimentazione(const Valore& codiceCausale, Valore& TipoRegistroIva,
                                                     Valore& TipoCausale, Valore& OperativitaPartite,
                                                     Valore& OperativitaContabile, Valore& OperativitaIntra,
                                                     Valore& IndQuadratura) {
  AssicuraConnessione();
  // The causals' own key filter, so that the journal and the causals find the same row.
  FiltroCodice f = FiltraCodice("[Causali Contabili].[CodiceCausale]", codiceCausale);
  Recordset rs = cn->Execute(
      "SELECT [TipoRegistroIva], [TipoCausale], [OperativitaPartite], [OperativitaContabile], [OperativitaIntra], "
      "[IndQuadratura] FROM [Causali Contabili] WHERE " + f.where + " LIMIT 1",
      f.p);
  if (rs.Eof()) {
    TipoRegistroIva = TipoCausale = OperativitaPartite = OperativitaContabile = OperativitaIntra = IndQuadratura =
        Valore("");
    return false;
  }
  TipoRegistroIva = Leggi(rs, "TipoRegistroIva", "0");
  TipoCausale = Leggi(rs, "TipoCausale", "");
  OperativitaPartite = Leggi(rs, "OperativitaPartite", "0");
  OperativitaContabile = Leggi(rs, "OperativitaContabile", "0");
  OperativitaIntra = Leggi(rs, "OperativitaIntra", "0");
  IndQuadratura = Leggi(rs, "IndQuadratura", "0");
  return true;
}

bool clsPrimaNota::LettureValide() {
  uint64_t serie = LettureDiCorsa ? 1 : cn->SerieTransazione();
  if (serie == 0) {
    letture_.operativita.clear();
    letture_.sottoconti.clear();
    letture_.serie = 0;
    return false;
  }
  uint64_t causali = cn->ScrittureDi("Causali Contabili"), piano = cn->ScrittureDi("Piano Dei Conti");
  if (letture_.cn != cn.get() || letture_.serie != serie || letture_.causali != causali || letture_.piano != piano) {
    letture_.operativita.clear();
    letture_.sottoconti.clear();
    letture_.cn = cn.get();
    letture_.serie = serie;
    letture_.causali = causali;
    letture_.piano = piano;
  }
  return true;
}

bool clsPrimaNota::RegistrazioniNuoveValide() {
  uint64_t serie = cn->SerieTransazione();
  if (serie == 0) return false;
  uint64_t scritture = cn->ScrittureDi("Prima Nota");
  if (letture_.serieNuove != serie || letture_.primaNota != scritture || letture_.cnNuove != cn.get()) {
    letture_.registrazioniNuove.clear();
    letture_.chiaviScritte.clear();
    letture_.serieNuove = serie;
    letture_.primaNota = scritture;
    letture_.cnNuove = cn.get();
  }
  return true;
}

bool clsPrimaNota::RegistrazioneNuova(const std::string& numero) {
  if (numero.empty() || !RegistrazioniNuoveValide()) return false;
  if (letture_.registrazioniNuove.count(numero)) return true;
  if (!cn->Scalare("SELECT 1 FROM [Prima Nota] WHERE [NumeroRegistrazione] = ? LIMIT 1", {Valore(numero)}).IsNull())
    return false;
  letture_.registrazioniNuove.insert(numero);
  return true;
}

std::optional<std::string> clsPrimaNota::OperativitaCausale(const std::string& codice) {
  if (causaliComplete_) {
    auto it = causali_.find(codice);
    if (it != causali_.end()) return it->second;
    return std::nullopt;
  }
  bool tieni = LettureValide();
  if (tieni) {
    auto it = letture_.operativita.find(codice);
    if (it != letture_.operativita.end()) return it->second;
  }
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[CodiceCausale]", Valore(codice));
  Recordset rs = cn->Execute("SELECT [OperativitaContabile] FROM [Causali Contabili] WHERE " + w + " LIMIT 1", p);
  std::optional<std::string> op;
  if (!rs.Eof()) op = Leggi(rs, "OperativitaContabile", "0").Testo();
  if (tieni) letture_.operativita.emplace(codice, op);
  return op;
}

bool clsPrimaNota::ExistSottoconto(const Valore& CodiceGruppo, const Valore& CodiceConto,
                                   const Valore& CodiceSottoconto) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[Gruppo]", CodiceGruppo);
  FiltroTesto(w, p, "[Conto]", CodiceConto);
  FiltroTesto(w, p, "[Sottoconto]", CodiceSottoconto);
  return !cn->Scalare("SELECT 1 FROM [Piano Dei Conti] WHERE " + w + " LIMIT 1", p).IsNull();
}

namespace {
std::string ChiaveConto(const std::string& g, const std::string& c, const std::string& s) {
  return g + '\x1f' + c + '\x1f' + s;
}
}  // namespace

bool clsPrimaNota::EsisteSottocontoCache(const std::string& g, const std::string& c, const std::string& s) {
  if (pianoCompleto_) {
    // An empty part also matches a row whose part is missing: read into the set as ''.
    return sottoconti_.count(ChiaveConto(g, c, s)) > 0;
  }
  if (!LettureValide()) return ExistSottoconto(Valore(g), Valore(c), Valore(s));
  std::string k = ChiaveConto(g, c, s);
  auto it = letture_.sottoconti.find(k);
  if (it != letture_.sottoconti.end()) return it->second;
  bool esiste = ExistSottoconto(Valore(g), Valore(c), Valore(s));
  letture_.sottoconti.emplace(std::move(k), esiste);
  return esiste;
}

// ---------------------------------------------------------------- balance movement

clsPrimaNota::Delta clsPrimaNota::CalcolaDelta(const std::string& operativita, const std::string& dareAvere,
                                               Importo importo) {
  Delta d;
  if (operativita == "0" || operativita == "2") {
    if (dareAvere == "D") {
      d.dare = importo;
      d.tocca[1] = true;
    } else if (dareAvere == "A") {
      d.avere = importo;
      d.tocca[2] = true;
    }
  } else if (operativita == "1") {
    if (dareAvere == "D") {
      d.iniziale = importo;
      d.tocca[0] = true;
    } else if (dareAvere == "A") {
      d.iniziale = -importo;
      d.tocca[0] = true;
    }
  }
  return d;
}

namespace {
int MascheraDelta(const bool tocca[3]) { return (tocca[0] ? 1 : 0) | (tocca[1] ? 2 : 0) | (tocca[2] ? 4 : 0); }

void AggiungiDelta(Parametri& p, const Importo v[3], int mask) {
  for (int i = 0; i < 3; ++i)
    if (mask & (1 << i)) p.push_back(Valore(v[i]));
}
}  // namespace

namespace {

// Whether a balance table's key is the columns an upsert names (INSERT ... ON CONFLICT needs
// it), read once per table.
using ChiaviUpsert = std::map<std::string, bool>;
bool ChiaveUpsert(Connessione& cn, ChiaviUpsert& cache, const std::string& tabella,
                  const std::vector<std::string>& colonne) {
  auto it = cache.find(tabella);
  if (it != cache.end()) return it->second;
  const auto& k = cn.ChiaveTabella(tabella);
  bool ok = k.size() == colonne.size();
  for (size_t i = 0; ok && i < k.size(); ++i) {
    bool trovata = false;
    for (const auto& c : colonne) trovata = trovata || UgualeNoCase(c, k[i]);
    ok = trovata;
  }
  cache[tabella] = ok;
  return ok;
}

// The table of a balance row: 'S' a sub-account, 'C' a client, 'F' a supplier.
const ColonneSaldo& ColonneDi(char tipo) {
  return tipo == 'S' ? kSaldiConti : tipo == 'C' ? kSaldiClienti : kSaldiFornitori;
}
const SqlSaldo& SqlDi(char tipo) { return tipo == 'S' ? SqlConti() : tipo == 'C' ? SqlClienti() : SqlFornitori(); }

// The values of a new balance row (SqlSaldo::inserisci, one row of upsertRighe): its key, then
// the three movements.
void ValoriRigaSaldo(Parametri& p, const ChiaveSaldo& chiave, const DeltaSaldo& d) {
  if (chiave.tipo == 'S') {
    p.insert(p.end(), {Valore(chiave.a), Valore(chiave.b), Valore(chiave.c)});
  } else {
    // A posting is never lost for want of a master record: the new row is named with its code.
    p.insert(p.end(), {Valore(chiave.a), Valore(chiave.a)});
  }
  p.insert(p.end(), {Valore(d.iniziale), Valore(d.dare), Valore(d.avere)});
}

// One balance row without an upsert: a code with empty parts (the row may hold '' or Null
// there), or a table whose key is not the balance's.
void ScriviSaldoRiga(Connessione& cn, const ChiaveSaldo& chiave, const DeltaSaldo& d) {
  const SqlSaldo& q = SqlDi(chiave.tipo);
  const int mask = MascheraDelta(d.tocca);
  const Importo v[3] = {d.iniziale, d.dare, d.avere};
  std::string w;
  Parametri pw;
  if (chiave.tipo == 'S') {
    FiltroTesto(w, pw, "[CodiceGruppo]", Valore(chiave.a));
    FiltroTesto(w, pw, "[CodiceConto]", Valore(chiave.b));
    FiltroTesto(w, pw, "[CodiceSottoconto]", Valore(chiave.c));
  } else {
    FiltroTesto(w, pw, "[Codice Cliente]", Valore(chiave.a));
  }
  if (mask) {
    Parametri pu;
    AggiungiDelta(pu, v, mask);
    pu.insert(pu.end(), pw.begin(), pw.end());
    if (cn.Esegui(q.aggiorna[mask] + w, pu) > 0) return;
  } else if (!cn.Execute(q.esiste + w + " LIMIT 1", pw).Eof()) {
    return;
  }
  Parametri p;
  ValoriRigaSaldo(p, chiave, d);
  cn.Esegui(q.inserisci, p);
}

// Every movement gathered, in the order of the rows' keys (two writers lock rows in the same
// order): the rows of one table in one statement where its key allows an upsert, a statement per
// row otherwise.
void ScriviSaldi(Connessione& cn, ChiaviUpsert& k, const MovimentiSaldi& m) {
  const SqlSaldo* q = nullptr;
  Parametri p;
  size_t righe = 0;
  // The upserts of two tables that follow each other go as one statement on PostgreSQL: the
  // second as a WITH of the first, which the server runs after the statement's own rows, so that
  // the rows are still locked in key order.
  struct Upsert {
    const SqlSaldo* q;
    size_t righe;
    Parametri p;
    const std::string& Sql() const { return q->upsertRighe[righe]; }
  };
  std::vector<Upsert> inAttesa;
  auto invia = [&] {
    if (inAttesa.size() == 2 && inAttesa[0].q != inAttesa[1].q && cn.IsPostgres()) {
      Parametri unite = std::move(inAttesa[1].p);
      unite.insert(unite.end(), inAttesa[0].p.begin(), inAttesa[0].p.end());
      cn.EseguiInCoda("WITH [vorn_saldi] AS (" + inAttesa[1].Sql() + ") " + inAttesa[0].Sql(), unite);
    } else {
      for (const auto& u : inAttesa) cn.EseguiInCoda(u.Sql(), u.p);
    }
    inAttesa.clear();
  };
  auto scrivi = [&] {
    if (righe) {
      if (inAttesa.size() == 2) invia();
      inAttesa.push_back({q, righe, std::move(p)});
    }
    p.clear();
    righe = 0;
  };
  for (const auto& [chiave, d] : m) {
    const ColonneSaldo& cs = ColonneDi(chiave.tipo);
    const bool completa =
        chiave.tipo == 'S' ? !chiave.a.empty() && !chiave.b.empty() && !chiave.c.empty() : !chiave.a.empty();
    if (!completa || !ChiaveUpsert(cn, k, cs.tabella, cs.chiave)) {
      scrivi();
      invia();
      ScriviSaldoRiga(cn, chiave, d);
      continue;
    }
    const SqlSaldo& sq = SqlDi(chiave.tipo);
    if (q != &sq || righe == SqlSaldo::kRigheUpsert) scrivi();
    q = &sq;
    ++righe;
    ValoriRigaSaldo(p, chiave, d);
  }
  scrivi();
  invia();
}

// The balance movement of a transaction, held back level by level until its commit.
class SaldiInSospeso final : public Differito {
 public:
  static constexpr const char* kNome = "saldi della prima nota";
  void Aggiungi(const ChiaveSaldo& k, const DeltaSaldo& d) { livelli_.back()[k].Somma(d); }
  void ApriLivello() override { livelli_.emplace_back(); }
  void ChiudiLivello(bool conferma) override {
    if (livelli_.size() <= 1) return;
    MovimentiSaldi ultimo = std::move(livelli_.back());
    livelli_.pop_back();
    if (conferma)
      for (const auto& [k, d] : ultimo) livelli_.back()[k].Somma(d);
  }
  void Scrivi(Connessione& cn) override {
    MovimentiSaldi tutto = std::move(livelli_.front());
    for (size_t i = 1; i < livelli_.size(); ++i)
      for (const auto& [k, d] : livelli_[i]) tutto[k].Somma(d);
    for (auto& l : livelli_) l.clear();
    ScriviSaldi(cn, chiavi_, tutto);
  }
  void Scarta() override { livelli_.assign(1, {}); }
  bool Vuoto() const override {
    for (const auto& l : livelli_)
      if (!l.empty()) return false;
    return true;
  }
  bool Tocca(std::string_view sql) const override {
    static const std::string nomi[3] = {LCase(kSaldiConti.tabella), LCase(kSaldiClienti.tabella),
                                        LCase(kSaldiFornitori.tabella)};
    for (const auto& n : nomi)
      if (sql.find(n) != std::string_view::npos) return true;
    return false;
  }

 private:
  std::vector<MovimentiSaldi> livelli_ = std::vector<MovimentiSaldi>(1);
  ChiaviUpsert chiavi_;
};

}  // namespace

void DeltaSaldo::Somma(const DeltaSaldo& d) {
  iniziale += d.iniziale;
  dare += d.dare;
  avere += d.avere;
  for (int i = 0; i < 3; ++i) tocca[i] = tocca[i] || d.tocca[i];
}

void clsPrimaNota::Movimenta(const ChiaveSaldo& k, const Delta& d) {
  if (raccolta_) {
    (*raccolta_)[k].Somma(d);
  } else if (cn->Livello() > 0) {
    auto& sospesi = static_cast<SaldiInSospeso&>(
        cn->Differimento(SaldiInSospeso::kNome, [] { return std::make_unique<SaldiInSospeso>(); }));
    sospesi.Aggiungi(k, d);
  } else {
    ScriviSaldi(*cn, upsert_, MovimentiSaldi{{k, d}});
  }
}

void clsPrimaNota::Avvisa(const std::string& testo, const std::string& titolo, bool beep) {
  if (trattieni_ > 0) {
    avvisi_.push_back({testo, titolo, beep});
    return;
  }
  if (beep) Host().Beep();
  Host().MsgBox(testo, vbExclamation, titolo);
}

void clsPrimaNota::MostraAvvisi() {
  auto avvisi = std::move(avvisi_);
  avvisi_.clear();
  for (const auto& a : avvisi) {
    if (a.beep) Host().Beep();
    Host().MsgBox(a.testo, vbExclamation, a.titolo);
  }
}

bool clsPrimaNota::MovimentaSaldiSottoconti(const Valore& CodiceGruppo, const Valore& CodiceConto,
                                            const Valore& CodiceSottoconto, const Valore& DareAvere,
                                            const Valore& ImportoMovimento, const Valore& OperativitaContabile) {
  AssicuraConnessione();
  std::string g = T(CodiceGruppo), c = T(CodiceConto), s = T(CodiceSottoconto);
  Movimenta(ChiaveSaldo{'S', g, c, s}, CalcolaDelta(T(OperativitaContabile), T(DareAvere), NullToZeroCy(ImportoMovimento)));
  return true;
}

bool clsPrimaNota::MovimentaSaldiClientiFornitori(const Valore& /*ContoPrimaNota*/, const Valore& IndClienteFornitore,
                                                  const Valore& codiceCliFor, const Valore& DareAvere,
                                                  const Valore& ImportoMovimento, const Valore& OperativitaContabile) {
  AssicuraConnessione();
  std::string ind = T(IndClienteFornitore);
  if (ind != "C" && ind != "F") return true;
  std::string codice = T(codiceCliFor);
  Movimenta(ChiaveSaldo{ind[0], codice, {}, {}},
            CalcolaDelta(T(OperativitaContabile), T(DareAvere), NullToZeroCy(ImportoMovimento)));
  return true;
}

bool clsPrimaNota::MovimentaSaldiContabili(const Valore& codiceCausale, const Valore& ContoPrimaNota,
                                           const Valore& IndClienteFornitore, const Valore& CodClienteFornitore,
                                           const Valore& DareAvere, const Valore& ImportoMovimento,
                                           const Valore& /*Cambio*/, const Valore& /*DataCompetenza*/) {
  AssicuraConnessione();
  MovimentoPrimaNota m;
  m.CodiceCausale = codiceCausale;
  m.ContoPrimaNota = ContoPrimaNota;
  m.IndClienteFornitore = IndClienteFornitore;
  m.CodClienteFornitore = CodClienteFornitore;
  m.DareAvere = DareAvere;
  m.ImportoMovimento = ImportoMovimento;
  std::string conto = T(ContoPrimaNota);
  if (conto.empty() || NullToZeroCy(ImportoMovimento).Zero()) return true;
  MovimentaRiga(m, OperativitaCausale(T(codiceCausale)));
  return true;
}

void clsPrimaNota::MovimentaRiga(const MovimentoPrimaNota& m, const std::optional<std::string>& operativita) {
  std::string conto = T(m.ContoPrimaNota);
  Importo importo = NullToZeroCy(m.ImportoMovimento);
  if (conto.empty() || importo.Zero()) return;
  // The amount is in the company's currency already: neither the rate nor the competence date
  // takes part in the arithmetic.
  if (!operativita)
    Avvisa("Causale contabile '" + T(m.CodiceCausale) + "' inesistente. Possibile disallinamento dei saldi contabili.",
           "Movimenta Saldi Contabili", true);
  std::string g = MedioTesto(conto, 1, 2), c = MedioTesto(conto, 3, 2), s = MedioTesto(conto, 5, 3);
  if (!EsisteSottocontoCache(g, c, s))
    Avvisa("Sottoconto " + conto + " inesistente.", "Funzione MovimentaSaldiContabili", false);
  const Valore op(operativita.value_or("")), valore(importo);
  MovimentaSaldiSottoconti(Valore(g), Valore(c), Valore(s), m.DareAvere, valore, op);
  if (CodiceNumericoNonNullo(T(m.CodClienteFornitore)))
    MovimentaSaldiClientiFornitori(m.ContoPrimaNota, m.IndClienteFornitore, m.CodClienteFornitore, m.DareAvere,
                                   valore, op);
}

void clsPrimaNota::MovimentaRecordContabile(const MovimentoPrimaNota& m, bool Storno) {
  // The amount as stored, to its last decimal, so that a storno takes off exactly what the
  // posting put on and a replay gives back exactly the sums of the journal.
  Importo importo = NullToZeroCy(m.ImportoMovimento);
  if (Storno) importo = -importo;
  Valore cambio = m.Cambio.IsNull() ? Valore(0) : m.Cambio;
  if (!MovimentaSaldiContabili(m.CodiceCausale, m.ContoPrimaNota, m.IndClienteFornitore, m.CodClienteFornitore,
                               m.DareAvere, Valore(importo), cambio, m.DataCompetenza)) {
    Avvisa("Errore in fase di movimentazione saldi contabili", "Funzione MovimentaRecordContabile", true);
  }
}

void clsPrimaNota::MovimentaRecordContabile(Recordset& T, bool Storno) {
  MovimentoPrimaNota m;
  m.CodiceCausale = Leggi(T, "CodiceCausale", "");
  m.ContoPrimaNota = Leggi(T, "ContoPrimaNota", "");
  m.IndClienteFornitore = Leggi(T, "IndClienteFornitore", "");
  m.CodClienteFornitore = Leggi(T, "CodClienteFornitore", "");
  m.DareAvere = Leggi(T, "DareAvere", "");
  m.ImportoMovimento = Leggi(T, "ImportoMovimento", Importo());
  m.Cambio = Leggi(T, "Cambio", 0);
  m.DataCompetenza = Leggi(T, "DataCompetenza", "0.00.00");
  MovimentaRecordContabile(m, Storno);
}

void clsPrimaNota::IniziaRaccolta() {
  AssicuraConnessione();
  causali_.clear();
  sottoconti_.clear();
  {
    Recordset rs = cn->Execute("SELECT [CodiceCausale], [OperativitaContabile] FROM [Causali Contabili]");
    for (; !rs.Eof(); rs.MoveNext()) {
      std::string codice = rs.Fields(0).Value().IsNull() ? std::string() : rs.Fields(0).Value().Testo();
      causali_.emplace(codice, Leggi(rs, "OperativitaContabile", "0").Testo());
    }
  }
  {
    Recordset rs = cn->Execute("SELECT [Gruppo], [Conto], [Sottoconto] FROM [Piano Dei Conti]");
    auto testo = [](const Valore& v) { return v.IsNull() ? std::string() : v.Testo(); };
    for (; !rs.Eof(); rs.MoveNext())
      sottoconti_.insert(ChiaveConto(testo(rs.Fields(0).Value()), testo(rs.Fields(1).Value()), testo(rs.Fields(2).Value())));
  }
  // The keys of the balance tables, read now too.
  ChiaveUpsert(*cn, upsert_, kSaldiConti.tabella, kSaldiConti.chiave);
  ChiaveUpsert(*cn, upsert_, kSaldiClienti.tabella, kSaldiClienti.chiave);
  ChiaveUpsert(*cn, upsert_, kSaldiFornitori.tabella, kSaldiFornitori.chiave);
  causaliComplete_ = pianoCompleto_ = true;
  raccolta_.emplace();
}

void clsPrimaNota::AnnullaRaccolta() {
  raccolta_.reset();
  causaliComplete_ = pianoCompleto_ = false;
}

void clsPrimaNota::ScaricaRaccolta() {
  if (!raccolta_) return;
  auto dati = std::move(*raccolta_);
  AnnullaRaccolta();
  Atomico a(*cn, UnitaRecuperabili);
  ScriviSaldi(*cn, upsert_, dati);
  a.Conferma();
}

// ---------------------------------------------------------------- rows

bool clsPrimaNota::LocalizzaRecord(Recordset& T, const Valore& numeroRegistrazione, const Valore& TipoRigaIvaNormale,
                                   const Valore& NumRigaAVideo, const Valore& DareAvere, const Valore& clientID,
                                   long hWnd) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[NumeroRegistrazione]", numeroRegistrazione);
  FiltroTesto(w, p, "[TipoRigaIvaNormale]", TipoRigaIvaNormale);
  FiltroTesto(w, p, "[NumRigaAVideo]", NumRigaAVideo);
  FiltroTesto(w, p, "[DareAvere]", DareAvere);
  return LocalizzaRecordProtocollo(*cn, T, kTabella, w, p, clientID, hWnd);
}

RigaPrimaNota::RigaPrimaNota() : dati_(CatalogoPN().colonne.size()) {}

Valore* RigaPrimaNota::Trova(std::string_view nome) {
  const auto& esatti = IndiciEsattiPN();
  if (auto it = esatti.find(nome); it != esatti.end()) return &dati_[static_cast<size_t>(it->second)];
  const auto& indici = IndiciPN();
  auto it = indici.find(LCase(std::string(nome)));
  return it == indici.end() ? nullptr : &dati_[static_cast<size_t>(it->second)];
}

Valore& RigaPrimaNota::operator[](std::string_view nome) {
  if (Valore* v = Trova(nome)) return *v;
  throw ErroreDb(3265, "Colonna inesistente nella tabella Prima Nota: " + std::string(nome));
}

bool clsPrimaNota::SalvaRecord(const RecordValori& riga, const Valore& clientID, long hWnd, bool& Cancel) {
  AssicuraConnessione();
  Cancel = false;
  // Every value is checked and converted before anything is read or written.
  RigaPrimaNota dati;
  for (const auto& [nome, v] : riga) {
    if (Valore* colonna = dati.Trova(nome)) {
      *colonna = v;
      continue;
    }
    const std::string k = LCase(nome);
    if (k == "numeroregistrazione2" || k == "dataregistrazione2") continue;
    dati[nome] = v;  // refused, with the column's name
  }
  return SalvaRiga(std::move(dati), clientID, hWnd);
}

bool clsPrimaNota::SalvaRiga(RigaPrimaNota riga, const Valore& clientID, long hWnd) {
  AssicuraConnessione();
  const auto& cat = CatalogoPN();
  const size_t n = cat.colonne.size();
  static const int iDescrizione = IndicePN("DescrizioneSupplem");
  static const int iDataDocumento = IndicePN("DataDocumento");
  static const int iIndicatori = IndicePN("Stringa10indicatori");
  static const int iClient = IndicePN("clientName");
  static const int iHwnd = IndicePN("hWnd");
  const std::vector<Valore>& dati = riga.Valori();
  Parametri valori(n);
  for (size_t i = 0; i < n; ++i) {
    const Valore& v = dati[i];
    int ii = static_cast<int>(i);
    if (ii == iDescrizione && !Vuoto(v)) valori[i] = Valore(SinistraTesto(v.Testo(), 20));
    else if (ii == iDataDocumento) valori[i] = ComeDataONull(v);
    else if (ii == iIndicatori || ii == iClient || ii == iHwnd) continue;
    else valori[i] = Coerci(v, cat.colonne[i].tipo);
  }
  valori[iClient] = clientID.IsEmpty() ? Valore::Null() : Coerci(clientID, TipoCampo::Testo);
  valori[iHwnd] = Valore(static_cast<long long>(hWnd));
  // One spelling of the side and of the codes, so that every reader takes them the same way.
  static const int iDareAvere = IndicePN("DareAvere");
  static const int iConto = IndicePN("ContoPrimaNota");
  static const int iInd = IndicePN("IndClienteFornitore");
  static const int iCod = IndicePN("CodClienteFornitore");
  if (!valori[iDareAvere].IsNull()) {
    std::string lato = UCase(T(valori[iDareAvere]));
    if (lato != "D" && lato != "A" && !lato.empty())
      throw ErroreDb(13, "Segno della riga non valido: '" + valori[iDareAvere].Testo() + "' (D per dare, A per avere).");
    valori[iDareAvere] = Valore(lato);
  }
  for (int i : {iConto, iCod})
    if (valori[i].IsText()) valori[i] = Valore(T(valori[i]));
  if (valori[iInd].IsText()) valori[iInd] = Valore(UCase(T(valori[iInd])));

  // The row and its balance movement land together or not at all.
  UnitaConAvvisi([&] {
    Parametri copia = valori;
    SalvaUnita(copia, dati[iIndicatori]);
  });
  return true;
}

void clsPrimaNota::UnitaConAvvisi(const std::function<void()>& unita) {
  bool esterna = trattieni_ == 0;
  ++trattieni_;
  try {
    ConRiprova(*cn, [&] {
      if (esterna) avvisi_.clear();
      unita();
    });
  } catch (...) {
    --trattieni_;
    if (esterna) avvisi_.clear();
    throw;
  }
  --trattieni_;
  if (esterna) MostraAvvisi();
}

void clsPrimaNota::SalvaUnita(Parametri& valori, const Valore& indicatori) {
  static const int iIndicatori = IndicePN("Stringa10indicatori");
  static const int iCausale = IndicePN("CodiceCausale");
  static const int iChiave[4] = {IndicePN(kChiavePN[0]), IndicePN(kChiavePN[1]), IndicePN(kChiavePN[2]),
                                 IndicePN(kChiavePN[3])};
  static const int iMov[8] = {IndicePN("CodiceCausale"),   IndicePN("ContoPrimaNota"),
                              IndicePN("IndClienteFornitore"), IndicePN("CodClienteFornitore"),
                              IndicePN("DareAvere"),        IndicePN("ImportoMovimento"),
                              IndicePN("Cambio"),           IndicePN("DataCompetenza")};
  Atomico unita(*cn, UnitaRecuperabili);
  const std::optional<std::string> operativita = OperativitaCausale(T(valori[iCausale]));
  auto movimento = [&] {
    MovimentoPrimaNota m;
    Valore* campi[8] = {&m.CodiceCausale, &m.ContoPrimaNota, &m.IndClienteFornitore, &m.CodClienteFornitore,
                        &m.DareAvere, &m.ImportoMovimento, &m.Cambio, &m.DataCompetenza};
    for (int i = 0; i < 8; ++i) *campi[i] = valori[iMov[i]];
    return m;
  };

  // A row is added without looking for it first when that is safe:
  // - a row of an entry that had no row when this transaction first saved one of it, and whose
  //   key this object has not written yet, is new: its INSERT may wait to be sent with the next
  //   statement (a key taken meanwhile by another session then fails the transaction);
  // - a row whose whole key is given is inserted unless the key is taken, the table's own key
  //   deciding in the same statement;
  // otherwise it is looked up first, a blank key part finding both '' and Null. A blank part
  // qualifies as empty text only (a Null is distinct from every other in an SQLite key).
  bool chiavePiena = true, chiaveScrivibile = true;
  std::string chiaveTesto;
  for (int k = 0; k < 4; ++k) {
    const Valore& v = valori[iChiave[k]];
    chiavePiena = chiavePiena && !Vuoto(v);
    chiaveScrivibile = chiaveScrivibile && (!Vuoto(v) || (v.IsText() && v.Str().empty()));
    if (chiaveScrivibile) chiaveTesto += v.Testo() + '\x1f';
  }
  if (chiaveScrivibile && ChiaveUnicaPN() && !Vuoto(valori[iChiave[0]])) {
    Valore daScrivere = valori[iIndicatori];
    valori[iIndicatori] = Valore(ComponiIndicatori(indicatori, operativita.value_or(""), nullptr));
    // This object's own writes keep what it knows of its new entries.
    auto propria = [&](uint64_t prima) {
      if (letture_.serieNuove == cn->SerieTransazione() && letture_.primaNota == prima)
        letture_.primaNota = cn->ScrittureDi("Prima Nota");
    };
    if (RegistrazioneNuova(valori[iChiave[0]].Testo()) && !letture_.chiaviScritte.count(chiaveTesto)) {
      const uint64_t prima = cn->ScrittureDi("Prima Nota");
      cn->EseguiInCoda(SqlInserisciRiga(), valori);
      propria(prima);
      letture_.chiaviScritte.insert(chiaveTesto);
      MovimentaRiga(movimento(), operativita);
      unita.Conferma();
      return;
    }
    if (chiavePiena) {
      const uint64_t prima = cn->ScrittureDi("Prima Nota");
      if (cn->Esegui(SqlInserisciRigaSeNuova(), valori) == 1) {
        propria(prima);
        MovimentaRiga(movimento(), operativita);
        unita.Conferma();
        return;
      }
    }
    valori[iIndicatori] = daScrivere;
  }

  std::string w;
  Parametri pw;
  for (int k = 0; k < 4; ++k) FiltroTesto(w, pw, std::string("[") + kChiavePN[k] + "]", valori[iChiave[k]]);
  Recordset esistente = cn->Execute(std::string("SELECT ") + kColonneMovimento +
                                        ", [NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere], "
                                        "[Stringa10indicatori] FROM [Prima Nota] WHERE " + w + " LIMIT 1",
                                    pw);
  bool nuovo = esistente.Eof();
  Valore indicatoriMemorizzati;
  std::vector<Valore> chiaveOriginale;
  if (!nuovo) {
    std::vector<Valore> r;
    for (int i = 0; i < 13; ++i) r.push_back(esistente.Fields(i).Value());
    // Its present effect comes off the balances first.
    MovimentaRecordContabile(MovimentoDaRiga(r), true);
    chiaveOriginale.assign(r.begin() + 8, r.begin() + 12);
    indicatoriMemorizzati = r[12];
  }

  valori[iIndicatori] =
      Valore(ComponiIndicatori(indicatori, operativita.value_or(""), nuovo ? nullptr : &indicatoriMemorizzati));
  MovimentaRiga(movimento(), operativita);

  if (nuovo) {
    cn->Esegui(SqlInserisciRiga(), valori);
  } else {
    std::string chiave;
    for (int k = 0; k < 4; ++k) {
      if (k) chiave += " AND ";
      chiave += std::string("[") + kChiavePN[k] + "]";
      if (chiaveOriginale[k].IsNull()) {
        chiave += " IS NULL";
      } else {
        chiave += " = ?";
        valori.push_back(chiaveOriginale[k]);
      }
    }
    if (cn->Esegui(SqlAggiornaRigaSet() + chiave, valori) == 0)
      throw ErroreDb(3197, "Impossibile trovare la riga per l'aggiornamento: alcuni valori potrebbero essere stati "
                           "modificati dall'ultima lettura.");
  }
  unita.Conferma();
}

bool clsPrimaNota::ChiaveUnicaPN() {
  const auto& k = cn->ChiaveTabella("Prima Nota");
  if (k.size() != 4) return false;
  for (int i = 0; i < 4; ++i)
    if (!UgualeNoCase(k[static_cast<size_t>(i)], kChiavePN[i])) return false;
  return true;
}

int64_t clsPrimaNota::StornaECancella(const std::string& where, const Parametri& p) {
  int64_t righe = 0;
  UnitaConAvvisi([&] { righe = StornaECancellaUnita(where, p); });
  return righe;
}

int64_t clsPrimaNota::StornaECancellaUnita(const std::string& where, const Parametri& p) {
  Atomico unita(*cn, UnitaRecuperabili);
  Recordset rs = cn->Execute(std::string("SELECT ") + kColonneMovimento + " FROM [Prima Nota] WHERE " + where, p);
  std::vector<Valore> r(8);
  int64_t n = 0;
  for (; !rs.Eof(); rs.MoveNext()) {
    for (int i = 0; i < 8; ++i) r[i] = rs.Fields(i).Value();
    MovimentaRecordContabile(MovimentoDaRiga(r), true);
    ++n;
  }
  cn->Esegui("DELETE FROM [Prima Nota] WHERE " + where, p);
  unita.Conferma();
  return n;
}

bool clsPrimaNota::CancellaRecord(const Valore& numeroRegistrazione) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[NumeroRegistrazione]", numeroRegistrazione);
  StornaECancella(w, p);
  return true;
}

bool clsPrimaNota::CancellaRecordEccedentiRigoReg(const Valore& numeroRegistrazione, const Valore& TipoRigaIvaNormale,
                                                  const Valore& NumRigaAVideo) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[NumeroRegistrazione]", numeroRegistrazione);
  FiltroTesto(w, p, "[TipoRigaIvaNormale]", TipoRigaIvaNormale);
  w += " AND [NumRigaAVideo] > ?";
  p.push_back(Valore(NumRigaAVideo.IsNull() ? std::string() : NumRigaAVideo.Testo()));
  StornaECancella(w, p);
  return true;
}

int32_t clsPrimaNota::CancellaPrimaNota(const Valore& NumeroRegistrazione_Iniziale,
                                        const Valore& NumeroRegistrazione_Finale,
                                        const Valore& DataRegistrazione_Iniziale,
                                        const Valore& DataRegistrazione_Finale, const Valore& codiceCausale) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroIntervallo(w, p, NumeroRegistrazione_Iniziale, NumeroRegistrazione_Finale, DataRegistrazione_Iniziale,
                   DataRegistrazione_Finale, "[DataRegistrazione]");
  FiltroCausale(w, p, codiceCausale);
  // A range may cover the whole journal: the rows are streamed, their effect gathered per
  // balance row and written once, then one DELETE.
  Atomico unita(*cn, UnitaRecuperabili);
  bool propria = !InRaccolta();
  if (propria) IniziaRaccolta();
  int64_t n = 0;
  try {
    cn->Scorri(std::string("SELECT ") + kColonneMovimento + " FROM [Prima Nota] WHERE " + w, p,
               [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                 MovimentaRecordContabile(MovimentoDaRiga(r), true);
                 ++n;
                 return true;
               });
    if (propria) ScaricaRaccolta();
  } catch (...) {
    if (propria) AnnullaRaccolta();
    throw;
  }
  cn->Esegui("DELETE FROM [Prima Nota] WHERE " + w, p);
  unita.Conferma();
  return static_cast<int32_t>(n);
}

bool clsPrimaNota::AzzeraPrimaNota() {
  try {
    AssicuraConnessione();
    Atomico unita(*cn, UnitaRecuperabili);
    cn->Esegui("DELETE FROM [Prima Nota]");
    unita.Conferma();
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

// ---------------------------------------------------------------- printed marks

bool clsPrimaNota::ManipolaIndicatoriPrimaNota(const Valore& NumeroRegistrazione_Iniziale,
                                               const Valore& NumeroRegistrazione_Finale,
                                               const Valore& DataRegistrazione_Iniziale,
                                               const Valore& DataRegistrazione_Finale, const Valore& Causale,
                                               const Valore& Tipo_Manipolazione, const Valore& Valore_Indicatori,
                                               const Valore& IndIVAAutotrasportatori) {
  AssicuraConnessione();
  std::string tipo = T(Tipo_Manipolazione);
  double v = 0;
  try {
    v = NullToZeroDbl(Valore_Indicatori);
  } catch (const std::exception&) {
    return true;
  }
  if ((tipo != "R" && tipo != "G") || (v != 0 && v != 1)) return true;
  const std::string s = "[Stringa10indicatori]";
  std::string set;
  if (tipo == "R") {
    set = s + " = '" + (v == 1 ? "R" : " ") + "' || COALESCE(substr(" + s + ", 2), '')";
  } else {
    set = s + " = CASE WHEN COALESCE(substr(" + s + ", 1, 1), '') = '' THEN ' ' ELSE substr(" + s + ", 1, 1) END || '" +
          (v == 1 ? "G" : " ") + "' || COALESCE(substr(" + s + ", 3), '')";
  }
  auto esegui = [&](const std::string& colonnaData, const std::string& extra) {
    std::string w;
    Parametri p;
    FiltroIntervallo(w, p, NumeroRegistrazione_Iniziale, NumeroRegistrazione_Finale, DataRegistrazione_Iniziale,
                     DataRegistrazione_Finale, colonnaData);
    FiltroCausale(w, p, Causale);
    cn->Esegui("UPDATE [Prima Nota] SET " + set + " WHERE " + w + extra, p);
  };
  Atomico unita(*cn, UnitaRecuperabili);
  if (tipo == "G") {
    esegui("[DataRegistrazione]", "");
  } else if (T(IndIVAAutotrasportatori) == "1") {
    esegui("[DataCompetenzaIVA]", "");
  } else {
    esegui("[DataCompetenzaIVA]", " AND [TipoRegistroIva] IN ('1', '6')");
    esegui("[DataCompetenza]", " AND COALESCE([TipoRegistroIva], '') NOT IN ('1', '6')");
  }
  unita.Conferma();
  return true;
}

bool clsPrimaNota::MarcaIndicatoriStampatoRegistriIva(const Valore& daData, const Valore& aData,
                                                      const Valore& avar_TipoRegistroIva,
                                                      const Valore& avar_NumRegistroIva,
                                                      const Valore& str_IndIVAAutotrasportatori) {
  AssicuraConnessione();
  std::string tipo = T(avar_TipoRegistroIva);
  std::string colonna = (T(str_IndIVAAutotrasportatori) == "1" || tipo == "1" || tipo == "6") ? "[DataCompetenzaIVA]"
                                                                                              : "[DataCompetenza]";
  Parametri p{ComeDataONull(daData), ComeDataONull(aData)};
  std::string w = colonna + " >= ? AND " + colonna + " <= ?";
  FiltroTesto(w, p, "[TipoRegistroIva]", avar_TipoRegistroIva);
  FiltroTesto(w, p, "[NumRegistroIva]", avar_NumRegistroIva);
  const std::string s = "[Stringa10indicatori]";
  cn->Esegui("UPDATE [Prima Nota] SET " + s + " = 'R' || COALESCE(substr(" + s + ", 2), '') WHERE " + w +
                 " AND COALESCE(substr(" + s + ", 1, 1), '') <> 'R' AND [TipoRigaIvaNormale] = 'I'",
             p);
  return true;
}

int64_t clsPrimaNota::MarcaRigheStampateRegistroIva(const Data& daData, const Data& aData,
                                                    const std::string& colonnaData,
                                                    const Valore& avar_TipoRegistroIva,
                                                    const Valore& avar_NumRegistroIva,
                                                    const std::string& tabellaStampata) {
  AssicuraConnessione();
  VerificaNome(tabellaStampata);
  if (colonnaData != "DataCompetenza" && colonnaData != "DataCompetenzaIVA")
    throw ErroreDb(3265, "Colonna di data non valida: " + colonnaData);
  const std::string s = "[Prima Nota].[Stringa10indicatori]";
  const std::string d = "[Prima Nota].[" + colonnaData + "]";
  const std::string k = "[" + tabellaStampata + "]";
  std::string sql = "UPDATE [Prima Nota] SET [Stringa10indicatori] = 'R' || COALESCE(substr(" + s +
                    ", 2), '') WHERE ((" + d + " >= ? AND " + d + " <= ?) OR (" + d +
                    " IS NULL AND [Prima Nota].[DataCompetenza] >= ? AND [Prima Nota].[DataCompetenza] <= ?))"
                    " AND [Prima Nota].[TipoRegistroIva] = ? AND [Prima Nota].[NumRegistroIva] = ?"
                    " AND COALESCE(substr(" + s + ", 1, 1), '') <> 'R' AND EXISTS (SELECT 1 FROM " + k +
                    " WHERE " + k + ".[NumeroRegistrazione] = [Prima Nota].[NumeroRegistrazione] AND COALESCE(" + k +
                    ".[TipoRigaIvaNormale], '') = COALESCE([Prima Nota].[TipoRigaIvaNormale], '') AND " + k +
                    ".[NumRigaAVideo] = [Prima Nota].[NumRigaAVideo] AND " + k +
                    ".[DareAvere] = [Prima Nota].[DareAvere])";
  return cn->Esegui(sql, {Valore(daData), Valore(aData), Valore(daData), Valore(aData),
                          Valore(T(avar_TipoRegistroIva)), Valore(T(avar_NumRegistroIva))});
}

// ---------------------------------------------------------------- counters

bool clsPrimaNota::AggiornaProgressiviPrimaNota(const Valore& numeroRegistrazione, const Valore& DataRegistrazione,
                                                const Valore& TipoRegistroIva, const Valore& NumRegistroIva,
                                                const Valore& SerieDocumento, const Valore& NumeroDocumento,
                                                const Valore& DataDocumento, const Valore& NumeroDiProtocollo,
                                                const Valore& clientID, long hWnd) {
  if (auto serie = SerieContatoreRegistro(TipoRegistroIva, SerieDocumento)) {
    // A purchase register counts protocols, by registration date.
    const bool acquisti = T(TipoRegistroIva) == "2";
    AggiornaNumeroUltimoDocumento(TipoRegistroIva, NumRegistroIva, *serie, acquisti ? NumeroDiProtocollo : NumeroDocumento,
                                  acquisti ? DataRegistrazione : DataDocumento);
  }
  return AggiornaNumeroUltimaRegistrazione(numeroRegistrazione, clientID, hWnd);
}

bool clsPrimaNota::AggiornaNumeroUltimaRegistrazione(const Valore& UltimaRegistrazionePN, const Valore& clientID,
                                                     long hWnd) {
  AssicuraConnessione();
  const Parametri valori{Valore(static_cast<long long>(NullToZeroLng(UltimaRegistrazionePN))),
                         Coerci(clientID, TipoCampo::Testo), Valore(static_cast<long long>(hWnd))};
  const std::string sql = "UPDATE [Progressivi Azienda Vorn] SET [UltimaRegistrazionePN] = ?, [clientName] = ?, [hWnd] = ?";
  // In the transaction that took the entry number the row is there (the number was taken from
  // it, under its lock): the write goes with the next statement.
  if (serieNumero_ != 0 && cnNumero_ == cn.get() && serieNumero_ == cn->SerieTransazione()) {
    // The number's own write of the counter, if it is still waiting, becomes this one: the row
    // is written once. Nothing between the two touches the company's row.
    const uint64_t scrittura = std::exchange(scritturaNumero_, 0);
    if (!cn->SostituisciInCoda(scrittura, sql, valori)) cn->EseguiInCoda(sql, valori);
    return true;
  }
  // The company's row, written in one statement; made when there is none.
  if (cn->Esegui(sql, valori) > 0) return true;
  Recordset rs = cn->Apri("Progressivi Azienda Vorn");
  if (rs.Eof()) rs.AddNew();
  rs("UltimaRegistrazionePN") = Valore(static_cast<long long>(NullToZeroLng(UltimaRegistrazionePN)));
  MarcaRecord(rs, clientID, hWnd);
  rs.Update();
  rs.Close();
  return true;
}

std::optional<Valore> clsPrimaNota::SerieContatoreRegistro(const Valore& TipoRegistroIva, const Valore& SerieDocumento) {
  const std::string tipo = T(TipoRegistroIva);
  if (tipo == "1" || tipo == "3" || tipo == "5") return SerieDocumento;
  // A purchase register's counter has no series.
  if (tipo == "2") return Valore("");
  return std::nullopt;
}

void clsPrimaNota::FiltroRegistro(std::string& w, Parametri& p, const Valore& TipoRegistro, const Valore& NumeroRegistro,
                                  const Valore& SerieDocumento) {
  FiltroTesto(w, p, "[TipoRegistro]", TipoRegistro);
  FiltroTesto(w, p, "[IndOrdiniImpegni]", Valore(""));
  FiltroTesto(w, p, "[NumeroRegistro]", NumeroRegistro);
  FiltroTesto(w, p, "[Deposito]", Valore("000"));
  FiltroTesto(w, p, "[SerieDocumento]", SerieDocumento);
}

void clsPrimaNota::AnticipaProgressiviPrimaNota(const Valore& TipoRegistroIva, const Valore& NumRegistroIva,
                                                const Valore& SerieDocumento) {
  registro_.reset();
  auto serie = SerieContatoreRegistro(TipoRegistroIva, SerieDocumento);
  if (!serie) return;
  registro_.emplace();
  FiltroRegistro(registro_->where, registro_->p, TipoRegistroIva, NumRegistroIva, *serie);
}

bool clsPrimaNota::AggiornaNumeroUltimoDocumento(const Valore& TipoRegistro, const Valore& NumeroRegistro,
                                                 const Valore& SerieDocumento, const Valore& NumeroUltimoDoc,
                                                 const Valore& DataUltimoDoc) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroRegistro(w, p, TipoRegistro, NumeroRegistro, SerieDocumento);
  // The row read with the entry number, under the counter's lock, when it is this one, the
  // transaction is still that one and nothing has written the table since.
  std::optional<Recordset> letto;
  if (registro_ && registro_->rs && registro_->where == w && registro_->p == p && cnNumero_ == cn.get() &&
      serieNumero_ == cn->SerieTransazione() && cn->Livello() > 0 &&
      registro_->scritture == cn->ScrittureDi(kTabellaRegistri))
    letto = std::move(registro_->rs);
  registro_.reset();
  Recordset rs = letto ? std::move(*letto) : cn->Apri(kTabellaRegistri, w, p);
  if (rs.Eof()) {
    rs.AddNew();
  } else {
    std::string tipo = T(TipoRegistro);
    bool documenti = tipo == "1" || tipo == "3" || tipo == "5";
    if (documenti || tipo == "2") {
      if (Lng(NumeroUltimoDoc) < Lng(rs("NumeroUltimoDoc").Value())) return false;
      Valore memorizzata = ComeDataONull(rs("DataUltimoDoc").Value());
      auto data = DataUltimoDoc.ComeData();
      if (data && !memorizzata.IsNull() && *data < memorizzata.Dat()) {
        std::string testo =
            documenti ? "Il numero del documento '" + NumeroUltimoDoc.Testo() + "' che si sta registrando per la serie '" +
                            SerieDocumento.Testo() +
                            "' ha una data documento inferiore alla data dell'ultimo documento registrato.\r"
                            "Proseguo ugualmente con l'aggiornamento del numero dell'ultimo documento per la serie '" +
                            SerieDocumento.Testo() + "'?"
                      : std::string("La registrazione di acquisto che si sta memorizzando ha una data regitrazione "
                                    "inferiore alla data di ultimo numero di protocollo ma numero di protocollo "
                                    "superiore.\rProseguo ugualmente con l'aggiornamento del protocollo?");
        Host().Beep();
        if (Host().MsgBox(testo, vbYesNo | vbQuestion, "Metodo AggiornaNumeroUltimoDocumento") != vbYes) return false;
      }
    } else {
      // No other kind of register has a counter here: the write below fails on the closed rows.
      rs.Close();
    }
  }
  rs("TipoRegistro") = TipoRegistro;
  rs("IndOrdiniImpegni") = Valore("");
  rs("NumeroRegistro") = NumeroRegistro;
  rs("Deposito") = Valore("000");
  rs("SerieDocumento") = SerieDocumento;
  rs("NumeroUltimoDoc") = NumeroUltimoDoc;
  rs("DataUltimoDoc") = DataUltimoDoc;
  rs("NumeroUltimoDocBollato") = Valore("");
  rs.UpdateInCoda();
  rs.Close();
  return true;
}

// ---------------------------------------------------------------- navigation and reading

bool clsPrimaNota::RecordSuccessivo(Valore& numeroRegistrazione) {
  AssicuraConnessione();
  Valore r = T(numeroRegistrazione).empty()
                 ? cn->Scalare("SELECT MAX([NumeroRegistrazione]) FROM [Prima Nota]")
                 : cn->Scalare("SELECT MIN([NumeroRegistrazione]) FROM [Prima Nota] WHERE [NumeroRegistrazione] > ?",
                               {Valore(numeroRegistrazione.Testo())});
  numeroRegistrazione = Valore(r.IsNull() ? std::string() : T(r));
  return !numeroRegistrazione.Str().empty();
}

bool clsPrimaNota::RecordPrecedente(Valore& numeroRegistrazione) {
  AssicuraConnessione();
  Valore r = T(numeroRegistrazione).empty()
                 ? cn->Scalare("SELECT MIN([NumeroRegistrazione]) FROM [Prima Nota]")
                 : cn->Scalare("SELECT MAX([NumeroRegistrazione]) FROM [Prima Nota] WHERE [NumeroRegistrazione] < ?",
                               {Valore(numeroRegistrazione.Testo())});
  numeroRegistrazione = Valore(r.IsNull() ? std::string() : T(r));
  return !numeroRegistrazione.Str().empty();
}

std::string clsPrimaNota::GetMaxRegistrazionePrimaNota() {
  AssicuraConnessione();
  Valore r = cn->Scalare("SELECT MAX([NumeroRegistrazione]) FROM [Prima Nota]");
  if (r.IsNull()) return "00000";
  return Format(Valore(T(r)), "00000");
}

int32_t clsPrimaNota::GetNumeroNuovaRegistrazionePrimaNota() {
  AssicuraConnessione();
  // Taken from the company's counter under its lock, never above a number already in the
  // journal: two clients never get the same number, and a rollback gives it back.
  clsProgAzienda progressivi;
  progressivi.cn = cn;
  LettureDopoNumero dopo;
  const bool registro = registro_ && !registro_->rs && cn->Livello() > 0;
  if (registro) dopo.aperture.push_back(cn->PreparaApri(kTabellaRegistri, registro_->where, registro_->p));
  else registro_.reset();
  const int32_t n = progressivi.PrendiNumeroRegistrazione(dopo);
  if (registro) {
    registro_->rs = std::move(dopo.letti.at(0));
    registro_->scritture = cn->ScrittureDi(kTabellaRegistri);
  }
  // Above every number of the journal, and the counter stays locked until the commit: the entry
  // has no row yet, and its rows written in this transaction need not be looked for.
  if (RegistrazioniNuoveValide()) letture_.registrazioniNuove.insert(Format(Valore(n), "00000"));
  cnNumero_ = cn.get();
  serieNumero_ = cn->SerieTransazione();
  scritturaNumero_ = dopo.scrittura;
  return n;
}

bool clsPrimaNota::ExistRegistrazione(const Valore& numeroRegistrazione) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[NumeroRegistrazione]", numeroRegistrazione);
  return !cn->Scalare("SELECT 1 FROM [Prima Nota] WHERE " + w + " LIMIT 1", p).IsNull();
}

Importo clsPrimaNota::GetDifferenzaIva(const Valore& ImponibileIva, const Valore& ImpostaIva,
                                       const Valore& AliquotaIva) {
  Importo imponibile = NullToZeroCy(ImponibileIva), imposta = NullToZeroCy(ImpostaIva),
          aliquota = NullToZeroCy(AliquotaIva);
  // imponibile x aliquota / 100 in exact fixed point, halves away from zero.
  Int128 prodotto = static_cast<Int128>(imponibile.Raw()) * aliquota.Raw();
  const Int128 divisore = static_cast<Int128>(Importo::kScala) * 100;
  Int128 q = prodotto / divisore, r = prodotto % divisore;
  if (2 * (r < 0 ? -r : r) >= divisore) q += prodotto < 0 ? -1 : 1;
  return imposta - Importo::DaRaw(static_cast<int64_t>(q));
}

int32_t clsPrimaNota::GetMaxRigheVideo(const Valore& numeroRegistrazione, const Valore& TipoRigaIvaNormale) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[NumeroRegistrazione]", numeroRegistrazione);
  w += T(TipoRigaIvaNormale) == "I" ? " AND [TipoRigaIvaNormale] = 'I'"
                                    : " AND ([TipoRigaIvaNormale] <> 'I' OR [TipoRigaIvaNormale] IS NULL)";
  return Lng(cn->Scalare("SELECT MAX([NumRigaAVideo]) FROM [Prima Nota] WHERE " + w, p));
}

int32_t clsPrimaNota::GetNumeroRecordContabili(const Valore& numeroRegistrazione) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[NumeroRegistrazione]", numeroRegistrazione);
  return Lng(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE " + w + " AND [TipoRigaIvaNormale] <> 'I'", p));
}

int32_t clsPrimaNota::GetNumeroRecordIva(const Valore& numeroRegistrazione) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[NumeroRegistrazione]", numeroRegistrazione);
  return Lng(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE " + w + " AND [TipoRigaIvaNormale] = 'I'", p));
}

std::string clsPrimaNota::GetCausaleContabileRegistrazione(const Valore& numeroRegistrazione) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[NumeroRegistrazione]", numeroRegistrazione);
  Valore r = cn->Scalare("SELECT [CodiceCausale] FROM [Prima Nota] WHERE " + w +
                             " ORDER BY [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere] LIMIT 1",
                         p);
  return r.IsNull() ? std::string() : T(r);
}

std::string clsPrimaNota::GetDataRegistrazione(const Valore& numeroRegistrazione) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[NumeroRegistrazione]", numeroRegistrazione);
  return DataTesto(cn->Scalare("SELECT [DataRegistrazione] FROM [Prima Nota] WHERE " + w +
                                   " ORDER BY [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere] LIMIT 1",
                               p));
}

Valore clsPrimaNota::GetDataMinimaRegistrazionePrimaNota(const std::shared_ptr<Connessione>& conn) {
  std::shared_ptr<Connessione> c = conn ? conn : cn;
  if (!c) throw ErroreDb(3709, "La connessione non è aperta.");
  return ComeDataONull(c->Scalare("SELECT MIN([DataRegistrazione]) FROM [Prima Nota]"));
}

Valore clsPrimaNota::GetDataCompetenzaIVAPropostaAutotrasportatori(const Valore& strDataDocumento,
                                                                   const Valore& PeriodicitaLiquidazione) {
  auto d = strDataDocumento.ComeData();
  Data base = d ? *d : Data::Oggi();
  std::string per = T(PeriodicitaLiquidazione);
  if (per.empty() || per == "0") {
    Data piu2 = base.AggiungiMesi(2);
    return Valore(Data::Crea(piu2.Anno(), piu2.Mese(), 1)->AggiungiGiorni(-1));
  }
  if (per == "1") {
    int m = base.Mese(), a = base.Anno();
    if (m <= 3) return Valore(*Data::Crea(a, 6, 30));
    if (m <= 6) return Valore(*Data::Crea(a, 9, 30));
    if (m <= 9) return Valore(*Data::Crea(a, 12, 31));
    return Valore(*Data::Crea(a + 1, 3, 31));
  }
  return Valore::Null();
}

int32_t clsPrimaNota::GetNumeroScadenzeCollegate(const Valore& numeroRegistrazione) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[NumeroRegistrazione]", numeroRegistrazione);
  return Lng(cn->Scalare("SELECT COUNT([KeyScadenze]) FROM [Prima Nota] WHERE " + w, p));
}

namespace {
// The VAT rows of one year of competence.
bool FiltroAnno(std::string& w, Parametri& p, const Valore& anno) {
  int a = 0;
  try {
    a = NullToZeroLng(anno);
  } catch (const std::exception&) {
    return false;
  }
  auto d1 = Data::Crea(a, 1, 1), d2 = Data::Crea(a, 12, 31);
  if (!d1 || !d2) return false;
  w += "[TipoRigaIvaNormale] = 'I' AND [DataCompetenza] >= ? AND [DataCompetenza] <= ?";
  p.push_back(Valore(*d1));
  p.push_back(Valore(*d2));
  return true;
}
}  // namespace

std::string clsPrimaNota::GetDataDocumento(const Valore& AnnoCompetenza, const Valore& NumeroDocumento,
                                           const Valore& SerieDocumento, const Valore& TipoRegistroIva,
                                           const Valore& NumRegistroIva) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  if (!FiltroAnno(w, p, AnnoCompetenza)) return "";
  FiltroNumero(w, p, "[NumeroDocumento]", NumeroDocumento);
  FiltroTesto(w, p, "[SerieDocumento]", SerieDocumento);
  FiltroTesto(w, p, "[TipoRegistroIva]", TipoRegistroIva);
  FiltroTesto(w, p, "[NumRegistroIva]", NumRegistroIva);
  Recordset rs = cn->Execute("SELECT [DataDocumento] FROM [Prima Nota] WHERE " + w + " LIMIT 1", p);
  return rs.Eof() ? std::string() : DataTesto(rs.Fields(0).Value());
}

std::string clsPrimaNota::GetDataCompetenzaProtocollo(const Valore& AnnoCompetenza, const Valore& NumeroDiProtocollo,
                                                      const Valore& TipoRegistroIva, const Valore& NumRegistroIva) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  if (!FiltroAnno(w, p, AnnoCompetenza)) return "";
  FiltroNumero(w, p, "[NumeroDiProtocollo]", NumeroDiProtocollo);
  FiltroTesto(w, p, "[TipoRegistroIva]", TipoRegistroIva);
  FiltroTesto(w, p, "[NumRegistroIva]", NumRegistroIva);
  Recordset rs = cn->Execute("SELECT [DataCompetenza] FROM [Prima Nota] WHERE " + w + " LIMIT 1", p);
  return rs.Eof() ? std::string() : DataTesto(rs.Fields(0).Value());
}

namespace {
bool CercaDocumento(Connessione& cn, Valore& numeroRegistrazione, const Valore& DataDocumento,
                    const std::function<void(std::string&, Parametri&)>& estremi, const Valore& indicatoreCliFor,
                    const Valore& codiceCliFor, const Valore& TipoCausale, const Valore& TipoRegistroIva,
                    const Valore& NumRegistroIva) {
  std::string w = "[Prima Nota].[NumeroRegistrazione] <> ? AND [Prima Nota].[TipoRigaIvaNormale] = 'I'";
  Parametri p{Valore(numeroRegistrazione.IsNull() ? std::string() : numeroRegistrazione.Testo())};
  FiltroData(w, p, "[Prima Nota].[DataDocumento]", DataDocumento);
  estremi(w, p);
  FiltroTesto(w, p, "[Prima Nota].[IndicatoreCliFor]", indicatoreCliFor);
  FiltroTesto(w, p, "[Prima Nota].[CodiceCliFor]", codiceCliFor);
  FiltroTesto(w, p, "[Causali Contabili].[TipoCausale]", TipoCausale);
  FiltroTesto(w, p, "[Causali Contabili].[TipoRegistroIva]", TipoRegistroIva);
  FiltroTesto(w, p, "[Prima Nota].[NumRegistroIva]", NumRegistroIva);
  Recordset rs = cn.Execute(
      "SELECT [Prima Nota].[NumeroRegistrazione] FROM [Prima Nota] LEFT JOIN [Causali Contabili] "
      "ON [Prima Nota].[CodiceCausale] = [Causali Contabili].[CodiceCausale] WHERE " + w + " LIMIT 1",
      p);
  if (rs.Eof()) return false;
  numeroRegistrazione = Valore(T(rs.Fields(0).Value()));
  return true;
}
}  // namespace

bool clsPrimaNota::ExistsRegistrazioneDocumento(Valore& numeroRegistrazione, const Valore& DataDocumento,
                                                const Valore& NumeroDocumento, const Valore& SerieDocumento,
                                                const Valore& indicatoreCliFor, const Valore& codiceCliFor,
                                                const Valore& TipoCausale, const Valore& TipoRegistroIva,
                                                const Valore& NumRegistroIva, const std::string& numeroDocumentoEsteso) {
  AssicuraConnessione();
  bool trovato = CercaDocumento(
      *cn, numeroRegistrazione, DataDocumento,
      [&](std::string& w, Parametri& p) {
        FiltroNumero(w, p, "[Prima Nota].[NumeroDocumento]", NumeroDocumento);
        FiltroTesto(w, p, "[Prima Nota].[SerieDocumento]", SerieDocumento);
      },
      indicatoreCliFor, codiceCliFor, TipoCausale, TipoRegistroIva, NumRegistroIva);
  if (trovato) return true;
  if (!Trim(numeroDocumentoEsteso).empty() && T(indicatoreCliFor) == "F")
    return ExistsRegistrazioneDocumentoEsteso(numeroRegistrazione, DataDocumento, Valore(numeroDocumentoEsteso),
                                              indicatoreCliFor, codiceCliFor, TipoCausale, TipoRegistroIva,
                                              NumRegistroIva);
  return false;
}

bool clsPrimaNota::ExistsRegistrazioneDocumentoEsteso(Valore& numeroRegistrazione, const Valore& DataDocumento,
                                                      const Valore& numeroDocumentoEsteso,
                                                      const Valore& indicatoreCliFor, const Valore& codiceCliFor,
                                                      const Valore& TipoCausale, const Valore& TipoRegistroIva,
                                                      const Valore& NumRegistroIva) {
  AssicuraConnessione();
  return CercaDocumento(
      *cn, numeroRegistrazione, DataDocumento,
      [&](std::string& w, Parametri& p) {
        FiltroTesto(w, p, "[Prima Nota].[NumeroDocumentoEsteso]", numeroDocumentoEsteso);
      },
      indicatoreCliFor, codiceCliFor, TipoCausale, TipoRegistroIva, NumRegistroIva);
}

bool clsPrimaNota::GetDatiIVARegistrazione(const Valore& numeroRegistrazione, Valore& indicatoreCliFor,
                                           Valore& codiceCliFor, Valore& DataRegistrazione, Valore& DataCompetenzaIVA,
                                           Valore& codiceCausale, Valore& NumRegistroIva, int32_t& NumeroDiProtocollo,
                                           Valore& DataDocumento, Valore& SerieDocumento, int32_t& NumeroDocumento,
                                           Valore& Valuta, double& Cambio) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[NumeroRegistrazione]", numeroRegistrazione);
  Recordset rs = cn->Execute("SELECT * FROM [Prima Nota] WHERE " + w +
                                 " AND [TipoRigaIvaNormale] = 'I' ORDER BY [NumRigaAVideo], [DareAvere] LIMIT 1",
                             p);
  if (rs.Eof()) return false;
  indicatoreCliFor = Leggi(rs, "IndicatoreCliFor", "");
  codiceCliFor = Leggi(rs, "CodiceCliFor", "");
  DataRegistrazione = ComeDataONull(rs("DataRegistrazione").Value());
  DataCompetenzaIVA = ComeDataONull(rs("DataCompetenzaIVA").Value());
  codiceCausale = Leggi(rs, "CodiceCausale", "");
  NumRegistroIva = Leggi(rs, "NumRegistroIva", "");
  NumeroDiProtocollo = Lng(rs("NumeroDiProtocollo").Value());
  DataDocumento = ComeDataONull(rs("DataDocumento").Value());
  SerieDocumento = Leggi(rs, "SerieDocumento", "");
  NumeroDocumento = Lng(rs("NumeroDocumento").Value());
  Valuta = Leggi(rs, "Valuta", "");
  Cambio = NullToZeroDbl(rs("Cambio").Value());
  return true;
}

bool clsPrimaNota::GetEstremiDocumento(const Valore& numeroRegistrazione, Valore& indicatoreCliFor,
                                       Valore& codiceCliFor, Valore& DataDocumento, Valore& SerieDocumento,
                                       Valore& NumeroDocumento) {
  AssicuraConnessione();
  std::string w;
  Parametri p;
  FiltroTesto(w, p, "[NumeroRegistrazione]", numeroRegistrazione);
  Recordset rs = cn->Execute("SELECT [IndicatoreCliFor], [CodiceCliFor], [DataDocumento], [SerieDocumento], "
                             "[NumeroDocumento] FROM [Prima Nota] WHERE " + w +
                                 " AND [TipoRigaIvaNormale] = 'I' ORDER BY [NumRigaAVideo], [DareAvere] LIMIT 1",
                             p);
  if (rs.Eof()) return false;
  indicatoreCliFor = Leggi(rs, "IndicatoreCliFor", "");
  codiceCliFor = Leggi(rs, "CodiceCliFor", "");
  DataDocumento = ComeDataONull(rs("DataDocumento").Value());
  SerieDocumento = Leggi(rs, "SerieDocumento", "");
  NumeroDocumento = Leggi(rs, "NumeroDocumento", 0);
  return true;
}

// ---------------------------------------------------------------- partner indicators

int64_t clsPrimaNota::TogliCliForDaSottoconto(const Valore& ContoPrimaNota) {
  AssicuraConnessione();
  const std::string w =
      "[ContoPrimaNota] = ? AND (COALESCE([IndClienteFornitore], '') <> '' OR COALESCE([CodClienteFornitore], '') <> '')";
  const Parametri p{Valore(T(ContoPrimaNota))};
  Atomico unita(*cn, UnitaRecuperabili);
  std::vector<MovimentoPrimaNota> righe;
  {
    Recordset rs = cn->Execute(std::string("SELECT ") + kColonneMovimento + " FROM [Prima Nota] WHERE " + w, p);
    std::vector<Valore> r(8);
    for (; !rs.Eof(); rs.MoveNext()) {
      for (int i = 0; i < 8; ++i) r[i] = rs.Fields(i).Value();
      righe.push_back(MovimentoDaRiga(r));
    }
  }
  // Each row off the balances as it stood, back on without its partner: the sub-account nets
  // to nothing, the partner loses the row.
  for (const auto& m : righe) MovimentaRecordContabile(m, true);
  cn->Esegui("UPDATE [Prima Nota] SET [IndClienteFornitore] = '', [CodClienteFornitore] = '' WHERE " + w, p);
  for (auto m : righe) {
    m.IndClienteFornitore = Valore("");
    m.CodClienteFornitore = Valore("");
    MovimentaRecordContabile(m, false);
  }
  unita.Conferma();
  return static_cast<int64_t>(righe.size());
}

}  // namespace vorn
