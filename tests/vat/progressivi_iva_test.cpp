// The VAT progressives and the figures of the periodic VAT communication, on both engines: the
// amounts come back to the last decimal, the resets leave what they must, the settlement sums
// keep the advance out, and a prompt answered no writes nothing.
#include <gtest/gtest.h>

#include <string>

#include "frame/Comuni.h"
#include "support/Azienda.h"
#include "vat/clsDatiIVA.h"
#include "vat/clsProgressiviIva.h"

using namespace vorn;
using namespace vorn::test;

namespace {

Importo Imp(const char* testo) { return *Importo::DaTestoPunto(testo); }
using Coppia = std::pair<Importo, Importo>;

class ProgressiviIva : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    p.cn = cn;
    d.cn = cn;
  }
  void Progressivo(const char* ind, const char* tipo, const char* codice, const char* imponibile, const char* iva,
                   const Valore& data = Valore::Null(), const Valore& cliente = "PC1") {
    bool cancel = true;
    ASSERT_TRUE(p.SalvaRecord_ProgressivoIva(ind, tipo, "1", "01", codice, Imp(imponibile), Imp(iva), data, cliente,
                                             7, cancel));
    EXPECT_FALSE(cancel);
  }
  // Imponibile and IVA of a progressive of register 1 01; the outputs start at -1.
  Coppia Letto(const char* ind, const char* tipo, const char* codice) {
    Coppia c{Imp("-1"), Imp("-1")};
    p.GetProgressivoIva(ind, tipo, "1", "01", codice, c.first, c.second);
    return c;
  }
  void Liquidazione(const Valore& mese, const RecordValori& valori) {
    bool cancel = true;
    ASSERT_TRUE(p.SalvaRecord_LiquidazioneIva(mese, valori, "PC1", 7, cancel));
  }
  int64_t Righe(const std::string& tabella) {
    return cn->Scalare("SELECT COUNT(*) FROM [" + tabella + "]").ComeIntero().value_or(-1);
  }
  Importo Debito(const Valore& minimo, const char* regime, const Valore& mese) {
    return p.GetDebitoIvaArticolo_27_33(minimo, regime, mese, 2025).ComeImporto().value_or(Imp("-1"));
  }

  clsProgressiviIva p;
  clsDatiIVA d;
};
VORN_SU_DUE_MOTORI(ProgressiviIva);

}  // namespace

TEST_P(ProgressiviIva, ProgressiveReadBackExactlyAndASecondSaveRewritesItsRow) {
  Progressivo("PI", "R", "022", "1234567.8912", "271604.9361");
  Progressivo("PI", "D", "010", "-98765.4321", "-0.0001");
  EXPECT_EQ(Letto("PI", "R", "022"), Coppia(Imp("1234567.8912"), Imp("271604.9361")));
  EXPECT_EQ(Letto(" PI", "D ", "010 "), Coppia(Imp("-98765.4321"), Imp("-0.0001"))) << "the key is trimmed";

  Progressivo("PI", "R", " 022", "1234567.9012", "271604.9383", Valore::Null(), "PC2");
  EXPECT_EQ(Righe("Progressivi Registri Iva"), 2);
  EXPECT_EQ(Letto("PI", "R", "022"), Coppia(Imp("1234567.9012"), Imp("271604.9383")));
  Coppia c{Imp("-1"), Imp("-1")};
  EXPECT_FALSE(p.GetProgressivoIva("PI", "R", "1", "02", "022", c.first, c.second));
  EXPECT_EQ(c, Coppia(Importo(), Importo())) << "no row: 0 and 0";

  Progressivo("P2", "R", "00", "0", "0", Valore("31/03/2025"));
  EXPECT_EQ(p.GetDataUltimaStampa(" 1", "01 ", "00"), Valore(*Data::Crea(2025, 3, 31)));
  EXPECT_TRUE(p.GetDataUltimaStampa("1", "02", "00").IsNull());
}

