#include <gtest/gtest.h>

#include <sstream>

#include "company/clsAnagraficaAzienda.h"
#include "company/clsParametriAzienda.h"
#include "frame/Globali.h"
#include "frame/VornServer.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

Data D(int g, int m, int a) { return *Data::Crea(a, m, g); }

}  // namespace

// The fiscal year depends only on the closing month and today's date.
TEST(DateEsercizio, ChiusuraDicembreApreIlPrimoGennaio) {
  clsParametriAzienda p;
  for (int mese = 1; mese <= 12; ++mese) {
    Data oggi = D(15, mese, 2025);
    EXPECT_EQ(p.GetDataLogicaAperturaBilancio(Valore(12), oggi), "01/01/2025") << mese;
    EXPECT_EQ(p.GetDataLogicaChiusuraBilancio(Valore(12), oggi), "31/12/2024") << mese;
  }
}

TEST(DateEsercizio, ChiusuraGiugno) {
  clsParametriAzienda p;
  // In May the year that began last July is still running.
  EXPECT_EQ(p.GetDataLogicaAperturaBilancio(Valore(6), D(20, 5, 2025)), "01/07/2024");
  EXPECT_EQ(p.GetDataLogicaChiusuraBilancio(Valore(6), D(20, 5, 2025)), "30/06/2024");
  // In July a new one has begun.
  EXPECT_EQ(p.GetDataLogicaAperturaBilancio(Valore(6), D(1, 7, 2025)), "01/07/2025");
  EXPECT_EQ(p.GetDataLogicaChiusuraBilancio(Valore(6), D(1, 7, 2025)), "30/06/2025");
  // The month as text, the way the client often passes it.
  EXPECT_EQ(p.GetDataLogicaAperturaBilancio(Valore("6"), D(31, 12, 2025)), "01/07/2025");
  // February closing in a leap year: the day before 01/03.
  EXPECT_EQ(p.GetDataLogicaChiusuraBilancio(Valore(2), D(10, 4, 2024)), "29/02/2024");
}

class ParametriAzienda : public AziendaTest {
 protected:
  clsParametriAzienda Par() {
    clsParametriAzienda p;
    p.cn = cn;
    return p;
  }
  clsAnagraficaAzienda Ana() {
    clsAnagraficaAzienda a;
    a.cn = cn;
    return a;
  }
  // The global settings as one text, currency|symbol|description|amount decimals|lire|euro|
  // rate|rate decimals|quantity decimals|price decimals; every output preset to "x" or -1.
  std::string Globali(Valore& esito) {
    std::string valuta = "x", simbolo = "x", descr = "x", lire = "x", euro = "x";
    int decImp = -1, decCambi = -1, decQta = -1, decPrezzi = -1;
    double cambio = -1;
    esito = Par().GetParametriGlobali(valuta, simbolo, descr, decImp, lire, euro, cambio, decCambi, decQta, decPrezzi);
    std::ostringstream s;
    s << valuta << "|" << simbolo << "|" << descr << "|" << decImp << "|" << lire << "|" << euro << "|" << cambio << "|"
      << decCambi << "|" << decQta << "|" << decPrezzi;
    return s.str();
  }
  void SalvaGruppi(const std::map<std::string, Valore>& v) {
    bool cancel = false;
    auto p = Par();
    ASSERT_TRUE(p.SalvaRecordParametriVorn(v, "PC1", 1, cancel));
    ASSERT_FALSE(cancel);
  }
};

