// The account statement on both engines: a hand-made book whose lines and running balance are
// worked out here, the statement at a reference date, the command's table pinned by a golden
// file, and the statements of a small demo company against the clients' and suppliers'
// balances summed from the journal.
#include <gtest/gtest.h>

#include <vector>

#include "ComandoAzienda.h"
#include "cli/Demo.h"
#include "frame/Comuni.h"
#include "masterdata/clsValute.h"
#include "receivables/clsEstrattoContoContabile.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class EstrattoConto : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    e.cn = cn;
    valute.cn = cn;
  }

  // An instalment of client 1's documents.
  void Rata(long numero, long documento, const char* dataDoc, const char* importoDoc, const char* scadenza,
            const char* tipo, const char* importo, const char* reg, int unificata = 0) {
    cn->Esegui("INSERT INTO [Scadenziario] ([Tipo], [Codice Cliente], [Ragione Sociale], [Numero Documento], [Serie], "
               "[Data Documento], [Codice valuta], [Importo Documento], [Numero Progressivo], [Progressivo Documento], "
               "[Data Scadenza], [Tipo di Effetto], [Importo Scadenza], [Insoluto], [Flag Unificata], "
               "[numeroRegistrazione]) VALUES ('CL', '1', 'D''Angelo & C. S.n.c.', ?, '', ?, '', ?, ?, ?, ?, ?, ?, ?, "
               "?, ?)",
               {Valore(documento), Valore(dataDoc), ImportoIngresso(Valore(importoDoc)), Valore(numero),
                Valore(documento), Valore(scadenza), Valore(tipo), ImportoIngresso(Valore(importo)), Valore(false),
                Valore(unificata), *reg ? Valore(reg) : Valore::Null()});
  }
  void Pagamento(long numero, const char* riga, const char* importo, const char* data, const char* reg,
                 const char* descrizione = "") {
    cn->Esegui("INSERT INTO [Scadenziario Pagamenti] ([Numero Progressivo], [Riga], [Importo pagato], "
               "[Data pagamento], [Descrizione Pagamento], [NumeroRegistrazione], [tipo], [Codice Cliente]) VALUES "
               "(?, ?, ?, ?, ?, ?, 'CL', '1')",
               {Valore(numero), Valore(riga), ImportoIngresso(Valore(importo)), Valore(data), Valore(descrizione),
                Valore(reg)});
  }
  void Movimento(const char* reg, const char* data, const char* causale, const char* lato, const char* importo) {
    cn->Esegui("INSERT INTO [Prima Nota] ([NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere], "
               "[ContoPrimaNota], [IndClienteFornitore], [CodClienteFornitore], [DataRegistrazione], "
               "[DataCompetenza], [CodiceCausale], [ImportoMovimento]) VALUES (?, 'N', '01', ?, '0501001', 'C', '1', "
               "?, ?, ?, ?)",
               {Valore(reg), Valore(lato), Valore(data), Valore(data), Valore(causale), ImportoIngresso(Valore(importo))});
  }

  // Client 1: an invoice of 1.220,00 in two bank receipts, the first paid, the second paid in
  // part and let off 100,00; a third instalment folded into another; a credit note of 122,00;
  // in the journal, beside the invoice and the payments, a receipt of 50,00 that closed nothing.
  void Libro() {
    cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale]) VALUES ('1', "
               "'D''Angelo & C. S.n.c.')");
    Rata(1, 5, "15/01/2024", "1220", "31/01/2024", "RB", "600", "00001");
    Rata(2, 5, "15/01/2024", "1220", "28/02/2024", "RB", "620", "");
    Rata(3, 5, "15/01/2024", "1220", "31/03/2024", "RB", "999", "", 2);
    Rata(4, 6, "20/02/2024", "-122", "20/02/2024", "RD", "-122", "00002");
    Pagamento(1, "1", "600", "31/01/2024", "00010");
    Pagamento(2, "2", "100", "10/03/2024", "00012", "Abbuono");
    Pagamento(2, "1", "200", "01/03/2024", "00011");
    Movimento("00001", "15/01/2024", "FTV", "D", "1220");
    Movimento("00002", "20/02/2024", "NCV", "A", "122");
    Movimento("00010", "31/01/2024", "INC", "A", "600");
    Movimento("00020", "15/03/2024", "INC", "A", "50");
  }

  std::vector<std::vector<std::string>> Righe(Recordset& te) {
    std::vector<std::vector<std::string>> v;
    for (; !te.Eof(); te.MoveNext())
      v.push_back({TrimTesto(te("Descrizione").Value()), TrimTesto(te("TextImportoScadenza").Value()),
                   TrimTesto(te("TextImportoPagato").Value()), TrimTesto(te("TextImportoProgressivo").Value())});
    return v;
  }

  Importo SaldoContabile(const char* ind, const std::string& codice) {
    return NullToZeroCy(cn->Scalare("SELECT SUM(CASE WHEN [DareAvere] = 'D' THEN [ImportoMovimento] ELSE "
                                    "-[ImportoMovimento] END) FROM [Prima Nota] WHERE [IndClienteFornitore] = ? AND "
                                    "[CodClienteFornitore] = ?",
                                    {Valore(ind), Valore(codice)}));
  }

  clsEstrattoContoContabile e;
  clsValute valute;
};

