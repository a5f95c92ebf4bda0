// The demo's VAT registers: the sales and the purchases register of every month of the year,
// the first quarter printed definitively with numbered sheets (the progressives, the date of the
// last print and the printed marks of the journal move as the client's definitive print moves
// them), each of those months followed by its definitive settlement before the next month is
// printed; the other months as trials.
#include <ostream>
#include <stdexcept>

#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "cli/RegistroIva.h"
#include "frame/FileVorn.h"
#include "vat/clsRegistriIva.h"

namespace vorn::cli {

namespace {

// Every VAT entry of the demo is posted on register 01 of its kind.
constexpr int kRegistro = 1;
constexpr int kMesiBollati = 3;  // the first quarter

void Passo(ContestoDemo& ctx) {
  const std::string cartella = CartellaStampe() + "/RegistriIva";
  CreaCartella(cartella);
  ArgomentiRegistroIva base = ArgomentiRegistroIvaAzienda(ctx.cn);
  base.formAttiva = ctx.form;
  base.avar_NumeroRegistro = Valore("01");
  base.avar_Anno = ctx.Anno();
  int stampe = 0;
  std::string venditeGennaio;
  for (int mese = 1; mese <= 12; ++mese) {
    for (const char* tipo : {registro_iva::kVendite, registro_iva::kAcquisti}) {
      const TipoRegistroCli& t = *TipoRegistroDaCodice(tipo);
      ArgomentiRegistroIva a = base;
      a.nomeFile = cartella + "/" + NomeFileRegistroIva(t, kRegistro, ctx.Anno(), mese);
      a.avar_Mese = mese;
      if (mese <= kMesiBollati) a.avar_ProvaBollato = "B";
      a.avar_NumerazionePagine = mese <= kMesiBollati;
      clsRegistriIva registri;
      registri.cn = ctx.cn;
      if (!registri.StampaRegistro(tipo, a))
        throw std::runtime_error("Il registro IVA " + std::string(t.descrizione) + " del mese " +
                                 std::to_string(mese) + " non è stato completato.");
      if (!registri.Esito().stampato) continue;
      ctx.fileScritti.push_back(a.nomeFile);
      ++stampe;
      if (mese == 1 && std::string(t.tipo) == registro_iva::kVendite) venditeGennaio = a.nomeFile;
    }
    if (mese <= kMesiBollati) LiquidazioneIvaBollataDemo(ctx, mese);
  }
  ctx.FineProgresso();
  ctx.out << "Registri IVA: " << stampe << " stampe in " << cartella
          << " (vendite e acquisti nr. 01 di ogni mese; gennaio-marzo bollati con i fogli numerati, gli altri"
             " mesi in prova)\n";
  if (!venditeGennaio.empty()) ctx.out << "Registro IVA vendite di gennaio: " << venditeGennaio << "\n";
}

RegistraPassoDemo reg({30, "registri IVA", Passo});

}  // namespace

}  // namespace vorn::cli
