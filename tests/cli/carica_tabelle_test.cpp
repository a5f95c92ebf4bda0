// The copies of a model's archives one by one, the values that tie them together, and whether a
// company is still empty; the demo's year posted on a company of each model.
#include <gtest/gtest.h>

#include "cli/Demo.h"
#include "frame/Comuni.h"
#include "interchange/clsCaricaTabelleStandard.h"
#include "ledger/VerificaSaldi.h"
#include "support/Azienda.h"
#include "ComandoAzienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class CaricaTabelleTest : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    carica.ConnettiDatabaseOrigine("standard");
    carica.ConnettiDatabaseDestinazione(cn);
  }
  long Conta(const std::string& sql) { return NullToZeroLng(cn->Scalare(sql)); }
  clsCaricaTabelleStandard carica;
};

VORN_SU_DUE_MOTORI(CaricaTabelleTest);

TEST_P(CaricaTabelleTest, CopieDelModelloUnaPerUna) {
  // An empty company; its chart from the model: 280 rows (groups, accounts, sub-accounts).
  EXPECT_TRUE(clsGestioneAziende::PianoDeiContiVuoto(*cn));
  EXPECT_TRUE(clsGestioneAziende::CausaliContabiliVuote(*cn));
  ASSERT_TRUE(carica.CaricaPianoDeiContiStandard(nullptr, false));
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Piano Dei Conti]"), 280);
  EXPECT_FALSE(clsGestioneAziende::PianoDeiContiVuoto(*cn));
  EXPECT_TRUE(clsGestioneAziende::CausaliContabiliVuote(*cn));
  // An account the user added goes with the next copy; the simplified chart (168 rows) goes into
  // the ordinary table.
  cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) VALUES ('99', '99', "
             "'999', 'Conto dell''utente')");
  ASSERT_TRUE(carica.CaricaPianoDeiContiStandard(nullptr, true));
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Piano Dei Conti]"), 168);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Piano Dei Conti] WHERE [Gruppo] = '99'"), 0);
  ASSERT_TRUE(carica.CaricaPianoDeiContiStandard(nullptr, false));
  EXPECT_EQ(carica.GetDesSottocontoStandard(Valore("0701001")), "Banca c/c ordinario");

  // The asset settings alone: the company's other settings stay.
  ASSERT_TRUE(carica.CaricaParametriContabiliStandard(nullptr));
  cn->Esegui("UPDATE [Parametri Vorn] SET [SogliaAmmIntegrale] = 1000, [PercAbbattimAmmAnno1] = 0, "
             "[PeriodicitaLiquidazione] = '1'");
  ASSERT_TRUE(carica.CaricaParametriCespitiStandard(nullptr));
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [SogliaAmmIntegrale] FROM [Parametri Vorn]")),
            *Importo::DaTestoPunto("516.46"));
  EXPECT_EQ(NullToZeroDbl(cn->Scalare("SELECT [PercAbbattimAmmAnno1] FROM [Parametri Vorn]")), 50.0);
  EXPECT_EQ(Trim(cn->Scalare("SELECT [PeriodicitaLiquidazione] FROM [Parametri Vorn]").Testo()), "1");
  // The asset causals of the references, into a company that had no references yet.
  ASSERT_TRUE(carica.CaricaRiferimentiCespitiStandard(nullptr));
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Riferimenti Contabili]"), 1);
  EXPECT_TRUE(Trim(cn->Scalare("SELECT [SottIVACVendite] FROM [Riferimenti Contabili]").Testo()).empty());
  EXPECT_FALSE(Trim(cn->Scalare("SELECT [CausAmAmmOrd] FROM [Riferimenti Contabili]").Testo()).empty());
}

