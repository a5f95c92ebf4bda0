// The field formats of the telematic records, by code, with their edge cases (negative, too
// long, accented letters, no value), the fixed record built place by place and the file's code
// page. Expected texts are written out by hand.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "frame/Host.h"
#include "frame/Comuni.h"
#include "statements/clsSpesometro2013.h"
#include "statements/modTracciati.h"
#include "support/Motori.h"

using namespace vorn;

namespace {

std::string B(int n) { return std::string(static_cast<size_t>(n), ' '); }

struct Caso {
  const char* nome;
  std::string ottenuto;
  std::string atteso;
};

void Verifica(const std::vector<Caso>& casi) {
  for (const auto& c : casi) EXPECT_EQ(c.ottenuto, c.atteso) << c.nome;
}

}  // namespace

TEST(FormatiPosizionali, EveryCodeAtItsWidth) {
  const Valore data(*Data::Crea(2024, 3, 7));
  Verifica({
      {"AN upper-cased, left-aligned", FormatAN(Valore(" rossi srl "), 10), "ROSSI SRL "},
      {"AN too long is cut", FormatAN(Valore("abcdefghijkl"), 5), "ABCDE"},
      {"AN accented letters count one each", FormatAN(Valore("società"), 9), "SOCIETÀ  "},
      {"CF", FormatCF(Valore("rssmra80a01h501u")), "RSSMRA80A01H501U"},
      {"CF empty", FormatCF(Valore("")), B(16)},
      {"PI zero-filled to 11", FormatPI(Valore("123456789")), "00123456789" + B(5)},
      {"PI foreign stays as it is", FormatPI(Valore("de811111111")), "DE811111111" + B(5)},
      {"DT", FormatDT(data), "07032024"},
      {"DT from text", FormatDT(Valore("31/12/2023")), "31122023"},
      {"DT no date", FormatDT(Valore("")), "00000000"},
      {"DT empty with stringaVuotaSeNull", FormatDT(Valore(""), true), B(8)},
      {"DT not a date with stringaVuotaSeNull", FormatDT(Valore("abc"), true), "00000000"},
      {"DA", FormatDA(data), "2024"},
      {"DA no date", FormatDA(Valore("x")), "0000"},
      {"NU rounds to the unit", FormatNU(Valore(2.6), 4), "0003"},
      {"NU half away from zero", FormatNU(Valore(2.5), 4), "0003"},
      {"NU negative keeps its sign", FormatNU(Valore(-2.5), 4), "-003"},
      {"NU not a number", FormatNU(Valore("abc"), 4), "0000"},
      {"NUProtocolli 17 digits, no rounding", FormatNUProtocolli(Valore("12345678901234567"), 17),
       "12345678901234567"},
      {"NUProtocolli short", FormatNUProtocolli(Valore("42"), 6), "000042"},
      {"NUProtocolli not digits", FormatNUProtocolli(Valore("12a"), 6), "000000"},
      {"PN", FormatPN(Valore("mi"), 2), "MI"},
      {"PN abroad", FormatPN(Valore("mi"), 2, true), "EE"},
      {"PR", FormatPR(Valore("to"), 4), "TO  "},
      {"CB one", FormatCB(Valore(1)), "1"},
      {"CB text", FormatCB(Valore("x")), "0"},
      {"CB true", FormatCB(Valore(true)), "1"},
  });
  // A number that does not fit its place is an error, never a shorter figure.
  EXPECT_THROW(FormatNU(Valore(123456), 4), std::length_error);
  EXPECT_THROW(FormatNUProtocolli(Valore("1234567"), 6), std::length_error);
  EXPECT_THROW(FormatCB(Valore(12)), std::invalid_argument);
}

