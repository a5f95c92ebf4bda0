// The journal book on both engines: the layout of a month that runs over a page and of the
// month after it (golden files), row numbers and running totals carried on, the trial and the
// definitive print of a month giving the same lines, the year's totals against the journal,
// and a definitive print that breaks or meets another user's change leaving nothing behind.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "company/clsProgAzienda.h"
#include "frame/Formato.h"
#include "ledger/PrimaNotaBase.h"
#include "ledger/clsLibroGiornale.h"

namespace vorn::test {
namespace {

class LibroGiornaleTest : public PrimaNotaBase {
 protected:
  void SetUp() override {
    PrimaNotaBase::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    host->ImpostaCartella(dir->Percorso());
    libro.cn = cn;
    prog.cn = cn;
    cn->Esegui("INSERT INTO [Tabella Azienda] ([Ragione Sociale], [Partita IVA], [Codice Fiscale], [Indirizzo], "
               "[Cap], [Citta], [Provincia]) VALUES ('Alfa Srl', '01234567890', '01234567890', 'Via Roma 1', "
               "'20100', 'Milano', 'MI')");
    cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale]) VALUES ('C1', 'Rossi Mario "
               "Srl')");
    // The book carried on from earlier months: row 120, 5.000,00 on each side.
    cn->Esegui("INSERT INTO [Progressivi Azienda Vorn] ([NumRigaLibroGiornale], [ProgDareLibroGiornale], "
               "[ProgAvereLibroGiornale]) VALUES (120, 5000, 5000)");
  }

  void Movimento(const std::string& numero, const std::string& data, const std::string& riga,
                 const std::string& lato, const std::string& conto, const char* importo, const std::string& stato = "",
                 const std::string& cod = "") {
    RecordValori r = Riga(numero, "", riga, lato, conto, importo, "V01", cod.empty() ? "" : "C", cod);
    r["DataRegistrazione"] = Valore(data);
    r["DataCompetenza"] = Valore(data);
    r["DataDocumento"] = Valore(data);
    r["NumeroDocumento"] = Valore(std::stol(numero));
    r["SerieDocumento"] = Valore("A");
    r["Stringa10indicatori"] = Valore(stato);
    Salva(r);
  }

  // January: three entries to print (the second with an invoice's rows, already on the VAT
  // register), and one on the 15th already on the book; February: two entries, one on the 29th.
  void Giornale() {
    Movimento("00001", "15/01/2024", "001", "D", "1201001", "100.00");
    Movimento("00001", "15/01/2024", "002", "A", "4001001", "100.00");
    Movimento("00002", "15/01/2024", "001", "D", "1401001", "1220.00", "R", "C1");
    Movimento("00002", "15/01/2024", "002", "A", "4001001", "1000.00", "R");
    Movimento("00002", "15/01/2024", "003", "A", "2501001", "220.00", "R");
    Movimento("00005", "15/01/2024", "001", "D", "1202001", "10.00", " G");
    Movimento("00005", "15/01/2024", "002", "A", "2502001", "10.00", " G");
    Movimento("00003", "31/01/2024", "001", "D", "6001001", "50.25");
    Movimento("00003", "31/01/2024", "002", "A", "1201001", "50.25");
    Movimento("00007", "01/02/2024", "001", "D", "1201001", "500.00");
    Movimento("00007", "01/02/2024", "002", "A", "4001001", "500.00");
    Movimento("00006", "29/02/2024", "001", "D", "6001001", "30.00");
    Movimento("00006", "29/02/2024", "002", "A", "1201001", "30.00");
  }

  ArgomentiLibroGiornale Argomenti(const std::string& nome, int mese, bool bollato) {
    ArgomentiLibroGiornale a;
    a.AzRagSoc = "Studio Beta";
    a.AzParIva = "09876543210";
    a.nomeFile = dir->Percorso() + "/" + nome;
    a.avar_Mese = mese;
    a.avar_Anno = 2024;
    a.avar_RighePagina = 20;  // nine lines of body a page
    a.avar_ProvaBollato = bollato ? "B" : "P";
    a.avar_StampaCodiciConti = true;
    a.avar_PrefissoTabelleTmp = "t";
    return a;
  }

  std::string Stampa(const ArgomentiLibroGiornale& a) {
    EXPECT_TRUE(libro.StampaLibroGiornale(a)) << host->Ultimo();
    return LeggiFile(a.nomeFile);
  }

