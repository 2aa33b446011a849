#include "settings/IniFile.h"

#include "platform/Blanks.h"
#include "platform/Cp1252.h"
#include "platform/FileSystem.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <vector>

namespace korvel {
namespace {

std::vector<std::string_view> SplitLines(std::string_view content) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    while (start < content.size()) {
        std::size_t end = content.find('\n', start);
        const std::size_t next = end == std::string_view::npos ? content.size() : end + 1;
        if (end == std::string_view::npos) {
            end = content.size();
        }
        std::string_view line = content.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        lines.push_back(line);
        start = next;
    }
    return lines;
}

// The section a header line names, or nothing when the line is no header.
std::optional<std::string_view> SectionOf(std::string_view line) {
    const std::string_view trimmed = TrimBlanks(line);
    if (trimmed.empty() || trimmed.front() != '[') {
        return std::nullopt;
    }
    std::string_view inner = trimmed.substr(1);
    const auto close = inner.find(']');
    if (close != std::string_view::npos) {
        inner = inner.substr(0, close);
    }
    return TrimBlanks(inner);
}

struct KeyLine {
    std::string_view key;
    std::string_view value;
};

std::optional<KeyLine> KeyOf(std::string_view line) {
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) {
        return std::nullopt;
    }
    return KeyLine{TrimBlanks(line.substr(0, equals)), TrimBlanks(line.substr(equals + 1))};
}

std::string CleanValue(std::string_view value) {
    // A value wrapped in matching quotes loses them, as the profile functions do.
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front()) {
        value = value.substr(1, value.size() - 2);
    }
    return std::string(value.substr(0, MaxValueLength));
}

using ParsedIni = std::map<std::string, std::map<std::string, std::string>>;

ParsedIni Parse(std::string_view content) {
    ParsedIni parsed;
    std::map<std::string, std::string>* current = nullptr;
    for (std::string_view line : SplitLines(content)) {
        if (const auto section = SectionOf(line)) {
            current = &parsed[ToLowerCp1252(*section)];
            continue;
        }
        if (current == nullptr) {
            continue;
        }
        if (const auto keyLine = KeyOf(line)) {
            current->emplace(ToLowerCp1252(keyLine->key), CleanValue(keyLine->value));
        }
    }
    return parsed;
}

// What tells us a file changed since we parsed it: size, modification time
// and, where the system has them, inode and device (a file replaced by a
// rename gets a new inode even when size and time agree).
struct FileIdentity {
    std::uint64_t size = 0;
    long long mtimeNs = 0;
    std::uint64_t inode = 0;
    std::uint64_t device = 0;
    bool operator==(const FileIdentity&) const = default;
};

std::optional<FileIdentity> IdentityOf(const std::filesystem::path& file) {
#ifdef _WIN32
    std::error_code ec;
    const auto size = std::filesystem::file_size(file, ec);
    if (ec) {
        return std::nullopt;
    }
    const auto time = std::filesystem::last_write_time(file, ec);
    if (ec) {
        return std::nullopt;
    }
    return FileIdentity{size, static_cast<long long>(time.time_since_epoch().count()), 0, 0};
#else
    struct stat info {};
    if (::stat(file.c_str(), &info) != 0) {
        return std::nullopt;
    }
    const long long ns = info.st_mtim.tv_sec * 1000000000LL + info.st_mtim.tv_nsec;
    return FileIdentity{static_cast<std::uint64_t>(info.st_size), ns,
                        static_cast<std::uint64_t>(info.st_ino),
                        static_cast<std::uint64_t>(info.st_dev)};
#endif
}

struct CachedFile {
    FileIdentity identity;
    ParsedIni parsed;
};

std::mutex cacheMutex;
std::map<std::string, CachedFile> cache;

} // namespace

std::optional<std::string> LookupInContent(std::string_view content, std::string_view section,
                                           std::string_view key) {
    const ParsedIni parsed = Parse(content);
    const auto inSection = parsed.find(ToLowerCp1252(section));
    if (inSection == parsed.end()) {
        return std::nullopt;
    }
    const auto value = inSection->second.find(ToLowerCp1252(key));
    if (value == inSection->second.end()) {
        return std::nullopt;
    }
    return value->second;
}

