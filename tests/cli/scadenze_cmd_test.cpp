// vorn scadenze and vorn scadenziario: the instalments as the user reads them, and bad input.
#include <gtest/gtest.h>

#include <string>

#include "ComandoAzienda.h"
#include "frame/Globali.h"
#include "receivables/clsScadenze.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ComandoScadenze : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    G().DecimaliImporti = 2;
    // Bank receipts at 30, 60 and 90 days end of month.
    cn->Esegui("INSERT INTO [Pagamenti] ([Codice Pagamento], [Tipo Pagamento], [Flag Inizio Scadenza], [Numero Rate], "
               "[Numero Giorni Inizio Scadenza], [Numero Giorni Inizio Scadenza 2], [Numero Giorni Inizio Scadenza 3]) "
               "VALUES ('RB3', 'RB', 'FM', 3, 30, 60, 90)");
  }

  std::pair<int, std::string> Vorn(const std::string& comando, const std::vector<std::string>& resto) {
    EsitoComando r = EseguiVorn(RigaComando(dir->Percorso(), comando, Pg(), file, pg, resto));
    return {r.rc, r.out};
  }
};

VORN_SU_DUE_MOTORI(ComandoScadenze);

}  // namespace

TEST_P(ComandoScadenze, RateDelPagamentoEInputSbagliato) {
  // 1.000,00 in three from 31 January 2024: 333,34 (the cent of rest), 333,33, 333,33 at the
  // ends of February, March and April.
  auto r = Vorn("scadenze", {"--pagamento", "RB3", "--data", "31/01/2024", "--importo", "1000,00"});
  EXPECT_EQ(r.first, 0);
  EXPECT_EQ(r.second,
            "Rata Tipo            Scadenza   Importo Bollo\n"
            "   1 RB Ric.Bancaria 29/02/2024  333,34  0,00\n"
            "   2 RB Ric.Bancaria 31/03/2024  333,33  0,00\n"
            "   3 RB Ric.Bancaria 30/04/2024  333,33  0,00\n");
  // An unknown code, a date that is no date, an amount that is no amount: clear errors.
  EXPECT_EQ(Vorn("scadenze", {"--pagamento", "XX", "--data", "31/01/2024", "--importo", "10"}).first, 1);
  EXPECT_EQ(Vorn("scadenze", {"--pagamento", "RB3", "--data", "31/02/2024", "--importo", "10"}).first, 2);
  EXPECT_EQ(Vorn("scadenze", {"--pagamento", "RB3", "--data", "31/01/2024", "--importo", "dieci"}).first, 2);
  // A zero amount gives instalments of nothing.
  EXPECT_NE(Vorn("scadenze", {"--pagamento", "RB3", "--data", "31/01/2024", "--importo", "0"}).second.find("0,00"),
            std::string::npos);
}

TEST_P(ComandoScadenze, ScadenziarioConLeAperte) {
  clsScadenze s;
  s.cn = cn;
  bool cancel = false;
  for (const char* pagato : {"100.00", "0"}) {
    RecordValori r = {{"tipo", Valore("CL")},
                      {"Codice Cliente", Valore("C1")},
                      {"Ragione Sociale", Valore("Rossi")},
                      {"Data Scadenza", Valore(*Data::Crea(2024, 2, 29))},
                      {"Importo Scadenza", Valore(*Importo::DaTestoPunto("100.00"))},
                      {"Importo Pagato", Valore(*Importo::DaTestoPunto(pagato))}};
    ASSERT_TRUE(s.SalvaRecord(r, Valore("prova"), 1, cancel));
  }
  auto tutte = Vorn("scadenziario", {"--cliente", "C1"}).second;
  EXPECT_NE(tutte.find("Totale"), std::string::npos);
  EXPECT_NE(tutte.find("200,00 100,00  100,00"), std::string::npos) << tutte;
  auto aperte = Vorn("scadenziario", {"--cliente", "C1", "--aperte"}).second;
  EXPECT_NE(aperte.find("100,00   0,00  100,00"), std::string::npos) << aperte;
}

TEST_P(ComandoScadenze, PagamentiEBanche) {
  EXPECT_EQ(Vorn("pagamenti", {}).second,
            "Codice Descrizione Tipo         Rate Inizio Giorni   Prima rata\n"
            "RB3                RB Ric.Banc.    3 FM     30/60/90\n");
  // A bank and its agency, the agency under it.
  cn->Esegui("INSERT INTO [Banche Clienti] ([Codice Banca], [Codice Agenzia], [Descrizione], [Codice ABI]) VALUES "
             "('B1', '', 'Banca Uno', '01234'), ('B1', 'A1', 'Filiale Centro', '01234')");
  EXPECT_EQ(Vorn("banche", {}).second,
            "Banca Agenzia Descrizione      ABI   CAB BIC\n"
            "B1            Banca Uno        01234\n"
            "B1    A1        Filiale Centro 01234\n");
  EXPECT_EQ(Vorn("banche", {"--azienda"}).second, "Nessuna banca dell'azienda.\n");
}
