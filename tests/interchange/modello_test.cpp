// The model companies: what a load leaves in the company, and whether every account, causal and
// VAT code that the settings name exists in it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include "company/clsParametriAzienda.h"
#include "frame/Catalogo.h"
#include "frame/Globali.h"
#include "interchange/ModelloStandard.h"
#include "support/Azienda.h"

using namespace vorn;
using vorn::test::AziendaTest;

namespace {

std::set<std::string> Insieme(Connessione& cn, const std::string& sql) {
  std::set<std::string> s;
  auto rs = cn.Execute(sql);
  for (; !rs.Eof(); rs.MoveNext()) s.insert(Trim(rs(0).Value().Testo()));
  return s;
}

std::string Testo(Recordset& rs, const std::string& col) { return Trim(rs(col).Value().Testo()); }

// Every reference of the company that names something that is not there, one line each.
std::vector<std::string> RiferimentiMancanti(Connessione& cn, const std::string& pianoConti,
                                             const std::string& causali) {
  std::vector<std::string> mancanti;
  auto sottoconti = Insieme(cn, "SELECT [Gruppo] || [Conto] || [Sottoconto] FROM [" + pianoConti +
                                    "] WHERE COALESCE([Sottoconto], '') <> ''");
  auto conti = Insieme(cn, "SELECT [Gruppo] || [Conto] FROM [" + pianoConti +
                               "] WHERE COALESCE([Conto], '') <> '' AND COALESCE([Sottoconto], '') = ''");
  auto codiciCausali = Insieme(cn, "SELECT [CodiceCausale] FROM [" + causali + "]");
  auto causaliCespiti = Insieme(cn, "SELECT [Codice] FROM [Causali Cespiti]");
  auto codiciIva = Insieme(cn, "SELECT [Codice Iva] FROM [Codici Iva]");
  auto verifica = [&](const std::set<std::string>& dove, const std::string& valore, const std::string& chi) {
    if (!valore.empty() && !dove.count(valore)) mancanti.push_back(chi + " = '" + valore + "'");
  };

  auto rif = cn.Execute("SELECT * FROM [Riferimenti Contabili]");
  EXPECT_EQ(rif.RecordCount(), 1u);
  for (int i = 0; !rif.Eof() && i < rif.FieldCount(); ++i) {
    std::string nome = rif(i).Name(), v = Trim(rif(i).Value().Testo());
    if (nome.rfind("Sott", 0) == 0) verifica(sottoconti, v, "Riferimenti Contabili." + nome);
    else if (nome.rfind("CausAm", 0) == 0) verifica(causaliCespiti, v, "Riferimenti Contabili." + nome);
    else if (nome.rfind("Caus", 0) == 0) verifica(codiciCausali, v, "Riferimenti Contabili." + nome);
    else if (nome == "CodIvaCee") verifica(codiciIva, v, "Riferimenti Contabili." + nome);
  }

  auto rc = cn.Execute("SELECT * FROM [" + causali + "]");
  for (; !rc.Eof(); rc.MoveNext()) {
    std::string codice = Testo(rc, "CodiceCausale");
    for (int i = 0; i < rc.FieldCount(); ++i) {
      std::string nome = rc(i).Name();
      bool conto = (nome.rfind("Conto", 0) == 0 && nome.size() == 6) || nome.rfind("SottocontoDare", 0) == 0 ||
                   nome.rfind("SottocontoAvere", 0) == 0 || nome == "SottocontoIVARSM";
      if (conto) verifica(sottoconti, Trim(rc(i).Value().Testo()), causali + "[" + codice + "]." + nome);
    }
  }

  auto pv = cn.Execute("SELECT * FROM [Parametri Vorn]");
  EXPECT_EQ(pv.RecordCount(), 1u);
  for (const char* chi : {"Clienti", "Fornitori"})
    for (int n = 1; !pv.Eof() && n <= 5; ++n) {
      std::string col = "GruppoConto" + std::to_string(n) + chi;
      verifica(conti, Testo(pv, col), "Parametri Vorn." + col);
    }

  auto az = cn.Execute("SELECT * FROM [Tabella Azienda]");
  EXPECT_EQ(az.RecordCount(), 1u);
  if (!az.Eof()) {
    for (const char* col : {"SottocontoClienti", "SottocontoFornitori", "SottocontoBanca", "Contropartita costo",
                            "Contropartita ricavo"})
      verifica(sottoconti, Testo(az, col), std::string("Tabella Azienda.") + col);
    for (const char* col : {"Codice Iva Standard", "Codice Iva Art 15", "Codice Iva Spese Incasso"})
      verifica(codiciIva, Testo(az, col), std::string("Tabella Azienda.") + col);
  }

  auto iva = cn.Execute("SELECT * FROM [Codici Iva]");
  for (; !iva.Eof(); iva.MoveNext())
    for (const char* col : {"Codice IVA ventilare", "Codice IVA detraibile"})
      verifica(codiciIva, Testo(iva, col), "Codici Iva[" + Testo(iva, "Codice Iva") + "]." + col);

  auto cat = cn.Execute("SELECT * FROM [CespitiCategorie]");
  for (; !cat.Eof(); cat.MoveNext())
    for (const char* col : {"SottCostoAmmOrd", "SottFondoAmmOrd", "SottCostoAmmAnt", "SottFondoAmmAnt"})
      verifica(sottoconti, Testo(cat, col), "CespitiCategorie[" + Testo(cat, "CodiceCategoria") + "]." + col);
  return mancanti;
}

// Rows of a chart whose parent row is missing, and group rows without a valid section.
std::vector<std::string> AlberoRotto(Connessione& cn, const std::string& pianoConti) {
  std::vector<std::string> rotti;
  std::set<std::string> gruppi, conti;
  auto rs = cn.Execute("SELECT * FROM [" + pianoConti + "] ORDER BY [Gruppo], [Conto], [Sottoconto]");
  for (; !rs.Eof(); rs.MoveNext()) {
    std::string g = Testo(rs, "Gruppo"), c = Testo(rs, "Conto"), s = Testo(rs, "Sottoconto");
    std::string sez = Testo(rs, "IndDiBilancio");
    if (g.size() != 2 || (!c.empty() && c.size() != 2) || (!s.empty() && s.size() != 3))
      rotti.push_back("codice di lunghezza sbagliata: " + g + c + s);
    if (c.empty()) {
      gruppi.insert(g);
      if (sez != "0" && sez != "1" && sez != "2") rotti.push_back("gruppo " + g + " senza sezione: '" + sez + "'");
    } else if (s.empty()) {
      conti.insert(g + c);
      if (!gruppi.count(g)) rotti.push_back("conto " + g + c + " senza gruppo");
    } else if (!conti.count(g + c)) {
      rotti.push_back("sottoconto " + g + c + s + " senza conto");
    }
  }
  return rotti;
}

std::string Sezione(Connessione& cn, const std::string& sottoconto) {
  return Trim(cn.Scalare("SELECT [IndDiBilancio] FROM [Piano Dei Conti] WHERE [Gruppo] = ? AND "
                         "COALESCE([Conto], '') = ''",
                         {sottoconto.substr(0, 2)})
                  .Testo());
}

std::string Riferimento(Connessione& cn, const std::string& colonna) {
  return Trim(cn.Scalare("SELECT [" + colonna + "] FROM [Riferimenti Contabili]").Testo());
}

// A model folder of its own, for the cases that need a broken or partial model.
class ModelliProva {
 public:
  ModelliProva() : radice_(dir_.Percorso()) {
    if (const char* e = std::getenv("VORN_MODELLI")) precedente_ = e;
    setenv("VORN_MODELLI", radice_.c_str(), 1);
  }
  ~ModelliProva() {
    if (precedente_) setenv("VORN_MODELLI", precedente_->c_str(), 1);
    else unsetenv("VORN_MODELLI");
  }
  void File(const std::string& relativo, const std::string& testo) {
    auto p = radice_ / relativo;
    std::filesystem::create_directories(p.parent_path());
    std::ofstream(p, std::ios::binary) << testo;
  }
  std::string Percorso(const std::string& relativo) const { return (radice_ / relativo).string(); }

