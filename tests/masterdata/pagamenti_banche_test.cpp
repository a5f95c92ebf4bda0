// Payment terms and the model's terms, the banks of clients and suppliers with their agencies,
// and the company's own banks with their virtual-stamp counts.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "frame/Comuni.h"
#include "interchange/ModelloStandard.h"
#include "masterdata/clsBanche.h"
#include "masterdata/clsBancheAzienda.h"
#include "masterdata/clsPagamenti.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

using Coppia = std::pair<std::string, std::string>;

TEST(TipiPagamento, EveryKindHasItsLongAndShortDescription) {
  // clang-format off
  const std::vector<std::vector<std::string>> attesi = {
      {"RD", "Rimessa diretta", "Rim.Dir."}, {"CO", "Contanti", "Contanti"},       {"RB", "Ric.Bancaria", "Ric.Banc."},
      {"TR", "Tratta", "Tratta"},           {"AB", "Avviso banc.", "Avv.Banc."},   {"CE", "Cessioni", "Cessioni"},
      {"BO", "Bonifico", "Bonifico"},       {"AC", "Assegno Cir.", "Ass.Cir."},    {"CT", "Contrassegno", "Contras."},
      {"RI", "R.I.D.", "R.I.D."},           {"AS", "Assegno banc.", "Ass.Banc."},  {"CP", "Carta Pagam.", "Carta Pag."},
      {"GR", "Giroconto", "Giroconto"},     {"TT", "Trattenute", "Trattenute"},    {"PA", "PagoPA", "PagoPA"}};
  // clang-format on
  std::vector<std::string> codici;
  for (const auto& a : attesi) {
    EXPECT_EQ(clsPagamenti::GetDesTipoPagamento(a[0]), a[1]);
    EXPECT_EQ(clsPagamenti::GetDesTipoPagamentoAbbreviato(a[0]), a[2]);
    codici.push_back(a[0]);
  }
  EXPECT_EQ(clsPagamenti::TipiPagamento(), codici);
  EXPECT_EQ(clsPagamenti::GetDesTipoPagamento(" RB "), "Ric.Bancaria");  // as a padded column reads
  for (const Valore& v : {Valore("rb"), Valore("XX"), Valore(""), Valore::Null()}) {
    EXPECT_EQ(clsPagamenti::GetDesTipoPagamento(v), "");
    EXPECT_EQ(clsPagamenti::GetDesTipoPagamentoAbbreviato(v), "");
  }
}

class PagamentiBanche : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    pag.cn = cn;
    banche.cn = cn;
    az.cn = cn;
  }
  int64_t Conta(const std::string& sql) { return cn->Scalare(sql).ComeIntero().value_or(-1); }
  void Banca(const char* banca, const Valore& agenzia, const char* descr) {
    cn->Esegui("INSERT INTO [Banche Clienti] ([Codice Banca], [Codice Agenzia], [Descrizione]) VALUES (?, ?, ?)",
               {banca, agenzia, descr});
  }
  void BancaAzienda(const std::string& banca, const std::string& agenzia, const char* plafond = "0") {
    cn->Esegui("INSERT INTO [Banche Azienda] ([Codice banca], [Codice agenzia], [Plafond]) VALUES (?, ?, ?)",
               {banca, agenzia, Valore(Importo::DaTestoPunto(plafond))});
  }
  clsPagamenti pag;
  clsBanche banche;
  clsBancheAzienda az;
  bool cancel = false;
};
VORN_SU_DUE_MOTORI(PagamentiBanche);

TEST_P(PagamentiBanche, PaymentTermSavedByNameAndASaveAnsweredNoWritesNothing) {
  RecordValori v{{"Descrizione Pagamento", "Ri.Ba. 30/60"},
                 {"Tipo Pagamento", "RB"},
                 {"numero rate", 2},
                 {"Numero Giorni Inizio Scadenza 2", 60},
                 {"Data Diversa Inizio", "15/03/2024"},
                 {"Spese incasso", "2,5"}};
  ASSERT_TRUE(pag.SalvaRecord(" R306 ", v, "pc1", 1, cancel));
  auto r = cn->Execute("SELECT * FROM [Pagamenti]");
  EXPECT_EQ(r("Codice Pagamento").Value().Testo(), "R306");
  EXPECT_EQ(NullToZeroLng(r("Numero Rate").Value()), 2);
  EXPECT_EQ(NullToZeroLng(r("Numero Giorni Inizio Scadenza 2").Value()), 60);
  EXPECT_EQ(r("Spese incasso").Value().ComeImporto(), Importo::DaTestoPunto("2.50"));
  EXPECT_EQ(DataInTesto(r("Data Diversa Inizio").Value()).Testo(), "15/03/2024");
  EXPECT_EQ(pag.GetTipoPagamento("R306").Testo(), "RB");
  // The excluded months are the counterparty's: a term refuses them, and writes nothing.
  EXPECT_THROW(pag.SalvaRecord("R306", {{"Tipo Pagamento", "BO"}, {"1 Mese Escluso", 8}}, "pc1", 1, cancel), ErroreDb);
  EXPECT_EQ(pag.GetTipoPagamento("R306").Testo(), "RB");

  Recordset T;
  ASSERT_TRUE(pag.LocalizzaRecord(T, "R306", "pc2", 9));  // another workstation reads it
  T.Close();
  EXPECT_FALSE(pag.SalvaRecord("R306", {{"Descrizione Pagamento", "altro"}, {"Numero Rate", 3}}, "pc1", 1, cancel));
  EXPECT_TRUE(cancel);
  EXPECT_EQ(pag.GetDescrizionePagamento("R306").Testo(), "Ri.Ba. 30/60");
  EXPECT_EQ(Conta("SELECT [Numero Rate] FROM [Pagamenti]"), 2);
}

