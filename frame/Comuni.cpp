#include "frame/Comuni.h"

#include <cfloat>
#include <cstdlib>
#include <cmath>
#include <stdexcept>

#include "frame/Globali.h"
#include "frame/VornServer.h"

namespace vorn {

// ---------------------------------------------------------------- UTF-8 text

namespace {
bool Continuazione(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Byte offset of the character of index `n` (0-based), or s.size().
size_t Offset(std::string_view s, size_t n) {
  size_t i = 0;
  while (i < s.size() && n > 0) {
    ++i;
    while (i < s.size() && Continuazione(s[i])) ++i;
    --n;
  }
  return i;
}
}  // namespace

size_t LunghezzaTesto(std::string_view s) {
  size_t n = 0;
  for (char c : s)
    if (!Continuazione(c)) ++n;
  return n;
}

std::string SinistraTesto(std::string_view s, size_t n) { return std::string(s.substr(0, Offset(s, n))); }

std::string DestraTesto(std::string_view s, size_t n) {
  size_t len = LunghezzaTesto(s);
  if (n >= len) return std::string(s);
  return std::string(s.substr(Offset(s, len - n)));
}

std::string MedioTesto(std::string_view s, size_t inizio, size_t n) {
  if (inizio < 1) inizio = 1;
  size_t a = Offset(s, inizio - 1);
  std::string_view resto = s.substr(a);
  if (n == std::string::npos) return std::string(resto);
  return std::string(resto.substr(0, Offset(resto, n)));
}

// ---------------------------------------------------------------- null-safe conversions

namespace {
bool TestoVuoto(const Valore& v) { return v.IsText() && v.Str().empty(); }
}  // namespace

Importo NullToZeroCy(const Valore& v) {
  if (v.IsNull() || TestoVuoto(v)) return Importo();
  try {
    if (auto i = v.ComeImporto()) return *i;
  } catch (const std::exception&) {
    // an amount out of range takes the prefix path, which raises in its turn
  }
  return ValImporto(v.Testo());
}

double NullToZeroDbl(const Valore& v) {
  if (v.IsNull() || TestoVuoto(v)) return 0.0;
  if (auto d = v.ComeDouble()) return *d;
  return Val(v.Testo());
}

float NullToZeroSng(const Valore& v) {
  double d = NullToZeroDbl(v);
  if (std::isfinite(d) && std::fabs(d) > FLT_MAX) throw std::overflow_error("Overflow: " + v.Testo());
  return static_cast<float>(d);
}

int32_t NullToZeroLng(const Valore& v) {
  if (v.IsNull() || TestoVuoto(v)) return 0;
  auto i = v.ComeIntero();
  if (i && *i >= INT32_MIN && *i <= INT32_MAX) return static_cast<int32_t>(*i);
  double d = std::nearbyint(i ? static_cast<double>(*i) : Val(v.Testo()));
  if (!(d >= INT32_MIN && d <= INT32_MAX)) throw std::overflow_error("Overflow: " + v.Testo());
  return static_cast<int32_t>(d);
}

std::string NumeroInTesto(const Valore& v) {
  switch (v.tipo()) {
    case Valore::Tipo::Nullo:
      return "";
    case Valore::Tipo::Vuoto:
      return "0";
    case Valore::Tipo::Booleano:
      return v.Bool() ? "-1" : "0";
    case Valore::Tipo::Intero:
      return std::to_string(v.Int());
    case Valore::Tipo::Importo:
      return v.Imp().TestoPunto();
    case Valore::Tipo::Doppio:
      return DoubleInTesto(v.Dbl());
    case Valore::Tipo::Data:
      return std::to_string(v.Dat().Seriale());
    case Valore::Tipo::Testo:
      if (auto n = NormalizzaNumero(v.Str())) {
        size_t p = n->find('.');
        bool esatto = n->find('e') == std::string::npos && (p == std::string::npos || n->size() - p - 1 <= 4);
        if (esatto)
          if (auto i = Importo::DaTestoPunto(*n)) return i->TestoPunto();
        return DoubleInTesto(std::strtod(n->c_str(), nullptr));
      }
      return DoubleInTesto(Val(v.Str()));
  }
  return "";
}

std::string TrimTesto(const Valore& v) { return v.TestoTrim(); }

// ---------------------------------------------------------------- field reading

namespace {
bool Forzato(const Valore& forzato) { return !forzato.TestoTrim().empty(); }
}  // namespace

Valore LeggiCampo(const Campo& campo, const Valore& predefinito, const Valore& forzato) {
  if (Forzato(forzato)) return forzato;
  const Valore& v = campo.Value();
  if (v.IsNull()) return predefinito;
  if (TipoCarattere(campo.TypeNumber())) return Valore(v.TestoTrim());
  return v;
}

Valore LeggiCampoGrezzo(const Campo& campo, const Valore& predefinito, const Valore& forzato) {
  if (Forzato(forzato)) return forzato;
  const Valore& v = campo.Value();
  if (v.IsNull()) return predefinito;
  return v;
}

std::string FormattaCampo(const Campo& campo, Valore& testoPredefinito, const std::optional<Valore>& forzato,
                          const std::optional<Valore>& decimali) {
  if (forzato && Forzato(*forzato)) return forzato->Testo();
  int tipo = campo.TypeNumber();
  const Valore& campoValore = campo.Value();
  if (TipoCarattere(tipo)) return campoValore.IsNull() ? testoPredefinito.Testo() : campoValore.TestoTrim();
  Valore v;
  if (campoValore.IsNull()) {
    double d = NullToZeroDbl(testoPredefinito);
    testoPredefinito = Valore(Valore(d).Testo());
    v = Valore(d);
  } else {
    v = campoValore;
  }
  switch (tipo) {
    case 7:    // adDate
    case 133:  // adDBDate
      return Format(v, "dd/mm/yyyy");
    case 2:  // adSmallInt
    case 3:  // adInteger
      return Format(v, "##,###,###,###,##0");
    case 6: {  // adCurrency
      int dec = decimali ? NullToZeroLng(*decimali) : G().DecimaliImporti;
      return Format(v, MascheraImporto(dec, false));
    }
    case 4:  // adSingle
      return Format(v, "##,###,###,##0.00");
    case 5:  // adDouble
      return Format(v, "##,###,###,##0.000");
    default:
      return v.Testo();
  }
}

std::string FormattaCampo(const Campo& campo, const Valore& testoPredefinito, const std::optional<Valore>& forzato,
                          const std::optional<Valore>& decimali) {
  Valore copia = testoPredefinito;
  return FormattaCampo(campo, copia, forzato, decimali);
}

// ---------------------------------------------------------------- amounts

std::string MascheraImporto(int decimali, bool famigliaLunga) {
  std::string m = famigliaLunga ? "###,###,###,###,##0" : "###,###,###,##0";
  if (decimali > 0) m += "." + std::string(static_cast<size_t>(decimali), '0');
  return m;
}

namespace {
// The host's comparison of a variant with True and False: 1 true, 0 false, -1 neither.
int Logico(const Valore& v) {
  switch (v.tipo()) {
    case Valore::Tipo::Booleano:
      return v.Bool() ? 1 : 0;
    case Valore::Tipo::Testo: {
      std::string t = LCase(Trim(v.Str()));
      if (t == "true" || t == "vero") return 1;
      if (t == "false" || t == "falso") return 0;
      break;
    }
    default:
      break;
  }
  auto d = v.IsNumeric() ? v.ComeDouble() : std::nullopt;
  if (!d) return -1;
  if (*d == -1) return 1;
  if (*d == 0) return 0;
  return -1;
}
}  // namespace

RegolaImporto RegolaFormattaImporto(const std::optional<Valore>& codiceValuta,
                                    const std::optional<Valore>& usaDecimaliPrezzi) {
  return RegolaFormattaImporto(codiceValuta, usaDecimaliPrezzi,
                               [](const Valore& codice) { return DecimaliValuta(codice); });
}

RegolaImporto RegolaFormattaImporto(const std::optional<Valore>& codiceValuta,
                                    const std::optional<Valore>& usaDecimaliPrezzi,
                                    const LettoreDecimaliValuta& decimaliValuta) {
  RegolaImporto r;
  if (!codiceValuta) {
    if (!usaDecimaliPrezzi) {
      r.decimali = G().DecimaliImporti;
    } else {
      int l = Logico(*usaDecimaliPrezzi);
      r.decimali = l == 1 ? G().DecimaliPrezziValutaConto : l == 0 ? G().DecimaliImporti : 0;
    }
    r.maschera = MascheraImporto(r.decimali, true);
    return r;
  }
  if (codiceValuta->TestoTrim().empty() && usaDecimaliPrezzi && Logico(*usaDecimaliPrezzi) == 1)
    r.decimali = G().DecimaliPrezziValutaConto;
  else
    r.decimali = NullToZeroLng(decimaliValuta(*codiceValuta));
  r.maschera = MascheraImporto(r.decimali, false);
  return r;
}

std::string FormattaImporto(const Valore& importo, const std::optional<Valore>& codiceValuta,
                            const std::optional<Valore>& usaDecimaliPrezzi) {
  return Format(importo, RegolaFormattaImporto(codiceValuta, usaDecimaliPrezzi).maschera);
}

std::string FormattaDecimali(const Valore& valore, const std::optional<Valore>& decimali) {
  int dec = decimali ? NullToZeroLng(*decimali) : 2;
  return Format(valore, MascheraImporto(dec, true));
}

Importo ArrotondaImporto(const Valore& importo, const std::optional<Valore>& codiceValuta) {
  return NullToZeroCy(Valore(FormattaImporto(importo, codiceValuta)));
}

double ArrotondaDecimali(const Valore& valore, const Valore& decimali) {
  return NullToZeroDbl(Valore(Format(valore, MascheraImporto(NullToZeroLng(decimali), true))));
}

Importo DividiImporto(const Valore& importo, double& divisore) {
  if (divisore == 0) divisore = 1;
  return NullToZeroCy(importo).Diviso(divisore);
}

Importo DividiImporto(const Valore& importo, Valore& divisore) {
  double d = NullToZeroDbl(divisore);
  if (d == 0) {
    d = 1;
    divisore = Valore(1.0);
  }
  return NullToZeroCy(importo).Diviso(d);
}

double ArrotondaMultiplo(double valore, double passo, int modo) {
  if (passo == 0 || !std::isfinite(valore) || !std::isfinite(passo)) return valore;
  double q = valore / passo;
  if (!std::isfinite(q) || q == std::floor(q)) return valore;
  switch (modo) {
    case 0:
      q = std::floor(q);
      break;
    case 1:
      q = std::floor(q) + 1;
      break;
    case 2:
      q = NullToZeroDbl(Valore(Format(Valore(q), "0")));
      break;
    default:
      break;
  }
  return q * passo;
}

std::string FormatoPunto4(const Valore& valore, int riempi) {
  std::string t = VirgolaInPunto(Valore(Format(valore, "############0.00##")));
  if (riempi != 0) t = PadDestra(t, 18);
  return t;
}

std::string FormatoPunto4Cifre(const Valore& valore) { return VirgolaInPunto(Valore(Format(valore, "###0.0000"))); }

std::string FormatoPunto6Cifre(const Valore& valore) {
  return VirgolaInPunto(Valore(Format(valore, "##########0.000000")));
}

std::string Formato3Cifre(const Valore& valore) { return NullToZeroCy(valore).Zero() ? "" : Format(valore, "000"); }

std::string Formato5Cifre(const Valore& valore) { return NullToZeroCy(valore).Zero() ? "" : Format(valore, "00000"); }

// ---------------------------------------------------------------- text

namespace {
enum class Allinea { Destra, Sinistra, Centro };

std::string Pad(const std::string& trimmed, int larghezza, Allinea a) {
  size_t w = larghezza > 0 ? static_cast<size_t>(larghezza) : 0;
  size_t len = LunghezzaTesto(trimmed);
  if (len >= w) return SinistraTesto(trimmed, w);
  size_t spare = w - len;
  switch (a) {
    case Allinea::Destra:
      return std::string(spare, ' ') + trimmed;
    case Allinea::Sinistra:
      return trimmed + std::string(spare, ' ');
    case Allinea::Centro: {
      size_t n1 = spare / 2, n2 = n1 + spare % 2;
      return std::string(n1, ' ') + trimmed + std::string(n2, ' ');
    }
  }
  return trimmed;
}

std::string PadVar(Valore& valore, int larghezza, Allinea a) {
  std::string t = valore.TestoTrim();
  if (valore.IsText()) valore = Valore(t);
  return Pad(t, larghezza, a);
}
std::string PadStr(std::string& valore, int larghezza, Allinea a) {
  valore = Trim(valore);
  return Pad(valore, larghezza, a);
}
}  // namespace

std::string PadDestra(Valore& valore, int larghezza) { return PadVar(valore, larghezza, Allinea::Destra); }
std::string PadDestra(std::string& valore, int larghezza) { return PadStr(valore, larghezza, Allinea::Destra); }
std::string PadDestra(const Valore& valore, int larghezza) { return Pad(valore.TestoTrim(), larghezza, Allinea::Destra); }
std::string PadSinistra(Valore& valore, int larghezza) { return PadVar(valore, larghezza, Allinea::Sinistra); }
std::string PadSinistra(std::string& valore, int larghezza) { return PadStr(valore, larghezza, Allinea::Sinistra); }
std::string PadSinistra(const Valore& valore, int larghezza) {
  return Pad(valore.TestoTrim(), larghezza, Allinea::Sinistra);
}
std::string PadCentro(Valore& valore, int larghezza) { return PadVar(valore, larghezza, Allinea::Centro); }
std::string PadCentro(std::string& valore, int larghezza) { return PadStr(valore, larghezza, Allinea::Centro); }
std::string PadCentro(const Valore& valore, int larghezza) { return Pad(valore.TestoTrim(), larghezza, Allinea::Centro); }

std::string VirgolaInPunto(const Valore& valore) {
  std::string t = valore.TestoTrim();
  for (auto& c : t)
    if (c == ',') c = '.';
  return t;
}

std::string SostituisciCarattere(std::string_view testo, std::string_view vecchio, std::string_view nuovo) {
  std::string out;
  out.reserve(testo.size());
  size_t i = 0;
  while (i < testo.size()) {
    size_t j = i + 1;
    while (j < testo.size() && Continuazione(testo[j])) ++j;
    std::string_view carattere = testo.substr(i, j - i);
    if (carattere == vecchio) out += nuovo;
    else out += carattere;
    i = j;
  }
  return out;
}

std::string TogliSottolineato(std::string_view testo) { return SostituisciCarattere(testo, "_", ""); }

std::string TogliNul(std::string_view testo) {
  std::string out;
  out.reserve(testo.size());
  for (char c : testo)
    if (c != '\0') out += c;
  return out;
}

std::string RaddoppiaApici(std::string_view valore) {
  std::string out;
  out.reserve(valore.size() + 4);
  for (char c : valore) {
    out += c;
    if (c == '\'') out += '\'';
  }
  return out;
}

std::string AggiungiBarra(std::string_view testo) {
  if (Trim(testo).empty()) return std::string(testo);
  return std::string(testo) + "/";
}

// ---------------------------------------------------------------- SQL fragments

namespace {
bool Vuoto(const Valore& v) { return v.IsNull() || v.IsEmpty() || (v.IsText() && v.Str().empty()); }

// A number for SQL text, point as decimal mark; throws when the value is not a number.
std::string NumeroSql(const Valore& v) {
  if (v.IsText()) {
    auto n = NormalizzaNumero(v.Str());
    if (!n) throw ErroreDb(13, "Valore non numerico in un filtro: " + v.Str());
    return *n;
  }
  if (!v.IsNumber()) throw ErroreDb(13, "Valore non numerico in un filtro: " + v.Testo());
  return NumeroInTesto(v);
}
}  // namespace

std::string SqlFiltroTesto(const Valore& valore, const std::string& campo) {
  if (Vuoto(valore)) return " ((" + campo + ")='' Or (" + campo + ") Is Null)";
  return " ((" + campo + ")='" + RaddoppiaApici(valore.Testo()) + "')";
}

std::string SqlFiltroNumero(const Valore& valore, const std::string& campo) {
  if (Vuoto(valore)) return " ((" + campo + ")=0 Or (" + campo + ") Is Null)";
  return " ((" + campo + ")=" + NumeroSql(valore) + ")";
}

std::string SqlFiltroDecimale(const Valore& valore, const std::string& campo) { return SqlFiltroNumero(valore, campo); }

std::string SqlFiltroData(const Valore& valore, const std::string& campo) {
  if (valore.IsNull()) return " ((" + campo + ") Is Null)";
  return " ((" + campo + ")=" + SqlData(valore) + ")";
}

std::string SqlFiltroTestoPieno(const Valore& valore, const std::string& campo) {
  return " (" + campo + "='" + RaddoppiaApici(valore.Testo()) + "' AND " + campo + " <> '' AND (" + campo +
         ") Is Not Null)";
}

std::string SqlNumero(const Valore& valore) { return NullToZeroCy(valore).TestoPunto(); }

std::string SqlData(const Valore& valore) {
  bool pg = G().IndSqlServer == "1";
  auto d = valore.ComeData();
  if (!d) return pg ? "CAST(NULL AS DATE)" : "NULL";
  return pg ? "DATE '" + d->Iso() + "'" : "'" + d->Iso() + "'";
}

// ---------------------------------------------------------------- dates

Valore DataInTesto(const Valore& valore) {
  auto d = valore.ComeData();
  return d ? Valore(d->Testo()) : Valore::Null();
}

Valore DataBreve(const Valore& valore) {
  auto d = valore.ComeData();
  return d ? Valore(d->Formato("dd/mm/yy")) : valore;
}

std::string DataCompatta(const Valore& valore) {
  auto d = valore.ComeData();
  return d ? d->Formato("yyyymmdd") : std::string();
}

namespace {
std::optional<std::string> DaCompatta(const Valore& testo) {
  std::string t = testo.Testo();
  if (Val(t) == 0) return std::nullopt;
  std::string s = MedioTesto(t, 7, 2) + "/" + MedioTesto(t, 5, 2) + "/" + SinistraTesto(t, 4);
  if (!Data::DaTesto(s)) return std::nullopt;
  return s;
}
}  // namespace

std::string DataDaTestoCompatto(const Valore& testo) { return DaCompatta(testo).value_or("__/__/____"); }

Valore DataDaCompattaNull(const Valore& testo) {
  auto s = DaCompatta(testo);
  return s ? Valore(*s) : Valore::Null();
}

Data CorreggiSecolo(Data& data) {
  if (data.Anno() > 2080) {
    auto d = Data::DaTesto(data.Testo());  // from its "dd/mm/yyyy" text
    if (d) data = d->AggiungiMesi(-1200);
  }
  return data;
}

Valore CorreggiSecolo(Valore& data) {
  auto d = data.ComeData();
  if (d && d->Anno() > 2080) data = Valore(CorreggiSecolo(*d));
  return data;
}

bool AnnoBisestile(const Valore& anno) { return Data::DaTesto("29/02/" + anno.TestoTrim()).has_value(); }

std::string NomeMese(const Valore& mese) {
  static const char* const kMesi[] = {"Gennaio", "Febbraio", "Marzo",     "Aprile",  "Maggio",   "Giugno",
                                      "Luglio",  "Agosto",   "Settembre", "Ottobre", "Novembre", "Dicembre"};
  auto d = mese.IsNumeric() ? mese.ComeDouble() : std::nullopt;
  if (!d || *d != std::floor(*d) || *d < 1 || *d > 12) return "";
  return kMesi[static_cast<int>(*d) - 1];
}

// ---------------------------------------------------------------- account codes

int LivelloConto(const Valore& codice) {
  switch (LunghezzaTesto(codice.TestoTrim())) {
    case 2:
      return 1;
    case 4:
      return 2;
    case 7:
      return 3;
    default:
      return 0;
  }
}

std::string ContoSetteCifre(const Valore& codice) {
  switch (LunghezzaTesto(codice.TestoTrim())) {
    case 2:
      return Format(codice, "00") + "00000";
    case 4:
      return Format(codice, "0000") + "000";
    default:
      return codice.Testo();
  }
}

std::string FormattaConto(const Valore& codice) {
  std::string c = codice.Testo();
  switch (LunghezzaTesto(c)) {
    case 0:
      return std::string(9, ' ');
    case 2:
      return PadSinistra(c, 9);
    case 4:
      return PadSinistra(Valore(MedioTesto(c, 1, 2) + "." + MedioTesto(c, 3, 2)), 9);
    default:
      return PadSinistra(Valore(MedioTesto(c, 1, 2) + "." + MedioTesto(c, 3, 2) + "." + MedioTesto(c, 5, 3)), 9);
  }
}

// ---------------------------------------------------------------- saves of named values

ColonneValori ColonneDaScrivere(const RecordValori& campi, const std::vector<std::string>& colonne,
                                const std::function<std::string(const std::string& nome)>& rifiuto, long numero) {
  ColonneValori r;
  for (const auto& [nome, valore] : campi) {
    const std::string* colonna = nullptr;
    for (const auto& c : colonne)
      if (UgualeNoCase(c, nome)) colonna = &c;
    if (!colonna) throw ErroreDb(numero, rifiuto(nome));
    r.emplace_back(*colonna, valore);
  }
  return r;
}

// ---------------------------------------------------------------- tables keyed by one text code

std::string CodiceVuoto(const std::string& colonna) { return "COALESCE(TRIM(" + colonna + "), '') = ''"; }

FiltroCodice& FiltroCodice::E(const std::string& condizione, const Parametri& valori) {
  where += (where.empty() ? "" : " AND ") + condizione;
  p.insert(p.end(), valori.begin(), valori.end());
  return *this;
}

FiltroCodice& FiltroCodice::Parte(const std::string& colonna, const Valore& codice) {
  std::string c = codice.IsNull() || codice.IsEmpty() ? std::string() : codice.TestoTrim();
  if (c.empty()) return E(CodiceVuoto(colonna));
  return E(colonna + " = ?", {Valore(c)});
}

FiltroCodice FiltraCodice(const std::string& colonna, const Valore& codice) {
  FiltroCodice f;
  f.Parte(colonna, codice);
  return f;
}

bool PassoCodice(Connessione& cn, const std::string& tabella, const std::string& colonna, Valore& codice,
                 bool avanti, const FiltroCodice& entro) {
  const std::string col = "[" + tabella + "].[" + colonna + "]";
  FiltroCodice f = entro;
  f.E("NOT " + CodiceVuoto(col));
  std::string c = codice.IsNull() || codice.IsEmpty() ? std::string() : codice.TestoTrim();
  std::string ordine;
  if (c.empty()) {
    ordine = avanti ? " DESC" : "";
  } else {
    f.E(col + (avanti ? " > ?" : " < ?"), {Valore(c)});
    ordine = avanti ? "" : " DESC";
  }
  Valore trovato =
      cn.Scalare("SELECT " + col + " FROM [" + tabella + "] WHERE " + f.where + " ORDER BY " + col + ordine + " LIMIT 1;",
                 f.p);
  if (trovato.IsNull() || trovato.IsEmpty()) return false;
  codice = Valore(trovato.TestoTrim());
  return true;
}

}  // namespace vorn
