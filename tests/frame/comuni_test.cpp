#include <gtest/gtest.h>

#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "frame/Globali.h"
#include "support/Motori.h"

using namespace vorn;

namespace {

class Comuni : public ::testing::Test {
 protected:
  void SetUp() override { AzzeraGlobali(); }
  void TearDown() override { AzzeraGlobali(); }
};

Importo Imp(const char* t) { return *Importo::DaTestoPunto(t); }

}  // namespace

// ---------------------------------------------------------------- conversions

TEST_F(Comuni, NullToZeroFollowsTheValPrefixRule) {
  EXPECT_EQ(NullToZeroCy(Valore("12abc")), Importo(12));
  EXPECT_EQ(NullToZeroCy(Valore("abc")), Importo());
  EXPECT_EQ(NullToZeroCy(Valore::Null()), Importo());
  EXPECT_EQ(NullToZeroCy(Valore("")), Importo());
  EXPECT_EQ(NullToZeroCy(Valore("   ")), Importo());  // blanks take the failing path
  EXPECT_EQ(NullToZeroCy(Valore()), Importo());
  EXPECT_EQ(NullToZeroCy(Valore("-3.25xyz")), Imp("-3.25"));  // Val reads the point
  EXPECT_EQ(NullToZeroCy(Valore("1.234,56")), Imp("1234.56"));  // a number of the locale converts whole
  EXPECT_EQ(NullToZeroCy(Valore("12,5")), Imp("12.5"));
  EXPECT_EQ(NullToZeroCy(Valore(0.1)).Raw(), 1000);
  EXPECT_EQ(NullToZeroCy(Valore(Imp("-0.0001"))).Raw(), -1);
  EXPECT_EQ(NullToZeroCy(Valore(true)), Importo(-1));

  EXPECT_DOUBLE_EQ(NullToZeroDbl(Valore("3.5x")), 3.5);
  EXPECT_DOUBLE_EQ(NullToZeroDbl(Valore("abc")), 0.0);
  EXPECT_DOUBLE_EQ(NullToZeroDbl(Valore::Null()), 0.0);
  EXPECT_FLOAT_EQ(NullToZeroSng(Valore("2,25")), 2.25f);
  EXPECT_EQ(NullToZeroLng(Valore("2,5")), 2);  // halves to even, as the host's conversion
  EXPECT_EQ(NullToZeroLng(Valore("3,5")), 4);
  EXPECT_EQ(NullToZeroLng(Valore("42 pezzi")), 42);
  EXPECT_EQ(NullToZeroLng(Valore("  ")), 0);
  EXPECT_THROW(NullToZeroLng(Valore("99999999999")), std::overflow_error);
}

TEST_F(Comuni, NumeroInTestoUsesThePointAndNoLeadingBlank) {
  EXPECT_EQ(NumeroInTesto(Valore(Imp("12.5"))), "12.5");
  EXPECT_EQ(NumeroInTesto(Valore(-3)), "-3");
  EXPECT_EQ(NumeroInTesto(Valore(0.1)), "0.1");
  EXPECT_EQ(NumeroInTesto(Valore("1.234,5")), "1234.5");
  EXPECT_EQ(NumeroInTesto(Valore(42)), "42");
  EXPECT_EQ(TrimTesto(Valore("  a b  ")), "a b");
  EXPECT_EQ(TrimTesto(Valore(Imp("1.5"))), "1,5");
}

// ---------------------------------------------------------------- the format function

TEST_F(Comuni, FormatMasksOfTheSystem) {
  EXPECT_EQ(Format(Valore(1234567.891), "###,###,##0.00"), "1.234.567,89");
  EXPECT_EQ(Format(Valore(0.5), "###,###,##0.00"), "0,50");
  EXPECT_EQ(Format(Valore(2.5), "0"), "3");
  EXPECT_EQ(Format(Valore(-2.5), "0"), "-3");
  EXPECT_EQ(Format(Valore(7), "000"), "007");
  EXPECT_EQ(Format(Valore(1234), "000"), "1234");  // digits beyond the mask are all printed
  EXPECT_EQ(Format(Valore(1.5), "############0.00##"), "1,50");
  EXPECT_EQ(Format(Valore(1.23456), "############0.00##"), "1,2346");
  EXPECT_EQ(Format(Valore(1234.5), "############0.00##"), "1234,50");  // no grouping without ','
  EXPECT_EQ(Format(Valore(-3.5), "###0.0000"), "-3,5000");
  EXPECT_EQ(Format(Valore(1234567), "##,###,###,###,##0"), "1.234.567");
  EXPECT_EQ(Format(Valore(0), "###"), "");
  EXPECT_EQ(Format(Valore(0), "##0"), "0");
  EXPECT_EQ(Format(Valore(1e15), "0"), "1000000000000000");
  EXPECT_EQ(Format(Valore(0.0001), "0.00"), "0,00");
}

