// The command line as a user meets it: one line for every error, the group word of the prints,
// batch answers that contradict each other, the password prompt interrupted, a company created
// twice at once or half way.
#include <gtest/gtest.h>
#include <signal.h>
#include <termios.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "ComandoAzienda.h"
#include "Processi.h"
#include "frame/Catalogo.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;
namespace fs = std::filesystem;

namespace {

using Esito = EsitoComando;
Esito Vorn(const std::vector<std::string>& argomenti) { return EseguiVorn(argomenti); }

size_t Righe(const std::string& t) {
  size_t n = 0;
  for (char c : t) n += c == '\n';
  return n;
}

}  // namespace

TEST(RigaDiComando, AMissingCompanyIsOneLineWithoutAnUnhandledError) {
  CartellaProva d;
  for (const auto& c : std::vector<std::vector<std::string>>{
           {"azienda", d.Percorso() + "/manca.db"},
           {"causali", d.Percorso() + "/manca.db"},
           {"stampa", "codici-iva", d.Percorso() + "/manca.db", d.Percorso() + "/stampa.txt"}}) {
    std::vector<std::string> a = {"--cartella", d.Percorso()};
    a.insert(a.end(), c.begin(), c.end());
    Esito r = Vorn(a);
    EXPECT_EQ(r.rc, 1) << c[0];
    EXPECT_EQ(Righe(r.err), 1u) << r.err;
    EXPECT_EQ(r.err.find("Errore non gestito"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("non esiste"), std::string::npos) << r.err;
  }
  EXPECT_FALSE(fs::exists(d.Percorso() + "/manca.db"));
  EXPECT_FALSE(fs::exists(d.Percorso() + "/stampa.txt"));
}

TEST(RigaDiComando, StampaAloneListsItsReports) {
  Esito r = Vorn({"stampa"});
  EXPECT_EQ(r.rc, 2);
  EXPECT_NE(r.out.find("\n  codici-iva "), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("\n  mastrini "), std::string::npos) << r.out;
  EXPECT_EQ(Vorn({"stampa", "--help"}).rc, 0);
  Esito boh = Vorn({"stampa", "bilancio"});
  EXPECT_EQ(boh.rc, 2);
  EXPECT_EQ(Righe(boh.err), 1u) << boh.err;
  EXPECT_NE(boh.err.find("bilancio"), std::string::npos);
}

TEST(RigaDiComando, YesTogetherWithNoIsRefusedBeforeAnythingRuns) {
  CartellaProva d;
  const std::string f = d.Percorso() + "/nuova.db";
  for (const auto& a : std::vector<std::vector<std::string>>{{"--si", "--no", "crea-azienda", f},
                                                           {"--no", "crea-azienda", f, "--sì"}}) {
    Esito r = Vorn(a);
    EXPECT_EQ(r.rc, 2);
    EXPECT_EQ(Righe(r.err), 1u) << r.err;
    EXPECT_FALSE(fs::exists(f));
  }
  EXPECT_EQ(Vorn({"--si", "--si", "crea-azienda", f}).rc, 0);  // the same answer twice is one answer
}

TEST(RigaDiComando, MemoryAndUriNamesAreNoCompany) {
  CartellaProva d;
  for (const std::string& nome : {std::string(":memory:"), "file:" + d.Percorso() + "/x.db",
                                  "file:" + d.Percorso() + "/y.db?mode=memory"}) {
    Esito r = Vorn({"crea-azienda", nome});
    EXPECT_EQ(r.rc, 1) << nome;
    EXPECT_EQ(Righe(r.err), 1u) << r.err;
  }
  EXPECT_TRUE(fs::is_empty(d.Percorso()));
  EXPECT_FALSE(fs::exists(":memory:"));
}

// Two creations of one file at once: exactly one says so, and its file is there, whole.
TEST(RigaDiComando, TwoCreationsOfOneFileAtOnce) {
  if (BinarioVorn().empty()) GTEST_SKIP() << "VORN_BIN non indicato";
  CartellaProva d;
  const std::string p = d.Percorso();
  for (int giro = 0; giro < 4; ++giro) {
    const std::string f = p + "/azienda" + std::to_string(giro) + ".db";
    ProcessoVorn a({"crea-azienda", f, "--modello", "standard"}, p + "/a.out", p + "/a.err");
    ProcessoVorn b({"crea-azienda", f, "--modello", "standard"}, p + "/b.out", p + "/b.err");
    int ra = a.Attendi(), rb = b.Attendi();
    EXPECT_EQ((ra == 0) + (rb == 0), 1) << LeggiFile(p + "/a.err") << LeggiFile(p + "/b.err");
    std::string perdente = LeggiFile(ra == 0 ? p + "/b.err" : p + "/a.err");
    EXPECT_NE(perdente.find("esiste già"), std::string::npos) << perdente;
    ASSERT_TRUE(fs::exists(f));
    auto cn = Connessione::ApriSqlite(f);
    EXPECT_EQ(cn->Tabelle().size(), TabelleCatalogo().size() + VisteCatalogo().size());
    EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Codici Iva]").ComeIntero().value_or(0), 31);
    cn->Close();
  }
  // Nothing of the creations is left beside the files.
  for (const auto& e : fs::directory_iterator(p)) EXPECT_NE(e.path().filename().string().front(), '.') << e.path();
}

