// vorn cespiti, ammortamenti and registro-cespiti on a company made from the standard model:
// an asset added with its purchase, the year's depreciation written and posted once, the
// register printed.
#include <gtest/gtest.h>

#include <string>

#include "ComandoAzienda.h"
#include "frame/Comuni.h"
#include "ledger/VerificaSaldi.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ComandiCespiti : public AziendaStandardTest {
 protected:
  EsitoComando Vorn(const std::string& comando, const std::vector<std::string>& resto) {
    return EseguiVorn(RigaComando(dir->Percorso(), comando, Pg(), file, pg, resto));
  }
  int64_t Conta(const std::string& sql) { return NullToZeroLng(cn->Scalare(sql)); }
};

TEST_P(ComandiCespiti, AcquistoAmmortamentoRegistro) {
  auto r = Vorn("cespiti", {"--aggiungi", "PC1", "--categoria", "15", "--data", "01/07/2024", "--costo", "3000,00"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(Vorn("cespiti", {"--aggiungi", "PC1", "--categoria", "15", "--data", "01/07/2024", "--costo", "1"}).rc, 1);
  EXPECT_EQ(Vorn("cespiti", {"--aggiungi", "X", "--categoria", "99", "--data", "01/07/2024", "--costo", "1"}).rc, 1);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Cespiti]"), 1);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [CespitiMovimentiRighe]"), 1);
  EXPECT_EQ(Vorn("ammortamenti", {"--anno", "24"}).rc, 2);

  r = Vorn("ammortamenti", {"--anno", "2024", "--contabilizza"});
  ASSERT_EQ(r.rc, 0) << r.err;
  // Office machines at 20%, halved in the first year: 300,00; civil 300 x 184 / 366 = 150,82.
  EXPECT_NE(r.out.find("PC1        300,00       0,00     300,00 150,82"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("Registrati in prima nota: 1 righe di ammortamento, registrazioni 00001."), std::string::npos)
      << r.out;
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota]"), 2);
  EXPECT_TRUE(VerificaSaldi(*cn).empty());

  r = Vorn("ammortamenti", {"--anno", "2024", "--contabilizza"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_NE(r.out.find("Gli ammortamenti dell'anno sono già registrati in prima nota."), std::string::npos) << r.out;
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota]"), 2);

  r = Vorn("cespiti", {"--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_NE(r.out.find("PC1    PC1         15   01/07/2024 3.000,00 300,00 2.700,00"), std::string::npos) << r.out;

  r = Vorn("registro-cespiti", {"--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  const std::string stampa = dir->Percorso() + "/Temp/RegistroCespiti_2024.txt";
  EXPECT_EQ(r.out, stampa + "\n");
  EXPECT_NE(LeggiFile(stampa).find("TOTALE GENERALE"), std::string::npos);
  EXPECT_EQ(Vorn("registro-cespiti", {"--anno", "2023"}).out, "Nessun dato da stampare.\n");
  r = Vorn("registro-cespiti", {"--anno", "2024", "--bollato", "--uscita", dir->Percorso() + "/Temp/b.txt"});
  ASSERT_EQ(r.rc, 0) << r.err;
  r = Vorn("registro-cespiti", {"--anno", "2024", "--bollato", "--uscita", dir->Percorso() + "/Temp/c.txt"});
  EXPECT_EQ(r.rc, 1);
  EXPECT_NE(r.err.find("già stampato in definitivo"), std::string::npos) << r.err;
}

VORN_SU_DUE_MOTORI(ComandiCespiti);

}  // namespace
