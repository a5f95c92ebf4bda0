// Shipping codes (goods' appearance, carriage terms, means of transport, ...), one series per
// record type.
#pragma once
#include <cstdint>

#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsSpedizioni : public FamigliaAnagrafiche<clsSpedizioni, 2, 2> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  using FamigliaAnagrafiche::SalvaRecord;
  bool SalvaRecord(const Valore& IndTipoRecord, const Valore& codice, const Valore& Descrizione,
                   const Valore& Mezzo_di_trasporto, const Valore& clientID, long hWnd, bool& Cancel);

  Valore GetDescrizione(const Valore& IndTipoRecord, const Valore& codice, bool* Cancel = nullptr,
                        IControllo* ControlloDaSelezionare = nullptr);
  // `Mezzo di trasporto`, 0 when missing.
  int16_t GetFlagMezzo(const Valore& IndTipoRecord, const Valore& codice);
};

}  // namespace vorn