TEST_F(Comuni, FormatRoundsHalvesAwayFromZeroOnTheDecimalValue) {
  EXPECT_EQ(Format(Valore(2.345), "0.00"), "2,35");  // the double sits just below 2.345
  EXPECT_EQ(Format(Valore(-2.345), "0.00"), "-2,35");
  EXPECT_EQ(Format(Valore(0.125), "0.00"), "0,13");
  EXPECT_EQ(Format(Valore(1.005), "0.00"), "1,01");
  EXPECT_EQ(Format(Valore(0.285), "0.00"), "0,29");
  EXPECT_EQ(Format(Valore(9.995), "0.00"), "10,00");  // the carry reaches the integer part
  EXPECT_EQ(Format(Valore(999999.995), "###,##0.00"), "1.000.000,00");
  // Amounts are exact through their integer.
  EXPECT_EQ(Format(Valore(Imp("0.125")), "0.00"), "0,13");
  EXPECT_EQ(Format(Valore(Imp("-0.125")), "0.00"), "-0,13");
  EXPECT_EQ(Format(Valore(Imp("0.0005")), "0.000"), "0,001");
  EXPECT_EQ(Format(Valore(Importo::DaRaw(INT64_MAX)), "###,###,###,###,##0.00"), "922.337.203.685.477,58");
  // Text of the locale is read, then formatted.
  EXPECT_EQ(Format(Valore("2,345"), "0.00"), "2,35");
  // Zero has no sign.
  EXPECT_EQ(Format(Valore(Imp("-0.004")), "0.00"), "0,00");
  EXPECT_EQ(Format(Valore(-0.4), "0"), "0");
}

TEST_F(Comuni, FormatOfTextNullDatesAndBooleans) {
  EXPECT_EQ(Format(Valore("abc"), "0.00"), "abc");
  EXPECT_EQ(Format(Valore::Null(), "0.00"), "");
  EXPECT_EQ(Format(Valore(), "0.00"), "0,00");
  EXPECT_EQ(Format(Valore(true), "0"), "-1");
  Data d = *Data::Crea(2025, 3, 15);
  EXPECT_EQ(Format(Valore(d), "dd/mm/yyyy"), "15/03/2025");
  EXPECT_EQ(Format(Valore("2025-03-05"), "dd/mm/yy"), "05/03/25");
  EXPECT_EQ(Format(Valore(d), "yyyymmdd"), "20250315");
  EXPECT_EQ(Format(Valore(0.0), "dd/mm/yyyy"), "30/12/1899");  // a number is a serial count
  EXPECT_EQ(Format(Valore("non data"), "dd/mm/yyyy"), "non data");
  EXPECT_EQ(FormatoData(Valore::Null(), "dd/mm/yyyy"), "");
  EXPECT_TRUE(MascheraData("dd/mm/yyyy"));
  EXPECT_FALSE(MascheraData("###,##0.00"));
}

// ---------------------------------------------------------------- amounts

