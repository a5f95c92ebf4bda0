// The open instalments of the due-date book and their closing by a payment.
#pragma once
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn {

class clsScadenze;

class clsSaldaconto {
 public:
  ConnessioneClasse cn;

  // The instalments not paid in full and not folded into a unified one, by due date. `tipo`
  // "C" or "F"; each argument given adds its condition (the due dates by either end or both).
  bool LocalizzaScadenzeSaldaconto(Recordset& T, const Valore& tipo, const Valore& Codice_Cliente,
                                   const Valore& Codice_Banca, const Valore& Codice_Agenzia,
                                   const Valore& Data_Scadenza_Iniziale, const Valore& Data_Scadenza_Finale,
                                   const Valore& NumeroDocumento, const Valore& Serie, const Valore& DataDocumento);

  // Records a payment on an instalment: its paid amount raised by the amount (IncrementaPagato)
  // or set to it, and a payment row (the next row number) dated on the registration, together.
  // An unknown instalment: a beep and a message, false.
  bool ChiudiScadenza(const Valore& Numero_progressivo, const Valore& Importo_Pagato, const Valore& numeroRegistrazione,
                      const Valore& DataRegistrazione, const Valore& Descrizione_Pagamento, bool IncrementaPagato,
                      clsScadenze* objScadenze, const Valore& clientID, long hWnd);
};

}  // namespace vorn
