#include "masterdata/clsPAContratti.h"

namespace vorn {

const DefinizioneAnagrafica& clsPAContratti::Definizione() {
  static const DefinizioneAnagrafica d{
      "PA Contratti",
      {{"Codice"}},
      "Descrizione",
      "PA Contratti",
      {"Descrizione", "IndTipo", "IndStato", "Numero", "Commessa", "CUP", "CIG", "Note"}};
  return d;
}

bool clsPAContratti::SalvaRecord(const Valore& Codice_Contratto, const Valore& Descrizione, const Valore& IndTipo,
                                 const Valore& IndStato, const Valore& Numero, const Valore& Commessa,
                                 const Valore& CUP, const Valore& CIG, const Valore& Note, const Valore& clientID,
                                 long hWnd, bool& Cancel) {
  return SalvaRecord(
      Codice_Contratto,
      anagrafiche::Record(D().colonne, {Descrizione, IndTipo, IndStato, Numero, Commessa, CUP, CIG, Note}), clientID,
      hWnd, Cancel);
}

Valore clsPAContratti::GetDescrizioneContratto(const Valore& Codice_Contratto, bool* Cancel,
                                               IControllo* ControlloDaSelezionare) {
  return LeggiDescrizione({Codice_Contratto}, Cancel, ControlloDaSelezionare);
}

bool clsPAContratti::ExistCodiceContratto(const Valore& Codice_Contratto, Valore* Descrizione) {
  return ExistCodice(Codice_Contratto, Descrizione);
}

}  // namespace vorn
