// The journal's rows and the balance movement that goes with every save and delete.
#include <gtest/gtest.h>

#include <cstdio>

#include "ledger/PrimaNotaBase.h"
#include "ledger/VerificaSaldi.h"

using namespace vorn;
using namespace vorn::test;

class PrimaNotaTest : public PrimaNotaBase {
 protected:
  // A trigger that makes the journal refuse a row described "BOOM" and the delete of entry
  // 00009: a failure in the middle of a save or a delete, after the balances have moved.
  void Guasto() {
    if (Pg()) {
      cn->Esegui(
          "CREATE FUNCTION pn_guasto() RETURNS trigger AS $$ BEGIN "
          "IF TG_OP = 'DELETE' THEN IF OLD.numeroregistrazione = '00009' THEN RAISE EXCEPTION 'no'; END IF; RETURN OLD; "
          "END IF; IF NEW.descrizionesupplem = 'BOOM' THEN RAISE EXCEPTION 'boom'; END IF; RETURN NEW; END $$ "
          "LANGUAGE plpgsql");
      cn->Esegui(
          "CREATE TRIGGER pn_guasto BEFORE INSERT OR UPDATE OR DELETE ON \"prima nota\" FOR EACH ROW EXECUTE FUNCTION "
          "pn_guasto()");
    } else {
      cn->Esegui("CREATE TRIGGER pn_ins BEFORE INSERT ON [Prima Nota] WHEN NEW.DescrizioneSupplem = 'BOOM' "
                 "BEGIN SELECT RAISE(ABORT, 'boom'); END;");
      cn->Esegui("CREATE TRIGGER pn_upd BEFORE UPDATE ON [Prima Nota] WHEN NEW.DescrizioneSupplem = 'BOOM' "
                 "BEGIN SELECT RAISE(ABORT, 'boom'); END;");
      cn->Esegui("CREATE TRIGGER pn_del BEFORE DELETE ON [Prima Nota] WHEN OLD.NumeroRegistrazione = '00009' "
                 "BEGIN SELECT RAISE(ABORT, 'no'); END;");
    }
  }
};

TEST_P(PrimaNotaTest, AnInvoicePostsEachSideOnItsAccountAndOnTheClient) {
  Salva(Riga("00001", "", "001", "D", "1201001", "122", "V01", "C", "1"));
  Salva(Riga("00001", "", "002", "A", "4001001", "100"));
  Salva(Riga("00001", "I", "001", "A", "2501001", "22"));
  EXPECT_EQ(SaldoConto("1201001"), S("0", "122", "0"));
  EXPECT_EQ(SaldoConto("4001001"), S("0", "0", "100"));
  EXPECT_EQ(SaldoConto("2501001"), S("0", "0", "22"));
  EXPECT_EQ(SaldoCF('C', "1"), S("0", "122", "0"));
  EXPECT_FALSE(SaldoCF('F', "1").esiste);
  // Rows without a partner move no partner.
  EXPECT_EQ(Conta("Anagrafica Clienti"), 1);
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "", "001", "D"), Valore("  0       "));
  EXPECT_TRUE(host->Messaggi().empty());
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(PrimaNotaTest, AmountsAddUpWithoutDrift) {
  // 0.1 + 0.2 is not 0.3 in binary floating point: the stored column must be exactly 0.3.
  Salva(Riga("00001", "", "001", "D", "1201001", "0.1"));
  Salva(Riga("00001", "", "002", "D", "1201001", "0.2"));
  EXPECT_EQ(SaldoConto("1201001"), S("0", "0.3", "0"));
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Saldi Piano Dei Conti] WHERE [SaldoDarePeriodo] = 0.3")), 1);
  // Four decimals, many times over.
  for (int i = 3; i < 103; ++i) {
    char riga[8];
    std::snprintf(riga, sizeof riga, "%03d", i);
    Salva(Riga("00002", "", riga, "A", "4001001", "0.0001"));
    Salva(Riga("00002", "I", riga, "A", "4001001", "1234.5678"));
  }
  EXPECT_EQ(SaldoConto("4001001"), S("0", "0", "123456.79"));
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Saldi Piano Dei Conti] WHERE [SaldoAverePeriodo] = 123456.79")), 1);
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(PrimaNotaTest, ResavingChangingAndDeletingMoveExactlyTheDifference) {
  // Balances that were there before the row: a save and a delete must give them back.
  cn->Esegui("INSERT INTO [Saldi Piano Dei Conti] ([CodiceGruppo], [CodiceConto], [CodiceSottoconto], "
             "[SaldoInizialePeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo], [DareProgressivo]) "
             "VALUES ('12', '01', '001', 10.5, 20.25, 30, 7)");
  const Saldo prima = SaldoConto("1201001");

  auto r = Riga("00001", "", "001", "D", "1201001", "100", "V01", "C", "1");
  Salva(r);
  Salva(r);  // the same row twice: the balances as after the first save
  EXPECT_EQ(SaldoConto("1201001"), S("10.5", "120.25", "30"));
  EXPECT_EQ(SaldoCF('C', "1"), S("0", "100", "0"));

  r["ImportoMovimento"] = Valore(Imp("150.75"));
  Salva(r);  // a new amount moves by the difference
  EXPECT_EQ(SaldoConto("1201001"), S("10.5", "171", "30"));
  EXPECT_EQ(SaldoCF('C', "1"), S("0", "150.75", "0"));

  r["ContoPrimaNota"] = Valore("1202001");
  Salva(r);  // another account: the old one down, the new one up
  EXPECT_EQ(SaldoConto("1201001"), prima);
  EXPECT_EQ(SaldoConto("1202001"), S("0", "150.75", "0"));

  r["CodClienteFornitore"] = Valore("2");
  r["CodiceCausale"] = Valore("AP");
  Salva(r);  // another client and an opening causal
  EXPECT_EQ(SaldoCF('C', "1"), S("0", "0", "0"));
  EXPECT_EQ(SaldoCF('C', "2"), S("150.75", "0", "0"));
  EXPECT_EQ(SaldoConto("1202001"), S("150.75", "0", "0"));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "", "001", "D"), Valore("  1       "));
  EXPECT_EQ(Conta("Prima Nota"), 1);
  // The balances written beforehand are all that the journal does not explain.
  auto differenze = VerificaSaldi(*cn);
  ASSERT_EQ(differenze.size(), 3u);
  for (const auto& d : differenze) EXPECT_EQ(d.codice, "1201001");
  EXPECT_EQ(differenze[1].registrato - differenze[1].ricostruito, Imp("20.25"));

  EXPECT_TRUE(pn.CancellaRecord(Valore("00001")));
  EXPECT_EQ(Conta("Prima Nota"), 0);
  EXPECT_EQ(SaldoConto("1201001"), prima);
  EXPECT_EQ(SaldoConto("1202001"), S("0", "0", "0"));
  EXPECT_EQ(SaldoCF('C', "2"), S("0", "0", "0"));
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [DareProgressivo] FROM [Saldi Piano Dei Conti] WHERE [CodiceGruppo] = '12' "
                                     "AND [CodiceConto] = '01' AND [CodiceSottoconto] = '001'")),
            Imp("7"));
  EXPECT_TRUE(host->Messaggi().empty());
}

