#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "frame/Db.h"
#include "support/Motori.h"

using namespace vorn;
using namespace vorn::test;

class DataLayer : public DbTest {
 protected:
  void Tabella() {
    cn->Esegui(
        "CREATE TABLE [Anagrafica Prova] ([Codice Cliente] TEXT NOT NULL PRIMARY KEY, [Ragione Sociale] TEXT, "
        "[Saldo Dare] NUMERIC(19,4), [Data Nascita] DATE, [Attivo] BOOLEAN, [Numero] INTEGER, [Cambio] DOUBLE PRECISION, "
        "[clientName] TEXT, [hWnd] INTEGER)");
  }
};

TEST_P(DataLayer, FieldTypesRoundTrip) {
  Tabella();
  auto rs = cn->Apri("Anagrafica Prova", "[Codice Cliente] = ?", {"X"});
  EXPECT_TRUE(rs.Eof());
  rs.AddNew();
  rs("Codice Cliente") = "O'Brien";
  rs("ragione sociale") = "Rossi & Figli S.r.l.";
  rs("Saldo Dare") = Importo::DaRaw(-123456789012345);  // -12.345.678.901,2345
  rs("Data Nascita") = "15/03/2025";
  rs("Attivo") = true;
  rs("Numero") = 42;
  rs("Cambio") = 1936.27;
  rs.Update();
  rs.Close();

  auto r = cn->Execute("SELECT * FROM [Anagrafica Prova] WHERE [Codice Cliente] = ?", {"O'Brien"});
  ASSERT_FALSE(r.Eof());
  EXPECT_EQ(r("Ragione Sociale").Value().Str(), "Rossi & Figli S.r.l.");
  EXPECT_EQ(r("Saldo Dare").Type(), TipoCampo::Importo);
  EXPECT_EQ(r("Saldo Dare").Value().Imp().Raw(), -123456789012345);
  EXPECT_EQ(r("Data Nascita").Type(), TipoCampo::Data);
  EXPECT_EQ(r("Data Nascita").Value().Dat().Testo(), "15/03/2025");
  EXPECT_EQ(r("Attivo").Type(), TipoCampo::Booleano);
  EXPECT_TRUE(r("Attivo").Value().Bool());
  EXPECT_EQ(r("Numero").Value().Int(), 42);
  EXPECT_DOUBLE_EQ(r("Cambio").Value().Dbl(), 1936.27);
  EXPECT_TRUE(r("clientName").IsNull());
}

TEST_P(DataLayer, UpdateAndDeleteByKey) {
  Tabella();
  for (const char* c : {"A", "B", "C"}) cn->Esegui("INSERT INTO [Anagrafica Prova] ([Codice Cliente]) VALUES (?)", {c});
  auto rs = cn->Apri("Anagrafica Prova", "", {}, "[Codice Cliente]");
  ASSERT_EQ(rs.RecordCount(), 3u);
  rs.MoveNext();
  rs("Ragione Sociale") = "Bi";
  EXPECT_EQ(rs.EditMode(), adEditInProgress);
  rs.Update();
  rs.MoveNext();
  rs.Delete();
  rs.Close();
  auto r = cn->Execute("SELECT [Codice Cliente], [Ragione Sociale] FROM [Anagrafica Prova] ORDER BY 1");
  ASSERT_EQ(r.RecordCount(), 2u);
  r.MoveNext();
  EXPECT_EQ(r("Ragione Sociale").Value().Str(), "Bi");
}

