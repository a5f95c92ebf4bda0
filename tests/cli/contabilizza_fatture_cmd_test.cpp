// vorn contabilizza-fatture on a company made from the standard model: the references of the
// model give every causal and account the posting needs, bad dates are usage errors, a second
// run posts nothing.
#include <gtest/gtest.h>

#include <string>

#include "ComandoAzienda.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsPrimaNota.h"
#include "receivables/clsElaboraFatture.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ComandoContabilizzaFatture : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten]) VALUES "
               "('C1', 'Rossi Mario Srl', '0501001')");
    // 200,00 at 22% with 10,00 of transport over Totale Righe 200,00: the transport all on the
    // one row, VAT (200,00 + 10,00) x 22% = 46,20, total 256,20; 50,00 paid down in cash.
    std::string tab = "22" + std::string(12, ' ') + "200.00" + std::string(8, ' ') + "22" + std::string(12, ' ');
    tab += std::string(210 - tab.size(), ' ');
    cn->Esegui("INSERT INTO [Fatture] ([Numero], [Serie], [Data], [Elaborata], [Stampata], [Tipo fattura], "
               "[Tipo cli/for], [Codice Cliente], [Tipo documento], [Ragione Sociale], [Totale Documento], "
               "[Spese di trasporto], [TabellaIva], [Totale Righe], [Acconto]) VALUES (1, '', ?, ?, '1', "
               "0, 'C', 'C1', 'FATTURA', 'Rossi Mario Srl', 256.20, 10, ?, 200, 50)",
               {Valore("10/02/2026"), Valore(false), Valore(tab)});
    cn->Esegui("INSERT INTO [Movimenti Magazzino] ([Numero], [Serie], [Tipo documento], [Contropartita], [Codice Iva], "
               "[Importo], [Scorporo iva]) VALUES (1, '', 'F', '7001001', '022', 200, ?)",
               {Valore(false)});
    cn->Esegui("INSERT INTO [Scadenziario] ([Tipo], [Codice Cliente], [Numero Documento], [Serie], [Data Documento], "
               "[Numero Progressivo], [Data Scadenza], [Tipo di Effetto], [Importo Scadenza], [Importo Pagato], [Note]) "
               "VALUES ('CL', 'C1', 1, '', ?, 1, ?, 'CO', 50, 50, 'Rilevaz. acconto')",
               {Valore("10/02/2026"), Valore("10/02/2026")});
  }

  std::pair<int, std::string> Vorn(const std::vector<std::string>& resto, std::string* err = nullptr) {
    EsitoComando r = EseguiVorn(RigaComando(dir->Percorso(), "contabilizza-fatture", Pg(), file, pg, resto));
    if (err) *err += r.err;
    return {r.rc, r.out};
  }
};

VORN_SU_DUE_MOTORI(ComandoContabilizzaFatture);

}  // namespace

TEST_P(ComandoContabilizzaFatture, ModelReferencesAreComplete) {
  // Every causal and account the posting takes from the references exists in the model.
  clsTabRiferimenti rif;
  rif.cn = cn;
  ArgomentiElaboraFatture a;
  ASSERT_TRUE(RiferimentiElaboraFatture(rif, a));
  clsPrimaNota pn;
  pn.cn = cn;
  for (const Valore* s : {&a.avar_ClientiStandard, &a.avar_RicaviStandard, &a.avar_RicaviAccessori, &a.avar_IvaVendite,
                          &a.avar_IvaCorrispettiviScorporo, &a.avar_IvaSospensione, &a.avar_IvaEsigDiff,
                          &a.avar_SottocontoCassa, &a.avar_SottocontoImponibileOmaggi, &a.avar_SottocontoIvaOmaggi,
                          &a.avar_SottIVASplitPaymentVend, &a.avar_SottocontoRitenuteSubite, &a.avar_SottocontoAbbuoni,
                          &a.avar_SottRicaviAccessori2, &a.avar_SottRicaviSpeseIncasso, &a.avar_SottRicaviSpeseTrasporto,
                          &a.avar_SottRicaviBolli}) {
    std::string c = TrimTesto(*s);
    ASSERT_EQ(c.size(), 7u) << c;
    EXPECT_TRUE(pn.ExistSottoconto(Valore(c.substr(0, 2)), Valore(c.substr(2, 2)), Valore(c.substr(4)))) << c;
  }
  for (auto [causale, atteso] : {std::pair{&a.avar_CausaleFatture, "FTV"}, {&a.avar_CausaleNoteCredito, "NCV"},
                                 {&a.avar_CausaleIncassi, "INC"}, {&a.avar_CausaleOmaggi, "OMV"},
                                 {&a.avar_CausaleSplitPayment, "SPL"}, {&a.avar_CausaleRitenuteSubite, "RIT"},
                                 {&a.avar_CausaleAbbuoni, "ABB"}}) {
    EXPECT_EQ(TrimTesto(*causale), atteso);
    EXPECT_FALSE(cn->Scalare("SELECT 1 FROM [Causali Contabili] WHERE [CodiceCausale] = ?", {*causale}).IsNull())
        << atteso;
  }
}