std::string WriteInContent(std::string_view content, std::string_view section, std::string_view key,
                           std::string_view value) {
    const bool crlf = content.find("\r\n") != std::string_view::npos ||
                      content.find('\n') == std::string_view::npos;
    const std::string_view eol = crlf ? "\r\n" : "\n";
    // A value is one line: a line break in it (a path, a typed search text)
    // would otherwise add keys or sections of its own.
    std::string oneLine(value);
    std::replace_if(
        oneLine.begin(), oneLine.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    const std::string newLine = std::string(key) + "=" + oneLine;

    // Every line we do not replace goes out byte for byte, its own line end
    // included: a file of mixed line ends, or a value ending in CR, must read
    // the same after the write. Only a last line without a line feed gets
    // one, chosen so it still reads as before.
    std::vector<std::string> lines;
    std::vector<std::string> ends;
    const std::vector<std::string_view> split = SplitLines(content);
    for (std::size_t i = 0; i < split.size(); ++i) {
        const std::size_t textEnd =
            static_cast<std::size_t>(split[i].data() - content.data()) + split[i].size();
        const std::size_t next =
            i + 1 < split.size() ? static_cast<std::size_t>(split[i + 1].data() - content.data())
                                 : content.size();
        const std::string_view end = content.substr(textEnd, next - textEnd);
        lines.emplace_back(split[i]);
        ends.emplace_back(end.ends_with('\n') ? std::string(end)
                          : end == "\r"       ? std::string("\r\n")
                                              : std::string(eol));
    }

    std::optional<std::size_t> header;
    std::optional<std::size_t> lastInSection;
    bool inSection = false;
    bool replaced = false;
    for (std::size_t i = 0; i < lines.size() && !replaced; ++i) {
        if (const auto name = SectionOf(lines[i])) {
            if (inSection) {
                break; // the first section of that name is the one that counts
            }
            inSection = EqualsIgnoreCase(*name, section);
            if (inSection) {
                header = i;
                lastInSection = i;
            }
            continue;
        }
        if (!inSection) {
            continue;
        }
        if (!TrimBlanks(lines[i]).empty()) {
            lastInSection = i;
        }
        if (const auto keyLine = KeyOf(lines[i]); keyLine && EqualsIgnoreCase(keyLine->key, key)) {
            lines[i] = newLine;
            replaced = true;
        }
    }
    if (!replaced) {
        if (header) {
            const auto at = static_cast<std::ptrdiff_t>(*lastInSection) + 1;
            lines.insert(lines.begin() + at, newLine);
            ends.insert(ends.begin() + at, std::string(eol));
        } else {
            lines.push_back("[" + std::string(section) + "]");
            lines.push_back(newLine);
            ends.insert(ends.end(), 2, std::string(eol));
        }
    }

    std::string out;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        out += lines[i];
        out += ends[i];
    }
    return out;
}

std::string ReadProfileString(const std::filesystem::path& file, std::string_view section,
                              std::string_view key) {
    const auto identity = IdentityOf(file);
    if (!identity) {
        return std::string(SettingsError);
    }
    std::lock_guard lock(cacheMutex);
    CachedFile& cached = cache[file.string()];
    if (!(cached.identity == *identity)) {
        FsError error;
        const auto content = ReadSmallFile(file, error);
        if (!content) {
            cache.erase(file.string());
            return std::string(SettingsError);
        }
        cached.parsed = Parse(*content);
        cached.identity = *identity;
    }
    const auto inSection = cached.parsed.find(ToLowerCp1252(section));
    if (inSection == cached.parsed.end()) {
        return std::string(SettingsError);
    }
    const auto value = inSection->second.find(ToLowerCp1252(key));
    return value == inSection->second.end() ? std::string(SettingsError) : value->second;
}

bool WriteProfileString(const std::filesystem::path& file, std::string_view section,
                        std::string_view key, std::string_view value) {
    FsError error;
    std::string content;
    if (FileExists(file)) {
        const auto existing = ReadSmallFile(file, error);
        if (!existing) {
            return false;
        }
        content = *existing;
    }
    const FsError written = WriteFileAtomically(file, WriteInContent(content, section, key, value));
    std::lock_guard lock(cacheMutex);
    cache.erase(file.string());
    return written.empty();
}

} // namespace korvel
