// Balances are a function of the journal. A few thousand random saves, changes and deletes over
// many accounts, causals of every operativity, clients and suppliers are followed by a model of
// the journal kept here; after every operation the balance rows it touched must hold what the
// model says, and at the end the whole balance tables, the check by SQL and a full rebuild must
// all agree.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <random>
#include <set>

#include "ledger/PrimaNotaBase.h"
#include "ledger/VerificaSaldi.h"
#include "ledger/clsRicosContabile.h"

using namespace vorn;
using namespace vorn::test;

namespace {

struct RigaModello {
  std::string conto, ind, cod, causale;
  Importo importo;
};
using ChiaveRiga = std::tuple<std::string, std::string, std::string, std::string>;  // number, kind, line, side
using ChiaveSaldoM = std::pair<std::string, std::string>;  // "S" + code parts, or "C"/"F" + code
using Terna = std::array<Importo, 3>;

class FormProva : public IForm {
 public:
  void msgbar(const std::string& t) override { righe.push_back(t); }
  std::vector<std::string> righe;
};

}  // namespace

class InvarianteSaldi : public PrimaNotaBase {
 protected:
  void SetUp() override {
    PrimaNotaBase::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    for (int i = 1; i <= 16; ++i) {
      char c[8];
      std::snprintf(c, sizeof c, "%02d%02d%03d", 10 + i % 5, i % 3 + 1, i);
      Conto(c);
      conti.push_back(c);
    }
    for (const char* c : {"1201001", "1401001", "2501001", "4001001"}) conti.push_back(c);
    // Codes the chart does not know, a group alone, a code with blanks around it, no code.
    for (const char* c : {"9909999", "9808888", "12", " 1202001 ", ""}) conti.push_back(c);
    operativita = {{"V01", "0"}, {"AP", "1"}, {"G2", "2"}, {"X9", "9"}, {"NUL", "0"}, {"ACQ", "0"}};
  }

  // What a row moves, by the rule of the balances.
  std::vector<std::pair<ChiaveSaldoM, Terna>> Effetto(const RigaModello& r, const std::string& lato) const {
    std::vector<std::pair<ChiaveSaldoM, Terna>> out;
    std::string conto = Trim(r.conto);
    if (conto.empty() || r.importo.Zero()) return out;
    auto it = operativita.find(Trim(r.causale));
    std::string op = it == operativita.end() ? "" : it->second;
    Terna t{};
    if ((op == "0" || op == "2") && lato == "D") t[1] = r.importo;
    if ((op == "0" || op == "2") && lato == "A") t[2] = r.importo;
    if (op == "1") t[0] = lato == "D" ? r.importo : -r.importo;
    out.push_back({{"S", MedioTesto(conto, 1, 2) + "|" + MedioTesto(conto, 3, 2) + "|" + MedioTesto(conto, 5, 3)}, t});
    if ((r.ind == "C" || r.ind == "F") && NullToZeroDbl(Valore(r.cod)) != 0) out.push_back({{r.ind, Trim(r.cod)}, t});
    return out;
  }

  void Applica(const ChiaveRiga& k, const RigaModello& r, int segno, std::set<ChiaveSaldoM>& toccati) {
    for (auto& [chiave, t] : Effetto(r, std::get<3>(k))) {
      Terna& m = modello[chiave];
      for (int i = 0; i < 3; ++i) m[i] += segno > 0 ? t[i] : -t[i];
      toccati.insert(chiave);
    }
  }

  Saldo Letto(const ChiaveSaldoM& k) {
    if (k.first == "S") {
      auto p1 = k.second.find('|'), p2 = k.second.rfind('|');
      Recordset rs = cn->Execute(
          "SELECT [SaldoInizialePeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo] FROM [Saldi Piano Dei Conti] "
          "WHERE [CodiceGruppo] = ? AND [CodiceConto] = ? AND [CodiceSottoconto] = ?",
          {Valore(k.second.substr(0, p1)), Valore(k.second.substr(p1 + 1, p2 - p1 - 1)), Valore(k.second.substr(p2 + 1))});
      if (rs.Eof()) return Saldo{};
      return Saldo{NullToZeroCy(rs.Fields(0).Value()), NullToZeroCy(rs.Fields(1).Value()),
                   NullToZeroCy(rs.Fields(2).Value()), true};
    }
    return SaldoCF(k.first[0], k.second);
  }

