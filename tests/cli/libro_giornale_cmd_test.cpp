// vorn libro-giornale as a user meets it: the options it refuses before touching anything, a
// trial that leaves the books as they were, a definitive print and the month printed again.
#include <gtest/gtest.h>

#include <filesystem>

#include "ComandoAzienda.h"
#include "frame/Comuni.h"
#include "ledger/clsPrimaNota.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;
namespace fs = std::filesystem;

namespace {

class ComandoLibroGiornale : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    app = dir->Percorso() + "/app";
    pn.cn = cn;
    cn->Esegui("UPDATE [Tabella Azienda] SET [Ragione Sociale] = 'Prova Giornale S.r.l.', [Partita IVA] = "
               "'01234567890'");
    // Two entries of January, of two rows each: 1.000,00 and 250,50 on each side.
    Entrata("00001", "10/01/2024", "6001001", "0501001", "1000");
    Entrata("00002", "25/01/2024", "0601001", "0501001", "250.50");
    // The company's counters, as posting leaves them: the book's start at row 0.
    pn.AggiornaNumeroUltimaRegistrazione(Valore(2), Valore("prova"), 1);
  }

  void Entrata(const char* numero, const char* data, const char* dare, const char* avere, const char* importo) {
    Giroconto(pn, numero, data, dare, avere, importo);
  }

  using Esito = EsitoComando;
  Esito Vorn(const std::vector<std::string>& resto) {
    return EseguiVorn(RigaComando(app, "libro-giornale", Pg(), file, pg, resto));
  }

  long Conta(const std::string& sql) { return static_cast<long>(NullToZeroLng(cn->Scalare(sql))); }
  long Marcate() { return Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE substr([Stringa10indicatori], 2, 1) = 'G'"); }
  long UltimaRiga() { return Conta("SELECT [NumRigaLibroGiornale] FROM [Progressivi Azienda Vorn]"); }

  clsPrimaNota pn;
  std::string app;
};

VORN_SU_DUE_MOTORI(ComandoLibroGiornale);

}  // namespace

TEST_P(ComandoLibroGiornale, BadOptionsAreRefusedBeforeAnythingIsWritten) {
  const std::vector<std::pair<std::vector<std::string>, const char*>> casi = {
      {{"--mese", "13", "--anno", "2024"}, "--mese vuole un numero intero da 1 a 12: 13"},
      {{"--mese", "1"}, "manca --anno"},
      {{"--anno", "2024"}, "manca --mese"},
      {{"--mese", "1", "--anno", "2024", "--righe", "13"}, "--righe"},
      {{"--mese", "1", "--anno", "2024", "--bollato", "--nulla"}, "--nulla"},
  };
  for (const auto& [argomenti, messaggio] : casi) {
    Esito r = Vorn(argomenti);
    EXPECT_EQ(r.rc, 2) << messaggio;
    EXPECT_NE(r.err.find(messaggio), std::string::npos) << r.err;
  }
  EXPECT_FALSE(fs::exists(app + "/Temp/LibroGiornale_202401.txt"));
  EXPECT_EQ(Marcate(), 0);
}

TEST_P(ComandoLibroGiornale, TrialThenDefinitiveThenNothingLeft) {
  const std::string stampa = app + "/Temp/LibroGiornale_202401.txt";
  Esito prova = Vorn({"--mese", "1", "--anno", "2024", "--codici-conti"});
  ASSERT_EQ(prova.rc, 0) << prova.err;
  EXPECT_EQ(prova.out, stampa + "\n");
  const std::string testo = LeggiFile(stampa);
  EXPECT_NE(testo.find("000004 "), std::string::npos);
  EXPECT_NE(testo.find("TOTALE DARE  PROGRESSIVO                                                      1.250,50"),
            std::string::npos);
  EXPECT_EQ(Marcate(), 0);
  EXPECT_EQ(UltimaRiga(), 0);

  Esito bollato = Vorn({"--mese", "1", "--anno", "2024", "--codici-conti", "--bollato"});
  ASSERT_EQ(bollato.rc, 0) << bollato.err;
  EXPECT_EQ(LeggiFile(stampa), testo);
  EXPECT_EQ(Marcate(), 4);
  EXPECT_EQ(UltimaRiga(), 4);

  Esito ancora = Vorn({"--mese", "1", "--anno", "2024", "--bollato"});
  EXPECT_EQ(ancora.rc, 0) << ancora.err;
  EXPECT_EQ(ancora.out, "Nessun dato da stampare.\n");
  EXPECT_EQ(UltimaRiga(), 4);
  for (const auto& t : cn->Tabelle()) EXPECT_NE(LCase(t).rfind("vorn", 0), 0u) << t;
}
