// The history of the journal ([Storico Contabile]): one row for each journal row that an unload
// took out of the journal, keyed by IDProgressivo, a number that runs on across unloads.
#pragma once
#include <cstdint>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn {

// One row of the history, by column name.
struct RigaStorico {
  Valore IDProgressivo, SottocontoMovimento, IndClienteFornitore, CodClienteFornitore, DataCompetenza,
      NumeroRegistrazione, DataDocumento, SerieDocumento, NumeroDocumento, CausaleContabile, DescrizioneSuppleme,
      DareAvere, ImportoMovimento, NumeroProtocollo, DataRegistrazione, CodiceValuta, Cambio, ImportoValuta;
};

class clsStoricoPrimaNota {
 public:
  ConnessioneClasse cn;

  // The row of the key, into `riga`; false when there is none.
  bool LocalizzaRecord(const Valore& IDProgressivo, RigaStorico& riga);
  // Inserts or replaces the row of riga.IDProgressivo. Never asks: Cancel comes back false.
  bool SalvaRecord(const RigaStorico& riga, const Valore& clientID, long hWnd, bool& Cancel);
  bool CancellaRecord(const Valore& IDProgressivo);
  // The next and the previous key (numeric order) into `IDProgressivo`; false at the ends.
  bool RecordSuccessivo(Valore& IDProgressivo);
  bool RecordPrecedente(Valore& IDProgressivo);
  // True when the history holds a row of the entry.
  bool ExistRegistrazione(const Valore& NumeroRegistrazione);
  // Deletes the whole history.
  bool AzzeraStoricoPrimaNota();
  // The highest key, 0 for an empty history.
  int32_t GetMaxIDProgressivoStoricoContabile();
};

}  // namespace vorn