TEST_P(ComandoContabilizzaFatture, PostsTheRangeOnceAndRefusesBadDates) {
  std::string err;
  EXPECT_EQ(Vorn({"--dal", "31/02/2026", "--al", "28/02/2026"}).first, 2);
  EXPECT_EQ(Vorn({"--al", "28/02/2026"}).first, 2);
  EXPECT_EQ(Vorn({"--dal", "01/02/2026", "--al", "28/02/2026", "--data-contabilizzazione", "ieri"}).first, 2);
  EXPECT_EQ(Vorn({"--dal", "28/02/2026", "--al", "01/02/2026"}).first, 2);
  EXPECT_TRUE(cn->Scalare("SELECT 1 FROM [Prima Nota]").IsNull());

  auto r = Vorn({"--dal", "01/02/2026", "--al", "28/02/2026"}, &err);
  EXPECT_EQ(r.first, 0) << err;
  EXPECT_EQ(r.second, "Documenti contabilizzati: 1, scartati: 0, registrazioni create: 2\n");
  EXPECT_NE(err.find("Create 2 registrazioni di prima nota."), std::string::npos) << err;
  // The model posts transport on its own account (TipoContabRicAcc 1): 7002002.
  Recordset rs = cn->Execute("SELECT [NumeroRegistrazione], [TipoRigaIvaNormale], [DareAvere], [ContoPrimaNota], "
                             "[ImportoMovimento], [CodiceCausale] FROM [Prima Nota] ORDER BY [NumeroRegistrazione], "
                             "[TipoRigaIvaNormale], [NumRigaAVideo]");
  std::string s;
  for (; !rs.Eof(); rs.MoveNext())
    s += TrimTesto(rs(0).Value()) + " " + (TrimTesto(rs(1).Value()).empty() ? "-" : "I") + " " +
         TrimTesto(rs(2).Value()) + " " + TrimTesto(rs(3).Value()) + " " +
         NullToZeroCy(rs(4).Value()).Arrotonda(2).TestoPunto() + " " + TrimTesto(rs(5).Value()) + "\n";
  EXPECT_EQ(s,
            "00001 - D 0501001 256.2 FTV\n"
            "00001 - A 7001001 200 FTV\n"
            "00001 - A 7002002 10 FTV\n"
            "00001 I A 1401001 46.2 FTV\n"
            "00002 - A 0501001 50 INC\n"
            "00002 - D 0702001 50 INC\n");
  for (const auto& d : VerificaSaldi(*cn)) ADD_FAILURE() << DescriviDifferenza(d);

  auto r2 = Vorn({"--dal", "01/02/2026", "--al", "28/02/2026"});
  EXPECT_EQ(r2.first, 0);
  EXPECT_EQ(r2.second, "Documenti contabilizzati: 0, scartati: 0, registrazioni create: 0\n");
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota]")), 6);
}
