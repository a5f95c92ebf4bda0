// The year change: one run closes an accounting year and opens the next by writing real journal
// entries through clsPrimaNota (each row with its balance movement). The costs and revenues are
// closed onto the profit and loss account, its difference goes to the result account, the
// patrimonial accounts are closed onto the closing balance account and reopened in the new year
// against the opening balance account; clients and suppliers are closed and reopened one partner
// at a time. The old year's rows stay.
//
// The run is one transaction: it lands whole or leaves nothing (journal, balances, counters).
// A year already changed is refused with a message, so that a second run never doubles the
// entries. The accounts and causals come from clsTabRiferimenti::GetRiferimentiCambioEsercizio.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

class clsPrimaNota;

struct ArgomentiCambioEsercizio {
  IForm* frm_FormAttiva = nullptr;  // the progress (msgbar)
  Valore avar_DaData, avar_AData;   // the year being closed, by competence date
  Valore avar_DataRegistrazioneChiusura, avar_DataCompetenzaChiusura;
  Valore avar_SottocontoProfittiPerdite;  // SottUtilePerditaEse
  Valore avar_CausaleBilancioChiusura;
  Valore var_DescrizioneSupplem_Chiusura;
  Valore avar_SottocontoUtilePerdita;  // SottRisultatoEsercizio
  Valore avar_SottocontoBilancioChiusura, avar_SottocontoBilancioApertura;
  Valore avar_DataRegistrazioneApertura, avar_DataCompetenzaApertura;
  Valore avar_CausaleBilancioApertura;
  Valore var_DescrizioneSupplem_Apertura;
  Valore clientID = Valore("");
  long hWnd = 0;
};

// What a run wrote: the entries (0 when one was not needed) and their rows.
struct EsitoCambioEsercizio {
  int32_t registrazioneChiusuraEconomici = 0;
  int32_t registrazioneRisultato = 0;
  int32_t registrazioneChiusuraPatrimoniali = 0;
  int32_t registrazioneApertura = 0;
  long righe = 0;
  Importo risultato;  // revenues less costs: a profit is positive
};

// The arguments of a run with the company's references (GetRiferimentiCambioEsercizio): the
// year from `inizio` to `fine`, closed on its last day and opened on the day after, described
// "Chiusura conti AAAA" and "Apertura conti AAAA". False when the references have no row.
bool ArgomentiCambioEsercizioAzienda(const std::shared_ptr<Connessione>& cn, const Data& inizio, const Data& fine,
                                     ArgomentiCambioEsercizio& a);

class clsCambioEsercizio {
 public:
  ConnessioneClasse cn;

  // The whole run inside one transaction (its own, or a savepoint level of the caller's).
  // False, with the reason told through the host and nothing written, when the arguments do not
  // hold (dates, accounts and causals missing or of the wrong kind, an account whose group has
  // no section, a journal unloaded past the year's end) or the year has already been changed.
  // The year's balances are its journal rows by competence date, plus the progressives of the
  // last unload when it joins the year or lies inside it. A database error throws, nothing left.
  // `objPrimaNota` is used with this object's connection.
  bool CambioEsercizioVorn(const ArgomentiCambioEsercizio& a, clsPrimaNota& objPrimaNota,
                           EsitoCambioEsercizio* esito = nullptr);

  // The balance of the economic accounts (section "1") of the year, debit positive, from the
  // journal rows by competence date.
  Importo GetSaldoContoEconomico(const Valore& avar_DaData, const Valore& avar_AData);
  // The same for the patrimonial accounts (section "0").
  Importo GetSaldoSituazionePatrimoniale(const Valore& avar_DaData, const Valore& avar_AData);

  static const char* const kTitolo;
};

}  // namespace vorn
