// vorn utenti: the users of a company and their rights on the client's menu entries.
#include <cstdlib>

#include "cli/Comandi.h"
#include "frame/Comuni.h"
#include "frame/clsUtenti.h"

namespace vorn::cli {

namespace {

constexpr const char* kVariabilePassword = "VORN_PASSWORD_UTENTE";

// The new password: from the environment, or typed twice on the terminal without echo. Never
// from the command line, where other users of the machine would read it.
std::string NuovaPassword(const std::string& utente, bool senzaPassword) {
  if (senzaPassword) return {};
  std::string p;
  if (const char* v = std::getenv(kVariabilePassword)) {
    p = v;
  } else {
    p = LeggiPasswordNascosta("Password di " + utente + ": ");
    if (!p.empty() && LeggiPasswordNascosta("Ripetere la password: ") != p)
      throw ErroreComando("le due password non coincidono: nulla è cambiato");
  }
  if (p.empty())
    throw ErroreComando(std::string("nessuna password: indicarla sul terminale o in ") + kVariabilePassword +
                        ", oppure togliere la password con --senza-password");
  return p;
}

void Elenca(Connessione& cn, clsUtenti& u, std::ostream& out) {
  std::vector<std::vector<std::string>> righe;
  Recordset rs;
  if (u.LocalizzaTuttiRecord(rs))
    for (; !rs.Eof(); rs.MoveNext()) {
      bool conPassword = !LeggiCampo(rs("password"), Valore("")).Testo().empty();
      righe.push_back({LeggiCampo(rs("username"), Valore("")).Testo(), conPassword ? "sì" : "no"});
    }
  ScriviTabella(out, {{"Utente", Allinea::Sinistra}, {"Password", Allinea::Sinistra}}, righe, "Nessun utente.");
  if (!u.EsisteTabellaUtentiAutorizzazioni()) return;
  righe.clear();
  Recordset d = cn.Execute(
      "SELECT [username], [bandname], [toolname], [Stato] FROM [Tabella Utenti Autorizzazioni] "
      "ORDER BY [username], [bandname], [toolname]");
  for (; !d.Eof(); d.MoveNext())
    righe.push_back({LeggiCampo(d("username"), Valore("")).Testo(), LeggiCampo(d("bandname"), Valore("")).Testo(),
                     LeggiCampo(d("toolname"), Valore("")).Testo(), std::to_string(NullToZeroLng(d("Stato").Value()))});
  if (righe.empty()) return;
  out << "\n";
  ScriviTabella(out, {{"Utente", Allinea::Sinistra}, {"Menu", Allinea::Sinistra}, {"Voce", Allinea::Sinistra},
                      {"Stato", Allinea::Destra}},
                righe);
}

int EseguiUtenti(Contesto& ctx) {
  bool senzaPassword = ctx.args.Flag("--senza-password");
  auto stato = ctx.args.Opzione("--stato");
  AziendaCli az = LeggiAzienda(ctx.args);
  std::string azione = ctx.args.PosizionaleFacoltativo().value_or("elenco");
  std::string utente, menu, voce;
  if (azione != "elenco") utente = ctx.args.Posizionale("il nome dell'utente (UTENTE)");
  if (azione == "concedi" || azione == "revoca") {
    menu = ctx.args.Posizionale("il menu (MENU)");
    voce = ctx.args.Posizionale("la voce del menu (VOCE)");
  }
  ctx.args.Fine();
  if (azione != "elenco" && azione != "aggiungi" && azione != "rimuovi" && azione != "password" &&
      azione != "concedi" && azione != "revoca")
    throw ErroreUso("azione sconosciuta: " + azione + " (elenco, aggiungi, rimuovi, password, concedi, revoca)");
  if (stato && azione != "concedi") throw ErroreUso("--stato va con concedi");
  if (senzaPassword && azione != "aggiungi" && azione != "password")
    throw ErroreUso("--senza-password va con aggiungi o password");
  if (azione != "elenco" && Trim(utente).empty()) throw ErroreUso("il nome dell'utente è vuoto");
  long valoreStato = 1;
  if (stato) {
    auto n = Valore(*stato).ComeIntero();
    if (!n || *n < -32768 || *n > 32767 || Trim(*stato).find_first_not_of("-0123456789") != std::string::npos)
      throw ErroreUso("--stato vuole un numero intero tra -32768 e 32767");
    valoreStato = static_cast<long>(*n);
  }

  auto db = ApriAzienda(az, azione == "elenco" ? Accesso::Lettura : Accesso::Scrittura);
  clsUtenti u;
  u.cn = db->cn;
  auto chiudi = [&] { db->DisconnettiDatabase(); };
  try {
    if (azione == "elenco") {
      Elenca(*db->cn, u, ctx.out);
    } else if (azione == "aggiungi") {
      if (u.ExistsUtente(utente)) throw ErroreComando("l'utente " + utente + " esiste già");
      std::string p = NuovaPassword(utente, senzaPassword);
      u.Salva_Record(utente, p, 0, 0);
      ctx.out << "Utente " << utente << " aggiunto.\n";
    } else if (azione == "password") {
      if (!u.ExistsUtente(utente)) throw ErroreComando("l'utente " + utente + " non esiste");
      std::string p = NuovaPassword(utente, senzaPassword);
      Recordset rs = db->cn->Execute("SELECT [HWnd], [Progressivo rete] FROM [Tabella Utenti] WHERE [username] = ?",
                                     {utente});
      u.Salva_Record(utente, p, rs("HWnd").Value(), rs("Progressivo rete").Value());
      ctx.out << (p.empty() ? "Password tolta all'utente " : "Password cambiata per l'utente ") << utente << ".\n";
    } else if (azione == "rimuovi") {
      if (UgualeNoCase(utente, kSupervisore)) throw ErroreComando("il Supervisore non si può eliminare");
      if (!u.ExistsUtente(utente)) throw ErroreComando("l'utente " + utente + " non esiste");
      Atomico a(*db->cn);
      u.DeleteUtenteAutorizzazioni(utente);
      u.DeleteUtente(utente);
      a.Conferma();
      ctx.out << "Utente " << utente << " eliminato con i suoi diritti.\n";
    } else if (azione == "concedi") {
      if (!u.ExistsUtente(utente)) throw ErroreComando("l'utente " + utente + " non esiste");
      u.SalvaRecordUtenteAutorizzazioni(utente, menu, voce, valoreStato);
      ctx.out << "Voce " << menu << "/" << voce << " dell'utente " << utente << ": stato " << valoreStato << ".\n";
    } else {
      if (!u.DeleteVoceMenu(utente, menu, voce))
        throw ErroreComando("l'utente " + utente + " non ha diritti sulla voce " + menu + "/" + voce);
      ctx.out << "Voce " << menu << "/" << voce << " tolta all'utente " << utente << ".\n";
    }
  } catch (...) {
    chiudi();
    throw;
  }
  chiudi();
  return 0;
}

const RegistraComando registra({
    "utenti",
    "gli utenti dell'azienda e i loro diritti sulle voci di menu",
    "Uso: vorn utenti FILE [elenco]\n"
    "     vorn utenti FILE aggiungi UTENTE [--senza-password]\n"
    "     vorn utenti FILE password UTENTE [--senza-password]\n"
    "     vorn utenti FILE rimuovi UTENTE\n"
    "     vorn utenti FILE concedi UTENTE MENU VOCE [--stato N]\n"
    "     vorn utenti FILE revoca UTENTE MENU VOCE\n"
    "     (oppure --pg-database NOME [--pg-host HOST[:PORTA]] [--pg-user UTENTE] al posto di FILE)\n\n"
    "  elenco      gli utenti (con o senza password) e i loro diritti\n"
    "  aggiungi    un nuovo utente con la sua password\n"
    "  password    cambia la password di un utente\n"
    "  rimuovi     elimina un utente e i suoi diritti (non il Supervisore)\n"
    "  concedi     scrive lo stato di una voce di menu per l'utente (--stato, predefinito 1)\n"
    "  revoca      toglie all'utente la voce di menu\n\n"
    "La password si legge da VORN_PASSWORD_UTENTE o, se manca, dal terminale senza eco (due volte);\n"
    "mai dalla riga di comando. Si conserva solo un'impronta con sale (yescrypt), mai la password.\n"
    "--senza-password toglie la password: l'utente entra con la password vuota.\n\n" +
        std::string(kUsoAzienda),
    EseguiUtenti,
});

}  // namespace

}  // namespace vorn::cli
