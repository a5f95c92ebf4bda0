// The demo's trial balance: the sub-accounts with their debit, credit and balance on the
// terminal, and the same as a paginated print.
#include <array>
#include <fstream>
#include <ostream>

#include "cli/Demo.h"
#include "company/clsAnagraficaAzienda.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "frame/Formato.h"
#include "frame/Impaginazione.h"

namespace vorn::cli {

std::vector<RigaBilancioVerifica> BilancioVerificaSottoconti(Connessione& cn) {
  std::vector<RigaBilancioVerifica> v;
  auto rs = cn.Execute(
      "SELECT [Saldi Piano Dei Conti].[CodiceGruppo], [Saldi Piano Dei Conti].[CodiceConto], "
      "[Saldi Piano Dei Conti].[CodiceSottoconto], [Piano Dei Conti].[Descrizione], "
      "[Saldi Piano Dei Conti].[SaldoInizialePeriodo], [Saldi Piano Dei Conti].[SaldoDarePeriodo], "
      "[Saldi Piano Dei Conti].[SaldoAverePeriodo], [Saldi Piano Dei Conti].[SaldoInizialeProgr], "
      "[Saldi Piano Dei Conti].[DareProgressivo], [Saldi Piano Dei Conti].[AvereProgressivo] "
      "FROM [Saldi Piano Dei Conti] LEFT JOIN [Piano Dei Conti] ON "
      "[Piano Dei Conti].[Gruppo] = [Saldi Piano Dei Conti].[CodiceGruppo] AND "
      "[Piano Dei Conti].[Conto] = [Saldi Piano Dei Conti].[CodiceConto] AND "
      "[Piano Dei Conti].[Sottoconto] = [Saldi Piano Dei Conti].[CodiceSottoconto] "
      "ORDER BY [Saldi Piano Dei Conti].[CodiceGruppo], [Saldi Piano Dei Conti].[CodiceConto], "
      "[Saldi Piano Dei Conti].[CodiceSottoconto]");
  for (; !rs.Eof(); rs.MoveNext()) {
    RigaBilancioVerifica r;
    r.codice = Trim(rs(0).Value().Testo()) + Trim(rs(1).Value().Testo()) + Trim(rs(2).Value().Testo());
    r.descrizione = Trim(rs(3).Value().Testo());
    Importo apertura = NullToZeroCy(rs(4).Value()) + NullToZeroCy(rs(7).Value());
    r.dare = NullToZeroCy(rs(5).Value()) + NullToZeroCy(rs(8).Value());
    r.avere = NullToZeroCy(rs(6).Value()) + NullToZeroCy(rs(9).Value());
    if (apertura > Importo()) r.dare += apertura;
    else r.avere -= apertura;
    if (r.dare.Zero() && r.avere.Zero()) continue;
    v.push_back(std::move(r));
  }
  return v;
}

namespace {

std::string Cifra(Importo i) { return FormattaImporto(Valore(i)); }

// Amounts in 18 columns: room for tens of billions with their points.
constexpr int kImporto = 18;
constexpr size_t kLarghezza = 9 + 2 + 36 + 3 * (1 + kImporto) + 2;

std::string SaldoConLato(Importo s) {
  if (s.Zero()) return PadDestra(Valore(Cifra(s)), kImporto) + "  ";
  return PadDestra(Valore(Cifra(s < Importo() ? -s : s)), kImporto) + (s < Importo() ? " A" : " D");
}

std::string RigaTesto(const std::string& codice, const std::string& descrizione, const std::string& dare,
                      const std::string& avere, const std::string& saldo) {
  return PadSinistra(Valore(codice), 9) + "  " + PadSinistra(Valore(SinistraTesto(descrizione, 36)), 36) + " " +
         PadDestra(Valore(dare), kImporto) + " " + PadDestra(Valore(avere), kImporto) + " " + saldo;
}

std::string Intestazione() {
  return RigaTesto("Codice", "Descrizione", "Dare", "Avere", PadDestra(Valore("Saldo"), kImporto));
}

}  // namespace

std::string TestoBilancioVerifica(const std::vector<RigaBilancioVerifica>& righe) {
  std::string riga(kLarghezza, '-');
  std::string s = Intestazione() + "\n" + riga + "\n";
  Importo dare, avere;
  for (const auto& r : righe) {
    s += RigaTesto(FormattaConto(Valore(r.codice)), r.descrizione, Cifra(r.dare), Cifra(r.avere),
                   SaldoConLato(r.Saldo())) +
         "\n";
    dare += r.dare;
    avere += r.avere;
  }
  s += riga + "\n";
  s += RigaTesto("", "Totali", Cifra(dare), Cifra(avere), SaldoConLato(dare - avere)) + "\n";
  return s;
}

namespace {

std::string ScriviStampa(const std::string& testo, const std::string& ditta, int anno) {
  std::string corpo = CartellaTemp() + "/bilverdemo.tmp", stampa = CartellaStampe() + "/BilancioVerificaDemo.txt";
  {
    std::ofstream f(corpo, std::ios::binary);
    // The heading of the columns goes to the page head: the body starts after the rule.
    size_t inizio = testo.find('\n', testo.find('\n') + 1) + 1;
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
                                        Intestazione(),
                                        std::string(kLarghezza, '-'),
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
