// One statement, one meaning: the same statement gives the same typed answer on SQLite and on
// PostgreSQL, whatever the server's or the environment's settings, and the layer refuses what
// it cannot do exactly.
#include <gtest/gtest.h>

#include <cstdlib>

#include "frame/Comuni.h"
#include "frame/Db.h"
#include "frame/TabellaLavoro.h"
#include "frame/VornServer.h"
#include "support/Motori.h"

using namespace vorn;
using namespace vorn::test;

namespace {

Importo I(const char* t) { return *Importo::DaTestoPunto(t); }
Data D(int a, int m, int g) { return *Data::Crea(a, m, g); }

class StessoSignificato : public DbTest {
 protected:
  void Movimenti() {
    cn->Esegui("CREATE TABLE [Movimenti] ([Codice] TEXT, [Importo] NUMERIC(19,4), [Data] DATE, [Riga] INTEGER)");
    const struct {
      const char* codice;
      const char* importo;
      Data data;
      int riga;
    } righe[] = {{"A", "12.345", D(2024, 1, 31), 1}, {"A", "5", D(2024, 3, 4), 2}, {"B", "0.1", D(2024, 2, 29), 3}};
    for (const auto& r : righe)
      cn->Esegui("INSERT INTO [Movimenti] VALUES (?, ?, ?, ?)",
                 {Valore(r.codice), Valore(I(r.importo)), Valore(r.data), Valore(r.riga)});
  }
};

}  // namespace

TEST_P(StessoSignificato, WorkTableReadsBackAmountsAndDatesAsTheyWent) {
  Movimenti();
  TabellaLavoro t(*cn, "Tmp01", "Riepilogo",
                  {{"Codice", TipoCampo::Testo, 5}, {"Totale", TipoCampo::Importo}, {"Ultima", TipoCampo::Data},
                   {"Righe", TipoCampo::Intero32}, {"Grande", TipoCampo::Booleano}});
  t.Crea();
  EXPECT_EQ(t.Riempi("SELECT [Codice], SUM([Importo]), MAX([Data]), COUNT(*), "
                     "CASE WHEN SUM([Importo]) > 1 THEN 1 = 1 ELSE 1 = 0 END FROM [Movimenti] GROUP BY [Codice]"),
            2);
  auto rs = cn->Execute("SELECT * FROM [Tmp01Riepilogo] ORDER BY [Codice]");
  ASSERT_EQ(rs.RecordCount(), 2u);
  EXPECT_EQ(rs("Totale").Type(), TipoCampo::Importo);
  EXPECT_EQ(rs("Ultima").Type(), TipoCampo::Data);
  // 12,345 + 5: read through the usual helpers it is 17,345, not 17345.
  EXPECT_EQ(NullToZeroCy(LeggiCampo(rs("Totale"), 0)), I("17.345"));
  EXPECT_EQ(rs("Ultima").Value(), Valore(D(2024, 3, 4)));
  EXPECT_EQ(rs("Righe").Value(), Valore(2));
  EXPECT_EQ(rs("Grande").Value(), Valore(true));
  rs.MoveNext();
  EXPECT_EQ(rs("Totale").Value(), Valore(I("0.1")));
  EXPECT_EQ(rs("Grande").Value(), Valore(false));

  // A text wider than declared is refused on both engines alike.
  EXPECT_THROW(t.Riempi("SELECT 'ABCDEF', 0, NULL, 0, 1 = 0"), ErroreDb);
  t.Elimina();
  EXPECT_FALSE(EsisteTabella(*cn, "Tmp01Riepilogo"));
}

TEST_P(StessoSignificato, WorkTableNamesCannotReachAnotherTable) {
  cn->Esegui("CREATE TABLE [Prima Nota] ([X] INTEGER)");
  cn->Esegui("INSERT INTO [Prima Nota] VALUES (1)");
  std::vector<ColonnaLavoro> c{{"X", TipoCampo::Intero32}};
  EXPECT_THROW(TabellaLavoro(*cn, "Tmp]; DELETE FROM [Prima Nota", "T", c), ErroreDb);
  EXPECT_THROW(TabellaLavoro(*cn, "1Tmp", "T", c), ErroreDb);
  EXPECT_THROW(TabellaLavoro(*cn, "Tmp", "T\"; DROP", c), ErroreDb);
  // A prefix and a name that together spell an archive of the company.
  EXPECT_THROW(TabellaLavoro(*cn, "Prima", " Nota", c), ErroreDb);
  // Names pasted into statements by the record primitives.
  EXPECT_THROW(EliminaTabella(*cn, "Tmp]; DELETE FROM [Prima Nota"), ErroreDb);
  EXPECT_THROW(cn->Apri("Prima Nota]; DELETE FROM [Prima Nota"), ErroreDb);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota]"), Valore(1));
}