 private:
  vorn::test::CartellaProva dir_;
  std::filesystem::path radice_;
  std::optional<std::string> precedente_;
};

std::string Errore(const std::function<void()>& f) {
  try {
    f();
  } catch (const ErroreModello& e) {
    return e.what();
  }
  return "(nessun errore)";
}

}  // namespace

class ModelloTest : public AziendaTest {};

TEST_P(ModelloTest, EveryReferenceOfBothModelsPointsAtWhatTheModelLoads) {
  for (const std::string modello : {"standard", "semplificato"}) {
    SCOPED_TRACE(modello);
    auto esito = CaricaModello(*cn, modello);
    ASSERT_FALSE(esito.empty());
    for (const auto& e : esito) EXPECT_GT(e.righe, 0u) << e.tabella;
    EXPECT_EQ(RiferimentiMancanti(*cn, "Piano Dei Conti", "Causali Contabili"), std::vector<std::string>{});
    EXPECT_EQ(AlberoRotto(*cn, "Piano Dei Conti"), std::vector<std::string>{});
    // The simplified tables that travel with every model resolve against the simplified chart.
    EXPECT_EQ(AlberoRotto(*cn, "Piano Dei Conti Mod Semplificati"), std::vector<std::string>{});
    auto semp = Insieme(*cn, "SELECT [Gruppo] || [Conto] || [Sottoconto] FROM [Piano Dei Conti Mod Semplificati] "
                             "WHERE COALESCE([Sottoconto], '') <> ''");
    auto rc = cn->Execute("SELECT * FROM [Causali Contabili Mod Semplificati]");
    ASSERT_GT(rc.RecordCount(), 0u);
    for (; !rc.Eof(); rc.MoveNext())
      for (int i = 1; i <= 10; ++i) {
        std::string d = Testo(rc, "SottocontoDare" + std::to_string(i));
        std::string a = Testo(rc, "SottocontoAvere" + std::to_string(i));
        if (!d.empty()) {
          EXPECT_TRUE(semp.count(d)) << Testo(rc, "CodiceCausale") << " " << d;
        }
        if (!a.empty()) {
          EXPECT_TRUE(semp.count(a)) << Testo(rc, "CodiceCausale") << " " << a;
        }
      }
  }
}

