#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdlib>
#include <fstream>

#include "frame/Globali.h"
#include "frame/VornServer.h"
#include "frame/clsDB.h"
#include "support/Motori.h"

using namespace vorn;
using namespace vorn::test;

// Connecting and disconnecting, on the paths a user meets.
class Connessioni : public DbTest {
 protected:
  bool Connetti(clsDB& db, bool nonSettare = true) {
    if (!Pg()) return db.ConnettiDatabaseSQLite(Valore(file), Valore(), nonSettare);
    db.schemaPostgreSQL = pg.schema;
    std::string server = pg.host + (pg.port.empty() ? "" : ":" + pg.port);
    return db.ConnettiDatabasePostgreSQL(Valore(pg.database), Valore(server), Valore(pg.user), Valore(pg.password), nonSettare);
  }
};

TEST_P(Connessioni, ConnectSetsGlobalsAndDisconnectNeverThrows) {
  clsDB db;
  ASSERT_TRUE(Connetti(db, true));
  EXPECT_EQ(G().IndSqlServer, "");  // not loaded until asked
  ASSERT_TRUE(db.cn);
  if (Pg()) EXPECT_NE(G().ConnessioneGlobale.get(), db.cn.get());
  else EXPECT_EQ(G().ConnessioneGlobale.get(), db.cn.get());
  db.ImpostaVariabiliGlobaliServer();
  EXPECT_EQ(G().IndSqlServer, Pg() ? "1" : "0");
  EXPECT_EQ(db.NomeDatabase().Testo(), Pg() ? pg.database : file);
  db.DisconnettiDatabase();
  EXPECT_FALSE(db.cn);
  db.DisconnettiDatabase();  // twice, and without a connection: nothing raised
  clsDB mai;
  mai.DisconnettiDatabase();
}

TEST_P(Connessioni, TransactionWrappersReturnEmptyAndRollBack) {
  clsDB db;
  ASSERT_TRUE(Connetti(db));
  db.cn->Esegui("CREATE TABLE [T] ([Codice] TEXT)");
  EXPECT_TRUE(db.Begin_Transazione().IsEmpty());
  db.cn->Esegui("INSERT INTO [T] VALUES ('x')");
  EXPECT_TRUE(db.Rollback_Transazione().IsEmpty());
  EXPECT_EQ(db.cn->Scalare("SELECT count(*) FROM [T]").Int(), 0);
  EXPECT_THROW(db.Commit_Transazione(), ErroreDb);  // no transaction open
  db.DisconnettiDatabase();
}

TEST_P(Connessioni, FailuresShowOneMessageAndReturnFalse) {
  clsDB db;
  if (!Pg()) {
    // A missing file is not created by connecting.
    EXPECT_FALSE(db.ConnettiDatabaseSQLite(Valore(dir->Percorso() + "/manca.db"), Valore()));
    ASSERT_EQ(host->Messaggi().size(), 1u);
    EXPECT_EQ(host->Messaggi()[0].testo.rfind("Errore non gestito durante il tentativo di connessione al database " +
                                                  dir->Percorso() + "/manca.db\r",
                                              0),
              0u);
    EXPECT_EQ(host->Messaggi()[0].stile, vbExclamation);
    EXPECT_EQ(host->Messaggi()[0].titolo, "Vorn XP");
    // A file that is not a database.
    std::string finto = dir->Percorso() + "/finto.db";
    std::ofstream(finto) << "questo non è un database, ma un testo qualsiasi abbastanza lungo da sembrare una pagina";
    EXPECT_FALSE(db.ConnettiDatabaseSQLite(Valore(finto), Valore()));
    EXPECT_NE(host->Ultimo().find("26 "), std::string::npos) << host->Ultimo();
    // A password is refused: the file has none to check.
    EXPECT_FALSE(db.ConnettiDatabaseSQLite(Valore(file), Valore("segreta")));
    EXPECT_NE(host->Ultimo().find("password"), std::string::npos);
    // Blanks are no password.
    EXPECT_TRUE(db.ConnettiDatabaseSQLite(Valore(file), Valore("   "), true));
    db.DisconnettiDatabase();
    // Locked by another process holding it exclusively.
    sqlite3* altro = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &altro), SQLITE_OK);
    sqlite3_exec(altro, "PRAGMA locking_mode=EXCLUSIVE; BEGIN EXCLUSIVE; CREATE TABLE blocco(x);", nullptr, nullptr, nullptr);
    db.attesaSQLiteMs = 50;
    EXPECT_FALSE(db.ConnettiDatabaseSQLite(Valore(file), Valore()));
    EXPECT_EQ(host->Ultimo(), "Archivi bloccati in modo esclusivo da un'altro utente o istanza.");
    sqlite3_exec(altro, "ROLLBACK", nullptr, nullptr, nullptr);
    sqlite3_close(altro);
  } else {
    const char* tcp = std::getenv("VORN_PG_TCP_HOST");
    if (!tcp) GTEST_SKIP() << "no TCP access to the test server";
    std::string server = std::string(tcp) + ":" + pg.port;
    EXPECT_FALSE(db.ConnettiDatabasePostgreSQL(Valore(pg.database), Valore(server), Valore(pg.user), Valore("sbagliata")));
    EXPECT_EQ(host->Ultimo(), "Password del database non valida.");
    EXPECT_FALSE(db.ConnettiDatabasePostgreSQL(Valore("non_esiste_proprio"), Valore(pg.host + ":" + pg.port),
                                               Valore(pg.user), Valore("")));
    EXPECT_EQ(host->Ultimo().rfind("Codice errore: 3D000 ", 0), 0u) << host->Ultimo();
    EXPECT_EQ(host->Messaggi().size(), 2u);
  }
}

