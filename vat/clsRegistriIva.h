// The VAT registers of one month, built from the VAT rows of the journal: sales, purchases,
// receipts by scorporo, receipts by ventilation, suspended VAT, and the two registers of the
// payments of invoices with deferred VAT.
//
// Each register is built in two work tables named after the caller's prefix: a `corpo` (one
// row per journal row, signs already applied) and a `totali` (sums per VAT code), so that two
// users of one database never meet. The print is written in the run's working folder, laid
// out on pages and copied to the caller's file; the settlement builds the same tables.
//
// A definitive print ("B") is all-or-nothing: the progressives it adds, the date of the last
// definitive print, the last document numbers, the sheet number and the printed marks on the
// journal commit together with the print's file, or nothing is written and the month can be
// printed again. The rows marked are exactly the rows printed; when another user changed or
// printed them meanwhile, the run is refused.
#pragma once
#include <optional>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

class clsAnagraficaAzienda;
class clsCausaliContabili;
class clsNumerazioneFogli;
class clsPrimaNota;
class clsProgrNumerazione;
class clsProgressiviIva;

// The register kinds of TipoRegistroIva.
namespace registro_iva {
inline constexpr const char* kVendite = "1";
inline constexpr const char* kAcquisti = "2";
inline constexpr const char* kCorrispettivi = "3";
inline constexpr const char* kVentilazione = "4";
inline constexpr const char* kSospensione = "5";
inline constexpr const char* kDifferitaVendite = "6";
inline constexpr const char* kDifferitaAcquisti = "8";
}  // namespace registro_iva

// The values a register print takes. The objects are the caller's; when one is missing the
// print makes its own on the class's connection.
struct ArgomentiRegistroIva {
  IForm* formAttiva = nullptr;  // its msgbar tells the progress
  clsAnagraficaAzienda* objAnagraficaAzienda = nullptr;
  clsProgressiviIva* objProgressiviIVA = nullptr;
  clsPrimaNota* objPrimaNota = nullptr;
  clsProgrNumerazione* objProgrNumerazione = nullptr;
  clsNumerazioneFogli* objNumerazioneFogli = nullptr;
  clsCausaliContabili* objCausaliContabili = nullptr;
  std::string AzRagSoc, AzParIva;  // who prints, in the foot
  std::string nomeFile;            // the print
  Valore avar_NumeroRegistro;      // two digits, "01"
  int avar_Mese = 1;
  int avar_Anno = 0;
  std::string avar_ProvaBollato;  // "B" definitive, anything else a trial
  int avar_RighePagina = 72;
  std::string IndOrdinamRegistriIVA;  // "1": by series first (sales, scorporo, suspended)
  bool avar_NumerazionePagine = false;
  std::string avar_PrefissoTabelleTmp = "r";
  std::string str_IndIVAAutotrasportatori;  // "1": by the VAT date, "Data Ann" in the head
  int avar_RegimeContabile = 0;              // 1: simplified, the cost and revenue rows too
  std::string str_RegIVASemSoloContiEco;     // "1": only accounts of the income statement
  std::string RifDocContrRegistriIVA;        // "1": the supplier's document on purchases
  Importo acur_CreditoIva;                   // the credit at the start of the year (January)
  Valore clientID = Valore("");
  long hWnd = 0;
};

// What a print produced.
struct EsitoRegistroIva {
  bool stampato = false;  // false: "Nessun dato da stampare."
  long righe = 0;         // rows of the body
  long fogli = 0;         // sheets numbered (with avar_NumerazionePagine)
};

class clsRegistriIva {
 public:
  ConnessioneClasse cn;

  // ---------------------------------------------------------------- prints
  // Each returns true when it ran to the end; nothing to print is a warning, not a failure.
  bool RegistroIvaVendite(const ArgomentiRegistroIva& a);
  bool RegistroIvaAcquisti(const ArgomentiRegistroIva& a);
  bool RegistroIvaCorrispettivi(const ArgomentiRegistroIva& a);
  bool RegistroIvaSospensione(const ArgomentiRegistroIva& a);
  bool RegistroIvaCorrispettiviVen(const ArgomentiRegistroIva& a);
  // The deferred-payment registers print nothing: in "B" they add the month to their
  // progressives, save the date and mark the rows.
  bool RegistroIvaDifferitaVendite(const ArgomentiRegistroIva& a);
  bool RegistroIvaDifferitaAcquisti(const ArgomentiRegistroIva& a);
  // Any of the above by the register kind; the outcome of the last print.
  bool StampaRegistro(const std::string& TipoRegistroIva, const ArgomentiRegistroIva& a);
  const EsitoRegistroIva& Esito() const { return esito_; }