TEST_P(ModelloTest, StandardModelIsAnOrdinaryItalianCompany) {
  CaricaModello(*cn, "standard");
  // Three levels, many sub-accounts, every group with its section.
  EXPECT_GE(cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti] WHERE COALESCE([Sottoconto], '') <> ''")
                .ComeIntero()
                .value_or(0),
            150);
  EXPECT_EQ(Insieme(*cn, "SELECT DISTINCT [IndDiBilancio] FROM [Piano Dei Conti] WHERE COALESCE([Conto], '') = ''"),
            (std::set<std::string>{"0", "1", "2"}));
  // The technical accounts of the year change are summary accounts; the result is patrimonial;
  // standard revenues and costs are economic; cash, banks and VAT are patrimonial.
  for (const char* c : {"SottAperturaBilancio", "SottChiusuraBilancio", "SottUtilePerditaEse"})
    EXPECT_EQ(Sezione(*cn, Riferimento(*cn, c)), "2") << c;
  for (const char* c : {"SottRisultatoEsercizio", "SottocontoCassa1", "SottIVACVendite", "SottIVACAcquisti",
                        "SottRicevuteBancarie"})
    EXPECT_EQ(Sezione(*cn, Riferimento(*cn, c)), "0") << c;
  for (const char* c : {"SottRicaviStandard", "SottCostiStandard", "SottCommissioniBancarie"})
    EXPECT_EQ(Sezione(*cn, Riferimento(*cn, c)), "1") << c;

  // Only the opening causal moves the opening balance.
  EXPECT_EQ(Insieme(*cn, "SELECT [CodiceCausale] FROM [Causali Contabili] WHERE [OperativitaContabile] = '1'"),
            (std::set<std::string>{Riferimento(*cn, "CausAperturaBilancio")}));
  // The posting causals carry the register and document kinds the VAT side reads.
  auto tipo = [&](const std::string& rif) {
    auto rs = cn->Execute("SELECT [TipoRegistroIva], [TipoCausale] FROM [Causali Contabili] WHERE [CodiceCausale] = ?",
                          {Riferimento(*cn, rif)});
    return rs.Eof() ? std::string("?") : Testo(rs, "TipoRegistroIva") + "/" + Testo(rs, "TipoCausale");
  };
  EXPECT_EQ(tipo("CausEmisFatturaClienti"), "1/0");
  EXPECT_EQ(tipo("CausNotaCreditoClienti"), "1/1");
  EXPECT_EQ(tipo("CausFatturaForn"), "2/0");
  EXPECT_EQ(tipo("CausNotaCreditoForn"), "2/1");
  EXPECT_EQ(tipo("CausCorrispettivi"), "3/2");
  EXPECT_EQ(tipo("CausFattAcqCee"), "2/0");
  EXPECT_EQ(tipo("CausIncassoCliente").substr(0, 2), "0/");
  EXPECT_EQ(tipo("CausPagamentoForn").substr(0, 2), "0/");

  // The parameters read back through the company classes.
  clsParametriAzienda par;
  par.cn = cn;
  EXPECT_EQ(par.GetIndClienteFornitore(Valore(Riferimento(*cn, "SottClientiCee"))), "C");
  EXPECT_EQ(par.GetIndClienteFornitore(Valore(Riferimento(*cn, "SottFornCee"))), "F");
  EXPECT_EQ(par.GetIndClienteFornitore(Valore(Riferimento(*cn, "SottRicaviStandard"))), "");
  std::string sc = Trim(cn->Scalare("SELECT [SottocontoClienti] FROM [Tabella Azienda]").Testo());
  std::string sf = Trim(cn->Scalare("SELECT [SottocontoFornitori] FROM [Tabella Azienda]").Testo());
  EXPECT_EQ(par.GetIndClienteFornitore(Valore(sc)), "C");
  EXPECT_EQ(par.GetIndClienteFornitore(Valore(sf)), "F");
  EXPECT_FALSE(par.GetLiquidazioneTrimestale());
  std::string valuta, simbolo, descr, lire, euro;
  int dec = 0, decCambi = 0, decQ = 0, decP = 0;
  double cambio = 0;
  EXPECT_EQ(par.GetParametriGlobali(valuta, simbolo, descr, dec, lire, euro, cambio, decCambi, decQ, decP), Valore(true));
  EXPECT_EQ(simbolo, "EUR");
  EXPECT_EQ(dec, 2);
  EXPECT_DOUBLE_EQ(cambio, 1936.27);

  // Amounts and rates arrive exact.
  EXPECT_EQ(cn->Scalare("SELECT [ImportoMinLiqIva] FROM [Importi Fissi]").ComeImporto(), Importo::DaTestoPunto("25.82"));
  EXPECT_EQ(cn->Scalare("SELECT [Aliquota] FROM [Codici Iva] WHERE [Codice Iva] = '022'").ComeImporto(), Importo(22));
  EXPECT_EQ(cn->Scalare("SELECT [Spese incasso] FROM [Pagamenti] WHERE [Tipo Pagamento] = 'RB' LIMIT 1").ComeImporto(),
            Importo::DaTestoPunto("2.50"));
}

