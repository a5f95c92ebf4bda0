#include "masterdata/clsAgenti.h"

namespace vorn {

const DefinizioneAnagrafica& clsAgenti::Definizione() {
  static const DefinizioneAnagrafica d{
      "Anagrafica Agenti",
      {{"Codice Agente"}},
      "Ragione Sociale",
      "Agenti",
      {"Codice zona", "Codice sottozona", "Descrizione Zona", "Descrizione Sottozona", "Budget 1", "Budget 2",
       "Imponibile provvigioni", "Provvigioni maturate", "Calcolo provvigione", "Scaglione 0", "Scaglione 1",
       "Scaglione 2", "Scaglione 3", "Scaglione 4", "Scaglione 5", "Scaglione 6", "Scaglione 7", "Scaglione 8",
       "Scaglione 9", "Codice Iva", "Descrizione Iva", "aliquota", "Perc Ritenuta", "Perc Imponibile Ritenuta",
       "Perc Enasarco", "Note", "Obsoleto"}};
  return d;
}

const std::vector<std::string>& clsAgenti::ColonneDatiAnagrafici() {
  static const std::vector<std::string> c{
      "Ragione Sociale", "Ragione Sociale 2", "Indirizzo", "Cap", "Località", "Provincia", "Telefono", "Fax",
      "Cellulare", "Telefono2", "Fax2", "Cellulare2", "Partita Iva", "Codice Nazione", "Codice Fiscale",
      "Persona Fisica", "Richiesta trattamento dati", "Autorizzazione trattamento dati", "Codice selezione",
      "Libero1", "Contatto", "E-mail", "PEC", "Sito Web", "User Web", "Password Web", "Cognome", "Nome",
      "Località nascita", "Provincia nascita", "Nazione nascita", "Nazione Domicilio", "Data nascita", "Sesso",
      "Note", "Obsoleto"};
  return c;
}

bool clsAgenti::SalvaRecordDatiAnagrafici(const Valore& Codice_Agente, const RecordValori& valori,
                                          const Valore& clientID, long hWnd, bool& Cancel, bool NoPrompt) {
  return anagrafiche::Salva(C(), D(), {Codice_Agente}, valori, ColonneDatiAnagrafici(), clientID, hWnd, Cancel,
                            NoPrompt);
}

Valore clsAgenti::GetRagioneSocialeAgente(const Valore& Codice_Agente, bool* Cancel,
                                          IControllo* ControlloDaSelezionare) {
  return LeggiDescrizione({Codice_Agente}, Cancel, ControlloDaSelezionare);
}

}  // namespace vorn
