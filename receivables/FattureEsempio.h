// Sample sales documents waiting to be posted: invoices of three lines at two VAT rates (22%
// and 10%) for Italian clients of a company loaded from the standard model, with their lines in
// [Movimenti Magazzino], their VAT table, and their instalments in the due-date book from the
// client's payment terms, as the sales side leaves them once printed ([Stampata] '1', not
// [Elaborata]). The same options give the same documents on every machine. The tests, the
// benchmarks and the demo fill the table from here.
#pragma once
#include <cstdint>
#include <map>
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
  std::string cliente, ragioneSociale, sottocontoCliente, pagamento;
  Importo totale;                         // [Totale Documento]
  std::map<std::string, Importo> ricavi;  // the lines' amounts by revenue account
  std::map<std::string, Importo> imponibili, iva;  // by VAT code ("022", "010")
  int rate = 0;                           // instalments written
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

}  // namespace vorn
