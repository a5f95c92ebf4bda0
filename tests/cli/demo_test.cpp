// The demo company: balanced entries, balances that agree with the journal, a trial balance
// whose debit and credit meet, the same books for the same --seme on both engines.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "cli/Comandi.h"
#include "cli/Demo.h"
#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "frame/Schema.h"
#include "interchange/ModelloStandard.h"
#include "ledger/VerificaSaldi.h"
#include "support/Azienda.h"
#include "ComandoAzienda.h"

using namespace vorn;
using namespace vorn::test;
using cli::BilancioVerificaSottoconti;
using cli::OpzioniDemo;
using cli::RigaBilancioVerifica;

namespace {

OpzioniDemo Piccola(uint64_t seme = 7) {
  // Several batches, the last one short.
  return OpzioniDemo{.seme = seme, .clienti = 12, .fornitori = 8, .registrazioni = 400, .lotto = 37};
}

struct Movimenti {
  Importo dare, avere, apertura;
};

// The trial balance recomputed from the journal rows alone.
std::map<std::string, Movimenti> DalGiornale(Connessione& cn) {
  std::map<std::string, Movimenti> m;
  auto rs = cn.Execute(
      "SELECT [Prima Nota].[ContoPrimaNota], [Prima Nota].[DareAvere], [Prima Nota].[ImportoMovimento], "
      "[Causali Contabili].[OperativitaContabile] FROM [Prima Nota] LEFT JOIN [Causali Contabili] ON "
      "[Causali Contabili].[CodiceCausale] = [Prima Nota].[CodiceCausale]");
  for (; !rs.Eof(); rs.MoveNext()) {
    auto& x = m[Trim(rs(0).Value().Testo())];
    Importo i = NullToZeroCy(rs(2).Value());
    bool dare = rs(1).Value().Testo() == "D";
    if (rs(3).Value().Testo() == "1") x.apertura += dare ? i : -i;
    else (dare ? x.dare : x.avere) += i;
  }
  return m;
}

// Each row of the journal as text, in key order: what two runs must both write.
std::string Impronta(Connessione& cn) {
  std::string s;
  auto rs = cn.Execute(
      "SELECT [NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere], [ContoPrimaNota], "
      "[CodClienteFornitore], [CodiceCausale], [ImportoMovimento], [Imponibile], [CodiceIva], [DataRegistrazione] "
      "FROM [Prima Nota] ORDER BY [NumeroRegistrazione], [TipoRigaIvaNormale], [NumRigaAVideo], [DareAvere]");
  for (; !rs.Eof(); rs.MoveNext()) {
    for (int i = 0; i < rs.FieldCount(); ++i) {
      const Valore& v = rs(i).Value();
      s += (v.tipo() == Valore::Tipo::Importo || v.IsNumber()) ? NullToZeroCy(v).TestoPunto4() : Trim(v.Testo());
      s += '|';
    }
    s += '\n';
  }
  return s;
}

// The journal of the demo with `seme` on a new SQLite company of the standard model.
std::string ImprontaDemoSqlite(const std::string& file, uint64_t seme) {
  OpzioniSqlite o;
  o.crea = true;
  auto cn = Connessione::ApriSqlite(file, o);
  CreaSchema(*cn);
  CaricaModello(*cn, "standard");
  cli::RiempiAziendaDemo(*cn, Piccola(seme));
  return Impronta(*cn);
}

}  // namespace

class AziendaDemo : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    CaricaModello(*cn, "standard");
  }
};

