#include "interchange/clsExportVorn.h"

#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <unordered_map>

#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "frame/Db.h"
#include "frame/FileVorn.h"
#include "ledger/clsCausaliContabili.h"
#include "ledger/clsPianoConti.h"
#include "ledger/clsPrimaNota.h"
#include "masterdata/clsClientiFornitori.h"
#include "masterdata/clsCodiciIva.h"
#include "masterdata/clsValute.h"

namespace vorn {

const std::vector<DescrizioneArchivioVorn>& ArchiviVorn() {
  static const std::vector<DescrizioneArchivioVorn> v = {
      {ArchivioVorn::Valute, "valute", "valute.txt", "VornXP - Funzione Import Valute"},
      {ArchivioVorn::CodiciIva, "codici-iva", "codiciiva.txt", "VornXP - Funzione Import Codici IVA"},
      {ArchivioVorn::PianoConti, "piano-conti", "pianoconti.txt", "VornXP - Funzione Import Piano dei Conti"},
      {ArchivioVorn::Causali, "causali", "causali.txt", "VornXP - Funzione Import Causali Contabili"},
      {ArchivioVorn::Clienti, "clienti", "clienti.txt", "VornXP - Funzione Import Clienti/Fornitori"},
      {ArchivioVorn::Fornitori, "fornitori", "fornitori.txt", "VornXP - Funzione Import Clienti/Fornitori"},
      {ArchivioVorn::PrimaNota, "prima-nota", "primanota.txt", "VornXP - Funzione Import Prima Nota"},
  };
  return v;
}

const DescrizioneArchivioVorn& DescrizioneArchivio(ArchivioVorn a) {
  for (const auto& d : ArchiviVorn())
    if (d.archivio == a) return d;
  throw std::logic_error("archivio sconosciuto");
}

namespace {

// ---------------------------------------------------------------- the layouts

// A code map and its inverse on import.
struct Mappa {
  std::vector<std::pair<std::string, std::string>> fuori;
  std::string altroFuori;
  std::vector<std::pair<std::string, std::string>> dentro;
  std::string altroDentro;
  std::string Esporta(const std::string& v) const {
    for (const auto& [da, a] : fuori)
      if (v == da) return a;
    return altroFuori;
  }
  std::string Importa(const std::string& v) const {
    for (const auto& [da, a] : dentro)
      if (v == da) return a;
    return altroDentro;
  }
};

const Mappa kDareAvere{{{"D", "0"}, {"A", "1"}}, " ", {{"0", "D"}, {"1", "A"}}, " "};
const Mappa kIndicatore{{{"C", "1"}, {"F", "2"}}, "0", {{"1", "C"}, {"2", "F"}}, ""};
const Mappa kIndBilancio{{{"0", "1"}, {"1", "3"}, {"2", "2"}}, "0", {{"1", "0"}, {"3", "1"}, {"2", "2"}}, ""};
const Mappa kTipoRiga{{{"I", "1"}}, "0", {{"1", "I"}}, ""};
const Mappa kTipoCausale{{{"", "0"}, {"0", "1"}, {"1", "2"}, {"2", "3"}, {"3", "4"}, {"4", "5"}, {"5", "6"},
                          {"6", "7"}, {"7", "8"}, {"8", "9"}, {"9", "A"}},
                         " ",
                         {{"0", ""}, {"1", "0"}, {"2", "1"}, {"3", "2"}, {"4", "3"}, {"5", "4"}, {"6", "5"},
                          {"7", "6"}, {"8", "7"}, {"9", "8"}, {"A", "9"}},
                         " "};
const Mappa kSesso{{{"F", "1"}}, "0", {{"1", "F"}}, "M"};
const Mappa kObsoleto{{{"", "0"}, {"0", "0"}, {"False", "0"}, {"false", "0"}}, "1", {{"1", "1"}}, "0"};

enum class Forma {
  T,        // text left-aligned to the width
  N,        // right-aligned to the width; `intero` for a numeric column
  A,        // amount, point, two to four decimals, width 18
  P,        // percentage, four decimals, width 9
  X,        // exchange rate, six decimals, width 18
  D,        // yyyymmdd or eight blanks
  C,        // account of seven digits (width 7 when `larghezza` is 7)
  Lit,      // the literal `testo`; an empty literal is a filler
  Def,      // the column trimmed, `testo` when blank; no width
  M,        // through the map
  CodCF,    // a client's or supplier's code, width 6, prefix rule by the indicator column `ind`
  Lettera,  // "1" when position `pos` of the column holds `lettera`, else "0"
};

struct Campo {
  Forma forma;
  std::string colonna;  // empty: not read nor written; "@..." computed
  int larghezza = 0;
  std::string testo = {};
  const Mappa* mappa = nullptr;
  bool intero = false;
  bool zeroBianco = false;
  std::string ind = {};  // CodCF: the indicator column, or "C"/"F" fixed when it starts with '='
  int pos = 0;
  char lettera = 0;
};

Campo T(std::string c, int w) { return {Forma::T, std::move(c), w}; }
Campo N(std::string c, int w, bool intero = false) {
  Campo f{Forma::N, std::move(c), w};
  f.intero = intero;
  return f;
}
Campo A(std::string c) { return {Forma::A, std::move(c), 18}; }
Campo P(std::string c) { return {Forma::P, std::move(c), 9}; }
Campo X(std::string c) { return {Forma::X, std::move(c), 18}; }
Campo D(std::string c) { return {Forma::D, std::move(c), 8}; }
Campo C(std::string c, int w = 0) { return {Forma::C, std::move(c), w}; }
Campo L(std::string t) { return {Forma::Lit, "", 0, std::move(t)}; }
Campo Filler() { return L(""); }
Campo Bianchi(int n) { return L(std::string(static_cast<size_t>(n), ' ')); }
Campo Def(std::string c, std::string t = "0") { return {Forma::Def, std::move(c), 0, std::move(t)}; }
Campo M(std::string c, const Mappa& m) {
  Campo f{Forma::M, std::move(c)};
  f.mappa = &m;
  return f;
}
Campo CodCF(std::string c, std::string ind) {
  Campo f{Forma::CodCF, std::move(c), 6};
  f.ind = std::move(ind);
  return f;
}
Campo Lettera(int pos, char lettera) {
  Campo f{Forma::Lettera, "Stringa10indicatori"};
  f.pos = pos;
  f.lettera = lettera;
  return f;
}
void Ripeti(std::vector<Campo>& v, const Campo& c, int n) {
  for (int i = 0; i < n; ++i) v.push_back(c);
}

const std::vector<Campo>& TracciatoPianoConti() {
  static const std::vector<Campo> v = {C("@K"),
                                       L("@livello"),
                                       T("Descrizione", 30),
                                       A("SaldoInizialePeriodo"),
                                       A("SaldoDarePeriodo"),
                                       A("SaldoAverePeriodo"),
                                       A("SaldoInizialeProgr"),
                                       A("DareProgressivo"),
                                       A("AvereProgressivo"),
                                       M("IndDiBilancio", kIndBilancio),
                                       Def("SottocontoInBilancio")};
  return v;
}

const std::vector<Campo>& TracciatoCausali() {
  static const std::vector<Campo> v = [] {
    std::vector<Campo> c = {T("CodiceCausale", 3), T("DescrizioneCausale", 20)};
    for (int i = 1; i <= 9; ++i) c.push_back(T("Conto" + std::to_string(i), 4));
    c.push_back(Filler());
    c.push_back(T("TipoCausale", 1));
    c.push_back(T("TipoRegistroIva", 1));
    c.push_back(N("RegistroIVAProposto", 2));
    c.push_back(Filler());
    c.push_back(T("@SottocontoIva", 7));
    Ripeti(c, Filler(), 10);
    for (int i = 1; i <= 5; ++i) c.push_back(T("SottocontoDare" + std::to_string(i), 7));
    Ripeti(c, Filler(), 3);
    for (int i = 1; i <= 5; ++i) c.push_back(T("SottocontoAvere" + std::to_string(i), 7));
    Ripeti(c, Filler(), 3);
    c.push_back(T("OperativitaPartite", 1));
    c.push_back(T("OperativitaContabile", 1));
    Ripeti(c, L(" "), 2);
    c.push_back(Filler());
    c.push_back(T("FlagInsoluto", 1));
    Ripeti(c, Filler(), 2);
    c.push_back(T("SerieProposta", 6));
    c.push_back(T("Spostamento", 1));
    c.push_back(T("OperativitaIntra", 1));
    c.push_back(Filler());
    c.push_back(T("FlagDatiDocumento", 1));
    c.push_back(Filler());
    c.push_back(L("  "));
    Ripeti(c, Bianchi(20), 8);
    Ripeti(c, Filler(), 5);
    c.push_back(Def("OperativitaRitenute", ""));
    c.push_back(L("0"));
    c.push_back(T("TrasferitaMirk", 1));
    c.push_back(L("0"));
    c.push_back(N("PosContrClifor", 2, true));
    c.push_back(T("FlagNonUtilizzata", 1));
    c.push_back(T("IndQuadratura", 1));
    c.push_back(T("OperativitaCespiti", 1));
    Ripeti(c, L("0"), 2);
    return c;
  }();
  return v;
}

const std::vector<Campo>& TracciatoCodiciIva() {
  static const std::vector<Campo> v = [] {
    std::vector<Campo> c = {T("Codice Iva", 3), T("Descrizione Iva", 20), P("Aliquota"),
                            P("Percentuale indetraibilità"), Bianchi(5), Bianchi(5)};
    Ripeti(c, Filler(), 3);
    c.push_back(Def("Flag Monte Acquisti"));
    c.push_back(T("Codice IVA ventilare", 3));
    Ripeti(c, L(" "), 2);
    c.push_back(Def("Flag Fatture Esenti"));
    c.push_back(Def("Flag Articolo 8", ""));
    c.push_back(Filler());
    Ripeti(c, L("0"), 2);
    c.push_back(Def("Acquisto Intracomunitario"));
    Ripeti(c, Filler(), 3);
    c.push_back(L("0"));
    Ripeti(c, Filler(), 5);
    c.push_back(Def("Tipo allegato clifor"));
    Ripeti(c, L("0"), 2);
    return c;
  }();
  return v;
}

const std::vector<Campo>& TracciatoValute() {
  static const std::vector<Campo> v = {T("Codice valuta", 3), T("Descrizione valuta", 30), T("Simbolo valuta", 5),
                                       X("Cambio"),           D("Data cambio"),            L("0"),
                                       L("0"),                Def("Numero decimali valuta"), Def("Flag valuta EMU"),
                                       X("@Cambio"),          D("@Data cambio")};
  return v;
}

const std::vector<Campo>& TracciatoPrimaNota() {
  static const std::vector<Campo> v = [] {
    std::vector<Campo> c = {D("DataRegistrazione"),
                            N("NumeroRegistrazione", 5),
                            M("DareAvere", kDareAvere),
                            C("ContoPrimaNota", 7),
                            M("IndClienteFornitore", kIndicatore),
                            CodCF("CodClienteFornitore", "IndClienteFornitore"),
                            D("DataCompetenza"),
                            Def("TipoRegistroIva"),
                            N("NumRegistroIva", 2),
                            N("NumeroDiProtocollo", 5, true),
                            D("DataDocumento"),
                            T("SerieDocumento", 6),
                            T("NumeroDocumento", 12),
                            T("CodiceCausale", 3),
                            L("@TipoCausale"),
                            L(" "),
                            T("DescrizioneSupplem", 25),
                            A("ImportoMovimento"),
                            A("Imponibile"),
                            T("CodiceIva", 3),
                            L("0"),
                            C("ContropIvaIndeduc", 7),
                            M("IndicatoreCliFor", kIndicatore),
                            CodCF("CodiceCliFor", "IndicatoreCliFor"),
                            A("TotaleDocumento"),
                            N("RegIvaCorrMonteAcq", 2),
                            N("RigaLibroGiornale", 6, true),
                            Lettera(1, 'R'),
                            Lettera(2, 'G'),
                            Lettera(3, 'S')};
    Ripeti(c, Filler(), 6);
    for (auto f : {T("Valuta", 3), A("ImportoInValuta"), X("Cambio"), D("DataDelCambio"),
                   M("TipoRigaIvaNormale", kTipoRiga), N("NumRigaAVideo", 3), D("DataCompetenzaIVA"),
                   N("KeyScadenze", 10, true), A("TotaleDocumentoVal"), A("ImponibileValuta"), L("0"), L("20020101")})
      c.push_back(f);
    return c;
  }();
  return v;
}

const std::vector<Campo>& TracciatoCliFor() {
  static const std::vector<Campo> v = [] {
    std::vector<Campo> c = {CodCF("Codice Cliente", "@ind"), L("0"), T("Ragione Sociale", 40), T("Nome", 20),
                            T("Cognome", 20), T("Partita Iva", 16), T("Codice Fiscale", 16), T("Indirizzo", 35),
                            T("Cap", 5), T("Località", 25), T("Provincia", 3), T("Codice Nazione", 3),
                            Filler(), Filler(), Bianchi(18), Bianchi(18), Filler(),
                            // the second address, which this system does not keep
                            Bianchi(35), Bianchi(5), Bianchi(25), Bianchi(3), Bianchi(3), Filler(), Filler(),
                            T("Telefono", 18), T("Fax", 18), Filler(), D("Data nascita"), T("Località nascita", 30),
                            T("Provincia nascita", 3), T("Persona Fisica", 1), M("Sesso", kSesso), T("Contatto", 35),
                            T("Codice selezione", 4), M("Obsoleto", kObsoleto), Filler(), Filler(), L("0"), L("0"),
                            N("Codice valuta", 2), Filler(), Bianchi(30), Bianchi(30), Bianchi(20), Bianchi(20),
                            Filler()};
    Ripeti(c, L(" "), 4);
    Ripeti(c, L("              0.00"), 4);
    c.push_back(Filler());
    Ripeti(c, L(" "), 4);
    Ripeti(c, L("0"), 2);
    c.push_back(T("SottocontoApparten", 7));
    c.push_back(Bianchi(6));
    Ripeti(c, L("0"), 2);
    c.push_back(Filler());
    c.push_back(A("Fido"));
    c.push_back(Filler());
    for (const char* s : {"SaldoInizPeriodo", "SaldoDarePeriodo", "SaldoAverePeriodo", "SaldoInizProgress",
                          "SaldoDareProgress", "SaldoAvereProgress"})
      c.push_back(A(s));
    for (auto f : {T("Codice Iva", 3), T("Numero Esenzione", 8), D("Data Esenzione"), T("Protocollo Esenzione", 8),
                   T("Cod agente", 6), T("Codice Pagamento", 3), N("Codice Banca", 5), N("Codice Agenzia", 5),
                   T("Codice zona", 3), T("Codice sottozona", 3), N("Cod Mezzo", 3), Filler(), T("Cod Vettore", 6),
                   T("Cod Porto", 3), T("Numero Listino", 2), P("Sconto %"), P("Sconto2 %"),
                   Def("Fattura riepilogativa"), Filler(), L("0"), L("0"), T("Scaglione provvigioni", 1)})
      c.push_back(f);
    for (const char* s : {"1 Mese Escluso", "2 Mese Escluso", "Scadenza al"}) {
      Campo f = N(s, 2, true);
      f.zeroBianco = true;
      c.push_back(f);
    }
    Ripeti(c, Filler(), 2);
    for (auto f : {Def("Stampa prezzi in DDT"), Def("Addebito bolli in fattura"), Def("Addebito spese incasso"),
                   L("0"), Filler(), N("Cod Aspetto Beni", 3), L(" 0"), Def("Scorporo iva")})
      c.push_back(f);
    Ripeti(c, Filler(), 4);
    c.push_back(Def("Proposta ultimi prezzi"));
    Ripeti(c, Filler(), 3);
    c.push_back(T("ContrCostoRic", 7));
    Ripeti(c, Filler(), 2);
    for (auto f : {T("Numero C/C", 20), Bianchi(5), Bianchi(5), Bianchi(7), T("Codice Banca Azienda", 5),
                   T("Codice Agenzia Azienda", 5), L("0"), L("0   "), L("0"), Def("Gestione ultimi prezzi"), L("0"),
                   L("0"), Bianchi(6), Filler(), T("E-mail", 40), T("Sito Web", 60), T("Cellulare", 18), L("0"),
                   L("0"), Def("Autorizzazione trattamento dati"), T("IBAN", 4), T("BBAN", 30), L("0       "),
                   L("0"), L("0"), L("0"), L("0    "), T("Tipo soggetto allegati", 1)})
      c.push_back(f);
    return c;
  }();
  return v;
}

const std::vector<Campo>& Tracciato(ArchivioVorn a) {
  switch (a) {
    case ArchivioVorn::PianoConti: return TracciatoPianoConti();
    case ArchivioVorn::Causali: return TracciatoCausali();
    case ArchivioVorn::CodiciIva: return TracciatoCodiciIva();
    case ArchivioVorn::Valute: return TracciatoValute();
    case ArchivioVorn::PrimaNota: return TracciatoPrimaNota();
    default: return TracciatoCliFor();
  }
}

// ---------------------------------------------------------------- text checks

// True when the text is well-formed UTF-8.
bool Utf8Valido(std::string_view s) {
  size_t i = 0;
  while (i < s.size()) {
    auto c = static_cast<unsigned char>(s[i]);
    size_t n;
    if (c < 0x80) n = 0;
    else if (c >= 0xC2 && c <= 0xDF) n = 1;
    else if ((c >> 4) == 0xE) n = 2;
    else if (c >= 0xF0 && c <= 0xF4) n = 3;
    else return false;
    if (i + n >= s.size() && n) return false;
    for (size_t k = 1; k <= n; ++k)
      if ((static_cast<unsigned char>(s[i + k]) >> 6) != 2) return false;
    i += n + 1;
  }
  return true;
}

bool SoloCifre(std::string_view s) {
  if (s.empty()) return false;
  for (char c : s)
    if (c < '0' || c > '9') return false;
  return true;
}

// A signed decimal with a point and `minimo`..`massimo` decimals.
bool NumeroPunto(std::string_view s, int minimo, int massimo) {
  if (!s.empty() && s[0] == '-') s.remove_prefix(1);
  auto p = s.find('.');
  if (p == std::string_view::npos) return false;
  auto interi = s.substr(0, p), dec = s.substr(p + 1);
  return SoloCifre(interi) && SoloCifre(dec) && static_cast<int>(dec.size()) >= minimo &&
         static_cast<int>(dec.size()) <= massimo;
}

// The fields of a line split at the separator.
void Dividi(const std::string& riga, char sep, std::vector<std::string>& campi) {
  campi.clear();
  size_t inizio = 0;
  for (;;) {
    size_t p = riga.find(sep, inizio);
    if (p == std::string::npos) {
      campi.emplace_back(riga, inizio);
      return;
    }
    campi.emplace_back(riga, inizio, p - inizio);
    inizio = p + 1;
  }
}

// A line of a file that cannot be imported.
class RigaErrata : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

std::string NomeCampo(const Campo& c, size_t n) {
  std::string nome = c.colonna.empty() || c.colonna[0] == '@' ? std::string() : " (" + c.colonna + ")";
  return "campo " + std::to_string(n + 1) + nome;
}

std::string Prefisso(const std::string& ind, const std::string& cli, const std::string& forn) {
  return ind == "C" ? cli : ind == "F" ? forn : std::string();
}

// The code with the prefix in place of as many leading characters.
std::string ConPrefisso(const std::string& codice, const std::string& prefisso) {
  if (prefisso.empty()) return codice;
  return prefisso + (codice.size() > prefisso.size() ? codice.substr(prefisso.size()) : std::string());
}

// ---------------------------------------------------------------- export

struct Esportatore {
  const std::vector<Campo>& campi;
  char sep;
  std::string prefCli, prefFor;
  std::vector<int> indice = {};  // the column of each field in the row, -1 for none
  std::unordered_map<std::string, int> colonne = {};
  std::function<Valore(const std::string&, const std::vector<Valore>&)> calcola = {};

