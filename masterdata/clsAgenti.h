// Sales agents. The registry data and the commercial data of an agent are saved apart.
#pragma once
#include <string>
#include <vector>

#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsAgenti : public FamigliaAnagrafiche<clsAgenti, 1> {
 public:
  static const DefinizioneAnagrafica& Definizione();
  // The columns of the registry save: `Ragione Sociale` to `Obsoleto`.
  static const std::vector<std::string>& ColonneDatiAnagrafici();

  // The registry columns named in `valori`; NoPrompt true overwrites without asking (a later
  // save of the same screen).
  bool SalvaRecordDatiAnagrafici(const Valore& Codice_Agente, const RecordValori& valori, const Valore& clientID,
                                 long hWnd, bool& Cancel, bool NoPrompt = false);
  // SalvaRecord writes the commercial columns: `Codice zona` to `Perc Enasarco`, `Note`, `Obsoleto`.

  Valore GetRagioneSocialeAgente(const Valore& Codice_Agente, bool* Cancel = nullptr,
                                 IControllo* ControlloDaSelezionare = nullptr);
};

}  // namespace vorn
