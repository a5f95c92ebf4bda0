// The year's depreciation of the fixed assets, with every figure worked out by hand, and its
// posting: the entries square, the balances follow the journal, a failed posting leaves
// nothing behind and a second one posts nothing. The company comes from the standard model
// (first-year rate cut 50%, threshold of the whole depreciation 516,46).
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <thread>
#include <filesystem>
#include <map>
#include <string>

#include "assets/clsCespiti.h"
#include "assets/clsCespitiAmm.h"
#include "assets/clsCespitiContabilizza.h"
#include "assets/clsCespitiMovimenti.h"
#include "assets/clsCespitiRegistro.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "ledger/VerificaSaldi.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

Data D(int g, int m, int a) { return *Data::Crea(a, m, g); }

class Ammortamenti : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    movimenti.cn = cn;
    amm.cn = cn;
    contabilizza.cn = cn;
  }

  void Cespite(const std::string& codice, const std::string& categoria, double ordFisc, double antFisc, double civ,
               double limite = 0, double deducibile = 0, bool manutenzione = false) {
    clsCespiti c;
    c.cn = cn;
    bool cancel = false;
    ASSERT_TRUE(c.SalvaRecord(Valore(codice), Valore("Bene " + codice), Valore(""), Valore(""), Valore(""),
                              Valore(categoria), Valore(""), Valore(civ), Valore(0.0), Valore(ordFisc), Valore(antFisc),
                              Valore(limite), Valore(deducibile), Valore("0"), Valore("0"), Valore(manutenzione),
                              Valore(false), Valore(""), Valore("T"), 0, cancel));
  }
  void Movimento(const std::string& causale, const Data& data, const std::string& codice, double importo) {
    movimenti.RegistraMovimento(causale, data, codice, importo, importo, importo, "", 2);
  }

  // The assets of the case, with the history that leads to 2024.
  void CaricaCespiti() {
    // A car over the fiscal ceiling, 20% deductible, its civil rate lower than the fiscal one.
    Cespite("AUTO1", "16", 25, 0, 20, 18075.99, 20);
    Movimento("ACQ", D(15, 3, 2023), "AUTO1", 40000);
    // A machine bought in the middle of 2024, with anticipated depreciation.
    Cespite("MAC1", "12", 12, 12, 12);
    Movimento("ACQ", D(1, 7, 2024), "MAC1", 10000);
    // A telephone under the threshold.
    Cespite("TEL1", "18", 20, 0, 20);
    Movimento("ACQ", D(10, 2, 2024), "TEL1", 400);
    // A plant, a quarter sold in mid-2024: the cost and the fund of the quarter go out.
    Cespite("IMP1", "11", 10, 0, 10);
    Movimento("ACQ", D(1, 1, 2022), "IMP1", 20000);
    Movimento("SVA", D(30, 6, 2024), "IMP1", 5000);
    Movimento("VFO", D(30, 6, 2024), "IMP1", -750);
    // Software whose residual ends during 2024 (a fund of 500 taken over at the end of 2023).
    Cespite("SW1", "02", 20, 0, 20);
    Movimento("ACQ", D(1, 1, 2020), "SW1", 1000);
    Movimento("VFO", D(31, 12, 2023), "SW1", 500);
    // A van sold on 31/03/2024.
    Cespite("VAN1", "17", 20, 0, 20);
    Movimento("ACQ", D(1, 1, 2023), "VAN1", 30000);
    Movimento("VEN", D(31, 3, 2024), "VAN1", 20000);
  }

  EsitoAmmortamento Calcola(int anno) {
    ArgomentiAmmortamento a;
    a.anno = anno;
    a.indMetodoAmmortamento = 1;
    a.causaleAmmOrd = "AMO";
    a.causaleAmmAnt = "AMA";
    a.generaAmmortamentiInfrannuali = true;
    a.riferimentiTestata = "Ammortamento " + std::to_string(anno);
    EsitoAmmortamento e;
    amm.CalcolaAmmortamento(a, e);
    return e;
  }

  // The depreciation rows of a date by asset: fiscal, deductible, civil; `tipo` 11 or 12.
  std::map<std::string, std::array<double, 3>> Righe(const Data& data, int tipo) {
    std::map<std::string, std::array<double, 3>> m;
    auto rs = cn->Execute(
        "SELECT R.[CodiceCespite], R.[ImportoMovimentoFisc], R.[ImportoMovimentoFiscDed], R.[ImportoMovimentoCiv] "
        "FROM [CespitiMovimentiRighe] R INNER JOIN [CespitiMovimentiTestate] M ON M.[NumeroMovimento] = "
        "R.[NumeroMovimento] INNER JOIN [Causali Cespiti] K ON K.[Codice] = M.[CausaleCespiti] "
        "WHERE K.[TipoMovimentazione] = ? AND M.[DataCompetenza] = ?",
        {Valore(tipo), Valore(data)});
    for (; !rs.Eof(); rs.MoveNext())
      m[Trim(rs.Fields(0).Value().Testo())] = {NullToZeroDbl(rs.Fields(1).Value()), NullToZeroDbl(rs.Fields(2).Value()),
                                               NullToZeroDbl(rs.Fields(3).Value())};
    return m;
  }

  int64_t Conta(const std::string& sql, const Parametri& p = {}) { return NullToZeroLng(cn->Scalare(sql, p)); }

  clsCespitiMovimenti movimenti;
  clsCespitiAmm amm;
  clsCespitiContabilizza contabilizza;
};

