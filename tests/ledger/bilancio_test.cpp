// The balance sheet: a small company's year in both forms (print and report rows), a journal
// that does not square, a period over an unload, the result of the year, the logical opening,
// the trial balance, and one balance sheet at a time per database.
#include <gtest/gtest.h>

#include <sstream>

#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/VornServer.h"
#include "ledger/clsBilancio.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

Importo I(const char* s) { return *Importo::DaTestoPunto(s); }

class Bilancio : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    // group, account, sub-account, description, section ("0" P, "1" E, "2" R)
    const char* piano[][5] = {
        {"01", "", "", "IMMOBILIZZAZIONI", "0"},      {"01", "01", "", "Impianti", "0"},
        {"01", "01", "001", "Macchinari", "0"},       {"05", "", "", "CREDITI", "0"},
        {"05", "01", "", "Clienti", "0"},             {"05", "01", "001", "Clienti Italia", "0"},
        {"07", "", "", "DISPONIBILITA' LIQUIDE", "0"}, {"07", "01", "", "Banche", "0"},
        {"07", "01", "001", "Banca c/c", "0"},        {"10", "", "", "PATRIMONIO NETTO", "0"},
        {"10", "01", "", "Capitale", "0"},            {"10", "01", "001", "Capitale sociale", "0"},
        {"10", "01", "002", "Utile esercizio precedente", "0"},
        {"12", "", "", "DEBITI", "0"},                {"12", "01", "", "Fornitori", "0"},
        {"12", "01", "001", "Fornitori Italia", "0"}, {"60", "", "", "COSTI", "1"},
        {"60", "01", "", "Acquisti", "1"},            {"60", "01", "001", "Merci", "1"},
        {"60", "02", "", "Servizi", "1"},             {"60", "02", "001", "Consulenze", "1"},
        {"70", "", "", "RICAVI", "1"},                {"70", "01", "", "Vendite", "1"},
        {"70", "01", "001", "Vendite merci", "1"},    {"90", "", "", "CONTI D'ORDINE", "2"},
        {"90", "01", "", "Beni di terzi", "2"},       {"90", "01", "001", "Beni di terzi presso di noi", "2"},
        {"90", "02", "", "Terzi", "2"},               {"90", "02", "001", "Terzi c/beni", "2"}};
    for (auto& r : piano)
      cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione], [IndDiBilancio]) "
                 "VALUES (?, ?, ?, ?, ?)",
                 {Valore(r[0]), Valore(r[1]), Valore(r[2]), Valore(r[3]), Valore(r[4])});
    cn->Esegui("INSERT INTO [Tabella Azienda] ([Ragione Sociale], [Indirizzo], [Cap], [Citta], [Provincia], "
               "[Partita Iva], [Codice Fiscale]) VALUES ('Rossi Srl', 'Via Roma 1', '20100', 'Milano', 'MI', "
               "'01234567890', '01234567890')");
    // The year: opening, a machine bought, two sales, a client paying more than owed, costs,
    // goods of others held.
    Riga("00001", "01/01/2024", "D", "0701001", "", "", "10000", true);
    Riga("00001", "01/01/2024", "A", "1001001", "", "", "10000", true);
    Riga("00002", "15/02/2024", "D", "0101001", "", "", "4000");
    Riga("00002", "15/02/2024", "A", "1201001", "F", "000001", "4000");
    Riga("00003", "10/03/2024", "D", "0501001", "C", "000001", "1500.50");
    Riga("00003", "10/03/2024", "A", "7001001", "", "", "1500.50");
    Riga("00004", "12/03/2024", "D", "0501001", "C", "000002", "800");
    Riga("00004", "12/03/2024", "A", "7001001", "", "", "800");
    Riga("00005", "20/04/2024", "D", "0701001", "", "", "900");
    Riga("00005", "20/04/2024", "A", "0501001", "C", "000002", "900");
    Riga("00006", "05/05/2024", "D", "6001001", "", "", "1200.25");
    Riga("00006", "05/05/2024", "A", "0701001", "", "", "1200.25");
    Riga("00007", "06/06/2024", "D", "6002001", "", "", "300");
    Riga("00007", "06/06/2024", "A", "0701001", "", "", "300");
    Riga("00008", "01/07/2024", "D", "9001001", "", "", "5000");
    Riga("00008", "01/07/2024", "A", "9002001", "", "", "5000");
  }

  void Riga(const char* numero, const char* data, const char* da, const char* conto, const char* ind, const char* cod,
            const char* importo, bool apertura = false) {
    cn->Esegui(
        "INSERT INTO [Prima Nota] ([NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere], "
        "[ContoPrimaNota], [IndClienteFornitore], [CodClienteFornitore], [DataRegistrazione], [DataCompetenza], "
        "[ImportoMovimento], [Stringa10indicatori]) VALUES (?, '', ?, ?, ?, ?, ?, ?, ?, ?, ?)",
        {Valore(numero), Valore(std::to_string(++riga_)), Valore(da), Valore(conto), Valore(ind), Valore(cod),
         Valore(data), Valore(data), Valore(I(importo)), Valore(apertura ? "  1       " : "  0       ")});
  }

  ArgomentiBilancio Argomenti(const char* dal, const char* al) {
    ArgomentiBilancio a;
    a.clientName = "POSTAZIONE1";
    a.AzRagSoc = "Studio Bianchi";
    a.AzParIva = "09876543210";
    a.nomeFile = CartellaStampe() + "/Bilancio.txt";
    a.avar_DaData = Valore(dal);
    a.avar_AData = Valore(al);
    a.avar_RighePagina = 30;
    return a;
  }

  // The report rows of the client, one line each, the amounts as plain numbers.
  std::string RigheReport(const std::string& client) {
    static const char* colonne[] = {"IDSezione", "Progressivo", "DesSezione", "StringaPeriodo", "TitoloColonnaSx",
                                    "TitoloColonnaDx", "ContoSx", "DesContoSx", "SaldoSx", "ContoDx", "DesContoDx",
                                    "SaldoDx", "TotaleSx", "TotaleDx", "TitoloRisultatoEsercizioSx",
                                    "RisultatoEsercizioSx", "TitoloRisultatoEsercizioDx", "RisultatoEsercizioDx",
                                    "TitoloTotalePareggioSx", "TotalePareggioSx", "TitoloTotalePareggioDx",
                                    "TotalePareggioDx", "NoteQuadratura"};
    std::string sql;
    for (const char* c : colonne) sql += (sql.empty() ? "SELECT [" : ", [") + std::string(c) + "]";
    auto rs = cn->Execute(sql + " FROM [Elaborazione stampa bilancio] WHERE [ClientName] = ? ORDER BY [Progressivo]",
                          {Valore(client)});
    std::string s;
    for (; !rs.Eof(); rs.MoveNext()) {
      for (int c = 0; c < rs.FieldCount(); ++c) {
        bool importo = std::string(colonne[c]).find("Saldo") == 0 || std::string(colonne[c]).find("Totale") == 0 ||
                       std::string(colonne[c]).find("Risultato") == 0;
        s += (c ? "|" : "") + (importo ? NullToZeroCy(rs(c).Value()).TestoPunto() : Trim(rs(c).Value().Testo()));
      }
      s += "\n";
    }
    return s;
  }

  clsBilancio Nuovo(std::shared_ptr<Connessione> c = nullptr) {
    clsBilancio b;
    b.cn = c ? c : cn;
    return b;
  }

  int riga_ = 0;
};

