// The small master archives: stepping, deletion of zones, descriptions and their messages,
// saves under the overwrite question, and what some members add.
#include <gtest/gtest.h>

#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "masterdata/clsAgenti.h"
#include "masterdata/clsAnagraficaListini.h"
#include "masterdata/clsAnagraficheComuni.h"
#include "masterdata/clsCausaliMagazzino.h"
#include "masterdata/clsGruppiCliFor.h"
#include "masterdata/clsLingue.h"
#include "masterdata/clsLocalita.h"
#include "masterdata/clsNazioni.h"
#include "masterdata/clsPAContratti.h"
#include "masterdata/clsSedi.h"
#include "masterdata/clsSpedizioni.h"
#include "masterdata/clsTrascodifiche.h"
#include "masterdata/clsZone.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

// A control of the client's form that remembers being marked.
struct ControlloProva : IControllo {
  bool abilitato = false;
  long colore = 0;
  void Enabled(bool b) override { abilitato = b; }
  void BackColor(long c) override { colore = c; }
};

struct ComboProva : ICombo {
  std::vector<std::string> voci;
  std::vector<long> dati;
  void Clear() override { voci.clear(), dati.clear(); }
  void AddItem(const std::string& s) override { voci.push_back(s); }
  void ItemData(long d) override { dati.push_back(d); }
};

}  // namespace

class Famiglia : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    zone.cn = cn;
  }
  void Zona(const char* z, const Valore& sub, const char* descr) {
    cn->Esegui("INSERT INTO [Zone Sottozone] ([Codice Zona], [Codice Sottozona], [Descrizione]) VALUES (?, ?, ?)",
               {z, sub, descr});
  }
  long long Conta(const std::string& tabella) {
    return cn->Scalare("SELECT COUNT(*) FROM [" + tabella + "]").ComeIntero().value_or(-1);
  }
  clsZone zone;
};
VORN_SU_DUE_MOTORI(Famiglia);

TEST_P(Famiglia, ZoneSteppingStopsAtTheEndsAndCountsOnlyTheZonesOwnRows) {
  Valore z("");
  EXPECT_FALSE(zone.RecordSuccessivo(z));  // an empty archive
  EXPECT_FALSE(zone.RecordPrecedente(z));
  EXPECT_EQ(z.Testo(), "");
  EXPECT_EQ(zone.GetMaxCodice(), "000000");

  // Zone rows with the three blank forms of sub-zone, and sub-zones that must not count.
  Zona("10", "", "Nord");
  Zona("10", "A", "Nord A");
  Zona("20", Valore::Null(), "Centro");
  Zona("25", "B", "solo una sottozona");
  Zona("30", "   ", "Sud");
  ASSERT_TRUE(zone.RecordSuccessivo(z));  // a blank code: the last zone
  EXPECT_EQ(z.Testo(), "30");
  EXPECT_FALSE(zone.RecordSuccessivo(z));  // past the last one: untouched
  EXPECT_EQ(z.Testo(), "30");
  ASSERT_TRUE(zone.RecordPrecedente(z));
  EXPECT_EQ(z.Testo(), "20");  // "25" has only a sub-zone
  ASSERT_TRUE(zone.RecordPrecedente(z));
  EXPECT_EQ(z.Testo(), "10");
  EXPECT_FALSE(zone.RecordPrecedente(z));
  EXPECT_EQ(z.Testo(), "10");

  Valore primo;  // Empty: the first zone
  ASSERT_TRUE(zone.RecordPrecedente(primo));
  EXPECT_EQ(primo.Testo(), "10");
  Valore dopo("10");
  ASSERT_TRUE(zone.RecordSuccessivo(dopo));
  EXPECT_EQ(dopo.Testo(), "20");
}

