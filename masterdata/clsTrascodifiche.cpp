#include "masterdata/clsTrascodifiche.h"

namespace vorn {

const DefinizioneAnagrafica& clsTrascodifiche::Definizione() {
  static const DefinizioneAnagrafica d{"Trascodifiche",
                                       {{"IndClienteFornitore"},
                                        {"CodClienteFornitore"},
                                        {"TipoArchivio", TipoChiave::Numero},
                                        {"CodiceEsterno"}},
                                       "CodiceInterno",
                                       "",
                                       {"CodiceInterno"}};
  return d;
}

bool clsTrascodifiche::SalvaRecord(const Valore& IndClienteFornitore, const Valore& CodClienteFornitore,
                                   const Valore& TipoArchivio, const Valore& CodiceEsterno,
                                   const Valore& CodiceInterno, const Valore& clientID, long hWnd, bool& Cancel) {
  return SalvaRecord(IndClienteFornitore, CodClienteFornitore, TipoArchivio, CodiceEsterno,
                     anagrafiche::Record(D().colonne, {CodiceInterno}), clientID, hWnd, Cancel);
}

bool clsTrascodifiche::LocalizzaTuttiRecord(Recordset& T, const Valore& IndClienteFornitore,
                                            const Valore& CodClienteFornitore, const Valore& TipoArchivio) {
  Parametri p;
  std::string w = anagrafiche::FiltroChiavi(D(), {IndClienteFornitore, CodClienteFornitore, TipoArchivio}, p);
  T = C().Apri("Trascodifiche", w, p, "[Trascodifiche].[CodiceEsterno]");
  return !T.Eof();
}

bool clsTrascodifiche::CancellaTuttiRecord(const Valore& IndClienteFornitore, const Valore& CodClienteFornitore,
                                           const Valore& TipoArchivio) {
  return anagrafiche::Cancella(C(), D(), {IndClienteFornitore, CodClienteFornitore, TipoArchivio});
}

Valore clsTrascodifiche::GetCodiceInterno(const Valore& IndClienteFornitore, const Valore& CodClienteFornitore,
                                          const Valore& TipoArchivio, const Valore& CodiceEsterno) {
  return LeggiValore({IndClienteFornitore, CodClienteFornitore, TipoArchivio, CodiceEsterno}, "CodiceInterno",
                     Valore(std::string()));
}

bool clsTrascodifiche::ExistsTrascodifica(const Valore& IndClienteFornitore, const Valore& CodClienteFornitore,
                                          const Valore& TipoArchivio, const Valore& CodiceEsterno) {
  return ExistCodice(IndClienteFornitore, CodClienteFornitore, TipoArchivio, CodiceEsterno);
}

void clsTrascodifiche::LoadTipoTrascodificheInCombo(ICombo& Combo) {
  Combo.Clear();
  Combo.AddItem("Piano dei conti");
  Combo.ItemData(kTipoPianoDeiConti);
}

bool clsTrascodifiche::AzzeraTrascodifiche() {
  C().Esegui("DELETE FROM [Trascodifiche];");
  return true;
}

}  // namespace vorn
