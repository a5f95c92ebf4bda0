// Ledger cards: the grid of the screen, its opening line and panel, the contra accounts, the
// printed cards with their layout and pages, and the check of the partner indicators.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "company/clsParametriAzienda.h"
#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsPrimaNota.h"
#include "ledger/clsSaldiContabili.h"
#include "ledger/clsStampaMastrini.h"
#include "ledger/clsVisualizzaMastrini.h"
#include "support/Azienda.h"
#include "PrimaNotaProva.h"

using namespace vorn;
using namespace vorn::test;
using namespace vorn::test::mastrini;

namespace {

class GrigliaProva : public IGrigliaMastrino {
 public:
  struct Cella {
    Proprieta p;
    int r1, c1, r2, c2;
    long valore;
  };
  void Clear() override {
    righe.clear();
    celle.clear();
  }
  void Cols(int n, const std::vector<std::string>& i) override {
    colonne = n;
    intestazioni = i;
  }
  int Rows() const override { return static_cast<int>(righe.size()); }
  void AddItem(const std::string& r, int pos) override {
    if (pos < 0 || pos >= Rows()) righe.push_back(r);
    else righe.insert(righe.begin() + pos, r);
  }
  void Cell(Proprieta p, int r1, int c1, int r2, int c2, long v) override { celle.push_back({p, r1, c1, r2, c2, v}); }
  void Refresh() override { ++aggiornamenti; }
  bool Interrotto() override { return fermaDopo >= 0 && aggiornamenti >= fermaDopo; }

  // The cells of a row.
  std::vector<std::string> Celle(int r) const {
    std::vector<std::string> v;
    std::string s;
    std::istringstream in(righe.at(static_cast<size_t>(r)));
    while (std::getline(in, s, '|')) v.push_back(s);
    while (static_cast<int>(v.size()) < colonne) v.emplace_back();
    return v;
  }
  std::string Cella_(int r, int c) const { return Celle(r).at(static_cast<size_t>(c)); }

  std::vector<std::string> righe;
  std::vector<Cella> celle;
  std::vector<std::string> intestazioni;
  int colonne = 0;
  int aggiornamenti = 0;
  int fermaDopo = -1;
};

class FormProva : public IFormMastrino {
 public:
  IGrigliaMastrino& vsMovimenti() override { return griglia; }
  void Specchietto(const SpecchiettoSaldi& s) override {
    specchietto = s;
    ++pannelli;
  }
  void msgbar(const std::string& t) override { messaggi.push_back(t); }
  GrigliaProva griglia;
  SpecchiettoSaldi specchietto;
  int pannelli = 0;
  std::vector<std::string> messaggi;
};

using V = clsVisualizzaMastrini;

class Mastrini : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    saldi.cn = cn;
    prog.cn = cn;
    video.cn = cn;
    stampa.cn = cn;
    InserisciConto(*cn, "1501001", "Crediti v/clienti Italia");
    InserisciConto(*cn, "1501002", "Crediti v/clienti estero");
    InserisciConto(*cn, "1801001", "Cassa contanti");
    InserisciConto(*cn, "4001001", "Ricavi vendite");
    InserisciConto(*cn, "2601001", "Iva a debito");
    InserisciCausale(*cn, "001", "Fattura di vendita");
    InserisciCausale(*cn, "010", "Incasso");
    InserisciCausale(*cn, "099", "Apertura conti", "1");
    InserisciValuta(*cn, "USD", "$", 2);
    InserisciValuta(*cn, "JPY", "¥", 0);
    InserisciCliFor(*cn, CliForProva{"C", "000123", "Rossi Mario & C. S.n.c.", "1501001", {}, {}, {}, "", ""});
    InserisciCliFor(*cn, CliForProva{"C", "000200", "Müller GmbH", "1501002", {}, {}, {}, "", ""});
  }

  RigaPN Riga(const std::string& numero, const std::string& conto, const std::string& data, const std::string& da,
              const char* importo, const std::string& causale = "001") {
    RigaPN r;
    r.numero = numero;
    r.conto = conto;
    r.competenza = data;
    r.da = da;
    r.importo = Imp(importo);
    r.causale = causale;
    return r;
  }
  void Scrivi(const RigaPN& r) { InserisciRigaPN(*cn, r); }

  bool Mostra(const std::string& conto, const std::string& dal, const std::string& al, const std::string& ind = "",
              const std::string& cod = "", bool cassa = false) {
    return video.VisualizzaMastrini(form, saldi, prog, Valore(dal), Valore(al),
                                    Valore(conto), Valore(ind), Valore(cod), cassa);
  }

  // The foreign customers' card of the examples: an unload with a debit balance of 300, an opening
  // row, invoices in dollars and yen, receipts.
  void SchedaEstero() {
    ImpostaUltimoScarico(*cn, "31/12/2024");
    InserisciSaldoConto(*cn, "1501002", Imp("0"), Imp("500"), Imp("200"));
    RigaPN r = Riga("00001", "1501002", "02/01/2025", "D", "1000", "099");
    r.operativita = "1";
    r.descrizione = "Riapertura conti";
    Scrivi(r);
    r = Riga("00002", "1501002", "15/01/2025", "D", "2440", "001");
    r.ind = "C", r.cod = "000200";
    r.dataDocumento = "15/01/2025", r.numeroDocumento = 12, r.serie = "E";
    r.valuta = "USD", r.importoValuta = Imp("2634.73"), r.cambio = 1.07981;
    Scrivi(r);
    r = Riga("00003", "1501002", "20/02/2025", "A", "1000", "010");
    r.ind = "C", r.cod = "000200";
    r.descrizione = "Bonifico Müller";
    r.valuta = "USD", r.importoValuta = Imp("1080"), r.cambio = 1.08;
    Scrivi(r);
    r = Riga("00004", "1501002", "10/03/2025", "D", "125000.5", "001");
    r.ind = "C", r.cod = "000200";
    r.dataDocumento = "10/03/2025", r.numeroDocumento = 45, r.protocollo = 7;
    r.valuta = "JPY", r.importoValuta = Imp("19500078"), r.cambio = 156;
    Scrivi(r);
    r = Riga("00005", "1501002", "31/03/2025", "A", "126440.5", "010");
    r.ind = "C", r.cod = "000200";
    Scrivi(r);
  }

  ArgomentiStampaMastrini Argomenti(const std::string& file) {
    ArgomentiStampaMastrini a;
    a.RagioneSocialeAzienda = "Ditta Prova S.r.l.";
    a.nomeFile = dir->Percorso() + "/" + file;
    a.avar_DaData = Valore("01/01/2025");
    a.avar_AData = Valore("31/12/2025");
    a.DataStampa = *Data::Crea(2026, 1, 15);
    return a;
  }
  static std::vector<std::string> Righe(const std::string& testo) {
    std::vector<std::string> v;
    std::istringstream in(testo);
    std::string r;
    while (std::getline(in, r)) v.push_back(r);
    return v;
  }

  clsSaldiContabili saldi;
  clsProgAzienda prog;
  clsVisualizzaMastrini video;
  clsStampaMastrini stampa;
  FormProva form;
};

