// Clients and suppliers: saves by section and the columns they may touch, the overwrite
// question, navigation, balances and getters, on both registers.
#include <gtest/gtest.h>

#include "frame/Comuni.h"
#include "masterdata/clsClientiFornitori.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

class ClientiFornitori : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    cf.cn = cn;
  }
  // A client or supplier written straight into the table.
  void Riga(const char* tabella, const char* codice, const char* nome, const char* piva = "") {
    cn->Esegui(std::string("INSERT INTO [") + tabella +
                   "] ([Codice Cliente], [Ragione Sociale], [Partita Iva]) VALUES (?, ?, ?)",
               {codice, nome, piva});
  }
  Valore Leggi(const char* tabella, const char* codice, const std::string& colonna) {
    return cn->Scalare("SELECT [" + colonna + "] FROM [" + std::string(tabella) + "] WHERE [Codice Cliente] = ?",
                       {codice});
  }
  clsClientiFornitori cf;
};
VORN_SU_DUE_MOTORI(ClientiFornitori);

TEST_P(ClientiFornitori, EachSaveWritesOnlyItsOwnColumns) {
  bool cancel = false;
  RecordValori anag{{"Ragione Sociale", "Rossi & C. S.n.c."}, {"Partita Iva", "01234567890"},
                    {"Data nascita", "31/12/1960"}, {"Libero10", "x"}};
  ASSERT_TRUE(cf.SalvaRecordDatiAnagrafici("C", "000001", anag, "pc1", 1, cancel));
  // Columns of other sections set behind the class's back must survive every save.
  cn->Esegui(
      "UPDATE [Anagrafica Clienti] SET [Note2] = 'commerciale', [Cod Porto] = 'P1', [SaldoDarePeriodo] = 5.5, "
      "[IndTipoSoggettoFE] = 'PA', [Fido] = 1000");

  RecordValori comm{{"Codice Iva", "22"}, {"Aliquota", Importo(22)}, {"Sconto %", 10.5}, {"Scadenza al", 30},
                    {"SottocontoApparten", "0101001"}, {"Data Esenzione", "15/01/2024"}};
  ASSERT_TRUE(cf.SalvaRecord("C", "000001", comm, "pc1", 1, cancel));
  ASSERT_TRUE(cf.SalvaRecord2("C", "000001", 2.0, 3.0, "ABC1234", "1", "PR", "pc1", 1, cancel));
  ASSERT_TRUE(cf.SalvaRecordDatiTrasporto("C", "000001", {{"Cod Mezzo", "M1"}, {"FlagVettore", "1"}}, "pc1", 1, cancel));

  auto r = cn->Execute("SELECT * FROM [Anagrafica Clienti]");
  ASSERT_EQ(r.RecordCount(), 1u);
  EXPECT_EQ(r("Ragione Sociale").Value().Testo(), "Rossi & C. S.n.c.");
  EXPECT_EQ(r("Data nascita").Value().Dat().Testo(), "31/12/1960");
  EXPECT_EQ(r("Codice Iva").Value().Testo(), "22");
  EXPECT_EQ(r("Scadenza al").Value().ComeIntero(), 30);
  EXPECT_EQ(r("Codice Univoco PA").Value().Testo(), "ABC1234");
  EXPECT_EQ(r("IndTipoSoggettoFE").Value().Testo(), "PR");  // in SalvaRecord2's list: overwritten
  EXPECT_EQ(r("Cod Mezzo").Value().Testo(), "M1");
  // Outside every list that ran: untouched.
  EXPECT_EQ(r("Note2").Value().Testo(), "commerciale");
  EXPECT_EQ(r("Cod Porto").Value().Testo(), "P1");
  EXPECT_EQ(r("SaldoDarePeriodo").Value().Imp(), Importo::DaRaw(55000));
  EXPECT_EQ(r("Fido").Value().Imp(), Importo(1000));
  EXPECT_EQ(r("Partita Iva").Value().Testo(), "01234567890");

  // A name from another section is refused and nothing of the call is written.
  RecordValori misto{{"Codice Iva", "10"}, {"Ragione Sociale", "Altro"}};
  EXPECT_THROW(cf.SalvaRecord("C", "000001", misto, "pc1", 1, cancel), ErroreDb);
  EXPECT_EQ(Leggi("Anagrafica Clienti", "000001", "Codice Iva").Testo(), "22");
  EXPECT_EQ(Leggi("Anagrafica Clienti", "000001", "Ragione Sociale").Testo(), "Rossi & C. S.n.c.");
  // A value the column cannot hold fails before the row is written.
  EXPECT_THROW(cf.SalvaRecord("C", "000001", {{"Codice Iva", "10"}, {"Data Esenzione", "non una data"}}, "pc1", 1, cancel),
               ErroreDb);
  EXPECT_EQ(Leggi("Anagrafica Clienti", "000001", "Codice Iva").Testo(), "22");
}