TEST_P(StessoSignificato, OneStatementPerCall) {
  Movimenti();
  EXPECT_THROW(cn->Esegui("DELETE FROM [Movimenti] WHERE [Riga] = 1; DELETE FROM [Movimenti]"), ErroreDb);
  EXPECT_THROW(cn->Execute("SELECT 1; DELETE FROM [Movimenti]"), ErroreDb);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Movimenti]"), Valore(3));
  // A trailing semicolon is still one statement.
  EXPECT_EQ(cn->Esegui("DELETE FROM [Movimenti] WHERE [Riga] = 3;"), 1);
  // Transactions go through BeginTrans and its companions only.
  EXPECT_THROW(cn->Esegui("BEGIN"), ErroreDb);
  EXPECT_FALSE(cn->InTransazione());
}

TEST_P(StessoSignificato, ComputedColumnsHaveOneTypeOnBothEngines) {
  Movimenti();
  auto rs = cn->Execute(
      "SELECT SUM([Importo]), MAX([Data]), MIN([Data]), COALESCE(MAX([Data]), ?), COUNT(*), "
      "CASE WHEN [Codice] = 'A' THEN [Importo] ELSE 0 END, [Importo] / 2, ? / 2 FROM [Movimenti] "
      "WHERE [Riga] = 2 GROUP BY [Codice], [Importo]",
      {Valore(D(2000, 1, 1)), Valore(I("5"))});
  ASSERT_FALSE(rs.Eof());
  EXPECT_EQ(rs(0).Value(), Valore(I("5")));
  EXPECT_EQ(rs(1).Value(), Valore(D(2024, 3, 4)));
  EXPECT_EQ(rs(2).Value(), Valore(D(2024, 3, 4)));
  EXPECT_EQ(rs(3).Value(), Valore(D(2024, 3, 4)));
  EXPECT_EQ(rs(4).Value(), Valore(1));
  EXPECT_EQ(rs(5).Value(), Valore(I("5")));
  // An amount divided is decimal arithmetic, never integer division: 5 / 2 is 2,5.
  EXPECT_EQ(rs(6).Value(), Valore(I("2.5")));
  EXPECT_EQ(rs(7).Value(), Valore(I("2.5")));
  // The exact sum comes back as an amount.
  EXPECT_EQ(cn->Scalare("SELECT SUM([Importo]) FROM [Movimenti]"), Valore(I("17.445")));
}

TEST_P(StessoSignificato, DatesWrittenAsTextAreDatesDayFirst) {
  Movimenti();
  // "31/01/2024" is the 31st of January on both engines: as text it would compare as a string
  // on one and be read month-first on the other.
  EXPECT_EQ(cn->Scalare("SELECT [Riga] FROM [Movimenti] WHERE [Data] = ?", {Valore("31/01/2024")}), Valore(1));
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Movimenti] WHERE [Data] <= ?", {Valore("04/03/2024")}), Valore(3));
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Movimenti] WHERE [Data] < ?", {Valore("29/02/2024")}), Valore(1));
  EXPECT_EQ(cn->Esegui("UPDATE [Movimenti] SET [Data] = ? WHERE [Riga] = 3", {Valore("01/12/2024")}), 1);
  EXPECT_EQ(cn->Scalare("SELECT [Data] FROM [Movimenti] WHERE [Riga] = 3"), Valore(D(2024, 12, 1)));

  // A new connection opened while the environment asks for month-first dates reads the same.
  const char* prima = std::getenv("PGDATESTYLE");
  std::string salvato = prima ? prima : "";
  setenv("PGDATESTYLE", "SQL, MDY", 1);
  auto altra = AltraConnessione();
  if (prima) setenv("PGDATESTYLE", salvato.c_str(), 1);
  else unsetenv("PGDATESTYLE");
  EXPECT_EQ(altra->Scalare("SELECT [Data] FROM [Movimenti] WHERE [Riga] = 2"), Valore(D(2024, 3, 4)));
  EXPECT_EQ(altra->Scalare("SELECT [Riga] FROM [Movimenti] WHERE [Data] = ?", {Valore("04/03/2024")}), Valore(2));
}

