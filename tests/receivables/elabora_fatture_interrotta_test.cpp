// A posting run killed at random moments, on both engines: a child process (this program forked,
// or vorn contabilizza-fatture) posts a few hundred sample documents and gets SIGKILL after a
// random delay, several rounds. After each kill every
// document is whole (its journal rows, balanced, with the instalment stamped with its
// registration and [Elaborata] set) or absent (no journal row with its number and series, no
// stamp, [Elaborata] not set), and the balances agree with the journal. The next run takes up
// the documents that are missing: at the end each was posted exactly once.
#include <gtest/gtest.h>

#include <algorithm>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <thread>

#include "cli/ComandoAzienda.h"
#include "cli/Processi.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "frame/clsDB.h"
#include "interchange/ModelloStandard.h"
#include "ledger/VerificaSaldi.h"
#include "receivables/FattureEsempio.h"
#include "receivables/clsElaboraFatture.h"
#include "receivables/Interruzioni.h"
#include "support/Azienda.h"

namespace vorn::test {
namespace {

constexpr const char* kSerie = "K";

class ElaboraFattureInterrottaTest : public AziendaTest {
 protected:
  void SetUp() override {
    AziendaTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    CaricaModello(*cn, "standard");
    ParametriAzienda(cn);
    OpzioniFattureEsempio o;
    o.documenti = 300;
    o.clienti = 20;
    o.serie = kSerie;
    o.seme = 11;
    fatture = RiempiFattureEsempio(*cn, o);
  }

  // The process-wide parameters of the company, as connecting loads them.
  static void ParametriAzienda(const std::shared_ptr<Connessione>& c) {
    G().ConnessioneGlobale = c;
    clsDB db;
    db.cn = c;
    db.ImpostaVariabiliGlobaliServer();
  }

  // A whole posting run over the documents' dates on its own connection.
  EsitoElaboraFatture Posta(const std::shared_ptr<Connessione>& c) {
    clsTabRiferimenti rif;
    rif.cn = c;
    ArgomentiElaboraFatture a;
    if (!RiferimentiElaboraFatture(rif, a)) throw std::runtime_error("riferimenti contabili mancanti");
    a.avar_DaData = Valore(fatture.dal);
    a.avar_AData = Valore(fatture.al);
    a.avar_DataContabilizzazione = Valore(fatture.al);
    a.bool_ContabilizzaDataFattura = true;
    a.clientID = Valore("prova");
    a.hWnd = 1;
    clsElaboraFatture ef;
    ef.cn = c;
    return ef.ElaboraFatture(a);
  }

  // The child: a run on a connection of its own, ended by _exit (0 all posted, 3 some document
  // refused, 4 an exception), never back into the test.
  [[noreturn]] void Figlio() {
    int codice = 4;
    try {
      auto c = AltraConnessione();
      ParametriAzienda(c);
      EsitoElaboraFatture e = Posta(c);
      codice = e.Scartati == 0 && e.Errori.empty() ? 0 : 3;
    } catch (...) {
    }
    _exit(codice);
  }

