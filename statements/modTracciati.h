// The record writer of the tax agency's telematic files: the field formats, positional (a value
// in a numbered place of a record, at a fixed width) and non-positional (an 8-character field
// identifier and a 16-character value, appended to the body of a page record), and the fixed
// record of 1898 characters built place by place.
//
// Values come in as UTF-8 and every width counts characters. The file itself is written one
// byte a character in the Windows Latin-1 code page (TestoTelematico): a record of 1898
// characters is 1898 bytes and, with its line end (CR LF), 1900 bytes on disk. Letters are
// upper-cased, accented ones too ("à" becomes "À"); a character the code page lacks becomes "?".
#pragma once
#include <string>
#include <string_view>

#include "frame/Valore.h"

namespace vorn {

inline constexpr int kLunghezzaRecordTelematico = 1898;
inline constexpr int kLunghezzaCampoNonPosizionale = 24;  // identifier 8 + value 16

// ---------------------------------------------------------------- positional formats

std::string FormatAN(const Valore& stringa, int Lunghezza);
std::string FormatCF(const Valore& stringa);
std::string FormatPI(const Valore& stringa);
std::string FormatDT(const Valore& stringa, bool stringaVuotaSeNull = false);
std::string FormatDA(const Valore& stringa);
std::string FormatNUProtocolli(const Valore& stringa, int Lunghezza);
std::string FormatNU(const Valore& stringa, int Lunghezza);
std::string FormatPN(const Valore& stringa, int Lunghezza, bool estero = false);
std::string FormatPR(const Valore& stringa, int Lunghezza);
std::string FormatCB(const Valore& stringa);

// ---------------------------------------------------------------- non-positional formats (16)

std::string FormatNonPosAN(const Valore& stringa);
std::string FormatNonPosCF(const Valore& stringa);
std::string FormatNonPosCN(const Valore& stringa);
std::string FormatNonPosPR(const Valore& stringa);
std::string FormatNonPosPE(const Valore& stringa);
std::string FormatNonPosPI(const Valore& stringa);
std::string FormatNonPosCB(const Valore& stringa);
// A value other than 0 or 1 is told to the user and gives 16 blanks.
std::string FormatNonPosCB12(const Valore& stringa);
std::string FormatNonPosDA(const Valore& stringa);
std::string FormatNonPosDT(const Valore& stringa);
std::string FormatNonPosDN(const Valore& stringa, bool stringaVuotaSeNull = false);
std::string FormatNonPosD4(const Valore& stringa, bool stringaVuotaSeNull = false);
std::string FormatNonPosD6(const Valore& stringa, bool stringaVuotaSeNull = false);
std::string FormatNonPosNP(const Valore& stringa);
std::string FormatNonPosNU(const Valore& stringa);
// A mask of `x` zeros (x above 0), right-aligned in 16.
std::string FormatNonPosNx(const Valore& stringa, int x);
std::string FormatNonPosUIC(const Valore& stringa);
std::string FormatNonPosPC(const Valore& stringa);
std::string FormatNonPosQU(const Valore& stringa);
std::string FormatNonPosPN(const Valore& stringa, bool estero = false);
// The numeric form at a chosen width.
std::string FormatNPNonPosizionale(const Valore& stringa, int Lunghezza);
std::string FormatNUNonPosizionale(const Valore& stringa, int Lunghezza);

// Appends a field to the text of a page: identifier (8) and value (16), by the format code
// ("AN", "CB", "CB12", "CF", "CN", "PI", "PR", "PN", "PE", "DA", "DT", "DN", "D4", "D6", "NP",
// "NU", "UIC", "Nx"/"NX" with `x`, "PC", "QU"). An empty value, an amount of 0, a value that is
// no date for a date format, a CB not set: nothing is added. A text longer than 16 goes on in
// further fields of the same identifier, each "+" and 15 more characters. An unknown code or a
// malformed identifier throws std::invalid_argument.
void AccodaCampoNonPosizionale(std::string& pagina, const std::string& identificativo, const Valore& valore,
                               const std::string& formato, int x = 0);

// The key of a field into the table of descriptions: "XXX" in the place of the row
// ("FE001010" gives "FEXXX010"); a BL field stands as it is. Upper-cased.
std::string InsertWildCardRigaColonna(const std::string& quadroRigaColonna);

// ---------------------------------------------------------------- records

// A record built place by place: each field must start where the previous one ended, so that a
// field one column off is an error when the record is built, not in the file.
class RecordTelematico {
 public:
  // Appends `testo` (already at its width) at the 1-based `posizione`; std::logic_error when
  // the record does not end at posizione - 1.
  RecordTelematico& Campo(int posizione, const std::string& testo);
  RecordTelematico& Riempitivo(int posizione, int lunghezza) { return Campo(posizione, std::string(lunghezza, ' ')); }
  // The record, checked to be exactly 1898 characters with the end mark "A" last.
  std::string Testo() const;

 private:
  std::string testo_;
  int caratteri_ = 0;
};

// UTF-8 text to the file's code page (one byte a character, "?" for what it lacks), and back.
std::string TestoTelematico(std::string_view utf8);
std::string DaTestoTelematico(std::string_view byte);

}  // namespace vorn