TEST_P(ParametriAzienda, TabelleVuoteDannoIPredefiniti) {
  auto p = Par();
  Valore r;
  EXPECT_EQ(Globali(r), "1|EUR|EURO|2|16|06|1936.27|5|3|5");
  EXPECT_TRUE(r.IsEmpty());

  Valore vend, acq, scorp, vent, sosp, gestData, mese, autotr, period;
  Valore cli[6], forn[6];
  cli[1] = "keep";
  EXPECT_FALSE(p.GetParametriPrimaNota(vend, acq, scorp, vent, sosp, gestData, cli, forn, mese, autotr, period).Vero());
  for (const Valore* v : {&vend, &acq, &scorp, &vent, &sosp, &gestData, &autotr, &period}) EXPECT_EQ(v->Testo(), "0");
  EXPECT_EQ(mese.Testo(), "12");
  EXPECT_EQ(cli[1].Testo(), "keep");  // the arrays stay as they are

  Valore o[18];
  std::string ivaAut = "x", regSem = "x";
  int regime = 9;
  p.GetParametriIva(o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7], o[8], o[9], o[10], o[11], o[12], o[13], o[14],
                    o[15], o[16], o[17], ivaAut, regime, regSem);
  for (int i = 0; i < 18; ++i) {
    if (i == 14) EXPECT_EQ(o[i].Testo(), "01");
    else if (i == 16) EXPECT_EQ(o[i].ComeDouble(), 0.0);
    else EXPECT_EQ(o[i].Testo(), "0") << i;
  }
  EXPECT_EQ(ivaAut, "");
  EXPECT_EQ(regime, 0);
  EXPECT_EQ(regSem, "");

  Valore pagine;
  p.GetParametriLibroGiornale(pagine);
  EXPECT_EQ(pagine.Testo(), "0");
  EXPECT_FALSE(p.GetGestioneStoricoContabile());
  EXPECT_FALSE(p.GetVersamentoIVA4Trim());
  EXPECT_FALSE(p.GetLiquidazioneTrimestale());
  EXPECT_EQ(p.AutorizzazioneBolliVirtuali(), 0);
  EXPECT_TRUE(p.GetMeseChiusuraFiscale().IsEmpty());
  EXPECT_EQ(p.GetIndClienteFornitore("0101001"), "");
  double soglia = 7, abb = 7, man = 7;
  EXPECT_FALSE(p.GetParametriAmmortamenti(soglia, abb, man));
  Valore codIva = "x", rit, impRit, ena, mass;
  EXPECT_FALSE(p.GetParametriAgenti(codIva, rit, impRit, ena, mass).Vero());
  EXPECT_TRUE(codIva.IsEmpty());

  auto a = Ana();
  EXPECT_EQ(a.GetRagioneSocialeAzienda(), "");
  EXPECT_FALSE(a.IsPersonaFisica());
  std::string ind, nome, cognome, sesso, luogo, prov;
  Valore nascita = "x";
  EXPECT_FALSE(a.GetDatiPersonaFisicaAzienda(ind, nome, cognome, nascita, sesso, luogo, prov));
  EXPECT_EQ(ind, "0");
  EXPECT_EQ(sesso, "1");
  EXPECT_TRUE(nascita.IsEmpty());
  bool rea = true, socio = true;
  std::string s[6];
  EXPECT_FALSE(a.GetDatiREAAzienda(rea, s[0], s[1], socio, s[2], s[3], s[4], s[5]));
  EXPECT_FALSE(rea);
  EXPECT_FALSE(socio);
  EXPECT_TRUE(host->Messaggi().empty());
}

// A row whose columns are all null gives the second set of defaults, and true.
TEST_P(ParametriAzienda, ColonneNulleDannoIPredefinitiDellaRiga) {
  cn->Esegui("INSERT INTO [Tabella Azienda] ([Ragione Sociale]) VALUES (?)", {"Rossi S.p.A."});
  Valore r;
  EXPECT_EQ(Globali(r), "0|EUR|EURO|2|||0|0|0|0");
  EXPECT_EQ(r, Valore(true));
  EXPECT_EQ(Ana().GetRagioneSocialeAzienda(), "Rossi S.p.A.");
}