TEST_F(Comuni, FormattaImportoChoosesDecimalsAndFamily) {
  G().DecimaliImporti = 2;
  G().DecimaliPrezziValutaConto = 5;
  using O = std::optional<Valore>;
  auto r = RegolaFormattaImporto(std::nullopt, std::nullopt);
  EXPECT_EQ(r.decimali, 2);
  EXPECT_EQ(r.maschera, "###,###,###,###,##0.00");
  r = RegolaFormattaImporto(std::nullopt, O(true));
  EXPECT_EQ(r.decimali, 5);
  EXPECT_EQ(r.maschera, "###,###,###,###,##0.00000");
  r = RegolaFormattaImporto(std::nullopt, O(false));
  EXPECT_EQ(r.decimali, 2);
  r = RegolaFormattaImporto(std::nullopt, O(Valore("forse")));
  EXPECT_EQ(r.decimali, 0);
  EXPECT_EQ(r.maschera, "###,###,###,###,##0");
  // A currency without a global connection has DecimaliImporti, with the short family.
  r = RegolaFormattaImporto(O(Valore("06")), std::nullopt);
  EXPECT_EQ(r.decimali, 2);
  EXPECT_EQ(r.maschera, "###,###,###,##0.00");
  r = RegolaFormattaImporto(O(Valore("  ")), O(true));
  EXPECT_EQ(r.decimali, 5);
  EXPECT_EQ(r.maschera, "###,###,###,##0.00000");
  r = RegolaFormattaImporto(O(Valore("06")), O(true));  // a named currency ignores the flag
  EXPECT_EQ(r.decimali, 2);
  G().DecimaliImporti = 0;
  EXPECT_EQ(RegolaFormattaImporto(O(Valore("")), std::nullopt).maschera, "###,###,###,##0");

  EXPECT_EQ(MascheraImporto(0, true), "###,###,###,###,##0");
  EXPECT_EQ(MascheraImporto(-1, false), "###,###,###,##0");
  EXPECT_EQ(MascheraImporto(3, false), "###,###,###,##0.000");
}

TEST_F(Comuni, FormattaImportoGroupsThirteenDigitAmounts) {
  Valore grande(Imp("1234567890123.455"));  // stored as 1234567890123.4550
  G().DecimaliImporti = 2;
  EXPECT_EQ(FormattaImporto(grande), "1.234.567.890.123,46");
  EXPECT_EQ(FormattaImporto(grande, Valore("")), "1.234.567.890.123,46");  // short family: same digits
  G().DecimaliImporti = 0;
  EXPECT_EQ(FormattaImporto(grande), "1.234.567.890.123");
  EXPECT_EQ(FormattaImporto(grande, Valore("")), "1.234.567.890.123");
  EXPECT_EQ(FormattaImporto(Valore(Imp("-2.5"))), "-3");
  G().DecimaliImporti = 2;
  EXPECT_EQ(FormattaImporto(Valore(Imp("-2.345"))), "-2,35");
  EXPECT_EQ(FormattaImporto(Valore::Null()), "");
  G().DecimaliPrezziValutaConto = 3;
  EXPECT_EQ(FormattaImporto(Valore(Imp("1234.5678")), std::nullopt, Valore(true)), "1.234,568");
  EXPECT_EQ(FormattaDecimali(Valore(1234.5)), "1.234,50");
  EXPECT_EQ(FormattaDecimali(Valore(1234.5), Valore(0)), "1.235");
  EXPECT_EQ(FormattaDecimali(Valore(0.12345), Valore(4)), "0,1235");
}

TEST_F(Comuni, RoundingAndDividingAmounts) {
  G().DecimaliImporti = 2;
  EXPECT_EQ(ArrotondaImporto(Valore(Imp("1.235"))), Imp("1.24"));
  EXPECT_EQ(ArrotondaImporto(Valore(Imp("-1.235"))), Imp("-1.24"));
  EXPECT_EQ(ArrotondaImporto(Valore(Imp("1234567.994"))), Imp("1234567.99"));
  G().DecimaliImporti = 0;
  EXPECT_EQ(ArrotondaImporto(Valore(Imp("1234.5"))), Importo(1235));
  EXPECT_DOUBLE_EQ(ArrotondaDecimali(Valore(2.345), Valore(2)), 2.35);
  EXPECT_DOUBLE_EQ(ArrotondaDecimali(Valore(-1234.5), Valore(0)), -1235.0);

  double d = 0;
  EXPECT_EQ(DividiImporto(Valore(Imp("10.5")), d), Imp("10.5"));
  EXPECT_EQ(d, 1.0);
  Valore dv(0);
  EXPECT_EQ(DividiImporto(Valore(Imp("10.5")), dv), Imp("10.5"));
  EXPECT_DOUBLE_EQ(NullToZeroDbl(dv), 1.0);
  double tre = 3;
  EXPECT_EQ(DividiImporto(Valore(Importo(10)), tre), Imp("3.3333"));
  EXPECT_EQ(DividiImporto(Valore(Importo(-20)), tre), Imp("-6.6667"));
  EXPECT_EQ(tre, 3.0);

  EXPECT_DOUBLE_EQ(ArrotondaMultiplo(7, 5, 0), 5);
  EXPECT_DOUBLE_EQ(ArrotondaMultiplo(7, 5, 1), 10);
  EXPECT_DOUBLE_EQ(ArrotondaMultiplo(7.5, 5, 2), 10);  // 1.5 rounds away from zero
  EXPECT_DOUBLE_EQ(ArrotondaMultiplo(-7, 5, 0), -10);  // toward minus infinity
  EXPECT_DOUBLE_EQ(ArrotondaMultiplo(7, 5, 9), 7);
  EXPECT_DOUBLE_EQ(ArrotondaMultiplo(10, 5, 1), 10);  // a whole quotient stays
  EXPECT_DOUBLE_EQ(ArrotondaMultiplo(7, 0, 1), 7);    // cannot raise
}

