// Account references and fixed amounts: the VAT account of a row, the groups handed out, the
// saves under the record protocol, and the model companies' VAT accounts.
#include <gtest/gtest.h>

#include <set>

#include "company/clsImportiFissi.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "interchange/ModelloStandard.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

class Riferimenti : public AziendaTest {
 protected:
  clsTabRiferimenti Rif() {
    clsTabRiferimenti r;
    r.cn = cn;
    return r;
  }
  bool Fatture(Valore (&v)[35]) {
    return Rif().GetRiferimentiElaborazioneFatture(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10],
                                                   v[11], v[12], v[13], v[14], v[15], v[16], v[17], v[18], v[19],
                                                   v[20], v[21], v[22], v[23], v[24], v[25], v[26], v[27], v[28],
                                                   v[29], v[30], v[31], v[32], v[33], v[34]);
  }
  int64_t Righe(const std::string& tabella) {
    return cn->Scalare("SELECT COUNT(*) FROM [" + tabella + "]").ComeIntero().value_or(-1);
  }
  // The VAT accounts of a company: sales, purchases, receipts, suspended, deferred.
  void SalvaContiIva() {
    bool cancel = true;
    ASSERT_TRUE(Rif().SalvaRecord01({{"SottIVACVendite", "1401001"}, {"SottIVACAcquisti", "0601001"},
                                     {"SottIVACScorporo", "1401002"}, {"SottIVACSospensione", "1401003"},
                                     {"SottEsigDiffVend", "1401004"}, {"SottEsigDiffAcq", "0601004"}},
                                    "PC1", 1, cancel));
    ASSERT_FALSE(cancel);
  }
};
VORN_SU_DUE_MOTORI(Riferimenti);

TEST_P(Riferimenti, ContoIvaDellaRigaPerRegistroETipoCausale) {
  SalvaContiIva();
  struct Caso {
    const char* registro;
    const char* tipo;
    const char* conto;
    const char* lato;
  };
  const Caso casi[] = {
      {"5", "7", "1401003", "#"},      // register 5 knows no deferred account
      {"5", "0", "1401003", "Avere"},  {"5", "1", "1401003", "Dare"},
      {"1", "2", "1401001", "#"},      {"2", "2", "0601001", "Dare"},  // receipts: settled on purchases only
      {"1", "3", "1401001", "#"},      {"2", "3", "0601001", "Avere"},
      {"1", "7", "1401004", "Avere"},  {"2", "7", "0601004", "Dare"},   {"3", "8", "1401004", "Dare"},
      {"6", "7", "1401001", "Avere"},  {"8", "8", "0601001", "Avere"},  // collections: the ordinary account
      {"1", ":", "1401001", "Avere"},  {"2", ";", "0601001", "Avere"},  {"3", "4", "1401002", "#"},
      {"3", "", "1401002", "#"},       {"8", "", "0601001", "#"},       {" 2 ", "5", "0601001", "Dare"},
  };
  auto r = Rif();
  for (const auto& c : casi) {
    std::string conto = "x", lato = "y";
    EXPECT_TRUE(r.GetSottocontoIvaCausale(c.registro, c.tipo, conto, lato)) << c.registro << "/" << c.tipo;
    EXPECT_EQ(conto + " " + lato, std::string(c.conto) + " " + c.lato) << c.registro << "/" << c.tipo;
  }
  // A register type as a number.
  std::string conto, lato;
  EXPECT_TRUE(r.GetSottocontoIvaCausale(Valore(2), "0", conto, lato));
  EXPECT_EQ(conto + " " + lato, "0601001 Dare");
  // Registers 0, 4, 7, 9 and types outside the table leave both outputs as they were.
  for (auto [registro, tipo] : std::vector<std::pair<const char*, const char*>>{
           {"0", "0"}, {"4", "2"}, {"7", "7"}, {"9", "0"}, {"", "0"}, {"1", "A"}, {"1", "10"}, {"2", "<"}}) {
    conto = "x", lato = "y";
    EXPECT_FALSE(r.GetSottocontoIvaCausale(registro, tipo, conto, lato)) << registro << "/" << tipo;
    EXPECT_EQ(conto + lato, "xy") << registro << "/" << tipo;
  }
}

