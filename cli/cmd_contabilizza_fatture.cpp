// vorn contabilizza-fatture: the printed sales documents of a date range posted to the journal.
#include <ostream>

#include "cli/Comandi.h"
#include "cli/OpzioniComando.h"
#include "company/clsTabRiferimenti.h"
#include "frame/Comuni.h"
#include "frame/Formato.h"
#include "receivables/clsElaboraFatture.h"

namespace vorn::cli {

namespace {

const char* const kUso =
    "Uso: vorn contabilizza-fatture FILE --dal GG/MM/AAAA --al GG/MM/AAAA\n"
    "                               [--data-contabilizzazione GG/MM/AAAA]\n\n"
    "Contabilizza in prima nota le fatture e le note di credito di vendita del periodo già stampate e\n"
    "non ancora contabilizzate: per ognuna la registrazione del documento con le sue righe IVA e una\n"
    "registrazione per ogni importo che il documento salda da sé (split payment, acconto, ritenute,\n"
    "abbuono, omaggi), che paga la scadenza saldata del documento. Ogni documento è registrato per\n"
    "intero o per niente: un documento scartato da un controllo non lascia nulla e gli altri vanno\n"
    "avanti; una seconda esecuzione contabilizza solo quello che manca.\n"
    "Causali e sottoconti sono quelli dei riferimenti contabili dell'azienda.\n\n"
    "Opzioni:\n"
    "  --dal, --al                 le date dei documenti, estremi compresi\n"
    "  --data-contabilizzazione    la data delle registrazioni; senza, ogni documento è registrato\n"
    "                              alla sua data\n\n"
    "Scrive una riga di avanzamento, i messaggi dell'elaborazione e alla fine il numero dei\n"
    "documenti contabilizzati e scartati e delle registrazioni create.\n";

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  Data dal = *DataOpzioneFacoltativa(a, "--dal", true);
  Data al = *DataOpzioneFacoltativa(a, "--al", true);
  const std::optional<Data> dataContab = DataOpzioneFacoltativa(a, "--data-contabilizzazione");
  if (al < dal) throw ErroreUso("--al viene prima di --dal");
  AziendaCli az = LeggiAzienda(a);
  a.Fine();

  auto db = ApriAzienda(az, Accesso::Scrittura);
  clsTabRiferimenti rif;
  rif.cn = db->cn;
  ArgomentiElaboraFatture arg;
  if (!RiferimentiElaboraFatture(rif, arg))
    throw ErroreComando("l'azienda non ha i riferimenti contabili: causali e sottoconti della contabilizzazione "
                        "mancano");
  arg.objFormAttiva = &ctx.form;
  arg.avar_DaData = Valore(dal);
  arg.avar_AData = Valore(al);
  arg.bool_ContabilizzaDataFattura = !dataContab;
  arg.avar_DataContabilizzazione = dataContab ? Valore(*dataContab) : Valore(al);
  arg.clientID = Valore("vorn");
  clsElaboraFatture ef;
  ef.cn = db->cn;
  ctx.form.Caption("Elaborazione fatture");
  EsitoElaboraFatture e = ef.ElaboraFatture(arg);
  ctx.form.Fine();
  ctx.out << "Documenti contabilizzati: " << e.Documenti << ", scartati: " << e.Scartati
          << ", registrazioni create: " << e.Registrazioni << "\n";
  return e.Errori.empty() ? 0 : 1;
}

RegistraComando reg(Comando{"contabilizza-fatture",
                            "contabilizza in prima nota le fatture di vendita stampate di un periodo",
                            std::string(kUso) + "\n" + kUsoAzienda, Esegui});

}  // namespace

}  // namespace vorn::cli
