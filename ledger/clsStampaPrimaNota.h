// The print of the journal entries of a selection, with the check of each entry's balance: as a
// paginated text file (StamPrim.tmp laid out into the caller's file) or as the rows of the report
// table [Elaborazione stampa prima nota] of one client (ClientName) for the client's report
// engine. An entry is printed whole; one whose debit and credit differ (VAT rows included) is
// marked "** Non quadrano i totali **".
#pragma once
#include <functional>
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

class clsAnagraficaAzienda;

// The selection both forms share. Empty text leaves a filter out; entry numbers default to
// "00001" and "99999", dates to an open range.
struct SelezionePrimaNota {
  Valore avar_DaData, avar_AData;                   // registration dates
  Valore avar_DaRegistrazione, avar_ARegistrazione;  // entry numbers
  Valore avar_Causale;
  bool avar_SoloErrate = false;  // only the entries that do not balance
  Valore avar_Sottoconto, avar_IndCliFor, avar_CliFor;  // only the entries with a row on it
  Valore avar_CodValuta;                                // only the rows in that currency
  Valore avar_CodIva;                                   // only the entries with a row of that VAT code
};

struct ArgomentiStampaPrimaNota {
  IForm* frm_FormAttiva = nullptr;  // msgbar: the entry being printed
  clsAnagraficaAzienda* objAnagraficaAzienda = nullptr;  // the company in the head; none: the class's own
  std::string AzRagSoc, AzParIva;  // the foot: who produced the print
  std::string nomeFile;            // the text form's print
  std::string clientName;          // the report table's rows
  int avar_RighePagina = 72;
  std::optional<Data> DataStampa;  // the date in the page head; today when none
  SelezionePrimaNota selezione;
};

// One journal row as the print shows it.
struct RigaStampaPrimaNota {
  std::string NumeroRegistrazione, CodiceCausale, DescrizioneCausale, DescrizioneSupplem, CodiceIVA, NumRegistroIVA;
  std::string ContoPrimaNota, IndClienteFornitore, CodClienteFornitore, DescrizioneConto;
  Valore DataRegistrazione, DataCompetenza, DataDocumento, NumeroDocumento, SerieDocumento, NumeroDiProtocollo,
      DataCompetenzaIVA, PercIndetraibile;
  Importo Imponibile, Dare, Avere;
};

// What a run found.
struct EsitoStampaPrimaNota {
  long registrazioni = 0, righe = 0;
  long nonQuadrate = 0;  // entries printed that do not balance
  Importo dare, avere;   // grand totals
};

class clsStampaPrimaNota {
 public:
  ConnessioneClasse cn;

  static const char* const kTitolo;          // "Stampa prima nota"
  static const char* const kNonQuadrano;     // "** Non quadrano i totali **"
  static const char* const kIntestazione;    // the heading of the rows

  // Debit minus credit of all rows of the entry, VAT rows included.
  Importo GetSaldoRegistrazione(const Valore& numeroRegistrazione);
  // True when a row of the entry is on the sub-account (and on the partner, when given).
  bool ThereIsSottocontoInReg(const Valore& numeroRegistrazione, const Valore& avar_Sottoconto,
                              const Valore& avar_IndCliFor, const Valore& avar_CliFor);
  bool ThereIsCodIvaInReg(const Valore& numeroRegistrazione, const Valore& avar_CodIva);

  // The report table's rows for a.clientName (its old rows go first). False, with "Nessun dato da
  // stampare." told, when the selection is empty.
  bool MakeStampaPrimaNota(const ArgomentiStampaPrimaNota& a);
  // The paginated text into a.nomeFile. False, with the message told, when the selection is empty:
  // then the file is not written.
  bool StampaPrimaNotaTesto(const ArgomentiStampaPrimaNota& a);

  const EsitoStampaPrimaNota& Esito() const { return esito_; }

 private:
  EsitoStampaPrimaNota esito_;
  // Streams the selected entries in order: `registrazione` gets each entry's rows and whether it
  // balances. False, with the message told, when nothing is selected.
  bool Scorri(const ArgomentiStampaPrimaNota& a,
              const std::function<void(const std::vector<RigaStampaPrimaNota>&, bool quadra)>& registrazione);
};

}  // namespace vorn
