// The effects run and the till receipts run killed at random moments, on both engines: a child
// (this program forked, or vorn contabilizza-effetti) posts a few hundred papers and four
// months of receipts and gets SIGKILL after a random delay. After each kill every paper is whole
// (stamped posted, one registration of two balanced rows, its instalment paid by that
// registration alone) or absent (not stamped, no journal row, no payment), every day of receipts
// is whole (all its movements stamped, one registration of cash, revenue and two VAT rows) or
// absent, and the balances agree with the journal. The last run posts what is missing; one
// more posts nothing.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "cli/ComandoAzienda.h"
#include "cli/Processi.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "frame/clsDB.h"
#include "ledger/VerificaSaldi.h"
#include "receivables/Interruzioni.h"
#include "receivables/clsElaboraFatture.h"
#include "support/Azienda.h"

namespace vorn::test {
namespace {

constexpr int kRate = 300, kGiorni = 120;

class EffettiInterrottiTest : public AziendaStandardTest {
 protected:
  void SetUp() override {
    AziendaStandardTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    Parametri(cn);
    Atomico t(*cn);
    for (int c = 1; c <= 20; ++c)
      cn->Esegui("INSERT INTO [Anagrafica Clienti] ([Codice Cliente], [Ragione Sociale], [SottocontoApparten]) "
                 "VALUES (?, ?, '0501001')",
                 {Valore("C" + std::to_string(c)), Valore("Cliente " + std::to_string(c))});
    // Papers of 2024: receipts, drafts, notices and direct debits in turn, 100,00 to 399,00.
    const char* tipi[] = {"RB", "TR", "AB", "RI"};
    const Data inizio = *Data::Crea(2024, 1, 1);
    for (int i = 1; i <= kRate; ++i) {
      const Data d = inizio.AggiungiGiorni(i % 360);
      cn->Esegui("INSERT INTO [Scadenziario] ([Numero Progressivo], [Progressivo Documento], [Tipo], [Codice Cliente], "
                 "[Numero Documento], [Serie], [Data Documento], [Data Scadenza], [Tipo di Effetto], "
                 "[Importo Documento], [Importo Scadenza], [Importo Pagato], [Contabilizzato], [Sospeso]) "
                 "VALUES (?, ?, 'CL', ?, ?, 'K', ?, ?, ?, ?, ?, 0, ?, ?)",
                 {Valore(i), Valore(i), Valore("C" + std::to_string(1 + i % 20)), Valore(i), Valore(d),
                  Valore(d.AggiungiGiorni(60)), Valore(tipi[i % 4]), Valore(Importo(100 + i)), Valore(Importo(100 + i)),
                  Valore(false), Valore(false)});
    }
    // Each day: 122,00 at 22% and 55,00 at 10% with VAT inside, 10,00 at 22% without: cash
    // 122,00 + 55,00 + 12,20 = 189,20.
    for (int g = 0; g < kGiorni; ++g)
      for (auto [codice, importo, scorporo] :
           {std::tuple{"0022", "122.00", true}, {"0010", "55.00", true}, {"0022", "10.00", false}})
        cn->Esegui("INSERT INTO [Movimenti Magazzino] ([Data Registrazione], [Causale Magazzino], [Codice Iva], "
                   "[Importo], [Scorporo iva], [Flag Elaborato Scontrini], [Tipo documento]) VALUES (?, 'SCO', ?, ?, ?, "
                   "?, 'S')",
                   {Valore(inizio.AggiungiGiorni(g)), Valore(codice), Valore(*Importo::DaTestoPunto(importo)),
                    Valore(scorporo), Valore(false)});
    t.Conferma();
  }

  static void Parametri(const std::shared_ptr<Connessione>& c) {
    G().ConnessioneGlobale = c;
    clsDB db;
    db.cn = c;
    db.ImpostaVariabiliGlobaliServer();
  }