  void Controlla(const std::set<ChiaveSaldoM>& toccati, const std::string& operazione) {
    for (const auto& k : toccati) {
      Saldo db = Letto(k);
      const Terna& m = modello[k];
      ASSERT_TRUE(db.iniziale == m[0] && db.dare == m[1] && db.avere == m[2])
          << operazione << ": " << k.first << " " << k.second << " holds " << db << ", the journal gives "
          << m[0].TestoPunto() << " / " << m[1].TestoPunto() << " / " << m[2].TestoPunto();
    }
  }

  // The three balance tables, whole, as text.
  std::string Fotografia() {
    std::string s;
    for (const char* sql :
         {"SELECT [CodiceGruppo], [CodiceConto], [CodiceSottoconto], [SaldoInizialePeriodo], [SaldoDarePeriodo], "
          "[SaldoAverePeriodo] FROM [Saldi Piano Dei Conti] ORDER BY 1, 2, 3",
          "SELECT 'C', [Codice Cliente], '', [SaldoInizPeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo] "
          "FROM [Anagrafica Clienti] ORDER BY 2",
          "SELECT 'F', [Codice Cliente], '', [SaldoInizPeriodo], [SaldoDarePeriodo], [SaldoAverePeriodo] "
          "FROM [Anagrafica Fornitori] ORDER BY 2"}) {
      Recordset rs = cn->Execute(sql);
      for (; !rs.Eof(); rs.MoveNext()) {
        for (int i = 0; i < 3; ++i) s += rs.Fields(i).Value().Testo() + "|";
        for (int i = 3; i < 6; ++i) s += NullToZeroCy(rs.Fields(i).Value()).TestoPunto4() + "|";
        s += "\n";
      }
    }
    return s;
  }

  std::vector<std::string> conti;
  std::map<std::string, std::string> operativita;
  std::map<ChiaveRiga, RigaModello> giornale;
  std::map<ChiaveSaldoM, Terna> modello;
};