TEST_P(AziendaDemo, EntriesBalanceAndTheTrialBalanceIsTheJournal) {
  auto esito = cli::RiempiAziendaDemo(*cn, Piccola());
  EXPECT_GT(esito.registrazioni, 400);  // the opening and the VAT settlements besides
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota]").ComeIntero(), esito.righe);
  EXPECT_FALSE(cn->InTransazione());

  // Every entry balances, to the last cent.
  std::map<std::string, Importo> perRegistrazione;
  auto rs = cn->Execute("SELECT [NumeroRegistrazione], [DareAvere], [ImportoMovimento] FROM [Prima Nota]");
  for (; !rs.Eof(); rs.MoveNext()) {
    Importo i = NullToZeroCy(rs(2).Value());
    perRegistrazione[rs(0).Value().Testo()] += rs(1).Value().Testo() == "D" ? i : -i;
  }
  EXPECT_EQ(perRegistrazione.size(), static_cast<size_t>(esito.registrazioni));
  for (const auto& [n, s] : perRegistrazione) EXPECT_TRUE(s.Zero()) << "registrazione " << n << ": " << s.TestoPunto();

  // The trial balance: debit and credit totals meet, and every line is what the journal gives.
  auto righe = BilancioVerificaSottoconti(*cn);
  Importo dare, avere;
  for (const auto& r : righe) dare += r.dare, avere += r.avere;
  EXPECT_EQ(dare, avere);
  EXPECT_GT(dare, Importo(100000));
  auto giornale = DalGiornale(*cn);
  std::map<std::string, RigaBilancioVerifica> perConto;
  for (const auto& r : righe) perConto[r.codice] = r;
  for (const auto& [conto, m] : giornale) {
    Importo d = m.dare + (m.apertura > Importo() ? m.apertura : Importo());
    Importo a = m.avere + (m.apertura < Importo() ? -m.apertura : Importo());
    if (d.Zero() && a.Zero()) {
      EXPECT_EQ(perConto.count(conto), 0u) << conto;
      continue;
    }
    ASSERT_EQ(perConto.count(conto), 1u) << conto;
    EXPECT_EQ(perConto[conto].dare, d) << conto;
    EXPECT_EQ(perConto[conto].avere, a) << conto;
    EXPECT_FALSE(perConto[conto].descrizione.empty()) << conto;
    perConto.erase(conto);
  }
  EXPECT_TRUE(perConto.empty()) << perConto.begin()->first;

  // Sub-account, client and supplier balances agree with the journal.
  auto differenze = VerificaSaldi(*cn);
  for (const auto& d : differenze) ADD_FAILURE() << DescriviDifferenza(d);
}

