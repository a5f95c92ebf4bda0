// The unload of the journal on a small journal worked out by hand: which entries leave, the
// progressives they leave behind, the history, the balances that stay the same; a run that fails
// at any point leaves nothing, a second run over the same months does nothing. And the journal,
// chart and partner prints of that journal, pinned by golden files.
#include <gtest/gtest.h>

#include <stdexcept>

#include "company/clsProgAzienda.h"
#include "frame/FileVorn.h"
#include "frame/Globali.h"
#include "ledger/clsCompPrimaNota.h"
#include "ledger/clsSaldiContabili.h"
#include "ledger/clsStampaClientiForn.h"
#include "ledger/clsStampaPianoConti.h"
#include "ledger/clsStampaPrimaNota.h"
#include "ledger/clsStoricoPrimaNota.h"
#include "support/Azienda.h"
#include "PrimaNotaProva.h"

using namespace vorn;
using namespace vorn::test;
using namespace vorn::test::mastrini;

namespace {

class Scarico : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    G().DecimaliImporti = 2;
    for (auto [c, d] : {std::pair{"05", "Crediti"}, {"08", "Ricavi"}, {"14", "Debiti"}, {"15", "Patrimonio"},
                        {"18", "Disponibilità"}})
      cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) VALUES (?, '', '', ?)",
                 {Valore(c), Valore(d)});
    cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) "
               "VALUES ('05', '01', '', 'Clienti')");
    for (auto [c, d] : {std::pair{"0501001", "Clienti Italia"}, {"0502001", "Crediti diversi"},
                        {"0801001", "Ricavi vendite"}, {"1401001", "Iva vendite"}, {"1501001", "Capitale"},
                        {"1801001", "Banca"}})
      InserisciConto(*cn, c, d);
    InserisciCausale(*cn, "FV", "Fattura vendita");
    InserisciCausale(*cn, "INC", "Incasso");
    InserisciCausale(*cn, "AP", "Apertura conti", "1");
    for (auto [cod, nome] : {std::pair{"1", "Rossi Srl"}, {"2", "Bianchi Spa"}}) {
      CliForProva c;
      c.cod = cod;
      c.nome = nome;
      c.sottoconto = "0501001";
      InserisciCliFor(*cn, c);
    }
    // 00001 a sale, 00002 the opening, 00004 a receipt: they leave. 00003 has its competence in
    // April, 00005 is registered in April, 00006 moves client 1 on a sub-account not its own: they
    // stay. 00007 does not balance.
    auto riga = [&](const char* num, const char* rig, const char* da, const char* conto, const char* cod,
                    const char* reg, const char* comp, const char* causale, const char* imp, const char* op = "0") {
      RigaPN r;
      r.numero = num;
      r.riga = rig;
      r.da = da;
      r.conto = conto;
      if (*cod) r.ind = "C", r.cod = cod;
      r.registrazione = reg;
      r.competenza = comp;
      r.causale = causale;
      r.importo = Imp(imp);
      r.operativita = std::string(op);
      r.descrizione = std::string(causale) + " " + num;
      InserisciRigaPN(*cn, r);
    };
    riga("00001", "001", "D", "0501001", "1", "10/01/2025", "10/01/2025", "FV", "122");
    riga("00001", "002", "A", "0801001", "", "10/01/2025", "10/01/2025", "FV", "100");
    riga("00001", "003", "A", "1401001", "", "10/01/2025", "10/01/2025", "FV", "22");
    riga("00002", "001", "D", "0501001", "1", "01/01/2025", "01/01/2025", "AP", "50", "1");
    riga("00002", "002", "A", "1501001", "", "01/01/2025", "01/01/2025", "AP", "50", "1");
    riga("00003", "001", "D", "0501001", "2", "28/02/2025", "05/04/2025", "FV", "61");
    riga("00003", "002", "A", "0801001", "", "28/02/2025", "05/04/2025", "FV", "61");
    riga("00004", "001", "D", "1801001", "", "15/03/2025", "15/03/2025", "INC", "30");
    riga("00004", "002", "A", "0501001", "1", "15/03/2025", "15/03/2025", "INC", "30");
    riga("00005", "001", "D", "0501001", "1", "02/04/2025", "02/04/2025", "FV", "10");
    riga("00005", "002", "A", "0801001", "", "02/04/2025", "02/04/2025", "FV", "10");
    riga("00006", "001", "D", "0502001", "1", "20/03/2025", "20/03/2025", "FV", "5");
    riga("00006", "002", "A", "0801001", "", "20/03/2025", "20/03/2025", "FV", "5");
  }

  void NonQuadrata() {
    RigaPN r;
    r.numero = "00007", r.conto = "1801001", r.registrazione = r.competenza = "25/01/2025", r.causale = "INC";
    r.importo = Imp("10");
    InserisciRigaPN(*cn, r);
    r.riga = "002", r.da = "A", r.conto = "0801001", r.importo = Imp("9");
    InserisciRigaPN(*cn, r);
    // 00008 balances only with its VAT row counted: 12,20 = 10,00 + 2,20.
    r.numero = "00008", r.riga = "001", r.da = "D", r.conto = "1801001", r.importo = Imp("12.20"), r.causale = "FV";
    r.registrazione = r.competenza = "26/01/2025";
    InserisciRigaPN(*cn, r);
    r.da = "A", r.conto = "0801001", r.importo = Imp("10");
    InserisciRigaPN(*cn, r);
    r.tipo = "I", r.conto = "1401001", r.importo = Imp("2.20");
    InserisciRigaPN(*cn, r);
    cn->Esegui("UPDATE [Prima Nota] SET [Imponibile] = 10, [CodiceIva] = '022', [NumRegistroIva] = '01', "
               "[TipoRegistroIva] = '1' WHERE [NumeroRegistrazione] = '00008' AND [TipoRigaIvaNormale] = 'I'");
  }

  bool Scarica(int mese, bool storico = true, IForm* form = nullptr, EsitoCompattamento* e = nullptr) {
    clsCompPrimaNota c;
    c.cn = cn;
    ArgomentiCompattamento a;
    a.frm_FormAttiva = form;
    a.avar_Mese = mese;
    a.avar_Anno = 2025;
    a.abool_ForzaCompattamento = true;  // nothing here is printed on the books
    a.abool_GestioneStorico = storico;
    return c.CompattamentoPrimaNota(a, e);
  }

  // Everything an unload may touch.
  std::string Stato() {
    std::string s;
    for (const char* sql :
         {"SELECT * FROM [Prima Nota] ORDER BY [NumeroRegistrazione], [NumRigaAVideo], [DareAvere]",
          "SELECT [CodiceGruppo], [CodiceConto], [CodiceSottoconto], [SaldoInizialePeriodo], [SaldoDarePeriodo], "
          "[SaldoAverePeriodo], [SaldoInizialeProgr], [DareProgressivo], [AvereProgressivo] FROM [Saldi Piano Dei Conti] "
          "ORDER BY 1, 2, 3",
          "SELECT [Codice Cliente], [SaldoInizPeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo], [SaldoInizProgress], "
          "[SaldoDareProgress], [SaldoAvereProgress] FROM [Anagrafica Clienti] ORDER BY 1",
          "SELECT [IDProgressivo], [NumeroRegistrazione], [ImportoMovimento] FROM [Storico Contabile] ORDER BY 1",
          "SELECT [UltimoScaricoPN], [ProgressivoXMovimenti] FROM [Progressivi Azienda Vorn]"}) {
      for (auto rs = cn->Execute(sql); !rs.Eof(); rs.MoveNext()) {
        for (int i = 0; i < rs.FieldCount(); ++i) {
          const Valore& v = rs(i).Value();
          s += v.IsNumber() || v.tipo() == Valore::Tipo::Importo ? NullToZeroCy(v).TestoPunto4() : v.Testo();
          s += "|";
        }
        s += "\n";
      }
      s += "--\n";
    }
    return s;
  }

  Importo SaldoAl(const char* data, const char* conto, const char* cod = "") {
    clsSaldiContabili s;
    s.cn = cn;
    return *cod ? s.GetSaldoSottocontoCliForAData(Valore(data), Valore(conto), Valore("C"), Valore(cod))
                : s.GetSaldoSottocontoAData(Valore(data), Valore(conto));
  }
};

