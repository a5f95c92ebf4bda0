// The exchange of archives with an outside accounting program through text files: the chart of
// accounts, the causals, the VAT codes, the currencies, the journal and the clients and
// suppliers, each written to and read from a file of one record a line, fields in a fixed order
// and width with one separator character between them.
//
// An export replaces only a file that is empty or is itself an export of the same archive, and
// writes it whole or not at all. An import reads the whole file first: a missing file, a file
// that is not UTF-8 text, a short or long line, a field that does not read as its kind (an
// amount, a date, an account code) or a reference to an account or causal the company does not
// have stops it before anything is written, with a message that names the file, the line and
// the field. The rows are then written through the archive's own class (the journal through
// clsPrimaNota::SalvaRecord, so that the balances move with it) in one transaction: a file is
// imported whole or not at all. Into an archive that already holds rows the import asks first.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "frame/ConnessioneClasse.h"
#include "frame/Host.h"
#include "frame/Valore.h"

namespace vorn {

enum class ArchivioVorn { PianoConti, Causali, CodiciIva, Valute, PrimaNota, Clienti, Fornitori };

struct DescrizioneArchivioVorn {
  ArchivioVorn archivio;
  std::string nome;    // the option's name: "piano-conti", "causali", ...
  std::string file;    // the file's name in an exchange folder: "pianoconti.txt", ...
  std::string titolo;  // the caption of the import's messages
};

// The archives in the order an import of several writes them (what a journal row refers to
// comes first).
const std::vector<DescrizioneArchivioVorn>& ArchiviVorn();
const DescrizioneArchivioVorn& DescrizioneArchivio(ArchivioVorn a);

// The separator of the files when the caller names none: "|".
constexpr int kSeparatoreVorn = 124;

class clsExportVorn {
 public:
  ConnessioneClasse cn;
  // Ask before importing into an archive that already holds rows (a journal that has entries).
  // Off, the import writes without asking: for a caller that has made the company for it.
  bool ChiediConferma = true;

  // ---- exports: true when the file was written; false, with the message shown, when not.
  bool ExportPianoConti(IForm* formAttiva, const std::string& nomeFile, int Separatore);
  bool ExportCausaliContabili(IForm* formAttiva, const std::string& nomeFile, int Separatore);
  bool ExportCodiciIVA(IForm* formAttiva, const std::string& nomeFile, int Separatore);
  bool ExportValute(IForm* formAttiva, const std::string& nomeFile, int Separatore);
  bool ExportPrimaNota(IForm* formAttiva, const std::string& nomeFile, int Separatore,
                       const std::string& PrefissoCli = {}, const std::string& PrefissoFor = {});
  // FlagCliFor "C" clients, "F" suppliers.
  bool ExportCliFor(IForm* formAttiva, const std::string& FlagCliFor, const std::string& PrefissoCli,
                    const std::string& PrefissoFor, const std::string& nomeFile, int Separatore);

  // ---- imports: true when the whole file was written; false, nothing written, with the
  // message shown under the archive's title (and kept in Errore()), when not.
  bool ImportPianoConti(IForm* formAttiva, const std::string& nomeFile, int Separatore, const Valore& clientID,
                        long hWnd);
  bool ImportCausaliContabili(IForm* formAttiva, const std::string& nomeFile, int Separatore,
                              const Valore& clientID, long hWnd);
  bool ImportCodiciIVA(IForm* formAttiva, const std::string& nomeFile, int Separatore, const Valore& clientID,
                       long hWnd);
  bool ImportValute(IForm* formAttiva, const std::string& nomeFile, int Separatore, const Valore& clientID, long hWnd);
  bool ImportPrimaNota(IForm* formAttiva, const std::string& nomeFile, int Separatore, const std::string& PrefissoCli,
                       const std::string& PrefissoFor, const Valore& clientID, long hWnd);
  bool ImportCliFor(IForm* formAttiva, const std::string& FlagCliFor, const std::string& nomeFile, int Separatore,
                    const std::string& PrefissoCli, const std::string& PrefissoFor, const Valore& clientID,
                    long hWnd);

  // ---- several archives through one folder, each under its DescrizioneArchivioVorn::file.
  // The export writes each archive named; the result lists the files written (empty, with the
  // message shown, when one failed: files already written stay).
  std::vector<std::string> Esporta(IForm* formAttiva, const std::string& cartella,
                                   const std::vector<ArchivioVorn>& archivi, int Separatore = kSeparatoreVorn);
  // The import checks every file first, then writes them all in one transaction: all or
  // nothing. The rows written per archive land in `righe` (in the order of `archivi`).
  bool Importa(IForm* formAttiva, const std::string& cartella, const std::vector<ArchivioVorn>& archivi,
               const Valore& clientID, long hWnd, int Separatore = kSeparatoreVorn,
               std::vector<int64_t>* righe = nullptr);

  // The message of the last failure, empty after a success.
  const std::string& Errore() const { return errore_; }
  // True when that message was shown in a message box (false for a prompt the user declined).
  bool ErroreMostrato() const { return mostrato_; }

 private:
  std::string errore_;
  bool mostrato_ = false;
};

}  // namespace vorn
