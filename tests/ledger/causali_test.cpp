#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/Data.h"
#include "ledger/clsCausaliContabili.h"
#include "ledger/clsPrimaNota.h"
#include "masterdata/clsCodiciIva.h"
#include "masterdata/clsNazioni.h"
#include "support/Azienda.h"

using namespace vorn;

namespace {

class Causali : public vorn::test::AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    causali.cn = cn;
  }

  // Saves without asking, as a loader would.
  void Salva(const std::string& codice, const RecordValori& campi) {
    bool cancel = false;
    ASSERT_TRUE(causali.SalvaRecord(Valore(codice), campi, Valore("prova"), 1, cancel, true));
    ASSERT_FALSE(cancel);
  }
  std::string Descrizione(const std::string& codice) {
    auto v = cn->Scalare("SELECT [DescrizioneCausale] FROM [Causali Contabili] WHERE [CodiceCausale] = ?",
                         {Valore(codice)});
    return v.IsNull() ? "<null>" : v.Testo();
  }
  long Righe() { return NullToZero(cn->Scalare("SELECT COUNT(*) FROM [Causali Contabili]")); }
  // Every output of GetParametriCausale.
  struct Uscite {
    Valore descr, registro, tipo, partite, contabile, intra, serie, regProposto, quadratura, pos, nonUsata, insoluto,
        cespiti, regSemp, numSemp, rsm, intAut;
    Valore dare[11], avere[11], ammessi[10];
  };
  bool Leggi(const char* codice, Uscite& p) {
    return causali.GetParametriCausale(Valore(codice), p.descr, p.registro, p.tipo, p.partite, p.contabile, p.intra,
                                       p.serie, p.regProposto, p.quadratura, p.dare, p.avere, p.ammessi, p.pos,
                                       p.nonUsata, p.insoluto, p.cespiti, p.regSemp, p.numSemp, p.rsm, p.intAut);
  }
  static long NullToZero(const Valore& v) { return v.IsNull() ? 0 : static_cast<long>(*v.ComeIntero()); }

  clsCausaliContabili causali;
};

VORN_SU_DUE_MOTORI(Causali);

// The code tables as the ledger defines them: code, register letter, sign of tax and taxable,
// sign of the document total, variation note, deferred payability.
struct TipoAtteso {
  const char* codice;
  const char* lettera;
  SegnoTipoCausale imposta;
  SegnoTipoCausale totale;
  bool nota;
  bool differita;
};
constexpr auto P = SegnoTipoCausale::Positivo;
constexpr auto N = SegnoTipoCausale::Negativo;
constexpr auto R = SegnoTipoCausale::SecondoRegistro;
const TipoAtteso kTipi[] = {
    {"0", "F", P, P, false, false}, {"1", "N", N, N, true, false},  {"2", "C", P, P, false, false},
    {"3", "S", N, P, false, false}, {"4", "I", P, P, false, false}, {"5", "f", P, P, false, false},
    {"6", "n", R, R, false, false}, {"7", "D", P, P, false, true},  {"8", "E", N, N, true, true},
    {"9", "O", N, P, true, false},  {":", "I", P, P, false, false}, {";", "O", N, P, false, false},
};
const char* const kRegistri[] = {"NESSUNO",
                                 "VENDITE",
                                 "ACQUISTI",
                                 "CORRISPETTIVI IN SCORPORO",
                                 "CORRISPETTIVI IN VENTILAZIONE",
                                 "SOSPENSIONE",
                                 "INCASSO FATT. ESIGIBILITA' DIFFERITA",
                                 "FATT. VENDITA IVA AD ESIG. DIFFERITA",
                                 "PAGAMENTO FATTURE CON ESIG. DIFF.",
                                 "FATT. ACQUISTI IVA AD ESIG. DIFF."};


