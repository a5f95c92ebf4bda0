// Balances over a period and at a date, against the journal and the progressives of the unload.
#include <gtest/gtest.h>

#include <random>

#include "company/clsProgAzienda.h"
#include "frame/Comuni.h"
#include "ledger/clsSaldiContabili.h"
#include "support/Azienda.h"
#include "PrimaNotaProva.h"

using namespace vorn;
using namespace vorn::test;
using namespace vorn::test::mastrini;

namespace {

class SaldiContabili : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    saldi.cn = cn;
    prog.cn = cn;
  }
  RigaPN Riga(const std::string& conto, const std::string& data, const std::string& da, const char* importo,
              const std::string& op = "0") {
    RigaPN r;
    r.numero = NumeroSeguente();
    r.conto = conto;
    r.competenza = data;
    r.da = da;
    r.importo = Imp(importo);
    r.operativita = op;
    return r;
  }
  void Scrivi(const RigaPN& r) { InserisciRigaPN(*cn, r); }
  std::string NumeroSeguente() { return Format(Valore(++numero), "00000"); }

  clsSaldiContabili saldi;
  clsProgAzienda prog;
  long numero = 0;
};

// ---------------------------------------------------------------- against a plain sum

// The model of one row: where it stands and what it moves.
struct Modello {
  int conto;    // index in kConti
  int partner;  // index in kPartner, -1 for none
  std::optional<Data> data;
  bool dare;
  std::optional<std::string> op;
  Importo importo;
};

const char* const kConti[] = {"1501001", "6001001"};
struct PartnerModello {
  const char* ind;
  const char* cod;
  int conto;
};
// Amounts compared as text, so that a failure shows them.
std::string T(Importo i) { return i.TestoPunto4(); }

const PartnerModello kPartner[] = {{"C", "000001", 0}, {"C", "000002", 0}, {"F", "O'BRIEN", 1}};

