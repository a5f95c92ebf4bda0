// The demo's trial balance: the sub-accounts with their debit, credit and balance from the
// journal (as vorn bilancio --verifica gives them) on the terminal, and the same as a paginated
// print.
#include <array>
#include <fstream>
#include <ostream>

#include "cli/Demo.h"
#include "company/clsAnagraficaAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"
#include "frame/Impaginazione.h"
#include "ledger/clsBilancio.h"

namespace vorn::cli {

std::vector<RigaBilancioVerifica> BilancioVerificaSottoconti(Connessione& cn) {
  clsBilancio b;
  b.cn = cn.shared_from_this();
  return b.BilancioVerificaSottoconti(Valore(""), Valore(""));
}

std::string TestoBilancioVerifica(const std::vector<RigaBilancioVerifica>& righe) {
  return clsBilancio::TestoBilancioVerifica(righe);
}

namespace {

std::string ScriviStampa(const std::string& testo, const std::string& ditta, int anno) {
  std::string corpo = CartellaTemp() + "/bilverdemo.tmp", stampa = CartellaStampe() + "/BilancioVerificaDemo.txt";
  // The heading of the columns and its rule go to the page head: the body starts after the rule.
  const size_t inizio = testo.find('\n', testo.find('\n') + 1) + 1;
  {
    std::ofstream f(corpo, std::ios::binary);
    f << testo.substr(inizio);
    f.close();
    if (!f) throw ErroreStampa("Impossibile scrivere il file " + corpo);
  }
  std::string titolo = "===" + std::string(30, ' ') + "BILANCIO DI VERIFICA DEI SOTTOCONTI AL 31/12/" +
                       std::to_string(anno);
  titolo = PadSinistra(Valore(titolo), kColonneReport);
  RigaPagina("", Valore(0));
  std::array<std::string, 9> testata = {"DITTA : " + ditta,
                                        std::string(kColonneReport, '='),
                                        titolo,
                                        std::string(kColonneReport, '='),
                                        testo.substr(0, testo.find('\n')),
                                        testo.substr(testo.find('\n') + 1, inizio - testo.find('\n') - 2),
                                        "",
                                        "",
                                        ""};
  std::array<std::string, 4> piede = {"", "", "", ""};
  ImpaginaFileAzienda(corpo, stampa, 66, testata, piede, 3);
  CancellaFile(corpo);
  return stampa;
}

void Passo(ContestoDemo& ctx) {
  std::string testo = TestoBilancioVerifica(BilancioVerificaSottoconti(*ctx.cn));
  clsAnagraficaAzienda anagrafica;
  anagrafica.cn = ctx.cn;
  std::string stampa = ScriviStampa(testo, anagrafica.GetRagioneSocialeAzienda(), ctx.Anno());
  ctx.fileScritti.push_back(stampa);
  ctx.out << "Bilancio di verifica dei sottoconti al 31/12/" << ctx.Anno() << "\n\n" << testo << "\n";
  ctx.out << "Azienda: " << ctx.azienda << " (" << ctx.esito.registrazioni << " registrazioni, " << ctx.esito.righe
          << " righe di prima nota)\n";
  ctx.out << "Stampa: " << stampa << "\n";
}

RegistraPassoDemo reg({10, "bilancio di verifica", Passo});

}  // namespace

}  // namespace vorn::cli