TEST_P(ClientiFornitori, BalancesSaveWritesTheSixFiguresExactly) {
  bool cancel = false;
  Riga("Anagrafica Fornitori", "F1", "Fornitore");
  cn->Esegui("UPDATE [Anagrafica Fornitori] SET [Ragione Sociale 2] = 'resta'");
  // A row that nobody read yet is questioned like one read by someone else: read it first.
  EXPECT_FALSE(cf.SalvaRecordSaldi("F", "F1", 1, 1, 1, 1, 1, 1, "pc1", 1, cancel));
  EXPECT_TRUE(cancel);
  // The balances record is stamped and holds only the figures.
  Recordset T;
  EXPECT_FALSE(cf.LocalizzaRecordSaldi(T, "F", "F2", "pc1", 1));
  ASSERT_TRUE(cf.LocalizzaRecordSaldi(T, "F", "F1", "pc1", 1));
  EXPECT_TRUE(T.HasField("SaldoAvereProgress"));
  EXPECT_FALSE(T.HasField("Ragione Sociale"));
  T.Close();
  EXPECT_EQ(Leggi("Anagrafica Fornitori", "F1", "hWnd").ComeIntero(), 1);
  ASSERT_TRUE(cf.SalvaRecordSaldi("F", "F1", Importo::DaRaw(1), Importo::DaRaw(12345678901234), Importo::DaRaw(-7),
                                  Importo(0), Importo::DaRaw(9999), "0,3333", "pc1", 1, cancel));
  auto r = cn->Execute("SELECT * FROM [Anagrafica Fornitori]");
  EXPECT_EQ(r("SaldoInizPeriodo").Value().Imp().Raw(), 1);
  EXPECT_EQ(r("SaldoDarePeriodo").Value().Imp().Raw(), 12345678901234);
  EXPECT_EQ(r("SaldoAverePeriodo").Value().Imp().Raw(), -7);
  EXPECT_EQ(r("SaldoDareProgress").Value().Imp().Raw(), 9999);
  EXPECT_EQ(r("SaldoAvereProgress").Value().Imp().Raw(), 3333);
  EXPECT_EQ(r("Ragione Sociale 2").Value().Testo(), "resta");
  // The suppliers' save never reaches the clients' table.
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Anagrafica Clienti]").ComeIntero(), 0);
}

TEST_P(ClientiFornitori, SaveAnsweredNoWritesNothingAndNoPromptOverwritesSilently) {
  bool cancel = false;
  ASSERT_TRUE(cf.SalvaRecordDatiAnagrafici("C", "000001", {{"Ragione Sociale", "Primo"}}, "pc1", 1, cancel));
  EXPECT_TRUE(host->Messaggi().empty());

  // Another client reads the row.
  clsClientiFornitori altro;
  altro.cn = AltraConnessione();
  Recordset T;
  ASSERT_TRUE(altro.LocalizzaRecord(T, "C", "000001", "pc2", 9));
  T.Close();

  EXPECT_FALSE(cf.SalvaRecordDatiAnagrafici("C", "000001", {{"Ragione Sociale", "Secondo"}}, "pc1", 1, cancel));
  EXPECT_TRUE(cancel);
  EXPECT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(Leggi("Anagrafica Clienti", "000001", "Ragione Sociale").Testo(), "Primo");
  EXPECT_EQ(Leggi("Anagrafica Clienti", "000001", "clientName").Testo(), "pc2");

  // The later saves of one screen: NoPrompt overwrites without a question.
  EXPECT_TRUE(cf.SalvaRecord("C", "000001", {{"Codice Pagamento", "RB30"}}, "pc1", 1, cancel, true));
  EXPECT_FALSE(cancel);
  EXPECT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(Leggi("Anagrafica Clienti", "000001", "Codice Pagamento").Testo(), "RB30");
  EXPECT_EQ(Leggi("Anagrafica Clienti", "000001", "clientName").Testo(), "pc1");
  EXPECT_EQ(cf.GetPagamentoCliFor("C", "000001").Testo(), "RB30");
}

