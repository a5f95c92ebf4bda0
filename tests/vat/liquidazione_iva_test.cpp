// The VAT settlement on both engines, with the figures worked out by hand in the comments.
#include <gtest/gtest.h>

#include <filesystem>

#include "company/clsProgAzienda.h"
#include "vat/RegistriIvaBase.h"
#include "vat/clsLiquidazioneIva.h"

namespace vorn::test {
namespace {

class LiquidazioneIvaTest : public RegistriIvaTest {
 protected:
  void SetUp() override {
    RegistriIvaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    liq.cn = cn;
    cn->Esegui("INSERT INTO [Progressivi Azienda Vorn] ([CodIvaPerPrec], [CreditoIVAInizioAnno], "
               "[CreditoIVAInizioAnnoUt], [PlafondIvaResiduo]) VALUES (0, 0, 0, 0)");
    cn->Esegui("INSERT INTO [Importi Fissi] ([ImportoMinLiqIva], [PercMaggTrim], [PercForfSemp], "
               "[PercCalcoloAcconto], [ImportoMinAcconto]) VALUES (25.82, 1, 0, 88, 103.29)");
  }

  ArgomentiLiquidazioneIva Liq(int mese, const std::string& nome, bool definitiva = false) {
    ArgomentiLiquidazioneIva a;
    a.AzRagSoc = "Studio Beta";
    a.AzParIva = "09876543210";
    a.nomeFile = dir->Percorso() + "/" + nome;
    a.avar_Mese = mese;
    a.avar_Anno = 2024;
    a.avar_RighePagina = 60;
    a.avar_ProvaBollato = definitiva ? "B" : "";
    return a;
  }
  // A month's registers printed definitively, so that the definitive settlement finds them.
  void Bollato(int mese) {
    for (const char* tipo : {"1", "2", "6", "8"}) {
      ArgomentiRegistroIva r = Argomenti(std::string("reg") + tipo + ".txt");
      r.avar_Mese = mese;
      r.avar_ProvaBollato = "B";
      ASSERT_TRUE(reg.StampaRegistro(tipo, r));
    }
  }
  Importo CodIvaPerPrec() {
    return NullToZeroCy(cn->Scalare("SELECT [CodIvaPerPrec] FROM [Progressivi Azienda Vorn]"));
  }
  void Vendita(const char* numero, const char* data, long doc, const char* imponibile, const char* imposta,
               const char* totale, const char* causale = "FTV") {
    Registra({numero, causale, data, "1", "", doc, 0, "C1", "", totale}, {{"022", imponibile, imposta}}, imponibile);
  }
  void Acquisto(const char* numero, const char* data, long prot, const char* imponibile, const char* imposta,
                const char* totale, const char* codice = "022") {
    Registra({numero, "FTA", data, "2", "", prot, prot, "F1", "", totale}, {{codice, imponibile, imposta}},
             imponibile);
  }