  // Checks every document whole or absent; gives how many are posted.
  long VerificaTuttoONiente(const std::string& quando) {
    SCOPED_TRACE(quando);
    struct Righe {
      long n = 0;
      std::set<long> registrazioni;
      Importo dare, avere, cliente;
    };
    std::map<long, Righe> journal;
    long righe = 0;
    cn->Scorri("SELECT [NumeroDocumento], [SerieDocumento], [NumeroRegistrazione], [DareAvere], [ImportoMovimento], "
               "[IndClienteFornitore] FROM [Prima Nota]",
               {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                 ++righe;
                 EXPECT_EQ(kSerie, TrimTesto(r[1])) << "riga di prima nota estranea";
                 Righe& x = journal[NullToZeroLng(r[0])];
                 ++x.n;
                 x.registrazioni.insert(NullToZeroLng(Valore(TrimTesto(r[2]))));
                 (TrimTesto(r[3]) == "D" ? x.dare : x.avere) += NullToZeroCy(r[4]);
                 if (TrimTesto(r[5]) == "C") x.cliente += NullToZeroCy(r[4]);
                 return true;
               });
    std::map<long, bool> elaborata;
    cn->Scorri("SELECT [Numero], [Elaborata] FROM [Fatture] WHERE [Serie] = ?", {Valore(kSerie)},
               [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                 elaborata[NullToZeroLng(r[0])] = !r[1].IsNull() && r[1].Bool();
                 return true;
               });
    std::map<long, std::vector<long>> timbri;  // the registrations stamped on a document's instalments
    cn->Scorri("SELECT [Numero Documento], [numeroRegistrazione] FROM [Scadenziario] WHERE [Serie] = ?",
               {Valore(kSerie)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                 std::string n = TrimTesto(r[1]);
                 if (!n.empty()) timbri[NullToZeroLng(r[0])].push_back(NullToZeroLng(Valore(n)));
                 return true;
               });

    long posted = 0, righeAttese = 0;
    std::set<long> registrazioni;
    for (const FatturaEsempio& f : fatture.documenti) {
      SCOPED_TRACE("fattura " + std::to_string(f.numero));
      auto j = journal.find(f.numero);
      auto t = timbri.find(f.numero);
      if (!elaborata.at(f.numero)) {
        EXPECT_TRUE(j == journal.end()) << j->second.n << " righe di una fattura non elaborata";
        EXPECT_TRUE(t == timbri.end()) << "rata timbrata di una fattura non elaborata";
        continue;
      }
      ++posted;
      // The client's row, a row per revenue account, a VAT row per rate.
      const long attese = 1 + static_cast<long>(f.ricavi.size()) + static_cast<long>(f.iva.size());
      righeAttese += attese;
      if (j == journal.end()) {
        ADD_FAILURE() << "fattura elaborata senza righe";
        continue;
      }
      EXPECT_EQ(attese, j->second.n);
      EXPECT_EQ(1u, j->second.registrazioni.size());
      EXPECT_EQ(f.totale, j->second.dare);
      EXPECT_EQ(f.totale, j->second.avere);
      EXPECT_EQ(f.totale, j->second.cliente);
      EXPECT_TRUE(registrazioni.insert(*j->second.registrazioni.begin()).second) << "numero di registrazione ripetuto";
      if (t == timbri.end()) {
        ADD_FAILURE() << "nessuna rata timbrata";
        continue;
      }
      EXPECT_EQ(std::vector<long>{*j->second.registrazioni.begin()}, t->second);
    }
    EXPECT_EQ(righeAttese, righe);
    auto differenze = VerificaSaldi(*cn);
    EXPECT_TRUE(differenze.empty()) << DescriviDifferenza(differenze.front());
    return posted;
  }

  void Giri(const std::function<pid_t()>& avvia, int massimoMs);

  EsitoFattureEsempio fatture;
};

// Rounds of a posting process started by `avvia` and killed after a random delay up to
// `massimoMs`, each followed by the check; then a run in this process posts what is missing.
void ElaboraFattureInterrottaTest::Giri(const std::function<pid_t()>& avvia, int massimoMs) {
  const long totale = static_cast<long>(fatture.documenti.size());
  // The parent's connection is closed over the child's life: the child opens its own.
  GiriInterrotti g = GiriSuConnessione(
      cn,
      [this] {
        auto c = AltraConnessione();
        ParametriAzienda(c);
        return c;
      },
      [this](const std::string& quando) { return VerificaTuttoONiente(quando); });
  g.avvia = avvia;
  g.totale = totale;
  g.massimoMs = massimoMs;
  const long posted = EseguiGiriInterrotti(g);
  if (HasFailure()) return;

  // The last run takes up exactly the missing documents; one more finds nothing.
  EsitoElaboraFatture e = Posta(cn);
  EXPECT_EQ(totale - posted, e.Documenti);
  EXPECT_EQ(totale - posted, e.Registrazioni);
  EXPECT_EQ(0, e.Scartati);
  EXPECT_TRUE(e.Errori.empty()) << e.Errori.front();
  EXPECT_EQ(totale, VerificaTuttoONiente("dopo l'ultima elaborazione"));
  e = Posta(cn);
  EXPECT_EQ(0, e.Documenti);
  EXPECT_EQ(0, e.Registrazioni);
  EXPECT_EQ(totale, VerificaTuttoONiente("dopo un'elaborazione senza documenti"));
}

// The child is this test program, forked: ElaboraFatture on a connection of its own.
TEST_P(ElaboraFattureInterrottaTest, ProcessoFiglioUcciso) {
  Giri(
      [this]() -> pid_t {
        pid_t pid = fork();
        if (pid == 0) Figlio();
        return pid;
      },
      200);
}

// The child is the command as a user runs it: vorn contabilizza-fatture, which also connects
// and loads the company before it posts.
TEST_P(ElaboraFattureInterrottaTest, ComandoContabilizzaFattureUcciso) {
  if (BinarioVorn().empty()) GTEST_SKIP() << "VORN_BIN non impostato: si prova sotto ctest";
  std::vector<std::string> a =
      RigaComando(dir->Percorso() + "/app", "contabilizza-fatture", Pg(), file, pg);
  for (const std::string& s : {std::string("--dal"), fatture.dal.Testo(), std::string("--al"), fatture.al.Testo()})
    a.push_back(s);
  const std::string out = dir->Percorso() + "/out.txt", err = dir->Percorso() + "/err.txt";
  Giri([&]() { return ProcessoVorn(a, out, err).Pid(); }, 400);
}

VORN_SU_DUE_MOTORI(ElaboraFattureInterrottaTest);

}  // namespace
}  // namespace vorn::test
