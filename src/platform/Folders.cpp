#include "platform/Folders.h"

#include <cstdlib>
#include <optional>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#endif

#ifndef KORVEL_INSTALL_DATADIR
#define KORVEL_INSTALL_DATADIR "/usr/local/share/korvel"
#endif

namespace korvel {
namespace fs = std::filesystem;
namespace {

std::optional<fs::path> HomeOverride() {
    const char* home = std::getenv("KORVEL_HOME");
    if (home != nullptr && *home != '\0') {
        return fs::path(home);
    }
    return std::nullopt;
}

// Run from the build tree or a portable copy: lang.ini lies beside the program.
bool IsPortable() {
    std::error_code ec;
    return fs::is_regular_file(ExecutableFolder() / "lang.ini", ec);
}

fs::path UserDataFolder() {
#ifdef _WIN32
    if (const char* appData = std::getenv("APPDATA")) {
        return fs::path(appData) / "Korvel";
    }
    return ExecutableFolder();
#else
    if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg != nullptr && *xdg == '/') {
        return fs::path(xdg) / "korvel";
    }
    if (const char* home = std::getenv("HOME")) {
        return fs::path(home) / ".local" / "share" / "korvel";
    }
    return fs::temp_directory_path() / "korvel";
#endif
}

} // namespace

fs::path ExecutableFolder() {
#ifdef _WIN32
    wchar_t buffer[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, buffer, MAX_PATH);
    return fs::path(buffer).parent_path();
#else
    std::error_code ec;
    const fs::path self = fs::read_symlink("/proc/self/exe", ec);
    return ec ? fs::current_path() : self.parent_path();
#endif
}

fs::path EditorFolder() {
    if (auto home = HomeOverride()) {
        return *home;
    }
    if (IsPortable()) {
        return ExecutableFolder();
    }
    const fs::path folder = UserDataFolder();
    std::error_code ec;
    fs::create_directories(folder, ec);
    return folder;
}

fs::path ResourceFolder() {
    if (auto home = HomeOverride()) {
        return *home;
    }
    if (IsPortable()) {
        return ExecutableFolder();
    }
    // Installed: <prefix>/bin/korvel finds <prefix>/share/korvel; fall back to
    // the prefix the build was configured with.
    const fs::path beside = ExecutableFolder().parent_path() / "share" / "korvel";
    std::error_code ec;
    if (fs::is_regular_file(beside / "lang.ini", ec)) {
        return beside;
    }
    return fs::path(KORVEL_INSTALL_DATADIR);
}

fs::path SettingsFilePath() {
    return EditorFolder() / "korvel.ini";
}
fs::path LanguageFilePath() {
    return ResourceFolder() / "lang.ini";
}
fs::path TempsFolder() {
    return EditorFolder() / "temps";
}

} // namespace korvel