VORN_SU_DUE_MOTORI(EstrattoConto);

using Righe_ = std::vector<std::vector<std::string>>;

}  // namespace

TEST_P(EstrattoConto, InstalmentsPaymentsAndLooseMovementsMakeTheRunningBalance) {
  Libro();
  for (int volta = 0; volta < 2; ++volta) {
    Recordset te;
    ASSERT_TRUE(e.MakeEstrattoConto(nullptr, "prova", &valute, Valore("C"), Valore("1"), Valore(), Valore(), Valore(),
                                    te));
    // 600 - 600 + 620 - 200 - 100 = 320 on the invoice; - 122 the note: 198; - 50 loose: 148.
    EXPECT_EQ(Righe(te), (Righe_{{"Fattura emessa Partita n. 1", "", "", ""},
                                 {"Ricevuta bancaria scad. il 31/01/2024", "600,00", "", "600,00"},
                                 {"Incasso cliente", "", "600,00", "0,00"},
                                 {"Ricevuta bancaria scad. il 28/02/2024", "620,00", "", "620,00"},
                                 {"Incasso cliente", "", "200,00", "420,00"},
                                 {"Abbuono", "", "100,00", "320,00"},
                                 {"Saldo partita", "320,00", "", "320,00"},
                                 {"Nota di credito emessa Partita n. 4", "", "", ""},
                                 {"Rimessa diretta scad. il 20/02/2024", "-122,00", "", "198,00"},
                                 {"Saldo partita", "-122,00", "", "198,00"},
                                 {"Movimenti contabili senza scadenze", "", "", ""},
                                 {"Incasso da cliente", "", "50,00", "148,00"},
                                 {"Saldo finale", "", "", "148,00"}}));
    EXPECT_EQ(e.SaldoFinale(), Importo(148));
    EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Elaborazione Estratto Conto Vorn] WHERE [ClientName] = ?",
                                        {Valore("prova")})),
              13);
  }
  EXPECT_EQ(NullToZeroCy(e.GetPagatoPartita(Valore("C"), Valore("1"), Valore(5), Valore(""), Valore("15/01/2024"))),
            Importo(900));
  EXPECT_EQ(e.GetPagatoNumeroProgressivoEffetto(Valore(2)), Importo(300));

  // The journal moved the credit note by 150,00: 28,00 more than its instalment, on a line of
  // its own and in the final balance (148 - 28).
  cn->Esegui("UPDATE [Prima Nota] SET [ImportoMovimento] = 150 WHERE [NumeroRegistrazione] = '00002'");
  {
    Recordset te;
    ASSERT_TRUE(e.MakeEstrattoConto(nullptr, "prova", &valute, Valore("C"), Valore("1"), Valore(), Valore(), Valore(),
                                    te));
    auto righe = Righe(te);
    ASSERT_EQ(righe.size(), 14u);
    EXPECT_EQ(righe[11], (std::vector<std::string>{"Nota di credito a cliente", "", "28,00", "170,00"}));
    EXPECT_EQ(e.SaldoFinale(), Importo(120));
    EXPECT_EQ(e.Differenze(), 1);
  }
  cn->Esegui("UPDATE [Prima Nota] SET [ImportoMovimento] = 122 WHERE [NumeroRegistrazione] = '00002'");

  // At 28/02 the later payments and the loose receipt are not made yet: 600 - 600 + 620 - 122.
  Recordset te;
  ASSERT_TRUE(e.MakeEstrattoConto(nullptr, "prova", &valute, Valore("C"), Valore("1"), Valore(), Valore("28/02/2024"),
                                  Valore("28/02/2024"), te));
  EXPECT_EQ(e.SaldoFinale(), Importo(498));
  EXPECT_EQ(Righe(te).size(), 9u);

  // Nothing for a client without documents or movements: one message, false, no row.
  EXPECT_FALSE(e.MakeEstrattoConto(nullptr, "altro", &valute, Valore("C"), Valore("2"), Valore(), Valore(), Valore(), te));
  EXPECT_EQ(host->Messaggi().back().testo, "Nessun dato da elaborare.");
  EXPECT_EQ(host->Messaggi().back().titolo, "Estratto conto");
}

