// vorn crea-azienda and vorn azienda, run as the command runs them, on an SQLite file and on a
// PostgreSQL database of the test server.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>

#include "ComandoAzienda.h"
#include "frame/Db.h"
#include "support/Motori.h"

using namespace vorn;
using namespace vorn::test;

namespace {

using Esito = EsitoComando;
Esito Vorn(const std::vector<std::string>& argv) { return EseguiVorn(argv); }

size_t Righe(const std::string& s) { return static_cast<size_t>(std::count(s.begin(), s.end(), '\n')); }

// An environment variable set for one test and put back as it was.
class Ambiente {
 public:
  Ambiente(const char* nome, const std::string& valore) : nome_(nome) {
    if (const char* v = std::getenv(nome)) prima_ = v;
    setenv(nome, valore.c_str(), 1);
  }
  ~Ambiente() {
    if (prima_) setenv(nome_, prima_->c_str(), 1);
    else unsetenv(nome_);
  }

 private:
  const char* nome_;
  std::optional<std::string> prima_;
};

}  // namespace

// Each case names a company of its own: a file in a test folder, or a database created and
// dropped on the test server.
class ComandoAzienda : public ::testing::TestWithParam<Motore> {
 protected:
  void SetUp() override {
    if (Pg()) {
      if (!PostgresDisponibile()) GTEST_SKIP() << "PostgreSQL di prova non disponibile";
      pg = ParametriPostgresTest();
      database = NomeUnico("vorn_az");
      password = std::make_unique<Ambiente>("VORN_PG_PASSWORD", pg.password);
    }
    file = dir.Percorso() + "/azienda.db";
  }
  void TearDown() override {
    if (Pg() && !database.empty()) Elimina();
  }
  bool Pg() const { return GetParam() == Motore::PostgreSQL; }

  // The arguments that name the company, after the command's own.
  std::vector<std::string> Azienda(std::vector<std::string> comando) const {
    comando.insert(comando.begin(), {"--cartella", dir.Percorso()});
    if (!Pg()) {
      comando.push_back(file);
      return comando;
    }
    std::string host = pg.host + (pg.port.empty() ? "" : ":" + pg.port);
    for (const std::string& a : std::vector<std::string>{"--pg-database", database, "--pg-host", host}) comando.push_back(a);
    if (!pg.user.empty()) {
      comando.push_back("--pg-user");
      comando.push_back(pg.user);
    }
    return comando;
  }
  bool Esiste() {
    if (!Pg()) return std::filesystem::exists(file);
    auto admin = Connessione::ApriPostgres(pg);
    return !admin->Scalare("SELECT 1 FROM pg_database WHERE datname = ?", {database}).IsNull();
  }
  std::shared_ptr<Connessione> Apri() {
    if (!Pg()) return Connessione::ApriSqlite(file);
    ParametriPostgres p = pg;
    p.database = database;
    return Connessione::ApriPostgres(p);
  }
  void Elimina() {
    try {
      auto admin = Connessione::ApriPostgres(pg);
      admin->Esegui("DROP DATABASE IF EXISTS \"" + database + "\"");
    } catch (...) {
    }
  }

  CartellaProva dir;
  std::string file, database;
  ParametriPostgres pg;
  std::unique_ptr<Ambiente> password;
};

TEST_P(ComandoAzienda, CreatesFromTheModelAndShowsTheProfile) {
  auto crea = Vorn(Azienda({"crea-azienda", "--modello", "standard"}));
  ASSERT_EQ(crea.rc, 0) << crea.err;
  EXPECT_NE(crea.out.find("Azienda creata: "), std::string::npos);
  EXPECT_NE(crea.out.find(" dal modello standard: "), std::string::npos) << crea.out;
  EXPECT_EQ(crea.err, "");
  {
    auto cn = Apri();
    EXPECT_GT(cn->Scalare("SELECT COUNT(*) FROM [Causali Contabili]").ComeIntero().value_or(0), 20);
    EXPECT_EQ(cn->Scalare("SELECT [GruppoConto1Clienti] FROM [Parametri Vorn]").Testo(), "0501");
    cn->Close();
  }
  auto mostra = Vorn(Azienda({"azienda"}));
  ASSERT_EQ(mostra.rc, 0) << mostra.err;
  const std::string& o = mostra.out;
  EXPECT_NE(o.find(Pg() ? "(PostgreSQL)\n" : "(SQLite)\n"), std::string::npos) << o;
  EXPECT_NE(o.find(std::string("  Motore (IndSqlServer):        ") + (Pg() ? "PostgreSQL (1)" : "SQLite (0)")),
            std::string::npos)
      << o;
  EXPECT_NE(o.find("  Valuta di conto:              06 EUR EURO\n"), std::string::npos) << o;
  EXPECT_NE(o.find("  Decimali importi:             2\n"), std::string::npos) << o;
  EXPECT_NE(o.find("  Cambio fisso lire/euro:       1.936,27\n"), std::string::npos) << o;
  EXPECT_NE(o.find("  Mese chiusura fiscale:        12\n"), std::string::npos) << o;
  EXPECT_NE(o.find("  Codici IVA:                   31\n"), std::string::npos) << o;
  EXPECT_NE(o.find("  Righe di prima nota:          0\n"), std::string::npos) << o;
}