TEST_P(AziendaDemo, TheBooksAreThoseOfARealYear) {
  cli::RiempiAziendaDemo(*cn, Piccola());
  auto saldo = [&](const std::string& conto) {
    for (const auto& r : BilancioVerificaSottoconti(*cn))
      if (r.codice == conto) return r.Saldo();
    return Importo();
  };
  // The December settlement closes every VAT account of the year into the treasury's account.
  for (const char* c : {"1401001", "0601001", "0601002", "1401006"}) EXPECT_TRUE(saldo(c).Zero()) << c;
  const auto liquidazioni =
      cn->Scalare("SELECT COUNT(DISTINCT [NumeroRegistrazione]) FROM [Prima Nota] WHERE [CodiceCausale] = 'LIQ'")
          .ComeIntero()
          .value_or(0);
  EXPECT_GE(liquidazioni, 11);
  EXPECT_LE(liquidazioni, 12);
  // The opening moves the opening balance only: bank and cash start the year with it.
  auto apertura = cn->Execute(
      "SELECT [SaldoInizialePeriodo] FROM [Saldi Piano Dei Conti] WHERE [CodiceGruppo] = '07' AND "
      "[CodiceConto] = '01' AND [CodiceSottoconto] = '001'");
  ASSERT_FALSE(apertura.Eof());
  EXPECT_GE(NullToZeroCy(apertura(0).Value()), Importo(40000));

  // Every VAT row carries the tax of its code on its taxable amount, rounded to the cent.
  auto iva = cn->Execute(
      "SELECT [Prima Nota].[Imponibile], [Prima Nota].[ImportoMovimento], [Codici Iva].[Aliquota], "
      "[Prima Nota].[CodiceIva] FROM [Prima Nota] LEFT JOIN [Codici Iva] ON [Codici Iva].[Codice Iva] = "
      "[Prima Nota].[CodiceIva] WHERE [Prima Nota].[TipoRigaIvaNormale] = 'I'");
  size_t n = 0;
  for (; !iva.Eof(); iva.MoveNext(), ++n) {
    ASSERT_FALSE(iva(2).Value().IsNull()) << "codice IVA sconosciuto " << iva(3).Value().Testo();
    Importo atteso = NullToZeroCy(iva(0).Value()).Per(NullToZeroCy(iva(2).Value()).ToDouble() / 100).Arrotonda(2);
    EXPECT_EQ(NullToZeroCy(iva(1).Value()), atteso) << iva(3).Value().Testo();
  }
  EXPECT_GT(n, 100u);
  // The register of a VAT row is its causal's, and a row on a client or supplier names one that exists.
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] JOIN [Causali Contabili] ON [Causali Contabili]."
                        "[CodiceCausale] = [Prima Nota].[CodiceCausale] WHERE [Prima Nota].[TipoRigaIvaNormale] = 'I' "
                        "AND [Prima Nota].[TipoRegistroIva] <> [Causali Contabili].[TipoRegistroIva]")
                .ComeIntero(),
            0);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota] WHERE [IndClienteFornitore] = 'C' AND [CodClienteFornitore] "
                        "NOT IN (SELECT [Codice Cliente] FROM [Anagrafica Clienti])")
                .ComeIntero(),
            0);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Anagrafica Clienti]").ComeIntero(), 12);
  EXPECT_EQ(cn->Scalare("SELECT COUNT(*) FROM [Anagrafica Fornitori]").ComeIntero(), 8);
}