TEST_P(PrimaNotaTest, UnknownCausalAndUnknownSubAccountAreToldAndTheSaveGoesOn) {
  Salva(Riga("00001", "", "001", "D", "1201001", "50", "ZZ", "C", "3"));
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo,
            "Causale contabile 'ZZ' inesistente. Possibile disallinamento dei saldi contabili.");
  EXPECT_EQ(host->Messaggi()[0].titolo, "Movimenta Saldi Contabili");
  EXPECT_EQ(host->Bip(), 1);
  // The rows are created, no amount moves, and the journal row is there all the same.
  EXPECT_EQ(SaldoConto("1201001"), S("0", "0", "0"));
  EXPECT_EQ(SaldoCF('C', "3"), S("0", "0", "0"));
  EXPECT_EQ(NullToZeroCy(Colonna("ImportoMovimento", "00001", "", "001", "D")), Imp("50"));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "", "001", "D"), Valore("          "));

  host->Pulisci();
  Salva(Riga("00002", "", "001", "D", "9909999", "75"));
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo, "Sottoconto 9909999 inesistente.");
  EXPECT_EQ(host->Messaggi()[0].titolo, "Funzione MovimentaSaldiContabili");
  EXPECT_EQ(SaldoConto("9909999"), S("0", "75", "0"));  // moved on a code the chart does not know

  // Saved again: the storno and the new movement each tell it, and the balance stays.
  host->Pulisci();
  Salva(Riga("00002", "", "001", "D", "9909999", "75"));
  EXPECT_EQ(host->Messaggi().size(), 2u);
  EXPECT_EQ(SaldoConto("9909999"), S("0", "75", "0"));

  // Both unknown: the causal first.
  host->Pulisci();
  Salva(Riga("00003", "", "001", "A", "9808888", "5", "QQ"));
  ASSERT_EQ(host->Messaggi().size(), 2u);
  EXPECT_EQ(host->Messaggi()[0].titolo, "Movimenta Saldi Contabili");
  EXPECT_EQ(host->Messaggi()[1].testo, "Sottoconto 9808888 inesistente.");
  EXPECT_EQ(SaldoConto("9808888"), S("0", "0", "0"));
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(PrimaNotaTest, ACausalCreatedMeanwhileIsFoundByTheSameInstance) {
  Salva(Riga("00001", "", "001", "D", "1201001", "10", "NEW"));
  EXPECT_EQ(host->Messaggi().size(), 1u);
  Causale("NEW", Valore("0"));
  host->Pulisci();
  Salva(Riga("00001", "", "002", "D", "1201001", "10", "NEW"));
  EXPECT_TRUE(host->Messaggi().empty());
  EXPECT_EQ(SaldoConto("1201001"), S("0", "10", "0"));
}

TEST_P(PrimaNotaTest, ZeroAmountNoAccountOrNoNumericPartnerMoveNothing) {
  Salva(Riga("00001", "", "001", "D", "1201001", "0", "V01", "C", "1"));
  EXPECT_EQ(Conta("Saldi Piano Dei Conti"), 0);  // no row created either
  EXPECT_EQ(Conta("Anagrafica Clienti"), 0);
  Salva(Riga("00001", "", "002", "D", "", "10", "ZZ", "C", "1"));
  EXPECT_EQ(Conta("Saldi Piano Dei Conti"), 0);
  EXPECT_TRUE(host->Messaggi().empty());  // not even the unknown causal is looked at
  // A partner code that does not read as a number other than zero reaches no partner.
  Salva(Riga("00001", "", "003", "D", "1201001", "10", "V01", "C", "ABC"));
  Salva(Riga("00001", "", "004", "D", "1201001", "10", "V01", "C", "0"));
  EXPECT_EQ(Conta("Anagrafica Clienti"), 0);
  EXPECT_EQ(SaldoConto("1201001"), S("0", "20", "0"));
  // The rate plays no part: 0 moves the amount unchanged.
  EXPECT_TRUE(pn.MovimentaSaldiContabili(Valore("V01"), Valore("1201001"), Valore(""), Valore(""), Valore("A"),
                                         Valore(Imp("5")), Valore(0), Valore("15/01/2024")));
  EXPECT_EQ(SaldoConto("1201001"), S("0", "20", "5"));
}

