// vorn liquidazione-iva as a user meets it: the options it refuses before touching anything, the
// simulation of three months of a small company of the standard model with the figures worked
// out by hand, and the definitive settlement after the definitive register prints: what it moves
// on, and the same month refused the second time.
#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "ComandoAzienda.h"
#include "frame/Comuni.h"
#include "ledger/clsPrimaNota.h"
#include "support/Azienda.h"
#include "support/DocumentiIva.h"

using namespace vorn;
using namespace vorn::test;
namespace fs = std::filesystem;

namespace {

class ComandoLiquidazioneIva : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    app = dir->Percorso() + "/app";
    cn->Esegui("UPDATE [Tabella Azienda] SET [Ragione Sociale] = 'Prova Liquidazioni S.r.l.', [Partita IVA] = "
               "'01234567890'");
    cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten]) "
               "VALUES ('1', 'Rossi Meccanica S.r.l.', '0501001')");
    cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten]) "
               "VALUES ('2', 'Comune di Milano', '0501004')");
    cn->Esegui("INSERT INTO [Anagrafica Fornitori] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten]) "
               "VALUES ('1', 'Bianchi Forniture S.p.A.', '1301001')");
    // The company's carried balances start at nothing; the model's fixed amounts give the
    // minimum payment of 25,82.
    cn->Esegui("INSERT INTO [Progressivi Azienda Vorn] ([CodIvaPerPrec], [CreditoIVAInizioAnno], "
               "[CreditoIVAInizioAnnoUt], [PlafondIvaResiduo]) VALUES (0, 0, 0, 0)");
    pn.cn = cn;
  }

  void Registra(const DocumentoIva& d, const std::vector<RigaContoDoc>& righe, const std::vector<RigaIvaDoc>& iva) {
    RegistraDocumento(pn, d, righe, iva);
  }

  // The books of the first quarter, and what each month settles.
  //
  // January. Sales VAT: 220,00 (22% of 1.000,00) + 50,00 (10% of 500,00) on the first invoice,
  // less 44,00 (22% of 200,00) of a credit note, plus 220,00 (22% of 1.000,00) invoiced to a
  // public body under split payment: V = 446,00, of which S = 220,00 split payment, so the VAT due
  // is 226,00. Purchases: 132,00 (22% of 600,00) + 30,00 (10% of 300,00) = 162,00 deductible.
  // Saldo 226,00 - 162,00 = 64,00: above the minimum of 25,82, 64,00 to pay.
  //
  // February. Sales 22,00 (22% of 100,00), purchases 110,00 (22% of 500,00): a credit of 88,00.
  //
  // March. Sales 20,00 (22% of 90,91 = 20,0002), no purchases: 20,00, not above 25,82, carried
  // and not paid. After February's credit of 88,00 is carried definitively: 20,00 - 88,00, a
  // credit of 68,00.
  void Libri() {
    Registra({"00001", "15/01/2024", "FTV", "1", "01", 1, 0, "1770", "C", "1"},
             {{"D", "0501001", "1770", "C"}, {"A", "7001001", "1500"}},
             {{"A", "1401001", "022", "1000", "220"}, {"A", "1401001", "010", "500", "50"}});
    Registra({"00002", "20/01/2024", "NCV", "1", "01", 2, 0, "244", "C", "1"},
             {{"A", "0501001", "244", "C"}, {"D", "7001006", "200"}}, {{"D", "1401001", "022", "200", "44"}});
    Registra({"00003", "22/01/2024", "FTV", "1", "01", 3, 0, "1220", "C", "2"},
             {{"D", "0501004", "1220", "C"}, {"A", "7001007", "1000"}}, {{"A", "1401001", "S22", "1000", "220"}});
    Registra({"00004", "25/01/2024", "FTA", "2", "01", 77, 1, "1062", "F", "1"},
             {{"D", "6001001", "900"}, {"A", "1301001", "1062", "F"}},
             {{"D", "0601001", "022", "600", "132"}, {"D", "0601001", "010", "300", "30"}});
    Registra({"00005", "10/02/2024", "FTV", "1", "01", 4, 0, "122", "C", "1"},
             {{"D", "0501001", "122", "C"}, {"A", "7001001", "100"}}, {{"A", "1401001", "022", "100", "22"}});
    Registra({"00006", "12/02/2024", "FTA", "2", "01", 78, 2, "610", "F", "1"},
             {{"D", "6001001", "500"}, {"A", "1301001", "610", "F"}}, {{"D", "0601001", "022", "500", "110"}});
    Registra({"00007", "05/03/2024", "FTV", "1", "01", 5, 0, "110.91", "C", "1"},
             {{"D", "0501001", "110.91", "C"}, {"A", "7001001", "90.91"}}, {{"A", "1401001", "022", "90.91", "20"}});
  }

  using Esito = EsitoComando;
  Esito Vorn(const std::string& comando, const std::vector<std::string>& resto) {
    return EseguiVorn(RigaComando(app, comando, Pg(), file, pg, resto));
  }
  Esito Liquidazione(const std::vector<std::string>& resto) { return Vorn("liquidazione-iva", resto); }
  // Both registers of the month printed definitively, their sheets numbered.
  void RegistriBollati(int mese) {
    for (const char* tipo : {"vendite", "acquisti"}) {
      Esito r = Vorn("registro-iva", {"--tipo", tipo, "--registro", "1", "--mese", std::to_string(mese), "--anno",
                                      "2024", "--bollato", "--numera-pagine"});
      ASSERT_EQ(r.rc, 0) << r.err;
    }
  }

  Importo CodIvaPerPrec() {
    return NullToZeroCy(cn->Scalare("SELECT [CodIvaPerPrec] FROM [Progressivi Azienda Vorn]"));
  }
  // The last sheet numbered of the sales register, where the model prints the settlements.
  long UltimoFoglio() {
    return Conta("SELECT [Numero] FROM [Numerazione Fogli] WHERE [TipoStampa] = 'R' AND [TipoRegistro] = 'V'");
  }
  std::string UltimaLiquidazione() {
    Valore v = cn->Scalare("SELECT [UltimaLiquidazioneIva] FROM [Progressivi Azienda Vorn]");
    return v.IsNull() ? "" : v.Testo().substr(0, 10);
  }
  long Conta(const std::string& sql) { return static_cast<long>(NullToZeroLng(cn->Scalare(sql))); }
  static Importo I(const char* s) { return *Importo::DaTestoPunto(s); }

  clsPrimaNota pn;
  std::string app;
};

