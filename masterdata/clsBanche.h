// The banks of clients and suppliers and their agencies, in one table: a row with a blank
// `Codice Agenzia` (empty, blanks or null, all read alike) is the bank itself, a row with an
// agency code is one of its agencies.
#pragma once
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsBanche : public FamigliaAnagrafiche<clsBanche, 2> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  // LocalizzaRecord(T, Codice_Banca, Codice_Agenzia, clientID, hWnd) of the family: the row of
  // the bank (blank agency) or of the agency.

  // The agencies of a bank, read-only, in code order; true if any. The bank's own row is not
  // among them, and nothing is stamped.
  bool LocalizzaRecordAgenzie(Recordset& T, const Valore& Codice_Banca);

  using FamigliaAnagrafiche::SalvaRecord;
  bool SalvaRecord(const Valore& Codice_Banca, const Valore& Codice_Agenzia, const Valore& Descrizione,
                   const Valore& codice_ABI, const Valore& codice_CAB, const Valore& Codice_BIC, const Valore& Libero_1,
                   const Valore& Libero_2, const Valore& clientID, long hWnd, bool& Cancel);

  // The bank goes with all its agencies.
  bool CancellaRecord(const Valore& Codice_Banca);
  // Only the agencies: the bank's own row stays.
  bool CancellaRecordAgenzie(const Valore& Codice_Banca);

  // RecordSuccessivo(Codice_Banca) and RecordPrecedente(Codice_Banca) of the family step among
  // the banks' own rows only, never onto an agency.

  // The bank's description (its own row); the message is for an unknown bank.
  Valore GetDescrizioneBanca(const Valore& Codice_Banca, bool* Cancel = nullptr,
                             IControllo* ControlloDaSelezionare = nullptr);
  // An agency's description: a blank agency finds nothing; the message is for an unknown agency.
  Valore GetDescrizioneAgenzia(const Valore& Codice_Banca, const Valore& Codice_Agenzia, bool* Cancel = nullptr,
                               IControllo* ControlloDaSelezionare = nullptr);
  // True when the bank's own row exists; Descrizione, when passed, takes its description or
  // empty text. ExistCodice(Codice_Banca, Codice_Agenzia, Descrizione) of the family answers
  // for a bank or an agency.
  bool ExistBanca(const Valore& Codice_Banca, Valore* Descrizione = nullptr);

  // `Codice ABI` of the bank's own row; `Codice CAB` and `Codice BIC` of the bank or agency.
  // Empty text when the row is missing.
  Valore GetAbiBanca(const Valore& Codice_Banca);
  Valore GetCabBanca(const Valore& Codice_Banca, const Valore& Codice_Agenzia);
  Valore GetBICBanca(const Valore& Codice_Banca, const Valore& Codice_Agenzia);
};

}  // namespace vorn
