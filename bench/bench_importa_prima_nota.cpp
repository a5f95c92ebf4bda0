// The import of a journal from the exchange file against posting the same rows one by one.
//
//   BenchImportaPrimaNota: [--righe N] [--motore sqlite|postgres|entrambi]
//
// N journal rows (1,000,000), entries of twelve rows on two hundred sub-accounts, are written
// straight into a company with the shared writer and exported to the journal's exchange file.
// Then, each into a fresh company with the same chart: (a) the reference, the same rows saved
// one by one through clsPrimaNota::SalvaRecord in one transaction, balances moving with every
// row; (b) the import of the file (clsExportVorn::ImportPrimaNota: the whole file checked, then
// every row through SalvaRecord in one transaction). The ratio b/a is the figure; the imported
// company's rows are counted and its balances checked against its journal.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <unistd.h>

#include "bench/AziendaBench.h"
#include "bench/GiornaleBench.h"
#include "bench/bench.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "interchange/clsExportVorn.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsPrimaNota.h"

using namespace vorn;

namespace {

using bench::Orologio;
using bench::Secondi;

constexpr int kRigheRegistrazione = 12;

void Piano(Connessione& cn) {
  Atomico a(cn);
  cn.Esegui("INSERT INTO [Causali Contabili] ([CodiceCausale], [DescrizioneCausale], [OperativitaContabile]) "
            "VALUES ('001', 'Giroconto', '0')");
  for (int c = 0; c < 200; ++c)
    cn.Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) VALUES ('60', '01', ?, ?)",
              {Valore(Format(Valore(c), "000")), Valore("Conto di prova " + std::to_string(c))});
  a.Conferma();
}

// Row i of the journal: twelve rows an entry, six in debit and six in credit of the same sums.
void Genera(long i, bench::RigaGiornale& r) {
  static std::mt19937 rnd(7);
  static Importo importi[kRigheRegistrazione / 2];
  const long k = i % kRigheRegistrazione;
  if (i == 0) rnd = std::mt19937(7);  // the same rows on every pass
  r.data = Data::Crea(2024, 1, 1)->AggiungiGiorni(static_cast<int64_t>(i / kRigheRegistrazione % 366));
  r.numero = Format(Valore(static_cast<long long>(i / kRigheRegistrazione + 1)), "00000");
  r.riga = Format(Valore(static_cast<long long>(k + 1)), "000");
  r.dare = k < kRigheRegistrazione / 2;
  r.conto = "6001" + Format(Valore(static_cast<long long>(rnd() % 200)), "000");
  if (r.dare) importi[k] = Importo::DaRaw(static_cast<int64_t>(rnd() % 10000000) * 100);
  r.importo = importi[k % (kRigheRegistrazione / 2)];
  r.indicatori = "          ";
}

int Esegui(bool pg, long righe) {
  const char* motore = pg ? "postgres" : "sqlite";
  const std::string file = std::filesystem::temp_directory_path().string() + "/vorn_bench_primanota_" +
                           std::to_string(getpid()) + ".txt";
  double esportazione = 0;
  {
    bench::AziendaBench az(pg, "import_origine");
    Piano(*az.cn);
    auto t0 = Orologio::now();
    bench::ScriviGiornale(*az.cn, righe, Genera);
    std::printf("%-8s caricamento di %ld righe: %.1f s\n", motore, righe, Secondi(t0));
    clsExportVorn ex;
    ex.cn = az.cn;
    t0 = Orologio::now();
    if (!ex.ExportPrimaNota(nullptr, file, kSeparatoreVorn)) {
      std::fprintf(stderr, "%s: esportazione non riuscita: %s\n", motore, ex.Errore().c_str());
      return 1;
    }
    esportazione = Secondi(t0);
  }
  std::printf("%-8s esportazione: %.1f s (%.0f righe/s)\n", motore, esportazione, righe / esportazione);
  std::fflush(stdout);

  // (a) The reference: SalvaRecord row by row, one transaction.
  double riferimento = 0;
  {
    bench::AziendaBench az(pg, "import_riferimento");
    Piano(*az.cn);
    clsPrimaNota pn;
    pn.cn = az.cn;
    pn.UnitaRecuperabili = false;
    auto t0 = Orologio::now();
    Atomico t(*az.cn);
    for (long i = 0; i < righe; ++i) {
      bench::RigaGiornale r;
      Genera(i, r);
      RecordValori v{{"DataRegistrazione", Valore(r.data)}, {"NumeroRegistrazione", Valore(r.numero)},
                     {"TipoRigaIvaNormale", Valore("")},     {"NumRigaAVideo", Valore(r.riga)},
                     {"DareAvere", Valore(r.dare ? "D" : "A")}, {"ContoPrimaNota", Valore(r.conto)},
                     {"DataCompetenza", Valore(r.data)},     {"CodiceCausale", Valore(r.causale)},
                     {"DescrizioneSupplem", Valore(r.descrizione)}, {"ImportoMovimento", Valore(r.importo)},
                     {"Stringa10indicatori", Valore(r.indicatori)}};
      bool cancel = false;
      if (!pn.SalvaRecord(v, Valore("bench"), 0, cancel)) {
        std::fprintf(stderr, "%s: riga %ld non salvata\n", motore, i);
        return 1;
      }
    }
    t.Conferma();
    riferimento = Secondi(t0);
  }
  std::printf("%-8s (a) SalvaRecord riga per riga, una transazione: %.1f s (%.0f righe/s)\n", motore, riferimento,
              righe / riferimento);
  std::fflush(stdout);

  // (b) The import of the file.
  double importazione = 0;
  bool allineati = false;
  long contate = 0;
  {
    bench::AziendaBench az(pg, "import_destinazione");
    Piano(*az.cn);
    clsExportVorn im;
    im.cn = az.cn;
    im.ChiediConferma = false;
    auto t0 = Orologio::now();
    if (!im.ImportPrimaNota(nullptr, file, kSeparatoreVorn, "", "", Valore("bench"), 0)) {
      std::fprintf(stderr, "%s: importazione non riuscita: %s\n", motore, im.Errore().c_str());
      return 1;
    }
    importazione = Secondi(t0);
    contate = NullToZeroLng(az.cn->Scalare("SELECT COUNT(*) FROM [Prima Nota]"));
    allineati = VerificaSaldi(*az.cn).empty();
  }
  std::filesystem::remove(file);
  std::printf("%-8s (b) importazione del file: %.1f s (%.0f righe/s); rapporto b/a %.2f; %ld righe, %s\n", motore,
              importazione, righe / importazione, importazione / riferimento, contate,
              allineati ? "saldi allineati alla prima nota" : "SALDI NON ALLINEATI");
  return contate == righe && allineati ? 0 : 1;
}

}  // namespace

int BenchImportaPrimaNota(int argc, char** argv) {
  long righe = 1000000;
  std::string motore = "sqlite";
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    if (a == "--righe") righe = std::atol(bench::ValoreOpzione(argc, argv, i).c_str());
    else if (a == "--motore") motore = bench::ValoreOpzione(argc, argv, i);
    else {
      std::fprintf(stderr, "uso: vorn_bench importa-prima-nota [--righe N] [--motore sqlite|postgres|entrambi]\n");
      return 2;
    }
  }
  if (righe / kRigheRegistrazione + 1 > 99999) {
    std::fprintf(stderr, "al massimo %d righe: il file ha numeri di registrazione di cinque cifre\n",
                 99999 * kRigheRegistrazione);
    return 2;
  }
  int rc = 0;
  for (bool pg : bench::Motori(motore)) rc |= Esegui(pg, righe);
  return rc;
}
