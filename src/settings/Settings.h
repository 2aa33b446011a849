// The editor's settings (korvel.ini, section "korvel") and its interface texts
// (lang.ini, one section per language). Nothing is held in memory between
// calls: every read sees the file as it is now.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

// "True"/"False" in any letter case, or a number (0 is false). Anything else
// (such as "Settings error") is nothing; callers take that as false.
std::optional<bool> BooleanWord(std::string_view value);

class Settings {
public:
    // Settings kept in `settingsFile`, texts looked up in `languageFile`.
    Settings(std::filesystem::path settingsFile, std::filesystem::path languageFile);
    // Settings that live only in memory, starting from the defaults. The
    // command-line tool uses this so it never touches the editor's korvel.ini.
    static Settings InMemory(std::filesystem::path languageFile);

    std::string ReadSetting(std::string_view key) const;
    void WriteSetting(std::string_view value, std::string_view key);
    // A text of the current language; "Settings error" when missing.
    std::string LookupText(std::string_view key) const;
    // The text without its mnemonic mark, for titles and status texts.
    std::string LookupPlainText(std::string_view key) const;
    // The text with "%1".. replaced by `arguments`.
    std::string LookupFilled(std::string_view key, const std::vector<std::string>& arguments) const;
    // The wording of `key` for `count` things in the current language (see
    // PluralKey), with "%1" replaced by the count.
    std::string LookupCountText(std::string_view key, std::uint64_t count) const;

    // The desktop's locale name ("de_DE.UTF-8"); the settings file a first
    // start writes then names the matching language.
    void setDesktopLocale(std::string localeName) { desktopLocale_ = std::move(localeName); }

    // `stdShortcuts`: whether the menus use the desktop's standard keys
    // instead of the designed ones. Off unless the file says "True" (or a
    // non-zero number), so a file from before the choice existed keeps the
    // designed keys.
    bool StandardShortcuts() const;
    void SetStandardShortcuts(bool chosen);
    // The main window's place, size and state as the window saved it
    // (`windowPlace`, base64 text), nothing while none is stored.
    std::optional<std::string> WindowPlace() const;
    void StoreWindowPlace(std::string_view base64);
    // The list's column widths in pixels (`listColumns`, "220,100,100"),
    // nothing unless every one is a plausible width.
    std::optional<std::vector<int>> ListColumnWidths() const;
    void StoreListColumnWidths(const std::vector<int>& widths);
    // How the model view draws (`modelShading`): "flat", "smooth" or "wire",
    // in lower case whatever case the file has; "flat" for anything else.
    std::string ModelShadingWord() const;
    void StoreModelShading(std::string_view word);

    void EnsureSettingsFile();
    void WriteDefaultSettings();

    const std::filesystem::path& settingsFile() const { return settingsFile_; }
    const std::filesystem::path& languageFile() const { return languageFile_; }

    // The default file's lines, without line ends (the header's date line
    // carries the given date and time texts).
    static std::vector<std::string> DefaultFileLines(std::string_view date, std::string_view time);
    static std::string DefaultValue(std::string_view key);

private:
    std::filesystem::path settingsFile_;
    std::filesystem::path languageFile_;
    std::string desktopLocale_;
    bool inMemory_ = false;
    std::map<std::string, std::string, std::less<>> memory_; // keys lower-cased
};

} // namespace korvel