  void Prepara(const std::vector<Colonna>& cols) {
    if (!indice.empty()) return;
    // Matched without regard to case, as the engines' column names are.
    for (size_t i = 0; i < cols.size(); ++i) colonne.emplace(LCase(cols[i].nome), static_cast<int>(i));
    for (const auto& c : campi) {
      auto it = colonne.find(LCase(c.colonna));
      indice.push_back(it == colonne.end() ? -1 : it->second);
    }
  }
  Valore Val(const std::string& nome, const std::vector<Valore>& r) const {
    auto it = colonne.find(LCase(nome));
    return it == colonne.end() ? Valore::Null() : r[static_cast<size_t>(it->second)];
  }

  std::string Riga(const std::vector<Valore>& r) const {
    std::string out;
    for (size_t i = 0; i < campi.size(); ++i) {
      const Campo& c = campi[i];
      Valore v = indice[i] >= 0 ? r[static_cast<size_t>(indice[i])]
                                : (!c.colonna.empty() && c.colonna[0] == '@' && calcola ? calcola(c.colonna, r)
                                                                                         : Valore::Null());
      std::string t;
      switch (c.forma) {
        case Forma::T: t = PadSinistra(v, c.larghezza); break;
        case Forma::N:
          if (c.zeroBianco && NullToZeroLng(v) == 0) v = Valore("");
          // A number is never cut: the outside program would read another one.
          if (static_cast<int>(LunghezzaTesto(v.TestoTrim())) > c.larghezza)
            throw RigaErrata(NomeCampo(c, i) + ": il valore " + v.TestoTrim() + " non sta in " +
                             std::to_string(c.larghezza) + " caratteri");
          t = PadDestra(v, c.larghezza);
          break;
        case Forma::A: t = FormatoPunto4(Valore(NullToZeroCy(v)), 1); break;
        case Forma::P: t = PadDestra(Valore(FormatoPunto4Cifre(Valore(NullToZeroCy(v)))), 9); break;
        case Forma::X: t = PadDestra(Valore(FormatoPunto6Cifre(Valore(NullToZeroDbl(v)))), 18); break;
        case Forma::D: t = PadSinistra(Valore(DataCompatta(v)), 8); break;
        case Forma::C: {
          std::string k = v.TestoTrim().empty() ? std::string() : ContoSetteCifre(v);
          t = c.larghezza ? PadDestra(Valore(k), c.larghezza) : k;
          break;
        }
        case Forma::Lit:
          t = c.testo.size() > 1 && c.testo[0] == '@' && calcola ? calcola(c.testo, r).Testo() : c.testo;
          break;
        case Forma::Def: t = v.TestoTrim().empty() ? c.testo : v.TestoTrim(); break;
        case Forma::M: t = c.mappa->Esporta(v.TestoTrim()); break;
        case Forma::CodCF: {
          std::string ind = c.ind[0] == '@' ? calcola(c.ind, r).Testo() : Val(c.ind, r).TestoTrim();
          std::string codice = v.TestoTrim();
          if (!codice.empty()) codice = ConPrefisso(codice, Prefisso(ind, prefCli, prefFor));
          t = PadDestra(Valore(codice), 6);
          break;
        }
        case Forma::Lettera: {
          std::string s = v.Testo();
          t = s.size() >= static_cast<size_t>(c.pos) && s[static_cast<size_t>(c.pos - 1)] == c.lettera ? "1" : "0";
          break;
        }
      }
      if (t.find(sep) != std::string::npos || t.find('\n') != std::string::npos ||
          t.find('\r') != std::string::npos)
        throw RigaErrata(NomeCampo(c, i) + ": il valore \"" + Trim(t) +
                         "\" contiene il separatore o un a capo e non può essere esportato");
      if (i) out += sep;
      out += t;
    }
    return out;
  }
};

// True when the first line of the file has the fields of the layout: an export of the archive.
RiconosciFile RiconosciExport(const std::vector<Campo>& campi, char sep) {
  return [&campi, sep](const std::string& percorso) {
    std::ifstream f(percorso, std::ios::binary);
    std::string riga;
    if (!std::getline(f, riga)) return false;
    if (!riga.empty() && riga.back() == '\r') riga.pop_back();
    if (!Utf8Valido(riga)) return false;
    std::vector<std::string> v;
    Dividi(riga, sep, v);
    return v.size() == campi.size();
  };
}

// ---------------------------------------------------------------- import

// One line turned back into named values; `codice` is what the progress shows.
struct RigaImport {
  RecordValori valori;
  std::string stringa;  // the three letters of Stringa10indicatori
};

struct Lettore {
  const std::vector<Campo>& campi;
  char sep;
  std::string prefCli, prefFor;
  std::string ind;  // the fixed indicator of a clients' or suppliers' file
  std::vector<std::string> testi = {};