TEST_P(DataLayer, AnEditWritesOnlyTheColumnsItChanges) {
  // Read, then another client changes the name and the number; this edit sets the name to what
  // it read (no change) and the balance: the other's name stays, and so does the number it
  // does not touch. The same name given again is not an edit at all.
  Tabella();
  cn->Esegui("INSERT INTO [Anagrafica Prova] ([Codice Cliente], [Ragione Sociale], [Numero]) VALUES ('A', 'Alfa', 1)");
  auto rs = cn->Apri("Anagrafica Prova", "[Codice Cliente] = ?", {"A"});
  AltraConnessione()->Esegui("UPDATE [Anagrafica Prova] SET [Ragione Sociale] = 'Alfa Spa', [Numero] = 2");
  rs("Ragione Sociale") = "Alfa";
  EXPECT_EQ(rs.EditMode(), adEditNone);
  rs("Saldo Dare") = Importo::DaRaw(15000);
  rs("Numero") = 1;
  rs.Update();
  auto r = cn->Execute("SELECT [Ragione Sociale], [Saldo Dare], [Numero] FROM [Anagrafica Prova]");
  EXPECT_EQ(r("Ragione Sociale").Value().Str(), "Alfa Spa");
  EXPECT_EQ(r("Saldo Dare").Value().Imp().Raw(), 15000);
  EXPECT_EQ(r("Numero").Value().Int(), 2);
}

TEST_P(DataLayer, TableWithoutKeyUpdatesByRowIdentity) {
  cn->Esegui("CREATE TABLE [Parametri] ([Valore] TEXT, [clientName] TEXT)");
  cn->Esegui("INSERT INTO [Parametri] ([Valore]) VALUES ('uno')");
  auto rs = cn->Apri("Parametri");
  rs("Valore") = "due";
  rs.Update();
  rs("clientName") = "pc1";
  rs.Update();
  EXPECT_EQ(cn->Scalare("SELECT [Valore] || [clientName] FROM [Parametri]").Str(), "duepc1");
}

TEST_P(DataLayer, RolledBackTransactionLeavesNothing) {
  Tabella();
  cn->BeginTrans();
  cn->Esegui("INSERT INTO [Anagrafica Prova] ([Codice Cliente]) VALUES ('A')");
  cn->RollbackTrans();
  EXPECT_EQ(cn->Scalare("SELECT count(*) FROM [Anagrafica Prova]").Int(), 0);
  {
    Atomico a(*cn);
    cn->Esegui("INSERT INTO [Anagrafica Prova] ([Codice Cliente]) VALUES ('B')");
  }
  EXPECT_EQ(cn->Scalare("SELECT count(*) FROM [Anagrafica Prova]").Int(), 0);
  // Inside a caller's transaction a failing step undoes only itself.
  cn->BeginTrans();
  cn->Esegui("INSERT INTO [Anagrafica Prova] ([Codice Cliente]) VALUES ('C')");
  try {
    Atomico a(*cn);
    cn->Esegui("INSERT INTO [Anagrafica Prova] ([Codice Cliente]) VALUES ('D')");
    cn->Esegui("INSERT INTO [Anagrafica Prova] ([Codice Cliente]) VALUES ('C')");  // duplicate key
    a.Conferma();
  } catch (const ErroreDb&) {
  }
  cn->CommitTrans();
  EXPECT_EQ(cn->Scalare("SELECT count(*) FROM [Anagrafica Prova]").Int(), 1);
}

TEST_P(DataLayer, MillionAmountsSumExactly) {
  cn->Esegui("CREATE TABLE [Righe] ([Importo] NUMERIC(19,4))");
  std::mt19937_64 rnd(20261121);
  std::uniform_int_distribution<int64_t> cents(-99999999, 99999999);  // up to 999.999,99
  int64_t atteso = 0;  // in cents
  const int n = 1000000;
  const int lotto = 500;
  std::string sql = "INSERT INTO [Righe] ([Importo]) VALUES (?)";
  for (int k = 1; k < lotto; ++k) sql += ", (?)";
  cn->BeginTrans();
  Parametri p(lotto);
  for (int i = 0; i < n; i += lotto) {
    for (int k = 0; k < lotto; ++k) {
      int64_t c = cents(rnd);
      atteso += c;
      p[k] = Importo::DaRaw(c * 100);
    }
    cn->Esegui(sql, p);
  }
  cn->CommitTrans();
  Valore s = cn->Scalare("SELECT sum([Importo]) FROM [Righe]");
  auto imp = s.ComeImporto();
  ASSERT_TRUE(imp.has_value());
  EXPECT_EQ(imp->Raw(), atteso * 100);
}

