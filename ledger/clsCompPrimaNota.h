// The unload (scarico) of closed months of the journal: the entries registered up to the end of
// a month leave the journal; what they moved goes into the progressive columns of the balances
// (opening, debit, credit at the last unload) and, when the company keeps it, each row is copied
// into the history ([Storico Contabile]). From then on a balance is the progressives plus what is
// left in the journal (clsSaldiContabili).
//
// The run is one unit: the history, the progressives, the delete and the date of the last unload
// land together or not at all, so a failed run leaves the company as it was and can simply be run
// again; a second run over the same months is refused by the date of the last unload.
//
// An entry is unloaded whole, and only when every balance at a date from the end of the unload on
// and every ledger card starting after it come out the same afterwards: so an entry stays in the
// journal when one of its rows has no competence date or one past the end (its amount must still
// count from that date), or moves a client or supplier on a sub-account other than the partner's
// control sub-account (the partner's progressives are kept on its control sub-account only).
#pragma once
#include <cstdint>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

struct ArgomentiCompattamento {
  IForm* frm_FormAttiva = nullptr;  // msgbar: the phase of the run
  int avar_Mese = 0, avar_Anno = 0;  // the last month unloaded
  bool abool_ForzaCompattamento = false;  // unload months not printed on the journal book and registers
  bool abool_GestioneStorico = false;     // copy the rows into [Storico Contabile]
  Valore clientID;
  long hWnd = 0;
};

struct EsitoCompattamento {
  Data dal, al;              // the registration dates unloaded
  long registrazioni = 0;    // entries unloaded
  long righe = 0;            // their rows
  long righeStorico = 0;     // rows copied to the history
  long registrazioniRimaste = 0;  // entries registered in the range that had to stay (see above)
  int32_t ultimoStorico = 0;      // the last key of the history
};

class clsCompPrimaNota {
 public:
  ConnessioneClasse cn;

  static const char* const kTitolo;  // "Compattamento prima nota"

  // True when every row registered in the range carries "G" in position 2 of its indicators.
  bool StampatoSuLibroGiornale(const Valore& daData, const Valore& aData);
  // True when every VAT row registered in the range (a row of a register) carries "R" in
  // position 1.
  bool StampatoSuRegistriIva(const Valore& daData, const Valore& aData);

  // The whole run. False, with the message told through the host, when there is nothing to do or
  // it may not run: a month that gives no date, no journal rows up to it, a month not after the
  // last unload, months not printed (unless forced), no entry that can leave the journal. A
  // database error throws, with nothing changed.
  bool CompattamentoPrimaNota(const ArgomentiCompattamento& a, EsitoCompattamento* esito = nullptr);

  // Store the three progressive columns of a sub-account (the balance row is created when
  // missing), or of a client ("C") or supplier ("F"): absolute values, not increments.
  bool SalvaRecordSaldiProgressiviSottoconto(const Valore& CodiceGruppo, const Valore& CodiceConto,
                                             const Valore& CodiceSottoconto, Importo SaldoInizialeProgr,
                                             Importo DareProgressivo, Importo AvereProgressivo);
  bool SalvaSaldiProgressiviCliFor(const Valore& IndClienteFornitore, const Valore& codiceCliFor,
                                   Importo SaldoInizialeProgr, Importo DareProgressivo, Importo AvereProgressivo);
};

}  // namespace vorn