// ---------------------------------------------------------------- the grid and its opening line

TEST_P(Mastrini, StartAfterTheUnloadOpensWithItsProgressives) {
  ImpostaUltimoScarico(*cn, "31/12/2024");
  InserisciSaldoConto(*cn, "1501001", Imp("1000"), Imp("300"), Imp("100"));
  Scrivi(Riga("00001", "1501001", "10/01/2025", "D", "50"));
  Scrivi(Riga("00002", "1501001", "20/02/2025", "A", "30", "010"));
  Scrivi(Riga("00003", "1501001", "05/03/2025", "D", "20"));
  ASSERT_TRUE(Mostra("1501001", "01/01/2025", "31/12/2025"));
  const auto& g = form.griglia;
  ASSERT_EQ(g.Rows(), 4);
  EXPECT_EQ(g.Cella_(0, V::colCausale), "Saldo ultimo scarico ");
  EXPECT_EQ(g.Cella_(0, V::colDare), "1.200,00");
  EXPECT_EQ(g.Cella_(0, V::colAvere), "");
  EXPECT_EQ(g.Cella_(0, V::colSaldo), "1.200,00 D");
  // The opening line is coloured as a summary, and it alone.
  ASSERT_EQ(g.celle.size(), 1u);
  EXPECT_EQ(g.celle[0].p, IGrigliaMastrino::ColoreSfondo);
  EXPECT_EQ(g.celle[0].r1, 0);
  EXPECT_EQ(g.celle[0].c2, V::NumeroColonne - 1);
  EXPECT_EQ(g.Cella_(1, V::colDataCompetenza), "10/01/25");
  EXPECT_EQ(g.Cella_(1, V::colSaldo), "1.250,00 D");
  EXPECT_EQ(g.Cella_(2, V::colAvere), "30,00");
  EXPECT_EQ(g.Cella_(2, V::colCausale), "Incasso");
  EXPECT_EQ(g.Cella_(3, V::colSaldo), "1.240,00 D");

  // The panel: the rows' totals and balance, the running balance, today's and the unload's.
  EXPECT_EQ(form.pannelli, 1);
  EXPECT_EQ(form.specchietto.txtTotaleDare, "70,00");
  EXPECT_EQ(form.specchietto.txtTotaleAvere, "30,00");
  EXPECT_EQ(form.specchietto.txtSaldoSelezione, "40,00");
  EXPECT_EQ(form.specchietto.txtSaldoSelezioneDA, "D");
  EXPECT_EQ(form.specchietto.txtSaldo, "1.240,00");
  EXPECT_EQ(form.specchietto.txtSaldoDA, "D");
  EXPECT_EQ(form.specchietto.txtSaldoAttuale, "1.240,00");
  EXPECT_EQ(form.specchietto.txtSaldoUltimoScarico, "1.200,00");
}

