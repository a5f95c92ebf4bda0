// The company's own banks, one row per bank and agency, with the accounts they post to, the
// data of the collection flows sent to them and the virtual-stamp authorisation: its
// `Plafond` and, in [Bolli Utilizzati], how many stamps of each value it has used.
#pragma once
#include "masterdata/FamigliaAnagrafiche.h"

namespace vorn {

class clsBancheAzienda : public FamigliaAnagrafiche<clsBancheAzienda, 2, 0> {
 public:
  static const DefinizioneAnagrafica& Definizione();

  // LocalizzaRecord(T, Codice_Banca, Codice_Agenzia, clientID, hWnd), SalvaRecord(Codice_Banca,
  // Codice_Agenzia, valori, clientID, hWnd, Cancel) with the data columns `Descrizione` to
  // `CodiceCUC` (Definizione().colonne), CancellaRecord(Codice_Banca, Codice_Agenzia) and
  // ExistCodice(Codice_Banca, Codice_Agenzia, Descrizione) are the family's. Deleting a bank
  // leaves its stamp counts: CancellaRecordBolliUtilizzati takes them.

  // The bank's stamp counts of a value other than 0, by bank, agency and value, editable and
  // left open in T; the first row is stamped with the caller. True if any.
  bool LocalizzaRecordBolliUtilizzati(Recordset& T, const Valore& Codice_Banca, const Valore& Codice_Agenzia,
                                      const Valore& clientID, long hWnd);
  // The count of stamps of one value: a value already held has its quantity replaced by
  // `Qta_bollo`, not added to, under the record protocol (a row reached by another reader
  // asks first; no: Cancel true, nothing written, false); a new value is added.
  bool SalvaRecordBolliUtilizzati(const Valore& Codice_Banca, const Valore& Codice_Agenzia, const Valore& Valore_bollo,
                                  const Valore& Qta_bollo, const Valore& clientID, long hWnd, bool& Cancel);
  // Deletes every stamp count of the bank.
  bool CancellaRecordBolliUtilizzati(const Valore& Codice_Banca, const Valore& Codice_Agenzia);

  // The next / previous bank in the order of bank and agency codes read as one text (for
  // equal texts, by the bank code). From a blank pair the forward step gives the last bank and
  // the backward step the first. On success both arguments take the codes found; with nothing
  // beyond, false and the arguments as they were.
  bool RecordSuccessivo(Valore& Codice_Banca, Valore& Codice_Agenzia);
  bool RecordPrecedente(Valore& Codice_Banca, Valore& Codice_Agenzia);

  // The description; for a missing row whose codes are not both blank, the message under the
  // title "Banca Azienda".
  Valore GetDescrizioneBanca(const Valore& Codice_Banca, const Valore& Codice_Agenzia, bool* Cancel = nullptr,
                             IControllo* ControlloDaSelezionare = nullptr);
  // `Sottoconto Banca cc` and `Sottoconto Banca sbf`; empty text when missing.
  Valore GetSottocontoBanca(const Valore& Codice_Banca, const Valore& Codice_Agenzia);
  Valore GetSottocontoBancaSBF(const Valore& Codice_Banca, const Valore& Codice_Agenzia);

  // The yearly reset of the virtual stamps: `Plafond` of every bank to 0 and every stamp count
  // deleted, both or neither (in the caller's transaction when there is one).
  bool AzzeraProgressiviBolliVirtuali();

  // The data of the collection flows sent to the bank: `Codice SIA`, `Codice ABI`, `Codice CAB`,
  // `Conto ordinante`, `Firma azienda`, `IBAN`, `BBAN`, `CodiceCUC`, `Codice BIC`. False, and
  // every output empty text, when the bank is missing.
  bool GetDatiBancaAziendaGenerazioneFlussi(Valore Codice_Banca, Valore Codice_Agenzia, Valore& Codice_SIA,
                                            Valore& codice_ABI, Valore& codice_CAB, Valore& conto_ordinante,
                                            Valore& Firma_azienda, Valore& IBAN, Valore& BBAN, Valore& CodiceCUC,
                                            Valore& Codice_BIC);

 private:
  bool Passo(Valore& Codice_Banca, Valore& Codice_Agenzia, bool avanti);
};

}  // namespace vorn