TEST_P(PrimaNotaTest, ASupplierIsCreatedOnItsFirstPosting) {
  Salva(Riga("00001", "", "001", "A", "1401001", "300", "ACQ", "F", "77"));
  Recordset rs = cn->Execute("SELECT [Ragione Sociale], [SaldoAverePeriodo] FROM [Anagrafica Fornitori] "
                             "WHERE [Codice Cliente] = '77'");
  ASSERT_FALSE(rs.Eof());
  EXPECT_EQ(rs.Fields(0).Value(), Valore("77"));
  EXPECT_EQ(NullToZeroCy(rs.Fields(1).Value()), Imp("300"));
  Salva(Riga("00002", "", "001", "D", "1401001", "120.5", "ACQ", "F", "77"));
  EXPECT_EQ(SaldoCF('F', "77"), S("0", "120.5", "300"));
  EXPECT_EQ(Conta("Anagrafica Fornitori"), 1);
  EXPECT_EQ(Conta("Anagrafica Clienti"), 0);
  // A supplier that exists keeps its name.
  cn->Esegui("INSERT INTO [Anagrafica Fornitori] ([Codice Cliente], [Ragione Sociale]) VALUES ('78', 'Rossi Srl')");
  Salva(Riga("00003", "", "001", "A", "1401001", "1", "ACQ", "F", "78"));
  EXPECT_EQ(cn->Scalare("SELECT [Ragione Sociale] FROM [Anagrafica Fornitori] WHERE [Codice Cliente] = '78'"),
            Valore("Rossi Srl"));
  EXPECT_EQ(SaldoCF('F', "78"), S("0", "0", "1"));
}

TEST_P(PrimaNotaTest, OperativityDecidesTheColumns) {
  // "1" is the opening entry: a debit raises the opening balance, a credit lowers it.
  Salva(Riga("00001", "", "001", "D", "1201001", "100", "AP", "C", "5"));
  EXPECT_EQ(SaldoConto("1201001"), S("100", "0", "0"));
  Salva(Riga("00001", "", "002", "A", "1201001", "40", "AP", "C", "5"));
  EXPECT_EQ(SaldoConto("1201001"), S("60", "0", "0"));
  EXPECT_EQ(SaldoCF('C', "5"), S("60", "0", "0"));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "", "002", "A"), Valore("  1       "));
  // "2" moves like "0"; a causal without an operativity counts as "0"; "9" moves nothing but
  // the row is there.
  Salva(Riga("00002", "", "001", "D", "1202001", "7", "G2"));
  Salva(Riga("00002", "", "002", "A", "1202001", "3", "NUL"));
  Salva(Riga("00002", "", "003", "D", "2502001", "9", "X9"));
  EXPECT_EQ(SaldoConto("1202001"), S("0", "7", "3"));
  EXPECT_EQ(SaldoConto("2502001"), S("0", "0", "0"));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00002", "", "002", "A"), Valore("  0       "));
  EXPECT_TRUE(VerificaSaldi(*cn).empty());

  EXPECT_TRUE(pn.CancellaRecord(Valore("00001")));
  EXPECT_EQ(SaldoConto("1201001"), S("0", "0", "0"));
  EXPECT_EQ(SaldoCF('C', "5"), S("0", "0", "0"));
}

TEST_P(PrimaNotaTest, IndicatorStringKeepsItsReservedPositions) {
  auto r = Riga("00001", "", "001", "D", "1201001", "10");
  r["Stringa10indicatori"] = Valore("RG");
  Salva(r);
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "", "001", "D"), Valore("RG0       "));
  // Whatever another program put in positions 4 to 10 survives a write.
  cn->Esegui("UPDATE [Prima Nota] SET [Stringa10indicatori] = 'RG0ABCDEFG'");
  r["Stringa10indicatori"] = Valore("R");
  r["CodiceCausale"] = Valore("AP");
  Salva(r);
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "", "001", "D"), Valore("R 1ABCDEFG"));
  // A new row takes them as given.
  auto n = Riga("00001", "", "002", "A", "4001001", "10");
  n["Stringa10indicatori"] = Valore("  9XYZ");
  Salva(n);
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "", "002", "A"), Valore("  0XYZ    "));

  // The printed marks: "G" on position 2 keeps the others, "R" 0 clears position 1.
  EXPECT_TRUE(pn.ManipolaIndicatoriPrimaNota(Valore(""), Valore(""), Valore(""), Valore(""), Valore(""), Valore("G"),
                                             Valore(1)));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "", "001", "D"), Valore("RG1ABCDEFG"));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "", "002", "A"), Valore(" G0XYZ    "));
  EXPECT_TRUE(pn.ManipolaIndicatoriPrimaNota(Valore(""), Valore(""), Valore(""), Valore(""), Valore(""), Valore("R"),
                                             Valore(0)));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "", "001", "D"), Valore(" G1ABCDEFG"));
  // An empty string marked "G" becomes " G".
  cn->Esegui("UPDATE [Prima Nota] SET [Stringa10indicatori] = ''");
  EXPECT_TRUE(pn.ManipolaIndicatoriPrimaNota(Valore(""), Valore(""), Valore(""), Valore(""), Valore(""), Valore("G"),
                                             Valore(1)));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "", "001", "D"), Valore(" G"));
  // Other kinds or values do nothing and answer true.
  EXPECT_TRUE(pn.ManipolaIndicatoriPrimaNota(Valore(""), Valore(""), Valore(""), Valore(""), Valore(""), Valore("G"),
                                             Valore(2)));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "", "001", "D"), Valore(" G"));
}

