// Delivery addresses and branches of clients and suppliers. Stepping goes from subject to
// subject (client or supplier with destinations), not from destination to destination.
#pragma once
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsSedi : public FamigliaAnagrafiche<clsSedi, 3, 0> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  // SalvaRecord takes the columns as a record of named values: `Tipo record` to `Codice EDI`.

  // All the destinations of one subject, by `Codice destinazione`; the first is stamped.
  bool LocalizzaTuttiRecords(Recordset& T, const Valore& Tipo_clifor, const Valore& Codice_anagrafico,
                             const Valore& clientID, long hWnd);
  bool CancellaTuttiRecords(const Valore& Codice_anagrafico, const Valore& Tipo_clifor);
  bool ExistsSedi(const Valore& Tipo_clifor, const Valore& Codice_anagrafico);
  // `Codice destinazione` of the subject's first destination of that record type, or empty text.
  Valore GetPrimaDestinazione(const Valore& Tipo_clifor, const Valore& Codice_anagrafico, const Valore& Tipo_record);

  // The next and the previous subject in the order of the code padded with zeros to six
  // characters followed by the subject's kind; a blank code counts as "000000".
  bool RecordSuccessivo(Valore& Tipo_clifor, Valore& Codice_anagrafico);
  bool RecordPrecedente(Valore& Tipo_clifor, Valore& Codice_anagrafico);

 private:
  bool Passo(Valore& Tipo_clifor, Valore& Codice_anagrafico, bool avanti);
};

}  // namespace vorn
