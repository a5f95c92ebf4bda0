#include "masterdata/clsGruppiCliFor.h"

namespace vorn {

const DefinizioneAnagrafica& clsGruppiCliFor::Definizione() {
  static const DefinizioneAnagrafica d{
      "Gruppi cli/for", {{"Codice gruppo"}}, "Descrizione gruppo", "[Gruppi cli/for]", {"Descrizione gruppo"}};
  return d;
}

bool clsGruppiCliFor::SalvaRecord(const Valore& CodiceGruppo, const Valore& Descrizione_gruppo, const Valore& clientID,
                                  long hWnd, bool& Cancel) {
  return SalvaRecord(CodiceGruppo, anagrafiche::Record(D().colonne, {Descrizione_gruppo}), clientID, hWnd, Cancel);
}

Valore clsGruppiCliFor::GetDescrizioneGruppo(const Valore& CodiceGruppo, bool* Cancel,
                                             IControllo* ControlloDaSelezionare) {
  return LeggiDescrizione({CodiceGruppo}, Cancel, ControlloDaSelezionare);
}

}  // namespace vorn
