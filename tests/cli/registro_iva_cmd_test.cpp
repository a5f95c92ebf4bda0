// vorn registro-iva as a user meets it: the options it refuses before touching anything, the
// file of a trial and of a definitive print on a small company of the standard model, what the
// definitive print leaves in the books, and the month that has nothing left to print.
#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "ComandoAzienda.h"
#include "frame/Comuni.h"
#include "ledger/clsPrimaNota.h"
#include "support/Azienda.h"
#include "support/DocumentiIva.h"

using namespace vorn;
using namespace vorn::test;
namespace fs = std::filesystem;

namespace {

class ComandoRegistroIva : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    app = dir->Percorso() + "/app";
    cn->Esegui("UPDATE [Tabella Azienda] SET [Ragione Sociale] = 'Prova Registri S.r.l.', [Partita IVA] = '01234567890'");
    cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten]) "
               "VALUES ('1', 'Rossi Meccanica S.r.l.', '0501001')");
    cn->Esegui("INSERT INTO [Anagrafica Fornitori] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten]) "
               "VALUES ('1', 'Bianchi Forniture S.p.A.', '1301001')");
    pn.cn = cn;
  }

  void Registra(const DocumentoIva& d, const std::vector<RigaContoDoc>& righe, const std::vector<RigaIvaDoc>& iva) {
    RegistraDocumento(pn, d, righe, iva);
  }

  // January: a sale on two rates and a purchase; February: a sale on register 02.
  void Libri() {
    Registra({"00001", "15/01/2024", "FTV", "1", "01", 1, 0, "1770", "C", "1"},
             {{"D", "0501001", "1770", "C"}, {"A", "7001001", "1500"}},
             {{"A", "1401001", "022", "1000", "220"}, {"A", "1401001", "010", "500", "50"}});
    Registra({"00002", "20/01/2024", "FTA", "2", "01", 77, 1, "244", "F", "1"},
             {{"D", "6001001", "200"}, {"A", "1301001", "244", "F"}}, {{"D", "0601001", "022", "200", "44"}});
    Registra({"00003", "10/02/2024", "FTV", "1", "02", 2, 0, "3660", "C", "1"},
             {{"D", "0501001", "3660", "C"}, {"A", "7001001", "3000"}}, {{"A", "1401001", "022", "3000", "660"}});
  }

  using Esito = EsitoComando;
  // vorn registro-iva with the application folder, the company, then `resto`.
  Esito Vorn(const std::vector<std::string>& resto) {
    return EseguiVorn(RigaComando(app, "registro-iva", Pg(), file, pg, resto));
  }

  long Conta(const std::string& sql) { return static_cast<long>(NullToZeroLng(cn->Scalare(sql))); }
  long RigheSegnate() {
    return Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE SUBSTR([Stringa10indicatori], 1, 1) = 'R'");
  }

  clsPrimaNota pn;
  std::string app;
};

VORN_SU_DUE_MOTORI(ComandoRegistroIva);

}  // namespace

