// The demo's exchange of archives: the six archives of the demo company written to the text
// files of the exchange, read into a new company made from the standard model beside them, and
// written again from it; the step tells whether the two sets of files are identical and the new
// company's balances those of its journal.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <stdexcept>

#include "cli/Demo.h"
#include "cli/HostConsole.h"
#include "frame/FileVorn.h"
#include "frame/Schema.h"
#include "interchange/ModelloStandard.h"
#include "interchange/clsExportVorn.h"
#include "ledger/VerificaSaldi.h"

namespace vorn::cli {

namespace {

const std::vector<ArchivioVorn> kArchivi = {ArchivioVorn::PianoConti, ArchivioVorn::Causali,
                                            ArchivioVorn::CodiciIva,  ArchivioVorn::Valute,
                                            ArchivioVorn::PrimaNota,  ArchivioVorn::Clienti,
                                            ArchivioVorn::Fornitori};

std::string Contenuto(const std::string& file) {
  std::ifstream f(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
}

void Passo(ContestoDemo& ctx) {
  const std::string temp = CartellaStampe();
  const std::string cartella = temp + "/Esportazione", seconda = temp + "/Esportazione/Riesportazione";
  const std::string azienda = temp + "/Esportazione/AziendaImportata.db";

  clsExportVorn ex;
  ex.cn = ctx.cn;
  auto primi = ex.Esporta(ctx.form, cartella, kArchivi);
  if (primi.empty()) throw std::runtime_error(ex.Errore());

  // The company of the import is the demo's own: one left by an earlier run goes first.
  for (const char* s : {"", "-wal", "-shm", "-journal"}) CancellaFile(azienda + s);
  auto cn = CreaAziendaSqlite(azienda, [](Connessione& c) { CaricaModello(c, "standard"); });
  clsExportVorn im;
  im.cn = cn;
  im.ChiediConferma = false;  // a company made for it: nothing of anyone else's is overwritten
  std::vector<int64_t> righe;
  if (!im.Importa(ctx.form, cartella, kArchivi, Valore("demo"), 0, kSeparatoreVorn, &righe))
    throw std::runtime_error(im.Errore());
  auto secondi = im.Esporta(ctx.form, seconda, kArchivi);
  if (secondi.empty()) throw std::runtime_error(im.Errore());
  const bool allineati = VerificaSaldi(*cn).empty();
  cn->Close();
  ctx.FineProgresso();

  size_t diversi = 0;
  for (size_t i = 0; i < primi.size(); ++i) diversi += Contenuto(primi[i]) != Contenuto(secondi[i]);
  for (const auto& f : primi) ctx.fileScritti.push_back(f);
  ctx.fileScritti.push_back(azienda);
  int64_t giornale = 0;
  for (size_t i = 0; i < kArchivi.size(); ++i)
    if (kArchivi[i] == ArchivioVorn::PrimaNota) giornale = righe[i];
  ctx.out << "Esportazione: " << primi.size() << " archivi in " << cartella << ", importati in " << azienda << " ("
          << giornale << " righe di prima nota) e riesportati: "
          << (diversi == 0 ? "file identici" : std::to_string(diversi) + " FILE DIVERSI") << ", "
          << (allineati ? "saldi allineati alla prima nota" : "SALDI NON ALLINEATI ALLA PRIMA NOTA") << "\n";
}

RegistraPassoDemo reg({80, "esportazione", Passo});

}  // namespace

}  // namespace vorn::cli
