// The VAT registers of a year over a large journal, against a plain read of the same rows.
//
//   vorn_bench registri-iva [--registrazioni N] [--seme S] [--motore sqlite|postgres|entrambi]
//                           [--cache CARTELLA]
//
// The company is the demo's (RiempiAziendaDemo from the standard model): N entries (320,000,
// about a million journal rows, a quarter of them VAT rows) written once into an SQLite file
// through the journal, then copied archive by archive into an empty company on each engine.
// With --cache the SQLite file is kept in that folder under its size and starting number and taken again
// by the next run of the same size (remove it when the demo or the standard model change).
//
// On each engine, for every month of the year: (a) the trial print of the sales and of the
// purchases register 01, 24 prints through clsRegistriIva; (b) a plain SELECT of the same VAT
// rows with their joins (Prima Nota left join Codici Iva and Causali Contabili, filtered by
// register kind, number and month) read whole through Connessione::Scorri. The ratio (a)/(b)
// and the peak memory of the prints against the memory before them.
// PostgreSQL comes from VORN_PG_HOST, VORN_PG_PORT, VORN_PG_USER, VORN_PG_PASSWORD, VORN_PG_DB;
// each run works in a schema of its own, dropped at the end.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bench/AziendaBench.h"
#include "bench/Memoria.h"
#include "bench/bench.h"
#include "cli/Demo.h"
#include "cli/RegistroIva.h"
#include "frame/Catalogo.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "frame/Globali.h"
#include "frame/Host.h"
#include "frame/Schema.h"
#include "frame/clsDB.h"
#include "interchange/ModelloStandard.h"
#include "vat/clsRegistriIva.h"

using namespace vorn;

namespace {

using bench::Orologio;
using bench::Secondi;
namespace fs = std::filesystem;

using bench::AzzeraPiccoMemoria;
using bench::MemoriaKb;
using bench::PiccoMemoriaKb;

class FormProgresso : public IForm {
 public:
  explicit FormProgresso(std::string cosa) : cosa_(std::move(cosa)) {}
  void msgbar(const std::string& t) override {
    auto ora = Orologio::now();
    if (std::chrono::duration<double>(ora - ultima_).count() < 5.0) return;
    ultima_ = ora;
    std::fprintf(stderr, "  %s: %s\n", cosa_.c_str(), t.c_str());
  }

