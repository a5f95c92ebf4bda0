// The journal book of a year over a large journal.
//
//   BenchLibroGiornale: [--righe N] [--motore sqlite|postgres|entrambi]
//
// N journal rows (1,000,000) of one year are written straight into an empty company with the
// shared writer, entries of two rows on two hundred sub-accounts, and the year's debit and
// credit kept as they are written. Then (a) the twelve trial prints of the year's journal book,
// with the peak memory of the process during them, against (b) a plain SELECT of the same rows
// in the same order. The rows the prints counted and their running totals are checked against
// the sums kept while writing.
// PostgreSQL comes from VORN_PG_HOST, VORN_PG_PORT, VORN_PG_USER, VORN_PG_PASSWORD, VORN_PG_DB;
// each run works in a schema of its own, dropped at the end.
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "bench/AziendaBench.h"
#include "bench/GiornaleBench.h"
#include "bench/Memoria.h"
#include "bench/bench.h"
#include "cli/LibroGiornale.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"
#include "frame/Globali.h"
#include "frame/clsDB.h"
#include "ledger/clsLibroGiornale.h"

using namespace vorn;

namespace {

using bench::Orologio;
using bench::Secondi;
namespace fs = std::filesystem;

constexpr int kAnno = 2024;

struct Attesi {
  Importo dare, avere;
};

// The company: a name, two hundred sub-accounts, a causal, the book's counters at zero, and the
// journal.
Attesi Carica(Connessione& cn, long righe) {
  cn.Esegui("INSERT INTO [Tabella Azienda] ([Ragione Sociale], [Partita IVA]) VALUES ('Prova prestazioni', "
            "'01234567890')");
  cn.Esegui("INSERT INTO [Progressivi Azienda Vorn] ([NumRigaLibroGiornale], [ProgDareLibroGiornale], "
            "[ProgAvereLibroGiornale]) VALUES (0, 0, 0)");
  cn.Esegui("INSERT INTO [Causali Contabili] ([CodiceCausale], [DescrizioneCausale]) VALUES ('001', 'Giroconto')");
  for (int c = 0; c < 200; ++c)
    cn.Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) VALUES ('60', '01', ?, ?)",
              {Valore(Format(Valore(c), "000")), Valore("Conto di prova " + std::to_string(c))});
  std::mt19937 rnd(11);
  const Data inizio = *Data::Crea(kAnno, 1, 1);
  // Entries in date order, as they are posted: the day grows with the row.
  Attesi a;
  Importo importo;
  bench::ScriviGiornale(cn, righe, [&](long i, bench::RigaGiornale& r) {
    r.data = inizio.AggiungiGiorni(static_cast<int64_t>(i * 366 / std::max(1L, righe)));
    r.numero = Format(Valore(static_cast<long long>(i / 2 + 1)), "000000");
    r.riga = i % 2 == 0 ? "001" : "002";
    r.dare = i % 2 == 0;
    r.conto = "6001" + Format(Valore(static_cast<long long>(rnd() % 200)), "000");
    if (r.dare) importo = Importo::DaRaw(static_cast<int64_t>(rnd() % 10000000) * 100);
    r.importo = importo;
    (r.dare ? a.dare : a.avere) += importo;
  });
  return a;
}

// The plain read: the columns the print reads, of the rows of a month, in the print's order.
long LetturaSemplice(Connessione& cn, const Data& da, const Data& al) {
  long n = 0;
  cn.Scorri("SELECT P.[DataRegistrazione], P.[NumeroRegistrazione], P.[TipoRigaIvaNormale], P.[NumRigaAVideo], "
            "P.[DareAvere], P.[ContoPrimaNota], P.[CodClienteFornitore], P.[ImportoMovimento], P.[DataDocumento], "
            "P.[NumeroDocumento], P.[SerieDocumento], P.[NumeroDiProtocollo], P.[IndClienteFornitore], "
            "P.[CodiceCausale], P.[DescrizioneSupplem] FROM [Prima Nota] P WHERE P.[DataRegistrazione] >= ? AND "
            "P.[DataRegistrazione] <= ? AND COALESCE(substr(P.[Stringa10indicatori], 2, 1), '') <> 'G' ORDER BY "
            "P.[DataRegistrazione], P.[NumeroRegistrazione], COALESCE(P.[TipoRigaIvaNormale], ''), "
            "COALESCE(P.[NumRigaAVideo], ''), P.[DareAvere]",
            {Valore(da), Valore(al)}, [&](const std::vector<Colonna>&, const std::vector<Valore>&) {
              ++n;
              return true;
            });
  return n;
}