TEST_P(ParametriAzienda, SalvaRecordScriveSoloLeSueColonne) {
  auto p = Par();
  bool cancel = true;
  ASSERT_TRUE(p.SalvaRecord({{"Valuta di conto", "06"},
                             {"Simbolo valuta conto", "EUR"},
                             {"Descrizione valuta conto", "Euro"},
                             {"Cambio fisso LIRE/EURO", 1936.27},
                             {"Data reale passaggio EURO", "01/01/2002"},
                             {"Codice valuta EURO", "06"},
                             {"Codice valuta LIRE", "16"},
                             {"decimali importi", 2},  // names match without regard to case
                             {"Decimali cambi", 6},
                             {"Mese chiusura fiscale", 6},
                             {"IAutorizBolliVirt", "1"},
                             {"ModalitaContabilizzEffetti", 2}},
                            "PC1", 7, cancel));
  EXPECT_FALSE(cancel);
  // The decimals of quantities and prices are not among the saved settings: they stay null.
  Valore r;
  EXPECT_EQ(Globali(r), "06|EUR|Euro|2|16|06|1936.27|6|0|0");
  EXPECT_EQ(r, Valore(true));
  EXPECT_EQ(p.GetMeseChiusuraFiscale().ComeIntero(), 6);
  EXPECT_EQ(p.AutorizzazioneBolliVirtuali(), 1);
  Valore mod;
  EXPECT_TRUE(p.GetParametriElaborazioneFatture(mod));
  EXPECT_EQ(mod.ComeIntero(), 2);
  // One row, stamped by the saver.
  auto rs = cn->Execute("SELECT [clientName], [hWnd], [Data reale passaggio EURO] FROM [Tabella Azienda]");
  ASSERT_EQ(rs.RecordCount(), 1u);
  EXPECT_EQ(rs("clientName").Value().Testo(), "PC1");
  EXPECT_EQ(rs("hWnd").Value().ComeIntero(), 7);
  EXPECT_EQ(rs("Data reale passaggio EURO").Value().Testo(), "01/01/2002");

  // A second save changes the row, it adds none.
  ASSERT_TRUE(p.SalvaRecord({{"Mese chiusura fiscale", 12}}, "PC1", 7, cancel));
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Tabella Azienda]").ComeIntero(), 1);
  EXPECT_EQ(p.GetMeseChiusuraFiscale().ComeIntero(), 12);
  EXPECT_EQ(p.AutorizzazioneBolliVirtuali(), 1);
  EXPECT_TRUE(host->Messaggi().empty());
}

TEST_P(ParametriAzienda, ColonnaEstraneaRifiutataSenzaScrivere) {
  auto p = Par();
  bool cancel = false;
  EXPECT_THROW(p.SalvaRecord({{"Valuta di conto", "06"}, {"Ragione Sociale", "Intrusa"}}, "PC1", 1, cancel), ErroreDb);
  EXPECT_THROW(p.SalvaRecordParametriVorn2({{"NumRegIVAVendite", "02"}}, "PC1", 1, cancel), ErroreDb);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Tabella Azienda]").ComeIntero(), 0);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Parametri Vorn]").ComeIntero(), 0);
}

