// The statement of operations on a small company of the standard model, on both engines: the
// extraction and its sums by document and by subject, the file written from them (its records,
// its code page, its fields where a reader finds them), the file read back, the subject without
// identifiers that stops the file, and the extraction that fails and leaves the previous one.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "ledger/clsPrimaNota.h"
#include "statements/clsSpesometro2013.h"
#include "support/Azienda.h"
#include "support/DocumentiIva.h"

using namespace vorn;
using namespace vorn::test;

namespace {

std::string B(int n) { return std::string(static_cast<size_t>(n), ' '); }
std::string Dx(const std::string& s) { return B(16 - static_cast<int>(s.size())) + s; }

class Spesometro : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    cn->Esegui("UPDATE [Tabella Azienda] SET [Ragione Sociale] = 'Prova Spesometro S.r.l.', "
               "[Partita IVA] = '01234567890', [Codice Fiscale] = '01234567890'");
    auto soggetto = [&](const char* tabella, const char* codice, const char* nome, const char* nazione,
                        const char* pi, const char* cf) {
      cn->Esegui(std::string("INSERT INTO [") + tabella +
                     "] ([Codice Cliente], [Ragione Sociale], [Codice Nazione], [Partita Iva], [Codice Fiscale], "
                     "[Località], [Indirizzo], [SottocontoApparten]) VALUES (?, ?, ?, ?, ?, 'Arles', 'Rue 1', '0501001')",
                 {Valore(codice), Valore(nome), Valore(nazione), Valore(pi), Valore(cf)});
    };
    soggetto("Anagrafica Clienti", "1", "Rossi Meccanica S.r.l.", "IT", "01234567897", "01234567897");
    soggetto("Anagrafica Clienti", "2", "Mario Rossi", "IT", "", "RSSMRA80A01H501U");
    soggetto("Anagrafica Clienti", "3", "Müller GmbH", "DE", "DE811111111", "");
    soggetto("Anagrafica Fornitori", "1", "Bianchi Forniture S.p.A.", "IT", "09876543210", "09876543210");
    soggetto("Anagrafica Fornitori", "2", "Société Àrles Inc.", "US", "US123456789", "");
    pn.cn = cn;
    app = dir->Percorso();
    host->ImpostaCartella(app);
  }

  // Six documents: a sale on two rates and its credit note, a sale to a private person, a sale
  // to a Community client, a purchase at home and one from abroad.
  void Libri() {
    RegistraDocumento(pn, {"00001", "15/01/2024", "FTV", "1", "01", 1, 0, "1770", "C", "1"},
                      {{"D", "0501001", "1770", "C"}, {"A", "7001001", "1500"}},
                      {{"A", "1401001", "022", "1000", "220"}, {"A", "1401001", "010", "500", "50"}});
    RegistraDocumento(pn, {"00002", "10/02/2024", "NCV", "1", "01", 2, 0, "244", "C", "1"},
                      {{"A", "0501001", "244", "C"}, {"D", "7001006", "200"}},
                      {{"D", "1401001", "022", "200", "44"}});
    RegistraDocumento(pn, {"00003", "12/03/2024", "FTV", "1", "01", 3, 0, "366", "C", "2"},
                      {{"D", "0501001", "366", "C"}, {"A", "7001001", "300"}},
                      {{"A", "1401001", "022", "300", "66"}});
    RegistraDocumento(pn, {"00004", "20/01/2024", "FTA", "2", "01", 77, 1, "244", "F", "1"},
                      {{"D", "6001001", "200"}, {"A", "1301001", "244", "F"}},
                      {{"D", "0601001", "022", "200", "44"}});
    RegistraDocumento(pn, {"00005", "25/02/2024", "FTA", "2", "01", 78, 2, "1220", "F", "2"},
                      {{"D", "6001001", "1000"}, {"A", "1301001", "1220", "F"}},
                      {{"D", "0601001", "022", "1000", "220"}});
    RegistraDocumento(pn, {"00006", "05/04/2024", "FTV", "1", "01", 4, 0, "976", "C", "3"},
                      {{"D", "0501001", "976", "C"}, {"A", "7001001", "800"}},
                      {{"A", "1401001", "022", "800", "176"}});
  }

  long Conta(const std::string& sql, const Parametri& p = {}) {
    return static_cast<long>(NullToZeroLng(cn->Scalare(sql, p)));
  }
  Importo Somma(const std::string& sql, const Parametri& p = {}) { return NullToZeroCy(cn->Scalare(sql, p)); }

  ArgomentiFileSpesometro Argomenti(const std::string& nome) {
    ArgomentiFileSpesometro a;
    a.nomeFile = app + "/" + nome;
    a.nomeFileSegnalazioni = app + "/segnalazioni.txt";
    a.codiceFiscaleSoggettoObbligato = "01234567890";
    a.partitaIVASRC = "01234567890";
    a.denominazioneSRC = "Prova Spesometro S.r.l.";
    a.AnnoRiferimento = 2024;
    return a;
  }

  clsPrimaNota pn;
  clsSpesometro2013 s;
  std::string app;
};

