// The demo's invoice data: the first quarter of the year drawn from the journal into the tables
// of the statement (from 2019 only the operations with foreign parties), and what they hold.
#include <ostream>
#include <stdexcept>

#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "frame/Comuni.h"
#include "statements/clsDatiFatture.h"

namespace vorn::cli {

namespace {

void Passo(ContestoDemo& ctx) {
  const int anno = ctx.Anno(), periodo = 0;
  clsDatiFatture d;
  d.cn = ctx.cn;
  const long righe = d.EstraiDatiFattureDaPrimaNota(0, anno, periodo, ctx.form);
  if (righe < 0) throw std::runtime_error("L'estrazione dei dati fatture non è stata eseguita.");
  auto conta = [&](const char* tabella, const char* lato) {
    return NullToZeroLng(ctx.cn->Scalare(std::string("SELECT COUNT(*) FROM ") + tabella +
                                             " WHERE [tipo] = 0 AND [anno] = ? AND [periodo] = ? AND "
                                             "[indicatoreCliFor] = ?",
                                         {Valore(anno), Valore(periodo), Valore(lato)}));
  };
  const long vendite = conta("[DatiFattureTestate]", "C"), acquisti = conta("[DatiFattureTestate]", "F");
  ctx.FineProgresso();
  ctx.out << "Dati fatture " << clsDatiFatture::TestoPeriodo(periodo) << " " << anno << ": " << righe
          << " righe IVA, " << vendite << " documenti di vendita e " << acquisti << " di acquisto"
          << (anno >= 2019 ? " con soggetti esteri" : "") << " (vorn dati-fatture " << ctx.azienda << " --anno "
          << anno << " --periodo " << periodo << ")\n";
}

RegistraPassoDemo reg({72, "dati fatture", Passo});

}  // namespace

}  // namespace vorn::cli
