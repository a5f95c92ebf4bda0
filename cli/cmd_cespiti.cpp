// vorn cespiti: the fixed assets with their value, accumulated depreciation and residual at
// the end of a year; --aggiungi adds an asset with its purchase.
#include <ostream>

#include "assets/RiferimentiCespiti.h"
#include "assets/clsCausaliCespiti.h"
#include "assets/clsCespiti.h"
#include "assets/clsCespitiAmm.h"
#include "assets/clsCespitiMovimenti.h"
#include "cli/Comandi.h"
#include "cli/OpzioniComando.h"
#include "frame/Comuni.h"
#include "frame/Globali.h"
#include "frame/Importo.h"

namespace vorn::cli {

namespace {

const char* const kUso =
    "Uso: vorn cespiti FILE [--anno AAAA]\n"
    "     vorn cespiti FILE --aggiungi CODICE --categoria CAT --data GG/MM/AAAA --costo IMPORTO\n"
    "                       [--descrizione TESTO]\n\n"
    "Elenca i cespiti in ordine di codice con categoria, data di acquisto, valore fiscale, fondo\n"
    "ammortamento e residuo alla fine dell'anno (senza --anno: con tutti i movimenti caricati);\n"
    "un cespite venduto o dismesso è segnato con la data.\n"
    "Opzioni:\n"
    "  --anno AAAA           l'anno alla cui fine si leggono i valori, dal 1900 al 9999\n"
    "  --aggiungi CODICE     aggiunge il cespite con le aliquote della sua categoria e il movimento\n"
    "                        di acquisto (la causale di acquisto dei riferimenti contabili), tutto\n"
    "                        insieme o niente; un codice già presente è rifiutato\n"
    "  --categoria CAT       la categoria del cespite\n"
    "  --data GG/MM/AAAA     la data di acquisto e di inizio utilizzo\n"
    "  --costo IMPORTO       il costo di acquisto, per esempio 1250,50\n"
    "  --descrizione TESTO   la descrizione (predefinita: il codice)\n";

std::string Cifra2(double v) { return FormattaImporto(Valore(Importo::DaDouble(v).Arrotonda(G().DecimaliImporti))); }

int Aggiungi(Contesto& ctx, AziendaCli& az, const std::string& codice) {
  Argomenti& a = ctx.args;
  auto categoria = a.Opzione("--categoria");
  const auto d = DataOpzioneFacoltativa(a, "--data");
  const auto costo = ImportoOpzione(a, "--costo");
  auto descrizione = a.Opzione("--descrizione");
  if (!categoria || !d || !costo) throw ErroreUso("--aggiungi vuole --categoria, --data e --costo");
  if (*costo <= Importo()) throw ErroreUso("--costo vuole un importo sopra zero");
  const double importo = costo->Arrotonda(G().DecimaliImporti).ToDouble();
  a.Fine();
  if (Trim(codice).empty() || LunghezzaTesto(Trim(codice)) > 20) throw ErroreUso("codice del cespite non valido");

  auto db = ApriAzienda(az, Accesso::Scrittura);
  const RiferimentiCespiti rif = LeggiRiferimentiCespiti(db->cn);
  if (rif.causaleAcquisto.empty())
    throw ErroreComando("manca nei riferimenti contabili la causale cespiti di acquisto (CausAmAcquisto)");
  clsCespiti cespiti;
  cespiti.cn = db->cn;
  clsCespitiMovimenti movimenti;
  movimenti.cn = db->cn;
  int32_t numero = 0;
  ConRiprova(*db->cn, [&] {
    Atomico unita(*db->cn);
    if (cespiti.ExistCodice(Valore(codice))) throw ErroreComando("il cespite " + codice + " esiste già");
    bool cancel = false;
    if (!cespiti.SalvaDaCategoria(Valore(codice), Valore(descrizione ? Trim(*descrizione) : codice),
                                  Valore(Trim(*categoria)), Valore(""), 0, cancel))
      throw ErroreComando("la categoria " + Trim(*categoria) + " non esiste");
    numero = movimenti.RegistraMovimento(rif.causaleAcquisto, *d, codice, importo, importo, importo, "",
                                         G().DecimaliImporti);
    unita.Conferma();
  });
  ctx.out << "Cespite " << codice << " aggiunto: acquisto del " << d->Testo() << " per " << Cifra2(importo)
          << " (movimento " << numero << ").\n";
  return 0;
}

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  auto aggiungi = a.Opzione("--aggiungi");
  auto annoOpzione = a.Opzione("--anno");
  AziendaCli az = LeggiAzienda(a);
  if (aggiungi) {
    if (annoOpzione) throw ErroreUso("--anno non vale con --aggiungi");
    return Aggiungi(ctx, az, Trim(*aggiungi));
  }
  int anno = 9999;
  if (annoOpzione) {
    Argomenti argAnno({"--anno", *annoOpzione});
    anno = OpzioneIntera(argAnno, "--anno", 1900, 9999);
  }
  a.Fine();

  auto db = ApriAzienda(az, Accesso::Lettura);
  clsCespitiAmm amm;
  amm.cn = db->cn;
  std::vector<std::vector<std::string>> righe;
  auto rs = db->cn->Execute("SELECT [CodiceCespite], [DescrizioneCespite], [CodiceCategoria] FROM [Cespiti] ORDER BY "
                            "[CodiceCespite]");
  for (; !rs.Eof(); rs.MoveNext()) {
    const std::string codice = Trim(rs.Fields(0).Value().Testo());
    auto fino = [&](int tipo) { return amm.GetSaldoMovimentazioneFinoAnnoFisc(codice, tipo, anno); };
    const double valore = fino(kAcquisto) + fino(kOneriSpese) + fino(kManutenzioneRiparazione) +
                          fino(kRivalutazione) - fino(kSvalutazione);
    const double fondo = fino(kAmmortamOrdinarioRidotto) + fino(kAmmortamAnticipato) +
                         fino(kVariazioneFondoOrdinario) + fino(kVariazioneFondoAnticipato);
    const Data acquisto = amm.GetDataAcquistoCespite(codice), vendita = amm.GetDataVenditaDismissioneCespite(codice);
    righe.push_back({codice, Trim(rs.Fields(1).Value().Testo()), Trim(rs.Fields(2).Value().Testo()),
                     acquisto == DataVuotaCespiti() ? "" : acquisto.Testo(), Cifra2(valore), Cifra2(fondo),
                     Cifra2(valore - fondo), vendita.Anno() <= anno ? "venduto il " + vendita.Testo() : ""});
  }
  ScriviTabella(ctx.out,
                {{"Codice", Allinea::Sinistra},
                 {"Descrizione", Allinea::Sinistra},
                 {"Cat.", Allinea::Sinistra},
                 {"Acquisto", Allinea::Sinistra},
                 {"Valore", Allinea::Destra},
                 {"Fondo", Allinea::Destra},
                 {"Residuo", Allinea::Destra},
                 {"Stato", Allinea::Sinistra}},
                righe, "Nessun cespite.");
  return 0;
}

RegistraComando reg(Comando{"cespiti", "i cespiti con valore, fondo e residuo; aggiunge un cespite acquistato",
                            std::string(kUso) + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
