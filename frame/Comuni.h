// The helpers through which the rest of the system reads values, builds SQL fragments and
// writes report text: null-safe conversions, field reading and formatting, amounts, text
// padding, SQL filters and literals, dates and account codes; and what the record classes
// share: the column check of a save by named values, the key filter and the stepping of a
// table keyed by one text code.
//
// Texts are UTF-8: every width, pad and cut counts characters, not bytes. Trimming removes
// leading and trailing blanks. Numbers are shown in the company's Italian locale (comma as
// decimal mark, point between thousands) through Format of frame/Formato.h.
#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Formato.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

// ---------------------------------------------------------------- UTF-8 text

// Characters (code points) of a UTF-8 text.
size_t LunghezzaTesto(std::string_view s);
// The first `n` characters.
std::string SinistraTesto(std::string_view s, size_t n);
// The last `n` characters.
std::string DestraTesto(std::string_view s, size_t n);
// `n` characters from the 1-based character position `inizio` (all the rest when npos).
std::string MedioTesto(std::string_view s, size_t inizio, size_t n = std::string::npos);

// ---------------------------------------------------------------- null-safe conversions
//
// Null gives 0, empty text gives 0; otherwise the value is converted, and a text that is not a
// number gives its numeric prefix by the Val rule ("12abc" is 12, "abc" and blanks are 0).
// Only the conversion of that prefix can throw (std::overflow_error when out of range).

Importo NullToZeroCy(const Valore& v);
double NullToZeroDbl(const Valore& v);
float NullToZeroSng(const Valore& v);
int32_t NullToZeroLng(const Valore& v);  // halves to even, like the host's CLng

// A number as text with a point as decimal mark and no leading blank ("12.5", "-3"). Text that
// reads as a number is converted first, other text gives its numeric prefix; Null gives "".
std::string NumeroInTesto(const Valore& v);
// The value as text, trimmed.
std::string TrimTesto(const Valore& v);

// ---------------------------------------------------------------- field reading

// The way every class reads a column. A `forzato` whose trimmed text is not empty is the
// result and the field is not read at all (Empty, Null and blank text count as not passed).
// A null field gives `predefinito`; a character field gives its value trimmed; any other field
// its value as it stands.
Valore LeggiCampo(const Campo& campo, const Valore& predefinito, const Valore& forzato = Valore());
// The same without trimming, where trailing blanks matter.
Valore LeggiCampoGrezzo(const Campo& campo, const Valore& predefinito, const Valore& forzato = Valore());

// A field as display text, by its type: character types trimmed; dates "dd/mm/yyyy";
// 16- and 32-bit integers "##,###,###,###,##0"; singles "##,###,###,##0.00"; doubles
// "##,###,###,##0.000"; amounts "###,###,###,##0" with `decimali` zeros after a point
// (DecimaliImporti when not passed); other types their value's text. A forzato whose trimmed
// text is not empty is the result. A null field of a character type gives `testoPredefinito`;
// a null field of another type formats NullToZeroDbl(testoPredefinito) by the type's mask, and
// the caller's `testoPredefinito` is overwritten with that number as text.
std::string FormattaCampo(const Campo& campo, Valore& testoPredefinito, const std::optional<Valore>& forzato = std::nullopt,
                          const std::optional<Valore>& decimali = std::nullopt);
std::string FormattaCampo(const Campo& campo, const Valore& testoPredefinito,
                          const std::optional<Valore>& forzato = std::nullopt,
                          const std::optional<Valore>& decimali = std::nullopt);

// ---------------------------------------------------------------- amounts

// The masks of amounts. The long family ("###,###,###,###,##0" and ".00...") serves amounts of
// the accounting currency and plain decimals; the short one ("###,###,###,##0"), one group
// shorter, amounts of a named currency. Decimals of 0 or fewer give the mask without a point.
std::string MascheraImporto(int decimali, bool famigliaLunga);

// The decimals and mask that FormattaImporto takes from its arguments:
//   no currency: usaDecimaliPrezzi not passed or false -> DecimaliImporti, true ->
//   DecimaliPrezziValutaConto, any other value -> 0; long family.
//   a currency with a code -> DecimaliValuta(code); an empty code -> DecimaliValuta("") or, when
//   usaDecimaliPrezzi is true, DecimaliPrezziValutaConto; short family.
struct RegolaImporto {
  int decimali = 0;
  std::string maschera;
};
RegolaImporto RegolaFormattaImporto(const std::optional<Valore>& codiceValuta,
                                    const std::optional<Valore>& usaDecimaliPrezzi);