  clsLiquidazioneIva liq;
};

TEST_P(LiquidazioneIvaTest, DebitoSottoIlMinimoRiportatoAlMeseDopo) {
  // January: sales VAT 120,00 less purchases 100,00 = 20,00, under the minimum of 25,82: it is
  // carried, nothing is paid.
  Vendita("00001", "10/01/2024", 1, "545.45", "120.00", "665.45");
  Acquisto("00002", "12/01/2024", 1, "454.55", "100.00", "554.55");
  Bollato(1);
  ASSERT_TRUE(liq.LiquidazioneIvaBollata(Liq(1, "gen.txt", true)));
  EXPECT_EQ(liq.Esito().saldo, I("20.00"));
  EXPECT_EQ(liq.Esito().imposta2733, I("20.00"));
  EXPECT_TRUE(liq.Esito().daVersare.Zero());
  EXPECT_EQ(CodIvaPerPrec(), I("-20.00"));
  std::string gen = LeggiFile(dir->Percorso() + "/gen.txt");
  EXPECT_NE(gen.find("IMPOSTA Artt. 27 e 33 DPR 633/72:                 20,00"), std::string::npos);
  EXPECT_EQ(gen.find("Importo da Versare"), std::string::npos);
  // The period's progressives are spent; the year's stay.
  Importo imp, iva;
  prog.GetProgressivoIva(Valore("PI"), Valore("D"), Valore("1"), Valore("01"), Valore("022"), imp, iva);
  EXPECT_TRUE(iva.Zero());
  prog.GetProgressivoIva(Valore("PI"), Valore("R"), Valore("1"), Valore("01"), Valore("022"), imp, iva);
  EXPECT_EQ(iva, I("120.00"));

  // February: 220,00 less 100,00 = 120,00, with January's 20,00: 140,00 to pay.
  Vendita("00003", "10/02/2024", 2, "1000.00", "220.00", "1220.00");
  Acquisto("00004", "12/02/2024", 2, "454.55", "100.00", "554.55");
  Bollato(2);
  ASSERT_TRUE(liq.LiquidazioneIvaBollata(Liq(2, "feb.txt", true)));
  EXPECT_EQ(liq.Esito().saldo, I("140.00"));
  EXPECT_EQ(liq.Esito().daVersare, I("140.00"));
  EXPECT_TRUE(CodIvaPerPrec().Zero());
  std::string feb = LeggiFile(dir->Percorso() + "/feb.txt");
  EXPECT_NE(feb.find("Debito Artt. 27 e 33 DPR 633/72.:                 20,00"), std::string::npos);
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [Importo_versato] FROM [Liquidazioni Periodiche] WHERE "
                                     "[MeseVersamento] = '02'")),
            I("140.00"));

  // February again: refused, nothing changes.
  EXPECT_FALSE(liq.LiquidazioneIvaBollata(Liq(2, "feb2.txt", true)));
  EXPECT_FALSE(std::filesystem::exists(dir->Percorso() + "/feb2.txt"));
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [Importo_versato] FROM [Liquidazioni Periodiche] WHERE "
                                     "[MeseVersamento] = '02'")),
            I("140.00"));
}

TEST_P(LiquidazioneIvaTest, TrimestreConMaggiorazioneEStampa) {
  // The quarter January-March: sales VAT 1.000,00, nothing to deduct; the surcharge of 1% on
  // 1.000,00 is 10,00: 1.010,00 to pay.
  Vendita("00001", "10/02/2024", 1, "4545.45", "1000.00", "5545.45");
  ArgomentiLiquidazioneIva a = Liq(3, "trimestre.txt");
  a.avar_RegimeIva = "T";
  DatiVersamento banca;
  banca.stampa = true;
  banca.maggiorazione = 1;
  banca.codiceAzienda = "03069";
  banca.descrizioneAzienda = "Banca Gamma";
  banca.codiceDipendenza = "01600";
  banca.descrizioneDipendenza = "Filiale di Milano";
  banca.localita = "Milano";
  banca.provincia = "MI";
  banca.data = Valore(*Data::Crea(2024, 4, 16));
  a.objDatiVersamento = &banca;
  ASSERT_TRUE(liq.LiquidazioneIvaSimulazione(a));
  EXPECT_EQ(liq.Esito().saldo, I("1000.00"));
  EXPECT_EQ(liq.Esito().maggiorazione, I("10.00"));
  EXPECT_EQ(liq.Esito().daVersare, I("1010.00"));
  std::string testo = LeggiFile(a.nomeFile);
  ConfrontaGolden("vat/golden/liquidazione_trimestre.txt", testo);
  EXPECT_NE(testo.find("DEL PERIODO GENNAIO-FEBBRAIO-MARZO 2024"), std::string::npos);
  // A simulation changes nothing lasting.
  EXPECT_EQ(0, NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Liquidazioni Periodiche]")));
}

