// The exchange files: a small year written out, read into a new company and written out again
// gives the same files and balances that follow the journal; a broken file is refused whole,
// naming its line and field; a prompt answered no writes nothing; the layouts are pinned.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "frame/Comuni.h"
#include "frame/Schema.h"
#include "interchange/ModelloStandard.h"
#include "interchange/clsExportVorn.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsPrimaNota.h"
#include "support/Azienda.h"

namespace vorn::test {
namespace {

const std::vector<ArchivioVorn> kTutti = {ArchivioVorn::PianoConti, ArchivioVorn::Causali,  ArchivioVorn::CodiciIva,
                                          ArchivioVorn::Valute,     ArchivioVorn::PrimaNota, ArchivioVorn::Clienti,
                                          ArchivioVorn::Fornitori};

class Esportazione : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    Anno();
  }
  void TearDown() override {
    if (cn2) cn2->Close();
    if (Pg() && !schema2.empty())
      AltraConnessione()->Esegui("DROP SCHEMA IF EXISTS " + schema2 + " CASCADE");
    AziendaStandardTest::TearDown();
  }

  // Two clients, a supplier, a currency and four entries: two sales invoices, a purchase
  // invoice, the first client's payment.
  void Anno() {
    for (const auto& [tab, cod, rag] : {std::tuple{"Anagrafica Clienti", "1", "Rossi Caffè S.r.l."},
                                        std::tuple{"Anagrafica Clienti", "2", "Bianchi & Figli"},
                                        std::tuple{"Anagrafica Fornitori", "1", "Verdi Forniture"}})
      cn->Esegui(std::string("INSERT INTO [") + tab +
                     "] ([Codice Cliente], [Ragione Sociale], [Partita Iva], [Località], [SottocontoApparten], "
                     "[Codice Pagamento], [Fido]) VALUES (?, ?, '01234567890', 'Forlì', ?, 'R30', 5000)",
                 {Valore(cod), Valore(rag), Valore(tab[11] == 'C' ? "0501001" : "1301001")});
    cn->Esegui("INSERT INTO [Valute] ([Codice valuta], [Descrizione valuta], [Simbolo valuta], [Cambio], "
               "[Numero decimali valuta], [Flag valuta EMU], [Data cambio]) VALUES ('USD', 'Dollaro USA', '$', "
               "1.0835, 2, '0', ?)",
               {Valore(*Data::Crea(2024, 1, 15))});
    clsPrimaNota pn;
    pn.cn = cn;
    auto riga = [&](const char* num, Data d, const char* caus, const char* tipo, const char* nr, const char* da,
                    const char* conto, const char* ind, const char* cod, const char* importo, const char* imponibile) {
      RecordValori v{{"NumeroRegistrazione", Valore(num)},
                     {"DataRegistrazione", Valore(d)},
                     {"DataCompetenza", Valore(d)},
                     {"DataCompetenzaIVA", Valore(d)},
                     {"CodiceCausale", Valore(caus)},
                     {"TipoRigaIvaNormale", Valore(tipo)},
                     {"NumRigaAVideo", Valore(nr)},
                     {"DareAvere", Valore(da)},
                     {"ContoPrimaNota", Valore(conto)},
                     {"IndClienteFornitore", Valore(ind)},
                     {"CodClienteFornitore", Valore(cod)},
                     {"ImportoMovimento", Valore(*Importo::DaTestoPunto(importo))},
                     {"DescrizioneSupplem", Valore("Fattura n. 1 più IVA")},
                     {"Stringa10indicatori", Valore("  0       ")}};
      if (*imponibile) {
        v["Imponibile"] = Valore(*Importo::DaTestoPunto(imponibile));
        v["CodiceIva"] = Valore("022");
        v["TipoRegistroIva"] = Valore(caus[2] == 'V' ? "1" : "2");
        v["NumRegistroIva"] = Valore("01");
        v["NumeroDiProtocollo"] = Valore(1);
      }
      bool cancel = false;
      ASSERT_TRUE(pn.SalvaRecord(v, Valore("t"), 0, cancel));
    };
    Data gen = *Data::Crea(2024, 1, 15), feb = *Data::Crea(2024, 2, 20), mar = *Data::Crea(2024, 3, 15),
         apr = *Data::Crea(2024, 4, 10);
    riga("00001", gen, "FTV", "", "001", "D", "0501001", "C", "1", "1220.00", "");
    riga("00001", gen, "FTV", "", "002", "A", "7001001", "", "", "1000.00", "");
    riga("00001", gen, "FTV", "I", "001", "A", "1401001", "", "", "220.00", "1000.00");
    riga("00002", feb, "FTA", "", "001", "A", "1301001", "F", "1", "610.00", "");
    riga("00002", feb, "FTA", "", "002", "D", "6001001", "", "", "500.00", "");
    riga("00002", feb, "FTA", "I", "001", "D", "0601001", "", "", "110.00", "500.00");
    riga("00003", mar, "INC", "", "001", "D", "0701001", "", "", "1220.00", "");
    riga("00003", mar, "INC", "", "002", "A", "0501001", "C", "1", "1220.00", "");
    riga("00004", apr, "FTV", "", "001", "D", "0501001", "C", "2", "366.00", "");
    riga("00004", apr, "FTV", "", "002", "A", "7001001", "", "", "300.00", "");
    riga("00004", apr, "FTV", "I", "001", "A", "1401001", "", "", "66.00", "300.00");
  }