// A name that is not a column is refused before any statement: no message, and the caller's
// transaction goes on (PostgreSQL would have spoilt it with a failed statement).
TEST_P(Riferimenti, NomeCheNonEColonnaDaSoloLErrore) {
  SalvaContiIva();
  auto r = Rif();
  EXPECT_EQ(r.GetRiferimentiSottoconti02("sottivacvendite").Testo(), "1401001");  // any case
  EXPECT_EQ(r.GetRiferimentiSottoconti03("TipoContabRicAcc").Testo(), "0");      // null
  cn->BeginTrans();
  cn->Esegui("UPDATE [Riferimenti Contabili] SET [SottocontoCassa1] = '0702001'");
  for (const char* nome : {"SottIvaVendite", "Codice Iva Art 15", "SottIVACVendite] FROM [Prima Nota", ""}) {
    try {
      r.GetRiferimentiSottoconti01(nome);
      ADD_FAILURE() << "accettato: " << nome;
    } catch (const ErroreDb& e) {
      EXPECT_EQ(e.Numero(), 3265) << nome;
      if (*nome) {
        EXPECT_NE(e.Descrizione().find(nome), std::string::npos) << e.Descrizione();
      }
    }
  }
  EXPECT_NO_THROW(cn->CommitTrans());
  EXPECT_EQ(r.GetRiferimentiSottoconti01("SottocontoCassa1").Testo(), "0702001");
  EXPECT_TRUE(host->Messaggi().empty());
}

TEST_P(Riferimenti, SenzaRigaTuttoVuotoETipoRicaviZero) {
  auto r = Rif();
  Valore v[35];
  bool cancel = false;
  for (const char* quando : {"nessuna riga", "solo Tabella Azienda"}) {
    for (auto& x : v) x = "x";
    EXPECT_FALSE(Fatture(v)) << quando;
    for (int i = 0; i < 35; ++i) EXPECT_EQ(v[i], Valore(i == 26 ? "0" : "")) << quando << " " << i;
    // The row of [Tabella Azienda] alone hands out nothing, not even its own columns.
    ASSERT_TRUE(r.SalvaRecord03({{"SottocontoClienti", "0501"}, {"Codice Iva Art 15", "E15"}}, "PC1", 1, cancel));
  }
  std::string s[9] = {"x", "x", "x", "x", "x", "x", "x", "x", "x"};
  EXPECT_FALSE(r.GetRiferimentiEstrattoConto(s[0], s[1], s[2], s[3], s[4], s[5], s[6], s[7], s[8]));
  EXPECT_EQ(s[0] + s[3] + s[8], "");
  EXPECT_EQ(r.GetCausAmAcquisto() + r.GetRiferimentiSottoconti01("SottIVACVendite").Testo(), "");
  EXPECT_EQ(r.GetCodiceIvaEsclusoArt15(), "E15");
  EXPECT_EQ(r.GetCodiceIvaSpeseIncasso(), "");
}

// Three saves share one row and leave each other's columns alone; the groups hand the values
// out in their order, those of [Tabella Azienda] among them.
TEST_P(Riferimenti, GruppiDaTreSalvataggiSullaStessaRiga) {
  auto r = Rif();
  bool cancel = false;
  ASSERT_TRUE(r.SalvaRecord01({{"CausIncassoCliente", "INC"}, {"SottocontoCassa1", " 0702001 "},
                               {"TipoContabRicAcc", "1"}, {"SottRicaviBolli", "7002004"}}, "PC1", 1, cancel));
  ASSERT_TRUE(r.SalvaRecord02({{"SottCommissioniBancarie", "6501002"}, {"CausPagamentoFornBonifico", "BON"}},
                              "PC1", 1, cancel));
  ASSERT_TRUE(r.SalvaRecord04({{"CausAmAcquisto", "ACQ"}, {"SottAbbuoni", "6401004"}}, "PC1", 1, cancel));
  ASSERT_TRUE(r.SalvaRecord03({{"SottocontoBanca", "0701"}, {"Codice Iva Spese Incasso", "015"},
                               {"Codice Iva Art 15", "E15"}}, "PC1", 1, cancel));
  EXPECT_EQ(Righe("Riferimenti Contabili"), 1);

  Valore v[35];
  ASSERT_TRUE(Fatture(v));
  // Positions 1, 10 (trimmed), 11 and 12 (collection charges before art. 15), 24, 27, 31, 35.
  std::string letti;
  for (int i : {0, 9, 10, 11, 23, 26, 30, 34, 2}) letti += v[i].Testo() + "|";
  EXPECT_EQ(letti, "INC|0702001|015|E15|0701|1|7002004|6401004||");
  Valore b[5];
  ASSERT_TRUE(r.GetRiferimentiElaborazioneBonifici(b[0], b[1], b[2], b[3], b[4]));
  EXPECT_EQ(b[2].Testo() + " " + b[3].Testo() + " " + b[4].Testo(), "0701 6501002 BON");
  EXPECT_EQ(r.GetCausAmAcquisto(), "ACQ");
}

