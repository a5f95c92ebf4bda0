// Test support: every database test runs on an SQLite file and on the PostgreSQL server that
// the test command starts (VORN_PG_HOST, VORN_PG_PORT, VORN_PG_USER, VORN_PG_DB).
#pragma once
#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <memory>
#include <string>

#include "frame/Db.h"
#include "frame/Host.h"

namespace vorn::test {

// A host for tests: it records each message and answers each question from a script, then
// with the default answer.
class HostScript : public HostSilenzioso {
 public:
  explicit HostScript(std::string cartella = {}) : HostSilenzioso(std::move(cartella), vbNo) {}
  int MsgBox(const std::string& testo, int stile, const std::string& titolo) override;
  void Rispondi(int risposta) { script_.push_back(risposta); }
  void Beep() override { ++beep_; }
  int Bip() const { return beep_; }
  // The last message, or empty text.
  std::string Ultimo() const { return messaggi_.empty() ? std::string() : messaggi_.back().testo; }

 private:
  std::deque<int> script_;
  int beep_ = 0;
};

// A folder of its own, removed at the end.
class CartellaProva {
 public:
  CartellaProva();
  ~CartellaProva();
  const std::string& Percorso() const { return path_; }

 private:
  std::string path_;
};

bool PostgresDisponibile();
ParametriPostgres ParametriPostgresTest();
// A database name or schema name unique to this run.
std::string NomeUnico(const std::string& prefisso);

std::string NomeMotore(const ::testing::TestParamInfo<Motore>& info);

// A fixture with a fresh, empty database on the engine of the parameter: a new SQLite file, or
// a new schema on the test server. Installs a scripted host for the test's duration.
class DbTest : public ::testing::TestWithParam<Motore> {
 protected:
  void SetUp() override;
  void TearDown() override;
  // Another connection to the same database.
  std::shared_ptr<Connessione> AltraConnessione();
  bool Pg() const { return GetParam() == Motore::PostgreSQL; }

  std::unique_ptr<CartellaProva> dir;
  std::unique_ptr<HostScript> host;
  std::shared_ptr<Connessione> cn;
  std::string file;                // SQLite
  ParametriPostgres pg;            // PostgreSQL, with the schema of this test
};

// Reads a whole text file.
std::string LeggiFile(const std::string& percorso);
// Compares text with a golden file under tests/<relativo>; with VORN_AGGIORNA_GOLDEN=1 writes it.
void ConfrontaGolden(const std::string& relativo, const std::string& testo);

}  // namespace vorn::test

#define VORN_SU_DUE_MOTORI(Fixture)                                                                        \
  INSTANTIATE_TEST_SUITE_P(Motori, Fixture, ::testing::Values(::vorn::Motore::SQLite, ::vorn::Motore::PostgreSQL), \
                           ::vorn::test::NomeMotore)