TEST_P(ClientiFornitori, CodeWithApostropheIsSavedFoundSteppedAndDeleted) {
  bool cancel = false;
  ASSERT_TRUE(cf.SalvaRecordDatiAnagrafici("C", "D'AMICO", {{"Ragione Sociale", "D'Amico Srl"}}, "pc1", 1, cancel));
  Riga("Anagrafica Clienti", "A1", "Alfa");
  Recordset T;
  ASSERT_TRUE(cf.LocalizzaRecord(T, "C", "D'AMICO", "pc1", 1));
  EXPECT_EQ(T("Ragione Sociale").Value().Testo(), "D'Amico Srl");
  T.Close();
  EXPECT_EQ(cf.GetRagioneSocialeCliFor("C", "D'AMICO").Testo(), "D'Amico Srl");
  EXPECT_TRUE(cf.ExistClienteFornitore("C", "D'AMICO"));
  Valore c("A1");
  ASSERT_TRUE(cf.RecordSuccessivo("C", c));
  EXPECT_EQ(c.Testo(), "D'AMICO");
  EXPECT_EQ(cf.GetMaxCodice("C"), "D'AMICO");
  EXPECT_TRUE(cf.CancellaRecord("C", "D'AMICO"));
  EXPECT_FALSE(cf.ExistClienteFornitore("C", "D'AMICO"));
  EXPECT_TRUE(cf.ExistClienteFornitore("C", "A1"));
}

TEST_P(ClientiFornitori, NavigationAndHighestCodeByTextOrder) {
  Valore c("");
  EXPECT_FALSE(cf.RecordSuccessivo("C", c));  // empty table
  EXPECT_FALSE(cf.RecordPrecedente("C", c));
  EXPECT_EQ(cf.GetMaxCodice("C"), "000000");

  Riga("Anagrafica Clienti", "000010", "Dieci");
  Riga("Anagrafica Clienti", "9", "Nove");
  Riga("Anagrafica Clienti", "000002", "Due");
  Riga("Anagrafica Fornitori", "999999", "Fornitore");
  // "9" beats "000010" as text: the mask shows it as "000009".
  EXPECT_EQ(cf.GetMaxCodice("C"), "000009");
  EXPECT_EQ(cf.GetMaxCodice("F"), "999999");

  ASSERT_TRUE(cf.RecordSuccessivo("C", c));
  EXPECT_EQ(c.Testo(), "9");
  EXPECT_FALSE(cf.RecordSuccessivo("C", c));
  EXPECT_EQ(c.Testo(), "9");
  ASSERT_TRUE(cf.RecordPrecedente("C", c));
  EXPECT_EQ(c.Testo(), "000010");
  ASSERT_TRUE(cf.RecordPrecedente("C", c));
  EXPECT_EQ(c.Testo(), "000002");
  EXPECT_FALSE(cf.RecordPrecedente("C", c));
  Valore vuoto("  ");
  ASSERT_TRUE(cf.RecordPrecedente("C", vuoto));  // blank: the first record
  EXPECT_EQ(vuoto.Testo(), "000002");
}