using Terna = std::array<double, 3>;

TEST_P(Ammortamenti, QuoteDellAnnoCalcolateAMano) {
  CaricaCespiti();
  EsitoAmmortamento e2022 = Calcola(2022);
  EXPECT_NE(e2022.stringaErroriRiscontrati.find(
                "Cespite: AUTO1" + std::string(18, ' ') + " - Non incluso in quanto acquistato in data 15/03/2023 che è "
                "successiva all'anno di elaborazione 2022\n"),
            std::string::npos)
      << e2022.stringaErroriRiscontrati;
  // 2022: IMP1 first year at half rate (5% of 20.000), SW1 a full year at 20% of 1.000.
  EXPECT_EQ(Righe(D(31, 12, 2022), 11), (std::map<std::string, Terna>{{"IMP1", {1000, 1000, 1000}},
                                                                        {"SW1", {200, 200, 200}}}));
  Calcola(2023);
  // 2023: AUTO1 from 15/03, fiscal on the ceiling 18.075,99 x 12,5% = 2.259,49875, 20% of it
  // deductible; civil 40.000 x 10% x 292 / 365 = 3.200. VAN1 first year: 10% of 30.000.
  EXPECT_EQ(Righe(D(31, 12, 2023), 11), (std::map<std::string, Terna>{{"AUTO1", {2259.50, 451.90, 3200}},
                                                                        {"IMP1", {2000, 2000, 2000}},
                                                                        {"SW1", {200, 200, 200}},
                                                                        {"VAN1", {3000, 3000, 3000}}}));

  EsitoAmmortamento e = Calcola(2024);
  EXPECT_EQ(e.stringaErroriRiscontrati, "");
  EXPECT_EQ(e.righe, 6);
  EXPECT_EQ(e.numeroMovimentiInfrannuali, 1);
  EXPECT_EQ(Righe(D(31, 12, 2024), 11),
            (std::map<std::string, Terna>{
                // 25% of the ceiling = 4.518,9975; 20% deductible = 903,7995; civil 20% of 40.000.
                {"AUTO1", {4519.00, 903.80, 8000}},
                // the quarter sold: 10% of 15.000 on both tracks.
                {"IMP1", {1500, 1500, 1500}},
                // 6% of 10.000; civil 6% x 184 / 366 = 301,639...
                {"MAC1", {600, 600, 301.64}},
                // residual 1.000 - 400 - 500 = 100, less than the rate.
                {"SW1", {100, 100, 100}},
                // whole under the threshold; civil 10% of 400 x 326 / 366 = 35,628...
                {"TEL1", {400, 400, 35.63}}}));
  EXPECT_EQ(Righe(D(31, 12, 2024), 12), (std::map<std::string, Terna>{{"MAC1", {600, 600, 0}}}));
  // The van: 20% of 30.000 for 90 days of 366 = 1.475,409..., in a movement of its own on the day of sale.
  EXPECT_EQ(Righe(D(31, 3, 2024), 11), (std::map<std::string, Terna>{{"VAN1", {1475.41, 1475.41, 1475.41}}}));

  // A second run of the year writes nothing and says why for each asset.
  const int64_t righe = Conta("SELECT COUNT(*) FROM [CespitiMovimentiRighe]");
  EsitoAmmortamento ancora = Calcola(2024);
  EXPECT_EQ(ancora.righe, 0);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [CespitiMovimentiRighe]"), righe);
  // A causal of another kind is refused before anything is written: its movements would not be
  // found by the next run.
  ArgomentiAmmortamento sbagliata;
  sbagliata.anno = 2025;
  sbagliata.causaleAmmOrd = "ACQ";
  EXPECT_THROW(amm.CalcolaAmmortamento(sbagliata, ancora), ErroreDb);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [CespitiMovimentiRighe]"), righe);
  EXPECT_NE(ancora.stringaErroriRiscontrati.find("Cespite: MAC1" + std::string(19, ' ') +
                                                 " - Per il periodo elaborato esistono già dei movimenti di ammortamento"),
            std::string::npos);

  // The card: the software fully depreciated, the van's sale with its loss.
  auto scheda = amm.SchedaCespite("SW1", 2024);
  ASSERT_EQ(scheda.size(), 5u);
  EXPECT_EQ(scheda.back().Nota, "Cespite totalmente ammortizzato");
  auto van = amm.SchedaCespite("VAN1", 2024);
  ASSERT_EQ(van.size(), 2u);
  // Residual 30.000 - 3.000 - 1.475,41 = 25.524,59 against 20.000 sold: a loss of 5.524,59.
  EXPECT_NEAR(van.back().minusvalenza[0], 5524.59, 1e-6);
  EXPECT_EQ(van.back().Nota, "Cespite venduto/dismesso il 31/03/2024");
}

