// vorn riprotocolla: the protocols of a purchases register renumbered for a year, in the order
// of registration.
#include <ostream>

#include "cli/Comandi.h"
#include "cli/RegistroIva.h"
#include "frame/Comuni.h"
#include "vat/clsRegistriIva.h"

namespace vorn::cli {

namespace {

const char* const kUso =
    "Uso: vorn riprotocolla FILE --registro N --anno AAAA\n\n"
    "Rinumera 1, 2, 3... i protocolli del registro IVA acquisti N per le registrazioni con data di\n"
    "competenza nell'anno, nell'ordine della data di registrazione (a parità di data decidono il\n"
    "protocollo di prima, la serie e il numero del documento): su ogni riga di quelle\n"
    "registrazioni in prima nota e sulle loro rate dello scadenziario. Tutto insieme o niente.\n"
    "Scrive quante righe di prima nota e dello scadenziario ha riscritto.\n\n"
    "Le righe già stampate sul registro bollato sono rinumerate come le altre: la ristampa del\n"
    "registro mostrerà i nuovi protocolli.\n\n"
    "Opzioni:\n"
    "  --registro N  il numero del registro acquisti, da 1 a 99\n"
    "  --anno AAAA   l'anno di competenza, dal 1900 al 9999\n";

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  const int registro = OpzioneIntera(a, "--registro", 1, 99);
  const int anno = OpzioneIntera(a, "--anno", 1900, 9999);
  AziendaCli az = LeggiAzienda(a);
  a.Fine();
  auto db = ApriAzienda(az, Accesso::Scrittura);
  clsRegistriIva registri;
  registri.cn = db->cn;
  const int32_t righe = registri.EseguiRiprotocollazione(PrefissoTabelleProcesso(), anno, Valore(registro));
  ctx.out << "Registro acquisti " << registro << " del " << anno << ": " << righe
          << (righe == 1 ? " riga riscritta\n" : " righe riscritte\n");
  return 0;
}

RegistraComando reg(Comando{"riprotocolla", "rinumera i protocolli di un registro acquisti per un anno",
                            std::string(kUso) + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
