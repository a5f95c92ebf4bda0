// The company's account references: the sub-accounts and causals that postings use instead of
// fixed codes, kept in the one-row tables [Riferimenti Contabili] and [Tabella Azienda] and
// handed out in groups, one group per job that needs them.
//
// In [Riferimenti Contabili] a column named Sott... holds a sub-account code of seven
// characters, Caus... a causal code. [Tabella Azienda] gives the parent accounts of clients,
// suppliers and banks and the VAT codes of the company.
//
// The group getters read [Tabella Azienda] first when they need it, then [Riferimenti
// Contabili]. Values come back as trimmed text, a null column as empty text. When a table that
// a getter reads has no row, every output of that getter is empty text (TipoContabRicAcc "0")
// and the result is false; that is the only false result.
#pragma once
#include <map>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Valore.h"

namespace vorn {

class clsTabRiferimenti {
 public:
  ConnessioneClasse cn;

  // Opens [Riferimenti Contabili] for the client and stamps its row; true when it has a row.
  bool LocalizzaRecord(Recordset& T, const Valore& clientID, long hWnd);
  // The same on [Tabella Azienda].
  bool LocalizzaRecordTabellaAzienda(Recordset& T, const Valore& clientID, long hWnd);

  // Each save writes the values of `valori`, keyed by column name (matched without regard to
  // case), into the row of its table, adding the row to an empty table. A name that is not
  // among the save's columns (ColonneSalvaRecord01..04) is refused with ErroreDb before
  // anything is read or written. Cancel true: the user kept another reader's row and nothing
  // was written (result false).
  bool SalvaRecord01(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd, bool& Cancel);
  bool SalvaRecord02(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd, bool& Cancel);
  // On [Tabella Azienda]: the parent accounts of clients, suppliers and banks, the VAT codes.
  bool SalvaRecord03(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd, bool& Cancel);
  bool SalvaRecord04(const std::map<std::string, Valore>& valori, const Valore& clientID, long hWnd, bool& Cancel);
  static const std::vector<std::string>& ColonneSalvaRecord01();
  static const std::vector<std::string>& ColonneSalvaRecord02();
  static const std::vector<std::string>& ColonneSalvaRecord03();
  static const std::vector<std::string>& ColonneSalvaRecord04();

  // The value of one column of [Riferimenti Contabili], named by the caller (without regard to
  // case): trimmed text, empty when null or when the table has no row (TipoContabRicAcc "0").
  // The name goes into the statement only when it is one of the table's columns: any other
  // name is ErroreDb 3265 naming it, and nothing is shown to the user. The three do the same.
  Valore GetRiferimentiSottoconti01(const std::string& Nome_campo_riferimento);
  Valore GetRiferimentiSottoconti02(const std::string& Nome_campo_riferimento);
  Valore GetRiferimentiSottoconti03(const std::string& Nome_campo_riferimento);

  // The account on which the VAT of a row stands and its side ("Dare", "Avere", or "#" when the
  // causal does not settle it), from the VAT register type ("1", "2", "3", "5", "6", "8") and
  // the causal's type ("" and "0" to "9", ":" as "4", ";" as "9"). Sales registers (1, 6) take
  // SottIVACVendite, purchase registers (2, 8) SottIVACAcquisti, register 3 SottIVACScorporo,
  // register 5 always SottIVACSospensione; invoices and notes with deferred payability (7, 8)
  // take SottEsigDiffVend on registers 1 and 3, SottEsigDiffAcq on register 2. Any other
  // register type (0, 4, 7, 9...) or causal type leaves both outputs as they were and gives
  // false.
  bool GetSottocontoIvaCausale(const Valore& TipoRegistroIva, const Valore& TipoCausale, std::string& Sottoconto_Iva,
                               std::string& DareAvere_Iva);