TEST_P(Riferimenti, SalvataggioConColonnaEstraneaNonScriveNulla) {
  auto r = Rif();
  bool cancel = false;
  // A column of another group, of another table, or of none.
  EXPECT_THROW(r.SalvaRecord01({{"SottIVACVendite", "1401001"}, {"SottCostiStandard", "6001001"}}, "PC1", 1, cancel),
               ErroreDb);
  EXPECT_THROW(r.SalvaRecord03({{"SottocontoClienti", "0501"}, {"Ragione Sociale", "Intrusa"}}, "PC1", 1, cancel),
               ErroreDb);
  EXPECT_THROW(r.SalvaRecord04({{"CausAmAcquisto", "ACQ"}, {"CausAmAcquisti", "ACQ"}}, "PC1", 1, cancel), ErroreDb);
  EXPECT_EQ(Righe("Riferimenti Contabili"), 0);
  EXPECT_EQ(Righe("Tabella Azienda"), 0);
  // The three groups save exactly the columns of [Riferimenti Contabili] but the stamp.
  std::set<std::string> salvate = {"clientname", "hwnd"}, tabella;
  for (const auto* g : {&clsTabRiferimenti::ColonneSalvaRecord01(), &clsTabRiferimenti::ColonneSalvaRecord02(),
                        &clsTabRiferimenti::ColonneSalvaRecord04()})
    for (const auto& c : *g) salvate.insert(LCase(c));
  for (const auto& c : cn->ColonneTabella("Riferimenti Contabili")) tabella.insert(LCase(c.nome));
  EXPECT_EQ(salvate, tabella);
}

// A save answered "no" after another client reached the row writes nothing; "yes" writes.
TEST_P(Riferimenti, SalvataggioRispostaNoNonScrive) {
  SalvaContiIva();
  clsTabRiferimenti altro;
  altro.cn = AltraConnessione();
  Recordset T;
  ASSERT_TRUE(altro.LocalizzaRecord(T, "PC2", 5));
  T.Close();
  bool cancel = false;
  host->Rispondi(vbNo);
  EXPECT_FALSE(Rif().SalvaRecord01({{"SottIVACVendite", "1401009"}}, "PC1", 1, cancel));
  EXPECT_TRUE(cancel);
  EXPECT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(altro.GetRiferimentiSottoconti01("SottIVACVendite").Testo(), "1401001");
  EXPECT_EQ(altro.GetRiferimentiSottoconti01("clientName").Testo(), "PC2");
  host->Rispondi(vbYes);
  EXPECT_TRUE(Rif().SalvaRecord01({{"SottIVACVendite", "1401009"}}, "PC1", 1, cancel));
  EXPECT_FALSE(cancel);
  EXPECT_EQ(altro.GetRiferimentiSottoconti01("SottIVACVendite").Testo(), "1401009");
  altro.cn->Close();
}

