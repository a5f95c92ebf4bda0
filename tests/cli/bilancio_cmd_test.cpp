// vorn bilancio: the balance sheet's totals and print, the trial balance with --verifica, and
// the usage errors.
#include <gtest/gtest.h>

#include "support/Azienda.h"
#include "ComandoAzienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ComandoBilancio : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    const char* piano[][5] = {{"07", "", "", "BANCHE", "0"},     {"07", "01", "", "Banche", "0"},
                              {"07", "01", "001", "Banca c/c", "0"}, {"70", "", "", "RICAVI", "1"},
                              {"70", "01", "", "Vendite", "1"},   {"70", "01", "001", "Vendite merci", "1"}};
    for (auto& r : piano)
      cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione], [IndDiBilancio]) "
                 "VALUES (?, ?, ?, ?, ?)",
                 {Valore(r[0]), Valore(r[1]), Valore(r[2]), Valore(r[3]), Valore(r[4])});
    // Two sales cashed: 1,000.10 and 234.56, one in 2025.
    int n = 0;
    for (auto [data, importo] : {std::pair{"10/03/2024", "1000.10"}, std::pair{"10/01/2025", "234.56"}})
      for (const char* da : {"D", "A"})
        cn->Esegui("INSERT INTO [Prima Nota] ([NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], "
                   "[DareAvere], [ContoPrimaNota], [DataRegistrazione], [DataCompetenza], [ImportoMovimento]) "
                   "VALUES (?, '', ?, ?, ?, ?, ?, ?)",
                   {Valore(data), Valore(std::to_string(++n)), Valore(da),
                    Valore(std::string(da) == "D" ? "0701001" : "7001001"), Valore(data), Valore(data),
                    Valore(*Importo::DaTestoPunto(importo))});
  }
  int Esegui(const std::vector<std::string>& opzioni, std::string& out) {
    EsitoComando r = EseguiVorn(RigaComando(dir->Percorso(), "bilancio", Pg(), file, pg, opzioni));
    out = r.out;
    return r.rc;
  }
};

VORN_SU_DUE_MOTORI(ComandoBilancio);

TEST_P(ComandoBilancio, TotalsResultAndPrint) {
  std::string out;
  ASSERT_EQ(Esegui({"--al", "31/12/2024"}, out), 0) << out;
  const std::string stampa = dir->Percorso() + "/Temp/Bilancio_20241231.txt";
  EXPECT_EQ(out,
            "Bilancio contabile Al 31/12/2024\n"
            "Sezione    Totale Sezione     Totale\n"
            "Attività 1.000,10 Passività     0,00\n"
            "Costi        0,00 Ricavi    1.000,10\n"
            "Utile di esercizio: 1.000,10\n"
            "Stampa: " + stampa + "\n");
  EXPECT_NE(LeggiFile(stampa).find("CONTO ECONOMICO"), std::string::npos);

  ASSERT_EQ(Esegui({"--dal", "01/01/2025", "--al", "31/12/2025", "--verifica"}, out), 0) << out;
  EXPECT_NE(out.find("07.01.001  Banca c/c" + std::string(40, ' ') + "234,56               0,00             234,56 D\n"),
            std::string::npos)
      << out;
  EXPECT_NE(out.find("           Totali" + std::string(43, ' ') + "234,56             234,56               0,00  \n"),
            std::string::npos)
      << out;
}

TEST_P(ComandoBilancio, UsageErrors) {
  std::string out;
  EXPECT_EQ(Esegui({}, out), 2);
  EXPECT_EQ(Esegui({"--al", "31/02/2024"}, out), 2);
  EXPECT_EQ(Esegui({"--dal", "01/01/2025", "--al", "31/12/2024"}, out), 2);
  EXPECT_EQ(Esegui({"--al", "31/12/2024", "--verifica", "--righe", "40"}, out), 2);
  EXPECT_EQ(Esegui({"--al", "31/12/2024", "--righe", "11"}, out), 2);
}

}  // namespace
