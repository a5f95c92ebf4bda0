// vorn scarica, vorn storico and the archive prints on a journal of three entries: the refusals
// that leave the company as it was, the unload and its history, the prints' figures.
#include <gtest/gtest.h>

#include "frame/Comuni.h"
#include "ledger/clsPrimaNota.h"
#include "support/Azienda.h"
#include "ComandoAzienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ComandoScarico : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    app = dir->Percorso() + "/app";
    pn.cn = cn;
    Entrata("00001", "10/01/2024", "6001001", "0501001", "1000");
    Entrata("00002", "25/02/2024", "0601001", "0501001", "250.50");
    Entrata("00003", "10/04/2024", "6001001", "0702001", "100");
  }

  void Entrata(const char* numero, const char* data, const char* dare, const char* avere, const char* importo) {
    Giroconto(pn, numero, data, dare, avere, importo);
  }

  EsitoComando Vorn(const std::string& comando, const std::vector<std::string>& resto) {
    return EseguiVorn(RigaComando(app, comando, Pg(), file, pg, resto));
  }
  long Conta(const std::string& sql) { return static_cast<long>(NullToZeroLng(cn->Scalare(sql))); }

  clsPrimaNota pn;
  std::string app;
};

VORN_SU_DUE_MOTORI(ComandoScarico);

TEST_P(ComandoScarico, UnloadHistoryAndPrints) {
  // Refused, the journal untouched: not a month's end; months not on the journal book.
  EXPECT_EQ(Vorn("scarica", {"--al", "15/03/2024"}).rc, 2);
  auto r = Vorn("scarica", {"--al", "31/03/2024"});
  EXPECT_EQ(r.rc, 1);
  EXPECT_NE(r.err.find("Sono presenti movimenti non stampati su libro giornale. Impossibile continuare."),
            std::string::npos)
      << r.err;
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota]"), 6);

  r = Vorn("scarica", {"--al", "31/03/2024", "--forza", "--storico"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, "Scarico prima nota dal 10/01/2024 al 31/03/2024: 2 registrazioni, 4 righe, 4 righe nello storico "
                   "(fino al n. 4)\n");
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota]"), 2);
  r = Vorn("scarica", {"--al", "31/03/2024", "--forza", "--storico"});
  EXPECT_EQ(r.rc, 1);
  EXPECT_NE(r.err.find("inferiore o uguale alla data di ultimo compattamento"), std::string::npos) << r.err;
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Storico Contabile]"), 4);

  // The history's card: both credits, by date, with the running balance.
  r = Vorn("storico", {"--conto", "0501001"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_NE(r.out.find("10/01/2024 10/01/2024 00001"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("1.250,50 A"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("Totale dare 0,00, avere 1.250,50\n"), std::string::npos) << r.out;

  // The chart over the year: 0501001 holds its unloaded credit among the progressives; the
  // columns end at 52 (opening), 68, 84 (progressives), 99, 114 (period) and 131 (balance).
  const std::string piano = dir->Percorso() + "/piano.txt";
  r = Vorn("stampa piano-conti", {piano, "--da-gruppo", "05", "--a-gruppo", "06"});
  ASSERT_EQ(r.rc, 0) << r.err;
  std::string testo = LeggiFile(piano);
  size_t p = testo.find("\n0501001 ");
  ASSERT_NE(p, std::string::npos) << testo;
  std::string riga = testo.substr(p + 1, testo.find('\n', p + 1) - p - 1);
  EXPECT_EQ(riga.substr(68, 16), "        1.250,50") << riga;
  EXPECT_EQ(riga.substr(114), "       1.250,50 A") << riga;
  p = testo.find("\nT O T A L E");
  ASSERT_NE(p, std::string::npos);
  // Debit 250,50 on 0601001 (6001001 is outside the groups), credit 1.250,50 on 0501001.
  EXPECT_EQ(testo.substr(p + 1 + 52, 32), "          250,50        1.250,50") << testo;

  // The journal left: one entry in balance.
  const std::string primaNota = dir->Percorso() + "/primanota.txt";
  r = Vorn("stampa prima-nota", {primaNota});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, primaNota + "\n1 registrazioni, 2 righe; dare 100,00, avere 100,00; registrazioni che non quadrano: 0\n");
  r = Vorn("stampa prima-nota", {primaNota, "--solo-errate"});
  EXPECT_EQ(r.out, "Nessun dato da stampare.\n");
  EXPECT_EQ(Vorn("stampa prima-nota", {primaNota, "--da-reg", "abc"}).rc, 2);
}

}  // namespace