  // Throws RigaErrata naming the field.
  void Leggi(const std::string& riga, RigaImport& out) {
    Dividi(riga, sep, testi);
    out.valori.clear();
    out.stringa = "   ";
    if (testi.size() != campi.size()) {
      if (testi.size() < campi.size())
        throw RigaErrata(NomeCampo(campi[testi.size()], testi.size()) + " mancante: la riga ha " +
                         std::to_string(testi.size()) + " campi invece di " + std::to_string(campi.size()));
      throw RigaErrata("la riga ha " + std::to_string(testi.size()) + " campi invece di " +
                       std::to_string(campi.size()));
    }
    for (size_t i = 0; i < campi.size(); ++i) {
      const Campo& c = campi[i];
      const std::string& s = testi[i];
      auto errore = [&](const std::string& motivo) {
        return RigaErrata(NomeCampo(c, i) + ": " + motivo + " (\"" + s + "\")");
      };
      if (c.larghezza && c.forma != Forma::Lit && static_cast<int>(LunghezzaTesto(s)) != c.larghezza)
        throw errore("larghezza " + std::to_string(LunghezzaTesto(s)) + " invece di " +
                     std::to_string(c.larghezza));
      const std::string t = Trim(s);
      Valore v;
      switch (c.forma) {
        case Forma::T: v = Valore(t); break;
        case Forma::N:
          if (c.intero) {
            if (t.empty()) v = Valore::Null();
            else if (SoloCifre(t)) v = Valore(static_cast<long long>(std::strtoll(t.c_str(), nullptr, 10)));
            else throw errore("non è un numero");
          } else {
            v = Valore(t);
          }
          break;
        case Forma::A:
        case Forma::P:
          if (!NumeroPunto(t, c.forma == Forma::A ? 2 : 4, 4))
            throw errore(c.forma == Forma::A ? "importo non valido" : "percentuale non valida");
          v = Valore(*Importo::DaTestoPunto(t));
          break;
        case Forma::X:
          if (!NumeroPunto(t, 6, 6)) throw errore("cambio non valido");
          v = Valore(std::strtod(t.c_str(), nullptr));
          break;
        case Forma::D:
          if (t.empty() || t == "00000000") {
            v = Valore::Null();
          } else {
            auto d = SoloCifre(t) && t.size() == 8
                         ? Data::Crea(std::atoi(t.substr(0, 4).c_str()), std::atoi(t.substr(4, 2).c_str()),
                                      std::atoi(t.substr(6, 2).c_str()))
                         : std::nullopt;
            if (!d) throw errore("data non valida (AAAAMMGG)");
            v = Valore(*d);
          }
          break;
        case Forma::C:
          if (t.empty() && c.larghezza) v = Valore("");
          else if (t.size() == 7 && SoloCifre(t)) v = Valore(t);
          else throw errore("codice conto non valido (sette cifre)");
          break;
        case Forma::Lit: continue;
        case Forma::Def: v = Valore(t); break;
        case Forma::M: v = Valore(c.mappa->Importa(t)); break;
        case Forma::CodCF: {
          std::string indicatore = ind;
          if (c.ind[0] != '@') {
            auto it = out.valori.find(c.ind);
            indicatore = it == out.valori.end() ? std::string() : it->second.TestoTrim();
          }
          std::string pref = Prefisso(indicatore, prefCli, prefFor);
          v = Valore(t.empty() || pref.empty() ? t : ConPrefisso(t, pref));
          break;
        }
        case Forma::Lettera:
          if (t != "0" && t != "1") throw errore("atteso 0 o 1");
          if (t == "1") out.stringa[static_cast<size_t>(c.pos - 1)] = c.lettera;
          continue;
      }
      if (!c.colonna.empty()) out.valori[c.colonna] = v;
    }
  }
};

// A file that is not UTF-8 text.
class CodificaErrata : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The lines of a file, UTF-8 checked (a byte-order mark is skipped); throws CodificaErrata.
class FileImport {
 public:
  explicit FileImport(const std::string& percorso) : f_(percorso, std::ios::binary) {}
  bool Aperto() const { return static_cast<bool>(f_); }
  bool Prossima(std::string& riga) {
    if (!std::getline(f_, riga)) return false;
    ++n_;
    if (n_ == 1 && riga.compare(0, 3, "\xEF\xBB\xBF") == 0) riga.erase(0, 3);
    if (!riga.empty() && riga.back() == '\r') riga.pop_back();
    if (!Utf8Valido(riga))
      throw CodificaErrata("il file non è un testo UTF-8 (riga " + std::to_string(n_) +
                       "): va salvato in UTF-8 prima di importarlo");
    return true;
  }
  long Numero() const { return n_; }