TEST_F(Comuni, InterchangeNumberTexts) {
  EXPECT_EQ(FormatoPunto4(Valore(1234.5), 0), "1234.50");
  EXPECT_EQ(FormatoPunto4(Valore(Imp("1.2345")), 0), "1.2345");
  EXPECT_EQ(FormatoPunto4(Valore(-0.5), 1), "             -0.50");
  EXPECT_EQ(FormatoPunto4Cifre(Valore(-3.5)), "-3.5000");
  EXPECT_EQ(FormatoPunto4Cifre(Valore(12345.6)), "12345.6000");
  EXPECT_EQ(FormatoPunto6Cifre(Valore(0.1)), "0.100000");
  EXPECT_EQ(Formato3Cifre(Valore(0)), "");
  EXPECT_EQ(Formato3Cifre(Valore("")), "");
  EXPECT_EQ(Formato3Cifre(Valore(7)), "007");
  EXPECT_EQ(Formato5Cifre(Valore("123")), "00123");
  EXPECT_EQ(Formato5Cifre(Valore::Null()), "");
}

// ---------------------------------------------------------------- text

TEST_F(Comuni, PadsTrimTheCallersVariableAndCutKeepingTheBeginning) {
  Valore v("  abcdefgh  ");
  EXPECT_EQ(PadDestra(v, 5), "abcde");
  EXPECT_EQ(v, Valore("abcdefgh"));  // trimmed, not cut
  std::string s = " xy ";
  EXPECT_EQ(PadDestra(s, 5), "   xy");
  EXPECT_EQ(s, "xy");
  s = " xy ";
  EXPECT_EQ(PadSinistra(s, 5), "xy   ");
  EXPECT_EQ(s, "xy");
  EXPECT_EQ(PadCentro(Valore("ab"), 5), " ab  ");  // the odd blank behind
  EXPECT_EQ(PadCentro(Valore("ab"), 6), "  ab  ");
  EXPECT_EQ(PadSinistra(Valore("abc"), 0), "");
  EXPECT_EQ(PadDestra(Valore::Null(), 3), "   ");
  Valore n(42);
  EXPECT_EQ(PadDestra(n, 5), "   42");
  EXPECT_EQ(n, Valore(42));  // a number stays a number
}

TEST_F(Comuni, WidthsCountCharactersOfUtf8) {
  EXPECT_EQ(LunghezzaTesto("Attività"), 8u);
  EXPECT_EQ(PadDestra(Valore("Attività"), 10), "  Attività");
  EXPECT_EQ(PadSinistra(Valore("Attività"), 9), "Attività ");
  EXPECT_EQ(PadSinistra(Valore("città"), 5), "città");
  EXPECT_EQ(PadSinistra(Valore("perché sì"), 6), "perché");
  EXPECT_EQ(PadCentro(Valore("è"), 4), " è  ");
  EXPECT_EQ(SinistraTesto("àèìòù", 2), "àè");
  EXPECT_EQ(DestraTesto("àèìòù", 2), "òù");
  EXPECT_EQ(MedioTesto("àèìòù", 2, 3), "èìò");
  EXPECT_EQ(MedioTesto("àèìòù", 4), "òù");
}

