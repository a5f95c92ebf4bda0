// The demo's statement of operations: the year extracted from the journal, the telematic file in
// the analytic form with the quadri that have data, its report of signals, the totals read back
// from the file and its CSV, all in the application's Temp folder.
#include <ostream>
#include <stdexcept>

#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "frame/Comuni.h"
#include "frame/FileVorn.h"
#include "statements/clsSpesometro2013.h"

namespace vorn::cli {

namespace {

void Passo(ContestoDemo& ctx) {
  const int anno = ctx.Anno();
  const std::string cartella = CartellaStampe();
  const std::string base = cartella + "/Spesometro" + std::to_string(anno);
  clsSpesometro2013 s;
  s.cn = ctx.cn;
  s.formAttiva = ctx.form;
  long righe = s.EstraiDatiSpesometroDaPrimaNota(0, anno, "SM");
  if (righe < 0) throw std::runtime_error("L'estrazione dello spesometro non è stata eseguita.");
  long documenti = NullToZeroLng(ctx.cn->Scalare(
      "SELECT COUNT(*) FROM [Spesometro2013Riepilogato] WHERE [Tipo] = 0 AND [Anno] = ?", {Valore(anno)}));

  ArgomentiFileSpesometro a;
  s.DatiAzienda(a);
  a.nomeFile = base + ".txt";
  a.nomeFileSegnalazioni = cartella + "/SegnalazioniSpesometro" + std::to_string(anno) + ".txt";
  a.AnnoRiferimento = anno;
  a.indiceFormato = 1;
  s.QuadriConDati(a, anno);
  long segnalazioni = 0;
  // A subject without identifiers stops the file: the step says so and the demo goes on.
  bool scritto = s.MakeFileTelematicoSpesometro(a, segnalazioni) >= 0;
  ctx.FineProgresso();
  if (!scritto) {
    ctx.out << "Spesometro " << anno << ": " << righe << " righe IVA, " << documenti
            << " documenti estratti; file telematico non scritto (soggetto senza partita IVA e codice fiscale)\n";
    return;
  }
  const auto record = s.Contenuto();
  const std::string verifica = cartella + "/VerificaSpesometro" + std::to_string(anno) + ".txt";
  const std::string csv = base + ".csv";
  if (!s.EseguiVerificheFileSpesometroGenerato(a.nomeFile, verifica))
    throw std::runtime_error("Il file telematico dello spesometro non supera la verifica.");
  if (!s.MakeFileCSV(a.nomeFile, csv)) throw std::runtime_error("Il CSV dello spesometro non è stato scritto.");
  ctx.fileScritti.insert(ctx.fileScritti.end(), {a.nomeFile, a.nomeFileSegnalazioni, verifica, csv});
  ctx.out << "Spesometro " << anno << ": " << righe << " righe IVA, " << documenti << " documenti, "
          << (record.recordC + record.recordD + 4) << " record nel file " << a.nomeFile << ", " << segnalazioni
          << " segnalazioni in " << a.nomeFileSegnalazioni << ", verifica in " << verifica << ", CSV in " << csv
          << "\n";
}

RegistraPassoDemo reg({70, "spesometro", Passo});

}  // namespace

}  // namespace vorn::cli
