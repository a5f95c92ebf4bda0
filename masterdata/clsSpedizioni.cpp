#include "masterdata/clsSpedizioni.h"

#include "frame/Comuni.h"

namespace vorn {

const DefinizioneAnagrafica& clsSpedizioni::Definizione() {
  static const DefinizioneAnagrafica d{"Spedizioni",
                                       {{"Tipo record"}, {"Codice"}},
                                       "Descrizione",
                                       "Spedizioni",
                                       {"Descrizione", "Mezzo di trasporto"},
                                       1};
  return d;
}

bool clsSpedizioni::SalvaRecord(const Valore& IndTipoRecord, const Valore& codice, const Valore& Descrizione,
                                const Valore& Mezzo_di_trasporto, const Valore& clientID, long hWnd, bool& Cancel) {
  return SalvaRecord(IndTipoRecord, codice, anagrafiche::Record(D().colonne, {Descrizione, Mezzo_di_trasporto}),
                     clientID, hWnd, Cancel);
}

Valore clsSpedizioni::GetDescrizione(const Valore& IndTipoRecord, const Valore& codice, bool* Cancel,
                                     IControllo* ControlloDaSelezionare) {
  return LeggiDescrizione({IndTipoRecord, codice}, Cancel, ControlloDaSelezionare);
}

int16_t clsSpedizioni::GetFlagMezzo(const Valore& IndTipoRecord, const Valore& codice) {
  return static_cast<int16_t>(NullToZeroLng(LeggiValore({IndTipoRecord, codice}, "Mezzo di trasporto", Valore(0))));
}

}  // namespace vorn