TEST_P(Mastrini, LaterStartOpensWithTheProgressivesAndTheJournalBeforeIt) {
  ImpostaUltimoScarico(*cn, "31/12/2024");
  InserisciSaldoConto(*cn, "1501001", Imp("1000"), Imp("300"), Imp("100"));
  Scrivi(Riga("00001", "1501001", "10/01/2025", "D", "50"));
  Scrivi(Riga("00002", "1501001", "20/02/2025", "A", "30", "010"));
  ASSERT_TRUE(Mostra("1501001", "01/02/2025", "31/12/2025"));
  const auto& g = form.griglia;
  ASSERT_EQ(g.Rows(), 2);
  EXPECT_EQ(g.Cella_(0, V::colDare), "1.250,00");
  EXPECT_EQ(g.Cella_(1, V::colDataCompetenza), "20/02/25");
  EXPECT_EQ(g.Cella_(1, V::colSaldo), "1.220,00 D");
  // With no unload at all, the opening is the journal before the start alone.
  cn->Esegui("DELETE FROM [Progressivi Azienda Vorn]");
  ASSERT_TRUE(Mostra("1501001", "01/02/2025", "31/12/2025"));
  EXPECT_EQ(g.Cella_(0, V::colDare), "50,00");
}

// An entry registered after the unload with an earlier competence date stays in the journal:
// every card ends where the balance at its last day does, whatever its start.
TEST_P(Mastrini, LateEntryBeforeTheUnloadCountsOnEveryCardAsInTheBalanceAtADate) {
  ImpostaUltimoScarico(*cn, "31/12/2024");
  InserisciSaldoConto(*cn, "1501001", Imp("1000"), Imp("300"), Imp("100"));  // 1.200,00 D
  cn->Esegui("UPDATE [Anagrafica Clienti] SET [SaldoInizProgress] = 50, [SaldoDareProgress] = 5, "
             "[SaldoAvereProgress] = 1 WHERE [Codice Cliente] = '000123'");  // 54,00 D
  RigaPN tardiva = Riga("00001", "1501001", "20/12/2024", "D", "80");
  tardiva.registrazione = "15/01/2025";
  tardiva.ind = "C", tardiva.cod = "000123";
  Scrivi(tardiva);
  Scrivi(Riga("00002", "1501001", "10/01/2025", "D", "50"));
  Scrivi(Riga("00003", "1501001", "20/02/2025", "A", "30", "010"));
  // 1200 + 80 + 50 - 30, and for the client 54 + 80.
  EXPECT_EQ(saldi.GetSaldoSottocontoAData(Valore("31/12/2025"), Valore("1501001")), Imp("1300"));
  EXPECT_EQ(saldi.GetSaldoSottocontoCliForAData(Valore("31/12/2025"), Valore("1501001"), Valore("C"),
                                                Valore("000123")),
            Imp("134"));

  const auto& g = form.griglia;
  // Open start: the unload's progressives, then every row, the late one first.
  ASSERT_TRUE(Mostra("1501001", "", "31/12/2025"));
  ASSERT_EQ(g.Rows(), 4);
  EXPECT_EQ(g.Cella_(0, V::colSaldo), "1.200,00 D");
  EXPECT_EQ(g.Cella_(1, V::colDataCompetenza), "20/12/24");
  EXPECT_EQ(g.Cella_(1, V::colSaldo), "1.280,00 D");
  EXPECT_EQ(g.Cella_(3, V::colSaldo), "1.300,00 D");
  EXPECT_EQ(form.specchietto.txtSaldo, "1.300,00");
  EXPECT_EQ(form.specchietto.txtSaldoAttuale, "1.300,00");
  // The day after the unload and a later start: the late row is in the opening.
  ASSERT_TRUE(Mostra("1501001", "01/01/2025", "31/12/2025"));
  ASSERT_EQ(g.Rows(), 3);
  EXPECT_EQ(g.Cella_(0, V::colSaldo), "1.280,00 D");
  EXPECT_EQ(form.specchietto.txtSaldo, "1.300,00");
  ASSERT_TRUE(Mostra("1501001", "01/02/2025", "31/12/2025"));
  ASSERT_EQ(g.Rows(), 2);
  EXPECT_EQ(g.Cella_(0, V::colSaldo), "1.330,00 D");
  EXPECT_EQ(form.specchietto.txtSaldo, "1.300,00");
  // The client's card on the same account.
  ASSERT_TRUE(Mostra("1501001", "", "31/12/2025", "C", "000123"));
  ASSERT_EQ(g.Rows(), 2);
  EXPECT_EQ(g.Cella_(0, V::colSaldo), "54,00 D");
  EXPECT_EQ(form.specchietto.txtSaldo, "134,00");
  EXPECT_EQ(form.specchietto.txtSaldoAttuale, "134,00");

  // The full statement from the unload gives the same figure, and tells the day after it.
  Valore da("");
  Importo ip, dp, ap, iper, dper, aper;
  EXPECT_EQ(saldi.GetSaldiADataSottoconto(prog, da, Valore("31/12/2025"), Valore("1501001"), ip, dp, ap, iper, dper,
                                          aper),
            Imp("1300"));
  EXPECT_EQ(da, Valore("01/01/2025"));
  EXPECT_EQ(dper, Imp("130"));

  // The printed card, open at the start, closes on the same balance.
  auto a = Argomenti("tardiva.txt");
  a.avar_DaData = Valore("");
  ASSERT_EQ(stampa.StampaListaMastrini(a, {VoceMastrino{"1501001", "", ""}}), 1);
  std::string card = LeggiFile(a.nomeFile);
  EXPECT_NE(card.find("SALDO PROG:         1.300,00 D"), std::string::npos) << card;
}

