#include "frame/FileVorn.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

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

void AccodaFile(const std::string& origine, const std::string& destinazione) {
  if (!EsisteFile(origine)) return;
  std::ifstream in(origine, std::ios::binary);
  std::ofstream out(destinazione, std::ios::binary | std::ios::app);
  if (!out) throw std::runtime_error("Impossibile aprire il file " + destinazione);
  std::string riga;
  while (std::getline(in, riga)) {
    if (!riga.empty() && riga.back() == '\r') riga.pop_back();
    out << riga << '\n';
  }
}

std::string CartellaTemp() {
  std::string c = TogliBarraFinale(Host().CartellaApplicazione()) + "/Temp";
  CreaCartella(c);
  return c;
}

}  // namespace vorn
