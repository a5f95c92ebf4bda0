// Posting speed of the journal against the engine's own limit, and the time of a full rebuild.
//
//   vorn_bench [--righe N] [--motore sqlite|postgres|entrambi] [--transazioni unica|registrazione|entrambe]
//              [--ricostruzione RIGHE]
//   vorn_bench mastrini [...]   (the ledger cards' own benchmark)
//   vorn_bench registri-iva [...]   (the VAT registers of a year)
//   vorn_bench libro-giornale [...]   (the journal book of a year)
//   vorn_bench elabora-fatture [...]   (invoice posting, one durable commit per document)
//   vorn_bench bilancio [...]   (the balance sheet and the trial balance)
//
// Posting: N sales entries of three rows each (client, revenue, VAT) saved one row at a time
// through clsPrimaNota::SalvaRecord, balances moving with every row, inside one transaction (or
// one transaction per entry, as invoice posting commits); then the same rows into an empty
// company with one prepared INSERT each, the physical limit, under the same transactions.
// Rebuild: RIGHE journal rows written straight into an empty company, then the balances zeroed
// and rebuilt by clsRicosContabile, with the progress line and the peak memory of the run.
// PostgreSQL comes from VORN_PG_HOST, VORN_PG_PORT, VORN_PG_USER, VORN_PG_PASSWORD, VORN_PG_DB;
// each run works in a schema of its own, dropped at the end.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "frame/Catalogo.h"
#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "frame/Host.h"
#include "frame/Schema.h"
#include "bench/AziendaBench.h"
#include "bench/Memoria.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsPrimaNota.h"
#include "ledger/clsRicosContabile.h"

#if __has_include("bench/bench.h")
#include "bench/bench.h"
#define VORN_ALTRI_BENCH 1
#endif

using namespace vorn;

namespace {

using Azienda = bench::AziendaBench;
using bench::Orologio;
using bench::Secondi;
using bench::Env;

void Anagrafiche(Connessione& cn) {
  Atomico a(cn);
  for (const char* c : {"1201001", "2501001", "4001001", "4001002", "4001003", "4001004"})
    cn.Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) VALUES (?, ?, ?, ?)",
              {Valore(std::string(c, 2)), Valore(std::string(c + 2, 2)), Valore(std::string(c + 4)), Valore(c)});
  cn.Esegui("INSERT INTO [Causali Contabili] ([CodiceCausale], [OperativitaContabile], [TipoRegistroIva]) "
            "VALUES ('V01', '0', '1')");
  a.Conferma();
}

// The three rows of sales entry i, as the posting of an invoice writes them.
std::vector<RecordValori> Fattura(int i) {
  char numero[16], cliente[16];
  std::snprintf(numero, sizeof numero, "%05d", i + 1);
  std::snprintf(cliente, sizeof cliente, "%d", 1 + i % 500);
  Importo imponibile = Importo::DaRaw(100000 + static_cast<int64_t>(i % 9973) * 137);
  Importo iva = Importo::DaRaw(imponibile.Raw() * 22 / 100 / 100 * 100);
  Data d = *Data::Crea(2024, 1 + i % 12, 1 + i % 28);
  auto riga = [&](const char* tipo, const char* lato, const std::string& conto, const char* ind, const char* cod,
                  Importo importo) {
    return RecordValori{{"DataRegistrazione", Valore(d)},
                        {"NumeroRegistrazione", Valore(numero)},
                        {"TipoRigaIvaNormale", Valore(tipo)},
                        {"NumRigaAVideo", Valore("001")},
                        {"DareAvere", Valore(lato)},
                        {"ContoPrimaNota", Valore(conto)},
                        {"IndClienteFornitore", Valore(ind)},
                        {"CodClienteFornitore", Valore(cod)},
                        {"DataCompetenza", Valore(d)},
                        {"TipoRegistroIva", Valore("1")},
                        {"NumRegistroIva", Valore("01")},
                        {"DataDocumento", Valore(d)},
                        {"SerieDocumento", Valore("")},
                        {"NumeroDocumento", Valore(static_cast<long long>(i + 1))},
                        {"CodiceCausale", Valore("V01")},
                        {"DescrizioneSupplem", Valore("Fattura di vendita")},
                        {"ImportoMovimento", Valore(importo)},
                        {"Imponibile", Valore(*tipo ? imponibile : Importo())},
                        {"CodiceIva", Valore(*tipo ? "22" : "")},
                        {"IndicatoreCliFor", Valore("C")},
                        {"CodiceCliFor", Valore(cliente)},
                        {"TotaleDocumento", Valore(imponibile + iva)},
                        {"Stringa10indicatori", Valore("")},
                        {"Cambio", Valore(1.0)},
                        {"DataCompetenzaIVA", Valore(d)}};
  };
  return {riga("", "D", "1201001", "C", cliente, imponibile + iva),
          riga("", "A", "400100" + std::to_string(1 + i % 4), "", "", imponibile),
          riga("I", "A", "2501001", "", "", iva)};
}