VORN_SU_DUE_MOTORI(Spesometro);

std::vector<std::string> Record(const std::string& byte) {
  std::vector<std::string> v;
  for (size_t p = 0; p < byte.size(); p += 1900) v.push_back(byte.substr(p, 1900));
  return v;
}

}  // namespace

TEST_P(Spesometro, RowsFoldByDocumentAndBySubjectAndASecondRunDoesNotDouble) {
  Libri();
  s.cn = cn;
  for (int volta = 0; volta < 2; ++volta) {
    ASSERT_EQ(s.EstraiDatiSpesometroDaPrimaNota(0, 2024, "SM"), 7) << host->Ultimo();
    EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Spesometro2013]"), 7);
    EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Spesometro2013Riepilogato]"), 6);
  }
  // The sale on two rates is one document with the sums; its month is the period.
  Parametri uno{Valore("00001")};
  EXPECT_EQ(Somma("SELECT [Imponibile] FROM [Spesometro2013Riepilogato] WHERE [NumeroRegistrazione] = ?", uno),
            Importo(1500));
  EXPECT_EQ(Somma("SELECT [Imposta] FROM [Spesometro2013Riepilogato] WHERE [NumeroRegistrazione] = ?", uno),
            Importo(270));
  EXPECT_EQ(TrimTesto(cn->Scalare("SELECT [Periodo] FROM [Spesometro2013Riepilogato] WHERE [NumeroRegistrazione] = ?",
                                  uno)),
            "1");
  // The credit note carries the registers' sign and its flag.
  Parametri nota{Valore("00002")};
  EXPECT_EQ(Somma("SELECT [Imponibile] FROM [Spesometro2013Riepilogato] WHERE [NumeroRegistrazione] = ?", nota),
            Importo(-200));
  EXPECT_TRUE(cn->Scalare("SELECT [FlagNotaVariazione] FROM [Spesometro2013Riepilogato] WHERE [NumeroRegistrazione] = ?",
                          nota)
                  .Vero());

  // By subject: the client's sale under 007/008, its note under 010/011 and not under 007; the
  // supplier from abroad is not in FA.
  s.RicostruisciAggregati(2024);
  s.RicostruisciAggregati(2024);
  auto totale = [&](const char* pi, const char* id) {
    return Somma("SELECT SUM([Valore]) FROM [Spesometro2013Totali] WHERE [PartitaIVA] = ? AND [Identificativo] = ?",
                 {Valore(pi), Valore(id)});
  };
  EXPECT_EQ(totale("01234567897", "FAXXX007"), Importo(1500));
  EXPECT_EQ(totale("01234567897", "FAXXX008"), Importo(270));
  EXPECT_EQ(totale("01234567897", "FAXXX010"), Importo(-200));
  EXPECT_EQ(totale("01234567897", "FAXXX011"), Importo(-44));
  EXPECT_EQ(totale("09876543210", "FAXXX012"), Importo(200));
  EXPECT_EQ(s.GetElencoPartiteIVAAggregate(2024, "FA"),
            (std::vector<std::string>{"01234567897", "09876543210", "DE811111111"}));
  EXPECT_EQ(s.GetElencoCodiciFiscaliAggregati(2024, "FA"), std::vector<std::string>{"RSSMRA80A01H501U"});
  EXPECT_EQ(s.GetNumeroOperazioniAttiveAggregateByPartitaIVA(2024, "01234567897"), 2);
  EXPECT_EQ(s.GetNumeroOperazioniPassiveAggregateByPartitaIVA(2024, "01234567897"), 0);

  // The aggregated file: four subjects on two pages of FA, one "C" record each.
  ArgomentiFileSpesometro a = Argomenti("fa.txt");
  a.indiceFormato = 0;
  a.quadroFA = 1;
  long segnalazioni = -1;
  ASSERT_EQ(s.MakeFileTelematicoSpesometro(a, segnalazioni), 0) << host->Ultimo();
  auto r = Record(LeggiFile(a.nomeFile));
  ASSERT_EQ(r.size(), 6u);  // A, B, C, C, E, Z
  EXPECT_EQ(r[2].substr(0, 1) + r[2].substr(17, 8), "C00000001");
  EXPECT_EQ(r[3].substr(0, 1) + r[3].substr(17, 8), "C00000002");
  const std::string& c1 = r[2];
  EXPECT_EQ(c1.substr(89, 24 * 5), "FA001001" + std::string("01234567897") + B(5) + "FA001004" + Dx("2") +
                                       "FA001007" + Dx("1500") + "FA001008" + Dx("270") + "FA001010" + Dx("200"));
  EXPECT_NE(r[3].find("FA001002RSSMRA80A01H501U"), std::string::npos);
  // The totals record counts the rows of FA.
  EXPECT_EQ(r[4].substr(89, 24), "TA001001" + Dx("4"));
}

