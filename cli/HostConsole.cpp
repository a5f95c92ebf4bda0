#include "cli/HostConsole.h"

#include <signal.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <iterator>
#include <string_view>

#include "frame/Valore.h"

namespace vorn {

namespace {
std::string Righe(std::string s) {
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '\r') {
      if (i + 1 < s.size() && s[i + 1] == '\n') s.erase(i, 1);
      else s[i] = '\n';
    }
  }
  return s;
}

int Positiva(int stile) {
  int b = stile & 7;
  return b == vbOKCancel ? vbOK : b == vbRetryCancel ? vbRetry : b == vbAbortRetryIgnore ? vbRetry : vbYes;
}
int Negativa(int stile) {
  int b = stile & 7;
  return b == vbOKCancel || b == vbRetryCancel ? vbCancel : b == vbAbortRetryIgnore ? vbAbort : vbNo;
}
}  // namespace

HostConsole::HostConsole(std::string cartella, std::optional<int> risposta, std::FILE* err, std::FILE* in)
    : cartella_(std::move(cartella)), risposta_(risposta), err_(err), in_(in) {}

std::string HostConsole::CartellaPredefinita() {
  if (const char* v = std::getenv("VORN_CARTELLA"); v && *v) return v;
  if (const char* x = std::getenv("XDG_DATA_HOME"); x && *x) return std::string(x) + "/vorn";
  if (const char* h = std::getenv("HOME"); h && *h) return std::string(h) + "/.local/share/vorn";
  return "/tmp/vorn";
}

int HostConsole::MsgBox(const std::string& testo, int stile, const std::string& titolo) {
  std::fprintf(err_, "%s: %s\n", titolo.c_str(), UnaRigaErrore(testo).c_str());
  if (!StileDomanda(stile)) {
    std::fflush(err_);
    return vbOK;
  }
  if (risposta_) {
    bool si = *risposta_ == vbYes;
    std::fprintf(err_, "  -> %s\n", si ? "sì (--si)" : "no (--no)");
    std::fflush(err_);
    return si ? Positiva(stile) : Negativa(stile);
  }
  std::FILE* in = in_;
  std::FILE* tty = nullptr;
  if (!in) {
    if (!isatty(STDIN_FILENO) || !(tty = std::fopen("/dev/tty", "r")))
      throw DomandaSenzaRisposta("domanda senza risposta in uso non interattivo: \"" + UnaRigaErrore(testo) +
                                 "\"; rilanciare con --si o --no");
    in = tty;
  }
  for (;;) {
    std::fprintf(err_, "  [s/n] ");
    std::fflush(err_);
    char buf[64];
    if (!std::fgets(buf, sizeof buf, in)) {
      if (tty) std::fclose(tty);
      throw DomandaSenzaRisposta("nessuna risposta alla domanda: \"" + UnaRigaErrore(testo) + "\"");
    }
    std::string r = LCase(Trim(std::string_view(buf).substr(0, std::string_view(buf).find('\n'))));
    if (r == "s" || r == "si" || r == "sì" || r == "y" || r == "yes") {
      if (tty) std::fclose(tty);
      return Positiva(stile);
    }
    if (r == "n" || r == "no") {
      if (tty) std::fclose(tty);
      return Negativa(stile);
    }
  }
}

std::optional<Data> HostConsole::ChiediData(const std::string& titolo, const Data& proposta) {
  if (risposta_ || !isatty(STDIN_FILENO)) return proposta;
  std::fprintf(err_, "%s [%s]: ", titolo.c_str(), proposta.Testo().c_str());
  std::fflush(err_);
  char buf[64];
  if (!std::fgets(buf, sizeof buf, stdin)) return std::nullopt;
  std::string t = Trim(std::string_view(buf).substr(0, std::string_view(buf).find('\n')));
  if (t.empty()) return proposta;
  return Data::DaTesto(t);
}

FormConsole::FormConsole(std::FILE* err) : err_(err), tty_(isatty(fileno(err)) != 0) {
  inizio_ = ultima_ = std::chrono::steady_clock::now();
}
FormConsole::~FormConsole() { Fine(); }