 private:
  std::ifstream f_;
  long n_ = 0;
};


}  // namespace

// ---------------------------------------------------------------- the class

namespace {

// What an import needs besides the file: the prefixes and the fixed indicator.
struct ParametriImport {
  ArchivioVorn archivio;
  std::string file;
  char sep;
  std::string prefCli, prefFor;
  Valore clientID;
  long hWnd = 0;
  // The user has agreed to write into the archive (or was not to be asked): the saves do not
  // ask again, row by row, about rows read by someone else.
  bool senzaDomande = false;
};

// The accounts (seven characters) and causals a journal may name: the company's and those of
// the files imported in the same run.
struct Riferimenti {
  std::set<std::string> conti, causali;
  bool caricati = false;
};

std::string Conto7(const Valore& g, const Valore& c, const Valore& s) {
  return g.TestoTrim() + c.TestoTrim() + s.TestoTrim();
}

void CaricaRiferimenti(Connessione& cn, Riferimenti& r) {
  if (r.caricati) return;
  r.caricati = true;
  cn.Scorri("SELECT [Gruppo], [Conto], [Sottoconto] FROM [Piano Dei Conti]", {},
            [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
              r.conti.insert(Conto7(v[0], v[1], v[2]));
              return true;
            });
  cn.Scorri("SELECT [CodiceCausale] FROM [Causali Contabili]", {},
            [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
              r.causali.insert(v[0].TestoTrim());
              return true;
            });
}

// The error of one line, as the message shows it.
std::string MessaggioRiga(const std::string& file, long riga, const std::string& motivo) {
  return "File " + file + ", riga " + std::to_string(riga) + ": " + motivo + ".";
}

std::string MessaggioImport(ArchivioVorn a) {
  switch (a) {
    case ArchivioVorn::PianoConti: return "Import sottoconto: ";
    case ArchivioVorn::Causali: return "Import causale contabile: ";
    case ArchivioVorn::CodiciIva: return "Import codice IVA: ";
    case ArchivioVorn::Valute: return "Import valuta: ";
    case ArchivioVorn::PrimaNota: return "Import prima nota, registrazione numero: ";
    default: return "Import cliente/fornitore: ";
  }
}

std::string TabellaArchivio(ArchivioVorn a) {
  switch (a) {
    case ArchivioVorn::PianoConti: return "Piano Dei Conti";
    case ArchivioVorn::Causali: return "Causali Contabili";
    case ArchivioVorn::CodiciIva: return "Codici Iva";
    case ArchivioVorn::Valute: return "Valute";
    case ArchivioVorn::PrimaNota: return "Prima Nota";
    case ArchivioVorn::Clienti: return "Anagrafica Clienti";
    default: return "Anagrafica Fornitori";
  }
}

// A user's refusal of a prompt: the import stops, nothing written.
class Rinuncia : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The columns of `r` among `colonne`.
RecordValori Scegli(const RecordValori& r, const std::vector<std::string>& colonne) {
  RecordValori out;
  for (const auto& c : colonne) {
    for (const auto& [nome, v] : r)
      if (LCase(nome) == LCase(c)) out[nome] = v;
  }
  return out;
}

// Checks one file: every line read, the references of a journal found. Throws RigaErrata with
// the whole message. Returns the lines; `conti` and `causali` take what a chart or a causals'
// file brings.
long VerificaFile(Connessione& cn, const ParametriImport& p, Riferimenti& rif) {
  if (!EsisteFile(p.file)) throw RigaErrata("Impossibile trovare il file " + p.file + ".");
  FileImport f(p.file);
  Lettore l{Tracciato(p.archivio), p.sep, p.prefCli, p.prefFor,
            p.archivio == ArchivioVorn::Clienti ? "C" : p.archivio == ArchivioVorn::Fornitori ? "F" : ""};
  if (p.archivio == ArchivioVorn::PrimaNota) CaricaRiferimenti(cn, rif);
  std::string riga;
  RigaImport r;
  long n = 0;
  try {
    while (f.Prossima(riga)) {
      l.Leggi(riga, r);
      ++n;
      auto testo = [&](const char* c) { return r.valori[c].TestoTrim(); };
      switch (p.archivio) {
        case ArchivioVorn::PianoConti: rif.conti.insert(testo("@K")); break;
        case ArchivioVorn::Causali:
          if (testo("CodiceCausale").empty()) throw RigaErrata("campo 1 (CodiceCausale): codice vuoto");
          rif.causali.insert(testo("CodiceCausale"));
          break;
        case ArchivioVorn::PrimaNota:
          if (!rif.conti.count(testo("ContoPrimaNota")))
            throw RigaErrata("campo 4 (ContoPrimaNota): sottoconto " + testo("ContoPrimaNota") +
                             " inesistente nel piano dei conti");
          if (!testo("ContropIvaIndeduc").empty() && !rif.conti.count(testo("ContropIvaIndeduc")))
            throw RigaErrata("campo 22 (ContropIvaIndeduc): sottoconto " + testo("ContropIvaIndeduc") +
                             " inesistente nel piano dei conti");
          if (!testo("CodiceCausale").empty() && !rif.causali.count(testo("CodiceCausale")))
            throw RigaErrata("campo 14 (CodiceCausale): causale " + testo("CodiceCausale") + " inesistente");
          if (testo("NumeroRegistrazione").empty() || !SoloCifre(testo("NumeroRegistrazione")))
            throw RigaErrata("campo 2 (NumeroRegistrazione): numero di registrazione non valido");
          if (r.valori["DataRegistrazione"].IsNull())
            throw RigaErrata("campo 1 (DataRegistrazione): data mancante");
          break;
        default:
          if (testo(p.archivio == ArchivioVorn::Valute       ? "Codice valuta"
                    : p.archivio == ArchivioVorn::CodiciIva ? "Codice Iva"
                                                             : "Codice Cliente")
                  .empty())
            throw RigaErrata("campo 1: codice vuoto");
          break;
      }
    }
  } catch (const CodificaErrata& e) {
    throw RigaErrata("File " + p.file + ": " + e.what() + ".");
  } catch (const RigaErrata& e) {
    throw RigaErrata(MessaggioRiga(p.file, f.Numero(), e.what()));
  }
  return n;
}

// Writes one checked file through the archive's class; the caller holds the transaction.
int64_t ScriviFile(Connessione& cn, const ParametriImport& p, IForm* form) {
  auto cnp = cn.shared_from_this();
  FileImport f(p.file);
  Lettore l{Tracciato(p.archivio), p.sep, p.prefCli, p.prefFor,
            p.archivio == ArchivioVorn::Clienti ? "C" : p.archivio == ArchivioVorn::Fornitori ? "F" : ""};
  const std::string msg = MessaggioImport(p.archivio);
  std::string riga;
  RigaImport r;
  int64_t n = 0;
  bool cancel = false;
  auto esito = [&](bool ok) {
    if (cancel) throw Rinuncia("Importazione annullata: il record è stato variato da un altro utente.");
    if (!ok) throw RigaErrata(MessaggioRiga(p.file, f.Numero(), "il record non è stato salvato"));
  };

  clsPianoConti pc;
  pc.cn = cnp;
  clsCausaliContabili cc;
  cc.cn = cnp;
  clsCodiciIva ci;
  ci.cn = cnp;
  clsValute va;
  va.cn = cnp;
  clsClientiFornitori cf;
  cf.cn = cnp;
  clsPrimaNota pn;
  pn.cn = cnp;
  pn.UnitaRecuperabili = false;
  std::string numeroFile, numeroNuovo;

  while (f.Prossima(riga)) {
    l.Leggi(riga, r);
    ++n;
    auto& v = r.valori;
    switch (p.archivio) {
      case ArchivioVorn::PianoConti: {
        std::string k = v["@K"].TestoTrim();
        int livello = k.substr(2) == "00000" ? 1 : k.substr(4) == "000" ? 2 : 3;
        Valore g(k.substr(0, 2)), c(livello > 1 ? k.substr(2, 2) : ""), s(livello > 2 ? k.substr(4) : "");
        if (form) form->msgbar(msg + k);
        RecordValori campi{{"Descrizione", v["Descrizione"]},
                           {"IndDiBilancio", v["IndDiBilancio"]},
                           {"SottocontoInBilancio", v["SottocontoInBilancio"]}};
        esito(pc.SalvaRecord(g, c, s, campi, p.clientID, p.hWnd, cancel, p.senzaDomande));
        break;
      }
      case ArchivioVorn::Causali: {
        Valore codice = v["CodiceCausale"];
        if (form) form->msgbar(msg + codice.TestoTrim());
        esito(cc.SalvaRecord(codice, Scegli(v, clsCausaliContabili::ColonneSalvaRecord()), p.clientID, p.hWnd,
                             cancel, p.senzaDomande));
        // The proposals beyond the fifth are not in the file: those of the company stay.
        Valore dare[11], avere[11];
        Recordset rs = cn.Execute("SELECT * FROM [Causali Contabili] WHERE [CodiceCausale] = ?",
                                  {Valore(codice.TestoTrim())});
        for (int i = 1; i <= 10; ++i) {
          const std::string d = "SottocontoDare" + std::to_string(i), a = "SottocontoAvere" + std::to_string(i);
          dare[i] = i <= 5 ? v[d] : rs.Eof() ? Valore::Null() : rs(d).Value();
          avere[i] = i <= 5 ? v[a] : rs.Eof() ? Valore::Null() : rs(a).Value();
        }
        rs.Close();
        esito(cc.SalvaRecordSottocontiProposti(codice, dare, avere, p.clientID, p.hWnd, cancel, p.senzaDomande));
        break;
      }
      case ArchivioVorn::CodiciIva: {
        Valore codice = v["Codice Iva"];
        if (form) form->msgbar(msg + codice.TestoTrim());
        v.erase("Codice Iva");
        esito(ci.SalvaRecord(codice, v, p.clientID, p.hWnd, cancel, p.senzaDomande));
        break;
      }
      case ArchivioVorn::Valute: {
        Valore codice = v["Codice valuta"];
        if (form) form->msgbar(msg + codice.TestoTrim());
        esito(va.SalvaRecord(codice, v["Descrizione valuta"], v["Simbolo valuta"], v["Cambio"],
                             v["Numero decimali valuta"], v["Flag valuta EMU"], v["Data cambio"], p.clientID,
                             p.hWnd, cancel, p.senzaDomande));
        break;
      }
      case ArchivioVorn::Clienti:
      case ArchivioVorn::Fornitori: {
        Valore ind(p.archivio == ArchivioVorn::Clienti ? "C" : "F");
        Valore codice = v["Codice Cliente"];
        if (form) form->msgbar(msg + codice.TestoTrim());
        // The balances follow the journal: the file's are not written.
        esito(cf.SalvaRecord(ind, codice, Scegli(v, clsClientiFornitori::ColonneSalvaRecord()), p.clientID, p.hWnd,
                             cancel, p.senzaDomande));
        esito(cf.SalvaRecordDatiAnagrafici(ind, codice, Scegli(v, clsClientiFornitori::ColonneDatiAnagrafici()),
                                           p.clientID, p.hWnd, cancel, p.senzaDomande));
        esito(cf.SalvaRecordDatiTrasporto(ind, codice, Scegli(v, clsClientiFornitori::ColonneDatiTrasporto()),
                                          p.clientID, p.hWnd, cancel, p.senzaDomande));
        break;
      }
      case ArchivioVorn::PrimaNota: {
        // A number already in use takes a new one, and so do the rows after it with the same
        // number in the file.
        std::string numero = Format(v["NumeroRegistrazione"], "00000");
        if (numero != numeroFile) {
          numeroFile = numero;
          numeroNuovo = pn.ExistRegistrazione(Valore(numero))
                            ? Format(Valore(pn.GetNumeroNuovaRegistrazionePrimaNota()), "00000")
                            : numero;
          if (form) form->msgbar(msg + numeroNuovo);
        }
        v["NumeroRegistrazione"] = Valore(numeroNuovo);
        v["Stringa10indicatori"] = Valore(r.stringa + std::string(7, ' '));
        esito(pn.SalvaRecord(v, p.clientID, p.hWnd, cancel));
        break;
      }
    }
  }
  return n;
}

// Asks before writing into an archive that holds rows; false when the user says no.
bool ConfermaArchivio(Connessione& cn, ArchivioVorn a, const std::string& file) {
  const std::string tabella = TabellaArchivio(a);
  if (cn.Scalare("SELECT COUNT(*) FROM [" + tabella + "]").IsNull() ||
      NullToZeroLng(cn.Scalare("SELECT COUNT(*) FROM [" + tabella + "]")) == 0)
    return true;
  std::string testo =
      a == ArchivioVorn::PrimaNota
          ? "La prima nota dell'azienda contiene già delle registrazioni: quelle del file " + file +
                " vi saranno aggiunte (un numero già usato ne prende uno nuovo)."
          : "L'archivio " + tabella + " dell'azienda contiene già dei dati: i codici presenti anche nel file " +
                file + " saranno sovrascritti.";
  Host().Beep();
  return Host().MsgBox(testo + "\rSi desidera proseguire con l'importazione?", vbYesNo + vbQuestion,
                       DescrizioneArchivio(a).titolo) == vbYes;
}

std::string MessaggioExport(ArchivioVorn a) {
  switch (a) {
    case ArchivioVorn::PianoConti: return "Export sottoconto: ";
    case ArchivioVorn::Causali: return "Export causale contabile: ";
    case ArchivioVorn::CodiciIva: return "Export codice IVA: ";
    case ArchivioVorn::Valute: return "Export Valuta: ";
    case ArchivioVorn::PrimaNota: return "Export prima nota registrazione n.: ";
    default: return "Export Cli/For: ";
  }
}

}  // namespace

namespace {

// Writes the file of one archive. Throws ErroreStampa, RigaErrata or ErroreDb.
void EseguiExport(Connessione& cn, ArchivioVorn a, IForm* form, const std::string& nomeFile, char sep,
                  const std::string& prefCli, const std::string& prefFor) {
  const auto& campi = Tracciato(a);
  Esportatore e{campi, sep, prefCli, prefFor};
  std::string sql, chiave;
  std::map<std::string, std::string> tipiCausale;
  clsTabRiferimenti rif;
  rif.cn = cn.shared_from_this();
  switch (a) {
    case ArchivioVorn::PianoConti:
      sql = "SELECT [Piano Dei Conti].[Gruppo], [Piano Dei Conti].[Conto], [Piano Dei Conti].[Sottoconto], "
            "[Piano Dei Conti].[Descrizione], [Piano Dei Conti].[IndDiBilancio], "
            "[Piano Dei Conti].[SottocontoInBilancio], [SaldoInizialePeriodo], [SaldoDarePeriodo], "
            "[SaldoAverePeriodo], [SaldoInizialeProgr], [DareProgressivo], [AvereProgressivo] "
            "FROM [Piano Dei Conti] LEFT JOIN [Saldi Piano Dei Conti] ON "
            "COALESCE([Piano Dei Conti].[Gruppo], '') = COALESCE([Saldi Piano Dei Conti].[CodiceGruppo], '') AND "
            "COALESCE([Piano Dei Conti].[Conto], '') = COALESCE([Saldi Piano Dei Conti].[CodiceConto], '') AND "
            "COALESCE([Piano Dei Conti].[Sottoconto], '') = COALESCE([Saldi Piano Dei Conti].[CodiceSottoconto], '') "
            "ORDER BY COALESCE([Piano Dei Conti].[Gruppo], ''), COALESCE([Piano Dei Conti].[Conto], ''), "
            "COALESCE([Piano Dei Conti].[Sottoconto], ''), [Piano Dei Conti].[Descrizione]";
      e.calcola = [&e](const std::string& c, const std::vector<Valore>& r) {
        Valore k(Conto7(e.Val("Gruppo", r), e.Val("Conto", r), e.Val("Sottoconto", r)));
        return c == "@K" ? Valore(ContoSetteCifre(k)) : Valore(std::to_string(LivelloConto(k)));
      };
      chiave = "@K";
      break;
    case ArchivioVorn::Causali:
      sql = "SELECT * FROM [Causali Contabili] ORDER BY [CodiceCausale]";
      e.calcola = [&e, &rif](const std::string&, const std::vector<Valore>& r) {
        std::string conto, lato;
        rif.GetSottocontoIvaCausale(e.Val("TipoRegistroIva", r), e.Val("TipoCausale", r), conto, lato);
        return Valore(conto);
      };
      chiave = "CodiceCausale";
      break;
    case ArchivioVorn::CodiciIva:
      sql = "SELECT * FROM [Codici Iva] ORDER BY [Codice Iva]";
      chiave = "Codice Iva";
      break;
    case ArchivioVorn::Valute:
      sql = "SELECT * FROM [Valute] ORDER BY [Codice valuta]";
      e.calcola = [&e](const std::string& c, const std::vector<Valore>& r) { return e.Val(c.substr(1), r); };
      chiave = "Codice valuta";
      break;
    case ArchivioVorn::PrimaNota:
      // A blank key part is null or empty text: both sort first on either engine.
      sql = "SELECT * FROM [Prima Nota] ORDER BY [NumeroRegistrazione], COALESCE([TipoRigaIvaNormale], ''), "
            "COALESCE([NumRigaAVideo], ''), COALESCE([DareAvere], '')";
      e.calcola = [&e, &cn, &tipiCausale](const std::string&, const std::vector<Valore>& r) {
        std::string causale = e.Val("CodiceCausale", r).TestoTrim();
        auto it = tipiCausale.find(causale);
        if (it == tipiCausale.end()) {
          Valore t = cn.Scalare("SELECT [TipoCausale] FROM [Causali Contabili] WHERE [CodiceCausale] = ?",
                                {Valore(causale)});
          it = tipiCausale.emplace(causale, kTipoCausale.Esporta(t.TestoTrim())).first;
        }
        return Valore(it->second);
      };
      chiave = "NumeroRegistrazione";
      break;
    case ArchivioVorn::Clienti:
    case ArchivioVorn::Fornitori: {
      const std::string ind = a == ArchivioVorn::Clienti ? "C" : "F";
      sql = "SELECT * FROM [" + TabellaArchivio(a) + "] ORDER BY [Codice Cliente]";
      e.calcola = [ind](const std::string&, const std::vector<Valore>&) { return Valore(ind); };
      chiave = "Codice Cliente";
      break;
    }
  }
  FileStampa out(nomeFile, RiconosciExport(campi, sep), "un file di esportazione di questo archivio");
  const std::string msg = MessaggioExport(a);
  std::string ultimo;
  long riga = 0;
  cn.Scorri(sql, {}, [&](const std::vector<Colonna>& cols, const std::vector<Valore>& r) {
    e.Prepara(cols);
    ++riga;
    std::string codice = chiave[0] == '@' ? e.calcola(chiave, r).Testo() : e.Val(chiave, r).TestoTrim();
    if (form && codice != ultimo) form->msgbar(msg + codice);
    ultimo = codice;
    try {
      out.Flusso() << e.Riga(r) << '\n';
    } catch (const RigaErrata& err) {
      throw RigaErrata("Record " + std::to_string(riga) + " (" + codice + "), " + err.what());
    }
    return true;
  });
  out.Chiudi();
  if (form) form->msgbar("Elaborazione completata.");
}

}  // namespace

// ---------------------------------------------------------------- exports

namespace {
bool Export(Connessione& cn, std::string& errore, bool& mostrato, ArchivioVorn a, IForm* form, const std::string& nomeFile,
            int Separatore, const std::string& prefCli, const std::string& prefFor) {
  errore.clear();
  mostrato = false;
  try {
    EseguiExport(cn, a, form, nomeFile, static_cast<char>(Separatore), prefCli, prefFor);
    return true;
  } catch (const std::exception& e) {
    errore = std::string("Esportazione non eseguita: ") + e.what();
    mostrato = true;
    Host().MsgBox(errore, vbExclamation, Host().TitoloApplicazione());
    return false;
  }
}
}  // namespace

bool clsExportVorn::ExportPianoConti(IForm* f, const std::string& nomeFile, int Separatore) {
  return Export(*cn, errore_, mostrato_, ArchivioVorn::PianoConti, f, nomeFile, Separatore, "", "");
}
bool clsExportVorn::ExportCausaliContabili(IForm* f, const std::string& nomeFile, int Separatore) {
  return Export(*cn, errore_, mostrato_, ArchivioVorn::Causali, f, nomeFile, Separatore, "", "");
}
bool clsExportVorn::ExportCodiciIVA(IForm* f, const std::string& nomeFile, int Separatore) {
  return Export(*cn, errore_, mostrato_, ArchivioVorn::CodiciIva, f, nomeFile, Separatore, "", "");
}
bool clsExportVorn::ExportValute(IForm* f, const std::string& nomeFile, int Separatore) {
  return Export(*cn, errore_, mostrato_, ArchivioVorn::Valute, f, nomeFile, Separatore, "", "");
}
bool clsExportVorn::ExportPrimaNota(IForm* f, const std::string& nomeFile, int Separatore,
                                    const std::string& PrefissoCli, const std::string& PrefissoFor) {
  return Export(*cn, errore_, mostrato_, ArchivioVorn::PrimaNota, f, nomeFile, Separatore, PrefissoCli, PrefissoFor);
}
bool clsExportVorn::ExportCliFor(IForm* f, const std::string& FlagCliFor, const std::string& PrefissoCli,
                                 const std::string& PrefissoFor, const std::string& nomeFile, int Separatore) {
  return Export(*cn, errore_, mostrato_, Trim(FlagCliFor) == "F" ? ArchivioVorn::Fornitori : ArchivioVorn::Clienti, f, nomeFile,
                Separatore, PrefissoCli, PrefissoFor);
}

std::vector<std::string> clsExportVorn::Esporta(IForm* form, const std::string& cartella,
                                                const std::vector<ArchivioVorn>& archivi, int Separatore) {
  std::vector<std::string> scritti;
  CreaCartella(cartella);
  for (ArchivioVorn a : archivi) {
    const std::string file = TogliBarraFinale(cartella) + "/" + DescrizioneArchivio(a).file;
    if (!Export(*cn, errore_, mostrato_, a, form, file, Separatore, "", "")) return {};
    scritti.push_back(file);
  }
  return scritti;
}

// ---------------------------------------------------------------- imports

namespace {

bool Import(Connessione& cn, std::string& errore, bool& mostrato, bool chiedi, IForm* form, std::vector<ParametriImport> files,
            std::vector<int64_t>* righe) {
  errore.clear();
  mostrato = false;
  std::string titolo = files.size() == 1 ? DescrizioneArchivio(files[0].archivio).titolo
                                         : Host().TitoloApplicazione();
  try {
    // Every file read and checked before anything is written.
    Riferimenti rif;
    for (const auto& p : files) {
      titolo = DescrizioneArchivio(p.archivio).titolo;
      if (p.archivio == ArchivioVorn::PrimaNota) CaricaRiferimenti(cn, rif);
    }
    for (const auto& p : files) {
      titolo = DescrizioneArchivio(p.archivio).titolo;
      VerificaFile(cn, p, rif);
    }
    for (auto& p : files) {
      titolo = DescrizioneArchivio(p.archivio).titolo;
      if (chiedi && !ConfermaArchivio(cn, p.archivio, p.file)) throw Rinuncia("Importazione annullata.");
      p.senzaDomande = true;
    }
    std::vector<int64_t> n;
    {
      Clessidra c;
      Atomico t(cn);
      for (const auto& p : files) {
        titolo = DescrizioneArchivio(p.archivio).titolo;
        n.push_back(ScriviFile(cn, p, form));
      }
      t.Conferma();
    }
    if (righe) *righe = n;
    if (form) form->msgbar("Elaborazione completata.");
    return true;
  } catch (const Rinuncia& e) {
    errore = e.what();
    return false;
  } catch (const std::exception& e) {
    errore = e.what();
    mostrato = true;
    Host().Beep();
    Host().MsgBox(errore, vbExclamation, titolo);
    return false;
  }
}

}  // namespace

bool clsExportVorn::ImportPianoConti(IForm* f, const std::string& nomeFile, int Separatore, const Valore& clientID,
                                     long hWnd) {
  return Import(*cn, errore_, mostrato_, ChiediConferma, f,
                {{ArchivioVorn::PianoConti, nomeFile, static_cast<char>(Separatore), "", "", clientID, hWnd}}, nullptr);
}
bool clsExportVorn::ImportCausaliContabili(IForm* f, const std::string& nomeFile, int Separatore,
                                           const Valore& clientID, long hWnd) {
  return Import(*cn, errore_, mostrato_, ChiediConferma, f,
                {{ArchivioVorn::Causali, nomeFile, static_cast<char>(Separatore), "", "", clientID, hWnd}}, nullptr);
}
bool clsExportVorn::ImportCodiciIVA(IForm* f, const std::string& nomeFile, int Separatore, const Valore& clientID,
                                    long hWnd) {
  return Import(*cn, errore_, mostrato_, ChiediConferma, f,
                {{ArchivioVorn::CodiciIva, nomeFile, static_cast<char>(Separatore), "", "", clientID, hWnd}}, nullptr);
}
bool clsExportVorn::ImportValute(IForm* f, const std::string& nomeFile, int Separatore, const Valore& clientID,
                                 long hWnd) {
  return Import(*cn, errore_, mostrato_, ChiediConferma, f,
                {{ArchivioVorn::Valute, nomeFile, static_cast<char>(Separatore), "", "", clientID, hWnd}}, nullptr);
}
bool clsExportVorn::ImportPrimaNota(IForm* f, const std::string& nomeFile, int Separatore,
                                    const std::string& PrefissoCli, const std::string& PrefissoFor,
                                    const Valore& clientID, long hWnd) {
  return Import(*cn, errore_, mostrato_, ChiediConferma, f,
                {{ArchivioVorn::PrimaNota, nomeFile, static_cast<char>(Separatore), PrefissoCli, PrefissoFor, clientID,
                  hWnd}},
                nullptr);
}
bool clsExportVorn::ImportCliFor(IForm* f, const std::string& FlagCliFor, const std::string& nomeFile, int Separatore,
                                 const std::string& PrefissoCli, const std::string& PrefissoFor,
                                 const Valore& clientID, long hWnd) {
  ArchivioVorn a = Trim(FlagCliFor) == "F" ? ArchivioVorn::Fornitori : ArchivioVorn::Clienti;
  return Import(*cn, errore_, mostrato_, ChiediConferma, f,
                {{a, nomeFile, static_cast<char>(Separatore), PrefissoCli, PrefissoFor, clientID, hWnd}}, nullptr);
}

bool clsExportVorn::Importa(IForm* form, const std::string& cartella, const std::vector<ArchivioVorn>& archivi,
                            const Valore& clientID, long hWnd, int Separatore, std::vector<int64_t>* righe) {
  std::vector<ParametriImport> files;
  for (const auto& d : ArchiviVorn()) {
    bool scelto = false;
    for (ArchivioVorn a : archivi) scelto = scelto || a == d.archivio;
    if (scelto)
      files.push_back({d.archivio, TogliBarraFinale(cartella) + "/" + d.file, static_cast<char>(Separatore), "", "",
                       clientID, hWnd});
  }
  std::vector<int64_t> n;
  bool ok = Import(*cn, errore_, mostrato_, ChiediConferma, form, files, &n);
  if (ok && righe) {
    righe->clear();
    for (ArchivioVorn a : archivi)
      for (size_t i = 0; i < files.size(); ++i)
        if (files[i].archivio == a) righe->push_back(n[i]);
  }
  return ok;
}

}  // namespace vorn