TEST_P(Spesometro, TheFileHasFixedRecordsInItsCodePageAndReadsBack) {
  Libri();
  s.cn = cn;
  ASSERT_EQ(s.EstraiDatiSpesometroDaPrimaNota(0, 2024, "SM"), 7);
  ArgomentiFileSpesometro a = Argomenti("spesometro.txt");
  a.quadroFE = a.quadroFR = a.quadroNE = a.quadroSE = 1;
  long segnalazioni = -1;
  ASSERT_EQ(s.MakeFileTelematicoSpesometro(a, segnalazioni), 0) << host->Ultimo();
  EXPECT_EQ(segnalazioni, 0);

  const std::string byte = LeggiFile(a.nomeFile);
  // A, B, one page each of FE, FR, NE, SE, E, Z: 1898 characters and CR LF each.
  ASSERT_EQ(byte.size(), 8u * 1900u);
  auto r = Record(byte);
  std::string tipi;
  for (const auto& x : r) {
    EXPECT_EQ(x.substr(1897), "A\r\n");
    tipi += x[0];
  }
  EXPECT_EQ(tipi, "ABDDDDEZ");
  EXPECT_EQ(r[0].substr(15, 7), "NSP0001");
  EXPECT_EQ(r[0].substr(22, 16), "01234567890" + B(5));
  EXPECT_EQ(r[1].substr(117, 11), "00011100010");  // FE, FR, NE and SE requested
  EXPECT_EQ(r[1].substr(375, 6), "202400");
  EXPECT_EQ(r[7].substr(15, 36), "000000001000000000000000004000000001");
  // FE: the private client on row 2 by fiscal code; amounts right-aligned, unsigned.
  EXPECT_NE(r[2].find("FE002002RSSMRA80A01H501U"), std::string::npos);
  EXPECT_NE(r[2].find("FE001010" + Dx("1500") + "FE001011" + Dx("270")), std::string::npos);
  EXPECT_NE(r[4].find("NE001006" + Dx("200") + "NE001007" + Dx("44")), std::string::npos);
  // SE: the accented name upper-cased, one byte a letter, continued past 16 characters.
  EXPECT_NE(r[5].find("SE001007SOCI\xC9T\xC9 \xC0RLES IN" "SE001007+C." + B(13)), std::string::npos);
  EXPECT_EQ(byte.find("\xC3"), std::string::npos);  // nothing left in UTF-8

  // Read back: no error, the totals by hand.
  const std::string verifica = app + "/verifica.txt";
  ASSERT_TRUE(s.EseguiVerificheFileSpesometroGenerato(a.nomeFile, verifica)) << host->Ultimo();
  std::string testo = LeggiFile(verifica);
  EXPECT_EQ(RigaCon(testo, "FE Numero totale di documenti"), PadSinistra(Valore("FE Numero totale di documenti"), 67) + ": 3");
  EXPECT_EQ(RigaCon(testo, "FE Importo"), PadSinistra(Valore("FE Importo"), 67) + ": 2.600");
  EXPECT_EQ(RigaCon(testo, "FE Imposta"), PadSinistra(Valore("FE Imposta"), 67) + ": 512");
  EXPECT_EQ(RigaCon(testo, "NE Importo"), PadSinistra(Valore("NE Importo"), 67) + ": 200");
  EXPECT_EQ(RigaCon(testo, "SE Imponibile / Importo"), PadSinistra(Valore("SE Imponibile / Importo"), 67) + ": 1.000");
  // The layout below the time stamp is pinned.
  ConfrontaGolden("statements/golden/verifica_spesometro.txt", testo.substr(testo.find('\n', 108) + 1));

  // The CSV: a field a line, one row of a quadro per document.
  const std::string csv = app + "/spesometro.csv";
  ASSERT_TRUE(s.MakeFileCSV(a.nomeFile, csv));
  std::istringstream in(LeggiFile(csv));
  std::string riga;
  std::getline(in, riga);
  EXPECT_EQ(riga, "N.Modulo;Quadro;Riga;Colonna;Valore;Descrizione campo\r");
  std::set<std::string> documenti;
  long campi = 0;
  while (std::getline(in, riga)) {
    ++campi;
    documenti.insert(riga.substr(0, riga.find(";\"", riga.find(";\"") + 1) + 6));
  }
  EXPECT_EQ(documenti.size(), 6u);
  EXPECT_EQ(campi, s.Contenuto().campi);
  EXPECT_NE(LeggiFile(csv).find("\"1\";\"FE\";\"002\";\"002\";=\"RSSMRA80A01H501U\";\"Codice Fiscale del cliente\""),
            std::string::npos);

  // The client's grid gets the same fields, its cells split by "|".
  struct Griglia : IGriglia {
    std::vector<std::string> righe;
    void AddItem(const std::string& r) override { righe.push_back(r); }
  } griglia;
  ASSERT_TRUE(s.CaricaCorpoFileSpesometroInGrid(a.nomeFile, griglia));
  ASSERT_EQ(static_cast<long>(griglia.righe.size()), campi);
  EXPECT_EQ(griglia.righe[0], "1|FE|001|001|01234567897|Partita IVA del cliente");

  // A file that is not one of ours is refused, and left as it was.
  std::ofstream(app + "/altro.txt") << "dati\n";
  EXPECT_FALSE(s.EseguiVerificheFileSpesometroGenerato(a.nomeFile, app + "/altro.txt"));
  EXPECT_EQ(LeggiFile(app + "/altro.txt"), "dati\n");
  // A record one character short is found.
  std::string rotto = byte;
  rotto.erase(1900 * 2 + 100, 1);
  std::ofstream(app + "/rotto.txt", std::ios::binary) << rotto;
  EXPECT_FALSE(s.EseguiVerificheFileSpesometroGenerato(app + "/rotto.txt", verifica));
  EXPECT_NE(LeggiFile(verifica).find("File non conforme: record 3: 1897 caratteri invece di 1898"), std::string::npos);
  griglia.righe.clear();
  EXPECT_FALSE(s.CaricaCorpoFileSpesometroInGrid(app + "/rotto.txt", griglia));
  EXPECT_TRUE(griglia.righe.empty());  // nothing of a broken file reaches the grid
}

