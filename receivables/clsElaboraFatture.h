// Posting of sales documents: the printed rows of [Fatture] of a date range become journal
// entries. Each document gives one main registration (the client's row, revenues, expenses,
// the split-payment pair, the VAT rows) and one registration for each amount it settles at once
// (split payment, down payment, the two withholdings, the rounding allowance, gifts), each tied
// to the settled instalment that the due-date step wrote for the document.
//
// Each document is one transaction of its own: its registrations, their balance movement, the
// payments on its instalments and its [Elaborata] stamp are committed together or not at all.
// The stamp is set first, where it is still clear, so that a document another run is posting
// at the same time is left to it: two runs over the same range post each document once.
// A document refused by a check is rolled back alone and the run goes on; a document that
// fails for a deadlock or a serialization failure is run again from the start; any other
// failure rolls the document back, is told, and the run goes on. Entry numbers are taken
// under the lock of the numbering service, so that two runs at once never share one.
//
// Amounts are exact: the discounted taxable amounts and the apportioned expenses are worked
// out from the document's figures and rounded once to the company's decimals, the VAT of a
// row is rounded once from its taxable amount. A document in another currency is converted to
// the company's currency by its exchange rate, row by row, when the row is written.
#pragma once
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

class clsPrimaNota;
class clsCausaliContabili;
class clsClientiFornitori;
class clsSaldaconto;
class clsScadenze;
class clsTabRiferimenti;
class clsCodiciIva;
class clsBancheAzienda;
class clsDistinteEffetti;
class clsDistinteBonifici;
class clsProgrNumerazione;

// The arguments of a posting run, by name. The objects are optional: a missing one is made by
// the run on its own connection.
struct ArgomentiElaboraFatture {
  IForm* objFormAttiva = nullptr;  // its msgbar tells the progress
  clsPrimaNota* objPrimaNota = nullptr;
  clsCausaliContabili* objCausaliContabili = nullptr;
  clsClientiFornitori* objClientiFornitori = nullptr;
  clsSaldaconto* objSaldaconto = nullptr;
  clsScadenze* objScadenze = nullptr;
  clsTabRiferimenti* objTabRiferimenti = nullptr;
  clsCodiciIva* objCodiciIVA = nullptr;

  Valore avar_DaData, avar_AData;        // the documents' dates, both ends included
  Valore avar_DataContabilizzazione;     // the registration date unless bool_ContabilizzaDataFattura

  Valore avar_CausaleFatture, avar_CausaleNoteCredito, avar_CausaleIncassi, avar_CausaleOmaggi;
  Valore avar_ClientiStandard, avar_RicaviStandard, avar_RicaviAccessori;
  Valore avar_IvaVendite, avar_IvaCorrispettiviScorporo, avar_IvaSospensione, avar_IvaEsigDiff;
  Valore avar_SottocontoCassa, avar_SottocontoImponibileOmaggi, avar_SottocontoIvaOmaggi;
  Valore avar_SottIVASplitPaymentVend, avar_CausaleSplitPayment;
  Valore avar_SottocontoRitenuteSubite, avar_CausaleRitenuteSubite;
  Valore avar_SottocontoAbbuoni, avar_CausaleAbbuoni;
  Valore avar_TipoContabRicAcc;  // "1": one revenue row per kind of expense; else one row
  Valore avar_SottRicaviAccessori2, avar_SottRicaviSpeseIncasso, avar_SottRicaviSpeseTrasporto, avar_SottRicaviBolli;

  bool bool_ContabilizzaDataFattura = false;  // registration date = the document's date
  Valore clientID;
  long hWnd = 0;
};

// What a run did.
struct EsitoElaboraFatture {
  long Registrazioni = 0;  // journal entries created (main and settling)
  long Documenti = 0;      // documents posted and stamped
  long Scartati = 0;       // documents refused by a check or rolled back by a failure
  std::vector<std::string> Errori;  // unexpected failures, one line per document rolled back
};