TEST_P(PrimaNotaTest, MarksFollowTheirRangesAndDates) {
  auto vendita = Riga("00001", "I", "001", "A", "2501001", "22");
  vendita["TipoRegistroIva"] = Valore("1");
  vendita["NumRegistroIva"] = Valore("01");
  vendita["DataCompetenzaIVA"] = Valore("31/01/2024");
  Salva(vendita);
  auto altra = Riga("00002", "I", "001", "A", "2501001", "22");
  altra["TipoRegistroIva"] = Valore("2");
  altra["NumRegistroIva"] = Valore("01");
  altra["DataCompetenzaIVA"] = Valore("01/03/2024");
  Salva(altra);
  // "R" of January: the sales row by its VAT date, the purchase row by its competence date.
  EXPECT_TRUE(pn.ManipolaIndicatoriPrimaNota(Valore(""), Valore(""), Valore("01/01/2024"), Valore("31/01/2024"),
                                             Valore(""), Valore("R"), Valore(1)));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "I", "001", "A"), Valore("R 0       "));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00002", "I", "001", "A"), Valore("R 0       "));
  cn->Esegui("UPDATE [Prima Nota] SET [Stringa10indicatori] = '  0       '");
  // The road hauliers' switch puts every row on its VAT date: March is out of January.
  EXPECT_TRUE(pn.ManipolaIndicatoriPrimaNota(Valore(""), Valore(""), Valore("01/01/2024"), Valore("31/01/2024"),
                                             Valore(""), Valore("R"), Valore(1), Valore("1")));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00002", "I", "001", "A"), Valore("  0       "));
  // Numbers and the causal narrow the range.
  EXPECT_TRUE(pn.ManipolaIndicatoriPrimaNota(Valore("2"), Valore("2"), Valore(""), Valore(""), Valore("V01"),
                                             Valore("G"), Valore(1)));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "I", "001", "A"), Valore("R 0       "));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00002", "I", "001", "A"), Valore(" G0       "));

  cn->Esegui("UPDATE [Prima Nota] SET [Stringa10indicatori] = '  0       '");
  EXPECT_TRUE(pn.MarcaIndicatoriStampatoRegistriIva(Valore(*Data::Crea(2024, 1, 1)), Valore(*Data::Crea(2024, 1, 31)),
                                                    Valore("1"), Valore("01")));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00001", "I", "001", "A"), Valore("R 0       "));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00002", "I", "001", "A"), Valore("  0       "));
}

TEST_P(PrimaNotaTest, DescriptionIsCutToTwentyCharactersAndABadDocumentDateIsNull) {
  auto r = Riga("00001", "", "001", "D", "1201001", "10");
  r["DescrizioneSupplem"] = Valore("Perché è così: fattura n. 12345");  // 31 characters, some of two bytes
  r["DataDocumento"] = Valore("");
  Salva(r);
  EXPECT_EQ(Colonna("DescrizioneSupplem", "00001", "", "001", "D"), Valore("Perché è così: fattu"));
  EXPECT_TRUE(Colonna("DataDocumento", "00001", "", "001", "D").IsNull());
  r["DataDocumento"] = Valore("31/02/2024");
  Salva(r);
  EXPECT_TRUE(Colonna("DataDocumento", "00001", "", "001", "D").IsNull());
  r["DataDocumento"] = Valore("29/02/2024");
  Salva(r);
  EXPECT_EQ(Colonna("DataDocumento", "00001", "", "001", "D").ComeData(), Data::Crea(2024, 2, 29));
  // The two numbers of old callers are accepted and go nowhere.
  r["NumeroRegistrazione2"] = Valore("99999");
  r["dataregistrazione2"] = Valore("01/01/2000");
  Salva(r);
  EXPECT_EQ(Conta("Prima Nota"), 1);
}

TEST_P(PrimaNotaTest, RefusedValuesWriteNothing) {
  auto r = Riga("00001", "", "001", "D", "1201001", "10", "V01", "C", "1");
  r["ImportoMovimentoo"] = Valore(Imp("10"));
  bool cancel = false;
  EXPECT_THROW(pn.SalvaRecord(r, Valore("prova"), 1, cancel), ErroreDb);
  auto s = Riga("00001", "", "001", "D", "1201001", "10", "V01", "C", "1");
  s["ImportoMovimento"] = Valore("dieci");
  EXPECT_THROW(pn.SalvaRecord(s, Valore("prova"), 1, cancel), ErroreDb);
  EXPECT_EQ(Conta("Prima Nota"), 0);
  EXPECT_EQ(Conta("Saldi Piano Dei Conti"), 0);
  EXPECT_EQ(Conta("Anagrafica Clienti"), 0);
  EXPECT_FALSE(cn->InTransazione());
}