VORN_SU_DUE_MOTORI(ComandoLiquidazioneIva);

}  // namespace

TEST_P(ComandoLiquidazioneIva, RefusedOptionsWriteNothing) {
  Libri();
  struct Caso {
    std::vector<std::string> argomenti;
    const char* messaggio;
  };
  const std::vector<Caso> casi = {
      {{"--mese", "1", "--trimestre", "1", "--anno", "2024"}, "--mese e --trimestre insieme"},
      {{"--anno", "2024"}, "manca il periodo"},
      {{"--mese", "0", "--anno", "2024"}, "--mese vuole un numero intero da 1 a 13"},
      {{"--mese", "14", "--anno", "2024"}, "--mese"},
      {{"--mese", "1.5", "--anno", "2024"}, "--mese"},
      {{"--trimestre", "0", "--anno", "2024"}, "--trimestre vuole un numero intero da 1 a 4"},
      {{"--trimestre", "5", "--anno", "2024"}, "--trimestre"},
      {{"--mese", "1"}, "manca --anno"},
      {{"--mese", "1", "--anno", "1899"}, "--anno"},
      {{"--mese", "1", "--anno", "10000"}, "--anno"},
      {{"--mese", "1", "--anno", "24a"}, "--anno"},
      {{"--mese", "1", "--anno", "2024", "--definitiva"}, "--definitiva vale solo con --bollata"},
      {{"--mese", "1", "--anno", "2024", "--numera-pagine"}, "--numera-pagine vale solo con --bollata"},
      {{"--mese", "1", "--anno", "2024", "--bollata", "--righe", "11"}, "--righe"},
      {{"--mese", "1", "--anno", "2024", "--bollata", "--colonne", "80"}, "argomento non previsto: --colonne"},
  };
  for (const auto& c : casi) {
    Esito r = Liquidazione(c.argomenti);
    const std::string caso = ::testing::PrintToString(c.argomenti);
    EXPECT_EQ(r.rc, 2) << caso;
    EXPECT_NE(r.err.find(c.messaggio), std::string::npos) << caso << ": " << r.err;
    EXPECT_NE(r.err.find("(vorn liquidazione-iva --help)"), std::string::npos) << r.err;
    EXPECT_EQ(r.out, "") << caso;
  }
  // A quarter on a company that settles every month: refused once the company says so.
  Esito r = Liquidazione({"--trimestre", "1", "--anno", "2024", "--bollata", "--definitiva"});
  EXPECT_EQ(r.rc, 1);
  EXPECT_NE(r.err.find("liquida l'IVA ogni mese"), std::string::npos) << r.err;
  EXPECT_EQ(r.out, "");

  // Nothing was written: no print, no period settled, no carried balance moved, no work table.
  if (fs::exists(app + "/Temp"))
    for (const auto& f : fs::directory_iterator(app + "/Temp")) ADD_FAILURE() << f.path();
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Liquidazioni Periodiche]"), 0);
  EXPECT_TRUE(CodIvaPerPrec().Zero());
  EXPECT_EQ(UltimaLiquidazione(), "");
  EXPECT_EQ(TabelleDiLavoro(*cn), std::vector<std::string>{});

  // The usage tells every option, and that a simulation opens the company for writing too.
  const std::string aiuto = EseguiVorn({"liquidazione-iva", "--help"}).out;
  for (const char* t : {"--mese", "--trimestre", "--anno", "--bollata", "--definitiva", "--numera-pagine", "--righe",
                        "--uscita", "13", "in scrittura"})
    EXPECT_NE(aiuto.find(t), std::string::npos) << t;
}

