// The year change on a small company of the standard model: the entries written row by row as
// worked out by hand, costs and revenues at zero, the patrimonial accounts and partners reopened
// at their closing balances, a second run refused, a run broken halfway leaving nothing.
#include <gtest/gtest.h>

#include <map>

#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "interchange/ModelloStandard.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsCambioEsercizio.h"
#include "ledger/clsPrimaNota.h"
#include "support/Azienda.h"

using namespace vorn;
using namespace vorn::test;

namespace {

Importo I(const char* s) { return *Importo::DaTestoPunto(s); }

class CambioEsercizio : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    CaricaModello(*cn, "standard");
    pn.cn = cn;
    for (auto [t, c] : {std::pair{"Clienti", "000001"}, {"Clienti", "000002"}, {"Fornitori", "000001"}})
      cn->Esegui(std::string("INSERT INTO [Anagrafica ") + t +
                     "] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten]) VALUES (?, ?, ?)",
                 {Valore(c), Valore(std::string(t) + " " + c), Valore(t[0] == 'C' ? "0501001" : "1301001")});
    // 2024: the opening (bank against capital), a sale to client 1 with VAT, one to client 2,
    // who pays more than owed, a purchase with VAT, a cost paid by bank, part of the supplier
    // paid. Then one cost of 2025, which the change must leave out.
    Entrata("APE", "01/01/2024", {{"0701001", "", "", "D", "10000"}, {"1001001", "", "", "A", "10000"}});
    Entrata("FTV", "10/03/2024",
            {{"0501001", "C", "000001", "D", "1220"}, {"7001001", "", "", "A", "1000"}, {"1401001", "", "", "A", "220"}});
    Entrata("FTV", "12/03/2024", {{"0501001", "C", "000002", "D", "500"}, {"7002001", "", "", "A", "500"}});
    Entrata("INC", "20/04/2024", {{"0701001", "", "", "D", "600"}, {"0501001", "C", "000002", "A", "600"}});
    Entrata("FTA", "05/05/2024",
            {{"6001001", "", "", "D", "800"}, {"0601001", "", "", "D", "176"}, {"1301001", "F", "000001", "A", "976"}});
    Entrata("GIR", "06/06/2024", {{"6002001", "", "", "D", "300.50"}, {"0701001", "", "", "A", "300.50"}});
    Entrata("GIR", "10/07/2024", {{"1301001", "F", "000001", "D", "500"}, {"0701001", "", "", "A", "500"}});
    Entrata("GIR", "15/01/2025", {{"6001001", "", "", "D", "50"}, {"0701001", "", "", "A", "50"}});
  }

  struct R {
    const char *conto, *ind, *cod, *lato, *importo;
  };
  void Entrata(const char* causale, const char* data, std::vector<R> righe) {
    char num[16];
    std::snprintf(num, sizeof num, "%05d", ++numero_);
    int n = 0;
    for (auto& r : righe) {
      char riga[16];
      std::snprintf(riga, sizeof riga, "%03d", ++n);
      bool cancel = false;
      pn.SalvaRecord({{"NumeroRegistrazione", Valore(num)},      {"TipoRigaIvaNormale", Valore("")},
                      {"NumRigaAVideo", Valore(riga)},           {"DataRegistrazione", Valore(data)},
                      {"DataCompetenza", Valore(data)},          {"DareAvere", Valore(r.lato)},
                      {"ContoPrimaNota", Valore(r.conto)},       {"IndClienteFornitore", Valore(r.ind)},
                      {"CodClienteFornitore", Valore(r.cod)},    {"CodiceCausale", Valore(causale)},
                      {"ImportoMovimento", Valore(I(r.importo))}, {"Stringa10indicatori", Valore("")}},
                     Valore("prova"), 0, cancel);
    }
    pn.AggiornaNumeroUltimaRegistrazione(Valore(static_cast<long long>(numero_)), Valore("prova"), 0);
  }

  ArgomentiCambioEsercizio Argomenti() {
    ArgomentiCambioEsercizio a;
    EXPECT_TRUE(ArgomentiCambioEsercizioAzienda(cn, *Data::Crea(2024, 1, 1), *Data::Crea(2024, 12, 31), a));
    return a;
  }

  bool Esegui(const ArgomentiCambioEsercizio& a, EsitoCambioEsercizio* e = nullptr) {
    clsCambioEsercizio c;
    c.cn = cn;
    clsPrimaNota p;
    return c.CambioEsercizioVorn(a, p, e);
  }

  // An entry's rows: "line side account ind cod amount".
  std::vector<std::string> Righe(const char* numero) {
    std::vector<std::string> v;
    for (auto rs = cn->Execute("SELECT [NumRigaAVideo], [DareAvere], [ContoPrimaNota], [IndClienteFornitore], "
                               "[CodClienteFornitore], [ImportoMovimento] FROM [Prima Nota] "
                               "WHERE [NumeroRegistrazione] = ? ORDER BY [NumRigaAVideo]",
                               {Valore(numero)});
         !rs.Eof(); rs.MoveNext()) {
      std::string s;
      for (int i = 0; i < 5; ++i) s += TrimTesto(rs(i).Value()) + (TrimTesto(rs(i).Value()).empty() ? "" : " ");
      v.push_back(s + NullToZeroCy(rs(5).Value()).TestoPunto());
    }
    return v;
  }

  // Account (and partner) -> debit-positive balance of the journal rows of competence in [dal, al].
  std::map<std::string, Importo> Saldi(const char* dal, const char* al) {
    std::map<std::string, Importo> m;
    for (auto rs = cn->Execute("SELECT [ContoPrimaNota], [IndClienteFornitore], [CodClienteFornitore], [DareAvere], "
                               "[ImportoMovimento] FROM [Prima Nota] WHERE [DataCompetenza] BETWEEN ? AND ?",
                               {Valore(*Data::DaTesto(dal)), Valore(*Data::DaTesto(al))});
         !rs.Eof(); rs.MoveNext()) {
      std::string k = TrimTesto(rs(0).Value()) + TrimTesto(rs(1).Value()) + TrimTesto(rs(2).Value());
      Importo i = NullToZeroCy(rs(4).Value());
      m[k] += TrimTesto(rs(3).Value()) == "A" ? -i : i;
    }
    for (auto it = m.begin(); it != m.end();) it = it->second.Zero() ? m.erase(it) : std::next(it);
    return m;
  }

  // Journal, balance rows and counters as text: a picture to compare before and after.
  std::vector<std::string> Fotografia() {
    std::vector<std::string> v;
    for (const char* sql :
         {"SELECT * FROM [Prima Nota] ORDER BY [NumeroRegistrazione], [NumRigaAVideo], [DareAvere]",
          "SELECT * FROM [Saldi Piano Dei Conti] ORDER BY [CodiceGruppo], [CodiceConto], [CodiceSottoconto]",
          "SELECT [Codice Cliente], [SaldoInizPeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo] FROM "
          "[Anagrafica Clienti] ORDER BY 1",
          "SELECT [Codice Cliente], [SaldoInizPeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo] FROM "
          "[Anagrafica Fornitori] ORDER BY 1",
          "SELECT [UltimaRegistrazionePN], [DataAperturaBilancio] FROM [Progressivi Azienda Vorn]"})
      for (auto rs = cn->Execute(sql); !rs.Eof(); rs.MoveNext()) {
        std::string s;
        for (int i = 0; i < rs.FieldCount(); ++i) s += rs.Fields(i).Value().Testo() + "|";
        v.push_back(s);
      }
    return v;
  }

  clsPrimaNota pn;
  int numero_ = 0;
};