TEST_P(Mastrini, ZeroOpeningHasNoFirstLineAndACreditOpeningStandsInTheCreditColumn) {
  Scrivi(Riga("00001", "1501001", "10/01/2025", "D", "50"));
  ASSERT_TRUE(Mostra("1501001", "01/01/2025", "31/12/2025"));
  ASSERT_EQ(form.griglia.Rows(), 1);
  EXPECT_EQ(form.griglia.Cella_(0, V::colDataCompetenza), "10/01/25");
  EXPECT_TRUE(form.griglia.celle.empty());

  ImpostaUltimoScarico(*cn, "31/12/2024");
  InserisciSaldoConto(*cn, "4001001", Imp("-200"), Imp("0"), Imp("0"));
  ASSERT_TRUE(Mostra("4001001", "01/01/2025", "31/12/2025"));
  ASSERT_EQ(form.griglia.Rows(), 1);
  EXPECT_EQ(form.griglia.Cella_(0, V::colDare), "");
  EXPECT_EQ(form.griglia.Cella_(0, V::colAvere), "200,00");
  EXPECT_EQ(form.griglia.Cella_(0, V::colSaldo), "200,00 A");
  EXPECT_EQ(form.specchietto.txtSaldoDA, "A");
}

TEST_P(Mastrini, CashBelowZeroMarksItsLinesAndNothingElse) {
  Scrivi(Riga("00001", "1801001", "01/01/2025", "D", "100", "010"));
  Scrivi(Riga("00002", "1801001", "02/01/2025", "A", "150", "010"));
  Scrivi(Riga("00003", "1801001", "03/01/2025", "A", "1", "010"));
  Scrivi(Riga("00004", "1801001", "04/01/2025", "D", "80", "010"));
  ASSERT_TRUE(Mostra("1801001", "", "", "", "", true));
  const auto& g = form.griglia;
  ASSERT_EQ(g.Rows(), 4);
  ASSERT_EQ(g.celle.size(), 2u);
  for (size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(g.celle[i].p, IGrigliaMastrino::ColoreTesto);
    EXPECT_EQ(g.celle[i].r1, static_cast<int>(i) + 1);
    EXPECT_EQ(g.celle[i].r2, static_cast<int>(i) + 1);
    EXPECT_EQ(g.celle[i].valore, V::kColoreCassaNegativa);
  }
  EXPECT_EQ(g.Cella_(2, V::colSaldo), "51,00 A");
  // The same rows, not as cash: no colour, same text.
  auto righe = g.righe;
  ASSERT_TRUE(Mostra("1801001", "", "", "", "", false));
  EXPECT_TRUE(form.griglia.celle.empty());
  EXPECT_EQ(form.griglia.righe, righe);
}

TEST_P(Mastrini, CurrencyRowsAndThePartnerOnTheGrid) {
  SchedaEstero();
  ASSERT_TRUE(Mostra("1501002", "01/01/2025", "31/12/2025", "C", "000200"));
  const auto& g = form.griglia;
  // The partner's card: its own rows only, and no progressives of the partner to open with.
  ASSERT_EQ(g.Rows(), 4);
  EXPECT_EQ(g.Cella_(0, V::colDocumento), "12/E");
  EXPECT_EQ(g.Cella_(0, V::colDataDocumento), "15/01/25");
  EXPECT_EQ(g.Cella_(0, V::colValuta), "$");
  EXPECT_EQ(g.Cella_(0, V::colImportoValuta), "2.634,73");
  EXPECT_EQ(g.Cella_(0, V::colCambio), "1,07981");
  EXPECT_EQ(g.Cella_(0, V::colCliFor), "C 000200 Müller GmbH");
  EXPECT_EQ(g.Cella_(1, V::colDescrizione), "Bonifico Müller");
  EXPECT_EQ(g.Cella_(2, V::colValuta), "¥");
  EXPECT_EQ(g.Cella_(2, V::colImportoValuta), "19.500.078");
  EXPECT_EQ(g.Cella_(2, V::colCambio), "156,00000");
  EXPECT_EQ(g.Cella_(2, V::colProtocollo), "7");
  EXPECT_EQ(g.Cella_(3, V::colValuta), "");
  EXPECT_EQ(g.Cella_(3, V::colSaldo), "0,00");
  EXPECT_EQ(form.specchietto.txtSaldoDA, "");
}

