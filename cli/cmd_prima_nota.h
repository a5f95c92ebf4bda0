// The journal commands' work, apart from their arguments, so that the tests can run it on the
// test's own connection.
#pragma once
#include <cstddef>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

#include "frame/Db.h"
#include "frame/Host.h"

namespace vorn::cli {

struct FiltroPrimaNota {
  std::optional<std::string> numero;  // one entry; digits are widened to five
  std::optional<Data> dal, al;        // a range of registration dates
};

// The journal's rows, entry by entry with the debit and credit totals of each; the row count.
size_t ElencaPrimaNota(Connessione& cn, const FiltroPrimaNota& f, std::ostream& out);
// The full rebuild in its order, all or nothing; the journal rows replayed (0: empty journal).
long RicostruisciTuttiSaldi(const std::shared_ptr<Connessione>& cn, IForm& form);
// Lists every difference between balances and journal; their count.
size_t StampaVerificaSaldi(Connessione& cn, std::ostream& out);

}  // namespace vorn::cli
