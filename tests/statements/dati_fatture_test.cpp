// The invoice data of a period on both engines: the same kinds of documents in 2018 and in 2019,
// all parties in the first and only foreign ones in the second; the credit note's sign and type;
// the periods' dates; a failed extraction that leaves the previous one and its corrections.
#include <gtest/gtest.h>

#include <string>

#include "frame/Comuni.h"
#include "ledger/clsPrimaNota.h"
#include "statements/clsDatiFatture.h"
#include "support/Azienda.h"
#include "support/DocumentiIva.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class DatiFatture : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    auto soggetto = [&](const char* tabella, const char* codice, const char* nome, const char* nazione, int tipo) {
      cn->Esegui(std::string("INSERT INTO [") + tabella +
                     "] ([Codice Cliente], [Ragione Sociale], [Codice Nazione], [Tipo soggetto allegati], "
                     "[SottocontoApparten]) VALUES (?, ?, ?, ?, '0501001')",
                 {Valore(codice), Valore(nome), Valore(nazione), Valore(tipo)});
    };
    soggetto("Anagrafica Clienti", "1", "Rossi Meccanica S.r.l.", "IT", 0);
    soggetto("Anagrafica Clienti", "2", "Stabile organizzazione S.p.A.", "IT", 2);
    soggetto("Anagrafica Clienti", "3", "Müller GmbH", "DE", 0);
    soggetto("Anagrafica Fornitori", "1", "Bianchi Forniture S.p.A.", "IT", 0);
    soggetto("Anagrafica Fornitori", "2", "Société Àrles Inc.", "US", 0);
    pn.cn = cn;
    d.cn = cn;
  }

  // The same six documents in January and February of the year, entries from `primo` on: a sale
  // on two rates to the Italian client and its credit note, a sale to the Italian client of
  // subject type 2, a sale to the German client, a purchase at home and one from the US.
  void Libri(int anno, int primo) {
    const std::string a = std::to_string(anno);
    auto n = [&](int k) { return Format(Valore(primo + k), "00000"); };
    std::string n1 = n(0), n2 = n(1), n3 = n(2), n4 = n(3), n5 = n(4), n6 = n(5);
    std::string g1 = "15/01/" + a, g2 = "10/02/" + a, g3 = "12/02/" + a, g4 = "20/01/" + a, g5 = "25/02/" + a,
                g6 = "05/01/" + a;
    RegistraDocumento(pn, {n1.c_str(), g1.c_str(), "FTV", "1", "01", 1, 0, "1770", "C", "1"},
                      {{"D", "0501001", "1770", "C"}, {"A", "7001001", "1500"}},
                      {{"A", "1401001", "022", "1000", "220"}, {"A", "1401001", "010", "500", "50"}});
    RegistraDocumento(pn, {n2.c_str(), g2.c_str(), "NCV", "1", "01", 2, 0, "244", "C", "1"},
                      {{"A", "0501001", "244", "C"}, {"D", "7001006", "200"}}, {{"D", "1401001", "022", "200", "44"}});
    RegistraDocumento(pn, {n3.c_str(), g3.c_str(), "FTV", "1", "01", 3, 0, "366", "C", "2"},
                      {{"D", "0501001", "366", "C"}, {"A", "7001001", "300"}}, {{"A", "1401001", "022", "300", "66"}});
    RegistraDocumento(pn, {n4.c_str(), g4.c_str(), "FTA", "2", "01", 77, 1, "244", "F", "1"},
                      {{"D", "6001001", "200"}, {"A", "1301001", "244", "F"}}, {{"D", "0601001", "022", "200", "44"}});
    RegistraDocumento(pn, {n5.c_str(), g5.c_str(), "FTA", "2", "01", 78, 2, "1220", "F", "2"},
                      {{"D", "6001001", "1000"}, {"A", "1301001", "1220", "F"}},
                      {{"D", "0601001", "022", "1000", "220"}});
    RegistraDocumento(pn, {n6.c_str(), g6.c_str(), "FTV", "1", "01", 4, 0, "976", "C", "3"},
                      {{"D", "0501001", "976", "C"}, {"A", "7001001", "800"}}, {{"A", "1401001", "022", "800", "176"}});
  }

  long Conta(const std::string& sql, const Parametri& p = {}) {
    return static_cast<long>(NullToZeroLng(cn->Scalare(sql, p)));
  }
  Importo Somma(const std::string& sql, const Parametri& p = {}) { return NullToZeroCy(cn->Scalare(sql, p)); }
  // The counterparties of the period's documents, "C1 C3 F2".
  std::string Soggetti(int anno, int periodo) {
    std::string s;
    auto rs = cn->Execute("SELECT DISTINCT [indicatoreCliFor], [codiceCliFor] FROM [DatiFattureTestate] WHERE "
                          "[anno] = ? AND [periodo] = ? ORDER BY [indicatoreCliFor], [codiceCliFor]",
                          {Valore(anno), Valore(periodo)});
    for (; !rs.Eof(); rs.MoveNext()) s += (s.empty() ? "" : " ") + TrimTesto(rs(0).Value()) + TrimTesto(rs(1).Value());
    return s;
  }

  clsPrimaNota pn;
  clsDatiFatture d;
};