TEST_P(Mastrini, StoppedFillEndsQuietlyWithoutThePanel) {
  {
    Atomico t(*cn);
    for (int i = 1; i <= 600; ++i)
      Scrivi(Riga(Format(Valore(i), "00000"), "1501001", "10/01/2025", "D", "1"));
    t.Conferma();
  }
  form.griglia.fermaDopo = 1;
  EXPECT_FALSE(Mostra("1501001", "", ""));
  EXPECT_EQ(form.griglia.Rows(), V::kRigheAggiornamento);
  EXPECT_EQ(form.pannelli, 0);
  form.griglia.fermaDopo = -1;
  video.Interrompi = true;  // a flag left over from a previous fill does not stop the next
  EXPECT_TRUE(Mostra("1501001", "", ""));
  EXPECT_EQ(form.griglia.Rows(), 600);
}

TEST_P(Mastrini, ContraAccountsOfARowLeaveTheRowItselfOut) {
  RigaPN r = Riga("00010", "1501001", "10/01/2025", "D", "122");
  r.ind = "C", r.cod = "000123";
  Scrivi(r);
  Scrivi(Riga("00010", "4001001", "10/01/2025", "A", "100"));
  r = Riga("00010", "4001001", "10/01/2025", "A", "0");
  r.riga = "002";
  Scrivi(r);
  r = Riga("00010", "2601001", "10/01/2025", "A", "22");
  r.tipo = "I";
  Scrivi(r);
  r = Riga("00010", "2601001", "10/01/2025", "A", "0");
  r.tipo = "I", r.riga = "002";
  Scrivi(r);
  ASSERT_TRUE(Mostra("4001001", "", ""));
  ASSERT_EQ(form.griglia.Rows(), 2);

  // A VAT row: every accounting row, and the VAT rows of other lines.
  int n = video.InserisciContropartiteRegistrazione(form, 0, Valore("00010"), Valore("I"), Valore("001"), Valore("A"));
  ASSERT_EQ(n, 4);
  const auto& g = form.griglia;
  ASSERT_EQ(g.Rows(), 6);
  EXPECT_EQ(g.Cella_(1, V::colCausale), "40.01.001");
  EXPECT_EQ(g.Cella_(1, V::colAvere), "100,00");
  EXPECT_EQ(g.Cella_(1, V::colDare), "");
  EXPECT_EQ(g.Cella_(2, V::colCausale), "15.01.001");
  EXPECT_EQ(g.Cella_(2, V::colDescrizione), "Crediti v/clienti Italia");
  EXPECT_EQ(g.Cella_(2, V::colCliFor), "C 000123 Rossi Mario & C. S.n.c.");
  EXPECT_EQ(g.Cella_(2, V::colDare), "122,00");
  EXPECT_EQ(g.Cella_(3, V::colRigaVideo), "002");
  EXPECT_EQ(g.Cella_(4, V::colTipoRiga), "I");
  EXPECT_EQ(g.Cella_(4, V::colRigaVideo), "002");
  // The card's own rows come after the inserted ones.
  EXPECT_EQ(g.Cella_(5, V::colDataCompetenza), "10/01/25");

  // An accounting row: the VAT rows, and the accounting rows of other lines or sides.
  ASSERT_TRUE(Mostra("4001001", "", ""));
  n = video.InserisciContropartiteRegistrazione(form, 0, Valore("00010"), Valore(""), Valore("001"), Valore("A"));
  ASSERT_EQ(n, 4);
  EXPECT_EQ(form.griglia.Cella_(1, V::colCausale), "15.01.001");
  EXPECT_EQ(form.griglia.Cella_(2, V::colRigaVideo), "002");
  EXPECT_EQ(form.griglia.Cella_(2, V::colTipoRiga), "");
  EXPECT_EQ(form.griglia.Cella_(3, V::colTipoRiga), "I");
  EXPECT_EQ(form.griglia.Cella_(4, V::colTipoRiga), "I");
}

// ---------------------------------------------------------------- printed cards

TEST_P(Mastrini, OneCardWithCurrencyRowsMatchesItsLayout) {
  SchedaEstero();
  auto a = Argomenti("scheda.txt");
  a.avar_StampaSaldo = true;
  a.avar_StampaDescrizionePN = true;
  a.avar_RighePagina = 30;
  a.frm_FormAttiva = &form;
  ASSERT_EQ(stampa.StampaListaMastrini(a, {VoceMastrino{"1501002", "", ""}}), 1);
  std::string testo = LeggiFile(a.nomeFile);
  ConfrontaGolden("ledger/golden/mastrino_scheda.txt", testo);
  EXPECT_EQ(form.messaggi, std::vector<std::string>{"Stampa sottoconto: 1501002"});
}

