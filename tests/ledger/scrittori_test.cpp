// Several writers and long transactions: entry numbers, balance movement held back to the
// commit, concurrent posters, a long-lived journal instance.
#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>

#include "company/PresaNumero.h"
#include "ledger/PrimaNotaBase.h"
#include "ledger/VerificaSaldi.h"

using namespace vorn;
using namespace vorn::test;

namespace {

class Scrittori : public PrimaNotaBase {};

// A host that notes, for each message, whether the save that shows it still held its unit.
class HostTransazione : public HostScript {
 public:
  explicit HostTransazione(std::shared_ptr<Connessione> cn) : cn_(std::move(cn)) {}
  int MsgBox(const std::string& testo, int stile, const std::string& titolo) override {
    if (cn_->InTransazione()) ++durante;
    return HostScript::MsgBox(testo, stile, titolo);
  }
  int durante = 0;

 private:
  std::shared_ptr<Connessione> cn_;
};

}  // namespace

TEST_P(Scrittori, FourConnectionsPostAtOnce) {
  constexpr int kThread = 4, kRegistrazioni = 30;
  std::atomic<int> falliti{0};
  std::vector<std::vector<int32_t>> numeri(kThread);
  std::vector<std::string> errori(kThread);
  std::vector<std::thread> t;
  for (int k = 0; k < kThread; ++k) {
    t.emplace_back([&, k] {
      try {
        auto c = AltraConnessione();
        clsPrimaNota p;
        p.cn = c;
        for (int i = 0; i < kRegistrazioni; ++i) {
          c->BeginTrans();
          int32_t n = p.GetNumeroNuovaRegistrazionePrimaNota();
          numeri[k].push_back(n);
          char num[16];
          std::snprintf(num, sizeof num, "%05d", n);
          // Half the posters touch the shared rows in the opposite order.
          auto cliente = Riga(num, "", "001", "D", "1201001", "122", "V01", "C", std::to_string(1 + i % 3));
          auto ricavo = Riga(num, "", "002", "A", "4001001", "100");
          auto iva = Riga(num, "I", "001", "A", "2501001", "22");
          bool cancel = false;
          try {
            if (k % 2 == 0) {
              for (auto* r : {&cliente, &ricavo, &iva}) p.SalvaRecord(*r, Valore("t"), k, cancel);
            } else {
              for (auto* r : {&iva, &ricavo, &cliente}) p.SalvaRecord(*r, Valore("t"), k, cancel);
            }
            c->CommitTrans();
          } catch (const ErroreDb& e) {
            ++falliti;
            errori[k] = e.Descrizione();
            if (c->Livello() > 0) c->RollbackTrans();
          }
        }
      } catch (const std::exception& e) {
        ++falliti;
        errori[k] = e.what();
      }
    });
  }
  for (auto& x : t) x.join();
  for (const auto& e : errori) EXPECT_EQ(e, "");
  EXPECT_EQ(falliti.load(), 0);
  std::set<int32_t> tutti;
  for (const auto& v : numeri) tutti.insert(v.begin(), v.end());
  EXPECT_EQ(tutti.size(), static_cast<size_t>(kThread * kRegistrazioni));
  EXPECT_EQ(*tutti.begin(), 1);
  EXPECT_EQ(*tutti.rbegin(), kThread * kRegistrazioni);
  EXPECT_EQ(Conta("Prima Nota"), 3 * kThread * kRegistrazioni);
  // 120 invoices of 122 = 100 + 22.
  EXPECT_EQ(SaldoConto("1201001"), S("0", "14640", "0"));
  EXPECT_EQ(SaldoConto("4001001"), S("0", "0", "12000"));
  EXPECT_EQ(SaldoConto("2501001"), S("0", "0", "2640"));
  EXPECT_EQ(SaldoCF('C', "1"), S("0", "4880", "0"));
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(Scrittori, InsideATransactionBalancesMoveAtTheCommitAndReadersSeeThemBefore) {
  cn->BeginTrans();
  Salva(Riga("00001", "", "001", "D", "1201001", "122", "V01", "C", "1"));
  Salva(Riga("00001", "", "002", "A", "4001001", "100"));
  // Nothing is committed yet; a reader on this connection sees the movement all the same.
  EXPECT_EQ(SaldoConto("1201001"), S("0", "122", "0"));
  Salva(Riga("00001", "I", "001", "A", "2501001", "22"));
  // A level rolled back takes its movement with it.
  cn->BeginTrans();
  Salva(Riga("00002", "", "001", "D", "1201001", "50", "V01", "C", "1"));
  cn->RollbackTrans();
  EXPECT_FALSE(AltraConnessione()->Execute("SELECT 1 FROM [Prima Nota]").RecordCount() > 0);
  cn->CommitTrans();
  EXPECT_EQ(SaldoConto("1201001"), S("0", "122", "0"));
  EXPECT_EQ(SaldoConto("4001001"), S("0", "0", "100"));
  EXPECT_EQ(SaldoConto("2501001"), S("0", "0", "22"));
  EXPECT_EQ(SaldoCF('C', "1"), S("0", "122", "0"));
  EXPECT_TRUE(VerificaSaldi(*cn).empty());

  // A rolled back transaction leaves neither rows nor balances.
  cn->BeginTrans();
  Salva(Riga("00003", "", "001", "D", "6001001", "10"));
  cn->RollbackTrans();
  EXPECT_FALSE(SaldoConto("6001001").esiste);
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(Scrittori, ALongLivedInstanceFollowsTheCausalsPresentOperativity) {
  Salva(Riga("00001", "", "001", "D", "1201001", "10", "G2"));
  cn->Esegui("UPDATE [Causali Contabili] SET [OperativitaContabile] = '1' WHERE [CodiceCausale] = 'G2'");
  Salva(Riga("00002", "", "001", "D", "1201001", "7", "G2"));
  // The first row moved the period column, the second the opening one.
  EXPECT_EQ(SaldoConto("1201001"), S("7", "10", "0"));
  EXPECT_EQ(Colonna("Stringa10indicatori", "00002", "", "001", "D"), Valore("  1       "));
}

TEST_P(Scrittori, TheSideIsStoredOneWayOrRefused) {
  Salva(Riga("00001", "", "001", "a ", " 1201001 ", "10"));
  EXPECT_EQ(Conta("Prima Nota"), 1);
  EXPECT_EQ(cn->Scalare("SELECT [DareAvere] || '|' || [ContoPrimaNota] FROM [Prima Nota]"), Valore("A|1201001"));
  EXPECT_EQ(SaldoConto("1201001"), S("0", "0", "10"));
  bool cancel = false;
  EXPECT_THROW(pn.SalvaRecord(Riga("00002", "", "001", "X", "1201001", "10"), Valore("p"), 1, cancel), ErroreDb);
  EXPECT_EQ(Conta("Prima Nota"), 1);
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

TEST_P(Scrittori, MessagesOfASaveComeWhenItsUnitHasEnded) {
  HostTransazione h(cn);
  ImpostaHost(&h);
  Salva(Riga("00001", "", "001", "D", "9999999", "10", "ZZZ"));
  ImpostaHost(host.get());
  // An unknown causal and an unknown sub-account, told after the save let go of its lock.
  EXPECT_EQ(h.Messaggi().size(), 2u);
  EXPECT_EQ(h.durante, 0);
}

TEST_P(Scrittori, ACounterHeldTwiceUnderABlankKeyCountsOnFromTheHighest) {
  cn->Esegui("CREATE TABLE [Contatori] ([Registro] TEXT, [Serie] TEXT, [Ultimo] INTEGER)");
  cn->Esegui("INSERT INTO [Contatori] VALUES ('V', NULL, 5)");
  cn->Esegui("INSERT INTO [Contatori] VALUES ('V', '', 9)");
  cn->Esegui("INSERT INTO [Contatori] VALUES ('V', NULL, 7)");
  FiltroChiave f;
  f.Testo("[Registro]", Valore("V")).Testo("[Serie]", Valore(""));
  Contatore c;
  c.tabella = "Contatori";
  c.colonna = "Ultimo";
  c.where = f.Where();
  c.parametri = f.Valori();
  EXPECT_EQ(PrendiNumero(*cn, c), 10);
  EXPECT_EQ(PrendiNumero(*cn, c), 11);
}

TEST_P(Scrittori, TheCheckReadsOneSnapshotWhileAnotherPosts) {
  std::atomic<bool> fine{false};
  std::string errore;
  std::thread poster([&] {
    try {
      auto c = AltraConnessione();
      clsPrimaNota p;
      p.cn = c;
      bool cancel = false;
      for (int i = 1; i <= 300 && !fine; ++i) {
        char num[16];
        std::snprintf(num, sizeof num, "%05d", i);
        c->BeginTrans();
        p.SalvaRecord(Riga(num, "", "001", "D", "1201001", "122", "V01", "C", "1"), Valore("t"), 1, cancel);
        p.SalvaRecord(Riga(num, "", "002", "A", "4001001", "100"), Valore("t"), 1, cancel);
        p.SalvaRecord(Riga(num, "I", "001", "A", "2501001", "22"), Valore("t"), 1, cancel);
        c->CommitTrans();
      }
    } catch (const std::exception& e) {
      errore = e.what();
    }
  });
  auto verifica = AltraConnessione();
  size_t differenze = 0;
  for (int k = 0; k < 15; ++k) differenze += VerificaSaldi(*verifica).size();
  fine = true;
  poster.join();
  EXPECT_EQ(errore, "");
  EXPECT_EQ(differenze, 0u);
  EXPECT_TRUE(VerificaSaldi(*cn).empty());
}

VORN_SU_DUE_MOTORI(Scrittori);