TEST_P(LiquidazioneIvaTest, CreditoDiInizioAnnoEProrata) {
  // A credit of 500,00 from last year's return, 300,00 of it used in January.
  cn->Esegui("UPDATE [Progressivi Azienda Vorn] SET [CreditoIVAInizioAnno] = 500");
  // Sales VAT 440,00; purchases VAT 200,00 of which 80% deductible (pro-rata): 160,00.
  // Saldo = 440 - 160 - 300 = -20,00: a credit of 20,00 carried.
  Vendita("00001", "10/01/2024", 1, "2000.00", "440.00", "2440.00");
  Acquisto("00002", "12/01/2024", 1, "909.09", "200.00", "1109.09");
  Bollato(1);
  ArgomentiLiquidazioneIva a = Liq(1, "prorata.txt", true);
  a.ImportoCreditoAnnuale = I("300.00");
  a.GestioneProrataIVA = "1";
  a.PercentualeProrata = 80;
  ASSERT_TRUE(liq.LiquidazioneIvaBollata(a));
  EXPECT_EQ(liq.Esito().saldo, I("-20.00"));
  EXPECT_EQ(CodIvaPerPrec(), I("20.00"));
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [CreditoIVAInizioAnnoUt] FROM [Progressivi Azienda Vorn]")),
            I("300.00"));
  std::string testo = LeggiFile(a.nomeFile);
  EXPECT_NE(testo.find("80,00 % IVA detr. (PRORATA)....:                160,00"), std::string::npos);
  EXPECT_NE(testo.find("IVA  A  CREDITO ................:                 20,00"), std::string::npos);
  // The communication's figures of the month.
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [ImportoACredito] FROM [DatiIVA] WHERE [anno] = 2024 AND [Mese] = 1")),
            I("20.00"));
}

TEST_P(LiquidazioneIvaTest, DeterminazioneForfetaria) {
  // The lump sum at 50%: of 1.000,00 of sales VAT, 500,00 is due, whatever the purchases say.
  cn->Esegui("UPDATE [Importi Fissi] SET [PercForfSemp] = 50");
  Vendita("00001", "10/01/2024", 1, "4545.45", "1000.00", "5545.45");
  Acquisto("00002", "12/01/2024", 1, "454.55", "100.00", "554.55");
  ASSERT_TRUE(liq.LiquidazioneIvaSimulazione(Liq(1, "forfait.txt")));
  EXPECT_EQ(liq.Esito().saldo, I("500.00"));
  EXPECT_NE(LeggiFile(dir->Percorso() + "/forfait.txt").find("Determinaz. forfetaria 50,00 %.:                500,00 +"),
            std::string::npos);
}

TEST_P(LiquidazioneIvaTest, FatturaDifferitaLiquidataQuandoIncassata) {
  // January: an invoice with deferred VAT of 110,00: only shown, not settled.
  Vendita("00001", "20/01/2024", 1, "500.00", "110.00", "610.00", "FED");
  Causale("IFD", "Incasso fattura esig. differita", "6", "4");
  ASSERT_TRUE(liq.LiquidazioneIvaSimulazione(Liq(1, "gen.txt")));
  EXPECT_TRUE(liq.Esito().saldo.Zero());
  EXPECT_NE(LeggiFile(dir->Percorso() + "/gen.txt").find("Totale  IVA ad esig. diff. vend.:   (            110,00 )"),
            std::string::npos);
  // February: cashed, its VAT is due.
  Registra({"00002", "IFD", "15/02/2024", "6", "", 1, 0, "C1", "", "610.00"}, {{"022", "500.00", "110.00"}},
           "610.00");
  ASSERT_TRUE(liq.LiquidazioneIvaSimulazione(Liq(2, "feb.txt")));
  EXPECT_EQ(liq.Esito().saldo, I("110.00"));
}

