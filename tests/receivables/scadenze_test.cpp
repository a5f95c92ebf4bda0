// Due-date generation on both engines: dates and amounts of every kind of term, worked out by
// hand, and the numbering of the stored instalments.
#include <gtest/gtest.h>

#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "receivables/clsSaldaconto.h"
#include "receivables/clsScadenze.h"
#include "support/Azienda.h"

namespace vorn::test {
namespace {

Importo I(const char* t) { return *Importo::DaTestoPunto(t); }
Data D(int g, int m, int a) { return *Data::Crea(a, m, g); }

struct Termine {
  const char* codice;
  const char* tipo;
  const char* flag;  // Flag Inizio Scadenza
  int rate;
  std::array<int, 6> giorni;
  int periodicita = 0;
  const char* primaRata = "NO";
  int giornoFisso = 15;
};

class ScadenzeTest : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    G().DecimaliImporti = 2;
    s.cn = cn;
    for (const Termine& t : std::vector<Termine>{
             {"FM3", "BO", "FM", 3, {30, 60, 90, 0, 0, 0}},
             {"DF3", "RD", "DF", 3, {30, 60, 0, 0, 0, 0}, 45},
             {"DF0", "RD", "DF", 0, {0, 0, 0, 0, 0, 0}},
             {"IV3", "RB", "FM", 3, {30, 60, 90, 0, 0, 0}, 0, "IV"},
             {"IV1", "RB", "FM", 1, {30, 0, 0, 0, 0, 0}, 0, "IV"},
             {"GF31", "BO", "GF", 1, {30, 0, 0, 0, 0, 0}, 0, "NO", 31},
             {"GF15", "BO", "GF", 1, {30, 0, 0, 0, 0, 0}, 0, "NO", 15},
             {"TR60", "TR", "FM", 1, {60, 0, 0, 0, 0, 0}},
             {"DD30", "BO", "DD", 1, {30, 0, 0, 0, 0, 0}}}) {
      cn->Esegui("INSERT INTO [Pagamenti] ([Codice Pagamento], [Tipo Pagamento], [Flag Inizio Scadenza], [Numero "
                 "Rate], [Numero Giorni Inizio Scadenza], [Numero Giorni Inizio Scadenza 2], [Numero Giorni Inizio "
                 "Scadenza 3], [Periodicità], [Flag prima rata], [Giorno Fisso]) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                 {Valore(t.codice), Valore(t.tipo), Valore(t.flag), Valore(t.rate), Valore(t.giorni[0]),
                  Valore(t.giorni[1]), Valore(t.giorni[2]), Valore(t.periodicita), Valore(t.primaRata),
                  Valore(t.giornoFisso)});
    }
    // Receipts: 0,50 up to 100,00, 1,00 up to 1.000,00, none above. Bills: 12 per thousand,
    // rounded up to whole units, at least 1,00.
    cn->Esegui("INSERT INTO [Importi Fissi] ([Fino a 1], [Importo 1], [Fino a 2], [Importo 2], [Bollo tratta "
               "italiana], [Arrotondamento bollo tratta], [Valore minimo bollo tratta]) VALUES (100, 0.5, 1000, 1, "
               "12, 0, 1)");
    // A supplier whose August and December are excluded, moved to the 10th of the month after.
    cn->Esegui("INSERT INTO [Anagrafica Fornitori] ([Codice Cliente], [Ragione Sociale], [1 Mese Escluso], "
               "[2 Mese Escluso], [Scadenza al]) VALUES ('F1', 'Bianchi', 8, 12, 10)");
  }

  // The instalments: (due date, amount, stamp duty) of each generated row.
  struct Rata {
    std::string data, importo, bollo;
    friend bool operator==(const Rata&, const Rata&) = default;
    friend std::ostream& operator<<(std::ostream& o, const Rata& r) {
      return o << r.data << " " << r.importo << " " << r.bollo;
    }
  };
  std::vector<Rata> Genera(const char* pagamento, const Data& data, const char* totale, const char* iva = "0",
                           const char* cliente = "") {
    DocumentoScadenze d;
    d.a_varTipoCliFor = "C";
    d.a_varCodiceCliente = cliente;
    d.a_datDataDocumento = data;
    d.a_curImportoDocumento = I(totale);
    d.a_curIvaDocumento = I(iva);
    d.a_varCodicePagamento = pagamento;
    righe.clear();
    long indice = 0;
    EXPECT_FALSE(s.GeneraScadenze(righe, indice, d));
    std::vector<Rata> r;
    for (long i = 1; i <= indice; ++i) {
      const std::string& x = righe[static_cast<size_t>(i)];
      std::vector<std::string> c = clsScadenze::CampiRiga(x);
      EXPECT_EQ(c.size(), 20u) << x;
      if (c.size() == 20) r.push_back({c[1], c[2], c[13]});
    }
    return r;
  }

  clsScadenze s;
  std::vector<std::string> righe;
};

