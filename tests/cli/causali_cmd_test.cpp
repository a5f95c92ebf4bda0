#include <gtest/gtest.h>

#include <string>

#include "ComandoAzienda.h"
#include "frame/Globali.h"
#include "ledger/clsCausaliContabili.h"
#include "masterdata/clsCodiciIva.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ComandiCausaliIva : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    causali.cn = cn;
    iva.cn = cn;
    G().DecimaliImporti = 2;
  }

  void Causale(const char* codice, const char* descrizione, const char* registro, const char* tipo,
               const char* operativita) {
    bool cancel = false;
    ASSERT_TRUE(causali.SalvaRecord(Valore(codice),
                                    {{"DescrizioneCausale", Valore(descrizione)},
                                     {"TipoRegistroIva", Valore(registro)},
                                     {"TipoCausale", Valore(tipo)},
                                     {"OperativitaContabile", Valore(operativita)}},
                                    Valore("prova"), 1, cancel, true));
  }
  void Iva(const char* codice, const char* descrizione, const char* aliquota, double indetraibile, int natura,
           const char* split, const char* reverse) {
    bool cancel = false;
    ASSERT_TRUE(iva.SalvaRecord(Valore(codice),
                                {{"Descrizione Iva", Valore(descrizione)},
                                 {"Aliquota", Valore(*Importo::DaTestoPunto(aliquota))},
                                 {"Percentuale indetraibilità", Valore(indetraibile)},
                                 {"Natura operazione fattura PA", Valore(natura)},
                                 {"Flag Split Payment fattura PA", Valore(split)},
                                 {"Flag Reverse Charge", Valore(reverse)}},
                                Valore("prova"), 1, cancel, true));
  }

  // The whole command on the test's company (its SQLite file or its PostgreSQL schema).
  std::string Esegui(const std::string& comando) {
    EsitoComando r = EseguiVorn(RigaComando(dir->Percorso(), comando, Pg(), file, pg));
    EXPECT_EQ(r.rc, 0) << comando << ": " << r.err;
    return r.out;
  }

  clsCausaliContabili causali;
  clsCodiciIva iva;
};

VORN_SU_DUE_MOTORI(ComandiCausaliIva);

}  // namespace

TEST_P(ComandiCausaliIva, EmptyTablesSayThereIsNothingToList) {
  EXPECT_EQ(Esegui("causali"), "Nessuna causale contabile.\n");
  EXPECT_EQ(Esegui("codici-iva"), "Nessun codice IVA.\n");
}

TEST_P(ComandiCausaliIva, CausalsByCodeWithRegisterTypeCausalTypeAndOperativity) {
  // A sales invoice and a credit note with a description longer than its column; a code with
  // an apostrophe; a register type and a causal type that the code tables do not know.
  Causale("FV", "Fattura di vendita", "1", "0", "1");
  Causale("NC", "Nota di credito a cliente con una descrizione lunga", "1", "1", "1");
  Causale("D'A", "Giroconto d'apertura", "0", "", "2");
  Causale("ZZ", "Causale di prova", "12", "Q", "0");
  Causale("FA", "Fattura ad esigibilità differita", "7", "7", "1");
  ConfrontaGolden("cli/golden/causali.txt", Esegui("causali"));
}

TEST_P(ComandiCausaliIva, VatCodesByCodeWithRatesNatureSplitPaymentAndReverseCharge) {
  Iva("22", "Aliquota ordinaria", "22", 0.0, 0, "0", "0");
  Iva("04", "Aliquota ridotta 4% con descrizione lunga", "4", 40.5, 0, "0", "0");
  Iva("N6", "Inversione contabile", "0", 0.0, 6, "0", "1");
  Iva("SP", "Scissione dei pagamenti", "10", 100.0, 0, "1", "0");
  ConfrontaGolden("cli/golden/codici_iva.txt", Esegui("codici-iva"));
}
