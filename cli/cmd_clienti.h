// The listing of vorn clienti / vorn fornitori, apart from the command so that it can be
// checked on a connection of its own.
#pragma once
#include <cstddef>
#include <iosfwd>

#include "masterdata/clsClientiFornitori.h"

namespace vorn::cli {

// Writes the heading, one line per client ("C") or supplier ("F") by code, and a closing
// line with the count and the sum of the current balances; the result is the count.
size_t ElencaClientiFornitori(clsClientiFornitori& cf, const Valore& IndClienteFornitore, std::ostream& out);

}  // namespace vorn::cli
