// A ledger card from the history of the journal ([Storico Contabile]): the unloaded rows of a
// sub-account, or of a client or supplier on it, in a period of competence dates, with a running
// balance and no opening line, into the grid of the client's form.
#pragma once
#include <atomic>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Importo.h"
#include "frame/Valore.h"
#include "ledger/clsVisualizzaMastrini.h"

namespace vorn {

class clsVisualizzaStorico {
 public:
  ConnessioneClasse cn;
  std::atomic<bool> Interrompi{false};

  enum Colonna {
    colDataCompetenza, colDataRegistrazione, colNumeroRegistrazione, colCausale, colDescrizione, colDataDocumento,
    colDocumento, colProtocollo, colDare, colAvere, colSaldo, colCliFor, NumeroColonne
  };
  static const std::vector<std::string>& Intestazioni();

  // Fills the grid (an end that is not a date leaves the period open there), then the panel with
  // the totals and the final balance. False when the user stopped the fill.
  bool VisualizzaMastriniStorico(IFormMastrino& frm_FormAttiva, const Valore& avar_DaData, const Valore& avar_AData,
                                 const Valore& avar_Sottoconto, const Valore& avar_IndCliFor,
                                 const Valore& avar_CodCliFor);
  // The panel: the rows' totals and balance, each with its side.
  SpecchiettoSaldi Aggiorna_Specchietto_Saldi(IFormMastrino& frm_FormAttiva, Importo TotaleDare, Importo TotaleAvere);

  // The totals of the last fill.
  Importo TotaleDare() const { return dare_; }
  Importo TotaleAvere() const { return avere_; }
  long Righe() const { return righe_; }

 private:
  Importo dare_, avere_;
  long righe_ = 0;
};

}  // namespace vorn
