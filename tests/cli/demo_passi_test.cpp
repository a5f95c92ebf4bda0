// The steps of vorn demo on a small demo company: their order, what each tells, the VAT registers
// of the year, the first quarter definitive and the rest trials, and the VAT settlements of the
// year against the settlements and payments that the demo posted.
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

// The steps up to the year change: the unload of the first quarter, the last step, takes its rows
// out of the journal, so the quarter's books are checked before it.
void PassiPrimaDelloScarico(cli::ContestoDemo& ctx) {
  for (const auto& p : cli::PassiDemo())
    if (p.nome != "scarico prima nota") {
      p.esegui(ctx);
      ctx.FineProgresso();
    }
}

}  // namespace

TEST_P(PassiDemo, StepsRunInOrderAndTheFirstQuarterIsPrintedDefinitively) {
  const cli::OpzioniDemo o{.seme = 5, .clienti = 6, .fornitori = 4, .registrazioni = 360, .lotto = 90};
  auto esito = cli::RiempiAziendaDemo(*cn, o);

  // The four steps of today, in this order, whatever else is registered around them.
  std::vector<std::string> nomi;
  for (const auto& p : cli::PassiDemo()) nomi.push_back(p.nome);
  auto posizione = [&](const std::string& n) { return std::find(nomi.begin(), nomi.end(), n) - nomi.begin(); };
  ASSERT_LT(posizione("liquidazioni IVA"), static_cast<long>(nomi.size()));
  EXPECT_LT(posizione("bilancio di verifica"), posizione("mastrino dei clienti"));
  EXPECT_LT(posizione("mastrino dei clienti"), posizione("registri IVA"));
  EXPECT_LT(posizione("registri IVA"), posizione("liquidazioni IVA"));

  std::ostringstream out;
  cli::ContestoDemo ctx{cn, "azienda.db", o, esito, out, nullptr, {}, {}};
  PassiPrimaDelloScarico(ctx);
  const std::string testo = out.str();
  const std::string stampe = dir->Percorso() + "/Temp";
  const std::string cartella = stampe + "/RegistriIva";

  // What the steps tell, in their order; the registers in two lines.
  size_t bilancio = testo.find("Stampa: " + stampe + "/BilancioVerificaDemo.txt\n");
  size_t mastrino = testo.find("Mastrino: " + stampe + "/MastrinoClientiDemo.txt\n");
  size_t registri = testo.find("Registri IVA: 24 stampe in " + cartella + " (");
  const std::string gennaio = cartella + "/RegistroIvaVendite01_202401.txt";
  size_t vendite = testo.find("\nRegistro IVA vendite di gennaio: " + gennaio + "\n");
  size_t liquidazioni = testo.find("\nLiquidazioni IVA del 2024 in " + stampe + "/LiquidazioniIva (");
  ASSERT_NE(bilancio, std::string::npos) << testo;
  ASSERT_NE(mastrino, std::string::npos) << testo;
  ASSERT_NE(registri, std::string::npos) << testo;
  ASSERT_NE(vendite, std::string::npos) << testo;
  EXPECT_LT(bilancio, mastrino);
  EXPECT_LT(mastrino, registri);
  // The settlements follow the registers at once.
  EXPECT_EQ(testo.find('\n', vendite + 1), liquidazioni) << testo;

  // Every file the steps wrote is listed once and is there: among them the two prints, 24
  // registers, sales and purchases of each month, and 12 settlements, in the steps' order.
  ASSERT_GE(ctx.fileScritti.size(), 38u);
  for (const auto& f : ctx.fileScritti) {
    EXPECT_EQ(std::count(ctx.fileScritti.begin(), ctx.fileScritti.end(), f), 1) << f;
    EXPECT_TRUE(fs::exists(f)) << f;
  }
  // The asset register of the year comes first: the depreciation goes to the books before the
  // trial balance reads them.
  EXPECT_EQ(ctx.fileScritti[0], stampe + "/RegistroCespitiDemo.txt");
  EXPECT_EQ(ctx.fileScritti[1], stampe + "/BilancioVerificaDemo.txt");
  EXPECT_EQ(ctx.fileScritti[2], stampe + "/MastrinoClientiDemo.txt");
  auto indice = [&](const std::string& f) {
    return std::find(ctx.fileScritti.begin(), ctx.fileScritti.end(), f) - ctx.fileScritti.begin();
  };
  // (each one listed is there, checked above)
  for (int mese = 1; mese <= 12; ++mese) {
    const std::string mm = (mese < 10 ? "0" : "") + std::to_string(mese);
    for (const std::string& f : {cartella + "/RegistroIvaVendite01_2024" + mm + ".txt",
                                 cartella + "/RegistroIvaAcquisti01_2024" + mm + ".txt",
                                 stampe + "/LiquidazioniIva/LiquidazioneIva_2024" + mm + ".txt"})
      EXPECT_LT(indice(f), static_cast<long>(ctx.fileScritti.size())) << f;
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
  // The journal book of January to March, definitive after the ledger card: every row of the
  // quarter on the book and none after it, numbered 1 on, its running totals the quarter's.
  EXPECT_LT(posizione("mastrino dei clienti"), posizione("libro giornale"));
  EXPECT_LT(posizione("libro giornale"), posizione("registri IVA"));
  EXPECT_NE(testo.find("Libro giornale: 3 stampe bollate in " + stampe + "/LibroGiornale ("), std::string::npos);
  for (const char* mm : {"01", "02", "03"})
    EXPECT_LT(indice(stampe + "/LibroGiornale/LibroGiornale_2024" + std::string(mm) + ".txt"), indice(gennaio)) << mm;
  const long righeGiornale =
      Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE [DataRegistrazione] BETWEEN ? AND ?", trimestre);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE SUBSTR([Stringa10indicatori], 2, 1) = 'G'"), righeGiornale);
  EXPECT_EQ(Conta("SELECT [NumRigaLibroGiornale] FROM [Progressivi Azienda Vorn]"), righeGiornale);
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [ProgDareLibroGiornale] FROM [Progressivi Azienda Vorn]")),
            NullToZeroCy(cn->Scalare("SELECT SUM([ImportoMovimento]) FROM [Prima Nota] WHERE [DareAvere] = 'D' AND "
                                     "[DataRegistrazione] BETWEEN ? AND ?",
                                     trimestre)));
  // The year change runs last, after the balance sheet has read the year: every account of 2024
  // is at zero at its end, and the balances are still those of the journal.
  EXPECT_EQ(posizione("cambio esercizio"), static_cast<long>(nomi.size()) - 2);
  EXPECT_EQ(posizione("scarico prima nota"), static_cast<long>(nomi.size()) - 1);
  size_t cambio = testo.find("Cambio esercizio: chiuso il 2024 al 31/12/2024 (registrazioni ");
  ASSERT_NE(cambio, std::string::npos) << testo;
  EXPECT_LT(testo.find("Bilancio contabile dal 01/01/2024"), cambio);
  EXPECT_NE(testo.find("aperto il 2025 al 01/01/2025; saldi allineati alla prima nota\n", cambio), std::string::npos);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM (SELECT [ContoPrimaNota] FROM [Prima Nota] WHERE [DataCompetenza] <= ? "
                  "GROUP BY [ContoPrimaNota] HAVING SUM(CASE WHEN [DareAvere] = 'D' THEN [ImportoMovimento] "
                  "ELSE -[ImportoMovimento] END) <> 0) [s]",
                  {Valore(*Data::Crea(2024, 12, 31))}),
            0);
  // No work table of the prints is left in the company.
  for (const auto& t : cn->Tabelle()) EXPECT_NE(LCase(t).rfind("vorn", 0), 0u) << t;

  // Last, the unload of the quarter printed on the books: its rows leave for the history, and
  // the trial balance and the cards read the same.
  for (const auto& p : cli::PassiDemo())
    if (p.nome == "scarico prima nota") p.esegui(ctx);
  EXPECT_NE(out.str().find("Scarico prima nota: gennaio-marzo 2024 ("), std::string::npos) << out.str();
  EXPECT_NE(out.str().find(" identici prima e dopo; saldi allineati alla prima nota\n"), std::string::npos);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE [DataRegistrazione] BETWEEN ? AND ?", trimestre), 0);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Storico Contabile]"), righeGiornale);
}