// The same rule with the decimals of a named currency read by `decimaliValuta` in place of
// DecimaliValuta (a class that reads them on its own connection).
using LettoreDecimaliValuta = std::function<Valore(const Valore& codiceValuta)>;
RegolaImporto RegolaFormattaImporto(const std::optional<Valore>& codiceValuta,
                                    const std::optional<Valore>& usaDecimaliPrezzi,
                                    const LettoreDecimaliValuta& decimaliValuta);

// An amount for display ("1.234,50").
std::string FormattaImporto(const Valore& importo, const std::optional<Valore>& codiceValuta = std::nullopt,
                            const std::optional<Valore>& usaDecimaliPrezzi = std::nullopt);
// A number with `decimali` decimals (2 when not passed), long family mask.
std::string FormattaDecimali(const Valore& valore, const std::optional<Valore>& decimali = std::nullopt);
// An amount rounded to the decimals of the currency (as FormattaImporto chooses them).
Importo ArrotondaImporto(const Valore& importo, const std::optional<Valore>& codiceValuta = std::nullopt);
// A double rounded to `decimali` decimals, halves away from zero on the decimal value.
double ArrotondaDecimali(const Valore& valore, const Valore& decimali);
// An amount divided by a double, rounded to four decimals. A divisor of exactly 0 is replaced by
// 1, also in the caller's variable.
Importo DividiImporto(const Valore& importo, double& divisore);
Importo DividiImporto(const Valore& importo, Valore& divisore);
// Rounds to a multiple of `passo`: modo 0 down (toward minus infinity), 1 up, 2 to the nearest,
// any other leaves the quotient as it is. A whole quotient, or a step of 0, gives `valore`.
double ArrotondaMultiplo(double valore, double passo, int modo);

// Texts of the interchange files, with a point as decimal mark: two to four decimals (padded
// right-aligned to 18 when `riempi` is not 0), exactly four, exactly six.
std::string FormatoPunto4(const Valore& valore, int riempi);
std::string FormatoPunto4Cifre(const Valore& valore);
std::string FormatoPunto6Cifre(const Valore& valore);
// "000" and "00000"; empty text when the value is 0.
std::string Formato3Cifre(const Valore& valore);
std::string Formato5Cifre(const Valore& valore);

// ---------------------------------------------------------------- text

// Right-aligns in `larghezza` characters: the value is trimmed (in the caller's variable too,
// when it holds text), cut to its first `larghezza` characters if longer, or given blanks in
// front. The caller's variable is trimmed, never cut.
std::string PadDestra(Valore& valore, int larghezza);
std::string PadDestra(std::string& valore, int larghezza);
std::string PadDestra(const Valore& valore, int larghezza);
// Left-aligns: the same with the blanks behind.
std::string PadSinistra(Valore& valore, int larghezza);
std::string PadSinistra(std::string& valore, int larghezza);
std::string PadSinistra(const Valore& valore, int larghezza);
// Centres: the same with the blanks shared, the odd one behind.
std::string PadCentro(Valore& valore, int larghezza);
std::string PadCentro(std::string& valore, int larghezza);
std::string PadCentro(const Valore& valore, int larghezza);

// The trimmed text with every comma turned to a point.
std::string VirgolaInPunto(const Valore& valore);
// Every character equal to `vecchio` becomes `nuovo` (which may be empty).
std::string SostituisciCarattere(std::string_view testo, std::string_view vecchio, std::string_view nuovo);
// Without underscores.
std::string TogliSottolineato(std::string_view testo);
// Without characters of code 0.
std::string TogliNul(std::string_view testo);
// Every apostrophe doubled once, for a text inside an SQL literal.
std::string RaddoppiaApici(std::string_view valore);
// A "/" appended, unless the text is blank.
std::string AggiungiBarra(std::string_view testo);

// ---------------------------------------------------------------- SQL fragments
//
// Each fragment begins with a blank; `campo` is the field's full expression, such as
// "[Zone Sottozone].[Codice Zona]". Text values are put in the literal with their apostrophes
// doubled here: pass the value as it is, not already doubled. Numbers are written with a point;
// a value that is not a number throws ErroreDb, as the statement would fail at the server.

