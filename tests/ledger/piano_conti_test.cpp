#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame/Comuni.h"
#include "frame/VornServer.h"
#include "ledger/clsPianoConti.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;
using Righe = std::vector<std::string>;

namespace {

const char* const kVariato =
    "Il record è stato variato da un altro utente/istanza.\rSi desidera proseguire sovrascrivendo le variazioni?";

// A control of the client's form that remembers being highlighted.
struct ControlloProva : IControllo {
  long colore = 0;
  void BackColor(long c) override { colore = c; }
};

std::string K(const Valore& g, const Valore& c, const Valore& s) { return g.Testo() + "/" + c.Testo() + "/" + s.Testo(); }
Righe Chiavi(Recordset& t) {
  Righe v;
  for (; !t.Eof(); t.MoveNext()) v.push_back(K(t("Gruppo"), t("Conto"), t("Sottoconto")));
  return v;
}
Valore Imp(const char* t) { return Valore(*Importo::DaTestoPunto(t)); }
Righe Rovescia(const Righe& r) { return Righe(r.rbegin(), r.rend()); }

}  // namespace

class PianoConti : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    piano.cn = cn;
  }

  void Salva(const std::string& g, const std::string& c, const std::string& s, const std::string& descrizione,
             const std::string& sezione = "") {
    bool cancel = true;
    RecordValori campi{{"Descrizione", Valore(descrizione)}};
    if (!sezione.empty()) campi["IndDiBilancio"] = Valore(sezione);
    ASSERT_TRUE(piano.SalvaRecord(Valore(g), Valore(c), Valore(s), campi, Valore("prova"), 1, cancel));
    ASSERT_FALSE(cancel);
  }
  bool Saldi(const char* g, const char* c, const char* s, Valore iniz, Valore dare, Valore avere, Valore inizProgr,
             Valore dareProgr, Valore avereProgr, Valore contoSottocon, const char* cliente = "A", long hWnd = 1) {
    cancel = false;
    return piano.SalvaRecordSaldi(Valore(g), Valore(c), Valore(s), iniz, dare, avere, inizProgr, dareProgr, avereProgr,
                                  contoSottocon, Valore(cliente), hWnd, cancel);
  }
  // The current balance of a code as "D 12,5000", "A ...", or "0".
  std::string Attuale(const char* codice, bool iniziale = false) {
    Valore da, i, daAtt, a;
    piano.GetDareAvereSaldoSottoconto(Valore(codice), da, i, daAtt, a);
    const Valore& lato = iniziale ? da : daAtt;
    Importo imp = NullToZeroCy(iniziale ? i : a);
    return lato.Testo().empty() && imp.Zero() ? "0" : lato.Testo() + " " + Valore(imp).Testo();
  }

  // A small chart, saved out of key order.
  void Piano() {
    Salva("05", "01", "010", "Cassa contanti");
    Salva("01", "", "", "Immobilizzazioni", "0");
    Salva("01", "02", "", "Immobilizzazioni materiali");
    Salva("01", "01", "002", "Avviamento");
    Salva("01", "01", "", "Immobilizzazioni immateriali");
    Salva("01", "01", "001", "Costi di impianto");
    Salva("01", "02", "001", "Terreni");
    Salva("05", "", "", "Disponibilita' liquide", "0");
    Salva("05", "01", "", "Cassa");
    Salva("30", "", "", "Costi", "1");
  }
  const Righe ordine = {"01//",      "01/01/", "01/01/001", "01/01/002", "01/02/",
                        "01/02/001", "05//",   "05/01/",    "05/01/010", "30//"};

  // The whole walk: the backward step from an empty code gives the first row, the forward
  // step the last; start at one end and walk to the other.
  Righe Cammina(bool avanti) {
    Righe visti;
    Valore g(""), c(""), s("");
    bool ok = avanti ? piano.RecordPrecedente(g, c, s) : piano.RecordSuccessivo(g, c, s);
    while (ok && visti.size() < 50) {
      visti.push_back(K(g, c, s));
      ok = avanti ? piano.RecordSuccessivo(g, c, s) : piano.RecordPrecedente(g, c, s);
    }
    return visti;
  }
  std::string Passo(bool avanti, const char* g, const char* c, const char* s) {
    Valore vg(g), vc(c), vs(s);
    bool ok = avanti ? piano.RecordSuccessivo(vg, vc, vs) : piano.RecordPrecedente(vg, vc, vs);
    return (ok ? "" : "no ") + K(vg, vc, vs);
  }
  long long Conta(const std::string& tabella) {
    return cn->Scalare("SELECT count(*) FROM [" + tabella + "]").ComeIntero().value_or(-1);
  }

  clsPianoConti piano;
  bool cancel = false;
};