TEST_P(Mastrini, ManyCardsBreakPagesAndRepeatTheCardHeading) {
  SchedaEstero();
  {
    Atomico t(*cn);
    for (int i = 1; i <= 18; ++i) {
      RigaPN r = Riga(Format(Valore(100 + i), "00000"), "1501001", Format(Valore(i), "00") + "/01/2025",
                      i % 3 == 0 ? "A" : "D", "0", i % 3 == 0 ? "010" : "001");
      r.importo = Imp("111.11") * i;
      r.ind = "C", r.cod = "000123";
      r.registrazione = Format(Valore(i + 1), "00") + "/01/2025";
      if (i % 3 != 0) r.dataDocumento = r.competenza, r.numeroDocumento = i, r.serie = i % 2 ? "A" : "";
      Scrivi(r);
    }
    Scrivi(Riga("00200", "1801001", "05/01/2025", "D", "10.5", "010"));
    Scrivi(Riga("00201", "4001001", "05/01/2025", "A", "10.5", "010"));  // outside the range
    t.Conferma();
  }
  auto a = Argomenti("pagine.txt");
  a.avar_StampaPerArchivio = true;
  a.avar_RighePagina = 24;
  ASSERT_EQ(stampa.StampaSottoconti(a, Valore("15"), Valore("18")), 3);
  std::string testo = LeggiFile(a.nomeFile);
  ConfrontaGolden("ledger/golden/mastrini_pagine.txt", testo);
}

TEST_P(Mastrini, CardsFollowOnOnePageWithoutPageBreaks) {
  Scrivi(Riga("00001", "1501001", "10/01/2025", "D", "50"));
  Scrivi(Riga("00002", "1801001", "10/01/2025", "A", "50", "010"));
  auto a = Argomenti("seguito.txt");
  a.avar_NoSaltoPagina = true;
  a.avar_RighePagina = 40;
  ASSERT_EQ(stampa.StampaTutti(a), 2);
  auto r = Righe(LeggiFile(a.nomeFile));
  ASSERT_EQ(r.size(), 40u);
  EXPECT_EQ(r[4], "Sottoconto: 15.01.001 Crediti v/clienti Italia");
  EXPECT_EQ(r[4 + 10], "Sottoconto: 18.01.001 Cassa contanti");
  int teste = 0;
  for (const auto& l : r) teste += l.rfind("===  STAMPA MASTRINI", 0) == 0;
  EXPECT_EQ(teste, 1);
}

TEST_P(Mastrini, CardWithNoRowsAndNoOpeningPrintsNothing) {
  Scrivi(Riga("00001", "1501001", "10/01/2024", "D", "50"));
  Scrivi(Riga("00002", "1501001", "10/01/2024", "A", "50"));  // a zero balance at the start
  auto a = Argomenti("vuoto.txt");
  EXPECT_FALSE(stampa.Stampa_Completa_Mastrino(a.avar_DaData, a.avar_AData, Valore("1501001"), Valore(""),
                                               Valore(""), a));
  EXPECT_FALSE(EsisteFile(clsStampaMastrini::FileScheda()));
  EXPECT_EQ(stampa.StampaListaMastrini(a, {VoceMastrino{"1501001", "", ""}, VoceMastrino{"9999999", "", ""}}), 0);
  EXPECT_TRUE(EsisteFile(a.nomeFile));
  EXPECT_EQ(LeggiFile(a.nomeFile), "");
}

TEST_P(Mastrini, TheWholeChartAndTheAccountsOnlyTheJournalKnows) {
  Scrivi(Riga("00001", "1501001", "10/01/2025", "D", "50"));
  Scrivi(Riga("00002", "7701001", "10/01/2025", "A", "50"));  // not in the chart
  auto a = Argomenti("tutti.txt");
  ASSERT_EQ(stampa.StampaTutti(a), 2);
  std::string testo = LeggiFile(a.nomeFile);
  EXPECT_NE(testo.find("Sottoconto: 77.01.001\n"), std::string::npos);
  EXPECT_LT(testo.find("Sottoconto: 15.01.001"), testo.find("Sottoconto: 77.01.001"));
}

// ---------------------------------------------------------------- clients and suppliers

