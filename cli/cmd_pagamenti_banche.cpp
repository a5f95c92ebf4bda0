// vorn pagamenti: the payment terms; vorn banche: the counterparties' banks and agencies, or the
// company's own banks.
#include <ostream>
#include <string>
#include <vector>

#include "cli/Comandi.h"
#include "frame/Comuni.h"
#include "masterdata/clsPagamenti.h"

namespace vorn::cli {

namespace {

std::string Testo(const Valore& v) { return Trim(v.Testo()); }

int Pagamenti(Contesto& ctx) {
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  std::vector<std::vector<std::string>> righe;
  db->cn->Scorri(
      "SELECT [Codice Pagamento], [Descrizione Pagamento], [Tipo Pagamento], [Numero Rate], [Flag Inizio Scadenza], "
      "[Numero Giorni Inizio Scadenza], [Numero Giorni Inizio Scadenza 2], [Numero Giorni Inizio Scadenza 3], "
      "[Numero Giorni Inizio Scadenza 4], [Numero Giorni Inizio Scadenza 5], [Numero Giorni Inizio Scadenza 6], "
      "[Periodicità], [Flag prima rata] FROM [Pagamenti] ORDER BY [Codice Pagamento]",
      {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
        // The day counts given, then the period of the further instalments.
        std::string giorni;
        for (size_t i = 5; i <= 10; ++i)
          if (NullToZeroLng(v[i]) != 0) giorni += (giorni.empty() ? "" : "/") + std::to_string(NullToZeroLng(v[i]));
        if (giorni.empty()) giorni = "0";
        if (NullToZeroLng(v[11]) != 0) giorni += " +" + std::to_string(NullToZeroLng(v[11]));
        std::string tipo = Testo(v[2]);
        righe.push_back({Testo(v[0]), Testo(v[1]), tipo + " " + clsPagamenti::GetDesTipoPagamentoAbbreviato(Valore(tipo)),
                         std::to_string(std::max<int32_t>(1, NullToZeroLng(v[3]))), Testo(v[4]), giorni, Testo(v[12])});
        return true;
      });
  ScriviTabella(ctx.out,
                {{"Codice", Allinea::Sinistra},
                 {"Descrizione", Allinea::Sinistra},
                 {"Tipo", Allinea::Sinistra},
                 {"Rate", Allinea::Destra},
                 {"Inizio", Allinea::Sinistra},
                 {"Giorni", Allinea::Sinistra},
                 {"Prima rata", Allinea::Sinistra}},
                righe, "Nessun pagamento.");
  return 0;
}

int Banche(Contesto& ctx) {
  bool azienda = ctx.args.Flag("--azienda");
  AziendaCli az = LeggiAzienda(ctx.args);
  ctx.args.Fine();
  auto db = ApriAzienda(az, Accesso::Lettura);
  std::vector<std::vector<std::string>> righe;
  if (azienda) {
    db->cn->Scorri("SELECT [Codice banca], [Codice agenzia], [Descrizione], [Codice ABI], [Codice CAB], [IBAN], "
                   "[Sottoconto Banca cc] FROM [Banche Azienda] ORDER BY [Codice banca], [Codice agenzia]",
                   {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                     righe.push_back({Testo(v[0]), Testo(v[1]), Testo(v[2]), Testo(v[3]), Testo(v[4]), Testo(v[5]),
                                      FormattaConto(v[6])});
                     return true;
                   });
    ScriviTabella(ctx.out,
                  {{"Banca", Allinea::Sinistra},
                   {"Agenzia", Allinea::Sinistra},
                   {"Descrizione", Allinea::Sinistra},
                   {"ABI", Allinea::Sinistra},
                   {"CAB", Allinea::Sinistra},
                   {"IBAN", Allinea::Sinistra},
                   {"Sottoconto", Allinea::Sinistra}},
                  righe, "Nessuna banca dell'azienda.");
    return 0;
  }
  // A bank, then its agencies indented under it.
  db->cn->Scorri("SELECT [Codice Banca], [Codice Agenzia], [Descrizione], [Codice ABI], [Codice CAB], [Codice BIC] "
                 "FROM [Banche Clienti] ORDER BY [Codice Banca], COALESCE([Codice Agenzia], '')",
                 {}, [&](const std::vector<Colonna>&, const std::vector<Valore>& v) {
                   bool agenzia = !Testo(v[1]).empty();
                   righe.push_back({Testo(v[0]), Testo(v[1]), (agenzia ? "  " : "") + Testo(v[2]), Testo(v[3]),
                                    Testo(v[4]), Testo(v[5])});
                   return true;
                 });
  ScriviTabella(ctx.out,
                {{"Banca", Allinea::Sinistra},
                 {"Agenzia", Allinea::Sinistra},
                 {"Descrizione", Allinea::Sinistra},
                 {"ABI", Allinea::Sinistra},
                 {"CAB", Allinea::Sinistra},
                 {"BIC", Allinea::Sinistra}},
                righe, "Nessuna banca.");
  return 0;
}

const char* const kUsoPagamenti =
    "Uso: vorn pagamenti FILE\n\n"
    "Elenca i codici di pagamento: tipo, numero di rate, inizio delle scadenze (DF data fattura, FM\n"
    "fine mese, GF giorno fisso, DD data diversa), giorni delle rate (+ la periodicità delle\n"
    "successive) e il contenuto della prima rata.\n";
const char* const kUsoBanche =
    "Uso: vorn banche FILE [--azienda]\n\n"
    "Elenca le banche dei clienti e dei fornitori con le loro agenzie, o con --azienda le banche\n"
    "dell'azienda con IBAN e sottoconto.\n";

RegistraComando regPagamenti({"pagamenti", "i codici di pagamento", std::string(kUsoPagamenti) + "\n" + kUsoAzienda,
                              Pagamenti});
RegistraComando regBanche({"banche", "le banche dei clienti e fornitori o dell'azienda",
                           std::string(kUsoBanche) + "\n" + kUsoAzienda, Banche});

}  // namespace

}  // namespace vorn::cli
