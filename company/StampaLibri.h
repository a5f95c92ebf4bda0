// What the prints of the statutory books share (the VAT registers and settlement, the journal
// book): the text of their fields, the company lines of their page head, the objects a print
// makes when the caller gives none, the working files of a print and the copy of the laid-out
// pages into the print's file.
#pragma once
#include <array>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "company/clsAnagraficaAzienda.h"
#include "frame/Comuni.h"
#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/FileVorn.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn::stampa_libri {

inline std::string T(const Valore& v) { return Trim(v.Testo()); }
inline Importo Imp(const Valore& v) { return NullToZeroCy(v); }
// Left-aligned and right-aligned in n characters (the value trimmed).
inline std::string Sx(const std::string& s, int n) { return PadSinistra(Valore(s), n); }
inline std::string Dx(const std::string& s, int n) { return PadDestra(Valore(s), n); }
// Padded or cut to n characters, leading blanks kept.
inline std::string Largo(const std::string& s, int n) {
  size_t l = LunghezzaTesto(s), w = static_cast<size_t>(n);
  return l >= w ? SinistraTesto(s, w) : s + std::string(w - l, ' ');
}
// Appends `s`, trimmed of blanks, left-aligned (or right-aligned) in n characters and cut when
// longer: the text of Sx (Dx) without its copies, for the prints that write a line a row.
inline void Accoda(std::string& riga, std::string_view s, int n, bool destra = false) {
  size_t b = 0, e = s.size();
  while (b < e && s[b] == ' ') ++b;
  while (e > b && s[e - 1] == ' ') --e;
  s = s.substr(b, e - b);
  for (unsigned char c : s)
    if (c >= 0x80) {  // characters of more than one byte: the general road
      riga += destra ? Dx(std::string(s), n) : Sx(std::string(s), n);
      return;
    }
  const size_t w = n > 0 ? static_cast<size_t>(n) : 0;
  if (s.size() >= w) {
    riga.append(s.substr(0, w));
    return;
  }
  if (destra) riga.append(w - s.size(), ' ');
  riga.append(s);
  if (!destra) riga.append(w - s.size(), ' ');
}
// The first and the last day of a book's month; a month or a year that gives no date is refused.
inline std::pair<Data, Data> MeseDelLibro(int anno, int mese) {
  auto d = mese >= 1 && mese <= 12 ? Data::Crea(anno, mese, 1) : std::nullopt;
  if (!d) throw ErroreDb(3265, "Periodo non valido: mese " + std::to_string(mese) + " anno " + std::to_string(anno));
  return {*d, d->AggiungiMesi(1).AggiungiGiorni(-1)};
}

inline std::string Cifra(Importo i) { return FormattaImporto(Valore(i)); }
// A column's amount; nothing for a null one.
inline std::string Cifra(const Valore& v) { return v.IsNull() || v.IsEmpty() ? "" : Cifra(Imp(v)); }

// The caller's object, or one of the print's own on its connection.
template <class C>
C* Usa(C* dato, std::unique_ptr<C>& proprio, const std::shared_ptr<Connessione>& cn) {
  if (dato) return dato;
  proprio = std::make_unique<C>();
  proprio->cn = cn;
  return proprio.get();
}

// The two company lines of a page head: name and fiscal domicile; VAT number, fiscal code and
// place of business.
inline std::array<std::string, 2> RigheAzienda(clsAnagraficaAzienda& anagrafica) {
  std::string ragione, indEs, capEs, locEs, provEs, indDom, capDom, locDom, provDom, cf, piva;
  anagrafica.GetDatiFiscaliAzienda(ragione, indEs, capEs, locEs, provEs, indDom, capDom, locDom, provDom, cf, piva);
  return {" Azienda: " + Sx(ragione, 40) + "  Domicilio Fiscale: " + Sx(indDom, 25) + " " + Sx(capDom, 5) + " " +
              Sx(locDom, 25) + " " + Sx(provDom, 2),
          " Par.IVA: " + Sx(piva, 11) + " Cod.Fiscale: " + Sx(cf, 16) + " Ubicaz. Esercizio: " + Sx(indEs, 25) + " " +
              Sx(capEs, 5) + " " + Sx(locEs, 25) + " " + Sx(provEs, 2)};
}

// The foot of every page.
inline std::string PiedeElaborato(const std::string& AzRagSoc, const std::string& AzParIva) {
  return "************************  ELABORATO PRESSO : " + AzRagSoc + " P. IVA: " + AzParIva +
         "  ************************";
}

// The working files of a print, named in the run's working folder: none there at the start,
// and gone at the end whatever happens.
class FileLavoro {
 public:
  explicit FileLavoro(std::initializer_list<const char*> nomi) {
    for (const char* n : nomi) file_.push_back(CartellaTemp() + "/" + n);
    Cancella();
  }
  ~FileLavoro() { Cancella(); }
  FileLavoro(const FileLavoro&) = delete;
  FileLavoro& operator=(const FileLavoro&) = delete;
  const std::string& operator[](size_t i) const { return file_.at(i); }

 private:
  void Cancella() {
    for (const auto& f : file_) {
      try {
        CancellaFile(f);
      } catch (...) {
      }
    }
  }
  std::vector<std::string> file_;
};

// One line of a body; ErroreStampa naming the file when it cannot be written.
inline void Scrivi(std::ofstream& f, const std::string& riga, const std::string& nome) {
  f << riga << '\n';
  if (!f) throw ErroreStampa("Impossibile scrivere il file " + nome);
}

// The laid-out pages into the print's file (named only at its Chiudi()).
inline void CopiaInStampa(const std::string& pagine, FileStampa& stampa, const std::string& nomeFile) {
  std::ifstream in(pagine, std::ios::binary);
  if (!in) throw ErroreStampa("Impossibile leggere il file " + pagine);
  stampa.Flusso() << in.rdbuf();
  if (!stampa.Flusso()) throw ErroreStampa("Impossibile scrivere il file " + nomeFile);
}

}  // namespace vorn::stampa_libri