// One key filter and one stepping in every archive: a code is found by its trimmed text, a key
// that is Null, empty or blanks is never a step, and the journal's copy of the movement settings
// finds what the causals' own does.
TEST_P(Causali, EveryArchiveFindsTrimmedCodesAndStepsOverBlankKeys) {
  for (const char* codice : {"B20", "M10"}) Salva(codice, {{"DescrizioneCausale", Valore(std::string("Causale ") + codice)}, {"OperativitaContabile", Valore("1")}, {"TipoCausale", Valore("F")}});
  cn->Esegui("INSERT INTO [Causali Contabili] ([CodiceCausale], [DescrizioneCausale]) VALUES (NULL, 'nulla'), "
             "('', 'vuota')");
  cn->Esegui("INSERT INTO [Codici Iva] ([Codice Iva], [Descrizione Iva]) VALUES ('10', 'Dieci'), ('22', 'Ventidue'), "
             "(NULL, 'nulla'), ('', 'vuota')");
  clsCodiciIva iva;
  iva.cn = cn;

  // Forward from a blank screen: the last code; backward: the first; never a blank one.
  Valore c("");
  ASSERT_TRUE(causali.RecordSuccessivo(c));
  EXPECT_EQ(c, Valore("M10"));
  c = Valore("");
  ASSERT_TRUE(causali.RecordPrecedente(c));
  EXPECT_EQ(c, Valore("B20"));
  EXPECT_FALSE(causali.RecordPrecedente(c));
  EXPECT_EQ(c, Valore("B20"));
  c = Valore::Null();
  ASSERT_TRUE(iva.RecordPrecedente(c));
  EXPECT_EQ(c, Valore("10"));
  EXPECT_FALSE(iva.RecordPrecedente(c));
  c = Valore("");
  ASSERT_TRUE(iva.RecordSuccessivo(c));
  EXPECT_EQ(c, Valore("22"));
  ASSERT_TRUE(iva.RecordPrecedente(c));
  EXPECT_EQ(c, Valore("10"));

  // A code typed with blanks finds its row in the causals, the journal and the VAT codes.
  Valore reg, tipo, partite, operativita, intra, quadratura;
  ASSERT_TRUE(causali.GetParametriCausaleMovimentazione(Valore(" M10 "), reg, tipo, partite, operativita, intra,
                                                        quadratura));
  EXPECT_EQ(operativita, Valore("1"));
  clsPrimaNota pn;
  pn.cn = cn;
  Valore reg2, tipo2, partite2, operativita2, intra2, quadratura2;
  ASSERT_TRUE(pn.GetParametriCausaleMovimentazione(Valore(" M10 "), reg2, tipo2, partite2, operativita2, intra2,
                                                   quadratura2));
  EXPECT_EQ(operativita2, operativita);
  EXPECT_EQ(tipo2, Valore("F"));
  EXPECT_EQ(iva.GetDescrizioneIva(Valore("22 ")), "Ventidue");

  // The master family stores and finds a code trimmed too, and steps the same way.
  clsNazioni nazioni;
  nazioni.cn = cn;
  cn->Esegui("INSERT INTO [Nazioni] ([Codice Nazione], [Descrizione Nazione]) VALUES (NULL, 'nulla'), ('', 'vuota')");
  bool cancel = false;
  ASSERT_TRUE(nazioni.SalvaRecord(Valore(" IT "), Valore("Italia"), Valore("IT"), Valore("086"), Valore("1"),
                                  Valore("0"), Valore("prova"), 1, cancel));
  EXPECT_EQ(cn->Scalare("SELECT [Descrizione Nazione] FROM [Nazioni] WHERE [Codice Nazione] = 'IT'"), Valore("Italia"));
  EXPECT_TRUE(nazioni.ExistCodice(Valore("IT  ")));
  c = Valore("");
  ASSERT_TRUE(nazioni.RecordPrecedente(c));
  EXPECT_EQ(c, Valore("IT"));
  EXPECT_FALSE(nazioni.RecordPrecedente(c));
}

}  // namespace

// ---------------------------------------------------------------- code tables through the archive