// The VAT table of a document, rows 1 to 5 (index 0 unused), its columns by name:
//   1 codice       VAT code: a number written "000" (above 099 the hundreds digit 8 marks a
//                  gift with VAT, 9 a gift without), another code as it is; empty: a free row
//   2 spese        expenses apportioned to the row
//   3 imponibile   taxable amount as read
//   4 aliquota     VAT rate (percent, four decimals)
//   5 iva          VAT of the row
//   6 nettoSconti  taxable amount after the two customer discounts
//   7 netto        taxable amount after the payment discount too
struct RigaTabellaIva {
  std::string codice;
  Importo spese, imponibile, aliquota, iva, nettoSconti, netto;
};
struct TabellaIvaDocumento {
  std::array<RigaTabellaIva, 6> r{};
  RigaTabellaIva& operator[](int i) { return r.at(static_cast<size_t>(i)); }
  const RigaTabellaIva& operator[](int i) const { return r.at(static_cast<size_t>(i)); }
  // Reads the 210-character text: five rows of code, taxable amount and rate, 14 characters
  // each. An empty or short text leaves the missing rows zero.
  static TabellaIvaDocumento DaTesto(const std::string& testo);
};

// Fills the causals and accounts of a run from the company's reference tables. False when
// they have no row (every value then empty).
bool RiferimentiElaboraFatture(clsTabRiferimenti& objTabRiferimenti, ArgomentiElaboraFatture& a);

// The arguments of the effects run (ElaboraEffetti), by name; missing objects are the run's own.
struct ArgomentiElaboraEffetti {
  IForm* objFormAttiva = nullptr;
  clsPrimaNota* objPrimaNota = nullptr;
  clsCausaliContabili* objCausaliContabili = nullptr;
  clsClientiFornitori* objClientiFornitori = nullptr;
  clsBancheAzienda* objBancheAzienda = nullptr;
  clsDistinteEffetti* objDistinteEffetti = nullptr;
  clsSaldaconto* objSaldaconto = nullptr;
  clsScadenze* objScadenze = nullptr;
  Valore avar_DaData, avar_AData;     // the documents' dates of the instalments, both ends included
  Valore avar_DataContabilizzazione;  // the registration date unless bool_ContabilizzaDataFattura
  Valore avar_ClientiStandard, avar_FornitoriStandard;
  Valore CodiceCausale_PresentazioneEffetti, CodiceCausale_EmissioneEffetti;
  Valore ContoPrimaNota_ContoRicevuteBancarie, ContoPrimaNota_ContoEffettiAttivi, ContoPrimaNota_ContoBanca;
  Valore ContoPrimaNota_ClientiContoRID, ContoPrimaNota_ClientiContoAvvisi;
  bool bool_ContabilizzaDataFattura = false;  // registration date = the document's date
  // Each paper straight to the bank of its list (only the instalments presented in a list);
  // otherwise each paper to its portfolio account, then each issued list of [Distinte] from
  // the first date on as one presentation entry.
  bool bool_ContabilizzazioneDiretta = false;
  Valore clientID;
  long hWnd = 0;
};

// The arguments of the till receipts run (ElaboraScontrini).
struct ArgomentiElaboraScontrini {
  IForm* objFormAttiva = nullptr;
  clsProgrNumerazione* objProgrNumerazione = nullptr;
  clsPrimaNota* objPrimaNota = nullptr;
  clsCausaliContabili* objCausaliContabili = nullptr;
  Valore avar_DaData, avar_AData;
  Valore causale_magazzino_corrispettivi;  // the stock causal of the receipts' movements
  Valore ContoPrimaNota_ContoCassa, ContoPrimaNota_RicaviStandard, CodiceCausale_CorrispettiviScorporo,
      ContoPrimaNota_IVA;
  Valore clientID;
  long hWnd = 0;
};

// The arguments of the posting of a transfer remittance list (ContabilizzaDistintaBonifici).
struct ArgomentiDistintaBonifici {
  IForm* objFormAttiva = nullptr;
  clsPrimaNota* objPrimaNota = nullptr;
  clsCausaliContabili* objCausaliContabili = nullptr;
  clsClientiFornitori* objClientiFornitori = nullptr;
  clsBancheAzienda* objBancheAzienda = nullptr;
  clsDistinteBonifici* objDistinteBonifici = nullptr;
  clsSaldaconto* objSaldaconto = nullptr;
  clsScadenze* objScadenze = nullptr;
  Valore Numero_Distinta;
  Valore avar_ClientiStandard, avar_FornitoriStandard;
  Valore CodiceCausale_BonificiFornitori, ContoPrimaNota_ContoBanca, ContoPrimaNota_CommissioniBancarie;
  Importo commissioniBancarie;  // 0: no commission row
  Valore clientID;
  long hWnd = 0;
};

// What an effects or receipts run did.
struct EsitoElaborazione {
  long Registrazioni = 0;  // journal entries created
  long Scartati = 0;       // instalments, lists or days refused or rolled back
  std::vector<std::string> Errori;  // unexpected failures, one line each
};