TEST_P(DataLayer, KeyWithNullPartsUpdatesTheRightRow) {
  if (Pg())
    cn->Esegui("CREATE TABLE [Conti] ([Gruppo] TEXT, [Conto] TEXT, [Descrizione] TEXT, UNIQUE NULLS NOT DISTINCT ([Gruppo], [Conto]))");
  else
    cn->Esegui("CREATE TABLE [Conti] ([Gruppo] TEXT, [Conto] TEXT, [Descrizione] TEXT, PRIMARY KEY ([Gruppo], [Conto]))");
  cn->Esegui("INSERT INTO [Conti] VALUES ('01', NULL, 'nullo'), ('01', '', 'vuoto')");
  auto rs = cn->Apri("Conti", "[Conto] IS NULL");
  ASSERT_FALSE(rs.Eof());
  rs("Descrizione") = "nullo2";
  rs.Update();
  EXPECT_EQ(cn->Scalare("SELECT [Descrizione] FROM [Conti] WHERE [Conto] = ''").Str(), "vuoto");
  EXPECT_EQ(cn->Scalare("SELECT [Descrizione] FROM [Conti] WHERE [Conto] IS NULL").Str(), "nullo2");
}

TEST_P(DataLayer, AddedRowReadsBackItsGeneratedKey) {
  if (Pg())
    cn->Esegui("CREATE TABLE [Righe] ([ID] INTEGER GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY, [Testo] TEXT, [Importo] NUMERIC(19,4))");
  else
    cn->Esegui("CREATE TABLE [Righe] ([ID] INTEGER PRIMARY KEY, [Testo] TEXT, [Importo] NUMERIC(19,4))");
  auto rs = cn->Apri("Righe");
  rs.AddNew();
  rs("Testo") = "uno";
  rs("Importo") = Importo::DaRaw(12345);
  rs.Update();
  ASSERT_FALSE(rs("ID").IsNull());
  rs("Testo") = "uno bis";  // a second update of the same row finds it by its new key
  rs.Update();
  EXPECT_EQ(rs("Importo").Value().Imp().Raw(), 12345);
  EXPECT_EQ(cn->Scalare("SELECT [Testo] FROM [Righe]").Str(), "uno bis");
}

TEST_P(DataLayer, StatementsInsideAScanDoNotCutIt) {
  cn->Esegui("CREATE TABLE [Righe] ([N] INTEGER, [Importo] NUMERIC(19,4))");
  cn->Esegui("CREATE TABLE [Copia] ([N] INTEGER)");
  std::string sql = "INSERT INTO [Righe] VALUES (?, ?)";
  for (int i = 1; i < 5000; ++i) sql += ", (?, ?)";
  Parametri p;
  for (int i = 1; i <= 5000; ++i) {
    p.push_back(i);
    p.push_back(Importo::DaRaw(i * 125));
  }
  cn->Esegui(sql, p);
  int64_t letti = 0;
  Importo somma;
  cn->Scorri("SELECT [N], [Importo] FROM [Righe] WHERE [N] > ? ORDER BY [N]", {0},
             [&](const std::vector<Colonna>& cols, const std::vector<Valore>& r) {
               EXPECT_EQ(cols[1].tipo, TipoCampo::Importo);
               ++letti;
               somma += r[1].Imp();
               // A lookup and a write on the same connection in the middle of the scan.
               EXPECT_EQ(cn->Scalare("SELECT count(*) FROM [Righe] WHERE [N] = ?", {r[0]}).Int(), 1);
               if (r[0].Int() % 1000 == 0) cn->Esegui("INSERT INTO [Copia] VALUES (?)", {r[0]});
               return true;
             });
  EXPECT_EQ(letti, 5000);
  EXPECT_EQ(somma.Raw(), 125LL * 5000 * 5001 / 2);
  EXPECT_EQ(cn->Scalare("SELECT count(*) FROM [Copia]").Int(), 5);
  // Stopping early leaves the connection usable, inside a transaction too.
  cn->BeginTrans();
  int visti = 0;
  cn->Scorri("SELECT [N] FROM [Righe]", {}, [&](const std::vector<Colonna>&, const std::vector<Valore>&) {
    return ++visti < 3;
  });
  EXPECT_EQ(visti, 3);
  cn->CommitTrans();
  EXPECT_EQ(cn->Scalare("SELECT count(*) FROM [Righe]").Int(), 5000);
}
VORN_SU_DUE_MOTORI(DataLayer);