// ---------------------------------------------------------------- walking the chart

TEST_P(PianoConti, WalksTheThreeLevelsInCodeOrderAndStopsAtTheEnds) {
  Piano();
  EXPECT_EQ(Cammina(true), ordine);
  EXPECT_EQ(Cammina(false), Rovescia(ordine));

  EXPECT_EQ(Passo(true, "", "", ""), "30//");       // a blank screen steps forward to the last row
  EXPECT_EQ(Passo(false, "", "zz", "zz"), "01//");  // and back to the first: only the group counts
  EXPECT_EQ(Passo(true, "30", "", ""), "no 30//");  // past either end: false, arguments untouched
  EXPECT_EQ(Passo(false, "01", "", ""), "no 01//");
  EXPECT_EQ(Passo(true, "05", "", ""), "05/01/");   // a group, then its first account
  EXPECT_EQ(Passo(true, "1", "1", "5"), "01/02/");  // codes not in the chart, without leading zeros
  EXPECT_EQ(Passo(false, "01", "01", "005"), "01/01/002");

  piano.AzzeraPianoConti();
  EXPECT_EQ(Passo(true, "", "", ""), "no //");
  EXPECT_EQ(Passo(false, "", "", ""), "no //");
}

// ---------------------------------------------------------------- empty and null parts

TEST_P(PianoConti, NullPartsHaveTheSameKeyAsEmptyOnes) {
  Piano();
  // Group 07 as an old archive holds it: null parts, and blanks on one account.
  cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione], [IndDiBilancio]) "
             "VALUES ('07', NULL, NULL, 'Crediti', '0'), ('07', '01', NULL, 'Crediti verso clienti', NULL), "
             "('07', '02', '   ', 'Crediti diversi', NULL)");
  Salva("07", "01", "001", "Clienti Italia");

  // Group 05 has empty texts, group 07 nulls: every lookup agrees.
  for (const std::string g : {"05", "07"}) {
    SCOPED_TRACE(g);
    EXPECT_TRUE(piano.ExistRecord(Valore(g), Valore(""), Valore("")));
    EXPECT_TRUE(piano.ExistSottoconto(Valore(g), Valore::Null(), Valore::Null()));
    EXPECT_TRUE(piano.ExistRecord(Valore(g), Valore("01"), Valore("")));
    EXPECT_NE(piano.GetDescrizione(Valore(g), Valore(""), Valore("")), "");
    EXPECT_EQ(piano.GetSezioneBilancio(Valore(g + "01001")).Testo(), "0");
    EXPECT_TRUE(piano.GruppoConConti(Valore(g)));
    EXPECT_TRUE(piano.ContoConSottoconti(Valore(g), Valore("01")));
    Recordset t;
    ASSERT_TRUE(piano.LocalizzaRecord(t, Valore(g), Valore(""), Valore(""), Valore("prova"), 1));
    EXPECT_EQ(t.RecordCount(), 1u);
    // The group's branch: its own row and its accounts, and with them every row of any group
    // whose sub-account is Null (here the group row and the account of 07).
    ASSERT_TRUE(piano.LocalizzaRamoGruppo(t, Valore(g)));
    EXPECT_EQ(Chiavi(t), (g == "05" ? Righe{"05//", "05/01/", "07//", "07/01/"} : Righe{"07//", "07/01/", "07/02/"}));
    ASSERT_TRUE(piano.LocalizzaRamoConto(t, Valore(g), Valore("01")));
    EXPECT_EQ(Chiavi(t)[0], g + "/01/");
  }
  EXPECT_EQ(piano.GetDescrizione(Valore("07"), Valore("02"), Valore("")), "Crediti diversi");
  EXPECT_FALSE(piano.ContoConSottoconti(Valore("07"), Valore("02")));  // blanks are no sub-account

  // The walk and the listings put the null rows in place, with empty text, on both engines.
  Righe tutte = ordine;
  tutte.insert(tutte.begin() + 9, {"07//", "07/01/", "07/01/001", "07/02/"});
  EXPECT_EQ(Cammina(true), tutte);
  EXPECT_EQ(Cammina(false), Rovescia(tutte));
  Recordset t;
  ASSERT_TRUE(piano.LocalizzaTuttiRecord(t));
  EXPECT_EQ(Chiavi(t), tutte);
  ASSERT_TRUE(piano.LocalizzaTutti(t));
  EXPECT_EQ(Chiavi(t), tutte);
  ASSERT_TRUE(piano.LocalizzaTuttiGruppi(t));
  EXPECT_EQ(Chiavi(t), (Righe{"01//", "05//", "07//", "30//"}));

  // Saving the null group row overwrites it rather than adding a second group 07, and leaves
  // the section it was not given.
  ASSERT_TRUE(piano.SalvaRecord(Valore("07"), Valore(""), Valore(""), {{"Descrizione", Valore("Crediti a breve")}},
                                Valore("prova"), 1, cancel));
  EXPECT_EQ(Conta("Piano Dei Conti"), 14);
  EXPECT_EQ(piano.GetDescrizione(Valore("07"), Valore::Null(), Valore("")), "Crediti a breve");
  EXPECT_EQ(piano.GetSezioneBilancio(Valore("0701001")).Testo(), "0");
  // Deleting by the empty key removes the null account row, and only that.
  EXPECT_TRUE(piano.CancellaRecord(Valore("07"), Valore("01"), Valore("")));
  EXPECT_FALSE(piano.ExistRecord(Valore("07"), Valore("01"), Valore::Null()));
  EXPECT_TRUE(piano.ExistRecord(Valore("07"), Valore("01"), Valore("001")));
}

