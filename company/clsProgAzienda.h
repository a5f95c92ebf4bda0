// The company's progressives: the one-row table [Progressivi Azienda Vorn] (last numbers used,
// running totals of the journal book, dates of the last fiscal prints, VAT carry-overs) and
// the two counters of [Progressivi Scadenze] ('SCA' due dates, 'DOC' documents).
//
// Numbers go in two steps: a caller asks for the next number, uses it, then saves it. A
// posting that must not share a number with another client's takes it with the Prendi...
// operations instead, inside its own transaction (see company/PresaNumero.h).
//
// The updating operations open the row, add it when the table is empty, assign, stamp and
// write without asking: only SalvaRecord asks before overwriting another reader's row.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "company/PresaNumero.h"
#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn {

class clsProgAzienda {
 public:
  ConnessioneClasse cn;

  // Opens the row for the client and stamps it; true when the table has it.
  bool LocalizzaRecord(Recordset& T, const Valore& clientID, long hWnd);
  // Writes the columns found in `valori` (names of ColonneSalvaRecord), adding the row to an
  // empty table. Cancel true: the user kept the other reader's row and nothing was written.
  bool SalvaRecord(const RecordValori& valori, const Valore& clientID, long hWnd, bool& Cancel);
  static const std::vector<std::string>& ColonneSalvaRecord();

  // ---- history
  // ProgressivoXMovimenti; 0 without a row.
  int32_t GetNumeroUltimaRegStorico();
  // The counter only rises: a number not above the stored one leaves it; the row is stamped
  // either way.
  bool AggiornaNumeroUltimaRegStorico(const Valore& ProgressivoXMovimenti, const Valore& clientID, long hWnd);

  // ---- counters of [Progressivi Scadenze]
  // The statement of this reading has always been refused by the engine: the error reaches the
  // caller. Due dates number through PrendiProgressivoScadenze or their own class.
  int32_t GetProgressivoScadenze();
  // ProgressivoPartite of the 'DOC' row plus 1; 1 without the row.
  int32_t GetProgressivoDocumenti();
  // These two have never advanced the counter: the value they assign is not a number, and the
  // error reaches the caller with nothing written. The argument is not read.
  bool AggiornaProgressivoScadenze(const Valore& ProgressivoPartite, const Valore& clientID, long hWnd);
  bool AggiornaProgressivoDocumenti(const Valore& ProgressivoPartite, const Valore& clientID, long hWnd);

  // ---- journal book
  bool AggiornaProgressiviLibroGiornale(const Valore& UltimaStampaGiornale, const Valore& NumRigaLibroGiornale,
                                        const Valore& ProgDareLibroGiornale, const Valore& ProgAvereLibroGiornale,
                                        const Valore& clientID, long hWnd);
  // The date (empty text when null), the line number and the two totals (amounts). Without a
  // row: empty text, 0, 0, 0 and false.
  bool GetProgressiviLibroGiornale(Valore& UltimaStampaGiornale, Valore& NumRigaLibroGiornale,
                                   Valore& ProgDareLibroGiornale, Valore& ProgAvereLibroGiornale);

  // ---- VAT settlement. Amounts come back as amounts (0 when null), the date as a date or
  // empty text. Without a row: all 0, empty date, false.
  bool GetProgressiviLiquidazioneIva(Valore& DebitoIvaAnnoPrec, Valore& ImpIVACalcoloAcconto,
                                     Valore& UltimaLiquidazioneIva, Valore& CreditoIVAInizioAnno,
                                     Valore& CreditoIVAInizioAnnoUt, Valore& CodIvaPerPrec, Valore& PlafondIvaIniziale,
                                     Valore& PlafondIvaResiduo, Valore& ValoreTotImpComp);
  bool AggiornaProgressiviLiquidazioneIva(const Valore& UltimaLiquidazioneIva, const Valore& PlafondIvaResiduo,
                                          const Valore& CodIvaPerPrec, const Valore& CreditoIVAInizioAnnoUt,
                                          const Valore& ValoreTotImpComp, const Valore& clientID, long hWnd);
  bool AggiornaProgressiviLiquidazioneIvaAnnuali(const Valore& CreditoIVAInizioAnno, const Valore& CodIvaPerPrec,
                                                 const Valore& CreditoIVAInizioAnnoUt, const Valore& clientID,
                                                 long hWnd);
  bool AggiornaProgressiviLiquidazioneIvaAcconto(const Valore& DebitoIvaAnnoPrec, const Valore& ImpIVACalcoloAcconto,
                                                 const Valore& clientID, long hWnd);