VORN_SU_DUE_MOTORI(DatiFatture);

}  // namespace

TEST_P(DatiFatture, FromTwoThousandNineteenOnlyForeignPartiesAreDrawn) {
  Libri(2018, 1);
  Libri(2019, 11);
  // 2018, first quarter: every party; seven VAT rows of six documents, twice without doubling.
  for (int volta = 0; volta < 2; ++volta) ASSERT_EQ(d.EstraiDatiFattureDaPrimaNota(0, 2018, 0), 7) << host->Ultimo();
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [DatiFattureTestate] WHERE [anno] = 2018"), 6);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [DatiFattureRighe] WHERE [anno] = 2018"), 7);
  EXPECT_EQ(Soggetti(2018, 0), "C1 C2 C3 F1 F2");
  // Sales 1500 - 200 + 300 + 800, purchases 200 + 1000; the note negative and of type 1.
  EXPECT_EQ(Somma("SELECT SUM([Imponib]) FROM [DatiFattureRighe] WHERE [anno] = 2018"), Importo(3600));
  EXPECT_EQ(Somma("SELECT SUM([imposta]) FROM [DatiFattureRighe] WHERE [anno] = 2018"),
            Importo(220 + 50 - 44 + 66 + 176 + 44 + 220));
  EXPECT_EQ(Conta("SELECT [TipoDocumento] FROM [DatiFattureTestate] WHERE [numeroRegistrazione] = '00002'"), 1);
  EXPECT_EQ(Conta("SELECT SUM([TipoDocumento]) FROM [DatiFattureTestate] WHERE [anno] = 2018"), 1);
  EXPECT_TRUE(d.ExistsDatiAnnoPeriodo(0, 2018, 0));
  EXPECT_FALSE(d.IsRegistrazioneImponibileImpostaZero(2018, 0, Valore("00001")));
  EXPECT_EQ(d.GetMaxNumeroRegistrazione(2018, 0), "00006");
  // The document's head keeps its dates; its rows are its two rates.
  Recordset r;
  ASSERT_TRUE(d.LocalizzaDatiFattureRighe(r, 2018, 0, Valore("00001")));
  EXPECT_EQ(r.RecordCount(), 2u);
  ASSERT_TRUE(d.LocalizzaDatiFattureTestateCliFor(r, 2018, 0, Valore("C"), Valore("1"), false));
  EXPECT_EQ(r.RecordCount(), 2u);
  EXPECT_EQ(r("DataDocumento").Value().ComeData()->Testo(), "15/01/2018");
  ASSERT_TRUE(d.LocalizzaRiepilogoCliForFatture(r, 2018, 0, Valore("F"), false));
  EXPECT_EQ(r.RecordCount(), 2u);
  EXPECT_FALSE(d.ExistsDocumentiRiepilogativi(2018, 0, Valore("C")));

  // 2019, the same documents: the Italian party of subject type 2, the German client and the US
  // supplier only. January alone (period 6) leaves out the February ones.
  ASSERT_EQ(d.EstraiDatiFattureDaPrimaNota(0, 2019, 0), 3);
  EXPECT_EQ(Soggetti(2019, 0), "C2 C3 F2");
  EXPECT_EQ(Somma("SELECT SUM([Imponib]) FROM [DatiFattureRighe] WHERE [anno] = 2019"), Importo(300 + 800 + 1000));
  ASSERT_EQ(d.EstraiDatiFattureDaPrimaNota(0, 2019, 6), 1);
  EXPECT_EQ(Soggetti(2019, 6), "C3");
  // The 2018 extraction is untouched by those of 2019.
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [DatiFattureTestate] WHERE [anno] = 2018"), 6);
  // No document of the second quarter: an extraction of nothing.
  EXPECT_EQ(d.EstraiDatiFattureDaPrimaNota(0, 2019, 1), 0);
  EXPECT_FALSE(d.ExistsDatiAnnoPeriodo(0, 2019, 1));
}

