#include "settings/Settings.h"

#include "platform/Cp1252.h"
#include "platform/FileSystem.h"
#include "platform/LocalTime.h"
#include "settings/IniFile.h"
#include "settings/TextForms.h"

#include <array>
#include <charconv>
#include <utility>

namespace korvel {
namespace {

constexpr std::string_view Section = "korvel";

// The keys of the default file, in the order it lists them.
constexpr std::array<std::pair<std::string_view, std::string_view>, 21> DefaultKeys = {{
    {"recent1", "none"},        {"recent2", "none"},        {"recent3", "none"},
    {"lastAdd", "none"},        {"lastExtract", "none"},    {"sort", "offset"},
    {"showGrid", "True"},       {"autoLoad", "True"},       {"showColors", "True"},
    {"firstRun", "True"},       {"lastSearch", "***"},      {"deleteProm", "True"},
    {"addingOpt", "replace"},   {"addingScan", "True"},     {"lastFileSearch", "name of a texture"},
    {"rebuildPrompt", "False"}, {"archiveState", "peachy"}, {"scanPrompt", "0"},
    {"lastQR", "none"},         {"qrSetting", "1"},         {"language", "english"},
}};

constexpr std::array<std::pair<std::string_view, std::string_view>, 6> DefaultColours = {{
    {"l1r", "233"},
    {"l1g", "233"},
    {"l1b", "233"},
    {"l2r", "255"},
    {"l2g", "255"},
    {"l2b", "255"},
}};

std::string Label(std::string_view label, std::string_view value) {
    std::string line(label);
    line.resize(21, '.');
    return line + ": " + std::string(value);
}

} // namespace

std::optional<bool> BooleanWord(std::string_view value) {
    if (EqualsIgnoreCase(value, "true")) {
        return true;
    }
    if (EqualsIgnoreCase(value, "false")) {
        return false;
    }
    double number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (error == std::errc() && end == value.data() + value.size() && !value.empty()) {
        return number != 0;
    }
    return std::nullopt;
}

Settings::Settings(std::filesystem::path settingsFile, std::filesystem::path languageFile)
    : settingsFile_(std::move(settingsFile)), languageFile_(std::move(languageFile)) {}

Settings Settings::InMemory(std::filesystem::path languageFile) {
    Settings settings({}, std::move(languageFile));
    settings.inMemory_ = true;
    for (const auto& [key, value] : DefaultKeys) {
        settings.memory_[ToLowerCp1252(key)] = std::string(value);
    }
    for (const auto& [key, value] : DefaultColours) {
        settings.memory_[ToLowerCp1252(key)] = std::string(value);
    }
    return settings;
}

std::string Settings::DefaultValue(std::string_view key) {
    for (const auto& [name, value] : DefaultKeys) {
        if (EqualsIgnoreCase(name, key)) {
            return std::string(value);
        }
    }
    for (const auto& [name, value] : DefaultColours) {
        if (EqualsIgnoreCase(name, key)) {
            return std::string(value);
        }
    }
    return std::string(SettingsError);
}

std::string Settings::ReadSetting(std::string_view key) const {
    if (inMemory_) {
        const auto found = memory_.find(ToLowerCp1252(key));
        return found == memory_.end() ? std::string(SettingsError)
                                      : found->second.substr(0, MaxValueLength);
    }
    return ReadProfileString(settingsFile_, Section, key);
}

void Settings::WriteSetting(std::string_view value, std::string_view key) {
    if (inMemory_) {
        memory_[ToLowerCp1252(key)] = std::string(value);
        return;
    }
    // Failures are not reported: a setting that could not be stored simply
    // reads its old value next time.
    WriteProfileString(settingsFile_, Section, key, value);
}

std::string Settings::LookupText(std::string_view key) const {
    return ReadProfileString(languageFile_, ReadSetting("language"), key);
}

bool Settings::StandardShortcuts() const {
    return BooleanWord(ReadSetting("stdShortcuts")).value_or(false);
}

void Settings::SetStandardShortcuts(bool chosen) {
    WriteSetting(chosen ? "True" : "False", "stdShortcuts");
}

std::optional<std::string> Settings::WindowPlace() const {
    const std::string value = ReadSetting("windowPlace");
    const bool base64 =
        !value.empty() && value.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                                  "abcdefghijklmnopqrstuvwxyz"
                                                  "0123456789+/=") == std::string::npos;
    return base64 ? std::optional<std::string>(value) : std::nullopt;
}