TEST_P(Causali, EveryCausalTypeComesBackWithItsLetterAndSigns) {
  ASSERT_EQ(clsCausaliContabili::TipiCausale().size(), std::size(kTipi));
  int n = 0;
  for (const auto& t : kTipi) {
    std::string codice = "T" + std::to_string(n++);
    Salva(codice, {{"DescrizioneCausale", Valore("tipo " + std::string(t.codice))}, {"TipoCausale", Valore(t.codice)}});
  }
  n = 0;
  for (const auto& t : kTipi) {
    SCOPED_TRACE(std::string("TipoCausale ") + t.codice);
    Valore codice("T" + std::to_string(n++));
    EXPECT_EQ(causali.GetTipoCausale(codice), t.codice);
    Valore reg, tipo, partite, contabile, intra, quadratura;
    ASSERT_TRUE(causali.GetParametriCausaleMovimentazione(codice, reg, tipo, partite, contabile, intra, quadratura));
    const VoceTipoCausale* v = clsCausaliContabili::TipoCausaleDi(tipo);
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->codice, t.codice);
    EXPECT_EQ(v->lettera, t.lettera);
    EXPECT_EQ(v->impostaImponibile, t.imposta);
    EXPECT_EQ(v->totaleDocumento, t.totale);
    EXPECT_EQ(v->notaVariazione, t.nota);
    EXPECT_EQ(v->esigibilitaDifferita, t.differita);
  }
  EXPECT_EQ(clsCausaliContabili::TipoCausaleDi(Valore("<")), nullptr);
  EXPECT_EQ(clsCausaliContabili::TipoCausaleDi(Valore("")), nullptr);
}

TEST_P(Causali, EveryRegisterTypeComesBackWithItsText) {
  for (int r = 0; r <= 9; ++r) Salva("R" + std::to_string(r), {{"TipoRegistroIva", Valore(std::to_string(r))}});
  for (int r = 0; r <= 9; ++r) {
    SCOPED_TRACE("TipoRegistroIva " + std::to_string(r));
    std::string tipo = causali.GetTipoRegistroIvaCausaleContabile(Valore("R" + std::to_string(r)));
    EXPECT_EQ(tipo, std::to_string(r));
    // Compared as a number: text and integer alike.
    EXPECT_EQ(clsCausaliContabili::GetDescrizioneTipoRegistroIva(Valore(tipo)), Valore(kRegistri[r]));
    EXPECT_EQ(clsCausaliContabili::GetDescrizioneTipoRegistroIva(Valore(r)), Valore(kRegistri[r]));
  }
  for (const Valore& fuori : {Valore(10), Valore("10"), Valore(-1), Valore("abc"), Valore(1.5), Valore::Null()})
    EXPECT_TRUE(clsCausaliContabili::GetDescrizioneTipoRegistroIva(fuori).IsEmpty()) << fuori.Testo();
}

// ---------------------------------------------------------------- unknown causal

