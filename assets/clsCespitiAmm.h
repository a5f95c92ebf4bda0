// The yearly depreciation of the fixed assets and their accounting card.
//
// Every asset is followed on three tracks: fiscal, fiscal deductible and civil. The figures
// come only from the asset movements (there is no stored balance), each one summed by a query
// as a double, the currency amount by the head's rate; a figure is rounded to the currency's
// decimals only when a movement row is written. Problems of an asset never stop the run: they
// collect one line each in stringaErroriRiscontrati and the asset is left out.
//
// A run is all-or-nothing: the movements of every asset land together or not at all. The
// depreciation of a year is written once: an asset that already has depreciation movements in
// the year is refused (to rerun, delete them first).
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Host.h"
#include "frame/Valore.h"

namespace vorn {

struct ArgomentiAmmortamento {
  IForm* objFormAttiva = nullptr;  // its msgbar tells the asset in progress
  std::string daCodiceCategoria, aCodiceCategoria;  // the range of categories, either end optional
  std::string filtroCodiceCespite;                  // one asset only
  int anno = 0;
  int IndStato = 0;               // only the assets in this state, when not 0
  int indMetodoAmmortamento = 0;  // 1: the anticipated depreciation too
  int indModalitaAnno1Civ = 0;    // 0: the civil rate of the first year is cut like the fiscal one
  std::string causaleAmmOrd, causaleAmmAnt;  // asset causals of kind 11 and 12
  std::string riferimentiTestata;            // the note of the heads written
  bool generaAmmortamentiInfrannuali = false;  // a movement of its own for an asset sold in the year
  int DecimaliValuta = 2;
  Valore clientID = Valore("");
  long hWnd = 0;
};

// The figures of one asset in the year, before rounding.
struct QuotaAmmortamento {
  std::string codiceCespite;
  double valoreFisc = 0, residuoFisc = 0;  // the value and the residual before the year
  double ordinario = 0, anticipato = 0;    // O and T
  double ordinarioDed = 0, anticipatoDed = 0;
  double civile = 0;
  bool infrannuale = false;  // sold or dismissed in the year
};

struct EsitoAmmortamento {
  int32_t righe = 0;  // rows of the year's two movements
  int32_t numeroMovimentoAmmOrd = 0, numeroMovimentoAmmAnt = 0;
  int32_t numeroMovimentiInfrannuali = 0;
  std::string stringaErroriRiscontrati;
  std::vector<QuotaAmmortamento> quote;  // the assets calculated, in code order
};

// One year of an asset's card.
struct SchedaCespiteAnno {
  std::string codiceCespite;
  int anno = 0;
  std::optional<Data> dataAcquisto, dataVendita;
  // [0] fiscal, [1] civil
  double costoAcquisto[2] = {}, oneriSpese[2] = {}, manutenzioni[2] = {}, rivalutazioni[2] = {},
         svalutazioni[2] = {};
  double valore[2] = {}, valoreFiscNoLimite = 0;
  double fondoPrecOrd[2] = {}, fondoPrecAnt[2] = {};
  double ammOrd[2] = {}, ammAnt[2] = {}, percOrd[2] = {}, percAnt[2] = {};
  double ammOrdFiscDed = 0, ammAntFiscDed = 0;
  double residuo[2] = {}, fondoOrd[2] = {}, fondoAnt[2] = {};
  double venditaDismissione[2] = {}, plusvalenza[2] = {}, minusvalenza[2] = {};
  std::string Nota;
};

class clsCespitiAmm {
 public:
  ConnessioneClasse cn;

  // The year's depreciation written as asset movements; the number of rows written. Throws on
  // a database error, nothing written.
  int32_t CalcolaAmmortamento(const ArgomentiAmmortamento& a, EsitoAmmortamento& esito);

  // The sums of a column of the movements of one kind of an asset, each amount by the head's
  // rate (null or 0 counting as 1): up to the year, or of the year only.
  double GetSaldoMovimentazioneFinoAnnoFisc(const std::string& codiceCespite, int TipoMovimentazione, int anno);
  double GetSaldoMovimentazioneFinoAnnoFiscDed(const std::string& codiceCespite, int TipoMovimentazione, int anno);
  double GetSaldoMovimentazioneFinoAnnoCiv(const std::string& codiceCespite, int TipoMovimentazione, int anno);
  double GetSaldoMovimentazioneAnnoFisc(const std::string& codiceCespite, int TipoMovimentazione, int anno);
  double GetSaldoMovimentazioneAnnoFiscDed(const std::string& codiceCespite, int TipoMovimentazione, int anno);
  double GetSaldoMovimentazioneAnnoCiv(const std::string& codiceCespite, int TipoMovimentazione, int anno);

  // The first sale or dismissal (document date); 31/12/3000 when none.
  Data GetDataVenditaDismissioneCespite(const std::string& codiceCespite);
  // The start of use (first purchase, date of competence); 01/01/1900 when none.
  Data GetDataInizioUtilizzoCespite(const std::string& codiceCespite);
  // The first purchase's document date; 01/01/1900 when none.
  Data GetDataAcquistoCespite(const std::string& codiceCespite);
  int GetNumeroRecordAmmortamentoCespitePeriodo(const Data& daData, const Data& aData, const std::string& codiceCespite);
  std::optional<Data> GetMinDataMovimentiCespite(const std::string& codiceCespite);
  std::optional<Data> GetMaxDataMovimentiCespite(const std::string& codiceCespite);
  int GetAnnoInizioUtilizzoCespite(const std::string& codiceCespite);
  // The years of the first and the last movement; 0 without movements.
  int GetMinAnnoMovimentiCespite(const std::string& codiceCespite);
  int GetMaxAnnoMovimentiCespite(const std::string& codiceCespite);
  // The distinct years from annoAcquisto to anno with depreciation movements.
  int GetAnniAmmortamentoCespiteAdAnno(const std::string& codiceCespite, int annoAcquisto, int anno);

  // The base of the ceiling on deductible maintenance: the deductible share of the fiscal value
  // of the assets under contractual maintenance, at the end of the year before `anno` (of
  // `anno` itself in the year the company was formed). One line a counted asset in
  // stringaDatiBaseCalcolo, one line a problem in stringaErroriRiscontrati.
  double GetBaseCalcoloLimiteDeducibilita(IForm* objFormAttiva, int anno, int annoCostituzione,
                                          std::string& stringaDatiBaseCalcolo, std::string& stringaErroriRiscontrati);

  // The card of an asset, one element a year from the start of use (or the first movement) to
  // `maxAnno` (or the last movement).
  std::vector<SchedaCespiteAnno> SchedaCespite(const std::string& codiceCespite, std::optional<int> maxAnno = std::nullopt);
  // The card written to [Elaborazione cespiti schede contabili] under `clientName`, rows
  // numbered on from `numeroRiga`; the rows written.
  int MakeSchedaCespite(IForm* objFormAttiva, const std::string& clientName, int& numeroRiga,
                        const std::string& codiceCespite, std::optional<int> maxAnno = std::nullopt);

 private:
  double Saldo(const std::string& codiceCespite, int tipo, int anno, const char* colonna, bool finoAnno);
  SchedaCespiteAnno AnnoScheda(const std::string& codiceCespite, int anno, double limite, const Data& acquisto,
                               const Data& vendita);
};

// The empty date of the movements (01/01/1900) and the date of no sale (31/12/3000).
Data DataVuotaCespiti();
Data DataNessunaVendita();

}  // namespace vorn