TEST_P(EstrattoConto, TheCommandPrintsTheStatementAsATable) {
  Libro();
  EsitoComando r = EseguiVorn(RigaComando(dir->Percorso(), "estratto-conto", Pg(), file, pg, {"--cliente", "1"}));
  ASSERT_EQ(r.rc, 0) << r.err;
  ConfrontaGolden("cli/golden/estratto_conto.txt", r.out);
  // Its rows are not left behind.
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Elaborazione Estratto Conto Vorn]")), 0);
  r = EseguiVorn(RigaComando(dir->Percorso(), "estratto-conto", Pg(), file, pg, {"--cliente", "9"}));
  EXPECT_EQ(r.rc, 1);
  EXPECT_NE(r.err.find("Cliente inesistente: 9"), std::string::npos) << r.err;
  r = EseguiVorn(RigaComando(dir->Percorso(), "estratto-conto", Pg(), file, pg, {"--cliente", "1", "--al", "31/02/2024"}));
  EXPECT_EQ(r.rc, 2);
}

TEST_P(EstrattoConto, TheDemoStatementsEndOnTheLedgerBalances) {
  const cli::OpzioniDemo o{.seme = 11, .clienti = 5, .fornitori = 3, .registrazioni = 160, .lotto = 60};
  cli::RiempiAziendaDemo(*cn, o);
  long conScadenze = 0;
  for (const char* codice : {"1", "2", "3", "4", "5"}) {
    Recordset te;
    if (!e.MakeEstrattoConto(nullptr, "demo", &valute, Valore("C"), Valore(codice), Valore(), Valore(), Valore(), te))
      continue;
    EXPECT_EQ(e.SaldoFinale(), SaldoContabile("C", codice)) << "cliente " << codice;
    conScadenze += NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Scadenziario] WHERE [tipo] = 'CL' AND "
                                             "[Codice Cliente] = ?",
                                             {Valore(codice)})) > 0;
  }
  EXPECT_GE(conScadenze, 2);
  Recordset te;
  ASSERT_TRUE(e.MakeEstrattoConto(nullptr, "demo", &valute, Valore("F"), Valore("1"), Valore(), Valore(), Valore(), te));
  EXPECT_EQ(e.SaldoFinale(), SaldoContabile("F", "1"));
}
