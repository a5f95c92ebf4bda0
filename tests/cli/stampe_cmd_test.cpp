// The prints of vorn as a user meets them: where a report may be written, what a write that
// fails does, two prints at once, a company left as it was by the commands that only read.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "ComandoAzienda.h"
#include "Processi.h"
#include "ledger/PrimaNotaBase.h"
#include "support/DocumentiIva.h"

using namespace vorn;
using namespace vorn::test;
namespace fs = std::filesystem;

namespace {

class ComandiStampe : public PrimaNotaBase {
 protected:
  void SetUp() override {
    PrimaNotaBase::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    app = dir->Percorso() + "/app";
    for (const char* c : {"04", "10", "22"})
      cn->Esegui("INSERT INTO [Codici Iva] ([Codice Iva], [Descrizione Iva], [Aliquota]) VALUES (?, ?, ?)",
                 {Valore(c), Valore(std::string("Aliquota ") + c), Valore(std::stoi(c))});
    // One row on 1201001, one on 4001001.
    Salva(Riga("00001", "", "001", "D", "1201001", "1220"));
    Salva(Riga("00001", "", "002", "A", "4001001", "1000"));
    Salva(Riga("00001", "I", "001", "A", "2501001", "220"));
  }

  // vorn with the application folder, the command's words, the company, then `resto`.
  std::vector<std::string> Riga_(const std::vector<std::string>& comando, const std::vector<std::string>& resto) {
    std::vector<std::string> a = {"--cartella", app};
    a.insert(a.end(), comando.begin(), comando.end());
    for (auto& s : ArgomentiAzienda(Pg(), file, pg)) a.push_back(s);
    a.insert(a.end(), resto.begin(), resto.end());
    return a;
  }
  int Vorn(const std::vector<std::string>& comando, const std::vector<std::string>& resto, std::string* err = nullptr,
           std::string* out = nullptr) {
    EsitoComando r = EseguiVorn(Riga_(comando, resto));
    if (err) *err = r.err;
    if (out) *out = r.out;
    return r.rc;
  }
  int StampaIva(const std::string& uscita, std::string* err = nullptr, std::vector<std::string> altro = {}) {
    altro.insert(altro.begin(), uscita);
    return Vorn({"stampa", "codici-iva"}, altro, err);
  }
  int StampaMastrini(const std::string& uscita, const std::string& conto, std::string* err = nullptr,
                     std::vector<std::string> altro = {}) {
    altro.insert(altro.begin(), {uscita, "--conto", conto});
    return Vorn({"stampa", "mastrini"}, altro, err);
  }
  // The SQLite company closed, so that its bytes are all in the file.
  void ChiudiAzienda() {
    if (cn) cn->Close();
    cn.reset();
  }

  std::string app;
};

VORN_SU_DUE_MOTORI(ComandiStampe);

}  // namespace

TEST_P(ComandiStampe, NoReportOverTheCompanyNorOverAFileThatIsNotAReport) {
  std::string err;
  if (!Pg()) {
    ChiudiAzienda();
    const std::string prima = LeggiFile(file);
    fs::create_hard_link(file, dir->Percorso() + "/stesso file.db");
    // The company by its name, by another path and by a second name of the same file.
    for (const std::string& uscita : {file, dir->Percorso() + "/./azienda.db", dir->Percorso() + "/stesso file.db"}) {
      EXPECT_EQ(StampaIva(uscita, &err), 1) << uscita;
      EXPECT_NE(err.find("azienda"), std::string::npos) << err;
      EXPECT_EQ(StampaMastrini(uscita, "1201001", &err), 1) << uscita;
    }
    EXPECT_EQ(LeggiFile(file), prima);
  }
  // Another database, and a text of the user's: refused and untouched.
  const std::string altro = dir->Percorso() + "/altro.db";
  {
    OpzioniSqlite o;
    o.crea = true;
    auto c = Connessione::ApriSqlite(altro, o);
    c->Esegui("CREATE TABLE t (x TEXT)");
    c->Close();
  }
  const std::string nota = dir->Percorso() + "/appunti.txt";
  std::ofstream(nota) << "da non perdere\n";
  const std::string altroPrima = LeggiFile(altro);
  for (const std::string& uscita : {altro, nota, dir->Percorso()}) {
    EXPECT_EQ(StampaIva(uscita, &err), 1) << uscita;
    EXPECT_EQ(Occorrenze(err, "\n"), 1u) << err;
    EXPECT_EQ(StampaMastrini(uscita, "1201001", &err), 1) << uscita;
  }
  EXPECT_EQ(LeggiFile(altro), altroPrima);
  EXPECT_EQ(LeggiFile(nota), "da non perdere\n");

  // An empty file takes a report; a report takes the next one, of either kind.
  const std::string stampa = dir->Percorso() + "/stampa.txt";
  std::ofstream{stampa};
  ASSERT_EQ(StampaIva(stampa, &err, {"--data", "31/01/2024"}), 0) << err;
  EXPECT_NE(LeggiFile(stampa).find("S T A M P A   C O D I C I  I V A"), std::string::npos);
  ASSERT_EQ(StampaIva(stampa, &err, {"--data", "29/02/2024"}), 0) << err;
  EXPECT_NE(LeggiFile(stampa).find("29/02"), std::string::npos);
  ASSERT_EQ(StampaMastrini(stampa, "1201001", &err), 0) << err;
  EXPECT_NE(LeggiFile(stampa).find("STAMPA MASTRINI"), std::string::npos);
  // No working copy is left beside the reports.
  for (const auto& e : fs::directory_iterator(dir->Percorso()))
    EXPECT_NE(e.path().filename().string().front(), '.') << e.path();
}