// The sales documents go through the invoice posting: every one of them is posted, and each
// amount a document settles at once leaves its own registration, on the account the company's
// references name for it, for the document's amount.
TEST_P(AziendaDemo, SalesDocumentsArePostedWithWhatTheySettle) {
  auto esito = cli::RiempiAziendaDemo(*cn, Piccola());
  auto conta = [&](const std::string& sql, const Parametri& p = {}) {
    return cn->Scalare(sql, p).ComeIntero().value_or(-1);
  };
  const long long documenti = conta("SELECT COUNT(*) FROM [Fatture]");
  EXPECT_GT(documenti, 50);
  EXPECT_EQ(documenti, esito.documenti);
  EXPECT_EQ(conta("SELECT COUNT(*) FROM [Fatture] WHERE [Elaborata] = ?", {Valore(true)}), documenti);
  // The sales register holds the posted documents only: a VAT row of register 1 outside the
  // intra-community integrations belongs to a document of [Fatture].
  EXPECT_EQ(conta("SELECT COUNT(*) FROM [Prima Nota] P WHERE P.[TipoRigaIvaNormale] = 'I' AND P.[TipoRegistroIva] = "
                  "'1' AND P.[CodiceCausale] <> 'AVI' AND NOT EXISTS (SELECT 1 FROM [Fatture] F WHERE F.[Numero] = "
                  "P.[NumeroDocumento])"),
            0);
  // Two rates at least among the sales, and credit notes among the documents.
  EXPECT_GE(conta("SELECT COUNT(DISTINCT [CodiceIva]) FROM [Prima Nota] WHERE [TipoRigaIvaNormale] = 'I' AND "
                  "[TipoRegistroIva] = '1' AND [ImportoMovimento] <> 0"),
            2);
  EXPECT_GT(conta("SELECT COUNT(*) FROM [Fatture] WHERE [Tipo documento] = 'NOTA CREDITO'"), 0);

  // Each settled amount: its registration's row on the other account, on the document's side
  // (credit for a credit note), and the client's row on the other side, both for the amount.
  struct Saldo {
    const char* colonna;
    const char* causale;
    const char* conto;
  };
  for (const Saldo& k : {Saldo{"PA Totale Split Payment", "SPL", "1401006"}, Saldo{"Acconto", "INC", "0702001"},
                         Saldo{"Ritenuta1", "RIT", "0601007"}, Saldo{"Abbuono", "ABB", "6401004"}}) {
    const std::string c = std::string("F.[") + k.colonna + "]";
    EXPECT_GT(conta("SELECT COUNT(*) FROM [Fatture] F WHERE " + c + " <> 0"), 0) << k.colonna;
    const std::string lato = "CASE WHEN F.[Tipo documento] = 'NOTA CREDITO' THEN 'A' ELSE 'D' END";
    const std::string altro = "CASE WHEN F.[Tipo documento] = 'NOTA CREDITO' THEN 'D' ELSE 'A' END";
    EXPECT_EQ(conta("SELECT COUNT(*) FROM [Fatture] F WHERE " + c +
                        " <> 0 AND NOT EXISTS (SELECT 1 FROM [Prima Nota] P WHERE P.[NumeroDocumento] = F.[Numero] "
                        "AND P.[CodiceCausale] = ? AND P.[ContoPrimaNota] = ? AND P.[DareAvere] = " + lato +
                        " AND P.[ImportoMovimento] = " + c + ")",
                    {Valore(k.causale), Valore(k.conto)}),
              0)
        << k.colonna;
    EXPECT_EQ(conta("SELECT COUNT(*) FROM [Fatture] F WHERE " + c +
                        " <> 0 AND NOT EXISTS (SELECT 1 FROM [Prima Nota] P WHERE P.[NumeroDocumento] = F.[Numero] "
                        "AND P.[CodiceCausale] = ? AND P.[IndClienteFornitore] = 'C' AND P.[CodClienteFornitore] = "
                        "F.[Codice Cliente] AND P.[DareAvere] = " + altro + " AND P.[ImportoMovimento] = " + c + ")",
                    {Valore(k.causale)}),
              0)
        << k.colonna;
    // And no such registration of a document without the document's amount (the demo's own
    // receipts share the causal of the down payment, with no document).
    EXPECT_EQ(conta("SELECT COUNT(*) FROM [Prima Nota] P WHERE P.[CodiceCausale] = ? AND COALESCE("
                    "P.[NumeroDocumento], 0) <> 0 AND NOT EXISTS (SELECT 1 FROM "
                    "[Fatture] F WHERE F.[Numero] = P.[NumeroDocumento] AND " + c + " = P.[ImportoMovimento])",
                    {Valore(k.causale)}),
              0)
        << k.colonna;
  }
  // Split payment: the main registration moves the document's VAT off the sales VAT account
  // onto the split-payment account, the settling one takes it back from the client.
  EXPECT_EQ(conta("SELECT COUNT(*) FROM [Fatture] F WHERE F.[PA Totale Split Payment] <> 0 AND NOT EXISTS (SELECT 1 "
                  "FROM [Prima Nota] P WHERE P.[NumeroDocumento] = F.[Numero] AND P.[CodiceCausale] = F.[Causale "
                  "Contabile] AND P.[ContoPrimaNota] = '1401001' AND P.[TipoRigaIvaNormale] <> 'I' AND "
                  "P.[ImportoMovimento] = F.[PA Totale Split Payment])"),
            0);
  // Gifts: a line of code 822 gives its amount on 6101012 and its 22% on 6101013, off the client.
  EXPECT_GT(conta("SELECT COUNT(*) FROM [Movimenti Magazzino] WHERE [Codice Iva] = '822'"), 0);
  auto omaggi = cn->Execute(
      "SELECT M.[Numero], M.[Importo], (SELECT SUM(P.[ImportoMovimento]) FROM [Prima Nota] P WHERE "
      "P.[NumeroDocumento] = M.[Numero] AND P.[CodiceCausale] = 'OMV' AND P.[ContoPrimaNota] = '6101012' AND "
      "P.[DareAvere] = 'D'), (SELECT SUM(P.[ImportoMovimento]) FROM [Prima Nota] P WHERE P.[NumeroDocumento] = "
      "M.[Numero] AND P.[CodiceCausale] = 'OMV' AND P.[ContoPrimaNota] = '6101013' AND P.[DareAvere] = 'D'), "
      "(SELECT SUM(P.[ImportoMovimento]) FROM [Prima Nota] P WHERE P.[NumeroDocumento] = M.[Numero] AND "
      "P.[CodiceCausale] = 'OMV' AND P.[IndClienteFornitore] = 'C' AND P.[DareAvere] = 'A') FROM "
      "[Movimenti Magazzino] M WHERE M.[Codice Iva] = '822'");
  for (; !omaggi.Eof(); omaggi.MoveNext()) {
    const Importo importo = NullToZeroCy(omaggi(1).Value());
    // Whole euros: 22% of them is exact to the cent.
    const Importo iva = Importo::DaRaw(importo.Raw() * 22 / 100);
    EXPECT_EQ(NullToZeroCy(omaggi(2).Value()), importo) << omaggi(0).Value().Testo();
    EXPECT_EQ(NullToZeroCy(omaggi(3).Value()), iva) << omaggi(0).Value().Testo();
    EXPECT_EQ(NullToZeroCy(omaggi(4).Value()), importo + iva) << omaggi(0).Value().Testo();
  }
}

