// vorn progressivi-iva: the running amounts of the VAT registers by code, as the definitive
// prints and settlements left them, with the date of each register's last definitive print.
#include <algorithm>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <tuple>
#include <vector>

#include "cli/Comandi.h"
#include "frame/Comuni.h"
#include "ledger/clsCausaliContabili.h"
#include "vat/clsProgressiviIva.h"

namespace vorn::cli {

namespace {

// The kinds of LocalizzaTuttiRecord read here.
constexpr int kPeriodo = 0;       // "PI" "D"
constexpr int kAnno = 1;          // "PI" "R"
constexpr int kUltimaStampa = 2;  // "P2" "R"

std::string Testo(Recordset& rs, const char* colonna) { return LeggiCampo(rs(colonna), Valore("")).Testo(); }

// A register of a kind and number.
using Registro = std::pair<std::string, std::string>;

struct Riga {
  std::optional<Importo> imponibileAnno, ivaAnno, imponibilePeriodo, ivaPeriodo;
};

int EseguiProgressiviIva(Contesto& ctx) {
  int anno = OpzioneIntera(ctx.args, "--anno", 1900, 9999);
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  clsProgressiviIva progressivi;
  progressivi.cn = db->cn;

  // Register, number, code: the year's and the period's figures side by side.
  std::map<std::tuple<std::string, std::string, std::string>, Riga> righe;
  std::map<Registro, std::string> ultimaStampa;
  Recordset rs;
  for (int tipo : {kAnno, kPeriodo}) {
    if (!progressivi.LocalizzaTuttiRecord(rs, Valore(tipo))) continue;
    for (; !rs.Eof(); rs.MoveNext()) {
      Riga& r = righe[{Testo(rs, "TipoRegistroIva"), Testo(rs, "NumRegistroIva"), Testo(rs, "CodiceIva")}];
      Importo imponibile = NullToZeroCy(rs("Imponibile").Value()), iva = NullToZeroCy(rs("IVA").Value());
      (tipo == kAnno ? r.imponibileAnno : r.imponibilePeriodo) = imponibile;
      (tipo == kAnno ? r.ivaAnno : r.ivaPeriodo) = iva;
    }
  }
  if (progressivi.LocalizzaTuttiRecord(rs, Valore(kUltimaStampa)))
    for (; !rs.Eof(); rs.MoveNext()) {
      Valore data = DataInTesto(rs("DataUltimaStampaBollato").Value());
      if (!data.IsNull()) ultimaStampa[{Testo(rs, "TipoRegistroIva"), Testo(rs, "NumRegistroIva")}] = data.Testo();
    }
  // A register printed but without progressives still shows its date.
  for (const auto& [registro, _] : ultimaStampa) {
    bool presente = std::any_of(righe.begin(), righe.end(), [&](const auto& r) {
      return std::get<0>(r.first) == registro.first && std::get<1>(r.first) == registro.second;
    });
    if (!presente) righe[{registro.first, registro.second, ""}];
  }
  db->DisconnettiDatabase();

  ctx.out << "Progressivi IVA dell'anno " << anno << "\n\n";
  if (righe.empty()) {
    ctx.out << "Nessun progressivo IVA.\n";
    return 0;
  }
  auto importo = [](const std::optional<Importo>& v) { return v ? FormattaImporto(Valore(*v)) : std::string(); };
  std::vector<std::vector<std::string>> tabella;
  for (const auto& [chiave, r] : righe) {
    const auto& [tipo, numero, codice] = chiave;
    std::string descrizione = clsCausaliContabili::GetDescrizioneTipoRegistroIva(Valore(tipo)).Testo();
    auto data = ultimaStampa.find({tipo, numero});
    tabella.push_back({descrizione.empty() ? tipo : tipo + " " + descrizione, numero, codice,
                       importo(r.imponibileAnno), importo(r.ivaAnno), importo(r.imponibilePeriodo),
                       importo(r.ivaPeriodo), data == ultimaStampa.end() ? std::string() : data->second});
  }
  ScriviTabella(ctx.out,
                {{"Registro", Allinea::Sinistra},
                 {"Num.", Allinea::Sinistra},
                 {"Codice IVA", Allinea::Sinistra},
                 {"Imponibile anno", Allinea::Destra},
                 {"IVA anno", Allinea::Destra},
                 {"Imponibile periodo", Allinea::Destra},
                 {"IVA periodo", Allinea::Destra},
                 {"Ultima stampa", Allinea::Sinistra}},
                tabella);
  return 0;
}

const RegistraComando registraProgressiviIva({
    "progressivi-iva",
    "i progressivi dei registri IVA",
    "Uso: vorn progressivi-iva FILE --anno AAAA\n"
    "     vorn progressivi-iva --pg-database NOME [--pg-host HOST[:PORTA]] [--pg-user UTENTE] --anno AAAA\n\n"
    "Elenca i progressivi IVA per registro (tipo e numero) e codice IVA: imponibile e imposta\n"
    "dall'inizio dell'anno e del periodo ancora da liquidare, con la data dell'ultima stampa\n"
    "definitiva di ogni registro. Gli importi sono quelli lasciati dalle stampe definitive dei\n"
    "registri e dalle liquidazioni.\n"
    "  --anno AAAA        l'anno a cui si riferiscono i progressivi (da 1900 a 9999), in testata\n\n" +
        std::string(kUsoAzienda),
    EseguiProgressiviIva,
});

}  // namespace

}  // namespace vorn::cli
