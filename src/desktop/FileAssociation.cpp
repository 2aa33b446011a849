#include "desktop/FileAssociation.h"

#include "platform/FileSystem.h"
#include "platform/Folders.h"

#include <cstdlib>
#include <sstream>
#include <system_error>

#ifdef _WIN32
#include <shlobj.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
extern char** environ;
#endif

namespace korvel {
namespace fs = std::filesystem;

std::vector<RegistryValue> RegistryValues(const std::string& editorFolder,
                                          const std::string& executableStem) {
    const std::string cls(ImgFileClass);
    return {
        {".img", cls},
        {cls, cls},
        {cls + "\\shell\\open\\command", editorFolder + "\\" + executableStem + ".exe %0"},
        {cls + "\\DefaultIcon", editorFolder + "\\icons\\file.ico"},
    };
}

namespace {

fs::path FromEnvironment(const char* variable, const fs::path& fallback) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value == '/') {
        return value;
    }
    return fallback;
}

// A desktop entry's Exec line needs arguments with blanks or quotes quoted.
std::string ExecQuoted(const std::string& path) {
    if (path.find_first_of(" \t\"'\\$`") == std::string::npos) {
        return path;
    }
    std::string quoted = "\"";
    for (char c : path) {
        if (c == '"' || c == '`' || c == '$' || c == '\\') {
            quoted += '\\';
        }
        quoted += c;
    }
    return quoted + "\"";
}

#ifndef _WIN32
// Runs a helper program with one argument and waits for it; a program that is
// not installed is simply skipped. No shell is involved, so odd characters in
// the folder names cannot do harm.
void RunIfInstalled(const char* program, const std::string& argument) {
    std::string programText = program;
    std::string argumentText = argument;
    char* argv[] = {programText.data(), argumentText.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    if (posix_spawnp(&pid, program, &actions, nullptr, argv, environ) == 0) {
        int status = 0;
        waitpid(pid, &status, 0);
    }
    posix_spawn_file_actions_destroy(&actions);
}
#endif

#ifdef _WIN32
bool SetDefaultValue(const std::string& key, const std::string& value) {
    HKEY handle = nullptr;
    if (RegCreateKeyA(HKEY_CLASSES_ROOT, key.c_str(), &handle) != ERROR_SUCCESS) {
        return false;
    }
    const LONG result =
        RegSetValueExA(handle, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                       static_cast<DWORD>(value.size()));
    RegCloseKey(handle);
    return result == ERROR_SUCCESS;
}
#endif

} // namespace

FreedesktopPaths UserFreedesktopPaths() {
    const fs::path home = FromEnvironment("HOME", fs::temp_directory_path());
    const fs::path data = FromEnvironment("XDG_DATA_HOME", home / ".local" / "share");
    const fs::path config = FromEnvironment("XDG_CONFIG_HOME", home / ".config");
    FreedesktopPaths paths;
    paths.applicationsFolder = data / "applications";
    paths.mimeFolder = data / "mime";
    paths.desktopEntry = paths.applicationsFolder / std::string(DesktopEntryName);
    paths.mimePackage = paths.mimeFolder / "packages" / "korvel-img.xml";
    paths.mimeApps = config / "mimeapps.list";
    return paths;
}

std::string DesktopEntryText(const fs::path& executable, const fs::path& icon) {
    std::ostringstream text;
    text << "[Desktop Entry]\n"
         << "Type=Application\n"
         << "Name=Korvel\n"
         << "GenericName=IMG archive editor\n"
         << "Comment=Edit the model, texture and collision archives of GTA III-era games\n"
         << "Exec=" << ExecQuoted(executable.string()) << " %f\n"
         << "Icon=" << icon.string() << "\n"
         << "Terminal=false\n"
         << "Categories=Utility;Archiving;\n"
         << "MimeType=" << ImgMimeType << ";\n";
    return text.str();
}