TEST_P(CaricaTabelleTest, ValoriCheLeganoGliArchivi) {
  ASSERT_TRUE(carica.SetSottocontiStandard(Valore("0501001"), Valore("1301001"), Valore("0701001"), Valore("6001001"),
                                           Valore("7001001")));
  Valore c, f, b, costo, ricavo;
  ASSERT_TRUE(carica.GetSottocontiStandard(c, f, b, costo, ricavo));
  EXPECT_EQ(c.Testo() + f.Testo() + b.Testo() + costo.Testo() + ricavo.Testo(),
            "05010011301001070100160010017001001");
  ASSERT_TRUE(carica.SetArchivioContropartiteVorn());
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Tabella Azienda]"), 1);
  EXPECT_EQ(Trim(cn->Scalare("SELECT [ArchivioContropartite] FROM [Tabella Azienda]").Testo()), "1");

  for (const char* codice : {"C1", "C2", "C3"})
    cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale]) VALUES (?, 'x')",
               {Valore(codice)});
  long righe = 0;
  ASSERT_TRUE(carica.SetSottocontoStandardAClienti(Valore("0501002"), righe));
  EXPECT_EQ(righe, 3);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Anagrafica Clienti] WHERE [SottocontoApparten] = '0501002'"), 3);
  ASSERT_TRUE(carica.SetSottocontoStandardAFornitori(Valore("1301001"), righe));
  EXPECT_EQ(righe, 0);

  ASSERT_TRUE(carica.InsertContropartiteStandard(Valore("6001001"), Valore("Merci c/acquisti")));
  ASSERT_TRUE(carica.InsertContropartiteStandard(Valore("6001001"), Valore("Altra descrizione")));
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Contropartite]"), 1);

  ASSERT_TRUE(carica.SetImportiFissiVornStandard(88, *Importo::DaTestoPunto("103.29"), *Importo::DaTestoPunto("25.82"),
                                                 1, 0));
  double acconto = 0, magg = 0, forf = 0;
  Importo minAcconto, minLiq;
  ASSERT_TRUE(carica.GetImportiFissiVornStandard(acconto, minAcconto, minLiq, magg, forf));
  EXPECT_EQ(acconto, 88);
  EXPECT_EQ(minAcconto, *Importo::DaTestoPunto("103.29"));
  EXPECT_EQ(minLiq, *Importo::DaTestoPunto("25.82"));
  ASSERT_TRUE(carica.SetRegimeContabile(Valore(1)));
  EXPECT_EQ(Conta("SELECT [regimeContabile] FROM [Parametri Vorn]"), 1);
}

// The demo's year on a company of the simplified model (the standard one: AziendaDemo): every
// causal, VAT code, payment term and account the postings need is there, and the balances agree
// with the journal.
TEST_P(CaricaTabelleTest, LAnnoDellaDemoSulModelloSemplificato) {
  clsCaricaTabelleStandard c;
  c.ConnettiDatabaseOrigine("semplificato");
  c.ConnettiDatabaseDestinazione(cn);
  c.CaricaModelloCompleto(nullptr);
  const cli::OpzioniDemo o{.seme = 7, .clienti = 5, .fornitori = 4, .registrazioni = 200, .lotto = 100};
  ASSERT_NO_THROW(cli::RiempiAziendaDemo(*cn, o));
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(CaricaTabelleTest, IlComandoChiedePrimaDiSostituire) {
  ASSERT_TRUE(carica.CaricaPianoDeiContiStandard(nullptr, false));
  cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) VALUES ('99', '99', "
             "'999', 'Conto dell''utente')");
  auto riga = [&](const char* risposta) {
    std::vector<std::string> a = {"--cartella", dir->Percorso(), risposta, "carica-tabelle"};
    for (auto& x : ArgomentiAzienda(Pg(), file, pg)) a.push_back(x);
    for (const char* x : {"--modello", "standard", "--tabelle", "piano-conti,causali"}) a.push_back(x);
    return EseguiVorn(a);
  };
  // Answered no: the chart stays as the user left it, the empty causals are loaded all the same.
  EsitoComando r = riga("--no");
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, "piano-conti: lasciato com'era\ncausali: caricato dal modello\n");
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Piano Dei Conti] WHERE [Gruppo] = '99'"), 1);
  r = riga("--si");
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, "piano-conti: caricato dal modello\ncausali: caricato dal modello\n");
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Piano Dei Conti] WHERE [Gruppo] = '99'"), 0);
}

}  // namespace