class DataLayerUnits : public DbTest {
 protected:
  void SetUp() override {
    DbTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    cn->Esegui("CREATE TABLE [T] ([Codice] TEXT PRIMARY KEY)");
  }
  int64_t Righe() { return cn->Scalare("SELECT count(*) FROM [T]").Int(); }
};

TEST_P(DataLayerUnits, CommitOfAFailedTransactionSaysSoAndKeepsNothing) {
  cn->BeginTrans();
  cn->Esegui("INSERT INTO [T] VALUES ('A')");
  EXPECT_THROW(cn->Esegui("INSERT INTO [T] VALUES ('A')"), ErroreDb);
  if (Pg()) {
    // The server has spoiled the transaction: its commit must not look like a success.
    EXPECT_THROW(cn->CommitTrans(), ErroreDb);
    EXPECT_EQ(Righe(), 0);
  } else {
    cn->CommitTrans();  // SQLite undoes the failed statement only
    EXPECT_EQ(Righe(), 1);
  }
  EXPECT_FALSE(cn->InTransazione());
}

TEST_P(DataLayerUnits, AnUnrecoverableUnitThatFailsUndoesTheCallersTransaction) {
  cn->BeginTrans();
  cn->Esegui("INSERT INTO [T] VALUES ('A')");
  try {
    Atomico u(*cn, false);
    cn->Esegui("INSERT INTO [T] VALUES ('B')");
    throw std::runtime_error("a failure that is no database error");
  } catch (const std::runtime_error&) {
  }
  if (Pg()) {
    EXPECT_THROW(cn->CommitTrans(), ErroreDb);
    EXPECT_EQ(Righe(), 0);  // neither the unit nor the caller's work: nothing half-written
  } else {
    cn->CommitTrans();  // a savepoint undid the unit alone
    EXPECT_EQ(Righe(), 1);
  }
  // Nested units reuse their savepoint names and stay balanced.
  for (int i = 0; i < 3; ++i) {
    Atomico esterna(*cn);
    {
      Atomico interna(*cn);
      cn->Esegui("INSERT INTO [T] VALUES (?)", {"N" + std::to_string(i)});
      interna.Conferma();
    }
    esterna.Conferma();
  }
  EXPECT_EQ(Righe(), Pg() ? 3 : 4);
}