TEST_P(Spesometro, ASubjectWithoutIdentifiersStopsTheFileAndOtherChecksOnlySignal) {
  Libri();
  // A sale of nothing: signalled, not stopped.
  RegistraDocumento(pn, {"00007", "06/04/2024", "FTV", "1", "01", 5, 0, "0", "C", "1"},
                    {{"D", "0501001", "0", "C"}, {"A", "7001001", "0"}}, {{"A", "1401001", "022", "0", "0"}});
  s.cn = cn;
  ASSERT_EQ(s.EstraiDatiSpesometroDaPrimaNota(0, 2024, "SM"), 8);
  ArgomentiFileSpesometro a = Argomenti("spesometro.txt");
  a.quadroFE = a.quadroNR = 1;  // NR has no rows
  long segnalazioni = 0;
  ASSERT_EQ(s.MakeFileTelematicoSpesometro(a, segnalazioni), 2) << host->Ultimo();
  std::string report = LeggiFile(a.nomeFileSegnalazioni);
  EXPECT_NE(report.find("Quadro FE: Per il soggetto C 1 ed il documento numero 5 del 06/04/2024 è stato riscontrato "
                        "un imponibile uguale a zero e un'imposta uguale a zero, si consiglia di verificare questo "
                        "documento.\n"),
            std::string::npos)
      << report;
  EXPECT_NE(report.find("Errore nel 'Quadro NR': è stato richiesto ma non sono state trovate operazioni.\n"),
            std::string::npos);
  const std::string primo = LeggiFile(a.nomeFile);

  // The private client loses his fiscal code: the file stops, and the previous file stays.
  cn->Esegui("UPDATE [Anagrafica Clienti] SET [Codice Fiscale] = '' WHERE [Codice Cliente] = '2'");
  host->Pulisci();
  EXPECT_EQ(s.MakeFileTelematicoSpesometro(a, segnalazioni), -1);
  ASSERT_FALSE(host->Messaggi().empty());
  EXPECT_EQ(host->Messaggi().back().testo,
            "Rilevato soggetto con fattura senza partita IVA e senza codice fiscale per creazione record tipo FE "
            "(Fatture emesse)");
  EXPECT_EQ(host->Messaggi().back().titolo, "Metodo MakeFileTelematicoSpesometro");
  EXPECT_EQ(LeggiFile(a.nomeFile), primo);
}

