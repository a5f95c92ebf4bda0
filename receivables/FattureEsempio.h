// Sample sales documents waiting to be posted: invoices of three lines at two VAT rates (22%
// and 10%) for Italian clients of a company loaded from the standard model, with their lines in
// [Movimenti Magazzino], their VAT table, and their instalments in the due-date book from the
// client's payment terms, as the sales side leaves them once printed ([Stampata] '1', not
// [Elaborata]). The same options give the same documents on every machine. The tests and the
// benchmarks fill the table from here; the demo writes its own documents, one by one, through
// ScrittoreFattureEsempio: invoices and credit notes with any mix of the company's VAT codes,
// transport charged, gifts, and the amounts a document settles at once (split payment, down
// payment, withholding, rounding allowance).
#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "frame/Data.h"
#include "frame/Db.h"
#include "frame/Importo.h"

namespace vorn {

struct OpzioniFattureEsempio {
  uint64_t seme = 1;
  long documenti = 100;
  int anno = 2024;              // the documents' dates spread over the year, in number order
  std::string serie;            // of every document; numbers follow the series' highest
  std::string causale = "FTV";  // [Causale Contabile] of the documents
  // The Italian clients of the company (sub-account 0501001 and a payment code) take the
  // documents; when it has none, this many are made first, codes "1", "2"...
  int clienti = 50;
  bool scadenze = true;  // the instalments of each document, as the due-date step writes them
  int lotto = 500;       // documents per transaction
};

// One document as written, with what its posting must give.
struct FatturaEsempio {
  int32_t numero = 0;
  std::string serie;
  Data data;
  std::string cliente, ragioneSociale, pagamento;
  std::string sottocontoCliente;  // of RiempiFattureEsempio's clients; empty from the writer
  Importo totale;                         // [Totale Documento]
  std::map<std::string, Importo> ricavi;  // the lines' amounts by revenue account
  std::map<std::string, Importo> imponibili, iva;  // by VAT code ("022", "010")
  int rate = 0;                           // instalments written, the settled rows included
  bool notaCredito = false;
  // What the document settles at once; the gifts with their VAT. The client owes the rest.
  Importo splitPayment, acconto, ritenuta, abbuono, omaggi;
  Importo DaIncassare() const { return totale - splitPayment - acconto - ritenuta - abbuono - omaggi; }
};

struct EsitoFattureEsempio {
  std::vector<FatturaEsempio> documenti;
  Data dal, al;  // the first and last document's dates
  long righe = 0;  // [Movimenti Magazzino] rows
  long rate = 0;   // [Scadenziario] rows
};

// Writes the documents into the company open on `cn` (committed in batches; a failure undoes
// the batch in progress and passes to the caller). The company's VAT codes 022 and 010 and
// the revenue accounts 7001001 and 7001002 are taken as the standard model has them.
EsitoFattureEsempio RiempiFattureEsempio(Connessione& cn, const OpzioniFattureEsempio& o);

// The 210-character VAT table of [Fatture]: five rows of code, taxable amount and rate, each a
// field of 14 characters, left-aligned, a point as decimal mark; the rows not given are blank.
struct RigaIvaEsempio {
  std::string codice;
  Importo imponibile;
  int aliquota = 0;
};
std::string TestoTabellaIva(const std::vector<RigaIvaEsempio>& righe);

// A line of a document: its revenue account, VAT code and rate, taxable amount. A gift takes
// the code "8" followed by the last two digits of its rate's code ("822"): its VAT is the
// company's, and the posting moves it with the gift off the client.
struct RigaDocumentoEsempio {
  std::string contropartita, codiceIva;
  int aliquota = 0;
  Importo importo;
};

// A document as the sales side leaves it once printed.
struct DocumentoEsempio {
  int32_t numero = 0;
  std::string serie;
  Data data;
  bool notaCredito = false;
  std::string causale = "FTV";
  std::string cliente, ragioneSociale;
  std::string pagamento;  // the client's payment terms; empty: no instalments, the settled rows only
  std::vector<RigaDocumentoEsempio> righe;  // at most five VAT codes, one gift code
  Importo trasporto;                         // apportioned over the VAT rows by their amounts
  bool splitPayment = false;                 // a public body: the whole VAT is split payment
  Importo acconto, ritenuta, abbuono;
};

// Writes documents one by one into the company open on `cn`, in the caller's transaction (or
// each on its own): the [Fatture] row with its VAT table and totals, the lines in [Movimenti
// Magazzino], and, when asked, the instalments from the client's payment terms with a settled
// row for each amount the document settles at once, as the posting looks for them. The VAT of
// each row and the apportioned transport are worked out as the posting completes the table,
// so that the document's total is what its registration balances to.
class ScrittoreFattureEsempio {
 public:
  explicit ScrittoreFattureEsempio(Connessione& cn, bool scadenze = true);
  ~ScrittoreFattureEsempio();
  FatturaEsempio Scrivi(const DocumentoEsempio& d);
  long Righe() const { return righe_; }

 private:
  struct Stato;
  Connessione& cn_;
  bool scadenze_;
  std::unique_ptr<Stato> s_;
  long righe_ = 0;
};

}  // namespace vorn