  // ---------------------------------------------------------------- work tables
  // The `corpo` of a register kind for the period. For a print the rows already marked "R"
  // stay out; for the settlement (bool_PerLiquidazione) they count, and the invoices with
  // deferred VAT do not. The count of rows.
  int64_t MakeTable_RegistroIvaCorpo(const std::string& TipoRegistroIva, const Valore& avar_NumeroRegistro,
                                     const Data& daData, const Data& aData, const std::string& avar_PrefissoTabelleTmp,
                                     bool bool_PerLiquidazione, const std::string& str_IndIVAAutotrasportatori = "");
  // The `totali` from the `corpo` (the purchases: split into deductible and not).
  void MakeTable_RegistroIvaTotali(const std::string& TipoRegistroIva, const std::string& avar_PrefissoTabelleTmp);
  // One row per registration of the period whose causal points its costs and revenues at this
  // register (simplified regime).
  int64_t AppendCostiRicavi_RegistroIvaCorpo(const std::string& TipoRegistroIva, const Valore& avar_NumeroRegistro,
                                             const Data& daData, const Data& aData,
                                             const std::string& avar_PrefissoTabelleTmp);
  void EliminaTabelleTemporaneeIva(const std::string& TipoRegistroIva, const std::string& avar_PrefissoTabelleTmp);

  // The named forms of the operations above.
  int64_t MakeTable_RegistroIvaVenditeCorpo(const Valore& n, const Data& da, const Data& a, const std::string& prefisso,
                                            bool perLiquidazione, const std::string& autotrasportatori = "");
  int64_t MakeTable_RegistroIvaAcquistiCorpo(const Valore& n, const Data& da, const Data& a,
                                             const std::string& prefisso, bool perLiquidazione);
  int64_t MakeTable_RegistroIvaCorrispettiviCorpo(const Valore& n, const Data& da, const Data& a,
                                                  const std::string& prefisso, bool perLiquidazione,
                                                  const std::string& autotrasportatori = "");
  int64_t MakeTable_RegistroIvaCorrispettiviVentilazioneCorpo(const Valore& n, const Data& da, const Data& a,
                                                              const std::string& prefisso, bool perLiquidazione,
                                                              const std::string& autotrasportatori = "");
  int64_t MakeTable_RegistroIvaSospensioneCorpo(const Valore& n, const Data& da, const Data& a,
                                                const std::string& prefisso, bool perLiquidazione);
  int64_t MakeTable_RegistroIvaDifferitaVenditeCorpo(const Valore& n, const Data& da, const Data& a,
                                                     const std::string& prefisso, bool perLiquidazione);
  int64_t MakeTable_RegistroIvaDifferitaAcquistiCorpo(const Valore& n, const Data& da, const Data& a,
                                                      const std::string& prefisso, bool perLiquidazione);

  // The name of a register's work table as used in a statement (without brackets):
  // prefix + "Registro iva vendite corpo", and so on; `parte` is "corpo", "totali", "totali tmp"
  // or "totali generali".
  static std::string NomeTabella(const std::string& TipoRegistroIva, const std::string& parte,
                                 const std::string& prefisso);

  // ---------------------------------------------------------------- deductibility
  // [Percentuale indetraibilità] of the VAT codes from Null to 0.
  void PercentualiIndetraibilitàNullToZero();
  // The fully deductible twin of a partly non-deductible code: its own `Codice IVA detraibile`
  // when coherent (same rate, nothing non-deductible, the same four flags), else the first
  // coherent code of the rate; empty text when none (both cases warn).
  std::string GetCodiceIvaDeducibile(const Valore& CodiceIva, const Valore& aliquota,
                                     const Valore& avar_FlagMonteAcquisti, const Valore& avar_IndicatoreEsente,
                                     const Valore& avar_IndicatorePlafond, const Valore& avar_AcquistoIntracomunitario);