class MastriniCliFor : public Mastrini {
 protected:
  void SetUp() override {
    Mastrini::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    cn->Esegui("INSERT INTO [Parametri Vorn] ([GruppoConto1Clienti], [GruppoConto1Fornitori]) VALUES ('1501', '3001')");
    parametri.cn = cn;
    InserisciCliFor(*cn, CliForProva{"C", "000300", "Zeta Srl", "1501001", {}, {}, {}, "A1", ""});
    InserisciCliFor(*cn, CliForProva{"C", "000400", "Alfa Spa", "1501001", {}, {}, {}, "A2", ""});
    InserisciCliFor(*cn, CliForProva{"C", "000500", "Beta Snc", "1501001", {}, {}, {}, "A1", "Z1"});
    int n = 0;
    for (const char* cod : {"000300", "000400", "000500"}) {
      RigaPN r = Riga(Format(Valore(++n), "00000"), "1501001", "10/01/2025", "D", "100");
      r.ind = "C", r.cod = cod;
      Scrivi(r);
    }
    // A client's indicator on a sub-account outside the client groups.
    RigaPN r = Riga("00010", "1801001", "11/01/2025", "D", "5", "010");
    r.ind = "C", r.cod = "000300";
    Scrivi(r);
  }
  std::vector<std::string> Titoli(const std::string& file) {
    std::vector<std::string> v;
    for (const auto& l : Righe(LeggiFile(file)))
      if (l.rfind("Sottoconto: ", 0) == 0) v.push_back(l);
    return v;
  }
  clsParametriAzienda parametri;
};

TEST_P(MastriniCliFor, AnswerNoLeavesTheJournalAndThePrintGoesOn) {
  auto prima = FotografiaPrimaNota(*cn);
  auto a = Argomenti("clienti.txt");
  host->Rispondi(vbNo);
  EXPECT_EQ(stampa.StampaMastriniCliFor(a, parametri, Valore("C"), Valore(""), Valore(""), false, Valore(""),
                                        Valore(""), Valore("")),
            4);
  EXPECT_EQ(FotografiaPrimaNota(*cn), prima);
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo,
            "Rilevato l'indicatore Cliente/Fornitore per il  sottoconto 1801001 non appartenente ai Gruppi/Conti "
            "Clienti/Fornitori indicati in 'Parametri Contabili'\rVuoi correggere automaticamente l'anomalia?");
  EXPECT_EQ(host->Messaggi()[0].titolo, "Verifica preliminare registrazioni contabili");
  EXPECT_EQ(host->Messaggi()[0].stile & 7, vbYesNo);
  EXPECT_EQ(host->Bip(), 1);
  auto t = Titoli(a.nomeFile);
  ASSERT_EQ(t.size(), 4u);
  EXPECT_EQ(t[1], "Sottoconto: 18.01.001 Cassa contanti   Cliente/Fornitore: C 000300 Zeta Srl");
}

TEST_P(MastriniCliFor, AnswerYesClearsThePartnerOfThatSubAccountOnly) {
  auto a = Argomenti("clienti.txt");
  host->Rispondi(vbYes);
  EXPECT_EQ(stampa.StampaMastriniCliFor(a, parametri, Valore("C"), Valore(""), Valore(""), false, Valore(""),
                                        Valore(""), Valore("")),
            3);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE [IndClienteFornitore] = 'C'"), Valore(3LL));
  EXPECT_EQ(cn->Scalare("SELECT [CodClienteFornitore] FROM [Prima Nota] WHERE [ContoPrimaNota] = '1801001'"),
            Valore(""));
}

// The yes answer goes through the journal: the partner loses what the cleared rows gave it, the
// sub-account keeps its balance, and the check of the balances finds nothing afterwards.
TEST_P(MastriniCliFor, AnswerYesTakesTheClearedRowsOffThePartnersBalance) {
  cn->Esegui("DELETE FROM [Prima Nota]");
  clsPrimaNota pn;
  pn.cn = cn;
  auto posta = [&](const std::string& numero, const std::string& riga, const std::string& da,
                   const std::string& conto, const char* importo, const std::string& causale, const std::string& cod) {
    bool cancel = false;
    ASSERT_TRUE(pn.SalvaRecord({{"DataRegistrazione", Valore("10/01/2025")},
                                {"NumeroRegistrazione", Valore(numero)},
                                {"NumRigaAVideo", Valore(riga)},
                                {"DareAvere", Valore(da)},
                                {"ContoPrimaNota", Valore(conto)},
                                {"IndClienteFornitore", Valore(cod.empty() ? "" : "C")},
                                {"CodClienteFornitore", Valore(cod)},
                                {"DataCompetenza", Valore("10/01/2025")},
                                {"CodiceCausale", Valore(causale)},
                                {"ImportoMovimento", Valore(Imp(importo))}},
                               Valore("prova"), 1, cancel));
  };
  // Cash wrongly carrying client 000300: a receipt of 5 and an opening of 100 (operativity 1).
  posta("00001", "001", "D", "1801001", "5", "010", "000300");
  posta("00001", "002", "A", "4001001", "5", "010", "");
  posta("00002", "001", "D", "1801001", "100", "099", "000300");
  posta("00002", "002", "A", "4001001", "100", "099", "");
  // The same client on its own control account: this row keeps its partner.
  posta("00003", "001", "D", "1501001", "40.25", "001", "000300");
  posta("00003", "002", "A", "4001001", "40.25", "001", "");
  ASSERT_EQ(VerificaSaldi(*cn).size(), 0u);
  auto saldo = [&](const std::string& sql, const Parametri& p) {
    Recordset rs = cn->Execute(sql, p);
    return NullToZeroCy(rs.Fields(0).Value()).TestoPunto4() + " " + NullToZeroCy(rs.Fields(1).Value()).TestoPunto4() +
           " " + NullToZeroCy(rs.Fields(2).Value()).TestoPunto4();
  };
  const std::string cliente =
      "SELECT [SaldoInizPeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo] FROM [Anagrafica Clienti] "
      "WHERE [Codice Cliente] = ?";
  const std::string cassa =
      "SELECT [SaldoInizialePeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo] FROM [Saldi Piano Dei Conti] "
      "WHERE [CodiceGruppo] = '18' AND [CodiceConto] = '01' AND [CodiceSottoconto] = '001'";
  EXPECT_EQ(saldo(cliente, {Valore("000300")}), "100.0000 45.2500 0.0000");

  host->Rispondi(vbYes);
  stampa.VerificaIndicatoreCliFor(
      "SELECT DISTINCT [ContoPrimaNota], [IndClienteFornitore] FROM [Prima Nota] WHERE [IndClienteFornitore] = 'C'",
      parametri);
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE [IndClienteFornitore] = 'C'"), Valore(1LL));
  // 100 of opening and 5 of debit leave the client; the cash account keeps both.
  EXPECT_EQ(saldo(cliente, {Valore("000300")}), "0.0000 40.2500 0.0000");
  EXPECT_EQ(saldo(cassa, {}), "100.0000 5.0000 0.0000");
  for (const auto& d : VerificaSaldi(*cn)) ADD_FAILURE() << DescriviDifferenza(d);
}