// The balances of 2024 by hand (debit positive): bank 10000 + 600 - 300.50 - 500; client 1 owes
// 1220, client 2 paid 100 more than owed; supplier 976 - 500; costs 800 + 300.50 against revenues
// 1000 + 500: a profit of 399.50.
const std::map<std::string, Importo> kPatrimonialiFineAnno = {
    {"0501001C000001", I("1220")}, {"0501001C000002", I("-100")}, {"0601001", I("176")},
    {"0701001", I("9799.50")},     {"1001001", I("-10000")},      {"1003001", I("-399.50")},
    {"1301001F000001", I("-476")}, {"1401001", I("-220")}};

TEST_P(CambioEsercizio, ClosesTheYearAndOpensTheNextAtItsBalances) {
  EsitoCambioEsercizio e;
  ASSERT_TRUE(Esegui(Argomenti(), &e)) << host->Ultimo();
  EXPECT_EQ(e.risultato, I("399.50"));
  EXPECT_EQ(e.registrazioneChiusuraEconomici, 9);
  EXPECT_EQ(e.registrazioneRisultato, 10);
  EXPECT_EQ(e.registrazioneChiusuraPatrimoniali, 11);
  EXPECT_EQ(e.registrazioneApertura, 12);
  EXPECT_EQ(e.righe, 8 + 2 + 16 + 16);
  // Debit balances first, then credit ones; a contra row on profits and losses at each account.
  EXPECT_EQ(Righe("00009"), (std::vector<std::string>{
                                "001 A 6001001 800", "002 D 9001003 800", "003 A 6002001 300.5",
                                "004 D 9001003 300.5", "005 D 7001001 1000", "006 A 9001003 1000",
                                "007 D 7002001 500", "008 A 9001003 500"}));
  EXPECT_EQ(Righe("00010"), (std::vector<std::string>{"001 D 9001003 399.5", "002 A 1003001 399.5"}));
  EXPECT_EQ(Righe("00011"),
            (std::vector<std::string>{
                "001 A 0501001 C 000001 1220", "002 D 9001002 1220", "003 A 0601001 176",
                "004 D 9001002 176", "005 A 0701001 9799.5", "006 D 9001002 9799.5",
                "007 D 0501001 C 000002 100", "008 A 9001002 100", "009 D 1001001 10000",
                "010 A 9001002 10000", "011 D 1003001 399.5", "012 A 9001002 399.5",
                "013 D 1301001 F 000001 476", "014 A 9001002 476", "015 D 1401001 220",
                "016 A 9001002 220"}));
  EXPECT_EQ(TrimTesto(cn->Scalare("SELECT MAX([DescrizioneSupplem]) FROM [Prima Nota] WHERE [NumeroRegistrazione] "
                                  "IN ('00009', '00012')")),
            "Chiusura conti 2024");
  // Each entry squares; the closing ones carry the closing causal and date, the opening the next year's.
  for (const char* n : {"00009", "00010", "00011", "00012"}) {
    auto rs = cn->Execute("SELECT SUM(CASE WHEN [DareAvere] = 'D' THEN [ImportoMovimento] ELSE -[ImportoMovimento] "
                          "END), MIN([CodiceCausale]), MAX([CodiceCausale]), MIN([DataCompetenza]), "
                          "MAX([DataCompetenza]) FROM [Prima Nota] WHERE [NumeroRegistrazione] = ?",
                          {Valore(n)});
    EXPECT_TRUE(NullToZeroCy(rs(0).Value()).Zero()) << n;
    const bool apertura = std::string(n) == "00012";
    EXPECT_EQ(TrimTesto(rs(1).Value()), apertura ? "APE" : "CHI");
    EXPECT_EQ(TrimTesto(rs(2).Value()), apertura ? "APE" : "CHI");
    EXPECT_EQ(rs(3).Value().ComeData()->Testo(), apertura ? "01/01/2025" : "31/12/2024");
    EXPECT_EQ(rs(4).Value().ComeData()->Testo(), apertura ? "01/01/2025" : "31/12/2024");
  }
  // At the year's end every account is at zero: costs and revenues, profits and losses, the
  // patrimonial accounts, and the closing balance that took them (11195.50 on each side).
  EXPECT_TRUE(Saldi("01/01/2024", "31/12/2024").empty());
  // The new year opens each patrimonial account and partner at its closing balance, against
  // the opening balance, which nets to zero (the 2025 cost comes after).
  EXPECT_EQ(Saldi("01/01/2025", "01/01/2025"), kPatrimonialiFineAnno);
  EXPECT_EQ(Saldi("02/01/2025", "31/12/2025"), (std::map<std::string, Importo>{{"0701001", I("-50")}, {"6001001", I("50")}}));
  // Partners carried: client 1 opens the new year with 1220, client 2 with a credit of 100,
  // the supplier with 476 owed, in the running balances too.
  auto partner = [&](const char* t, const char* c) {
    auto rs = cn->Execute(std::string("SELECT [SaldoInizPeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo] FROM "
                                      "[Anagrafica ") + t + "] WHERE [Codice Cliente] = ?",
                          {Valore(c)});
    return NullToZeroCy(rs(0).Value()).TestoPunto() + " " + NullToZeroCy(rs(1).Value()).TestoPunto() + " " +
           NullToZeroCy(rs(2).Value()).TestoPunto();
  };
  EXPECT_EQ(partner("Clienti", "000001"), "1220 1220 1220");
  EXPECT_EQ(partner("Clienti", "000002"), "-100 600 600");
  EXPECT_EQ(partner("Fornitori", "000001"), "-476 976 976");
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
  clsProgAzienda prog;
  prog.cn = cn;
  EXPECT_EQ(prog.GetDataAperturaBilancio().ComeData()->Testo(), "01/01/2025");

  // A second run of the same year writes nothing and says why.
  auto prima = Fotografia();
  EXPECT_FALSE(Esegui(Argomenti()));
  EXPECT_EQ(host->Ultimo(),
            "Il cambio esercizio dal 01/01/2024 al 31/12/2024 risulta già eseguito (registrazione n. 00009). Il "
            "cambio esercizio non viene ripetuto");
  EXPECT_EQ(Fotografia(), prima);
}

