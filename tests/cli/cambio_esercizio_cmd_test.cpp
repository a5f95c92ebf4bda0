// vorn cambio-esercizio: the year of a small company closed and the next opened, the balances
// still those of the journal, a second run refused, the usage errors.
#include <gtest/gtest.h>

#include "frame/Comuni.h"
#include "interchange/ModelloStandard.h"
#include "ledger/clsPrimaNota.h"
#include "support/Azienda.h"
#include "ComandoAzienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ComandoCambioEsercizio : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    CaricaModello(*cn, "standard");
    clsPrimaNota pn;
    pn.cn = cn;
    // The opening of 2024 (bank against capital, 1,000.00) and a sale cashed, 250.25.
    const char* righe[][6] = {{"00001", "APE", "01/01/2024", "D", "0701001", "1000"},
                              {"00001", "APE", "01/01/2024", "A", "1001001", "1000"},
                              {"00002", "GIR", "10/03/2024", "D", "0701001", "250.25"},
                              {"00002", "GIR", "10/03/2024", "A", "7001001", "250.25"}};
    int n = 0;
    for (auto& r : righe) {
      bool cancel = false;
      pn.SalvaRecord({{"NumeroRegistrazione", Valore(r[0])}, {"NumRigaAVideo", Valore("00" + std::to_string(++n))},
                      {"CodiceCausale", Valore(r[1])}, {"DataRegistrazione", Valore(r[2])},
                      {"DataCompetenza", Valore(r[2])}, {"DareAvere", Valore(r[3])}, {"ContoPrimaNota", Valore(r[4])},
                      {"ImportoMovimento", Valore(*Importo::DaTestoPunto(r[5]))}},
                     Valore("prova"), 0, cancel);
    }
  }
  EsitoComando Vorn(const std::string& comando, const std::vector<std::string>& opzioni) {
    return EseguiVorn(RigaComando(dir->Percorso(), comando, Pg(), file, pg, opzioni));
  }
};

VORN_SU_DUE_MOTORI(ComandoCambioEsercizio);

TEST_P(ComandoCambioEsercizio, ClosesOnceAndTheBalancesStayThoseOfTheJournal) {
  auto r = Vorn("cambio-esercizio", {"--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.out << r.err;
  // Revenue closed (2 rows), profit to the result (2), bank, capital and result closed (6) and
  // reopened (6).
  EXPECT_EQ(r.out,
            "Cambio esercizio dal 01/01/2024 al 31/12/2024, apertura al 01/01/2025\n"
            "Registrazione               Numero\n"
            "Chiusura conti economici     00003\n"
            "Giroconto risultato          00004\n"
            "Chiusura conti patrimoniali  00005\n"
            "Apertura conti patrimoniali  00006\n"
            "Righe scritte: 16\n"
            "Utile di esercizio: 250,25\n");
  r = Vorn("verifica", {});
  EXPECT_EQ(r.rc, 0) << r.out << r.err;
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT SUM([ImportoMovimento]) FROM [Prima Nota] WHERE "
                                     "[NumeroRegistrazione] = '00006' AND [ContoPrimaNota] = '0701001' AND "
                                     "[DareAvere] = 'D'")),
            *Importo::DaTestoPunto("1250.25"));

  r = Vorn("cambio-esercizio", {"--anno", "2024"});
  EXPECT_EQ(r.rc, 1);
  EXPECT_NE(r.err.find("risulta già eseguito (registrazione n. 00003)"), std::string::npos) << r.err;
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota]").ComeIntero(), 4 + 16);

  EXPECT_EQ(Vorn("cambio-esercizio", {}).rc, 2);
  EXPECT_EQ(Vorn("cambio-esercizio", {"--anno", "24x"}).rc, 2);
}

}  // namespace