TEST_P(ScadenzeTest, DateEImportiPerOgniTipoDiTermine) {
  using V = std::vector<Rata>;
  // 31 January plus a month is the end of February (a leap one in 2024), and the next month
  // starts from there; 100,00 in three is 33,33 with the cent of rest on the first.
  EXPECT_EQ(Genera("FM3", D(31, 1, 2024), "100.00"),
            (V{{"29/02/2024", "33,34", "0"}, {"31/03/2024", "33,33", "0"}, {"30/04/2024", "33,33", "0"}}));
  EXPECT_EQ(Genera("FM3", D(31, 1, 2023), "90.00")[0], (Rata{"28/02/2023", "30,00", "0"}));
  // 200,00 in three is 66,67 rounded up: the rest is -0,01, taken off the first.
  EXPECT_EQ(Genera("FM3", D(15, 6, 2024), "200.00"),
            (V{{"31/07/2024", "66,66", "0"}, {"31/08/2024", "66,67", "0"}, {"30/09/2024", "66,67", "0"}}));
  // The same for the supplier whose August is excluded: the 31st of August goes to 10 September.
  EXPECT_EQ(Genera("FM3", D(15, 6, 2024), "200.00", "0", "F1")[1], (Rata{"10/09/2024", "66,67", "0"}));
  // Days 30 and 60 are whole months; the third takes the period of 45 days.
  EXPECT_EQ(Genera("DF3", D(1, 1, 2024), "300.00"),
            (V{{"01/02/2024", "100,00", "0"}, {"01/03/2024", "100,00", "0"}, {"15/04/2024", "100,00", "0"}}));
  // No instalments stored counts as one; day 0 falls on the document's date.
  EXPECT_EQ(Genera("DF0", D(5, 3, 2024), "50.00"), (V{{"05/03/2024", "50,00", "0"}}));
  // The VAT alone on the first receipt, the rest in two: 220,00 then 500,00 and 500,00. Stamp
  // duty of receipts: 1,00 up to 1.000,00... and 0,50 up to 100,00 would apply to smaller ones.
  EXPECT_EQ(Genera("IV3", D(10, 1, 2024), "1220.00", "220.00"),
            (V{{"29/02/2024", "220,00", "1"}, {"31/03/2024", "500,00", "1"}, {"30/04/2024", "500,00", "1"}}));
  // Above the last step: no stamp duty.
  EXPECT_EQ(Genera("IV3", D(10, 1, 2024), "3220.00", "220.00")[1], (Rata{"31/03/2024", "1.500,00", "0"}));
  // A fixed day: the 31st in April is the 30th; day 10 stays in its month for the 15th, day
  // 20 goes to the 15th of the month after.
  EXPECT_EQ(Genera("GF31", D(10, 3, 2024), "10.00")[0].data, "30/04/2024");
  EXPECT_EQ(Genera("GF15", D(10, 3, 2024), "10.00")[0].data, "15/04/2024");
  EXPECT_EQ(Genera("GF15", D(20, 3, 2024), "10.00")[0].data, "15/05/2024");
  // A bill of 500,00: 500 + 6 = 506, x 12 per thousand = 6,072, up to 7,00.
  EXPECT_EQ(Genera("TR60", D(15, 1, 2024), "500.00"), (V{{"31/03/2024", "500,00", "7"}}));
  // A term from a different date, given.
  DocumentoScadenze d;
  d.a_datDataDocumento = D(1, 1, 2024);
  d.a_datDataDiversa = D(20, 2, 2024);
  d.a_curImportoDocumento = I("10.00");
  d.a_varCodicePagamento = "DD30";
  long n = 0;
  s.GeneraScadenze(righe, n, d);
  ASSERT_EQ(n, 1);
  EXPECT_EQ(righe[1], "BO Bonifico|20/03/2024|10,00|0,00|||||||0|||0|||||||");
}

