// Making Korvel the program that opens ".img" files, and the shell targets of
// the Help menu. On Windows this is four values under the class registry; on
// Linux it is a desktop entry, a MIME type for "*.img" and a default-opener
// line for the current user, written under the user's data folders.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace korvel {

inline constexpr std::string_view HomePageAddress = "https://github.com/korvel-editor/korvel";
inline constexpr std::string_view UpdatesAddress =
    "https://github.com/korvel-editor/korvel/releases/tag/v1.0";
inline constexpr std::string_view HomePageCaption = "github.com/korvel-editor";
inline constexpr std::string_view ImgFileClass = "GTA IMG File";
inline constexpr std::string_view ImgMimeType = "application/x-gta-img";
inline constexpr std::string_view DesktopEntryName = "korvel.desktop";

// One default value of a key under the class registry.
struct RegistryValue {
    std::string key;
    std::string value;
    friend bool operator==(const RegistryValue&, const RegistryValue&) = default;
};

// The four class-registry values, in the order they are written. The open
// command is deliberately unquoted: the shell's "%0" becomes the whole path
// and start-up takes the whole command line as one path.
std::vector<RegistryValue> RegistryValues(const std::string& editorFolder,
                                          const std::string& executableStem);

// Where the Linux association lives, under a user's data and config folders.
struct FreedesktopPaths {
    std::filesystem::path desktopEntry; // .../applications/korvel.desktop
    std::filesystem::path mimePackage;  // .../mime/packages/korvel-img.xml
    std::filesystem::path mimeApps;     // ~/.config/mimeapps.list
    std::filesystem::path applicationsFolder;
    std::filesystem::path mimeFolder;
};

// From XDG_DATA_HOME / XDG_CONFIG_HOME, falling back to ~/.local/share and ~/.config.
FreedesktopPaths UserFreedesktopPaths();

// The texts of the desktop entry and of the MIME package.
std::string DesktopEntryText(const std::filesystem::path& executable,
                             const std::filesystem::path& icon);
std::string MimePackageText();
// mimeapps.list with Korvel as the default opener of the MIME type; every
// other line is kept.
std::string MimeAppsWithKorvel(const std::string& existing);

// Writes the association for the current user. Returns an empty string on
// success, else what failed, naming the file.
std::string RegisterFileAssociation();

} // namespace korvel