TEST_P(Famiglia, ZoneDeletionWithAndWithoutItsSubZones) {
  Zona("10", "", "Nord");
  Zona("10", "C", "Nord C");
  Zona("10", "A", "Nord A");
  Zona("20", Valore::Null(), "Centro");
  Zona("20", "A", "Centro A");
  Zona("20", "   ", "Centro bis");

  // Sub-zones are read in order, without the zone's row and without a stamp.
  Recordset T;
  ASSERT_TRUE(zone.LocalizzaRecordSottozone(T, "10"));
  ASSERT_EQ(T.RecordCount(), 2u);
  EXPECT_EQ(T("Codice Sottozona").Value().Testo(), "A");
  T.MoveNext();
  EXPECT_EQ(T("Codice Sottozona").Value().Testo(), "C");
  T.Close();
  EXPECT_TRUE(cn->Scalare("SELECT [clientName] FROM [Zone Sottozone] WHERE [Codice Sottozona] = 'A'").IsNull());

  EXPECT_TRUE(zone.CancellaRecordSottozone("20"));
  auto r = cn->Execute("SELECT [Descrizione] FROM [Zone Sottozone] WHERE [Codice Zona] = '20' ORDER BY 1");
  ASSERT_EQ(r.RecordCount(), 2u);  // the null and the blanks row both stay
  EXPECT_EQ(r(0).Value().Testo(), "Centro");

  EXPECT_TRUE(zone.CancellaRecord("10"));
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Zone Sottozone] WHERE [Codice Zona] = '10'").ComeIntero(), 0);
  EXPECT_EQ(Conta("Zone Sottozone"), 2);  // zone 20 untouched
  EXPECT_FALSE(zone.LocalizzaRecordSottozone(T, "20"));
}

TEST_P(Famiglia, DescriptionsAndTheMessageOfAnUnknownCode) {
  Zona("10", Valore::Null(), "Nord");
  Zona("10", "A", "Nord A");

  EXPECT_EQ(zone.GetDescrizioneZona("10", "").Testo(), "Nord");  // a null sub-zone is the zone's row
  EXPECT_EQ(zone.GetDescrizioneZona("10", "A").Testo(), "Nord A");
  EXPECT_EQ(zone.GetDescrizioneSottozona("10", "A").Testo(), "Nord A");

  bool cancel = false;
  ControlloProva ctl;
  // A blank code asks for nothing and says nothing.
  EXPECT_EQ(zone.GetDescrizioneZona("", "", &cancel, &ctl).Testo(), "");
  EXPECT_EQ(zone.GetDescrizioneSottozona("10", "", &cancel, &ctl).Testo(), "");  // blank sub-zone finds nothing
  EXPECT_FALSE(cancel);
  EXPECT_TRUE(host->Messaggi().empty());
  EXPECT_EQ(ctl.colore, 0);

  // An unknown code: the message under the class's title, Cancel set, the control marked.
  EXPECT_EQ(zone.GetDescrizioneZona("99", "", &cancel, &ctl).Testo(), "");
  EXPECT_TRUE(cancel);
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo, "Codice inesistente.");
  EXPECT_EQ(host->Messaggi()[0].titolo, "Zone/Sottozone");
  EXPECT_TRUE(ctl.abilitato);
  EXPECT_EQ(ctl.colore, 65535);

  // Without Cancel there is no message, only the control.
  ControlloProva ctl2;
  EXPECT_EQ(zone.GetDescrizioneSottozona("10", "Z", nullptr, &ctl2).Testo(), "");
  EXPECT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(ctl2.colore, 65535);

  // Each member has its own title; the groups keep the brackets.
  clsGruppiCliFor gruppi;
  gruppi.cn = cn;
  bool c2 = false;
  gruppi.GetDescrizioneGruppo("X", &c2);
  clsAgenti agenti;
  agenti.cn = cn;
  agenti.GetRagioneSocialeAgente("X", &c2);
  ASSERT_EQ(host->Messaggi().size(), 3u);
  EXPECT_EQ(host->Messaggi()[1].titolo, "[Gruppi cli/for]");
  EXPECT_EQ(host->Messaggi()[2].titolo, "Agenti");
}

TEST_P(Famiglia, ExistCodiceGivesTheDescriptionOrEmptyText) {
  Zona("10", "", "Nord");
  Valore d("vecchio");
  EXPECT_TRUE(zone.ExistCodice("10", "", &d));
  EXPECT_EQ(d.Testo(), "Nord");
  EXPECT_FALSE(zone.ExistCodice("11", "", &d));
  EXPECT_EQ(d.Testo(), "");
  EXPECT_TRUE(zone.ExistCodice("10", Valore::Null()));
}