// A creation killed half way leaves no file under the company's name (or the whole company).
TEST(RigaDiComando, AnInterruptedCreationLeavesNoHalfCompany) {
  if (BinarioVorn().empty()) GTEST_SKIP() << "VORN_BIN non indicato";
  CartellaProva d;
  const std::string f = d.Percorso() + "/azienda.db";
  ProcessoVorn a({"crea-azienda", f, "--modello", "standard"}, d.Percorso() + "/out", d.Percorso() + "/err");
  std::this_thread::sleep_for(std::chrono::milliseconds(40));
  kill(a.Pid(), SIGKILL);
  a.Attendi();
  if (fs::exists(f)) {
    auto cn = Connessione::ApriSqlite(f);
    EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Codici Iva]").ComeIntero().value_or(0), 31);
    cn->Close();
  } else {
    EXPECT_EQ(Vorn({"crea-azienda", f, "--modello", "standard"}).rc, 0);
  }
}

// Ctrl-C at the password prompt gives the terminal back with its echo.
TEST(RigaDiComando, CtrlCAtThePasswordPromptRestoresTheEcho) {
  if (BinarioVorn().empty()) GTEST_SKIP() << "VORN_BIN non indicato";
  int master = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_GE(master, 0);
  ASSERT_EQ(grantpt(master), 0);
  ASSERT_EQ(unlockpt(master), 0);
  std::string slave = ptsname(master);
  pid_t pid = fork();
  if (pid == 0) {
    setsid();
    int s = open(slave.c_str(), O_RDWR);  // the controlling terminal
    dup2(s, 0);
    dup2(s, 1);
    dup2(s, 2);
    unsetenv("VORN_PG_PASSWORD");
    std::string bin = BinarioVorn();
    execl(bin.c_str(), bin.c_str(), "azienda", "--pg-database", "nessuno", "--pg-host", "127.0.0.1:1", nullptr);
    _exit(127);
  }
  std::string letto;
  char buf[256];
  for (int i = 0; i < 100 && letto.find("Password") == std::string::npos; ++i) {
    ssize_t n = read(master, buf, sizeof buf);
    if (n > 0) letto.append(buf, static_cast<size_t>(n));
  }
  ASSERT_NE(letto.find("Password"), std::string::npos) << letto;
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  termios t{};
  tcgetattr(master, &t);
  EXPECT_EQ(t.c_lflag & ECHO, 0u) << "il prompt non ha spento l'eco";
  ASSERT_EQ(write(master, "\x03", 1), 1);
  int st = 0;
  waitpid(pid, &st, 0);
  EXPECT_TRUE(WIFSIGNALED(st) && WTERMSIG(st) == SIGINT);
  tcgetattr(master, &t);
  EXPECT_NE(t.c_lflag & ECHO, 0u) << "l'eco è rimasta spenta";
  close(master);
}

// ---------------------------------------------------------------- on both engines

namespace {

class RigaDiComandoAzienda : public AziendaTest {};
VORN_SU_DUE_MOTORI(RigaDiComandoAzienda);

}  // namespace

// A server's error is told in its first line, without the statement it quotes.
TEST_P(RigaDiComandoAzienda, ADatabaseErrorIsOneLine) {
  if (!Pg()) {
    // A file that is not a database.
    const std::string f = dir->Percorso() + "/testo.db";
    std::ofstream(f) << "non sono un database, ma un testo abbastanza lungo da sembrare qualcosa\n";
    Esito r = Vorn({"--cartella", dir->Percorso(), "causali", f});
    EXPECT_EQ(r.rc, 1);
    EXPECT_EQ(Righe(r.err), 1u) << r.err;
    return;
  }
  // A schema with no company in it: the first query fails.
  ParametriPostgres vuoto = pg;
  vuoto.schema = NomeUnico("vuoto");
  cn->Esegui("CREATE SCHEMA " + vuoto.schema);
  Esito r = Vorn({"--cartella", dir->Percorso(), "codici-iva", "--pg-database", pg.database, "--pg-schema",
                  vuoto.schema, "--pg-host", pg.port.empty() ? pg.host : pg.host + ":" + pg.port, "--pg-user", pg.user});
  cn->Esegui("DROP SCHEMA " + vuoto.schema + " CASCADE");
  EXPECT_EQ(r.rc, 1);
  // The library's own message about the parameters may come first; each is one line.
  EXPECT_NE(r.err.find("\nvorn codici-iva: errore del database"), std::string::npos) << r.err;
  EXPECT_EQ(r.err.find("LINE"), std::string::npos) << r.err;
  EXPECT_EQ(r.err.find("^"), std::string::npos) << r.err;
  EXPECT_EQ(r.err.find("\n "), std::string::npos) << r.err;
}

// A PostgreSQL database left empty (made by hand, or by a creation that stopped after it) takes
// the company (one that holds a company is left alone: ComandoAzienda.AnExistingCompanyIsNeverTouched).
TEST_P(RigaDiComandoAzienda, AnEmptyDatabaseTakesTheCompany) {
  if (!Pg()) GTEST_SKIP() << "un database PostgreSQL";
  ParametriPostgres admin = pg;
  admin.schema.clear();
  admin.database = "postgres";
  const std::string nome = NomeUnico("vuota");
  auto a = Connessione::ApriPostgres(admin);
  a->Esegui("CREATE DATABASE \"" + nome + "\"");
  std::vector<std::string> arg = {"crea-azienda", "--pg-database", nome, "--pg-host",
                                  pg.port.empty() ? pg.host : pg.host + ":" + pg.port, "--pg-user", pg.user,
                                  "--modello", "standard"};
  setenv("VORN_PG_PASSWORD", pg.password.c_str(), 1);
  Esito r = Vorn(arg);
  EXPECT_EQ(r.rc, 0) << r.err;
  ParametriPostgres azienda = admin;
  azienda.database = nome;
  auto c = Connessione::ApriPostgres(azienda);
  EXPECT_EQ(c->Tabelle().size(), TabelleCatalogo().size() + VisteCatalogo().size());
  c->Close();
  a->Esegui("DROP DATABASE \"" + nome + "\"");
}