// The causals and accounts of each run from the company's reference tables; false when they
// have no row.
bool RiferimentiElaboraEffetti(clsTabRiferimenti& objTabRiferimenti, ArgomentiElaboraEffetti& a);
bool RiferimentiElaboraScontrini(clsTabRiferimenti& objTabRiferimenti, ArgomentiElaboraScontrini& a);
bool RiferimentiDistintaBonifici(clsTabRiferimenti& objTabRiferimenti, ArgomentiDistintaBonifici& a);

class clsElaboraFatture {
 public:
  ConnessioneClasse cn;

  // The posting run over [Fatture] (see the top of this file). Messages go to the host, under
  // the titles the users know; the summary ends the run.
  EsitoElaboraFatture ElaboraFatture(ArgomentiElaboraFatture& a);

  // The one way this class writes a journal row. Amounts are in the document's currency;
  // the journal gets them divided by the exchange rate, in the company's decimals, and in the
  // currency's decimals as the currency amounts.
  bool ScriviRecordPrimaNota(clsPrimaNota& objPrimaNota, clsCausaliContabili& objCausaliContabili,
                             int32_t NumeroRegistrazioneTmp, const Valore& DataRegistrazioneTmp,
                             const std::string& TipoRigaIvaNormaleTmp, int32_t NumRigaAVideoTmp,
                             const std::string& DareAvereTmp, const Valore& SottocontoTmp,
                             const Valore& IndClienteFornitoreTmp, const Valore& CodClienteFornitoreTmp,
                             const Valore& DataCompetenzaTmp, const Valore& CodiceCausaleTmp,
                             const Valore& DescrizioneSupplementareTmp, Importo ImportoMovimentoTmp,
                             Importo imponibileTmp, const Valore& CodiceIvaTmp, const Valore& IndicatoreCliFor_IvaTmp,
                             const Valore& CodiceCliFor_IvaTmp, const Valore& TipoRegistroIvaTmp,
                             const Valore& NumRegistroIvaTmp, const Valore& DataDocumentoTmp,
                             const Valore& SerieDocumentoTmp, const Valore& NumeroDocumentoTmp,
                             Importo TotaleDocumentoTmp, const Valore& ValutaTmp, double CambioTmp,
                             const Valore& KeyScadenzeTmp, const Valore& NumeroDiProtocolloTmp,
                             const Valore& numeroDocumentoEstesoTmp, const Valore& DataCompetenzaIvaTmp,
                             const Valore& clientID, long hWnd);

  // Discounts one upon the other, the expenses apportioned by the rows' taxable amounts, the
  // VAT of each row; collection expenses with a VAT code of their own and stamps not placed on
  // a row of their rate take a free row. Amounts rounded to `decimali`. False when a sixth
  // code was needed (told to the user).
  bool CompletaTabellaIva(clsTabRiferimenti& objTabRiferimenti, clsCodiciIva& objCodiciIVA, TabellaIvaDocumento& t,
                          double ScontoCliente1, double ScontoCliente2, double ScontoPagamento, Importo SpeseIncasso,
                          Importo SpeseTrasporto, Importo SpeseAccessorie, Importo TotaleRighe, Importo Bolli,
                          int decimali);

  // The summary of the VAT rows by code: a row of the same code adds up, a new code takes the
  // first free row, a sixth code is ignored.
  void CompilaTabellaIvaRiepilogata(const std::string& codice, Importo aliquota, Importo ImponibileNettoSconti, Importo imposta,
                                    Importo SpeseRipartite);
  TabellaIvaDocumento TabellaIvaRiepilogata;  // zeroed for each document

  bool Aggiorna_Campo_Fattura_Elaborata(const Valore& NomeTabella, const Valore& NumeroDocumento,
                                        const Valore& SerieDocumento, bool Stato);
  bool Aggiorna_Campo_Generato_Scadenze(const Valore& NomeTabella, const Valore& NumeroDocumento,
                                        const Valore& SerieDocumento, bool Stato);
  bool Aggiorna_Campo_Effetto_Contabilizzato(const Valore& Numero_progressivo, bool Stato);
  bool Aggiorna_Campo_Distinta_Contabilizzata(const Valore& Numero_Distinta, bool Stato,
                                              const Valore& numeroRegistrazione, const Valore& DataRegistrazione);