TEST_P(SaldiContabili, RandomJournalAgreesWithAPlainSumAtEveryDateAndPeriod) {
  std::mt19937 rnd(20250131);
  auto tra = [&](int a, int b) { return std::uniform_int_distribution<int>(a, b)(rnd); };
  const Data inizio = *Data::Crea(2024, 1, 1);
  const char* const operativita[] = {"0", "1", "2", " ", "", "3"};

  // The progressives of an unload on 31/12/2023, on the accounts and on the partners.
  ImpostaUltimoScarico(*cn, "31/12/2023");
  const Importo progrConto[2][3] = {{Imp("100.5"), Imp("2000"), Imp("1500.2501")}, {Imp("-50"), Imp("10"), Imp("0")}};
  const Importo progrPartner[3][3] = {
      {Imp("10"), Imp("20"), Imp("5")}, {Imp("0"), Imp("7.77"), Imp("0")}, {Imp("-300"), Imp("0"), Imp("12.3456")}};
  for (int c = 0; c < 2; ++c) InserisciSaldoConto(*cn, kConti[c], progrConto[c][0], progrConto[c][1], progrConto[c][2]);
  for (int p = 0; p < 3; ++p)
    InserisciCliFor(*cn, CliForProva{kPartner[p].ind, kPartner[p].cod, "Partner", kConti[kPartner[p].conto],
                                     progrPartner[p][0], progrPartner[p][1], progrPartner[p][2], "", ""});

  std::vector<Modello> righe;
  {
    Atomico t(*cn);
    for (int i = 0; i < 400; ++i) {
      Modello m;
      m.conto = tra(0, 1);
      m.partner = -1;
      if (tra(0, 2) > 0)
        for (int p = 0; p < 3; ++p)
          if (kPartner[p].conto == m.conto && tra(0, 1)) m.partner = p;
      if (tra(0, 19) > 0) m.data = inizio.AggiungiGiorni(tra(0, 730));
      m.dare = tra(0, 1) == 0;
      int o = tra(0, 6);
      if (o < 6) m.op = operativita[o];
      m.importo = Importo::DaRaw(tra(1, 1000000000) + (tra(0, 9) == 0 ? int64_t(tra(0, 200000)) * 100000000 : 0));
      righe.push_back(m);
      RigaPN r;
      r.numero = NumeroSeguente();
      r.conto = kConti[m.conto];
      if (m.partner >= 0) r.ind = kPartner[m.partner].ind, r.cod = kPartner[m.partner].cod;
      r.competenza = m.data ? m.data->Testo() : "";
      r.registrazione = "01/01/2024";
      r.da = m.dare ? "D" : "A";
      r.importo = m.importo;
      r.operativita = m.op;
      Scrivi(r);
    }
    t.Conferma();
  }

  auto attesoAData = [&](int conto, int partner, Data al) {
    Importo s = partner < 0 ? progrConto[conto][0] + progrConto[conto][1] - progrConto[conto][2]
                            : progrPartner[partner][0] + progrPartner[partner][1] - progrPartner[partner][2];
    for (const auto& m : righe)
      if (m.conto == conto && (partner < 0 || m.partner == partner) && m.data && *m.data <= al)
        s += m.dare ? m.importo : -m.importo;
    return s;
  };
  struct Periodo {
    Importo iniziale, dare, avere;
  };
  auto attesoPeriodo = [&](int conto, int partner, Data dal, Data al) {
    Periodo p;
    for (const auto& m : righe) {
      if (m.conto != conto || (partner >= 0 && m.partner != partner) || !m.data || *m.data < dal || *m.data > al)
        continue;
      std::string op = m.op.value_or("");
      if (op == "1") p.iniziale += m.dare ? m.importo : -m.importo;
      else if (op == "0" || op == "2" || op == " " || op.empty()) (m.dare ? p.dare : p.avere) += m.importo;
    }
    return p;
  };

  for (int k = 0; k < 12; ++k) {
    Data al = inizio.AggiungiGiorni(tra(-10, 740));
    Data dal = inizio.AggiungiGiorni(tra(0, 700));
    if (dal > al) std::swap(dal, al);
    SCOPED_TRACE("dal " + dal.Testo() + " al " + al.Testo());
    for (int c = 0; c < 2; ++c) {
      Importo atteso = attesoAData(c, -1, al);
      EXPECT_EQ(T(saldi.GetSaldoSottocontoAData(Valore(al), Valore(kConti[c]))), T(atteso)) << kConti[c];
      // The full statement from the unload reports the progressives apart, and counts the
      // period's openings and movements only: a row of another operativity is left out.
      Valore da("");
      Importo ip, dp, ap, iper, dper, aper;
      Periodo dopo = attesoPeriodo(c, -1, *Data::Crea(2024, 1, 1), al);
      EXPECT_EQ(T(saldi.GetSaldiADataSottoconto(Valore(*Data::Crea(2023, 12, 31)), da, Valore(al), Valore(kConti[c]),
                                                ip, dp, ap, iper, dper, aper)),
                T(progrConto[c][0] + progrConto[c][1] - progrConto[c][2] + dopo.iniziale + dopo.dare - dopo.avere));
      EXPECT_EQ(da, Valore("01/01/2024"));
      EXPECT_EQ(ip, progrConto[c][0]);
      EXPECT_EQ(dp, progrConto[c][1]);
      EXPECT_EQ(ap, progrConto[c][2]);

      Periodo p = attesoPeriodo(c, -1, dal, al);
      Importo i, d, a;
      EXPECT_TRUE(saldi.GetSaldiPeriodoSottoconto(Valore(dal), Valore(al), Valore(kConti[c]), i, d, a));
      EXPECT_EQ(T(i), T(p.iniziale));
      EXPECT_EQ(T(d), T(p.dare));
      EXPECT_EQ(T(a), T(p.avere));
    }
    for (int q = 0; q < 3; ++q) {
      const auto& pp = kPartner[q];
      Importo atteso = attesoAData(pp.conto, q, al);
      EXPECT_EQ(T(saldi.GetSaldoSottocontoCliForAData(Valore(al), Valore(kConti[pp.conto]), Valore(pp.ind),
                                                      Valore(pp.cod))),
                T(atteso))
          << pp.cod;
      Valore da("");
      Importo ip, dp, ap, iper, dper, aper;
      Periodo dopo = attesoPeriodo(pp.conto, q, *Data::Crea(2024, 1, 1), al);
      EXPECT_EQ(T(saldi.GetSaldiADataCliFor(Valore("31/12/2023"), da, Valore(al), Valore(kConti[pp.conto]),
                                            Valore(pp.ind), Valore(pp.cod), ip, dp, ap, iper, dper, aper)),
                T(progrPartner[q][0] + progrPartner[q][1] - progrPartner[q][2] + dopo.iniziale + dopo.dare - dopo.avere));
      Periodo p = attesoPeriodo(pp.conto, q, dal, al);
      Importo i, d, a;
      EXPECT_TRUE(saldi.GetSaldiPeriodoCliFor(Valore(dal), Valore(al), Valore(kConti[pp.conto]), Valore(pp.ind),
                                              Valore(pp.cod), i, d, a));
      EXPECT_EQ(T(i), T(p.iniziale)) << pp.cod;
      EXPECT_EQ(T(d), T(p.dare)) << pp.cod;
      EXPECT_EQ(T(a), T(p.avere)) << pp.cod;
    }
  }
  // With no date, the balance runs to the journal's last day.
  EXPECT_EQ(saldi.GetSaldoSottocontoAData(Valore(""), Valore(kConti[0])), attesoAData(0, -1, *Data::Crea(2100, 1, 1)));
}

