// The balance sheet and the trial balance over a large journal, against a plain read of the same
// rows.
//
//   BenchBilancio: [--righe N] [--motore sqlite|postgres|entrambi] [--ripetizioni R]
//
// N journal rows (1,000,000) are written straight into an empty company with a chart of 1,000
// sub-accounts in patrimonial, economic and summary groups, in entries of two rows (debit and
// credit of one amount), a fifth of them on the clients' account with one of 500 clients. Then,
// R times each: the balance sheet of the whole journal printed and paginated, the trial balance
// of the sub-accounts, and a plain GROUP BY of the journal by account and side, read to the last
// row. Each figure of the balance sheet is checked against the sums kept while the rows were
// written; the ratio of each run to the plain read is printed.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "bench/AziendaBench.h"
#include "bench/GiornaleBench.h"
#include "bench/bench.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"
#include "ledger/clsBilancio.h"

using namespace vorn;

namespace {

using bench::Orologio;
using bench::Secondi;

// Groups 01-20 patrimonial, 60-74 economic, 90-94 summary; five accounts of ten sub-accounts each.
std::vector<std::pair<std::string, char>> Gruppi() {
  std::vector<std::pair<std::string, char>> g;
  auto due = [](int n) { return Format(Valore(static_cast<long long>(n)), "00"); };
  for (int i = 1; i <= 20; ++i) g.emplace_back(due(i), 'P');
  for (int i = 60; i <= 74; ++i) g.emplace_back(due(i), 'E');
  for (int i = 90; i <= 94; ++i) g.emplace_back(due(i), 'R');
  return g;
}

const char* const kClienti = "0501001";
// The sub-accounts of the summary groups come last: 35 groups of 50 before them.
constexpr size_t kPrimoRiepilogo = 35 * 50;

void CaricaPiano(Connessione& cn, std::vector<std::string>& sottoconti, std::map<std::string, char>& sezione) {
  const std::string sql =
      "INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione], [IndDiBilancio]) VALUES (?, ?, ?, ?, ?)";
  cn.BeginTrans();
  for (const auto& [g, s] : Gruppi()) {
    std::string ind = s == 'P' ? "0" : s == 'E' ? "1" : "2";
    sezione[g] = s;
    cn.Esegui(sql, {Valore(g), Valore(""), Valore(""), Valore("Gruppo " + g), Valore(ind)});
    for (int c = 1; c <= 5; ++c) {
      std::string conto = Format(Valore(static_cast<long long>(c)), "00");
      cn.Esegui(sql, {Valore(g), Valore(conto), Valore(""), Valore("Conto " + g + conto), Valore(ind)});
      for (int k = 1; k <= 10; ++k) {
        std::string sc = Format(Valore(static_cast<long long>(k)), "000");
        cn.Esegui(sql, {Valore(g), Valore(conto), Valore(sc), Valore("Sottoconto " + g + conto + sc), Valore(ind)});
        sottoconti.push_back(g + conto + sc);
      }
    }
  }
  cn.CommitTrans();
}

// The expected totals of the sections: each balance of a sub-account and partner on its side.
struct Attesi {
  Importo sx[3], dx[3];  // P, E, R
};

Attesi Carica(Connessione& cn, long righe) {
  std::vector<std::string> sottoconti;
  std::map<std::string, char> sezione;
  CaricaPiano(cn, sottoconti, sezione);
  std::mt19937 rnd(11);
  const Data inizio = *Data::Crea(2020, 1, 1);
  std::map<std::tuple<std::string, std::string, std::string>, Importo> saldi;
  Importo importo;
  Data data;
  bool riepilogo = false;
  bench::ScriviGiornale(cn, righe, [&](long i, bench::RigaGiornale& r) {
    if (i % 2 == 0) {  // an entry: this debit and the next row's credit of the same amount
      importo = Importo::DaRaw(static_cast<int64_t>(rnd() % 100000000) * 100 + static_cast<int64_t>(rnd() % 100));
      data = inizio.AggiungiGiorni(static_cast<int64_t>(rnd() % 2192));
    }
    r.dare = i % 2 == 0;
    r.importo = importo;
    r.data = data;
    r.numero = Format(Valore(static_cast<long long>(i / 2)), "0000000");
    r.riga = r.dare ? "001" : "002";
    // The summary accounts are moved only against each other.
    if (i % 2 == 0) riepilogo = rnd() % 10 == 0;
    if (riepilogo) {
      r.conto = sottoconti[kPrimoRiepilogo + rnd() % (sottoconti.size() - kPrimoRiepilogo)];
    } else if (rnd() % 5 == 0) {
      r.conto = kClienti;
      r.indCliFor = "C";
      r.codCliFor = Format(Valore(static_cast<long long>(rnd() % 500)), "000000");
    } else {
      r.conto = sottoconti[rnd() % kPrimoRiepilogo];
    }
    if (rnd() % 50 == 0) r.indicatori = "  1       ";
    saldi[{r.conto, r.indCliFor, r.codCliFor}] += r.dare ? importo : -importo;
  });
  // Groups take a balance of 0 on the left, and their totals are those of the sections.
  Attesi a;
  for (const auto& [k, s] : saldi) {
    char sz = sezione[std::get<0>(k).substr(0, 2)];
    int n = sz == 'P' ? 0 : sz == 'E' ? 1 : 2;
    if (s >= Importo()) a.sx[n] += s;
    else a.dx[n] -= s;
  }
  return a;
}

struct Tempi {
  std::vector<double> t;
  void Aggiungi(double s) { t.push_back(s); }
  double Min() const { return t.empty() ? 0 : *std::min_element(t.begin(), t.end()); }
};

int Esegui(bool pg, long righe, int ripetizioni) {
  const char* motore = pg ? "postgres" : "sqlite";
  bench::AziendaBench az(pg, "bilancio");
  auto t0 = Orologio::now();
  Attesi attesi = Carica(*az.cn, righe);
  double carico = Secondi(t0);
  std::printf("%-8s caricamento di %ld righe: %.2f s (%.0f righe/s)\n", motore, righe, carico, righe / carico);
  az.cn->Esegui("ANALYZE");
  std::fflush(stdout);

  int errori = 0;
  auto verifica = [&](const char* cosa, Importo avuto, Importo atteso) {
    if (avuto == atteso) return;
    ++errori;
    std::printf("%-8s ERRORE %s: %s invece di %s\n", motore, cosa, avuto.TestoPunto4().c_str(),
                atteso.TestoPunto4().c_str());
  };
  Tempi tBilancio, tVerifica, tLettura;
  size_t sottocontiVerifica = 0;
  long gruppiLetti = 0;
  for (int r = 0; r < ripetizioni; ++r) {
    // The plain read: every row, grouped by account and side.
    auto t = Orologio::now();
    // Read whole (Execute, not a cursor: a cursor makes PostgreSQL plan for the first rows, an
    // ordered read by the account's index, twice as slow).
    auto rs = az.cn->Execute(
        "SELECT [Prima Nota].[ContoPrimaNota], [Prima Nota].[DareAvere], SUM([Prima Nota].[ImportoMovimento]) "
        "FROM [Prima Nota] GROUP BY [Prima Nota].[ContoPrimaNota], [Prima Nota].[DareAvere]");
    gruppiLetti = static_cast<long>(rs.RecordCount());
    tLettura.Aggiungi(Secondi(t));

    clsBilancio b;
    b.cn = az.cn;
    ArgomentiBilancio a;
    a.AzRagSoc = "Prova prestazioni";
    a.nomeFile = CartellaStampe() + "/bilancio.txt";
    a.avar_AData = Valore("31/12/2025");
    t = Orologio::now();
    if (!b.Bilancio(a)) throw std::runtime_error("bilancio non elaborato");
    tBilancio.Aggiungi(Secondi(t));
    for (int s = 0; s < 3; ++s) {
      const SezioneBilancio& z = s == 0 ? b.Patrimoniale() : s == 1 ? b.Economico() : b.Riepilogo();
      verifica("totale sinistro", z.totaleSx, attesi.sx[s]);
      verifica("totale destro", z.totaleDx, attesi.dx[s]);
    }
    if (b.MancaQuadratura()) {
      ++errori;
      std::printf("%-8s ERRORE: il bilancio non quadra\n", motore);
    }

    t = Orologio::now();
    auto righeVerifica = b.BilancioVerificaSottoconti(Valore(""), Valore("31/12/2025"));
    tVerifica.Aggiungi(Secondi(t));
    sottocontiVerifica = righeVerifica.size();
    Importo dare, avere;
    for (const auto& x : righeVerifica) dare += x.dare, avere += x.avere;
    verifica("quadratura del bilancio di verifica", dare, avere);
  }
  double base = tLettura.Min();
  std::printf("%-8s %-44s min %8.3f s  (%ld gruppi conto/lato)\n", motore, "lettura semplice (GROUP BY conto, lato)",
              base, gruppiLetti);
  std::printf("%-8s %-44s min %8.3f s  %5.2fx la lettura semplice\n", motore, "bilancio contabile (stampa impaginata)",
              tBilancio.Min(), tBilancio.Min() / base);
  std::printf("%-8s %-44s min %8.3f s  %5.2fx la lettura semplice (%zu sottoconti)\n", motore,
              "bilancio di verifica dei sottoconti", tVerifica.Min(), tVerifica.Min() / base, sottocontiVerifica);
  std::printf("%-8s %s\n", motore, errori ? "ERRORI nei totali" : "totali esatti");
  std::fflush(stdout);
  return errori ? 1 : 0;
}

}  // namespace

int BenchBilancio(int argc, char** argv) {
  long righe = 1000000;
  int ripetizioni = 3;
  std::string motore = "entrambi";
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto valore = [&] { return bench::ValoreOpzione(argc, argv, i); };
    if (a == "--righe") righe = std::atol(valore().c_str());
    else if (a == "--motore") motore = valore();
    else if (a == "--ripetizioni") ripetizioni = std::max(1, std::atoi(valore().c_str()));
    else {
      std::fprintf(stderr,
                   "uso: %s [--righe N] [--motore sqlite|postgres|entrambi] [--ripetizioni R]\n"
                   "  --righe N          righe di prima nota (predefinito 1000000)\n",
                   argc > 0 ? argv[0] : "bilancio");
      return 2;
    }
  }
  if (righe < 2) {
    std::fprintf(stderr, "righe non valide\n");
    return 2;
  }
  int rc = 0;
  try {
    for (bool pg : bench::Motori(motore)) rc |= Esegui(pg, righe, ripetizioni);
  } catch (const ErroreDb& e) {
    std::fprintf(stderr, "errore del database %ld: %s\n", e.Numero(), e.Descrizione().c_str());
    return 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "errore: %s\n", e.what());
    return 1;
  }
  return rc;
}
