// vorn carica-tabelle: archives of a company replaced by those of a model, one copy a table,
// each asked for when the company's table already has rows.
#include <ostream>
#include <sstream>

#include "cli/Comandi.h"
#include "frame/Comuni.h"
#include "interchange/clsCaricaTabelleStandard.h"

namespace vorn::cli {

namespace {

struct TabellaCli {
  const char* nome;        // in --tabelle
  const char* tabella;     // the company's table
  const char* descrizione; // in the question
  bool (*copia)(clsCaricaTabelleStandard&, IForm*, bool semplificati);
};

const TabellaCli kTabelle[] = {
    {"piano-conti", "Piano Dei Conti", "il piano dei conti",
     [](clsCaricaTabelleStandard& c, IForm* f, bool s) { return c.CaricaPianoDeiContiStandard(f, s); }},
    {"causali", "Causali Contabili", "le causali contabili",
     [](clsCaricaTabelleStandard& c, IForm* f, bool s) { return c.CaricaCausaliContabiliStandard(f, s); }},
    {"parametri", "Parametri Vorn", "i parametri contabili",
     [](clsCaricaTabelleStandard& c, IForm* f, bool) { return c.CaricaParametriContabiliStandard(f); }},
    {"riferimenti", "Riferimenti Contabili", "i riferimenti contabili",
     [](clsCaricaTabelleStandard& c, IForm* f, bool) { return c.CaricaRiferimentiContabiliStandard(f); }},
    {"causali-cespiti", "Causali Cespiti", "le causali dei cespiti",
     [](clsCaricaTabelleStandard& c, IForm* f, bool) { return c.CaricaCausaliCespitiStandard(f); }},
    {"categorie-cespiti", "CespitiCategorie", "le categorie dei cespiti",
     [](clsCaricaTabelleStandard& c, IForm* f, bool) { return c.CaricaCespitiCategorieStandard(f); }},
    {"parametri-cespiti", "", "i parametri dei cespiti",
     [](clsCaricaTabelleStandard& c, IForm* f, bool) { return c.CaricaParametriCespitiStandard(f); }},
    {"riferimenti-cespiti", "", "i riferimenti dei cespiti",
     [](clsCaricaTabelleStandard& c, IForm* f, bool) { return c.CaricaRiferimentiCespitiStandard(f); }},
};

std::string Elenco() {
  std::string s;
  for (const auto& t : kTabelle) s += (s.empty() ? "" : ",") + std::string(t.nome);
  return s;
}

std::string Uso() {
  return "Uso: vorn carica-tabelle FILE --modello NOME [--tabelle T1,T2,...] [--semplificati]\n\n"
         "Sostituisce gli archivi dell'azienda con quelli del modello (standard, semplificato),\n"
         "uno per volta. Un archivio dell'azienda che contiene già delle righe è sostituito solo\n"
         "se l'utente lo conferma (vorn --si per confermare senza domande, --no per non sostituire\n"
         "nulla di ciò che esiste); un archivio vuoto nel modello lascia quello dell'azienda com'è.\n"
         "Scrive una riga per archivio: caricato, lasciato o vuoto nel modello.\n\n"
         "Opzioni:\n"
         "  --modello NOME   il modello da cui copiare\n"
         "  --tabelle T,...  gli archivi, fra: " + Elenco() + "\n"
         "                   (predefiniti: tutti)\n"
         "  --semplificati   il piano dei conti e le causali per la contabilità semplificata del\n"
         "                   modello, al posto di quelli ordinari\n\n" +
         kUsoAzienda;
}

int Esegui(Contesto& ctx) {
  Argomenti& a = ctx.args;
  auto modello = a.Opzione("--modello");
  auto scelte = a.Opzione("--tabelle");
  const bool semplificati = a.Flag("--semplificati");
  AziendaCli az = LeggiAzienda(a);
  a.Fine();
  if (!modello || Trim(*modello).empty()) throw ErroreUso("manca --modello");
  std::vector<const TabellaCli*> tabelle;
  if (!scelte) {
    for (const auto& t : kTabelle) tabelle.push_back(&t);
  } else {
    std::stringstream elenco(*scelte);
    for (std::string n; std::getline(elenco, n, ',');) {
      const TabellaCli* trovata = nullptr;
      for (const auto& t : kTabelle)
        if (Trim(n) == t.nome) trovata = &t;
      if (!trovata) throw ErroreUso("archivio sconosciuto in --tabelle: " + n + " (" + Elenco() + ")");
      tabelle.push_back(trovata);
    }
  }
  clsCaricaTabelleStandard carica;
  try {
    carica.ConnettiDatabaseOrigine(Trim(*modello));
  } catch (const ErroreModello& e) {
    throw ErroreUso(e.what());
  }
  auto db = ApriAzienda(az, Accesso::Scrittura);
  carica.ConnettiDatabaseDestinazione(db->cn);
  for (const TabellaCli* t : tabelle) {
    const bool conRighe = *t->tabella && NullToZeroLng(db->cn->Scalare(std::string("SELECT COUNT(*) FROM [") +
                                                                       t->tabella + "]")) > 0;
    if (conRighe && Host().MsgBox("L'azienda ha già " + std::string(t->descrizione) +
                                      ": sostituirli con quelli del modello " + Trim(*modello) + "?",
                                  vbYesNo + vbQuestion, "Carica tabelle standard") != vbYes) {
      ctx.out << t->nome << ": lasciato com'era\n";
      continue;
    }
    const bool caricata = t->copia(carica, &ctx.form, semplificati);
    ctx.form.Fine();
    ctx.out << t->nome << (caricata ? ": caricato dal modello\n" : ": vuoto nel modello, lasciato com'era\n");
  }
  db->DisconnettiDatabase();
  return 0;
}

RegistraComando reg(Comando{"carica-tabelle", "sostituisce archivi dell'azienda con quelli di un modello", Uso(),
                            Esegui});

}  // namespace

}  // namespace vorn::cli
