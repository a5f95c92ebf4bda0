// The last number of each document series: [Progressivi Numerazione Vorn], keyed by
// TipoRegistro, IndOrdiniImpegni, NumeroRegistro, Deposito, SerieDocumento. TipoRegistro "2" is
// the VAT protocol of purchases, which has no series. Ledger registers have an empty
// IndOrdiniImpegni and the depot "000".
//
// A key part given as empty text finds a row whose column is empty or null.
//
// GetNumeroNuovo... only read: the caller uses the number and saves it later, so two clients
// between the two steps get the same number. PrendiNumero... take it inside the caller's
// transaction instead, and no two clients get the same one.
#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn {

class clsProgrNumerazione {
 public:
  ConnessioneClasse cn;

  // Opens the key's row for the client and stamps it; true when found.
  bool LocalizzaRecord(Recordset& T, const Valore& TipoRegistro, const Valore& IndOrdiniImpegni,
                       const Valore& NumeroRegistro, const Valore& Deposito, const Valore& SerieDocumento,
                       const Valore& clientID, long hWnd);
  // Every row, read-only; true when there is one.
  bool LocalizzaTuttiRecord(Recordset& T);
  // The record protocol on the key: a new key is added, an existing row that another reader
  // reached asks first (no: Cancel true, nothing written).
  bool SalvaRecord(const Valore& TipoRegistro, const Valore& IndOrdiniImpegni, const Valore& NumeroRegistro,
                   const Valore& Deposito, const Valore& SerieDocumento, const Valore& NumeroUltimoDoc,
                   const Valore& DataUltimoDoc, const Valore& NumeroUltimoDocBollato, const Valore& clientID,
                   long hWnd, bool& Cancel);
  bool CancellaRecord(const Valore& TipoRegistro, const Valore& IndOrdiniImpegni, const Valore& NumeroRegistro,
                      const Valore& Deposito, const Valore& SerieDocumento);

  // The next protocol of a VAT register: NumeroUltimoDoc + 1, or 1 without a row. The row is
  // not changed.
  Valore GetNumeroNuovoProtocollo(const Valore& NumeroRegistro);
  // The next number of a document series, the same way.
  Valore GetNumeroNuovoDocumento(const Valore& TipoRegistro, const Valore& NumeroRegistro,
                                 const Valore& SerieDocumento);
  // The date of the series' last document as "dd/mm/yyyy"; empty text without a row or a date.
  std::string GetDataUltimoDocumento(const Valore& TipoRegistro, const Valore& NumeroRegistro,
                                     const Valore& SerieDocumento);

  // Deletes every row.
  bool AzzeraProgressiviNumerazione();
  // NumeroUltimoDocBollato to 0 on every row.
  bool AzzeraNumerazioneDocumentiStampati();
  // The last number printed on numbered sheets. A missing row is made with the key and the
  // same number as its last number used.
  bool SalvaNumeroUltimoDocBollato(const Valore& TipoRegistro, const Valore& NumeroRegistro,
                                   const Valore& SerieDocumento, const Valore& NumeroUltimoDocBollato,
                                   const Valore& clientID, long hWnd);

  // ---- numbers taken inside the caller's transaction (a transaction of their own when none
  // is open): NumeroUltimoDoc raised by one and written, the new number returned. A rollback
  // gives the number back. The date of the document is left to the save that follows.
  int32_t PrendiNumeroProtocollo(const Valore& NumeroRegistro);
  int32_t PrendiNumeroDocumento(const Valore& TipoRegistro, const Valore& NumeroRegistro,
                                const Valore& SerieDocumento);
};

}  // namespace vorn