TEST_P(Riferimenti, ImportiFissiLettiAlCentesimo) {
  clsImportiFissi f;
  f.cn = cn;
  double acconto = 7, magg = 7, forf = 7;
  Importo minAcc = Importo(7), minLiq = Importo(7);
  EXPECT_FALSE(f.GetImportiFissiLiquidazioneIva(acconto, minAcc, minLiq));
  EXPECT_FALSE(f.GetImportiFissiLiquidazioneIva2(magg, forf));
  EXPECT_TRUE(acconto == 0 && magg == 0 && forf == 0 && minAcc == Importo() && minLiq == Importo());

  bool cancel = false;
  EXPECT_THROW(f.SalvaRecord({{"ImportoMinLiqIva", Importo(1)}, {"Importo 11", Importo(1)}}, "PC1", 1, cancel),
               ErroreDb);
  EXPECT_EQ(Righe("Importi Fissi"), 0);
  // Amounts that no double holds exactly, names matched without regard to case.
  ASSERT_TRUE(f.SalvaRecord({{"importominliqiva", *Importo::DaTestoPunto("25.82")},
                             {"ImportoMinAcconto", *Importo::DaTestoPunto("103.29")},
                             {"PercCalcoloAcconto", 88.0},
                             {"Fino a 10", *Importo::DaTestoPunto("77.47")},
                             {"PercForfSemp", 0.5}},
                            "PC1", 1, cancel));
  ASSERT_TRUE(f.GetImportiFissiLiquidazioneIva(acconto, minAcc, minLiq));
  EXPECT_EQ(minLiq, *Importo::DaTestoPunto("25.82"));
  EXPECT_EQ(minAcc, *Importo::DaTestoPunto("103.29"));
  EXPECT_EQ(minAcc + minLiq, *Importo::DaTestoPunto("129.11"));
  EXPECT_EQ(acconto, 88.0);
  ASSERT_TRUE(f.GetImportiFissiLiquidazioneIva2(magg, forf));
  EXPECT_TRUE(magg == 0.0 && forf == 0.5);  // PercMaggTrim null
  EXPECT_EQ(cn->Scalare("SELECT [Fino a 10] FROM [Importi Fissi]").ComeImporto(), Importo::DaTestoPunto("77.47"));
}

// Both model companies name VAT accounts of their own chart, and their settlement causal admits
// every account it closes.
TEST_P(Riferimenti, ModelliConContiIvaDellaLiquidazione) {
  for (const std::string modello : {"standard", "semplificato"}) {
    SCOPED_TRACE(modello);
    CaricaModello(*cn, modello);
    auto r = Rif();
    std::set<std::string> piano, ammessi, proposti;
    for (auto rs = cn->Execute("SELECT [Gruppo] || [Conto] || [Sottoconto] FROM [Piano Dei Conti]"); !rs.Eof();
         rs.MoveNext())
      piano.insert(rs(0).Value().TestoTrim());
    auto liq = cn->Execute("SELECT * FROM [Causali Contabili] WHERE [CodiceCausale] = 'LIQ'");
    ASSERT_FALSE(liq.Eof());
    for (int i = 0; i < liq.FieldCount(); ++i) {
      const std::string n = LCase(liq(i).Name());
      if (n.size() == 6 && n.rfind("conto", 0) == 0) ammessi.insert(liq(i).Value().TestoTrim());
      if (n.rfind("sottocontodare", 0) == 0 || n.rfind("sottocontoavere", 0) == 0)
        proposti.insert(liq(i).Value().TestoTrim());
    }
    for (const char* rif : {"SottIVACVendite", "SottIVACAcquisti", "SottIVACScorporo", "SottIVACCorrispSc",
                            "SottIVACSospensione", "SottEsigDiffVend", "SottEsigDiffAcq", "SottIVAAcqCee",
                            "SottIVASplitPaymentVend"})
      EXPECT_TRUE(piano.count(r.GetRiferimentiSottoconti01(rif).Testo())) << rif;
    // Sales, receipts, purchases, intra, split payment; reverse charge, VAT credit, Erario c/IVA.
    std::vector<std::string> chiusi = {"0601003", "0601006", "1401005"};
    for (const char* rif : {"SottIVACVendite", "SottIVACCorrispSc", "SottIVACAcquisti", "SottIVAAcqCee",
                            "SottIVASplitPaymentVend"})
      chiusi.push_back(r.GetRiferimentiSottoconti01(rif).Testo());
    for (const auto& conto : chiusi) {
      EXPECT_TRUE(piano.count(conto) && ammessi.count(conto) && proposti.count(conto)) << conto;
    }
    // The reverse-charge purchase posts its VAT on the account that the settlement closes.
    EXPECT_EQ(cn->Scalare("SELECT [Conto2] FROM [Causali Contabili] WHERE [CodiceCausale] = 'RCA'").TestoTrim(),
              "0601003");
  }
}