TEST_P(InvarianteSaldi, RandomPostingsChangesAndDeletesKeepBalancesAFunctionOfTheJournal) {
  const unsigned seme = 20240115;
  std::mt19937 rnd(seme);
  auto tra = [&](int a, int b) { return std::uniform_int_distribution<int>(a, b)(rnd); };
  const std::vector<std::string> causali = {"V01", "AP", "G2", "X9", "NUL", "ACQ", "ZZ", "V01 "};
  const std::vector<std::string> codici = {"1", "2", "3", "7", "12", "25", "007", "ABC", "0", ""};
  char buf[16];
  auto numero = [&](int n) {
    std::snprintf(buf, sizeof buf, "%05d", n);
    return std::string(buf);
  };
  auto linea = [&](int n) {
    std::snprintf(buf, sizeof buf, "%03d", n);
    return std::string(buf);
  };

  const int operazioni = 2500;
  for (int op = 0; op < operazioni; ++op) {
    // The first hundred run each in a transaction of their own, the rest inside the caller's.
    if (op == 100) cn->BeginTrans();
    if (op % 200 == 0) host->Pulisci();
    std::set<ChiaveSaldoM> toccati;
    int scelta = tra(0, 99);
    std::string descrizione;
    if (scelta < 75) {
      ChiaveRiga k{numero(tra(1, 120)), tra(0, 3) == 0 ? "I" : "", linea(tra(1, 4)), tra(0, 1) ? "D" : "A"};
      RigaModello r;
      auto vecchia = giornale.find(k);
      if (vecchia != giornale.end() && tra(0, 2) > 0) {
        // A change of one thing: the amount, the account or the partner.
        r = vecchia->second;
        int cosa = tra(0, 2);
        if (cosa == 0) r.importo = Importo::DaRaw(static_cast<int64_t>(tra(0, 50000000)));
        else if (cosa == 1) r.conto = conti[tra(0, static_cast<int>(conti.size()) - 1)];
        else r.cod = codici[tra(0, static_cast<int>(codici.size()) - 1)];
      } else {
        r.conto = conti[tra(0, static_cast<int>(conti.size()) - 1)];
        int p = tra(0, 2);
        r.ind = p == 0 ? "C" : p == 1 ? "F" : "";
        r.cod = r.ind.empty() ? "" : codici[tra(0, static_cast<int>(codici.size()) - 1)];
        r.causale = causali[tra(0, static_cast<int>(causali.size()) - 1)];
        // Amounts with four decimals, some tiny, some nought.
        int f = tra(0, 9);
        r.importo = f == 0 ? Importo() : Importo::DaRaw(static_cast<int64_t>(f < 3 ? tra(1, 9) : tra(1, 99999999)));
      }
      RecordValori v{{"DataRegistrazione", Valore("15/01/2024")},
                     {"NumeroRegistrazione", Valore(std::get<0>(k))},
                     {"TipoRigaIvaNormale", Valore(std::get<1>(k))},
                     {"NumRigaAVideo", Valore(std::get<2>(k))},
                     {"DareAvere", Valore(std::get<3>(k))},
                     {"ContoPrimaNota", Valore(r.conto)},
                     {"IndClienteFornitore", Valore(r.ind)},
                     {"CodClienteFornitore", Valore(r.cod)},
                     {"DataCompetenza", Valore("15/01/2024")},
                     {"CodiceCausale", Valore(r.causale)},
                     {"ImportoMovimento", Valore(r.importo)}};
      if (vecchia != giornale.end()) Applica(k, vecchia->second, -1, toccati);
      Applica(k, r, +1, toccati);
      giornale[k] = r;
      Salva(v);
      descrizione = "save " + std::get<0>(k) + "/" + std::get<1>(k) + "/" + std::get<2>(k) + "/" + std::get<3>(k);
    } else if (scelta < 88) {
      std::string n = numero(tra(1, 120)), tipo = tra(0, 1) ? "I" : "", riga = linea(tra(0, 3));
      for (auto it = giornale.begin(); it != giornale.end();) {
        if (std::get<0>(it->first) == n && std::get<1>(it->first) == tipo && std::get<2>(it->first) > riga) {
          Applica(it->first, it->second, -1, toccati);
          it = giornale.erase(it);
        } else {
          ++it;
        }
      }
      ASSERT_TRUE(pn.CancellaRecordEccedentiRigoReg(Valore(n), Valore(tipo), Valore(riga)));
      descrizione = "delete beyond " + n + "/" + tipo + "/" + riga;
    } else if (scelta < 98) {
      std::string n = numero(tra(1, 120));
      for (auto it = giornale.begin(); it != giornale.end();) {
        if (std::get<0>(it->first) == n) {
          Applica(it->first, it->second, -1, toccati);
          it = giornale.erase(it);
        } else {
          ++it;
        }
      }
      ASSERT_TRUE(pn.CancellaRecord(Valore(n)));
      descrizione = "delete " + n;
    } else {
      int a = tra(1, 120), b = a + tra(0, 3);
      int righe = 0;
      for (auto it = giornale.begin(); it != giornale.end();) {
        int n = std::stoi(std::get<0>(it->first));
        if (n >= a && n <= b) {
          Applica(it->first, it->second, -1, toccati);
          it = giornale.erase(it);
          ++righe;
        } else {
          ++it;
        }
      }
      ASSERT_EQ(pn.CancellaPrimaNota(Valore(a), Valore(b), Valore(""), Valore(""), Valore("")), righe);
      descrizione = "delete range " + std::to_string(a) + "-" + std::to_string(b);
    }
    Controlla(toccati, "operation " + std::to_string(op) + " (" + descrizione + "), seme " + std::to_string(seme));
    if (HasFatalFailure()) return;
  }
  cn->CommitTrans();
  ASSERT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Prima Nota]")), static_cast<int32_t>(giornale.size()));

  // Every balance row against the model.
  std::set<ChiaveSaldoM> tutti;
  for (const auto& [k, t] : modello) tutti.insert(k);
  Controlla(tutti, "end of run");
  EXPECT_TRUE(VerificaSaldi(*cn).empty());

  // The rebuild from the journal gives back exactly the same tables.
  const std::string prima = Fotografia();
  clsRicosContabile ricos;
  ricos.cn = cn;
  clsPrimaNota altra;
  FormProva form;
  ricos.AzzeraSaldiPianoConti();
  ricos.AzzeraSaldiClientiFornitori();
  EXPECT_FALSE(VerificaSaldi(*cn).empty());
  ASSERT_TRUE(ricos.RicostruisciSaldiContabili(&form, altra));
  EXPECT_EQ(form.righe.size(), giornale.size());
  EXPECT_EQ(Fotografia(), prima);
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(InvarianteSaldi, TheCheckListsEveryColumnThatDisagrees) {
  Salva(Riga("00001", "", "001", "D", "1201001", "122.5", "V01", "C", "1"));
  Salva(Riga("00001", "", "002", "A", "4001001", "100"));
  Salva(Riga("00001", "I", "001", "A", "2501001", "22.5"));
  Salva(Riga("00002", "", "001", "A", "1401001", "10", "AP", "F", "9"));
  ASSERT_TRUE(VerificaSaldi(*cn).empty());

  // One ten-thousandth on a client, a missing balance row, a stray balance, a supplier's
  // opening balance on the wrong column.
  cn->Esegui("UPDATE [Anagrafica Clienti] SET [SaldoDarePeriodo] = 122.5001 WHERE [Codice Cliente] = '1'");
  cn->Esegui("DELETE FROM [Saldi Piano Dei Conti] WHERE [CodiceGruppo] = '40'");
  cn->Esegui("INSERT INTO [Saldi Piano Dei Conti] ([CodiceGruppo], [CodiceConto], [CodiceSottoconto], "
             "[SaldoInizialePeriodo]) VALUES ('60', '01', '001', 3)");
  cn->Esegui("UPDATE [Anagrafica Fornitori] SET [SaldoInizPeriodo] = 0, [SaldoAverePeriodo] = 10");
  auto d = VerificaSaldi(*cn);
  ASSERT_EQ(d.size(), 5u);
  EXPECT_EQ(DescriviDifferenza(d[0]),
            "Saldi Piano Dei Conti 40.01.001 SaldoAverePeriodo: registrato 0,00, dalla prima nota 100,00");
  EXPECT_EQ(DescriviDifferenza(d[1]),
            "Saldi Piano Dei Conti 60.01.001 SaldoInizialePeriodo: registrato 3,00, dalla prima nota 0,00");
  EXPECT_EQ(DescriviDifferenza(d[2]), "Anagrafica Clienti 1 SaldoDarePeriodo: registrato 122,5001, dalla prima nota 122,50");
  EXPECT_EQ(DescriviDifferenza(d[3]),
            "Anagrafica Fornitori 9 SaldoInizPeriodo: registrato 0,00, dalla prima nota -10,00");
  EXPECT_EQ(DescriviDifferenza(d[4]),
            "Anagrafica Fornitori 9 SaldoAverePeriodo: registrato 10,00, dalla prima nota 0,00");
}

