// Price lists.
#pragma once
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsAnagraficaListini : public FamigliaAnagrafiche<clsAnagraficaListini, 1> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  using FamigliaAnagrafiche::SalvaRecord;
  bool SalvaRecord(const Valore& Numero_Listino, const Valore& Descrizione_Listino, const Valore& Codice_valuta,
                   const Valore& Flag_Prezzo_Iva_Inclusa, const Valore& Obsoleto, const Valore& Note_1,
                   const Valore& Note_2, const Valore& clientID, long hWnd, bool& Cancel);
  // The fields to save as two parallel lists of names and values.
  bool SalvaRecordArray(const Valore& Numero_Listino, const std::vector<std::string>& arrFields,
                        const std::vector<Valore>& arrValues, const Valore& clientID, long hWnd, bool& Cancel);

  Valore GetDescrizioneListino(const Valore& Numero_Listino, bool* Cancel = nullptr,
                               IControllo* ControlloDaSelezionare = nullptr);
  // True when the list's prices include VAT (`Flag Prezzo Iva Inclusa` "1").
  bool IsListinoIvaInclusa(const Valore& Numero_Listino);
};

}  // namespace vorn
