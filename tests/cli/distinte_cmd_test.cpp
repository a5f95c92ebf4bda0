// vorn distinte, contabilizza-effetti and contabilizza-scontrini on a company made from the
// standard model: the model's references give every causal and account the three runs need; a
// list made, shown and posted from the command line, a second posting refused and writing
// nothing; bad options are usage errors and write nothing.
#include <gtest/gtest.h>

#include "ComandoAzienda.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsCausaliContabili.h"
#include "ledger/clsPrimaNota.h"
#include "receivables/clsElaboraFatture.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ComandoDistinte : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    cn->Esegui("INSERT INTO [Anagrafica Fornitori] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten]) VALUES "
               "('F1', 'Beta Forniture Srl', '1301001')");
    cn->Esegui("INSERT INTO [Banche Azienda] ([Codice banca], [Codice agenzia], [Descrizione]) VALUES ('01', '001', "
               "'Banca Uno')");
    // Two supplier instalments paid by transfer: 1.000,00 due in March, 250,25 in May.
    for (auto [n, scadenza, importo] : {std::tuple{1, "31/03/2026", "-1000.00"}, {2, "31/05/2026", "-250.25"}})
      cn->Esegui("INSERT INTO [Scadenziario] ([Numero Progressivo], [Tipo], [Codice Cliente], [Ragione Sociale], "
                 "[Numero Documento], [Serie], [Data Documento], [Data Scadenza], [Tipo di Effetto], "
                 "[Importo Scadenza], [Importo Pagato]) VALUES (?, 'FO', 'F1', 'Beta Forniture Srl', ?, '', ?, ?, "
                 "'BO', ?, 0)",
                 {Valore(n), Valore(100 + n), Valore("01/02/2026"), Valore(scadenza),
                  Valore(*Importo::DaTestoPunto(importo))});
  }
  EsitoComando Vorn(const std::string& comando, const std::vector<std::string>& resto) {
    return EseguiVorn(RigaComando(dir->Percorso(), comando, Pg(), file, pg, resto));
  }
  long Righe() { return NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota]")); }
};

VORN_SU_DUE_MOTORI(ComandoDistinte);

}  // namespace

TEST_P(ComandoDistinte, ModelReferencesAreComplete) {
  clsTabRiferimenti rif;
  rif.cn = cn;
  ArgomentiElaboraEffetti e;
  ArgomentiElaboraScontrini s;
  ArgomentiDistintaBonifici b;
  ASSERT_TRUE(RiferimentiElaboraEffetti(rif, e));
  ASSERT_TRUE(RiferimentiElaboraScontrini(rif, s));
  ASSERT_TRUE(RiferimentiDistintaBonifici(rif, b));
  clsPrimaNota pn;
  pn.cn = cn;
  for (const Valore* v :
       {&e.avar_ClientiStandard, &e.avar_FornitoriStandard, &e.ContoPrimaNota_ContoRicevuteBancarie,
        &e.ContoPrimaNota_ContoEffettiAttivi, &e.ContoPrimaNota_ContoBanca, &e.ContoPrimaNota_ClientiContoRID,
        &e.ContoPrimaNota_ClientiContoAvvisi, &s.ContoPrimaNota_ContoCassa, &s.ContoPrimaNota_RicaviStandard,
        &s.ContoPrimaNota_IVA, &b.ContoPrimaNota_ContoBanca, &b.ContoPrimaNota_CommissioniBancarie}) {
    const std::string c = TrimTesto(*v);
    ASSERT_EQ(c.size(), 7u) << c;
    EXPECT_TRUE(pn.ExistSottoconto(Valore(c.substr(0, 2)), Valore(c.substr(2, 2)), Valore(c.substr(4)))) << c;
  }
  clsCausaliContabili cau;
  cau.cn = cn;
  for (auto [v, atteso] : {std::pair{&e.CodiceCausale_EmissioneEffetti, "EFF"},
                           {&e.CodiceCausale_PresentazioneEffetti, "PRE"},
                           {&s.CodiceCausale_CorrispettiviScorporo, "COR"},
                           {&b.CodiceCausale_BonificiFornitori, "BON"}}) {
    EXPECT_EQ(atteso, TrimTesto(*v));
    EXPECT_TRUE(cau.ExistCausaleContabile(*v)) << atteso;
  }
  // The receipts post on the receipts' register by scorporo.
  EXPECT_EQ("3", cau.GetTipoRegistroIvaCausaleContabile(s.CodiceCausale_CorrispettiviScorporo));
}

