#include "ledger/clsBilancio.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <map>
#include <stdexcept>
#include <tuple>

#include "company/StampaLibri.h"
#include "company/clsAnagraficaAzienda.h"
#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "frame/Data.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"
#include "frame/Impaginazione.h"
#include "frame/TabellaLavoro.h"
#include "ledger/clsSaldiContabili.h"

namespace vorn {

using stampa_libri::Largo;
using stampa_libri::Scrivi;

const char* const clsBilancio::kMessaggioInCorso =
    "Un altro bilancio è in elaborazione su questo archivio: riprovare al suo termine.";

namespace {

constexpr const char* kTitolo = "Bilancio";
constexpr const char* kNonQuadra = "*---------- MANCA QUADRATURA DI BILANCIO ----------*";
constexpr int kRigheTestata = 11;  // two empty lines, seven head lines, two foot lines

// ---------------------------------------------------------------------------------------------
// One balance sheet at a time per database.
//
// PostgreSQL: a session advisory lock, keyed by the company's schema; it goes with the session
// if the process dies. SQLite: the table [Bilancio in elaborazione], made by the run in a short
// transaction of its own (a second one cannot make it again) with the process that holds it;
// a table left by a process of this machine that no longer exists is taken over.

constexpr int64_t kChiaveBlocco = 0x56424C4E;  // the class of the advisory lock: the balance sheet

std::vector<ColonnaLavoro> ColonneBlocco() {
  return {{"Macchina", TipoCampo::Testo, 255}, {"Processo", TipoCampo::Intero32, 0}, {"Inizio", TipoCampo::Testo, 30}};
}

std::string NomeMacchina() {
  char buf[256] = {};
  if (gethostname(buf, sizeof buf - 1) != 0) return "";
  return buf;
}

class BloccoBilancio {
 public:
  explicit BloccoBilancio(Connessione& cn) : cn_(cn) {}
  ~BloccoBilancio() {
    try {
      Rilascia();
    } catch (...) {
    }
  }
  BloccoBilancio(const BloccoBilancio&) = delete;
  BloccoBilancio& operator=(const BloccoBilancio&) = delete;

  // True when taken; false when another run holds it.
  bool Prendi() {
    if (cn_.IsPostgres()) {
      preso_ = cn_.Scalare("SELECT pg_try_advisory_lock(?, hashtext(current_schema()))", {Valore(kChiaveBlocco)})
                   .Vero();
      return preso_;
    }
    TabellaLavoro t(cn_, TabellaLavoro::NomeFisso{}, "Bilancio in elaborazione", ColonneBlocco());
    for (int tentativo = 0; tentativo < 2 && !preso_; ++tentativo) {
      if (Esiste()) {
        if (!Abbandonato()) return false;
        t.Elimina();
      }
      try {
        Atomico a(cn_);
        cn_.Esegui(t.SqlCrea());  // no IF NOT EXISTS: of two runs, one makes it
        t.Riempi("SELECT ?, ?, ?", {Valore(NomeMacchina()), Valore(static_cast<long long>(getpid())),
                                    Valore(Data::Oggi().Testo())});
        a.Conferma();
        cn_.DimenticaSchema();
        preso_ = true;
      } catch (const ErroreDb&) {
        if (!Esiste()) throw;
      }
    }
    return preso_;
  }

  void Rilascia() {
    if (!preso_) return;
    preso_ = false;
    if (cn_.IsPostgres()) {
      cn_.Scalare("SELECT pg_advisory_unlock(?, hashtext(current_schema()))", {Valore(kChiaveBlocco)});
      return;
    }
    TabellaLavoro(cn_, TabellaLavoro::NomeFisso{}, "Bilancio in elaborazione", ColonneBlocco()).Elimina();
  }

 private:
  bool Esiste() {
    return !cn_.Execute("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?",
                        {Valore("Bilancio in elaborazione")})
                .Eof();
  }
  // The holder is a process of this machine that has ended.
  bool Abbandonato() {
    auto rs = cn_.Execute("SELECT [Macchina], [Processo] FROM [Bilancio in elaborazione]");
    if (rs.Eof()) return false;
    if (Trim(rs(0).Value().Testo()) != NomeMacchina()) return false;
    long long pid = rs(1).Value().ComeIntero().value_or(0);
    if (pid <= 0) return false;
    return kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH;
  }

