// The journal book: every journal row of a month in date order, with row numbers that go on
// from the last definitive print and debit and credit totals carried on through the year.
//
// A trial print changes nothing. A definitive print ("B") is all-or-nothing: the "G" mark in
// position 2 of Stringa10indicatori on exactly the rows printed, the last row number, the
// running totals, the date of the print and the book's next sheet commit together, and the
// print's file takes its name only once they are committed. When another user changed, added
// or printed rows of the month meanwhile, the run is refused and nothing is written. A trial
// print and the definitive print of the same month give the same lines.
//
// The rows stream from the journal in one read of the month, which gives the day's totals too
// (the rows already on the book count in them): no work table, and the memory of a print does
// not grow with the month.
#pragma once
#include <cstdint>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

// A page must hold the head (two empty lines and seven), the foot (two) and three lines of
// body: the totals carried from the page before, a row, the totals carried to the next.
inline constexpr int kMinimoRighePagina = 14;

class clsAnagraficaAzienda;
class clsNumerazioneFogli;
class clsPrimaNota;
class clsProgAzienda;

// The values a print takes. The objects are the caller's; when one is missing the print makes
// its own on the class's connection.
struct ArgomentiLibroGiornale {
  IForm* formAttiva = nullptr;  // its msgbar tells the progress
  clsAnagraficaAzienda* objAnagraficaAzienda = nullptr;
  clsProgAzienda* objProgressiviAzienda = nullptr;
  clsPrimaNota* objPrimaNota = nullptr;  // not needed: the print marks its own rows, in its own unit
  clsNumerazioneFogli* objNumerazioneFogli = nullptr;
  std::string AzRagSoc, AzParIva;  // who prints, in the foot
  std::string nomeFile;            // the print
  int avar_Mese = 1;
  int avar_Anno = 0;
  bool avar_StampaCodiciConti = false;  // the account's code before its description
  std::string avar_ProvaBollato;        // "B" definitive, anything else a trial
  int avar_RighePagina = 72;
  bool avar_NumerazionePagine = true;  // the sheets numbered from the book's next one
  std::string avar_PrefissoTabelleTmp = "g";  // kept for the callers: the print needs no work table
  Valore clientID = Valore("");
  long hWnd = 0;
};

// What a print produced.
struct EsitoLibroGiornale {
  bool stampato = false;  // false with nessunDato: "Nessun dato da stampare."
  bool nessunDato = false;
  int64_t righe = 0;        // journal rows printed
  int32_t primaRiga = 0;    // the number of the first row printed
  int32_t ultimaRiga = 0;   // the number of the last row printed
  Importo dare, avere;      // the running totals after the month
  long primoFoglio = 0;     // with avar_NumerazionePagine: the first sheet of the print
  long prossimoFoglio = 0;  // and the next sheet of the book after it
};

class clsLibroGiornale {
 public:
  ConnessioneClasse cn;

  // The whole run; true when the print was made (and, when definitive, committed).
  bool StampaLibroGiornale(const ArgomentiLibroGiornale& a);
  const EsitoLibroGiornale& Esito() const { return esito_; }

 private:
  EsitoLibroGiornale esito_;
};

}  // namespace vorn