namespace {

// This company has a credit in January and in February and a debt under the minimum payment
// in March (23,02, carried): the settlements carry both to the month after.
cli::OpzioniDemo ConCreditoEMinimo() {
  return cli::OpzioniDemo{.seme = 276, .clienti = 4, .fornitori = 6, .registrazioni = 150, .lotto = 50};
}

// The lines of `testo` after the one that starts with `inizio`, up to an empty line or the end.
std::vector<std::string> RigheDopo(const std::string& testo, const std::string& inizio) {
  std::vector<std::string> v;
  size_t p = testo.find(inizio);
  if (p == std::string::npos) return v;
  std::istringstream in(testo.substr(testo.find('\n', p) + 1));
  for (std::string r; std::getline(in, r) && !r.empty();) v.push_back(r);
  return v;
}

}  // namespace

TEST_P(PassiDemo, TheSettlementsOfTheYearAreThoseTheDemoPosted) {
  auto o = ConCreditoEMinimo();
  auto esito = cli::RiempiAziendaDemo(*cn, o);
  std::ostringstream out;
  cli::ContestoDemo ctx{cn, "azienda.db", o, esito, out, nullptr, {}, {}};
  PassiPrimaDelloScarico(ctx);
  const std::string testo = out.str();

  // A heading, the columns, a line a month, and the agreement with the demo's own entries.
  // (the next step's lines follow).
  auto righe = RigheDopo(testo, "Liquidazioni IVA del 2024 in ");
  ASSERT_GE(righe.size(), 14u) << testo;
  EXPECT_EQ(righe[0].rfind("Mese", 0), 0u) << righe[0];
  const char* mesi[] = {"gennaio", "febbraio", "marzo",     "aprile",  "maggio",   "giugno",
                        "luglio",  "agosto",   "settembre", "ottobre", "novembre", "dicembre"};
  for (int m = 0; m < 12; ++m) {
    const std::string& r = righe[static_cast<size_t>(m) + 1];
    EXPECT_EQ(r.rfind(mesi[m], 0), 0u) << r;
    EXPECT_NE(r.find(m < 3 ? " bollata " : " simulazione "), std::string::npos) << r;
  }
  // January: the sales VAT 1.667,90 less the purchases' 2.140,29 and the intra-community
  // purchases' 1.309,39, a credit of 1.781,78; February: 3.355,48 less 1.713,45 and 392,46 and
  // January's credit, a credit of 532,21 (the settlement entries of the demo hold these rows).
  EXPECT_NE(righe[1].find("1.781,78 a credito"), std::string::npos) << righe[1];
  EXPECT_NE(righe[2].find("532,21 a credito"), std::string::npos) << righe[2];
  EXPECT_NE(righe[3].find("23,02 a debito"), std::string::npos) << righe[3];
  EXPECT_NE(righe[3].find("non supera il minimo"), std::string::npos) << righe[3];
  // March's figure from the journal's VAT rows of the month: the sales VAT 1.487,57 (the
  // integration of an intra-community purchase, 508,83, among it) less a credit note's 298,96,
  // the 1.923,26 of a public body's invoice being split payment and not due; less the purchases'
  // 633,38 (the same 508,83 among them); less February's credit 532,21:
  // 1.487,57 - 298,96 - 633,38 - 532,21 = 23,02.
  const Parametri marzo = {Valore(*Data::Crea(2024, 3, 1)), Valore(*Data::Crea(2024, 3, 31))};
  auto iva = [&](const std::string& condizione) {
    return NullToZeroCy(cn->Scalare(
        "SELECT SUM(P.[ImportoMovimento]) FROM [Prima Nota] P LEFT JOIN [Codici Iva] C ON C.[Codice Iva] = "
        "P.[CodiceIva] WHERE P.[TipoRigaIvaNormale] = 'I' AND P.[DataCompetenzaIVA] BETWEEN ? AND ? AND " +
            condizione,
        marzo));
  };
  const std::string split = "C.[Flag Split Payment fattura PA] = '1'";
  EXPECT_EQ(iva("P.[TipoRegistroIva] = '1' AND P.[DareAvere] = 'A' AND NOT " + split), *Importo::DaTestoPunto("1487.57"));
  EXPECT_EQ(iva("P.[TipoRegistroIva] = '1' AND P.[CodiceCausale] = 'AVI'"), *Importo::DaTestoPunto("508.83"));
  EXPECT_EQ(iva("P.[TipoRegistroIva] = '1' AND P.[DareAvere] = 'D'"), *Importo::DaTestoPunto("298.96"));
  EXPECT_EQ(iva("P.[TipoRegistroIva] = '1' AND " + split), *Importo::DaTestoPunto("1923.26"));
  EXPECT_EQ(iva("P.[TipoRegistroIva] = '2'"), *Importo::DaTestoPunto("633.38"));
  EXPECT_EQ(righe[13],
            "Le liquidazioni e i versamenti IVA che la demo ha registrato in prima nota coincidono con questi "
            "importi.");

  // Only the first quarter is settled in the books; the simulations, each run with the balance
  // of the month before, leave the balance that March carried: its 23,02 not paid.
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Liquidazioni Periodiche]"), 3);
  EXPECT_EQ(cn->Scalare("SELECT [UltimaLiquidazioneIva] FROM [Progressivi Azienda Vorn]").Testo().substr(0, 10),
            "31/03/2024");
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [CodIvaPerPrec] FROM [Progressivi Azienda Vorn]")),
            *Importo::DaTestoPunto("-23.02"));
  // What the definitive settlements saved are the quarter's figures, the credits negative; the
  // demo paid nothing on the 16th of the month after any of them.
  const char* saldi[] = {"-1781.78", "-532.21", "23.02"};
  for (int mese = 1; mese <= 3; ++mese) {
    EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [Importo_versato] FROM [Liquidazioni Periodiche] WHERE "
                                       "[MeseVersamento] = ?",
                                       {Valore("0" + std::to_string(mese))})),
              *Importo::DaTestoPunto(saldi[mese - 1]))
        << mese;
    EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE [CodiceCausale] = 'VIV' AND [DataRegistrazione] = ?",
                    {Valore(*Data::Crea(2024, mese + 1, 16))}),
              0)
        << mese;
  }
  for (const auto& t : cn->Tabelle()) EXPECT_NE(LCase(t).rfind("vorn", 0), 0u) << t;
  // The due-date book, written once with the documents: the instalments of each sales invoice
  // and the rows it settled itself add up to its total, to the cent; one set of rows a document.
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM (SELECT S.[Progressivo Documento] FROM [Scadenziario] S GROUP BY "
                  "S.[Progressivo Documento] HAVING SUM(S.[Importo Scadenza]) <> MAX(S.[Importo Documento]) AND "
                  "SUM(CASE WHEN S.[Note] IS NULL OR S.[Note] = '' THEN 1 ELSE 0 END) > 0) K"),
            0);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM (SELECT S.[Numero Documento] FROM [Scadenziario] S WHERE S.[Tipo] = 'CL' "
                  "GROUP BY S.[Numero Documento] HAVING COUNT(DISTINCT S.[Progressivo Documento]) > 1) K"),
            0);
  // A settled row for each amount a document settled, and each paid by its posting.
  const long saldate = Conta("SELECT COUNT(*) FROM [Scadenziario] WHERE [Note] LIKE 'Rilevaz.%'");
  EXPECT_EQ(saldate, Conta("SELECT SUM(CASE WHEN [PA Totale Split Payment] <> 0 THEN 1 ELSE 0 END + CASE WHEN "
                           "[Acconto] <> 0 THEN 1 ELSE 0 END + CASE WHEN [Ritenuta1] <> 0 THEN 1 ELSE 0 END + CASE "
                           "WHEN [Abbuono] <> 0 THEN 1 ELSE 0 END) FROM [Fatture]") +
                         Conta("SELECT COUNT(*) FROM [Movimenti Magazzino] WHERE [Codice Iva] = '822'"));
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Scadenziario] WHERE [Note] LIKE 'Rilevaz.%' AND [Importo Pagato] = "
                  "[Importo Scadenza] AND [numeroRegistrazione] IS NOT NULL"),
            saldate);
  // (the sales documents' instalments: the suppliers' paid by the transfer list are apart)
  const std::string riga =
      "Scadenziario: " + std::to_string(Conta("SELECT COUNT(*) FROM [Scadenziario] WHERE [Tipo] = 'CL'")) + " rate di " +
      std::to_string(Conta("SELECT COUNT(DISTINCT [Progressivo Documento]) FROM [Scadenziario] WHERE [Tipo] = 'CL'")) +
      " documenti di vendita (" + std::to_string(saldate) + " saldate dai documenti stessi), per ";
  EXPECT_NE(testo.find(riga), std::string::npos) << testo;
}

