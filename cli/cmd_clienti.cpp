// vorn clienti / vorn fornitori: the register with codes, names, VAT numbers and the balances
// kept on each row (opening and current, with their side).
#include "cli/cmd_clienti.h"

#include <ostream>

#include "cli/Comandi.h"
#include "frame/Comuni.h"

namespace vorn::cli {

namespace {

constexpr int kCodice = 10;
constexpr int kNome = 40;
constexpr int kPartitaIva = 16;
constexpr int kImporto = 18;

// The absolute amount right-aligned, then its side ("D", "A", a blank for zero).
std::string ImportoConSegno(Importo saldo) {
  Importo assoluto = saldo < Importo() ? -saldo : saldo;
  std::string segno = SegnoDareAvere(saldo);
  return PadDestra(Valore(FormattaImporto(Valore(assoluto))), kImporto) + " " + (segno.empty() ? " " : segno);
}

int Elenca(Contesto& ctx, const char* ind) {
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  clsClientiFornitori cf;
  cf.cn = db->cn;
  ElencaClientiFornitori(cf, Valore(ind), ctx.out);
  db->DisconnettiDatabase();
  return 0;
}

const char* const kUso =
    "Elenca l'anagrafica con codice, ragione sociale, partita IVA, saldo iniziale e saldo attuale\n"
    "(D dare, A avere), dai saldi registrati su ciascuna scheda.\n\n";

RegistraComando clienti(Comando{"clienti", "elenco dei clienti con i saldi",
                                std::string("Uso: vorn clienti FILE\n\n") + kUso + kUsoAzienda,
                                [](Contesto& ctx) { return Elenca(ctx, "C"); }});
RegistraComando fornitori(Comando{"fornitori", "elenco dei fornitori con i saldi",
                                  std::string("Uso: vorn fornitori FILE\n\n") + kUso + kUsoAzienda,
                                  [](Contesto& ctx) { return Elenca(ctx, "F"); }});

}  // namespace

size_t ElencaClientiFornitori(clsClientiFornitori& cf, const Valore& IndClienteFornitore, std::ostream& out) {
  const auto& d = clsClientiFornitori::Definizione(IndClienteFornitore);
  std::string sql = "SELECT [Codice Cliente], [Ragione Sociale], [Partita Iva]";
  for (const auto& c : clsClientiFornitori::ColonneSaldi()) sql += ", [" + c + "]";
  sql += " FROM [" + d.tabella + "] ORDER BY [Codice Cliente];";
  auto rs = anagrafiche::Conn(cf.cn).Execute(sql);

  out << PadSinistra(Valore("Codice"), kCodice) << " " << PadSinistra(Valore("Ragione sociale"), kNome) << " "
      << PadSinistra(Valore("Partita IVA"), kPartitaIva) << " " << PadDestra(Valore("Saldo iniziale"), kImporto + 2)
      << " " << PadDestra(Valore("Saldo attuale"), kImporto + 2) << "\n";
  size_t n = 0;
  Importo totale;
  Valore vuoto{std::string()};
  for (; !rs.Eof(); rs.MoveNext()) {
    SaldoCliFor s = CalcolaSaldoCliFor(rs);
    totale += s.attuale;
    out << PadSinistra(LeggiCampo(rs(0), vuoto), kCodice) << " " << PadSinistra(LeggiCampo(rs(1), vuoto), kNome) << " "
        << PadSinistra(LeggiCampo(rs(2), vuoto), kPartitaIva) << " " << ImportoConSegno(s.iniziale) << " "
        << ImportoConSegno(s.attuale) << "\n";
    ++n;
  }
  bool clienti = Trim(IndClienteFornitore.Testo()) == "C";
  out << n << " " << (clienti ? "clienti" : "fornitori") << ", saldo attuale complessivo " << Trim(ImportoConSegno(totale))
      << "\n";
  return n;
}

}  // namespace vorn::cli