  std::string Stato(const std::string& numero) {
    return cn->Scalare("SELECT MIN(substr([Stringa10indicatori], 1, 2)) FROM [Prima Nota] WHERE [NumeroRegistrazione] = ?",
                       {Valore(numero)})
        .Testo();
  }
  long Marcate() {
    return static_cast<long>(NullToZeroLng(
        cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE substr([Stringa10indicatori], 2, 1) = 'G'")));
  }
  struct Libro {
    long riga;
    Importo dare, avere;
    long foglio;
  };
  Libro Stato() {
    Valore ultima, riga, dare, avere;
    prog.GetProgressiviLibroGiornale(ultima, riga, dare, avere);
    return {static_cast<long>(NullToZeroLng(riga)), NullToZeroCy(dare), NullToZeroCy(avere),
            static_cast<long>(NullToZeroLng(cn->Scalare(
                "SELECT [Numero] FROM [Numerazione Fogli] WHERE [TipoStampa] = 'G' AND [Anno] = 2024")))};
  }

  clsLibroGiornale libro;
  clsProgAzienda prog;
};

// A form whose progress line runs the test's own code: another user at work during the print.
struct FormAltroUtente : IForm {
  std::function<void()> azione;
  void msgbar(const std::string& testo) override {
    if (azione && testo.find("Elaborazione registrazioni") != std::string::npos) std::exchange(azione, nullptr)();
  }
};

TEST_P(LibroGiornaleTest, ProvaPoiBollatoStessaStampaEMeseDopo) {
  Giornale();
  std::string prova = Stampa(Argomenti("prova.txt", 1, false));
  ConfrontaGolden("ledger/golden/libro_giornale_gennaio.txt", prova);
  // The golden file holds rows 121 to 127 over three sheets: the 15th's totals count the entry
  // already on the book (10,00), the body leaves it out; 6.320,00 carried after row 125; the
  // running totals add the printed rows to 5.000,00: 100 + 1.220 + 50,25 = 6.370,25.
  EXPECT_EQ(prova.find("1202001"), std::string::npos);
  // A trial leaves nothing, and twice gives the same file.
  EXPECT_EQ(Marcate(), 2);
  Libro prima = Stato();
  EXPECT_EQ(prima.riga, 120);
  EXPECT_EQ(prima.foglio, 0);
  EXPECT_EQ(Stampa(Argomenti("prova.txt", 1, false)), prova);

  // The definitive print: the same lines; the marks, the row, the totals and the sheet move.
  EXPECT_EQ(Stampa(Argomenti("bollato.txt", 1, true)), prova);
  Libro dopo = Stato();
  EXPECT_EQ(dopo.riga, 127);
  EXPECT_EQ(dopo.dare, Imp("6370.25"));
  EXPECT_EQ(dopo.avere, Imp("6370.25"));
  EXPECT_EQ(dopo.foglio, 4);
  EXPECT_EQ(Stato("00002"), "RG");  // the VAT register's mark stays
  EXPECT_EQ(Stato("00003"), " G");
  EXPECT_EQ(Stato("00007"), "  ");
  EXPECT_EQ(Marcate(), 9);

  // February goes on from row 128, 6.370,25 and sheet 4 (it fills sheets 4 and 5), and knows its
  // 29th.
  std::string febbraio = Stampa(Argomenti("febbraio.txt", 2, true));
  ConfrontaGolden("ledger/golden/libro_giornale_febbraio.txt", febbraio);
  Libro marzo = Stato();
  EXPECT_EQ(marzo.riga, 131);
  EXPECT_EQ(marzo.dare, Imp("6900.25"));
  EXPECT_EQ(marzo.foglio, 6);

  // January again: nothing to print, nothing moves, no file.
  host->Pulisci();
  ArgomentiLibroGiornale ancora = Argomenti("ancora.txt", 1, true);
  EXPECT_FALSE(libro.StampaLibroGiornale(ancora));
  EXPECT_EQ(host->Ultimo(), "Nessun dato da stampare.");
  EXPECT_FALSE(std::filesystem::exists(ancora.nomeFile));
  EXPECT_EQ(Stato().riga, 131);
  EXPECT_EQ(Stato().foglio, 6);
  for (const auto& t : cn->Tabelle()) EXPECT_EQ(t.find("Giorni da stampare"), std::string::npos) << t;
}

TEST_P(LibroGiornaleTest, TotaliDellAnnoComeIlGiornale) {
  cn->Esegui("UPDATE [Progressivi Azienda Vorn] SET [NumRigaLibroGiornale] = 0, [ProgDareLibroGiornale] = 0, "
             "[ProgAvereLibroGiornale] = 0");
  // Two entries a month, five rows, with amounts of every cent: the year's totals worked out
  // here as the rows are written.
  Importo dare, avere;
  long righe = 0;
  for (int m = 1; m <= 12; ++m) {
    std::string data = "1" + std::to_string(m % 9) + "/" + Format(Valore(m), "00") + "/2024";
    std::string n1 = Format(Valore(2 * m), "00000"), n2 = Format(Valore(2 * m + 1), "00000");
    std::string a = std::to_string(10 + m) + ".0" + std::to_string(m % 10);
    Movimento(n1, data, "001", "D", "6001001", a.c_str());
    Movimento(n1, data, "002", "A", "1201001", a.c_str());
    dare += Imp(a.c_str());
    avere += Imp(a.c_str());
    std::string b = "0." + Format(Valore(33 * m % 100), "00");
    Movimento(n2, data, "001", "D", "1201001", b.c_str());
    Movimento(n2, data, "002", "D", "1202001", b.c_str());
    Movimento(n2, data, "003", "A", "4001001", (Imp(b.c_str()) + Imp(b.c_str())).TestoPunto().c_str());
    dare += Imp(b.c_str()) + Imp(b.c_str());
    avere += Imp(b.c_str()) + Imp(b.c_str());
    righe += 5;
  }
  for (int m = 1; m <= 12; ++m) Stampa(Argomenti("mese" + std::to_string(m) + ".txt", m, true));
  Libro fine = Stato();
  EXPECT_EQ(fine.riga, righe);
  EXPECT_EQ(fine.dare, dare);
  EXPECT_EQ(fine.avere, avere);
  EXPECT_EQ(fine.dare, NullToZeroCy(cn->Scalare("SELECT SUM([ImportoMovimento]) FROM [Prima Nota] WHERE [DareAvere] = 'D'")));
  EXPECT_EQ(Marcate(), righe);
}

TEST_P(LibroGiornaleTest, BollatoInterrottoNonLasciaNulla) {
  Giornale();
  // The progressives cannot be written: the marks already made in the same unit go back.
  if (Pg()) {
    cn->Esegui("CREATE FUNCTION vorn_rompi() RETURNS trigger AS $$ BEGIN RAISE EXCEPTION 'rotto'; END $$ "
               "LANGUAGE plpgsql");
    cn->Esegui("CREATE TRIGGER vorn_rompi BEFORE UPDATE ON [Progressivi Azienda Vorn] FOR EACH ROW EXECUTE "
               "FUNCTION vorn_rompi()");
  } else {
    cn->Esegui("CREATE TRIGGER vorn_rompi BEFORE UPDATE ON [Progressivi Azienda Vorn] BEGIN SELECT RAISE(ABORT, "
               "'rotto'); END");
  }
  ArgomentiLibroGiornale a = Argomenti("rotto.txt", 1, true);
  EXPECT_ANY_THROW(libro.StampaLibroGiornale(a));
  EXPECT_FALSE(std::filesystem::exists(a.nomeFile));
  EXPECT_EQ(Marcate(), 2);
  EXPECT_EQ(Stato().foglio, 0);
  EXPECT_EQ(Stato().riga, 120);
}

TEST_P(LibroGiornaleTest, AltroUtenteDuranteLaStampa) {
  Giornale();
  auto altra = AltraConnessione();
  FormAltroUtente form;
  ArgomentiLibroGiornale a = Argomenti("conflitto.txt", 1, true);
  a.formAttiva = &form;
  // An amount changed after the rows were read: the print showed 50,25.
  form.azione = [&] {
    altra->Esegui("UPDATE [Prima Nota] SET [ImportoMovimento] = 90 WHERE [NumeroRegistrazione] = '00003'");
  };
  EXPECT_FALSE(libro.StampaLibroGiornale(a));
  EXPECT_NE(host->Ultimo().find("variate o stampate da un altro utente"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(a.nomeFile));
  EXPECT_EQ(Marcate(), 2);
  EXPECT_EQ(Stato().riga, 120);
  EXPECT_EQ(Stato().foglio, 0);
  // Another user prints a row of the month meanwhile: refused too.
  form.azione = [&] {
    altra->Esegui("UPDATE [Prima Nota] SET [Stringa10indicatori] = ' G' WHERE [NumeroRegistrazione] = '00001'");
  };
  EXPECT_FALSE(libro.StampaLibroGiornale(a));
  EXPECT_EQ(Stato().riga, 120);
  EXPECT_EQ(Marcate(), 4);
}

VORN_SU_DUE_MOTORI(LibroGiornaleTest);

}  // namespace
}  // namespace vorn::test
