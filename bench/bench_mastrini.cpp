// Ledger cards and balances over a large journal.
//
//   BenchMastrini: [--righe N] [--righe-conto M] [--motore sqlite|postgres|entrambi] [--ripetizioni R]
//
// N journal rows (1,000,000) are written straight into an empty company with multi-row INSERTs,
// M of them (100,000) on one busy sub-account, the rest spread over two hundred others. Then,
// R times each: the balance at a date of the busy account and of a quiet one, the balances of a
// period, the card of the busy account printed and paginated, and the same card into a grid.
// Each balance is checked against the sum kept while the rows were written.
// PostgreSQL comes from VORN_PG_HOST, VORN_PG_PORT, VORN_PG_USER, VORN_PG_PASSWORD, VORN_PG_DB;
// each run works in a schema of its own, dropped at the end.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Globali.h"
#include "frame/Host.h"
#include "frame/Schema.h"
#include "bench/AziendaBench.h"
#include "bench/GiornaleBench.h"
#include "ledger/clsSaldiContabili.h"
#include "ledger/clsStampaMastrini.h"
#include "ledger/clsVisualizzaMastrini.h"

using namespace vorn;

namespace {

using AziendaMastrini = bench::AziendaBench;
using bench::Orologio;
using bench::Secondi;

// A grid that only counts.
class GrigliaConta : public IGrigliaMastrino {
 public:
  void Clear() override { n = 0; }
  void Cols(int, const std::vector<std::string>&) override {}
  int Rows() const override { return n; }
  void AddItem(const std::string&, int) override { ++n; }
  void Cell(Proprieta, int, int, int, int, long) override {}
  void Refresh() override {}
  int n = 0;
};
class FormConta : public IFormMastrino {
 public:
  IGrigliaMastrino& vsMovimenti() override { return g; }
  GrigliaConta g;
};

const char* const kContoAttivo = "1501001";
const char* const kContoQuieto = "6001007";

// What the loading kept: the balance of both accounts at the date of the checks.
struct Attesi {
  Importo attivoAData, quietoAData;
  Importo darePeriodo, averePeriodo;  // the busy account, movements of the year of the checks
};

// The journal through the shared writer; the expected figures are kept as the rows are made.
Attesi Carica(Connessione& cn, long righe, long righeConto, const Data& dataVerifica) {
  std::mt19937 rnd(7);
  const Data inizio = *Data::Crea(2020, 1, 1);
  const int anno = dataVerifica.Anno();
  // Every tenth row (as many as asked) on the busy account, the others on 200 quiet ones.
  const long passo = std::max(1L, righe / std::max(1L, righeConto));
  Attesi a;
  bench::ScriviGiornale(cn, righe, [&](long i, bench::RigaGiornale& r) {
    long sulConto = i / passo;
    bool attivo = i % passo == 0 && sulConto < righeConto;
    r.conto = attivo ? kContoAttivo : "60010" + Format(Valore(static_cast<long long>(rnd() % 200)), "00");
    r.data = inizio.AggiungiGiorni(static_cast<int64_t>(rnd() % 2192));
    r.dare = i % 2 == 0;  // each entry: a debit row and a credit row
    bool apertura = rnd() % 50 == 0;
    r.importo = Importo::DaRaw(static_cast<int64_t>(rnd() % 100000000) * 100);
    const Importo& imp = r.importo;
    if (r.data <= dataVerifica) {
      if (r.conto == kContoAttivo) a.attivoAData += r.dare ? imp : -imp;
      if (r.conto == kContoQuieto) a.quietoAData += r.dare ? imp : -imp;
    }
    if (r.conto == kContoAttivo && r.data.Anno() == anno && !apertura) (r.dare ? a.darePeriodo : a.averePeriodo) += imp;
    r.numero = Format(Valore(static_cast<long long>(i / 2)), "0000000");
    if (apertura) {
      r.causale = "099";
      r.indicatori = "  1       ";
    }
  });
  return a;
}

struct Tempi {
  std::vector<double> t;
  void Aggiungi(double s) { t.push_back(s); }
  double Min() const { return t.empty() ? 0 : *std::min_element(t.begin(), t.end()); }
  double Media() const {
    double s = 0;
    for (double x : t) s += x;
    return t.empty() ? 0 : s / static_cast<double>(t.size());
  }
};

void Riga(const char* motore, const char* prova, const Tempi& t, const std::string& nota) {
  std::printf("%-8s %-44s min %8.3f s  media %8.3f s  %s\n", motore, prova, t.Min(), t.Media(), nota.c_str());
  std::fflush(stdout);
}

int Esegui(bool pg, long righe, long righeConto, int ripetizioni) {
  const char* motore = pg ? "postgres" : "sqlite";
  AziendaMastrini az(pg, "mastrini");
  const Data verifica = *Data::Crea(2023, 6, 30);
  auto t0 = Orologio::now();
  Attesi attesi = Carica(*az.cn, righe, righeConto, verifica);
  double carico = Secondi(t0);
  std::printf("%-8s caricamento di %ld righe (%ld sul conto attivo): %.2f s (%.0f righe/s)\n", motore, righe, righeConto,
              carico, righe / carico);
  if (pg) az.cn->Esegui("ANALYZE");
  std::fflush(stdout);

  clsSaldiContabili saldi;
  saldi.cn = az.cn;
  clsProgAzienda prog;
  prog.cn = az.cn;
  int errori = 0;
  auto verifica_ = [&](const char* cosa, Importo avuto, Importo atteso) {
    if (avuto == atteso) return std::string("esatto");
    ++errori;
    return std::string("ERRORE ") + cosa + ": " + avuto.TestoPunto4() + " invece di " + atteso.TestoPunto4();
  };

  Tempi tAttivo, tQuieto, tPeriodo, tStampa, tGriglia;
  std::string nAttivo, nQuieto, nPeriodo, nStampa, nGriglia;
  for (int r = 0; r < ripetizioni; ++r) {
    auto t = Orologio::now();
    Importo s = saldi.GetSaldoSottocontoAData(Valore(verifica), Valore(kContoAttivo));
    tAttivo.Aggiungi(Secondi(t));
    nAttivo = verifica_("saldo del conto attivo", s, attesi.attivoAData);

    t = Orologio::now();
    s = saldi.GetSaldoSottocontoAData(Valore(verifica), Valore(kContoQuieto));
    tQuieto.Aggiungi(Secondi(t));
    nQuieto = verifica_("saldo del conto quieto", s, attesi.quietoAData);

    t = Orologio::now();
    Importo i, d, a;
    saldi.GetSaldiPeriodoSottoconto(Valore("01/01/2023"), Valore("31/12/2023"), Valore(kContoAttivo), i, d, a);
    tPeriodo.Aggiungi(Secondi(t));
    nPeriodo = verifica_("dare del periodo", d, attesi.darePeriodo);
    if (nPeriodo == "esatto") nPeriodo = verifica_("avere del periodo", a, attesi.averePeriodo);

    clsStampaMastrini stampa;
    stampa.cn = az.cn;
    ArgomentiStampaMastrini arg;
    arg.objSaldiContabili = &saldi;
    arg.objProgAzienda = &prog;
    arg.RagioneSocialeAzienda = "Prova prestazioni";
    arg.nomeFile = CartellaTemp() + "/mastrini.txt";
    arg.avar_StampaSaldo = true;
    t = Orologio::now();
    long schede = stampa.StampaListaMastrini(arg, {VoceMastrino{kContoAttivo, "", ""}});
    tStampa.Aggiungi(Secondi(t));
    nStampa = std::to_string(schede) + " scheda, " +
              std::to_string(std::filesystem::file_size(arg.nomeFile) / 1024) + " kB";

    clsVisualizzaMastrini video;
    video.cn = az.cn;
    FormConta form;
    t = Orologio::now();
    video.VisualizzaMastrini(form, saldi, prog, Valore("01/01/2021"), Valore(""), Valore(kContoAttivo), Valore(""),
                             Valore(""), false);
    tGriglia.Aggiungi(Secondi(t));
    nGriglia = std::to_string(form.g.n) + " righe nella griglia";
  }
  Riga(motore, "saldo a una data, conto attivo", tAttivo, nAttivo);
  Riga(motore, "saldo a una data, conto quieto", tQuieto, nQuieto);
  Riga(motore, "saldi di un anno, conto attivo", tPeriodo, nPeriodo);
  Riga(motore, "stampa del mastrino del conto attivo", tStampa, nStampa);
  Riga(motore, "mastrino del conto attivo in griglia (dal 2021)", tGriglia, nGriglia);
  return errori ? 1 : 0;
}

}  // namespace