// The company's counters row, with no history number handed out yet.
void Progressivi(Connessione& cn) {
  cn.Esegui("INSERT INTO [Progressivi Azienda Vorn] ([ProgressivoXMovimenti]) VALUES (0)");
}

TEST_P(Scarico, EntriesOfClosedMonthsLeaveForTheProgressivesAndTheHistory) {
  Progressivi(*cn);
  const char* conti[] = {"0501001", "0502001", "0801001", "1401001", "1501001", "1801001"};
  const char* date[] = {"31/03/2025", "01/04/2025", "04/04/2025", "05/04/2025", "30/04/2025", "31/12/2025"};
  std::map<std::string, Importo> prima;
  for (auto d : date) {
    for (auto c : conti) prima[std::string(d) + c] = SaldoAl(d, c);
    prima[std::string(d) + "C1"] = SaldoAl(d, "0501001", "1");
    prima[std::string(d) + "C2"] = SaldoAl(d, "0501001", "2");
  }
  // By hand: 0501001 at the end of the year = 50 + 122 - 30 + 61 + 10; client 1 = 50 + 122 - 30 + 10.
  EXPECT_EQ(prima["31/12/20250501001"], Imp("213"));
  EXPECT_EQ(prima["31/12/2025C1"], Imp("152"));

  EsitoCompattamento e;
  ASSERT_TRUE(Scarica(3, true, nullptr, &e));
  EXPECT_EQ(e.registrazioni, 3);
  EXPECT_EQ(e.righe, 7);
  EXPECT_EQ(e.registrazioniRimaste, 2);  // 00003 and 00006 (00005 is registered in April)
  EXPECT_EQ(e.righeStorico, 7);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota]").ComeIntero(), 6);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE [NumeroRegistrazione] IN ('00001', '00002', '00004')")
                .ComeIntero(),
            0);

  // The progressives: opening, debit, credit of what left.
  clsSaldiContabili s;
  s.cn = cn;
  struct Atteso {
    const char* conto;
    const char *iniziale, *dare, *avere;
  };
  for (const Atteso& a : {Atteso{"0501001", "50", "122", "30"}, {"0801001", "0", "0", "100"}, {"1401001", "0", "0", "22"},
                          {"1501001", "-50", "0", "0"}, {"1801001", "0", "30", "0"}}) {
    Importo i, d, av;
    s.GetProgressiviUltimoScaricoSottoconto(Valore(a.conto), i, d, av);
    EXPECT_EQ(i, Imp(a.iniziale)) << a.conto;
    EXPECT_EQ(d, Imp(a.dare)) << a.conto;
    EXPECT_EQ(av, Imp(a.avere)) << a.conto;
  }
  Importo i, d, av;
  s.GetProgressiviUltimoScaricoCliFor(Valore("0501001"), Valore("C"), Valore("1"), i, d, av);
  EXPECT_EQ(i, Imp("50"));
  EXPECT_EQ(d, Imp("122"));
  EXPECT_EQ(av, Imp("30"));
  s.GetProgressiviUltimoScaricoCliFor(Valore("0501001"), Valore("C"), Valore("2"), i, d, av);
  EXPECT_TRUE(i.Zero() && d.Zero() && av.Zero());

  // The history: the rows in entry order, numbered from 1, the last number kept.
  auto rs = cn->Execute("SELECT [IDProgressivo], [NumeroRegistrazione], [SottocontoMovimento], [DareAvere], "
                        "[ImportoMovimento], [CausaleContabile], [CodClientefornitore] FROM [Storico Contabile] ORDER BY 1");
  std::vector<std::string> storico;
  for (; !rs.Eof(); rs.MoveNext())
    storico.push_back(Trim(rs(0).Value().Testo() + " " + Trim(rs(1).Value().Testo()) + " " + Trim(rs(2).Value().Testo()) +
                      " " + Trim(rs(3).Value().Testo()) + " " + NullToZeroCy(rs(4).Value()).TestoPunto4() + " " +
                      Trim(rs(5).Value().Testo()) + " " + Trim(rs(6).Value().Testo())));
  EXPECT_EQ(storico, (std::vector<std::string>{
                         "1 00001 0501001 D 122.0000 FV 1", "2 00001 0801001 A 100.0000 FV",
                         "3 00001 1401001 A 22.0000 FV", "4 00002 0501001 D 50.0000 AP 1",
                         "5 00002 1501001 A 50.0000 AP", "6 00004 1801001 D 30.0000 INC",
                         "7 00004 0501001 A 30.0000 INC 1"}));
  clsStoricoPrimaNota st;
  st.cn = cn;
  EXPECT_EQ(st.GetMaxIDProgressivoStoricoContabile(), 7);
  RigaStorico rst;
  ASSERT_TRUE(st.LocalizzaRecord(Valore(7), rst));
  EXPECT_EQ(TrimTesto(rst.NumeroRegistrazione), "00004");
  EXPECT_EQ(rst.DataRegistrazione.Testo().substr(0, 10), "15/03/2025");
  Valore chiave(7);
  EXPECT_FALSE(st.RecordSuccessivo(chiave));
  EXPECT_TRUE(st.RecordPrecedente(chiave));
  EXPECT_EQ(NullToZeroLng(chiave), 6);
  EXPECT_TRUE(st.ExistRegistrazione(Valore("00002")));
  EXPECT_FALSE(st.ExistRegistrazione(Valore("00003")));
  clsProgAzienda prog;
  prog.cn = cn;
  EXPECT_EQ(prog.GetNumeroUltimaRegStorico(), 7);
  EXPECT_EQ(prog.GetDataUltimoScaricoPrimaNota().Testo(), "31/03/2025");

  // Every balance from the end of the unload on is the same, for the accounts and the partners.
  for (auto dt : date) {
    for (auto c : conti) EXPECT_EQ(SaldoAl(dt, c), prima[std::string(dt) + c]) << dt << " " << c;
    EXPECT_EQ(SaldoAl(dt, "0501001", "1"), prima[std::string(dt) + "C1"]) << dt;
    EXPECT_EQ(SaldoAl(dt, "0501001", "2"), prima[std::string(dt) + "C2"]) << dt;
  }

  // The chart over January to April: the unloaded quarter among the progressives, the balance
  // at the end that of the journal before (0501001: 50 + 122 - 30 + 61 + 10).
  {
    ArgomentiStampaSaldi sa;
    sa.avar_DaData = Valore("01/01/2025");
    sa.avar_AData = Valore("30/04/2025");
    clsStampaPianoConti piano;
    piano.cn = cn;
    bool trovato = false;
    for (const auto& r : piano.CalcolaSaldi(sa, Valore("05"), Valore("05"), false))
      if (r.codice == "0501001") {
        trovato = true;
        EXPECT_EQ(r.saldoIniziale, Imp("50"));
        EXPECT_EQ(r.dareProgressivo, Imp("122"));
        EXPECT_EQ(r.avereProgressivo, Imp("30"));
        EXPECT_EQ(r.darePeriodo, Imp("71"));
        EXPECT_EQ(r.saldoAttuale, Imp("213"));
      }
    EXPECT_TRUE(trovato);
  }

  // A second run over the same months: refused, nothing changes.
  const std::string stato = Stato();
  EXPECT_FALSE(Scarica(3));
  EXPECT_NE(host->Ultimo().find("inferiore o uguale alla data di ultimo compattamento"), std::string::npos);
  EXPECT_EQ(Stato(), stato);
  // April, without the history: 00003 and 00005 leave, 00006 still stays; the history does not grow.
  ASSERT_TRUE(Scarica(4, false, nullptr, &e));
  EXPECT_EQ(e.registrazioni, 2);
  EXPECT_EQ(e.righeStorico, 0);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Storico Contabile]").ComeIntero(), 7);
  // The history emptied; the last number handed out stays with the company.
  ASSERT_TRUE(st.AzzeraStoricoPrimaNota());
  EXPECT_EQ(st.GetMaxIDProgressivoStoricoContabile(), 0);
  EXPECT_EQ(prog.GetNumeroUltimaRegStorico(), 7);
  s.GetProgressiviUltimoScaricoCliFor(Valore("0501001"), Valore("C"), Valore("2"), i, d, av);
  EXPECT_EQ(d, Imp("61"));
  for (auto c : conti) EXPECT_EQ(SaldoAl("30/04/2025", c), prima[std::string("30/04/2025") + c]) << c;
  EXPECT_EQ(SaldoAl("31/12/2025", "0501001", "1"), Imp("152"));
}