TEST_P(ModelloTest, VatCodesAndPaymentTermsCoverTheUsualCases) {
  CaricaModello(*cn, "standard");
  auto conta = [&](const std::string& where) {
    return cn->Scalare("SELECT COUNT(*) FROM [Codici Iva] WHERE " + where).ComeIntero().value_or(0);
  };
  for (int aliquota : {22, 10, 5, 4})
    EXPECT_GE(conta("[Aliquota] = " + std::to_string(aliquota) + " AND [Percentuale indetraibilità] = 0 AND "
                    "[Flag Split Payment fattura PA] = '0' AND [Flag Reverse Charge] = '0' AND "
                    "[Acquisto Intracomunitario] = '0'"),
              1)
        << aliquota;
  EXPECT_GE(conta("[Flag Fatture Esenti] = '1' AND [Natura operazione fattura PA] = 4"), 1);    // exempt, N4
  EXPECT_GE(conta("[Flag Articolo 8] = '1' AND [Natura operazione fattura PA] = 10"), 1);       // export, N3.1
  EXPECT_GE(conta("[Natura operazione fattura PA] IN (2, 8, 9) AND [Aliquota] = 0"), 1);        // out of scope
  EXPECT_GE(conta("[Flag Split Payment fattura PA] = '1' AND [Aliquota] = 22"), 1);
  EXPECT_GE(conta("[Flag Reverse Charge] = '1' AND [Natura operazione fattura PA] BETWEEN 16 AND 24"), 1);
  EXPECT_GE(conta("[Percentuale indetraibilità] > 0 AND [Percentuale indetraibilità] < 100"), 1);
  // A partly non-deductible code names a fully deductible companion at the same rate.
  auto rs = cn->Execute(
      "SELECT i.[Aliquota] AS a, d.[Aliquota] AS b, d.[Percentuale indetraibilità] AS p FROM [Codici Iva] i "
      "JOIN [Codici Iva] d ON d.[Codice Iva] = i.[Codice IVA detraibile] WHERE i.[Percentuale indetraibilità] > 0");
  ASSERT_FALSE(rs.Eof());
  for (; !rs.Eof(); rs.MoveNext()) {
    EXPECT_EQ(rs("a").Value().ComeImporto(), rs("b").Value().ComeImporto());
    EXPECT_EQ(rs("p").Value().ComeDouble().value_or(-1), 0.0);
  }
  EXPECT_EQ(Insieme(*cn, "SELECT DISTINCT [Tipo Pagamento] FROM [Pagamenti]"),
            (std::set<std::string>{"AB", "BO", "CO", "RB", "RD", "RI", "TR"}));
  // The 30/60/90 bank receipts: three instalments, a month apart, from the end of the month.
  auto r = cn->Execute("SELECT * FROM [Pagamenti] WHERE [Numero Rate] = 3");
  ASSERT_FALSE(r.Eof());
  EXPECT_EQ(Testo(r, "Flag Inizio Scadenza"), "FM");
  EXPECT_EQ(Testo(r, "Numero Giorni Inizio Scadenza"), "30");
  EXPECT_EQ(Testo(r, "Numero Giorni Inizio Scadenza 2"), "60");
  EXPECT_EQ(Testo(r, "Numero Giorni Inizio Scadenza 3"), "90");
}

