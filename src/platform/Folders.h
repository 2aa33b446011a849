// Where the editor keeps its files. The writable part (korvel.ini, temps,
// icons/marker.gta) and the read-only part (lang.ini, icons, the readme) are
// the same folder when Korvel runs from its build tree or a portable copy (the
// executable's folder holds lang.ini) or when KORVEL_HOME names a folder, which
// is how tests and scripts isolate themselves. Installed, the writable part is
// the per-user data folder and the read-only part the installed share folder.
#pragma once

#include <filesystem>

namespace korvel {

std::filesystem::path ExecutableFolder();
std::filesystem::path EditorFolder();   // writable: korvel.ini, temps, icons/marker.gta
std::filesystem::path ResourceFolder(); // read-only: lang.ini, icons, readme
std::filesystem::path SettingsFilePath();
std::filesystem::path LanguageFilePath();
std::filesystem::path TempsFolder();

} // namespace korvel