// The whole row, every column in the catalogue's order, as SalvaRecord stores it.
Parametri RigaCompleta(const RecordValori& r) {
  const auto& cols = TabellaCatalogoDi("Prima Nota")->colonne;
  Parametri p;
  p.reserve(cols.size());
  for (const auto& c : cols) {
    if (c.nome == "Stringa10indicatori") p.push_back(Valore("  0       "));
    else if (c.nome == "clientName") p.push_back(Valore("bench"));
    else if (c.nome == "hWnd") p.push_back(Valore(1));
    else {
      auto it = r.find(c.nome);
      p.push_back(Coerci(it == r.end() ? Valore() : it->second, c.tipo));
    }
  }
  return p;
}

std::string SqlInsert() {
  std::string cols, vals;
  for (const auto& c : TabellaCatalogoDi("Prima Nota")->colonne) {
    cols += (cols.empty() ? "[" : ", [") + c.nome + "]";
    vals += vals.empty() ? "?" : ", ?";
  }
  return "INSERT INTO [Prima Nota] (" + cols + ") VALUES (" + vals + ")";
}

using bench::AzzeraPiccoMemoria;
using bench::MemoriaKb;
using bench::PiccoMemoriaKb;

// unica: every entry in one transaction; registrazione: one transaction per entry, as the
// posting of invoices does.
void Registrazione(bool pg, int n, bool unica) {
  const char* motore = pg ? "postgres" : "sqlite";
  std::vector<std::vector<RecordValori>> fatture;
  fatture.reserve(static_cast<size_t>(n));
  for (int i = 0; i < n; ++i) fatture.push_back(Fattura(i));
  const double righe = 3.0 * n;

  double tPosting;
  {
    Azienda az(pg, "posting");
    Anagrafiche(*az.cn);
    clsPrimaNota pn;
    pn.cn = az.cn;
    // One transaction for the whole run is a bulk poster's: a failed row undoes the batch.
    pn.UnitaRecuperabili = !unica;
    bool cancel = false;
    auto t0 = Orologio::now();
    if (unica) az.cn->BeginTrans();
    for (const auto& f : fatture) {
      if (!unica) az.cn->BeginTrans();
      for (const auto& r : f) pn.SalvaRecord(r, Valore("bench"), 1, cancel);
      if (!unica) az.cn->CommitTrans();
    }
    if (unica) az.cn->CommitTrans();
    tPosting = Secondi(t0);
    auto differenze = VerificaSaldi(*az.cn);
    if (!differenze.empty()) {
      std::fprintf(stderr, "saldi non allineati: %s\n", DescriviDifferenza(differenze[0]).c_str());
      std::exit(1);
    }
  }
  double tGrezzo;
  {
    Azienda az(pg, "grezzo");
    Anagrafiche(*az.cn);
    std::string sql = SqlInsert();
    auto t0 = Orologio::now();
    if (unica) az.cn->BeginTrans();
    for (const auto& f : fatture) {
      if (!unica) az.cn->BeginTrans();
      for (const auto& r : f) az.cn->Esegui(sql, RigaCompleta(r));
      if (!unica) az.cn->CommitTrans();
    }
    if (unica) az.cn->CommitTrans();
    tGrezzo = Secondi(t0);
  }
  double vPosting = righe / tPosting, vGrezzo = righe / tGrezzo;
  std::printf("%-8s %-12s %7d registrazioni (%8.0f righe): SalvaRecord %9.0f righe/s (%6.2f s), INSERT preparato %9.0f "
              "righe/s (%6.2f s), rapporto 1:%.2f (%.0f%%)\n",
              motore, unica ? "1 transaz." : "transaz./reg.", n, righe, vPosting, tPosting, vGrezzo, tGrezzo, vGrezzo / vPosting, 100.0 * vPosting / vGrezzo);
  std::fflush(stdout);
}

class FormProgresso : public IForm {
 public:
  void msgbar(const std::string& t) override {
    ++n;
    auto ora = Orologio::now();
    if (std::chrono::duration<double>(ora - ultima).count() < 1.0) return;
    ultima = ora;
    std::fprintf(stderr, "  %s  [%ld righe, RSS %ld kB]\n", t.c_str(), n, MemoriaKb());
  }
  long n = 0;
  Orologio::time_point ultima = Orologio::now();
};

