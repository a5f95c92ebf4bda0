#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "masterdata/clsCodiciIva.h"
#include "support/Azienda.h"

using namespace vorn;

namespace {

class FormProva : public IForm {
 public:
  void msgbar(const std::string& testo) override { messaggi.push_back(testo); }
  std::vector<std::string> messaggi;
};

class CodiciIva : public vorn::test::AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    iva.cn = cn;
  }

  void Salva(const std::string& codice, const RecordValori& campi) {
    bool cancel = false;
    ASSERT_TRUE(iva.SalvaRecord(Valore(codice), campi, Valore("prova"), 1, cancel, true));
  }
  long Righe() { return static_cast<long>(*cn->Scalare("SELECT COUNT(*) FROM [Codici Iva]").ComeIntero()); }
  static std::vector<std::string> Linee(const std::string& testo) {
    std::vector<std::string> v;
    std::istringstream s(testo);
    for (std::string r; std::getline(s, r);) v.push_back(r);
    return v;
  }

  clsCodiciIva iva;
};

VORN_SU_DUE_MOTORI(CodiciIva);

}  // namespace

// ---------------------------------------------------------------- the print

TEST_P(CodiciIva, PrintPagesTheCodesUnderTheCompanyHead) {
  cn->Esegui(
      "INSERT INTO [Tabella Azienda] ([Ragione Sociale], [Indirizzo], [Cap], [Citta], [Provincia], [Partita IVA]) "
      "VALUES (?, ?, ?, ?, ?, ?)",
      {Valore("Rossi & Figli S.r.l."), Valore("Via Garibaldi 12"), Valore("20121"), Valore("Milano"), Valore("MI"),
       Valore("01234567890")});
  Salva("22", {{"Descrizione Iva", Valore("Aliquota ordinaria")},
               {"Aliquota", Valore(Importo(22))},
               {"Percentuale indetraibilità", Valore(0.0)},
               {"Tipo allegato clifor", Valore(1)},
               {"Tipo operazione black list", Valore(2)}});
  Salva("04", {{"Descrizione Iva", Valore("Aliquota ridotta 4%")},
               {"Aliquota", Valore(Importo(4))},
               {"Percentuale indetraibilità", Valore(40.0)},
               {"Tipo allegato clifor", Valore(1)},
               {"Tipo operazione black list", Valore(1)}});
  Salva("N3A", {{"Descrizione Iva", Valore("Non imponibile cessioni all'esportazione")},
                {"Flag Articolo 8", Valore("1")},
                {"Tipo allegato clifor", Valore(2)},
                {"Tipo operazione black list", Valore(3)}});
  Salva("E10", {{"Descrizione Iva", Valore("Esente art.10 attività")},
                {"Flag Fatture Esenti", Valore("1")},
                {"Tipo allegato clifor", Valore(3)},
                {"Tipo operazione black list", Valore(5)},
                {"Tipo operazione spesometro", Valore(1)}});
  Salva("FC", {{"Descrizione Iva", Valore("Fuori campo")},
               {"Aliquota", Valore(Importo::DaRaw(55000))},
               {"Percentuale indetraibilità", Valore(100.0)},
               {"Flag Altre Esenzioni", Valore("1")},
               {"Tipo allegato clifor", Valore(5)},
               {"Tipo operazione black list", Valore(7)}});
  Salva("X9", {{"Descrizione Iva", Valore("Codice senza classi")}, {"Tipo allegato clifor", Valore(9)}});

  FormProva form;
  std::string uscita = dir->Percorso() + "/codici.txt";
  ASSERT_TRUE(iva.StampaCodiciIVA(&form, Valore("Studio Bianchi"), Valore("09876543210"), uscita,
                                  Valore("15/03/2024"), Valore(12)));
  EXPECT_EQ(form.messaggi, std::vector<std::string>{"Operazione completata"});
  EXPECT_FALSE(EsisteFile(CartellaTemp() + "/StamCIVA.tmp"));  // the body is removed once paged
  std::string testo = vorn::test::LeggiFile(uscita);
  vorn::test::ConfrontaGolden("masterdata/golden/stampa_codici_iva.txt", testo);

  // Twelve lines a page: one empty line, six of head, four codes, one foot line; the golden file
  // pins every column (descriptions cut to 20 characters, not bytes; 5,50 and 100,00 with their
  // decimals; a class outside the list printing no label).
  EXPECT_EQ(Linee(testo).size(), 24u);
}