TEST_P(ScadenzeTest, RigheSaldateEPagamentiSbagliati) {
  DocumentoScadenze d;
  d.a_datDataDocumento = D(10, 5, 2024);
  d.a_curImportoDocumento = I("100.00");
  d.a_curAcconto = I("10.00");
  d.a_curRitenuta1 = I("1");
  d.a_curRitenuta2 = I("2");
  d.a_curAbbuono = I("3");
  d.a_curOmaggi = I("4");
  d.a_curSplitPayment = I("5");
  d.a_varContoCorrente = "CC1";
  d.a_varCodicePagamento = "NON-ESISTE";
  long n = 0;
  righe.clear();
  s.GeneraScadenze(righe, n, d);
  // Six settled rows, the unknown code gives no instalment.
  ASSERT_EQ(n, 6);
  EXPECT_EQ(righe[1], "CO Contanti|10/05/2024|10,00|10,00||||||0||Rilevaz. acconto|0|CC1|||||");
  EXPECT_NE(righe[6].find("Rilevaz. Split Payment"), std::string::npos);
  // An acconto of 0 gives no row.
  d.a_curAcconto = Importo();
  n = 0;
  s.GeneraScadenze(righe, n, d);
  EXPECT_EQ(n, 5);
  // The VAT alone first needs two instalments: a warning, and one instalment all the same.
  host->Pulisci();
  EXPECT_EQ(Genera("IV1", D(10, 1, 2024), "1220.00", "220.00").size(), 1u);
  EXPECT_EQ(host->Ultimo(), "Calcolo delle scadenze incompleto, il pagamento deve avere almeno 2 rate!");
}

TEST_P(ScadenzeTest, NumeriDalServizioDiNumerazione) {
  RecordValori r = {{"tipo", Valore("CL")},
                    {"Codice Cliente", Valore("C1")},
                    {"Data Scadenza", Valore(D(31, 1, 2024))},
                    {"Importo Scadenza", Valore(I("10.00"))}};
  bool cancel = false;
  ASSERT_TRUE(s.SalvaRecord(r, Valore("prova"), 1, cancel));
  EXPECT_EQ(NullToZeroLng(r["Numero Progressivo"]), 1);
  EXPECT_EQ(NullToZeroLng(r["Progressivo Documento"]), 1);
  // A counter that fell behind the table is raised past it.
  cn->Esegui("UPDATE [Scadenziario] SET [Numero Progressivo] = 40");
  RecordValori r2 = {{"tipo", Valore("CL")}, {"Codice Cliente", Valore("C1")}, {"Progressivo Documento", Valore(1)}};
  ASSERT_TRUE(s.SalvaRecord(r2, Valore("prova"), 1, cancel));
  EXPECT_EQ(NullToZeroLng(r2["Numero Progressivo"]), 41);
  EXPECT_EQ(s.GetNuovoNumeroEffetto(), 42);
  // An unknown column writes nothing.
  RecordValori r3 = {{"Importo Sbagliato", Valore(1)}};
  EXPECT_THROW(s.SalvaRecord(r3, Valore("prova"), 1, cancel), ErroreDb);
  EXPECT_EQ(2, NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Scadenziario]")));
  Valore k(0);
  ASSERT_TRUE(s.RecordSuccessivo(k));
  EXPECT_EQ(NullToZeroLng(k), 40);
}