TEST_P(CambioEsercizio, ARunBrokenHalfwayOrRefusedLeavesNothing) {
  auto prima = Fotografia();
  // The opening entry's first row fails, after the three closing entries are written.
  if (Pg()) {
    cn->Esegui("CREATE FUNCTION ce_guasto() RETURNS trigger AS $$ BEGIN IF NEW.descrizionesupplem = 'BOOM' THEN "
               "RAISE EXCEPTION 'boom'; END IF; RETURN NEW; END $$ LANGUAGE plpgsql");
    cn->Esegui("CREATE TRIGGER ce_guasto BEFORE INSERT ON \"prima nota\" FOR EACH ROW EXECUTE FUNCTION ce_guasto()");
  } else {
    cn->Esegui("CREATE TRIGGER ce_guasto BEFORE INSERT ON [Prima Nota] WHEN NEW.DescrizioneSupplem = 'BOOM' "
               "BEGIN SELECT RAISE(ABORT, 'boom'); END;");
  }
  auto a = Argomenti();
  a.var_DescrizioneSupplem_Apertura = Valore("BOOM");
  EXPECT_ANY_THROW(Esegui(a));
  EXPECT_FALSE(cn->InTransazione());
  EXPECT_EQ(Fotografia(), prima);
  EXPECT_TRUE(VerificaSaldi(*cn).empty());

  // References of the wrong kind are refused before anything is written.
  a = Argomenti();
  a.avar_SottocontoProfittiPerdite = Valore("0701001");
  EXPECT_FALSE(Esegui(a));
  EXPECT_EQ(host->Ultimo(), "Il sottoconto 'Profitti e Perdite' (0701001) non è un conto di riepilogo. Impossibile continuare");
  a = Argomenti();
  a.avar_CausaleBilancioApertura = Valore("CHI");
  EXPECT_FALSE(Esegui(a));
  // A year without balances has nothing to close: no entry, and no number taken. 2023 counts as
  // changed already: 2024 has its opening entry.
  a = Argomenti();
  for (const char* anno : {"2022", "2023"}) {
    const std::string dopo = std::to_string(std::stoi(anno) + 1);
    a.avar_DaData = Valore(std::string("01/01/") + anno);
    a.avar_AData = a.avar_DataCompetenzaChiusura = a.avar_DataRegistrazioneChiusura = Valore(std::string("31/12/") + anno);
    a.avar_DataCompetenzaApertura = a.avar_DataRegistrazioneApertura = Valore("01/01/" + dopo);
    EXPECT_FALSE(Esegui(a));
  }
  EXPECT_EQ(host->Ultimo(), "Il cambio esercizio dal 01/01/2023 al 31/12/2023 risulta già eseguito (registrazione n. "
                            "00001). Il cambio esercizio non viene ripetuto");
  EXPECT_EQ(host->Messaggi()[host->Messaggi().size() - 2].testo,
            "Nessun saldo da chiudere nell'esercizio dal 01/01/2022 al 31/12/2022. Impossibile continuare");
  EXPECT_EQ(Fotografia(), prima);

  // The same run whole afterwards, then the year is changed.
  EXPECT_TRUE(Esegui(Argomenti())) << host->Ultimo();
  EXPECT_EQ(Saldi("01/01/2024", "31/12/2024").size(), 0u);
}