// Each term of the model as due-date generation reads it, worked out from its description.
TEST_P(PagamentiBanche, ModelTermsAreWhatTheirDescriptionsPromise) {
  CaricaModello(*cn, "standard");
  // code: kind, instalments, days 1..3, start flag, periodicity
  const std::vector<std::pair<std::string, std::string>> attesi = {
      {"CON", "CO 1 0 0 0 DF 0"},      {"RD0", "RD 1 0 0 0 DF 0"},     {"RD30", "RD 1 30 0 0 FM 0"},
      {"BB30", "BO 1 30 0 0 FM 0"},    {"BB60", "BO 1 60 0 0 FM 0"},   {"BB90", "BO 1 90 0 0 FM 0"},
      {"B369", "BO 3 30 60 90 FM 30"}, {"RB30", "RB 1 30 0 0 FM 0"},   {"RB60", "RB 1 60 0 0 FM 0"},
      {"RB90", "RB 1 90 0 0 FM 0"},    {"R306", "RB 2 30 60 0 FM 30"}, {"R369", "RB 3 30 60 90 FM 30"},
      {"TR60", "TR 1 60 0 0 FM 0"},    {"AB30", "AB 1 30 0 0 FM 0"},   {"RI30", "RI 1 30 0 0 FM 0"}};
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Pagamenti]"), static_cast<int64_t>(attesi.size()));
  for (const auto& [codice, atteso] : attesi) {
    Recordset T;
    ASSERT_TRUE(pag.LocalizzaRecord(T, codice, "pc1", 1)) << codice;
    auto n = [&](const char* c) { return std::to_string(NullToZeroLng(T(c).Value())); };
    std::string g = "Numero Giorni Inizio Scadenza";
    EXPECT_EQ(TrimTesto(T("Tipo Pagamento").Value()) + " " + n("Numero Rate") + " " + n(g.c_str()) + " " +
                  n((g + " 2").c_str()) + " " + n((g + " 3").c_str()) + " " +
                  TrimTesto(T("Flag Inizio Scadenza").Value()) + " " + n("Periodicità"),
              atteso);
    EXPECT_EQ(TrimTesto(T("Flag prima rata").Value()), "NO") << codice;
    EXPECT_NE(clsPagamenti::GetDesTipoPagamento(T("Tipo Pagamento").Value()), "") << codice;
  }
}

TEST_P(PagamentiBanche, DeletingABankTakesItsAgenciesAndDeletingAgenciesLeavesTheBank) {
  Banca("01", "", "Banca Uno");
  Banca("01", "001", "Uno - Milano");
  Banca("02", Valore::Null(), "Banca Due");
  Banca("02", "002", "Due - Roma");
  Banca("02", "001", "Due - Bari");
  Banca("03", "   ", "Banca Tre");

  Recordset T;
  ASSERT_TRUE(banche.LocalizzaRecordAgenzie(T, "02"));
  ASSERT_EQ(T.RecordCount(), 2u);  // the bank's own row is no agency
  EXPECT_EQ(T("Descrizione").Value().Testo(), "Due - Bari");
  EXPECT_TRUE(banche.CancellaRecordAgenzie("02"));
  Valore d;
  EXPECT_TRUE(banche.ExistBanca("02", &d));
  EXPECT_EQ(d.Testo(), "Banca Due");
  EXPECT_FALSE(banche.LocalizzaRecordAgenzie(T, "02"));

  EXPECT_TRUE(banche.CancellaRecord("01"));
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Banche Clienti] WHERE [Codice Banca] = '01'"), 0);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Banche Clienti]"), 2);
  EXPECT_EQ(banche.GetDescrizioneBanca("03").Testo(), "Banca Tre");  // an agency of blanks is the bank's row
}

