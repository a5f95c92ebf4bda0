// Posting of sales documents on both engines: the journal each kind of document gives (golden
// files written by hand, the figures worked out below), refused documents rolled back alone, a
// second run that finds nothing, balances that follow the journal, two runs at once.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsCausaliContabili.h"
#include "ledger/clsPrimaNota.h"
#include "masterdata/clsClientiFornitori.h"
#include "masterdata/clsCodiciIva.h"
#include "receivables/clsElaboraFatture.h"
#include "receivables/clsSaldaconto.h"
#include "receivables/clsScadenze.h"
#include "support/Azienda.h"

namespace vorn::test {
namespace {

Importo I(const char* t) { return *Importo::DaTestoPunto(t); }

// An amount with two decimals, as the golden files write it.
std::string Euro(Importo x) {
  Importo r = x.Arrotonda(2);
  int64_t raw = r.Raw() / 100;
  std::string s = raw < 0 ? "-" : "";
  if (raw < 0) raw = -raw;
  std::string c = std::to_string(raw % 100);
  return s + std::to_string(raw / 100) + "." + (c.size() < 2 ? "0" : "") + c;
}
std::string Campo(const Valore& v) {
  std::string t = TrimTesto(v);
  return t.empty() ? "-" : t;
}

// The 210 characters of a document's VAT table: code, taxable amount, rate, 14 characters each.
std::string TabellaIva(std::vector<std::array<const char*, 3>> righe) {
  std::string s;
  for (const auto& r : righe)
    for (const char* c : r) {
      std::string f = c;
      s += f + std::string(14 - f.size(), ' ');
    }
  return s + std::string(210 - s.size(), ' ');
}

struct Documento {
  int numero;
  const char* data;
  const char* tabella;  // built by TabellaIva
  const char* totale;
  const char* tipo = "FATTURA";
  const char* causale = "";
  const char* sconto1 = "0";
  const char* scontoPag = "0";
  const char* trasporto = "0";
  const char* totaleRighe = "0";
  const char* split = "0";
  const char* acconto = "0";
  const char* ritenuta1 = "0";
  const char* abbuono = "0";
  const char* valuta = "";
  double cambio = 1;
};

class ElaboraFattureTest : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    G().DecimaliImporti = 2;
    ef.cn = cn;
    for (const char* c : {"0501001", "0501005", "7001001", "7001002", "7002001", "1401001", "1401006", "1402002",
                          "6101012", "6101013", "0702001", "6401004"})
      cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) VALUES (?, ?, ?, ?)",
                 {Valore(std::string(c).substr(0, 2)), Valore(std::string(c).substr(2, 2)),
                  Valore(std::string(c).substr(4)), Valore(std::string("Conto ") + c)});
    for (auto [codice, aliquota] : {std::pair{"022", "22"}, {"010", "10"}, {"E15", "0"}})
      cn->Esegui("INSERT INTO [Codici Iva] ([Codice Iva], [Descrizione Iva], [Aliquota]) VALUES (?, ?, ?)",
                 {Valore(codice), Valore(std::string("Iva ") + codice), Valore(I(aliquota))});
    for (auto [codice, registro, tipo] :
         {std::tuple{"FTV", "1", "0"}, {"NCV", "1", "1"}, {"INC", "0", ""}, {"OMV", "0", ""}, {"SPL", "0", ""},
          {"RIT", "0", ""}, {"ABB", "0", ""}, {"GEN", "0", ""}})
      cn->Esegui("INSERT INTO [Causali Contabili] ([CodiceCausale], [DescrizioneCausale], [OperativitaContabile], "
                 "[TipoRegistroIva], [TipoCausale], [RegistroIVAProposto]) VALUES (?, ?, '0', ?, ?, '01')",
                 {Valore(codice), Valore(std::string("Causale ") + codice), Valore(registro), Valore(tipo)});
    cn->Esegui("INSERT INTO [Tabella Azienda] ([Ragione Sociale], [Codice Iva Art 15], [Codice Iva Spese Incasso]) "
               "VALUES ('Alfa Srl', 'E15', '')");
    cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten]) VALUES "
               "('C1', 'Rossi Mario Srl', '0501005')");
    cn->Esegui("INSERT INTO [Valute] ([Codice valuta], [Descrizione valuta], [Numero decimali valuta]) VALUES "
               "('USD', 'Dollaro', 2)");
  }

  ArgomentiElaboraFatture Argomenti(const char* dal, const char* al) {
    ArgomentiElaboraFatture a;
    a.avar_DaData = Valore(dal);
    a.avar_AData = Valore(al);
    a.avar_DataContabilizzazione = Valore(al);
    a.bool_ContabilizzaDataFattura = true;
    a.avar_CausaleFatture = "FTV";
    a.avar_CausaleNoteCredito = "NCV";
    a.avar_CausaleIncassi = "INC";
    a.avar_CausaleOmaggi = "OMV";
    a.avar_CausaleSplitPayment = "SPL";
    a.avar_CausaleRitenuteSubite = "RIT";
    a.avar_CausaleAbbuoni = "ABB";
    a.avar_ClientiStandard = "0501001";
    a.avar_RicaviStandard = "7001001";
    a.avar_RicaviAccessori = "7002001";
    a.avar_IvaVendite = "1401001";
    a.avar_SottocontoCassa = "0702001";
    a.avar_SottocontoImponibileOmaggi = "6101012";
    a.avar_SottocontoIvaOmaggi = "6101013";
    a.avar_SottIVASplitPaymentVend = "1401006";
    a.avar_SottocontoRitenuteSubite = "1402002";
    a.avar_SottocontoAbbuoni = "6401004";
    a.avar_TipoContabRicAcc = "0";
    a.clientID = "prova";
    return a;
  }

  void Fattura(const Documento& d, Connessione* c = nullptr) {
    Connessione& k = c ? *c : *cn;
    k.Esegui("INSERT INTO [Fatture] ([Numero], [Serie], [Data], [Elaborata], [Stampata], [Tipo fattura], [Tipo cli/for], "
             "[Codice Cliente], [Codice valuta], [Cambio], [Tipo documento], [Ragione Sociale], [Totale Documento], "
             "[Sconto (cliente)%], [Sconto2 (cliente)%], [Sconto Pagamento %], [Causale Contabile], "
             "[DataCompetenzaIVA], [Bolli], [Spese di incasso], [Spese di trasporto], [Spese accessorie], "
             "[Spese varie], [PA Totale Split Payment], [TabellaIva], [Totale Righe], [Acconto], [Ritenuta1], "
             "[Ritenuta2], [Abbuono]) VALUES (?, '', ?, ?, '1', 0, 'C', 'C1', ?, ?, ?, 'Rossi Mario Srl', ?, ?, 0, "
             "?, ?, ?, 0, 0, ?, 0, 0, ?, ?, ?, ?, ?, 0, ?)",
             {Valore(d.numero), Valore(d.data), Valore(false), Valore(d.valuta), Valore(d.cambio), Valore(d.tipo),
              Valore(I(d.totale)), Valore(Val(d.sconto1)), Valore(Val(d.scontoPag)), Valore(d.causale), Valore(d.data),
              Valore(I(d.trasporto)), Valore(I(d.split)), Valore(d.tabella), Valore(I(d.totaleRighe)),
              Valore(I(d.acconto)), Valore(I(d.ritenuta1)), Valore(I(d.abbuono))});
  }
  void Riga(int numero, const char* conto, const char* codiceIva, const char* importo, Connessione* c = nullptr) {
    (c ? *c : *cn)
        .Esegui("INSERT INTO [Movimenti Magazzino] ([Numero], [Serie], [Tipo documento], [Contropartita], "
                "[Codice Iva], [Importo], [Scorporo iva]) VALUES (?, '', 'F', ?, ?, ?, ?)",
                {Valore(numero), Valore(conto), Valore(codiceIva), Valore(I(importo)), Valore(false)});
  }
  // A settled row of the due-date book, as the due-date step writes it for the document.
  void Saldata(int numero, const char* data, int progressivo, const char* tipo, const char* importo, const char* nota,
               Connessione* c = nullptr) {
    (c ? *c : *cn)
        .Esegui("INSERT INTO [Scadenziario] ([Tipo], [Codice Cliente], [Numero Documento], [Serie], [Data Documento], "
                "[Numero Progressivo], [Data Scadenza], [Tipo di Effetto], [Importo Scadenza], [Importo Pagato], "
                "[Note]) VALUES ('CL', 'C1', ?, '', ?, ?, ?, ?, ?, ?, ?)",
                {Valore(numero), Valore(data), Valore(progressivo), Valore(data), Valore(tipo), Valore(I(importo)),
                 Valore(I(importo)), Valore(nota)});
  }

  // The rows of the journal of one document: entry, row kind, line, side, account, amount,
  // VAT code, taxable amount, causal, instalment.
  std::string Giornale(int numeroDocumento) {
    Recordset rs = cn->Execute(
        "SELECT [NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere], [ContoPrimaNota], "
        "[ImportoMovimento], [CodiceIva], [Imponibile], [CodiceCausale], [KeyScadenze] FROM [Prima Nota] "
        "WHERE [NumeroDocumento] = ? ORDER BY [NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo]",
        {Valore(numeroDocumento)});
    std::string s;
    for (; !rs.Eof(); rs.MoveNext()) {
      s += Campo(rs(0).Value()) + " " + Campo(rs(1).Value()) + " " + Campo(rs(2).Value()) + " " +
           Campo(rs(3).Value()) + " " + Campo(rs(4).Value()) + " " + Euro(NullToZeroCy(rs(5).Value())) + " " +
           Campo(rs(6).Value()) + " " + Euro(NullToZeroCy(rs(7).Value())) + " " + Campo(rs(8).Value()) + " " +
           (NullToZeroLng(rs(9).Value()) ? std::to_string(NullToZeroLng(rs(9).Value())) : std::string("-")) + "\n";
    }
    return s;
  }
  // Every entry balances: its debits equal its credits.
  void OgniRegistrazioneQuadra() {
    Recordset rs = cn->Execute(
        "SELECT [NumeroRegistrazione], SUM(CASE WHEN [DareAvere] = 'D' THEN [ImportoMovimento] ELSE 0 END), "
        "SUM(CASE WHEN [DareAvere] = 'A' THEN [ImportoMovimento] ELSE 0 END) FROM [Prima Nota] "
        "GROUP BY [NumeroRegistrazione] ORDER BY [NumeroRegistrazione]");
    for (; !rs.Eof(); rs.MoveNext())
      EXPECT_EQ(NullToZeroCy(rs(1).Value()), NullToZeroCy(rs(2).Value())) << "registrazione " << Campo(rs(0).Value());
  }
  long Righe(const std::string& sql) { return NullToZeroLng(cn->Scalare(sql)); }

  clsElaboraFatture ef;
};