TEST(FormatiNonPosizionali, SixteenCharactersEach) {
  const Valore data(*Data::Crea(2024, 3, 7));
  Verifica({
      {"AN", FormatNonPosAN(Valore("àbc")), "ÀBC" + B(13)},
      {"AN too long is cut", FormatNonPosAN(Valore("abcdefghijklmnopq")), "ABCDEFGHIJKLMNOP"},
      {"CF", FormatNonPosCF(Valore("x")), "X" + B(15)},
      {"CN", FormatNonPosCN(Valore(" roma ")), "ROMA" + B(12)},
      {"PR", FormatNonPosPR(Valore("mi")), "MI" + B(14)},
      {"PE", FormatNonPosPE(Valore("è")), "È" + B(15)},
      {"PI", FormatNonPosPI(Valore("1")), "00000000001" + B(5)},
      {"CB", FormatNonPosCB(Valore(1)), B(15) + "1"},
      {"CB not numeric", FormatNonPosCB(Valore("x")), B(15) + "0"},
      {"CB12", FormatNonPosCB12(Valore(1)), B(4) + "000000000001"},
      {"DA date", FormatNonPosDA(data), B(12) + "2024"},
      {"DA number", FormatNonPosDA(Valore(24)), B(12) + "0024"},
      {"DA nothing", FormatNonPosDA(Valore("x")), B(16)},
      {"DT", FormatNonPosDT(data), B(8) + "07032024"},
      {"DT no date", FormatNonPosDT(Valore("x")), B(16)},
      {"DN", FormatNonPosDN(Valore("x")), B(8) + "00000000"},
      {"D4", FormatNonPosD4(data), B(12) + "0703"},
      {"D6", FormatNonPosD6(data), B(10) + "032024"},
      {"D6 empty with stringaVuotaSeNull", FormatNonPosD6(Valore(""), true), B(16)},
      {"NP rounds", FormatNonPosNP(Valore(999998.49)), B(10) + "999998"},
      {"NP negative", FormatNonPosNP(Valore(-1234.5)), B(11) + "-1235"},
      {"NP not a number", FormatNonPosNP(Valore("x")), B(16)},
      {"Nx", FormatNonPosNx(Valore(7), 5), B(11) + "00007"},
      {"UIC", FormatNonPosUIC(Valore("37")), B(13) + "037"},
      {"PC", FormatNonPosPC(Valore(12.5)), B(12) + "12,5"},
      {"QU", FormatNonPosQU(Valore(0.12345)), B(9) + "0,12345"},
      {"PN abroad", FormatNonPosPN(Valore("mi"), true), "EE" + B(14)},
  });
  EXPECT_THROW(FormatNonPosNx(Valore(7), 0), std::invalid_argument);
}

TEST(FormatiNonPosizionali, ACB12OtherThanZeroOrOneIsToldToTheUser) {
  test::HostScript host;
  ImpostaHost(&host);
  EXPECT_EQ(FormatNonPosCB12(Valore(2)), B(16));
  ImpostaHost(nullptr);
  ASSERT_EQ(host.Messaggi().size(), 1u);
  EXPECT_EQ(host.Messaggi()[0].testo, "Trovato valore diverso da 0 o 1 in un campo di tipo CB12");
  EXPECT_EQ(host.Messaggi()[0].titolo, "Metodo FormatNonPosCB12");
}

TEST(CampoNonPosizionale, EmptyValuesTakeNoPlaceAndLongTextsContinue) {
  std::string p;
  // 40 characters: 16, then "+" and 15, then "+" and 9.
  AccodaCampoNonPosizionale(p, "FE001009", Valore("abcdefghijklmnopqrstuvwxyz0123456789ABCD"), "AN");
  EXPECT_EQ(p, "FE001009ABCDEFGHIJKLMNOP"
               "FE001009+QRSTUVWXYZ01234"
               "FE001009+56789ABCD" + B(6));
  p.clear();
  AccodaCampoNonPosizionale(p, "FE001010", Valore(0), "NP");
  AccodaCampoNonPosizionale(p, "FE001010", Valore(0.4), "NP");  // rounds to nothing
  AccodaCampoNonPosizionale(p, "FE001009", Valore("   "), "AN");
  AccodaCampoNonPosizionale(p, "FE001001", Valore(""), "PI");
  AccodaCampoNonPosizionale(p, "FE001007", Valore("not a date"), "DT");
  AccodaCampoNonPosizionale(p, "FE001012", Valore(0), "CB");
  AccodaCampoNonPosizionale(p, "FE001012", Valore(2), "CB");
  EXPECT_EQ(p, "");
  for (const Valore& v : {Valore(1), Valore("1"), Valore(-1), Valore(true), Valore("-1")}) {
    p.clear();
    AccodaCampoNonPosizionale(p, "fe001012", v, "CB");
    EXPECT_EQ(p, "FE001012" + B(15) + "1") << v.Testo();
  }
  p.clear();
  AccodaCampoNonPosizionale(p, "SE001009", Valore("94"), "UIC");
  AccodaCampoNonPosizionale(p, "NE001006", Valore(Importo::DaRaw(12345678)), "NP");  // 1.234,5678
  AccodaCampoNonPosizionale(p, "XX001001", Valore(42), "NX", 4);
  EXPECT_EQ(p, "SE001009" + B(13) + "094" + "NE001006" + B(12) + "1235" + "XX001001" + B(12) + "0042");
  EXPECT_THROW(AccodaCampoNonPosizionale(p, "FE1", Valore(1), "NP"), std::invalid_argument);
  EXPECT_THROW(AccodaCampoNonPosizionale(p, "FE001001", Valore(1), "ZZ"), std::invalid_argument);

  EXPECT_EQ(InsertWildCardRigaColonna("fe001010"), "FEXXX010");
  EXPECT_EQ(InsertWildCardRigaColonna("BL002001"), "BL002001");
}

