// The pagination pass of the reports: a body file written with no page logic is copied to the
// final file with heads, feet and page numbers. Lines end with "\n"; the reports are 131
// columns wide, and every width counts characters of the UTF-8 text. The final file is written
// through FileStampa: whole or not at all, and never over a file that is not a report.
#pragma once
#include <array>
#include <optional>
#include <ostream>
#include <string>

#include "frame/Valore.h"

namespace vorn {

inline constexpr int kColonneReport = 131;

// A fixed head (two empty lines and t1..t7) and a fixed foot (p1, p2) on pages of `righe` lines
// (at least 5); the last page is filled with empty lines, or cancelled with a diagonal of
// asterisks when `asterischi` is true. With `rigaPagina` 1..7 that head line carries the page
// stamp of RigaPagina; the count goes on from the caller's last reset.
void ImpaginaFile(const std::string& ingresso, const std::string& uscita, int righe,
                  const std::array<std::string, 7>& testata, const std::array<std::string, 2>& piede,
                  bool asterischi = false, int rigaPagina = 0);
// The same into the caller's stream (a work file of its own, or the print's FileStampa): no
// file is opened, closed or synced here.
void ImpaginaFile(const std::string& ingresso, std::ostream& uscita, int righe,
                  const std::array<std::string, 7>& testata, const std::array<std::string, 2>& piede,
                  bool asterischi = false, int rigaPagina = 0);

// A head of up to nine lines after one empty line, and a foot of up to four: trailing blank
// lines of each are left out. The head line of index `rigaPagina` (1-based) carries the page
// stamp of RigaPagina. Page numbers restart from 1.
void ImpaginaFileAzienda(const std::string& ingresso, const std::string& uscita, int righe,
                         const std::array<std::string, 9>& testata, const std::array<std::string, 4>& piede,
                         int rigaPagina, bool asterischi = false);

// Adds 1 to ContatorePagina and returns `riga` with its last 14 characters replaced by
// "Pag: " + the number right-aligned in 5 + " ===". With `azzera` passed, whatever its value,
// ContatorePagina goes back to 0 and the result is empty text.
std::string RigaPagina(const std::string& riga, const std::optional<Valore>& azzera = std::nullopt);

// For pre-numbered books: copies the lines on pages of `righe` (at least 5) rows, the first
// line of a page being row 2. Row `rigaA` prints `testoA` in place of the input line, row `rigaB`
// `testoB`; row `rigaNumero` gets the text left-aligned in 120 and then prefisso + "/" + numero
// right-aligned in 11, and `numero` advances by 1 in the caller's variable.
void ImpaginaSemplice(const std::string& ingresso, const std::string& uscita, int righe, int rigaA,
                      const std::string& testoA, int rigaB, const std::string& testoB, int rigaNumero,
                      const std::string& prefisso, Valore& numero);
// The same into the caller's stream.
void ImpaginaSemplice(const std::string& ingresso, std::ostream& uscita, int righe, int rigaA,
                      const std::string& testoA, int rigaB, const std::string& testoB, int rigaNumero,
                      const std::string& prefisso, Valore& numero);

// The closers of a last page, from the row after `contatore` through the usable rows (`righe`
// less the foot's lines): empty lines, or a single "*" on each row preceded by blanks that start
// at 131 minus the rows left (at least 0) and grow by one a row, so that the diagonal ends at
// column 131.
void ChiudiPaginaBianca(std::ostream& out, int contatore, int righe, int righePiede = 2);
void ChiudiPaginaAsterischi(std::ostream& out, int contatore, int righe, int righePiede = 2);

}  // namespace vorn
