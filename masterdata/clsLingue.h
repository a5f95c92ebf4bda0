// Languages of documents. The company's own language, Italian, has no row: code 0.
#pragma once
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsLingue : public FamigliaAnagrafiche<clsLingue, 1> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  using FamigliaAnagrafiche::SalvaRecord;
  bool SalvaRecord(const Valore& codice, const Valore& Descrizione, const Valore& Note_1, const Valore& Note_2,
                   const Valore& clientID, long hWnd, bool& Cancel);

  // "Italiano" for a code that is 0 or blank, without reading; an unknown code gives the
  // message and "Italiano" too.
  Valore GetDescrizione(const Valore& codice, bool* Cancel = nullptr, IControllo* ControlloDaSelezionare = nullptr);
};

}  // namespace vorn