TEST_P(ElaboraFattureTest, EachKindOfDocumentGivesItsJournal) {
  // 1. An invoice with two rates, 10% and 2% discounts, 10,00 of transport apportioned.
  //    Rows: 100,00 + 30,50 on 7001001 (22%), 50,00 on 7001002 (10%).
  //    Discounted (x 0,9 x 0,98 = x 0,882): 130,50 -> 115,101 -> 115,10; 50,00 -> 44,10.
  //    Transport by the discounted amounts (Totale Righe 159,20): 115,10 x 10 / 159,20 = 7,2299
  //    -> 7,23; 44,10 x 10 / 159,20 = 2,7701 -> 2,77 (together 10,00).
  //    VAT: (115,10 + 7,23) = 122,33 x 22% = 26,9126 -> 26,91; (44,10 + 2,77) = 46,87 x 10%
  //    = 4,687 -> 4,69. Total 115,10 + 44,10 + 10,00 + 26,91 + 4,69 = 200,80.
  //    An ordinary instalment of the document receives the registration.
  std::string t1 = TabellaIva({{"22", "130.50", "22"}, {"10", "50.00", "10"}});
  Fattura({1, "02/03/2026", t1.c_str(), "200.80", "FATTURA", "", "10", "2", "10.00", "159.20"});
  Riga(1, "7001001", "022", "100.00");
  Riga(1, "7001002", "010", "50.00");
  Riga(1, "7001001", "022", "30.50");
  Saldata(1, "02/03/2026", 101, "RB", "200.80", "");
  cn->Esegui("UPDATE [Scadenziario] SET [Importo Pagato] = 0 WHERE [Numero Progressivo] = 101");
  // 2. A credit note with its own causal: 40,00 at 22% = 8,80, total 48,80; every side swaps.
  std::string t2 = TabellaIva({{"22", "40.00", "22"}});
  Fattura({2, "03/03/2026", t2.c_str(), "48.80", "NOTA CREDITO", "NCV"});
  Riga(2, "7001001", "022", "40.00");
  // 3. Split payment: 1.000,00 at 22% = 220,00 paid by the public customer itself; the
  //    due-date step wrote its settled row "CO".
  std::string t3 = TabellaIva({{"22", "1000.00", "22"}});
  Fattura({3, "04/03/2026", t3.c_str(), "1220.00", "FATTURA", "", "0", "0", "0", "0", "220.00"});
  Riga(3, "7001001", "022", "1000.00");
  Saldata(3, "04/03/2026", 103, "CO", "220.00", "Rilevaz. Split Payment");
  // 4. Withholding: 1.000,00 + 220,00 of VAT, 200,00 withheld by the client.
  std::string t4 = TabellaIva({{"22", "1000.00", "22"}});
  Fattura({4, "05/03/2026", t4.c_str(), "1220.00", "FATTURA", "", "0", "0", "0", "0", "0", "0", "200.00"});
  Riga(4, "7001001", "022", "1000.00");
  Saldata(4, "05/03/2026", 104, "RD", "200.00", "Rilevaz. ritenuta 1");
  // 5. A gift with VAT (822) beside goods at 22: 100,00 + 50,00 -> one VAT row of code 022,
  //    taxable 150,00, VAT 22,00 + 11,00 = 33,00; total 183,00. The gift registration takes
  //    50,00 + 11,00 = 61,00 off the client.
  std::string t5 = TabellaIva({{"22", "100.00", "22"}, {"822", "50.00", "22"}});
  Fattura({5, "06/03/2026", t5.c_str(), "183.00"});
  Riga(5, "7001001", "022", "100.00");
  Riga(5, "7001001", "022", "50.00");
  Saldata(5, "06/03/2026", 105, "CO", "61.00", "Rilevaz. omaggi");
  // 6. A down payment of 100,00 in cash on 500,00 + 110,00.
  std::string t6 = TabellaIva({{"22", "500.00", "22"}});
  Fattura({6, "09/03/2026", t6.c_str(), "610.00", "FATTURA", "", "0", "0", "0", "0", "0", "100.00"});
  Riga(6, "7001001", "022", "500.00");
  Saldata(6, "09/03/2026", 106, "CO", "100.00", "Rilevaz. acconto");
  // 7. A rounding allowance: 99,18 x 22% = 21,8196 -> 21,82, total 121,00, 1,00 allowed.
  std::string t7 = TabellaIva({{"22", "99.18", "22"}});
  Fattura({7, "10/03/2026", t7.c_str(), "121.00", "FATTURA", "", "0", "0", "0", "0", "0", "0", "0", "1.00"});
  Riga(7, "7001001", "022", "99.18");
  Saldata(7, "10/03/2026", 107, "RD", "1.00", "Rilevaz. abbuono");
  // 8. In dollars at 1,25: 100,00 + 22,00 = 122,00 USD; the journal holds 80,00, 17,60 and
  //    97,60 euros, the currency amounts as they are.
  std::string t8 = TabellaIva({{"22", "100.00", "22"}});
  Fattura({8, "11/03/2026", t8.c_str(), "122.00", "FATTURA", "", "0", "0", "0", "0", "0", "0", "0", "0", "USD", 1.25});
  Riga(8, "7001001", "022", "100.00");
  // Out of the range, and a document not printed: neither is posted.
  Fattura({9, "01/04/2026", t8.c_str(), "122.00"});
  Fattura({10, "12/03/2026", t8.c_str(), "122.00"});
  cn->Esegui("UPDATE [Fatture] SET [Stampata] = ' ' WHERE [Numero] = 10");

  auto a = Argomenti("01/03/2026", "31/03/2026");
  EsitoElaboraFatture e = ef.ElaboraFatture(a);
  // Entries: 1, 2, 3+4, 5+6, 7+8, 9+10, 11+12, 13.
  EXPECT_EQ(e.Registrazioni, 13);
  EXPECT_EQ(e.Documenti, 8);
  EXPECT_EQ(e.Scartati, 0);
  EXPECT_TRUE(e.Errori.empty());
  EXPECT_EQ(host->Ultimo(), "Create 13 registrazioni di prima nota.");

  const char* kind[] = {"", "fattura", "nota_credito", "split_payment", "ritenuta", "omaggio", "acconto", "abbuono",
                        "valuta"};
  for (int n = 1; n <= 8; ++n) ConfrontaGolden("receivables/golden/" + std::string(kind[n]) + ".txt", Giornale(n));
  OgniRegistrazioneQuadra();
  for (const auto& d : VerificaSaldi(*cn)) ADD_FAILURE() << DescriviDifferenza(d);
  // The client: 200,80 + 1.220,00 x 2 + 183,00 + 610,00 + 121,00 + 97,60 in debit (3.652,40);
  // 48,80 + 220,00 + 200,00 + 61,00 + 100,00 + 1,00 in credit (630,80).
  Recordset sc = cn->Execute("SELECT SUM(CASE WHEN [DareAvere] = 'D' THEN [ImportoMovimento] ELSE 0 END), "
                             "SUM(CASE WHEN [DareAvere] = 'A' THEN [ImportoMovimento] ELSE 0 END) FROM [Prima Nota] "
                             "WHERE [CodClienteFornitore] = 'C1'");
  EXPECT_EQ(NullToZeroCy(sc(0).Value()), I("3652.40"));
  EXPECT_EQ(NullToZeroCy(sc(1).Value()), I("630.80"));
  // The currency amounts of the dollar invoice stay in dollars.
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [ImportoInValuta] FROM [Prima Nota] WHERE [NumeroDocumento] = 8 AND "
                                     "[NumRigaAVideo] = '001' AND [TipoRigaIvaNormale] = ''")),
            I("122.00"));

  // Each settled row has its payment, tied to the settling entry.
  for (auto [prog, reg, imp] : {std::tuple{103, "00004", "220.00"}, {104, "00006", "200.00"}, {105, "00008", "61.00"},
                                {106, "00010", "100.00"}, {107, "00012", "1.00"}}) {
    Recordset p = cn->Execute("SELECT [Riga], [Importo Pagato], [numeroRegistrazione], [Descrizione Pagamento] FROM "
                              "[Scadenziario Pagamenti] WHERE [Numero Progressivo] = ?",
                              {Valore(prog)});
    ASSERT_FALSE(p.Eof()) << prog;
    EXPECT_EQ(NullToZeroLng(p(0).Value()), 1);
    EXPECT_EQ(NullToZeroCy(p(1).Value()), I(imp));
    EXPECT_EQ(TrimTesto(p(2).Value()), reg);
    // and the instalment shows it paid.
    EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [Importo Pagato] FROM [Scadenziario] WHERE [Numero Progressivo] = ?",
                                       {Valore(prog)})),
              I(imp))
        << prog;
  }
  // The document's first instalment carries the main registration.
  EXPECT_EQ(TrimTesto(cn->Scalare("SELECT [numeroRegistrazione] FROM [Scadenziario] WHERE [Numero Progressivo] = 101")),
            "00001");
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Fatture] WHERE [Elaborata] = " + std::string(Pg() ? "TRUE" : "1")), 8);

  // A second run finds nothing to post and writes nothing.
  long righe = Righe("SELECT COUNT(*) FROM [Prima Nota]");
  EsitoElaboraFatture e2 = ef.ElaboraFatture(a);
  EXPECT_EQ(e2.Registrazioni, 0);
  EXPECT_EQ(host->Ultimo(), "Nessuna fattura da elaborare.");
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Prima Nota]"), righe);
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Scadenziario Pagamenti]"), 5);
}