// ---------------------------------------------------------------- saving under the stamp

TEST_P(PianoConti, ChangedRowAnsweredNoWritesNothing) {
  Piano();
  Recordset mio, suo;
  ASSERT_TRUE(piano.LocalizzaRecord(mio, Valore("01"), Valore("01"), Valore("001"), Valore("A"), 10));
  // Another user opens the same row on a connection of its own.
  clsPianoConti altro;
  altro.cn = AltraConnessione();
  ASSERT_TRUE(altro.LocalizzaRecord(suo, Valore("01"), Valore("01"), Valore("001"), Valore("B"), 20));
  altro.cn->Close();
  auto salva = [&](const char* descrizione, long hWnd, bool noPrompt = false) {
    return piano.SalvaRecord(Valore("01"), Valore("01"), Valore("001"),
                             {{"Descrizione", Valore(descrizione)}, {"IndDiBilancio", Valore("1")}}, Valore("A"),
                             hWnd, cancel, noPrompt);
  };

  host->Rispondi(vbNo);
  EXPECT_FALSE(salva("Cambiata", 10));
  EXPECT_TRUE(cancel);
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo, kVariato);
  EXPECT_EQ(host->Messaggi()[0].titolo, "Vorn XP");
  Recordset r = cn->Execute("SELECT [Descrizione], [IndDiBilancio], [clientName] FROM [Piano Dei Conti] "
                            "WHERE [Gruppo] = '01' AND [Conto] = '01' AND [Sottoconto] = '001'");
  EXPECT_EQ(r("Descrizione").Value().Testo(), "Costi di impianto");
  EXPECT_TRUE(r("IndDiBilancio").IsNull());
  EXPECT_EQ(r("clientName").Value().Testo(), "B");  // still the other reader's stamp

  host->Rispondi(vbYes);
  EXPECT_TRUE(salva("Cambiata", 10));
  EXPECT_FALSE(cancel);
  EXPECT_EQ(piano.GetDescrizione(Valore("01"), Valore("01"), Valore("001")), "Cambiata");
  // Which stamps ask is the protocol's own test; here only that a loader's save does not.
  EXPECT_TRUE(salva("Caricata", 12, true));
  EXPECT_EQ(host->Messaggi().size(), 2u);
  EXPECT_EQ(piano.GetDescrizione(Valore("01"), Valore("01"), Valore("001")), "Caricata");

  // The balance row follows the same protocol: no keeps every amount.
  ASSERT_TRUE(Saldi("01", "01", "001", Imp("100.1234"), Imp("5"), Imp("0"), Imp("0"), Imp("0"), Imp("0"), Imp("7")));
  Recordset t;
  ASSERT_TRUE(piano.LocalizzaRecordSaldi(t, Valore("01"), Valore("01"), Valore("001"), Valore("B"), 2));
  EXPECT_FALSE(Saldi("01", "01", "001", Imp("1"), Imp("1"), Imp("1"), Imp("1"), Imp("1"), Imp("1"), Imp("1")));
  EXPECT_TRUE(cancel);
  EXPECT_EQ(host->Ultimo(), kVariato);
  EXPECT_EQ(Attuale("0101001", true), "D 100,1234");
  EXPECT_EQ(Attuale("0101001"), "D 105,1234");
}

