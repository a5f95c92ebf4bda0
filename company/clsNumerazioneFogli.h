// The numbering of the sheets of the statutory books: [Numerazione Fogli], one row per book and
// year, keyed by TipoStampa ("R" VAT register, "L" VAT settlement register, "G" journal book,
// "B" asset book), TipoRegistro, NumeroRegistro, Anno and Serie. A row keeps the last sheet
// printed and the company lines printed at the head of each sheet.
//
// A text key part given as empty text finds a row whose column is empty or null; an empty year
// finds 0 or null.
#pragma once
#include <memory>
#include <ostream>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn {

class clsNumerazioneFogli {
 public:
  ConnessioneClasse cn;

  // Opens the key's row for the client and stamps it; true when found.
  bool LocalizzaRecord(Recordset& T, const Valore& TipoStampa, const Valore& TipoRegistro, const Valore& NumeroRegistro,
                       const Valore& anno, const Valore& Serie, const Valore& clientID, long hWnd);
  // The record protocol: a new key is added; an existing row that another reader reached asks
  // first (no: Cancel true, nothing written).
  bool SalvaRecord(const Valore& TipoStampa, const Valore& TipoRegistro, const Valore& NumeroRegistro,
                   const Valore& anno, const Valore& Serie, const Valore& Numero, const Valore& Azienda,
                   const Valore& PartitaIVA, const Valore& Descrizione, const Valore& IndSede, const Valore& IndZero,
                   const Valore& Indirizzo, const Valore& IndStampaAnno, const Valore& clientID, long hWnd,
                   bool& Cancel);
  bool CancellaRecord(const Valore& TipoStampa, const Valore& TipoRegistro, const Valore& NumeroRegistro,
                      const Valore& anno, const Valore& Serie);

  // The title proposed for a book; an empty value for a book without one (the asset book's
  // title comes from its caller).
  Valore GetDescrizioneRegistroProposta(const Valore& TipoStampa, const Valore& TipoRegistro);
  // The company lines proposed for the head of a sheet. A company (IndPersonaFisica not "1"):
  // kind of seat "0", its VAT number and the address of its registered office. A natural
  // person ("1"): kind "1", the fiscal code and the address of Tabella Azienda. The address is
  // its four parts (street, postcode, town, province) trimmed and joined by blanks.
  void GetDatiFiscaliProposti(Valore& Azienda, Valore& Partita_IVA, Valore& Ind_TipoSede, Valore& Indirizzo);
  // What the print of a book starts from. With a row: DaNumero is its Numero and the lines are
  // the row's (the row is stamped). Without: the proposed title and company lines, DaNumero
  // "1". True when the row exists.
  bool GetDatiNumerazioneAutomatica(const Valore& TipoStampa, const Valore& TipoRegistro, const Valore& NumeroRegistro,
                                    const Valore& anno, const Valore& Serie, Valore& Azienda, Valore& Partita_IVA,
                                    Valore& Descrizione, Valore& Indirizzo, Valore& Ind_TipoSede, Valore& DaNumero,
                                    const Valore& clientID, long hWnd);
  // Stores the last sheet printed, making the row with the proposed title and lines (IndZero
  // "0") at a book's first print. An empty TipoStampa does nothing and gives false.
  bool SalvaUltimoNumero(const Valore& TipoStampa, const Valore& TipoRegistro, const Valore& NumeroRegistro,
                         const Valore& anno, const Valore& Serie, const Valore& Numero, const Valore& clientID,
                         long hWnd);

  // Numbers the sheets of a book's print: copies `ingresso`, laid out on pages of `righe` lines
  // whose first two lines are empty, to `uscita`, with the book's heading (company name, VAT
  // number or fiscal code, title) and the sheet number prefix/number on the first line of each
  // page, starting from the book's next sheet. Gives the first sheet and the next one after the
  // print, for SalvaUltimoNumero; nothing is stored here.
  struct Fogli {
    long primo = 0, prossimo = 0;
  };
  Fogli NumeraFogli(const std::string& ingresso, const std::string& uscita, int righe, const Valore& TipoStampa,
                    const Valore& TipoRegistro, const Valore& NumeroRegistro, int anno, const Valore& clientID,
                    long hWnd);
  // The same into the caller's stream (the print's own file, for one pass less).
  Fogli NumeraFogli(const std::string& ingresso, std::ostream& uscita, int righe, const Valore& TipoStampa,
                    const Valore& TipoRegistro, const Valore& NumeroRegistro, int anno, const Valore& clientID,
                    long hWnd);

  // SalvaUltimoNumero of the next sheet after a definitive print of a book (series empty); when
  // it fails, the box that tells the user, and false.
  bool SalvaFogliStampati(const Valore& TipoStampa, const Valore& TipoRegistro, const Valore& NumeroRegistro, int anno,
                          long prossimo, const Valore& clientID, long hWnd);

  // Delete the rows of the VAT books ("R" and "L"), of the journal book ("G"), of the asset
  // book ("B"); the other books stay.
  bool AzzeraNumerazioneFogliIVA();
  bool AzzeraNumerazioneFogliLibroGiornale();
  bool AzzeraNumerazioneFogliRegistroCespiti();
};

}  // namespace vorn