TEST_P(CodiciIva, CompanyLineLeavesOutBlankParts) {
  cn->Esegui("INSERT INTO [Tabella Azienda] ([Ragione Sociale], [Citta], [Partita IVA]) VALUES (?, ?, ?)",
             {Valore("Bianchi S.n.c."), Valore("Torino"), Valore("123")});
  Salva("22", {{"Descrizione Iva", Valore("Ordinaria")}});
  std::string uscita = dir->Percorso() + "/codici.txt";
  ASSERT_TRUE(iva.StampaCodiciIVA(nullptr, Valore(""), Valore(""), uscita, Valore(), Valore(66)));
  auto righe = Linee(vorn::test::LeggiFile(uscita));
  ASSERT_EQ(righe.size(), 66u);
  EXPECT_EQ(righe[1], PadSinistra(Valore("DITTA : Bianchi S.n.c. Torino"), 62) + " P.IVA : 123        ");
  // Without a date the print is dated today.
  EXPECT_NE(righe[3].find("Data: " + Data::Oggi().Formato("dd/mm/yy") + "    Pag:     1 ==="), std::string::npos);
}

TEST_P(CodiciIva, EmptyTablePrintsNothing) {
  FormProva form;
  std::string uscita = dir->Percorso() + "/codici.txt";
  EXPECT_FALSE(iva.StampaCodiciIVA(&form, Valore("Studio"), Valore("1"), uscita, Valore(), Valore(60)));
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo, "Nessun dato da stampare.");
  EXPECT_EQ(host->Messaggi()[0].titolo, "Stampa codici IVA.");
  EXPECT_EQ(host->Messaggi()[0].stile, vbInformation);
  EXPECT_FALSE(std::filesystem::exists(uscita));
  EXPECT_TRUE(form.messaggi.empty());
}

// ---------------------------------------------------------------- 8xx / 9xx codes

TEST_P(CodiciIva, ElectronicInvoiceGettersReadNineHundredAsZeroHundred) {
  Salva("005", {{"Descrizione Iva", Valore("Cinque")},
                {"Aliquota", Valore(Importo(5))},
                {"Natura operazione fattura PA", Valore(9)},
                {"Flag Split Payment fattura PA", Valore("1")},
                {"Flag Reverse Charge", Valore("1")}});
  Salva("905", {{"Descrizione Iva", Valore("Novecentocinque")},
                {"Aliquota", Valore(Importo(10))},
                {"Natura operazione fattura PA", Valore(0)},
                {"Flag Split Payment fattura PA", Valore("0")},
                {"Flag Reverse Charge", Valore("0")}});

  // The caller's variable comes back holding the normalised code.
  Valore c1("905"), c2("905"), c3("905"), c4("805");
  EXPECT_EQ(iva.GetNaturaIVAFatturaPA(c1), 9);
  EXPECT_EQ(iva.GetFlagSplitPayment(c2), "1");
  EXPECT_TRUE(iva.IsReverseCharge(c3));
  EXPECT_TRUE(iva.IsNaturaIvaN2(c4));
  for (const Valore* c : {&c1, &c2, &c3, &c4}) EXPECT_EQ(*c, Valore("005"));

  // The other getters read "905" as it is.
  Valore literal("905");
  EXPECT_EQ(iva.GetAliquotaIva(literal), Valore(Importo(10)));
  EXPECT_EQ(iva.GetDescrizioneIva(literal), "Novecentocinque");
  Valore descr;
  EXPECT_TRUE(iva.ExistCodiceIva(literal, &descr));
  EXPECT_EQ(descr, Valore("Novecentocinque"));
  Valore aliq, indetr, a8, fe, ae, ma, ai;
  EXPECT_TRUE(iva.GetDatiIVA(literal, aliq, indetr, a8, fe, ae, ma, ai));
  EXPECT_EQ(aliq, Valore(Importo(10)));
  EXPECT_EQ(literal, Valore("905"));

  // Two characters are not normalised; neither is a code with another first character.
  Valore c("05");
  EXPECT_EQ(iva.GetNaturaIVAFatturaPA(c), 0);
  EXPECT_EQ(c, Valore("05"));
  c = Valore("105");
  EXPECT_EQ(iva.GetFlagSplitPayment(c), "0");
  EXPECT_EQ(c, Valore("105"));
}