// ---------------------------------------------------------------- periods

TEST_P(SaldiContabili, EmptyPeriodGivesZerosAndTrue) {
  Scrivi(Riga("1501001", "15/03/2025", "D", "10"));
  Importo i = Imp("1"), d = Imp("1"), a = Imp("1");
  EXPECT_TRUE(saldi.GetSaldiPeriodoSottoconto(Valore("01/04/2025"), Valore("30/04/2025"), Valore("1501001"), i, d, a));
  EXPECT_TRUE(i.Zero() && d.Zero() && a.Zero());
  // A bound that is no date matches no row.
  EXPECT_TRUE(saldi.GetSaldiPeriodoSottoconto(Valore(""), Valore("30/04/2025"), Valore("1501001"), i, d, a));
  EXPECT_TRUE(i.Zero() && d.Zero() && a.Zero());
  // Another sub-account's rows stay out.
  EXPECT_TRUE(saldi.GetSaldiPeriodoSottoconto(Valore("01/01/2025"), Valore("31/12/2025"), Valore("1501002"), i, d, a));
  EXPECT_TRUE(d.Zero());
}

TEST_P(SaldiContabili, OpeningRowsAreTheOpeningOfThePeriodButPlainMovementsAtADate) {
  Scrivi(Riga("1501001", "01/01/2025", "D", "100", "1"));
  Scrivi(Riga("1501001", "01/01/2025", "A", "30", "1"));
  Scrivi(Riga("1501001", "02/01/2025", "D", "7", " "));  // a blank operativity is a movement
  Scrivi(Riga("1501001", "03/01/2025", "A", "2", ""));
  Scrivi(Riga("1501001", "04/01/2025", "D", "5", "2"));
  Importo i, d, a;
  saldi.GetSaldiPeriodoSottoconto(Valore("01/01/2025"), Valore("31/01/2025"), Valore("1501001"), i, d, a);
  EXPECT_EQ(i, Imp("70"));
  EXPECT_EQ(d, Imp("12"));
  EXPECT_EQ(a, Imp("2"));
  EXPECT_EQ(saldi.GetSaldoSottocontoAData(Valore("31/01/2025"), Valore("1501001")), Imp("80"));
  EXPECT_EQ(saldi.GetSaldoSottocontoAData(Valore("01/01/2025"), Valore("1501001")), Imp("70"));
}