TEST_P(AziendaDemo, TheStartingNumberDecidesTheBooks) {
  cli::RiempiAziendaDemo(*cn, Piccola(7));
  std::string qui = Impronta(*cn);
  // The same --seme on an SQLite company of its own: the same rows, whatever the engine here.
  EXPECT_EQ(ImprontaDemoSqlite(dir->Percorso() + "/altra.db", 7), qui);
  // Another --seme, other books.
  EXPECT_NE(ImprontaDemoSqlite(dir->Percorso() + "/terza.db", 8), qui);
}

VORN_SU_DUE_MOTORI(AziendaDemo);

TEST(BilancioVerifica, ColumnsAndTotals) {
  AzzeraGlobali();
  std::vector<RigaBilancioVerifica> righe = {
      {"0701001", "Banca c/c ordinario", *Importo::DaTestoPunto("1234567.89"), *Importo::DaTestoPunto("0.5")},
      {"1001001", "Una descrizione lunga che non sta nella sua colonna", Importo(), *Importo::DaTestoPunto("1234567.39")},
      {"1401001", "IVA su vendite", Importo(100), Importo(100)}};
  std::string atteso =
      "Codice     Descrizione                                        Dare              Avere              Saldo\n"
      "----------------------------------------------------------------------------------------------------------\n"
      "07.01.001  Banca c/c ordinario                        1.234.567,89               0,50       1.234.567,39 D\n"
      "10.01.001  Una descrizione lunga che non sta ne               0,00       1.234.567,39       1.234.567,39 A\n"
      "14.01.001  IVA su vendite                                   100,00             100,00               0,00  \n"
      "----------------------------------------------------------------------------------------------------------\n"
      "           Totali                                     1.234.667,89       1.234.667,89               0,00  \n";
  EXPECT_EQ(cli::TestoBilancioVerifica(righe), atteso);
}

