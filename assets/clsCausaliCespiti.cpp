#include "assets/clsCausaliCespiti.h"

#include "frame/Comuni.h"

namespace vorn {

const DefinizioneAnagrafica& clsCausaliCespiti::Definizione() {
  static const DefinizioneAnagrafica d{"Causali Cespiti",
                                       {{"Codice", TipoChiave::Testo}},
                                       "Descrizione",
                                       "Causali Cespiti",
                                       {"Descrizione", "TipoMovimentazione"}};
  return d;
}

bool clsCausaliCespiti::LocalizzaTuttiRecord(Recordset& T) {
  T = C().Execute("SELECT [Causali Cespiti].* FROM [Causali Cespiti] ORDER BY [Causali Cespiti].[Codice];");
  return !T.Eof();
}

bool clsCausaliCespiti::SalvaRecord(const Valore& codice, const Valore& Descrizione, const Valore& TipoMovimentazione,
                                    const Valore& clientID, long hWnd, bool& Cancel, bool NoPrompt) {
  return anagrafiche::Salva(C(), D(), {codice}, anagrafiche::Record(D().colonne, {Descrizione, TipoMovimentazione}),
                            D().colonne, clientID, hWnd, Cancel, NoPrompt);
}

Valore clsCausaliCespiti::GetDescrizione(const Valore& codice, bool* Cancel, IControllo* ControlloDaSelezionare) {
  return LeggiDescrizione({codice}, Cancel, ControlloDaSelezionare);
}

bool clsCausaliCespiti::GetParametriCausale(const Valore& codice, Valore& Descrizione, int& TipoMovimentazione) {
  Valore d;
  const bool trovato = ExistCodice(codice, &d);
  Descrizione = Valore(Trim(d.Testo()));
  TipoMovimentazione = trovato ? GetTipoMovimentazione(codice) : 0;
  return trovato;
}

bool clsCausaliCespiti::AzzeraCausaliCespiti() {
  C().Esegui("DELETE FROM [Causali Cespiti];");
  return true;
}

int clsCausaliCespiti::GetTipoMovimentazione(const Valore& codice) {
  return NullToZeroLng(LeggiValore({codice}, "TipoMovimentazione", Valore(0)));
}

}  // namespace vorn