  // ---------------------------------------------------------------- descriptions
  std::string GetDescrizioneIva(const Valore& avar_CodiceIva);
  // The client's or supplier's name of a registration (invoices, credit notes, cashings), or
  // the causal's description (receipts and their reversals).
  std::string GetDescrizioneRigaIva(const Valore& avar_CodiceCausale, const Valore& avar_TipoCausale,
                                    const Valore& avar_NumeroRegistrazione);
  std::string GetRagioneSocialeCliFor(const Valore& IndClienteFornitore, const Valore& Codice_Cliente);
  // The accounting rows of a registration for the cost and revenue lines, debit first when
  // `primaDare`; with str_RegIVASemSoloContiEco "1" only the accounts of the income statement.
  bool LocalizzaRecordsRilevazioneCostiRicavi(Recordset& T, const Valore& numeroRegistrazione, bool primaDare,
                                              const std::string& str_RegIVASemSoloContiEco);

  // ---------------------------------------------------------------- for the settlement
  // Sum of TotaleDocumento of the ventilation `corpo`.
  Importo GetCorrispettiviPeriodo(const std::string& avar_PrefissoTabelleTmp);
  // The VAT of invoices with deferred VAT of the period (sales; purchases net of the
  // non-deductible share), from the journal.
  Importo GetTotaliIvaDifferitaVenditeSim(const Valore& avar_NumeroRegistro, const Data& daData, const Data& aData,
                                          const std::string& avar_PrefissoTabelleTmp);
  Importo GetTotaliIvaDifferitaAcquistiSim(const Valore& avar_NumeroRegistro, const Data& daData, const Data& aData,
                                           const std::string& avar_PrefissoTabelleTmp);
  // The same from the progressives ("PI" of IndTipoRecord, kinds "7" and "9").
  Importo GetTotaliIvaDifferitaVenditeBol(const Valore& avar_IndTipoRecord, const Valore& avar_NumRegistroIva);
  Importo GetTotaliIvaDifferitaAcquistiBol(const Valore& avar_IndTipoRecord, const Valore& avar_NumRegistroIva);

  // The receipts of a ventilation register distributed over the rates of the purchases:
  // simulation from the journal's purchases of the year to aData, definitive from the
  // purchase bases kept by the definitive prints. Amounts rounded once, to the company's
  // decimals.
  void MakeTable_RegistroIvaCorrispettiviVentilazioneTotaliLiquidazioneSim(const std::string& avar_PrefissoTabelleTmp,
                                                                          const Data& aData,
                                                                          const Valore& avar_NumeroRegistro);
  void MakeTable_RegistroIvaCorrispettiviVentilazioneTotaliLiquidazioneBol(const std::string& avar_PrefissoTabelleTmp,
                                                                          clsProgressiviIva* objProgressiviIVA,
                                                                          const Valore& avar_NumeroRegistro,
                                                                          int avar_Mese);
  void SalvaRecordRegistroIvaCorrispettiviVentilazioneTotali(const std::string& avar_PrefissoTabelleTmp,
                                                             const Valore& CodiceIva, const Valore& aliquota,
                                                             Importo sommadiImponibileRigo, Importo sommadiImposta,
                                                             Importo progressivoImponibile, Importo progressivoImposta,
                                                             Importo baseVentilazione);

  // ---------------------------------------------------------------- reprotocolling
  // Renumbers 1, 2, 3... the protocols of purchases register NumRegistroIva for the entries whose
  // competence falls in `anno`, in the order of their registration date (the old protocol, the
  // series and the document number decide within a day), on every row of those entries in the
  // journal and on their instalments. The entries are listed in the work table [Elaborazione
  // riprotocollazione] under `clientName`. All or nothing. Gives the rows written in the journal
  // and in the due dates together; 0 with nothing in the year.
  int32_t EseguiRiprotocollazione(const std::string& clientName, int anno, const Valore& NumRegistroIva);

 private:
  EsitoRegistroIva esito_;
  long ultimoFoglio_ = 0;  // the sheet the next print of the register starts from
  bool Stampa(const std::string& tipo, const ArgomentiRegistroIva& a);
  void DistribuisciVentilazione(const std::string& prefisso, Importo corrispettivi);
};

// The non-deductible share of an amount: amount x percentage / 100, rounded once to the
// given decimals, halves away from zero.
Importo QuotaPercentuale(Importo importo, double percentuale, int decimali);

}  // namespace vorn
