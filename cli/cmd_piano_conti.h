// vorn piano-conti: the chart of accounts with the balances of its sub-accounts.
#pragma once
#include <ostream>

#include "ledger/clsPianoConti.h"

namespace vorn::cli {

// Writes the chart in key order, one line per row: the code (indented by level, dotted), the
// description, the balance-sheet section of a group, the opening and current balance with
// their side. A sub-account shows its own balances, a group or an account the sum of the
// sub-accounts below it. Returns the number of rows listed.
size_t ElencaPianoConti(clsPianoConti& piano, std::ostream& out);

}  // namespace vorn::cli
