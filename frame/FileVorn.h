// Files and folders of the reports and of the interchange files. Paths use "/".
#pragma once
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
// Appends the lines of `origine`, if it exists, to `destinazione`.
void AccodaFile(const std::string& origine, const std::string& destinazione);
// The folder of the reports, the application's folder + "/Temp", created when missing.
std::string CartellaTemp();

}  // namespace vorn