TEST_P(PagamentiBanche, BankSteppingNeverLandsOnAnAgency) {
  Banca("01", "", "Banca Uno");
  Banca("01", "900", "Uno - agenzia");
  Banca("02", "001", "agenzia di una banca senza riga propria");
  Banca("03", Valore::Null(), "Banca Tre");
  Banca("04", "   ", "Banca Quattro");
  Banca("05", "005", "agenzia dopo l'ultima banca");

  Valore b("");
  std::string visti;
  while (banche.RecordPrecedente(b)) visti += b.Testo() + " ";  // from blank: the first, then none
  EXPECT_EQ(visti, "01 ");
  while (banche.RecordSuccessivo(b)) visti += b.Testo() + " ";
  EXPECT_EQ(visti, "01 03 04 ");
  Valore ultimo("");
  ASSERT_TRUE(banche.RecordSuccessivo(ultimo));
  EXPECT_EQ(ultimo.Testo(), "04");
}

TEST_P(PagamentiBanche, BankAndAgencyGetters) {
  ASSERT_TRUE(banche.SalvaRecord("01", "", "Banca Uno", "03069", "", "BCITITMM", "", "", "pc1", 1, cancel));
  ASSERT_TRUE(
      banche.SalvaRecord("01", "020", "Uno - Milano", "03069", "01600", "BCITITMMXXX", "", "", "pc1", 1, cancel));
  EXPECT_EQ(banche.GetDescrizioneAgenzia("01", "020").Testo(), "Uno - Milano");
  EXPECT_EQ(banche.GetBICBanca("01", "").Testo() + "/" + banche.GetBICBanca("01", "020").Testo(),
            "BCITITMM/BCITITMMXXX");
  // A blank agency is none and says nothing; an unknown one is told under the list's title.
  EXPECT_EQ(banche.GetDescrizioneAgenzia("01", "", &cancel).Testo(), "");
  EXPECT_TRUE(host->Messaggi().empty());
  EXPECT_EQ(banche.GetDescrizioneAgenzia("01", "999", &cancel).Testo(), "");
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].titolo, "Banche/Agenzie");
}

TEST_P(PagamentiBanche, StampsOfAValueAlreadyHeldSetTheQuantity) {
  ASSERT_TRUE(az.SalvaRecordBolliUtilizzati("01", "", Importo(2), 10, "pc1", 1, cancel));
  ASSERT_TRUE(az.SalvaRecordBolliUtilizzati("01", "", "1,81", 5, "pc1", 1, cancel));
  ASSERT_TRUE(az.SalvaRecordBolliUtilizzati("01", "", 0, 99, "pc1", 1, cancel));
  ASSERT_TRUE(az.SalvaRecordBolliUtilizzati("02", "", Importo(2), 7, "pc1", 1, cancel));
  ASSERT_TRUE(az.SalvaRecordBolliUtilizzati("01", "", "2,00", 4, "pc1", 1, cancel));  // 4, not 14
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Bolli Utilizzati]"), 4);
  EXPECT_THROW(az.SalvaRecordBolliUtilizzati("01", "", "due euro", 1, "pc1", 1, cancel), ErroreDb);

  Recordset T;
  ASSERT_TRUE(az.LocalizzaRecordBolliUtilizzati(T, "01", "", "pc1", 3));
  std::vector<Coppia> righe;  // by value, the value 0 left out
  for (; !T.Eof(); T.MoveNext())
    righe.emplace_back(FormattaDecimali(T("Valore bollo").Value()), T("Qta bollo").Value().Testo());
  EXPECT_EQ(righe, (std::vector<Coppia>{{"1,81", "5"}, {"2,00", "4"}}));
  T.Close();
  // Window 3 holds the first row: a save from window 1 is asked, declined and writes nothing.
  EXPECT_FALSE(az.SalvaRecordBolliUtilizzati("01", "", "1,81", 6, "pc1", 1, cancel));
  EXPECT_TRUE(cancel);
  EXPECT_EQ(Conta("SELECT SUM([Qta bollo]) FROM [Bolli Utilizzati] WHERE [Codice banca] = '01'"), 5 + 4 + 99);

  EXPECT_TRUE(az.CancellaRecordBolliUtilizzati("01", ""));
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Bolli Utilizzati]"), 1);  // bank 02 keeps its count
}