VORN_SU_DUE_MOTORI(Bilancio);

// Figures worked out by hand from the rows above. Balances: machine 4,000.00; client 1
// 1,500.50, client 2 -100.00 (paid 900.00 on 800.00); bank 10,000 + 900 - 1,200.25 - 300 =
// 9,399.75; capital -10,000; supplier -4,000; goods 1,200.25; services 300; sales -2,300.50;
// goods of others 5,000 and -5,000.
TEST_P(Bilancio, SmallCompanyYearInPrintAndReportForm) {
  clsBilancio b = Nuovo();
  ArgomentiBilancio a = Argomenti("01/01/2024", "31/12/2024");
  ASSERT_TRUE(b.Bilancio(a));
  // Assets: 4,000 + 1,500.50 + 9,399.75; liabilities: 100 (client 2 in credit) + 10,000 + 4,000.
  EXPECT_EQ(b.Patrimoniale().totaleSx, I("14900.25"));
  EXPECT_EQ(b.Patrimoniale().totaleDx, I("14100"));
  EXPECT_EQ(b.Economico().totaleSx, I("1500.25"));
  EXPECT_EQ(b.Economico().totaleDx, I("2300.50"));
  EXPECT_EQ(b.Riepilogo().totaleSx, I("5000"));
  EXPECT_FALSE(b.MancaQuadratura());
  // The control account: client 1 among the assets, client 2 among the liabilities.
  ASSERT_EQ(b.Patrimoniale().dx.size(), 9u);
  EXPECT_EQ(b.Patrimoniale().dx[2].conto, "0501001");
  EXPECT_EQ(b.Patrimoniale().dx[2].saldo, I("100"));
  EXPECT_EQ(b.Patrimoniale().sx[5].saldo, I("1500.50"));
  ConfrontaGolden("ledger/golden/bilancio_stampa.txt", LeggiFile(a.nomeFile));
  // Nothing of the run is left in the database but the report rows of its client.
  for (const char* t : {"Piano conti fittizio", "Prima nota sintetica", "Saldi sottoconti", "Attività", "Riepilogo passivi"})
    EXPECT_FALSE(EsisteTabella(*cn, t)) << t;

  a.bilancioSuReport = true;
  cn->Esegui("INSERT INTO [Elaborazione stampa bilancio] ([ClientName], [Progressivo]) VALUES ('POSTAZIONE1', 99)");
  cn->Esegui("INSERT INTO [Elaborazione stampa bilancio] ([ClientName], [Progressivo]) VALUES ('ALTRO', 1)");
  ASSERT_TRUE(b.Bilancio(a));
  ConfrontaGolden("ledger/golden/bilancio_report.txt", RigheReport("POSTAZIONE1"));
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Elaborazione stampa bilancio] WHERE [ClientName] = 'ALTRO'").ComeIntero(),
            1) << "another client's rows stay";
}

