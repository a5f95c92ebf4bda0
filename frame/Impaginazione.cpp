#include "frame/Impaginazione.h"

#include <fstream>
#include <stdexcept>
#include <vector>

#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Globali.h"

namespace vorn {

namespace {

std::ifstream ApriIngresso(const std::string& percorso) {
  std::ifstream in(percorso, std::ios::binary);
  if (!in) throw std::runtime_error("Impossibile aprire il file " + percorso);
  return in;
}

bool LeggiRiga(std::istream& in, std::string& riga) {
  if (!std::getline(in, riga)) return false;
  if (!riga.empty() && riga.back() == '\r') riga.pop_back();
  return true;
}

// A page being written: the head and foot lines, and the running row counter.
class Pagine {
 public:
  Pagine(std::ostream& out, int righe, std::vector<std::string> testata, std::vector<std::string> piede,
         int rigaPagina)
      : out_(out), righe_(righe), testata_(std::move(testata)), piede_(std::move(piede)), rigaPagina_(rigaPagina) {}

  int Utili() const { return righe_ - static_cast<int>(piede_.size()); }

  void Testata() {
    for (size_t i = 0; i < testata_.size(); ++i) {
      if (static_cast<int>(i) == rigaPagina_) testata_[i] = RigaPagina(testata_[i]);
      // A head longer than the page breaks like the body.
      if (contatore_ >= Utili() && contatore_ > 0) {
        Piede();
        contatore_ = 0;
      }
      Stampa(testata_[i]);
    }
  }

  void Piede() {
    for (const auto& p : piede_) out_ << p << '\n';
  }

  void Riga(const std::string& riga) {
    ++contatore_;
    if (contatore_ > Utili()) {
      Piede();
      contatore_ = 0;
      Testata();
      ++contatore_;
    }
    out_ << riga << '\n';
  }

  void Chiudi(bool asterischi) {
    int piede = static_cast<int>(piede_.size());
    if (asterischi) ChiudiPaginaAsterischi(out_, contatore_, righe_, piede);
    else ChiudiPaginaBianca(out_, contatore_, righe_, piede);
    Piede();
  }

 private:
  void Stampa(const std::string& riga) {
    ++contatore_;
    out_ << riga << '\n';
  }

