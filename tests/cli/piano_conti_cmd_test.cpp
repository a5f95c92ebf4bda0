#include <gtest/gtest.h>

#include <sstream>

#include "cli/cmd_piano_conti.h"
#include "ComandoAzienda.h"
#include "frame/Globali.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;
using vorn::cli::ElencaPianoConti;

class ComandoPianoConti : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    piano.cn = cn;
    G().DecimaliImporti = 2;
  }

  void Salva(const char* g, const char* c, const char* s, const char* descrizione, const char* sezione = "") {
    bool cancel = false;
    RecordValori campi{{"Descrizione", Valore(descrizione)}};
    if (*sezione) campi["IndDiBilancio"] = Valore(sezione);
    ASSERT_TRUE(piano.SalvaRecord(Valore(g), Valore(c), Valore(s), campi, Valore("prova"), 1, cancel));
  }
  void Saldi(const char* g, const char* c, const char* s, const char* iniziale, const char* dare, const char* avere) {
    bool cancel = false;
    auto imp = [](const char* t) { return Valore(*Importo::DaTestoPunto(t)); };
    ASSERT_TRUE(piano.SalvaRecordSaldi(Valore(g), Valore(c), Valore(s), imp(iniziale), imp(dare), imp(avere),
                                       imp("0"), imp("0"), imp("0"), imp("0"), Valore("prova"), 1, cancel));
  }

  void Piano() {
    Salva("01", "", "", "Immobilizzazioni", "0");
    Salva("01", "01", "", "Immobilizzazioni materiali");
    Salva("01", "01", "001", "Terreni e fabbricati");
    Salva("01", "01", "002", "Impianti e macchinari con una descrizione molto più lunga del campo");
    Salva("05", "", "", "Disponibilità liquide", "0");
    Salva("05", "01", "", "Banche");
    Salva("05", "01", "001", "Banca c/c");
    Salva("60", "", "", "Ricavi", "1");
    Salva("60", "01", "", "Vendite");
    Salva("60", "01", "001", "Vendite Italia");
    // Opening debit, moved to credit; a plain debit; a credit that sums with the bank.
    Saldi("01", "01", "001", "1500.5", "200", "1800.25");
    Saldi("01", "01", "002", "0", "1234567.891", "0");
    Saldi("05", "01", "001", "-250", "100.1", "0");
    Saldi("60", "01", "001", "0", "0", "98765.4321");
  }

  clsPianoConti piano;
};

// The whole command on the test's own database or schema: groups and accounts carry the sum of
// their sub-accounts, amounts to the company's decimals.
TEST_P(ComandoPianoConti, ListsLevelsCodesDescriptionsAndBalances) {
  std::ostringstream vuoto;
  EXPECT_EQ(ElencaPianoConti(piano, vuoto), 0u);
  EXPECT_EQ(vuoto.str().find('\n'), vuoto.str().size() - 1);  // the heading alone

  Piano();
  std::ostringstream elenco;
  EXPECT_EQ(ElencaPianoConti(piano, elenco), 10u);
  EsitoComando r = EseguiVorn(RigaComando(dir->Percorso(), "piano-conti", Pg(), file, pg));
  EXPECT_EQ(r.rc, 0) << r.err;
  ConfrontaGolden("cli/golden/piano_conti.txt", r.out);
}

VORN_SU_DUE_MOTORI(ComandoPianoConti);