TEST_F(Comuni, TextHelpers) {
  EXPECT_EQ(RaddoppiaApici("l'anno"), "l''anno");
  EXPECT_EQ(RaddoppiaApici("a''b"), "a''''b");  // adjacent apostrophes, each doubled once
  EXPECT_EQ(RaddoppiaApici("'"), "''");
  EXPECT_EQ(RaddoppiaApici(""), "");
  EXPECT_EQ(VirgolaInPunto(Valore(" 1,5 ")), "1.5");
  EXPECT_EQ(VirgolaInPunto(Valore(Imp("-2.25"))), "-2.25");
  EXPECT_EQ(SostituisciCarattere("a-b-c", "-", "+"), "a+b+c");
  EXPECT_EQ(SostituisciCarattere("però", "ò", "o'"), "pero'");
  EXPECT_EQ(TogliSottolineato("_a_b_"), "ab");
  EXPECT_EQ(TogliNul(std::string("a\0b\0", 4)), "ab");
  EXPECT_EQ(TogliNul(""), "");
  EXPECT_EQ(AggiungiBarra("/dati"), "/dati/");
  EXPECT_EQ(AggiungiBarra("   "), "   ");
  EXPECT_EQ(AggiungiBarra(""), "");
}

// ---------------------------------------------------------------- SQL fragments

TEST_F(Comuni, SqlFragmentTexts) {
  // What the filters find is checked on both engines below.
  EXPECT_EQ(SqlFiltroNumero(Valore(12), "[N]"), " (([N])=12)");
  EXPECT_EQ(SqlFiltroDecimale(Valore(Imp("-0.25")), "[N]"), " (([N])=-0.25)");
  EXPECT_THROW(SqlFiltroNumero(Valore("1; DROP TABLE x"), "[N]"), ErroreDb);

  EXPECT_EQ(SqlNumero(Valore(Imp("1234.5"))), "1234.5");
  EXPECT_EQ(SqlNumero(Valore("1.234,5678")), "1234.5678");
  EXPECT_EQ(SqlNumero(Valore(3.14159)), "3.1416");
  EXPECT_EQ(SqlNumero(Valore("12abc")), "12");
  EXPECT_EQ(SqlNumero(Valore::Null()), "0");
  EXPECT_EQ(SqlNumero(Valore(-0.5)), "-0.5");
}

TEST_F(Comuni, SqlDataFollowsTheEngine) {
  Data d = *Data::Crea(2025, 3, 5);
  G().IndSqlServer = "";  // not loaded yet: SQLite's form
  EXPECT_EQ(SqlData(Valore(d)), "'2025-03-05'");
  EXPECT_EQ(SqlData(Valore("05/03/2025")), "'2025-03-05'");
  EXPECT_EQ(SqlData(Valore::Null()), "NULL");
  EXPECT_EQ(SqlData(Valore("31/02/2025")), "NULL");
  G().IndSqlServer = "1";
  EXPECT_EQ(SqlData(Valore(d)), "DATE '2025-03-05'");
  EXPECT_EQ(SqlData(Valore::Null()), "CAST(NULL AS DATE)");
  EXPECT_EQ(SqlData(Valore(42)), "CAST(NULL AS DATE)");
  EXPECT_EQ(SqlFiltroData(Valore(d), "[D]"), " (([D])=DATE '2025-03-05')");
}

// ---------------------------------------------------------------- dates

TEST_F(Comuni, DateTexts) {
  Data d = *Data::Crea(2025, 3, 5);
  EXPECT_EQ(DataInTesto(Valore(d)), Valore("05/03/2025"));
  EXPECT_EQ(DataInTesto(Valore("2025-03-05")), Valore("05/03/2025"));
  EXPECT_TRUE(DataInTesto(Valore("x")).IsNull());
  EXPECT_EQ(DataBreve(Valore(d)), Valore("05/03/25"));
  EXPECT_EQ(DataBreve(Valore(7)), Valore(7));
  EXPECT_EQ(DataCompatta(Valore(d)), "20250305");
  EXPECT_EQ(DataCompatta(Valore::Null()), "");
  EXPECT_EQ(DataDaTestoCompatto(Valore("20250305")), "05/03/2025");
  EXPECT_EQ(DataDaTestoCompatto(Valore("00000000")), "__/__/____");
  EXPECT_EQ(DataDaTestoCompatto(Valore("")), "__/__/____");
  EXPECT_EQ(DataDaTestoCompatto(Valore("20250230")), "__/__/____");
  EXPECT_EQ(DataDaCompattaNull(Valore("20240229")), Valore("29/02/2024"));
  EXPECT_TRUE(DataDaCompattaNull(Valore("20230229")).IsNull());
}

