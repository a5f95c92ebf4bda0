// Remittance lists of supplier instalments paid by bank transfer ([Distinte Bonifici], one row
// per list, and [Distinte Bonifici Righe], one row per instalment), and the companion of the
// lists of client effects ([Distinte], [Distinte Righe]).
//
// A list is drafted (head and rows, its instalments marked [Distinta] and presented to the
// list's bank), issued (the bank flow made: [Emesso] on the instalments, [EffettiEmessi] on the
// head) and posted (clsElaboraFatture::ContabilizzaDistintaBonifici: [Contabilizzato] on the
// instalments, [Contabilizzata], the registration's number and date on the head). Supplier
// instalments are kept negative: only amounts below 0 ever join a list. An instalment folded
// into a unified one ([Flag Unificata] 2) is hidden everywhere.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

// What a new list takes (CreaDistinta).
struct NuovaDistintaBonifici {
  Valore Data_Distinta, Data_Esecuzione;  // the list's date; the bank's execution date
  Valore Data_Scadenza_Limite;            // the instalments due up to here, this day included
  Valore Codice_Banca, Codice_Agenzia;    // the company's bank the list goes to
  Valore SottocontoBanca;                 // the account the posting credits; empty: the bank's
  Importo ImportoLimite;                  // 0: no limit; else instalments while the total stays within it
};

class clsDistinteBonifici {
 public:
  ConnessioneClasse cn;

  int32_t GetMaxDiNumeroDistinta();
  // The head's columns as text ("dd/mm/yyyy" for the dates); empty when the list is missing.
  std::string GetDataDistinta(const Valore& Numero_Distinta);
  std::string GetDataEsecuzione(const Valore& Numero_Distinta);
  std::string GetSottocontoBancaDistinta(const Valore& Numero_Distinta);

  // Frees every instalment of the list (AggiornaFlagPresentatoInDistinta with false).
  bool SmarcaPresentazioneDistintaTutteLeRighe(const Valore& Numero_Distinta);
  // Marks an instalment presented in a list (Stato true: the bank, date and list) or frees it
  // (false: bank codes and date cleared, list 0). The paid amount is left to the posting.
  // False when the instalment is missing.
  bool AggiornaFlagPresentatoInDistinta(const Valore& Numero_progressivo, bool Stato,
                                        const Valore& Codice_Banca_Presentazione,
                                        const Valore& Codice_Agenzia_Presentazione, const Valore& Data_presentazione,
                                        const Valore& Progressivo_Distinta);

  // The head by [Numero Distinta] (in `valori`, with any of its columns by name): added when
  // missing, else updated under the record protocol (Cancel true: turned down, nothing written).
  bool SalvaRecord(const RecordValori& valori, const Valore& clientID, long hWnd, bool& Cancel);
  bool SalvaRecordRighe(const Valore& Numero_Distinta, const Valore& Progressivo_Riga,
                        const Valore& Numero_progressivo, const Valore& Tipo_effetto, const Valore& clientID,
                        long hWnd, bool& Cancel);
  bool CancellaRecordRighe(const Valore& Numero_Distinta);
  bool CancellaRecord(const Valore& Numero_Distinta);
  bool ExistNumeroDistinta(const Valore& Numero_Distinta);
  // True when an instalment of the list is issued.
  bool ExistEffettiEmessiDistinta(const Valore& Numero_Distinta);
  // Along [Numero Distinta]; from no number, the last (back) or the first (forward).
  bool RecordPrecedente(Valore& Numero_Distinta);
  bool RecordSuccessivo(Valore& Numero_Distinta);

  bool LocalizzaRecord(Recordset& T, const Valore& Numero_Distinta, const Valore& clientID, long hWnd);
  // The list's rows with their instalments (a row whose instalment is gone keeps empty columns).
  bool LocalizzaRecordRighe(Recordset& T, const Valore& Numero_Distinta, const Valore& clientID, long hWnd);
  // The supplier instalments of a kind due up to the limit, open, in no list, not suspended.
  bool LocalizzaEffettiDaEmettere(Recordset& T, const Valore& Tipo_di_Effetto, const Valore& Data_Scadenza_Limite);
  // The data of the bank flow: the list, its bank, each instalment with its supplier.
  bool LocalizzaEffettiEmissione(Recordset& T, const Valore& Numero_Distinta);
  // The first row of [Tabella Azienda]; the province in brackets.
  bool GetDatiAzienda(Valore& Ragione_Sociale, Valore& Indirizzo, Valore& Cap, Valore& Citta, Valore& Provincia);
  // What is left to present of a kind, each amount converted by its exchange rate.
  Importo GetResiduiTipoEffetto(const Valore& Tipo_di_Effetto);
  bool LocalizzaDatiBancaAzienda(const Valore& Codice_Banca, const Valore& Codice_Agenzia, Valore& Descrizione,
                                 Valore& codice_ABI, Valore& codice_CAB);
  bool GetDatiBancaAgenziaPresDistintaBonifici(const Valore& Numero_Distinta, Valore& Codice_Banca_Presentazione,
                                               Valore& Codice_Agenzia_Presentazione);
  bool AggiornaFlagEffettiEmessi(const Valore& Numero_Distinta, bool Stato);
  bool AggiornaEffettiEmessiInDistinta(const Valore& Numero_Distinta, bool Stato);
  bool AggiornaDistintaContabilizzata(const Valore& Numero_Distinta, bool Stato);

  // A new list of the open supplier instalments paid by transfer ("BO") due up to the limit,
  // all or nothing: its number (taken from the company's counters), the head with the total,
  // one row per instalment in due-date order, each instalment presented. 0 and nothing written
  // when no instalment qualifies.
  int32_t CreaDistinta(const NuovaDistintaBonifici& d, const Valore& clientID, long hWnd);
  // Issued: the flow made, the list and its instalments marked together.
  bool EmettiDistinta(const Valore& Numero_Distinta);
  // A list not posted taken back, all or nothing: its instalments freed, its rows and head
  // deleted. False, and nothing changed, when the list is missing or posted.
  bool AnnullaDistinta(const Valore& Numero_Distinta);
};

// A new list of client effects (clsDistinteEffetti::CreaDistinta).
struct NuovaDistintaEffetti {
  Valore Data_Distinta;
  Valore Codice_Banca, Codice_Agenzia;  // the company's bank the papers are presented to
  Valore SottocontoBanca;               // the account the presentation debits; empty: the bank's
  bool Emessa = true;                   // the flow already made: issued at once
};

class clsDistinteEffetti {
 public:
  ConnessioneClasse cn;
  // A list of the given client instalments, all or nothing: its number (from the company's
  // counters), the head with the total, a row each, each instalment presented to the bank (and
  // issued when the list is). An instalment already in a list, posted, suspended or not a
  // client's is left out; 0 and nothing written when none is left.
  int32_t CreaDistinta(const NuovaDistintaEffetti& d, const std::vector<int32_t>& rate, const Valore& clientID,
                       long hWnd);
  // The bank account of the effects' list that holds the instalment; false when none does.
  bool GetSottocontoBanca(const Valore& Numero_progressivo, Valore& SottocontoBanca);
  bool AzzeraArchivio();
};

}  // namespace vorn