TEST_P(ComandoRegistroIva, BadOptionsAreRefusedBeforeAnythingIsWritten) {
  Libri();
  const std::string predefinito = app + "/Temp/RegistroIvaVendite01_202401.txt";
  const std::vector<std::string> base = {"--registro", "1", "--mese", "1", "--anno", "2024"};
  auto con = [&](std::vector<std::string> v) {
    v.insert(v.end(), base.begin(), base.end());
    return v;
  };
  struct Caso {
    std::vector<std::string> argomenti;
    const char* messaggio;
  };
  const std::vector<Caso> casi = {
      {con({"--tipo", "fatture"}), "--tipo sconosciuto: fatture"},
      {con({"--tipo", "vendita"}), "--tipo sconosciuto"},
      {{"--registro", "1", "--mese", "1", "--anno", "2024"}, "manca --tipo"},
      {{"--tipo", "vendite", "--registro", "1", "--mese", "13", "--anno", "2024"}, "--mese"},
      {{"--tipo", "vendite", "--registro", "1", "--mese", "0", "--anno", "2024"}, "--mese"},
      {{"--tipo", "vendite", "--registro", "1", "--anno", "2024"}, "manca --mese"},
      {{"--tipo", "vendite", "--registro", "1", "--mese", "1", "--anno", "1899"}, "--anno"},
      {{"--tipo", "vendite", "--registro", "1", "--mese", "1", "--anno", "10000"}, "--anno"},
      {{"--tipo", "vendite", "--registro", "1", "--mese", "1", "--anno", "24a"}, "--anno"},
      {{"--tipo", "vendite", "--registro", "0", "--mese", "1", "--anno", "2024"}, "--registro"},
      {{"--tipo", "vendite", "--registro", "100", "--mese", "1", "--anno", "2024"}, "--registro"},
      {{"--tipo", "vendite", "--registro", "1.5", "--mese", "1", "--anno", "2024"}, "--registro"},
      {{"--tipo", "vendite", "--mese", "1", "--anno", "2024"}, "manca --registro"},
      {con({"--tipo", "vendite", "--righe", "5"}), "--righe"},
      {con({"--tipo", "vendite", "--bollato", "--colonne", "80"}), "argomento non previsto: --colonne"},
      {con({"--tipo", "differita-vendite", "--uscita", dir->Percorso() + "/x.txt"}), "non ha stampa"},
      {con({"--tipo", "differita-acquisti", "--numera-pagine"}), "non ha stampa"},
  };
  for (const auto& c : casi) {
    // Even with --bollato: a refused command marks nothing.
    auto argomenti = c.argomenti;
    argomenti.push_back("--bollato");
    Esito r = Vorn(argomenti);
    const std::string caso = ::testing::PrintToString(c.argomenti);
    EXPECT_EQ(r.rc, 2) << caso;
    EXPECT_NE(r.err.find(c.messaggio), std::string::npos) << caso << ": " << r.err;
    EXPECT_NE(r.err.find("(vorn registro-iva --help)"), std::string::npos) << r.err;
    EXPECT_EQ(Occorrenze(r.err, "\n"), 1u) << r.err;
    EXPECT_EQ(r.out, "") << caso;
  }
  EXPECT_FALSE(fs::exists(predefinito));
  EXPECT_FALSE(fs::exists(dir->Percorso() + "/x.txt"));
  EXPECT_EQ(RigheSegnate(), 0);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Progressivi Registri Iva]"), 0);

  // The usage names every kind and says that a trial, too, opens the company for writing.
  const std::string aiuto = EseguiVorn({"registro-iva", "--help"}).out;
  for (const char* t : {"vendite", "acquisti", "corrispettivi", "ventilazione", "sospensione", "differita-vendite",
                        "differita-acquisti", "--bollato", "--numera-pagine", "--righe", "--uscita", "in scrittura"})
    EXPECT_NE(aiuto.find(t), std::string::npos) << t;
}