TEST_P(Causali, UnknownCausalGivesDefaultsAndFalse) {
  Salva("01", {{"DescrizioneCausale", Valore("Fattura di vendita")}, {"TipoRegistroIva", Valore("1")}});
  Valore ignoto("ZZ");

  Valore reg("x"), tipo("x"), partite("x"), contabile("x"), intra("x"), quadratura("x");
  EXPECT_FALSE(causali.GetParametriCausaleMovimentazione(ignoto, reg, tipo, partite, contabile, intra, quadratura));
  for (const Valore* v : {&reg, &tipo, &partite, &contabile, &intra, &quadratura}) EXPECT_EQ(*v, Valore(""));

  Uscite p;
  for (Valore* v : {&p.descr, &p.registro, &p.tipo, &p.contabile, &p.nonUsata, &p.regProposto}) *v = Valore("x");
  for (auto& v : p.dare) v = Valore("x");
  for (auto& v : p.avere) v = Valore("x");
  for (auto& v : p.ammessi) v = Valore("x");
  EXPECT_FALSE(Leggi("ZZ", p));
  EXPECT_EQ(p.registro, Valore("0"));
  EXPECT_EQ(p.regProposto, Valore("01"));
  EXPECT_EQ(p.descr, Valore(""));
  EXPECT_EQ(p.tipo, Valore(""));
  EXPECT_EQ(p.contabile, Valore("0"));
  EXPECT_EQ(p.nonUsata, Valore("0"));
  int vuoti = 0;
  for (int i = 1; i <= 10; ++i) vuoti += (p.dare[i] == Valore("")) + (p.avere[i] == Valore(""));
  for (int i = 1; i <= 9; ++i) vuoti += p.ammessi[i] == Valore("");
  EXPECT_EQ(vuoti, 29);
  EXPECT_EQ(p.dare[0], Valore("x"));  // element 0 is no sub-account

  Valore regConto("07");
  EXPECT_FALSE(causali.GetParametriCausaleContabilizzazione(ignoto, p.registro, p.tipo, regConto));
  EXPECT_EQ(p.registro, Valore("0"));
  EXPECT_EQ(p.tipo, Valore(""));
  EXPECT_EQ(regConto, Valore("07"));
  EXPECT_FALSE(causali.GetRegistroIVAProposto(ignoto, regConto));
  EXPECT_EQ(regConto, Valore("07"));

  EXPECT_EQ(causali.GetTipoCausale(ignoto), "");
  EXPECT_EQ(causali.GetTipoRegistroIvaCausaleContabile(ignoto), "0");
  EXPECT_EQ(causali.GetOperativitàCausaleContabile(ignoto), "0");
  EXPECT_EQ(causali.GetSerieProposta(ignoto), "");
  EXPECT_FALSE(causali.ExistCausaleContabile(ignoto));
  EXPECT_TRUE(host->Messaggi().empty());
}

TEST_P(Causali, DescriptionOfUnknownCodeWarnsOnlyWhenAsked) {
  Salva("01", {{"DescrizioneCausale", Valore("Fattura di vendita")}});
  EXPECT_EQ(causali.GetDescrizioneCausale(Valore("01")), "Fattura di vendita");
  EXPECT_EQ(causali.GetDescrizioneCausale(Valore("99")), "");
  EXPECT_TRUE(host->Messaggi().empty());

  bool cancel = false;
  EXPECT_EQ(causali.GetDescrizioneCausale(Valore("  "), &cancel), "");
  EXPECT_FALSE(cancel);
  EXPECT_TRUE(host->Messaggi().empty());

  EXPECT_EQ(causali.GetDescrizioneCausale(Valore("99"), &cancel), "");
  EXPECT_TRUE(cancel);
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo, "Codice inesistente.");
  EXPECT_EQ(host->Messaggi()[0].titolo, "Causale Contabile");
}

// ---------------------------------------------------------------- what is saved is what is handed out