int BenchMastrini(int argc, char** argv) {
  long righe = 1000000, righeConto = 100000;
  int ripetizioni = 3;
  std::string motore = "entrambi";
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto valore = [&] { return bench::ValoreOpzione(argc, argv, i); };
    if (a == "--righe") righe = std::atol(valore().c_str());
    else if (a == "--righe-conto") righeConto = std::atol(valore().c_str());
    else if (a == "--motore") motore = valore();
    else if (a == "--ripetizioni") ripetizioni = std::max(1, std::atoi(valore().c_str()));
    else {
      std::fprintf(stderr,
                   "uso: %s [--righe N] [--righe-conto M] [--motore sqlite|postgres|entrambi] [--ripetizioni R]\n"
                   "  --righe N          righe di prima nota (predefinito 1000000)\n"
                   "  --righe-conto M    di cui sul conto attivo (predefinito 100000)\n",
                   argc > 0 ? argv[0] : "mastrini");
      return 2;
    }
  }
  if (righe < 1 || righeConto < 0 || righeConto > righe) {
    std::fprintf(stderr, "righe non valide\n");
    return 2;
  }
  int rc = 0;
  try {
    for (bool pg : bench::Motori(motore)) rc |= Esegui(pg, righe, righeConto, ripetizioni);
  } catch (const ErroreDb& e) {
    std::fprintf(stderr, "errore del database %ld: %s\n", e.Numero(), e.Descrizione().c_str());
    return 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "errore: %s\n", e.what());
    return 1;
  }
  return rc;
}