  // A second company from the standard model, beside the first.
  std::shared_ptr<Connessione> NuovaAzienda() {
    auto riempi = [](Connessione& c) { CaricaModello(c, "standard"); };
    if (!Pg()) return cn2 = CreaAziendaSqlite(dir->Percorso() + "/importata.db", riempi);
    ParametriPostgres p = pg;
    p.schema = schema2 = NomeUnico("imp");
    return cn2 = CreaAziendaPostgres(p, riempi);
  }

  std::vector<std::string> Esporta(const std::shared_ptr<Connessione>& c, const std::string& cartella) {
    clsExportVorn ex;
    ex.cn = c;
    auto file = ex.Esporta(nullptr, cartella, kTutti);
    EXPECT_EQ(file.size(), kTutti.size()) << ex.Errore();
    return file;
  }

  // The fields of the line of a file that starts with `inizio`.
  std::vector<std::string> Campi(const std::string& file, const std::string& inizio) {
    std::istringstream in(LeggiFile(file));
    std::string r;
    while (std::getline(in, r))
      if (r.rfind(inizio, 0) == 0) {
        std::vector<std::string> v;
        std::stringstream s(r);
        std::string c;
        while (std::getline(s, c, '|')) v.push_back(Trim(c));
        return v;
      }
    return {};
  }

  long Conta(Connessione& c, const std::string& sql) { return NullToZeroLng(c.Scalare(sql)); }
  // Every balance column of the company, summed in absolute value: a fingerprint that any
  // movement changes.
  std::string Impronta(Connessione& c) {
    return c.Scalare("SELECT SUM(ABS(COALESCE([DareProgressivo], 0)) + ABS(COALESCE([AvereProgressivo], 0)) + "
                     "ABS(COALESCE([SaldoDarePeriodo], 0)) + ABS(COALESCE([SaldoAverePeriodo], 0))) "
                     "FROM [Saldi Piano Dei Conti]")
               .Testo() +
           "/" + std::to_string(Conta(c, "SELECT COUNT(*) FROM [Prima Nota]"));
  }

  std::shared_ptr<Connessione> cn2;
  std::string schema2;
};