// A form that fails the run when it is told a given phase.
class FormCheCade : public IForm {
 public:
  explicit FormCheCade(std::string fase) : fase_(std::move(fase)) {}
  void msgbar(const std::string& t) override {
    if (!fase_.empty() && t.rfind(fase_, 0) == 0) throw std::runtime_error("interrotto a " + t);
  }

 private:
  std::string fase_;
};

TEST_P(Scarico, ARunThatFailsLeavesNothingAndCanBeRepeated) {
  Progressivi(*cn);
  const std::string stato = Stato();
  for (const char* fase : {"Copia dei movimenti", "Aggiornamento saldi progressivi sottoconto 0801001",
                           "Eliminazione movimenti scaricati"}) {
    FormCheCade form(fase);
    EXPECT_THROW(Scarica(3, true, &form), std::runtime_error) << fase;
    EXPECT_FALSE(cn->InTransazione());
    EXPECT_EQ(Stato(), stato) << fase;
  }
  EsitoCompattamento e;
  ASSERT_TRUE(Scarica(3, true, nullptr, &e));
  EXPECT_EQ(e.righe, 7);
  clsSaldiContabili s;
  s.cn = cn;
  EXPECT_EQ(s.GetSaldoUltimoScaricoSottoconto(Valore("0501001")), Imp("142"));  // 50 + 122 - 30, once
}