TEST_P(Causali, SavedRowIsHandedOutColumnByColumn) {
  RecordValori campi = {{"DescrizioneCausale", Valore("Fattura d'acquisto")},
                        {"TipoRegistroIva", Valore("2")},
                        {"TipoCausale", Valore("0")},
                        {"OperativitaPartite", Valore("3")},
                        {"OperativitaContabile", Valore("1")},
                        {"OperativitaIntra", Valore("2")},
                        {"SerieProposta", Valore("%A/A")},
                        {"RegistroIVAProposto", Valore("02")},
                        {"IndQuadratura", Valore("1")},
                        {"PosContrClifor", Valore(3)},
                        {"FlagNonUtilizzata", Valore("1")},
                        {"FlagInsoluto", Valore("1")},
                        {"OperativitaCespiti", Valore("4")},
                        {"RegistroIVAPropostoCorr", Valore("05")},
                        {"No su allegati IVA", Valore(true)},
                        {"TipoRegistroIVACRSemp", Valore("2")},
                        {"RegistroIVACRSemp", Valore("03")},
                        {"SottocontoIVARSM", Valore("2810001")},
                        {"OperativitaIntAut", Valore(2)}};
  for (int i = 1; i <= 9; ++i) campi["Conto" + std::to_string(i)] = Valore("60" + std::to_string(i) + "0001");
  Salva("ACQ", campi);
  Valore sd[11], sa[11];
  for (int i = 1; i <= 10; ++i) {
    sd[i] = Valore("D" + std::to_string(i));
    sa[i] = Valore("A" + std::to_string(i));
  }
  bool cancel = false;
  ASSERT_TRUE(causali.SalvaRecordSottocontiProposti(Valore("ACQ"), sd, sa, Valore("prova"), 1, cancel, true));

  Uscite p;
  ASSERT_TRUE(Leggi("ACQ", p));
  const std::pair<const Valore*, const char*> attesi[] = {
      {&p.descr, "Fattura d'acquisto"}, {&p.registro, "2"}, {&p.tipo, "0"},          {&p.partite, "3"},
      {&p.contabile, "1"},             {&p.intra, "2"},    {&p.serie, "%A/A"},      {&p.regProposto, "02"},
      {&p.quadratura, "1"},            {&p.nonUsata, "1"}, {&p.insoluto, "1"},      {&p.cespiti, "4"},
      {&p.regSemp, "2"},               {&p.numSemp, "03"}, {&p.rsm, "2810001"}};
  for (const auto& [v, atteso] : attesi) EXPECT_EQ(*v, Valore(atteso)) << atteso;
  EXPECT_EQ(p.pos.ComeIntero(), 3);
  EXPECT_EQ(p.intAut.ComeIntero(), 2);
  for (int i = 1; i <= 10; ++i) {
    EXPECT_EQ(p.dare[i], sd[i]);
    EXPECT_EQ(p.avere[i], sa[i]);
  }
  for (int i = 1; i <= 9; ++i) EXPECT_EQ(p.ammessi[i], Valore("60" + std::to_string(i) + "0001"));

  // Saving the proposals left the other columns alone, and a later save of the data columns
  // leaves the proposals alone.
  Salva("ACQ", {{"DescrizioneCausale", Valore("Acquisti")}});
  ASSERT_TRUE(Leggi("ACQ", p));
  EXPECT_EQ(p.descr, Valore("Acquisti"));
  EXPECT_EQ(p.registro, Valore("2"));
  EXPECT_EQ(p.dare[10], Valore("D10"));
  EXPECT_EQ(p.avere[1], Valore("A1"));

  Valore r2, t2, p2, c2, i2, q2;
  ASSERT_TRUE(causali.GetParametriCausaleMovimentazione(Valore("ACQ"), r2, t2, p2, c2, i2, q2));
  EXPECT_EQ(r2, Valore("2"));
  EXPECT_EQ(c2, Valore("1"));
  EXPECT_EQ(q2, Valore("1"));
  EXPECT_EQ(causali.GetOperativitàCausaleContabile(Valore("ACQ")), "1");
  EXPECT_EQ(causali.GetSerieProposta(Valore("ACQ")), "%A/A");
}

TEST_P(Causali, NullColumnsReadAsTheirDefaults) {
  // Only the proposals: every other column is Null.
  Valore sd[11], sa[11];
  bool cancel = false;
  ASSERT_TRUE(causali.SalvaRecordSottocontiProposti(Valore("NU"), sd, sa, Valore("prova"), 1, cancel));
  EXPECT_EQ(Descrizione("NU"), "<null>");

  Uscite p;
  ASSERT_TRUE(Leggi("NU", p));
  EXPECT_EQ(p.regProposto, Valore("01"));
  for (const Valore* v : {&p.registro, &p.partite, &p.contabile, &p.intra, &p.quadratura, &p.nonUsata, &p.insoluto,
                          &p.cespiti, &p.regSemp, &p.intAut})
    EXPECT_EQ(*v, Valore("0"));
  for (const Valore* v : {&p.descr, &p.tipo, &p.serie, &p.pos, &p.numSemp, &p.rsm}) EXPECT_EQ(*v, Valore(""));

  Valore r("x"), t("x"), reg("x");
  ASSERT_TRUE(causali.GetParametriCausaleContabilizzazione(Valore("NU"), r, t, reg));
  EXPECT_EQ(r, Valore("0"));
  EXPECT_EQ(t, Valore(""));
  EXPECT_EQ(reg, Valore("01"));
  reg = Valore("x");
  EXPECT_TRUE(causali.GetRegistroIVAProposto(Valore("NU"), reg));
  EXPECT_EQ(reg, Valore("01"));
}