TEST_P(PassiDemo, APaymentThatIsNotTheSettlementsIsTold) {
  auto o = ConCreditoEMinimo();
  auto esito = cli::RiempiAziendaDemo(*cn, o);
  // April's payment, raised by a cent on both sides of its entry.
  const Parametri sedici = {Valore(*Data::Crea(2024, 5, 16))};
  ASSERT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE [CodiceCausale] = 'VIV' AND [DataRegistrazione] = ?",
                  sedici),
            2);
  cn->Esegui("UPDATE [Prima Nota] SET [ImportoMovimento] = [ImportoMovimento] + 0.01 WHERE [CodiceCausale] = 'VIV' "
             "AND [DataRegistrazione] = ?",
             sedici);
  // The settlements step alone: every month in simulation.
  std::ostringstream out;
  cli::ContestoDemo ctx{cn, "azienda.db", o, esito, out, nullptr, {}, {}};
  for (const auto& p : cli::PassiDemo())
    if (p.nome == "liquidazioni IVA") p.esegui(ctx);
  const std::string testo = out.str();
  EXPECT_EQ(testo.find("coincidono con questi importi"), std::string::npos) << testo;
  // (the next step's lines follow).
  auto righe = RigheDopo(testo, "Liquidazioni IVA del 2024 in ");
  ASSERT_GE(righe.size(), 14u) << testo;
  EXPECT_EQ(righe[13].rfind("Attenzione: le registrazioni della demo non coincidono con la liquidazione di aprile",
                            0),
            0u)
      << righe[13];
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Liquidazioni Periodiche]"), 0);
}
