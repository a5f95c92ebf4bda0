// The ledger card on the client's screen: every movement of a sub-account, or of a client or
// supplier on it, in a period, with an opening line and a running balance, written into the
// grid of the client's form, and the small panel of totals beside it.
#pragma once
#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

class clsSaldiContabili;
class clsProgAzienda;

// The grid that the client's form lends to the card. A row is one text with its cells joined
// by "|".
class IGrigliaMastrino {
 public:
  enum Proprieta { ColoreSfondo, ColoreTesto, Grassetto };

  virtual ~IGrigliaMastrino() = default;
  // Empties the grid, headings included.
  virtual void Clear() = 0;
  // Sets the number of columns and their headings.
  virtual void Cols(int n, const std::vector<std::string>& intestazioni) = 0;
  // The number of rows now in the grid (headings excluded).
  virtual int Rows() const = 0;
  // Adds a row at the end, or before the row of index `posizione` (0-based) when given.
  virtual void AddItem(const std::string& riga, int posizione = -1) = 0;
  // Sets a property of the cells of rows riga1..riga2 and columns col1..col2.
  virtual void Cell(Proprieta proprieta, int riga1, int col1, int riga2, int col2, long valore) = 0;
  // Shows what was added so far and lets the client's events through.
  virtual void Refresh() = 0;
  // True when the user asked the fill to stop.
  virtual bool Interrotto() { return false; }
};

// The small panel of balances, as text for the form's boxes.
struct SpecchiettoSaldi {
  std::string txtTotaleDare, txtTotaleAvere;
  std::string txtSaldo, txtSaldoDA;                    // the running balance at the end of the card
  std::string txtSaldoSelezione, txtSaldoSelezioneDA;  // the rows' debit minus credit
  std::string txtSaldoAttuale, txtSaldoAttualeDA;      // the balance today
  std::string txtSaldoUltimoScarico, txtSaldoUltimoScaricoDA;
};

// The form that shows a card: its grid `vsMovimenti` and the panel.
class IFormMastrino : public IForm {
 public:
  virtual IGrigliaMastrino& vsMovimenti() = 0;
  virtual void Specchietto(const SpecchiettoSaldi& /*valori*/) {}
};

class clsVisualizzaMastrini {
 public:
  ConnessioneClasse cn;
  // Set by the client while the grid fills (from its events): the fill ends quietly.
  std::atomic<bool> Interrompi{false};

  // The grid's columns, in order.
  enum Colonna {
    colDataCompetenza, colDataRegistrazione, colNumeroRegistrazione, colCausale, colDescrizione,
    colDataDocumento, colDocumento, colProtocollo, colDare, colAvere, colSaldo, colValuta, colImportoValuta,
    colCambio, colCliFor, colTipoRiga, colRigaVideo, colDareAvere, NumeroColonne
  };
  static const std::vector<std::string>& Intestazioni();
  // Colours the grid uses: the opening line, and a cash account below zero.
  static constexpr long kColoreRiepilogo = 0xC0FFFF;
  static constexpr long kColoreCassaNegativa = 0x0000FF;
  // Rows between two refreshes of the grid.
  static constexpr int kRigheAggiornamento = 250;

  // Fills the form's grid with the card of the period (an end that is not a date leaves the
  // period open there; an open start begins after the last unload that `objProgAzienda` tells,
  // with the progressives of that unload). With
  // `abool_SottocontoCassa` a running balance below zero colours its line. False when the user
  // stopped the fill.
  bool VisualizzaMastrini(IFormMastrino& frm_FormAttiva, clsSaldiContabili& objSaldiContabili,
                          clsProgAzienda& objProgAzienda, const Valore& avar_DaData, const Valore& avar_AData,
                          const Valore& avar_Sottoconto, const Valore& avar_IndCliFor, const Valore& avar_CodCliFor,
                          bool abool_SottocontoCassa);

  // Inserts under the grid's row `avar_RigaGriglia` what stands against it in its entry: for a
  // VAT row ("I") the accounting rows and the VAT rows of other lines; for an accounting row the
  // VAT rows, and the accounting rows of other lines or of the other side. The number of rows
  // inserted.
  int InserisciContropartiteRegistrazione(IFormMastrino& frm_FormAttiva, int avar_RigaGriglia,
                                          const Valore& avar_NumeroRegistrazione,
                                          const Valore& avar_TipoRivaIvaNormale, const Valore& avar_NumRigaAVideo,
                                          const Valore& avar_DareAvere);

  // Writes the panel: totals of the rows, the running balance, the rows' balance, today's
  // balance and the balance of the last unload, each with its side.
  SpecchiettoSaldi Aggiorna_Specchietto_Saldi(IFormMastrino& frm_FormAttiva, Importo TotaleDare, Importo TotaleAvere,
                                              Importo SaldoProgressivo, Importo SaldoAttuale,
                                              Importo SaldoUltimoScarico);

 private:
  void ImpostaGriglia(IGrigliaMastrino& g);
};

}  // namespace vorn
