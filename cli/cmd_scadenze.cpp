// vorn scadenze: the instalments a payment code gives for a document, as the generator works
// them out (nothing is written). vorn scadenziario: the instalments stored.
#include <ostream>
#include <string>
#include <vector>

#include "cli/Comandi.h"
#include "cli/OpzioniComando.h"
#include "frame/Comuni.h"
#include "receivables/clsScadenze.h"

namespace vorn::cli {

namespace {

Importo ImportoRichiesto(Argomenti& a, const std::string& nome) {
  auto i = ImportoOpzione(a, nome);
  if (!i) throw ErroreUso("manca " + nome);
  return *i;
}

int Scadenze(Contesto& ctx) {
  auto pagamento = ctx.args.Opzione("--pagamento");
  if (!pagamento || Trim(*pagamento).empty()) throw ErroreUso("manca --pagamento");
  const auto data = DataOpzioneFacoltativa(ctx.args, "--data", true);
  DocumentoScadenze d;
  d.a_datDataDocumento = *data;
  d.a_curImportoDocumento = ImportoRichiesto(ctx.args, "--importo");
  d.a_curIvaDocumento = ImportoOpzioneFacoltativo(ctx.args, "--iva");
  d.a_curSpeseDocumento = ImportoOpzioneFacoltativo(ctx.args, "--spese");
  if (auto c = ctx.args.Opzione("--cliente")) d.a_varCodiceCliente = Trim(*c), d.a_varTipoCliFor = "C";
  if (auto f = ctx.args.Opzione("--fornitore")) {
    if (!d.a_varCodiceCliente.empty()) throw ErroreUso("--cliente e --fornitore non vanno insieme");
    d.a_varCodiceCliente = Trim(*f), d.a_varTipoCliFor = "F";
  }
  if (auto x = DataOpzioneFacoltativa(ctx.args, "--data-diversa")) d.a_datDataDiversa = *x;
  d.a_varCodicePagamento = Trim(*pagamento);
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  clsScadenze s;
  s.cn = db->cn;
  if (!db->cn->Scalare("SELECT COUNT(*) FROM [Pagamenti] WHERE [Codice Pagamento] = ?", {Valore(d.a_varCodicePagamento)})
           .Vero())
    throw ErroreComando("Codice pagamento inesistente: " + d.a_varCodicePagamento);
  std::vector<std::string> righe;
  long n = 0;
  s.GeneraScadenze(righe, n, d);
  std::vector<std::vector<std::string>> tabella;
  for (long i = 1; i <= n; ++i) {
    auto c = clsScadenze::CampiRiga(righe[static_cast<size_t>(i)]);
    if (c.size() == clsScadenze::kCampiRata)
      tabella.push_back({std::to_string(tabella.size() + 1), c[0], c[1], c[2],
                         FormattaImporto(Valore(Importo::DaTestoPunto(c[13]).value_or(Importo())))});
  }
  ScriviTabella(ctx.out,
                {{"Rata", Allinea::Destra},
                 {"Tipo", Allinea::Sinistra},
                 {"Scadenza", Allinea::Sinistra},
                 {"Importo", Allinea::Destra},
                 {"Bollo", Allinea::Destra}},
                tabella);
  return 0;
}

int Scadenziario(Contesto& ctx) {
  std::string tipo, codice;
  if (auto c = ctx.args.Opzione("--cliente")) tipo = "CL", codice = Trim(*c);
  if (auto f = ctx.args.Opzione("--fornitore")) {
    if (!tipo.empty()) throw ErroreUso("--cliente e --fornitore non vanno insieme");
    tipo = "FO", codice = Trim(*f);
  }
  bool aperte = ctx.args.Flag("--aperte");
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  std::string sql =
      "SELECT [Numero Progressivo], [Progressivo Documento], [tipo], [Codice Cliente], [Ragione Sociale], "
      "[Numero Documento], [Serie], [Data Documento], [Data Scadenza], [Tipo di Effetto], [Importo Scadenza], "
      "[Importo Pagato] FROM [Scadenziario] WHERE 1 = 1";
  Parametri p;
  if (!tipo.empty()) {
    sql += " AND [tipo] = ? AND [Codice Cliente] = ?";
    p = {Valore(tipo), Valore(codice)};
  }
  if (aperte) sql += " AND COALESCE([Importo Pagato], 0) < COALESCE([Importo Scadenza], 0)";
  sql += " ORDER BY [Data Scadenza], [Numero Progressivo]";
  std::vector<std::vector<std::string>> tabella;
  Importo totale, pagato;
  db->cn->Scorri(sql, p, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
    auto data = [](const Valore& x) { return x.ComeData() ? x.ComeData()->Testo() : std::string(); };
    Importo scadenza = NullToZeroCy(v[10]), dato = NullToZeroCy(v[11]);
    totale += scadenza;
    pagato += dato;
    std::string documento = Trim(v[5].Testo()) + (Trim(v[6].Testo()).empty() ? "" : "/" + Trim(v[6].Testo()));
    tabella.push_back({Trim(v[0].Testo()), Trim(v[2].Testo()), Trim(v[3].Testo()), Trim(v[4].Testo()), documento,
                       data(v[7]), data(v[8]), Trim(v[9].Testo()), FormattaImporto(Valore(scadenza)),
                       FormattaImporto(Valore(dato)), FormattaImporto(Valore(scadenza - dato))});
    return true;
  });
  tabella.push_back({"", "", "", "Totale", "", "", "", "", FormattaImporto(Valore(totale)),
                     FormattaImporto(Valore(pagato)), FormattaImporto(Valore(totale - pagato))});
  ScriviTabella(ctx.out,
                {{"Num.", Allinea::Destra},
                 {"Tipo", Allinea::Sinistra},
                 {"Codice", Allinea::Sinistra},
                 {"Ragione sociale", Allinea::Sinistra},
                 {"Documento", Allinea::Sinistra},
                 {"Data doc.", Allinea::Sinistra},
                 {"Scadenza", Allinea::Sinistra},
                 {"Eff.", Allinea::Sinistra},
                 {"Importo", Allinea::Destra},
                 {"Pagato", Allinea::Destra},
                 {"Residuo", Allinea::Destra}},
                tabella);
  return 0;
}

const char* const kUsoScadenze =
    "Uso: vorn scadenze FILE --pagamento CODICE --data GG/MM/AAAA --importo N [--iva N] [--spese N]\n"
    "                   [--cliente C|--fornitore F] [--data-diversa GG/MM/AAAA]\n\n"
    "Mostra le rate che il codice di pagamento dà a un documento della data e del totale indicati:\n"
    "data di scadenza, importo (il resto dell'arrotondamento sulle prime rate) e bollo. Non scrive\n"
    "nulla. --iva e --spese servono ai pagamenti con la prima rata di sola IVA o spese; il\n"
    "fornitore (o il cliente) indica i mesi esclusi; --data-diversa è l'inizio dei pagamenti a\n"
    "data diversa, che altrimenti viene chiesta. Gli importi si scrivono 1234,56.\n";

const char* const kUsoScadenziario =
    "Uso: vorn scadenziario FILE [--cliente C|--fornitore F] [--aperte]\n\n"
    "Elenca le rate dello scadenziario per data di scadenza, con il totale, il pagato e il\n"
    "residuo; di un cliente o di un fornitore, e con --aperte solo quelle non pagate del tutto.\n";

RegistraComando regScadenze({"scadenze", "le rate che un codice di pagamento dà a un documento",
                             std::string(kUsoScadenze) + "\n" + kUsoAzienda, Scadenze});
RegistraComando regScadenziario({"scadenziario", "le rate dello scadenziario",
                                 std::string(kUsoScadenziario) + "\n" + kUsoAzienda, Scadenziario});

}  // namespace

}  // namespace vorn::cli
