// The asset register of a year: the card of every asset in use in the year, built into
// [Elaborazione cespiti schede contabili] under the caller's name, then printed by category
// with the fiscal and the civil figures of each asset, the category's totals and the year's
// totals, on pages of 131 columns with the company's head and the page stamp.
//
// A trial print leaves nothing behind. A definitive print ("B") numbers the book's sheets
// (TipoStampa "B") and records the date of the book, 31/12 of the year, together, and names the
// print only once they are committed; a year already on the book is refused.
#pragma once
#include <cstdint>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

class clsAnagraficaAzienda;
class clsNumerazioneFogli;
class clsProgAzienda;

struct ArgomentiRegistroCespiti {
  IForm* objFormAttiva = nullptr;
  clsAnagraficaAzienda* objAnagraficaAzienda = nullptr;  // the print makes its own when missing
  clsProgAzienda* objProgressiviAzienda = nullptr;
  clsNumerazioneFogli* objNumerazioneFogli = nullptr;
  std::string clientName = "vorn";  // whose rows of the card table
  std::string AzRagSoc, AzParIva;   // who prints, in the foot
  std::string nomeFile;             // the print
  int anno = 0;
  int avar_RighePagina = 72;
  std::string avar_ProvaBollato;  // "B" definitive, anything else a trial
  Valore clientID = Valore("");
  long hWnd = 0;
};

struct EsitoRegistroCespiti {
  bool stampato = false;
  bool giaBollato = false;  // a definitive print refused: the year is on the book already
  long primoFoglio = 0, prossimoFoglio = 0;  // definitive: the first sheet and the book's next
  int cespiti = 0;  // assets printed
  Importo valoreFisc, ammortamentoFisc, fondoFisc, residuoFisc;  // the year's totals, fiscal
};

// A page must hold the head (two empty lines and seven), the foot (two) and a few lines of body.
inline constexpr int kMinimoRighePaginaCespiti = 14;

class clsCespitiRegistro {
 public:
  ConnessioneClasse cn;

  // The cards of the year under clientName (the caller's rows deleted first); the count of
  // assets. None in the archive: a beep and "Non è stato trovato nessun cespite per i
  // parametri di selezione indicati".
  int16_t MakeDatiStampaGiornaleCespiti(IForm* objFormAttiva, const std::string& clientName, int anno);

  // The cards, then the print; its work rows are deleted at the end. False with nothing to
  // print ("Nessun dato da stampare.").
  bool StampaRegistroCespiti(const ArgomentiRegistroCespiti& a);
  const EsitoRegistroCespiti& Esito() const { return esito_; }

 private:
  EsitoRegistroCespiti esito_;
};

}  // namespace vorn
