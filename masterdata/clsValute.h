// The currencies, [Valute]: description, symbol, the one exchange rate of each currency and its
// decimals; and the amount formatter that works from a currency code on this class's own
// connection, by the same rule as FormattaImporto.
#pragma once
#include <optional>
#include <string>

#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsValute : public FamigliaAnagrafiche<clsValute, 1> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  using FamigliaAnagrafiche::SalvaRecord;
  // The columns in their stored order after the key; Data_Cambio Null unless a date. NoPrompt
  // overwrites a row read by someone else without asking.
  bool SalvaRecord(const Valore& CodiceValuta, const Valore& DescrizioneValuta, const Valore& Simbolo_Valuta,
                   const Valore& Cambio, const Valore& NumeroDecimali_valuta, const Valore& Flag_valuta_EMU,
                   const Valore& Data_Cambio, const Valore& clientID, long hWnd, bool& Cancel,
                   bool NoPrompt = false);

  // One rate a currency: Data_Cambio has no effect. No row: empty description and symbol, rate
  // 1, decimals "2", false. A row: its columns, the decimals "2" when Null, true.
  bool GetParametriValuta(const Valore& CodiceValuta, const Valore& Data_Cambio, Valore& Descrizione_Valuta,
                          Valore& Simbolo_Valuta, Valore& Cambio, Valore& NumeroDecimali_valuta);
  // No row: the company's DecimaliImporti; a row: its decimals, "2" when Null.
  Valore GetDecimaliValuta(const Valore& CodiceValuta);
  // FormattaImporto with the decimals of GetDecimaliValuta.
  std::string FormatValuta(const Valore& Testo, const std::optional<Valore>& Valuta = std::nullopt,
                           const std::optional<Valore>& CampoTipoPrezzo = std::nullopt);
  // The description; for an unknown code that is not blank, "Codice inesistente." titled
  // "Valute" when Cancel is passed, and the control marked when one is passed.
  std::string GetDescrizioneValuta(const Valore& CodiceValuta, bool* Cancel = nullptr,
                                   IControllo* ControlloDaSelezionare = nullptr);
  // No row: empty text; a row: the symbol, "EUR" when Null.
  std::string GetSimboloValuta(const Valore& CodiceValuta);
  // Empties the table.
  bool AzzeraValute();
};

}  // namespace vorn
