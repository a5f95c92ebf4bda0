// The currencies: one rate a currency whatever the date, the decimals that the formatter takes
// from the currency on the class's own connection, the symbol's defaults.
#include <gtest/gtest.h>

#include "frame/Comuni.h"
#include "masterdata/clsValute.h"
#include "support/Azienda.h"

namespace vorn::test {
namespace {

class Valute : public AziendaStandardTest {};

TEST_P(Valute, RateDecimalsAndSymbolAsTheArchiveHoldsThem) {
  cn->Esegui("DELETE FROM [Valute]");
  clsValute v;
  v.cn = cn;
  bool cancel = false;
  ASSERT_TRUE(v.SalvaRecord(Valore("KWD"), Valore("Dinaro kuwaitiano"), Valore("KD"), Valore(0.3321),
                            Valore(3), Valore("0"), Valore("15/01/2024"), Valore("t"), 0, cancel));
  cn->Esegui("INSERT INTO [Valute] ([Codice valuta], [Descrizione valuta]) VALUES ('XXX', 'Senza dati')");

  Valore d, s, c, n;
  for (const char* data : {"01/01/1999", "31/12/2030", "non una data"}) {
    ASSERT_TRUE(v.GetParametriValuta(Valore("KWD"), Valore(data), d, s, c, n)) << data;
    EXPECT_EQ(d.TestoTrim(), "Dinaro kuwaitiano");
    EXPECT_DOUBLE_EQ(NullToZeroDbl(c), 0.3321);
    EXPECT_EQ(NullToZeroLng(n), 3);
  }
  EXPECT_FALSE(v.GetParametriValuta(Valore("ZZZ"), Valore(), d, s, c, n));
  EXPECT_EQ(d.Testo(), "");
  EXPECT_EQ(NullToZeroDbl(c), 1.0);
  EXPECT_EQ(n.Testo(), "2");
  EXPECT_EQ(cn->Scalare("SELECT [Data cambio] FROM [Valute] WHERE [Codice valuta] = 'KWD'").ComeData(),
            Data::Crea(2024, 1, 15));

  // Three decimals of the currency: the short mask; none: the company's two, long mask.
  EXPECT_EQ(v.FormatValuta(Valore(*Importo::DaTestoPunto("1234.5")), Valore("KWD")), "1.234,500");
  EXPECT_EQ(v.FormatValuta(Valore(*Importo::DaTestoPunto("1234567.125")), Valore("KWD")), "1.234.567,125");
  EXPECT_EQ(v.FormatValuta(Valore(*Importo::DaTestoPunto("1234.5"))), "1.234,50");
  EXPECT_EQ(v.FormatValuta(Valore(*Importo::DaTestoPunto("1234.5")), Valore("ZZZ")), "1.234,50");
  EXPECT_EQ(NullToZeroLng(v.GetDecimaliValuta(Valore("XXX"))), 2);
  EXPECT_EQ(v.GetDecimaliValuta(Valore("ZZZ")).Testo(), "2");

  EXPECT_EQ(v.GetSimboloValuta(Valore("KWD")), "KD");
  EXPECT_EQ(v.GetSimboloValuta(Valore("XXX")), "EUR");
  EXPECT_EQ(v.GetSimboloValuta(Valore("ZZZ")), "");
  EXPECT_EQ(v.GetDescrizioneValuta(Valore("ZZZ"), &cancel), "");
  EXPECT_TRUE(cancel);
  EXPECT_EQ(host->Ultimo(), "Codice inesistente.");
  EXPECT_EQ(host->Messaggi().back().titolo, "Valute");
  EXPECT_TRUE(v.AzzeraValute());
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Valute]")), 0);
}

VORN_SU_DUE_MOTORI(Valute);

}  // namespace
}  // namespace vorn::test
