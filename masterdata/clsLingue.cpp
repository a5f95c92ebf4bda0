#include "masterdata/clsLingue.h"

#include "frame/Comuni.h"

namespace vorn {

namespace {
const char* const kItaliano = "Italiano";
}

const DefinizioneAnagrafica& clsLingue::Definizione() {
  static const DefinizioneAnagrafica d{
      "Lingue", {{"Codice"}}, "Descrizione", "Lingue", {"Descrizione", "Note 1", "Note 2"}};
  return d;
}

bool clsLingue::SalvaRecord(const Valore& codice, const Valore& Descrizione, const Valore& Note_1,
                            const Valore& Note_2, const Valore& clientID, long hWnd, bool& Cancel) {
  return SalvaRecord(codice, anagrafiche::Record(D().colonne, {Descrizione, Note_1, Note_2}), clientID, hWnd, Cancel);
}

Valore clsLingue::GetDescrizione(const Valore& codice, bool* Cancel, IControllo* ControlloDaSelezionare) {
  std::string t = Trim(codice.Testo());
  if (t.empty() || (codice.IsNumeric() && NullToZeroDbl(codice) == 0)) return Valore(kItaliano);
  if (auto v = anagrafiche::LeggiColonna(C(), D(), {codice}, "Descrizione")) return *v;
  anagrafiche::SegnalaInesistente(codice, Cancel, ControlloDaSelezionare, D().titolo);
  return Valore(kItaliano);
}

}  // namespace vorn
