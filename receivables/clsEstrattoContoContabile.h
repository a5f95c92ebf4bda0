// The account statement of a client or a supplier: for each document of the due-date book its
// instalments and their payments, the balance of the item and a running balance, written into
// [Elaborazione Estratto Conto Vorn] under the client's name and read back in the order of [ID].
//
// The statement is a statement of the account, not of the due-date book alone: after the
// documents come the journal movements of the counterparty that no instalment or payment
// accounts for (a receipt entered in the journal without closing its instalment, an opening, a
// giro), and, for an entry that the book does name, the difference when the journal moved the
// account by another amount (noted "Differenza tra scadenziario e prima nota"). So the final
// running balance is the balance of the counterparty's account in the journal over the same
// dates, but for payments of the book whose entries are not in the journal.
//
// Sides: the amounts are those of the due-date book, debit positive (a supplier's instalments
// are stored negative); a payment lowers the open amount of its instalment.
#pragma once
#include <map>
#include <string>

#include "frame/ConnessioneClasse.h"
#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Importo.h"
#include "frame/Valore.h"

namespace vorn {

class clsValute;

class clsEstrattoContoContabile {
 public:
  ConnessioneClasse cn;

  // Adds the lines of the payments of an instalment after line `numeroRiga` (raised for each),
  // lowering the balance of the item and the running balance by each amount paid. Payments
  // dated after `dataRiferimento` (when a date) are left out: not yet made at that date.
  void AggiungiPagamenti(IForm* objFormAttiva, const std::string& clientName, long& numeroRiga,
                         const Valore& Numero_progressivo, Importo& SaldoPartita, Importo& SaldoProgressivo,
                         const Valore& dataRiferimento = Valore());
  // What was paid on an instalment: the sum of its payment rows, 0 with none.
  Importo GetPagatoNumeroProgressivoEffetto(const Valore& Numero_progressivo);
  // What was paid on the instalments of a document, those folded into another left out.
  Valore GetPagatoPartita(const Valore& avarTipoCliFor, const Valore& avarCodiceCliFor, const Valore& avar_NumeroDoc,
                          const Valore& avar_SerieDoc, const Valore& avar_DataDoc);
  // "Nota di credito" for a stock causal that unloads ("-"), "Fattura emessa" otherwise; an
  // unknown causal: a message, and empty text.
  std::string StringaDocumento(const Valore& codice_causale);

  // Builds the statement of the counterparty (`avarTipoCliFor` "C"/"CL" or "F"/"FO") for the
  // documents dated in the range (either end may be empty: from 01/01/1980, to 31/12/2050).
  // `avar_DataRiferimento`, when a date, is the date of the statement: payments and journal
  // movements after it are left out. The rows of `clientName` are replaced all together. No
  // document and no movement: the message "Nessun dato da elaborare.", false. On success `TE`
  // holds the rows of `clientName` by [ID].
  bool MakeEstrattoConto(IForm* objFormAttiva, const std::string& clientName, clsValute* objValute,
                         const Valore& avarTipoCliFor, const Valore& avarCodiceCliFor, const Valore& avar_DaData,
                         const Valore& avar_AData, const Valore& avar_DataRiferimento, Recordset& TE);

  // The final running balance of the last statement built (0 when none was).
  Importo SaldoFinale() const { return saldoFinale_; }
  // Its lines of difference between the due-date book and the journal.
  long Differenze() const { return differenze_; }

  // The label of an instalment's kind ("Ricevuta bancaria"...); the code itself when unknown.
  static std::string DescrizioneTipoEffetto(const std::string& codice);

 private:
  struct Riga;
  void Scrivi(const Riga& r);
  std::string Formatta(Importo i, const Valore& valuta);
  clsValute* valute_ = nullptr;
  Importo saldoFinale_;
  long differenze_ = 0;
  // What the lines of the statement being built put on each journal entry.
  std::map<std::string, Importo> attribuito_;
};

}  // namespace vorn