TEST_P(ParametriAzienda, ParametriVornESecondoSalvataggio) {
  SalvaGruppi({{"NumRegIVAVendite", "02"},
               {"NumRegIvaAcquisti", "03"},
               {"GruppoConto1Clienti", "0510"},
               {"GruppoConto2Clienti", "0511"},
               {"GruppoConto1Fornitori", "0710"},
               {"GestioneStoricoContabile", true},
               {"PeriodicitaLiquidazione", "1"},
               {"PercentualeProrata", 12.5},
               {"VersamentoIVA4Trim", true},
               {"NumPagineAutoLibGior", "1"},
               {"NumRegLiquidazione", "03"},
               {"IndIVAAutotrasportatori", "1"}});
  auto p = Par();
  bool cancel = false;
  ASSERT_TRUE(p.SalvaRecordParametriVorn2({{"SogliaAmmIntegrale", 516.46},
                                           {"PercAbbattimAmmAnno1", 50.0},
                                           {"PercManutenzioniDeducibili", 5.0},
                                           {"regimeContabile", 2},
                                           {"RegIVASemSoloContiEco", "S"}},
                                          "PC1", 1, cancel));
  // The second save left the first one's columns alone.
  EXPECT_TRUE(p.GetGestioneStoricoContabile());
  EXPECT_TRUE(p.GetLiquidazioneTrimestale());
  EXPECT_TRUE(p.GetVersamentoIVA4Trim());
  double soglia = 0, abb = 0, man = 0;
  ASSERT_TRUE(p.GetParametriAmmortamenti(soglia, abb, man));
  EXPECT_DOUBLE_EQ(soglia, 516.46);
  EXPECT_DOUBLE_EQ(abb, 50.0);
  EXPECT_DOUBLE_EQ(man, 5.0);

  Valore o[18];
  std::string ivaAut, regSem;
  int regime = 0;
  EXPECT_TRUE(p.GetParametriIva(o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7], o[8], o[9], o[10], o[11], o[12], o[13],
                                o[14], o[15], o[16], o[17], ivaAut, regime, regSem)
                  .Vero());
  EXPECT_EQ(o[0].Testo(), "02");
  EXPECT_EQ(o[1].Testo(), "0");  // null column: "0"
  EXPECT_EQ(o[2].Testo(), "03");
  EXPECT_EQ(o[9].Testo(), "1");
  EXPECT_EQ(o[12].Testo(), "1");
  EXPECT_EQ(o[14].Testo(), "03");
  EXPECT_DOUBLE_EQ(*o[16].ComeDouble(), 12.5);
  EXPECT_EQ(ivaAut, "1");
  EXPECT_EQ(regime, 2);
  EXPECT_EQ(regSem, "S");

  Valore vend, acq, scorp, vent, sosp, gestData, mese, autotr, period;
  Valore cli[6], forn[6];
  EXPECT_TRUE(p.GetParametriPrimaNota(vend, acq, scorp, vent, sosp, gestData, cli, forn, mese, autotr, period).Vero());
  EXPECT_EQ(vend.Testo(), "02");
  EXPECT_EQ(mese.Testo(), "12");  // null: December
  EXPECT_EQ(cli[1].Testo(), "0510");
  EXPECT_EQ(cli[2].Testo(), "0511");
  EXPECT_EQ(cli[3].Testo(), "");
  EXPECT_EQ(forn[1].Testo(), "0710");
  EXPECT_EQ(period.Testo(), "1");
}

TEST_P(ParametriAzienda, ClienteOFornitoreDalPrefisso) {
  SalvaGruppi({{"GruppoConto3Clienti", "0510"}, {"GruppoConto2Fornitori", "0510"}, {"GruppoConto5Fornitori", "0720"}});
  auto p = Par();
  EXPECT_EQ(p.GetIndClienteFornitore("0510001"), "C");  // in both lists: clients first
  EXPECT_EQ(p.GetIndClienteFornitore("0720999"), "F");
  EXPECT_EQ(p.GetIndClienteFornitore("0730001"), "");
  EXPECT_EQ(p.GetIndClienteFornitore("05"), "");
  EXPECT_EQ(p.GetIndClienteFornitore(""), "");
  Valore cli[6], forn[6];
  ASSERT_TRUE(p.GetGruppiContiCliFor(cli, forn));
  EXPECT_EQ(cli[3].Testo(), "0510");
  EXPECT_EQ(forn[5].Testo(), "0720");
  // An empty code asks nothing of the database, not even a table that is gone.
  cn->Esegui("DROP TABLE [Parametri Vorn]");
  EXPECT_EQ(p.GetIndClienteFornitore(""), "");
}

