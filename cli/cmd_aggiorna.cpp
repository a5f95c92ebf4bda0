// vorn aggiorna: brings a database of the earlier generation up to date, all or nothing.
#include "cli/Comandi.h"

namespace vorn::cli {

namespace {

int EseguiAggiorna(Contesto& ctx) {
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Scrittura);
  EsitoAggiornamentoArchivi e = db->AggiornaArchivi(&ctx.form);
  db->DisconnettiDatabase();
  ctx.form.Fine();
  if (e.giaNuovo) {
    ctx.out << "Il database è già aggiornato: nulla da fare.\n";
    return 0;
  }
  if (e.report.empty())
    ctx.out << "Rapporto AggiornamentoArchivi.txt non scritto: " << e.erroreReport << "\n";
  else
    ctx.out << e.report << "\n";
  ctx.out << "Colonne rinominate in minuscolo: " << e.rinominate.size() << "\n"
          << "Aggiunte alla struttura:         " << e.aggiunte.size() << "\n"
          << "Campi aggiornati:                " << e.copiati << "\n"
          << "Campi non riusciti:              " << e.nonRiusciti << "\n"
          << "Password cifrate:                " << e.passwordCifrate << "\n";
  if (!e.riuscito) throw ErroreComando("aggiornamento annullato, il database è rimasto com'era: " + e.errore);
  ctx.out << "Database aggiornato e segnato come nuovo.\n";
  return 0;
}

const RegistraComando registra({
    "aggiorna",
    "l'aggiornamento di un database della generazione precedente",
    "Uso: vorn aggiorna FILE\n"
    "     vorn aggiorna --pg-database NOME [--pg-host HOST[:PORTA]] [--pg-user UTENTE]\n\n"
    "Porta un database della generazione precedente (colonne dai nomi brevi) alla struttura\n"
    "attuale, in una sola transazione: aggiunge le tabelle e le colonne che mancano, copia ogni\n"
    "colonna dal nome vecchio al nome nuovo, sostituisce i valori nulli di Prima Nota e del piano\n"
    "dei conti, sostituisce le password degli utenti conservate in chiaro con la loro impronta e\n"
    "segna il database come nuovo. Se qualcosa non riesce non cambia nulla.\n"
    "Un database già segnato come nuovo non viene toccato.\n"
    "Stampa il percorso del rapporto AggiornamentoArchivi.txt (nella cartella Temp) e un riepilogo.\n\n" +
        std::string(kUsoAzienda),
    EseguiAggiorna,
});

}  // namespace

}  // namespace vorn::cli