TEST_P(Spesometro, AFailedExtractionLeavesThePreviousOneIntact) {
  Libri();
  s.cn = cn;
  ASSERT_EQ(s.EstraiDatiSpesometroDaPrimaNota(0, 2024, "SM"), 7);
  // One more sale; then the summary table is out of reach, so the run fails at its last step.
  RegistraDocumento(pn, {"00008", "07/05/2024", "FTV", "1", "01", 6, 0, "122", "C", "1"},
                    {{"D", "0501001", "122", "C"}, {"A", "7001001", "100"}}, {{"A", "1401001", "022", "100", "22"}});
  cn->Esegui("ALTER TABLE [Spesometro2013Riepilogato] RENAME TO [SpesometroAltrove]");
  EXPECT_EQ(s.EstraiDatiSpesometroDaPrimaNota(0, 2024, "SM"), -1);
  EXPECT_EQ(host->Messaggi().back().titolo, "Estrazione dati spesometro");
  cn->Esegui("ALTER TABLE [SpesometroAltrove] RENAME TO [Spesometro2013Riepilogato]");
  cn->DimenticaSchema();
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Spesometro2013]"), 7);
  EXPECT_EQ(Somma("SELECT SUM([Imponibile]) FROM [Spesometro2013]"), Importo(1500 - 200 + 300 + 200 + 1000 + 800));
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Spesometro2013Riepilogato]"), 6);
  // The run repeated once the table is back takes the new sale.
  EXPECT_EQ(s.EstraiDatiSpesometroDaPrimaNota(0, 2024, "SM"), 8);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Spesometro2013Riepilogato]"), 7);
}