TEST_P(Ammortamenti, ContabilizzazioneQuadrataUnaVoltaSola) {
  CaricaCespiti();
  Calcola(2022);
  Calcola(2023);
  Calcola(2024);
  EsitoContabilizzazioneCespiti e;
  ASSERT_TRUE(contabilizza.ContabilizzaAmmortamenti(2024, "AMM", "AMT", e));
  // 31/03 the van; 31/12 the ordinary depreciation of five categories and the anticipated one.
  EXPECT_EQ(e.registrazioni.size(), 3u);
  EXPECT_EQ(e.righe, 7);
  auto rs = cn->Execute(
      "SELECT [NumeroRegistrazione], SUM(CASE WHEN [DareAvere] = 'D' THEN [ImportoMovimento] ELSE 0 END), "
      "SUM(CASE WHEN [DareAvere] = 'A' THEN [ImportoMovimento] ELSE 0 END) FROM [Prima Nota] GROUP BY "
      "[NumeroRegistrazione] ORDER BY [NumeroRegistrazione]");
  std::vector<Importo> dare;
  for (; !rs.Eof(); rs.MoveNext()) {
    EXPECT_EQ(NullToZeroCy(rs.Fields(1).Value()), NullToZeroCy(rs.Fields(2).Value())) << rs.Fields(0).Value().Testo();
    dare.push_back(NullToZeroCy(rs.Fields(1).Value()));
  }
  // 1.475,41; 4.519 + 1.500 + 600 + 100 + 400 = 7.119; 600.
  EXPECT_EQ(dare, (std::vector<Importo>{*Importo::DaTestoPunto("1475.41"), Importo(7119), Importo(600)}));
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [SaldoDarePeriodo] FROM [Saldi Piano Dei Conti] WHERE [CodiceGruppo] = "
                                     "'63' AND [CodiceConto] = '02' AND [CodiceSottoconto] = '006'")),
            Importo(4519));
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [SaldoAverePeriodo] FROM [Saldi Piano Dei Conti] WHERE [CodiceGruppo] = "
                                     "'11' AND [CodiceConto] = '03' AND [CodiceSottoconto] = '001'")),
            Importo(600));
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [CespitiMovimentiTestate] WHERE COALESCE([NumeroRegistrazione], '') = '' AND "
                  "[CausaleCespiti] IN ('AMO', 'AMA') AND [DataCompetenza] >= ?",
                  {Valore(D(1, 1, 2024))}),
            0);

  // Once more: nothing posted, the year found posted.
  const int64_t righe = Conta("SELECT COUNT(*) FROM [Prima Nota]");
  EsitoContabilizzazioneCespiti ancora;
  EXPECT_FALSE(contabilizza.ContabilizzaAmmortamenti(2024, "AMM", "AMT", ancora));
  EXPECT_TRUE(ancora.giaContabilizzato);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota]"), righe);
}

