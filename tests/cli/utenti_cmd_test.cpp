// vorn utenti on both engines: a user added with a password from the environment, rights
// granted and revoked, the list, and what the command refuses.
#include <gtest/gtest.h>

#include <cstdlib>

#include "cli/ComandoAzienda.h"
#include "frame/clsUtenti.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class UtentiCmd : public AziendaTest {
 protected:
  EsitoComando Vorn(const std::vector<std::string>& opzioni) {
    return EseguiVorn(RigaComando(host->CartellaApplicazione(), "utenti", Pg(), file, pg, opzioni));
  }
};

VORN_SU_DUE_MOTORI(UtentiCmd);

}  // namespace

TEST_P(UtentiCmd, AddsAUserWithRightsAndListsThem) {
  clsUtenti u;
  u.cn = cn;
  u.Verifica_Crea_Supervisore();

  setenv("VORN_PASSWORD_UTENTE", "Segreta.1", 1);
  auto r = Vorn({"aggiungi", "rossi"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, "Utente rossi aggiunto.\n");
  EXPECT_EQ(Vorn({"aggiungi", "rossi"}).rc, 1);  // already there
  unsetenv("VORN_PASSWORD_UTENTE");
  EXPECT_TRUE(u.Verifica_Password("rossi", "Segreta.1"));
  EXPECT_FALSE(u.Verifica_Password("rossi", "segreta.1"));

  ASSERT_EQ(Vorn({"concedi", "rossi", "Contabilita", "PrimaNota"}).rc, 0);
  ASSERT_EQ(Vorn({"concedi", "rossi", "Iva", "Liquidazione", "--stato", "-1"}).rc, 0);
  ASSERT_EQ(Vorn({"concedi", "rossi", "Iva", "Registri", "--stato", "2"}).rc, 0);
  r = Vorn({"revoca", "rossi", "Iva", "Registri"});
  EXPECT_EQ(r.out, "Voce Iva/Registri tolta all'utente rossi.\n");
  EXPECT_EQ(Vorn({"revoca", "rossi", "Iva", "Registri"}).rc, 1);  // nothing to revoke
  EXPECT_EQ(Vorn({"concedi", "nessuno", "Iva", "Registri"}).rc, 1);
  EXPECT_EQ(Vorn({"concedi", "rossi", "Iva", "Registri", "--stato", "tanti"}).rc, 2);

  r = Vorn({});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out,
            "Utente      Password\n"
            "Supervisore no\n"
            "rossi       sì\n"
            "\n"
            "Utente Menu        Voce         Stato\n"
            "rossi  Contabilita PrimaNota        1\n"
            "rossi  Iva         Liquidazione    -1\n");

  r = Vorn({"password", "rossi", "--senza-password"});
  EXPECT_EQ(r.out, "Password tolta all'utente rossi.\n");
  EXPECT_TRUE(u.Verifica_Password("rossi", ""));
  EXPECT_EQ(Vorn({"rimuovi", "Supervisore"}).rc, 1);
  r = Vorn({"rimuovi", "rossi"});
  EXPECT_EQ(r.out, "Utente rossi eliminato con i suoi diritti.\n");
  EXPECT_FALSE(u.ExistsUtente("rossi"));
  EXPECT_EQ(u.GetStatoVoceMenu("rossi", "Iva", "Liquidazione"), 0);
}
