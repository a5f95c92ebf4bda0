// vorn acconto-iva and vorn riprotocolla on a company of the standard model: the advance by the
// historical method and by a base of the user's, a trial that stores nothing, the definitive
// print that the December settlement finds, the usage errors.
#include <gtest/gtest.h>

#include "frame/Comuni.h"
#include "interchange/ModelloStandard.h"
#include "support/Azienda.h"
#include "ComandoAzienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ComandoAccontoIva : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    CaricaModello(*cn, "standard");
    // Last December's VAT before its advance: 1.234,56.
    if (NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Progressivi Azienda Vorn]")) == 0)
      cn->Esegui("INSERT INTO [Progressivi Azienda Vorn] ([ImpIVACalcoloAcconto]) VALUES (1234.56)");
    else
      cn->Esegui("UPDATE [Progressivi Azienda Vorn] SET [ImpIVACalcoloAcconto] = 1234.56");
  }
  EsitoComando Vorn(const std::string& comando, const std::vector<std::string>& opzioni) {
    return EseguiVorn(RigaComando(dir->Percorso(), comando, Pg(), file, pg, opzioni));
  }
  Importo Acconto() {
    return NullToZeroCy(
        cn->Scalare("SELECT [Importo_versato] FROM [Liquidazioni Periodiche] WHERE [MeseVersamento] = '14'"));
  }
};

VORN_SU_DUE_MOTORI(ComandoAccontoIva);

TEST_P(ComandoAccontoIva, StoricoInProvaEBollato) {
  const std::string stampa = dir->Percorso() + "/acconto.txt";
  // 88% of 1.234,56 = 1.086,4128: 1.086,41. A trial stores nothing.
  auto r = Vorn("acconto-iva", {"--anno", "2025", "--uscita", stampa});
  ASSERT_EQ(r.rc, 0) << r.out << r.err;
  EXPECT_EQ(r.out, stampa + "\nAcconto IVA 2025: 1.086,41 (88,00% di 1.234,56)\n");
  EXPECT_TRUE(Acconto().Zero());
  EXPECT_NE(LeggiFile(stampa).find("Totale acconto .................:          1.086,41"), std::string::npos);

  r = Vorn("acconto-iva", {"--anno", "2025", "--bollato", "--uscita", stampa});
  ASSERT_EQ(r.rc, 0) << r.out << r.err;
  EXPECT_EQ(r.out, stampa + "\nAcconto IVA 2025: 1.086,41 (88,00% di 1.234,56), salvato per la liquidazione di "
                            "dicembre\n");
  EXPECT_EQ(Acconto(), *Importo::DaTestoPunto("1086.41"));

  // A base of the user's: 88% of 117,00 is 102,96, under the minimum of 103,29.
  r = Vorn("acconto-iva", {"--anno", "2025", "--presunto", "117,00", "--uscita", stampa});
  ASSERT_EQ(r.rc, 0) << r.out << r.err;
  EXPECT_EQ(r.out, stampa + "\nAcconto IVA 2025 non dovuto: 102,96 (88,00% di 117,00) non raggiunge il minimo di "
                            "103,29\n");
  // 50% of 1.000,00.
  r = Vorn("acconto-iva", {"--anno", "2025", "--presunto", "1000", "--percentuale", "50", "--uscita", stampa});
  EXPECT_EQ(r.out, stampa + "\nAcconto IVA 2025: 500,00 (50,00% di 1.000,00)\n");

  EXPECT_EQ(Vorn("acconto-iva", {}).rc, 2);
  EXPECT_EQ(Vorn("acconto-iva", {"--anno", "2025", "--numera-pagine"}).rc, 2);
  EXPECT_EQ(Vorn("acconto-iva", {"--anno", "2025", "--percentuale", "120"}).rc, 2);
  EXPECT_EQ(Vorn("acconto-iva", {"--anno", "2025", "--presunto", "dieci"}).rc, 2);
  EXPECT_EQ(Acconto(), *Importo::DaTestoPunto("1086.41"));
}

TEST_P(ComandoAccontoIva, RiprotocollaUnRegistroVuoto) {
  auto r = Vorn("riprotocolla", {"--registro", "1", "--anno", "2025"});
  ASSERT_EQ(r.rc, 0) << r.out << r.err;
  EXPECT_EQ(r.out, "Registro acquisti 1 del 2025: 0 righe riscritte\n");
  EXPECT_EQ(Vorn("riprotocolla", {"--anno", "2025"}).rc, 2);
  EXPECT_EQ(Vorn("riprotocolla", {"--registro", "100", "--anno", "2025"}).rc, 2);
}

}  // namespace
