#include "masterdata/clsAnagraficaListini.h"

namespace vorn {

const DefinizioneAnagrafica& clsAnagraficaListini::Definizione() {
  static const DefinizioneAnagrafica d{
      "Anagrafica listini",
      {{"Numero Listino"}},
      "Descrizione Listino",
      "Listini",
      {"Descrizione Listino", "Codice valuta", "Flag Prezzo Iva Inclusa", "Obsoleto", "Note 1", "Note 2"}};
  return d;
}

bool clsAnagraficaListini::SalvaRecord(const Valore& Numero_Listino, const Valore& Descrizione_Listino,
                                       const Valore& Codice_valuta, const Valore& Flag_Prezzo_Iva_Inclusa,
                                       const Valore& Obsoleto, const Valore& Note_1, const Valore& Note_2,
                                       const Valore& clientID, long hWnd, bool& Cancel) {
  return SalvaRecord(Numero_Listino,
                     anagrafiche::Record(D().colonne, {Descrizione_Listino, Codice_valuta, Flag_Prezzo_Iva_Inclusa,
                                                       Obsoleto, Note_1, Note_2}),
                     clientID, hWnd, Cancel);
}

bool clsAnagraficaListini::SalvaRecordArray(const Valore& Numero_Listino, const std::vector<std::string>& arrFields,
                                            const std::vector<Valore>& arrValues, const Valore& clientID, long hWnd,
                                            bool& Cancel) {
  return SalvaRecord(Numero_Listino, anagrafiche::Record(arrFields, arrValues), clientID, hWnd, Cancel);
}

Valore clsAnagraficaListini::GetDescrizioneListino(const Valore& Numero_Listino, bool* Cancel,
                                                   IControllo* ControlloDaSelezionare) {
  return LeggiDescrizione({Numero_Listino}, Cancel, ControlloDaSelezionare);
}

bool clsAnagraficaListini::IsListinoIvaInclusa(const Valore& Numero_Listino) {
  return LeggiValore({Numero_Listino}, "Flag Prezzo Iva Inclusa", Valore("0")).TestoTrim() == "1";
}

}  // namespace vorn
