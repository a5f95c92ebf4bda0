// The steps of vorn demo on a small demo company: their order, what each tells, and the VAT
// registers of the year, the first quarter definitive and the rest trials.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "cli/Demo.h"
#include "frame/Comuni.h"
#include "interchange/ModelloStandard.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;
namespace fs = std::filesystem;

namespace {

class PassiDemo : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    CaricaModello(*cn, "standard");
  }
  long Conta(const std::string& sql, const Parametri& p = {}) {
    return static_cast<long>(NullToZeroLng(cn->Scalare(sql, p)));
  }
};

VORN_SU_DUE_MOTORI(PassiDemo);

}  // namespace

TEST_P(PassiDemo, StepsRunInOrderAndTheFirstQuarterIsPrintedDefinitively) {
  cli::OpzioniDemo o;
  o.seme = 5;
  o.clienti = 6;
  o.fornitori = 4;
  o.registrazioni = 360;
  o.lotto = 90;
  auto esito = cli::RiempiAziendaDemo(*cn, o);

  // The three steps of today, in this order, whatever else is registered around them.
  std::vector<std::string> nomi;
  for (const auto& p : cli::PassiDemo()) nomi.push_back(p.nome);
  auto posizione = [&](const std::string& n) { return std::find(nomi.begin(), nomi.end(), n) - nomi.begin(); };
  ASSERT_LT(posizione("registri IVA"), static_cast<long>(nomi.size()));
  EXPECT_LT(posizione("bilancio di verifica"), posizione("mastrino dei clienti"));
  EXPECT_LT(posizione("mastrino dei clienti"), posizione("registri IVA"));

  std::ostringstream out;
  cli::ContestoDemo ctx{cn, "azienda.db", o, esito, out, nullptr, {}};
  cli::EseguiPassiDemo(ctx);
  const std::string testo = out.str();
  const std::string stampe = dir->Percorso() + "/Temp";
  const std::string cartella = stampe + "/RegistriIva";

  // What the steps tell, in their order; the registers in two lines.
  size_t bilancio = testo.find("Stampa: " + stampe + "/BilancioVerificaDemo.txt\n");
  size_t mastrino = testo.find("Mastrino: " + stampe + "/MastrinoClientiDemo.txt\n");
  size_t registri = testo.find("Registri IVA: 24 stampe in " + cartella + " (");
  const std::string gennaio = cartella + "/RegistroIvaVendite01_202401.txt";
  size_t vendite = testo.find("\nRegistro IVA vendite di gennaio: " + gennaio + "\n");
  ASSERT_NE(bilancio, std::string::npos) << testo;
  ASSERT_NE(mastrino, std::string::npos) << testo;
  ASSERT_NE(registri, std::string::npos) << testo;
  ASSERT_NE(vendite, std::string::npos) << testo;
  EXPECT_LT(bilancio, mastrino);
  EXPECT_LT(mastrino, registri);
  EXPECT_EQ(testo.find('\n', vendite + 1), testo.size() - 1) << "the last line";

  // Every file the steps wrote is listed once and is there: the two prints and 24 registers,
  // sales and purchases of each month.
  ASSERT_EQ(ctx.fileScritti.size(), 26u);
  EXPECT_EQ(ctx.fileScritti[0], stampe + "/BilancioVerificaDemo.txt");
  EXPECT_EQ(ctx.fileScritti[1], stampe + "/MastrinoClientiDemo.txt");
  EXPECT_EQ(ctx.fileScritti[2], gennaio);
  for (int mese = 1; mese <= 12; ++mese)
    for (const char* tipo : {"Vendite", "Acquisti"}) {
      std::string f = cartella + "/RegistroIva" + tipo + "01_2024" + (mese < 10 ? "0" : "") + std::to_string(mese) + ".txt";
      EXPECT_EQ(std::count(ctx.fileScritti.begin(), ctx.fileScritti.end(), f), 1) << f;
      EXPECT_TRUE(fs::exists(f)) << f;
    }
  EXPECT_NE(LeggiFile(gennaio).find("Pag"), std::string::npos);

  // January to March are definitive: every VAT row of both registers in the quarter is marked,
  // none after it; both registers remember the end of March and their numbered sheets.
  const Parametri trimestre = {Valore(*Data::Crea(2024, 1, 1)), Valore(*Data::Crea(2024, 3, 31))};
  const long righeTrimestre =
      Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE [TipoRigaIvaNormale] = 'I' AND [TipoRegistroIva] IN ('1', '2') "
            "AND [DataCompetenzaIVA] BETWEEN ? AND ?",
            trimestre);
  EXPECT_GT(righeTrimestre, 20);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE [TipoRigaIvaNormale] = 'I' AND [TipoRegistroIva] IN "
                  "('1', '2') AND [DataCompetenzaIVA] BETWEEN ? AND ? AND SUBSTR([Stringa10indicatori], 1, 1) = 'R'",
                  trimestre),
            righeTrimestre);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE [DataCompetenza] > ? AND "
                  "SUBSTR([Stringa10indicatori], 1, 1) = 'R'",
                  {Valore(*Data::Crea(2024, 3, 31))}),
            0);
  for (const char* tipo : {"1", "2"}) {
    Valore data = cn->Scalare(
        "SELECT [DataUltimaStampaBollato] FROM [Progressivi Registri Iva] WHERE [IndicatoreFisso] = 'P2' AND "
        "[TipoRegistroIva] = ? AND [NumRegistroIva] = '01'",
        {Valore(tipo)});
    EXPECT_EQ(data.Testo().substr(0, 10), "31/03/2024") << tipo;
  }
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Numerazione Fogli] WHERE [TipoStampa] = 'R' AND [Anno] = 2024"), 2);
  // No work table of the prints is left in the company.
  for (const auto& t : cn->Tabelle()) EXPECT_NE(LCase(t).rfind("vorn", 0), 0u) << t;
}
