#include <gtest/gtest.h>

#include <sstream>

#include "cli/cmd_clienti.h"
#include "ComandoAzienda.h"
#include "frame/Globali.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;
using vorn::cli::ElencaClientiFornitori;

class ComandoClienti : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    cf.cn = cn;
    G().DecimaliImporti = 2;
  }
  void Cliente(const char* ind, const char* codice, const char* nome, const char* piva, const char* iniz,
               const char* dare, const char* avere, const char* inizProg = "0") {
    auto imp = [](const char* t) { return Valore(*Importo::DaTestoPunto(t)); };
    bool cancel = false;
    ASSERT_TRUE(cf.SalvaRecordDatiAnagrafici(ind, codice, {{"Ragione Sociale", nome}, {"Partita Iva", piva}}, "prova", 1,
                                             cancel));
    ASSERT_TRUE(cf.SalvaRecordSaldi(ind, codice, imp(iniz), imp(dare), imp(avere), imp(inizProg), imp("0"), imp("0"),
                                    "prova", 1, cancel));
  }
  void Registro() {
    // Opening debit turned to credit; a zero balance; a long name cut at its column; a
    // supplier that must not appear among the clients.
    Cliente("C", "000001", "Rossi & Figli S.r.l.", "01234567890", "1500.5", "200", "1800.25", "0.004");
    Cliente("C", "000002", "Società Cooperativa Agricola Fratelli Bianchi di Sopra", "", "0", "0", "0");
    Cliente("C", "000010", "D'Amico", "09876543210", "-250", "1234567.891", "0");
    Cliente("F", "F00001", "Fornitore", "11111111111", "0", "0", "99");
  }
  clsClientiFornitori cf;
};

// The whole commands on the test's own database or schema: each class listed apart.
TEST_P(ComandoClienti, ListsCodesNamesVatNumbersAndBalances) {
  std::ostringstream vuoto;
  EXPECT_EQ(ElencaClientiFornitori(cf, "F", vuoto), 0u);
  EXPECT_NE(vuoto.str().find("\n0 fornitori, saldo attuale complessivo 0,00\n"), std::string::npos) << vuoto.str();

  Registro();
  EsitoComando r = EseguiVorn(RigaComando(dir->Percorso(), "clienti", Pg(), file, pg));
  EXPECT_EQ(r.rc, 0) << r.err;
  ConfrontaGolden("cli/golden/clienti.txt", r.out);
  r = EseguiVorn(RigaComando(dir->Percorso(), "fornitori", Pg(), file, pg));
  EXPECT_EQ(r.rc, 0) << r.err;
  ConfrontaGolden("cli/golden/fornitori.txt", r.out);
}

VORN_SU_DUE_MOTORI(ComandoClienti);