  // Both runs over the year; the registrations they made.
  long Posta(const std::shared_ptr<Connessione>& c) {
    clsTabRiferimenti rif;
    rif.cn = c;
    clsElaboraFatture ef;
    ef.cn = c;
    ArgomentiElaboraEffetti e;
    if (!RiferimentiElaboraEffetti(rif, e)) throw std::runtime_error("riferimenti mancanti");
    e.avar_DaData = Valore("01/01/2024");
    e.avar_AData = Valore("31/12/2024");
    e.bool_ContabilizzaDataFattura = true;
    ArgomentiElaboraScontrini s;
    if (!RiferimentiElaboraScontrini(rif, s)) throw std::runtime_error("riferimenti mancanti");
    s.avar_DaData = e.avar_DaData;
    s.avar_AData = e.avar_AData;
    s.causale_magazzino_corrispettivi = Valore("SCO");
    EsitoElaborazione a = ef.ElaboraEffetti(e);
    EsitoElaborazione b = ef.ElaboraScontrini(s);
    if (a.Scartati || b.Scartati) throw std::runtime_error("unità scartate");
    return a.Registrazioni + b.Registrazioni;
  }

  // Checks every paper and day whole or absent; gives how many are posted.
  long VerificaTuttoONiente(const std::string& quando) {
    SCOPED_TRACE(quando);
    struct Reg {
      long righe = 0;
      Importo dare, avere, cassa;
      std::string data, causale;
      long chiave = 0;
    };
    std::map<std::string, Reg> reg;
    cn->Scorri("SELECT [NumeroRegistrazione], [DareAvere], [ImportoMovimento], [KeyScadenze], [DataRegistrazione], "
               "[CodiceCausale], [ContoPrimaNota] FROM [Prima Nota]",
               {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                 Reg& x = reg[TrimTesto(r[0])];
                 ++x.righe;
                 (TrimTesto(r[1]) == "D" ? x.dare : x.avere) += NullToZeroCy(r[2]);
                 if (NullToZeroLng(r[3])) x.chiave = NullToZeroLng(r[3]);
                 x.data = DataInTesto(r[4]).Testo();
                 x.causale = TrimTesto(r[5]);
                 if (TrimTesto(r[6]) == "0702001") x.cassa += NullToZeroCy(r[2]);
                 return true;
               });
    std::map<long, std::string> perRata;           // paper -> its registration
    std::map<std::string, std::string> perGiorno;  // day -> its registration
    for (const auto& [n, x] : reg) {
      EXPECT_EQ(x.dare, x.avere) << "registrazione " << n;
      if (x.causale == "EFF") {
        EXPECT_EQ(2, x.righe) << "registrazione " << n;
        EXPECT_TRUE(perRata.emplace(x.chiave, n).second) << "effetto " << x.chiave << " registrato due volte";
      } else {
        EXPECT_EQ("COR", x.causale);
        EXPECT_EQ(4, x.righe) << "registrazione " << n;
        EXPECT_EQ(*Importo::DaTestoPunto("189.20"), x.cassa) << "registrazione " << n;
        EXPECT_TRUE(perGiorno.emplace(x.data, n).second) << "giorno " << x.data << " registrato due volte";
      }
    }
    long posted = 0;
    cn->Scorri("SELECT [Numero Progressivo], [Contabilizzato], [Importo Scadenza], [Importo Pagato], "
               "(SELECT COUNT(*) FROM [Scadenziario Pagamenti] P WHERE P.[Numero Progressivo] = "
               "[Scadenziario].[Numero Progressivo]), (SELECT MAX(P.[NumeroRegistrazione]) FROM [Scadenziario "
               "Pagamenti] P WHERE P.[Numero Progressivo] = [Scadenziario].[Numero Progressivo]) FROM [Scadenziario]",
               {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                 const long np = NullToZeroLng(r[0]);
                 auto it = perRata.find(np);
                 if (r[1].Vero()) {
                   ++posted;
                   EXPECT_TRUE(it != perRata.end()) << "effetto " << np << " segnato senza registrazione";
                   EXPECT_EQ(NullToZeroCy(r[2]), NullToZeroCy(r[3])) << "effetto " << np;
                   EXPECT_EQ(1, NullToZeroLng(r[4])) << "effetto " << np;
                   if (it != perRata.end()) {
                     EXPECT_EQ(it->second, TrimTesto(r[5])) << "effetto " << np;
                   }
                 } else {
                   EXPECT_TRUE(it == perRata.end()) << "effetto " << np << " registrato e non segnato";
                   EXPECT_EQ(0, NullToZeroLng(r[4])) << "effetto " << np;
                   EXPECT_TRUE(NullToZeroCy(r[3]).Zero()) << "effetto " << np;
                 }
                 return true;
               });
    EXPECT_EQ(static_cast<size_t>(posted), perRata.size());
    cn->Scorri("SELECT [Data Registrazione], SUM(CASE WHEN [Flag Elaborato Scontrini] = ? THEN 1 ELSE 0 END) "
               "FROM [Movimenti Magazzino] GROUP BY [Data Registrazione]",
               {Valore(true)}, [&](const std::vector<Colonna>&, const std::vector<Valore>& r) {
                 const std::string giorno = DataInTesto(r[0]).Testo();
                 const long segnati = NullToZeroLng(r[1]);
                 EXPECT_TRUE(segnati == 0 || segnati == 3) << giorno << ": " << segnati << " movimenti su 3";
                 EXPECT_EQ(segnati == 3, perGiorno.count(giorno) == 1) << giorno;
                 if (segnati == 3) ++posted;
                 return true;
               });
    EXPECT_EQ(perRata.size() + perGiorno.size(), reg.size());
    auto d = VerificaSaldi(*cn);
    EXPECT_TRUE(d.empty()) << DescriviDifferenza(d.front());
    return posted;
  }