TEST_P(Bilancio, ResultOfTheYearIsRevenuesLessCosts) {
  // Revenues 1,500.50 + 800 = 2,300.50; costs 1,200.25 + 300 = 1,500.25: a profit of 800.25,
  // which the result tells as costs minus revenues (the print's line is in the golden file).
  clsBilancio b = Nuovo();
  EXPECT_EQ(b.GetRisultatoEsercizioEconomicoAData(nullptr, Valore("01/01/2024"), Valore("31/12/2024"), false),
            I("-800.25"));
  // Open ends take the dates of the journal; a period without the sales leaves the costs.
  EXPECT_EQ(b.GetRisultatoEsercizioEconomicoAData(nullptr, Valore(""), Valore(""), false), I("-800.25"));
  EXPECT_EQ(b.GetRisultatoEsercizioEconomicoAData(nullptr, Valore("01/04/2024"), Valore(""), false), I("1500.25"));
}

TEST_P(Bilancio, JournalThatDoesNotSquareIsToldAndTheRunCompletes) {
  Riga("00009", "30/09/2024", "D", "6002001", "", "", "50");  // no credit row
  clsBilancio b = Nuovo();
  ArgomentiBilancio a = Argomenti("01/01/2024", "31/12/2024");
  ASSERT_TRUE(b.Bilancio(a));
  EXPECT_TRUE(b.MancaQuadratura());
  EXPECT_EQ(b.Economico().totaleSx, I("1550.25"));
  std::string testo = LeggiFile(a.nomeFile);
  EXPECT_NE(testo.find("\n" + std::string(38, ' ') + "*---------- MANCA QUADRATURA DI BILANCIO ----------*\n"),
            std::string::npos)
      << testo;
  a.bilancioSuReport = true;
  ASSERT_TRUE(b.Bilancio(a));
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Elaborazione stampa bilancio] WHERE [NoteQuadratura] = "
                        "'*---------- MANCA QUADRATURA DI BILANCIO ----------*'")
                .ComeIntero(),
            cn->Scalare("SELECT COUNT(*) FROM [Elaborazione stampa bilancio]").ComeIntero());
}