TEST_P(Ammortamenti, ContabilizzazioneFallitaNonLasciaNulla) {
  CaricaCespiti();
  Calcola(2024);
  // The telephones' fund account is not in the chart: the category comes last in the entry of
  // 31/12, after rows already written.
  cn->Esegui("UPDATE [CespitiCategorie] SET [SottFondoAmmOrd] = '1199999' WHERE [CodiceCategoria] = '18'");
  const Valore ultima = cn->Scalare("SELECT [UltimaRegistrazionePN] FROM [Progressivi Azienda Vorn]");
  EsitoContabilizzazioneCespiti e;
  EXPECT_THROW(contabilizza.ContabilizzaAmmortamenti(2024, "AMM", "AMT", e), ErroreDb);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota]"), 0);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Saldi Piano Dei Conti] WHERE COALESCE([SaldoDarePeriodo], 0) <> 0 OR "
                  "COALESCE([SaldoAverePeriodo], 0) <> 0"),
            0);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [CespitiMovimentiTestate] WHERE COALESCE([NumeroRegistrazione], '') <> ''"), 0);
  EXPECT_EQ(cn->Scalare("SELECT [UltimaRegistrazionePN] FROM [Progressivi Azienda Vorn]"), ultima);
  // Mended, the posting goes through whole.
  cn->Esegui("UPDATE [CespitiCategorie] SET [SottFondoAmmOrd] = '1102008' WHERE [CodiceCategoria] = '18'");
  EXPECT_TRUE(contabilizza.ContabilizzaAmmortamenti(2024, "AMM", "AMT", e));
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(Ammortamenti, UnAnnoCancellatoSiRicalcola) {
  Cespite("SW1", "02", 20, 0, 20);
  Movimento("ACQ", D(1, 1, 2023), "SW1", 1000);
  Calcola(2023);
  Calcola(2024);
  // Only 2024 goes, rows first: the heads of 2023 and the purchase stay.
  EXPECT_EQ(movimenti.CancellaAmmortamentiCespitiMovimentiRighe(2024), 1);
  EXPECT_EQ(movimenti.CancellaAmmortamentiCespitiMovimentiTestate(2024), 1);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [CespitiMovimentiTestate]"), 2);
  EsitoAmmortamento e = Calcola(2024);
  EXPECT_EQ(e.stringaErroriRiscontrati, "");
  // Software is immaterial: no first-year cut, 200 a year on both tracks.
  EXPECT_EQ(Righe(D(31, 12, 2024), 11), (std::map<std::string, Terna>{{"SW1", {200, 200, 200}}}));
  std::vector<RigaAmmDaContab> griglia;
  ASSERT_TRUE(contabilizza.LocalizzaAmmDaContab(griglia, 2024));
  ASSERT_EQ(griglia.size(), 1u);
  EXPECT_EQ(griglia[0].DesNatura, "Immateriale");
  EXPECT_EQ(griglia[0].DesTipoAmm, "Ammort. Ordin.");
  EXPECT_EQ(griglia[0].CDare, "6301003");
  EXPECT_EQ(griglia[0].cAvere, "1101003");
  EXPECT_EQ(griglia[0].importo, Importo(200));
  // Without a year, every year's depreciation goes.
  movimenti.CancellaAmmortamentiCespitiMovimentiRighe();
  movimenti.CancellaAmmortamentiCespitiMovimentiTestate();
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [CespitiMovimentiRighe]"), 1);
}

TEST_P(Ammortamenti, BaseDelleManutenzioniDeducibili) {
  Cespite("MAC1", "12", 12, 0, 12, 0, 100, true);
  Movimento("ACQ", D(1, 7, 2023), "MAC1", 10000);
  Movimento("MAN", D(1, 3, 2024), "MAC1", 500);  // this year's: not in the base of 2024
  Cespite("MAC2", "12", 12, 0, 12, 0, 100, true);
  Movimento("ACQ", D(1, 2, 2024), "MAC2", 8000);  // bought this year: left out
  Cespite("SW1", "02", 20, 0, 20, 0, 100, true);
  Movimento("ACQ", D(1, 1, 2023), "SW1", 1000);
  Cespite("MAC3", "12", 12, 0, 12, 0, 100);  // no contractual maintenance
  Movimento("ACQ", D(1, 1, 2023), "MAC3", 9000);
  std::string dati, errori;
  EXPECT_DOUBLE_EQ(amm.GetBaseCalcoloLimiteDeducibilita(nullptr, 2024, 2000, dati, errori), 10000);
  EXPECT_EQ(errori, "Cespite: SW1" + std::string(20, ' ') +
                        " - Riscontrato il flag Manutenzioni Contrattuali per un bene immateriale, il cespite non è "
                        "considerato nella calcolo.\n");
  EXPECT_EQ(dati.substr(0, 44), "Cespite: MAC1 - Valore cespite al 31/12/2023");
  // In the year the company was formed, the value of the year itself, this year's purchases too.
  dati.clear();
  errori.clear();
  EXPECT_DOUBLE_EQ(amm.GetBaseCalcoloLimiteDeducibilita(nullptr, 2024, 2024, dati, errori), 10500 + 8000);
}