  // ---- groups
  bool GetRiferimentiPrimaNota(Valore& CausStornoIvaInded);
  bool GetRiferimentiCambioEsercizio(Valore& CausChiusuraBilancio, Valore& CausAperturaBilancio,
                                     Valore& SottUtilePerditaEse, Valore& SottAperturaBilancio,
                                     Valore& SottChiusuraBilancio, Valore& SottRisultatoEsercizio);
  bool GetRiferimentiVisualizzaMastrini(Valore& SottocontoCassa1, Valore& SottocontoCassa2);
  // Reads both tables. TipoContabRicAcc: "0" accessory revenues on one account, "1" one account
  // per kind; "0" when null.
  bool GetRiferimentiElaborazioneFatture(
      Valore& CausIncassoCliente, Valore& CausEmisFatturaClienti, Valore& CausNotaCreditoClienti,
      Valore& SottRicaviStandard, Valore& SottRicaviAccessori, Valore& SottIVACVendite, Valore& SottIVACScorporo,
      Valore& SottIVACSospensione, Valore& SottEsigDiffVend, Valore& SottocontoCassa1,
      Valore& Codice_Iva_Spese_Incasso, Valore& Codice_Iva_Art_15, Valore& CausOmaggio, Valore& SottImponibileOmaggi,
      Valore& SottIvaOmaggi, Valore& CausEmissioneEffetti, Valore& CausPresentazioneEffetti, Valore& SottTratte,
      Valore& SottRicevuteBancarie, Valore& SottAvvisi, Valore& SottRID, Valore& SottocontoClienti,
      Valore& SottocontoFornitori, Valore& SottocontoBanca, Valore& SottIVASplitPaymentVend,
      Valore& CausSplitPayment, Valore& TipoContabRicAcc, Valore& SottRicaviAccessori2,
      Valore& SottRicaviSpeseIncasso, Valore& SottRicaviSpeseTrasporto, Valore& SottRicaviBolli,
      Valore& CausConRitenuteSubite, Valore& SottRitenuteSubite, Valore& CausConAbbuoni, Valore& SottAbbuoni);
  // Reads both tables.
  bool GetRiferimentiElaborazioneScontrini(Valore& SottocontoBanca, Valore& CausCorrispettivi,
                                           Valore& SottRicaviStandard, Valore& SottIVACScorporo,
                                           Valore& SottocontoCassa1);
  // Reads both tables.
  bool GetRiferimentiEstrattoConto(std::string& SottocontoClienti, std::string& SottocontoFornitori,
                                   std::string& SottocontoBanca, std::string& CausAnticipiDDT,
                                   std::string& CausAnticipoForn, std::string& CausEmisFatturaClienti,
                                   std::string& CausNotaCreditoClienti, std::string& CausFatturaForn,
                                   std::string& CausNotaCreditoForn);
  // Reads both tables.
  bool GetRiferimentiElaborazioneBonifici(Valore& SottocontoClienti, Valore& SottocontoFornitori,
                                          Valore& SottocontoBanca, Valore& SottCommissioniBancarie,
                                          Valore& CausPagamentoFornBonifico);
  bool GetRiferimentiAmmortamenti(Valore& CausAmAmmOrd, Valore& CausAmAmmAnt, Valore& CausAmAcquisto,
                                  Valore& CausAmRivalutazione, Valore& CausAmSvalutazione,
                                  Valore& CausAmDismissione, Valore& CausAmManutenzione, Valore& CausAmOneriSpese,
                                  Valore& CausConAmmOrd, Valore& CausConAmmAnt, Valore& CausAmVarFondoAmmOrd,
                                  Valore& CausAmVarFondoAmmAnt, Valore& CausAmPlusvalReinvestita);
  // Reads both tables.
  bool GetRiferimentiImportFattureXML(Valore& CausFatturaForn, Valore& CausNotaCreditoForn,
                                      Valore& SottIVACAcquisti, Valore& SottCostiStandard,
                                      Valore& SottCostiSpeseAccessori, Valore& SottCostiSpeseBolli,
                                      Valore& Codice_Nazione, Valore& SottocontoFornitori);

  // Single values, empty text without the row.
  std::string GetCodiceIvaEsclusoArt15();    // [Tabella Azienda].[Codice Iva Art 15]
  std::string GetCodiceIvaSpeseIncasso();    // [Tabella Azienda].[Codice Iva Spese Incasso]
  std::string GetCausAmAcquisto();           // [Riferimenti Contabili].CausAmAcquisto
};

}  // namespace vorn
