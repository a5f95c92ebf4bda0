// The demo's journal book: January to March printed definitively, one month after the other, so
// that each month's row numbers, running totals and sheets go on from the month before, and the
// rows printed are marked as the client's definitive print marks them.
#include <ostream>
#include <stdexcept>

#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "cli/LibroGiornale.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"

namespace vorn::cli {

namespace {

constexpr int kMesiBollati = 3;  // the first quarter

void Passo(ContestoDemo& ctx) {
  const std::string cartella = CartellaStampe() + "/LibroGiornale";
  CreaCartella(cartella);
  ArgomentiLibroGiornale base = ArgomentiLibroGiornaleAzienda(ctx.cn);
  base.formAttiva = ctx.form;
  base.avar_Anno = ctx.Anno();
  base.avar_ProvaBollato = "B";
  EsitoLibroGiornale ultimo;
  std::string gennaio;
  int stampe = 0;
  for (int mese = 1; mese <= kMesiBollati; ++mese) {
    ArgomentiLibroGiornale a = base;
    a.nomeFile = cartella + "/" + NomeFileLibroGiornale(ctx.Anno(), mese);
    a.avar_Mese = mese;
    clsLibroGiornale libro;
    libro.cn = ctx.cn;
    if (!libro.StampaLibroGiornale(a)) {
      if (libro.Esito().nessunDato) continue;
      throw std::runtime_error("Il libro giornale del mese " + std::to_string(mese) + " non è stato completato.");
    }
    ctx.fileScritti.push_back(a.nomeFile);
    ++stampe;
    ultimo = libro.Esito();
    if (mese == 1) gennaio = a.nomeFile;
  }
  ctx.FineProgresso();
  ctx.out << "Libro giornale: " << stampe << " stampe bollate in " << cartella << " (gennaio-marzo";
  if (stampe > 0)
    ctx.out << ", righe fino alla " << ultimo.ultimaRiga << ", fogli fino al " << ultimo.prossimoFoglio - 1
            << ", progressivi dare " << FormattaImporto(Valore(ultimo.dare)) << " e avere "
            << FormattaImporto(Valore(ultimo.avere));
  ctx.out << ")\n";
  if (!gennaio.empty()) ctx.out << "Libro giornale di gennaio: " << gennaio << "\n";
}

// After the ledger card, before the VAT registers: the book marks position 2 of the journal's
// indicators, the registers position 1.
RegistraPassoDemo reg({25, "libro giornale", Passo});

}  // namespace

}  // namespace vorn::cli