TEST_P(ElaboraFattureTest, RefusedDocumentsRollBackAloneAndTheRunGoesOn) {
  std::string t = TabellaIva({{"22", "100.00", "22"}});
  // 1: a causal that is not a VAT causal; 2: an invoice with a credit note's causal; 3: an
  // unknown causal; 4 posts: 100,00 + 22,00.
  Fattura({1, "02/03/2026", t.c_str(), "122.00", "FATTURA", "GEN"});
  Fattura({2, "02/03/2026", t.c_str(), "122.00", "FATTURA", "NCV"});
  Fattura({3, "02/03/2026", t.c_str(), "122.00", "FATTURA", "ZZZ"});
  Fattura({4, "03/03/2026", t.c_str(), "122.00"});
  for (int n = 1; n <= 4; ++n) Riga(n, "7001001", "022", "100.00");
  auto a = Argomenti("01/03/2026", "31/03/2026");
  EsitoElaboraFatture e = ef.ElaboraFatture(a);
  EXPECT_EQ(e.Documenti, 1);
  EXPECT_EQ(e.Scartati, 3);
  EXPECT_EQ(e.Registrazioni, 1);
  std::vector<std::string> testi;
  for (const auto& m : host->Messaggi()) testi.push_back(m.testo);
  ASSERT_EQ(testi.size(), 4u);
  EXPECT_EQ(testi[0],
            "Impossibile elaborare la fattura/nota credito n. 1 la causale contabile indicata non è una causale IVA "
            "utilizzabile.");
  EXPECT_EQ(testi[1],
            "Impossibile elaborare la fattura n. 2 la causale contabile indicata non è allineata al tipo di documento.");
  EXPECT_EQ(testi[2],
            "Impossibile elaborare la fattura/nota credito n. 3 la causale contabile indicata non è codificata su "
            "VornXP.");
  EXPECT_EQ(testi[3], "Create 1 registrazioni di prima nota.");
  EXPECT_EQ(host->Messaggi()[0].titolo, "Elaborazione fatture");
  EXPECT_EQ(host->Bip(), 3);
  // Only document 4 is in the journal, as entry 1: the refused ones gave back nothing, not
  // even an entry number.
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Prima Nota] WHERE [NumeroDocumento] <> 4"), 0);
  EXPECT_EQ(Giornale(4),
            "00001 - 001 D 0501005 122.00 - 0.00 FTV -\n"
            "00001 - 002 A 7001001 100.00 - 0.00 FTV -\n"
            "00001 I 001 A 1401001 22.00 022 100.00 FTV -\n");
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Fatture] WHERE [Elaborata] = " + std::string(Pg() ? "TRUE" : "1")), 1);
  for (const auto& d : VerificaSaldi(*cn)) ADD_FAILURE() << DescriviDifferenza(d);

  // Once its causal is right, a refused document posts on the next run, and only it.
  cn->Esegui("UPDATE [Fatture] SET [Causale Contabile] = 'FTV' WHERE [Numero] = 1");
  host->Pulisci();
  EsitoElaboraFatture e2 = ef.ElaboraFatture(a);
  EXPECT_EQ(e2.Documenti, 1);
  EXPECT_EQ(e2.Scartati, 2);
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Prima Nota] WHERE [NumeroDocumento] = 1"), 3);
  EXPECT_EQ(TrimTesto(cn->Scalare("SELECT MAX([NumeroRegistrazione]) FROM [Prima Nota]")), "00002");
}