TEST_P(DataLayerUnits, QueuedWritesKeepTheirOrderAndTheirErrors) {
  // Seen by the next read, in the order written, on both engines.
  cn->BeginTrans();
  for (const char* c : {"A", "B", "C"}) cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore(c)});
  cn->EseguiInCoda("DELETE FROM [T] WHERE [Codice] = ?", {Valore("B")});
  EXPECT_EQ(Righe(), 2);
  cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore("D")});
  cn->CommitTrans();
  EXPECT_EQ(Righe(), 3);

  // A rollback takes what still waits with it.
  cn->BeginTrans();
  cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore("E")});
  cn->RollbackTrans();
  EXPECT_EQ(Righe(), 3);

  // A write that fails fails its transaction, at the latest at the commit, with its own error,
  // and nothing of the transaction stays.
  cn->BeginTrans();
  cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore("F")});
  std::string errore;
  try {
    cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore("A")});
    cn->CommitTrans();
  } catch (const ErroreDb& e) {
    errore = e.Descrizione();
    if (cn->Livello() > 0) cn->RollbackTrans();
  }
  EXPECT_FALSE(errore.empty());
  EXPECT_EQ(errore.find("annullat"), std::string::npos) << errore;  // the engine's own words
  EXPECT_FALSE(cn->InTransazione());
  EXPECT_EQ(Righe(), 3);

  // Inside a savepoint level the failure undoes that level alone, and the caller goes on.
  cn->BeginTrans();
  cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore("G")});
  cn->BeginTrans();
  bool fallita = false;
  try {
    cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore("A")});
    cn->CommitTrans();
  } catch (const ErroreDb&) {
    fallita = true;
    if (cn->Livello() > 1) cn->RollbackTrans();
  }
  EXPECT_TRUE(fallita);
  cn->CommitTrans();
  EXPECT_EQ(Righe(), 4);
}

TEST_P(DataLayerUnits, AQueuedWriteTellsItsCountOnceSentAndCanBeReplacedWhileItWaits) {
  for (const char* c : {"A", "B", "C"}) cn->Esegui("INSERT INTO [T] VALUES (?)", {Valore(c)});
  // The count of a write that waits comes with the next statement (SQLite runs it at once).
  cn->BeginTrans();
  auto toccate = std::make_shared<int64_t>(-1);
  cn->EseguiInCoda("UPDATE [T] SET [Codice] = [Codice] || 'x' WHERE [Codice] IN (?, ?)", {Valore("A"), Valore("B")},
                   toccate);
  EXPECT_EQ(*toccate, Pg() ? -1 : 2);
  EXPECT_EQ(Righe(), 3);
  EXPECT_EQ(*toccate, 2);
  // One that touches nothing says 0; one dropped by a rollback before it went says nothing.
  auto nessuna = std::make_shared<int64_t>(-1);
  cn->EseguiInCoda("UPDATE [T] SET [Codice] = ? WHERE [Codice] = ?", {Valore("Z"), Valore("A")}, nessuna);
  cn->InviaCoda();
  EXPECT_EQ(*nessuna, 0);
  auto annullata = std::make_shared<int64_t>(-1);
  cn->EseguiInCoda("DELETE FROM [T] WHERE [Codice] = ?", {Valore("C")}, annullata);
  cn->RollbackTrans();
  EXPECT_EQ(*annullata, Pg() ? -1 : 1);
  EXPECT_EQ(cn->Scalare("SELECT count(*) FROM [T] WHERE [Codice] IN ('A', 'B', 'C')").Int(), 3);

  // A write still waiting is replaced in its place by one that writes everything it wrote;
  // once sent (or run at once) it is not, and the caller runs the new one itself. Either way the
  // rows end as the second write leaves them.
  cn->BeginTrans();
  const uint64_t id = cn->EseguiInCoda("UPDATE [T] SET [Codice] = ? WHERE [Codice] = ?", {Valore("A1"), Valore("A")});
  EXPECT_EQ(id != 0, Pg());
  const std::string secondo = "UPDATE [T] SET [Codice] = ? WHERE [Codice] IN (?, ?)";
  const Parametri p{Valore("A2"), Valore("A"), Valore("A1")};
  const bool sostituita = cn->SostituisciInCoda(id, secondo, p);
  EXPECT_EQ(sostituita, Pg());
  if (!sostituita) cn->EseguiInCoda(secondo, p);
  EXPECT_EQ(cn->Scalare("SELECT [Codice] FROM [T] WHERE [Codice] LIKE 'A%'").Testo(), "A2");
  EXPECT_FALSE(cn->SostituisciInCoda(id, secondo, p));  // gone with the read
  const uint64_t inviata = cn->EseguiInCoda("DELETE FROM [T] WHERE [Codice] = ?", {Valore("B")});
  EXPECT_EQ(Righe(), 2);
  EXPECT_FALSE(cn->SostituisciInCoda(inviata, "DELETE FROM [T] WHERE [Codice] = ?", {Valore("C")}));
  cn->CommitTrans();
  EXPECT_EQ(cn->Scalare("SELECT count(*) FROM [T] WHERE [Codice] IN ('A2', 'C')").Int(), 2);
}