TEST_P(ClientiFornitori, BalancesWithTheirSides) {
  Riga("Anagrafica Clienti", "C1", "Uno");
  Riga("Anagrafica Clienti", "C2", "Due");
  Riga("Anagrafica Clienti", "C3", "Tre");
  // C1: opening 100,10 + 0,0001; current = 100,1001 + 50 - 200,2002 + 0 = -50,1001
  cn->Esegui(
      "UPDATE [Anagrafica Clienti] SET [SaldoInizPeriodo] = 100.1, [SaldoDarePeriodo] = 50, "
      "[SaldoAverePeriodo] = 200.2002, [SaldoInizProgress] = 0.0001 WHERE [Codice Cliente] = 'C1'");
  // C2: all zero, some null.
  cn->Esegui("UPDATE [Anagrafica Clienti] SET [SaldoInizPeriodo] = 0 WHERE [Codice Cliente] = 'C2'");
  // C3: zero opening, running totals that cancel out.
  cn->Esegui(
      "UPDATE [Anagrafica Clienti] SET [SaldoDareProgress] = 12.34, [SaldoAvereProgress] = 12.34 "
      "WHERE [Codice Cliente] = 'C3'");

  Valore dai, si, daa, sa;
  cf.GetDareAvereSaldoClienteFornitore("C", "C1", dai, si, daa, sa);
  EXPECT_EQ(dai.Testo(), "D");
  EXPECT_EQ(si.Imp(), Importo::DaRaw(1001001));
  EXPECT_EQ(daa.Testo(), "A");
  EXPECT_EQ(sa.Imp(), Importo::DaRaw(501001));

  for (const char* codice : {"C2", "C3", "manca"}) {
    cf.GetDareAvereSaldoClienteFornitore("C", codice, dai, si, daa, sa);
    EXPECT_EQ(dai.Testo(), "") << codice;  // zero: no side, not "D"
    EXPECT_EQ(daa.Testo(), "") << codice;
    EXPECT_TRUE(si.Imp().Zero());
    EXPECT_TRUE(sa.Imp().Zero());
  }

  EXPECT_TRUE(cf.AzzeraSaldi());
  cf.GetDareAvereSaldoClienteFornitore("C", "C1", dai, si, daa, sa);
  EXPECT_EQ(daa.Testo(), "");
  EXPECT_EQ(Leggi("Anagrafica Clienti", "C1", "Ragione Sociale").Testo(), "Uno");
}

TEST_P(ClientiFornitori, DuplicateVatNumbersAndFiscalCodes) {
  Riga("Anagrafica Clienti", "C1", "Uno", "01234567890");
  Riga("Anagrafica Fornitori", "F1", "Forn", "09876543210");
  cn->Esegui("UPDATE [Anagrafica Clienti] SET [Codice Fiscale] = 'RSSMRA60A01L219X'");
  EXPECT_FALSE(cf.ExistPartitaIVA("C", "C1", "01234567890"));  // its own number
  EXPECT_TRUE(cf.ExistPartitaIVA("C", "C2", "01234567890"));
  EXPECT_TRUE(cf.ExistPartitaIVA("C", "", "01234567890"));  // a record not yet coded
  EXPECT_FALSE(cf.ExistPartitaIVA("C", "C2", "09876543210"));  // held by a supplier only
  EXPECT_TRUE(cf.ExistPartitaIVA("F", "F2", "09876543210"));
  EXPECT_FALSE(cf.ExistPartitaIVA("C", "C2", ""));
  EXPECT_TRUE(cf.ExistCodiceFiscale("C", "C9", "RSSMRA60A01L219X"));
  EXPECT_FALSE(cf.ExistCodiceFiscale("C", "C1", "RSSMRA60A01L219X"));
}