// A host that runs something once, at the first message it is shown.
class HostAlPrimoMessaggio : public HostScript {
 public:
  explicit HostAlPrimoMessaggio(std::function<void()> f) : f_(std::move(f)) {}
  int MsgBox(const std::string& testo, int stile, const std::string& titolo) override {
    if (auto f = std::exchange(f_, nullptr)) f();
    return HostScript::MsgBox(testo, stile, titolo);
  }

 private:
  std::function<void()> f_;
};

TEST_P(ElaboraFattureTest, ADocumentPostedByAnotherRunMeanwhileIsLeftAloneEvenIfThisRunWouldRefuseIt) {
  // 1 and 2 have an unknown causal, 3 posts. While the refusal of 1 is told, another run stamps
  // 2 as posted: this run finds it so and says nothing of it.
  std::string t = TabellaIva({{"22", "100.00", "22"}});
  Fattura({1, "02/03/2026", t.c_str(), "122.00", "FATTURA", "ZZZ"});
  Fattura({2, "02/03/2026", t.c_str(), "122.00", "FATTURA", "ZZZ"});
  Fattura({3, "03/03/2026", t.c_str(), "122.00"});
  for (int n = 1; n <= 3; ++n) Riga(n, "7001001", "022", "100.00");
  auto altra = AltraConnessione();
  HostAlPrimoMessaggio h([&] {
    altra->Esegui("UPDATE [Fatture] SET [Elaborata] = ? WHERE [Numero] = 2", {Valore(true)});
  });
  ImpostaHost(&h);
  auto a = Argomenti("01/03/2026", "31/03/2026");
  EsitoElaboraFatture e = ef.ElaboraFatture(a);
  ImpostaHost(host.get());
  EXPECT_EQ(e.Documenti, 1);
  EXPECT_EQ(e.Scartati, 1);
  std::vector<std::string> testi;
  for (const auto& m : h.Messaggi()) testi.push_back(m.testo);
  ASSERT_EQ(testi.size(), 2u);
  EXPECT_EQ(testi[0],
            "Impossibile elaborare la fattura/nota credito n. 1 la causale contabile indicata non è codificata su "
            "VornXP.");
  EXPECT_EQ(testi[1], "Create 1 registrazioni di prima nota.");
  // Document 3 took entry 1: nothing of the others was kept, not even a number.
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Prima Nota] WHERE [NumeroDocumento] <> 3"), 0);
  EXPECT_EQ(TrimTesto(cn->Scalare("SELECT MAX([NumeroRegistrazione]) FROM [Prima Nota]")), "00001");
}

