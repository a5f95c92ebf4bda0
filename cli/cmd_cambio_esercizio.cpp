// vorn cambio-esercizio: closes a fiscal year and opens the next with real journal entries.
#include <ostream>

#include "cli/Comandi.h"
#include "company/clsParametriAzienda.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "ledger/clsCambioEsercizio.h"
#include "ledger/clsPrimaNota.h"

namespace vorn::cli {

namespace {

const char* const kUso =
    "Uso: vorn cambio-esercizio FILE --anno AAAA\n\n"
    "Chiude l'esercizio che termina nell'anno AAAA (alla fine del mese di chiusura fiscale\n"
    "dell'azienda) e apre il successivo, con registrazioni di prima nota: i costi e i ricavi girati a\n"
    "Profitti e Perdite, il risultato al conto del risultato di esercizio, i conti patrimoniali (clienti\n"
    "e fornitori uno per uno) girati a Bilancio Chiusura e riaperti il giorno dopo contro Bilancio\n"
    "Apertura. Conti e causali sono quelli dei riferimenti contabili dell'azienda. Scrive i numeri\n"
    "delle registrazioni e il risultato. Tutto o niente: un errore a metà non lascia nulla; un\n"
    "esercizio già chiuso non viene chiuso una seconda volta (uscita 1).\n"
    "Opzioni:\n"
    "  --anno AAAA        l'anno in cui termina l'esercizio, dal 1901 al 9998\n";

std::string Numero(int32_t n) { return n ? Format(Valore(n), "00000") : std::string("-"); }

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  int anno = OpzioneIntera(a, "--anno", 1901, 9998);
  AziendaCli az = LeggiAzienda(a);
  a.Fine();

  auto db = ApriAzienda(az, Accesso::Scrittura);
  clsParametriAzienda parametri;
  parametri.cn = db->cn;
  int mese = static_cast<int>(Val(parametri.GetMeseChiusuraFiscale().Testo()));
  if (mese < 1 || mese > 12) mese = 12;
  // The last day of the closing month: the first of the next month, less one day.
  const Data fine = (mese == 12 ? *Data::Crea(anno + 1, 1, 1) : *Data::Crea(anno, mese + 1, 1)).AggiungiGiorni(-1);
  const Data inizio = (mese == 12 ? *Data::Crea(anno, 1, 1) : *Data::Crea(anno - 1, mese + 1, 1));
  const Data apertura = fine.AggiungiGiorni(1);

  ArgomentiCambioEsercizio arg;
  if (!ArgomentiCambioEsercizioAzienda(db->cn, inizio, fine, arg))
    throw ErroreComando("mancano i riferimenti contabili dell'azienda");
  arg.frm_FormAttiva = &ctx.form;
  arg.clientID = Valore("vorn");

  clsCambioEsercizio cambio;
  cambio.cn = db->cn;
  clsPrimaNota pn;
  EsitoCambioEsercizio e;
  bool ok = cambio.CambioEsercizioVorn(arg, pn, &e);
  ctx.form.Fine();
  if (!ok) throw ErroreComando("il cambio esercizio non è stato eseguito");

  ctx.out << "Cambio esercizio dal " << inizio.Testo() << " al " << fine.Testo() << ", apertura al "
          << apertura.Testo() << "\n";
  ScriviTabella(ctx.out, {{"Registrazione", Allinea::Sinistra}, {"Numero", Allinea::Destra}},
                {{"Chiusura conti economici", Numero(e.registrazioneChiusuraEconomici)},
                 {"Giroconto risultato", Numero(e.registrazioneRisultato)},
                 {"Chiusura conti patrimoniali", Numero(e.registrazioneChiusuraPatrimoniali)},
                 {"Apertura conti patrimoniali", Numero(e.registrazioneApertura)}});
  ctx.out << "Righe scritte: " << e.righe << "\n";
  ctx.out << (e.risultato < Importo() ? "Perdita di esercizio: " + FormattaImporto(Valore(-e.risultato))
                                      : "Utile di esercizio: " + FormattaImporto(Valore(e.risultato)))
          << "\n";
  return 0;
}

RegistraComando reg(Comando{"cambio-esercizio", "chiude un esercizio e apre il successivo",
                            std::string(kUso) + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
