#include <gtest/gtest.h>

#include <cstdio>
#include <iterator>
#include <sstream>

#include "ComandoAzienda.h"
#include "cli/Comandi.h"
#include "cli/HostConsole.h"
#include "frame/Versione.h"

using namespace vorn;
using namespace vorn::test;

namespace {
std::string Leggi(std::FILE* f) {
  std::fflush(f);
  std::rewind(f);
  std::string s;
  char b[512];
  size_t n;
  while ((n = std::fread(b, 1, sizeof b, f)) > 0) s.append(b, n);
  return s;
}
}  // namespace

TEST(HostConsole, BatchAnswersFollowTheStyle) {
  std::FILE* err = std::tmpfile();
  HostConsole si("/tmp/x", vbYes, err);
  EXPECT_EQ(si.MsgBox("Sovrascrivere?", vbYesNo | vbQuestion, "Vorn XP"), vbYes);
  EXPECT_EQ(si.MsgBox("Procedere?", vbOKCancel, "Vorn XP"), vbOK);
  EXPECT_EQ(si.MsgBox("Fatto.", vbInformation, "Vorn XP"), vbOK);
  HostConsole no("/tmp/x", vbNo, err);
  EXPECT_EQ(no.MsgBox("Sovrascrivere?", vbYesNo | vbQuestion, "Vorn XP"), vbNo);
  EXPECT_EQ(no.MsgBox("Procedere?", vbOKCancel, "Vorn XP"), vbCancel);
  EXPECT_EQ(no.MsgBox("Salvare?", vbYesNoCancel, "Vorn XP"), vbNo);
  std::string testo = Leggi(err);
  EXPECT_NE(testo.find("Vorn XP: Sovrascrivere?\n  -> sì (--si)\n"), std::string::npos) << testo;
  EXPECT_NE(testo.find("Vorn XP: Fatto.\n"), std::string::npos);
  std::fclose(err);
}

TEST(HostConsole, QuestionWithoutTerminalOrAnswerFails) {
  std::FILE* err = std::tmpfile();
  std::FILE* in = std::tmpfile();  // an empty input: no answer can come
  HostConsole h("/tmp/x", std::nullopt, err, in);
  EXPECT_THROW(h.MsgBox("Sovrascrivere?", vbYesNo | vbQuestion, "Vorn XP"), DomandaSenzaRisposta);
  // An OK-only message needs no answer.
  EXPECT_EQ(h.MsgBox("Codice inesistente.", vbExclamation, "Vorn XP"), vbOK);
  std::fclose(in);
  std::fclose(err);
}

TEST(HostConsole, AnswersReadFromInput) {
  std::FILE* err = std::tmpfile();
  std::FILE* in = std::tmpfile();
  std::fputs("forse\nsì\nn\n", in);
  std::rewind(in);
  HostConsole h("/tmp/x", std::nullopt, err, in);
  EXPECT_EQ(h.MsgBox("Uno?", vbYesNo, "T"), vbYes);  // "forse" is asked again
  EXPECT_EQ(h.MsgBox("Due?", vbYesNo, "T"), vbNo);
  std::fclose(in);
  std::fclose(err);
}

TEST(HostConsole, ProgressLineCountsOnALog) {
  std::FILE* err = std::tmpfile();
  {
    FormConsole f(err);
    for (int i = 0; i < 1000; ++i) f.msgbar("Registrazione " + std::to_string(i));
    EXPECT_EQ(f.Conteggio(), 1000);
  }
  std::string testo = Leggi(err);
  // Not a terminal: the first line at once, then at most one every few seconds.
  EXPECT_EQ(testo.rfind("Registrazione 0  [1, ", 0), 0u) << testo;
  EXPECT_LE(std::count(testo.begin(), testo.end(), '\n'), 3);
  std::fclose(err);
}

TEST(Comando, HelpVersionAndUnknownCommand) {
  std::ostringstream out;
  std::FILE* err = std::tmpfile();
  EXPECT_EQ(cli::Esegui({"--version"}, out, err), 0);
  EXPECT_EQ(out.str(), std::string("vorn ") + VORN_VERSION + "\n");
  out.str("");
  EXPECT_EQ(cli::Esegui({"--help"}, out, err), 0);
  for (const auto& [nome, c] : cli::Registro()) EXPECT_NE(out.str().find(nome), std::string::npos) << nome;
  EXPECT_EQ(cli::Esegui({"nessuno"}, out, err), 2);
  EXPECT_NE(Leggi(err).find("comando sconosciuto: nessuno"), std::string::npos);
  std::fclose(err);
}

// Every registered command answers --help with its summary and its usage, exit 0, touching no
// company. Below, the usage lines that users are told to type.
TEST(Comando, EveryCommandTellsItsUsage) {
  for (const auto& [nome, c] : cli::Registro()) {
    std::istringstream parole(nome + " --help");  // "stampa mastrini": two words
    std::vector<std::string> a{std::istream_iterator<std::string>(parole), {}};
    EsitoComando r = EseguiVorn(a);
    EXPECT_EQ(r.rc, 0) << nome << ": " << r.err;
    EXPECT_EQ(r.out.rfind("vorn " + nome + ": ", 0), 0u) << r.out;
    EXPECT_NE(r.out.find("Uso: vorn "), std::string::npos) << r.out;
  }
  for (auto [comando, uso] : std::vector<std::pair<std::vector<std::string>, const char*>>{
           {{"crea-azienda", "--help"}, "Uso: vorn crea-azienda FILE [--modello standard|semplificato]"},
           {{"crea-azienda", "--help"}, "--pg-database"},
           {{"azienda", "--help"}, "Uso: vorn azienda FILE"},
           {{"esporta", "--help"}, "Uso: vorn esporta FILE CARTELLA [--archivi NOME,...]"},
           {{"spesometro", "--help"}, "Uso: vorn spesometro FILE --anno AAAA"}}) {
    EsitoComando r = EseguiVorn(comando);
    EXPECT_EQ(r.rc, 0) << comando[0];
    EXPECT_NE(r.out.find(uso), std::string::npos) << r.out;
  }
}