// ---------------------------------------------------------------- the overwrite question

TEST_P(Causali, SaveAnsweredNoWritesNothing) {
  Salva("01", {{"DescrizioneCausale", Valore("Originale")}, {"TipoCausale", Valore("0")}});
  Recordset ta, tb;
  ASSERT_TRUE(causali.LocalizzaRecord(ta, Valore("01"), Valore("A"), 1));
  ASSERT_TRUE(causali.LocalizzaRecord(tb, Valore("01"), Valore("B"), 2));  // B reached the row after A
  ta.Close();
  tb.Close();

  host->Rispondi(vbNo);
  bool cancel = false;
  EXPECT_FALSE(causali.SalvaRecord(Valore("01"), {{"DescrizioneCausale", Valore("Di A")}, {"TipoCausale", Valore("1")}},
                                   Valore("A"), 1, cancel));
  EXPECT_TRUE(cancel);
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].stile, vbYesNo | vbQuestion);
  EXPECT_EQ(Descrizione("01"), "Originale");
  EXPECT_EQ(causali.GetTipoCausale(Valore("01")), "0");
  EXPECT_EQ(cn->Scalare("SELECT [clientName] FROM [Causali Contabili]").Testo(), "B");

  Valore sd[11], sa[11];
  sd[1] = Valore("1010001");
  host->Rispondi(vbNo);
  EXPECT_FALSE(causali.SalvaRecordSottocontiProposti(Valore("01"), sd, sa, Valore("A"), 1, cancel));
  EXPECT_TRUE(cancel);
  EXPECT_TRUE(cn->Scalare("SELECT [SottocontoDare1] FROM [Causali Contabili]").IsNull());

  // Yes overwrites, and the row now carries A's stamp.
  host->Rispondi(vbYes);
  EXPECT_TRUE(causali.SalvaRecord(Valore("01"), {{"DescrizioneCausale", Valore("Di A")}}, Valore("A"), 1, cancel));
  EXPECT_FALSE(cancel);
  EXPECT_EQ(Descrizione("01"), "Di A");
  EXPECT_EQ(Righe(), 1);

  // NoPrompt overwrites another reader's row without a word.
  ASSERT_TRUE(causali.LocalizzaRecord(tb, Valore("01"), Valore("B"), 2));
  tb.Close();
  size_t prima = host->Messaggi().size();
  EXPECT_TRUE(causali.SalvaRecord(Valore("01"), {{"DescrizioneCausale", Valore("Caricata")}}, Valore("A"), 1, cancel,
                                  true));
  EXPECT_EQ(host->Messaggi().size(), prima);
  EXPECT_EQ(Descrizione("01"), "Caricata");
}

TEST_P(Causali, UnknownColumnWritesNothing) {
  bool cancel = false;
  EXPECT_THROW(causali.SalvaRecord(Valore("01"), {{"DescrizioneCausale", Valore("x")}, {"Inventata", Valore("1")}},
                                   Valore("A"), 1, cancel),
               ErroreDb);
  EXPECT_EQ(Righe(), 0);
}

// ---------------------------------------------------------------- codes, navigation, deletion