  // ---- resets: one UPDATE of every row each, true
  // Clears the dates and zeroes the counters and totals, leaving the validity range of the
  // journal and the two asset dates.
  bool AzzeraProgressiviAzienda();
  bool AzzeraProgressiviPlafond();
  bool AzzeraProgressiviLiquidazione();
  bool AzzeraUltimaLiquidazioneIva();
  // Line number and totals to 0; the date of the last print stays.
  bool AzzeraProgressiviLibroGiornale();

  // ---- single dates: the date, or empty text when the row or the date is missing
  Valore GetDataUltimoScaricoPrimaNota();
  Valore GetDataUltimaStampaGiornale();
  Valore GetDataAperturaBilancio();
  Valore GetDataUltimoCalcoloAmm();
  Valore GetDataUltimoLibroCespiti();
  bool AggiornaDataUltimoScarico(const Valore& UltimoScaricoPN, const Valore& clientID, long hWnd);
  bool AggiornaDataAperturaBilancio(const Valore& DataAperturaBilancio, const Valore& clientID, long hWnd);
  bool AggiornaDataUltimoCalcoloAmm(const Valore& DataUltimoCalcoloAmm, const Valore& clientID, long hWnd);
  bool AggiornaDataUltimoLibroCespiti(const Valore& DataUltimoLibroCespiti, const Valore& clientID, long hWnd);

  // The first day of the fiscal year in progress, as the company parameters compute it.
  std::string GetDataLogicaAperturaBilancio(const Valore& avar_MeseChiusuraFiscale,
                                            std::optional<Data> oggi = std::nullopt);
  // The date of the last journal-book print and the validity range of the journal; without a
  // row, empty values and false.
  bool GetProgressiviPrimaNota(Valore& UltimaStampaGiornale, Valore& DataInizioPNValida, Valore& DataFinePNValida);

  // ---- numbers taken inside the caller's transaction
  // The next journal entry number: one above the higher of UltimaRegistrazionePN and the
  // highest number in [Prima Nota], written to UltimaRegistrazionePN.
  int32_t PrendiNumeroRegistrazione();
  // The same, reading `dopo`'s rows once the counter is locked (PrendiNumero).
  int32_t PrendiNumeroRegistrazione(LettureDopoNumero& dopo);
  // The next due-date number: one above the higher of the 'SCA' row's Progressivo and the
  // highest [Numero Progressivo] of [Scadenziario], written to the 'SCA' row.
  int32_t PrendiProgressivoScadenze();
  // The next document number of the due-date book: one above the higher of the 'DOC' row's
  // ProgressivoPartite and the highest [Progressivo Documento] of [Scadenziario], written back.
  int32_t PrendiProgressivoDocumenti();
  // The next asset movement number: one above the higher of the 'CES' row's NumeroUltimoDoc in
  // [Progressivi Numerazione Vorn] and the highest [NumeroMovimento] of the asset movements,
  // written back.
  int32_t PrendiNumeroMovimentoCespiti();
  // The next number of a transfer remittance list: one above the higher of the 'DIB' row's
  // Progressivo and the highest [Numero Distinta] of [Distinte Bonifici], written back.
  int32_t PrendiNumeroDistintaBonifici();
  // The next number of a list of client effects: the 'DIE' row against [Distinte].
  int32_t PrendiNumeroDistintaEffetti();

 private:
  bool AggiornaRiga(const Valore& clientID, long hWnd, const std::function<void(Recordset&)>& assegna);
  Valore DataSingola(const char* colonna);
};

}  // namespace vorn