// A save answered "no" after another client reached the row writes nothing; "yes" writes.
TEST_P(ParametriAzienda, SalvataggioRifiutatoNonScrive) {
  SalvaGruppi({{"NumRegIVAVendite", "01"}});
  auto p = Par();
  Recordset T;
  ASSERT_TRUE(p.LocalizzaRecordParametriVorn(T, "PC1", 1));
  T.Close();

  // Another client, on its own connection, reads the row in the meantime.
  clsParametriAzienda altro;
  altro.cn = AltraConnessione();
  Recordset T2;
  ASSERT_TRUE(altro.LocalizzaRecordParametriVorn(T2, "PC2", 5));
  T2.Close();

  bool cancel = false;
  host->Rispondi(vbNo);
  EXPECT_FALSE(p.SalvaRecordParametriVorn({{"NumRegIVAVendite", "09"}}, "PC1", 1, cancel));
  EXPECT_TRUE(cancel);
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].stile, vbYesNo | vbQuestion);
  auto rs = altro.cn->Execute("SELECT [NumRegIVAVendite], [clientName] FROM [Parametri Vorn]");
  EXPECT_EQ(rs("NumRegIVAVendite").Value().Testo(), "01");
  EXPECT_EQ(rs("clientName").Value().Testo(), "PC2");

  host->Rispondi(vbYes);
  EXPECT_TRUE(p.SalvaRecordParametriVorn({{"NumRegIVAVendite", "09"}}, "PC1", 1, cancel));
  EXPECT_FALSE(cancel);
  rs = altro.cn->Execute("SELECT [NumRegIVAVendite], [clientName] FROM [Parametri Vorn]");
  EXPECT_EQ(rs("NumRegIVAVendite").Value().Testo(), "09");
  EXPECT_EQ(rs("clientName").Value().Testo(), "PC1");
  altro.cn->Close();
}

TEST_P(ParametriAzienda, ProfiloAzienda) {
  auto a = Ana();
  bool cancel = false;
  ASSERT_TRUE(a.SalvaRecord({{"Ragione_Sociale", "Bianchi & C. S.n.c."},
                             {"Partita IVA", "01234567890"},
                             {"Codice_Fiscale", "01234567890"},
                             {"Codice_Nazione", "IT"},
                             {"Codice_attività", "471100"},
                             {"Indirizzo", "Via Po, 1"},
                             {"Citta", "Torino"},
                             {"Provincia", "TO"},
                             {"Cap", "10100"},
                             {"Telefono", "011 123"},
                             {"Indirizzo_esercizio", "Corso Francia 9"},
                             {"Cap_esercizio", "10138"},
                             {"Citta_esercizio", "Torino"},
                             {"Provincia_esercizio", "TO"},
                             {"Capitale_Sociale", 10000.5},
                             {"E_mail", "info@bianchi.it"},
                             {"Sito_Web", "www.bianchi.it"},
                             {"Note", "non memorizzata"}},
                            "PC1", 3, cancel));
  EXPECT_EQ(a.GetRagioneSocialeAzienda(), "Bianchi & C. S.n.c.");
  EXPECT_EQ(cn->Scalare("SELECT [Codice Attività] FROM [Tabella Azienda]").Testo(), "471100");

  std::string rs, pi, ind, citta, prov, cap, naz, trib, cciaa, cf, tel, fax, mail, web;
  double capitale = 0;
  ASSERT_TRUE(a.GetDatiAzienda(rs, pi, ind, citta, prov, cap, naz, trib, cciaa, cf, tel, fax, capitale, mail, web));
  EXPECT_DOUBLE_EQ(capitale, 10000.5);

  std::string f[11];
  ASSERT_TRUE(a.GetDatiFiscaliAzienda(f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7], f[8], f[9], f[10]));
  EXPECT_EQ(f[1], "Corso Francia 9");  // the place of business, not the seat
  EXPECT_EQ(f[6], "10100");

  // The registered data.
  ASSERT_TRUE(a.SalvaRecordVorn({{"IndPersonaFisica", "1"},
                                 {"Nome", "Mario"},
                                 {"Cognome", "Bianchi"},
                                 {"Sesso", "0"},
                                 {"DataDiNascita", "29/02/1960"},
                                 {"LuogoDiNascita", "Torino"},
                                 {"LocalitaSedeLegale", "Moncalieri"},
                                 {"ObbligoIscrizioneREA", true},
                                 {"ProvinciaREA", "TO"},
                                 {"SocioUnico", false}},
                                "PC1", 3, cancel));
  EXPECT_TRUE(a.IsPersonaFisica());
  std::string cf2, pi2, rs2, ipf, nome, cognome, sesso, luogo, provN, loc, provS, tel2, fax2;
  Valore nascita;
  ASSERT_TRUE(a.GetDatiFiscaliAllegatiCliFor(cf2, pi2, rs2, ipf, nome, cognome, sesso, nascita, luogo, provN, loc,
                                             provS, tel2, fax2));
  EXPECT_EQ(sesso, "F");  // stored "0"
  EXPECT_EQ(nascita.Testo(), "29/02/1960");
  Valore nascita2;
  ASSERT_TRUE(a.GetDatiPersonaFisicaAzienda(ipf, nome, cognome, nascita2, sesso, luogo, provN));
  EXPECT_EQ(sesso, "0");  // here as stored
  bool rea = false, socio = true;
  std::string s[6];
  ASSERT_TRUE(a.GetDatiREAAzienda(rea, s[0], s[1], socio, s[2], s[3], s[4], s[5]));
  EXPECT_TRUE(rea);
  EXPECT_FALSE(socio);
  EXPECT_EQ(s[0], "TO");
}