TEST(RecordTelematico, EveryFieldStartsWhereThePreviousEnded) {
  RecordTelematico r;
  r.Campo(1, "Z").Riempitivo(2, 14).Campo(16, "000000001");
  // One column off: the record refuses it.
  EXPECT_THROW(r.Campo(26, "x"), std::logic_error);
  EXPECT_THROW(r.Testo(), std::logic_error);  // short of 1898
  r.Riempitivo(25, 1873).Campo(1898, "A");
  EXPECT_EQ(r.Testo().size(), 1898u);
  RecordTelematico senzaFine;
  senzaFine.Riempitivo(1, 1898);
  EXPECT_THROW(senzaFine.Testo(), std::logic_error);
}

TEST(RecordTelematico, TheFileIsOneByteACharacter) {
  // Accented capitals of Latin-1, the euro sign of the Windows page, a character it lacks, and a
  // line end that would break a record.
  EXPECT_EQ(TestoTelematico("SOCIETÀ É€✓\n"), std::string("SOCIET\xC0 \xC9\x80? "));
  EXPECT_EQ(DaTestoTelematico(std::string("SOCIET\xC0 \x80")), "SOCIETÀ €");
  EXPECT_EQ(TestoTelematico(std::string("\xFF" "A")), "?A");  // not UTF-8
}

TEST(RecordTelematico, AmountsFromTheLimitUpAskForConfirmation) {
  EXPECT_TRUE(clsSpesometro2013::SuperaImportoMassimo(Importo(999999)));
  EXPECT_TRUE(clsSpesometro2013::SuperaImportoMassimo(*Importo::DaTestoPunto("999998.5")));  // rounds up
  EXPECT_FALSE(clsSpesometro2013::SuperaImportoMassimo(*Importo::DaTestoPunto("999998.49")));
  EXPECT_TRUE(clsSpesometro2013::SuperaImportoMassimo(Importo(-1000000)));  // a note, unsigned
}

TEST(RecordTelematico, APageOfMoreThan75FieldsGoesOnInARecordOfTheSameModule) {
  // 76 fields, the first with accented letters (more bytes, the same characters).
  std::string pagina;
  AccodaCampoNonPosizionale(pagina, "SE001007", Valore("àèìòù"), "AN");
  for (int i = 1; i < 76; ++i) AccodaCampoNonPosizionale(pagina, "SE001015", Valore(i), "NP");
  auto r = RecordDellaPagina('D', "01234567890", 7, pagina);
  ASSERT_EQ(r.size(), 2u);
  for (const auto& x : r) {
    EXPECT_EQ(LunghezzaTesto(x), 1898u);
    EXPECT_EQ(MedioTesto(x, 1, 25), "D01234567890     00000007");
  }
  // The first body is full: 75 fields, no blank before its filler.
  EXPECT_EQ(MedioTesto(r[0], 90, 24), "SE001007ÀÈÌÒÙ" + B(11));
  EXPECT_EQ(MedioTesto(r[0], 90 + 24 * 74, 24), "SE001015" + B(14) + "74");
  EXPECT_EQ(MedioTesto(r[0], 1890, 9), B(8) + "A");
  EXPECT_EQ(MedioTesto(r[1], 90, 25), "SE001015" + B(14) + "75 ");
  EXPECT_TRUE(RecordDellaPagina('C', "X", 1, "").empty());
}