TEST_P(DataLayerUnits, ACommitSentWithoutWaitingTellsItsOutcomeOnceWithTheNextStatement) {
  std::vector<std::string> esiti;
  auto registra = [&](const ErroreDb* e) { esiti.push_back(e ? "errore " + e->SqlState() : "ok"); };
  // Committed: the outcome comes with the next statement (at once on SQLite), and so does the
  // count of a write that went with the commit.
  cn->BeginTrans();
  auto toccate = std::make_shared<int64_t>(-1);
  cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore("A")}, toccate);
  cn->CommitTransSenzaAttesa(registra);
  EXPECT_EQ(cn->Livello(), 0);
  EXPECT_FALSE(cn->InTransazione());
  EXPECT_EQ(esiti.size(), Pg() ? 0u : 1u);
  EXPECT_EQ(Righe(), 1);
  EXPECT_EQ(esiti, std::vector<std::string>{"ok"});
  EXPECT_EQ(*toccate, 1);
  EXPECT_EQ(AltraConnessione()->Scalare("SELECT count(*) FROM [T]").Int(), 1);

  // A write that fails: on PostgreSQL it went with the commit, whose outcome tells the error,
  // while the next transaction, sent behind it, starts clean; SQLite ran it at once.
  cn->BeginTrans();
  bool subito = false;
  try {
    cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore("B")});
    cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore("A")});  // a key already taken
    cn->CommitTransSenzaAttesa(registra);
  } catch (const ErroreDb&) {
    subito = true;
    cn->RollbackTrans();
  }
  EXPECT_EQ(subito, !Pg());
  cn->BeginTrans();
  cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore("C")});
  EXPECT_EQ(cn->Scalare("SELECT count(*) FROM [T] WHERE [Codice] IN ('A', 'C')").Int(), 2);
  EXPECT_EQ(Righe(), 2);  // nothing of B
  cn->CommitTransSenzaAttesa(registra);
  cn->AttendiConferme();
  cn->AttendiConferme();  // nothing left to read
  const std::vector<std::string> attesi =
      Pg() ? std::vector<std::string>{"ok", "errore 23505", "ok"} : std::vector<std::string>{"ok", "ok"};
  EXPECT_EQ(esiti, attesi);
  EXPECT_EQ(AltraConnessione()->Scalare("SELECT count(*) FROM [T] WHERE [Codice] IN ('A', 'C')").Int(), 2);
}

