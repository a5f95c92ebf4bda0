// Files and folders of the reports and of the interchange files. Paths use "/".
#pragma once
#include <fstream>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>

namespace vorn {

// True when the file can be opened for reading; a folder or a file that cannot be read reads as
// absent.
bool EsisteFile(const std::string& percorso);
// Deletes the file if it is there.
void CancellaFile(const std::string& percorso);
// Without one trailing "/"; empty text stays empty.
std::string TogliBarraFinale(const std::string& percorso);
// Trims the path and strips one trailing "/", in the caller's variable too, then creates each
// missing level of it. Failures throw std::filesystem::filesystem_error.
void CreaCartella(std::string& percorso);
void CreaCartella(const std::string& percorso);
// Appends the lines of `origine`, if it exists, to `destinazione`. A line that cannot be
// written throws ErroreStampa.
void AccodaFile(const std::string& origine, const std::string& destinazione);

// The folder where reports land: the application's folder + "/Temp", created when missing.
std::string CartellaStampe();
// The working folder of the reports (their bodies before pagination, the cards before they are
// laid out): a folder of this process's own under CartellaStampe(), created at the first call,
// so that two runs sharing an application folder never share a working file. It goes away, with
// what is left in it, at ChiudiCartellaTemp() or at the end of the process.
std::string CartellaTemp();
void ChiudiCartellaTemp();

// A report that cannot be written, or a destination that may not take one.
class ErroreStampa : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws ErroreStampa when `percorso` may not take a report. A report may go to a new file; to
// an existing file only when it is empty or is itself a report (plain text carrying a page
// number, "Pag:", in its first 64 KiB): never over a database, a program or any other file; and
// to a terminal, a pipe or another character device. A folder, a missing folder or an empty
// name is refused.
void VerificaUscitaStampa(const std::string& percorso);
// The same check for a file that is not a paginated report (a fiscal file, its reports): an
// existing regular file is replaced only when it is empty or `nostro` recognises it as a file of
// the same kind; `cosa` names the kind in the refusal ("un file telematico").
using RiconosciFile = std::function<bool(const std::string& percorso)>;
void VerificaUscitaFile(const std::string& percorso, const RiconosciFile& nostro, const std::string& cosa);

// The final file of a report. A regular file is written under a name of its own beside the
// destination and takes the destination's name only at Chiudi(), once every byte has been
// written and synced: a failure leaves whatever was there untouched, and two runs never
// interleave their lines. A device or a pipe is written directly. Every failure throws
// ErroreStampa naming the file; an object destroyed without Chiudi() leaves nothing behind.
class FileStampa {
 public:
  explicit FileStampa(const std::string& percorso);
  // A file of another kind, under VerificaUscitaFile.
  FileStampa(const std::string& percorso, RiconosciFile nostro, std::string cosa);
  ~FileStampa();
  FileStampa(const FileStampa&) = delete;
  FileStampa& operator=(const FileStampa&) = delete;

  std::ostream& Flusso() { return out_; }
  void Chiudi();

 private:
  std::string percorso_;  // the destination, symbolic links resolved
  std::string lavoro_;    // the name written until Chiudi(); empty for a device
  std::ofstream out_;
  bool chiuso_ = false;
  RiconosciFile nostro_;  // empty: a report
  std::string cosa_;
  void Verifica(const std::string& percorso) const;
  void Apri(const std::string& percorso);
};

}  // namespace vorn