TEST_P(DatiFatture, PeriodsRunFromTheirFirstToTheirLastDay) {
  Data da, a;
  auto periodo = [&](int anno, int p) {
    EXPECT_TRUE(clsDatiFatture::GetRangeDate(anno, p, da, a));
    return da.Testo() + "-" + a.Testo();
  };
  EXPECT_EQ(periodo(2024, 0), "01/01/2024-31/03/2024");
  EXPECT_EQ(periodo(2024, 3), "01/10/2024-31/12/2024");
  EXPECT_EQ(periodo(2024, 5), "01/07/2024-31/12/2024");
  EXPECT_EQ(periodo(2024, 7), "01/02/2024-29/02/2024");
  EXPECT_EQ(periodo(2023, 7), "01/02/2023-28/02/2023");
  EXPECT_EQ(periodo(2023, 15), "01/10/2023-31/10/2023");
  EXPECT_FALSE(clsDatiFatture::GetRangeDate(2024, 18, da, a));
  EXPECT_EQ(clsDatiFatture::TestoPeriodo(0), "1° Trimestre");
  EXPECT_EQ(clsDatiFatture::TestoPeriodo(17), "Dicembre");
  EXPECT_EQ(d.EstraiDatiFattureDaPrimaNota(0, 2024, -1), -1);
}

TEST_P(DatiFatture, AFailedExtractionLeavesThePreviousOneWithItsCorrections) {
  Libri(2018, 1);
  ASSERT_EQ(d.EstraiDatiFattureDaPrimaNota(0, 2018, 0), 7);
  // The user marks a document as a summary one, and a VAT row of it is corrected.
  cn->Esegui("UPDATE [DatiFattureTestate] SET [TipoDocumento] = 7 WHERE [numeroRegistrazione] = '00003'");
  cn->Esegui("UPDATE [DatiFattureRighe] SET [Imponib] = 301 WHERE [numeroRegistrazione] = '00003'");
  // A further sale, and the rows' table out of reach: the run fails at its last step.
  Libri(2018, 21);
  cn->Esegui("ALTER TABLE [DatiFattureRighe] RENAME TO [DatiFattureAltrove]");
  EXPECT_EQ(d.EstraiDatiFattureDaPrimaNota(0, 2018, 0), -1);
  EXPECT_EQ(host->Messaggi().back().titolo, "Estrazione dati fatture");
  cn->Esegui("ALTER TABLE [DatiFattureAltrove] RENAME TO [DatiFattureRighe]");
  cn->DimenticaSchema();
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [DatiFatture]"), 7);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [DatiFattureTestate]"), 6);
  EXPECT_TRUE(d.ExistsDocumentiRiepilogativi(2018, 0, Valore("C")));
  EXPECT_EQ(Somma("SELECT SUM([Imponib]) FROM [DatiFattureRighe]"), Importo(3601));
  // Repeated once the table is back, it takes the new documents and drops the corrections.
  EXPECT_EQ(d.EstraiDatiFattureDaPrimaNota(0, 2018, 0), 14);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [DatiFattureTestate]"), 12);
  EXPECT_FALSE(d.ExistsDocumentiRiepilogativi(2018, 0, Valore("C")));
  EXPECT_EQ(Somma("SELECT SUM([Imponib]) FROM [DatiFattureRighe]"), Importo(7200));
}