TEST_P(ModelloTest, SimplifiedModelSetsTheSimplifiedRegime) {
  CaricaModello(*cn, "semplificato");
  EXPECT_EQ(cn->Scalare("SELECT [regimeContabile] FROM [Parametri Vorn]").ComeIntero(), 1);
  // Its chart is the company's and the model's simplified chart alike.
  auto n = [&](const std::string& t) { return cn->Scalare("SELECT COUNT(*) FROM [" + t + "]").ComeIntero().value_or(0); };
  EXPECT_EQ(n("Piano Dei Conti"), n("Piano Dei Conti Mod Semplificati"));
  EXPECT_EQ(n("Causali Contabili"), n("Causali Contabili Mod Semplificati"));
  // Costs without VAT are annotated on the purchases register.
  EXPECT_GE(cn->Scalare("SELECT COUNT(*) FROM [Causali Contabili] WHERE [TipoRegistroIva] = '0' AND "
                        "[TipoRegistroIVACRSemp] = '2' AND [RegistroIVACRSemp] = '01'")
                .ComeIntero()
                .value_or(0),
            1);
}

TEST_P(ModelloTest, LoadReplacesTheTablesAndOneTableCanGoElsewhere) {
  cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) "
             "VALUES ('99', '99', '999', 'Conto dell''utente')");
  CaricaModello(*cn, "standard");
  EXPECT_TRUE(cn->Scalare("SELECT [Descrizione] FROM [Piano Dei Conti] WHERE [Gruppo] = '99'").IsNull());
  auto ordinari = cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti]").ComeIntero();
  // Loading twice gives the same rows, not twice as many.
  CaricaModello(*cn, "standard");
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti]").ComeIntero(), ordinari);

  // The simplified chart of the model into the company's chart.
  size_t n = 0;
  ASSERT_TRUE(CaricaTabellaModello(*cn, "standard", "Piano Dei Conti Mod Semplificati", "Piano Dei Conti", &n));
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti]").ComeIntero(), static_cast<int64_t>(n));
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti]").ComeIntero(),
            cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti Mod Semplificati]").ComeIntero());
  EXPECT_NE(n, static_cast<size_t>(ordinari.value_or(0)));
}