 private:
  std::string cosa_;
  Orologio::time_point ultima_ = Orologio::now();
};

// The demo company in an SQLite file: from the cache when there, else made (and kept in the
// cache when there is one). Made under a name of its own and renamed when whole.
std::string AziendaSorgente(const std::string& cartella, const cli::OpzioniDemo& o) {
  const std::string file =
      cartella + "/registri_iva_" + std::to_string(o.registrazioni) + "_" + std::to_string(o.seme) + ".db";
  if (fs::exists(file)) {
    std::printf("azienda di prova da %s\n", file.c_str());
    return file;
  }
  const std::string parziale = file + ".parziale";
  for (const char* parte : {"", "-wal", "-shm"}) fs::remove(parziale + parte);
  auto t0 = Orologio::now();
  {
    OpzioniSqlite os;
    os.crea = true;
    auto cn = Connessione::ApriSqlite(parziale, os);
    CreaSchema(*cn);
    CaricaModello(*cn, "standard");
    G().ConnessioneGlobale = cn;
    G().IndSqlServer = "0";
    clsDB db;
    db.cn = cn;
    db.ImpostaVariabiliGlobaliServer();
    cn->Esegui("PRAGMA cache_size=-65536");
    FormProgresso form("demo");
    auto esito = cli::RiempiAziendaDemo(*cn, o, &form);
    G().ConnessioneGlobale.reset();
    cn->Close();
    std::printf("azienda di prova: %ld registrazioni, %ld righe di prima nota scritte in %.1f s\n", esito.registrazioni,
                esito.righe, Secondi(t0));
  }
  fs::rename(parziale, file);
  return file;
}

// Every archive of the catalogue from `da` into the empty company `a`, in INSERTs of many rows;
// the columns the database numbers itself are left to it.
long CopiaAzienda(Connessione& da, Connessione& a) {
  long righe = 0;
  for (const auto& t : TabelleCatalogo()) {
    std::vector<std::string> colonne;
    for (const auto& c : t.colonne)
      if (!c.automatico) colonne.push_back("[" + c.nome + "]");
    if (colonne.empty()) continue;
    std::string lista;
    for (const auto& c : colonne) lista += (lista.empty() ? "" : ", ") + c;
    std::string tupla = "(";
    for (size_t i = 0; i < colonne.size(); ++i) tupla += i ? ", ?" : "?";
    tupla += ")";
    const std::string testa = "INSERT INTO [" + t.nome + "] (" + lista + ") VALUES ";
    const size_t perIstruzione = std::clamp<size_t>(30000 / colonne.size(), 1, 500);
    std::string piena = testa;
    for (size_t i = 0; i < perIstruzione; ++i) piena += (i ? ", " : "") + tupla;
    Parametri p;
    size_t n = 0;
    auto svuota = [&] {
      if (n == 0) return;
      std::string sql = piena;
      if (n < perIstruzione) {
        sql = testa;
        for (size_t i = 0; i < n; ++i) sql += (i ? ", " : "") + tupla;
      }
      a.Esegui(sql, p);
      righe += static_cast<long>(n);
      p.clear();
      n = 0;
    };
    a.BeginTrans();
    a.Esegui("DELETE FROM [" + t.nome + "]");
    da.Scorri("SELECT " + lista + " FROM [" + t.nome + "]", {},
              [&](const std::vector<Colonna>&, const std::vector<Valore>& riga) {
                p.insert(p.end(), riga.begin(), riga.end());
                if (++n == perIstruzione) svuota();
                return true;
              });
    svuota();
    a.CommitTrans();
  }
  return righe;
}

// The VAT rows of one register and month with what a register reads of them, read whole.
long LetturaSemplice(Connessione& cn, const char* tipo, const Data& da, const Data& a) {
  long n = 0;
  cn.Scorri(
      "SELECT [Prima Nota].[DataCompetenza], [Prima Nota].[CodiceCausale], [Prima Nota].[NumeroRegistrazione], "
      "[Causali Contabili].[TipoCausale], [Prima Nota].[DataDocumento], [Prima Nota].[NumeroDocumento], "
      "[Prima Nota].[SerieDocumento], [Prima Nota].[TipoRegistroIva], [Prima Nota].[NumRegistroIva], "
      "[Prima Nota].[NumeroDiProtocollo], [Prima Nota].[TotaleDocumento], [Prima Nota].[Imponibile], "
      "[Prima Nota].[CodiceIva], [Codici Iva].[Aliquota], [Prima Nota].[ImportoMovimento], "
      "[Codici Iva].[Descrizione Iva], [Codici Iva].[Percentuale indetraibilità], "
      "[Prima Nota].[Stringa10indicatori] "
      "FROM [Prima Nota] LEFT JOIN [Codici Iva] ON [Codici Iva].[Codice Iva] = [Prima Nota].[CodiceIva] "
      "LEFT JOIN [Causali Contabili] ON [Causali Contabili].[CodiceCausale] = [Prima Nota].[CodiceCausale] "
      "WHERE [Prima Nota].[TipoRegistroIva] = ? AND [Prima Nota].[NumRegistroIva] = '01' AND "
      "[Prima Nota].[TipoRigaIvaNormale] = 'I' AND [Prima Nota].[DataCompetenzaIVA] BETWEEN ? AND ? "
      "ORDER BY [Prima Nota].[NumeroDocumento], [Prima Nota].[SerieDocumento]",
      {Valore(tipo), Valore(da), Valore(a)}, [&](const std::vector<Colonna>&, const std::vector<Valore>&) {
        ++n;
        return true;
      });
  return n;
}

const char* const kTipi[] = {registro_iva::kVendite, registro_iva::kAcquisti};

int Esegui(bool pg, const std::string& sorgente, int anno) {
  const char* motore = pg ? "postgres" : "sqlite";
  const std::string cartella =
      fs::temp_directory_path().string() + "/vorn_bench_registri_stampe_" + std::to_string(getpid());
  fs::create_directories(cartella);
  // The prints' host, so that their messages are counted; the company's goes first, and its
  // end leaves no host behind.
  HostSilenzioso host(cartella);
  bench::AziendaBench az(pg, "registri");
  ImpostaHost(&host);

  auto t0 = Orologio::now();
  long copiate;
  {
    auto da = Connessione::ApriSqlite(sorgente);
    copiate = CopiaAzienda(*da, *az.cn);
    da->Close();
  }
  if (pg) az.cn->Esegui("ANALYZE");
  clsDB db;
  db.cn = az.cn;
  db.ImpostaVariabiliGlobaliServer();
  const long righe = static_cast<long>(NullToZeroLng(az.cn->Scalare("SELECT COUNT(*) FROM [Prima Nota]")));
  const long righeIva = static_cast<long>(
      NullToZeroLng(az.cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE [TipoRigaIvaNormale] = 'I'")));
  std::printf("%-8s azienda copiata: %ld righe in %.1f s; prima nota %ld righe, %ld righe IVA (%.0f%%)\n", motore,
              copiate, Secondi(t0), righe, righeIva, 100.0 * static_cast<double>(righeIva) / std::max(1L, righe));
  std::fflush(stdout);

  std::vector<std::pair<Data, Data>> mesi;
  for (int m = 1; m <= 12; ++m) {
    Data da = *Data::Crea(anno, m, 1);
    mesi.push_back({da, da.AggiungiMesi(1).AggiungiGiorni(-1)});
  }
  // A first read, not timed: both measures start from the same warm caches.
  for (const auto& [da, a] : mesi)
    for (const char* tipo : kTipi) LetturaSemplice(*az.cn, tipo, da, a);

  // (a) The 24 trial prints.
  ArgomentiRegistroIva base = cli::ArgomentiRegistroIvaAzienda(az.cn);
  base.avar_NumeroRegistro = Valore("01");
  base.avar_Anno = anno;
  AzzeraPiccoMemoria();
  const long rssPrima = MemoriaKb();
  long righeStampate = 0, stampe = 0;
  uintmax_t byte = 0;
  t0 = Orologio::now();
  for (int m = 1; m <= 12; ++m) {
    for (const char* tipo : kTipi) {
      ArgomentiRegistroIva arg = base;
      arg.avar_Mese = m;
      arg.nomeFile = cartella + "/registro" + tipo + "_" + std::to_string(m) + ".txt";
      clsRegistriIva registri;
      registri.cn = az.cn;
      if (!registri.StampaRegistro(tipo, arg)) {
        std::fprintf(stderr, "%s: registro %s del mese %d non completato\n", motore, tipo, m);
        return 1;
      }
      righeStampate += registri.Esito().righe;
      if (registri.Esito().stampato) {
        ++stampe;
        byte += fs::file_size(arg.nomeFile);
        fs::remove(arg.nomeFile);
      }
    }
  }
  const double tStampe = Secondi(t0);
  const long picco = PiccoMemoriaKb(), rssDopo = MemoriaKb();

  // (b) The plain read of the same rows.
  long righeLette = 0;
  t0 = Orologio::now();
  for (const auto& [da, a] : mesi)
    for (const char* tipo : kTipi) righeLette += LetturaSemplice(*az.cn, tipo, da, a);
  const double tLettura = Secondi(t0);

  std::printf("%-8s (a) 24 stampe di prova (vendite e acquisti, 12 mesi): %8.2f s, %ld stampe, %ld righe, %ju kB\n",
              motore, tStampe, stampe, righeStampate, byte / 1024);
  std::printf("%-8s (b) SELECT delle stesse righe IVA con i join:         %8.2f s, %ld righe%s\n", motore, tLettura,
              righeLette, righeLette == righeStampate ? "" : "  (righe diverse dalle stampate)");
  std::printf("%-8s rapporto (a)/(b): %.1f   memoria: %ld kB prima delle stampe, picco %ld kB (+%ld kB), %ld kB dopo; "
              "%zu messaggi\n",
              motore, tStampe / std::max(tLettura, 1e-9), rssPrima, picco, picco - rssPrima, rssDopo,
              host.Messaggi().size());
  std::fflush(stdout);
  std::error_code ec;
  fs::remove_all(cartella, ec);
  return 0;
}

}  // namespace

int BenchRegistriIva(int argc, char** argv) {
  cli::OpzioniDemo o;
  o.registrazioni = 320000;
  std::string motore = "entrambi", cache;
  for (int i = 1; i < argc; ++i) {
    std::string a = argv[i];
    auto valore = [&] { return bench::ValoreOpzione(argc, argv, i); };
    if (a == "--registrazioni") o.registrazioni = std::atol(valore().c_str());
    else if (a == "--seme") o.seme = static_cast<uint64_t>(std::atol(valore().c_str()));
    else if (a == "--motore") motore = valore();
    else if (a == "--cache") cache = valore();
    else {
      std::fprintf(stderr,
                   "uso: %s [--registrazioni N] [--seme S] [--motore sqlite|postgres|entrambi] [--cache CARTELLA]\n"
                   "  --registrazioni N  registrazioni della demo (predefinito 320000, circa un milione di righe)\n"
                   "  --cache CARTELLA   conserva e riprende l'azienda di prova SQLite di quella misura\n",
                   argc > 0 ? argv[0] : "registri-iva");
      return 2;
    }
  }
  if (o.registrazioni < 1 || o.seme < 1 || (motore != "sqlite" && motore != "postgres" && motore != "entrambi")) {
    std::fprintf(stderr, "argomenti non validi\n");
    return 2;
  }
  const std::string lavoro =
      fs::temp_directory_path().string() + "/vorn_bench_registri_sorgente_" + std::to_string(getpid());
  fs::create_directories(lavoro);
  if (!cache.empty()) fs::create_directories(cache);
  int rc = 0;
  try {
    HostSilenzioso host(lavoro);
    ImpostaHost(&host);
    std::string sorgente = AziendaSorgente(cache.empty() ? lavoro : cache, o);
    ImpostaHost(nullptr);
    for (bool pg : bench::Motori(motore)) rc |= Esegui(pg, sorgente, o.anno);
  } catch (const ErroreDb& e) {
    std::fprintf(stderr, "errore del database %ld: %s\n", e.Numero(), e.Descrizione().c_str());
    rc = 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "errore: %s\n", e.what());
    rc = 1;
  }
  ImpostaHost(nullptr);
  std::error_code ec;
  fs::remove_all(lavoro, ec);
  return rc;
}