void FormConsole::Caption(const std::string& testo) {
  Fine();
  std::fprintf(err_, "%s\n", testo.c_str());
}

void FormConsole::msgbar(const std::string& testo) {
  ++n_;
  auto ora = std::chrono::steady_clock::now();
  // A terminal gets at most ten refreshes a second; a log one line every five seconds.
  auto passo = tty_ ? std::chrono::milliseconds(100) : std::chrono::milliseconds(5000);
  if (n_ > 1 && ora - ultima_ < passo) return;
  ultima_ = ora;
  double sec = std::chrono::duration<double>(ora - inizio_).count();
  double rate = sec > 0 ? n_ / sec : 0;
  char riga[512];
  std::snprintf(riga, sizeof riga, "%s  [%ld, %.0f/s]", Righe(testo).c_str(), n_, rate);
  if (tty_) {
    std::fprintf(err_, "\r\033[K%s", riga);
    aperta_ = true;
  } else {
    std::fprintf(err_, "%s\n", riga);
  }
  std::fflush(err_);
}

void FormConsole::Fine() {
  if (aperta_) {
    std::fprintf(err_, "\n");
    std::fflush(err_);
  }
  aperta_ = false;
}

std::string UnaRigaErrore(const std::string& testo) {
  std::string s;
  size_t i = 0;
  while (i <= testo.size()) {
    size_t fine = testo.find_first_of("\r\n", i);
    if (fine == std::string::npos) fine = testo.size();
    std::string riga = testo.substr(i, fine - i);
    i = fine + 1;
    std::string t = Trim(riga);
    if (t.empty()) continue;
    bool dettaglio = !s.empty() && (riga[0] == ' ' || riga[0] == '\t' || t.find_first_not_of('^') == std::string::npos);
    for (const char* m : {"LINE ", "DETAIL:", "HINT:", "CONTEXT:", "QUERY:", "STATEMENT:", "RIGA ", "DETTAGLI:", "SUGGERIMENTO:", "CONTESTO:"})
      if (t.rfind(m, 0) == 0) dettaglio = true;
    if (dettaglio) break;
    s += (s.empty() ? "" : " ") + t;
  }
  return s;
}

namespace {

// The terminal as it was before the password prompt, put back by a signal that ends the
// process while the echo is off (Ctrl-C, Ctrl-\\, a hang-up, a kill).
termios gTerminale{};
volatile sig_atomic_t gEcoSpenta = 0;
constexpr int kSegnali[] = {SIGINT, SIGQUIT, SIGTERM, SIGHUP};

void RipristinaTerminale(int segnale) {
  if (gEcoSpenta) {
    tcsetattr(STDIN_FILENO, TCSANOW, &gTerminale);
    gEcoSpenta = 0;
    ssize_t r = write(STDERR_FILENO, "\n", 1);
    (void)r;
  }
  signal(segnale, SIG_DFL);
  raise(segnale);
}

}  // namespace

std::string LeggiPasswordNascosta(const std::string& richiesta) {
  if (!isatty(STDIN_FILENO)) return {};
  std::fprintf(stderr, "%s", richiesta.c_str());
  std::fflush(stderr);
  termios vecchio{};
  tcgetattr(STDIN_FILENO, &vecchio);
  gTerminale = vecchio;
  struct sigaction nuova{}, prima[std::size(kSegnali)];
  nuova.sa_handler = RipristinaTerminale;
  sigemptyset(&nuova.sa_mask);
  for (size_t i = 0; i < std::size(kSegnali); ++i) sigaction(kSegnali[i], &nuova, &prima[i]);
  termios nuovo = vecchio;
  nuovo.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  gEcoSpenta = 1;
  tcsetattr(STDIN_FILENO, TCSANOW, &nuovo);
  char buf[256];
  std::string out;
  if (std::fgets(buf, sizeof buf, stdin)) out = std::string(buf).substr(0, std::string(buf).find('\n'));
  tcsetattr(STDIN_FILENO, TCSANOW, &vecchio);
  gEcoSpenta = 0;
  for (size_t i = 0; i < std::size(kSegnali); ++i) sigaction(kSegnali[i], &prima[i], nullptr);
  std::fprintf(stderr, "\n");
  return out;
}

}  // namespace vorn