TEST_P(MastriniCliFor, FiltersAndSorts) {
  auto a = Argomenti("clienti.txt");
  host->ImpostaRisposta(vbNo);
  stampa.StampaMastriniCliFor(a, parametri, Valore("C"), Valore(""), Valore(""), true, Valore("1501001"), Valore(""),
                              Valore(""));
  EXPECT_EQ(Titoli(a.nomeFile),
            (std::vector<std::string>{
                "Sottoconto: 15.01.001 Crediti v/clienti Italia   Cliente/Fornitore: C 000400 Alfa Spa",
                "Sottoconto: 15.01.001 Crediti v/clienti Italia   Cliente/Fornitore: C 000500 Beta Snc",
                "Sottoconto: 15.01.001 Crediti v/clienti Italia   Cliente/Fornitore: C 000300 Zeta Srl"}));
  stampa.StampaMastriniCliFor(a, parametri, Valore("C"), Valore(""), Valore(""), false, Valore(""), Valore("A1"),
                              Valore(""));
  EXPECT_EQ(Titoli(a.nomeFile).size(), 3u);  // Zeta on two sub-accounts, Beta
  stampa.StampaMastriniCliFor(a, parametri, Valore("C"), Valore(""), Valore(""), false, Valore(""), Valore("A1"),
                              Valore("Z1"));
  EXPECT_EQ(Titoli(a.nomeFile),
            std::vector<std::string>{
                "Sottoconto: 15.01.001 Crediti v/clienti Italia   Cliente/Fornitore: C 000500 Beta Snc"});
  stampa.StampaMastriniCliFor(a, parametri, Valore("C"), Valore("000400"), Valore("000500"), false, Valore(""),
                              Valore(""), Valore(""));
  EXPECT_EQ(Titoli(a.nomeFile).size(), 2u);
  // Suppliers: none has rows.
  EXPECT_EQ(stampa.StampaMastriniCliFor(a, parametri, Valore("F"), Valore(""), Valore(""), false, Valore(""),
                                        Valore(""), Valore("")),
            0);
  EXPECT_EQ(LeggiFile(a.nomeFile), "");
}

TEST_P(Mastrini, DescriptionsOfSubAccountsAndPartners) {
  bool cancel = false;
  EXPECT_EQ(stampa.GetDescrizioneSottoconto(Valore("1801001"), &cancel), "Cassa contanti");
  EXPECT_FALSE(cancel);
  EXPECT_EQ(stampa.GetDescrizioneSottoconto(Valore(""), &cancel), "");
  EXPECT_FALSE(cancel);
  EXPECT_EQ(stampa.GetDescrizioneSottoconto(Valore("180100"), &cancel), "");
  EXPECT_TRUE(cancel);
  EXPECT_EQ(host->Ultimo(), "Codice inesistente.");
  EXPECT_EQ(host->Messaggi().back().titolo, "Inserire un sottoconto");
  EXPECT_EQ(stampa.GetDescrizioneSottoconto(Valore("1899999")), "");
  EXPECT_EQ(stampa.GetRagioneSocialeCliFor(Valore("C"), Valore("000200")), "Müller GmbH");
  EXPECT_EQ(stampa.GetRagioneSocialeCliFor(Valore("F"), Valore("000200")), "");
}

VORN_SU_DUE_MOTORI(Mastrini);
VORN_SU_DUE_MOTORI(MastriniCliFor);

}  // namespace
