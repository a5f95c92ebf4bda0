// vorn mastrino: one ledger card on the terminal. vorn stampa mastrini: the paginated print of
// one card, a range, every sub-account, or the clients or suppliers.
#include <fstream>
#include <ostream>

#include "cli/Comandi.h"
#include "cli/OpzioniComando.h"
#include "company/clsParametriAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "ledger/clsSaldiContabili.h"
#include "ledger/clsStampaMastrini.h"

namespace vorn::cli {

namespace {

// --cliente C 000123 (or --cliente C000123): the indicator and the code of the partner. The code
// may follow as the next word, read once the company file has been taken.
struct PartnerCli {
  std::string ind, cod;
  bool codiceDopo = false;
};
PartnerCli LeggiPartner(Argomenti& a) {
  PartnerCli p;
  auto v = a.Opzione("--cliente");
  if (!v) return p;
  std::string s = Trim(*v);
  if (s.empty()) throw ErroreUso("--cliente vuole l'indicatore C o F e il codice");
  p.ind = UCase(s.substr(0, 1));
  if (p.ind != "C" && p.ind != "F") throw ErroreUso("--cliente vuole l'indicatore C o F: " + s);
  p.cod = Trim(s.substr(1));
  p.codiceDopo = p.cod.empty();
  return p;
}
void CompletaPartner(Argomenti& a, PartnerCli& p) {
  if (p.codiceDopo) p.cod = Trim(a.Posizionale("il codice del cliente o fornitore dopo --cliente " + p.ind));
}

void Interruttori(Argomenti& a, ArgomentiStampaMastrini& s) {
  s.avar_StampaDescrizionePN = a.Flag("--descrizione-pn");
  s.avar_StampaSaldo = a.Flag("--saldo");
  s.avar_StampaPerArchivio = a.Flag("--archivio");
  s.avar_DaData = ValoreDataOpzione(a, "--dal", Valore(""));
  s.avar_AData = ValoreDataOpzione(a, "--al", Valore(""));
}

std::string RagioneSocialeAzienda(Connessione& cn) {
  try {
    return TrimTesto(cn.Scalare("SELECT [Tabella Azienda].[Ragione Sociale] FROM [Tabella Azienda] LIMIT 1"));
  } catch (const ErroreDb&) {
    return "";
  }
}

// True when the chart or the journal knows the sub-account: a code that neither knows is a
// mistake of the user, not a card without movements.
bool SottocontoNoto(Connessione& cn, const std::string& conto) {
  return !cn.Execute("SELECT 1 FROM [Descrizione sottoconti] WHERE [Descrizione sottoconti].[Sottoconto] = ? LIMIT 1",
                     {Valore(conto)})
              .Eof() ||
         !cn.Execute("SELECT 1 FROM [Prima Nota] WHERE [Prima Nota].[ContoPrimaNota] = ? LIMIT 1", {Valore(conto)})
              .Eof();
}

void VerificaSottoconto(Connessione& cn, const std::string& conto) {
  if (!SottocontoNoto(cn, conto))
    throw ErroreComando("sottoconto sconosciuto: " + conto + " (né nel piano dei conti né in prima nota)");
}

// A page of the print: its head (three lines), a card's heading and one row.
constexpr int kMinimoRigheMastrini = clsStampaMastrini::kRigheTestataPagina + clsStampaMastrini::kRigheTestataScheda + 1;

const char* const kUsoMastrino =
    "Uso: vorn mastrino FILE --conto SOTTOCONTO [--cliente C|F CODICE] [--dal GG/MM/AAAA] [--al GG/MM/AAAA]\n"
    "                   [--descrizione-pn] [--saldo] [--archivio]\n\n"
    "Scrive sul terminale la scheda del sottoconto (o del cliente o fornitore sul sottoconto) nel\n"
    "periodo: il saldo precedente, i movimenti e i totali. Un estremo omesso lascia il periodo aperto.\n"
    "  --descrizione-pn   la descrizione della riga in luogo di quella della causale\n"
    "  --saldo            il saldo progressivo su ogni riga\n"
    "  --archivio         il tracciato per archivio, con il numero di registrazione\n\n";

int EseguiMastrino(Contesto& ctx) {
  Argomenti& a = ctx.args;
  auto conto = a.Opzione("--conto");
  PartnerCli partner = LeggiPartner(a);
  ArgomentiStampaMastrini s;
  Interruttori(a, s);
  AziendaCli az = LeggiAzienda(a);
  CompletaPartner(a, partner);
  a.Fine();
  if (!conto || Trim(*conto).empty()) throw ErroreUso("manca --conto");

  auto db = ApriAzienda(az, Accesso::Lettura);
  VerificaSottoconto(*db->cn, Trim(*conto));
  clsStampaMastrini stampa;
  stampa.cn = db->cn;
  s.frm_FormAttiva = &ctx.form;
  CancellaFile(clsStampaMastrini::FileAccumulo());
  bool scritto = stampa.Stampa_Completa_Mastrino(s.avar_DaData, s.avar_AData, Valore(Trim(*conto)),
                                                 Valore(partner.ind), Valore(partner.cod), s);
  ctx.form.Fine();
  CancellaFile(clsStampaMastrini::FileAccumulo());
  if (!scritto) {
    ctx.out << "Nessun movimento e saldo precedente nullo per il sottoconto " << Trim(*conto) << ".\n";
    return 0;
  }
  std::ifstream in(clsStampaMastrini::FileScheda(), std::ios::binary);
  std::string riga;
  bool prima = true;
  while (std::getline(in, riga)) {
    if (prima && riga == "\f") {
      prima = false;
      continue;
    }
    prima = false;
    ctx.out << riga << '\n';
  }
  return 0;
}

const char* const kUsoStampa =
    "Uso: vorn stampa mastrini FILE USCITA [SELEZIONE] [--dal GG/MM/AAAA] [--al GG/MM/AAAA] [OPZIONI]\n\n"
    "Scrive in USCITA le schede impaginate e ne stampa il percorso. La selezione:\n"
    "  --conto SOTTOCONTO [--cliente C|F CODICE]   una scheda\n"
    "  --da-conto X --a-conto Y                    i sottoconti dell'intervallo (un gruppo o un conto\n"
    "                                              vale per i suoi sottoconti)\n"
    "  --tutti                                     tutti i sottoconti (è la scelta predefinita)\n"
    "  --clienti | --fornitori  [--da-codice X] [--a-codice Y] [--per-nome]\n"
    "                           [--sottoconto S] [--agente A] [--zona Z]\n"
    "                                              i clienti o i fornitori, per codice o per nome;\n"
    "                                              prima si verificano gli indicatori della prima\n"
    "                                              nota (la domanda vuole --si o --no fuori terminale)\n"
    "Opzioni:\n"
    "  --descrizione-pn   la descrizione della riga in luogo di quella della causale\n"
    "  --saldo            il saldo progressivo su ogni riga\n"
    "  --archivio         il tracciato per archivio, con il numero di registrazione\n"
    "  --no-salto-pagina  le schede si seguono sulla stessa pagina\n"
    "  --righe N          righe di una pagina, testata e piede compresi (predefinite 72, almeno 10)\n"
    "  --azienda NOME     il nome in testata (predefinito: la ragione sociale dell'azienda)\n\n";

int EseguiStampa(Contesto& ctx) {
  Argomenti& a = ctx.args;
  ArgomentiStampaMastrini s;
  Interruttori(a, s);
  s.avar_NoSaltoPagina = a.Flag("--no-salto-pagina");
  s.avar_RighePagina = RighePagina(a, 72, kMinimoRigheMastrini);
  auto azienda = a.Opzione("--azienda");
  auto conto = a.Opzione("--conto");
  PartnerCli partner = LeggiPartner(a);
  auto daConto = a.Opzione("--da-conto");
  auto aConto = a.Opzione("--a-conto");
  bool tutti = a.Flag("--tutti");
  bool clienti = a.Flag("--clienti");
  bool fornitori = a.Flag("--fornitori");
  auto daCodice = a.Opzione("--da-codice");
  auto aCodice = a.Opzione("--a-codice");
  bool perNome = a.Flag("--per-nome");
  auto sottoconto = a.Opzione("--sottoconto");
  auto agente = a.Opzione("--agente");
  auto zona = a.Opzione("--zona");
  AziendaCli az = LeggiAzienda(a);
  std::string uscita = a.Posizionale("il file della stampa (USCITA)");
  CompletaPartner(a, partner);
  a.Fine();

  int scelte = (conto ? 1 : 0) + ((daConto || aConto) ? 1 : 0) + (tutti ? 1 : 0) + (clienti ? 1 : 0) + (fornitori ? 1 : 0);
  if (scelte > 1) throw ErroreUso("una sola selezione fra --conto, --da-conto/--a-conto, --tutti, --clienti, --fornitori");
  if (!partner.ind.empty() && !conto) throw ErroreUso("--cliente va con --conto");
  if ((daCodice || aCodice || perNome || sottoconto || agente || zona) && !clienti && !fornitori)
    throw ErroreUso("--da-codice, --a-codice, --per-nome, --sottoconto, --agente e --zona vanno con --clienti o --fornitori");
  UscitaStampa(az, uscita);

  // The print of clients or suppliers may correct the journal's partner indicators first.
  auto db = ApriAzienda(az, clienti || fornitori ? Accesso::Scrittura : Accesso::Lettura);
  if (conto) VerificaSottoconto(*db->cn, Trim(*conto));
  clsStampaMastrini stampa;
  stampa.cn = db->cn;
  s.frm_FormAttiva = &ctx.form;
  s.nomeFile = uscita;
  s.RagioneSocialeAzienda = azienda ? *azienda : RagioneSocialeAzienda(*db->cn);
  long n;
  if (conto) {
    n = stampa.StampaListaMastrini(s, {VoceMastrino{Trim(*conto), partner.ind, partner.cod}});
  } else if (daConto || aConto) {
    n = stampa.StampaSottoconti(s, Valore(daConto.value_or("")), Valore(aConto.value_or("")));
  } else if (clienti || fornitori) {
    clsParametriAzienda parametri;
    parametri.cn = db->cn;
    n = stampa.StampaMastriniCliFor(s, parametri, Valore(clienti ? "C" : "F"), Valore(daCodice.value_or("")),
                                    Valore(aCodice.value_or("")), perNome, Valore(sottoconto.value_or("")),
                                    Valore(agente.value_or("")), Valore(zona.value_or("")));
  } else {
    n = stampa.StampaTutti(s);
  }
  ctx.form.Fine();
  ctx.out << uscita << "\n";
  if (n == 0) ctx.out << "Nessuna scheda da stampare.\n";
  return 0;
}

RegistraComando regMastrino(Comando{"mastrino", "la scheda di un sottoconto (mastrino) sul terminale", std::string(kUsoMastrino) + kUsoAzienda,
                                    EseguiMastrino});
RegistraComando regStampa(Comando{"stampa mastrini", "stampa impaginata delle schede contabili (mastrini)",
                                  std::string(kUsoStampa) + kUsoUscitaStampa + "\n" + kUsoAzienda, EseguiStampa});

}  // namespace

}  // namespace vorn::cli