TEST_P(Esportazione, RoundTripGivesTheSameFilesAndBalancesThatFollowTheJournal) {
  const std::string uno = dir->Percorso() + "/uno", due = dir->Percorso() + "/due";
  auto primi = Esporta(cn, uno);
  auto nuova = NuovaAzienda();
  clsExportVorn im;
  im.cn = nuova;
  im.ChiediConferma = false;
  std::vector<int64_t> righe;
  ASSERT_TRUE(im.Importa(nullptr, uno, kTutti, Valore("t"), 0, kSeparatoreVorn, &righe)) << im.Errore();
  EXPECT_EQ(righe[4], 11);  // the journal rows
  EXPECT_EQ(righe[5], 2);
  EXPECT_EQ(righe[6], 1);
  auto secondi = Esporta(nuova, due);
  for (size_t i = 0; i < primi.size(); ++i) EXPECT_EQ(LeggiFile(primi[i]), LeggiFile(secondi[i])) << primi[i];
  EXPECT_TRUE(VerificaSaldi(*nuova).empty());

  // The balances, worked out from the four entries: clients 1220 + 366 in debit, 1220 in credit;
  // revenue 1000 + 300; the second client owes 366, the first nothing; the supplier is owed 610.
  auto clienti = Campi(secondi[0], "0501001|");
  ASSERT_EQ(clienti.size(), 11u);
  EXPECT_EQ(clienti[2], "Clienti Italia");
  EXPECT_EQ(clienti[4], "1586.00");  // SaldoDarePeriodo
  EXPECT_EQ(clienti[5], "1220.00");  // SaldoAverePeriodo
  EXPECT_EQ(Campi(secondi[0], "7001001|")[5], "1300.00");
  EXPECT_EQ(Campi(secondi[0], "1401001|")[5], "286.00");
  auto c2 = Campi(secondi[5], "     2|");
  ASSERT_GT(c2.size(), 70u);
  EXPECT_EQ(c2[2], "Bianchi & Figli");
  EXPECT_EQ(c2[69], "366.00");  // SaldoDarePeriodo
  EXPECT_EQ(c2[70], "0.00");
  EXPECT_EQ(Campi(secondi[6], "     1|")[70], "610.00");
  EXPECT_EQ(NullToZeroCy(nuova->Scalare("SELECT [SaldoAverePeriodo] FROM [Anagrafica Clienti] WHERE "
                                        "[Codice Cliente] = '1'")),
            *Importo::DaTestoPunto("1220.00"));

  // The layout of each archive, its first lines.
  std::string golden;
  for (const auto& f : primi) {
    golden += "== " + f.substr(f.rfind('/') + 1) + "\n";
    std::istringstream in(LeggiFile(f));
    std::string r;
    for (int i = 0; i < 3 && std::getline(in, r); ++i) golden += r + "\n";
  }
  ConfrontaGolden("interchange/golden/esportazione_tracciati.txt", golden);

  // A second import into the same company adds the entries under new numbers.
  ASSERT_TRUE(im.ImportPrimaNota(nullptr, uno + "/primanota.txt", kSeparatoreVorn, "", "", Valore("t"), 0));
  EXPECT_EQ(Conta(*nuova, "SELECT COUNT(*) FROM [Prima Nota] WHERE [NumeroRegistrazione] > '00004'"), 11);
  EXPECT_TRUE(VerificaSaldi(*nuova).empty());
}

