// The host of the vorn command: messages on stderr with their caption, questions on the
// terminal or answered by a batch option, progress as one line that rewrites itself.
#pragma once
#include <chrono>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>

#include "frame/Host.h"

namespace vorn {

// A question that nobody can answer: no terminal and no batch answer.
class DomandaSenzaRisposta : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class HostConsole : public IHost {
 public:
  // `risposta`: vbYes for --si, vbNo for --no, nullopt to ask on the terminal.
  HostConsole(std::string cartella, std::optional<int> risposta, std::FILE* err = stderr, std::FILE* in = nullptr);

  int MsgBox(const std::string& testo, int stile, const std::string& titolo) override;
  std::string CartellaApplicazione() override { return cartella_; }
  std::optional<Data> ChiediData(const std::string& titolo, const Data& proposta) override;

  // The default application folder: $VORN_CARTELLA, else $XDG_DATA_HOME/vorn, else
  // ~/.local/share/vorn.
  static std::string CartellaPredefinita();

 private:
  std::string cartella_;
  std::optional<int> risposta_;
  std::FILE* err_;
  std::FILE* in_;
};

// The client's form on a terminal: msgbar becomes one progress line with a count and a rate.
class FormConsole : public IForm {
 public:
  explicit FormConsole(std::FILE* err = stderr);
  ~FormConsole() override;
  void Caption(const std::string& testo) override;
  void msgbar(const std::string& testo) override;
  // Ends the progress line.
  void Fine();
  long Conteggio() const { return n_; }

 private:
  std::FILE* err_;
  bool tty_;
  long n_ = 0;
  bool aperta_ = false;
  std::chrono::steady_clock::time_point inizio_, ultima_;
};

// A message in one line: its lines joined, a database server's detail block (LINE, DETAIL,
// HINT, CONTEXT, QUERY, an indented continuation, and what follows them) left out.
std::string UnaRigaErrore(const std::string& testo);

// Reads a password from the terminal without echo; empty when there is no terminal.
std::string LeggiPasswordNascosta(const std::string& richiesta);

}  // namespace vorn