TEST_P(StessoSignificato, AmountsFromTheClientAreTypedOnceAtEntry) {
  Movimenti();
  // Italian text for an amount is turned into an amount at entry, and sums to it.
  cn->Esegui("INSERT INTO [Movimenti] ([Codice], [Importo]) VALUES ('C', ?)", {ImportoIngresso(Valore("1.212,50"))});
  EXPECT_EQ(cn->Scalare("SELECT SUM([Importo]) FROM [Movimenti] WHERE [Codice] = 'C'"), Valore(I("1212.5")));
  EXPECT_EQ(DataIngresso(Valore("31/01/2024")), Valore(D(2024, 1, 31)));
  EXPECT_TRUE(DataIngresso(Valore("  ")).IsNull());
  EXPECT_THROW(DataIngresso(Valore("31/02/2024")), ErroreDb);
  EXPECT_THROW(ImportoIngresso(Valore("dodici")), ErroreDb);
  // Text that is no number never counts as nothing in a sum: one engine refuses to store it,
  // the other refuses to add it.
  bool rifiutato = false;
  try {
    cn->Esegui("INSERT INTO [Movimenti] ([Codice], [Importo]) VALUES ('D', ?)", {Valore("12,50")});
    cn->Scalare("SELECT SUM([Importo]) FROM [Movimenti] WHERE [Codice] = 'D'");
  } catch (const ErroreDb&) {
    rifiutato = true;
  }
  EXPECT_TRUE(rifiutato);
}

TEST_P(StessoSignificato, AmountsBeyondTheExactRangeAreRefusedNotRounded) {
  cn->Esegui("CREATE TABLE [Grandi] ([Importo] NUMERIC(19,4))");
  const Importo grande = I("2399767440945.3939");
  const Importo limite = I("99999999999.9999");
  cn->Esegui("INSERT INTO [Grandi] VALUES (?)", {Valore(limite)});
  EXPECT_EQ(cn->Scalare("SELECT [Importo] FROM [Grandi]"), Valore(limite));
  if (Pg()) {
    cn->Esegui("INSERT INTO [Grandi] VALUES (?)", {Valore(grande)});
    EXPECT_EQ(cn->Scalare("SELECT [Importo] FROM [Grandi] WHERE [Importo] > ?", {Valore(limite)}), Valore(grande));
    EXPECT_EQ(cn->Scalare("SELECT SUM([Importo]) FROM [Grandi]"), Valore(grande + limite));
  } else {
    EXPECT_THROW(cn->Esegui("INSERT INTO [Grandi] VALUES (?)", {Valore(grande)}), ErroreDb);
    EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Grandi]"), Valore(1));
    // Two amounts within the range whose sum is not: the sum fails rather than rounds.
    cn->Esegui("INSERT INTO [Grandi] VALUES (?)", {Valore(limite)});
    EXPECT_THROW(cn->Scalare("SELECT SUM([Importo]) FROM [Grandi]"), ErroreDb);
  }
}

TEST_P(StessoSignificato, NestedTransactionsAreSavepointLevels) {
  Movimenti();
  cn->BeginTrans();
  cn->Esegui("DELETE FROM [Movimenti] WHERE [Riga] = 1");
  cn->BeginTrans();
  EXPECT_EQ(cn->Livello(), 2);
  cn->Esegui("DELETE FROM [Movimenti] WHERE [Riga] = 2");
  cn->RollbackTrans();  // undoes the inner level alone
  cn->BeginTrans();
  cn->Esegui("DELETE FROM [Movimenti] WHERE [Riga] = 3");
  cn->CommitTrans();  // joins the outer level, commits nothing yet
  EXPECT_EQ(AltraConnessione()->Scalare("SELECT COUNT(*) FROM [Movimenti]"), Valore(3));
  cn->CommitTrans();
  EXPECT_EQ(cn->Scalare("SELECT SUM([Riga]) FROM [Movimenti]"), Valore(2));

  // The outer rollback undoes what an inner commit released.
  cn->BeginTrans();
  cn->BeginTrans();
  cn->Esegui("DELETE FROM [Movimenti]");
  cn->CommitTrans();
  cn->RollbackTrans();
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Movimenti]"), Valore(1));
  EXPECT_THROW(cn->CommitTrans(), ErroreDb);
  EXPECT_THROW(cn->RollbackTrans(), ErroreDb);
}

