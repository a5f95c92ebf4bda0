// vorn progressivi-iva: the table of the VAT progressives as the user reads it, and the year
// that the command wants.
#include <gtest/gtest.h>

#include <string>

#include "ComandoAzienda.h"
#include "frame/Globali.h"
#include "support/Azienda.h"
#include "vat/clsProgressiviIva.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ComandoProgressiviIva : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    p.cn = cn;
    G().DecimaliImporti = 2;
  }

  void Progressivo(const char* ind, const char* tipo, const char* registro, const char* numero, const char* codice,
                   const char* imponibile, const char* iva, const Valore& data = Valore::Null()) {
    bool cancel = false;
    ASSERT_TRUE(p.SalvaRecord_ProgressivoIva(ind, tipo, registro, numero, codice, *Importo::DaTestoPunto(imponibile),
                                             *Importo::DaTestoPunto(iva), data, "prova", 1, cancel));
  }

  // vorn progressivi-iva on the test's company, then `resto`: the exit code and what it printed.
  std::pair<int, std::string> Vorn(const std::vector<std::string>& resto) {
    EsitoComando r = EseguiVorn(RigaComando(dir->Percorso(), "progressivi-iva", Pg(), file, pg, resto));
    return {r.rc, r.out};
  }

  clsProgressiviIva p;
};

VORN_SU_DUE_MOTORI(ComandoProgressiviIva);

}  // namespace

TEST_P(ComandoProgressiviIva, ListsYearAndPeriodByRegisterAndCodeWithTheLastPrint) {
  EXPECT_EQ(Vorn({"--anno", "2025"}).second, "Progressivi IVA dell'anno 2025\n\nNessun progressivo IVA.\n");

  Progressivo("PI", "R", "1", "01", "022", "1234567.8912", "271604.9361");
  Progressivo("PI", "D", "1", "01", "022", "1000", "220");
  Progressivo("PI", "R", "1", "01", "004", "250.005", "10.0002");
  Progressivo("PI", "D", "2", "01", "010", "-50.5", "-5.05");
  Progressivo("P2", "R", "1", "01", "00", "0", "0", Valore("31/03/2025"));
  // A register printed that has no progressive yet.
  Progressivo("P2", "R", "3", "02", "00", "0", "0", Valore("28/02/2025"));

  auto [rc, out] = Vorn({"--anno", "2025"});
  EXPECT_EQ(rc, 0);
  // Every column as wide as its widest cell; a register without progressives shows its date alone.
  EXPECT_EQ(out,
            "Progressivi IVA dell'anno 2025\n"
            "\n"
            "Registro                    Num. Codice IVA Imponibile anno   IVA anno Imponibile periodo IVA periodo "
            "Ultima stampa\n"
            "1 VENDITE                   01   004                 250,01      10,00" + std::string(32, ' ') +
            "31/03/2025\n"
            "1 VENDITE                   01   022           1.234.567,89 271.604,94           1.000,00      220,00 "
            "31/03/2025\n"
            "2 ACQUISTI                  01   010                                               -50,50       -5,05\n"
            "3 CORRISPETTIVI IN SCORPORO 02" + std::string(72, ' ') + "28/02/2025\n");
}

TEST_P(ComandoProgressiviIva, TheYearIsRequiredAndBetween1900And9999) {
  for (const char* anno : {"1899", "10000", "abc", "", "2025.5"}) EXPECT_EQ(Vorn({"--anno", anno}).first, 2) << anno;
  EXPECT_EQ(Vorn({}).first, 2);
  EXPECT_EQ(Vorn({"--anno", "1900"}).first, 0);
  EXPECT_EQ(Vorn({"--anno", "9999"}).first, 0);
}
