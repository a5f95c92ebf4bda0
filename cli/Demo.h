// The demo company of vorn demo: clients, suppliers and a year of journal entries, made up from a
// starting number (--seme) so that the same options always give the same books; and the trial balance of its
// sub-accounts.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "frame/Db.h"
#include "frame/Host.h"
#include "frame/Importo.h"

namespace vorn::cli {

struct OpzioniDemo {
  uint64_t seme = 1;
  int clienti = 40;
  int fornitori = 25;
  long registrazioni = 1200;  // entries besides the opening and the VAT settlements
  int anno = 2024;
  int lotto = 500;  // entries per transaction
};

struct EsitoDemo {
  long registrazioni = 0;  // all entries written, opening and settlements included
  long righe = 0;          // journal rows
};

// Fills a company loaded from the standard model: the company's identity, the clients and
// suppliers, then the entries of the year in date order: the opening, sales and purchase
// invoices and credit notes with their VAT rows, receipts and payments of open invoices, giro
// entries, and each month's VAT settlement with its payment. Every row goes through
// clsPrimaNota::SalvaRecord, a batch of entries to a transaction; the form shows each entry.
// Throws on a database error, the batch in progress undone.
EsitoDemo RiempiAziendaDemo(Connessione& cn, const OpzioniDemo& o, IForm* form = nullptr);

struct RigaBilancioVerifica {
  std::string codice;  // seven characters
  std::string descrizione;
  Importo dare, avere;  // opening balance on its side, plus the year's movements
  Importo Saldo() const { return dare - avere; }
};

// The sub-accounts with a balance row, by code, from the running balances.
std::vector<RigaBilancioVerifica> BilancioVerificaSottoconti(Connessione& cn);

// The trial balance as text: a heading, one line a sub-account, the totals.
std::string TestoBilancioVerifica(const std::vector<RigaBilancioVerifica>& righe);

}  // namespace vorn::cli