TEST_P(Famiglia, MaxCodeFollowsTextOrder) {
  clsNazioni naz;
  naz.cn = cn;
  bool cancel;
  for (const char* c : {"100", "12", "099"}) ASSERT_TRUE(naz.SalvaRecord(c, "x", "", "", 0, false, "pc1", 1, cancel));
  EXPECT_EQ(naz.GetMaxCodice(), "000012");  // "12" > "100" as text
  ASSERT_TRUE(naz.SalvaRecord("9", "x", "", "", 0, false, "pc1", 1, cancel));
  EXPECT_EQ(naz.GetMaxCodice(), "000009");
  ASSERT_TRUE(naz.SalvaRecord("ZA", "x", "", "", 0, false, "pc1", 1, cancel));
  EXPECT_EQ(naz.GetMaxCodice(), "ZA");  // a code that is not a number is shown as it is
}

TEST_P(Famiglia, SaveAnsweredNoWritesNothingAndYesOverwrites) {
  bool cancel = false;
  ASSERT_TRUE(zone.SalvaRecord("10", "", "Nord", "n1", "n2", "l1", "l2", "pc1", 1, cancel));
  EXPECT_FALSE(cancel);
  EXPECT_TRUE(host->Messaggi().empty());  // a new row is never questioned

  // Another window of the same workstation reads the row.
  Recordset T;
  ASSERT_TRUE(zone.LocalizzaRecord(T, "10", "", "pc1", 2));
  T.Close();

  EXPECT_FALSE(zone.SalvaRecord("10", "", "Nord cambiata", "", "", "", "", "pc1", 1, cancel));
  EXPECT_TRUE(cancel);
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].titolo, "Vorn XP");
  auto r = cn->Execute("SELECT * FROM [Zone Sottozone]");
  EXPECT_EQ(r("Descrizione").Value().Testo(), "Nord");
  EXPECT_EQ(r("Note 1").Value().Testo(), "n1");
  EXPECT_EQ(r("hWnd").Value().ComeIntero(), 2);  // still the other reader's stamp

  host->Rispondi(vbYes);
  EXPECT_TRUE(zone.SalvaRecord("10", "", "Nord cambiata", "", "", "", "", "pc1", 1, cancel));
  EXPECT_FALSE(cancel);
  r = cn->Execute("SELECT * FROM [Zone Sottozone]");
  EXPECT_EQ(r("Descrizione").Value().Testo(), "Nord cambiata");
  EXPECT_EQ(r("hWnd").Value().ComeIntero(), 1);
  EXPECT_EQ(Conta("Zone Sottozone"), 1);
}

TEST_P(Famiglia, CodesWithApostrophesAreStoredFoundAndStepped) {
  clsLingue lingue;
  lingue.cn = cn;
  bool cancel;
  ASSERT_TRUE(lingue.SalvaRecord("L'A", "Lingua d'Aosta", "", "", "pc1", 1, cancel));
  ASSERT_TRUE(lingue.SalvaRecord("EN", "Inglese", "", "", "pc1", 1, cancel));
  EXPECT_EQ(lingue.GetDescrizione("L'A").Testo(), "Lingua d'Aosta");
  Valore c("EN");
  ASSERT_TRUE(lingue.RecordSuccessivo(c));
  EXPECT_EQ(c.Testo(), "L'A");
  Recordset T;
  EXPECT_TRUE(lingue.LocalizzaRecord(T, "L'A", "pc1", 1));
  EXPECT_TRUE(lingue.CancellaRecord("L'A"));
  EXPECT_FALSE(lingue.ExistCodice("L'A"));
  EXPECT_TRUE(lingue.ExistCodice("EN"));
}

TEST_P(Famiglia, LanguageZeroIsItalianWithoutLooking) {
  clsLingue lingue;
  lingue.cn = cn;
  bool cancel = false;
  ASSERT_TRUE(lingue.SalvaRecord("0", "Zero", "", "", "pc1", 1, cancel));
  EXPECT_EQ(lingue.GetDescrizione("0", &cancel).Testo(), "Italiano");
  EXPECT_EQ(lingue.GetDescrizione("00", &cancel).Testo(), "Italiano");
  EXPECT_EQ(lingue.GetDescrizione("", &cancel).Testo(), "Italiano");
  EXPECT_FALSE(cancel);
  EXPECT_TRUE(host->Messaggi().empty());
  EXPECT_EQ(lingue.GetDescrizione("DE", &cancel).Testo(), "Italiano");  // unknown: message, then Italian
  EXPECT_TRUE(cancel);
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].titolo, "Lingue");
}