TEST_P(ComandiStampe, AReportThatCannotBeWrittenWholeFails) {
  std::string err;
  EXPECT_EQ(StampaIva("/dev/full", &err), 1);
  EXPECT_EQ(err.find("Operazione completata"), std::string::npos) << err;
  EXPECT_NE(err.find("/dev/full"), std::string::npos) << err;
  EXPECT_EQ(Occorrenze(err, "\n"), 1u) << err;
  EXPECT_EQ(StampaMastrini("/dev/full", "1201001", &err), 1);
  // The progress line of the card, then the error in one line.
  EXPECT_NE(err.find("\nvorn stampa mastrini: Impossibile scrivere il file /dev/full"), std::string::npos) << err;
  EXPECT_EQ(Occorrenze(err, "vorn "), 1u) << err;
  EXPECT_EQ(err.back(), '\n');
  EXPECT_EQ(err.find('\n', err.find("vorn ")), err.size() - 1) << err;
}

TEST_P(ComandiStampe, AnotherRunsWorkingFilesAreLeftAlone) {
  // What another print, running in the same application folder, has under the documented names.
  fs::create_directories(app + "/Temp");
  for (const char* n : {"StamCIVA.tmp", "mastrino.tmp", "mastrino.txt"}) std::ofstream(app + "/Temp/" + n) << "altra stampa\n";
  std::string err, out;
  ASSERT_EQ(StampaIva(dir->Percorso() + "/iva.txt", &err), 0) << err;
  ASSERT_EQ(StampaMastrini(dir->Percorso() + "/mastrini.txt", "1201001", &err), 0) << err;
  ASSERT_EQ(Vorn({"mastrino"}, {"--conto", "4001001"}, &err, &out), 0) << err;
  for (const char* n : {"StamCIVA.tmp", "mastrino.tmp", "mastrino.txt"})
    EXPECT_EQ(LeggiFile(app + "/Temp/" + n), "altra stampa\n") << n;
  std::string iva = LeggiFile(dir->Percorso() + "/iva.txt"), mastrini = LeggiFile(dir->Percorso() + "/mastrini.txt");
  for (const char* c : {"Aliquota 04", "Aliquota 10", "Aliquota 22"}) EXPECT_EQ(Occorrenze(iva, c), 1u) << iva;
  EXPECT_NE(mastrini.find("Conto 1201001"), std::string::npos) << mastrini;
  EXPECT_NE(out.find("Conto 4001001"), std::string::npos) << out;
  for (const std::string& t : {iva, mastrini, out}) EXPECT_EQ(t.find("altra stampa"), std::string::npos);
  // The runs took their working folders away.
  size_t voci = 0;
  for ([[maybe_unused]] const auto& e : fs::directory_iterator(app + "/Temp")) ++voci;
  EXPECT_EQ(voci, 3u);
}

TEST_P(ComandiStampe, PrintsRunningTogetherKeepTheirOwnOutput) {
  if (BinarioVorn().empty()) GTEST_SKIP() << "VORN_BIN non indicato";
  const std::string d = dir->Percorso();
  std::vector<std::unique_ptr<ProcessoVorn>> p;
  for (int i = 0; i < 3; ++i) {
    for (const char* conto : {"1201001", "4001001"})
      p.push_back(std::make_unique<ProcessoVorn>(
          Riga_({"stampa", "mastrini"}, {d + "/m" + conto + "-" + std::to_string(i) + ".txt", "--conto", conto}),
          d + "/out" + std::to_string(p.size()), d + "/err" + std::to_string(p.size())));
    p.push_back(std::make_unique<ProcessoVorn>(Riga_({"stampa", "codici-iva"}, {d + "/iva" + std::to_string(i) + ".txt"}),
                                               d + "/out" + std::to_string(p.size()), d + "/err" + std::to_string(p.size())));
  }
  for (size_t i = 0; i < p.size(); ++i) EXPECT_EQ(p[i]->Attendi(), 0) << LeggiFile(d + "/err" + std::to_string(i));
  for (int i = 0; i < 3; ++i) {
    std::string a = LeggiFile(d + "/m1201001-" + std::to_string(i) + ".txt");
    std::string b = LeggiFile(d + "/m4001001-" + std::to_string(i) + ".txt");
    EXPECT_EQ(Occorrenze(a, "Conto 1201001"), 1u) << a;
    EXPECT_EQ(Occorrenze(a, "Conto 4001001"), 0u) << a;
    EXPECT_EQ(Occorrenze(b, "Conto 4001001"), 1u) << b;
    EXPECT_EQ(Occorrenze(b, "Conto 1201001"), 0u) << b;
    EXPECT_EQ(Occorrenze(LeggiFile(d + "/iva" + std::to_string(i) + ".txt"), "Aliquota 22"), 1u);
  }
}

