#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Globali.h"
#include "frame/Host.h"
#include "frame/Impaginazione.h"
#include "support/Motori.h"

using namespace vorn;
namespace fs = std::filesystem;

namespace {

class Impaginazione : public ::testing::Test {
 protected:
  void SetUp() override {
    AzzeraGlobali();
    dir = std::make_unique<vorn::test::CartellaProva>();
    ingresso = dir->Percorso() + "/corpo.tmp";
    uscita = dir->Percorso() + "/stampa.txt";
  }
  void TearDown() override { AzzeraGlobali(); }

  void Corpo(const std::vector<std::string>& righe) {
    std::ofstream f(ingresso, std::ios::binary);
    for (const auto& r : righe) f << r << '\n';
  }
  static std::vector<std::string> Corpo(int n, const std::string& prefisso = "riga ") {
    std::vector<std::string> v;
    for (int i = 1; i <= n; ++i) v.push_back(prefisso + std::to_string(i));
    return v;
  }
  std::string Uscita() const { return vorn::test::LeggiFile(uscita); }
  std::vector<std::string> Righe() const {
    std::vector<std::string> v;
    std::istringstream s(Uscita());
    std::string r;
    while (std::getline(s, r)) v.push_back(r);
    return v;
  }

  std::array<std::string, 7> testata{"DITTA PROVA S.R.L.", "Registro di prova", "", "Data       Descrizione", "----",
                                     "", "t7"};
  std::array<std::string, 2> piede{"p1 ---", "p2 ==="};

  std::unique_ptr<vorn::test::CartellaProva> dir;
  std::string ingresso, uscita;
};

}  // namespace

// ---------------------------------------------------------------- fixed head and foot

TEST_F(Impaginazione, PageBreakInTheMiddleAndBlankFiller) {
  // 14 rows: head of 9, three body rows, foot of 2.
  Corpo(Corpo(5));
  ImpaginaFile(ingresso, uscita, 14, testata, piede);
  vorn::test::ConfrontaGolden("frame/golden/impagina_file.txt", Uscita());
}

TEST_F(Impaginazione, LastPageEndingAtTheUsableRowsHasNoFillerNorAsterisks) {
  Corpo(Corpo(6));
  ImpaginaFile(ingresso, uscita, 14, testata, piede, true);
  auto r = Righe();
  ASSERT_EQ(r.size(), 28u);
  EXPECT_EQ(r[25], "riga 6");
  EXPECT_EQ(r[26], "p1 ---");
  EXPECT_EQ(Uscita().find('*'), std::string::npos);
}

TEST_F(Impaginazione, AsteriskDiagonalEndsAtColumn131) {
  Corpo({"Attività ordinaria", "riga 2"});
  ImpaginaFile(ingresso, uscita, 14, testata, piede, true);
  vorn::test::ConfrontaGolden("frame/golden/impagina_asterischi.txt", Uscita());
}

TEST_F(Impaginazione, DiagonalStartsAtColumnZeroWithMoreThan131RowsLeft) {
  Corpo(std::vector<std::string>{});
  ImpaginaFile(ingresso, uscita, 150, testata, piede, true);  // 148 usable rows, 139 left
  auto r = Righe();
  ASSERT_EQ(r.size(), 150u);
  EXPECT_EQ(r[9], "*");
  EXPECT_EQ(r[10], " *");
  EXPECT_EQ(r[147], std::string(138, ' ') + "*");
  EXPECT_EQ(r[148], "p1 ---");
}

TEST_F(Impaginazione, ClosersAndPagesShorterThanTheHead) {
  std::ostringstream bianca, asterischi;
  ChiudiPaginaBianca(bianca, 1, 5);
  EXPECT_EQ(bianca.str(), "\n\n");
  ChiudiPaginaAsterischi(asterischi, 1, 5);
  EXPECT_EQ(asterischi.str(), std::string(129, ' ') + "*\n" + std::string(130, ' ') + "*\n");
  // Fewer than five rows count as five; a head longer than the page breaks with the foot and
  // never loops.
  Corpo(Corpo(2));
  ImpaginaFile(ingresso, uscita, 2, testata, piede);
  auto r = Righe();
  ASSERT_GE(r.size(), 11u);
  EXPECT_EQ(r[3], "p1 ---");  // three head lines fill the three usable rows
  EXPECT_EQ(r.back(), "p2 ===");
}