TEST_P(Causali, CodeWithApostropheIsStoredAndFound) {
  Salva(" A'1 ", {{"DescrizioneCausale", Valore("Con l'apostrofo")}});
  EXPECT_TRUE(causali.ExistCausaleContabile(Valore("A'1")));
  EXPECT_EQ(causali.GetDescrizioneCausale(Valore("A'1")), "Con l'apostrofo");
  Valore codice("");
  ASSERT_TRUE(causali.RecordPrecedente(codice));
  EXPECT_EQ(codice, Valore("A'1"));  // stored trimmed
  EXPECT_TRUE(causali.CancellaRecord(Valore("A'1")));
  EXPECT_EQ(Righe(), 0);
}

TEST_P(Causali, SteppingThroughTheCodes) {
  for (const char* c : {"20", "10", "30"}) Salva(c, {{"DescrizioneCausale", Valore(c)}});
  // From a blank screen the ends are stepped in the first test; here the middle and the last.
  Valore c("10");
  ASSERT_TRUE(causali.RecordSuccessivo(c));
  EXPECT_EQ(c, Valore("20"));
  c = Valore("25");
  ASSERT_TRUE(causali.RecordPrecedente(c));
  EXPECT_EQ(c, Valore("20"));
  c = Valore("30");
  EXPECT_FALSE(causali.RecordSuccessivo(c));
  EXPECT_EQ(c, Valore("30"));

  std::vector<std::string> voci;
  EXPECT_TRUE(causali.LoadCausaliInCombo([&](const std::string& s) { voci.push_back(s); }));
  EXPECT_EQ(voci, (std::vector<std::string>{"10 10", "20 20", "30 30"}));
  Recordset t;
  ASSERT_TRUE(causali.LocalizzaTuttiRecord(t));
  EXPECT_EQ(t.RecordCount(), 3u);
  EXPECT_EQ(t("CodiceCausale").Value(), Valore("10"));

  EXPECT_TRUE(causali.AzzeraCausaliContabili());
  EXPECT_EQ(Righe(), 0);
  voci.clear();
  EXPECT_FALSE(causali.LoadCausaliInCombo([&](const std::string& s) { voci.push_back(s); }));
  EXPECT_TRUE(voci.empty());
}

TEST_P(Causali, DeletingACausalInUseSucceedsAndLeavesTheJournal) {
  Salva("01", {{"DescrizioneCausale", Valore("Vendite")}});
  cn->Esegui(
      "INSERT INTO [Prima Nota] ([NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere], "
      "[CodiceCausale], [ImportoMovimento]) VALUES ('00001', 'N', '001', 'D', '01', ?)",
      {Valore(Importo(100))});
  EXPECT_TRUE(causali.CancellaRecord(Valore("01")));
  EXPECT_FALSE(causali.ExistCausaleContabile(Valore("01")));
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE [CodiceCausale] = '01'").ComeIntero(), 1);
}

// ---------------------------------------------------------------- series template

TEST(CausaliSerie, TemplateExpandsByTheDocumentYear) {
  Valore d2013(*Data::Crea(2013, 6, 15));
  EXPECT_EQ(clsCausaliContabili::GetSeriePropostaDecodificata(Valore("%A/V"), d2013), "13/V");
  EXPECT_EQ(clsCausaliContabili::GetSeriePropostaDecodificata(Valore("%AAA/%A"), Valore("15/06/2013")), "2013/13");
  EXPECT_EQ(clsCausaliContabili::GetSeriePropostaDecodificata(Valore("V%AAA%AAA"), d2013), "V20132013");
  EXPECT_EQ(clsCausaliContabili::GetSeriePropostaDecodificata(Valore("ABC"), d2013), "ABC");
  std::string anno = std::to_string(Data::Oggi().Anno());
  EXPECT_EQ(clsCausaliContabili::GetSeriePropostaDecodificata(Valore("%AAA"), Valore("31/02/2013")), anno);
  EXPECT_EQ(clsCausaliContabili::GetSeriePropostaDecodificata(Valore("%A-X"), Valore()), anno.substr(2) + "-X");
}