TEST_P(ComandoDistinte, AListIsMadeShownAndPostedOnce) {
  // Bad options: usage errors, nothing written.
  EXPECT_EQ(2, Vorn("distinte", {"--crea"}).rc);
  EXPECT_EQ(2, Vorn("distinte", {"--crea", "--scadenza-al", "31/13/2026"}).rc);
  EXPECT_EQ(2, Vorn("distinte", {"--contabilizza", "uno"}).rc);
  EXPECT_EQ(2, Vorn("distinte", {"--crea", "--scadenza-al", "30/04/2026", "--banca", "01"}).rc);
  EXPECT_EQ(2, Vorn("distinte", {"--mostra", "1", "--emetti", "1"}).rc);
  EXPECT_EQ(1, Vorn("distinte", {"--crea", "--scadenza-al", "30/04/2026", "--banca", "09", "--agenzia", "9"}).rc);
  EXPECT_EQ(0, NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Distinte Bonifici]")));
  EXPECT_EQ(2, Vorn("contabilizza-effetti", {"--dal", "01/05/2026", "--al", "01/04/2026"}).rc);
  EXPECT_EQ(2, Vorn("contabilizza-scontrini", {"--dal", "01/04/2026", "--al", "30/04/2026"}).rc);

  // The March instalment only, executed on 2 April.
  EsitoComando r = Vorn("distinte", {"--crea", "--scadenza-al", "30/04/2026", "--data", "01/04/2026", "--esecuzione",
                                     "02/04/2026", "--banca", "01", "--agenzia", "001"});
  ASSERT_EQ(0, r.rc) << r.err;
  EXPECT_EQ("Distinta n. 1 del 01/04/2026: 1 rate per 1.000,00, esecuzione il 02/04/2026\n", r.out);
  r = Vorn("distinte", {});
  EXPECT_EQ("Numero Data       Esecuzione Banca  Rate  Importo Stato\n"
            "     1 01/04/2026 02/04/2026 01/001    1 1.000,00 presentata\n",
            r.out);
  r = Vorn("distinte", {"--mostra", "1"});
  EXPECT_NE(r.out.find("   1    1 31/03/2026 F1        Beta Forniture Srl 101       1.000,00"), std::string::npos)
      << r.out;

  // Posted with 1,50 of commissions: the supplier 1.000,00 and the commissions against the
  // bank (no account of its own: the references' 0701001) for 1.001,50.
  r = Vorn("distinte", {"--contabilizza", "1", "--commissioni", "1,50"});
  ASSERT_EQ(0, r.rc) << r.err;
  EXPECT_EQ("Distinta n. 1 contabilizzata: registrazione 00001 di 3 righe.\n", r.out);
  EXPECT_EQ(*Importo::DaTestoPunto("1001.50"),
            NullToZeroCy(cn->Scalare("SELECT [ImportoMovimento] FROM [Prima Nota] WHERE [DareAvere] = 'A' AND "
                                     "[ContoPrimaNota] = '0701001'")));
  EXPECT_EQ(3, Righe());
  r = Vorn("distinte", {"--contabilizza", "1"});
  EXPECT_EQ(1, r.rc);
  EXPECT_NE(r.err.find("nessuna scadenza contabilizzabile"), std::string::npos) << r.err;
  EXPECT_EQ(3, Righe());
  EXPECT_EQ(1, Vorn("distinte", {"--annulla", "1"}).rc);
  r = Vorn("distinte", {});
  EXPECT_NE(r.out.find("contabilizzata (reg. 00001)"), std::string::npos) << r.out;
  auto d = VerificaSaldi(*cn);
  EXPECT_TRUE(d.empty()) << DescriviDifferenza(d.front());
}
