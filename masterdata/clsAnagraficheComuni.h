// Shared name-and-address records.
#pragma once
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsAnagraficheComuni : public FamigliaAnagrafiche<clsAnagraficheComuni, 1> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  // SalvaRecord takes the columns as a record of named values: `Ragione Sociale` to `Obsoleto`.

  Valore GetLocalitàCodice(const Valore& Codice_anagrafico);
  Valore GetRagioneSocialeCodice(const Valore& Codice_anagrafico, bool* Cancel = nullptr,
                                 IControllo* ControlloDaSelezionare = nullptr);
  Valore GetRagioneSociale2Codice(const Valore& Codice_anagrafico, bool* Cancel = nullptr,
                                  IControllo* ControlloDaSelezionare = nullptr);
};

}  // namespace vorn