TEST_P(ModelloTest, AnEmptyTableOfTheModelLeavesTheCompanysTableAsItWas) {
  ModelliProva m;
  m.File("vuoto/modello.tsv", "Piano Dei Conti\tpiano.tsv\nCausali Contabili\tcausali.tsv\n");
  m.File("vuoto/piano.tsv", "# nothing but the header\nGruppo\tConto\tSottoconto\tDescrizione\n");
  m.File("vuoto/causali.tsv", "CodiceCausale\tDescrizioneCausale\nV1\tVendite\n");
  cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) "
             "VALUES ('01', '', '', 'VECCHIO'), ('01', '01', '001', 'CASSA')");
  cn->Esegui("INSERT INTO [Causali Contabili] ([CodiceCausale], [DescrizioneCausale]) VALUES ('X', 'vecchia')");

  size_t n = 99;
  EXPECT_FALSE(CaricaTabellaModello(*cn, "vuoto", "Piano Dei Conti", "", &n));
  EXPECT_EQ(n, 0u);
  EXPECT_EQ(host->Ultimo(), "Piano dei conti dal DB origine vuoto");
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti]").ComeIntero(), 2);

  // The whole model: the empty chart is told and skipped, the causals are replaced.
  auto esito = CaricaModello(*cn, "vuoto");
  ASSERT_EQ(esito.size(), 2u);
  EXPECT_FALSE(esito[0].caricata);
  EXPECT_TRUE(esito[1].caricata);
  EXPECT_EQ(esito[1].righe, 1u);
  EXPECT_EQ(cn->Scalare("SELECT [Descrizione] FROM [Piano Dei Conti] WHERE [Sottoconto] = '001'").Testo(), "CASSA");
  EXPECT_EQ(cn->Scalare("SELECT [CodiceCausale] FROM [Causali Contabili]").Testo(), "V1");

  // Another empty table is named in the message.
  m.File("vuoto/causali.tsv", "CodiceCausale\tDescrizioneCausale\n");
  EXPECT_FALSE(CaricaTabellaModello(*cn, "vuoto", "Causali Contabili"));
  EXPECT_EQ(host->Ultimo(), "Tabella 'Causali Contabili' dal DB origine vuota.");
  EXPECT_EQ(cn->Scalare("SELECT [CodiceCausale] FROM [Causali Contabili]").Testo(), "V1");
}

TEST_P(ModelloTest, AFailedLoadLeavesTheCompanyAsItWas) {
  ModelliProva m;
  // The chart loads, the causals then break a key: nothing of the model may stay.
  m.File("rotto/modello.tsv", "Piano Dei Conti\tpiano.tsv\nCausali Contabili\tcausali.tsv\n");
  m.File("rotto/piano.tsv", "Gruppo\tConto\tSottoconto\tDescrizione\n01\t\t\tNUOVO\n");
  m.File("rotto/causali.tsv", "CodiceCausale\tDescrizioneCausale\nX\tuno\nX\tdue\n");
  cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) "
             "VALUES ('01', '', '', 'VECCHIO')");
  EXPECT_THROW(CaricaModello(*cn, "rotto"), ErroreDb);
  EXPECT_FALSE(cn->InTransazione());
  EXPECT_EQ(cn->Scalare("SELECT [Descrizione] FROM [Piano Dei Conti] WHERE [Gruppo] = '01'").Testo(), "VECCHIO");
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Causali Contabili]").ComeIntero(), 0);

  // A file that does not read is found before anything is written.
  m.File("rotto/causali.tsv", "CodiceCausale\tPosContrClifor\nX\tuno\n");
  std::string e = Errore([&] { CaricaModello(*cn, "rotto"); });
  EXPECT_NE(e.find("causali.tsv, riga 2: colonna PosContrClifor: 'uno' non è un numero intero"), std::string::npos) << e;
  EXPECT_EQ(cn->Scalare("SELECT [Descrizione] FROM [Piano Dei Conti] WHERE [Gruppo] = '01'").Testo(), "VECCHIO");
}

VORN_SU_DUE_MOTORI(ModelloTest);