TEST_F(Comuni, CorreggiSecoloBringsBackDatesBeyond2080) {
  Valore v(*Data::Crea(2081, 3, 15));
  Valore r = CorreggiSecolo(v);
  EXPECT_EQ(v, Valore(*Data::Crea(1981, 3, 15)));
  EXPECT_EQ(r, v);
  Valore limite(*Data::Crea(2080, 12, 31));
  CorreggiSecolo(limite);
  EXPECT_EQ(limite, Valore(*Data::Crea(2080, 12, 31)));
  Valore testo("29/02/2096");
  CorreggiSecolo(testo);
  EXPECT_EQ(testo, Valore(*Data::Crea(1996, 2, 29)));
  Valore nonData("abc");
  CorreggiSecolo(nonData);
  EXPECT_EQ(nonData, Valore("abc"));
  Data d = *Data::Crea(2099, 12, 31);
  CorreggiSecolo(d);
  EXPECT_EQ(d.Testo(), "31/12/1999");
}

TEST_F(Comuni, LeapYearsAndMonthNames) {
  EXPECT_TRUE(AnnoBisestile(Valore(2024)));
  EXPECT_FALSE(AnnoBisestile(Valore(2023)));
  EXPECT_FALSE(AnnoBisestile(Valore(1900)));
  EXPECT_TRUE(AnnoBisestile(Valore("2000")));
  EXPECT_EQ(NomeMese(Valore(1)), "Gennaio");
  EXPECT_EQ(NomeMese(Valore("9")), "Settembre");
  EXPECT_EQ(NomeMese(Valore(12)), "Dicembre");
  EXPECT_EQ(NomeMese(Valore(0)), "");
  EXPECT_EQ(NomeMese(Valore(13)), "");
}

// ---------------------------------------------------------------- account codes

TEST_F(Comuni, AccountCodes) {
  EXPECT_EQ(LivelloConto(Valore("01")), 1);
  EXPECT_EQ(LivelloConto(Valore(" 0102 ")), 2);
  EXPECT_EQ(LivelloConto(Valore("0102003")), 3);
  EXPECT_EQ(LivelloConto(Valore("010")), 0);
  EXPECT_EQ(LivelloConto(Valore("")), 0);
  EXPECT_EQ(ContoSetteCifre(Valore("01")), "0100000");
  EXPECT_EQ(ContoSetteCifre(Valore("0102")), "0102000");
  EXPECT_EQ(ContoSetteCifre(Valore("0102003")), "0102003");
  EXPECT_EQ(FormattaConto(Valore("")), "         ");
  EXPECT_EQ(FormattaConto(Valore("01")), "01       ");
  EXPECT_EQ(FormattaConto(Valore("0102")), "01.02    ");
  EXPECT_EQ(FormattaConto(Valore("0102003")), "01.02.003");
  EXPECT_EQ(FormattaConto(Valore::Null()).size(), 9u);
}

// ---------------------------------------------------------------- on both engines

class ComuniDb : public vorn::test::DbTest {
 protected:
  void SetUp() override {
    DbTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    G().IndSqlServer = Pg() ? "1" : "0";
  }
  int64_t Conta(const std::string& tabella, const std::string& where) {
    return NullToZeroLng(cn->Scalare("SELECT count(*) FROM [" + tabella + "] WHERE" + where));
  }
};

TEST_P(ComuniDb, SqlDataLiteralsFindDates) {
  cn->Esegui("CREATE TABLE [Prova Date] ([Codice] TEXT, [Data Documento] DATE)");
  const char* ins = "INSERT INTO [Prova Date] ([Codice], [Data Documento]) VALUES (?, ?)";
  cn->Esegui(ins, {"A", *Data::Crea(2025, 3, 5)});
  cn->Esegui(ins, {"B", *Data::Crea(2025, 3, 15)});
  cn->Esegui(ins, {"C", *Data::Crea(2024, 12, 31)});
  cn->Esegui(ins, {"D", Valore::Null()});
  const std::string c = "[Prova Date].[Data Documento]";
  EXPECT_EQ(Conta("Prova Date", SqlFiltroData(Valore(*Data::Crea(2025, 3, 5)), c)), 1);
  EXPECT_EQ(Conta("Prova Date", SqlFiltroData(Valore("15/03/2025"), c)), 1);
  EXPECT_EQ(Conta("Prova Date", SqlFiltroData(Valore::Null(), c)), 1);
  // Ranges compare as dates, not as day-first text.
  EXPECT_EQ(Conta("Prova Date", " " + c + " >= " + SqlData(Valore("01/01/2025")) + " AND " + c + " <= " +
                                     SqlData(Valore("10/03/2025"))),
            1);
  EXPECT_EQ(Conta("Prova Date", " " + c + " > " + SqlData(Valore("30/12/2024"))), 3);
  // A value that is not a date matches nothing, and the statement runs.
  EXPECT_EQ(Conta("Prova Date", SqlFiltroData(Valore("non data"), c)), 0);
  EXPECT_EQ(Conta("Prova Date", " " + c + " < " + SqlData(Valore())), 0);
}

