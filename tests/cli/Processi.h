// Runs the built vorn command (VORN_BIN) in processes of its own, for what only separate
// processes show: two runs at once, a signal, a terminal.
#pragma once
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "support/Motori.h"

namespace vorn::test {

inline std::string BinarioVorn() {
  const char* b = std::getenv("VORN_BIN");
  return b ? b : "";
}

// A vorn process started with its standard output and error to files; Attendi() gives its exit
// code (128 + the signal when a signal ended it).
class ProcessoVorn {
 public:
  ProcessoVorn(const std::vector<std::string>& argomenti, const std::string& out, const std::string& err) {
    std::vector<std::string> a = {BinarioVorn()};
    a.insert(a.end(), argomenti.begin(), argomenti.end());
    pid_ = fork();
    if (pid_ == 0) {
      int o = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      int e = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      int n = open("/dev/null", O_RDONLY);
      dup2(o, 1);
      dup2(e, 2);
      dup2(n, 0);
      std::vector<char*> argv;
      for (auto& s : a) argv.push_back(s.data());
      argv.push_back(nullptr);
      execv(argv[0], argv.data());
      _exit(127);
    }
  }
  int Attendi() {
    int st = 0;
    waitpid(pid_, &st, 0);
    return WIFEXITED(st) ? WEXITSTATUS(st) : 128 + WTERMSIG(st);
  }
  pid_t Pid() const { return pid_; }

 private:
  pid_t pid_;
};

}  // namespace vorn::test