TEST_P(ComandiStampe, CommandsThatOnlyReadLeaveTheCompanyFileAsItWas) {
  if (Pg()) GTEST_SKIP() << "il file di un'azienda SQLite";
  // A company in the classic journal mode: opening it for writing would switch it to WAL.
  cn->Esegui("PRAGMA journal_mode=DELETE");
  ChiudiAzienda();
  const std::string prima = LeggiFile(file);
  const std::string d = dir->Percorso();
  std::string err;
  for (const auto& c : std::vector<std::vector<std::string>>{{"azienda"}, {"piano-conti"}, {"clienti"}, {"fornitori"},
                                                           {"causali"}, {"codici-iva"}, {"prima-nota"}, {"verifica"}})
    EXPECT_EQ(Vorn(c, {}, &err), 0) << c[0] << ": " << err;
  EXPECT_EQ(Vorn({"mastrino"}, {"--conto", "1201001"}, &err), 0) << err;
  EXPECT_EQ(StampaIva(d + "/iva.txt", &err), 0) << err;
  EXPECT_EQ(StampaMastrini(d + "/m.txt", "1201001", &err), 0) << err;
  EXPECT_EQ(Vorn({"stampa", "mastrini"}, {d + "/tutti.txt", "--tutti"}, &err), 0) << err;
  EXPECT_TRUE(LeggiFile(file) == prima) << "il file dell'azienda è cambiato";
  EXPECT_FALSE(fs::exists(file + "-wal"));
}

TEST_P(ComandiStampe, RigheIsTheWholePageInEveryPrint) {
  const std::string d = dir->Percorso();
  std::string err;
  // The VAT codes: a head of seven lines and a foot of one leave one line of body at 9.
  EXPECT_EQ(StampaIva(d + "/iva.txt", &err, {"--righe", "8"}), 2);
  EXPECT_NE(err.find("da 9 a 10000"), std::string::npos) << err;
  ASSERT_EQ(StampaIva(d + "/iva.txt", &err, {"--righe", "9"}), 0) << err;
  std::string iva = LeggiFile(d + "/iva.txt");
  EXPECT_EQ(Occorrenze(iva, "\n"), 27u) << iva;  // three codes, a page each
  EXPECT_EQ(Occorrenze(iva, "Pag:"), 3u);
  // The ledger cards: a head of three lines and the card's heading of six leave one line at 10.
  EXPECT_EQ(StampaMastrini(d + "/m.txt", "1201001", &err, {"--righe", "9"}), 2);
  EXPECT_NE(err.find("da 10 a 10000"), std::string::npos) << err;
  ASSERT_EQ(StampaMastrini(d + "/m.txt", "1201001", &err, {"--righe", "10"}), 0) << err;
  std::string m = LeggiFile(d + "/m.txt");
  // The row, the rule and the two lines of totals: four pages of ten lines.
  EXPECT_EQ(Occorrenze(m, "\n"), 40u) << m;
  EXPECT_EQ(Occorrenze(m, "Pag:"), 4u);
}

TEST_P(ComandiStampe, AnUnknownAccountIsAnError) {
  std::string err, out;
  EXPECT_EQ(Vorn({"mastrino"}, {"--conto", "9999999"}, &err, &out), 1);
  EXPECT_NE(err.find("sottoconto sconosciuto: 9999999"), std::string::npos) << err;
  EXPECT_EQ(out, "");
  EXPECT_EQ(StampaMastrini(dir->Percorso() + "/m.txt", "9999999", &err), 1);
  EXPECT_FALSE(fs::exists(dir->Percorso() + "/m.txt"));
  // A sub-account of the chart without movements is no error.
  EXPECT_EQ(Vorn({"mastrino"}, {"--conto", "1202001"}, &err, &out), 0) << err;
  EXPECT_NE(out.find("Nessun movimento"), std::string::npos) << out;
}
