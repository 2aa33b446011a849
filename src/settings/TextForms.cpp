#include "settings/TextForms.h"

#include "platform/Cp1252.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvel {

std::string PlainCaption(std::string_view caption) {
    std::string plain;
    plain.reserve(caption.size());
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (caption[i] != '&') {
            plain += caption[i];
        } else if (i + 1 < caption.size() && caption[i + 1] == '&') {
            plain += '&';
            ++i;
        }
    }
    return plain;
}

std::optional<char> MnemonicOf(std::string_view caption) {
    for (std::size_t i = 0; i + 1 < caption.size(); ++i) {
        if (caption[i] != '&') {
            continue;
        }
        if (caption[i + 1] != '&') {
            return ToLowerCp1252(caption.substr(i + 1, 1)).front();
        }
        ++i;
    }
    return std::nullopt;
}

std::string FillArguments(std::string_view text, const std::vector<std::string>& arguments) {
    std::string filled;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (text[i] == '%' && next == '%') {
            filled += '%';
            ++i;
        } else if (text[i] == '%' && next >= '1' && next <= '9' &&
                   static_cast<std::size_t>(next - '1') < arguments.size()) {
            filled += arguments[static_cast<std::size_t>(next - '1')];
            ++i;
        } else {
            filled += text[i];
        }
    }
    return filled;
}

std::vector<int> PlaceholdersOf(std::string_view text) {
    std::vector<int> found;
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != '%') {
            continue;
        }
        if (text[i + 1] >= '1' && text[i + 1] <= '9') {
            const int number = text[i + 1] - '0';
            if (std::find(found.begin(), found.end(), number) == found.end()) {
                found.push_back(number);
            }
        }
        ++i;
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::string PluralKey(std::string_view key, std::string_view language, std::uint64_t count) {
    const bool singular = EqualsIgnoreCase(language, "francais") ? count <= 1 : count == 1;
    return std::string(key) + (singular ? "One" : "Many");
}

namespace {

// Our sections and the ISO 639-1 codes of their languages; the first one is
// what every other locale gets.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> Languages = {{
    {"english", "en"},
    {"francais", "fr"},
    {"deutsch", "de"},
}};

} // namespace

std::string LanguageForLocale(std::string_view localeName) {
    // The language code ends where the territory, encoding or modifier
    // begins ("fr_CA", "de-AT", "de.UTF-8", "fr@euro").
    const std::string code = ToLowerCp1252(localeName.substr(0, localeName.find_first_of("_-.@")));
    for (const auto& [section, iso] : Languages) {
        if (code == iso) {
            return std::string(section);
        }
    }
    return std::string(Languages.front().first);
}

std::string LanguageCodeOf(std::string_view section) {
    for (const auto& [name, iso] : Languages) {
        if (EqualsIgnoreCase(name, section)) {
            return std::string(iso);
        }
    }
    return {};
}

} // namespace korvel