TEST_P(Famiglia, SaveOfNamedColumnsLeavesTheOthersAndRefusesStrangers) {
  clsAnagraficheComuni com;
  com.cn = cn;
  bool cancel;
  RecordValori v{{"Ragione Sociale", "Rossi"}, {"Località", "Torino"}, {"Data nascita", "02/03/1970"}};
  ASSERT_TRUE(com.SalvaRecord("000001", v, "pc1", 1, cancel));
  cn->Esegui("UPDATE [Anagrafiche Comuni] SET [Note] = 'da non toccare'");

  RecordValori v2{{"ragione sociale", "Rossi Spa"}};  // names match without regard to case
  ASSERT_TRUE(com.SalvaRecord("000001", v2, "pc1", 1, cancel));
  auto r = cn->Execute("SELECT * FROM [Anagrafiche Comuni]");
  EXPECT_EQ(r("Ragione Sociale").Value().Testo(), "Rossi Spa");
  EXPECT_EQ(r("Località").Value().Testo(), "Torino");
  EXPECT_EQ(r("Note").Value().Testo(), "da non toccare");
  EXPECT_EQ(com.GetLocalitàCodice("000001").Testo(), "Torino");

  // A column the save does not own is refused before anything is written.
  RecordValori estraneo{{"Ragione Sociale", "Bianchi"}, {"clientName", "intruso"}};
  EXPECT_THROW(com.SalvaRecord("000001", estraneo, "pc1", 1, cancel), ErroreDb);
  EXPECT_THROW(com.SalvaRecord("000002", estraneo, "pc1", 1, cancel), ErroreDb);
  EXPECT_EQ(com.GetRagioneSocialeCodice("000001").Testo(), "Rossi Spa");
  EXPECT_FALSE(com.ExistCodice("000002"));
}

TEST_P(Famiglia, AgentRegistryAndCommercialSavesKeepToTheirColumns) {
  clsAgenti ag;
  ag.cn = cn;
  bool cancel;
  ASSERT_TRUE(ag.SalvaRecordDatiAnagrafici("A1", {{"Ragione Sociale", "Verdi"}, {"Cap", "10100"}}, "pc1", 1, cancel));
  ASSERT_TRUE(ag.SalvaRecord("A1", {{"Budget 1", Importo::DaRaw(12345678)}, {"Perc Enasarco", 8.5}}, "pc1", 1, cancel));
  EXPECT_THROW(ag.SalvaRecord("A1", {{"Cap", "20100"}}, "pc1", 1, cancel), ErroreDb);
  EXPECT_THROW(ag.SalvaRecordDatiAnagrafici("A1", {{"Budget 1", 1}}, "pc1", 1, cancel), ErroreDb);
  auto r = cn->Execute("SELECT * FROM [Anagrafica Agenti]");
  EXPECT_EQ(r("Cap").Value().Testo(), "10100");
  EXPECT_EQ(r("Budget 1").Value().Imp().Raw(), 12345678);  // 1.234,5678 exactly
  EXPECT_EQ(ag.GetRagioneSocialeAgente("A1").Testo(), "Verdi");

  // Another reader, then a registry save with NoPrompt: no question, overwritten.
  Recordset T;
  ASSERT_TRUE(ag.LocalizzaRecord(T, "A1", "pc2", 7));
  ASSERT_TRUE(ag.SalvaRecordDatiAnagrafici("A1", {{"Cap", "20100"}}, "pc1", 1, cancel, true));
  EXPECT_TRUE(host->Messaggi().empty());
  EXPECT_EQ(cn->Scalare("SELECT [Cap] FROM [Anagrafica Agenti]").Testo(), "20100");
}

TEST_P(Famiglia, PriceListsSavedFromParallelLists) {
  clsAnagraficaListini l;
  l.cn = cn;
  bool cancel;
  ASSERT_TRUE(l.SalvaRecordArray("1", {"Descrizione Listino", "Flag Prezzo Iva Inclusa"}, {"Dettaglio", "1"}, "pc1", 1,
                                 cancel));
  ASSERT_TRUE(l.SalvaRecord("2", "Ingrosso", "EUR", "0", "", "", "", "pc1", 1, cancel));
  EXPECT_TRUE(l.IsListinoIvaInclusa("1"));
  EXPECT_FALSE(l.IsListinoIvaInclusa("2"));
  EXPECT_FALSE(l.IsListinoIvaInclusa("3"));
  EXPECT_EQ(l.GetDescrizioneListino("1").Testo(), "Dettaglio");
  // Lists of different lengths write nothing.
  EXPECT_THROW(l.SalvaRecordArray("3", {"Descrizione Listino", "Obsoleto"}, {"x"}, "pc1", 1, cancel), ErroreDb);
  EXPECT_FALSE(l.ExistCodice("3"));
}

