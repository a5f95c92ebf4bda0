#include "masterdata/clsValute.h"

#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "frame/VornServer.h"

namespace vorn {

const DefinizioneAnagrafica& clsValute::Definizione() {
  static const DefinizioneAnagrafica d{
      "Valute",
      {{"Codice valuta", TipoChiave::Testo}},
      "Descrizione valuta",
      "Valute",
      {"Descrizione valuta", "Simbolo valuta", "Cambio", "Numero decimali valuta", "Flag valuta EMU", "Data cambio"}};
  return d;
}

bool clsValute::SalvaRecord(const Valore& CodiceValuta, const Valore& DescrizioneValuta, const Valore& Simbolo_Valuta,
                            const Valore& Cambio, const Valore& NumeroDecimali_valuta, const Valore& Flag_valuta_EMU,
                            const Valore& Data_Cambio, const Valore& clientID, long hWnd, bool& Cancel,
                            bool NoPrompt) {
  Valore data = Data_Cambio;
  if (data.tipo() != Valore::Tipo::Data) {
    auto d = Data::DaTesto(Data_Cambio.TestoTrim());
    data = d ? Valore(*d) : Valore::Null();
  }
  return anagrafiche::Salva(C(), D(), {CodiceValuta},
                            anagrafiche::Record(D().colonne, {DescrizioneValuta, Simbolo_Valuta, Cambio,
                                                              NumeroDecimali_valuta, Flag_valuta_EMU, data}),
                            D().colonne, clientID, hWnd, Cancel, NoPrompt);
}

bool clsValute::GetParametriValuta(const Valore& CodiceValuta, const Valore& /*Data_Cambio*/,
                                   Valore& Descrizione_Valuta, Valore& Simbolo_Valuta, Valore& Cambio,
                                   Valore& NumeroDecimali_valuta) {
  Recordset rs = C().Execute(
      "SELECT [Descrizione valuta], [Simbolo valuta], [Cambio], [Numero decimali valuta] FROM [Valute] "
      "WHERE [Codice valuta] = ?;",
      {Valore(CodiceValuta.Testo())});
  if (rs.Eof()) {
    Descrizione_Valuta = Valore("");
    Simbolo_Valuta = Valore("");
    Cambio = Valore(1);
    NumeroDecimali_valuta = Valore("2");
    return false;
  }
  Descrizione_Valuta = LeggiCampo(rs("Descrizione valuta"), Valore(""));
  Simbolo_Valuta = LeggiCampo(rs("Simbolo valuta"), Valore(""));
  Cambio = LeggiCampo(rs("Cambio"), Valore(0));
  NumeroDecimali_valuta = LeggiCampo(rs("Numero decimali valuta"), Valore("2"));
  return true;
}

Valore clsValute::GetDecimaliValuta(const Valore& CodiceValuta) { return DecimaliValuta(C(), CodiceValuta); }

std::string clsValute::FormatValuta(const Valore& Testo, const std::optional<Valore>& Valuta,
                                    const std::optional<Valore>& CampoTipoPrezzo) {
  auto regola = RegolaFormattaImporto(Valuta, CampoTipoPrezzo,
                                      [this](const Valore& codice) { return GetDecimaliValuta(codice); });
  return Format(Testo, regola.maschera);
}

std::string clsValute::GetDescrizioneValuta(const Valore& CodiceValuta, bool* Cancel,
                                            IControllo* ControlloDaSelezionare) {
  return LeggiDescrizione({CodiceValuta}, Cancel, ControlloDaSelezionare).TestoTrim();
}

std::string clsValute::GetSimboloValuta(const Valore& CodiceValuta) {
  auto v = anagrafiche::LeggiColonna(C(), D(), {CodiceValuta}, "Simbolo valuta", Valore("EUR"));
  return v ? v->TestoTrim() : std::string();
}

bool clsValute::AzzeraValute() {
  C().Esegui("DELETE FROM [Valute];");
  return true;
}

}  // namespace vorn