TEST_P(InvarianteSaldi, RebuildOfAnEmptyJournalIsTold) {
  clsRicosContabile ricos;
  ricos.cn = cn;
  FormProva form;
  EXPECT_FALSE(ricos.RicostruisciSaldiContabili(&form, pn));
  ASSERT_EQ(host->Messaggi().size(), 1u);
  EXPECT_EQ(host->Messaggi()[0].testo, "Archivio Prima Nota vuoto");
  EXPECT_EQ(host->Messaggi()[0].titolo, "Ricostruzione saldi contabili");
  EXPECT_EQ(host->Bip(), 1);
  EXPECT_TRUE(form.righe.empty());
  EXPECT_FALSE(pn.InRaccolta());
}

TEST_P(InvarianteSaldi, RebuildReportsEachRowAndZeroingTakesTheProgressivesToo) {
  Salva(Riga("00002", "", "001", "D", "1201001", "10", "V01", "C", "1"));
  Salva(Riga("00001", "", "001", "A", "4001001", "10"));
  Salva(Riga("00001", "", "002", "D", "9909999", "3", "ZZ"));
  cn->Esegui("UPDATE [Saldi Piano Dei Conti] SET [DareProgressivo] = 5, [SaldoInizialeProgr] = 2");
  cn->Esegui("UPDATE [Anagrafica Clienti] SET [SaldoDareProgress] = 5");
  host->Pulisci();
  clsRicosContabile ricos;
  ricos.cn = cn;
  ricos.AzzeraSaldiPianoConti();
  ricos.AzzeraSaldiClientiFornitori();
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT SUM([DareProgressivo] + [SaldoInizialeProgr] + [SaldoDarePeriodo]) "
                                     "FROM [Saldi Piano Dei Conti]")),
            Imp("0"));
  EXPECT_EQ(NullToZeroCy(cn->Scalare("SELECT SUM([SaldoDareProgress]) FROM [Anagrafica Clienti]")), Imp("0"));
  FormProva form;
  ASSERT_TRUE(ricos.RicostruisciSaldiContabili(&form, pn));
  ASSERT_EQ(form.righe.size(), 3u);
  EXPECT_EQ(form.righe[0], "Elaborazione registrazione n. 00001");
  EXPECT_EQ(form.righe[2], "Elaborazione registrazione n. 00002");
  EXPECT_EQ(SaldoConto("1201001"), S("0", "10", "0"));
  EXPECT_EQ(SaldoConto("4001001"), S("0", "0", "10"));
  EXPECT_EQ(SaldoCF('C', "1"), S("0", "10", "0"));
  // The replay tells an unknown causal and an unknown sub-account as a posting does.
  ASSERT_EQ(host->Messaggi().size(), 2u);
  EXPECT_EQ(host->Messaggi()[0].testo,
            "Causale contabile 'ZZ' inesistente. Possibile disallinamento dei saldi contabili.");
  EXPECT_EQ(host->Messaggi()[1].testo, "Sottoconto 9909999 inesistente.");
  EXPECT_FALSE(pn.InRaccolta());
  // After a replay the instance saves as before.
  Salva(Riga("00003", "", "001", "D", "1201001", "1"));
  EXPECT_EQ(SaldoConto("1201001"), S("0", "11", "0"));
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(InvarianteSaldi, DoubleAccountsKeepOneRowAndTellTheOthers) {
  const auto prima = NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti]"));
  // Three rows of one code, told apart only by blanks; and a group held twice.
  cn->Esegui("INSERT INTO [Piano Dei Conti] ([Gruppo], [Conto], [Sottoconto], [Descrizione]) VALUES "
             "('33', '01', '001', 'Primo'), ('33 ', '01', '001', 'Secondo'), ('33', '01 ', ' 001', 'Terzo'), "
             "('34', '', '', 'Gruppo'), ('34 ', '', '', 'Gruppo doppio')");
  clsRicosContabile ricos;
  ricos.cn = cn;
  EXPECT_TRUE(ricos.VerificaContiDoppiPianoConti());
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti] WHERE TRIM([Gruppo]) = '33'")), 1);
  EXPECT_EQ(cn->Scalare("SELECT [Descrizione] FROM [Piano Dei Conti] WHERE TRIM([Gruppo]) = '33'"), Valore("Primo"));
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti] WHERE TRIM([Gruppo]) = '34'")), 1);
  ASSERT_EQ(host->Messaggi().size(), 3u);
  EXPECT_EQ(host->Messaggi()[0].testo,
            "Rilevato il conto 3301001 doppio, annotarselo e controllarlo, cancellato il record doppio dall'archivio "
            "PIANO DEI CONTI.");
  EXPECT_EQ(host->Messaggi()[0].titolo, "Ricostruzione contabile.");
  EXPECT_EQ(host->Messaggi()[1].testo, host->Messaggi()[0].testo);
  EXPECT_EQ(host->Messaggi()[2].testo.substr(0, 26), "Rilevato il conto 34 doppi");
  EXPECT_EQ(host->Bip(), 3);
  // The chart that the fixture wrote is untouched, and a second pass finds nothing.
  host->Pulisci();
  EXPECT_TRUE(ricos.VerificaContiDoppiPianoConti());
  EXPECT_TRUE(host->Messaggi().empty());
  EXPECT_EQ(NullToZeroLng(cn->Scalare("SELECT COUNT(*) FROM [Piano Dei Conti]")), prima + 2);
}

VORN_SU_DUE_MOTORI(InvarianteSaldi);