TEST_P(ComuniDb, SqlTextAndNumberFiltersOnBothEngines) {
  cn->Esegui("CREATE TABLE [Zone] ([Id] INTEGER, [Codice Zona] TEXT, [Numero] INTEGER, [Cambio] NUMERIC(19,4))");
  const char* ins = "INSERT INTO [Zone] ([Id], [Codice Zona], [Numero], [Cambio]) VALUES (?, ?, ?, ?)";
  cn->Esegui(ins, {1, "", 0, Imp("12.5")});
  cn->Esegui(ins, {2, Valore::Null(), Valore::Null(), Valore::Null()});
  cn->Esegui(ins, {3, "N1", 5, Imp("0")});
  cn->Esegui(ins, {4, "D'Amico", 0, Imp("-0.25")});
  const std::string z = "[Zone].[Codice Zona]", n = "[Zone].[Numero]", k = "[Zone].[Cambio]";
  EXPECT_EQ(Conta("Zone", SqlFiltroTesto(Valore(""), z)), 2);  // '' and NULL alike
  EXPECT_EQ(Conta("Zone", SqlFiltroTesto(Valore("N1"), z)), 1);
  EXPECT_EQ(Conta("Zone", SqlFiltroTesto(Valore("D'Amico"), z)), 1);
  EXPECT_EQ(Conta("Zone", SqlFiltroTestoPieno(Valore("N1"), z)), 1);
  EXPECT_EQ(Conta("Zone", SqlFiltroTestoPieno(Valore(""), z)), 0);
  EXPECT_EQ(Conta("Zone", SqlFiltroNumero(Valore(""), n)), 3);   // zeros and nulls
  EXPECT_EQ(Conta("Zone", SqlFiltroNumero(Valore("0"), n)), 2);  // "0" is not empty: zeros only
  EXPECT_EQ(Conta("Zone", SqlFiltroDecimale(Valore("12,5"), k)), 1);
  EXPECT_EQ(Conta("Zone", SqlFiltroDecimale(Valore("-0,25"), k)), 1);
  EXPECT_EQ(Conta("Zone", " " + k + " = " + SqlNumero(Valore("12,50"))), 1);
}