TEST_P(PagamentiBanche, YearlyResetZeroesEveryBankAtOnceOrNothing) {
  BancaAzienda("01", "", "1500.00");
  BancaAzienda("01", "002", "320.50");
  BancaAzienda("07", "");
  ASSERT_TRUE(az.SalvaRecordBolliUtilizzati("01", "", Importo(2), 10, "pc1", 1, cancel));
  ASSERT_TRUE(az.SalvaRecordBolliUtilizzati("01", "002", Importo(2), 3, "pc1", 1, cancel));

  // When the stamps cannot be deleted, the plafonds stay as they were.
  cn->Esegui("ALTER TABLE [Bolli Utilizzati] RENAME TO [Bolli Altrove]");
  EXPECT_THROW(az.AzzeraProgressiviBolliVirtuali(), ErroreDb);
  EXPECT_EQ(cn->Scalare("SELECT SUM([Plafond]) FROM [Banche Azienda]").ComeImporto(), Importo::DaTestoPunto("1820.50"));
  cn->Esegui("ALTER TABLE [Bolli Altrove] RENAME TO [Bolli Utilizzati]");
  cn->DimenticaSchema();

  EXPECT_TRUE(az.AzzeraProgressiviBolliVirtuali());
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Banche Azienda] WHERE [Plafond] = 0"), 3);
  EXPECT_EQ(Conta("SELECT COUNT(*) FROM [Bolli Utilizzati]"), 0);
}

TEST_P(PagamentiBanche, CompanyBanksStepAsOneTextOfBankAndAgency) {
  // As one text: "01" < "0100" < "01002" < "02" < "123" = "123", the last two told apart by the bank.
  for (const Coppia& r :
       std::vector<Coppia>{{"02", ""}, {"01", "002"}, {"0100", ""}, {"12", "3"}, {"01", ""}, {"1", "23"}})
    BancaAzienda(r.first, r.second);
  Valore b(""), a("");
  std::vector<Coppia> visti;
  while (az.RecordPrecedente(b, a)) visti.emplace_back(b.Testo(), a.Testo());  // from blank: the first, then none
  while (az.RecordSuccessivo(b, a)) visti.emplace_back(b.Testo(), a.Testo());
  EXPECT_EQ(visti,
            (std::vector<Coppia>{{"01", ""}, {"0100", ""}, {"01", "002"}, {"02", ""}, {"1", "23"}, {"12", "3"}}));
  EXPECT_EQ(b.Testo() + "/" + a.Testo(), "12/3");  // nothing beyond: left alone
  Valore b2(""), a2("");
  ASSERT_TRUE(az.RecordSuccessivo(b2, a2));  // from blank: the last
  ASSERT_TRUE(az.RecordPrecedente(b2, a2));
  EXPECT_EQ(b2.Testo() + "/" + a2.Testo(), "1/23");
}

TEST_P(PagamentiBanche, CompanyBankSaveGettersAndFlowData) {
  // clang-format off
  RecordValori v{{"Descrizione", "Banca del Borgo"},       {"Sottoconto Banca cc", "1801001"},
                 {"Sottoconto Banca sbf", "1801002"},     {"Codice SIA", "A1B2C"},
                 {"Codice ABI", "08327"},                 {"Codice CAB", "03200"},
                 {"Conto ordinante", "12345678"},         {"Firma azienda", "Rossi Srl"},
                 {"IBAN", "IT60X0832703200000012345678"}, {"CodiceCUC", "0123456789ABCDEF"},
                 {"Codice BIC", "ICRAITRR"},              {"Plafond", "1.250,00"}};
  // clang-format on
  ASSERT_TRUE(az.SalvaRecord("05", "", v, "pc1", 1, cancel));
  EXPECT_THROW(az.SalvaRecord("06", "", {{"Descrizione", "x"}, {"Qta bollo", 1}}, "pc1", 1, cancel), ErroreDb);
  EXPECT_FALSE(az.ExistCodice("06", ""));
  EXPECT_EQ(cn->Scalare("SELECT [Plafond] FROM [Banche Azienda]").ComeImporto(), Importo(1250));
  EXPECT_EQ(az.GetSottocontoBanca("05", "").Testo() + "/" + az.GetSottocontoBancaSBF("05", "").Testo(),
            "1801001/1801002");

  Valore o[9] = {"x", "x", "x", "x", "x", "x", "x", "x", "x"};
  auto dati = [&](const char* agenzia) {
    bool ok =
        az.GetDatiBancaAziendaGenerazioneFlussi("05", agenzia, o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7], o[8]);
    std::string s = ok ? "trovata" : "assente";
    for (const auto& x : o) s += "|" + x.Testo();
    return s;
  };
  EXPECT_EQ(dati(""),
            "trovata|A1B2C|08327|03200|12345678|Rossi Srl|IT60X0832703200000012345678||0123456789ABCDEF|ICRAITRR");
  EXPECT_EQ(dati("001"), "assente|||||||||");

  // An unknown bank of no agency is told as any unknown code; two blank codes say nothing.
  EXPECT_EQ(az.GetDescrizioneBanca("", "", &cancel).Testo(), "");
  EXPECT_TRUE(host->Messaggi().empty());
  EXPECT_EQ(az.GetDescrizioneBanca("09", "", &cancel).Testo(), "");
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].titolo, "Banca Azienda");
}
