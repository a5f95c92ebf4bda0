#include <gtest/gtest.h>

#include <sstream>

#include "ComandoAzienda.h"
#include "cli/cmd_prima_nota.h"
#include "ledger/PrimaNotaBase.h"

using namespace vorn;
using namespace vorn::test;

class ComandoPrimaNota : public PrimaNotaBase {
 protected:
  void Registrazioni() {
    Salva(Riga("00001", "", "001", "D", "1201001", "1220", "V01", "C", "12"));
    Salva(Riga("00001", "", "002", "A", "4001001", "1000"));
    Salva(Riga("00001", "I", "001", "A", "2501001", "220"));
    auto r = Riga("00002", "", "001", "A", "1401001", "1234567.89", "ACQ", "F", "77");
    r["DataRegistrazione"] = Valore("20/02/2024");
    r["DescrizioneSupplem"] = Valore("Fattura fornitore più lunga del campo");
    Salva(r);
    auto c = Riga("00002", "", "002", "D", "6001001", "1234567.8", "ACQ");
    c["DataRegistrazione"] = Valore("20/02/2024");
    Salva(c);
  }
};

TEST_P(ComandoPrimaNota, ListsEntriesWithTheirTotals) {
  Registrazioni();
  std::ostringstream out;
  EXPECT_EQ(cli::ElencaPrimaNota(*cn, {}, out), 5u);
  // The second entry is short of 0,09 on the debit side and says so.
  ConfrontaGolden("cli/golden/prima_nota.txt", out.str());

  std::ostringstream gennaio;
  cli::FiltroPrimaNota g;
  g.dal = *Data::Crea(2024, 1, 1);
  g.al = *Data::Crea(2024, 1, 31);
  EXPECT_EQ(cli::ElencaPrimaNota(*cn, g, gennaio), 3u);
  EXPECT_EQ(gennaio.str().find("00002"), std::string::npos);
}

TEST_P(ComandoPrimaNota, CheckThenRebuildThenCheckAgain) {
  Registrazioni();
  std::ostringstream ok;
  EXPECT_EQ(cli::StampaVerificaSaldi(*cn, ok), 0u);
  EXPECT_EQ(ok.str(), "Saldi allineati alla prima nota.\n");

  cn->Esegui("UPDATE [Saldi Piano Dei Conti] SET [SaldoDarePeriodo] = 1 WHERE [CodiceGruppo] = '60'");
  cn->Esegui("UPDATE [Anagrafica Fornitori] SET [SaldoAverePeriodo] = 0");
  // A double row of the chart goes in the same rebuild.
  cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto]) VALUES ('60 ', '01', '001')");
  std::ostringstream ko;
  EXPECT_EQ(cli::StampaVerificaSaldi(*cn, ko), 2u);
  EXPECT_EQ(ko.str(),
            "Saldi Piano Dei Conti 60.01.001 SaldoDarePeriodo: registrato 1,00, dalla prima nota 1.234.567,80\n"
            "Anagrafica Fornitori 77 SaldoAverePeriodo: registrato 0,00, dalla prima nota 1.234.567,89\n"
            "2 differenze tra saldi e prima nota: vorn ricostruisci-saldi li riallinea.\n");

  host->Pulisci();
  IForm form;
  EXPECT_EQ(cli::RicostruisciTuttiSaldi(cn, form), 5);
  EXPECT_EQ(host->Messaggi().size(), 1u);  // the double row
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti] WHERE TRIM([Gruppo]) = '60'")), 1);
  std::ostringstream dopo;
  EXPECT_EQ(cli::StampaVerificaSaldi(*cn, dopo), 0u);
  EXPECT_EQ(SaldoCF('F', "77"), S("0", "0", "1234567.89"));
}

TEST_P(ComandoPrimaNota, TheWholeCommands) {
  Registrazioni();
  cn->Esegui("UPDATE [Anagrafica Clienti] SET [SaldoDarePeriodo] = 0");
  auto vorn = [&](const std::string& comando, const std::vector<std::string>& opzioni = {}) {
    return EseguiVorn(RigaComando(dir->Percorso(), comando, Pg(), file, pg, opzioni));
  };
  EsitoComando r = vorn("verifica");
  EXPECT_EQ(r.rc, 1) << r.err;
  EXPECT_NE(r.out.find("Anagrafica Clienti 12 SaldoDarePeriodo"), std::string::npos) << r.out;
  r = vorn("ricostruisci-saldi");
  EXPECT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, "Saldi ricostruiti da 5 righe di prima nota.\n");
  r = vorn("verifica");
  EXPECT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, "Saldi allineati alla prima nota.\n");
  r = vorn("prima-nota", {"--numero", "2"});
  EXPECT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out.find("00001"), std::string::npos) << r.out;
  EXPECT_NE(r.out.find("1 registrazione, 2 righe."), std::string::npos) << r.out;
  EXPECT_EQ(vorn("prima-nota", {"--numero", "1", "--dal", "01/01/2024"}).rc, 2);
  EXPECT_EQ(vorn("prima-nota", {"--dal", "32/01/2024"}).rc, 2);
}

VORN_SU_DUE_MOTORI(ComandoPrimaNota);
