// The company's settings: the one-row tables [Tabella Azienda] (currency, decimals, fiscal
// year) and [Parametri Vorn] (ledger and VAT parameters). Every other class asks this one,
// never the tables; each getter runs its own query, so what it returns is always current.
#pragma once
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn {

class clsParametriAzienda {
 public:
  ConnessioneClasse cn;

  // Opens [Tabella Azienda] for the client and stamps its row; true when it has a row.
  bool LocalizzaRecord(Recordset& T, const Valore& clientID, long hWnd);
  // The same on [Parametri Vorn].
  bool LocalizzaRecordParametriVorn(Recordset& T, const Valore& clientID, long hWnd);

  // Writes the settings of [Tabella Azienda] found in `valori` (keyed by column name, see
  // ColonneSalvaRecord); an empty table gets its row. Cancel true: the user kept the other
  // reader's row and nothing was written.
  bool SalvaRecord(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd, bool& Cancel);
  // The ledger and VAT parameters of [Parametri Vorn] (ColonneSalvaRecordParametriVorn).
  bool SalvaRecordParametriVorn(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd,
                                bool& Cancel);
  // The depreciation and bookkeeping-regime parameters (ColonneSalvaRecordParametriVorn2).
  bool SalvaRecordParametriVorn2(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd,
                                 bool& Cancel);
  // The columns each save writes, in their order; a value not in the record is left alone.
  static const std::vector<std::string>& ColonneSalvaRecord();
  static const std::vector<std::string>& ColonneSalvaRecordParametriVorn();
  static const std::vector<std::string>& ColonneSalvaRecordParametriVorn2();

  // "C" when the first four characters of the sub-account are a client group, "F" when a
  // supplier group, empty text otherwise (clients first).
  std::string GetIndClienteFornitore(const Valore& sottoconto);
  // Elements 1 to 5 of each array: the group-and-account prefixes of clients and suppliers.
  bool GetGruppiContiCliFor(Valore (&GruppiContiClienti)[6], Valore (&GruppiContiFornitori)[6]);
  // What the journal needs, in one call.
  Valore GetParametriPrimaNota(Valore& NumRegIVAVendite, Valore& NumRegIvaAcquisti, Valore& NumRegIVACorrispScorp,
                               Valore& NumRegIVACorrispVentil, Valore& NumRegIVASospensione,
                               Valore& GestDataCompetenzaIVA, Valore (&GruppiContiClienti)[6],
                               Valore (&GruppiContiFornitori)[6], Valore& MeseChiusuraFiscale,
                               Valore& IndIVAAutotrasportatori, Valore& PeriodicitaLiquidazione);
  Valore GetMeseChiusuraFiscale();
  bool GetGestioneStoricoContabile();
  // The first day of the fiscal year in progress ("dd/mm/yyyy"), for a fiscal year closing at
  // the end of the given month; `oggi` stands for today's date.
  std::string GetDataLogicaAperturaBilancio(const Valore& avar_MeseChiusuraFiscale,
                                            std::optional<Data> oggi = std::nullopt);
  // The day before: the last day of the fiscal year before the one in progress.
  std::string GetDataLogicaChiusuraBilancio(const Valore& avar_MeseChiusuraFiscale,
                                            std::optional<Data> oggi = std::nullopt);
  int AutorizzazioneBolliVirtuali();
  Valore GetParametriIva(Valore& NumRegIVAVendite, Valore& NumRegIVAVenditeLiq, Valore& NumRegIvaAcquisti,
                         Valore& NumRegIVAAcquistiLiq, Valore& NumRegIVACorrispScorp, Valore& NumRegIVACorrispScorpLiq,
                         Valore& NumRegIVACorrispVentil, Valore& NumRegIVACorrispVentilLiq,
                         Valore& NumRegIVASospensione, Valore& PeriodicitaLiquidazione, Valore& IndOrdinamRegistriIVA,
                         Valore& NumPagineAutoRegIVA, Valore& NumPagineAutoLibGior, Valore& TipoRegLiquidazione,
                         Valore& NumRegLiquidazione, Valore& GestioneProrataIVA, Valore& PercentualeProrata,
                         Valore& RifDocContrRegistriIVA, std::string& IndIVAAutotrasportatori, int& regimeContabile,
                         std::string& RegIVASemSoloContiEco);
  Valore GetParametriLibroGiornale(Valore& NumPagineAutoLibGior);
  // The currency and decimals of the company, with the defaults of a company not yet set up.
  // Valore(true) when a row was read, empty when the table has none, false on an error.
  Valore GetParametriGlobali(std::string& Valuta_di_conto, std::string& Simbolo_valuta_conto,
                             std::string& Descrizione_valuta_conto, int& Decimali_importi,
                             std::string& CodiceValuta_LIRE, std::string& CodiceValuta_EURO,
                             double& Cambio_fisso_LIRE_EURO, int& Decimali_Cambi, int& Decimali_quantita,
                             int& Decimali_prezzi_valuta_conto);
  bool GetParametriElaborazioneFatture(Valore& ModalitaContabilizzEffetti);
  Valore GetParametriAgenti(Valore& Codice_Iva_Standard, Valore& Perc_Ritenuta, Valore& Perc_Imponibile_Ritenuta,
                            Valore& Perc_Enasarco, Valore& Mass_Enasarco);
  bool GetParametriAmmortamenti(double& SogliaAmmIntegrale, double& PercAbbattimAmmAnno1,
                                double& PercManutenzioniDeducibili);
  bool GetVersamentoIVA4Trim();
  bool GetLiquidazioneTrimestale();
};

}  // namespace vorn