TEST_P(ProgressiviIva, ResetsLeaveCode00TheYearAndOtherIndicators) {
  Progressivo("PI", "D", "022", "100", "22");
  Progressivo("PI", "D", "00", "500.5", "110.11");
  Progressivo("PI", "R", "022", "1000", "220");
  ASSERT_TRUE(p.AzzeraProgressiviIvaPeriodo());
  EXPECT_EQ(Letto("PI", "D", "022"), Coppia(Importo(), Importo()));
  EXPECT_EQ(Letto("PI", "D", "00"), Coppia(Imp("500.5"), Imp("110.11")));
  EXPECT_EQ(Letto("PI", "R", "022"), Coppia(Imp("1000"), Imp("220")));

  bool cancel = false;
  ASSERT_TRUE(p.SalvaRecord_CorrispettivoVen("01", Imp("1220.5"), Imp("36600.75"), "PC1", 7, cancel));
  ASSERT_TRUE(p.AzzeraProgressiviVentilazionePeriodo());
  Coppia v;
  ASSERT_TRUE(p.GetProgressivoVentilazione("01", v.first, v.second));
  EXPECT_EQ(v, Coppia(Importo(), Imp("36600.75")));

  // The reset of the year takes every VAT progressive, but not a row of another indicator.
  ASSERT_TRUE(p.SalvaRecord_MonteAcquisti("01", "022", Imp("8000.0001"), "", "PC1", 7, cancel));
  Liquidazione("01", {{"Importo_versato", Imp("10")}});
  Progressivo("XX", "R", "022", "5", "0");
  ASSERT_TRUE(p.AzzeraProgressiviIva());
  EXPECT_EQ(Righe("Progressivi Registri Iva"), 1);
  EXPECT_EQ(Letto("XX", "R", "022").first, Imp("5"));
  EXPECT_EQ(Righe("Monte Acquisti Ventilazione") + Righe("Corrispettivi Ventilazione") +
                Righe("Liquidazioni Periodiche"),
            0);
}

TEST_P(ProgressiviIva, KindsOutsideZeroToFiveSelectAndDeleteNothing) {
  Progressivo("PI", "D", "022", "1", "0.22");
  Progressivo("PI", "R", "022", "2", "0.44");
  Liquidazione("12", {{"Importo_versato", Imp("5")}});
  Liquidazione(1, {{"Importo_versato", Imp("6")}});  // a month given as a number is "01"
  Liquidazione("14", {{"Importo_versato", Imp("7")}});

  Recordset T;
  for (const Valore& tipo : {Valore(6), Valore(-1), Valore("abc")})
    EXPECT_FALSE(p.LocalizzaTuttiRecord(T, tipo) || !T.Eof() || p.CancellaTuttiRecord(tipo)) << tipo.Testo();
  EXPECT_EQ(Righe("Progressivi Registri Iva") + Righe("Liquidazioni Periodiche"), 5);

  ASSERT_TRUE(p.LocalizzaTuttiRecord(T, 5));
  std::string mesi;
  for (; !T.Eof(); T.MoveNext()) mesi += T("MeseVersamento").Value().TestoTrim() + " ";
  EXPECT_EQ(mesi, "01 12 14 ");
  ASSERT_TRUE(p.CancellaTuttiRecord("0"));
  EXPECT_EQ(Righe("Progressivi Registri Iva"), 1);
  EXPECT_EQ(Letto("PI", "R", "022").first, Imp("2")) << "the year's row stays";
}

TEST_P(ProgressiviIva, YearSumsLeaveOutTheAdvanceAndTheMonthsWithoutPayment) {
  Liquidazione("01", {{"Importo_versato", Imp("1000.10")}, {"Interessi", Imp("10.01")}, {"CreditoIVA", Imp("5")},
                      {"RimborsoArt38Bis", Imp("1")}, {"CompensazioneArt38Bis", Imp("2.0002")}});
  // A month in credit: its interest counts nowhere, its credit does.
  Liquidazione("02", {{"Importo_versato", Imp("0")}, {"Interessi", Imp("3")}, {"CreditoIVA", Imp("7.5")}});
  Liquidazione("03", {{"importo_VERSATO", Imp("250.2501")}, {"Interessi", Imp("0.0001")}});
  Liquidazione("14", {{"Importo_versato", Imp("999.99")}, {"Interessi", Imp("1")}, {"CreditoIVA", Imp("100")},
                      {"RimborsoArt38Bis", Imp("100")}, {"CompensazioneArt38Bis", Imp("100")}});

  EXPECT_EQ(p.GetIvaVersataConInteressi(), Imp("1250.3501"));   // 1000.10 + 250.2501
  EXPECT_EQ(p.GetInteressiVersati(), Imp("10.0101"));           // 10.01 + 0.0001
  EXPECT_EQ(p.GetIvaVersata(), Imp("1240.34"));                 // 1250.3501 - 10.0101
  EXPECT_EQ(p.GetCreditoIvaDaDichAnnualeTrasf(), Imp("12.5"));  // 5 + 7.5
  EXPECT_EQ(p.GetSommaDiRimborsoArt38Bis(), Imp("1"));
  EXPECT_EQ(p.GetSommaDiCompensazioneArt38Bis(), Imp("2.0002"));
  EXPECT_EQ(p.GetAccontoIvaVersato().ComeImporto(), Imp("999.99"));
}

