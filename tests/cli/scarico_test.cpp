// The unload of the first quarter of the demo company: balances at a dozen dates, the trial
// balance, the balance sheet and a few ledger cards read the same before and after, on both
// engines; the balances of the year stay those of the journal.
#include <gtest/gtest.h>

#include <sstream>

#include "cli/Demo.h"
#include "frame/Comuni.h"
#include "interchange/ModelloStandard.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsBilancio.h"
#include "ledger/clsCompPrimaNota.h"
#include "ledger/clsSaldiContabili.h"
#include "ledger/clsStampaMastrini.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class ScaricoDemo : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    CaricaModello(*cn, "standard");
    const cli::OpzioniDemo o{.seme = 11, .clienti = 10, .fornitori = 6, .registrazioni = 300, .lotto = 100};
    cli::RiempiAziendaDemo(*cn, o);
  }

  // Every figure that must not move, as text.
  std::string Figure() {
    std::ostringstream s;
    clsSaldiContabili saldi;
    saldi.cn = cn;
    std::vector<std::string> conti;
    for (auto rs = cn->Execute("SELECT DISTINCT [ContoPrimaNota] FROM [Prima Nota] UNION SELECT "
                               "COALESCE([CodiceGruppo], '') || COALESCE([CodiceConto], '') || "
                               "COALESCE([CodiceSottoconto], '') FROM [Saldi Piano Dei Conti] ORDER BY 1");
         !rs.Eof(); rs.MoveNext())
      conti.push_back(TrimTesto(rs(0).Value()));
    const char* date[] = {"31/03/2024", "01/04/2024", "15/04/2024", "30/04/2024", "31/05/2024", "30/06/2024",
                          "31/07/2024", "31/08/2024", "30/09/2024", "31/10/2024", "30/11/2024", "31/12/2024", ""};
    for (auto d : date)
      for (const auto& c : conti) {
        Importo saldo = saldi.GetSaldoSottocontoAData(Valore(d), Valore(c));
        if (!saldo.Zero()) s << d << " " << c << " " << saldo.TestoPunto4() << "\n";
      }
    for (auto rs = cn->Execute("SELECT [Codice Cliente], [SottocontoApparten] FROM [Anagrafica Clienti] ORDER BY 1");
         !rs.Eof(); rs.MoveNext())
      for (auto d : {"31/03/2024", "30/06/2024", "31/12/2024"})
        s << d << " C" << TrimTesto(rs(0).Value()) << " "
          << saldi.GetSaldoSottocontoCliForAData(Valore(d), rs(1).Value(), Valore("C"), rs(0).Value()).TestoPunto4()
          << "\n";

    clsBilancio b;
    b.cn = cn;
    for (auto [da, a] : {std::pair{"", "31/03/2024"}, {"", "31/12/2024"}, {"01/01/2024", "31/12/2024"},
                         {"01/04/2024", "30/09/2024"}}) {
      s << "verifica " << da << "-" << a << "\n"
        << clsBilancio::TestoBilancioVerifica(b.BilancioVerificaSottoconti(Valore(da), Valore(a)));
      ArgomentiBilancio ab;
      ab.nomeFile = dir->Percorso() + "/bilancio.txt";
      ab.avar_DaData = Valore(da);
      ab.avar_AData = Valore(a);
      ab.avar_DataStampa = Valore("31/12/2024");
      EXPECT_TRUE(b.Bilancio(ab));
      s << "bilancio " << da << "-" << a << "\n";
      for (const SezioneBilancio* sez : {&b.Patrimoniale(), &b.Economico(), &b.Riepilogo()}) {
        for (const auto* lato : {&sez->sx, &sez->dx})
          for (const auto& r : *lato)  // a group at zero tells only that a partner had rows
            if (!r.saldo.Zero()) s << r.conto << " " << r.saldo.TestoPunto4() << "\n";
        s << sez->totaleSx.TestoPunto4() << " " << sez->totaleDx.TestoPunto4() << "\n";
      }
    }

    clsStampaMastrini m;
    m.cn = cn;
    ArgomentiStampaMastrini am;
    am.avar_StampaSaldo = true;
    am.DataStampa = Data::Crea(2024, 12, 31);
    for (auto [conto, ind, cod] : {std::tuple{"0501001", "", ""}, {"1301001", "", ""}, {"0501001", "C", "1"},
                                   {"1801001", "", ""}})
      for (auto da : {"01/04/2024", "01/07/2024"})
        if (m.Stampa_Completa_Mastrino(Valore(da), Valore(""), Valore(conto), Valore(ind), Valore(cod), am))
          s << LeggiFile(clsStampaMastrini::FileScheda());
    return s.str();
  }
};

TEST_P(ScaricoDemo, TheFirstQuarterLeavesAndNothingElseMoves) {
  const std::string prima = Figure();
  const long righe = NullToZeroLng(
      cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE [DataRegistrazione] <= ?", {Valore(*Data::Crea(2024, 3, 31))}));
  clsCompPrimaNota c;
  c.cn = cn;
  ArgomentiCompattamento a;
  a.avar_Mese = 3;
  a.avar_Anno = 2024;
  a.abool_GestioneStorico = true;
  a.abool_ForzaCompattamento = true;  // the books are not printed here
  EsitoCompattamento e;
  ASSERT_TRUE(c.CompattamentoPrimaNota(a, &e));
  EXPECT_GT(e.registrazioni, 50);
  EXPECT_EQ(e.righeStorico, e.righe);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Storico Contabile]").ComeIntero(), e.righe);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE [DataRegistrazione] <= ?",
                        {Valore(*Data::Crea(2024, 3, 31))})
                .ComeIntero(),
            righe - e.righe);
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
  const std::string dopo = Figure();
  EXPECT_EQ(dopo, prima);
  // A second run over the same quarter changes nothing.
  EXPECT_FALSE(c.CompattamentoPrimaNota(a));
  EXPECT_EQ(Figure(), prima);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Storico Contabile]").ComeIntero(), e.righe);
}

VORN_SU_DUE_MOTORI(ScaricoDemo);

}  // namespace
