// What the benchmarks share: the clock, and a throwaway company on one engine with a folder of
// its own for reports (an SQLite file in it, or a schema of the PostgreSQL server named by
// VORN_PG_HOST, VORN_PG_PORT, VORN_PG_USER, VORN_PG_PASSWORD, VORN_PG_DB), removed at the end.
#pragma once
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "frame/Db.h"
#include "frame/Globali.h"
#include "frame/Host.h"
#include "frame/Schema.h"

namespace vorn::bench {

using Orologio = std::chrono::steady_clock;
inline double Secondi(Orologio::time_point da) { return std::chrono::duration<double>(Orologio::now() - da).count(); }

inline std::string Env(const char* k) {
  const char* v = std::getenv(k);
  return v ? v : "";
}

// The value of the option at argv[i], moving i on to it; a missing value ends the run (exit 2).
inline std::string ValoreOpzione(int argc, char** argv, int& i) {
  if (i + 1 >= argc) {
    std::fprintf(stderr, "manca il valore di %s\n", argv[i]);
    std::exit(2);
  }
  return argv[++i];
}

// The engines that --motore names ("sqlite", "postgres" or "entrambi"), in this order: false
// for SQLite, true for PostgreSQL, which is left out, saying so, when VORN_PG_HOST is not set.
inline std::vector<bool> Motori(const std::string& motore) {
  std::vector<bool> v;
  if (motore == "sqlite" || motore == "entrambi") v.push_back(false);
  if (motore == "postgres" || motore == "entrambi") {
    if (Env("VORN_PG_HOST").empty()) std::printf("postgres saltato: VORN_PG_HOST non impostato\n");
    else v.push_back(true);
  }
  return v;
}

class AziendaBench {
 public:
  AziendaBench(bool pg, const std::string& nome) : pg_(pg) {
    cartella_ = std::filesystem::temp_directory_path().string() + "/vorn_bench_" + nome + "_" + std::to_string(getpid());
    std::filesystem::create_directories(cartella_);
    host_ = std::make_unique<HostSilenzioso>(cartella_);
    ImpostaHost(host_.get());
    if (pg_) {
      p_.host = Env("VORN_PG_HOST");
      p_.port = Env("VORN_PG_PORT");
      p_.user = Env("VORN_PG_USER");
      p_.password = Env("VORN_PG_PASSWORD");
      p_.database = Env("VORN_PG_DB").empty() ? "postgres" : Env("VORN_PG_DB");
      auto admin = Connessione::ApriPostgres(p_);
      p_.schema = "bench_" + nome + "_" + std::to_string(getpid());
      admin->Esegui("DROP SCHEMA IF EXISTS " + p_.schema + " CASCADE");
      admin->Esegui("CREATE SCHEMA " + p_.schema);
      cn = Connessione::ApriPostgres(p_);
    } else {
      OpzioniSqlite o;
      o.crea = true;
      cn = Connessione::ApriSqlite(cartella_ + "/azienda.db", o);
    }
    CreaSchema(*cn);
    G().ConnessioneGlobale = cn;
    G().IndSqlServer = pg_ ? "1" : "0";
  }
  ~AziendaBench() {
    G().ConnessioneGlobale.reset();
    cn->Close();
    cn.reset();
    if (pg_) {
      try {
        ParametriPostgres p = p_;
        p.schema.clear();
        Connessione::ApriPostgres(p)->Esegui("DROP SCHEMA " + p_.schema + " CASCADE");
      } catch (const std::exception& e) {
        std::fprintf(stderr, "schema %s non eliminato: %s\n", p_.schema.c_str(), e.what());
      }
    }
    ImpostaHost(nullptr);
    std::error_code ec;
    std::filesystem::remove_all(cartella_, ec);
  }
  AziendaBench(const AziendaBench&) = delete;
  AziendaBench& operator=(const AziendaBench&) = delete;

  std::shared_ptr<Connessione> cn;

 private:
  bool pg_;
  ParametriPostgres p_;
  std::string cartella_;
  std::unique_ptr<HostSilenzioso> host_;
};

}  // namespace vorn::bench