TEST_P(Spesometro, ExcludedCodesAndBlackListedNationsComeInOnlyWithoutFilters) {
  Libri();
  // A client in a black-listed nation, and a VAT code kept out of the statement.
  cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale], [Codice Nazione], "
             "[Partita Iva], [Tipo soggetto allegati], [SottocontoApparten]) VALUES ('4', 'Lugano Trading SA', 'CH', "
             "'CHE123', 2, '0501003')");
  ASSERT_TRUE(cn->Scalare("SELECT [Nazione Black List] FROM [Nazioni] WHERE [Codice Nazione] = 'CH'").Vero());
  cn->Esegui("UPDATE [Codici Iva] SET [Tipo operazione spesometro] = 1 WHERE [Codice Iva] = '010'");
  RegistraDocumento(pn, {"00009", "08/05/2024", "FTV", "1", "01", 7, 0, "500", "C", "4"},
                    {{"D", "0501003", "500", "C"}, {"A", "7001001", "500"}}, {{"A", "1401001", "022", "500", "0"}});
  s.cn = cn;
  // Ordinary: the 10% row of the first sale and the Swiss sale stay out.
  ASSERT_EQ(s.EstraiDatiSpesometroDaPrimaNota(0, 2024, "SM"), 6);
  EXPECT_EQ(Somma("SELECT [Imponibile] FROM [Spesometro2013Riepilogato] WHERE [NumeroRegistrazione] = '00001'"),
            Importo(1000));
  // Without filters both come in; the Swiss client is on the black list.
  ASSERT_EQ(s.EstraiDatiSpesometroDaPrimaNota(0, 2024, "SM", true), 8);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Spesometro2013Riepilogato] WHERE [FlagBlackList] = ?", {Valore(true)}), 1);

  // BL alone: A, B, a "C" page a subject (the Swiss client, the two subjects from abroad), E, Z.
  ArgomentiFileSpesometro a = Argomenti("bl.txt");
  a.indiceFormato = 0;
  a.quadroBL = 1;
  long segnalazioni = 0;
  ASSERT_EQ(s.MakeFileTelematicoSpesometro(a, segnalazioni), 0) << host->Ultimo();
  auto r = Record(LeggiFile(a.nomeFile));
  std::string tipi;
  for (const auto& x : r) tipi += x[0];
  EXPECT_EQ(tipi, "ABCCEZ");
  // The black-listed client: a company (kind 2) by name and nation, its VAT number, the flag and the sale.
  EXPECT_EQ(r[2].substr(89, 24 * 6), "BL001007LUGANO TRADING S" "BL001007+A" + B(14) + "BL001009" + Dx("071") +
                                         "BL002001CHE123" + B(10) + "BL002002" + Dx("1") + "BL003001" + Dx("500"));
  EXPECT_EQ(r[2].substr(17, 8), "00000001");
  EXPECT_EQ(r[3].substr(17, 8), "00000002");
  EXPECT_NE(r[3].find("BL002004" + Dx("1") + "BL006001" + Dx("1000") + "BL006002" + Dx("220")), std::string::npos);
  EXPECT_EQ(r[4].substr(89, 24 * 3), "TA003001" + Dx("1") + "TA003003" + Dx("1") + B(24));
}

TEST_P(Spesometro, OperationsWithoutInvoiceGoToDFOneByOneAndToSABySubject) {
  s.cn = cn;
  for (const auto& [data, importo] : {std::pair<const char*, const char*>{"10/03/2024", "1000"}, {"11/04/2024", "4000.60"}})
    cn->Esegui("INSERT INTO [Spesometro2013NoFattura] ([Anno], [IndicatoreCliFor], [CodiceCliFor], [RagioneSociale], "
               "[DataOperazione], [ImportoDocumento]) VALUES (2024, 'C', '2', 'Mario Rossi', ?, ?)",
               {Valore(data), Valore(*Importo::DaTestoPunto(importo))});
  ArgomentiFileSpesometro a = Argomenti("df.txt");
  a.quadroDF = 1;
  long segnalazioni = 0;
  ASSERT_EQ(s.MakeFileTelematicoSpesometro(a, segnalazioni), 1) << host->Ultimo();
  EXPECT_NE(LeggiFile(a.nomeFileSegnalazioni)
                .find("Quadro DF: Per il soggetto C 2 e l'operazione del 10/03/2024 è stato riscontrato un importo "
                      "inferiore a 3600 euro.\n"),
            std::string::npos);
  auto r = Record(LeggiFile(a.nomeFile));
  ASSERT_EQ(r.size(), 5u);
  EXPECT_EQ(r[2].substr(89, 24 * 4), "DF001001RSSMRA80A01H501U" "DF001002" + Dx("10032024") + "DF001003" +
                                         Dx("1000") + "DF002001RSSMRA80A01H501U");
  EXPECT_NE(r[2].find("DF002003" + Dx("4001")), std::string::npos);

  a = Argomenti("sa.txt");
  a.indiceFormato = 0;
  a.quadroSA = 1;
  ASSERT_EQ(s.MakeFileTelematicoSpesometro(a, segnalazioni), 0) << host->Ultimo();
  r = Record(LeggiFile(a.nomeFile));
  ASSERT_EQ(r.size(), 5u);
  EXPECT_EQ(r[2].substr(89, 24 * 4), "SA001001RSSMRA80A01H501U" "SA001002" + Dx("2") + "SA001003" + Dx("5001") + B(24));
  EXPECT_EQ(r[3].substr(89, 24), "TA002001" + Dx("1"));
}
