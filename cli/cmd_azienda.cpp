// vorn crea-azienda and vorn azienda: a new company, empty or from a model, and the profile of
// an existing one with the parameters its connection loads.
#include <filesystem>
#include <ostream>
#include <sstream>

#include "cli/Comandi.h"
#include "company/clsAnagraficaAzienda.h"
#include "company/clsParametriAzienda.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "frame/Globali.h"
#include "frame/Schema.h"
#include "interchange/ModelloStandard.h"

namespace vorn::cli {

namespace {

// A message of the server may run over several lines: the command tells it in one.
std::string UnaRiga(const std::string& testo) {
  std::string s;
  bool spazio = false;
  for (char c : testo) {
    if (c == '\n' || c == '\r' || c == '\t') {
      spazio = true;
      continue;
    }
    if (spazio && !s.empty() && s.back() != ' ' && c != ' ') s += ' ';
    spazio = false;
    s += c;
  }
  return Trim(s);
}

int64_t Conta(Connessione& cn, const std::string& sql) {
  Valore v = cn.Scalare(sql);
  return v.ComeIntero().value_or(0);
}

std::string Riepilogo(Connessione& cn) {
  return std::to_string(Conta(cn, "SELECT COUNT(*) FROM [Piano Dei Conti] WHERE COALESCE([Sottoconto], '') <> ''")) +
         " sottoconti, " + std::to_string(Conta(cn, "SELECT COUNT(*) FROM [Causali Contabili]")) + " causali, " +
         std::to_string(Conta(cn, "SELECT COUNT(*) FROM [Codici Iva]")) + " codici IVA, " +
         std::to_string(Conta(cn, "SELECT COUNT(*) FROM [Pagamenti]")) + " pagamenti";
}

int CreaAzienda(Contesto& ctx) {
  std::string modello = ctx.args.Opzione("--modello").value_or("");
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  // A wrong model name is told before anything is created.
  if (!modello.empty()) {
    try {
      TabelleModello(modello);
    } catch (const ErroreModello& e) {
      throw ErroreUso(e.what());
    }
  }
  // The model is loaded inside the creation: the company appears whole or not at all.
  std::string riepilogo;
  auto riempi = [&](Connessione& c) {
    if (modello.empty()) return;
    try {
      CaricaModello(c, modello);
      riepilogo = Riepilogo(c);
    } catch (const ErroreDb& e) {
      throw ErroreDb(e.Numero(), "Impossibile caricare il modello " + modello + ": " + e.Descrizione(), e.SqlState());
    } catch (const std::exception& e) {
      throw ErroreDb(0, std::string("Impossibile caricare il modello ") + modello + ": " + e.what());
    }
  };
  std::shared_ptr<Connessione> cn;
  try {
    cn = az.postgres ? CreaAziendaPostgres(az.pg, riempi) : CreaAziendaSqlite(az.file, riempi);
  } catch (const ErroreDb& e) {
    throw ErroreComando(UnaRiga(e.Descrizione()));
  }
  cn->Close();
  ctx.out << "Azienda creata: " << az.Descrizione();
  if (modello.empty()) ctx.out << " (archivi vuoti)\n";
  else ctx.out << " dal modello " << modello << ": " << riepilogo << "\n";
  return 0;
}

void Riga(std::ostream& out, const std::string& etichetta, const std::string& valore) {
  out << "  " << PadSinistra(etichetta + ":", 30) << valore << "\n";
}

std::string Unisci(std::initializer_list<std::string> parti, const std::string& sep) {
  std::string s;
  for (const auto& p : parti)
    if (!Trim(p).empty()) s += (s.empty() ? "" : sep) + Trim(p);
  return s;
}

int MostraAzienda(Contesto& ctx) {
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  auto cn = db->cn;
  std::ostream& out = ctx.out;

  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = cn;
  std::string ragione, piva, indirizzo, citta, provincia, cap, nazione, tribunale, cciaa, cf, telefono, fax, email, web;
  double capitale = 0;
  bool profilo = anagrafica.GetDatiAzienda(ragione, piva, indirizzo, citta, provincia, cap, nazione, tribunale, cciaa,
                                           cf, telefono, fax, capitale, email, web);
  out << "Azienda " << az.Descrizione() << " (" << cn->Provider() << ")\n";
  if (!profilo) {
    out << "  Anagrafica non compilata: la tabella dell'azienda non ha righe.\n";
  } else {
    Riga(out, "Ragione sociale", ragione);
    Riga(out, "Partita IVA", piva);
    Riga(out, "Codice fiscale", cf);
    std::string luogo = Unisci({cap, citta}, " ");
    if (!Trim(provincia).empty()) luogo += " (" + Trim(provincia) + ")";
    Riga(out, "Sede", Unisci({indirizzo, luogo}, ", "));
    Riga(out, "Nazione", nazione);
    Riga(out, "Telefono, fax", Unisci({telefono, fax}, ", "));
    Riga(out, "E-mail, sito web", Unisci({email, web}, ", "));
    Riga(out, "Iscrizione tribunale, CCIAA", Unisci({tribunale, cciaa}, ", "));
    Riga(out, "Capitale sociale", FormattaImporto(Valore(Importo::DaDouble(capitale))));
    Riga(out, "Persona fisica", anagrafica.IsPersonaFisica() ? "sì" : "no");
  }

  clsParametriAzienda parametri;
  parametri.cn = cn;
  const Globali& g = G();
  out << "\nParametri caricati dalla connessione\n";
  Riga(out, "Motore (IndSqlServer)", cn->Provider() + " (" + g.IndSqlServer + ")");
  Riga(out, "Valuta di conto", Unisci({g.ValutaDiConto, g.SimboloValutaConto, g.DescrizioneValutaConto}, " "));
  Riga(out, "Decimali importi", std::to_string(g.DecimaliImporti));
  Riga(out, "Decimali prezzi", std::to_string(g.DecimaliPrezziValutaConto));
  Riga(out, "Decimali quantità", std::to_string(g.DecimaliQuantita));
  Riga(out, "Decimali cambi", std::to_string(g.DecimaliCambi));
  Riga(out, "Codici valuta lire, euro", Unisci({g.CodiceValutaLire, g.CodiceValutaEuro}, ", "));
  Riga(out, "Cambio fisso lire/euro", Format(Valore(g.CambioFissoLireEuro), "#,##0.00"));
  Riga(out, "Mese chiusura fiscale", parametri.GetMeseChiusuraFiscale().Testo());
  Riga(out, "Liquidazione IVA", parametri.GetLiquidazioneTrimestale() ? "trimestrale" : "mensile");

  out << "\nArchivi\n";
  Riga(out, "Piano dei conti",
       std::to_string(Conta(*cn, "SELECT COUNT(*) FROM [Piano Dei Conti] WHERE COALESCE([Sottoconto], '') <> ''")) +
           " sottoconti");
  Riga(out, "Causali contabili", std::to_string(Conta(*cn, "SELECT COUNT(*) FROM [Causali Contabili]")));
  Riga(out, "Codici IVA", std::to_string(Conta(*cn, "SELECT COUNT(*) FROM [Codici Iva]")));
  Riga(out, "Clienti, fornitori",
       std::to_string(Conta(*cn, "SELECT COUNT(*) FROM [Anagrafica Clienti]")) + ", " +
           std::to_string(Conta(*cn, "SELECT COUNT(*) FROM [Anagrafica Fornitori]")));
  Riga(out, "Righe di prima nota", std::to_string(Conta(*cn, "SELECT COUNT(*) FROM [Prima Nota]")));
  db->DisconnettiDatabase();
  return 0;
}

std::string UsoCreaAzienda() {
  return std::string(
             "Uso: vorn crea-azienda FILE [--modello standard|semplificato]\n"
             "     vorn crea-azienda --pg-database NOME [--pg-host HOST[:PORTA]] [--pg-user UTENTE]\n"
             "                       [--modello standard|semplificato]\n\n"
             "Crea una nuova azienda con tutti gli archivi, vuoti. Un file o un database che esiste già\n"
             "non viene toccato: il comando termina con un errore.\n\n"
             "  --modello NOME  carica il piano dei conti, le causali, i codici IVA, i pagamenti, i\n"
             "                  parametri e i riferimenti contabili di un modello:\n"
             "                  standard      contabilità ordinaria\n"
             "                  semplificato  contabilità semplificata\n"
             "                  (i dati dei modelli stanno in interchange/modelli; VORN_MODELLI indica\n"
             "                  un'altra cartella)\n\n") +
         kUsoAzienda;
}

std::string UsoAzienda() {
  return std::string(
             "Uso: vorn azienda FILE\n"
             "     vorn azienda --pg-database NOME [--pg-host HOST[:PORTA]] [--pg-user UTENTE]\n\n"
             "Mostra l'anagrafica dell'azienda, i parametri che la connessione carica (valuta,\n"
             "decimali, cambio) e quante righe hanno gli archivi principali.\n\n") +
         kUsoAzienda;
}

RegistraComando regCrea({"crea-azienda", "crea una nuova azienda, vuota o da un modello", UsoCreaAzienda(),
                         CreaAzienda});
RegistraComando regAzienda({"azienda", "mostra l'anagrafica e i parametri di un'azienda", UsoAzienda(),
                            MostraAzienda});

}  // namespace

}  // namespace vorn::cli