void Settings::StoreWindowPlace(std::string_view base64) {
    WriteSetting(base64, "windowPlace");
}

std::string Settings::ModelShadingWord() const {
    const std::string word = ToLowerCp1252(ReadSetting("modelShading"));
    return word == "smooth" || word == "wire" ? word : std::string("flat");
}

void Settings::StoreModelShading(std::string_view word) {
    WriteSetting(word, "modelShading");
}

std::optional<std::vector<int>> Settings::ListColumnWidths() const {
    // Wider than any screen, or too narrow to grab, is a hand-edited or
    // damaged value: the designed widths are better than an unusable list.
    constexpr int Narrowest = 8;
    constexpr int Widest = 10000;
    const std::string value = ReadSetting("listColumns");
    std::vector<int> widths;
    const char* at = value.data();
    const char* const end = value.data() + value.size();
    while (at < end) {
        int width = 0;
        const auto [next, error] = std::from_chars(at, end, width);
        if (error != std::errc() || width < Narrowest || width > Widest ||
            (next != end && *next != ',')) {
            return std::nullopt;
        }
        widths.push_back(width);
        at = next == end ? end : next + 1;
    }
    return widths.empty() ? std::nullopt : std::optional(widths);
}

void Settings::StoreListColumnWidths(const std::vector<int>& widths) {
    std::string value;
    for (const int width : widths) {
        value += (value.empty() ? "" : ",") + std::to_string(width);
    }
    WriteSetting(value, "listColumns");
}

std::string Settings::LookupPlainText(std::string_view key) const {
    return PlainCaption(LookupText(key));
}

std::string Settings::LookupFilled(std::string_view key,
                                   const std::vector<std::string>& arguments) const {
    return FillArguments(LookupText(key), arguments);
}

std::string Settings::LookupCountText(std::string_view key, std::uint64_t count) const {
    return FillArguments(LookupText(PluralKey(key, ReadSetting("language"), count)),
                         {std::to_string(count)});
}

void Settings::EnsureSettingsFile() {
    if (!inMemory_ && !FileExists(settingsFile_)) {
        WriteDefaultSettings();
        // Only the first start follows the desktop; after that the Language
        // menu decides.
        const std::string language = LanguageForLocale(desktopLocale_);
        if (language != DefaultValue("language")) {
            WriteSetting(language, "language");
        }
    }
}

std::vector<std::string> Settings::DefaultFileLines(std::string_view date, std::string_view time) {
    const std::string rule(79, '-');
    std::vector<std::string> lines = {
        rule,
        std::string(31, ' ') + "Korvel 1.0 Settings",
        rule,
        Label("File", "korvel.ini"),
        Label("Version", "1.0"),
        Label("Created", std::string(date) + " @ " + std::string(time)),
        Label("Home page", "https://github.com/korvel-editor/korvel"),
        Label("Contact", "https://github.com/korvel-editor/korvel/issues"),
        Label("Legal", "Korvel is free software under the MIT licence; no warranty."),
        "",
        "[Korvel]",
    };
    for (const auto& [key, value] : DefaultKeys) {
        lines.push_back(std::string(key) + "=" + std::string(value));
    }
    lines.emplace_back("");
    lines.emplace_back("// Line colors RGB format");
    for (const auto& [key, value] : DefaultColours) {
        lines.push_back(std::string(key) + " = " + std::string(value));
    }
    return lines;
}

void Settings::WriteDefaultSettings() {
    if (inMemory_) {
        return;
    }
    std::string content;
    for (const std::string& line : DefaultFileLines(LocalTimeText("%x"), LocalTimeText("%X"))) {
        content += line;
        content += "\r\n";
    }
    WriteFileAtomically(settingsFile_, content);
}

} // namespace korvel
