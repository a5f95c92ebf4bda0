// Countries.
#pragma once
#include <cstdint>

#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsNazioni : public FamigliaAnagrafiche<clsNazioni, 1> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  using FamigliaAnagrafiche::SalvaRecord;
  bool SalvaRecord(const Valore& Codice_Nazione, const Valore& Descrizione_Nazione, const Valore& Codice_ISO,
                   const Valore& Codice_UIC, const Valore& Area_Nazione, const Valore& Nazione_Black_List,
                   const Valore& clientID, long hWnd, bool& Cancel);

  Valore GetDescrizioneNazione(const Valore& Codice_Nazione, bool* Cancel = nullptr,
                               IControllo* ControlloDaSelezionare = nullptr);
  Valore GetCodiceIsoNazione(Valore Codice_Nazione);
  Valore GetCodiceUICNazione(Valore Codice_Nazione);
  // `Area Nazione`, 0 when missing.
  int16_t GetAreaNazione(const Valore& Codice_Nazione);
};

}  // namespace vorn