TEST_P(StessoSignificato, AFailedUnitsMarkLastsToTheOutermostCommit) {
  Movimenti();
  cn->BeginTrans();
  cn->Esegui("DELETE FROM [Movimenti] WHERE [Riga] = 1");
  {
    // A unit without a savepoint of its own fails: the whole transaction must not commit.
    Atomico unita(*cn, false);
    cn->Esegui("DELETE FROM [Movimenti] WHERE [Riga] = 2");
  }
  if (!Pg()) cn->SegnaCompromessa(true);  // SQLite units always have a savepoint
  EXPECT_TRUE(cn->Compromessa());
  // A later nested level neither clears the mark nor commits the outer work.
  cn->BeginTrans();
  EXPECT_TRUE(cn->Compromessa());
  cn->CommitTrans();
  EXPECT_THROW(cn->CommitTrans(), ErroreDb);
  EXPECT_FALSE(cn->InTransazione());
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Movimenti]"), Valore(3));
}

TEST_P(StessoSignificato, AFailedStatementSpoilsOnlyItsLevel) {
  Movimenti();
  cn->BeginTrans();
  cn->Esegui("DELETE FROM [Movimenti] WHERE [Riga] = 1");
  cn->BeginTrans();
  EXPECT_THROW(cn->Esegui("INSERT INTO [Nessuna] VALUES (1)"), ErroreDb);
  // A level whose statement failed cannot be committed as if nothing happened...
  if (Pg()) EXPECT_THROW(cn->CommitTrans(), ErroreDb);
  else cn->RollbackTrans();
  // ...but the level below goes on.
  cn->Esegui("DELETE FROM [Movimenti] WHERE [Riga] = 2");
  cn->CommitTrans();
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Movimenti]"), Valore(1));
}

VORN_SU_DUE_MOTORI(StessoSignificato);

// The settings a PostgreSQL session runs under are the library's own, whatever the server,
// the environment (PGDATESTYLE, PGOPTIONS) or the user set.
TEST(SessionePostgres, PinnedSettingsAndAQuotedSchema) {
  if (!PostgresDisponibile()) GTEST_SKIP() << "PostgreSQL non disponibile";
  setenv("PGOPTIONS", "-c standard_conforming_strings=off -c DateStyle=German", 1);
  auto p = ParametriPostgresTest();
  auto cn = Connessione::ApriPostgres(p);
  EXPECT_EQ(cn->Scalare("SHOW DateStyle"), Valore("ISO, DMY"));
  EXPECT_EQ(cn->Scalare("SHOW standard_conforming_strings"), Valore("on"));
  EXPECT_EQ(cn->Scalare("SHOW client_encoding"), Valore("UTF8"));
  EXPECT_EQ(cn->Scalare("SELECT 'a\\b'"), Valore("a\\b"));
  // A schema whose name would be a statement if pasted: it is only a name.
  std::string schema = NomeUnico("sc") + "\", public; SET x=\"1";
  cn->Esegui("CREATE SCHEMA \"" + SostituisciCarattere(schema, "\"", "\"\"") + "\"");
  p.schema = schema;
  auto nello = Connessione::ApriPostgres(p);
  EXPECT_EQ(nello->Scalare("SELECT current_schema()"), Valore(schema));
  nello->Esegui("CREATE TABLE [Tabella] ([X] INTEGER)");
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM information_schema.tables WHERE table_schema = ?", {Valore(schema)}),
            Valore(1));
  nello.reset();
  cn->Esegui("DROP SCHEMA \"" + SostituisciCarattere(schema, "\"", "\"\"") + "\" CASCADE");
  unsetenv("PGOPTIONS");
}