TEST_P(ElaboraFattureTest, AnUnexpectedFailureRollsBackItsDocumentOnly) {
  // Document 1 is in a currency at 0,000001 to the euro. Its client row (100,00, that is
  // 100.000.000,00 euros) is written; its revenue of 1.000.000.000,00 would be 10^15 euros,
  // which no amount holds, and its conversion fails with a row already written. The document
  // is undone and told, the next one posts.
  std::string t1 = TabellaIva({{"22", "1000000000.00", "22"}});
  Fattura({1, "02/03/2026", t1.c_str(), "100.00", "FATTURA", "", "0", "0", "0", "0", "0", "0", "0", "0", "USD",
           0.000001});
  Riga(1, "7001001", "022", "1000000000.00");
  std::string t2 = TabellaIva({{"22", "100.00", "22"}});
  Fattura({2, "03/03/2026", t2.c_str(), "122.00"});
  Riga(2, "7001001", "022", "100.00");
  auto a = Argomenti("01/03/2026", "31/03/2026");
  EsitoElaboraFatture e = ef.ElaboraFatture(a);
  EXPECT_EQ(cn->Livello(), 0);
  EXPECT_EQ(e.Documenti, 1);
  EXPECT_EQ(e.Scartati, 1);
  ASSERT_EQ(e.Errori.size(), 1u);
  EXPECT_EQ(e.Errori[0].rfind("Impossibile elaborare la fattura n. 1: ", 0), 0u) << e.Errori[0];
  EXPECT_EQ(host->Messaggi()[0].stile, vbCritical);
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Prima Nota] WHERE [NumeroDocumento] = 1"), 0);
  EXPECT_EQ(Giornale(2),
            "00001 - 001 D 0501005 122.00 - 0.00 FTV -\n"
            "00001 - 002 A 7001001 100.00 - 0.00 FTV -\n"
            "00001 I 001 A 1401001 22.00 022 100.00 FTV -\n");
  for (const auto& d : VerificaSaldi(*cn)) ADD_FAILURE() << DescriviDifferenza(d);
}

TEST_P(ElaboraFattureTest, ADocumentWhoseCommitFailsIsToldAndOneThatClashedIsPostedAgain) {
  // The journal refuses document 2's rows. On PostgreSQL they reach the server with the
  // document's commit, whose answer comes back while document 3 is under way; on SQLite they
  // fail at once. On PostgreSQL document 4 also meets a deadlock once, in its commit: it is
  // posted again.
  if (Pg()) {
    cn->Esegui("CREATE SEQUENCE prova_stallo");
    cn->Esegui(
        "CREATE FUNCTION pn_prova() RETURNS trigger AS $$ BEGIN "
        "IF NEW.numerodocumento = 2 THEN RAISE EXCEPTION 'riga rifiutata'; END IF; "
        "IF NEW.numerodocumento = 4 AND nextval('prova_stallo') = 1 THEN "
        "RAISE EXCEPTION 'stallo' USING ERRCODE = '40P01'; END IF; RETURN NEW; END $$ LANGUAGE plpgsql");
    cn->Esegui("CREATE TRIGGER pn_prova BEFORE INSERT ON \"prima nota\" FOR EACH ROW EXECUTE FUNCTION pn_prova()");
  } else {
    cn->Esegui("CREATE TRIGGER pn_prova BEFORE INSERT ON [Prima Nota] WHEN NEW.NumeroDocumento = 2 "
               "BEGIN SELECT RAISE(ABORT, 'riga rifiutata'); END;");
  }
  std::string t = TabellaIva({{"22", "100.00", "22"}});
  for (int n = 1; n <= 4; ++n) {
    std::string data = "0" + std::to_string(n) + "/03/2026";
    Fattura({n, data.c_str(), t.c_str(), "122.00"});
    Riga(n, "7001001", "022", "100.00");
  }
  auto a = Argomenti("01/03/2026", "31/03/2026");
  EsitoElaboraFatture e = ef.ElaboraFatture(a);
  EXPECT_EQ(cn->Livello(), 0);
  EXPECT_FALSE(cn->InTransazione());
  EXPECT_EQ(e.Documenti, 3);
  EXPECT_EQ(e.Scartati, 1);
  ASSERT_EQ(e.Errori.size(), 1u);
  EXPECT_EQ(e.Errori[0].rfind("Impossibile elaborare la fattura n. 2: ", 0), 0u) << e.Errori[0];
  EXPECT_NE(e.Errori[0].find("riga rifiutata"), std::string::npos) << e.Errori[0];
  ASSERT_GE(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo, e.Errori[0]);
  EXPECT_EQ(host->Messaggi()[0].stile, vbCritical);
  // Document 2 gave its number back and stays to post; the others took 1 to 3 in turn.
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Prima Nota] WHERE [NumeroDocumento] = 2"), 0);
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Fatture] WHERE [Numero] = 2 AND [Elaborata] = " +
                  std::string(Pg() ? "TRUE" : "1")),
            0);
  EXPECT_EQ(Giornale(1).substr(0, 5), "00001");
  EXPECT_EQ(Giornale(3).substr(0, 5), "00002");
  EXPECT_EQ(Giornale(4),
            "00003 - 001 D 0501005 122.00 - 0.00 FTV -\n"
            "00003 - 002 A 7001001 100.00 - 0.00 FTV -\n"
            "00003 I 001 A 1401001 22.00 022 100.00 FTV -\n");
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Prima Nota]"), 9);
  OgniRegistrazioneQuadra();
  for (const auto& d : VerificaSaldi(*cn)) ADD_FAILURE() << DescriviDifferenza(d);
}

