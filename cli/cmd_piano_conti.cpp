#include "cli/cmd_piano_conti.h"

#include <map>
#include <vector>

#include "cli/Comandi.h"
#include "frame/Comuni.h"

namespace vorn::cli {

namespace {

constexpr int kCodice = 14;  // three levels of indent and the dotted code
constexpr int kDescrizione = 40;
constexpr int kSezione = 12;
constexpr int kImporto = 18;

struct RigaPiano {
  std::string codice;  // group + account + sub-account
  std::string descrizione;
  std::string sezione;
  int livello = 0;
};

// A signed balance back from its side.
Importo ConSegno(const Valore& segno, const Valore& importo) {
  Importo i = NullToZeroCy(importo);
  return segno.Testo() == "A" ? -i : i;
}

std::string Saldo(const Importo& i) {
  Importo assoluto = i < Importo() ? -i : i;
  std::string lato = i > Importo() ? "D" : i < Importo() ? "A" : " ";
  return PadDestra(Valore(FormattaImporto(Valore(assoluto))), kImporto) + " " + lato;
}

std::string Colonna(const std::string& testo, int larghezza) { return PadSinistra(Valore(testo), larghezza); }

}  // namespace

size_t ElencaPianoConti(clsPianoConti& piano, std::ostream& out) {
  std::vector<RigaPiano> righe;
  Recordset rs;
  if (piano.LocalizzaTuttiRecord(rs)) {
    for (; !rs.Eof(); rs.MoveNext()) {
      RigaPiano r;
      r.codice = LeggiCampo(rs("Gruppo"), Valore("")).Testo() + LeggiCampo(rs("Conto"), Valore("")).Testo() +
                 LeggiCampo(rs("Sottoconto"), Valore("")).Testo();
      r.descrizione = LeggiCampo(rs("Descrizione"), Valore("")).Testo();
      r.sezione = LeggiCampo(rs("SezBilancio"), Valore("")).Testo();
      r.livello = LivelloConto(Valore(r.codice));
      righe.push_back(std::move(r));
    }
  }

  // The balances of the sub-accounts, and their sums by group and by account.
  std::map<std::string, std::pair<Importo, Importo>> saldi;
  for (const auto& r : righe) {
    if (r.livello != 3) continue;
    Valore daIniziale, iniziale, daAttuale, attuale;
    piano.GetDareAvereSaldoSottoconto(Valore(r.codice), daIniziale, iniziale, daAttuale, attuale);
    Importo i = ConSegno(daIniziale, iniziale), a = ConSegno(daAttuale, attuale);
    saldi[r.codice] = {i, a};
    for (const std::string& sopra : {r.codice.substr(0, 2), r.codice.substr(0, 4)}) {
      auto& s = saldi[sopra];
      s.first += i;
      s.second += a;
    }
  }

  out << Colonna("Codice", kCodice) << " " << Colonna("Descrizione", kDescrizione) << " "
      << Colonna("Sezione", kSezione) << " " << PadDestra(Valore("Saldo iniziale"), kImporto + 2) << " "
      << PadDestra(Valore("Saldo attuale"), kImporto + 2) << "\n";
  for (const auto& r : righe) {
    // Two blanks of indent for each level below the group.
    int rientro = r.livello > 1 ? 2 * (r.livello - 1) : 0;
    std::string codice = std::string(static_cast<size_t>(rientro), ' ') +
                         Colonna(r.livello == 0 ? r.codice : FormattaConto(Valore(r.codice)), kCodice - rientro);
    auto s = saldi.find(r.codice);
    Importo i = s == saldi.end() ? Importo() : s->second.first;
    Importo a = s == saldi.end() ? Importo() : s->second.second;
    std::string riga = codice + " " + Colonna(r.descrizione, kDescrizione) + " " +
                       Colonna(r.livello == 1 ? r.sezione : "", kSezione) + " " + Saldo(i) + " " + Saldo(a);
    out << riga.substr(0, riga.find_last_not_of(' ') + 1) << "\n";
  }
  return righe.size();
}

namespace {

int Esegui(Contesto& ctx) {
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  clsPianoConti piano;
  piano.cn = db->cn;
  size_t n = ElencaPianoConti(piano, ctx.out);
  if (n == 0) ctx.out << "Il piano dei conti è vuoto.\n";
  db->DisconnettiDatabase();
  return 0;
}

const RegistraComando registra({
    "piano-conti",
    "il piano dei conti con i saldi dei sottoconti",
    "Uso: vorn piano-conti FILE\n"
    "     vorn piano-conti --pg-database NOME [--pg-host HOST[:PORTA]] [--pg-user UTENTE]\n\n"
    "Elenca gruppi, conti e sottoconti in ordine di codice, rientrati per livello, con la\n"
    "descrizione, la sezione di bilancio dei gruppi, il saldo iniziale e il saldo attuale\n"
    "(D dare, A avere). Gruppi e conti riportano la somma dei loro sottoconti.\n\n" +
        std::string(kUsoAzienda),
    Esegui,
});

}  // namespace

}  // namespace vorn::cli
