// The asset movements: a head in [CespitiMovimentiTestate] and its rows in
// [CespitiMovimentiRighe], each row with the three amounts of an asset (fiscal, fiscal
// deductible, civil). Purchases, sales and adjustments come from the client; the depreciation
// run writes its own. `NumeroRegistrazione` of a head ties the movement to its journal entry.
#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn {

class clsCespitiMovimenti {
 public:
  ConnessioneClasse cn;

  // The head, editable and stamped when found.
  bool LocalizzaRecord(Recordset& T, const Valore& NumeroMovimento, const Valore& clientID, long hWnd);
  // The rows of a movement by row number, read-only.
  bool LocalizzaRecordRighe(Recordset& T, const Valore& NumeroMovimento);
  bool SalvaRecord(const Valore& NumeroMovimento, const Valore& DataMovimento, const Valore& DataCompetenza,
                   const Valore& CausaleCespiti, const Valore& IndClienteFornitore, const Valore& CodClienteFornitore,
                   const Valore& AnnoDocumento, const Valore& SerieDocumento, const Valore& NumeroDocumento,
                   const Valore& DataDocumento, const Valore& CodiceValuta, const Valore& Cambio,
                   const Valore& DataCambio, const Valore& NumeroRegistrazione, const Valore& Note,
                   const Valore& clientID, long hWnd, bool& Cancel);
  bool SalvaRecordRighe(const Valore& NumeroMovimento, const Valore& numeroRiga, const Valore& codiceCespite,
                        const Valore& ImportoMovimentoFisc, const Valore& ImportoMovimentoFiscDed,
                        const Valore& ImportoMovimentoCiv, const Valore& DescrizioneSupplem, const Valore& clientID,
                        long hWnd, bool& Cancel);
  // The head with its rows (CancellaRecord), or the rows only.
  bool CancellaRecord(const Valore& NumeroMovimento);
  bool CancellaRecordRighe(const Valore& NumeroMovimento);
  // By number: without a current number the first gives the highest and the second the lowest.
  bool RecordSuccessivo(Valore& NumeroMovimento);
  bool RecordPrecedente(Valore& NumeroMovimento);
  bool ExistMovimento(const Valore& NumeroMovimento, Valore* DataMovimento = nullptr);
  bool ExistRigaMovimento(const Valore& NumeroMovimento, const Valore& numeroRiga, Valore* codiceCespite = nullptr);
  int32_t GetMaxDiNumeroMovimento();
  // A new movement number from the company's counter, inside the caller's transaction.
  int32_t PrendiNumeroMovimento();
  // A movement of one row, all-or-nothing: a new number, the head dated `data` (movement,
  // competence and document) with the causal and rate 1, and the asset's row with the three
  // amounts rounded to `decimali`. Throws ErroreDb for an unknown causal or asset.
  int32_t RegistraMovimento(const std::string& causale, const Data& data, const std::string& codiceCespite,
                            double fisc, double fiscDed, double civ, const std::string& descrizione, int decimali,
                            const Valore& clientID = Valore(""), long hWnd = 0);
  // The movement tied to a journal entry; 0 when none.
  int32_t GetNumeroMovimentoByNumeroReg(const std::string& numeroRegistrazione);
  bool AzzeraCespitiMovimentiTestate();
  bool AzzeraCespitiMovimentiRighe();
  // The depreciation movements (causals of kind 11 or 12) of the year of competence `anno`, or
  // of every year without it: the rows first, then the heads. The count of rows deleted.
  int64_t CancellaAmmortamentiCespitiMovimentiRighe(std::optional<int> anno = std::nullopt);
  int64_t CancellaAmmortamentiCespitiMovimentiTestate(std::optional<int> anno = std::nullopt);
  // The movement rows of an asset whose head has a causal in the table.
  int32_t GetNumeroMovimentiCespite(const std::string& codiceCespite);
};

}  // namespace vorn