TEST_P(LiquidazioneIvaTest, VentilazioneERiepilogoAnnuale) {
  // Goods for resale: 22% on 500,00 (VAT 110,00) and 10% on 100,00 (VAT 10,00); receipts of
  // 1.000,00 by ventilation. The shares: 1.000 x 610 / 720 = 847,22 (taxable 694,44, VAT 152,78)
  // and 1.000 x 110 / 720 = 152,78 (taxable 138,89, VAT 13,89): VAT on receipts 166,67, less
  // 120,00 deductible = 46,67.
  Causale("FAR", "Acquisto merci da rivendere", "2", "5");
  Causale("CVT", "Corrispettivi in ventilazione", "4", "2");
  Registra({"00001", "FAR", "10/01/2024", "2", "", 1, 1, "F1", "", "610.00"}, {{"022", "500.00", "110.00"}}, "500.00");
  Registra({"00002", "FAR", "11/01/2024", "2", "", 2, 2, "F1", "", "110.00"}, {{"010", "100.00", "10.00"}}, "100.00");
  Doc v{"00003", "CVT", "31/01/2024", "4", "", 0, 0, "C1", "", "0"};
  RecordValori cassa = Base(v, "", 1, "D");
  cassa["ContoPrimaNota"] = Valore("0501001");
  cassa["ImportoMovimento"] = Valore(I("1000.00"));
  Salva(cassa);
  RecordValori ricavo = Base(v, "", 2, "A");
  ricavo["ContoPrimaNota"] = Valore("4001001");
  ricavo["ImportoMovimento"] = Valore(I("1000.00"));
  Salva(ricavo);
  ASSERT_TRUE(liq.LiquidazioneIvaSimulazione(Liq(1, "ventilazione.txt")));
  EXPECT_EQ(liq.Esito().saldo, I("46.67"));
  EXPECT_NE(LeggiFile(dir->Percorso() + "/ventilazione.txt")
                .find("N.B. Effettuare registrazione in Prima Nota stornando ricavi ventilazione per 166,67"),
            std::string::npos);

  // The year, from the definitive figures: January's settlement paid 46,67, so nothing is left.
  ArgomentiRegistroIva r = Argomenti("v.txt");
  r.avar_ProvaBollato = "B";
  for (const char* tipo : {"2", "4"}) ASSERT_TRUE(reg.StampaRegistro(tipo, r));
  ASSERT_TRUE(liq.LiquidazioneIvaBollata(Liq(1, "gen.txt", true)));
  EXPECT_EQ(liq.Esito().saldo, I("46.67"));
  ASSERT_TRUE(liq.LiquidazioneIvaBollata(Liq(13, "anno.txt", true)));
  EXPECT_TRUE(liq.Esito().saldo.Zero());
  EXPECT_NE(LeggiFile(dir->Percorso() + "/anno.txt").find("IVA Versata/Compensata nell'anno:                 46,67"),
            std::string::npos);
}

TEST_P(LiquidazioneIvaTest, RegistriGiaBollatiOltreIlPeriodo) {
  // January's and February's registers printed definitively: the period progressives hold both
  // months, so January can no longer be settled from them.
  Vendita("00001", "10/01/2024", 1, "1000.00", "220.00", "1220.00");
  Vendita("00002", "10/02/2024", 2, "1000.00", "220.00", "1220.00");
  Bollato(1);
  Bollato(2);
  EXPECT_FALSE(liq.LiquidazioneIvaBollata(Liq(1, "gen.txt", true)));
  EXPECT_NE(host->Ultimo().find("già stati stampati sul bollato fino al 29/02/2024"), std::string::npos);
  EXPECT_EQ(0, NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Liquidazioni Periodiche]")));
}

TEST_P(LiquidazioneIvaTest, DefinitivaInterrottaNonLasciaNulla) {
  Vendita("00001", "10/01/2024", 1, "1000.00", "220.00", "1220.00");
  Bollato(1);
  // The communication's table is gone: the run fails after the carried balances were written.
  cn->Esegui("DROP TABLE [DatiIVA]");
  ArgomentiLiquidazioneIva a = Liq(1, "rotta.txt", true);
  EXPECT_ANY_THROW(liq.LiquidazioneIvaBollata(a));
  EXPECT_FALSE(std::filesystem::exists(a.nomeFile));
  EXPECT_TRUE(cn->Scalare("SELECT [UltimaLiquidazioneIva] FROM [Progressivi Azienda Vorn]").IsNull());
  EXPECT_EQ(0, NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Liquidazioni Periodiche]")));
  Importo imp, iva;
  prog.GetProgressivoIva(Valore("PI"), Valore("D"), Valore("1"), Valore("01"), Valore("022"), imp, iva);
  EXPECT_EQ(iva, I("220.00"));
}