TEST_P(ClientiFornitori, GettersAndTheirDefaults) {
  bool cancel = false;
  ASSERT_TRUE(cf.SalvaRecordDatiAnagrafici("F", "F1",
                                           {{"Ragione Sociale", "  Beta Spa  "}, {"Indirizzo", "Via Roma 1"},
                                            {"Cap", "10100"}, {"Località", "Torino"}, {"Provincia", "TO"},
                                            {"Persona Fisica", "1"}, {"Nome", "Mario"}, {"Cognome", "Bianchi"},
                                            {"Codice Nazione", "086"}},
                                           "pc1", 1, cancel));
  ASSERT_TRUE(cf.SalvaRecord("F", "F1", {{"SottocontoApparten", "4001001"}, {"Fido", "1500,50"}, {"IBAN", "IT60X"}},
                             "pc1", 1, cancel));

  EXPECT_EQ(cf.GetRagioneSocialeCliFor("F", "F1").Testo(), "Beta Spa");  // trimmed
  EXPECT_EQ(cf.GetRagioneSocialeCliFor("F", "F1", Valore("4001001")).Testo(), "Beta Spa");
  EXPECT_EQ(cf.GetRagioneSocialeCliFor("F", "F1", Valore("4001002"), &cancel).Testo(), "");
  EXPECT_TRUE(cancel);
  EXPECT_EQ(host->Messaggi().back().titolo, "Clienti/Fornitori");
  cancel = false;
  EXPECT_EQ(cf.GetRagioneSocialeCliFor("C", "F1").Testo(), "");  // not a client
  EXPECT_EQ(cf.GetRagioneSocialeCliFor("C", "", Valore(), &cancel).Testo(), "");
  EXPECT_FALSE(cancel);  // a blank code says nothing
  EXPECT_EQ(host->Messaggi().size(), 1u);

  EXPECT_TRUE(cf.ExistClienteFornitore("F", "F1", Valore("4001001")));
  EXPECT_FALSE(cf.ExistClienteFornitore("F", "F1", Valore("4001002")));
  EXPECT_DOUBLE_EQ(cf.GetFidoCliFor("F", "F1"), 1500.5);
  EXPECT_DOUBLE_EQ(cf.GetFidoCliFor("F", "F9"), 0.0);
  EXPECT_EQ(cf.GetBancaCliFor("F", "F9").Testo(), "");
  EXPECT_TRUE(cf.GetParametriPredefinitiCliFor().IsEmpty());

  Valore rs, ind, cap, loc, prov;
  ASSERT_TRUE(cf.GetIntestazioneCliFor("F", "F1", rs, ind, cap, loc, prov));
  EXPECT_EQ(rs.Testo() + "|" + ind.Testo() + "|" + cap.Testo() + "|" + loc.Testo() + "|" + prov.Testo(),
            "Beta Spa|Via Roma 1|10100|Torino|TO");
  EXPECT_FALSE(cf.GetIntestazioneCliFor("F", "F9", rs, ind, cap, loc, prov));
  EXPECT_EQ(rs.Testo(), "");

  std::string pf, nome, cognome, nascita, sesso, luogo, provN;
  ASSERT_TRUE(cf.GetDatiPersonaFisicaCliFor("F", "F1", pf, nome, cognome, nascita, sesso, luogo, provN));
  EXPECT_EQ(pf, "1");
  EXPECT_EQ(nome + " " + cognome, "Mario Bianchi");
  EXPECT_EQ(nascita, "");
  EXPECT_EQ(sesso, "F");  // the row's default
  cf.SalvaRecordDatiAnagrafici("F", "F1", {{"Data nascita", "05/06/1971"}, {"Sesso", "M"}}, "pc1", 1, cancel);
  cf.GetDatiPersonaFisicaCliFor("F", "F1", pf, nome, cognome, nascita, sesso, luogo, provN);
  EXPECT_EQ(nascita, "05/06/1971");
  EXPECT_EQ(sesso, "M");
  EXPECT_FALSE(cf.GetDatiPersonaFisicaCliFor("F", "F9", pf, nome, cognome, nascita, sesso, luogo, provN));
  EXPECT_EQ(pf, "0");
  EXPECT_EQ(sesso, "1");  // no record: a different default
  EXPECT_EQ(nome, "");
}

TEST_P(ClientiFornitori, WrongIndicatorAndClearing) {
  Recordset T;
  EXPECT_THROW(cf.LocalizzaRecord(T, "X", "1", "pc1", 1), ErroreDb);
  bool cancel;
  EXPECT_THROW(cf.SalvaRecord("", "1", {{"Codice Iva", "22"}}, "pc1", 1, cancel), ErroreDb);

  Riga("Anagrafica Clienti", "C1", "Uno");
  Riga("Anagrafica Fornitori", "F1", "Forn");
  EXPECT_TRUE(cf.AzzeraClienti());
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Anagrafica Clienti]").ComeIntero(), 0);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Anagrafica Fornitori]").ComeIntero(), 1);
  EXPECT_TRUE(cf.AzzeraFornitori());
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Anagrafica Fornitori]").ComeIntero(), 0);
}

TEST(TipoSottoconto, OnlyTheGroupAndAccountPrefixDecides) {
  clsClientiFornitori cf;
  Valore cli[6] = {Valore(), "0101", "0102", "", "", ""};
  Valore forn[6] = {Valore(), "4001", "", "", "", "0101"};
  EXPECT_EQ(cf.GetTipoSottoconto("0101001", cli, forn), "C");  // the clients' array is asked first
  EXPECT_EQ(cf.GetTipoSottoconto("0102999", cli, forn), "C");
  EXPECT_EQ(cf.GetTipoSottoconto("4001001", cli, forn), "F");
  EXPECT_EQ(cf.GetTipoSottoconto("4002001", cli, forn), "");
  EXPECT_EQ(cf.GetTipoSottoconto("01", cli, forn), "");
  EXPECT_EQ(cf.GetTipoSottoconto("", cli, forn), "");  // blank elements match nothing
  Valore zero[6] = {"0101", "", "", "", "", ""};  // element 0 is not one of the groups
  EXPECT_EQ(cf.GetTipoSottoconto("0101001", zero, zero), "");
}
