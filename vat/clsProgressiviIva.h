// What the definitive VAT prints and settlements leave behind: the running amounts of the VAT
// registers by code ([Progressivi Registri Iva]), the purchase bases and the receipts of the
// registers by ventilation ([Monte Acquisti Ventilazione], [Corrispettivi Ventilazione]) and
// the record of each periodic settlement ([Liquidazioni Periodiche]).
//
// [Progressivi Registri Iva] keeps two kinds of rows, keyed by IndicatoreFisso, IndTipoRecord,
// TipoRegistroIva, NumRegistroIva and CodiceIva:
//   "PI" "R"  Imponibile and IVA of the year to date;
//   "PI" "D"  Imponibile and IVA of the period still to be settled;
//   "P2" "R"  DataUltimaStampaBollato, the date of the register's last definitive print
//             (CodiceIva "00").
// Amounts are exact (four decimals) on both engines.
#pragma once
#include <map>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

class clsProgressiviIva {
 public:
  ConnessioneClasse cn;

  // The rows of one kind, for the client: 0 "PI" "D", 1 "PI" "R", 2 "P2" "R", 3 the purchase
  // bases, 4 the ventilation receipts, 5 the settlements by MeseVersamento. Another kind opens
  // nothing and gives false.
  bool LocalizzaTuttiRecord(Recordset& T, const Valore& tipo);

  // The saves add the key's row when missing and write every value given; the row is stamped
  // with its writer (clientID, hWnd). Cancel is false on return unless the save was refused.
  bool SalvaRecord_ProgressivoIva(const Valore& IndicatoreFisso, const Valore& IndTipoRecord,
                                  const Valore& TipoRegistroIva, const Valore& NumRegistroIva, const Valore& CodiceIva,
                                  const Valore& imponibile, const Valore& IVA, const Valore& DataUltimaStampaBollato,
                                  const Valore& clientID, long hWnd, bool& Cancel);
  bool SalvaRecord_MonteAcquisti(const Valore& NumRegistroCorrisp, const Valore& CodiceIva,
                                 const Valore& ImportoMonteAcquisti, const Valore& IndicatoreLibero,
                                 const Valore& clientID, long hWnd, bool& Cancel);
  bool SalvaRecord_CorrispettivoVen(const Valore& NumRegistriCorrisp, const Valore& corrispettiviPeriodo,
                                    const Valore& corrispettiviAnno, const Valore& clientID, long hWnd,
                                    bool& Cancel);
  // The settlement of a month ("01".."12"; "14" the VAT advance; a month given as a number is
  // stored as its two digits), by the columns of [Liquidazioni Periodiche], matched without
  // regard to case: every name must be one of them, neither the key nor the stamp (ErroreDb
  // before any write). A column left out keeps its value (Null on a new row).
  bool SalvaRecord_LiquidazioneIva(const Valore& MeseVersamento, const std::map<std::string, Valore>& valori,
                                   const Valore& clientID, long hWnd, bool& Cancel);

  // Deletes the rows of one kind (as LocalizzaTuttiRecord); another kind deletes nothing and
  // gives false.
  bool CancellaTuttiRecord(const Valore& tipo);
  // Deletes the "PI" and "P2" rows, the purchase bases, the ventilation receipts and the
  // settlements, all or nothing.
  bool AzzeraProgressiviIva();
  // Imponibile and IVA of "PI" "D" rows to 0, but for CodiceIva "00".
  bool AzzeraProgressiviIvaPeriodo();
  // CorrispettiviPeriodo of every ventilation row to 0; the year's figures stay.
  bool AzzeraProgressiviVentilazionePeriodo();

  // The row of the full key: true and its amounts; false and 0, 0 with no row.
  bool GetProgressivoIva(const Valore& IndicatoreFisso, const Valore& IndTipoRecord, const Valore& TipoRegistroIva,
                         const Valore& NumRegistroIva, const Valore& CodiceIva, Importo& imponibile, Importo& imposta);
  // DataUltimaStampaBollato of the "P2" "R" row of the register; Null with no row.
  Valore GetDataUltimaStampa(const Valore& TipoRegistroIva, const Valore& NumRegistroIva, const Valore& CodiceIva);
  bool GetProgressivoVentilazione(const Valore& NumRegistriCorrisp, Importo& corrispettiviPeriodo,
                                  Importo& corrispettiviAnno);
  bool GetProgressivoMonteAcquisti(const Valore& NumRegistroCorrisp, const Valore& CodiceIva,
                                   Importo& ImportoMonteAcquisti);

  // Importo_versato of the advance row "14"; 0 with none.
  Valore GetAccontoIvaVersato();
  // The debt that the period before left unpaid because it stood under the minimum payment:
  // Importo_versato of the month before avar_Mese ("M") or three months before ("T"), month 12
  // for avar_Mese 13, when it is not above ImportoMinLiqIva; otherwise 0 (see the .cpp).
  Valore GetDebitoIvaArticolo_27_33(const Valore& ImportoMinLiqIva, const Valore& avar_RegimeIva,
                                    const Valore& avar_Mese, const Valore& avar_Anno);
  // Sums over the months "01".."12" (the advance row stays out).
  Importo GetCreditoIvaDaDichAnnualeTrasf();
  Importo GetIvaVersata();
  Importo GetIvaVersataConInteressi();
  Importo GetInteressiVersati();
  Importo GetSommaDiRimborsoArt38Bis();
  Importo GetSommaDiCompensazioneArt38Bis();
};

}  // namespace vorn
