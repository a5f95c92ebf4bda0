#include "masterdata/clsBanche.h"

#include "frame/Comuni.h"

namespace vorn {

namespace {
// A row that is an agency, not the bank's own.
const char* const kAgenzia = "COALESCE(TRIM([Banche Clienti].[Codice Agenzia]), '') <> ''";
}  // namespace

const DefinizioneAnagrafica& clsBanche::Definizione() {
  static const DefinizioneAnagrafica d{
      "Banche Clienti",
      {{"Codice Banca", TipoChiave::Testo}, {"Codice Agenzia", TipoChiave::TestoBianco}},
      "Descrizione",
      "Banche/Agenzie",
      {"Descrizione", "Codice ABI", "Codice CAB", "Codice BIC", "Libero 1", "Libero 2"},
      0,
      "COALESCE(TRIM([Banche Clienti].[Codice Agenzia]), '') = ''"};
  return d;
}

bool clsBanche::LocalizzaRecordAgenzie(Recordset& T, const Valore& Codice_Banca) {
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(D(), {Codice_Banca}, p);
  T = C().Execute("SELECT [Banche Clienti].* FROM [Banche Clienti] WHERE (" + w + " AND " + kAgenzia +
                      ") ORDER BY [Banche Clienti].[Codice Agenzia];",
                  p);
  return !T.Eof();
}

bool clsBanche::SalvaRecord(const Valore& Codice_Banca, const Valore& Codice_Agenzia, const Valore& Descrizione,
                            const Valore& codice_ABI, const Valore& codice_CAB, const Valore& Codice_BIC,
                            const Valore& Libero_1, const Valore& Libero_2, const Valore& clientID, long hWnd,
                            bool& Cancel) {
  return SalvaRecord(
      Codice_Banca, Codice_Agenzia,
      anagrafiche::Record(D().colonne, {Descrizione, codice_ABI, codice_CAB, Codice_BIC, Libero_1, Libero_2}), clientID,
      hWnd, Cancel);
}

bool clsBanche::CancellaRecord(const Valore& Codice_Banca) { return anagrafiche::Cancella(C(), D(), {Codice_Banca}); }

bool clsBanche::CancellaRecordAgenzie(const Valore& Codice_Banca) {
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(D(), {Codice_Banca}, p);
  C().Esegui("DELETE FROM [Banche Clienti] WHERE (" + w + " AND " + kAgenzia + ");", p);
  return true;
}

Valore clsBanche::GetDescrizioneBanca(const Valore& Codice_Banca, bool* Cancel, IControllo* ControlloDaSelezionare) {
  return anagrafiche::Descrizione(C(), D(), {Codice_Banca, Valore(std::string())}, "Descrizione", Codice_Banca, Cancel,
                                  ControlloDaSelezionare);
}

Valore clsBanche::GetDescrizioneAgenzia(const Valore& Codice_Banca, const Valore& Codice_Agenzia, bool* Cancel,
                                        IControllo* ControlloDaSelezionare) {
  return anagrafiche::Descrizione(C(), D(), {Codice_Banca, Codice_Agenzia}, "Descrizione", Codice_Agenzia, Cancel,
                                  ControlloDaSelezionare, true);
}

bool clsBanche::ExistBanca(const Valore& Codice_Banca, Valore* Descrizione) {
  return ExistCodice(Codice_Banca, Valore(std::string()), Descrizione);
}

Valore clsBanche::GetAbiBanca(const Valore& Codice_Banca) {
  return LeggiValore({Codice_Banca, Valore(std::string())}, "Codice ABI", Valore(std::string()));
}

Valore clsBanche::GetCabBanca(const Valore& Codice_Banca, const Valore& Codice_Agenzia) {
  return LeggiValore({Codice_Banca, Codice_Agenzia}, "Codice CAB", Valore(std::string()));
}

Valore clsBanche::GetBICBanca(const Valore& Codice_Banca, const Valore& Codice_Agenzia) {
  return LeggiValore({Codice_Banca, Codice_Agenzia}, "Codice BIC", Valore(std::string()));
}

}  // namespace vorn