TEST_F(Impaginazione, MissingInputRaises) {
  EXPECT_THROW(ImpaginaFile(dir->Percorso() + "/manca.tmp", uscita, 66, testata, piede), std::runtime_error);
  EXPECT_FALSE(EsisteFile(uscita));
}

// ---------------------------------------------------------------- company head and foot

TEST_F(Impaginazione, AziendaStampsEachPageAndCountsOnlyFilledLines) {
  G().ContatorePagina = Valore(7);  // left over from another report
  std::string regola(40, '=');
  std::array<std::string, 9> t{"DITTA ROSSI & C.", regola, "   ", "Conto     Descrizione", "", "", "", "", ""};
  std::array<std::string, 4> p{"--- segue ---", "  ", "", ""};
  Corpo(Corpo(6, "movimento "));
  // 10 rows: foot of 1 counted line, head of 1 + 4 lines, 4 body rows a page.
  ImpaginaFileAzienda(ingresso, uscita, 10, t, p, 2);
  EXPECT_EQ(G().ContatorePagina, Valore(2));
  vorn::test::ConfrontaGolden("frame/golden/impagina_azienda.txt", Uscita());

  // The asterisk closer uses the foot's own count.
  Corpo(Corpo(1, "movimento "));
  ImpaginaFileAzienda(ingresso, uscita, 10, t, p, 2, true);
  auto r = Righe();
  ASSERT_EQ(r.size(), 10u);
  EXPECT_EQ(r[6], std::string(128, ' ') + "*");
  EXPECT_EQ(r[8], std::string(130, ' ') + "*");
  EXPECT_EQ(r[9], "--- segue ---");
}

TEST_F(Impaginazione, RigaPaginaStamp) {
  RigaPagina("", 0);
  EXPECT_EQ(G().ContatorePagina, Valore(0));
  std::string regola(20, '=');
  EXPECT_EQ(RigaPagina(regola), "======Pag:     1 ===");
  EXPECT_EQ(RigaPagina("àè" + std::string(14, '=')), "àèPag:     2 ===");
  EXPECT_EQ(RigaPagina("corta"), "Pag:     3 ===");
  EXPECT_EQ(RigaPagina("x", Valore(false)), "");  // any value resets
  EXPECT_EQ(G().ContatorePagina, Valore(0));
  EXPECT_EQ(LunghezzaTesto(RigaPagina(std::string(131, '='))), 131u);
}

// ---------------------------------------------------------------- pre-numbered books

TEST_F(Impaginazione, SempliceOverwritesRowsAndNumbersPages) {
  Corpo({"uno", "Attività due", "tre", "quattro", "cinque", "sei", "sette"});
  Valore numero(41);
  ImpaginaSemplice(ingresso, uscita, 5, 2, "INTESTAZIONE", 6, "CHIUSURA", 3, " 2025 ", numero);
  EXPECT_EQ(numero, Valore(43));
  vorn::test::ConfrontaGolden("frame/golden/impagina_semplice.txt", Uscita());
}

// ---------------------------------------------------------------- files and folders

TEST_F(Impaginazione, FilesAndFolders) {
  std::string base = dir->Percorso();
  EXPECT_FALSE(EsisteFile(base));  // a folder reads as absent
  EXPECT_FALSE(EsisteFile(base + "/manca.txt"));
  EXPECT_FALSE(EsisteFile(""));
  Corpo({"a"});
  EXPECT_TRUE(EsisteFile(ingresso));
  CancellaFile(ingresso);
  EXPECT_FALSE(EsisteFile(ingresso));
  CancellaFile(ingresso);  // nothing to delete

  EXPECT_EQ(TogliBarraFinale("/a/b/"), "/a/b");
  EXPECT_EQ(TogliBarraFinale("/a/b//"), "/a/b/");
  EXPECT_EQ(TogliBarraFinale(""), "");

  std::string percorso = "  " + base + "/Livello Uno/Due/Tre/  ";
  CreaCartella(percorso);
  EXPECT_EQ(percorso, base + "/Livello Uno/Due/Tre");  // trimmed, no trailing "/", case kept
  EXPECT_TRUE(fs::is_directory(percorso));
  CreaCartella(percorso);  // already there
  EXPECT_TRUE(fs::is_directory(base + "/Livello Uno"));
  EXPECT_FALSE(fs::exists(base + "/LIVELLO UNO"));

  std::string dest = base + "/unito.txt";
  { std::ofstream(dest) << "testa\n"; }
  { std::ofstream(ingresso, std::ios::binary) << "uno\r\ndue"; }
  AccodaFile(ingresso, dest);
  AccodaFile(base + "/manca.txt", dest);
  EXPECT_EQ(vorn::test::LeggiFile(dest), "testa\nuno\ndue\n");
}

