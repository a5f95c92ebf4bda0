// Users, their rights on the menu entries and the standard references, on both engines.
#include <gtest/gtest.h>

#include "frame/Comuni.h"
#include "frame/clsUtenti.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class Utenti : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    u.cn = cn;
    rif.cn = cn;
  }
  Valore Memorizzata(const std::string& utente) {
    return cn->Scalare("SELECT [password] FROM [Tabella Utenti] WHERE [username] = ?", {utente});
  }
  clsUtenti u;
  clsRiferimentiStandard rif;
};

VORN_SU_DUE_MOTORI(Utenti);

}  // namespace

TEST_P(Utenti, TheSupervisorEntersWithEmptyTextUntilAPasswordIsSet) {
  u.Verifica_Crea_Supervisore();
  u.Verifica_Crea_Supervisore();
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Tabella Utenti]")), 1);
  EXPECT_TRUE(Memorizzata("Supervisore").IsNull());
  EXPECT_TRUE(u.Verifica_Password("Supervisore", ""));
  EXPECT_TRUE(u.Verifica_Password("Supervisore", Valore::Null()));
  EXPECT_FALSE(u.Verifica_Password("Supervisore", " "));
  EXPECT_FALSE(u.Verifica_Password("Nessuno", ""));

  u.Salva_Record("Supervisore", "Chiave1", 7, 2);
  EXPECT_FALSE(u.Verifica_Password("Supervisore", ""));
  EXPECT_TRUE(u.Verifica_Password("Supervisore", "Chiave1"));
  // Back to no password: empty text again.
  u.Salva_Record("Supervisore", "", 7, 2);
  EXPECT_TRUE(Memorizzata("Supervisore").IsNull());
  EXPECT_TRUE(u.Verifica_Password("Supervisore", ""));
}

TEST_P(Utenti, PasswordsAreKeptAsSaltedHashesAndVerifiedRightAndWrong) {
  const std::string segreta = "l'età è 42";
  u.Salva_Record("mario", segreta, 10, 3);
  u.Salva_Record("anna", segreta, 0, 0);
  std::string hashMario = Memorizzata("mario").Testo(), hashAnna = Memorizzata("anna").Testo();
  EXPECT_EQ(hashMario.rfind("$y$", 0), 0u) << hashMario;
  EXPECT_EQ(hashMario.find(segreta), std::string::npos);
  EXPECT_NE(hashMario, hashAnna);  // a salt of its own
  EXPECT_TRUE(u.Verifica_Password("mario", segreta));
  EXPECT_FALSE(u.Verifica_Password("mario", "l''età è 42"));  // doubled apostrophe: another text
  EXPECT_FALSE(u.Verifica_Password("mario", "l'età è 43"));
  EXPECT_FALSE(u.Verifica_Password("mario", ""));
  EXPECT_FALSE(u.Verifica_Password("mario", hashMario));  // the hash is no password

  // A row read back and saved again keeps its hash, with the other columns changed.
  Recordset rs;
  ASSERT_TRUE(u.LocalizzaTuttiRecord(rs));
  EXPECT_EQ(rs("username").Value().Testo(), "anna");
  rs.MoveNext();
  u.Salva_Record("mario", rs("password").Value(), 11, 4);
  EXPECT_EQ(Memorizzata("mario").Testo(), hashMario);
  EXPECT_TRUE(u.Verifica_Password("mario", segreta));
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT [HWnd] + [Progressivo rete] FROM [Tabella Utenti] WHERE [username] = ?", {std::string("mario")})), 15);

  // A password in clear left by an old database still lets its user in, until saved again.
  cn->Esegui("INSERT INTO [Tabella Utenti] ([username], [password]) VALUES (?, ?)", {std::string("vecchio"), std::string("pippo")});
  EXPECT_TRUE(u.Verifica_Password("vecchio", "pippo"));
  EXPECT_FALSE(u.Verifica_Password("vecchio", "pipp"));
  EXPECT_TRUE(u.EliminaTuttiRecord());
  EXPECT_FALSE(u.LocalizzaTuttiRecord(rs));
}

TEST_P(Utenti, RightsOnMenuEntriesAndTheStandardReferences) {
  u.SalvaRecordUtenteAutorizzazioni("mario", "Iva", "Liquidazione", 2);
  u.SalvaRecordUtenteAutorizzazioni("mario", "Iva", "Liquidazione", -1);
  EXPECT_EQ(u.GetStatoVoceMenu("mario", "Iva", "Liquidazione"), -1);
  EXPECT_EQ(u.GetStatoVoceMenu("mario", "Iva", "Registri"), 0);
  EXPECT_TRUE(u.DeleteUtente("mario"));  // the rights stay until deleted too
  EXPECT_EQ(u.GetStatoVoceMenu("mario", "Iva", "Liquidazione"), -1);
  // An old database without the table of rights: no rights, and the first one makes the table.
  cn->Esegui("DROP TABLE [Tabella Utenti Autorizzazioni]");
  EXPECT_FALSE(u.EsisteTabellaUtentiAutorizzazioni());
  EXPECT_EQ(u.GetStatoVoceMenu("mario", "Iva", "Liquidazione"), 0);
  u.SalvaRecordUtenteAutorizzazioni("anna", "Iva", "Liquidazione", 5);
  EXPECT_EQ(u.GetStatoVoceMenu("anna", "Iva", "Liquidazione"), 5);

  EXPECT_EQ(rif.GetRiferimentoStandard("Sconosciuto").Testo(), "");
  EXPECT_EQ(rif.GetRiferimentoStandard("Sconosciuto", "def").Testo(), "def");
  rif.SetRiferimentoStandard("UltimaStampa", "O'Brien");
  EXPECT_TRUE(rif.SetRiferimentoStandard("UltimaStampa", "registro 2"));
  EXPECT_EQ(rif.GetRiferimentoStandardMemo("UltimaStampa", "nulla").Testo(), "nulla");  // left null
  std::string lungo(3000, 'x');
  rif.SetRiferimentoStandardMemo("UltimaStampa", lungo);
  EXPECT_EQ(rif.GetRiferimentoStandardMemo("UltimaStampa").Testo(), lungo);
  EXPECT_EQ(rif.GetRiferimentoStandard("UltimaStampa").Testo(), "registro 2");
}
