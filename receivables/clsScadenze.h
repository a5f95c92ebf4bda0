// The due instalments of documents ([Scadenziario], one row per instalment) and the generator
// that works them out from a payment code: dates, amounts, the rounding rest, the stamp duty and
// the rows already settled by the document itself.
//
// The generator writes nothing to the database: it gives delimited text rows ("|" after each
// field), which the client shows and turns into rows with SalvaRecord.
//   an instalment, 20 fields: type and description | due date | amount | paid (0) | 6 empty |
//     0 | 2 empty | stamp duty | current account | 5 empty
//   a settled row, 18 fields: type and description | document date | amount | amount paid |
//     5 empty | 0 | empty | description | "0" | current account | 4 empty
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

// What the generator takes of a document.
struct DocumentoScadenze {
  std::string a_varTipoCliFor;     // "C" or "F"
  std::string a_varCodiceCliente;  // the counterparty, whose excluded months apply
  Data a_datDataDocumento;
  std::string a_varNumeroDocumento, a_varSerieDocumento;  // not in the rows
  Importo a_curImportoDocumento;  // what the instalments add up to
  Importo a_curIvaDocumento, a_curSpeseDocumento;
  // Amounts the document settles itself: each gives a settled row when not 0.
  Importo a_curAcconto, a_curRitenuta1, a_curRitenuta2, a_curAbbuono, a_curOmaggi, a_curSplitPayment;
  std::string a_varCodiceValuta;  // empty: the accounting currency
  double a_varCambio = 1;         // not in the rows
  std::string a_varCodicePagamento;
  std::string a_varDescrizione;  // not in the rows
  std::string a_varContoCorrente;
  // The start date of a term that starts from a different date ("DD"); without it, the host
  // asks for one.
  std::optional<Data> a_datDataDiversa;
};

class clsScadenze {
 public:
  ConnessioneClasse cn;

  // Writes the rows at Array_Scadenze_Generate[Indice + 1], [Indice + 2]... raising the index
  // before each (position 0 is left unused when the caller starts at 0). An unknown payment
  // code gives the settled rows only. The result is always false: callers go by the index.
  bool GeneraScadenze(std::vector<std::string>& Array_Scadenze_Generate, long& Indice_Array_Scadenze_Generate,
                      const DocumentoScadenze& d);

  // The fields of a generated row (each followed by its "|").
  static std::vector<std::string> CampiRiga(const std::string& riga);
  // The fields of an instalment row.
  static constexpr size_t kCampiRata = 20;
  // The fields of a settled row (an amount the document settles itself).
  static constexpr size_t kCampiSaldata = 18;

  // True when the days are above 0 and a multiple of 30 (a step of whole months).
  static bool Multiplo30(const Valore& giorni);
  // "Rimessa diretta", "Ric.Bancaria"...; empty text for an unknown kind.
  static std::string GetDesTipoPagamento(const Valore& a_varTipo);

  // ---- numbering
  // The highest [Progressivo Documento] plus 1 (1 with no row): a reading, nothing taken.
  int32_t GetNuovoProgressivoDocumento();
  // The next [Numero Progressivo] as it stands (the 'SCA' counter or the table's highest, plus
  // 1): a reading, nothing taken.
  int32_t GetNuovoNumeroEffetto();
  // Stores a number in the 'SCA' counter (the row made when missing), all or nothing.
  bool SetProgressivoScadenze(const Valore& Numero_progressivo, const Valore& clientID, long hWnd);
  // The numbers handed out, under the lock of the numbering service, in the caller's
  // transaction (their own when none is open): no two writers get the same one.
  int32_t PrendiNumeroEffetto();
  int32_t PrendiProgressivoDocumento();

  // ---- rows
  // The row of the columns of [Scadenziario] by name (unknown names refused before any write).
  // A [Numero Progressivo] of 0 or missing takes the next number (written back into `valori`);
  // a missing [Progressivo Documento] likewise. The record protocol: a row another reader
  // reached asks first (no: Cancel true, nothing written).
  bool SalvaRecord(RecordValori& valori, const Valore& clientID, long hWnd, bool& Cancel);
  // The rows of a generation (rows daIndice to aIndice of GeneraScadenze's array) saved as
  // rows of one document: `documento` holds its columns (tipo, Codice Cliente, Numero
  // Documento...), each row adds its due date, kind, amount and stamp duty; a settled row its
  // date, kind and amount, and in [Note] what it settles ("Rilevaz. acconto"...), by which the
  // invoice posting finds it. The document's number is taken once when `documento` has none.
  // The count saved, and their sum in `totale`; a row that cannot be saved is an error.
  long SalvaScadenzeGenerate(const std::vector<std::string>& righe, long daIndice, long aIndice,
                             const RecordValori& documento, const Valore& clientID, long hWnd,
                             Importo* totale = nullptr);
  bool LocalizzaRecord(Recordset& T, const Valore& Numero_progressivo, const Valore& clientID, long hWnd);
  // The instalments of a document, by due date.
  bool LocalizzaRecordDocumento(Recordset& T, const Valore& Progressivo_Documento);
  bool CancellaRecord(const Valore& Numero_progressivo);
  bool CancellaRecordDocumento(const Valore& Progressivo_Documento);
  bool RecordSuccessivo(Valore& Numero_progressivo);
  bool RecordPrecedente(Valore& Numero_progressivo);
  bool AzzeraScadenze();

  // ---- payments: [Scadenziario Pagamenti], rows 1, 2... of an instalment. [Importo Pagato]
  // of the instalment is the sum of its rows (RiallineaImportoPagatoScadenza restores it).
  // The payment's row by the columns of [Scadenziario Pagamenti] (unknown names refused before
  // any write): added or replaced, with its writer's stamp.
  bool SalvaRecordPagamento(const RecordValori& valori, const Valore& clientID, long hWnd, bool& Cancel);
  bool CancellaTuttiRecordsPagamento(const Valore& Numero_progressivo);
  bool CancellaRecordPagamenti(const Valore& Numero_progressivo, const Valore& Riga);
  bool LocalizzaRecordPagamenti(Recordset& T, const Valore& Numero_progressivo, const Valore& clientID, long hWnd);
  // The highest row of an instalment, 0 with none (rows compared as numbers).
  int32_t GetMaxRigaPagamento(const Valore& Numero_progressivo);
  double GetImportoPagatoNumeroProgressivo(const Valore& Numero_progressivo);
  bool RiallineaImportoPagatoScadenza(const Valore& Numero_progressivo);
  bool LocalizzaRecordPagamentiRegistrazione(Recordset& T, const Valore& numeroRegistrazione, const Valore& clientID,
                                             long hWnd);
  bool CancellaRecordPagamentiRegistrazione(const Valore& numeroRegistrazione, int64_t& recordsAffected);
  bool ExistsPagamentiRegistrazione(const Valore& numeroRegistrazione);
  // True when the instalment may no longer change: paid in part or whole, in a remittance
  // list, issued, unified or posted; each reason is appended to strStato.
  bool IsScadenzaBloccata(const Valore& Numero_progressivo, std::string& strStato);
  // True when any instalment of the document is so.
  bool IsScadenzeDocumentoBloccate(const Valore& tipo, const Valore& Codice_Cliente, const Valore& DataDocumento,
                                   const Valore& Serie, const Valore& NumeroDocumento, std::string& strStato);
  bool EffettoCollegatoADistinta(const Valore& Numero_progressivo);
  bool AzzeraScadenzePagamenti();
};

}  // namespace vorn
