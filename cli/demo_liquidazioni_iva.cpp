// The demo's VAT settlements: every month of the year, January to March definitively (run by the
// registers step right after each month's definitive prints), the other months in simulation,
// each carrying the credit or the debt under the minimum that the month before left, as a
// definitive settlement of that month would have. One short table, the folder of the prints, and
// whether the settlements and payments the demo posted while it filled the books are the ones
// the settlements give.
#include <ostream>
#include <stdexcept>

#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "cli/LiquidazioneIva.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"

namespace vorn::cli {

namespace {

std::string Cartella() { return CartellaStampe() + "/LiquidazioniIva"; }

ArgomentiLiquidazioneIva Argomenti(ContestoDemo& ctx, int mese) {
  ArgomentiLiquidazioneIva a = ArgomentiLiquidazioneIvaAzienda(ctx.cn);
  a.formAttiva = ctx.form;
  a.avar_Mese = mese;
  a.avar_Anno = ctx.Anno();
  a.nomeFile = Cartella() + "/" + NomeFileLiquidazioneIva(ctx.Anno(), mese, false);
  return a;
}

// What a settlement carries to the next period, as the definitive settlement saves it in
// CodIvaPerPrec: a credit (positive), a debt not above the minimum payment (negative), or nothing.
Importo Riportato(const EsitoLiquidazioneIva& e) {
  if (e.saldo <= Importo()) return -e.saldo;
  return -e.imposta2733;
}

void Aggiungi(ContestoDemo& ctx, int mese, bool bollata, const clsLiquidazioneIva& liq,
              const ArgomentiLiquidazioneIva& a) {
  if (!liq.Esito().stampata)
    throw std::runtime_error("La liquidazione IVA del mese " + std::to_string(mese) + " non ha nulla da stampare.");
  ctx.liquidazioni.push_back({mese, bollata, liq.Esito(), a.nomeFile});
  ctx.fileScritti.push_back(a.nomeFile);
}

// The month in simulation, from the journal, with the balance the month before carried: set for
// the run in a unit that is then undone, so that the company keeps what its last definitive
// settlement saved.
void Simulazione(ContestoDemo& ctx, int mese, Importo riportato) {
  ArgomentiLiquidazioneIva a = Argomenti(ctx, mese);
  clsLiquidazioneIva liq;
  liq.cn = ctx.cn;
  {
    Atomico prova(*ctx.cn);
    ctx.cn->Esegui("UPDATE [Progressivi Azienda Vorn] SET [CodIvaPerPrec] = ?", {Valore(riportato)});
    if (!liq.LiquidazioneIvaSimulazione(a))
      throw std::runtime_error("La liquidazione IVA del mese " + std::to_string(mese) + " non è stata completata.");
  }
  Aggiungi(ctx, mese, false, liq, a);
}

// What the demo posted for a month: the movements of its settlement entry (dated the month's
// last day) on the treasury's accounts, debit positive, and the payment of the 16th of the
// month after.
struct Registrato {
  Importo creditoIva, erarioIva, versato;  // 0601006, 1401005, the payment
};

Registrato DalGiornale(Connessione& cn, int anno, int mese) {
  const Data fine = Data::Crea(anno, mese, 1)->AggiungiMesi(1).AggiungiGiorni(-1);
  auto movimento = [&](const char* conto) {
    return NullToZeroCy(cn.Scalare("SELECT SUM(CASE WHEN [DareAvere] = 'D' THEN [ImportoMovimento] ELSE "
                                   "-[ImportoMovimento] END) FROM [Prima Nota] WHERE [CodiceCausale] = 'LIQ' AND "
                                   "[ContoPrimaNota] = ? AND [DataRegistrazione] = ?",
                                   {Valore(conto), Valore(fine)}));
  };
  Registrato r;
  r.creditoIva = movimento("0601006");
  r.erarioIva = movimento("1401005");
  r.versato = NullToZeroCy(cn.Scalare("SELECT SUM([ImportoMovimento]) FROM [Prima Nota] WHERE [CodiceCausale] = 'VIV' "
                                      "AND [ContoPrimaNota] = '1401005' AND [DareAvere] = 'D' AND "
                                      "[DataRegistrazione] = ?",
                                      {Valore(fine.AggiungiGiorni(16))}));
  return r;
}

std::string Cifra(Importo i) { return FormattaImporto(Valore(i)); }

void Passo(ContestoDemo& ctx) {
  CreaCartella(Cartella());
  // The months settled definitively are already there; the others follow in simulation.
  for (int mese = 1; mese <= 12; ++mese) {
    bool fatto = false;
    for (const auto& l : ctx.liquidazioni) fatto = fatto || l.mese == mese;
    if (fatto) continue;
    Importo riportato;
    if (!ctx.liquidazioni.empty()) riportato = Riportato(ctx.liquidazioni.back().esito);
    Simulazione(ctx, mese, riportato);
  }
  ctx.FineProgresso();

  int bollate = 0;
  std::vector<std::string> differenze;
  const LiquidazioneDemo* precedente = nullptr;
  std::string tabella = PadSinistra(Valore("Mese"), 11) + PadSinistra(Valore("Liquidazione"), 14) +
                        PadDestra(Valore("IVA del mese"), 24) + PadDestra(Valore("Da versare"), 16) + "\n";
  for (const auto& l : ctx.liquidazioni) {
    const EsitoLiquidazioneIva& e = l.esito;
    bollate += l.bollata;
    const bool credito = e.saldo < Importo();
    tabella += PadSinistra(Valore(LCase(NomeMese(Valore(l.mese)))), 11) +
               PadSinistra(Valore(l.bollata ? "bollata" : "simulazione"), 14) +
               PadDestra(Valore(Cifra(credito ? -e.saldo : e.saldo) + (credito ? " a credito" : " a debito ")), 24) +
               PadDestra(Valore(Cifra(e.daVersare)), 16) +
               (e.imposta2733.Zero() ? "" : "  non supera il minimo: riportata") + "\n";
    // The demo's own entries against the settlement. Its entry moves the credit carried in
    // 0601006 from the month before's to this month's, and the debt in 1401005 from the one
    // carried under the minimum to this month's; the payment is December's only the next year.
    // The year starts with nothing carried.
    const Importo prima = precedente ? Riportato(precedente->esito) : Importo();
    const Importo creditoPrima = prima > Importo() ? prima : Importo();
    const Importo debitoPrima = prima < Importo() ? -prima : Importo();
    const Importo creditoMese = credito ? -e.saldo : Importo(), debitoMese = credito ? Importo() : e.saldo;
    Registrato r = DalGiornale(*ctx.cn, ctx.Anno(), l.mese);
    if (r.creditoIva != creditoMese - creditoPrima || r.erarioIva != debitoPrima - debitoMese ||
        (l.mese < 12 && r.versato != e.daVersare))
      differenze.push_back(LCase(NomeMese(Valore(l.mese))) + " (registrati: IVA a credito " +
                           Cifra(creditoPrima + r.creditoIva) + ", a debito " + Cifra(debitoPrima - r.erarioIva) +
                           ", versamento " + Cifra(r.versato) + ")");
    precedente = &l;
  }
  ctx.out << "Liquidazioni IVA del " << ctx.Anno() << " in " << Cartella() << " (" << bollate
          << " bollate dopo la stampa definitiva dei registri del mese, le altre in simulazione con il saldo "
             "riportato dal mese prima)\n"
          << tabella;
  if (differenze.empty())
    ctx.out << "Le liquidazioni e i versamenti IVA che la demo ha registrato in prima nota coincidono con questi "
               "importi.\n";
  else
    for (const auto& d : differenze)
      ctx.out << "Attenzione: le registrazioni della demo non coincidono con la liquidazione di " << d << "\n";
}

RegistraPassoDemo reg({40, "liquidazioni IVA", Passo});

}  // namespace

void LiquidazioneIvaBollataDemo(ContestoDemo& ctx, int mese) {
  CreaCartella(Cartella());
  ArgomentiLiquidazioneIva a = Argomenti(ctx, mese);
  a.avar_ProvaBollato = "B";
  a.avar_NumerazionePagine = true;
  clsLiquidazioneIva liq;
  liq.cn = ctx.cn;
  if (!liq.LiquidazioneIvaBollata(a))
    throw std::runtime_error("La liquidazione IVA bollata del mese " + std::to_string(mese) +
                             " non è stata completata.");
  Aggiungi(ctx, mese, true, liq, a);
}

}  // namespace vorn::cli
