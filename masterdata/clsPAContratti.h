// Public-administration contracts quoted on electronic invoices.
#pragma once
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsPAContratti : public FamigliaAnagrafiche<clsPAContratti, 1> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  using FamigliaAnagrafiche::SalvaRecord;
  bool SalvaRecord(const Valore& Codice_Contratto, const Valore& Descrizione, const Valore& IndTipo,
                   const Valore& IndStato, const Valore& Numero, const Valore& Commessa, const Valore& CUP,
                   const Valore& CIG, const Valore& Note, const Valore& clientID, long hWnd, bool& Cancel);

  Valore GetDescrizioneContratto(const Valore& Codice_Contratto, bool* Cancel = nullptr,
                                 IControllo* ControlloDaSelezionare = nullptr);
  bool ExistCodiceContratto(const Valore& Codice_Contratto, Valore* Descrizione = nullptr);
};

}  // namespace vorn