TEST(ComandoDemo, WritesTheCompanyTheTrialBalanceAndTheReport) {
  CartellaProva dir;
  std::string demo = dir.Percorso() + "/demo";
  EsitoComando r = EseguiVorn({"--cartella", dir.Percorso() + "/app", "demo", demo, "--registrazioni", "150",
                               "--clienti", "5", "--fornitori", "4", "--seme", "3"});
  ASSERT_EQ(r.rc, 0) << r.err;
  const std::string& o = r.out;
  EXPECT_TRUE(std::filesystem::exists(demo + "/azienda.db"));
  // The totals line: debit equal to credit, a zero balance.
  auto t = o.find("           Totali ");
  ASSERT_NE(t, std::string::npos) << o;
  std::string totali = o.substr(t, o.find('\n', t) - t);
  ASSERT_EQ(totali.size(), 106u);
  EXPECT_EQ(totali.substr(48, 18), totali.substr(67, 18)) << totali;
  EXPECT_EQ(Trim(totali.substr(86)), "0,00") << totali;
  auto s = o.find("Stampa: ", t);  // the trial balance's print, after its totals
  ASSERT_NE(s, std::string::npos);
  std::string stampa = o.substr(s + 8, o.find('\n', s) - s - 8);
  EXPECT_EQ(stampa, dir.Percorso() + "/app/Temp/BilancioVerificaDemo.txt");
  std::string testo = LeggiFile(stampa);
  EXPECT_NE(testo.find("BILANCIO DI VERIFICA DEI SOTTOCONTI AL 31/12/2024"), std::string::npos);
  EXPECT_NE(testo.find(totali), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(dir.Percorso() + "/app/Temp/bilverdemo.tmp"));

  // Again on the same folder: the company there is left alone.
  auto prima = std::filesystem::file_size(demo + "/azienda.db");
  EXPECT_EQ(EseguiVorn({"--cartella", dir.Percorso() + "/app", "demo", demo}).rc, 1);
  EXPECT_EQ(std::filesystem::file_size(demo + "/azienda.db"), prima);
  // Sizes must be whole positive numbers.
  EXPECT_EQ(EseguiVorn({"demo", dir.Percorso() + "/x", "--registrazioni", "0"}).rc, 2);
  EXPECT_EQ(EseguiVorn({"demo", dir.Percorso() + "/x", "--clienti", "tre"}).rc, 2);
  EXPECT_FALSE(std::filesystem::exists(dir.Percorso() + "/x/azienda.db"));
}

// The same starting number on the server engine: a new database of its own, the same trial balance.
TEST(ComandoDemo, OnPostgreSQLTheBooksAreThoseOfSQLite) {
  if (!PostgresDisponibile()) GTEST_SKIP() << "PostgreSQL non disponibile";
  CartellaProva dir;
  const std::vector<std::string> opzioni = {"--registrazioni", "150", "--clienti", "5", "--fornitori", "4", "--seme", "3"};
  auto bilancio = [](const std::string& o) {
    size_t inizio = o.find("Codice     Descrizione"), fine = o.find("           Totali ");
    return inizio == std::string::npos || fine == std::string::npos ? std::string() : o.substr(inizio, fine - inizio);
  };
  std::vector<std::string> sqlite = {"--cartella", dir.Percorso() + "/app", "demo", dir.Percorso() + "/demo"};
  sqlite.insert(sqlite.end(), opzioni.begin(), opzioni.end());
  EsitoComando s = EseguiVorn(sqlite);
  ASSERT_EQ(s.rc, 0) << s.err;

  ParametriPostgres pg = ParametriPostgresTest();
  pg.database = NomeUnico("demo");
  std::vector<std::string> postgres = {"--cartella", dir.Percorso() + "/app-pg", "demo"};
  for (auto& a : ArgomentiAzienda(true, "", pg))
    if (a != "--pg-schema" && !a.empty()) postgres.push_back(a);
  postgres.insert(postgres.end(), opzioni.begin(), opzioni.end());
  EsitoComando p = EseguiVorn(postgres);
  EXPECT_EQ(p.rc, 0) << p.err;
  ASSERT_FALSE(bilancio(s.out).empty()) << s.out;
  EXPECT_EQ(bilancio(p.out), bilancio(s.out));
  EXPECT_NE(p.out.find("Cambio esercizio: chiuso il 2024"), std::string::npos) << p.out;
  // The database is the demo's own: a second run leaves it alone.
  EXPECT_EQ(EseguiVorn(postgres).rc, 1);
  EliminaAziendaPostgres(pg);
}

