#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

#include "cli/Comandi.h"
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

TEST_P(ComandoClienti, ListsCodesNamesVatNumbersAndBalances) {
  Registro();
  std::ostringstream out;
  EXPECT_EQ(ElencaClientiFornitori(cf, "C", out), 3u);
  ConfrontaGolden("cli/golden/clienti.txt", out.str());
  std::ostringstream forn;
  EXPECT_EQ(ElencaClientiFornitori(cf, "F", forn), 1u);
  ConfrontaGolden("cli/golden/fornitori.txt", forn.str());
}

TEST_P(ComandoClienti, EmptyRegisterAndTheWholeCommand) {
  std::ostringstream vuoto;
  EXPECT_EQ(ElencaClientiFornitori(cf, "F", vuoto), 0u);
  EXPECT_NE(vuoto.str().find("\n0 fornitori, saldo attuale complessivo 0,00\n"), std::string::npos) << vuoto.str();

  // The whole command, on the test's own database or schema, gives the listing of the class.
  Registro();
  std::ostringstream atteso;
  ElencaClientiFornitori(cf, "C", atteso);
  std::ostringstream out;
  std::FILE* err = std::tmpfile();
  EXPECT_EQ(cli::Esegui(RigaComando(dir->Percorso(), "clienti", Pg(), file, pg), out, err), 0);
  EXPECT_EQ(out.str(), atteso.str());
  std::ostringstream atteseForn, forn;
  ElencaClientiFornitori(cf, "F", atteseForn);
  EXPECT_EQ(cli::Esegui(RigaComando(dir->Percorso(), "fornitori", Pg(), file, pg), forn, err), 0);
  EXPECT_EQ(forn.str(), atteseForn.str());
  EXPECT_EQ(cli::Esegui({"--cartella", dir->Percorso(), "fornitori"}, out, err), 2);  // no company
  std::fclose(err);
}

VORN_SU_DUE_MOTORI(ComandoClienti);