TEST_P(ElaboraFattureTest, AConnectionLostMidRunStopsItAndWhatItSaysAgreesWithTheBooks) {
  // The run's connection is lost while the third of four documents is under way: on PostgreSQL
  // the server ends the session (the second document's commit may still be unanswered), on
  // SQLite the connection is closed. The run stops there; every document is whole or absent,
  // and the documents it counts as posted are those the books hold.
  std::string t = TabellaIva({{"22", "100.00", "22"}});
  for (int n = 1; n <= 4; ++n) {
    std::string data = "0" + std::to_string(n) + "/03/2026";
    Fattura({n, data.c_str(), t.c_str(), "122.00"});
    Riga(n, "7001001", "022", "100.00");
  }
  auto posting = AltraConnessione();
  ef.cn = posting;
  const long long pid = Pg() ? posting->Scalare("SELECT pg_backend_pid()").Int() : 0;
  struct Taglio : IForm {
    std::function<void()> taglia;
    void msgbar(const std::string& testo) override {
      if (testo.rfind("Elaborazione fattura n. 3 ", 0) == 0) taglia();
    }
  } form;
  form.taglia = [&] {
    if (Pg()) cn->Scalare("SELECT pg_terminate_backend(?, 5000)", {Valore(pid)});
    else posting->Close();
  };
  auto a = Argomenti("01/03/2026", "31/03/2026");
  a.objFormAttiva = &form;
  EsitoElaboraFatture e = ef.ElaboraFatture(a);
  EXPECT_EQ(e.Documenti + e.Scartati, 3);
  ASSERT_GE(e.Errori.size(), 1u);
  EXPECT_EQ(e.Errori.back().rfind("Impossibile elaborare la fattura n. 3: ", 0), 0u) << e.Errori.back();
  const std::string vero = Pg() ? "TRUE" : "1";
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Fatture] WHERE [Elaborata] = " + vero), e.Documenti);
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Fatture] WHERE [Numero] IN (1, 2) AND [Elaborata] = " + vero), e.Documenti);
  for (int n = 1; n <= 4; ++n) {
    const long righe = Righe("SELECT COUNT(*) FROM [Prima Nota] WHERE [NumeroDocumento] = " + std::to_string(n));
    const long posted = Righe("SELECT COUNT(*) FROM [Fatture] WHERE [Numero] = " + std::to_string(n) +
                              " AND [Elaborata] = " + vero);
    EXPECT_EQ(righe, posted ? 3 : 0) << "documento " << n;
  }
  OgniRegistrazioneQuadra();
  for (const auto& d : VerificaSaldi(*cn)) ADD_FAILURE() << DescriviDifferenza(d);
}

TEST_P(ElaboraFattureTest, UnprintedDocumentsAreListedAndNotPosted) {
  std::string t = TabellaIva({{"22", "100.00", "22"}});
  Fattura({7, "02/03/2026", t.c_str(), "122.00"});
  Riga(7, "7001001", "022", "100.00");
  ASSERT_TRUE(ef.Aggiorna_Campo_Generato_Scadenze(Valore("Fatture"), Valore(7), Valore(""), false));
  std::string elenco = dir->Percorso() + "/nonstampate.txt";
  ASSERT_TRUE(ef.PresentiFattureNonStampate(Valore("01/03/2026"), Valore("31/03/2026"), elenco));
  EXPECT_EQ(LeggiFile(elenco),
            "Le seguenti fatture risultano ancora non stampate \n"
            "e quindi non contabilizzabili.                    \n" +
                std::string(50, '-') + "\nFattura n. 7 del 02.03.2026\n" + std::string(50, '-') + "\n");
  auto a = Argomenti("01/03/2026", "31/03/2026");
  EXPECT_EQ(ef.ElaboraFatture(a).Documenti, 0);
  EXPECT_EQ(host->Ultimo(), "Nessuna fattura da elaborare.");
  // Printed, it is no longer listed and it posts.
  ASSERT_TRUE(ef.Aggiorna_Campo_Generato_Scadenze(Valore("Fatture"), Valore(7), Valore(""), true));
  EXPECT_FALSE(ef.PresentiFattureNonStampate(Valore("01/03/2026"), Valore("31/03/2026"), elenco));
  EXPECT_EQ(ef.ElaboraFatture(a).Documenti, 1);
}