TEST_P(PrimaNotaTest, AFailedSaveLeavesJournalAndBalancesInStep) {
  Guasto();
  // Inside the caller's transaction: the failed row goes, the earlier one stays.
  cn->BeginTrans();
  Salva(Riga("00001", "", "001", "D", "1201001", "100", "V01", "C", "1"));
  auto boom = Riga("00001", "", "002", "A", "1201001", "40", "V01", "C", "1");
  boom["DescrizioneSupplem"] = Valore("BOOM");
  bool cancel = false;
  EXPECT_THROW(pn.SalvaRecord(boom, Valore("prova"), 1, cancel), ErroreDb);
  EXPECT_TRUE(cn->InTransazione());
  cn->CommitTrans();
  EXPECT_EQ(Conta("Prima Nota"), 1);
  EXPECT_EQ(SaldoConto("1201001"), S("0", "100", "0"));
  EXPECT_EQ(SaldoCF('C', "1"), S("0", "100", "0"));

  // A change that fails: the storno of the old values goes too.
  auto cambio = Riga("00001", "", "001", "D", "1202001", "300", "V01", "C", "2");
  cambio["DescrizioneSupplem"] = Valore("BOOM");
  EXPECT_THROW(pn.SalvaRecord(cambio, Valore("prova"), 1, cancel), ErroreDb);
  EXPECT_FALSE(cn->InTransazione());
  EXPECT_EQ(NullToZeroCy(Colonna("ImportoMovimento", "00001", "", "001", "D")), Imp("100"));
  EXPECT_EQ(SaldoConto("1201001"), S("0", "100", "0"));
  EXPECT_FALSE(SaldoConto("1202001").esiste);
  EXPECT_FALSE(SaldoCF('C', "2").esiste);
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(PrimaNotaTest, ABulkBatchThatFailsLeavesJournalAndBalancesInStep) {
  Guasto();
  pn.UnitaRecuperabili = false;
  cn->BeginTrans();
  Salva(Riga("00001", "", "001", "D", "1201001", "100", "V01", "C", "1"));
  auto boom = Riga("00001", "", "002", "A", "1201001", "40", "V01", "C", "1");
  boom["DescrizioneSupplem"] = Valore("BOOM");
  bool cancel = false;
  if (Pg()) {
    // Without a savepoint the failed row spoils the batch: its commit says so and keeps
    // nothing. A new row's INSERT may go to the server only with the commit, and fail there.
    try {
      pn.SalvaRecord(boom, Valore("prova"), 1, cancel);
    } catch (const ErroreDb&) {
    }
    EXPECT_THROW(cn->CommitTrans(), ErroreDb);
    EXPECT_EQ(Conta("Prima Nota"), 0);
    EXPECT_FALSE(SaldoConto("1201001").esiste);
  } else {
    EXPECT_THROW(pn.SalvaRecord(boom, Valore("prova"), 1, cancel), ErroreDb);
    cn->CommitTrans();
    EXPECT_EQ(Conta("Prima Nota"), 1);
    EXPECT_EQ(SaldoConto("1201001"), S("0", "100", "0"));
  }
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(PrimaNotaTest, DeletingAnEntryIsAllOrNothing) {
  Guasto();
  Salva(Riga("00009", "", "001", "D", "1201001", "100", "V01", "C", "1"));
  Salva(Riga("00009", "", "002", "A", "4001001", "100"));
  Salva(Riga("00010", "", "001", "D", "1201001", "5"));
  EXPECT_THROW(pn.CancellaRecord(Valore("00009")), ErroreDb);
  EXPECT_FALSE(cn->InTransazione());
  EXPECT_EQ(Conta("Prima Nota"), 3);
  EXPECT_EQ(SaldoConto("1201001"), S("0", "105", "0"));
  EXPECT_EQ(SaldoConto("4001001"), S("0", "0", "100"));
  EXPECT_EQ(SaldoCF('C', "1"), S("0", "100", "0"));
  // Inside the caller's transaction the caller's work stays.
  cn->BeginTrans();
  Salva(Riga("00011", "", "001", "D", "1201001", "1"));
  EXPECT_THROW(pn.CancellaRecord(Valore("00009")), ErroreDb);
  cn->CommitTrans();
  EXPECT_EQ(SaldoConto("1201001"), S("0", "106", "0"));
  EXPECT_TRUE(pn.CancellaRecord(Valore("00010")));
  EXPECT_EQ(SaldoConto("1201001"), S("0", "101", "0"));
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(PrimaNotaTest, DeletingBeyondALineAndByRange) {
  for (const char* riga : {"001", "002", "003"}) Salva(Riga("00001", "", riga, "D", "1201001", "10"));
  Salva(Riga("00001", "I", "001", "A", "2501001", "1"));
  Salva(Riga("00001", "I", "002", "A", "2501001", "2"));
  Salva(Riga("00001", "I", "003", "A", "2501001", "4"));
  // The accounting rows beyond line 001 go with their effect; the VAT rows stay.
  EXPECT_TRUE(pn.CancellaRecordEccedentiRigoReg(Valore("00001"), Valore(""), Valore("001")));
  EXPECT_EQ(pn.GetNumeroRecordContabili(Valore("00001")), 1);
  EXPECT_EQ(pn.GetNumeroRecordIva(Valore("00001")), 3);
  EXPECT_EQ(SaldoConto("1201001"), S("0", "10", "0"));
  EXPECT_TRUE(pn.CancellaRecordEccedentiRigoReg(Valore("00001"), Valore("I"), Valore("002")));
  EXPECT_EQ(SaldoConto("2501001"), S("0", "0", "3"));

  auto altra = Riga("00002", "", "001", "A", "4001001", "50", "G2");
  altra["DataRegistrazione"] = Valore("20/02/2024");
  Salva(altra);
  Salva(Riga("00003", "", "001", "A", "4001001", "25"));
  // By causal and by date: one row each.
  EXPECT_EQ(pn.CancellaPrimaNota(Valore(""), Valore(""), Valore(""), Valore(""), Valore("G2")), 1);
  EXPECT_EQ(SaldoConto("4001001"), S("0", "0", "25"));
  EXPECT_EQ(pn.CancellaPrimaNota(Valore("3"), Valore("3"), Valore("01/01/2024"), Valore("31/01/2024"), Valore("")), 1);
  EXPECT_EQ(SaldoConto("4001001"), S("0", "0", "0"));
  // Everything empty: every row, counted as rows.
  EXPECT_EQ(pn.CancellaPrimaNota(Valore(""), Valore(""), Valore(""), Valore(""), Valore("")), 3);
  EXPECT_EQ(Conta("Prima Nota"), 0);
  EXPECT_EQ(SaldoConto("1201001"), S("0", "0", "0"));
  EXPECT_EQ(SaldoConto("2501001"), S("0", "0", "0"));
  // Emptying the journal leaves the balances alone.
  Salva(Riga("00004", "", "001", "A", "4001001", "8"));
  EXPECT_TRUE(pn.AzzeraPrimaNota());
  EXPECT_EQ(Conta("Prima Nota"), 0);
  EXPECT_EQ(SaldoConto("4001001"), S("0", "0", "8"));
}

TEST_P(PrimaNotaTest, NumbersNavigationAndCounts) {
  EXPECT_EQ(pn.GetNumeroNuovaRegistrazionePrimaNota(), 1);
  EXPECT_EQ(pn.GetMaxRegistrazionePrimaNota(), "00000");
  // A step: the number reached, or "no".
  auto passo = [&](bool avanti, const char* da) {
    Valore v(da);
    return (avanti ? pn.RecordSuccessivo(v) : pn.RecordPrecedente(v)) ? v.Testo() : std::string("no");
  };
  EXPECT_EQ(passo(true, ""), "no");

  for (const char* num : {"00001", "00002", "00010"}) {
    Salva(Riga(num, "", "001", "D", "1201001", "1"));
    Salva(Riga(num, "", "002", "A", "4001001", "1"));
  }
  Salva(Riga("00002", "I", "005", "A", "2501001", "1"));
  EXPECT_EQ(pn.GetNumeroNuovaRegistrazionePrimaNota(), 11);
  EXPECT_EQ(pn.GetMaxRegistrazionePrimaNota(), "00010");
  EXPECT_EQ(passo(true, ""), "00010");
  EXPECT_EQ(passo(true, "00002"), "00010");
  EXPECT_EQ(passo(true, "00010"), "no");
  EXPECT_EQ(passo(false, ""), "00001");
  EXPECT_EQ(passo(false, "00010"), "00002");
  // VAT lines and accounting lines are counted apart.
  EXPECT_EQ(pn.GetMaxRigheVideo(Valore("00002"), Valore("I")), 5);
  EXPECT_EQ(pn.GetMaxRigheVideo(Valore("00002"), Valore("")), 2);
  EXPECT_EQ(pn.GetNumeroRecordContabili(Valore("00002")), 2);
  EXPECT_EQ(pn.GetNumeroRecordIva(Valore("00002")), 1);
  EXPECT_TRUE(pn.ExistRegistrazione(Valore("00010")));
  EXPECT_FALSE(pn.ExistRegistrazione(Valore("00003")));
  EXPECT_EQ(pn.GetCausaleContabileRegistrazione(Valore("00001")), "V01");
  EXPECT_EQ(pn.GetDataRegistrazione(Valore("00001")), "15/01/2024");
  EXPECT_EQ(pn.GetDataRegistrazione(Valore("00003")), "");
  EXPECT_EQ(pn.GetDataMinimaRegistrazionePrimaNota(), Valore(*Data::Crea(2024, 1, 15)));
  cn->Esegui("UPDATE [Prima Nota] SET [KeyScadenze] = 7 WHERE [NumeroRegistrazione] = '00001' AND [DareAvere] = 'D'");
  EXPECT_EQ(pn.GetNumeroScadenzeCollegate(Valore("00001")), 1);
  EXPECT_EQ(pn.GetNumeroScadenzeCollegate(Valore("00002")), 0);
  // Numbers past five digits still give the next one.
  Salva(Riga("100000", "", "001", "D", "1201001", "1"));
  EXPECT_EQ(pn.GetNumeroNuovaRegistrazionePrimaNota(), 100001);

  Recordset t;
  EXPECT_TRUE(pn.LocalizzaRecord(t, Valore("00010"), Valore(""), Valore("002"), Valore("A"), Valore("altro"), 9));
  EXPECT_EQ(t("ContoPrimaNota").Value(), Valore("4001001"));
  EXPECT_EQ(Colonna("clientName", "00010", "", "002", "A"), Valore("altro"));
  EXPECT_FALSE(pn.LocalizzaRecord(t, Valore("00010"), Valore("I"), Valore("002"), Valore("A"), Valore("altro"), 9));
}

TEST_P(PrimaNotaTest, DocumentLookupsNeverFindTheEntryItself) {
  auto iva = [](const std::string& num, long documento, const std::string& esteso) {
    auto r = Riga(num, "I", "001", "D", "2502001", "22", "ACQ", "", "");
    r["IndicatoreCliFor"] = Valore("F");
    r["CodiceCliFor"] = Valore("77");
    r["DataDocumento"] = Valore("10/01/2024");
    r["NumeroDocumento"] = Valore(static_cast<long long>(documento));
    r["TipoRegistroIva"] = Valore("2");
    r["NumRegistroIva"] = Valore("01");
    r["NumeroDiProtocollo"] = Valore(static_cast<long long>(documento + 100));
    r["NumeroDocumentoEsteso"] = Valore(esteso);
    return r;
  };
  Salva(iva("00001", 12, "FT-12/A"));
  Valore num("00001");
  auto cerca = [&](long documento, const std::string& esteso) {
    return pn.ExistsRegistrazioneDocumento(num, Valore("10/01/2024"), Valore(static_cast<long long>(documento)),
                                           Valore(""), Valore("F"), Valore("77"), Valore("0"), Valore("2"), Valore("01"),
                                           esteso);
  };
  EXPECT_FALSE(cerca(12, ""));
  EXPECT_EQ(num, Valore("00001"));
  Salva(iva("00002", 13, "FT-12/A"));
  num = Valore("00001");
  EXPECT_FALSE(cerca(12, ""));  // 00002 has another number
  EXPECT_TRUE(cerca(12, "FT-12/A"));  // but the same full number of the supplier
  EXPECT_EQ(num, Valore("00002"));
  num = Valore("00003");
  EXPECT_TRUE(cerca(12, ""));
  EXPECT_EQ(num, Valore("00001"));

  EXPECT_EQ(pn.GetDataDocumento(Valore(2024), Valore(13), Valore(""), Valore("2"), Valore("01")), "10/01/2024");
  EXPECT_EQ(pn.GetDataDocumento(Valore(2023), Valore(13), Valore(""), Valore("2"), Valore("01")), "");
  EXPECT_EQ(pn.GetDataCompetenzaProtocollo(Valore(2024), Valore(113), Valore("2"), Valore("01")), "15/01/2024");

  Valore ind, cod, dataReg, dataIva, caus, reg, data, serie, valuta;
  int32_t protocollo = 0, numero = 0;
  double cambio = 0;
  EXPECT_TRUE(pn.GetDatiIVARegistrazione(Valore("00002"), ind, cod, dataReg, dataIva, caus, reg, protocollo, data, serie,
                                         numero, valuta, cambio));
  EXPECT_EQ(protocollo, 113);  // of the entry asked for, not of the first one
  EXPECT_EQ(numero, 13);
  EXPECT_EQ(data, Valore(*Data::Crea(2024, 1, 10)));
  Salva(Riga("00004", "", "001", "D", "1201001", "1"));
  EXPECT_FALSE(pn.GetDatiIVARegistrazione(Valore("00004"), ind, cod, dataReg, dataIva, caus, reg, protocollo, data,
                                          serie, numero, valuta, cambio));
}

TEST_P(PrimaNotaTest, DocumentCountersNeverGoBackWithoutAsking) {
  const std::string sel =
      "SELECT [NumeroUltimoDoc], [DataUltimoDoc], [NumeroUltimoDocBollato] FROM [Progressivi Numerazione Vorn] "
      "WHERE [TipoRegistro] = '1' AND [NumeroRegistro] = '01' AND [SerieDocumento] = 'A'";
  EXPECT_TRUE(pn.AggiornaNumeroUltimoDocumento(Valore("1"), Valore("01"), Valore("A"), Valore(10), Valore("15/01/2024")));
  cn->Esegui("UPDATE [Progressivi Numerazione Vorn] SET [NumeroUltimoDocBollato] = 9");
  // A lower number: nothing written, nothing asked.
  EXPECT_FALSE(pn.AggiornaNumeroUltimoDocumento(Valore("1"), Valore("01"), Valore("A"), Valore(8), Valore("20/01/2024")));
  EXPECT_TRUE(host->Messaggi().empty());
  EXPECT_EQ(NullToZeroLng(cn->Execute(sel).Fields(0).Value()), 10);
  // A higher number with an earlier date asks; no keeps the counter.
  EXPECT_FALSE(pn.AggiornaNumeroUltimoDocumento(Valore("1"), Valore("01"), Valore("A"), Valore(12), Valore("10/01/2024")));
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo,
            "Il numero del documento '12' che si sta registrando per la serie 'A' ha una data documento inferiore "
            "alla data dell'ultimo documento registrato.\rProseguo ugualmente con l'aggiornamento del numero "
            "dell'ultimo documento per la serie 'A'?");
  EXPECT_EQ(host->Messaggi()[0].titolo, "Metodo AggiornaNumeroUltimoDocumento");
  EXPECT_EQ(NullToZeroLng(cn->Execute(sel).Fields(0).Value()), 10);
  host->Rispondi(vbYes);
  EXPECT_TRUE(pn.AggiornaNumeroUltimoDocumento(Valore("1"), Valore("01"), Valore("A"), Valore(12), Valore("10/01/2024")));
  Recordset rs = cn->Execute(sel);
  EXPECT_EQ(NullToZeroLng(rs.Fields(0).Value()), 12);
  EXPECT_EQ(rs.Fields(1).Value().ComeData(), Data::Crea(2024, 1, 10));
  EXPECT_TRUE(rs.Fields(2).Value().IsNull());  // each write clears the printed counter

  // A purchase counts protocols by registration date and has no series.
  EXPECT_TRUE(pn.AggiornaProgressiviPrimaNota(Valore("00007"), Valore("20/01/2024"), Valore("2"), Valore("01"),
                                              Valore("X"), Valore(55), Valore("18/01/2024"), Valore(30),
                                              Valore("prova"), 1));
  host->Pulisci();
  EXPECT_TRUE(pn.AggiornaProgressiviPrimaNota(Valore("00008"), Valore("19/01/2024"), Valore("2"), Valore("01"),
                                              Valore("X"), Valore(56), Valore("18/01/2024"), Valore(31),
                                              Valore("prova"), 1));
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo.substr(0, 45), "La registrazione di acquisto che si sta memor");
  Recordset prot = cn->Execute("SELECT [NumeroUltimoDoc], [SerieDocumento] FROM [Progressivi Numerazione Vorn] "
                               "WHERE [TipoRegistro] = '2'");
  EXPECT_EQ(NullToZeroLng(prot.Fields(0).Value()), 30);
  EXPECT_EQ(prot.Fields(1).Value(), Valore(""));
  // The last entry number is stored whatever it was.
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT [UltimaRegistrazionePN] FROM [Progressivi Azienda Vorn]")), 8);
  EXPECT_EQ(Conta("Progressivi Azienda Vorn"), 1);
}

TEST_P(PrimaNotaTest, ARegisterRowReadWithTheNumberNeverStandsForAnotherOrAStaleOne) {
  auto ultimo = [&](const char* serie) {
    return NullToZeroLng(cn->Scalare("SELECT [NumeroUltimoDoc] FROM [Progressivi Numerazione Vorn] WHERE "
                                     "[TipoRegistro] = '1' AND [NumeroRegistro] = '01' AND [SerieDocumento] = ?",
                                     {Valore(serie)}));
  };
  EXPECT_TRUE(pn.AggiornaNumeroUltimoDocumento(Valore("1"), Valore("01"), Valore("A"), Valore(10), Valore("15/01/2024")));
  cn->BeginTrans();
  // Read for series A; series B is written first, from its own row.
  pn.AnticipaProgressiviPrimaNota(Valore("1"), Valore("01"), Valore("A"));
  EXPECT_EQ(pn.GetNumeroNuovaRegistrazionePrimaNota(), 1);
  EXPECT_TRUE(pn.AggiornaNumeroUltimoDocumento(Valore("1"), Valore("01"), Valore("B"), Valore(3), Valore("16/01/2024")));
  // An earlier date still asks, and no keeps A's counter.
  EXPECT_FALSE(pn.AggiornaNumeroUltimoDocumento(Valore("1"), Valore("01"), Valore("A"), Valore(12), Valore("10/01/2024")));
  EXPECT_EQ(host->Messaggi().size(), 1u);
  cn->CommitTrans();
  EXPECT_EQ(ultimo("A"), 10);
  EXPECT_EQ(ultimo("B"), 3);

  // A's row changed after it was read with the number: the change is seen, 15 does not go over 20.
  cn->BeginTrans();
  pn.AnticipaProgressiviPrimaNota(Valore("1"), Valore("01"), Valore("A"));
  EXPECT_EQ(pn.GetNumeroNuovaRegistrazionePrimaNota(), 2);
  cn->Esegui("UPDATE [Progressivi Numerazione Vorn] SET [NumeroUltimoDoc] = 20 WHERE [SerieDocumento] = 'A'");
  EXPECT_FALSE(pn.AggiornaNumeroUltimoDocumento(Valore("1"), Valore("01"), Valore("A"), Valore(15), Valore("20/01/2024")));
  // Read with the number and used as read: 21 on a later date is written.
  pn.AnticipaProgressiviPrimaNota(Valore("1"), Valore("01"), Valore("A"));
  EXPECT_EQ(pn.GetNumeroNuovaRegistrazionePrimaNota(), 3);
  EXPECT_TRUE(pn.AggiornaProgressiviPrimaNota(Valore("00003"), Valore("21/01/2024"), Valore("1"), Valore("01"),
                                              Valore("A"), Valore(21), Valore("21/01/2024"), Valore(0), Valore("prova"), 1));
  cn->CommitTrans();
  EXPECT_EQ(ultimo("A"), 21);
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT [UltimaRegistrazionePN] FROM [Progressivi Azienda Vorn]")), 3);
}

VORN_SU_DUE_MOTORI(PrimaNotaTest);

TEST(PrimaNotaCalcoli, VatDateOfARoadHaulier) {
  clsPrimaNota pn;
  // {registration date, periodicity, proposed VAT date}
  const char* const casi[][3] = {{"15/01/2024", "", "29/02/2024"},
                                 {"31/12/2023", "0", "31/01/2024"},
                                 {"15/11/2024", "1", "31/03/2025"},
                                 {"01/04/2024", "1", "30/09/2024"},
                                 {"30/09/2024", "1", "31/12/2024"}};
  for (const auto& c : casi)
    EXPECT_EQ(pn.GetDataCompetenzaIVAPropostaAutotrasportatori(Valore(c[0]), Valore(c[1])),
              Valore(*Data::DaTesto(c[2])))
        << c[0] << " " << c[1];
}

TEST(PrimaNotaCalcoli, VatDifferenceIsExactToFourDecimals) {
  clsPrimaNota pn;
  EXPECT_EQ(pn.GetDifferenzaIva(Valore(Imp("100")), Valore(Imp("22")), Valore(22)), Imp("0"));
  EXPECT_EQ(pn.GetDifferenzaIva(Valore(Imp("33.33")), Valore(Imp("7.34")), Valore(22)), Imp("0.0074"));
  EXPECT_EQ(pn.GetDifferenzaIva(Valore(Imp("33.33")), Valore(Imp("7.33")), Valore(22)), Imp("-0.0026"));
  // 0.00005 rounds away from zero.
  EXPECT_EQ(pn.GetDifferenzaIva(Valore(Imp("0.0005")), Valore(Imp("0")), Valore(10)), Imp("-0.0001"));
  EXPECT_EQ(pn.GetDifferenzaIva(Valore(Imp("1000000")), Valore(Imp("40000")), Valore(4.5)), Imp("-5000"));
}
