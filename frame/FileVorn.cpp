#include "frame/FileVorn.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <vector>

#include "frame/Host.h"
#include "frame/Valore.h"

namespace vorn {

namespace fs = std::filesystem;

bool EsisteFile(const std::string& percorso) {
  std::error_code ec;
  if (percorso.empty() || !fs::is_regular_file(percorso, ec)) return false;
  std::ifstream f(percorso, std::ios::binary);
  return f.is_open();
}

void CancellaFile(const std::string& percorso) {
  if (!EsisteFile(percorso)) return;
  std::error_code ec;
  fs::remove(percorso, ec);
}

std::string TogliBarraFinale(const std::string& percorso) {
  if (!percorso.empty() && percorso.back() == '/') return percorso.substr(0, percorso.size() - 1);
  return percorso;
}

void CreaCartella(std::string& percorso) {
  // The path keeps its case: file names on this system are case-sensitive, so turning the path
  // to capitals would name another folder.
  percorso = TogliBarraFinale(Trim(percorso));
  if (percorso.empty()) return;
  // Each missing level, from the outermost: the root ("/") always exists.
  fs::path livello;
  for (const auto& parte : fs::path(percorso)) {
    livello /= parte;
    if (livello == livello.root_path()) continue;
    if (!fs::is_directory(livello)) fs::create_directory(livello);
  }
}

void CreaCartella(const std::string& percorso) {
  std::string copia = percorso;
  CreaCartella(copia);
}

namespace {

std::string Causa(int errore) { return errore ? std::string(": ") + std::strerror(errore) : std::string(); }

[[noreturn]] void NonScritto(const std::string& percorso, int errore) {
  throw ErroreStampa("Impossibile scrivere il file " + percorso + Causa(errore));
}

}  // namespace

void AccodaFile(const std::string& origine, const std::string& destinazione) {
  if (!EsisteFile(origine)) return;
  std::ifstream in(origine, std::ios::binary);
  std::ofstream out(destinazione, std::ios::binary | std::ios::app);
  if (!out) throw ErroreStampa("Impossibile aprire il file " + destinazione + Causa(errno));
  std::string riga;
  while (std::getline(in, riga)) {
    if (!riga.empty() && riga.back() == '\r') riga.pop_back();
    out << riga << '\n';
    if (!out) NonScritto(destinazione, errno);
  }
  if (in.bad()) throw ErroreStampa("Impossibile leggere il file " + origine + Causa(errno));
  out.close();
  if (!out) NonScritto(destinazione, errno);
}

// ---------------------------------------------------------------- folders

std::string CartellaStampe() {
  std::string c = TogliBarraFinale(Host().CartellaApplicazione()) + "/Temp";
  CreaCartella(c);
  return c;
}

namespace {

// The working folders made by this process, one per application folder, removed when the
// process ends. A child that forks from this process leaves them to its parent.
struct CartelleLavoro {
  std::map<std::string, std::string> cartelle;
  pid_t processo = getpid();
  void Rimuovi() {
    if (getpid() != processo) {
      cartelle.clear();
      return;
    }
    for (const auto& [stampe, lavoro] : cartelle) {
      std::error_code ec;
      fs::remove_all(lavoro, ec);
    }
    cartelle.clear();
  }
  ~CartelleLavoro() { Rimuovi(); }
};

CartelleLavoro& Lavoro() {
  static CartelleLavoro c;
  return c;
}

}  // namespace

std::string CartellaTemp() {
  std::string stampe = CartellaStampe();
  auto& l = Lavoro();
  if (l.processo != getpid()) {
    l.cartelle.clear();
    l.processo = getpid();
  }
  auto it = l.cartelle.find(stampe);
  std::error_code ec;
  if (it != l.cartelle.end() && fs::is_directory(it->second, ec)) return it->second;
  std::string modello = stampe + "/lavoro-" + std::to_string(getpid()) + "-XXXXXX";
  std::vector<char> nome(modello.begin(), modello.end());
  nome.push_back('\0');
  if (!mkdtemp(nome.data()))
    throw ErroreStampa("Impossibile creare la cartella di lavoro in " + stampe + Causa(errno));
  return l.cartelle[stampe] = nome.data();
}

void ChiudiCartellaTemp() { Lavoro().Rimuovi(); }

// ---------------------------------------------------------------- report output

namespace {

// Plain text with a page number: the shape of every paginated report of ours.
bool SembraStampa(const std::string& percorso) {
  std::ifstream f(percorso, std::ios::binary);
  if (!f) return false;
  std::string testa(64 * 1024, '\0');
  f.read(testa.data(), static_cast<std::streamsize>(testa.size()));
  testa.resize(static_cast<size_t>(f.gcount()));
  if (testa.empty()) return true;
  for (unsigned char c : testa)
    if (c < 0x20 && c != '\n' && c != '\r' && c != '\t' && c != '\f') return false;
  return testa.find("Pag:") != std::string::npos;
}

std::string Risolto(const std::string& percorso) {
  std::error_code ec;
  fs::path p = fs::weakly_canonical(fs::path(percorso), ec);
  return ec ? percorso : p.string();
}

}  // namespace

namespace {

void VerificaUscita(const std::string& percorso, const RiconosciFile& nostro, const std::string& cosa) {
  if (Trim(percorso).empty()) throw ErroreStampa("Nome del file di stampa non indicato.");
  struct stat st{};
  if (stat(percorso.c_str(), &st) != 0) {
    if (errno != ENOENT) throw ErroreStampa("Impossibile usare il file di stampa " + percorso + Causa(errno));
    std::error_code ec;
    fs::path cartella = fs::path(Risolto(percorso)).parent_path();
    if (!cartella.empty() && !fs::is_directory(cartella, ec))
      throw ErroreStampa("La cartella del file di stampa " + percorso + " non esiste.");
    return;
  }
  if (S_ISDIR(st.st_mode)) throw ErroreStampa("Il file di stampa " + percorso + " è una cartella.");
  if (S_ISCHR(st.st_mode) || S_ISFIFO(st.st_mode)) return;
  if (!S_ISREG(st.st_mode)) throw ErroreStampa("Il file di stampa " + percorso + " non è un file ordinario.");
  if (!nostro) {
    if (!SembraStampa(percorso))
      throw ErroreStampa("Il file " + percorso +
                         " esiste e non è una stampa: non viene sovrascritto. Indicare un altro file di stampa.");
    return;
  }
  if (st.st_size != 0 && !nostro(percorso))
    throw ErroreStampa("Il file " + percorso + " esiste e non è " + cosa +
                       ": non viene sovrascritto. Indicare un altro file.");
}

}  // namespace

void VerificaUscitaStampa(const std::string& percorso) { VerificaUscita(percorso, {}, {}); }

void VerificaUscitaFile(const std::string& percorso, const RiconosciFile& nostro, const std::string& cosa) {
  VerificaUscita(percorso, nostro, cosa);
}

FileStampa::FileStampa(const std::string& percorso) : percorso_(Risolto(percorso)) { Apri(percorso); }

FileStampa::FileStampa(const std::string& percorso, RiconosciFile nostro, std::string cosa)
    : percorso_(Risolto(percorso)), nostro_(std::move(nostro)), cosa_(std::move(cosa)) {
  Apri(percorso);
}

void FileStampa::Verifica(const std::string& percorso) const { VerificaUscita(percorso, nostro_, cosa_); }

void FileStampa::Apri(const std::string& percorso) {
  Verifica(percorso);
  struct stat st{};
  bool dispositivo = stat(percorso_.c_str(), &st) == 0 && !S_ISREG(st.st_mode);
  if (dispositivo) {
    out_.open(percorso_, std::ios::binary | std::ios::out);
    if (!out_) throw ErroreStampa("Impossibile aprire il file di stampa " + percorso + Causa(errno));
    return;
  }
  fs::path p(percorso_);
  std::string modello = (p.parent_path() / ("." + p.filename().string() + ".XXXXXX")).string();
  std::vector<char> nome(modello.begin(), modello.end());
  nome.push_back('\0');
  int fd = mkstemp(nome.data());
  if (fd < 0) throw ErroreStampa("Impossibile creare il file di stampa " + percorso + Causa(errno));
  lavoro_ = nome.data();
  // The permissions a new file would get: mkstemp keeps it to its owner.
  mode_t maschera = umask(0);
  umask(maschera);
  fchmod(fd, 0666 & ~maschera);
  close(fd);
  out_.open(lavoro_, std::ios::binary | std::ios::out | std::ios::trunc);
  if (!out_) {
    int e = errno;
    unlink(lavoro_.c_str());
    throw ErroreStampa("Impossibile creare il file di stampa " + percorso + Causa(e));
  }
}

FileStampa::~FileStampa() {
  if (chiuso_) return;
  if (out_.is_open()) out_.close();
  if (!lavoro_.empty()) unlink(lavoro_.c_str());
}

void FileStampa::Chiudi() {
  if (chiuso_) return;
  chiuso_ = true;
  errno = 0;
  out_.flush();
  int errore = errno;
  bool scritto = static_cast<bool>(out_);
  out_.close();
  if (!errore) errore = errno;
  scritto = scritto && static_cast<bool>(out_);
  auto fallisci = [&](int e) {
    if (!lavoro_.empty()) unlink(lavoro_.c_str());
    NonScritto(percorso_, e);
  };
  if (!scritto) fallisci(errore ? errore : EIO);
  if (lavoro_.empty()) return;
  int fd = open(lavoro_.c_str(), O_RDONLY);
  if (fd < 0 || fsync(fd) != 0) {
    int e = errno;
    if (fd >= 0) close(fd);
    fallisci(e);
  }
  close(fd);
  // What appeared at the destination meanwhile is judged again before it is replaced.
  try {
    Verifica(percorso_);
  } catch (...) {
    unlink(lavoro_.c_str());
    throw;
  }
  if (rename(lavoro_.c_str(), percorso_.c_str()) != 0) fallisci(errno);
}

}  // namespace vorn