TEST_P(ElaboraFattureTest, ADocumentWithoutRevenueLinesStillPosts) {
  // No warehouse rows: a row of 0 on the standard revenue account, and the user is told. The
  // VAT row stands as the table gives it (50,00 at 10% = 5,00). The messages write the series
  // with its slash after it, as every message of the documents does.
  std::string t = TabellaIva({{"10", "50.00", "10"}});
  Fattura({5, "02/03/2026", t.c_str(), "55.00"});
  cn->Esegui("UPDATE [Fatture] SET [Serie] = 'B' WHERE [Numero] = 5");
  auto a = Argomenti("01/03/2026", "31/03/2026");
  EXPECT_EQ(ef.ElaboraFatture(a).Documenti, 1);
  ASSERT_EQ(host->Messaggi().size(), 2u);
  EXPECT_EQ(host->Messaggi()[0].testo,
            "Attenzione per il documento n. 5B/ non sono state rilevate contropartite di ricavo.");
  EXPECT_EQ(Giornale(5),
            "00001 - 001 D 0501005 55.00 - 0.00 FTV -\n"
            "00001 - 002 A 7001001 0.00 - 0.00 FTV -\n"
            "00001 I 001 A 1401001 5.00 010 50.00 FTV -\n");
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Fatture] WHERE [Elaborata] = " + std::string(Pg() ? "TRUE" : "1")), 1);
}

TEST_P(ElaboraFattureTest, AnAllowanceOnAnInstalmentClosesIt) {
  // An open instalment of 100,00 of invoice 3; an allowance of 0,40 on it: the client in
  // credit, the allowance account in debit, the instalment paid by 0,40 in one payment row.
  cn->Esegui("INSERT INTO [Scadenziario] ([Tipo], [Codice Cliente], [Numero Documento], [Serie], [Data Documento], "
             "[Numero Progressivo], [Data Scadenza], [Tipo di Effetto], [Importo Scadenza], [Importo Pagato], "
             "[Codice valuta], [Cambio]) VALUES ('CL', 'C1', 3, '', ?, 31, ?, 'RB', 100, 0, '', 1)",
             {Valore("02/03/2026"), Valore("30/04/2026")});
  clsPrimaNota pn;
  pn.cn = cn;
  clsCausaliContabili cau;
  cau.cn = cn;
  clsClientiFornitori cli;
  cli.cn = cn;
  clsSaldaconto sal;
  sal.cn = cn;
  clsScadenze sca;
  sca.cn = cn;
  EXPECT_EQ(ef.ContabilizzaAbbuono(nullptr, pn, cau, cli, sal, sca, Valore("0501001"), Valore(""), Valore(99), I("0.40"),
                                   Valore("ABB"), Valore("6401004"), "A", "D", Valore("prova"), 0),
            0);
  EXPECT_EQ(ef.ContabilizzaAbbuono(nullptr, pn, cau, cli, sal, sca, Valore("0501001"), Valore(""), Valore(31), I("0.40"),
                                   Valore("ABB"), Valore("6401004"), "A", "D", Valore("prova"), 0),
            1);
  EXPECT_EQ(Giornale(3),
            "00001 - 001 A 0501005 0.40 - 0.00 ABB 31\n"
            "00001 - 002 D 6401004 0.40 - 0.00 ABB -\n");
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [Importo Pagato] FROM [Scadenziario] WHERE [Numero Progressivo] = 31")),
            I("0.40"));
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Scadenziario Pagamenti] WHERE [Numero Progressivo] = 31"), 1);
  OgniRegistrazioneQuadra();
  for (const auto& d : VerificaSaldi(*cn)) ADD_FAILURE() << DescriviDifferenza(d);
}

TEST_P(ElaboraFattureTest, TheVatTableApportionsAndSummarises) {
  clsTabRiferimenti rif;
  rif.cn = cn;
  clsCodiciIva iva;
  iva.cn = cn;
  // Collection expenses with a code of their own (022) stay apart and land on the row of their
  // rate; stamps of 2,00 have no row of their rate (E15, 0%) and take the first free row.
  cn->Esegui("UPDATE [Tabella Azienda] SET [Codice Iva Spese Incasso] = '022'");
  TabellaIvaDocumento t = TabellaIvaDocumento::DaTesto(TabellaIva({{"22", "300.00", "22"}, {"10", "100.00", "10"}}));
  EXPECT_EQ(t[1].codice, "022");
  EXPECT_EQ(t[2].imponibile, I("100.00"));
  // 5% customer discount: 285,00 and 95,00. Transport 19,00 over Totale Righe 380,00 = 5%:
  // 14,25 and 4,75. Collection 3,00 on the 22% row: 17,25.
  // VAT: (285,00 + 17,25) x 22% = 66,495 -> 66,50; (95,00 + 4,75) x 10% = 9,975 -> 9,98.
  ASSERT_TRUE(ef.CompletaTabellaIva(rif, iva, t, 5, 0, 0, I("3.00"), I("19.00"), I("0"), I("380.00"), I("2.00"), 2));
  EXPECT_EQ(t[1].netto, I("285.00"));
  EXPECT_EQ(t[1].spese, I("17.25"));
  EXPECT_EQ(t[1].iva, I("66.50"));
  EXPECT_EQ(t[2].netto, I("95.00"));
  EXPECT_EQ(t[2].spese, I("4.75"));
  EXPECT_EQ(t[2].iva, I("9.98"));
  EXPECT_EQ(t[3].codice, "E15");
  EXPECT_EQ(t[3].spese, I("2.00"));
  // Five codes already: collection expenses of a rate no row has find no room, and say so.
  TabellaIvaDocumento pieno = TabellaIvaDocumento::DaTesto(TabellaIva(
      {{"10", "1", "10"}, {"4", "1", "4"}, {"5", "1", "5"}, {"11", "1", "0"}, {"12", "1", "0"}}));
  EXPECT_FALSE(ef.CompletaTabellaIva(rif, iva, pieno, 0, 0, 0, I("3.00"), I("0"), I("0"), I("5.00"), I("0"), 2));
  EXPECT_EQ(host->Ultimo(), "Impossibile gestire piu' di 5 codici iva.");
  // The summary merges a gift code with its base.
  ef.TabellaIvaRiepilogata = TabellaIvaDocumento{};
  ef.CompilaTabellaIvaRiepilogata("022", I("22"), I("100"), I("22"), I("0"));
  ef.CompilaTabellaIvaRiepilogata("010", I("10"), I("40"), I("4"), I("1"));
  ef.CompilaTabellaIvaRiepilogata("022", I("22"), I("50"), I("11"), I("2"));
  EXPECT_EQ(ef.TabellaIvaRiepilogata[1].netto, I("150"));
  EXPECT_EQ(ef.TabellaIvaRiepilogata[1].iva, I("33"));
  EXPECT_EQ(ef.TabellaIvaRiepilogata[1].spese, I("2"));
  EXPECT_EQ(ef.TabellaIvaRiepilogata[2].codice, "010");
  EXPECT_EQ(ef.TabellaIvaRiepilogata[3].codice, "");
}