TEST_P(Ammortamenti, OrdinarioEAnticipatoCheEsaurisconoIlResiduoSiPareggiano) {
  Cespite("ATT1", "13", 15, 15, 15);
  Movimento("ACQ", D(1, 1, 2023), "ATT1", 1000);
  Movimento("VFO", D(31, 12, 2023), "ATT1", 800);
  Calcola(2024);
  // Residual 200: ordinary 150, anticipated 150 cut to the 50 left; together 200, half each.
  // The civil track has no anticipated part: 15% of 1.000 within the civil residual of 200.
  EXPECT_EQ(Righe(D(31, 12, 2024), 11), (std::map<std::string, Terna>{{"ATT1", {100, 100, 150}}}));
  EXPECT_EQ(Righe(D(31, 12, 2024), 12), (std::map<std::string, Terna>{{"ATT1", {100, 100, 0}}}));
}

TEST_P(Ammortamenti, DueElaborazioniInsiemeNonRaddoppiano) {
  Cespite("MAC1", "12", 12, 0, 12);
  Movimento("ACQ", D(1, 1, 2023), "MAC1", 10000);
  // The first run holds its transaction open while a second one starts on another connection.
  cn->BeginTrans();
  EsitoAmmortamento prima = Calcola(2024);
  EXPECT_EQ(prima.righe, 1);
  EsitoAmmortamento seconda;
  std::string errore;
  std::thread altro([&] {
    try {
      clsCespitiAmm a2;
      a2.cn = AltraConnessione();
      ArgomentiAmmortamento a;
      a.anno = 2024;
      a.causaleAmmOrd = "AMO";
      a2.CalcolaAmmortamento(a, seconda);
    } catch (const std::exception& e) {
      errore = e.what();
    }
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  cn->CommitTrans();
  altro.join();
  EXPECT_EQ(errore, "");
  EXPECT_EQ(seconda.righe, 0);
  EXPECT_NE(seconda.stringaErroriRiscontrati.find("esistono già dei movimenti di ammortamento"), std::string::npos);
  EXPECT_EQ(Righe(D(31, 12, 2024), 11), (std::map<std::string, Terna>{{"MAC1", {1200, 1200, 1200}}}));
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [CespitiMovimentiRighe]"), 2);  // the purchase and one depreciation
}

TEST_P(Ammortamenti, RegistroDellAnno) {
  Cespite("MAC1", "12", 12, 12, 12);
  Movimento("ACQ", D(1, 7, 2024), "MAC1", 10000);
  Cespite("TEL1", "18", 20, 0, 20);
  Movimento("ACQ", D(10, 2, 2024), "TEL1", 400);
  Calcola(2024);
  clsCespitiRegistro registro;
  registro.cn = cn;
  ArgomentiRegistroCespiti a;
  a.anno = 2024;
  a.AzRagSoc = "Prova";
  a.AzParIva = "01234567890";
  a.avar_RighePagina = 24;
  a.nomeFile = CartellaStampe() + "/RegistroCespiti_2024.txt";
  ASSERT_TRUE(registro.StampaRegistroCespiti(a));
  EXPECT_EQ(registro.Esito().cespiti, 2);
  EXPECT_EQ(registro.Esito().ammortamentoFisc, Importo(1600));
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Elaborazione cespiti schede contabili]"), 0);
  ConfrontaGolden("assets/golden/registro_cespiti.txt", LeggiFile(a.nomeFile));

  // Definitive: the sheets of the book numbered from 1, the book's date and next sheet kept;
  // the same year again is refused and changes nothing.
  a.avar_ProvaBollato = "B";
  a.nomeFile = CartellaStampe() + "/RegistroCespitiBollato_2024.txt";
  ASSERT_TRUE(registro.StampaRegistroCespiti(a));
  EXPECT_EQ(registro.Esito().primoFoglio, 1);
  EXPECT_EQ(registro.Esito().prossimoFoglio, 3);
  EXPECT_EQ(cn->Scalare("SELECT [DataUltimoLibroCespiti] FROM [Progressivi Azienda Vorn]").ComeData(), D(31, 12, 2024));
  EXPECT_EQ(Conta("SELECT [Numero] FROM [Numerazione Fogli] WHERE [TipoStampa] = 'B' AND [Anno] = 2024"), 3);
  a.nomeFile = CartellaStampe() + "/RegistroCespitiAncora_2024.txt";
  EXPECT_FALSE(registro.StampaRegistroCespiti(a));
  EXPECT_TRUE(registro.Esito().giaBollato);
  EXPECT_FALSE(std::filesystem::exists(a.nomeFile));
  EXPECT_EQ(Conta("SELECT [Numero] FROM [Numerazione Fogli] WHERE [TipoStampa] = 'B' AND [Anno] = 2024"), 3);
}

VORN_SU_DUE_MOTORI(Ammortamenti);

}  // namespace
