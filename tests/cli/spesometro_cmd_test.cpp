// vorn spesometro as a user meets it: options refused before anything is done, outputs that are
// not statement files of ours refused before the extraction, and a whole run (extraction, file,
// totals, CSV) that a second run may repeat over its own files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "ComandoAzienda.h"
#include "frame/Comuni.h"
#include "ledger/clsPrimaNota.h"
#include "support/Azienda.h"
#include "support/DocumentiIva.h"

using namespace vorn;
using namespace vorn::test;
namespace fs = std::filesystem;

namespace {

class ComandoSpesometro : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    app = dir->Percorso() + "/app";
    cn->Esegui("UPDATE [Tabella Azienda] SET [Partita IVA] = '01234567890', [Codice Fiscale] = '01234567890'");
    cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale], [Partita Iva], "
               "[Codice Nazione], [SottocontoApparten]) VALUES ('1', 'Rossi Meccanica S.r.l.', '01234567897', 'IT', "
               "'0501001')");
    clsPrimaNota pn;
    pn.cn = cn;
    RegistraDocumento(pn, {"00001", "15/01/2024", "FTV", "1", "01", 1, 0, "1220", "C", "1"},
                      {{"D", "0501001", "1220", "C"}, {"A", "7001001", "1000"}},
                      {{"A", "1401001", "022", "1000", "220"}});
  }
  EsitoComando Vorn(const std::vector<std::string>& resto) {
    return EseguiVorn(RigaComando(app, "spesometro", Pg(), file, pg, resto));
  }
  long Estratte() { return static_cast<long>(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Spesometro2013]"))); }
  std::string app;
};

VORN_SU_DUE_MOTORI(ComandoSpesometro);

}  // namespace

TEST_P(ComandoSpesometro, WrongOptionsAndForeignFilesAreRefusedBeforeTheExtraction) {
  const std::string d = dir->Percorso();
  struct Caso {
    std::vector<std::string> argomenti;
    int rc;
    const char* messaggio;
  };
  std::ofstream(d + "/lettera.txt") << "Gentile cliente,\n";
  const std::vector<Caso> casi = {
      {{"--estrai"}, 2, "manca --anno"},
      {{"--anno", "2024"}, 2, "nulla da fare"},
      {{"--anno", "2024", "--estrai", "--formato", "misto", "--file", d + "/f.txt"}, 2, "--formato"},
      {{"--anno", "2024", "--estrai", "--quadri", "FE,XX", "--file", d + "/f.txt"}, 2, "quadro sconosciuto 'XX'"},
      {{"--anno", "2024", "--estrai", "--csv", d + "/f.csv"}, 2, "--verifica e --csv leggono"},
      {{"--anno", "2024", "--estrai", "--file", d + "/lettera.txt"}, 1, "non è un file telematico dello spesometro"},
      {{"--anno", "2024", "--estrai", "--file", d + "/f.txt", "--segnalazioni", d + "/lettera.txt"}, 1,
       "non è un report dello spesometro"},
  };
  for (const auto& c : casi) {
    EsitoComando r = Vorn(c.argomenti);
    EXPECT_EQ(r.rc, c.rc) << c.messaggio;
    EXPECT_NE(r.err.find(c.messaggio), std::string::npos) << r.err;
  }
  if (!Pg()) {
    // The company's own file is no statement file either.
    EsitoComando r = Vorn({"--anno", "2024", "--estrai", "--file", file});
    EXPECT_EQ(r.rc, 1);
  }
  EXPECT_EQ(Estratte(), 0);
  EXPECT_EQ(LeggiFile(d + "/lettera.txt"), "Gentile cliente,\n");
  EXPECT_FALSE(fs::exists(d + "/f.txt"));
}

TEST_P(ComandoSpesometro, ARunWritesTheFileAndReadsItBackAndCanBeRepeated) {
  const std::string d = dir->Percorso();
  const std::vector<std::string> argomenti = {"--anno",         "2024",          "--estrai",  "--file",
                                              d + "/sp.txt",    "--verifica",    d + "/v.txt", "--csv",
                                              d + "/sp.csv",    "--segnalazioni", d + "/s.txt"};
  for (int volta = 0; volta < 2; ++volta) {
    EsitoComando r = Vorn(argomenti);
    ASSERT_EQ(r.rc, 0) << r.err;
    EXPECT_NE(r.out.find("Spesometro 2024: estratte 1 righe IVA, 1 documenti.\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("File telematico: " + d + "/sp.txt (5 record: 0 C, 1 D); segnalazioni: 0 in " + d +
                         "/s.txt\n"),
              std::string::npos)
        << r.out;
  }
  EXPECT_EQ(fs::file_size(d + "/sp.txt"), 5u * 1900u);
  EXPECT_EQ(Estratte(), 1);
  EXPECT_NE(LeggiFile(d + "/v.txt").find("FE Importo" + std::string(57, ' ') + ": 1.000\n"), std::string::npos);
  // An existing file read again, without writing it.
  EsitoComando r = Vorn({"--anno", "2024", "--telematico", d + "/sp.txt", "--csv", d + "/sp.csv"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_NE(LeggiFile(d + "/sp.csv").find("\"1\";\"FE\";\"001\";\"010\";=\"1000\";\"Importo\""), std::string::npos);
}