std::string MimePackageText() {
    std::ostringstream text;
    text << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         << "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n"
         << "  <mime-type type=\"" << ImgMimeType << "\">\n"
         << "    <comment>GTA IMG archive</comment>\n"
         << "    <generic-icon name=\"package-x-generic\"/>\n"
         // Most ".img" files are disk images (weight 50 in shared-mime-info):
         // the name alone only makes a file ours when nothing else claims it.
         // The two-file kind cannot be told by content (it is known by its
         // ".dir" companion, which no MIME rule can look for); the one-file
         // kind starts with "VER2" and is recognised by that.
         << "    <glob pattern=\"*.img\" weight=\"10\"/>\n"
         << "    <magic priority=\"60\">\n"
         << "      <match type=\"string\" value=\"VER2\" offset=\"0\"/>\n"
         << "    </magic>\n"
         << "  </mime-type>\n"
         << "</mime-info>\n";
    return text.str();
}

std::string MimeAppsWithKorvel(const std::string& existing) {
    const std::string line = std::string(ImgMimeType) + "=" + std::string(DesktopEntryName);
    std::istringstream in(existing);
    std::vector<std::string> lines;
    for (std::string l; std::getline(in, l);) {
        lines.push_back(l);
    }
    bool inDefaults = false;
    bool done = false;
    std::size_t sectionEnd = lines.size();
    bool sawDefaults = false;
    for (std::size_t i = 0; i < lines.size() && !done; ++i) {
        const std::string& l = lines[i];
        if (!l.empty() && l.front() == '[') {
            if (inDefaults) {
                sectionEnd = i;
                break;
            }
            inDefaults = l == "[Default Applications]";
            sawDefaults = sawDefaults || inDefaults;
            continue;
        }
        if (inDefaults && l.rfind(std::string(ImgMimeType) + "=", 0) == 0) {
            lines[i] = line;
            done = true;
        }
    }
    if (!done) {
        if (sawDefaults) {
            // Insert at the end of the section, before any trailing blank lines.
            std::size_t at = sectionEnd;
            while (at > 0 && lines[at - 1].empty()) {
                --at;
            }
            lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at), line);
        } else {
            if (!lines.empty() && !lines.back().empty()) {
                lines.emplace_back("");
            }
            lines.emplace_back("[Default Applications]");
            lines.push_back(line);
        }
    }
    std::string out;
    for (const std::string& l : lines) {
        out += l;
        out += '\n';
    }
    return out;
}

std::string RegisterFileAssociation() {
#ifdef _WIN32
    wchar_t buffer[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, buffer, MAX_PATH);
    const fs::path exe(buffer);
    std::string failed;
    for (const RegistryValue& value :
         RegistryValues(exe.parent_path().string(), exe.stem().string())) {
        if (!SetDefaultValue(value.key, value.value)) {
            failed = "cannot write HKEY_CLASSES_ROOT\\" + value.key;
        }
    }
    SHChangeNotify(SHCNE_ASSOCCHANGED, SHCNF_IDLIST, nullptr, nullptr);
    return failed;
#else
    const FreedesktopPaths paths = UserFreedesktopPaths();
    std::error_code ec;
    fs::create_directories(paths.applicationsFolder, ec);
    fs::create_directories(paths.mimePackage.parent_path(), ec);
    fs::create_directories(paths.mimeApps.parent_path(), ec);

    const fs::path executable = ExecutableFolder() / "korvel";
    fs::path icon = ResourceFolder() / "icons" / "korvel.svg";
    // Each failure names its file: the person has to find and fix it.
    const auto write = [](const fs::path& path, const std::string& text) -> FsError {
        const FsError failed = WriteFileAtomically(path, text);
        return failed.empty() ? failed : path.string() + ": " + failed;
    };
    FsError error = write(paths.desktopEntry, DesktopEntryText(executable, icon));
    if (error.empty()) {
        error = write(paths.mimePackage, MimePackageText());
    }
    if (error.empty()) {
        // A mimeapps.list that cannot be read is left alone: writing it anew
        // would drop every other program's defaults.
        FsError readError;
        std::optional<std::string> existing = std::string();
        if (FileExists(paths.mimeApps)) {
            existing = ReadSmallFile(paths.mimeApps, readError);
        }
        error = existing ? write(paths.mimeApps, MimeAppsWithKorvel(*existing))
                         : paths.mimeApps.string() + ": " + readError;
    }
    // Refresh the desktop's caches when the tools for it are installed; the
    // association works without them once the desktop rescans.
    RunIfInstalled("update-mime-database", paths.mimeFolder.string());
    RunIfInstalled("update-desktop-database", paths.applicationsFolder.string());
    return error;
#endif
}

} // namespace korvel