TEST_P(ComandoRegistroIva, ATrialPrintsTheMonthAndLeavesTheBooksAsTheyWere) {
  Libri();
  Esito r = Vorn({"--tipo", "vendite", "--registro", "1", "--mese", "1", "--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  const std::string vendite = app + "/Temp/RegistroIvaVendite01_202401.txt";
  EXPECT_EQ(r.out, vendite + "\n");
  std::string testo = LeggiFile(vendite);
  // One document line with the client, the total, the first rate; the second rate below it.
  std::string documento = RigaCon(testo, "Rossi Meccanica");
  EXPECT_NE(documento.find("1.770,00"), std::string::npos) << testo;
  EXPECT_NE(documento.find("1.000,00"), std::string::npos) << documento;
  EXPECT_NE(documento.find("220,00"), std::string::npos) << documento;
  EXPECT_EQ(Occorrenze(testo, "Rossi Meccanica"), 1u) << testo;
  EXPECT_EQ(Occorrenze(testo, "1.770,00"), 1u) << testo;
  std::string seconda = RigaCon(testo.substr(testo.find(documento) + documento.size()), "500,00");
  EXPECT_NE(seconda.find("50,00"), std::string::npos) << testo;
  EXPECT_EQ(seconda.find("Rossi"), std::string::npos) << seconda;
  // The month's totals: 1.500,00 of taxable amount, 270,00 of tax.
  std::string totali = RigaCon(testo, "Totali ");
  EXPECT_NE(totali.find("1.500,00"), std::string::npos) << testo;
  EXPECT_NE(totali.find("270,00"), std::string::npos) << totali;
  // The company in the head and in the foot; nothing of the purchases nor of February.
  EXPECT_NE(testo.find("Prova Registri S.r.l."), std::string::npos);
  for (const char* altro : {"Bianchi", "244,00", "3.660,00"}) EXPECT_EQ(testo.find(altro), std::string::npos) << altro;

  r = Vorn({"--tipo", "acquisti", "--registro", "01", "--mese", "1", "--anno", "2024", "--uscita",
            dir->Percorso() + "/acquisti.txt"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, dir->Percorso() + "/acquisti.txt\n");
  testo = LeggiFile(dir->Percorso() + "/acquisti.txt");
  documento = RigaCon(testo, "Bianchi Forniture");
  for (const char* cifra : {"244,00", "200,00", "44,00"})
    EXPECT_NE(documento.find(cifra), std::string::npos) << cifra << "\n" << testo;
  EXPECT_EQ(testo.find("Rossi"), std::string::npos);

  // Register 02 is another register: February's sale is there, not on 01.
  r = Vorn({"--tipo", "vendite", "--registro", "1", "--mese", "2", "--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, "Nessun dato da stampare.\n");
  EXPECT_FALSE(fs::exists(app + "/Temp/RegistroIvaVendite01_202402.txt"));
  r = Vorn({"--tipo", "vendite", "--registro", "2", "--mese", "2", "--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, app + "/Temp/RegistroIvaVendite02_202402.txt\n");
  EXPECT_NE(RigaCon(LeggiFile(app + "/Temp/RegistroIvaVendite02_202402.txt"), "Rossi").find("3.660,00"),
            std::string::npos);

  // A trial marks nothing, adds to no progressive, and takes its work tables away.
  EXPECT_EQ(RigheSegnate(), 0);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Progressivi Registri Iva]"), 0);
  EXPECT_EQ(TabelleDiLavoro(*cn), std::vector<std::string>{});
  // The same trial again gives the same file.
  std::string prima = LeggiFile(vendite);
  r = Vorn({"--tipo", "vendite", "--registro", "1", "--mese", "1", "--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(LeggiFile(vendite), prima);
}

TEST_P(ComandoRegistroIva, ADefinitivePrintMarksTheMonthAndTheNextRunFindsNothing) {
  Libri();
  const std::string uscita = dir->Percorso() + "/bollato.txt";
  Esito r = Vorn({"--tipo", "vendite", "--registro", "1", "--mese", "1", "--anno", "2024", "--bollato",
                  "--numera-pagine", "--uscita", uscita});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, uscita + "\n");
  const std::string stampa = LeggiFile(uscita);
  EXPECT_NE(RigaCon(stampa, "Rossi Meccanica").find("1.770,00"), std::string::npos) << stampa;

  // The two VAT rows of the January sale are marked; the purchase and February's sale are not.
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE SUBSTR([Stringa10indicatori], 1, 1) = 'R' AND "
                  "[NumeroRegistrazione] = '00001' AND [TipoRigaIvaNormale] = 'I'"),
            2);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Prima Nota] WHERE SUBSTR([Stringa10indicatori], 1, 1) = 'R' AND "
                  "[NumeroRegistrazione] <> '00001'"),
            0);
  // The year to date of each code, and the date of the last definitive print.
  auto progressivo = [&](const char* codice, const char* colonna) {
    return NullToZeroCy(cn->Scalare(std::string("SELECT [") + colonna +
                                        "] FROM [Progressivi Registri Iva] WHERE [IndicatoreFisso] = 'PI' AND "
                                        "[IndTipoRecord] = 'R' AND [TipoRegistroIva] = '1' AND [NumRegistroIva] = "
                                        "'01' AND [CodiceIva] = ?",
                                    {Valore(codice)}));
  };
  EXPECT_EQ(progressivo("022", "Imponibile"), Importo(1000));
  EXPECT_EQ(progressivo("022", "IVA"), Importo(220));
  EXPECT_EQ(progressivo("010", "Imponibile"), Importo(500));
  EXPECT_EQ(progressivo("010", "IVA"), Importo(50));
  Valore data = cn->Scalare(
      "SELECT [DataUltimaStampaBollato] FROM [Progressivi Registri Iva] WHERE [IndicatoreFisso] = 'P2' AND "
      "[IndTipoRecord] = 'R' AND [TipoRegistroIva] = '1' AND [NumRegistroIva] = '01'");
  EXPECT_EQ(data.Testo().substr(0, 10), "31/01/2024");
  // The sheets numbered are kept for the next print of the register.
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Numerazione Fogli] WHERE [TipoStampa] = 'R'"), 1);
  EXPECT_GE(Conta("SELECT MAX([Numero]) FROM [Numerazione Fogli] WHERE [TipoStampa] = 'R'"), 1);
  EXPECT_EQ(TabelleDiLavoro(*cn), std::vector<std::string>{});

  // The month again, as a trial: nothing left to print, and the print stays as it was.
  r = Vorn({"--tipo", "vendite", "--registro", "1", "--mese", "1", "--anno", "2024", "--uscita", uscita});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, "Nessun dato da stampare.\n");
  EXPECT_EQ(LeggiFile(uscita), stampa);
  // The purchases of the same month are still there to print.
  r = Vorn({"--tipo", "acquisti", "--registro", "1", "--mese", "1", "--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_EQ(r.out, app + "/Temp/RegistroIvaAcquisti01_202401.txt\n");

  // The deferred-payment register has no print: a trial says so and writes nothing.
  r = Vorn({"--tipo", "differita-vendite", "--registro", "1", "--mese", "1", "--anno", "2024"});
  ASSERT_EQ(r.rc, 0) << r.err;
  EXPECT_NE(r.out.find("nessuna stampa"), std::string::npos) << r.out;
  EXPECT_EQ(Occorrenze(r.out, "\n"), 1u) << r.out;
}