TEST_P(CambioEsercizio, TheFirstQuarterUnloadedIsPartOfTheYear) {
  // Unloaded up to March: 200 more cashed against revenues, 30 more owed by client 1 to the
  // supplier. The control accounts' own progressives (30 each) are those of their partners.
  cn->Esegui("UPDATE [Progressivi Azienda Vorn] SET [UltimoScaricoPN] = ?", {Valore(*Data::Crea(2024, 3, 31))});
  auto progressivo = [&](const char* conto, const char* colonna, const char* importo) {
    cn->Esegui(std::string("UPDATE [Saldi Piano Dei Conti] SET [") + colonna +
                   "] = ? WHERE [CodiceGruppo] = ? AND [CodiceConto] = ? AND [CodiceSottoconto] = ?",
               {Valore(I(importo)), Valore(std::string(conto).substr(0, 2)), Valore(std::string(conto).substr(2, 2)),
                Valore(std::string(conto).substr(4))});
  };
  progressivo("0701001", "DareProgressivo", "200");
  progressivo("7001001", "AvereProgressivo", "200");
  progressivo("0501001", "DareProgressivo", "30");
  progressivo("1301001", "AvereProgressivo", "30");
  cn->Esegui("UPDATE [Anagrafica Clienti] SET [SaldoDareProgress] = 30 WHERE [Codice Cliente] = '000001'");
  cn->Esegui("UPDATE [Anagrafica Fornitori] SET [SaldoAvereProgress] = 30 WHERE [Codice Cliente] = '000001'");
  EsitoCambioEsercizio e;
  ASSERT_TRUE(Esegui(Argomenti(), &e)) << host->Ultimo();
  EXPECT_EQ(e.risultato, I("599.50"));
  auto attesi = kPatrimonialiFineAnno;
  attesi["0701001"] = I("9999.50");
  attesi["0501001C000001"] = I("1250");
  attesi["1301001F000001"] = I("-506");
  attesi["1003001"] = I("-599.50");
  EXPECT_EQ(Saldi("01/01/2025", "01/01/2025"), attesi);

  // An unload past the year's end is refused.
  cn->Esegui("UPDATE [Progressivi Azienda Vorn] SET [UltimoScaricoPN] = ?", {Valore(*Data::Crea(2025, 1, 31))});
  auto a = Argomenti();
  a.avar_DaData = Valore("01/01/2023");
  a.avar_AData = a.avar_DataCompetenzaChiusura = a.avar_DataRegistrazioneChiusura = Valore("31/12/2023");
  a.avar_DataCompetenzaApertura = a.avar_DataRegistrazioneApertura = Valore("01/01/2024");
  EXPECT_FALSE(Esegui(a));
  EXPECT_EQ(host->Ultimo(),
            "La prima nota è stata scaricata fino al 31/01/2025, oltre la fine dell'esercizio. Impossibile continuare");
}

VORN_SU_DUE_MOTORI(CambioEsercizio);

}  // namespace