TEST_P(ComandoLiquidazioneIva, ASimulationSettlesEachMonthFromTheJournalAndChangesNothing) {
  Libri();
  // January: 64,00 to pay (worked out above Libri).
  Esito r = Liquidazione({"--mese", "1", "--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  const std::string gennaio = app + "/Temp/LiquidazioneIva_202401.txt";
  EXPECT_EQ(r.out, gennaio + "\nIVA a debito: 64,00, da versare: 64,00\n");
  const std::string testo = LeggiFile(gennaio);
  for (auto [etichetta, cifra] : std::vector<std::pair<const char*, const char*>>{
           {"Totale  IVA  Vendite", "446,00"},
           {"Vend. Split Payment", "220,00"},
           {"Totale  IVA  Dovuta", "226,00"},
           {"Totale  IVA  Detraibile", "162,00"},
           {"IVA  A  DEBITO", "64,00"},
           {"Importo da Versare", "64,00"}})
    EXPECT_NE(RigaCon(testo, etichetta).find(cifra), std::string::npos) << etichetta << "\n" << testo;
  // The month's sales and purchases only: nothing of February's 500,00 bought.
  EXPECT_EQ(testo.find("500,00                 110,00"), std::string::npos);
  EXPECT_NE(testo.find("Prova Liquidazioni S.r.l."), std::string::npos);

  // February: a credit of 88,00, to the path asked, on short pages.
  const std::string febbraio = dir->Percorso() + "/febbraio.txt";
  r = Liquidazione({"--mese", "2", "--anno", "2024", "--uscita", febbraio, "--righe", "30"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, febbraio + "\nIVA a credito: 88,00\n");
  EXPECT_NE(RigaCon(LeggiFile(febbraio), "IVA  A  CREDITO").find("88,00"), std::string::npos);

  // March: 20,00 is not above the minimum, so nothing is paid; the credit of February is not
  // carried, since February was not settled definitively.
  r = Liquidazione({"--mese", "3", "--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, app + "/Temp/LiquidazioneIva_202403.txt\nIVA a debito: 20,00, da versare: 0,00 (non supera il "
                         "minimo: riportata al periodo successivo)\n");

  // April has no VAT row.
  r = Liquidazione({"--mese", "4", "--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, "Nessun dato da stampare.\n");
  EXPECT_FALSE(fs::exists(app + "/Temp/LiquidazioneIva_202404.txt"));

  // The books are as they were: no period settled, no balance carried, no row marked, no work
  // table left; the same run again gives the same print.
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Liquidazioni Periodiche]"), 0);
  EXPECT_TRUE(CodIvaPerPrec().Zero());
  EXPECT_EQ(UltimaLiquidazione(), "");
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE SUBSTR([Stringa10indicatori], 1, 1) = 'R'"), 0);
  EXPECT_EQ(TabelleDiLavoro(*cn), std::vector<std::string>{});
  r = Liquidazione({"--mese", "1", "--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(LeggiFile(gennaio), testo);
}

TEST_P(ComandoLiquidazioneIva, ADefinitiveSettlementCarriesTheBalanceAndIsNotRepeated) {
  Libri();
  // January after its definitive register prints: 64,00 paid, nothing carried.
  RegistriBollati(1);
  Esito r = Liquidazione({"--mese", "1", "--anno", "2024", "--bollata", "--definitiva"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, app + "/Temp/LiquidazioneIva_202401.txt\nIVA a debito: 64,00, da versare: 64,00\n");
  EXPECT_TRUE(CodIvaPerPrec().Zero());
  EXPECT_EQ(UltimaLiquidazione(), "31/01/2024");
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [Importo_versato] FROM [Liquidazioni Periodiche] WHERE "
                                     "[MeseVersamento] = '01'")),
            I("64.00"));

  // February from the progressives, as a trial: the credit of 88,00, and nothing moves.
  RegistriBollati(2);
  const std::string febbraio = app + "/Temp/LiquidazioneIva_202402.txt";
  r = Liquidazione({"--mese", "2", "--anno", "2024", "--bollata"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, febbraio + "\nIVA a credito: 88,00\n");
  EXPECT_TRUE(CodIvaPerPrec().Zero());
  EXPECT_EQ(UltimaLiquidazione(), "31/01/2024");
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Liquidazioni Periodiche]"), 1);

  // Definitively, on the numbered sheets of the sales register (the model's register of the
  // settlements): the credit of 88,00 is carried.
  const long foglio = UltimoFoglio();
  r = Liquidazione({"--mese", "2", "--anno", "2024", "--bollata", "--definitiva", "--numera-pagine"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, febbraio + "\nIVA a credito: 88,00\n");
  EXPECT_EQ(CodIvaPerPrec(), I("88.00"));
  EXPECT_EQ(UltimaLiquidazione(), "29/02/2024");
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [CreditoIVA] FROM [Liquidazioni Periodiche] WHERE [MeseVersamento] = "
                                     "'02'")),
            I("88.00"));
  const std::string stampa = LeggiFile(febbraio);
  EXPECT_NE(stampa.find("2024/" + std::to_string(foglio + 1)), std::string::npos) << stampa;
  EXPECT_GT(UltimoFoglio(), foglio);
  EXPECT_EQ(TabelleDiLavoro(*cn), std::vector<std::string>{});

  // March in simulation takes the credit carried: 20,00 - 88,00, a credit of 68,00.
  r = Liquidazione({"--mese", "3", "--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, app + "/Temp/LiquidazioneIva_202403.txt\nIVA a credito: 68,00\n");

  // February again: refused, and nothing changes, the print included.
  const long fogli = UltimoFoglio();
  r = Liquidazione({"--mese", "2", "--anno", "2024", "--bollata", "--definitiva", "--numera-pagine"});
  EXPECT_EQ(r.rc, 1);
  EXPECT_EQ(r.out, "");
  EXPECT_NE(r.err.find("già stata stampata sul bollato"), std::string::npos) << r.err;
  EXPECT_NE(r.err.find("non è stata completata"), std::string::npos) << r.err;
  EXPECT_EQ(LeggiFile(febbraio), stampa);
  EXPECT_EQ(CodIvaPerPrec(), I("88.00"));
  EXPECT_EQ(UltimaLiquidazione(), "29/02/2024");
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Liquidazioni Periodiche]"), 2);
  EXPECT_EQ(UltimoFoglio(), fogli);
}