TEST_P(ScadenzeTest, PagamentiESaldaconto) {
  bool cancel = false;
  for (int k : {1, 2, 3}) {
    RecordValori r = {{"tipo", Valore("CL")},
                      {"Codice Cliente", Valore("C1")},
                      {"Numero Documento", Valore(7)},
                      {"Data Documento", Valore(D(10, 1, 2024))},
                      {"Data Scadenza", Valore(D(28 - k, 2, 2024))},
                      {"Importo Scadenza", Valore(I("100.00"))},
                      {"Importo Pagato", Valore(I("0"))},
                      {"Flag Unificata", Valore(k == 3 ? 2 : 0)}};
    ASSERT_TRUE(s.SalvaRecord(r, Valore("prova"), 1, cancel));
  }
  clsSaldaconto sc;
  sc.cn = cn;
  auto aperte = [&] {
    Recordset rs;
    sc.LocalizzaScadenzeSaldaconto(rs, Valore("C"), Valore("C1"), Valore(), Valore(), Valore(), Valore(), Valore(),
                                   Valore(), Valore());
    std::vector<long> n;
    for (; !rs.Eof(); rs.MoveNext()) n.push_back(NullToZeroLng(rs("Numero Progressivo").Value()));
    return n;
  };
  // The unified one (flag 2) never shows; the rest by due date: 2 (the 25th) before 1 (the 26th).
  EXPECT_EQ(aperte(), (std::vector<long>{2, 1}));
  // Two payments on one instalment take rows 1 and 2; paid in full it leaves the list.
  ASSERT_TRUE(sc.ChiudiScadenza(Valore(1), Valore(I("60.00")), Valore("12"), Valore(D(1, 3, 2024)), Valore("Bonifico"),
                                true, &s, Valore("prova"), 1));
  ASSERT_TRUE(sc.ChiudiScadenza(Valore(1), Valore(I("40.00")), Valore("13"), Valore(D(2, 3, 2024)), Valore("Bonifico"),
                                true, &s, Valore("prova"), 1));
  EXPECT_EQ(s.GetMaxRigaPagamento(Valore(1)), 2);
  EXPECT_EQ(aperte(), (std::vector<long>{2}));
  EXPECT_EQ(Trim(cn->Scalare("SELECT [NumeroRegistrazione] FROM [Scadenziario Pagamenti] WHERE [Riga] = '1'").Testo()),
            "00012");
  // An allowance taken back lowers the paid amount.
  ASSERT_TRUE(sc.ChiudiScadenza(Valore(1), Valore(I("-5.00")), Valore("14"), Valore(D(3, 3, 2024)), Valore("Storno"),
                                true, &s, Valore("prova"), 1));
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [Importo Pagato] FROM [Scadenziario] WHERE [Numero Progressivo] = 1")),
            I("95.00"));
  // A paid amount that drifted from its rows is realigned to their sum.
  cn->Esegui("UPDATE [Scadenziario] SET [Importo Pagato] = 0 WHERE [Numero Progressivo] = 1");
  s.RiallineaImportoPagatoScadenza(Valore(1));
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [Importo Pagato] FROM [Scadenziario] WHERE [Numero Progressivo] = 1")),
            I("95.00"));
  std::string stato;
  EXPECT_TRUE(s.IsScadenzaBloccata(Valore(1), stato));
  EXPECT_EQ(stato, "- Scadenza parzialmente o totalmente pagata.");
  stato.clear();
  EXPECT_FALSE(s.IsScadenzaBloccata(Valore(2), stato));
  EXPECT_TRUE(s.IsScadenzeDocumentoBloccate(Valore("CL"), Valore("C1"), Valore(D(10, 1, 2024)), Valore(""), Valore(7),
                                            stato));
  // An unknown instalment: a message, nothing written.
  EXPECT_FALSE(sc.ChiudiScadenza(Valore(99), Valore(I("1")), Valore("1"), Valore(D(1, 3, 2024)), Valore(""), true, &s,
                                 Valore("prova"), 1));
  EXPECT_EQ(host->Ultimo(), "Impossibile trovare la scadenza con progressivo 99");
}

VORN_SU_DUE_MOTORI(ScadenzeTest);

}  // namespace
}  // namespace vorn::test