TEST_P(Bilancio, PeriodOverAnUnloadAddsTheUnloadedBalances) {
  // What an unload of 2023 left: the bank 2,000 in debit, the capital opened at -1,500, and the
  // supplier with a credit progressive of 500, which is a credit (opening + debit - credit
  // progressive, as the cards and the year change read it).
  auto scarico = [&](const char* g, const char* c, const char* s, const char* ini, const char* dare, const char* avere) {
    cn->Esegui("INSERT INTO [Saldi Piano Dei Conti] ([CodiceGruppo], [CodiceConto], [CodiceSottoconto], "
               "[SaldoInizialeProgr], [DareProgressivo], [AvereProgressivo]) VALUES (?, ?, ?, ?, ?, ?)",
               {Valore(g), Valore(c), Valore(s), Valore(I(ini)), Valore(I(dare)), Valore(I(avere))});
  };
  scarico("07", "01", "001", "0", "2000", "0");
  scarico("10", "01", "001", "-1500", "0", "0");
  scarico("12", "01", "001", "0", "0", "500");
  scarico("60", "01", "001", "0", "0", "0");
  clsBilancio b = Nuovo();
  ASSERT_TRUE(b.Bilancio(Argomenti("", "31/12/2024")));
  // Assets 14,900.25 + 2,000 (bank); liabilities 14,100 + 1,500 (capital) + 500 (the supplier's
  // unloaded row, without a partner, apart from its partner's -4,000).
  EXPECT_EQ(b.Patrimoniale().totaleSx, I("16900.25"));
  EXPECT_EQ(b.Patrimoniale().totaleDx, I("16100"));
  EXPECT_EQ(b.Economico().totaleSx, I("1500.25"));
  bool banca = false;
  for (const auto& r : b.Patrimoniale().sx)
    if (r.conto == "0701001") banca = r.saldo == I("11399.75");
  EXPECT_TRUE(banca);
  // With a start and no unload reaching into the period, nothing of it comes in.
  ASSERT_TRUE(b.Bilancio(Argomenti("01/01/2024", "31/12/2024")));
  EXPECT_EQ(b.Patrimoniale().totaleSx, I("14900.25"));
  EXPECT_EQ(b.Patrimoniale().totaleDx, I("14100"));
  // An unload up to 31/03/2024 reaches into a period from 01/01/2024: its first rows are in the
  // progressives now, which come in.
  cn->Esegui("INSERT INTO [Progressivi Azienda Vorn] ([UltimoScaricoPN]) VALUES (?)", {Valore(*Data::Crea(2024, 3, 31))});
  ASSERT_TRUE(b.Bilancio(Argomenti("01/01/2024", "31/12/2024")));
  EXPECT_EQ(b.Patrimoniale().totaleSx, I("16900.25"));
  EXPECT_EQ(b.Patrimoniale().totaleDx, I("16100"));
  EXPECT_EQ(b.BilancioVerificaSottoconti(Valore("01/01/2024"), Valore("31/12/2024"))[2].dare, I("12900"));
  // The trial balance without a start: the bank's progressive debit among its debits.
  auto righe = b.BilancioVerificaSottoconti(Valore(""), Valore("31/12/2024"));
  ASSERT_GE(righe.size(), 3u);
  ASSERT_EQ(righe[2].codice, "0701001");
  EXPECT_EQ(righe[2].dare, I("12900"));
  EXPECT_EQ(righe[2].avere, I("1500.25"));
}

TEST_P(Bilancio, LogicalOpeningCarriesPatrimonialRowsAndLastYearsResult) {
  // 2025 opened logically on 01/01/2025, with 2024 not closed: a 2025 sale of 1,000.
  Riga("00010", "10/01/2025", "D", "0701001", "", "", "1000");
  Riga("00010", "10/01/2025", "A", "7001001", "", "", "1000");
  clsBilancio b = Nuovo();
  ArgomentiBilancio a = Argomenti("", "31/12/2025");
  a.avar_ContoRisultatoEsercizioPrec = Valore("1001002");
  a.avar_DataLogicaAperturaBilancio = Valore("01/01/2025");
  ASSERT_TRUE(b.Bilancio(a));
  // 2024's costs and revenues stay out; its profit of 800.25 stands on 1001002 as a credit.
  EXPECT_EQ(b.Economico().totaleSx, Importo());
  EXPECT_EQ(b.Economico().totaleDx, I("1000"));
  bool utile = false;
  for (const auto& r : b.Patrimoniale().dx)
    if (r.conto == "1001002") utile = r.saldo == I("800.25");
  EXPECT_TRUE(utile);
  // Assets 14,900.25 + 1,000; liabilities 14,100 + 800.25.
  EXPECT_EQ(b.Patrimoniale().totaleSx, I("15900.25"));
  EXPECT_EQ(b.Patrimoniale().totaleDx, I("14900.25"));
  EXPECT_FALSE(b.MancaQuadratura());

  a.avar_DataLogicaAperturaBilancio = Valore("31/02/2025");
  EXPECT_FALSE(b.Bilancio(a));
  EXPECT_EQ(host->Ultimo(), "La data logica 'Apertura di bilancio' è richiesta ma non corretta. Impossibile continuare");
}

