// vorn contabilizza-effetti: the issue of the clients' commercial papers of a period and the
// presentation of the issued lists to the bank. vorn contabilizza-scontrini: the till receipts
// of a period, one registration a day, from the stock movements of the receipts' causal.
#include <ostream>

#include "cli/Comandi.h"
#include "cli/OpzioniComando.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "receivables/clsElaboraFatture.h"

namespace vorn::cli {

namespace {

const char* const kUsoEffetti =
    "Uso: vorn contabilizza-effetti FILE --dal GG/MM/AAAA --al GG/MM/AAAA [--data-contabilizzazione GG/MM/AAAA]\n"
    "                                [--diretta]\n\n"
    "Contabilizza l'emissione degli effetti dei clienti (ricevute bancarie, tratte, avvisi bancari,\n"
    "R.I.D.) delle rate dei documenti del periodo non ancora contabilizzate e non sospese: per ogni rata\n"
    "una registrazione che chiude la rata sul cliente e porta l'effetto in portafoglio; poi la\n"
    "presentazione in banca di ogni distinta di effetti emessa dal --dal in avanti. Con --diretta\n"
    "solo le rate presentate in distinta, ognuna direttamente sul conto della banca della distinta.\n"
    "Ogni registrazione è scritta per intero con il segno sulla rata o sulla distinta, o per niente;\n"
    "una seconda esecuzione non registra di nuovo quello che è già stato contabilizzato.\n\n"
    "Opzioni:\n"
    "  --dal, --al                 le date dei documenti delle rate, estremi compresi\n"
    "  --data-contabilizzazione    la data delle registrazioni; senza, ogni effetto è registrato alla\n"
    "                              data del suo documento e ogni distinta alla sua data\n"
    "  --diretta                   contabilizzazione diretta sul conto della banca\n";

const char* const kUsoScontrini =
    "Uso: vorn contabilizza-scontrini FILE --dal GG/MM/AAAA --al GG/MM/AAAA --causale CAUSALE_MAGAZZINO\n\n"
    "Contabilizza i corrispettivi del periodo dai movimenti di magazzino della causale indicata non\n"
    "ancora elaborati: una registrazione per giorno (e per valuta e cambio) con la cassa, i ricavi e\n"
    "una riga IVA per codice sul registro dei corrispettivi della causale contabile dei\n"
    "corrispettivi. I movimenti sono segnati elaborati con la registrazione, tutto o niente; una\n"
    "seconda esecuzione non registra di nuovo lo stesso giorno.\n";

void Periodo(Argomenti& a, Valore& dal, Valore& al) {
  const Data d = *DataOpzioneFacoltativa(a, "--dal", true), f = *DataOpzioneFacoltativa(a, "--al", true);
  if (f < d) throw ErroreUso("--al viene prima di --dal");
  dal = Valore(d);
  al = Valore(f);
}

int Riepilogo(Contesto& ctx, const EsitoElaborazione& e) {
  ctx.form.Fine();
  ctx.out << "Registrazioni create: " << e.Registrazioni << ", scartate: " << e.Scartati << "\n";
  return e.Errori.empty() ? 0 : 1;
}

int Effetti(Contesto& ctx) {
  Argomenti& a = ctx.args;
  ArgomentiElaboraEffetti arg;
  Periodo(a, arg.avar_DaData, arg.avar_AData);
  auto contab = DataOpzioneFacoltativa(a, "--data-contabilizzazione");
  arg.bool_ContabilizzazioneDiretta = a.Flag("--diretta");
  AziendaCli az = LeggiAzienda(a);
  a.Fine();
  auto db = ApriAzienda(az, Accesso::Scrittura);
  clsTabRiferimenti rif;
  rif.cn = db->cn;
  if (!RiferimentiElaboraEffetti(rif, arg))
    throw ErroreComando("l'azienda non ha i riferimenti contabili: causali e sottoconti degli effetti mancano");
  arg.bool_ContabilizzaDataFattura = !contab;
  arg.avar_DataContabilizzazione = contab ? Valore(*contab) : arg.avar_AData;
  arg.objFormAttiva = &ctx.form;
  arg.clientID = Valore("vorn");
  clsElaboraFatture ef;
  ef.cn = db->cn;
  ctx.form.Caption("Elaborazione effetti");
  return Riepilogo(ctx, ef.ElaboraEffetti(arg));
}

int Scontrini(Contesto& ctx) {
  Argomenti& a = ctx.args;
  ArgomentiElaboraScontrini arg;
  Periodo(a, arg.avar_DaData, arg.avar_AData);
  auto causale = a.Opzione("--causale");
  if (!causale || Trim(*causale).empty()) throw ErroreUso("manca --causale CAUSALE_MAGAZZINO");
  AziendaCli az = LeggiAzienda(a);
  a.Fine();
  auto db = ApriAzienda(az, Accesso::Scrittura);
  clsTabRiferimenti rif;
  rif.cn = db->cn;
  if (!RiferimentiElaboraScontrini(rif, arg))
    throw ErroreComando("l'azienda non ha i riferimenti contabili: causale e sottoconti dei corrispettivi mancano");
  arg.causale_magazzino_corrispettivi = Valore(Trim(*causale));
  arg.objFormAttiva = &ctx.form;
  arg.clientID = Valore("vorn");
  clsElaboraFatture ef;
  ef.cn = db->cn;
  ctx.form.Caption("Elaborazione scontrini");
  return Riepilogo(ctx, ef.ElaboraScontrini(arg));
}

RegistraComando regEffetti(Comando{"contabilizza-effetti",
                                   "contabilizza l'emissione degli effetti dei clienti e la presentazione delle distinte",
                                   std::string(kUsoEffetti) + "\n" + kUsoAzienda, Effetti});
RegistraComando regScontrini(Comando{"contabilizza-scontrini",
                                     "contabilizza i corrispettivi giornalieri dai movimenti di magazzino",
                                     std::string(kUsoScontrini) + "\n" + kUsoAzienda, Scontrini});

}  // namespace

}  // namespace vorn::cli
