// Zones and sub-zones of clients, suppliers and agents. A zone's own row has a blank sub-zone
// (empty, blanks or null, all read alike); its sub-zones are the rows with the same zone code.
#pragma once
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsZone : public FamigliaAnagrafiche<clsZone, 2> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  using FamigliaAnagrafiche::SalvaRecord;
  bool SalvaRecord(const Valore& Codice_Zona, const Valore& Codice_Sottozona, const Valore& Descrizione,
                   const Valore& Note_1, const Valore& Note_2, const Valore& Libero_1, const Valore& Libero_2,
                   const Valore& clientID, long hWnd, bool& Cancel);
  // A zone goes with all its sub-zones.
  bool CancellaRecord(const Valore& Codice_Zona);
  // Only the sub-zones: the zone's own row stays.
  bool CancellaRecordSottozone(const Valore& Codice_Zona);
  // The sub-zones of a zone, read-only, in the order of zone and sub-zone; true if any. No stamp.
  bool LocalizzaRecordSottozone(Recordset& T, const Valore& Codice_Zona);

  // The description of the row of both codes (the zone's own row for a blank sub-zone); the
  // message is for an unknown zone.
  Valore GetDescrizioneZona(const Valore& Codice_Zona, const Valore& Codice_Sottozona, bool* Cancel = nullptr,
                            IControllo* ControlloDaSelezionare = nullptr);
  // The same for a sub-zone: a blank sub-zone finds nothing.
  Valore GetDescrizioneSottozona(const Valore& Codice_Zona, const Valore& Codice_Sottozona, bool* Cancel = nullptr,
                                 IControllo* ControlloDaSelezionare = nullptr);
};

}  // namespace vorn
