// The single operations of the upgrade on a database of today, on both engines: the mark in
// [Versione Archivi], the log of the copies (one old column present, the others missing), the
// nulls of the journal replaced once.
#include <gtest/gtest.h>

#include <algorithm>

#include "frame/Comuni.h"
#include "frame/Schema.h"
#include "frame/clsDB.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class VersioneArchivi : public AziendaTest {
 protected:
  std::string Testo(const std::string& sql) { return cn->Scalare(sql).Testo(); }
};

VORN_SU_DUE_MOTORI(VersioneArchivi);

}  // namespace

TEST_P(VersioneArchivi, TheMarkTheLogOfTheCopiesAndTheNullsOfTheJournal) {
  clsDB db;
  db.cn = cn;
  cn->Esegui("DROP TABLE [Versione Archivi]");
  EXPECT_FALSE(db.IsNuovoDBVorn());
  cn->Esegui(SqlCreaTabella(*cn, "Versione Archivi"));
  cn->DimenticaSchema();
  EXPECT_FALSE(db.IsNuovoDBVorn());  // no row
  EXPECT_FALSE(db.SetNuovoDBVorn());  // false also when done
  EXPECT_TRUE(db.IsNuovoDBVorn());
  EXPECT_EQ(Testo("SELECT COUNT(*) FROM [Versione Archivi] WHERE [ID] = 1"), "1");

  // One old column, with a value to move; every other old name is missing.
  cn->Esegui("ALTER TABLE [Causali Contabili] ADD COLUMN [TipoOperativita] TEXT");
  cn->Esegui("INSERT INTO [Causali Contabili] ([CodiceCausale], [TipoOperativita]) VALUES (?, ?)",
             {std::string("001"), std::string("3")});
  db.AggiornaCampiDb();
  EXPECT_EQ(Testo("SELECT [OperativitaContabile] FROM [Causali Contabili]"), "3");
  std::string log = LeggiFile(host->CartellaApplicazione() + "/Temp/AggiornamentoArchivi.txt");
  const std::string testa = "Segnalazioni per aggiornamento DB Vorn - Data: " + Data::Oggi().Testo() + "\n";
  ASSERT_EQ(log.rfind(testa, 0), 0u);
  // The head and the lines of the first tables, the date left out.
  size_t fine = 0;
  for (int i = 0; i < 17; ++i) fine = log.find('\n', fine) + 1;
  ConfrontaGolden("frame/golden/aggiornamento_archivi.txt", log.substr(testa.size(), fine - testa.size()));
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 2 + 189);

  // A journal row of the old archives, with nulls where the statements expect text.
  cn->Esegui("INSERT INTO [Prima Nota] ([NumeroRegistrazione], [NumRigaAVideo], [DareAvere], [ImportoMovimento]) "
             "VALUES (?, ?, ?, ?)",
             {std::string("00001"), std::string("1"), std::string("D"), Valore(Importo(12500))});
  const std::string sql =
      "SELECT [TipoRigaIvaNormale] || '|' || [Stringa10indicatori] || '|' || [Valuta] || '|' || [CodiceIva] "
      "FROM [Prima Nota]";
  EXPECT_TRUE(db.RistrutturaPrimaNota());
  EXPECT_EQ(Testo(sql), "|  0       ||");
  cn->Esegui("UPDATE [Prima Nota] SET [Valuta] = ?", {std::string("EUR")});
  EXPECT_TRUE(db.RistrutturaPrimaNota());  // a second run changes nothing
  EXPECT_EQ(Testo(sql), "|  0       |EUR|");
}