  void Giri(const std::function<pid_t()>& avvia, int massimoMs, long totale) {
    GiriInterrotti g = GiriSuConnessione(
        cn,
        [this] {
          auto c = AltraConnessione();
          Parametri(c);
          return c;
        },
        [this](const std::string& quando) { return VerificaTuttoONiente(quando); });
    g.avvia = avvia;
    g.totale = totale;
    g.massimoMs = massimoMs;
    const long posted = EseguiGiriInterrotti(g);
    if (HasFailure()) return;
    EXPECT_EQ(kRate + kGiorni - posted, Posta(cn));
    EXPECT_EQ(kRate + kGiorni, VerificaTuttoONiente("dopo l'ultima elaborazione"));
    EXPECT_EQ(0, Posta(cn));
    EXPECT_EQ(kRate + kGiorni, VerificaTuttoONiente("dopo un'elaborazione senza nulla da fare"));
  }
};

// The child is this test program, forked: both runs on a connection of its own, ended by
// _exit (0 all posted, 4 a failure), never back into the test.
TEST_P(EffettiInterrottiTest, ProcessoFiglioUcciso) {
  Giri(
      [this]() -> pid_t {
        pid_t pid = fork();
        if (pid != 0) return pid;
        int codice = 4;
        try {
          auto c = AltraConnessione();
          Parametri(c);
          Posta(c);
          codice = 0;
        } catch (...) {
        }
        _exit(codice);
      },
      300, kRate + kGiorni);
}

// The child is the command as a user runs it: vorn contabilizza-effetti (papers only; the
// last run here posts the receipts).
TEST_P(EffettiInterrottiTest, ComandoContabilizzaEffettiUcciso) {
  if (BinarioVorn().empty()) GTEST_SKIP() << "VORN_BIN non impostato: si prova sotto ctest";
  std::vector<std::string> a = RigaComando(dir->Percorso() + "/app", "contabilizza-effetti", Pg(), file, pg);
  for (const char* s : {"--dal", "01/01/2024", "--al", "31/12/2024"}) a.push_back(s);
  const std::string out = dir->Percorso() + "/out.txt", err = dir->Percorso() + "/err.txt";
  Giri([&]() { return ProcessoVorn(a, out, err).Pid(); }, 400, kRate);
}

VORN_SU_DUE_MOTORI(EffettiInterrottiTest);

}  // namespace
}  // namespace vorn::test