TEST_P(SaldiContabili, DatesOfTheWrongCenturyAreBroughtBack) {
  Scrivi(Riga("1501001", "10/06/2024", "D", "40"));
  Scrivi(Riga("1501001", "10/06/2025", "D", "1"));
  EXPECT_EQ(saldi.GetSaldoSottocontoAData(Valore("31/12/2124"), Valore("1501001")), Imp("40"));
  Importo i, d, a;
  saldi.GetSaldiPeriodoSottoconto(Valore("01/01/2124"), Valore("31/12/2124"), Valore("1501001"), i, d, a);
  EXPECT_EQ(d, Imp("40"));
}

// ---------------------------------------------------------------- the journal's dates

TEST_P(SaldiContabili, ExtremeDatesOfAnEmptyJournalAreEmpty) {
  EXPECT_EQ(saldi.GetDataMassimaCompetenzaPrimaNota(), Valore(""));
  EXPECT_EQ(saldi.GetDataMinimaCompetenzaPrimaNota(), Valore(""));
  EXPECT_EQ(saldi.GetSaldoSottocontoAData(Valore(""), Valore("1501001")), Importo());
  Scrivi(Riga("1501001", "05/02/2025", "D", "1"));
  Scrivi(Riga("1501001", "", "D", "1"));  // no competence date: in no period
  Scrivi(Riga("6001001", "20/11/2024", "D", "1"));
  EXPECT_EQ(saldi.GetDataMassimaCompetenzaPrimaNota(), Valore(*Data::Crea(2025, 2, 5)));
  EXPECT_EQ(saldi.GetDataMinimaCompetenzaPrimaNota(), Valore(*Data::Crea(2024, 11, 20)));
  EXPECT_EQ(saldi.GetSaldoSottocontoAData(Valore(""), Valore("1501001")), Imp("1"));
}

// ---------------------------------------------------------------- the last unload

class SaldiContabiliScarico : public SaldiContabili {
 protected:
  void SetUp() override {
    SaldiContabili::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    ImpostaUltimoScarico(*cn, "31/12/2012");
    InserisciSaldoConto(*cn, "1501001", Imp("1000"), Imp("300"), Imp("120.5"));
    InserisciCliFor(*cn, CliForProva{"C", "000123", "Rossi", "1501001", Imp("50"), Imp("5"), Imp("1"), "", ""});
    Scrivi(Riga("1501001", "15/01/2013", "D", "10"));
    Scrivi(Riga("1501001", "15/02/2013", "A", "4"));
    Scrivi(Riga("1501001", "15/03/2013", "D", "100", "1"));
    RigaPN r = Riga("1501001", "20/01/2013", "D", "3");
    r.ind = "C";
    r.cod = "000123";
    Scrivi(r);
  }
  Valore U() { return prog.GetDataUltimoScaricoPrimaNota(); }
};

TEST_P(SaldiContabiliScarico, ProgressivesOfTheUnload) {
  EXPECT_EQ(U(), Valore(*Data::Crea(2012, 12, 31)));
  Importo i, d, a;
  EXPECT_TRUE(saldi.GetProgressiviUltimoScaricoSottoconto(Valore("1501001"), i, d, a));
  EXPECT_EQ(i, Imp("1000"));
  EXPECT_EQ(a, Imp("120.5"));
  EXPECT_EQ(saldi.GetSaldoUltimoScaricoSottoconto(Valore("1501001")), Imp("1179.5"));
  EXPECT_FALSE(saldi.GetProgressiviUltimoScaricoSottoconto(Valore("1501002"), i, d, a));
  EXPECT_TRUE(i.Zero() && d.Zero() && a.Zero());

  EXPECT_TRUE(saldi.GetProgressiviUltimoScaricoCliFor(Valore("1501001"), Valore("C"), Valore("000123"), i, d, a));
  EXPECT_EQ(saldi.GetSaldoUltimoScaricoCliFor(Valore("1501001"), Valore("C"), Valore("000123")), Imp("54"));
  // The partner is found by both its control sub-account and its code, in its own table.
  EXPECT_FALSE(saldi.GetProgressiviUltimoScaricoCliFor(Valore("1501002"), Valore("C"), Valore("000123"), i, d, a));
  EXPECT_FALSE(saldi.GetProgressiviUltimoScaricoCliFor(Valore("1501001"), Valore("F"), Valore("000123"), i, d, a));
  EXPECT_FALSE(saldi.GetProgressiviUltimoScaricoCliFor(Valore("1501001"), Valore("X"), Valore("000123"), i, d, a));
  EXPECT_TRUE(i.Zero() && d.Zero() && a.Zero());
}