// ---------------------------------------------------------------- neutral values

TEST_P(CodiciIva, UnknownCodeGivesNeutralValues) {
  Salva("22", {{"Descrizione Iva", Valore("Ordinaria")}, {"Aliquota", Valore(Importo(22))}});
  Valore ignoto("XYZ");
  Valore aliquota = iva.GetAliquotaIva(ignoto);
  EXPECT_EQ(aliquota.tipo(), Valore::Tipo::Intero);
  EXPECT_EQ(aliquota, Valore(0));
  EXPECT_EQ(iva.GetPercentualeIndetraibile(ignoto), Valore(0));
  EXPECT_EQ(iva.GetNaturaIVAFatturaPA(ignoto), 0);
  EXPECT_EQ(iva.GetFlagSplitPayment(ignoto), "0");
  EXPECT_FALSE(iva.IsReverseCharge(ignoto));
  EXPECT_FALSE(iva.IsNaturaIvaN2(ignoto));
  EXPECT_FALSE(iva.IsNaturaIvaN3(ignoto));
  EXPECT_FALSE(iva.IsNaturaIvaN6(ignoto));
  Valore descr("x");
  EXPECT_FALSE(iva.ExistCodiceIva(ignoto, &descr));
  EXPECT_EQ(descr, Valore(""));
  Valore aliq("x"), indetr("x"), a8("x"), fe("x"), ae("x"), ma("x"), ai("x");
  EXPECT_FALSE(iva.GetDatiIVA(ignoto, aliq, indetr, a8, fe, ae, ma, ai));
  EXPECT_EQ(aliq, Valore(Importo()));
  EXPECT_EQ(indetr, Valore(Importo()));
  for (const Valore* f : {&a8, &fe, &ae, &ma, &ai}) EXPECT_EQ(*f, Valore("0"));
  EXPECT_TRUE(host->Messaggi().empty());

  // The description warns only when asked, and never for a blank code.
  EXPECT_EQ(iva.GetDescrizioneIva(ignoto), "");
  bool cancel = false;
  EXPECT_EQ(iva.GetDescrizioneIva(Valore(""), &cancel), "");
  EXPECT_FALSE(cancel);
  EXPECT_TRUE(host->Messaggi().empty());
  EXPECT_EQ(iva.GetDescrizioneIva(ignoto, &cancel), "");
  EXPECT_TRUE(cancel);
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo, "Codice inesistente.");

  // A row whose flags are Null reads them as "0", its nature as 0.
  Valore c("22");
  EXPECT_EQ(iva.GetFlagSplitPayment(c), "0");
  EXPECT_EQ(iva.GetNaturaIVAFatturaPA(c), 0);
  EXPECT_FALSE(iva.IsReverseCharge(c));
  EXPECT_TRUE(iva.GetDatiIVA(c, aliq, indetr, a8, fe, ae, ma, ai));
  EXPECT_EQ(a8, Valore("0"));
  EXPECT_EQ(indetr, Valore(Importo()));
}

TEST_P(CodiciIva, NatureGroupsByTheirRanges) {
  const std::set<int> n2 = {2, 8, 9}, n3 = {3, 10, 11, 12, 13, 14, 15},
                      n6 = {6, 16, 17, 18, 19, 20, 21, 22, 23, 24};
  for (int n = 0; n <= 25; ++n) Salva("N" + std::to_string(n), {{"Natura operazione fattura PA", Valore(n)}});
  for (int n = 0; n <= 25; ++n) {
    SCOPED_TRACE("natura " + std::to_string(n));
    Valore c("N" + std::to_string(n));
    EXPECT_EQ(iva.IsNaturaIvaN2(c), n2.count(n) == 1);
    EXPECT_EQ(iva.IsNaturaIvaN3(c), n3.count(n) == 1);
    EXPECT_EQ(iva.IsNaturaIvaN6(c), n6.count(n) == 1);
  }
}