TEST_P(PianoConti, SaveStoresEveryColumnAndRefusesUnknownOnes) {
  RecordValori campi;
  for (const auto& c : clsPianoConti::ColonneSalvaRecord()) campi[c] = Valore(c.substr(0, 1));
  campi["Descrizione"] = Valore("Fornitori dell'estero");
  ASSERT_TRUE(piano.SalvaRecord(Valore(" 12 "), Valore("03"), Valore("004"), campi, Valore("A"), 1, cancel));
  Recordset t;
  ASSERT_TRUE(piano.LocalizzaRecord(t, Valore("12"), Valore("03"), Valore("004"), Valore("A"), 1));
  EXPECT_EQ(t("Gruppo").Value().Testo(), "12");  // key parts trimmed
  for (const auto& c : clsPianoConti::ColonneSalvaRecord()) EXPECT_EQ(t(c).Value().Testo(), campi[c].Testo()) << c;

  // A name that is no data column writes nothing, not even the known ones beside it.
  EXPECT_THROW(piano.SalvaRecord(Valore("12"), Valore("03"), Valore("004"),
                                 {{"Descrizione", Valore("Altro")}, {"Sottoconto", Valore("999")}}, Valore("A"), 1,
                                 cancel),
               ErroreDb);
  EXPECT_THROW(piano.SalvaRecord(Valore("13"), Valore(""), Valore(""), {{"Descrizion", Valore("x")}}, Valore("A"), 1,
                                 cancel),
               ErroreDb);
  EXPECT_EQ(piano.GetDescrizione(Valore("12"), Valore("03"), Valore("004")), "Fornitori dell'estero");
  EXPECT_EQ(Conta("Piano Dei Conti"), 1);
}

// ---------------------------------------------------------------- search and apostrophes