// The statement from a start: a blank start or the day after the unload joins the unload and
// says so; a later start has no progressives; a period ending before it starts keeps them only.
TEST_P(SaldiContabiliScarico, StatementFromAStartAndTheUnloadsProgressives) {
  struct Caso {
    const char *dal, *al, *daDopo, *ip, *dp, *ap, *iper, *dper, *aper, *totale;
  };
  const Caso casi[] = {
      {"", "28/02/2013", "01/01/2013", "1000", "300", "120.5", "0", "13", "4", "1188.5"},
      {"01/01/2013", "28/02/2013", "01/01/2013", "1000", "300", "120.5", "0", "13", "4", "1188.5"},
      {"01/03/2013", "31/03/2013", "01/03/2013", "0", "0", "0", "100", "0", "0", "100"},
      {"01/01/2013", "31/12/2012", "01/01/2013", "1000", "300", "120.5", "0", "0", "0", "1179.5"},
  };
  for (const Caso& c : casi) {
    SCOPED_TRACE(std::string(c.dal) + " - " + c.al);
    Valore da(c.dal);
    Importo ip = Imp("9"), dp = Imp("9"), ap = Imp("9"), iper = Imp("9"), dper = Imp("9"), aper = Imp("9");
    EXPECT_EQ(saldi.GetSaldiADataSottoconto(prog, da, Valore(c.al), Valore("1501001"), ip, dp, ap, iper, dper, aper),
              Imp(c.totale));
    EXPECT_EQ(da, Valore(c.daDopo));
    EXPECT_EQ(T(ip), T(Imp(c.ip)));
    EXPECT_EQ(T(dp), T(Imp(c.dp)));
    EXPECT_EQ(T(ap), T(Imp(c.ap)));
    EXPECT_EQ(T(iper), T(Imp(c.iper)));
    EXPECT_EQ(T(dper), T(Imp(c.dper)));
    EXPECT_EQ(T(aper), T(Imp(c.aper)));
  }
}

TEST_P(SaldiContabiliScarico, PartnerBalanceReadsOnlyItsRowsAndItsProgressives) {
  EXPECT_EQ(saldi.GetSaldoSottocontoCliForAData(Valore("31/12/2013"), Valore("1501001"), Valore("C"), Valore("000123")),
            Imp("57"));
  EXPECT_EQ(saldi.GetSaldoSottocontoAData(Valore("31/12/2013"), Valore("1501001")), Imp("1288.5"));
  Valore da("");
  Importo ip, dp, ap, iper, dper, aper;
  EXPECT_EQ(saldi.GetSaldiADataCliFor(prog, da, Valore(""), Valore("1501001"), Valore("C"), Valore("000123"), ip, dp, ap,
                                      iper, dper, aper),
            Imp("57"));
  EXPECT_EQ(dper, Imp("3"));
}

TEST_P(SaldiContabili, WithoutAnUnloadTheStartStaysBlankAndTheWholeJournalCounts) {
  Scrivi(Riga("1501001", "15/01/2013", "D", "10"));
  InserisciSaldoConto(*cn, "1501001", Imp("1000"), Imp("0"), Imp("0"));
  Valore da("");
  Importo ip, dp, ap, iper, dper, aper;
  EXPECT_EQ(saldi.GetSaldiADataSottoconto(prog, da, Valore(""), Valore("1501001"), ip, dp, ap, iper, dper, aper),
            Imp("10"));
  EXPECT_EQ(da, Valore(""));
  EXPECT_TRUE(ip.Zero());
}

VORN_SU_DUE_MOTORI(SaldiContabili);
VORN_SU_DUE_MOTORI(SaldiContabiliScarico);

}  // namespace