TEST_P(Famiglia, CountriesAndShippingCodes) {
  clsNazioni n;
  n.cn = cn;
  bool cancel;
  ASSERT_TRUE(n.SalvaRecord("086", "Italia", "IT", "086", 1, false, "pc1", 1, cancel));
  EXPECT_EQ(n.GetAreaNazione("086"), 1);
  EXPECT_EQ(n.GetAreaNazione("999"), 0);

  clsSpedizioni s;
  s.cn = cn;
  ASSERT_TRUE(s.SalvaRecord("M", "01", "Mittente", 1, "pc1", 1, cancel));
  ASSERT_TRUE(s.SalvaRecord("M", "02", "Vettore", 3, "pc1", 1, cancel));
  ASSERT_TRUE(s.SalvaRecord("P", "01", "Franco", 0, "pc1", 1, cancel));
  EXPECT_EQ(s.GetDescrizione("P", "01").Testo(), "Franco");
  EXPECT_EQ(s.GetFlagMezzo("M", "02"), 3);
  // Stepping stays within the record type.
  Valore c("01");
  ASSERT_TRUE(s.RecordSuccessivo("M", c));
  EXPECT_EQ(c.Testo(), "02");
  EXPECT_FALSE(s.RecordSuccessivo("M", c));
  Valore p("");
  ASSERT_TRUE(s.RecordSuccessivo("P", p));
  EXPECT_EQ(p.Testo(), "01");
  EXPECT_FALSE(s.RecordPrecedente("P", p));
  EXPECT_TRUE(s.CancellaRecord("M", "01"));
  EXPECT_FALSE(s.ExistCodice("M", "01"));
  EXPECT_TRUE(s.ExistCodice("P", "01"));
}

TEST_P(Famiglia, DestinationsStepFromSubjectToSubject) {
  clsSedi sedi;
  sedi.cn = cn;
  bool cancel;
  ASSERT_TRUE(sedi.SalvaRecord("C", "12", "02", {{"Indirizzo", "Via Po 2"}, {"Tipo record", "S"}}, "pc1", 1, cancel));
  ASSERT_TRUE(sedi.SalvaRecord("C", "12", "01", {{"Indirizzo", "Via Po 1"}, {"Tipo record", "S"}}, "pc1", 1, cancel));
  ASSERT_TRUE(sedi.SalvaRecord("F", "12", "01", {{"Indirizzo", "Corso Dante"}}, "pc1", 1, cancel));
  ASSERT_TRUE(sedi.SalvaRecord("C", "100", "01", {{"Indirizzo", "Piazza"}}, "pc1", 1, cancel));

  // Padded, "000012C" < "000012F" < "000100C": the short code comes first, unlike text order.
  Valore tipo("C"), codice("");
  ASSERT_TRUE(sedi.RecordSuccessivo(tipo, codice));
  EXPECT_EQ(codice.Testo() + tipo.Testo(), "12C");
  ASSERT_TRUE(sedi.RecordSuccessivo(tipo, codice));
  EXPECT_EQ(codice.Testo() + tipo.Testo(), "12F");
  ASSERT_TRUE(sedi.RecordSuccessivo(tipo, codice));
  EXPECT_EQ(codice.Testo() + tipo.Testo(), "100C");
  EXPECT_FALSE(sedi.RecordSuccessivo(tipo, codice));
  EXPECT_EQ(codice.Testo() + tipo.Testo(), "100C");
  ASSERT_TRUE(sedi.RecordPrecedente(tipo, codice));
  EXPECT_EQ(codice.Testo() + tipo.Testo(), "12F");

  Recordset T;
  ASSERT_TRUE(sedi.LocalizzaTuttiRecords(T, "C", "12", "pc1", 5));
  ASSERT_EQ(T.RecordCount(), 2u);
  EXPECT_EQ(T("Codice destinazione").Value().Testo(), "01");
  EXPECT_EQ(T("hWnd").Value().ComeIntero(), 5);
  T.Close();
  EXPECT_EQ(sedi.GetPrimaDestinazione("C", "12", "S").Testo(), "01");
  EXPECT_EQ(sedi.GetPrimaDestinazione("C", "12", "X").Testo(), "");
  EXPECT_TRUE(sedi.ExistsSedi("F", "12"));
  EXPECT_TRUE(sedi.CancellaTuttiRecords("12", "C"));
  EXPECT_FALSE(sedi.ExistsSedi("C", "12"));
  EXPECT_TRUE(sedi.ExistsSedi("F", "12"));
  EXPECT_EQ(Conta("Destinazioni"), 2);
}