TEST_P(Bilancio, TrialBalanceFromTheJournal) {
  auto righe = Nuovo().BilancioVerificaSottoconti(Valore("01/01/2024"), Valore("31/12/2024"));
  ASSERT_EQ(righe.size(), 10u);
  // The bank: the opening 10,000 and 900 in debit, 1,200.25 and 300 in credit.
  EXPECT_EQ(righe[2].codice, "0701001");
  EXPECT_EQ(righe[2].descrizione, "Banca c/c");
  EXPECT_EQ(righe[2].dare, I("10900"));
  EXPECT_EQ(righe[2].avere, I("1500.25"));
  // The clients' account: 2,300.50 in debit, 900 in credit, whatever the partners.
  EXPECT_EQ(righe[1].dare, I("2300.50"));
  EXPECT_EQ(righe[1].avere, I("900"));
  Importo dare, avere;
  for (const auto& r : righe) dare += r.dare, avere += r.avere;
  EXPECT_EQ(dare, I("23700.75"));
  EXPECT_EQ(dare, avere);
  // A period of March only.
  righe = Nuovo().BilancioVerificaSottoconti(Valore("01/03/2024"), Valore("31/03/2024"));
  ASSERT_EQ(righe.size(), 2u);
  EXPECT_EQ(righe[1].avere, I("2300.50"));
}

TEST_P(Bilancio, OneBalanceSheetAtATimePerDatabase) {
  // A second balance sheet asked on another connection while the first composes its print.
  class Form : public IForm {
   public:
    void msgbar(const std::string& t) override {
      if (t != "Composizione stampa" || !seconda) return;
      clsBilancio altro;
      altro.cn = seconda;
      esitoSeconda = altro.Bilancio(argomenti);
      try {
        altro.GetRisultatoEsercizioEconomicoAData(nullptr, Valore(""), Valore(""), false);
      } catch (const ErroreDb& e) {
        erroreRisultato = e.Descrizione();
      }
      seconda.reset();
    }
    std::shared_ptr<Connessione> seconda;
    ArgomentiBilancio argomenti;
    bool esitoSeconda = true;
    std::string erroreRisultato;
  } form;
  form.seconda = AltraConnessione();
  form.argomenti = Argomenti("01/01/2024", "31/12/2024");
  form.argomenti.nomeFile = CartellaStampe() + "/Secondo.txt";
  ArgomentiBilancio a = Argomenti("01/01/2024", "31/12/2024");
  a.frm_FormAttiva = &form;
  clsBilancio b = Nuovo();
  ASSERT_TRUE(b.Bilancio(a));
  EXPECT_FALSE(form.esitoSeconda);
  EXPECT_EQ(host->Ultimo(), clsBilancio::kMessaggioInCorso);
  EXPECT_EQ(form.erroreRisultato, clsBilancio::kMessaggioInCorso);
  EXPECT_FALSE(EsisteFile(form.argomenti.nomeFile));
  // The first is whole, and the guard is gone with it: a run that fails on its print frees it too.
  EXPECT_EQ(b.Patrimoniale().totaleSx, I("14900.25"));
  a.frm_FormAttiva = nullptr;
  a.avar_RighePagina = 5;
  EXPECT_THROW(b.Bilancio(a), std::invalid_argument);
  clsBilancio terzo = Nuovo(AltraConnessione());
  EXPECT_TRUE(terzo.Bilancio(Argomenti("01/01/2024", "31/12/2024")));
}

}  // namespace
