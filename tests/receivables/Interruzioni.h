// Rounds of a posting process killed at random moments: the machinery the kill tests of the
// posting runs share. Each round closes the parent's connection, starts the child, sends it
// SIGKILL after a random delay and has the test check what the child left (every unit whole or
// absent); the delay of later rounds aims within the time the units left should take at the
// pace seen so far. VORN_SEME_KILL fixes the delays.
#pragma once
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <random>
#include <string>
#include <thread>

#include "frame/Db.h"
#include "frame/Globali.h"

namespace vorn::test {

struct GiriInterrotti {
  std::function<void()> chiudi;        // the parent lets go of the database over the child's life
  std::function<pid_t()> avvia;        // starts the child
  // Reopens, checks every unit whole or absent, gives how many are posted.
  std::function<long(const std::string& quando)> verifica;
  long totale = 0;                     // units to post
  int massimoMs = 200;                 // the longest delay of a round
  int giri = 8;
};

// Rounds on a test's company: the parent's connection `cn` (and the global one) let go over
// each child's life; before each check `riapri` gives the connection `cn` becomes.
inline GiriInterrotti GiriSuConnessione(std::shared_ptr<Connessione>& cn,
                                        std::function<std::shared_ptr<Connessione>()> riapri,
                                        std::function<long(const std::string&)> verifica) {
  GiriInterrotti g;
  g.chiudi = [&cn] {
    cn->Close();
    cn.reset();
    G().ConnessioneGlobale.reset();
  };
  g.verifica = [&cn, riapri = std::move(riapri), verifica = std::move(verifica)](const std::string& quando) {
    cn = riapri();
    return verifica(quando);
  };
  return g;
}

// The rounds, until all is posted or they run out; gives how many units the children posted.
// A child that finished before the signal must have ended with 0; at least one must be killed.
inline long EseguiGiriInterrotti(const GiriInterrotti& g) {
  unsigned seme = static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count());
  if (const char* s = std::getenv("VORN_SEME_KILL")) seme = static_cast<unsigned>(std::strtoul(s, nullptr, 10));
  std::mt19937 caso(seme);
  std::cout << "[ seme dei ritardi: " << seme << " ]\n";
  long posted = 0, uccisi = 0;
  // The first round is killed early: a fast machine posts the whole lot in a few hundred
  // milliseconds.
  int limiteMs = std::max(10, g.massimoMs / 4);
  for (int giro = 1; giro <= g.giri && posted < g.totale; ++giro) {
    g.chiudi();
    const int ritardoMs = std::uniform_int_distribution<int>(5, limiteMs)(caso);
    pid_t pid = g.avvia();
    EXPECT_GT(pid, 0);
    if (pid <= 0) return posted;
    std::this_thread::sleep_for(std::chrono::milliseconds(ritardoMs));
    kill(pid, SIGKILL);
    int stato = 0;
    EXPECT_EQ(pid, waitpid(pid, &stato, 0));
    if (WIFEXITED(stato)) EXPECT_EQ(0, WEXITSTATUS(stato)) << "giro " << giro;
    else ++uccisi;
    const long ora =
        g.verifica("giro " + std::to_string(giro) + ", ucciso dopo " + std::to_string(ritardoMs) + " ms");
    if (::testing::Test::HasFailure()) return ora;
    EXPECT_GE(ora, posted) << "unità confermate sparite";
    std::cout << "[ giro " << giro << ": SIGKILL dopo " << ritardoMs << " ms, " << ora << " su " << g.totale
              << " ]\n";
    if (ora > posted) {
      const double msPerUnita = static_cast<double>(ritardoMs) / static_cast<double>(ora - posted);
      limiteMs = std::clamp(static_cast<int>(msPerUnita * static_cast<double>(g.totale - ora)), 10, g.massimoMs);
    }
    posted = ora;
  }
  EXPECT_GE(uccisi, 1) << "nessun giro è stato interrotto";
  return posted;
}

}  // namespace vorn::test
