// vorn dati-fatture: the invoice data of a period drawn from the journal, and their counts.
#include <ostream>
#include <string>

#include "cli/Comandi.h"
#include "frame/Comuni.h"
#include "statements/clsDatiFatture.h"

namespace vorn::cli {

namespace {

std::string UsoDatiFatture() {
  std::string s =
      "Uso: vorn dati-fatture FILE --anno AAAA --periodo P\n\n"
      "Estrae dalla prima nota i dati delle fatture di vendita e di acquisto del periodo (le righe\n"
      "IVA dei registri vendite, sospensione e acquisti) nelle tabelle dei dati fatture, sostituendo\n"
      "l'estrazione precedente del periodo con le sue correzioni; dal 2019 solo le operazioni con\n"
      "soggetti esteri. Tutto o niente: se l'estrazione non riesce, resta quella di prima.\n"
      "Scrive una riga con i conteggi. P è uno fra:\n";
  for (int p = 0; p < clsDatiFatture::kPeriodi; ++p)
    s += "  " + std::string(p < 10 ? " " : "") + std::to_string(p) + "  " + clsDatiFatture::TestoPeriodo(p) + "\n";
  return s;
}

int DatiFatture(Contesto& ctx) {
  const int anno = OpzioneIntera(ctx.args, "--anno", 1900, 9999);
  const int periodo = OpzioneIntera(ctx.args, "--periodo", 0, clsDatiFatture::kPeriodi - 1);
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Scrittura);
  clsDatiFatture d;
  d.cn = db->cn;
  const long righe = d.EstraiDatiFattureDaPrimaNota(0, anno, periodo, &ctx.form);
  ctx.form.Fine();
  if (righe < 0) throw ErroreComando("l'estrazione dei dati fatture non è stata eseguita");
  const Parametri p = {Valore(anno), Valore(periodo)};
  auto conta = [&](const char* lato) {
    return NullToZeroLng(db->cn->Scalare("SELECT COUNT(*) FROM [DatiFattureTestate] WHERE [tipo] = 0 AND [anno] = ? "
                                         "AND [periodo] = ? AND [indicatoreCliFor] = ?",
                                         {p[0], p[1], Valore(lato)}));
  };
  const long vendite = conta("C"), acquisti = conta("F");
  ctx.out << "Dati fatture " << clsDatiFatture::TestoPeriodo(periodo) << " " << anno << ": " << righe
          << " righe IVA, " << (vendite + acquisti) << " documenti (" << vendite << " di vendita, " << acquisti
          << " di acquisto)" << (anno >= 2019 ? ", solo soggetti esteri" : "") << "\n";
  return 0;
}

RegistraComando regDatiFatture({"dati-fatture", "i dati delle fatture di un periodo estratti dalla prima nota",
                                UsoDatiFatture() + "\n" + kUsoAzienda, DatiFatture});

}  // namespace

}  // namespace vorn::cli
