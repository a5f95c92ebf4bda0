// The demo's purchases register renumbered for the year before its registers are printed: the
// protocols 1..n in the order of registration, in the journal and in the due dates. The demo
// numbers its purchases in date order already, so no protocol should change; the step says how
// many did.
#include <map>
#include <ostream>

#include "cli/Demo.h"
#include "cli/RegistroIva.h"
#include "frame/Comuni.h"
#include "vat/clsRegistriIva.h"

namespace vorn::cli {

namespace {

std::map<std::string, long> Protocolli(Connessione& cn, int anno) {
  std::map<std::string, long> m;
  cn.Scorri("SELECT [NumeroRegistrazione], MAX([NumeroDiProtocollo]) FROM [Prima Nota] WHERE [TipoRegistroIva] = '2' "
            "AND [NumRegistroIva] = '01' AND [DataCompetenza] >= ? AND [DataCompetenza] <= ? GROUP BY "
            "[NumeroRegistrazione]",
            {Valore(*Data::Crea(anno, 1, 1)), Valore(*Data::Crea(anno, 12, 31))},
            [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
              m[v[0].Testo()] = NullToZeroLng(v[1]);
              return true;
            });
  return m;
}

void Passo(ContestoDemo& ctx) {
  const auto prima = Protocolli(*ctx.cn, ctx.Anno());
  clsRegistriIva registri;
  registri.cn = ctx.cn;
  const int32_t righe = registri.EseguiRiprotocollazione(PrefissoTabelleProcesso(), ctx.Anno(), Valore("01"));
  const auto dopo = Protocolli(*ctx.cn, ctx.Anno());
  long cambiati = 0;
  for (const auto& [numero, protocollo] : dopo) cambiati += prima.count(numero) && prima.at(numero) != protocollo;
  ctx.FineProgresso();
  ctx.out << "Riprotocollazione del registro acquisti 1: " << dopo.size() << " registrazioni, " << righe
          << " righe riscritte, " << cambiati << " protocolli cambiati (vorn riprotocolla " << ctx.azienda
          << " --registro 1 --anno " << ctx.Anno() << ")\n";
}

RegistraPassoDemo reg({8, "riprotocollazione", Passo});

}  // namespace

}  // namespace vorn::cli