TEST_P(Scarico, UnprintedMonthsAndEmptyPeriodsAreRefused) {
  clsCompPrimaNota c;
  c.cn = cn;
  ArgomentiCompattamento a;
  a.avar_Mese = 3;
  a.avar_Anno = 2025;
  EXPECT_FALSE(c.StampatoSuLibroGiornale(Valore("01/01/2025"), Valore("31/03/2025")));
  EXPECT_FALSE(c.CompattamentoPrimaNota(a));
  EXPECT_EQ(host->Ultimo(), "Sono presenti movimenti non stampati su libro giornale. Impossibile continuare.");
  cn->Esegui("UPDATE [Prima Nota] SET [Stringa10indicatori] = ' G0'");
  EXPECT_TRUE(c.StampatoSuLibroGiornale(Valore("01/01/2025"), Valore("31/03/2025")));
  a.avar_Mese = 12;
  a.avar_Anno = 2024;
  EXPECT_FALSE(c.CompattamentoPrimaNota(a));
  EXPECT_EQ(host->Ultimo(), "Non esistono registrazioni di Prima Nota inferiori alla data indicata.");
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Storico Contabile]").ComeIntero(), 0);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota]").ComeIntero(), 13);
}

// The three prints of the small journal, with an entry that does not balance.
TEST_P(Scarico, JournalChartAndClientPrints) {
  NonQuadrata();
  clsStampaPrimaNota pn;
  pn.cn = cn;
  ArgomentiStampaPrimaNota a;
  a.AzRagSoc = "Studio Prova";
  a.AzParIva = "01234567890";
  a.DataStampa = *Data::Crea(2025, 4, 30);
  a.avar_RighePagina = 40;
  a.nomeFile = dir->Percorso() + "/primanota.txt";
  ASSERT_TRUE(pn.StampaPrimaNotaTesto(a));
  EXPECT_EQ(pn.Esito().registrazioni, 8);
  EXPECT_EQ(pn.Esito().nonQuadrate, 1);
  EXPECT_EQ(pn.Esito().dare, Imp("300.20"));   // 122 + 50 + 61 + 30 + 10 + 5 + 10 + 12,20
  EXPECT_EQ(pn.Esito().avere, Imp("299.20"));  // 100 + 22 + 50 + 61 + 30 + 10 + 5 + 9 + 10 + 2,20
  ConfrontaGolden("ledger/golden/stampa_prima_nota.txt", LeggiFile(a.nomeFile));

  // Only the wrong entries; a sub-account filter keeps whole entries; the report table.
  a.selezione.avar_SoloErrate = true;
  a.clientName = "prova";
  ASSERT_TRUE(pn.MakeStampaPrimaNota(a));
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Elaborazione stampa prima nota] WHERE [ClientName] = 'prova' "
                        "AND [NoteQuadratura] = '** Non quadrano i totali **' AND [NumeroRegistrazione] = '00007'")
                .ComeIntero(),
            2);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Elaborazione stampa prima nota]").ComeIntero(), 2);
  a.selezione.avar_SoloErrate = false;
  a.selezione.avar_Sottoconto = Valore("1801001");
  ASSERT_TRUE(pn.MakeStampaPrimaNota(a));
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Elaborazione stampa prima nota]").ComeIntero(), 7);  // 00004, 00007, 00008
  a.selezione.avar_Sottoconto = Valore("");
  a.selezione.avar_DaData = Valore("01/05/2025");
  EXPECT_FALSE(pn.MakeStampaPrimaNota(a));
  EXPECT_EQ(host->Ultimo(), "Nessun dato da stampare.");

  ArgomentiStampaSaldi s;
  s.AzRagSoc = "Studio Prova";
  s.AzParIva = "01234567890";
  s.avar_DataStampa = *Data::Crea(2025, 4, 30);
  s.avar_RighePagina = 40;
  s.avar_DaData = Valore("01/02/2025");
  s.avar_AData = Valore("30/04/2025");
  s.nomeFile = dir->Percorso() + "/piano.txt";
  clsStampaPianoConti piano;
  piano.cn = cn;
  ASSERT_TRUE(piano.StampaContabilePianoConti(s, Valore(""), Valore(""), true));
  ConfrontaGolden("ledger/golden/stampa_piano_conti.txt", LeggiFile(s.nomeFile));
  s.nomeFile = dir->Percorso() + "/clienti.txt";
  clsStampaClientiForn clienti;
  clienti.cn = cn;
  ASSERT_TRUE(clienti.StampaContabileClientiFornitori(s, Valore("C"), Valore(""), Valore(""), false));
  ConfrontaGolden("ledger/golden/stampa_clienti.txt", LeggiFile(s.nomeFile));
}

VORN_SU_DUE_MOTORI(Scarico);

}  // namespace