TEST_P(PianoConti, SearchWithApostrophesAndItsContinuation) {
  Piano();
  Salva("40", "05", "001", "Erario c/IVA d'acquisto");
  Salva("40", "05", "002", "Erario c/IVA dell'anno");
  Salva("06", "", "", "Banche", "0");
  Salva("06", "02", "", "Banche conti attivi");
  Salva("06", "02", "001", "Banca del Monte");
  Salva("08", "01", "001", "Banca di Credito");  // a later group with a lower account
  Salva("08", "03", "005", "Banca Agricola");
  EXPECT_EQ(piano.GetDescrizioneSottoconto(Valore("4005001")), "Erario c/IVA d'acquisto");

  auto cerca = [&](const char* testo, Valore& g, Valore& c, Valore& s) {
    bool ok = piano.Ricerca(Valore(testo), g, c, s);
    return (ok ? "" : "no ") + K(g, c, s);
  };
  Valore g(""), c(""), s("");
  EXPECT_EQ(cerca("'a", g, c, s), "40/05/001");
  EXPECT_EQ(cerca("'a", g, c, s), "40/05/002");  // continued from the hit
  EXPECT_EQ(cerca("'a", g, c, s), "no 40/05/002");

  g = c = s = Valore("");
  EXPECT_EQ(cerca("BANC", g, c, s), "06//");       // any level, any case
  EXPECT_EQ(cerca("BANC", g, c, s), "06/02/001");  // from a group: sub-accounts only
  // 08/01/001 is passed over: its account comes before 02.
  EXPECT_EQ(cerca("BANC", g, c, s), "08/03/005");
  EXPECT_EQ(cerca("BANC", g, c, s), "no 08/03/005");
  Valore g2("06"), c2("02"), s2("");
  EXPECT_EQ(cerca("banca", g2, c2, s2), "06/02/001");

  // A code with an apostrophe is stored, found and deleted like any other.
  Salva("9'", "", "", "Prova");
  EXPECT_TRUE(piano.ExistRecord(Valore("9'"), Valore(""), Valore("")));
  EXPECT_TRUE(piano.CancellaRecord(Valore("9'"), Valore(""), Valore("")));
  EXPECT_FALSE(piano.ExistRecord(Valore("9'"), Valore(""), Valore("")));
}

// ---------------------------------------------------------------- descriptions and messages

TEST_P(PianoConti, SubAccountDescriptionAndItsMessages) {
  Piano();
  ControlloProva controllo;
  EXPECT_EQ(piano.GetDescrizioneSottoconto(Valore("0101002"), &cancel, &controllo), "Avviamento");
  EXPECT_EQ(piano.GetDescrizioneSottoconto(Valore(""), &cancel, &controllo), "");  // empty: silent
  EXPECT_EQ(piano.GetDescrizioneSottoconto(Valore::Null(), &cancel), "");
  EXPECT_EQ(piano.GetDescrizioneSottoconto(Valore("010100")), "");   // no Cancel: silent
  EXPECT_EQ(piano.GetDescrizioneSottoconto(Valore("0101009")), "");
  EXPECT_EQ(piano.GetDescrizione(Valore("99"), Valore(""), Valore("")), "");
  EXPECT_FALSE(cancel);
  EXPECT_EQ(controllo.colore, 0);
  EXPECT_TRUE(host->Messaggi().empty());

  // A short code: "Inserire un sottoconto"; a full code missing from the chart, or one with
  // more characters behind a real sub-account: the application's title.
  const std::pair<const char*, const char*> casi[] = {
      {"010100", "Inserire un sottoconto"}, {"0101009", "Vorn XP"}, {"01010029", "Vorn XP"}};
  for (const auto& [codice, titolo] : casi) {
    SCOPED_TRACE(codice);
    cancel = false;
    controllo.colore = 0;
    host->Pulisci();
    EXPECT_EQ(piano.GetDescrizioneSottoconto(Valore(codice), &cancel, &controllo), "");
    EXPECT_TRUE(cancel);
    ASSERT_EQ(host->Messaggi().size(), 1u);
    EXPECT_EQ(host->Messaggi()[0].testo, "Codice inesistente.");
    EXPECT_EQ(host->Messaggi()[0].titolo, titolo);
    EXPECT_EQ(controllo.colore, 65535);
  }
}

TEST_P(PianoConti, SectionOfTheBalanceSheetComesFromTheGroupRow) {
  Piano();
  Salva("30", "01", "001", "Acquisti", "0");  // a sub-account's own column does not count
  Salva("90", "", "", "Conti di riepilogo", "2");
  EXPECT_EQ(piano.GetSezioneBilancio(Valore("3001001")).Testo(), "1");
  EXPECT_EQ(piano.GetSezioneBilancio(Valore("0501010")).Testo(), "0");
  Valore nessuna = piano.GetSezioneBilancio(Valore("2201001"));  // no group row: the number 0
  EXPECT_TRUE(nessuna.IsNumber());
  EXPECT_EQ(NullToZeroLng(nessuna), 0);
  EXPECT_EQ(NullToZeroLng(piano.GetSezioneBilancio(Valore(""))), 0);

  Recordset t;
  ASSERT_TRUE(piano.LocalizzaTuttiRecord(t));
  Righe sezioni;
  for (; !t.Eof(); t.MoveNext())
    if (t("Conto").Value().Testo().empty()) sezioni.push_back(t("SezBilancio").Value().Testo());
  EXPECT_EQ(sezioni, (Righe{"Patrimoniale", "Patrimoniale", "Economico", "Riepilogo"}));
}