TEST_F(Impaginazione, ReportsLandInTempAndWorkingFilesInAFolderOfTheRun) {
  HostSilenzioso host(dir->Percorso() + "/Applicazione/");
  ImpostaHost(&host);
  std::string stampe = vorn::CartellaStampe();
  std::string lavoro = vorn::CartellaTemp();
  EXPECT_EQ(vorn::CartellaTemp(), lavoro);  // one folder for the whole run
  ImpostaHost(nullptr);
  EXPECT_EQ(stampe, dir->Percorso() + "/Applicazione/Temp");
  EXPECT_EQ(fs::path(lavoro).parent_path().string(), stampe);
  EXPECT_TRUE(fs::is_directory(lavoro));
  // Another process in the same application folder works in a folder of its own.
  int tubo[2];
  ASSERT_EQ(pipe(tubo), 0);
  if (fork() == 0) {
    ImpostaHost(&host);
    std::string l = vorn::CartellaTemp();
    ssize_t w = write(tubo[1], l.data(), l.size());
    _exit(w == static_cast<ssize_t>(l.size()) ? 0 : 1);
  }
  close(tubo[1]);
  char buf[1024];
  ssize_t n = read(tubo[0], buf, sizeof buf);
  close(tubo[0]);
  wait(nullptr);
  ASSERT_GT(n, 0);
  EXPECT_NE(std::string(buf, static_cast<size_t>(n)), lavoro);
  EXPECT_TRUE(fs::is_directory(lavoro));  // the child left the parent's folder alone
  vorn::ChiudiCartellaTemp();
  EXPECT_FALSE(fs::exists(lavoro));
}

TEST_F(Impaginazione, AReportIsWrittenWholeOrFailsAndNeverOverAFileThatIsNotAReport) {
  Corpo(Corpo(3));
  // A full device: the write fails with the file's name.
  try {
    ImpaginaFile(ingresso, "/dev/full", 10, testata, piede);
    ADD_FAILURE() << "nessun errore su /dev/full";
  } catch (const ErroreStampa& e) {
    EXPECT_NE(std::string(e.what()).find("/dev/full"), std::string::npos) << e.what();
  }
  EXPECT_THROW(AccodaFile(ingresso, "/dev/full"), ErroreStampa);
  // A binary file and a text that is no report are refused and untouched.
  const std::string binario = dir->Percorso() + "/dati.bin";
  { std::ofstream(binario, std::ios::binary) << std::string("SQLite format 3\0\x10\0", 19); }
  const std::string testo = dir->Percorso() + "/lettera.txt";
  { std::ofstream(testo) << "Gentile cliente,\n"; }
  for (const std::string& f : {binario, testo, dir->Percorso()}) {
    EXPECT_THROW(ImpaginaFileAzienda(ingresso, f, 20, {"Pag:"}, {}, 1), ErroreStampa) << f;
    EXPECT_THROW(ImpaginaSemplice(ingresso, f, 20, 0, "", 0, "", 0, "", *std::make_unique<Valore>(1)), ErroreStampa);
  }
  EXPECT_EQ(vorn::test::LeggiFile(binario), std::string("SQLite format 3\0\x10\0", 19));
  EXPECT_EQ(vorn::test::LeggiFile(testo), "Gentile cliente,\n");
  EXPECT_THROW(ImpaginaFile(ingresso, dir->Percorso() + "/manca/stampa.txt", 10, testata, piede), ErroreStampa);
  // A report of ours is replaced by the next.
  testata[0] = "Pag:   1";
  ImpaginaFile(ingresso, uscita, 20, testata, piede);
  Corpo(Corpo(2, "nuova "));
  ImpaginaFile(ingresso, uscita, 20, testata, piede);
  EXPECT_NE(Uscita().find("nuova 2"), std::string::npos);
  EXPECT_EQ(Uscita().find("riga 3"), std::string::npos);
  // No working copy is left behind.
  for (const auto& e : fs::directory_iterator(dir->Percorso()))
    EXPECT_NE(e.path().filename().string().front(), '.') << e.path();
}