TEST_P(Famiglia, TranslationsByArchiveType) {
  clsTrascodifiche t;
  t.cn = cn;
  bool cancel;
  ASSERT_TRUE(t.SalvaRecord("C", "000001", 1, "40.01", "4001001", "pc1", 1, cancel));
  ASSERT_TRUE(t.SalvaRecord("C", "000001", "1", "40'02", "4001002", "pc1", 1, cancel));
  ASSERT_TRUE(t.SalvaRecord("C", "000002", 1, "40.01", "9999999", "pc1", 1, cancel));
  EXPECT_EQ(t.GetCodiceInterno("C", "000001", 1, "40.01").Testo(), "4001001");
  EXPECT_EQ(t.GetCodiceInterno("C", "000001", 1, "40'02").Testo(), "4001002");
  EXPECT_EQ(t.GetCodiceInterno("C", "000001", 2, "40.01").Testo(), "");
  EXPECT_TRUE(t.ExistsTrascodifica("C", "000002", "1", "40.01"));
  // The archive type is a number: text that is not one is refused.
  EXPECT_THROW(t.ExistsTrascodifica("C", "000002", "uno", "40.01"), ErroreDb);

  Recordset T;
  ASSERT_TRUE(t.LocalizzaTuttiRecord(T, "C", "000001", 1));
  EXPECT_EQ(T.RecordCount(), 2u);
  T.Close();
  EXPECT_TRUE(t.CancellaTuttiRecord("C", "000001", 1));
  EXPECT_EQ(Conta("Trascodifiche"), 1);

  ComboProva combo;
  combo.voci = {"vecchia"};
  t.LoadTipoTrascodificheInCombo(combo);
  EXPECT_EQ(combo.voci, std::vector<std::string>{"Piano dei conti"});
  EXPECT_TRUE(t.AzzeraTrascodifiche());
  EXPECT_EQ(Conta("Trascodifiche"), 0);
}

TEST_P(Famiglia, ContractsPlacesAndStockCausals) {
  clsPAContratti pa;
  pa.cn = cn;
  bool cancel = false;
  ASSERT_TRUE(pa.SalvaRecord("C1", "Fornitura", "1", "A", "12/2024", "", "CUP1", "CIG1", "", "pc1", 1, cancel));
  Valore d;
  EXPECT_TRUE(pa.ExistCodiceContratto("C1", &d));
  EXPECT_EQ(d.Testo(), "Fornitura");
  EXPECT_EQ(pa.GetDescrizioneContratto("C2", &cancel).Testo(), "");
  EXPECT_TRUE(cancel);
  EXPECT_EQ(host->Ultimo(), "Codice inesistente.");
  EXPECT_EQ(host->Messaggi().back().titolo, "PA Contratti");

  cn->Esegui("INSERT INTO [Localita] ([ID], [Localita], [Provincia], [Cap]) VALUES (7, 'Aosta', 'AO', '11100')");
  clsLocalita loc;
  loc.cn = cn;
  Valore l, p, c;
  EXPECT_TRUE(loc.GetDatiLocalità(7, l, p, c));
  EXPECT_EQ(l.Testo() + p.Testo() + c.Testo(), "AostaAO11100");
  EXPECT_FALSE(loc.GetDatiLocalità(8, l, p, c));
  EXPECT_EQ(l.Testo() + p.Testo() + c.Testo(), "");

  cn->Esegui("INSERT INTO [Causali di Magazzino] ([Codice Causale], [Controparte]) VALUES ('V1', 'C'), ('V2', NULL)");
  clsCausaliMagazzino cm;
  cm.cn = cn;
  EXPECT_EQ(cm.GetControparteCausale("V1").Testo(), "C");
  EXPECT_EQ(cm.GetControparteCausale("V2").Testo(), "N");
  EXPECT_EQ(cm.GetControparteCausale("V3").Testo(), "N");
}
