#include "support/Motori.h"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

#include "frame/Globali.h"

namespace vorn::test {

int HostScript::MsgBox(const std::string& testo, int stile, const std::string& titolo) {
  int r = vbOK;
  if (StileDomanda(stile)) {
    if (!script_.empty()) {
      r = script_.front();
      script_.pop_front();
    } else {
      r = risposta_;
    }
  }
  messaggi_.push_back({testo, stile, titolo, r});
  return r;
}

CartellaProva::CartellaProva() {
  std::string base = std::filesystem::temp_directory_path().string() + "/vorn-test-XXXXXX";
  std::vector<char> buf(base.begin(), base.end());
  buf.push_back('\0');
  if (!mkdtemp(buf.data())) throw std::runtime_error("mkdtemp");
  path_ = buf.data();
}
CartellaProva::~CartellaProva() {
  std::error_code ec;
  std::filesystem::remove_all(path_, ec);
}

namespace {
std::string Env(const char* k) {
  const char* v = std::getenv(k);
  return v ? v : "";
}
}  // namespace

bool PostgresDisponibile() { return !Env("VORN_PG_HOST").empty(); }

ParametriPostgres ParametriPostgresTest() {
  ParametriPostgres p;
  p.host = Env("VORN_PG_HOST");
  p.port = Env("VORN_PG_PORT");
  p.user = Env("VORN_PG_USER");
  p.database = Env("VORN_PG_DB").empty() ? "postgres" : Env("VORN_PG_DB");
  p.password = Env("VORN_PG_PASSWORD");
  return p;
}

std::string NomeUnico(const std::string& prefisso) {
  static std::atomic<unsigned> n{0};
  std::random_device rd;
  std::ostringstream s;
  s << prefisso << "_" << getpid() << "_" << (rd() % 100000) << "_" << ++n;
  return s.str();
}

std::string NomeMotore(const ::testing::TestParamInfo<Motore>& info) {
  return info.param == Motore::SQLite ? "SQLite" : "PostgreSQL";
}

void DbTest::SetUp() {
  AzzeraGlobali();
  dir = std::make_unique<CartellaProva>();
  host = std::make_unique<HostScript>(dir->Percorso());
  ImpostaHost(host.get());
  if (GetParam() == Motore::SQLite) {
    file = dir->Percorso() + "/azienda.db";
    OpzioniSqlite o;
    o.crea = true;
    cn = Connessione::ApriSqlite(file, o);
  } else {
    if (!PostgresDisponibile()) {
      if (Env("CI") == "true") FAIL() << "PostgreSQL di prova non disponibile sotto CI";
      GTEST_SKIP() << "*** PostgreSQL di prova non disponibile: test saltato ***";
    }
    pg = ParametriPostgresTest();
    auto admin = Connessione::ApriPostgres(pg);
    pg.schema = NomeUnico("t");
    admin->Esegui("CREATE SCHEMA " + pg.schema);
    cn = Connessione::ApriPostgres(pg);
  }
}

void DbTest::TearDown() {
  if (cn) cn->Close();
  cn.reset();
  G().ConnessioneGlobale.reset();
  if (GetParam() == Motore::PostgreSQL && !pg.schema.empty()) {
    try {
      ParametriPostgres p = pg;
      p.schema.clear();
      auto admin = Connessione::ApriPostgres(p);
      admin->Esegui("DROP SCHEMA " + pg.schema + " CASCADE");
    } catch (...) {
    }
  }
  ImpostaHost(nullptr);
  host.reset();
  dir.reset();
  AzzeraGlobali();
}

std::shared_ptr<Connessione> DbTest::AltraConnessione() {
  if (GetParam() == Motore::SQLite) return Connessione::ApriSqlite(file);
  return Connessione::ApriPostgres(pg);
}

std::string LeggiFile(const std::string& percorso) {
  std::ifstream f(percorso, std::ios::binary);
  std::ostringstream s;
  s << f.rdbuf();
  return s.str();
}

void ConfrontaGolden(const std::string& relativo, const std::string& testo) {
  std::string path = std::string(VORN_TEST_DATA) + "/" + relativo;
  if (Env("VORN_AGGIORNA_GOLDEN") == "1") {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << testo;
  }
  std::string atteso = LeggiFile(path);
  EXPECT_EQ(atteso, testo) << "golden file " << relativo;
}

}  // namespace vorn::test
