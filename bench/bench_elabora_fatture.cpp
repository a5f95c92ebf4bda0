// Invoice posting against the engine's own limit.
//
//   vorn_bench elabora-fatture [--documenti N] [--seme S] [--motore sqlite|postgres|entrambi]
//
// On each engine: a company from the standard model whose [Fatture] holds N printed sales
// documents of three lines at 22% and 10% (RiempiFattureEsempio, instalments included), posted
// by clsElaboraFatture::ElaboraFatture with one transaction per document (SQLite with
// synchronous=FULL: every commit durable; PostgreSQL durable when its server runs with fsync, as
// scripts/bench.sh starts it for this benchmark), a month at a time. After each month the journal
// rows that the posting wrote are read back and inserted, with one prepared INSERT each and
// one commit per document, into an empty company: the physical limit of the same work, timed
// in turns with the posting so that both meet the same load. Documents per second of both and
// the ratio; the balances are checked against the journal after the posting.
// N defaults to 10,000; --documenti 500 is a quick try. PostgreSQL comes from VORN_PG_HOST,
// VORN_PG_PORT, VORN_PG_USER, VORN_PG_PASSWORD, VORN_PG_DB; each run works in a schema of its
// own, dropped at the end.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bench/AziendaBench.h"
#include "bench/bench.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Catalogo.h"
#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "frame/clsDB.h"
#include "interchange/ModelloStandard.h"
#include "ledger/VerificaSaldi.h"
#include "receivables/FattureEsempio.h"
#include "receivables/clsElaboraFatture.h"

using namespace vorn;

namespace {

using bench::Orologio;
using bench::Secondi;

class FormProgresso : public IForm {
 public:
  void msgbar(const std::string& t) override {
    auto ora = Orologio::now();
    if (std::chrono::duration<double>(ora - ultima_).count() < 5.0) return;
    ultima_ = ora;
    std::fprintf(stderr, "  %s\n", t.c_str());
  }

 private:
  Orologio::time_point ultima_ = Orologio::now();
};

struct Misura {
  long documenti = 0, registrazioni = 0, righe = 0;
  double riempimento = 0, posting = 0, grezzo = 0;
};

std::string Colonne(const TabellaCatalogo& t) {
  std::string s;
  for (const auto& c : t.colonne) s += (s.empty() ? "[" : ", [") + c.nome + "]";
  return s;
}

// The journal rows of each document registered in [dal, al] (by series and number), every
// column in the catalogue's order, typed as the column.
std::vector<std::vector<Parametri>> RigheDocumenti(Connessione& cn, const Data& dal, const Data& al) {
  const TabellaCatalogo& t = *TabellaCatalogoDi("Prima Nota");
  size_t iSerie = 0, iNumero = 0;
  for (size_t i = 0; i < t.colonne.size(); ++i) {
    if (t.colonne[i].nome == "SerieDocumento") iSerie = i;
    if (t.colonne[i].nome == "NumeroDocumento") iNumero = i;
  }
  std::vector<std::vector<Parametri>> documenti;
  std::pair<std::string, int64_t> ultimo{"\x01", -1};
  cn.Scorri("SELECT " + Colonne(t) +
                " FROM [Prima Nota] WHERE [DataRegistrazione] BETWEEN ? AND ? ORDER BY [SerieDocumento], "
                "[NumeroDocumento], [NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo]",
            {Valore(dal), Valore(al)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
              std::pair<std::string, int64_t> chiave{r[iSerie].TestoTrim(), NullToZeroLng(r[iNumero])};
              if (chiave != ultimo) {
                documenti.emplace_back();
                ultimo = chiave;
              }
              Parametri p;
              p.reserve(r.size());
              for (size_t i = 0; i < r.size(); ++i) p.push_back(Coerci(r[i], t.colonne[i].tipo));
              documenti.back().push_back(std::move(p));
              return true;
            });
  return documenti;
}

// The posting and the raw insert take turns, a month each, so that a machine that gets busier
// or quieter during the run weighs on both alike.
Misura MisuraMotore(bool pg, long n, uint64_t seme) {
  Misura m;
  bench::AziendaBench az(pg, "fatture");
  bench::AziendaBench grezza(pg, "fatture_grezzo");
  CaricaModello(*az.cn, "standard");
  {
    clsDB db;
    db.cn = az.cn;
    db.ImpostaVariabiliGlobaliServer();
  }
  OpzioniFattureEsempio o;
  o.documenti = n;
  o.seme = seme;
  o.clienti = 200;
  auto t0 = Orologio::now();
  EsitoFattureEsempio fatture = RiempiFattureEsempio(*az.cn, o);
  m.riempimento = Secondi(t0);

  clsTabRiferimenti rif;
  rif.cn = az.cn;
  ArgomentiElaboraFatture a;
  if (!RiferimentiElaboraFatture(rif, a)) throw std::runtime_error("riferimenti contabili mancanti");
  FormProgresso form;
  a.objFormAttiva = &form;
  a.avar_DataContabilizzazione = Valore(fatture.al);
  a.bool_ContabilizzaDataFattura = true;
  a.clientID = Valore("bench");
  a.hWnd = 1;
  clsElaboraFatture ef;
  ef.cn = az.cn;

  const TabellaCatalogo& t = *TabellaCatalogoDi("Prima Nota");
  std::string segnaposti;
  for (size_t i = 0; i < t.colonne.size(); ++i) segnaposti += i ? ", ?" : "?";
  const std::string sql = "INSERT INTO [Prima Nota] (" + Colonne(t) + ") VALUES (" + segnaposti + ")";

  long documentiLetti = 0;
  for (int mese = fatture.dal.Mese(); mese <= fatture.al.Mese(); ++mese) {
    const Data dal = *Data::Crea(fatture.dal.Anno(), mese, 1);
    const Data al = *Data::Crea(dal.Anno(), mese, Data::GiorniNelMese(dal.Anno(), mese));
    a.avar_DaData = Valore(dal);
    a.avar_AData = Valore(al);
    t0 = Orologio::now();
    EsitoElaboraFatture esito = ef.ElaboraFatture(a);
    m.posting += Secondi(t0);
    // A failure is thrown, so that the companies are removed on the way out.
    if (esito.Scartati != 0)
      throw std::runtime_error(std::to_string(esito.Scartati) + " documenti scartati" +
                               (esito.Errori.empty() ? std::string() : ": " + esito.Errori.front()));
    m.documenti += esito.Documenti;
    m.registrazioni += esito.Registrazioni;

    auto righe = RigheDocumenti(*az.cn, dal, al);
    documentiLetti += static_cast<long>(righe.size());
    for (const auto& d : righe) m.righe += static_cast<long>(d.size());
    t0 = Orologio::now();
    for (const auto& documento : righe) {
      grezza.cn->BeginTrans();
      for (const auto& r : documento) grezza.cn->Esegui(sql, r);
      grezza.cn->CommitTrans();
    }
    m.grezzo += Secondi(t0);
  }
  if (m.documenti != n || documentiLetti != n)
    throw std::runtime_error("contabilizzati " + std::to_string(m.documenti) + " documenti su " + std::to_string(n) +
                             ", righe di prima nota di " + std::to_string(documentiLetti));
  auto differenze = VerificaSaldi(*az.cn);
  if (!differenze.empty()) throw std::runtime_error("saldi non allineati: " + DescriviDifferenza(differenze[0]));
  return m;
}

}  // namespace