int Esegui(bool pg, long righe) {
  const char* motore = pg ? "postgres" : "sqlite";
  bench::AziendaBench az(pg, "libro_giornale");
  auto t0 = Orologio::now();
  Attesi attesi = Carica(*az.cn, righe);
  double carico = Secondi(t0);
  std::printf("%-8s caricamento di %ld righe del %d: %.1f s\n", motore, righe, kAnno, carico);
  if (pg) az.cn->Esegui("ANALYZE");
  std::fflush(stdout);
  clsDB db;
  db.cn = az.cn;
  db.ImpostaVariabiliGlobaliServer();
  const std::string cartella = CartellaStampe() + "/LibroGiornale";
  CreaCartella(cartella);

  std::vector<std::pair<Data, Data>> mesi;
  for (int m = 1; m <= 12; ++m) {
    Data da = *Data::Crea(kAnno, m, 1);
    mesi.push_back({da, da.AggiungiMesi(1).AggiungiGiorni(-1)});
  }
  // A first read, not timed: both measures start from the same warm caches.
  for (const auto& [da, al] : mesi) LetturaSemplice(*az.cn, da, al);

  // (a) The twelve trial prints.
  ArgomentiLibroGiornale base = cli::ArgomentiLibroGiornaleAzienda(az.cn);
  base.avar_Anno = kAnno;
  bench::AzzeraPiccoMemoria();
  const long rssPrima = bench::MemoriaKb();
  long righeStampate = 0;
  uintmax_t byte = 0;
  Importo dare, avere;
  std::clock_t c0 = std::clock();
  t0 = Orologio::now();
  for (int m = 1; m <= 12; ++m) {
    ArgomentiLibroGiornale a = base;
    a.avar_Mese = m;
    a.nomeFile = cartella + "/LibroGiornale_" + std::to_string(m) + ".txt";
    clsLibroGiornale libro;
    libro.cn = az.cn;
    if (!libro.StampaLibroGiornale(a)) {
      std::fprintf(stderr, "%s: libro giornale del mese %d non completato\n", motore, m);
      return 1;
    }
    // A trial starts each month from the book's counters (zero here): its totals are the month's.
    righeStampate += libro.Esito().righe;
    dare += libro.Esito().dare;
    avere += libro.Esito().avere;
    byte += fs::file_size(a.nomeFile);
    fs::remove(a.nomeFile);
  }
  const double tStampe = Secondi(t0);
  const double cStampe = static_cast<double>(std::clock() - c0) / CLOCKS_PER_SEC;
  const long picco = bench::PiccoMemoriaKb(), rssDopo = bench::MemoriaKb();

  // (b) The plain read of the same rows.
  long righeLette = 0;
  c0 = std::clock();
  t0 = Orologio::now();
  for (const auto& [da, al] : mesi) righeLette += LetturaSemplice(*az.cn, da, al);
  const double tLettura = Secondi(t0);
  const double cLettura = static_cast<double>(std::clock() - c0) / CLOCKS_PER_SEC;

  int errori = 0;
  std::string esito = "righe e totali esatti";
  if (righeStampate != righe || dare != attesi.dare || avere != attesi.avere) {
    ++errori;
    esito = "ERRORE: " + std::to_string(righeStampate) + " righe, dare " + dare.TestoPunto() + " invece di " +
            attesi.dare.TestoPunto() + ", avere " + avere.TestoPunto() + " invece di " + attesi.avere.TestoPunto();
  }
  std::printf("%-8s (a) 12 stampe di prova del libro giornale: %8.2f s (processore %.2f s), %ld righe, %ju kB; %s\n",
              motore, tStampe, cStampe, righeStampate, byte / 1024, esito.c_str());
  std::printf("%-8s (b) SELECT ordinata delle stesse righe:     %8.2f s (processore %.2f s), %ld righe\n", motore,
              tLettura, cLettura, righeLette);
  std::printf("%-8s rapporto (a)/(b): %.1f (processore %.1f)   memoria: %ld kB prima delle stampe, picco %ld kB (+%ld kB), %ld kB dopo\n",
              motore, tStampe / std::max(tLettura, 1e-9), cStampe / std::max(cLettura, 1e-9), rssPrima, picco, picco - rssPrima, rssDopo);
  std::fflush(stdout);
  std::error_code ec;
  fs::remove_all(cartella, ec);
  return errori ? 1 : 0;
}

}  // namespace

int BenchLibroGiornale(int argc, char** argv) {
  long righe = 1000000;
  std::string motore = "entrambi";
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto valore = [&] { return bench::ValoreOpzione(argc, argv, i); };
    if (a == "--righe") righe = std::atol(valore().c_str());
    else if (a == "--motore") motore = valore();
    else {
      std::fprintf(stderr,
                   "uso: %s [--righe N] [--motore sqlite|postgres|entrambi]\n"
                   "  --righe N          righe di prima nota dell'anno (predefinito 1000000)\n",
                   argc > 0 ? argv[0] : "libro-giornale");
      return 2;
    }
  }
  if (righe < 2 || (motore != "sqlite" && motore != "postgres" && motore != "entrambi")) {
    std::fprintf(stderr, "argomenti non validi\n");
    return 2;
  }
  int rc = 0;
  try {
    for (bool pg : bench::Motori(motore)) rc |= Esegui(pg, righe);
  } catch (const ErroreDb& e) {
    std::fprintf(stderr, "errore del database %ld: %s\n", e.Numero(), e.Descrizione().c_str());
    rc = 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "errore: %s\n", e.what());
    rc = 1;
  }
  return rc;
}