TEST_P(LiquidazioneIvaTest, AccontoStoricoDetrattoADicembre) {
  // Last December's VAT before its advance was 1.234,56: 88% of it is 1.086,4128, an advance of
  // 1.086,41, above the minimum of 103,29.
  cn->Esegui("UPDATE [Progressivi Azienda Vorn] SET [ImpIVACalcoloAcconto] = 1234.56");
  AccontoIvaStorico storico = liq.CalcolaAccontoIvaStorico();
  EXPECT_EQ(storico.base, I("1234.56"));
  EXPECT_TRUE(storico.dovuto);
  EXPECT_EQ(storico.totale, I("1086.41"));

  ArgomentiAccontoIva a;
  a.AzRagSoc = "Studio Beta";
  a.AzParIva = "09876543210";
  a.nomeFile = dir->Percorso() + "/acconto.txt";
  a.avar_ImportoIvaPresunto = storico.base;
  a.avar_PercentualeAcconto = storico.percentuale;
  a.avar_TotaleAcconto = storico.totale;
  a.avar_Anno = 2024;
  a.avar_RighePagina = 24;
  DatiVersamento banca;
  banca.stampa = true;
  banca.codiceAzienda = "03069";
  banca.codiceDipendenza = "01600";
  banca.data = Valore(*Data::Crea(2024, 12, 27));
  banca.tipo = 1;
  a.objDatiVersamento = &banca;
  // A trial stores nothing.
  ASSERT_TRUE(liq.AccontoIva(a));
  ConfrontaGolden("vat/golden/acconto_iva.txt", LeggiFile(a.nomeFile));
  EXPECT_EQ(0, NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Liquidazioni Periodiche]")));

  // Definitive: the row "14" with the bank's data and kind "B", every other amount 0.
  a.avar_ProvaBollato = "B";
  ASSERT_TRUE(liq.AccontoIva(a));
  Recordset r = cn->Execute("SELECT [Importo_versato], [TipoVersamento], [CodiceAziendaVersam], [DataVersamento], "
                            "[TotaleIVADebito], [ImportoDaVersare] FROM [Liquidazioni Periodiche] WHERE "
                            "[MeseVersamento] = '14'");
  ASSERT_FALSE(r.Eof());
  EXPECT_EQ(NullToZeroCy(r(0)), I("1086.41"));
  EXPECT_EQ(Trim(r(1).Value().Testo()), "B");
  EXPECT_EQ(Trim(r(2).Value().Testo()), "03069");
  EXPECT_EQ(r(3).Value().ComeData(), Data::Crea(2024, 12, 27));
  EXPECT_TRUE(NullToZeroCy(r(4)).Zero());
  EXPECT_TRUE(NullToZeroCy(r(5)).Zero());

  // December: sales VAT 1.500,00 less purchases 100,00 = 1.400,00, less the advance: 313,59.
  Vendita("00001", "10/12/2024", 1, "6818.18", "1500.00", "8318.18");
  Acquisto("00002", "12/12/2024", 1, "454.55", "100.00", "554.55");
  Bollato(12);
  ASSERT_TRUE(liq.LiquidazioneIvaBollata(Liq(12, "dic.txt", true)));
  EXPECT_EQ(liq.Esito().saldo, I("313.59"));
  EXPECT_NE(LeggiFile(dir->Percorso() + "/dic.txt").find("Acconto versato ................:              1.086,41"),
            std::string::npos);
  // Next year's base is December's VAT before the advance: 1.400,00, whose 88% is 1.232,00.
  EXPECT_EQ(liq.CalcolaAccontoIvaStorico().totale, I("1232.00"));

  // December settled: a definitive advance for 2024 is refused and changes nothing.
  a.avar_TotaleAcconto = I("500.00");
  EXPECT_FALSE(liq.AccontoIva(a));
  EXPECT_NE(host->Ultimo().find("l'acconto non sarebbe più detratto"), std::string::npos);
  EXPECT_EQ(liq.CalcolaAccontoIvaStorico().totale, I("1232.00"));
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [Importo_versato] FROM [Liquidazioni Periodiche] WHERE "
                                     "[MeseVersamento] = '14'")),
            I("1086.41"));
}

TEST_P(LiquidazioneIvaTest, AccontoStoricoNonDovuto) {
  // 88% of 117,00 is 102,96: under the minimum of 103,29. A credit gives no base at all.
  cn->Esegui("UPDATE [Progressivi Azienda Vorn] SET [ImpIVACalcoloAcconto] = 117");
  AccontoIvaStorico s = liq.CalcolaAccontoIvaStorico();
  EXPECT_EQ(s.calcolato, I("102.96"));
  EXPECT_FALSE(s.dovuto);
  EXPECT_TRUE(s.totale.Zero());
  cn->Esegui("UPDATE [Progressivi Azienda Vorn] SET [ImpIVACalcoloAcconto] = -500");
  EXPECT_TRUE(liq.CalcolaAccontoIvaStorico().base.Zero());
}

VORN_SU_DUE_MOTORI(LiquidazioneIvaTest);

}  // namespace
}  // namespace vorn::test