  std::ostream& out_;
  int righe_;
  std::vector<std::string> testata_;  // as printed: the empty lines first
  std::vector<std::string> piede_;
  int rigaPagina_;  // index in testata_, -1 for none
  int contatore_ = 0;
};

// Index of the last line whose trimmed text is not empty, 0 when none.
template <size_t N>
size_t ContaRighe(const std::array<std::string, N>& righe) {
  size_t n = 0;
  for (size_t i = 0; i < N; ++i)
    if (!Trim(righe[i]).empty()) n = i + 1;
  return n;
}

void Impagina(Pagine& pagine, std::istream& in, bool asterischi) {
  pagine.Testata();
  std::string riga;
  while (LeggiRiga(in, riga)) pagine.Riga(riga);
  pagine.Chiudi(asterischi);
}

}  // namespace

void ChiudiPaginaBianca(std::ostream& out, int contatore, int righe, int righePiede) {
  for (int r = contatore + 1; r <= righe - righePiede; ++r) out << '\n';
}

void ChiudiPaginaAsterischi(std::ostream& out, int contatore, int righe, int righePiede) {
  int utili = righe - righePiede;
  int restanti = utili - contatore;
  int spazi = kColonneReport - restanti;
  if (spazi < 0) spazi = 0;
  for (int r = contatore + 1; r <= utili; ++r, ++spazi) out << std::string(static_cast<size_t>(spazi), ' ') << "*\n";
}

void ImpaginaFile(const std::string& ingresso, const std::string& uscita, int righe,
                  const std::array<std::string, 7>& testata, const std::array<std::string, 2>& piede, bool asterischi,
                  int rigaPagina) {
  ApriIngresso(ingresso);  // a missing input leaves no output
  FileStampa out(uscita);
  ImpaginaFile(ingresso, out.Flusso(), righe, testata, piede, asterischi, rigaPagina);
  out.Chiudi();
}

void ImpaginaFile(const std::string& ingresso, std::ostream& uscita, int righe,
                  const std::array<std::string, 7>& testata, const std::array<std::string, 2>& piede, bool asterischi,
                  int rigaPagina) {
  if (righe < 5) righe = 5;
  auto in = ApriIngresso(ingresso);
  std::vector<std::string> t = {"", ""};
  t.insert(t.end(), testata.begin(), testata.end());
  // The two empty lines come first: head line k is index k + 1.
  int indice = rigaPagina >= 1 && rigaPagina <= 7 ? rigaPagina + 1 : -1;
  Pagine pagine(uscita, righe, std::move(t), std::vector<std::string>(piede.begin(), piede.end()), indice);
  Impagina(pagine, in, asterischi);
}

void ImpaginaFileAzienda(const std::string& ingresso, const std::string& uscita, int righe,
                         const std::array<std::string, 9>& testata, const std::array<std::string, 4>& piede,
                         int rigaPagina, bool asterischi) {
  RigaPagina("", 0);
  if (righe < 5) righe = 5;
  auto in = ApriIngresso(ingresso);
  FileStampa out(uscita);
  std::vector<std::string> t = {""};
  t.insert(t.end(), testata.begin(), testata.begin() + static_cast<long>(ContaRighe(testata)));
  std::vector<std::string> p(piede.begin(), piede.begin() + static_cast<long>(ContaRighe(piede)));
  int indice = rigaPagina >= 1 && rigaPagina < static_cast<int>(t.size()) ? rigaPagina : -1;
  Pagine pagine(out.Flusso(), righe, std::move(t), std::move(p), indice);
  Impagina(pagine, in, asterischi);
  out.Chiudi();
}

std::string RigaPagina(const std::string& riga, const std::optional<Valore>& azzera) {
  Valore& contatore = G().ContatorePagina;
  contatore = Valore(static_cast<long long>(NullToZeroLng(contatore)) + 1);
  if (azzera) {
    contatore = Valore(0);
    return "";
  }
  std::string timbro = "Pag: " + PadDestra(contatore, 5) + " ===";
  size_t n = LunghezzaTesto(riga);
  return SinistraTesto(riga, n > 14 ? n - 14 : 0) + timbro;
}

void ImpaginaSemplice(const std::string& ingresso, const std::string& uscita, int righe, int rigaA,
                      const std::string& testoA, int rigaB, const std::string& testoB, int rigaNumero,
                      const std::string& prefisso, Valore& numero) {
  ApriIngresso(ingresso);  // a missing input leaves no output
  FileStampa uscitaStampa(uscita);
  ImpaginaSemplice(ingresso, uscitaStampa.Flusso(), righe, rigaA, testoA, rigaB, testoB, rigaNumero, prefisso, numero);
  uscitaStampa.Chiudi();
}

void ImpaginaSemplice(const std::string& ingresso, std::ostream& out, int righe, int rigaA, const std::string& testoA,
                      int rigaB, const std::string& testoB, int rigaNumero, const std::string& prefisso,
                      Valore& numero) {
  if (righe < 5) righe = 5;
  auto in = ApriIngresso(ingresso);
  int riga = 1;
  std::string linea;
  while (LeggiRiga(in, linea)) {
    if (riga > righe) riga = 1;
    ++riga;
    std::string testo = riga == rigaA ? testoA : riga == rigaB ? testoB : linea;
    if (riga == rigaNumero) {
      testo = PadSinistra(testo, 120) + PadDestra(Valore(Trim(prefisso) + "/" + NumeroInTesto(numero)), 11);
      numero = Valore(static_cast<long long>(NullToZeroLng(numero)) + 1);
    }
    out << testo << '\n';
  }
}

}  // namespace vorn