TEST_P(ProgressiviIva, DebtUnderTheMinimumIsCarriedFromThePeriodBefore) {
  const Valore minimo(Imp("25.82"));
  Liquidazione("12", {{"Importo_versato", Imp("25.82")}});  // exactly the minimum: carried
  Liquidazione("03", {{"Importo_versato", Imp("25.83")}});  // above it: paid
  Liquidazione("06", {{"Importo_versato", Imp("10")}});

  // The first month of either regime, and the annual settlement, look at December.
  EXPECT_EQ(Debito(minimo, "M", 1), Imp("25.82"));
  EXPECT_EQ(Debito(minimo, "T", 3), Imp("25.82"));
  EXPECT_EQ(Debito(minimo, "T", "13"), Imp("25.82"));
  EXPECT_EQ(Debito(Valore("25,82"), "M", "01"), Imp("25.82")) << "the minimum as the user types it";
  EXPECT_EQ(Debito(Valore(Imp("25.8199")), "M", 1), Importo());

  EXPECT_EQ(Debito(minimo, "M", 4), Importo()) << "March paid more than the minimum";
  EXPECT_EQ(Debito(minimo, "T", 9), Imp("10"));
  EXPECT_EQ(Debito(minimo, "M", 5), Importo()) << "no row for April";
}

TEST_P(ProgressiviIva, VatCommunicationByYearQuarterAndMonth) {
  auto salva = [&](int anno, int mese, int trimestre, const char* dovuta) {
    bool cancel = true;
    ASSERT_TRUE(d.SalvaRecord(anno, mese, {{"trimestre", trimestre}, {"IVADovuta", Imp(dovuta)}}, "PC1", 7, cancel));
  };
  salva(2025, 4, 2, "4");
  salva(2025, 2, 1, "-1234567.8912");
  salva(2025, 1, 1, "1");
  salva(2025, 3, 1, "3");
  salva(2024, 1, 1, "99");

  Recordset T;
  ASSERT_TRUE(d.LocalizzaRecordPerAnno(T, 2025, "PC1", 7));
  std::string mesi;
  for (; !T.Eof(); T.MoveNext()) mesi += T("Mese").Value().Testo() + " ";
  EXPECT_EQ(mesi, "1 2 3 4 ");
  ASSERT_TRUE(d.LocalizzaRecordPerTrimestre(T, "2025", 1));
  EXPECT_EQ(T.RecordCount(), 3u);
  auto dovuta = [&] {
    Recordset R;
    return d.LocalizzaRecord(R, 2025, 2, "PC1", 7) ? NullToZeroCy(R("IVADovuta").Value()) : Imp("-1");
  };
  EXPECT_EQ(dovuta(), Imp("-1234567.8912"));

  // Another user read February since: the save asks, and "no" writes nothing.
  clsDatiIVA altro;
  altro.cn = cn;
  ASSERT_TRUE(altro.LocalizzaRecord(T, 2025, 2, "PC2", 3));
  bool cancel = false;
  EXPECT_FALSE(d.SalvaRecord(2025, 2, {{"IVADovuta", Imp("1")}}, "PC1", 7, cancel));
  EXPECT_TRUE(cancel);
  EXPECT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(dovuta(), Imp("-1234567.8912"));
  ASSERT_TRUE(altro.LocalizzaRecord(T, 2025, 2, "PC2", 3));
  EXPECT_TRUE(d.SalvaRecord(2025, 2, {{"IVADovuta", Imp("2.5")}}, "PC1", 7, cancel, true)) << "NoPrompt";
  EXPECT_EQ(dovuta(), Imp("2.5"));

  EXPECT_THROW(d.SalvaRecord(2025, 5, {{"IVADovuta", Imp("1")}, {"IVADovutaa", Imp("1")}}, "PC1", 7, cancel),
               ErroreDb);
  EXPECT_EQ(d.CancellaRecord(2025, 5), 0.0) << "the refused save wrote nothing";
  EXPECT_EQ(d.CancellaRecord(2025, 4), 1.0);
  EXPECT_EQ(d.CancellaRecordPerAnno(2025), 3.0);
  EXPECT_EQ(Righe("DatiIVA"), 1) << "the year before stays";
}