TEST_P(CodiciIva, RatesComeBackExact) {
  Salva("R1", {{"Aliquota", Valore(Importo::DaRaw(101234))}, {"Percentuale indetraibilità", Valore(33.3333)}});
  Valore c("R1");
  EXPECT_EQ(iva.GetAliquotaIva(c), Valore(Importo::DaRaw(101234)));
  EXPECT_EQ(iva.GetPercentualeIndetraibile(c), Valore(Importo::DaRaw(333333)));
  Valore aliq, indetr, a8, fe, ae, ma, ai;
  ASSERT_TRUE(iva.GetDatiIVA(c, aliq, indetr, a8, fe, ae, ma, ai));
  EXPECT_EQ(aliq, Valore(Importo::DaRaw(101234)));
  EXPECT_EQ(indetr, Valore(Importo::DaRaw(333333)));
}

// ---------------------------------------------------------------- saving

TEST_P(CodiciIva, SaveAnsweredNoWritesNothing) {
  Salva("22", {{"Descrizione Iva", Valore("Ordinaria")}, {"Aliquota", Valore(Importo(22))}});
  Recordset ta, tb;
  ASSERT_TRUE(iva.LocalizzaRecord(ta, Valore("22"), Valore("A"), 1));
  ASSERT_TRUE(iva.LocalizzaRecord(tb, Valore("22"), Valore("B"), 2));
  ta.Close();
  tb.Close();

  host->Rispondi(vbNo);
  bool cancel = false;
  EXPECT_FALSE(iva.SalvaRecord(Valore("22"), {{"Descrizione Iva", Valore("Cambiata")}, {"Aliquota", Valore(Importo(21))}},
                               Valore("A"), 1, cancel));
  EXPECT_TRUE(cancel);
  EXPECT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(iva.GetDescrizioneIva(Valore("22")), "Ordinaria");
  EXPECT_EQ(iva.GetAliquotaIva(Valore("22")), Valore(Importo(22)));

  host->Rispondi(vbYes);
  EXPECT_TRUE(iva.SalvaRecord(Valore("22"), {{"Aliquota", Valore(Importo(21))}}, Valore("A"), 1, cancel));
  EXPECT_FALSE(cancel);
  EXPECT_EQ(iva.GetAliquotaIva(Valore("22")), Valore(Importo(21)));
  EXPECT_EQ(iva.GetDescrizioneIva(Valore("22")), "Ordinaria");  // a column left out is kept

  EXPECT_THROW(iva.SalvaRecord(Valore("23"), {{"Aliquota", Valore(Importo(23))}, {"Colore", Valore("rosso")}},
                               Valore("A"), 1, cancel),
               ErroreDb);
  EXPECT_FALSE(iva.ExistCodiceIva(Valore("23")));
  EXPECT_EQ(Righe(), 1);
}

TEST_P(CodiciIva, SteppingDeletingAndApostrophes) {
  for (const char* c : {"22", "04", "10"}) Salva(c, {{"Descrizione Iva", Valore(c)}});
  Salva("A'1", {{"Descrizione Iva", Valore("Con l'apostrofo")}});
  EXPECT_EQ(iva.GetDescrizioneIva(Valore("A'1")), "Con l'apostrofo");
  Valore c("");
  ASSERT_TRUE(iva.RecordSuccessivo(c));
  EXPECT_EQ(c, Valore("A'1"));
  c = Valore("");
  ASSERT_TRUE(iva.RecordPrecedente(c));
  EXPECT_EQ(c, Valore("04"));
  ASSERT_TRUE(iva.RecordSuccessivo(c));
  EXPECT_EQ(c, Valore("10"));
  c = Valore("A'1");
  EXPECT_FALSE(iva.RecordSuccessivo(c));
  EXPECT_EQ(c, Valore("A'1"));
  EXPECT_TRUE(iva.CancellaRecord(Valore("A'1")));
  EXPECT_EQ(Righe(), 3);
  EXPECT_TRUE(iva.AzzeraCodiciIva());
  EXPECT_EQ(Righe(), 0);
}
