// The demo's users: the supervisor, who enters without a password until one is set, and a
// bookkeeper with a password (kept only as a salted hash) and rights on three menu entries.
#include <ostream>

#include "cli/Demo.h"
#include "frame/clsUtenti.h"

namespace vorn::cli {

namespace {

void Passo(ContestoDemo& ctx) {
  clsUtenti utenti;
  utenti.cn = ctx.cn;
  const std::string password = "Contabile." + std::to_string(ctx.Anno());
  Atomico a(*ctx.cn);
  utenti.Verifica_Crea_Supervisore();
  utenti.Salva_Record("contabile", password, 0, 0);
  utenti.SalvaRecordUtenteAutorizzazioni("contabile", "Contabilita", "PrimaNota", 1);
  utenti.SalvaRecordUtenteAutorizzazioni("contabile", "Iva", "RegistriIva", 1);
  utenti.SalvaRecordUtenteAutorizzazioni("contabile", "Iva", "LiquidazioneIva", 0);
  a.Conferma();
  bool supervisore = utenti.Verifica_Password(kSupervisore, "");
  bool contabile = utenti.Verifica_Password("contabile", password) && !utenti.Verifica_Password("contabile", "");
  ctx.out << "Utenti: " << kSupervisore << (supervisore ? " (senza password)" : "") << ", contabile (password "
          << (contabile ? "verificata" : "NON verificata") << ") con 3 voci di menu\n";
}

RegistraPassoDemo reg({2, "utenti", Passo});

}  // namespace

}  // namespace vorn::cli