TEST_P(ComandoAzienda, AnExistingCompanyIsNeverTouched) {
  ASSERT_EQ(Vorn(Azienda({"crea-azienda"})).rc, 0);
  {
    auto cn = Apri();
    cn->Esegui("INSERT INTO [Causali Contabili] ([CodiceCausale], [DescrizioneCausale]) VALUES ('X', 'mia')");
    cn->Close();
  }
  auto di_nuovo = Vorn(Azienda({"crea-azienda", "--modello", "standard"}));
  EXPECT_NE(di_nuovo.rc, 0);
  EXPECT_EQ(Righe(di_nuovo.err), 1u) << di_nuovo.err;
  EXPECT_NE(di_nuovo.err.find("esiste già"), std::string::npos) << di_nuovo.err;
  EXPECT_EQ(di_nuovo.out, "");
  auto cn = Apri();
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Causali Contabili]").ComeIntero(), 1);
  cn->Close();
}

TEST_P(ComandoAzienda, AModelThatFailsLeavesNoCompanyBehind) {
  // An unknown model is a usage error, told before anything is created.
  auto ignoto = Vorn(Azienda({"crea-azienda", "--modello", "completo"}));
  EXPECT_EQ(ignoto.rc, 2);
  EXPECT_EQ(Righe(ignoto.err), 1u) << ignoto.err;
  EXPECT_NE(ignoto.err.find("Modello 'completo' inesistente"), std::string::npos) << ignoto.err;
  EXPECT_FALSE(Esiste());

  // A model that breaks while loading: the new company goes away with it.
  CartellaProva modelli;
  std::filesystem::create_directories(modelli.Percorso() + "/rotto");
  std::ofstream(modelli.Percorso() + "/rotto/modello.tsv") << "Causali Contabili\tcausali.tsv\n";
  std::ofstream(modelli.Percorso() + "/rotto/causali.tsv") << "CodiceCausale\tDescrizioneCausale\nX\tuno\nX\tdue\n";
  Esito rotto;
  {
    Ambiente m("VORN_MODELLI", modelli.Percorso());
    rotto = Vorn(Azienda({"crea-azienda", "--modello", "rotto"}));
  }
  EXPECT_EQ(rotto.rc, 1);
  EXPECT_EQ(Righe(rotto.err), 1u) << rotto.err;
  EXPECT_NE(rotto.err.find("Impossibile caricare il modello rotto"), std::string::npos) << rotto.err;
  EXPECT_FALSE(Esiste());
}

TEST_P(ComandoAzienda, ACompanyThatIsNotThereIsOneLine) {
  auto r = Vorn(Azienda({"azienda"}));
  EXPECT_NE(r.rc, 0);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(Righe(r.err), 1u) << r.err;
}

VORN_SU_DUE_MOTORI(ComandoAzienda);

TEST(ComandoAziendaUso, BadArguments) {
  auto senza = Vorn({"crea-azienda"});
  EXPECT_EQ(senza.rc, 2);
  EXPECT_EQ(Righe(senza.err), 1u) << senza.err;
  CartellaProva dir;
  auto troppi = Vorn({"crea-azienda", dir.Percorso() + "/a.db", dir.Percorso() + "/b.db"});
  EXPECT_EQ(troppi.rc, 2);
  EXPECT_FALSE(std::filesystem::exists(dir.Percorso() + "/a.db"));
  // An unreachable server is one line and a failure, not a hang or a crash.
  Ambiente password("VORN_PG_PASSWORD", "x");
  auto server = Vorn({"crea-azienda", "--pg-database", "vorn_nessuno", "--pg-host", "127.0.0.1:1"});
  EXPECT_EQ(server.rc, 1);
  EXPECT_EQ(Righe(server.err), 1u) << server.err;
  EXPECT_NE(server.err.find("Impossibile collegarsi al server"), std::string::npos) << server.err;
}
