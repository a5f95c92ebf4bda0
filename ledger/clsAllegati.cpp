#include "ledger/clsAllegati.h"

namespace vorn {

long clsAllegati::AzzeraProgressiviAllegati() {
  return static_cast<long>(cn->Esegui("DELETE FROM [Allegati] WHERE [IndTipoRecord] IN ('AL', 'A2')"));
}

}  // namespace vorn