// Empty text (or Null) finds both empty strings and nulls: key columns of old archives hold
// either for a blank key.
std::string SqlFiltroTesto(const Valore& valore, const std::string& campo);
// Empty text (or Null) finds zeros and nulls; "0" finds only zeros.
std::string SqlFiltroNumero(const Valore& valore, const std::string& campo);
// As SqlFiltroNumero, for a number written with a decimal comma.
std::string SqlFiltroDecimale(const Valore& valore, const std::string& campo);
// Null finds nulls; any other value compares with SqlData(valore).
std::string SqlFiltroData(const Valore& valore, const std::string& campo);
// The value, and never an empty or null field.
std::string SqlFiltroTestoPieno(const Valore& valore, const std::string& campo);
// NullToZeroCy as SQL text: a point and at most four decimals ("-1234.5").
std::string SqlNumero(const Valore& valore);
// A date literal of the engine that IndSqlServer tells: "DATE 'yyyy-mm-dd'" when it is "1"
// (PostgreSQL), otherwise "'yyyy-mm-dd'" (SQLite keeps dates as ISO text). A value that is not
// a date gives a literal that matches nothing: "CAST(NULL AS DATE)" or "NULL". Never fails.
std::string SqlData(const Valore& valore);

// ---------------------------------------------------------------- dates

// "dd/mm/yyyy" of a date (or of text that reads as one), otherwise Null.
Valore DataInTesto(const Valore& valore);
// "dd/mm/yy" of a date, otherwise the value unchanged.
Valore DataBreve(const Valore& valore);
// "yyyymmdd" of a date, otherwise empty text.
std::string DataCompatta(const Valore& valore);
// "dd/mm/yyyy" from a text "yyyymmdd" when it is not numerically 0 and makes a real date,
// otherwise "__/__/____".
std::string DataDaTestoCompatto(const Valore& testo);
// The same, with Null in place of "__/__/____".
Valore DataDaCompattaNull(const Valore& testo);
// A date of a year above 2080 goes back 1200 months, in the caller's variable; other dates
// and values that are not dates stay as they are. The result is the new value.
Valore CorreggiSecolo(Valore& data);
Data CorreggiSecolo(Data& data);
// True when 29 February of the year exists.
bool AnnoBisestile(const Valore& anno);
// "Gennaio" .. "Dicembre"; empty text for any other number.
std::string NomeMese(const Valore& mese);

// ---------------------------------------------------------------- account codes

// By trimmed length: 2 -> 1 (group), 4 -> 2 (account), 7 -> 3 (sub-account), other 0.
int LivelloConto(const Valore& codice);
// The code widened to seven digits: a group "00" + "00000", an account "0000" + "000".
std::string ContoSetteCifre(const Valore& codice);
// Nine characters, left-aligned: "", "12", "12.34", "12.34.567".
std::string FormattaConto(const Valore& codice);

// ---------------------------------------------------------------- saves of named values

// The values of a record paired with the columns a save writes: each name is matched among
// `colonne` without regard to case and takes the column's own spelling, in the order of the
// record. A name that is none of the columns is refused with ErroreDb(numero, rifiuto(nome)),
// so that a save checks the whole record before it reads or writes anything.
using ColonneValori = std::vector<std::pair<std::string, Valore>>;
ColonneValori ColonneDaScrivere(const RecordValori& campi, const std::vector<std::string>& colonne,
                                const std::function<std::string(const std::string& nome)>& rifiuto, long numero = 0);

// ---------------------------------------------------------------- tables keyed by one text code

// The key filter of every archive. A text key part, `colonna` being its full expression
// ("[Codici Iva].[Codice Iva]"): a blank code (Null, Empty, empty text or blanks) finds the rows
// whose key is Null, empty or blanks alike; any other code finds its trimmed text, bound as a
// parameter. Codes are compared and stored trimmed in every archive.
struct FiltroCodice {
  std::string where;
  Parametri p;
  // One more key part, joined with AND.
  FiltroCodice& Parte(const std::string& colonna, const Valore& codice);
  // A further condition with its parameters, joined with AND.
  FiltroCodice& E(const std::string& condizione, const Parametri& valori = {});
};
FiltroCodice FiltraCodice(const std::string& colonna, const Valore& codice);
// The condition that a key column holds no code: Null, empty text or blanks.
std::string CodiceVuoto(const std::string& colonna);

// The stepping of every archive: one step through the codes of `tabella` (key column
// `colonna`, bare name) by text order, among the rows that `entro` selects (all when empty).
// The next code after `codice` (from a blank code: the last one), or the previous one (from a
// blank code: the first one); a row whose key is Null, empty or blanks is never a step. False,
// and `codice` untouched, when there is none; otherwise `codice` takes the trimmed code found.
bool PassoCodice(Connessione& cn, const std::string& tabella, const std::string& colonna, Valore& codice,
                 bool avanti, const FiltroCodice& entro = {});

}  // namespace vorn