TEST_P(ComuniDb, LeggiCampoAndFormattaCampoByFieldType) {
  cn->Esegui(
      "CREATE TABLE [Campi] ([Descrizione] TEXT, [Data] DATE, [Numero] INTEGER, [Saldo] NUMERIC(19,4), "
      "[Cambio] DOUBLE PRECISION, [Sconto] REAL, [Attivo] BOOLEAN)");
  cn->Esegui("INSERT INTO [Campi] VALUES (?, ?, ?, ?, ?, ?, ?)",
             {"  Rossi  ", *Data::Crea(2025, 3, 5), 1234567, Imp("-1234.565"), 1936.27, 2.5, true});
  cn->Esegui("INSERT INTO [Campi] VALUES (NULL, NULL, NULL, NULL, NULL, NULL, NULL)");
  // The engines sort nulls differently: step to the full row.
  auto rs = cn->Execute("SELECT * FROM [Campi] ORDER BY [Numero]");
  if (rs("Numero").IsNull()) rs.MoveNext();
  ASSERT_FALSE(rs("Numero").IsNull());

  EXPECT_EQ(LeggiCampo(rs("Descrizione"), Valore("")), Valore("Rossi"));
  EXPECT_EQ(LeggiCampoGrezzo(rs("Descrizione"), Valore("")), Valore("  Rossi  "));
  EXPECT_EQ(LeggiCampo(rs("Descrizione"), Valore(""), Valore("  ")), Valore("Rossi"));  // blank forzato: not passed
  EXPECT_EQ(LeggiCampo(rs("Descrizione"), Valore(""), Valore("X")), Valore("X"));
  EXPECT_EQ(LeggiCampo(rs("Numero"), Valore(0)), Valore(1234567));
  EXPECT_EQ(LeggiCampo(rs("Saldo"), Valore(0)), Valore(Imp("-1234.565")));

  G().DecimaliImporti = 2;
  EXPECT_EQ(FormattaCampo(rs("Descrizione"), ""), "Rossi");
  EXPECT_EQ(FormattaCampo(rs("Data"), ""), "05/03/2025");
  EXPECT_EQ(FormattaCampo(rs("Numero"), ""), "1.234.567");
  EXPECT_EQ(FormattaCampo(rs("Saldo"), ""), "-1.234,57");
  EXPECT_EQ(FormattaCampo(rs("Saldo"), "", std::nullopt, Valore(0)), "-1.235");
  EXPECT_EQ(FormattaCampo(rs("Saldo"), "", std::nullopt, Valore(3)), "-1.234,565");
  EXPECT_EQ(FormattaCampo(rs("Cambio"), ""), "1.936,270");
  EXPECT_EQ(FormattaCampo(rs("Sconto"), ""), "2,50");
  EXPECT_EQ(FormattaCampo(rs("Numero"), "", Valore("forzato")), "forzato");

  rs.MoveFirst();
  if (!rs("Numero").IsNull()) rs.MoveNext();
  ASSERT_TRUE(rs("Numero").IsNull());
  EXPECT_EQ(LeggiCampo(rs("Descrizione"), Valore("def")), Valore("def"));
  EXPECT_EQ(LeggiCampo(rs("Numero"), Valore(-1)), Valore(-1));
  Valore predefinito("12,5");
  EXPECT_EQ(FormattaCampo(rs("Saldo"), predefinito), "12,50");
  EXPECT_EQ(predefinito, Valore("12,5"));  // overwritten with the number as text
  Valore vuoto("");
  EXPECT_EQ(FormattaCampo(rs("Numero"), vuoto), "0");
  EXPECT_EQ(vuoto, Valore("0"));
  Valore testo("n.d.");
  EXPECT_EQ(FormattaCampo(rs("Descrizione"), testo), "n.d.");
  EXPECT_EQ(testo, Valore("n.d."));

  // A forzato that is not blank never reads the field: not even past the last row.
  while (!rs.Eof()) rs.MoveNext();
  Campo& oltre = rs("Descrizione");
  EXPECT_THROW(oltre.Value(), ErroreDb);
  EXPECT_EQ(LeggiCampo(oltre, Valore(""), Valore("F")), Valore("F"));
  EXPECT_EQ(LeggiCampoGrezzo(oltre, Valore(""), Valore("F")), Valore("F"));
  EXPECT_EQ(FormattaCampo(oltre, "", Valore("F")), "F");
}

TEST_P(ComuniDb, FormattaImportoOfANamedCurrencyReadsItsDecimals) {
  cn->Esegui("CREATE TABLE [Valute] ([Codice Valuta] TEXT PRIMARY KEY, [Numero decimali valuta] INTEGER)");
  cn->Esegui("INSERT INTO [Valute] VALUES ('16', 0), ('06', 2), ('99', 3)");
  G().ConnessioneGlobale = cn;
  G().DecimaliImporti = 2;
  G().DecimaliPrezziValutaConto = 5;
  Valore importo(Imp("1234567.8915"));
  EXPECT_EQ(FormattaImporto(importo, Valore("16")), "1.234.568");
  EXPECT_EQ(FormattaImporto(importo, Valore("06")), "1.234.567,89");
  EXPECT_EQ(FormattaImporto(importo, Valore("99"), Valore(true)), "1.234.567,892");
  EXPECT_EQ(FormattaImporto(importo, Valore("XX")), "1.234.567,89");  // no row: DecimaliImporti
  EXPECT_EQ(FormattaImporto(importo, Valore(""), Valore(true)), "1.234.567,89150");
  EXPECT_EQ(ArrotondaImporto(importo, Valore("16")), Importo(1234568));
  EXPECT_EQ(ArrotondaImporto(importo, Valore("99")), Imp("1234567.892"));
}

VORN_SU_DUE_MOTORI(ComuniDb);