TEST_P(Esportazione, ABrokenFileIsRefusedWholeNamingLineAndField) {
  const std::string cartella = dir->Percorso() + "/uno";
  auto file = Esporta(cn, cartella);
  const std::string giornale = LeggiFile(cartella + "/primanota.txt");
  const std::string prima = Impronta(*cn);
  ASSERT_EQ(prima.substr(prima.find('/')), "/11");

  // Line 2 broken one way each time; the rest of the file is good.
  auto rompi = [&](const std::function<void(std::vector<std::string>&)>& guasto) {
    std::istringstream in(giornale);
    std::string r, out;
    for (int n = 1; std::getline(in, r); ++n) {
      if (n == 2) {
        std::vector<std::string> v;
        std::stringstream s(r);
        std::string c;
        while (std::getline(s, c, '|')) v.push_back(c);
        guasto(v);
        r.clear();
        for (size_t i = 0; i < v.size(); ++i) r += (i ? "|" : "") + v[i];
      }
      out += r + "\n";
    }
    std::ofstream(cartella + "/primanota.txt", std::ios::binary) << out;
  };
  struct Caso {
    std::string nome;
    std::function<void(std::vector<std::string>&)> guasto;
    std::string atteso;
  };
  std::vector<Caso> casi = {
      {"riga corta", [](auto& v) { v.pop_back(); }, "riga 2: campo 48 mancante: la riga ha 47 campi invece di 48"},
      {"lettera nell'importo", [](auto& v) { v[17] = "           10a0.00"; },
       "riga 2: campo 18 (ImportoMovimento): importo non valido"},
      {"data impossibile", [](auto& v) { v[0] = "20240231"; }, "riga 2: campo 1 (DataRegistrazione): data non valida"},
      {"sottoconto sconosciuto", [](auto& v) { v[3] = "0999999"; },
       "riga 2: campo 4 (ContoPrimaNota): sottoconto 0999999 inesistente nel piano dei conti"},
      {"codifica", [](auto& v) { v[16] = "Caff\xe8 e cornetti        "; }, "non è un testo UTF-8 (riga 2)"},
  };
  clsExportVorn im;
  im.cn = cn;
  for (const auto& c : casi) {
    rompi(c.guasto);
    host->Pulisci();
    EXPECT_FALSE(im.ImportPrimaNota(nullptr, cartella + "/primanota.txt", kSeparatoreVorn, "", "", Valore("t"), 0))
        << c.nome;
    EXPECT_NE(im.Errore().find(c.atteso), std::string::npos) << c.nome << ": " << im.Errore();
    EXPECT_NE(im.Errore().find("primanota.txt"), std::string::npos) << c.nome;
    ASSERT_FALSE(host->Messaggi().empty()) << c.nome;
    EXPECT_EQ(host->Messaggi().back().titolo, "VornXP - Funzione Import Prima Nota") << c.nome;
    EXPECT_EQ(Impronta(*cn), prima) << c.nome;
  }

  // A missing file is told by name before anything.
  EXPECT_FALSE(im.ImportPianoConti(nullptr, cartella + "/manca.txt", kSeparatoreVorn, Valore("t"), 0));
  EXPECT_EQ(im.Errore(), "Impossibile trovare il file " + cartella + "/manca.txt.");
  EXPECT_EQ(host->Messaggi().back().titolo, "VornXP - Funzione Import Piano dei Conti");

  // Several files: the good ones are not written when one is broken.
  rompi([](auto& v) { v[3] = "0999999"; });
  std::string conti = LeggiFile(cartella + "/pianoconti.txt");
  const std::string nuovo = "0501001|3|Clienti nazionali             |";
  conti.replace(conti.find("0501001|3|Clienti Italia"), nuovo.size(), nuovo);
  std::ofstream(cartella + "/pianoconti.txt", std::ios::binary) << conti;
  im.ChiediConferma = false;
  EXPECT_FALSE(im.Importa(nullptr, cartella, {ArchivioVorn::PianoConti, ArchivioVorn::PrimaNota}, Valore("t"), 0));
  EXPECT_EQ(cn->Scalare("SELECT [Descrizione] FROM [Piano Dei Conti] WHERE [Gruppo] = '05' AND [Conto] = '01' "
                        "AND [Sottoconto] = '001'")
                .TestoTrim(),
            "Clienti Italia");

  // Into a chart that has rows the import asks; no writes nothing, yes writes the file.
  im.ChiediConferma = true;
  host->Pulisci();
  EXPECT_FALSE(im.ImportPianoConti(nullptr, cartella + "/pianoconti.txt", kSeparatoreVorn, Valore("t"), 0));
  EXPECT_EQ(im.Errore(), "Importazione annullata.");
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].stile, vbYesNo + vbQuestion);
  auto descrizione = [&] {
    return cn->Scalare("SELECT [Descrizione] FROM [Piano Dei Conti] WHERE [Gruppo] = '05' AND [Conto] = '01' AND "
                       "[Sottoconto] = '001'")
        .TestoTrim();
  };
  EXPECT_EQ(descrizione(), "Clienti Italia");
  host->Rispondi(vbYes);
  EXPECT_TRUE(im.ImportPianoConti(nullptr, cartella + "/pianoconti.txt", kSeparatoreVorn, Valore("t"), 0));
  EXPECT_EQ(descrizione(), "Clienti nazionali");
  EXPECT_EQ(Impronta(*cn), prima);  // the chart's import leaves the balances to the journal

  // An export never replaces a file that is not an export of its archive.
  std::ofstream(cartella + "/causali.txt", std::ios::binary) << "appunti importanti\n";
  EXPECT_FALSE(im.ExportCausaliContabili(nullptr, cartella + "/causali.txt", kSeparatoreVorn));
  EXPECT_EQ(LeggiFile(cartella + "/causali.txt"), "appunti importanti\n");
  EXPECT_TRUE(im.ExportCodiciIVA(nullptr, file[2], kSeparatoreVorn));
}

VORN_SU_DUE_MOTORI(Esportazione);

}  // namespace
}  // namespace vorn::test