int BenchElaboraFatture(int argc, char** argv) {
  long documenti = 10000;
  uint64_t seme = 1;
  std::string motore = "entrambi";
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    bool valore = i + 1 < argc;
    if (a == "--documenti" && valore) documenti = std::atol(argv[++i]);
    else if (a == "--seme" && valore) seme = std::strtoull(argv[++i], nullptr, 10);
    else if (a == "--motore" && valore) motore = argv[++i];
    else {
      std::fprintf(stderr,
                   "uso: vorn_bench elabora-fatture [--documenti N] [--seme S] [--motore sqlite|postgres|entrambi]\n"
                   "  --documenti N   fatture da contabilizzare (predefinito 10000; 500 per una prova rapida)\n");
      return 2;
    }
  }
  if (documenti < 1) {
    std::fprintf(stderr, "--documenti vuole un numero positivo\n");
    return 2;
  }
  const std::vector<bool> motori = bench::Motori(motore);
  HostSilenzioso host;
  ImpostaHost(&host);
  int esito = 0;
  try {
    for (bool pg : motori) {
      Misura m = MisuraMotore(pg, documenti, seme);
      double vPosting = m.documenti / m.posting, vGrezzo = m.documenti / m.grezzo;
      std::printf("%-8s elabora-fatture %ld documenti (%ld registrazioni, %ld righe, %.2f righe/documento; "
                  "preparati in %.1f s): ElaboraFatture %7.0f documenti/s (%6.2f s), INSERT preparato %7.0f "
                  "documenti/s (%6.2f s), %.0f%% del grezzo\n",
                  pg ? "postgres" : "sqlite", m.documenti, m.registrazioni, m.righe,
                  static_cast<double>(m.righe) / static_cast<double>(m.documenti), m.riempimento, vPosting,
                  m.posting, vGrezzo, m.grezzo, 100.0 * vPosting / vGrezzo);
      bool minimo = pg || vPosting >= 1000.0, meta = vPosting >= vGrezzo / 2;
      if (!minimo || !meta)
        std::printf("%-8s   obiettivo mancato:%s%s\n", pg ? "postgres" : "sqlite",
                    minimo ? "" : " meno di 1000 documenti/s;", meta ? "" : " meno della metà del grezzo");
      std::fflush(stdout);
    }
  } catch (const std::exception& e) {
    std::fprintf(stderr, "errore: %s\n", e.what());
    esito = 1;
  }
  ImpostaHost(nullptr);
  return esito;
}
