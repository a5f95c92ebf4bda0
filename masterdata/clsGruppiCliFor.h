// Groups of clients and suppliers.
#pragma once
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsGruppiCliFor : public FamigliaAnagrafiche<clsGruppiCliFor, 1> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  using FamigliaAnagrafiche::SalvaRecord;
  bool SalvaRecord(const Valore& CodiceGruppo, const Valore& Descrizione_gruppo, const Valore& clientID, long hWnd,
                   bool& Cancel);

  Valore GetDescrizioneGruppo(const Valore& CodiceGruppo, bool* Cancel = nullptr,
                              IControllo* ControlloDaSelezionare = nullptr);
};

}  // namespace vorn
