#include "masterdata/clsNazioni.h"

#include "frame/Comuni.h"

namespace vorn {

const DefinizioneAnagrafica& clsNazioni::Definizione() {
  static const DefinizioneAnagrafica d{
      "Nazioni",
      {{"Codice Nazione"}},
      "Descrizione Nazione",
      "Nazioni",
      {"Descrizione Nazione", "Codice ISO", "Codice UIC", "Area Nazione", "Nazione Black List"}};
  return d;
}

bool clsNazioni::SalvaRecord(const Valore& Codice_Nazione, const Valore& Descrizione_Nazione, const Valore& Codice_ISO,
                             const Valore& Codice_UIC, const Valore& Area_Nazione, const Valore& Nazione_Black_List,
                             const Valore& clientID, long hWnd, bool& Cancel) {
  return SalvaRecord(
      Codice_Nazione,
      anagrafiche::Record(D().colonne, {Descrizione_Nazione, Codice_ISO, Codice_UIC, Area_Nazione, Nazione_Black_List}),
      clientID, hWnd, Cancel);
}

Valore clsNazioni::GetDescrizioneNazione(const Valore& Codice_Nazione, bool* Cancel,
                                         IControllo* ControlloDaSelezionare) {
  return LeggiDescrizione({Codice_Nazione}, Cancel, ControlloDaSelezionare);
}

Valore clsNazioni::GetCodiceIsoNazione(Valore Codice_Nazione) {
  return LeggiValore({Codice_Nazione}, "Codice ISO", Valore(std::string()));
}

Valore clsNazioni::GetCodiceUICNazione(Valore Codice_Nazione) {
  return LeggiValore({Codice_Nazione}, "Codice UIC", Valore(std::string()));
}

int16_t clsNazioni::GetAreaNazione(const Valore& Codice_Nazione) {
  return static_cast<int16_t>(NullToZeroLng(LeggiValore({Codice_Nazione}, "Area Nazione", Valore(0))));
}

}  // namespace vorn