// A host that several threads may use at once.
class HostCondiviso : public HostSilenzioso {
 public:
  int MsgBox(const std::string& testo, int stile, const std::string& titolo) override {
    std::lock_guard<std::mutex> l(m_);
    return HostSilenzioso::MsgBox(testo, stile, titolo);
  }

 private:
  std::mutex m_;
};

TEST_P(ElaboraFattureTest, TwoRunsAtOnceGetDistinctNumbersAndPostEverything) {
  // 40 documents, the first half in April's first fortnight, the second in the second; each
  // with a down payment, so that a document makes two entries. Two connections post the two
  // halves at once.
  constexpr int kDocumenti = 40;
  std::string t = TabellaIva({{"22", "100.00", "22"}});
  for (int n = 1; n <= kDocumenti; ++n) {
    std::string data = (n <= kDocumenti / 2 ? "02" : "20") + std::string("/04/2026");
    Fattura({n, data.c_str(), t.c_str(), "122.00", "FATTURA", "", "0", "0", "0", "0", "0", "22.00"});
    Riga(n, "7001001", "022", "100.00");
    Saldata(n, data.c_str(), 1000 + n, "CO", "22.00", "Rilevaz. acconto");
  }
  HostCondiviso condiviso;
  ImpostaHost(&condiviso);
  std::vector<EsitoElaboraFatture> esiti(2);
  std::vector<std::string> errori(2);
  std::vector<std::thread> th;
  for (int k = 0; k < 2; ++k)
    th.emplace_back([&, k] {
      try {
        auto c = AltraConnessione();
        clsElaboraFatture e;
        e.cn = c;
        auto a = k == 0 ? Argomenti("01/04/2026", "15/04/2026") : Argomenti("16/04/2026", "30/04/2026");
        esiti[static_cast<size_t>(k)] = e.ElaboraFatture(a);
      } catch (const std::exception& x) {
        errori[static_cast<size_t>(k)] = x.what();
      }
    });
  for (auto& x : th) x.join();
  ImpostaHost(host.get());
  for (int k = 0; k < 2; ++k) {
    EXPECT_EQ(errori[static_cast<size_t>(k)], "");
    EXPECT_EQ(esiti[static_cast<size_t>(k)].Documenti, kDocumenti / 2);
    EXPECT_EQ(esiti[static_cast<size_t>(k)].Scartati, 0);
    for (const auto& m : esiti[static_cast<size_t>(k)].Errori) ADD_FAILURE() << m;
  }
  // 80 entries numbered 1 to 80, each of one document only: 3 rows for the invoice, 2 for the
  // down payment.
  EXPECT_EQ(Righe("SELECT COUNT(DISTINCT [NumeroRegistrazione]) FROM [Prima Nota]"), 2 * kDocumenti);
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM (SELECT [NumeroRegistrazione] FROM [Prima Nota] GROUP BY "
                  "[NumeroRegistrazione] HAVING COUNT(DISTINCT [NumeroDocumento]) > 1) x"),
            0);
  EXPECT_EQ(TrimTesto(cn->Scalare("SELECT MAX([NumeroRegistrazione]) FROM [Prima Nota]")), "00080");
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Prima Nota]"), 5 * kDocumenti);
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Scadenziario Pagamenti]"), kDocumenti);
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Fatture] WHERE [Elaborata] = " + std::string(Pg() ? "TRUE" : "1")),
            kDocumenti);
  OgniRegistrazioneQuadra();
  for (const auto& d : VerificaSaldi(*cn)) ADD_FAILURE() << DescriviDifferenza(d);

  // Two runs over the same range at once: each document is posted by one of them only.
  for (int n = kDocumenti + 1; n <= kDocumenti + 20; ++n) {
    Fattura({n, "05/05/2026", t.c_str(), "122.00"});
    Riga(n, "7001001", "022", "100.00");
  }
  ImpostaHost(&condiviso);
  th.clear();
  for (int k = 0; k < 2; ++k)
    th.emplace_back([&, k] {
      try {
        auto c = AltraConnessione();
        clsElaboraFatture e;
        e.cn = c;
        auto a = Argomenti("01/05/2026", "31/05/2026");
        esiti[static_cast<size_t>(k)] = e.ElaboraFatture(a);
      } catch (const std::exception& x) {
        errori[static_cast<size_t>(k)] = x.what();
      }
    });
  for (auto& x : th) x.join();
  ImpostaHost(host.get());
  EXPECT_EQ(errori[0] + errori[1], "");
  EXPECT_EQ(esiti[0].Documenti + esiti[1].Documenti, 20);
  EXPECT_EQ(esiti[0].Scartati + esiti[1].Scartati, 0);
  EXPECT_EQ(Righe("SELECT COUNT(*) FROM [Prima Nota]"), 5 * kDocumenti + 3 * 20);
  EXPECT_EQ(Righe("SELECT COUNT(DISTINCT [NumeroRegistrazione]) FROM [Prima Nota]"), 2 * kDocumenti + 20);
  for (const auto& d : VerificaSaldi(*cn)) ADD_FAILURE() << DescriviDifferenza(d);
}

VORN_SU_DUE_MOTORI(ElaboraFattureTest);

}  // namespace
}  // namespace vorn::test