void Ricostruzione(bool pg, long righe) {
  const char* motore = pg ? "postgres" : "sqlite";
  Azienda az(pg, "ricos");
  Anagrafiche(*az.cn);
  // The journal, written straight, 99 rows a statement: n/3 entries of three rows.
  {
    const int perIstruzione = 99;
    std::string sql = SqlInsert(), segnaposti = sql.substr(sql.find(" VALUES ") + 8);
    std::string sqlBlocco = sql;
    for (int k = 1; k < perIstruzione; ++k) sqlBlocco += ", " + segnaposti;
    auto t0 = Orologio::now();
    az.cn->BeginTrans();
    Parametri blocco;
    int inBlocco = 0;
    for (long i = 0; 3 * i < righe; ++i) {
      char numero[24];
      std::snprintf(numero, sizeof numero, "%07ld", i + 1);
      for (const auto& r : Fattura(static_cast<int>(i % 99999))) {
        Parametri p = RigaCompleta(r);
        p[1] = Valore(numero);
        blocco.insert(blocco.end(), p.begin(), p.end());
        if (++inBlocco == perIstruzione) {
          az.cn->Esegui(sqlBlocco, blocco);
          blocco.clear();
          inBlocco = 0;
        }
      }
    }
    // The last rows one by one.
    if (inBlocco) {
      size_t w = blocco.size() / static_cast<size_t>(inBlocco);
      for (int k = 0; k < inBlocco; ++k)
        az.cn->Esegui(sql, Parametri(blocco.begin() + static_cast<long>(k * w), blocco.begin() + static_cast<long>((k + 1) * w)));
    }
    az.cn->CommitTrans();
    std::fprintf(stderr, "%s: %ld righe di prima nota scritte in %.1f s\n", motore, righe, Secondi(t0));
  }
  clsRicosContabile ricos;
  ricos.cn = az.cn;
  clsPrimaNota pn;
  pn.cn = az.cn;
  FormProgresso form;
  AzzeraPiccoMemoria();
  long rssPrima = MemoriaKb();
  auto t0 = Orologio::now();
  az.cn->BeginTrans();
  ricos.VerificaContiDoppiPianoConti();
  ricos.AzzeraSaldiPianoConti();
  ricos.AzzeraSaldiClientiFornitori();
  ricos.RicostruisciSaldiContabili(&form, pn);
  az.cn->CommitTrans();
  double t = Secondi(t0);
  long picco = PiccoMemoriaKb();
  std::printf("%-8s ricostruzione di %ld righe: %.2f s (%.0f righe/s), %ld msgbar, memoria %ld kB prima, picco %ld kB "
              "(+%ld kB)\n",
              motore, righe, t, righe / t, form.n, rssPrima, picco, picco - rssPrima);
  t0 = Orologio::now();
  auto differenze = VerificaSaldi(*az.cn);
  std::printf("%-8s verifica dei saldi sulla prima nota: %.2f s, %zu differenze\n", motore, Secondi(t0),
              differenze.size());
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
#ifdef VORN_ALTRI_BENCH
  // The other benchmarks by name: vorn_bench mastrini [options].
  if (argc > 1 && std::strcmp(argv[1], "mastrini") == 0) return BenchMastrini(argc - 1, argv + 1);
  if (argc > 1 && std::strcmp(argv[1], "registri-iva") == 0) return BenchRegistriIva(argc - 1, argv + 1);
  if (argc > 1 && std::strcmp(argv[1], "elabora-fatture") == 0) return BenchElaboraFatture(argc - 1, argv + 1);
  if (argc > 1 && std::strcmp(argv[1], "bilancio") == 0) return BenchBilancio(argc - 1, argv + 1);
  if (argc > 1 && std::strcmp(argv[1], "libro-giornale") == 0) return BenchLibroGiornale(argc - 1, argv + 1);
  if (argc > 1 && std::strcmp(argv[1], "importa-prima-nota") == 0) return BenchImportaPrimaNota(argc - 1, argv + 1);
#endif
  int righe = 10000;
  long ricostruzione = 0;
  std::string motore = "entrambi";
  std::string transazioni = "unica";
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto valore = [&] { return bench::ValoreOpzione(argc, argv, i); };
    if (a == "--righe") righe = std::atoi(valore().c_str());
    else if (a == "--motore") motore = valore();
    else if (a == "--ricostruzione") ricostruzione = std::atol(valore().c_str());
    else if (a == "--transazioni") transazioni = valore();
    else {
      std::fprintf(stderr,
                   "uso: vorn_bench [--righe N] [--motore sqlite|postgres|entrambi] [--transazioni unica|registrazione|entrambe]\n"
                   "                  [--ricostruzione RIGHE]\n"
                   "  --righe N           registrazioni di tre righe (predefinito 10000; 0 salta la prova)\n"
                   "  --ricostruzione R   righe di prima nota per la ricostruzione dei saldi (0 la salta)\n");
      return 2;
    }
  }
  HostSilenzioso host;
  ImpostaHost(&host);
  const std::vector<bool> motori = bench::Motori(motore);
  try {
    for (bool pg : motori) {
      if (righe > 0 && transazioni != "registrazione") Registrazione(pg, righe, true);
      if (righe > 0 && transazioni != "unica") Registrazione(pg, righe, false);
      if (ricostruzione > 0) Ricostruzione(pg, ricostruzione);
    }
  } catch (const std::exception& e) {
    std::fprintf(stderr, "errore: %s\n", e.what());
    return 1;
  }
  ImpostaHost(nullptr);
  return 0;
}