  // The issue of the clients' commercial papers of a range of document dates (bank receipts,
  // drafts, bank notices, direct debits, in this order), each instalment one registration that
  // closes it, committed with the instalment's stamp or not at all; then, unless direct, the
  // presentation of each issued list of [Distinte]. A stamped instalment or list is never
  // posted again. The summary ends the run.
  EsitoElaborazione ElaboraEffetti(ArgomentiElaboraEffetti& a);
  // The till receipts of a range of days from the stock movements of the receipts' causal: one
  // registration for each day, currency and rate, committed with the movements' stamp.
  EsitoElaborazione ElaboraScontrini(ArgomentiElaboraScontrini& a);
  // A transfer remittance list posted as one registration: a row per instalment on its
  // supplier, the commissions, the bank. The instalments are closed and stamped, and the list
  // stamped posted with the registration, in the same transaction. The count of journal rows
  // written, 0 when the list has nothing to post (told to the user) or was posted already.
  long ContabilizzaDistintaBonifici(ArgomentiDistintaBonifici& a, int32_t& numeroNuovaRegistrazione);
  // [Flag Elaborato Scontrini] set on the movements of a day and causal still clear; the count.
  int64_t Aggiorna_Campo_Movimento_Elaborato_Scontrino(const Valore& data, const Valore& causale, bool esito);

  // Every [Fatture] row by number and series.
  bool LocalizzaTuttiRecordFatture(Recordset& T);
  // Lists into `nomeFile` the documents of the range not yet printed (and so not postable);
  // true when there is one.
  bool PresentiFattureNonStampate(const Valore& avar_DaData, const Valore& avar_AData, const std::string& nomeFile);

  // Stamps the registration on the first instalment of the document; true when there was one.
  bool UpdateDatiRegistrazioneInScadenza(const Valore& tipo, const Valore& Codice_Cliente, const Valore& DataDocumento,
                                         const Valore& Serie, const Valore& NumeroDocumento,
                                         int32_t numeroRegistrazione, const Valore& DataRegistrazione);
  // The settled row of a document by kind, amount and note; 0 when none.
  int32_t GetNumeroScadenzaAcconto(const Valore& tipo, const Valore& Codice_Cliente, const Valore& DataDocumento,
                                   const Valore& Serie, const Valore& NumeroDocumento, const Valore& TipoEffetto,
                                   Importo ImportoEffetto, const Valore& Note);

  // A registration of an allowance on one instalment, which it closes by the amount (negated
  // when the allowance stands on the credit side). The new registration's number, 0 when the
  // instalment does not exist. Runs in the caller's transaction, or in one of its own.
  int32_t ContabilizzaAbbuono(IForm* objFormAttiva, clsPrimaNota& objPrimaNota,
                              clsCausaliContabili& objCausaliContabili, clsClientiFornitori& objClientiFornitori,
                              clsSaldaconto& objSaldaconto, clsScadenze& objScadenze,
                              const Valore& avar_ClientiStandard, const Valore& avar_FornitoriStandard,
                              const Valore& Numero_Progressivo_Scadenza_Partenza, Importo ImportoRegistrazione,
                              const Valore& CodiceCausaleAbbuoni, const Valore& ContoPrimaNota_Abbuoni,
                              const std::string& DareAvere_CliFor, const std::string& DareAvere_Abbuono,
                              const Valore& clientID, long hWnd);

 private:
  // The end of a posting run: `riga` on the form, then the box with the entries it created, or
  // `nessuno` when it created none.
  static void FineElaborazione(IForm* form, const std::string& riga, long registrazioni, const std::string& nessuno,
                               int stile, const std::string& titolo);
  // What a run reads once instead of at every document or row: the causals' operativity and
  // their register data, the clients' accounts, whether an account is in the chart (for the
  // warnings), the currencies' decimals, the VAT codes of collection expenses and stamps and
  // their rates.
  struct Cache {
    std::map<std::string, std::string> operativita, contiClienti;
    struct Causale {
      bool esiste = false;
      std::string registro, tipo, proposto;
    };
    std::map<std::string, Causale> causali;
    std::map<std::string, bool> conti;
    std::map<std::string, int> decimaliValute;
    bool codiciLetti = false;
    std::string codiceIncasso, codiceArt15;
    std::optional<Importo> aliqIncasso, aliqArt15;
  };
  std::optional<Cache> cache_;
  bool EsisteContoCorsa(clsPrimaNota& pn, const std::string& conto);
  // The decimals of a document's currency (the company's for its own or none), read once a run.
  int DecimaliValutaDocumento(const std::string& valuta);
};

}  // namespace vorn