  Connessione& cn_;
  bool preso_ = false;
};

// ---------------------------------------------------------------------------------------------
// The work tables, in the order of the chain.

const ColonnaLavoro Imp(const char* n) { return {n, TipoCampo::Importo, 0}; }
const ColonnaLavoro Txt(const char* n, int w = 0) { return {n, TipoCampo::Testo, w}; }

struct Tabelle {
  explicit Tabelle(Connessione& cn)
      : piano(cn, TabellaLavoro::NomeFisso{}, "Piano conti fittizio",
              {Txt("Codice conto"), Txt("Descrizione conto"), Txt("Sezione di bilancio", 1)}),
        sintetica(cn, TabellaLavoro::NomeFisso{}, "Prima nota sintetica",
                  {Txt("NumeroRegistrazione"), Txt("DareAvere", 1), Txt("ContoPrimaNota"), Txt("IndClienteFornitore"),
                   Txt("CodClienteFornitore"), Imp("ImportoMovimento"), {"DataCompetenza", TipoCampo::Data, 0}}),
        senzaSezione(cn, TabellaLavoro::NomeFisso{}, "Saldi sottoconti senza sezione bilancio",
                     {Txt("Gruppo", 2), Txt("ContoPrimaNota"), Txt("IndClienteFornitore"), Txt("CodClienteFornitore"),
                      Imp("Saldo")}),
        sottoconti(cn, TabellaLavoro::NomeFisso{}, "Saldi sottoconti",
                   {Txt("Gruppo", 2), Txt("ContoPrimaNota"), Txt("IndClienteFornitore"), Txt("CodClienteFornitore"),
                    Imp("Saldo"), Txt("Sezione di bilancio", 1)}) {
    const char* lati[2] = {"attivi", "passivi"};
    for (int l = 0; l < 2; ++l) {
      gruppi.emplace_back(cn, TabellaLavoro::NomeFisso{}, std::string("Saldi gruppi ") + lati[l],
                          std::vector<ColonnaLavoro>{Txt("Sezione di bilancio", 1), Txt("Gruppo", 2), Imp("SaldoGruppo")});
      conti.emplace_back(cn, TabellaLavoro::NomeFisso{}, std::string("Saldi conti ") + lati[l],
                         std::vector<ColonnaLavoro>{Txt("Sezione di bilancio", 1), Txt("Conto", 4), Imp("SaldoConto")});
      sottocontiLato.emplace_back(
          cn, TabellaLavoro::NomeFisso{}, std::string("Saldi sottoconti ") + lati[l],
          std::vector<ColonnaLavoro>{Txt("Sezione di bilancio", 1), Txt("Sottoconto"), Imp("SaldoSottoconto")});
    }
    for (const char* n : {"Attività", "Passività", "Costi", "Ricavi", "Riepilogo attivi", "Riepilogo passivi"})
      prospetti.emplace_back(cn, TabellaLavoro::NomeFisso{}, n, std::vector<ColonnaLavoro>{Txt("Conto"), Imp("Saldo")});
  }
  void EliminaTutte() {
    piano.Elimina();
    sintetica.Elimina();
    senzaSezione.Elimina();
    sottoconti.Elimina();
    for (auto* v : {&gruppi, &conti, &sottocontiLato, &prospetti})
      for (auto& t : *v) t.Elimina();
  }
  TabellaLavoro piano, sintetica, senzaSezione, sottoconti;
  std::vector<TabellaLavoro> gruppi, conti, sottocontiLato;  // [0] attivi, [1] passivi
  std::vector<TabellaLavoro> prospetti;  // Attività, Passività, Costi, Ricavi, Riepilogo attivi, Riepilogo passivi
};

// The sections: their letter, and the statement tables of their two sides.
constexpr const char* kSezione[3] = {"P", "E", "R"};

void Msgbar(IForm* f, const std::string& testo) {
  if (f) f->msgbar(testo);
}

// True when the unloaded progressives belong to a period from `dal`: with no start, or when the
// last unload reaches into the period, whose first rows have then left the journal for them.
bool ProgressiviNelPeriodo(Connessione& cn, const std::optional<Data>& dal) {
  if (!dal) return true;
  clsProgAzienda prog;
  prog.cn = cn.shared_from_this();
  auto scarico = prog.GetDataUltimoScaricoPrimaNota().ComeData();
  return scarico && *scarico >= *dal;
}

// What one pass of the chain takes.
struct Catena {
  Data dal, al;
  bool progressivi = false;                 // the unloaded balances come in (ProgressiviNelPeriodo)
  std::optional<Data> aperturaLogica;       // rows before it count for the sections other than "E"
  std::string contoRisultato;               // with aperturaLogica: the account of last year's result
  Importo risultatoPrec;                    // last year's result: costs minus revenues
};

// Rows into a work table, a few hundred to a statement, each row one value per column.
void InserisciRighe(Connessione& cn, TabellaLavoro& t, const std::vector<std::vector<Valore>>& righe) {
  const auto& colonne = t.Colonne();
  std::string testa = "INSERT INTO [" + t.Nome() + "] (", tupla = "(";
  for (size_t c = 0; c < colonne.size(); ++c) {
    testa += (c ? ", [" : "[") + colonne[c].nome + "]";
    tupla += c ? ", ?" : "?";
  }
  testa += ") VALUES ";
  tupla += ")";
  constexpr size_t kLotto = 200;
  for (size_t i = 0; i < righe.size(); i += kLotto) {
    std::string sql = testa;
    Parametri p;
    for (size_t r = i; r < righe.size() && r < i + kLotto; ++r) {
      sql += (r > i ? ", " : "") + tupla;
      p.insert(p.end(), righe[r].begin(), righe[r].end());
    }
    cn.Esegui(sql, p);
  }
}

// Runs the chain into the work tables (dropped first).
void CostruisciCatena(Connessione& cn, Tabelle& t, const Catena& c, IForm* form) {
  Msgbar(form, "Eliminazione tabelle temporanee");
  t.EliminaTutte();
  Msgbar(form, "Estrazione saldi da movimenti contabili");

  t.piano.Crea();
  t.piano.Riempi(
      "SELECT COALESCE([Piano Dei Conti].[Gruppo], '') || COALESCE([Piano Dei Conti].[Conto], '') || "
      "COALESCE([Piano Dei Conti].[Sottoconto], ''), [Piano Dei Conti].[Descrizione], "
      "CASE [Piano Dei Conti].[IndDiBilancio] WHEN '0' THEN 'P' WHEN '1' THEN 'E' WHEN '2' THEN 'R' ELSE '' END "
      "FROM [Piano Dei Conti]");
  t.piano.CreaIndice({"Codice conto"});

  // The synthetic rows "99999": the unloaded balances, last year's result. The journal's own rows
  // are read where they are, not copied.
  t.sintetica.Crea();
  const std::string sezioneGruppo =
      "(SELECT [Piano conti fittizio].[Sezione di bilancio] FROM [Piano conti fittizio] "
      "WHERE [Piano conti fittizio].[Codice conto] = substr(%s, 1, 2))";
  auto SezioneDi = [&](const std::string& espr) {
    std::string s = sezioneGruppo;
    return s.replace(s.find("%s"), 2, espr);
  };
  if (c.progressivi) {
    // The unloaded balance of a sub-account: opening + debit - credit progressive, as every
    // other reader of the progressives takes it.
    const std::string codice =
        "COALESCE([Saldi Piano Dei Conti].[CodiceGruppo], '') || COALESCE([Saldi Piano Dei Conti].[CodiceConto], '') "
        "|| COALESCE([Saldi Piano Dei Conti].[CodiceSottoconto], '')";
    const std::string valore =
        "(COALESCE([Saldi Piano Dei Conti].[SaldoInizialeProgr], 0) + "
        "COALESCE([Saldi Piano Dei Conti].[DareProgressivo], 0) - "
        "COALESCE([Saldi Piano Dei Conti].[AvereProgressivo], 0))";
    std::string sezioni = c.aperturaLogica ? "<> 'E'" : "IS NOT NULL";
    // A client's or supplier's progressives stand on its control sub-account as a partner row of
    // their own, so that the balance sheet splits them by side as it splits the journal's rows;
    // the sub-account keeps what is left (its rows without a partner).
    auto valoreCliFor = [](const std::string& tabella) {
      return "(COALESCE(" + tabella + ".[SaldoInizProgress], 0) + COALESCE(" + tabella +
             ".[SaldoDareProgress], 0) - COALESCE(" + tabella + ".[SaldoAvereProgress], 0))";
    };
    std::string resto = valore;
    for (const std::string tab : {"[Anagrafica Clienti]", "[Anagrafica Fornitori]"}) {
      resto += " - COALESCE((SELECT SUM(" + valoreCliFor("[p]") + ") FROM " + tab +
               " [p] WHERE [p].[SottocontoApparten] = " + codice + "), 0)";
      const std::string conto = tab + ".[SottocontoApparten]";
      t.sintetica.Riempi("SELECT '99999', CASE WHEN " + valoreCliFor(tab) + " > 0 THEN 'D' ELSE 'A' END, " + conto +
                             ", '" + (tab[12] == 'C' ? "C" : "F") + "', " + tab + ".[Codice Cliente], ABS(" +
                             valoreCliFor(tab) + "), ? FROM " + tab + " WHERE " + valoreCliFor(tab) +
                             " <> 0 AND length(COALESCE(" + conto + ", '')) = 7 AND " + SezioneDi(conto) + " " + sezioni,
                         {Valore(c.dal)});
    }
    resto = "(" + resto + ")";
    t.sintetica.Riempi("SELECT '99999', CASE WHEN " + resto + " > 0 THEN 'D' ELSE 'A' END, " + codice +
                           ", '', '', ABS(" + resto + "), ? FROM [Saldi Piano Dei Conti] WHERE " + resto +
                           " <> 0 AND length(" + codice + ") = 7 AND " + SezioneDi(codice) + " " + sezioni,
                       {Valore(c.dal)});
  }
  if (c.aperturaLogica) {
    t.sintetica.Riempi("SELECT '99999', ?, ?, '', '', ?, ?",
                       {Valore(c.risultatoPrec < Importo() ? "A" : "D"), Valore(c.contoRisultato),
                        Valore(c.risultatoPrec < Importo() ? -c.risultatoPrec : c.risultatoPrec),
                        Valore(*c.aperturaLogica)});
  }

  // The signed balance of each sub-account and partner in the period. The journal is read as a
  // plain GROUP BY of its own columns, no expression on a row, so that it costs what a plain
  // read of the rows costs (and PostgreSQL may read it in parallel, which it never does for an
  // INSERT ... SELECT); the sides and the synthetic rows are folded in here.
  Parametri p{Valore(c.dal), Valore(c.al)};
  std::string logica;
  if (c.aperturaLogica) {
    logica = " AND ([Prima Nota].[DataCompetenza] >= ? OR " + SezioneDi("[Prima Nota].[ContoPrimaNota]") + " <> 'E')";
    p.push_back(Valore(*c.aperturaLogica));
  }
  std::map<std::tuple<std::string, std::string, std::string>, Importo> saldi;
  auto aggiungi = [&](Recordset rs) {
    for (; !rs.Eof(); rs.MoveNext()) {
      Importo i = NullToZeroCy(rs(4).Value());
      saldi[{Trim(rs(0).Value().Testo()), Trim(rs(1).Value().Testo()), Trim(rs(2).Value().Testo())}] +=
          Trim(rs(3).Value().Testo()) == "A" ? -i : i;
    }
  };
  aggiungi(cn.Execute(
      "SELECT [Prima Nota].[ContoPrimaNota], [Prima Nota].[IndClienteFornitore], [Prima Nota].[CodClienteFornitore], "
      "[Prima Nota].[DareAvere], SUM([Prima Nota].[ImportoMovimento]) FROM [Prima Nota] "
      "WHERE [Prima Nota].[DataCompetenza] BETWEEN ? AND ?" + logica +
          " GROUP BY [Prima Nota].[ContoPrimaNota], [Prima Nota].[IndClienteFornitore], "
          "[Prima Nota].[CodClienteFornitore], [Prima Nota].[DareAvere]",
      p));
  aggiungi(cn.Execute(
      "SELECT [Prima nota sintetica].[ContoPrimaNota], [Prima nota sintetica].[IndClienteFornitore], "
      "[Prima nota sintetica].[CodClienteFornitore], [Prima nota sintetica].[DareAvere], "
      "[Prima nota sintetica].[ImportoMovimento] FROM [Prima nota sintetica] "
      "WHERE [Prima nota sintetica].[DataCompetenza] BETWEEN ? AND ?",
      {Valore(c.dal), Valore(c.al)}));
  std::vector<std::vector<Valore>> righe;
  righe.reserve(saldi.size());
  for (const auto& [k, saldo] : saldi)
    righe.push_back({Valore(SinistraTesto(std::get<0>(k), 2)), Valore(std::get<0>(k)), Valore(std::get<1>(k)),
                     Valore(std::get<2>(k)), Valore(saldo)});
  t.senzaSezione.Crea();
  InserisciRighe(cn, t.senzaSezione, righe);

  // The section by the group's row of the chart: a group the chart does not know falls out.
  t.sottoconti.Crea();
  t.sottoconti.Riempi(
      "SELECT [s].[Gruppo], [s].[ContoPrimaNota], [s].[IndClienteFornitore], [s].[CodClienteFornitore], [s].[Saldo], "
      "[Piano conti fittizio].[Sezione di bilancio] FROM [Saldi sottoconti senza sezione bilancio] [s] "
      "INNER JOIN [Piano conti fittizio] ON [Piano conti fittizio].[Codice conto] = [s].[Gruppo]");

  // The roll-ups by side: groups take a zero balance on the positive side, accounts and
  // sub-accounts only what is not zero.
  for (int l = 0; l < 2; ++l) {
    std::string segnoGruppo = l == 0 ? ">= 0" : "< 0", segno = l == 0 ? "> 0" : "< 0";
    t.gruppi[l].Crea();
    t.gruppi[l].Riempi(
        "SELECT [Saldi sottoconti].[Sezione di bilancio], [Saldi sottoconti].[Gruppo], "
        "SUM(ABS([Saldi sottoconti].[Saldo])) FROM [Saldi sottoconti] WHERE [Saldi sottoconti].[Saldo] " +
        segnoGruppo + " GROUP BY [Saldi sottoconti].[Sezione di bilancio], [Saldi sottoconti].[Gruppo]");
    t.conti[l].Crea();
    t.conti[l].Riempi(
        "SELECT [Saldi sottoconti].[Sezione di bilancio], substr([Saldi sottoconti].[ContoPrimaNota], 1, 4), "
        "SUM(ABS([Saldi sottoconti].[Saldo])) FROM [Saldi sottoconti] WHERE [Saldi sottoconti].[Saldo] " +
        segno + " GROUP BY [Saldi sottoconti].[Sezione di bilancio], substr([Saldi sottoconti].[ContoPrimaNota], 1, 4)");
    t.sottocontiLato[l].Crea();
    t.sottocontiLato[l].Riempi(
        "SELECT [Saldi sottoconti].[Sezione di bilancio], [Saldi sottoconti].[ContoPrimaNota], "
        "SUM(ABS([Saldi sottoconti].[Saldo])) FROM [Saldi sottoconti] WHERE [Saldi sottoconti].[Saldo] " +
        segno + " GROUP BY [Saldi sottoconti].[Sezione di bilancio], [Saldi sottoconti].[ContoPrimaNota]");
  }

  // The statement tables: groups, accounts and sub-accounts of a section and a side.
  for (int s = 0; s < 3; ++s)
    for (int l = 0; l < 2; ++l) {
      TabellaLavoro& dest = t.prospetti[static_cast<size_t>(s * 2 + l)];
      const std::string g = t.gruppi[l].Nome(), k = t.conti[l].Nome(), st = t.sottocontiLato[l].Nome();
      dest.Crea();
      dest.Riempi("SELECT [" + g + "].[Gruppo], [" + g + "].[SaldoGruppo] FROM [" + g + "] WHERE [" + g +
                      "].[Sezione di bilancio] = ? UNION ALL SELECT [" + k + "].[Conto], [" + k + "].[SaldoConto] FROM [" +
                      k + "] WHERE [" + k + "].[Sezione di bilancio] = ? UNION ALL SELECT [" + st + "].[Sottoconto], [" +
                      st + "].[SaldoSottoconto] FROM [" + st + "] WHERE [" + st + "].[Sezione di bilancio] = ?",
                  {Valore(kSezione[s]), Valore(kSezione[s]), Valore(kSezione[s])});
    }
}

// The total of a section's side: its groups.
Importo TotaleGruppi(Connessione& cn, const TabellaLavoro& gruppi, const char* sezione) {
  return NullToZeroCy(cn.Scalare("SELECT SUM([" + gruppi.Nome() + "].[SaldoGruppo]) FROM [" + gruppi.Nome() +
                                     "] WHERE [" + gruppi.Nome() + "].[Sezione di bilancio] = ?",
                                 {Valore(sezione)}));
}

std::vector<RigaBilancio> LeggiLato(Connessione& cn, const TabellaLavoro& t) {
  std::vector<RigaBilancio> v;
  const std::string n = "[" + t.Nome() + "]";
  cn.Scorri("SELECT " + n + ".[Conto], [Piano conti fittizio].[Descrizione conto], " + n + ".[Saldo] FROM " + n +
                " LEFT JOIN [Piano conti fittizio] ON [Piano conti fittizio].[Codice conto] = " + n +
                ".[Conto] ORDER BY " + n + ".[Conto]",
            {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
              v.push_back(RigaBilancio{Trim(r[0].Testo()), Trim(r[1].Testo()), NullToZeroCy(r[2])});
              return true;
            });
  return v;
}

void LeggiSezioni(Connessione& cn, Tabelle& t, SezioneBilancio (&sezioni)[3]) {
  for (int s = 0; s < 3; ++s) {
    sezioni[s].sx = LeggiLato(cn, t.prospetti[static_cast<size_t>(s * 2)]);
    sezioni[s].dx = LeggiLato(cn, t.prospetti[static_cast<size_t>(s * 2 + 1)]);
    sezioni[s].totaleSx = TotaleGruppi(cn, t.gruppi[0], kSezione[s]);
    sezioni[s].totaleDx = TotaleGruppi(cn, t.gruppi[1], kSezione[s]);
  }
}

// ---------------------------------------------------------------------------------------------
// The closing of a section: the result (or the balance of the summary accounts) stands on the
// left unless the left total is the greater.

struct Chiusura {
  bool aDestra = false;
  Importo risultato, pareggio;
};
Chiusura Chiudi(const SezioneBilancio& s) {
  Chiusura c;
  c.aDestra = s.totaleSx > s.totaleDx;
  c.risultato = c.aDestra ? s.totaleSx - s.totaleDx : s.totaleDx - s.totaleSx;
  c.pareggio = c.aDestra ? s.totaleSx : s.totaleDx;
  return c;
}

struct TitoliSezione {
  const char* sezione;
  const char* sx;
  const char* dx;
  const char* risultato;
};
constexpr TitoliSezione kTitoli[3] = {{"SITUAZIONE PATRIMONIALE", "ATTIVITA'", "PASSIVITA'", "RISULTATO DI ESERCIZIO"},
                                      {"CONTO ECONOMICO", "COSTI", "RICAVI", "RISULTATO DI ESERCIZIO"},
                                      {"CONTI TECNICI DI RIEPILOGO", "DARE", "AVERE", "SALDO"}};

// ---------------------------------------------------------------------------------------------
// The text print.

constexpr int kMezzo = 63;  // the width of a side; "|" stands at column 65

std::string Lato(const RigaBilancio* r) {
  if (!r) return std::string(kMezzo, ' ');
  return FormattaConto(Valore(r->conto)) + " " + Largo(r->descrizione, 30) + " " +
         clsBilancio::Formatta_saldo_per_bilancio(r->conto, r->saldo);
}

std::string Importo7(Importo i) { return clsBilancio::Formatta_saldo_per_bilancio("0000000", i); }

void ScriviSezione(std::ofstream& f, const std::string& nome, const SezioneBilancio& s, const char* titoloRisultato,
                   bool nonQuadra) {
  size_t n = std::max(s.sx.size(), s.dx.size());
  for (size_t i = 0; i < n; ++i)
    Scrivi(f, Lato(i < s.sx.size() ? &s.sx[i] : nullptr) + " |   " + Lato(i < s.dx.size() ? &s.dx[i] : nullptr), nome);
  const std::string regola = std::string(42, ' ') + std::string(21, '-');
  Scrivi(f, regola + " |   " + regola, nome);
  Scrivi(f, "          TOTALE                         " + Importo7(s.totaleSx) + " |             TOTALE                         " +
                Importo7(s.totaleDx),
         nome);
  Scrivi(f, "", nome);
  Chiusura c = Chiudi(s);
  const std::string doppia = std::string(42, ' ') + std::string(21, '=');
  if (c.aDestra) {
    Scrivi(f, std::string(78, ' ') + Largo(titoloRisultato, 31) + Importo7(c.risultato), nome);
    Scrivi(f, std::string(kMezzo + 5, ' ') + doppia, nome);
    Scrivi(f, std::string(78, ' ') + Largo("TOTALE A PAREGGIO", 31) + Importo7(c.pareggio), nome);
  } else {
    Scrivi(f, Largo("          " + std::string(titoloRisultato), 41) + Importo7(c.risultato), nome);
    Scrivi(f, doppia, nome);
    Scrivi(f, "          TOTALE A PAREGGIO              " + Importo7(c.pareggio), nome);
  }
  if (nonQuadra) Scrivi(f, std::string(38, ' ') + kNonQuadra, nome);
}

std::string Periodo(const std::optional<Data>& dal, const std::optional<Data>& al) {
  if (dal && al) return " dal " + dal->Testo() + "  al " + al->Testo();
  if (al) return " al " + al->Testo();
  if (dal) return " dal " + dal->Testo();
  return "";
}

}  // namespace

// ---------------------------------------------------------------------------------------------

std::string clsBilancio::FormatValutaBilancio(Importo Saldo) { return Format(Valore(Saldo), "###,###,##0.00"); }

std::string clsBilancio::Formatta_saldo_per_bilancio(const std::string& Conto, Importo Saldo) {
  int larghezza = 22, dopo = 0;
  switch (LunghezzaTesto(Conto)) {
    case 2:
      larghezza = 15, dopo = 7;
      break;
    case 7:
      larghezza = 18, dopo = 4;
      break;
    default:
      break;
  }
  return PadDestra(Valore(FormatValutaBilancio(Saldo)), larghezza) + std::string(static_cast<size_t>(dopo), ' ');
}

std::string clsBilancio::GetStringaPeriodoBilancio(const Valore& avar_DaData, const Valore& avar_AData) {
  auto dal = DataCorretta(avar_DaData), al = DataCorretta(avar_AData);
  if (dal && al) return " Dal " + dal->Testo() + "  al " + al->Testo();
  if (dal) return " Dal " + dal->Testo();
  if (al) return " Al " + al->Testo();
  return "";
}

namespace {

// The text file: each section paginated under its own head, the pages one after the other.
void CreaBilancio(clsBilancio& b, Connessione& cn, const ArgomentiBilancio& a, const std::optional<Data>& dal,
                  const std::optional<Data>& al) {
  const int perPagina = a.avar_RighePagina - kRigheTestata;
  if (perPagina < 1)
    throw std::invalid_argument("Righe per pagina insufficienti per la stampa del bilancio: almeno " +
                                std::to_string(kRigheTestata + 1) + ".");
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = cn.shared_from_this();
  std::string ragione, indEs, capEs, locEs, provEs, indDom, capDom, locDom, provDom, cf, piva;
  anagrafica.GetDatiFiscaliAzienda(ragione, indEs, capEs, locEs, provEs, indDom, capDom, locDom, provDom, cf, piva);
  const std::string intestazione =
      Largo("BILANCIO CONTABILE DELL'AZIENDA : " + Trim(ragione) + Periodo(dal, al), kColonneReport);
  const std::string indirizzo = Trim(indDom) + " - " + Trim(capDom) + " " + Trim(locDom) + " (" + Trim(provDom) +
                                ")    P.I. " + Trim(piva) + "     C.F. " + Trim(cf);

  stampa_libri::FileLavoro lavoro({"bilancio.tmp", "~bilancio.tmp"});
  FileStampa stampa(a.nomeFile);
  RigaPagina("", Valore(0));
  const SezioneBilancio* sezioni[3] = {&b.Patrimoniale(), &b.Economico(), &b.Riepilogo()};
  for (int s = 0; s < 3; ++s) {
    if (s == 0 && !a.avar_StampaSituazionePatrimoniale) continue;
    if (s == 2 && (!a.avar_StampaContiRiepilogo || (sezioni[2]->sx.empty() && sezioni[2]->dx.empty()))) continue;
    {
      std::ofstream f(lavoro[0], std::ios::binary | std::ios::trunc);
      ScriviSezione(f, lavoro[0], *sezioni[s], kTitoli[s].risultato, s == 1 && b.MancaQuadratura());
      f.close();
      if (!f) throw ErroreStampa("Impossibile scrivere il file " + lavoro[0]);
    }
    const std::string titolo = kTitoli[s].sezione;
    std::array<std::string, 7> testata = {
        intestazione,
        indirizzo,
        std::string(static_cast<size_t>(53 + (23 - static_cast<int>(titolo.size())) / 2), ' ') + titolo,
        Largo(kTitoli[s].sx, 64) + "|   " + kTitoli[s].dx,
        std::string(64, '=') + "|" + std::string(66, '='),
        "Codice    Descrizione                                   Importo |   Codice    Descrizione                   "
        "                Importo",
        std::string(64, '-') + "+" + std::string(66, '-')};
    std::array<std::string, 2> piede = {"", stampa_libri::PiedeElaborato(a.AzRagSoc, a.AzParIva)};
    ImpaginaFile(lavoro[0], lavoro[1], a.avar_RighePagina, testata, piede, false, 1);
    stampa_libri::CopiaInStampa(lavoro[1], stampa, a.nomeFile);
  }
  stampa.Chiudi();
}

// The rows of [Elaborazione stampa bilancio] for this client, in place of its previous ones.
void MakeDatiReportBilancio(clsBilancio& b, Connessione& cn, const ArgomentiBilancio& a) {
  Atomico at(cn);
  cn.Esegui("DELETE FROM [Elaborazione stampa bilancio] WHERE [ClientName] = ?", {Valore(a.clientName)});
  const std::string periodo = clsBilancio::GetStringaPeriodoBilancio(a.avar_DaData, a.avar_AData);
  const std::string nota = b.MancaQuadratura() ? kNonQuadra : "";
  const SezioneBilancio* sezioni[3] = {&b.Patrimoniale(), &b.Economico(), &b.Riepilogo()};
  std::string sql =
      "INSERT INTO [Elaborazione stampa bilancio] ([ClientName], [IDSezione], [Progressivo], [DesSezione], "
      "[StringaPeriodo], [TitoloColonnaSx], [TitoloColonnaDx], [ContoSx], [DesContoSx], [SaldoSx], [ContoDx], "
      "[DesContoDx], [SaldoDx], [TotaleSx], [TotaleDx], [TitoloRisultatoEsercizioSx], [RisultatoEsercizioSx], "
      "[TitoloRisultatoEsercizioDx], [RisultatoEsercizioDx], [TitoloTotalePareggioSx], [TotalePareggioSx], "
      "[TitoloTotalePareggioDx], [TotalePareggioDx], [NoteQuadratura]) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
      "?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
  long progressivo = 0;
  for (int s = 0; s < 3; ++s) {
    if (s == 0 && !a.avar_StampaSituazionePatrimoniale) continue;
    if (s == 2 && !a.avar_StampaContiRiepilogo) continue;
    const SezioneBilancio& z = *sezioni[s];
    Chiusura c = Chiudi(z);
    const std::string ris = kTitoli[s].risultato, par = "TOTALE A PAREGGIO";
    size_t n = std::max(z.sx.size(), z.dx.size());
    for (size_t i = 0; i < n; ++i) {
      const RigaBilancio* sx = i < z.sx.size() ? &z.sx[i] : nullptr;
      const RigaBilancio* dx = i < z.dx.size() ? &z.dx[i] : nullptr;
      cn.Esegui(sql, {Valore(a.clientName), Valore(static_cast<long long>(s)), Valore(static_cast<long long>(++progressivo)),
                      Valore(kTitoli[s].sezione), Valore(periodo), Valore(kTitoli[s].sx), Valore(kTitoli[s].dx),
                      Valore(sx ? sx->conto : ""), Valore(sx ? sx->descrizione : ""), Valore(sx ? sx->saldo : Importo()),
                      Valore(dx ? dx->conto : ""), Valore(dx ? dx->descrizione : ""), Valore(dx ? dx->saldo : Importo()),
                      Valore(z.totaleSx), Valore(z.totaleDx), Valore(c.aDestra ? "" : ris),
                      Valore(c.aDestra ? Importo() : c.risultato), Valore(c.aDestra ? ris : ""),
                      Valore(c.aDestra ? c.risultato : Importo()), Valore(c.aDestra ? "" : par),
                      Valore(c.aDestra ? Importo() : c.pareggio), Valore(c.aDestra ? par : ""),
                      Valore(c.aDestra ? c.pareggio : Importo()), Valore(nota)});
    }
  }
  at.Conferma();
}

}  // namespace

bool clsBilancio::Bilancio(const ArgomentiBilancio& a) {
  Connessione& c = *cn;
  IForm* form = a.frm_FormAttiva;
  for (auto& s : sezioni_) s = SezioneBilancio{};
  mancaQuadratura_ = false;

  Catena k;
  auto dal = DataCorretta(a.avar_DaData), al = DataCorretta(a.avar_AData);
  k.dal = dal ? *dal : *Data::Crea(1900, 1, 1);
  k.al = al ? *al : *Data::Crea(3000, 12, 31);
  k.progressivi = ProgressiviNelPeriodo(c, dal);
  const bool conRisultatoPrec = !TrimTesto(a.avar_ContoRisultatoEsercizioPrec).empty();
  if (conRisultatoPrec) {
    k.aperturaLogica = DataCorretta(a.avar_DataLogicaAperturaBilancio);
    if (!k.aperturaLogica) {
      Host().Beep();
      Host().MsgBox("La data logica 'Apertura di bilancio' è richiesta ma non corretta. Impossibile continuare",
                    vbExclamation, kTitolo);
      return false;
    }
    k.contoRisultato = TrimTesto(a.avar_ContoRisultatoEsercizioPrec);
  }

  BloccoBilancio blocco(c);
  if (!blocco.Prendi()) {
    Host().MsgBox(kMessaggioInCorso, vbExclamation, kTitolo);
    return false;
  }
  // Last year's result, by the same chain over its year.
  if (k.aperturaLogica) {
    Catena prec;
    prec.dal = *Data::Crea(k.aperturaLogica->Anno() - 1, 1, 1);
    prec.al = k.aperturaLogica->AggiungiGiorni(-1);
    Tabelle t(c);
    Atomico at(c);
    CostruisciCatena(c, t, prec, form);
    k.risultatoPrec = TotaleGruppi(c, t.gruppi[0], "E") - TotaleGruppi(c, t.gruppi[1], "E");
    t.EliminaTutte();
    at.Conferma();
  }

  Tabelle t(c);
  Atomico at(c);
  CostruisciCatena(c, t, k, form);
  LeggiSezioni(c, t, sezioni_);
  mancaQuadratura_ =
      Patrimoniale().totaleSx - Patrimoniale().totaleDx != Economico().totaleDx - Economico().totaleSx;
  Msgbar(form, "Composizione stampa");
  if (a.bilancioSuReport) MakeDatiReportBilancio(*this, c, a);
  else CreaBilancio(*this, c, a, dal, al);
  t.EliminaTutte();
  at.Conferma();
  Msgbar(form, "");
  return true;
}

Importo clsBilancio::GetRisultatoEsercizioEconomicoAData(IForm* frm_FormAttiva, const Valore& avar_DaData,
                                                         const Valore& avar_AData, bool bool_ConsideraSaldiProgressivi) {
  Connessione& c = *cn;
  clsSaldiContabili saldi;
  saldi.cn = cn;
  Catena k;
  auto dal = DataCorretta(avar_DaData), al = DataCorretta(avar_AData);
  if (!dal) dal = DataCorretta(saldi.GetDataMinimaCompetenzaPrimaNota());
  if (!al) al = DataCorretta(saldi.GetDataMassimaCompetenzaPrimaNota());
  k.dal = dal ? *dal : *Data::Crea(1900, 1, 1);
  k.al = al ? *al : *Data::Crea(3000, 12, 31);
  k.progressivi = bool_ConsideraSaldiProgressivi;
  BloccoBilancio blocco(c);
  if (!blocco.Prendi()) throw ErroreDb(0, kMessaggioInCorso);
  Tabelle t(c);
  Atomico at(c);
  CostruisciCatena(c, t, k, frm_FormAttiva);
  Importo r = TotaleGruppi(c, t.gruppi[0], "E") - TotaleGruppi(c, t.gruppi[1], "E");
  t.EliminaTutte();
  at.Conferma();
  Msgbar(frm_FormAttiva, "");
  return r;
}

// ---------------------------------------------------------------------------------------------
// The trial balance of the sub-accounts.

std::vector<RigaBilancioVerifica> clsBilancio::BilancioVerificaSottoconti(const Valore& avar_DaData,
                                                                           const Valore& avar_AData) {
  auto dal = DataCorretta(avar_DaData), al = DataCorretta(avar_AData);
  Parametri p{Valore(dal ? *dal : *Data::Crea(1900, 1, 1)), Valore(al ? *al : *Data::Crea(3000, 12, 31))};
  // The journal summed by account, side and opening first (as cheap as a plain GROUP BY of the
  // rows), then each account's few sums folded into its debit, credit and opening.
  const std::string apertura =
      "CASE WHEN substr(COALESCE([Prima Nota].[Stringa10indicatori], ''), 3, 1) = '1' THEN 1 ELSE 0 END";
  std::string somme =
      "SELECT [Prima Nota].[ContoPrimaNota] AS [Conto], [Prima Nota].[DareAvere] AS [DareAvere], " + apertura +
      " AS [Apertura], SUM([Prima Nota].[ImportoMovimento]) AS [Importo] FROM [Prima Nota] "
      "WHERE [Prima Nota].[DataCompetenza] BETWEEN ? AND ? GROUP BY [Prima Nota].[ContoPrimaNota], "
      "[Prima Nota].[DareAvere], " + apertura;
  if (ProgressiviNelPeriodo(*cn, dal)) {
    const std::string codice =
        "COALESCE([Saldi Piano Dei Conti].[CodiceGruppo], '') || COALESCE([Saldi Piano Dei Conti].[CodiceConto], '') "
        "|| COALESCE([Saldi Piano Dei Conti].[CodiceSottoconto], '')";
    const char* parti[3][3] = {{"'D'", "0", "DareProgressivo"}, {"'A'", "0", "AvereProgressivo"},
                               {"'D'", "1", "SaldoInizialeProgr"}};
    for (auto& x : parti)
      somme += " UNION ALL SELECT " + codice + ", " + x[0] + ", " + x[1] + ", [Saldi Piano Dei Conti].[" + x[2] +
               "] FROM [Saldi Piano Dei Conti] WHERE COALESCE([Saldi Piano Dei Conti].[" + x[2] + "], 0) <> 0";
  }
  const std::string sql =
      "SELECT [m].[Conto], "
      "SUM(CASE WHEN [m].[Apertura] = 0 AND [m].[DareAvere] <> 'A' THEN [m].[Importo] ELSE 0 END), "
      "SUM(CASE WHEN [m].[Apertura] = 0 AND [m].[DareAvere] = 'A' THEN [m].[Importo] ELSE 0 END), "
      "SUM(CASE WHEN [m].[Apertura] = 0 THEN 0 WHEN [m].[DareAvere] = 'A' THEN -[m].[Importo] ELSE [m].[Importo] END) "
      "FROM (" + somme + ") [m] GROUP BY [m].[Conto] ORDER BY [m].[Conto]";
  std::map<std::string, std::string> descrizioni;
  cn->Scorri("SELECT [Descrizione sottoconti].[Sottoconto], [Descrizione sottoconti].[Descrizione] "
             "FROM [Descrizione sottoconti]",
             {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
               descrizioni[Trim(r[0].Testo())] = Trim(r[1].Testo());
               return true;
             });
  // Read whole, a row an account: a cursor would make PostgreSQL plan for the first rows.
  std::vector<RigaBilancioVerifica> v;
  for (auto rs = cn->Execute(sql, p); !rs.Eof(); rs.MoveNext()) {
    RigaBilancioVerifica riga;
    riga.codice = Trim(rs(0).Value().Testo());
    auto d = descrizioni.find(riga.codice);
    if (d != descrizioni.end()) riga.descrizione = d->second;
    riga.dare = NullToZeroCy(rs(1).Value());
    riga.avere = NullToZeroCy(rs(2).Value());
    Importo ap = NullToZeroCy(rs(3).Value());
    if (ap > Importo()) riga.dare += ap;
    else riga.avere -= ap;
    if (!riga.dare.Zero() || !riga.avere.Zero()) v.push_back(std::move(riga));
  }
  return v;
}

namespace {

// Amounts in 18 columns: room for tens of billions with their points.
constexpr int kImportoVerifica = 18;
constexpr size_t kLarghezzaVerifica = 9 + 2 + 36 + 3 * (1 + kImportoVerifica) + 2;

std::string CifraV(Importo i) { return FormattaImporto(Valore(i)); }

std::string SaldoConLato(Importo s) {
  if (s.Zero()) return PadDestra(Valore(CifraV(s)), kImportoVerifica) + "  ";
  return PadDestra(Valore(CifraV(s < Importo() ? -s : s)), kImportoVerifica) + (s < Importo() ? " A" : " D");
}

std::string RigaVerifica(const std::string& codice, const std::string& descrizione, const std::string& dare,
                         const std::string& avere, const std::string& saldo) {
  return PadSinistra(Valore(codice), 9) + "  " + PadSinistra(Valore(SinistraTesto(descrizione, 36)), 36) + " " +
         PadDestra(Valore(dare), kImportoVerifica) + " " + PadDestra(Valore(avere), kImportoVerifica) + " " + saldo;
}

}  // namespace

std::string clsBilancio::TestoBilancioVerifica(const std::vector<RigaBilancioVerifica>& righe) {
  std::string riga(kLarghezzaVerifica, '-');
  std::string s = RigaVerifica("Codice", "Descrizione", "Dare", "Avere", PadDestra(Valore("Saldo"), kImportoVerifica)) +
                  "\n" + riga + "\n";
  Importo dare, avere;
  for (const auto& r : righe) {
    s += RigaVerifica(FormattaConto(Valore(r.codice)), r.descrizione, CifraV(r.dare), CifraV(r.avere),
                      SaldoConLato(r.Saldo())) +
         "\n";
    dare += r.dare;
    avere += r.avere;
  }
  s += riga + "\n";
  s += RigaVerifica("", "Totali", CifraV(dare), CifraV(avere), SaldoConLato(dare - avere)) + "\n";
  return s;
}

}  // namespace vorn