TEST_P(ParametriAzienda, ProfiloRifiutatoDalClienteNonScrive) {
  auto a = Ana();
  bool cancel = false;
  ASSERT_TRUE(a.SalvaRecord({{"Ragione Sociale", "Prima"}}, "PC1", 1, cancel));
  clsAnagraficaAzienda altro;
  altro.cn = AltraConnessione();
  Recordset T;
  ASSERT_TRUE(altro.LocalizzaRecord(T, "PC2", 2));
  T.Close();
  host->Rispondi(vbNo);
  EXPECT_FALSE(a.SalvaRecord({{"Ragione Sociale", "Seconda"}}, "PC1", 1, cancel));
  EXPECT_TRUE(cancel);
  EXPECT_EQ(altro.GetRagioneSocialeAzienda(), "Prima");
  altro.cn->Close();
}

TEST_P(ParametriAzienda, AziendaNonInstallata) {
  cn->Esegui("DROP TABLE [Tabella Azienda]");
  auto a = Ana();
  EXPECT_EQ(a.GetRagioneSocialeAzienda(), "Azienda non installata.");
  EXPECT_TRUE(host->Messaggi().empty());
  // Inside the caller's transaction the failed read leaves the transaction usable.
  cn->BeginTrans();
  EXPECT_EQ(a.GetRagioneSocialeAzienda(), "Azienda non installata.");
  cn->Esegui("INSERT INTO [Lingue] ([Codice]) VALUES ('IT')");
  cn->CommitTrans();
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Lingue]").ComeIntero(), 1);

  // The global parameters without the table: the message of the load and false.
  Valore r;
  EXPECT_EQ(Globali(r).substr(0, 2), "x|");  // the outputs stay as they were
  EXPECT_EQ(r, Valore(false));
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo, "Errore non previsto in fase di lettura parametri globali.");
  EXPECT_EQ(host->Messaggi()[0].stile, 16);
  EXPECT_EQ(host->Messaggi()[0].titolo, "Caricamento parametri globali.");
}

VORN_SU_DUE_MOTORI(ParametriAzienda);