TEST_P(DataLayerUnits, ManyQueuedRowsOfEveryTypeLandExactlyAndInOrder) {
  // 70 rows of one insert, more than one statement's worth on the server, of every type the
  // layer binds, Null included; then a plain insert of other columns, and a failure in a long
  // run that keeps nothing of the transaction.
  cn->Esegui("CREATE TABLE [Righe] ([N] INTEGER, [Testo] TEXT, [Importo] NUMERIC(19,4), [Data] DATE, [Vero] BOOLEAN)");
  cn->BeginTrans();
  for (int i = 1; i <= 70; ++i)
    cn->EseguiInCoda("INSERT INTO [Righe] ([N], [Testo], [Importo], [Data], [Vero]) VALUES (?, ?, ?, ?, ?)",
                     {Valore(i), i % 7 ? Valore("r" + std::to_string(i)) : Valore::Null(),
                      Valore(Importo::DaRaw(i * 1000001LL)), Valore(*Data::Crea(2024, 1 + i % 12, 1 + i % 28)),
                      Valore(i % 2 == 0)});
  cn->EseguiInCoda("INSERT INTO [Righe] ([N]) VALUES (?)", {Valore(71)});
  cn->CommitTrans();
  int n = 0;
  cn->Scorri("SELECT [N], [Testo], [Importo], [Data], [Vero] FROM [Righe] ORDER BY [N]", {},
             [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
               ++n;
               EXPECT_EQ(r[0].Int(), n);
               if (n == 71) {
                 EXPECT_TRUE(r[1].IsNull() && r[2].IsNull() && r[3].IsNull());
                 return true;
               }
               EXPECT_EQ(r[1].IsNull() ? std::string("-") : r[1].Str(), n % 7 ? "r" + std::to_string(n) : "-");
               EXPECT_EQ(r[2].Imp().Raw(), n * 1000001LL);  // 100,0001 x n, to the last decimal
               EXPECT_EQ(r[3].ComeData()->Iso(), Data::Crea(2024, 1 + n % 12, 1 + n % 28)->Iso());
               EXPECT_EQ(r[4].Vero(), n % 2 == 0);
               return true;
             });
  EXPECT_EQ(n, 71);

  cn->BeginTrans();
  bool fallita = false;
  try {
    for (const char* c : {"P", "Q", "R", "S", "A", "T", "A"}) cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore(c)});
    cn->CommitTrans();
  } catch (const ErroreDb&) {
    fallita = true;
    if (cn->Livello() > 0) cn->RollbackTrans();
  }
  EXPECT_TRUE(fallita);
  EXPECT_FALSE(cn->InTransazione());
  EXPECT_EQ(Righe(), 0);
}

TEST_P(DataLayerUnits, StatementsSentTogetherRunInOrderAfterTheQueuedWrites) {
  // A transaction that sends nothing leaves nothing open, whether it ends either way.
  cn->BeginTrans();
  EXPECT_TRUE(cn->InTransazione());
  cn->RollbackTrans();
  EXPECT_FALSE(cn->InTransazione());
  cn->BeginTrans();
  cn->CommitTrans();
  EXPECT_FALSE(cn->InTransazione());

  cn->BeginTrans();
  cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore("A")});
  auto r = cn->EseguiInsieme({{"UPDATE [T] SET [Codice] = ? WHERE [Codice] = ?", {Valore("B"), Valore("A")}},
                              {"SELECT [Codice] FROM [T] ORDER BY [Codice]", {}},
                              {"DELETE FROM [T] WHERE [Codice] = ?", {Valore("X")}}});
  ASSERT_EQ(r.size(), 3u);
  EXPECT_EQ(r[0].righe, 1);
  ASSERT_FALSE(r[1].rs.Eof());
  EXPECT_EQ(r[1].rs(0).Value().Str(), "B");
  EXPECT_EQ(r[2].righe, 0);

  // An editable row written back through the queue: the next read sees it, a rollback undoes it.
  Recordset rs = cn->Apri("T", "[Codice] = ?", {Valore("B")});
  rs("Codice") = Valore("C");
  rs.UpdateInCoda();
  EXPECT_EQ(cn->Scalare("SELECT [Codice] FROM [T]").Str(), "C");
  cn->CommitTrans();

  // A statement that fails among them fails the call; the rollback keeps what was there.
  cn->BeginTrans();
  cn->EseguiInCoda("INSERT INTO [T] VALUES (?)", {Valore("D")});
  EXPECT_THROW(cn->EseguiInsieme({{"INSERT INTO [T] VALUES (?)", {Valore("C")}}, {"SELECT count(*) FROM [T]", {}}}),
               ErroreDb);
  cn->RollbackTrans();
  EXPECT_EQ(Righe(), 1);
  EXPECT_EQ(cn->Scalare("SELECT [Codice] FROM [T]").Str(), "C");
}
VORN_SU_DUE_MOTORI(DataLayerUnits);
