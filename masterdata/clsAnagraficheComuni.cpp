#include "masterdata/clsAnagraficheComuni.h"

namespace vorn {

const DefinizioneAnagrafica& clsAnagraficheComuni::Definizione() {
  static const DefinizioneAnagrafica d{
      "Anagrafiche Comuni",
      {{"Codice anagrafico"}},
      "Ragione Sociale",
      "Anagrafiche Comuni",
      {"Ragione Sociale", "Ragione Sociale 2", "Indirizzo", "Cap", "Località", "Provincia", "Telefono", "Fax",
       "Cellulare", "Telefono2", "Fax2", "Cellulare2", "Partita Iva", "Codice Nazione", "Codice Fiscale",
       "Persona Fisica", "Richiesta trattamento dati", "Autorizzazione trattamento dati", "Codice selezione",
       "Libero1", "Contatto", "E-mail", "PEC", "Sito Web", "User Web", "Password Web", "Cognome", "Nome",
       "Località nascita", "Provincia nascita", "Nazione nascita", "Nazione Domicilio", "Data nascita", "Sesso",
       "Note", "Obsoleto"}};
  return d;
}

Valore clsAnagraficheComuni::GetLocalitàCodice(const Valore& Codice_anagrafico) {
  return LeggiValore({Codice_anagrafico}, "Località", Valore(std::string()));
}

Valore clsAnagraficheComuni::GetRagioneSocialeCodice(const Valore& Codice_anagrafico, bool* Cancel,
                                                     IControllo* ControlloDaSelezionare) {
  return LeggiColonna({Codice_anagrafico}, "Ragione Sociale", Cancel, ControlloDaSelezionare);
}

Valore clsAnagraficheComuni::GetRagioneSociale2Codice(const Valore& Codice_anagrafico, bool* Cancel,
                                                      IControllo* ControlloDaSelezionare) {
  return LeggiColonna({Codice_anagrafico}, "Ragione Sociale 2", Cancel, ControlloDaSelezionare);
}

}  // namespace vorn