VORN_SU_DUE_MOTORI(Connessioni);

// Two readers of one row under the last-reader stamp.
class Timbro : public DbTest {
 protected:
  void SetUp() override {
    DbTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    cn->Esegui("CREATE TABLE [Zone] ([Codice Zona] TEXT PRIMARY KEY, [Descrizione] TEXT, [clientName] TEXT, [hWnd] INTEGER)");
    cn->Esegui("INSERT INTO [Zone] ([Codice Zona], [Descrizione]) VALUES ('N''O', 'Nord-Ovest')");
  }
  bool Salva(Connessione& c, const std::string& descr, const std::string& client, long wnd, bool& cancel) {
    return SalvaRecordProtocollo(c, "Zone", "[Codice Zona] = ?", {"N'O"}, Valore(client), wnd, cancel,
                                 [&](Recordset& rs, bool nuovo) {
                                   if (nuovo) rs("Codice Zona") = "N'O";
                                   rs("Descrizione") = descr;
                                 });
  }
  std::string Riga() {
    auto r = cn->Execute("SELECT [Descrizione], [clientName], [hWnd] FROM [Zone] WHERE [Codice Zona] = ?", {"N'O"});
    return r(0).Value().Testo() + "|" + r(1).Value().Testo() + "|" + r(2).Value().Testo();
  }
};

TEST_P(Timbro, FirstSaveAfterOwnReadDoesNotAsk) {
  Recordset t;
  ASSERT_TRUE(LocalizzaRecordProtocollo(*cn, t, "Zone", "[Codice Zona] = ?", {"N'O"}, Valore("pc1"), 10));
  EXPECT_EQ(Riga(), "Nord-Ovest|pc1|10");
  bool cancel = true;
  EXPECT_TRUE(Salva(*cn, "NO", "pc1", 10, cancel));
  EXPECT_FALSE(cancel);
  EXPECT_TRUE(host->Messaggi().empty());
  EXPECT_EQ(Riga(), "NO|pc1|10");
}

TEST_P(Timbro, AnotherReaderMakesTheSaveAsk) {
  auto altra = AltraConnessione();
  Recordset mio, suo;
  ASSERT_TRUE(LocalizzaRecordProtocollo(*cn, mio, "Zone", "[Codice Zona] = ?", {"N'O"}, Valore("pc1"), 10));
  ASSERT_TRUE(LocalizzaRecordProtocollo(*altra, suo, "Zone", "[Codice Zona] = ?", {"N'O"}, Valore("pc2"), 20));
  // Answer no: nothing written, the other reader's stamp stays.
  host->Rispondi(vbNo);
  bool cancel = false;
  EXPECT_FALSE(Salva(*cn, "Mia", "pc1", 10, cancel));
  EXPECT_TRUE(cancel);
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo,
            "Il record è stato variato da un altro utente/istanza.\rSi desidera proseguire sovrascrivendo le variazioni?");
  EXPECT_EQ(host->Messaggi()[0].stile, 36);
  EXPECT_EQ(host->Messaggi()[0].titolo, "Vorn XP");
  EXPECT_EQ(host->Bip(), 1);
  EXPECT_EQ(Riga(), "Nord-Ovest|pc2|20");
  // Answer yes: overwritten, with the caller's stamp.
  host->Rispondi(vbYes);
  EXPECT_TRUE(Salva(*cn, "Mia", "pc1", 10, cancel));
  EXPECT_FALSE(cancel);
  EXPECT_EQ(Riga(), "Mia|pc1|10");
}

TEST_P(Timbro, SameWorkstationOtherWindowAsksAndNewKeyNever) {
  Recordset t;
  ASSERT_TRUE(LocalizzaRecordProtocollo(*cn, t, "Zone", "[Codice Zona] = ?", {"N'O"}, Valore("pc1"), 10));
  bool cancel = false;
  host->Rispondi(vbNo);
  EXPECT_FALSE(Salva(*cn, "Altra finestra", "pc1", 11, cancel));
  EXPECT_EQ(host->Messaggi().size(), 1u);
  cancel = false;
  EXPECT_TRUE(SalvaRecordProtocollo(*cn, "Zone", "[Codice Zona] = ?", {"S'E"}, Valore("pc9"), 99, cancel,
                                    [](Recordset& rs, bool nuovo) {
                                      EXPECT_TRUE(nuovo);
                                      rs("Codice Zona") = "S'E";
                                      rs("Descrizione") = "Sud-Est";
                                    }));
  EXPECT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(cn->Scalare("SELECT [Descrizione] FROM [Zone] WHERE [Codice Zona] = 'S''E'").Str(), "Sud-Est");
}

TEST_P(Timbro, TableProbes) {
  EXPECT_TRUE(EsisteTabella(*cn, "Zone"));
  cn->Esegui("CREATE TABLE [Vuota] ([x] TEXT)");
  EXPECT_TRUE(EsisteTabella(*cn, "Vuota"));
  EXPECT_FALSE(EsisteTabella(*cn, "Non Esiste"));
  EXPECT_TRUE(EliminaTabella(*cn, "Vuota"));
  EXPECT_FALSE(EliminaTabella(*cn, "Vuota"));
  EXPECT_TRUE(host->Messaggi().empty());  // a missing table is silent
  EXPECT_FALSE(EsisteTabella(*cn, "Vuota"));
}

VORN_SU_DUE_MOTORI(Timbro);
