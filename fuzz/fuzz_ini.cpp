// libFuzzer target: the INI reader and writer. Any content, any value: after
// a write the key reads back as the one line written, and no other key of
// the file reads differently.
#include "platform/Blanks.h"
#include "settings/IniFile.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace {

// Section and key names as the program uses them: letters, digits, '_'.
std::string Identifier(FuzzedDataProvider& input) {
    std::string name = input.ConsumeRandomLengthString(12);
    std::string kept;
    for (char c : name) {
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
            c == '_') {
            kept += c;
        }
    }
    return kept.empty() ? "k" : kept;
}

bool SameIgnoringCase(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; };
        if (lower(a[i]) != lower(b[i])) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const std::string section = Identifier(input);
    const std::string key = Identifier(input);
    const std::string value = input.ConsumeRandomLengthString(300);
    const std::string content = input.ConsumeRemainingBytesAsString();

    // Every (section, key) the content names, to compare before and after.
    std::vector<std::pair<std::string, std::string>> probes;
    std::string current;
    std::size_t start = 0;
    while (start < content.size() && probes.size() < 64) {
        std::size_t end = content.find('\n', start);
        if (end == std::string::npos) {
            end = content.size();
        }
        std::string line = content.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        start = end + 1;
        const std::string_view trimmed = korvel::TrimBlanks(line);
        if (!trimmed.empty() && trimmed.front() == '[') {
            std::string_view inner = trimmed.substr(1);
            inner = inner.substr(0, inner.find(']'));
            current = std::string(korvel::TrimBlanks(inner));
        } else if (const auto equals = line.find('='); equals != std::string::npos) {
            probes.emplace_back(current, std::string(korvel::TrimBlanks(line.substr(0, equals))));
        }
    }

    const std::string written = korvel::WriteInContent(content, section, key, value);
    const auto back = korvel::LookupInContent(written, section, key);
    if (!back || back->find_first_of("\r\n") != std::string::npos) {
        std::abort();
    }
    // A plain value (no line break, no blanks or quotes at its ends, short
    // enough) reads back exactly.
    const bool plain = value.size() <= korvel::MaxValueLength &&
                       value.find_first_of("\r\n") == std::string::npos &&
                       korvel::TrimBlanks(value) == value && value.find('"') == std::string::npos &&
                       value.find('\'') == std::string::npos;
    if (plain && *back != value) {
        std::abort();
    }
    for (const auto& [s, k] : probes) {
        if (SameIgnoringCase(s, section) && SameIgnoringCase(k, key)) {
            continue;
        }
        if (korvel::LookupInContent(content, s, k) != korvel::LookupInContent(written, s, k)) {
            std::abort();
        }
    }
    return 0;
}