// Reading the data files, apart from any database.
TEST(FileModello, FieldsTakeTheKindOfTheirColumn) {
  ModelliProva m;
  m.File("x/pagamenti.tsv",
         "# commento\n\nCodice Pagamento\tDescrizione Pagamento\tNumero Rate\tSpese incasso\tData Diversa Inizio\t"
         "Sconto pagamento\tTipo Pagamento\n"
         "A\tcon\\ttab e \\\\ barra\t2\t1.2345\t2024-02-29\t0.5\t\n"
         "B\t\\N\t\t\t\t\t\\N\n");
  auto d = LeggiFileModello(m.Percorso("x/pagamenti.tsv"), "pagamenti");
  EXPECT_EQ(d.tabella, "Pagamenti");
  ASSERT_EQ(d.righe.size(), 2u);
  const auto& a = d.righe[0];
  EXPECT_EQ(a[1], Valore("con\ttab e \\ barra"));
  EXPECT_EQ(a[2], Valore(2LL));
  EXPECT_EQ(a[3], Valore(Importo::DaRaw(12345)));
  EXPECT_EQ(a[4], Valore(*Data::Crea(2024, 2, 29)));
  EXPECT_EQ(a[5], Valore(0.5));
  EXPECT_EQ(a[6], Valore(std::string()));  // empty text stays text
  const auto& b = d.righe[1];
  EXPECT_TRUE(b[1].IsNull());
  for (int i = 2; i <= 5; ++i) EXPECT_TRUE(b[i].IsNull()) << i;  // empty number or date is Null
  EXPECT_TRUE(b[6].IsNull());
}

TEST(FileModello, BadDataIsNamedByFileAndLine) {
  ModelliProva m;
  auto prova = [&](const std::string& tabella, const std::string& testo) {
    m.File("x/t.tsv", testo);
    return Errore([&] { LeggiFileModello(m.Percorso("x/t.tsv"), tabella); });
  };
  EXPECT_NE(prova("Pagamenti", "Codice Pagamento\tColore\nA\trosso\n").find("riga 1: la tabella Pagamenti non ha la colonna 'Colore'"),
            std::string::npos);
  EXPECT_NE(prova("Pagamenti", "Codice Pagamento\tNumero Rate\n# c\nA\n").find("riga 3: 1 campi invece di 2"),
            std::string::npos);
  EXPECT_NE(prova("Pagamenti", "Codice Pagamento\tSpese incasso\nA\t1,50\n").find("'1,50' non è un importo"),
            std::string::npos);
  EXPECT_NE(prova("Pagamenti", "Codice Pagamento\tData Diversa Inizio\nA\t2023-02-29\n").find("non è una data esistente"),
            std::string::npos);
  EXPECT_NE(prova("Pagamenti", "Codice Pagamento\tNumero Rate\nA\t1\nB\t2x\n").find("riga 3"), std::string::npos);
  EXPECT_NE(prova("Importi Fissi", "Fino a 1\n1\n2\n").find("ha una riga sola"), std::string::npos);
  EXPECT_NE(prova("Pagamenti", "Codice Pagamento\tCodice pagamento\n").find("colonna ripetuta"), std::string::npos);
  EXPECT_NE(prova("Pagamenti", "Codice Pagamento\nA\\x\n").find("sequenza sconosciuta"), std::string::npos);
}

TEST(FileModello, ModelsAreFoundAndUnknownOnesNamed) {
  auto nomi = ModelliDisponibili();
  EXPECT_NE(std::find(nomi.begin(), nomi.end(), "standard"), nomi.end());
  EXPECT_NE(std::find(nomi.begin(), nomi.end(), "semplificato"), nomi.end());
  std::string e = Errore([] { TabelleModello("completo"); });
  EXPECT_NE(e.find("Modello 'completo' inesistente"), std::string::npos) << e;
  EXPECT_NE(e.find("standard"), std::string::npos);
  EXPECT_NE(Errore([] { TabelleModello("../standard"); }).find("non valido"), std::string::npos);
  // Every table a model names is a table of the company.
  for (const auto& nome : nomi)
    for (const auto& t : TabelleModello(nome)) EXPECT_NE(TabellaCatalogoDi(t.tabella), nullptr) << t.tabella;
}
