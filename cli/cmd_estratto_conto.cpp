// vorn estratto-conto: the account statement of a client or a supplier, on the terminal.
#include <unistd.h>

#include <ostream>
#include <string>
#include <vector>

#include "cli/Comandi.h"
#include "cli/OpzioniComando.h"
#include "frame/Comuni.h"
#include "masterdata/clsValute.h"
#include "receivables/clsEstrattoContoContabile.h"

namespace vorn::cli {

namespace {

std::string T(const Valore& v) { return Trim(v.Testo()); }

const char* const kUsoEstratto =
    "Uso: vorn estratto-conto FILE --cliente C|--fornitore F [--dal GG/MM/AAAA] [--al GG/MM/AAAA]\n\n"
    "Stampa l'estratto conto del cliente o del fornitore: per ogni documento dello scadenziario,\n"
    "in ordine di data, le rate con i loro pagamenti, il saldo della partita e il saldo progressivo;\n"
    "poi i movimenti contabili del conto che nessuna scadenza o pagamento comprende (incassi e\n"
    "pagamenti registrati senza chiudere la rata, aperture, giroconti) e il saldo finale, che è il\n"
    "saldo del conto nella prima nota quando lo scadenziario è allineato alla contabilità.\n"
    "Gli importi sono in dare positivi: le rate dei fornitori sono negative.\n"
    "Opzioni:\n"
    "  --dal GG/MM/AAAA   i documenti e i movimenti da questa data (predefinito: tutti)\n"
    "  --al GG/MM/AAAA    la data dell'estratto: documenti, pagamenti e movimenti fino a questa data\n\n"
    "L'estratto è costruito nella tabella di lavoro dell'azienda e poi tolto: l'azienda è aperta in\n"
    "scrittura.\n";

int EstrattoConto(Contesto& ctx) {
  std::string tipo, codice;
  if (auto c = ctx.args.Opzione("--cliente")) tipo = "C", codice = Trim(*c);
  if (auto f = ctx.args.Opzione("--fornitore")) {
    if (!tipo.empty()) throw ErroreUso("--cliente e --fornitore non vanno insieme");
    tipo = "F", codice = Trim(*f);
  }
  if (tipo.empty() || codice.empty()) throw ErroreUso("manca --cliente o --fornitore");
  const Valore dal = ValoreDataOpzione(ctx.args, "--dal"), al = ValoreDataOpzione(ctx.args, "--al");
  if (dal.ComeData() && al.ComeData() && *al.ComeData() < *dal.ComeData())
    throw ErroreUso("--al viene prima di --dal");
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Scrittura);
  const std::string tabella = tipo == "C" ? "[Anagrafica Clienti]" : "[Anagrafica Fornitori]";
  if (db->cn->Scalare("SELECT 1 FROM " + tabella + " WHERE [Codice Cliente] = ?", {Valore(codice)}).IsNull())
    throw ErroreComando(std::string(tipo == "C" ? "Cliente" : "Fornitore") + " inesistente: " + codice);

  clsEstrattoContoContabile e;
  e.cn = db->cn;
  clsValute valute;
  valute.cn = db->cn;
  const std::string clientName = "vorn estratto-conto " + std::to_string(static_cast<long>(getpid()));
  Recordset te;
  bool ok = e.MakeEstrattoConto(&ctx.form, clientName, &valute, Valore(tipo), Valore(codice), dal, al, al, te);
  ctx.form.Fine();
  if (!ok) {
    ctx.out << "Nessun dato da elaborare.\n";
    return 0;
  }
  std::vector<std::vector<std::string>> righe;
  std::string intestazione;
  for (; !te.Eof(); te.MoveNext()) {
    if (intestazione.empty())
      intestazione = (tipo == "C" ? "Cliente " : "Fornitore ") + codice + " " + T(te("RagioneSociale").Value());
    std::string documento = T(te("TextNumeroDoc").Value());
    if (!T(te("SerieDoc").Value()).empty()) documento += "/" + T(te("SerieDoc").Value());
    righe.push_back({documento, T(te("TextDataDoc").Value()), T(te("Descrizione").Value()),
                     T(te("TextImportoScadenza").Value()), T(te("TextImportoPagato").Value()),
                     T(te("TextImportoProgressivo").Value()), T(te("NumeroRegistrazione").Value()),
                     T(te("Note").Value())});
  }
  te.Close();
  db->cn->Esegui("DELETE FROM [Elaborazione Estratto Conto Vorn] WHERE [ClientName] = ?", {Valore(clientName)});
  ctx.out << "Estratto conto - " << intestazione << "\n";
  ScriviTabella(ctx.out,
                {{"Documento", Allinea::Sinistra},
                 {"Data", Allinea::Sinistra},
                 {"Descrizione", Allinea::Sinistra},
                 {"Dovuto", Allinea::Destra},
                 {"Pagato", Allinea::Destra},
                 {"Saldo", Allinea::Destra},
                 {"Reg.", Allinea::Sinistra},
                 {"Note", Allinea::Sinistra}},
                righe);
  return 0;
}

RegistraComando regEstratto({"estratto-conto", "l'estratto conto di un cliente o di un fornitore",
                             std::string(kUsoEstratto) + "\n" + kUsoAzienda, EstrattoConto});

}  // namespace

}  // namespace vorn::cli
