// The causals of asset movements: each gives the kind of its movements (TipoMovimentazione),
// which is what the depreciation reads.
#pragma once
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

// The kinds of asset movement.
enum TipoMovimentazioneCespiti : int {
  kNessuna = 0,
  kAcquisto = 1,
  kVenditaDismissione = 2,
  kManutenzioneRiparazione = 3,
  kRivalutazione = 4,
  kSvalutazione = 5,
  kOneriSpese = 6,
  kDismissionePerScissione = 7,
  kPlusvalenzaReinvestita = 8,
  kRettificaPlusvalenzaDaVendita = 9,
  kRettificaMinusvalenzaDaVendita = 10,
  kAmmortamOrdinarioRidotto = 11,
  kAmmortamAnticipato = 12,
  kVariazioneFondoOrdinario = 13,
  kVariazioneFondoAnticipato = 14,
};

class clsCausaliCespiti : public FamigliaAnagrafiche<clsCausaliCespiti, 1> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  bool LocalizzaTuttiRecord(Recordset& T);
  using FamigliaAnagrafiche::SalvaRecord;
  bool SalvaRecord(const Valore& codice, const Valore& Descrizione, const Valore& TipoMovimentazione,
                   const Valore& clientID, long hWnd, bool& Cancel, bool NoPrompt = false);
  Valore GetDescrizione(const Valore& codice, bool* Cancel = nullptr, IControllo* ControlloDaSelezionare = nullptr);
  // False, the outputs empty and 0, for an unknown causal.
  bool GetParametriCausale(const Valore& codice, Valore& Descrizione, int& TipoMovimentazione);
  bool ExistCausaleCespiti(const Valore& codice) { return ExistCodice(codice); }
  bool AzzeraCausaliCespiti();
  // 0 (kNessuna) for an unknown causal.
  int GetTipoMovimentazione(const Valore& codice);
};

}  // namespace vorn
