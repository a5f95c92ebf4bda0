#include "masterdata/clsZone.h"

namespace vorn {

namespace {
// A row that is a sub-zone, not the zone's own.
const char* const kSottozona = "COALESCE(TRIM([Zone Sottozone].[Codice Sottozona]), '') <> ''";
}  // namespace

const DefinizioneAnagrafica& clsZone::Definizione() {
  static const DefinizioneAnagrafica d{
      "Zone Sottozone",
      {{"Codice Zona", TipoChiave::Testo}, {"Codice Sottozona", TipoChiave::TestoBianco}},
      "Descrizione",
      "Zone/Sottozone",
      {"Descrizione", "Note 1", "Note 2", "Libero 1", "Libero 2"},
      0,
      "COALESCE(TRIM([Zone Sottozone].[Codice Sottozona]), '') = ''"};
  return d;
}

bool clsZone::SalvaRecord(const Valore& Codice_Zona, const Valore& Codice_Sottozona, const Valore& Descrizione,
                          const Valore& Note_1, const Valore& Note_2, const Valore& Libero_1, const Valore& Libero_2,
                          const Valore& clientID, long hWnd, bool& Cancel) {
  return SalvaRecord(Codice_Zona, Codice_Sottozona,
                     anagrafiche::Record(D().colonne, {Descrizione, Note_1, Note_2, Libero_1, Libero_2}), clientID,
                     hWnd, Cancel);
}

bool clsZone::CancellaRecord(const Valore& Codice_Zona) { return anagrafiche::Cancella(C(), D(), {Codice_Zona}); }

bool clsZone::CancellaRecordSottozone(const Valore& Codice_Zona) {
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(D(), {Codice_Zona}, p);
  C().Esegui("DELETE FROM [Zone Sottozone] WHERE (" + w + " AND " + kSottozona + ");", p);
  return true;
}

bool clsZone::LocalizzaRecordSottozone(Recordset& T, const Valore& Codice_Zona) {
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(D(), {Codice_Zona}, p);
  T = C().Execute("SELECT [Zone Sottozone].* FROM [Zone Sottozone] WHERE (" + w + " AND " + kSottozona +
                      ") ORDER BY [Zone Sottozone].[Codice Zona], [Zone Sottozone].[Codice Sottozona];",
                  p);
  return !T.Eof();
}

Valore clsZone::GetDescrizioneZona(const Valore& Codice_Zona, const Valore& Codice_Sottozona, bool* Cancel,
                                   IControllo* ControlloDaSelezionare) {
  return anagrafiche::Descrizione(C(), D(), {Codice_Zona, Codice_Sottozona}, "Descrizione", Codice_Zona, Cancel,
                                  ControlloDaSelezionare);
}

Valore clsZone::GetDescrizioneSottozona(const Valore& Codice_Zona, const Valore& Codice_Sottozona, bool* Cancel,
                                        IControllo* ControlloDaSelezionare) {
  return anagrafiche::Descrizione(C(), D(), {Codice_Zona, Codice_Sottozona}, "Descrizione", Codice_Sottozona, Cancel,
                                  ControlloDaSelezionare, true);
}

}  // namespace vorn