// ---------------------------------------------------------------- balances

TEST_P(PianoConti, BalancesAreExactAndSigned) {
  Piano();
  EXPECT_EQ(Attuale("0101001", true), "0");  // no balance row: zero, no side
  EXPECT_EQ(Attuale("0101001"), "0");

  // Opening 50 - 100.1234 = 50.1234 credit; current -50.1234 + 300.0001 - 20.0003 + 0.0007 -
  // 0.0001 = 229.8770 debit.
  ASSERT_TRUE(Saldi("01", "01", "001", Imp("-100.1234"), Imp("300.0001"), Imp("20.0003"), Imp("50"), Imp("0.0007"),
                    Imp("0.0001"), Imp("999")));
  EXPECT_EQ(Attuale("0101001", true), "A 50,1234");
  EXPECT_EQ(Attuale("0101001"), "D 229,877");
  // Back to exactly zero on the current side only; null amounts count as zero.
  ASSERT_TRUE(Saldi("01", "01", "002", Imp("10"), Imp("0"), Imp("15.5"), Valore::Null(), Imp("5.5"), Imp("0"),
                    Valore::Null()));
  EXPECT_EQ(Attuale("0101002", true), "D 10");
  EXPECT_EQ(Attuale("0101002"), "0");

  // Zeroing keeps SaldoContoSottocon and the rows.
  piano.AzzeraSaldi();
  EXPECT_EQ(Attuale("0101001"), "0");
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT [SaldoContoSottocon] FROM [Saldi Piano Dei Conti] "
                                     "WHERE [CodiceSottoconto] = '001'")),
            Importo(999));
  EXPECT_EQ(Conta("Saldi Piano Dei Conti"), 2);
}

TEST_P(PianoConti, DeletingAccountsAndBalancesAreSeparate) {
  Piano();
  ASSERT_TRUE(Saldi("01", "01", "001", Imp("3"), Imp("0"), Imp("0"), Imp("0"), Imp("0"), Imp("0"), Imp("0")));
  ASSERT_TRUE(Saldi("05", "01", "010", Imp("4"), Imp("0"), Imp("0"), Imp("0"), Imp("0"), Imp("0"), Imp("0")));
  // A group with children goes alone; a sub-account goes and its balance stays.
  EXPECT_TRUE(piano.CancellaRecord(Valore("01"), Valore(""), Valore("")));
  EXPECT_FALSE(piano.ExistRecord(Valore("01"), Valore(""), Valore("")));
  EXPECT_TRUE(piano.GruppoConConti(Valore("01")));
  EXPECT_TRUE(piano.CancellaRecord(Valore("01"), Valore("01"), Valore("001")));
  EXPECT_FALSE(piano.ExistSottoconto(Valore("01"), Valore("01"), Valore("001")));
  EXPECT_EQ(Attuale("0101001"), "D 3");
  EXPECT_TRUE(piano.CancellaRecordSaldi(Valore("01"), Valore("01"), Valore("001")));
  Recordset t;
  EXPECT_FALSE(piano.LocalizzaRecordSaldi(t, Valore("01"), Valore("01"), Valore("001"), Valore("A"), 1));
  EXPECT_TRUE(piano.CancellaRecord(Valore("77"), Valore("01"), Valore("001")));  // nothing there: no error
  EXPECT_FALSE(piano.GruppoConConti(Valore("30")));
  EXPECT_FALSE(piano.ContoConSottoconti(Valore("05"), Valore("02")));

  piano.AzzeraPianoConti();
  EXPECT_EQ(Conta("Piano Dei Conti"), 0);
  EXPECT_EQ(Attuale("0501010"), "D 4");  // the balances outlive the chart
}

VORN_SU_DUE_MOTORI(PianoConti);
