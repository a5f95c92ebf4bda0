#include "interchange/ModelloStandard.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>

#include "frame/Catalogo.h"
#include "interchange/clsCaricaTabelleStandard.h"

namespace vorn {

namespace fs = std::filesystem;

namespace {

constexpr const char* kElenco = "modello.tsv";

std::string CartellaEseguibile() {
  std::error_code ec;
  auto p = fs::read_symlink("/proc/self/exe", ec);
  if (ec) return {};
  return p.parent_path().string();
}

bool CartellaValida(const fs::path& p) {
  std::error_code ec;
  return !p.empty() && fs::is_directory(p, ec);
}

// The fields of one line, split on tabs, escapes not yet undone.
std::vector<std::string> Campi(const std::string& riga) {
  std::vector<std::string> v;
  size_t inizio = 0;
  while (true) {
    size_t tab = riga.find('\t', inizio);
    if (tab == std::string::npos) {
      v.push_back(riga.substr(inizio));
      return v;
    }
    v.push_back(riga.substr(inizio, tab - inizio));
    inizio = tab + 1;
  }
}

struct Riga {
  int numero;
  std::vector<std::string> campi;
};

// The lines of a data file that are neither blank nor comments, with their numbers.
std::vector<Riga> LeggiRighe(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw ErroreModello("File del modello non trovato: " + file);
  std::vector<Riga> righe;
  std::string s;
  int n = 0;
  while (std::getline(in, s)) {
    ++n;
    if (!s.empty() && s.back() == '\r') s.pop_back();
    if (n == 1 && s.rfind("\xEF\xBB\xBF", 0) == 0) s.erase(0, 3);
    if (s.empty() || s[0] == '#') continue;
    if (s.find_first_not_of(" \t") == std::string::npos) continue;
    righe.push_back({n, Campi(s)});
  }
  return righe;
}

[[noreturn]] void Errore(const std::string& file, int riga, const std::string& testo) {
  throw ErroreModello(file + ", riga " + std::to_string(riga) + ": " + testo);
}

// Undoes the escapes of a text field; nullopt for \N.
std::optional<std::string> Testo(const std::string& campo, const std::string& file, int riga) {
  if (campo == "\\N") return std::nullopt;
  std::string s;
  s.reserve(campo.size());
  for (size_t i = 0; i < campo.size(); ++i) {
    if (campo[i] != '\\') {
      s += campo[i];
      continue;
    }
    if (i + 1 >= campo.size()) Errore(file, riga, "barra rovesciata in fondo al campo");
    char c = campo[++i];
    if (c == 't') s += '\t';
    else if (c == 'n') s += '\n';
    else if (c == '\\') s += '\\';
    else Errore(file, riga, std::string("sequenza sconosciuta \\") + c);
  }
  return s;
}

bool NumeroIntero(const std::string& s) {
  size_t i = (s.size() > 1 && (s[0] == '-' || s[0] == '+')) ? 1 : 0;
  if (i >= s.size()) return false;
  return std::all_of(s.begin() + static_cast<long>(i), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

Valore Converti(const std::string& campo, const ColonnaCatalogo& col, const std::string& file, int riga) {
  auto testo = Testo(campo, file, riga);
  if (!testo) return Valore::Null();
  const std::string& s = *testo;
  auto sbagliato = [&](const char* atteso) -> Valore {
    Errore(file, riga, "colonna " + col.nome + ": '" + s + "' non è " + atteso);
  };
  switch (col.tipo) {
    case TipoCampo::Testo:
    case TipoCampo::Memo:
    case TipoCampo::Vuoto:
      return Valore(s);
    case TipoCampo::Intero16:
    case TipoCampo::Intero32: {
      if (s.empty()) return Valore::Null();
      if (!NumeroIntero(s)) return sbagliato("un numero intero");
      long long n = std::stoll(s);
      if (col.tipo == TipoCampo::Intero16 && (n < -32768 || n > 32767)) return sbagliato("un intero a 16 bit");
      return Valore(n);
    }
    case TipoCampo::Importo: {
      if (s.empty()) return Valore::Null();
      auto i = Importo::DaTestoPunto(s);
      if (!i) return sbagliato("un importo");
      return Valore(*i);
    }
    case TipoCampo::Singolo:
    case TipoCampo::Doppio: {
      if (s.empty()) return Valore::Null();
      char* fine = nullptr;
      double v = std::strtod(s.c_str(), &fine);
      if (fine != s.c_str() + s.size() || s.find_first_of("eExXnNiI ") != std::string::npos)
        return sbagliato("un numero");
      return Valore(v);
    }
    case TipoCampo::Data: {
      if (s.empty()) return Valore::Null();
      if (s.size() != 10 || s[4] != '-' || s[7] != '-' || !NumeroIntero(s.substr(0, 4)) ||
          !NumeroIntero(s.substr(5, 2)) || !NumeroIntero(s.substr(8, 2)))
        return sbagliato("una data aaaa-mm-gg");
      auto d = Data::Crea(std::stoi(s.substr(0, 4)), std::stoi(s.substr(5, 2)), std::stoi(s.substr(8, 2)));
      if (!d) return sbagliato("una data esistente");
      return Valore(*d);
    }
    case TipoCampo::Booleano: {
      std::string l = LCase(s);
      if (l == "1" || l == "true" || l == "vero" || l == "si" || l == "sì") return Valore(true);
      if (l == "0" || l == "false" || l == "falso" || l == "no" || l.empty()) return Valore(false);
      return sbagliato("un valore booleano (1 o 0)");
    }
  }
  return Valore(s);
}

std::string Quadre(const std::string& n) { return "[" + n + "]"; }

std::string& CartellaModelliApplicazione() {
  static std::string c;
  return c;
}

}  // namespace

void ImpostaCartellaModelli(const std::string& cartella) { CartellaModelliApplicazione() = cartella; }

std::string CartellaModelli() {
  if (const std::string& c = CartellaModelliApplicazione(); !c.empty()) {
    if (CartellaValida(c)) return c;
    throw ErroreModello("La cartella dei modelli indicata dall'applicazione non esiste: " + c);
  }
  if (const char* e = std::getenv("VORN_MODELLI"); e && *e) {
    if (CartellaValida(e)) return e;
    throw ErroreModello(std::string("La cartella dei modelli indicata da VORN_MODELLI non esiste: ") + e);
  }
#ifdef VORN_SOURCE_DIR
  {
    fs::path p = fs::path(VORN_SOURCE_DIR) / "interchange" / "modelli";
    if (CartellaValida(p)) return p.string();
  }
#endif
#ifdef VORN_MODELLI_INSTALLATI
  if (CartellaValida(VORN_MODELLI_INSTALLATI)) return VORN_MODELLI_INSTALLATI;
#endif
  std::string exe = CartellaEseguibile();
  if (!exe.empty()) {
    for (fs::path p : {fs::path(exe) / ".." / "share" / "vorn" / "modelli", fs::path(exe) / "modelli"})
      if (CartellaValida(p)) return p.lexically_normal().string();
  }
  throw ErroreModello("Cartella dei modelli non trovata (si può indicarla con VORN_MODELLI).");
}

std::vector<std::string> ModelliDisponibili() {
  std::vector<std::string> v;
  std::error_code ec;
  for (const auto& e : fs::directory_iterator(CartellaModelli(), ec))
    if (e.is_directory() && fs::exists(e.path() / kElenco)) v.push_back(e.path().filename().string());
  std::sort(v.begin(), v.end());
  return v;
}

std::vector<TabellaModello> TabelleModello(const std::string& modello) {
  if (modello.empty() || modello.find('/') != std::string::npos || modello == "." || modello == "..")
    throw ErroreModello("Nome di modello non valido: '" + modello + "'.");
  fs::path cartella = fs::path(CartellaModelli()) / modello;
  fs::path elenco = cartella / kElenco;
  std::error_code ec;
  if (!fs::exists(elenco, ec)) {
    std::string noti;
    for (const auto& m : ModelliDisponibili()) noti += (noti.empty() ? "" : ", ") + m;
    throw ErroreModello("Modello '" + modello + "' inesistente (modelli disponibili: " + noti + ").");
  }
  std::vector<TabellaModello> v;
  std::set<std::string> viste;
  for (const auto& r : LeggiRighe(elenco.string())) {
    if (r.campi.size() != 2 || r.campi[0].empty() || r.campi[1].empty())
      Errore(elenco.string(), r.numero, "attesi il nome della tabella e il file, separati da una tabulazione");
    const TabellaCatalogo* t = TabellaCatalogoDi(r.campi[0]);
    if (!t) Errore(elenco.string(), r.numero, "tabella sconosciuta: " + r.campi[0]);
    if (!viste.insert(LCase(t->nome)).second) Errore(elenco.string(), r.numero, "tabella ripetuta: " + t->nome);
    v.push_back({t->nome, (cartella / r.campi[1]).lexically_normal().string()});
  }
  return v;
}

DatiModello LeggiFileModello(const std::string& file, const std::string& tabella) {
  const TabellaCatalogo* t = TabellaCatalogoDi(tabella);
  if (!t) throw ErroreModello("Tabella sconosciuta: " + tabella);
  auto righe = LeggiRighe(file);
  if (righe.empty()) throw ErroreModello(file + ": manca la riga dei nomi delle colonne");
  DatiModello d;
  d.tabella = t->nome;
  std::vector<const ColonnaCatalogo*> colonne;
  std::set<std::string> viste;
  for (const auto& nome : righe[0].campi) {
    const ColonnaCatalogo* c = t->Colonna(nome);
    if (!c) Errore(file, righe[0].numero, "la tabella " + t->nome + " non ha la colonna '" + nome + "'");
    if (!viste.insert(LCase(c->nome)).second) Errore(file, righe[0].numero, "colonna ripetuta: " + c->nome);
    colonne.push_back(c);
    d.colonne.push_back({c->nome, c->tipo});
  }
  for (size_t i = 1; i < righe.size(); ++i) {
    const auto& r = righe[i];
    if (r.campi.size() != colonne.size())
      Errore(file, r.numero,
             std::to_string(r.campi.size()) + " campi invece di " + std::to_string(colonne.size()));
    std::vector<Valore> valori;
    valori.reserve(colonne.size());
    for (size_t c = 0; c < colonne.size(); ++c) valori.push_back(Converti(r.campi[c], *colonne[c], file, r.numero));
    d.righe.push_back(std::move(valori));
  }
  if ((t->rigaUnica) && d.righe.size() > 1)
    throw ErroreModello(file + ": la tabella " + t->nome + " ha una riga sola, il file ne ha " +
                        std::to_string(d.righe.size()));
  return d;
}

std::string TestoTabellaModelloVuota(const std::string& tabella) {
  if (UgualeNoCase(tabella, "Piano Dei Conti")) return "Piano dei conti dal DB origine vuoto";
  return "Tabella '" + tabella + "' dal DB origine vuota.";
}

DatiModello LeggiTabellaModello(const std::string& modello, const std::string& tabella) {
  for (const auto& t : TabelleModello(modello))
    if (UgualeNoCase(t.tabella, tabella)) return LeggiFileModello(t.file, t.tabella);
  throw ErroreModello("Il modello '" + modello + "' non ha la tabella " + tabella + ".");
}

namespace {

// The caption of the box of a table's copy.
std::string TitoloCopia(const std::string& destinazione) {
  static const std::pair<const char*, const char*> titoli[] = {
      {"Piano Dei Conti", "Carica piano dei conti standard"},
      {"Causali Contabili", "Carica causali contabili standard"},
      {"Parametri Vorn", "Carica Parametri Vorn standard"},
      {"Riferimenti Contabili", "Carica riferimenti contabili standard"},
      {"Causali Cespiti", "Carica causali cespiti standard"},
      {"CespitiCategorie", "Carica CespitiCategorie standard"}};
  for (const auto& [tabella, titolo] : titoli)
    if (UgualeNoCase(tabella, destinazione)) return titolo;
  return "Carica " + destinazione + " standard";
}

// Replaces the rows of `destinazione` with those of `d`. A table that the model leaves empty is
// told and not copied: the company keeps what it has, and the result is nullopt.
std::optional<size_t> Scrivi(Connessione& cn, const DatiModello& d, const std::string& destinazione) {
  const TabellaCatalogo* t = TabellaCatalogoDi(destinazione);
  if (!t) throw ErroreModello("Tabella sconosciuta: " + destinazione);
  if (d.righe.empty()) {
    // A copy into the chart speaks of the chart, whichever of the model's charts it reads.
    Host().MsgBox(TestoTabellaModelloVuota(UgualeNoCase(t->nome, "Piano Dei Conti") ? t->nome : d.tabella),
                  vbExclamation, TitoloCopia(t->nome));
    return std::nullopt;
  }
  std::string colonne, segnaposto;
  for (const auto& c : d.colonne) {
    if (!t->Colonna(c.nome)) throw ErroreModello("La tabella " + t->nome + " non ha la colonna '" + c.nome + "'.");
    colonne += (colonne.empty() ? "" : ", ") + Quadre(c.nome);
    segnaposto += segnaposto.empty() ? "?" : ", ?";
  }
  Atomico tx(cn);
  cn.Esegui("DELETE FROM " + Quadre(t->nome));
  std::string sql = "INSERT INTO " + Quadre(t->nome) + " (" + colonne + ") VALUES (" + segnaposto + ")";
  for (const auto& r : d.righe) cn.Esegui(sql, r);
  tx.Conferma();
  return d.righe.size();
}

}  // namespace

bool CaricaTabellaModello(Connessione& cn, const std::string& modello, const std::string& tabella,
                          const std::string& tabellaDestinazione, size_t* righe) {
  DatiModello d = LeggiTabellaModello(modello, tabella);
  auto n = Scrivi(cn, d, tabellaDestinazione.empty() ? d.tabella : tabellaDestinazione);
  if (righe) *righe = n.value_or(0);
  return n.has_value();
}

std::vector<EsitoTabellaModello> CaricaModello(Connessione& cn, const std::string& modello, IForm* form) {
  clsCaricaTabelleStandard carica;
  carica.ConnettiDatabaseOrigine(modello);
  carica.ConnettiDatabaseDestinazione(cn.shared_from_this());
  return carica.CaricaModelloCompleto(form);
}

}  // namespace vorn
