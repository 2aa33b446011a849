#include "archive/Format.h"

#include "archive/Names.h"

#include <algorithm>
#include <cstring>
#include <system_error>

namespace korvel {
namespace {

std::uint32_t ReadLe32(const unsigned char* p) {
    return std::uint32_t{p[0]} | (std::uint32_t{p[1]} << 8) | (std::uint32_t{p[2]} << 16) |
           (std::uint32_t{p[3]} << 24);
}

std::uint16_t ReadLe16(const unsigned char* p) {
    return static_cast<std::uint16_t>(p[0] | (p[1] << 8));
}

void AppendLe16(std::string& out, std::uint16_t value) {
    out.push_back(static_cast<char>(value & 0xFF));
    out.push_back(static_cast<char>(value >> 8));
}

void AppendNameField(std::string& out, const std::string& name) {
    const std::size_t length = std::min(name.size(), NameFieldSize);
    out.append(name, 0, length);
    out.append(NameFieldSize - length, '\0');
}

void AppendLe32(std::string& out, std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) {
        out.push_back(static_cast<char>((value >> shift) & 0xFF));
    }
}

// Used by the case-sensitive directory rule only.
[[maybe_unused]] char MatchCase(char model, char lowerLetter) {
    return (model >= 'A' && model <= 'Z') ? static_cast<char>(lowerLetter - 'a' + 'A')
                                          : lowerLetter;
}

std::string ReplaceAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

} // namespace

std::uint64_t SectorsForFile(std::uint64_t byteCount) {
    return byteCount / SectorSize + 1;
}

std::string OffsetText(std::uint32_t startSector) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::uint64_t value = SectorToOffset(startSector);
    if (value == 0) {
        return "0";
    }
    std::string text;
    while (value != 0) {
        text.push_back(digits[value & 0xF]);
        value >>= 4;
    }
    std::reverse(text.begin(), text.end());
    return text;
}

std::string SizeText(std::uint32_t sizeSectors) {
    return std::to_string(std::uint64_t{sizeSectors} * 2) + "kb";
}

std::uint64_t RecordCountForLength(std::uint64_t byteLength) {
    const std::uint64_t whole = byteLength / RecordSize;
    const std::uint64_t rest = byteLength % RecordSize;
    if (rest > RecordSize / 2 || (rest == RecordSize / 2 && whole % 2 == 1)) {
        return whole + 1;
    }
    return whole;
}

std::string NameFromField(const char* field) {
    const void* zero = std::memchr(field, 0, NameFieldSize);
    const std::size_t length =
        zero ? static_cast<std::size_t>(static_cast<const char*>(zero) - field) : NameFieldSize;
    return std::string(field, length);
}

std::vector<DirRecord> DecodeDirectory(std::string_view bytes) {
    const std::uint64_t count = RecordCountForLength(bytes.size());
    std::vector<DirRecord> records;
    records.reserve(count);
    for (std::uint64_t i = 0; i < count; ++i) {
        unsigned char raw[RecordSize] = {};
        const std::size_t at = i * RecordSize;
        const std::size_t available =
            std::min(RecordSize, bytes.size() - std::min(at, bytes.size()));
        std::memcpy(raw, bytes.data() + at, available);
        DirRecord record;
        record.startSector = ReadLe32(raw);
        record.sizeSectors = ReadLe32(raw + 4);
        record.name = NameFromField(reinterpret_cast<const char*>(raw + 8));
        records.push_back(std::move(record));
    }
    return records;
}

std::string EncodeDirectory(const std::vector<DirRecord>& records) {
    std::string out;
    out.reserve(records.size() * RecordSize);
    for (const DirRecord& record : records) {
        AppendLe32(out, record.startSector);
        AppendLe32(out, record.sizeSectors);
        AppendNameField(out, record.name);
    }
    return out;
}

ArchiveKind ArchiveKindOf(std::string_view firstBytes) {
    return firstBytes.substr(0, OneFileMagic.size()) == OneFileMagic ? ArchiveKind::OneFile
                                                                     : ArchiveKind::TwoFile;
}

std::optional<std::uint32_t> OneFileRecordCount(std::string_view header) {
    if (header.size() < OneFileHeaderSize || ArchiveKindOf(header) != ArchiveKind::OneFile) {
        return std::nullopt;
    }
    return ReadLe32(reinterpret_cast<const unsigned char*>(header.data()) + 4);
}

std::vector<DirRecord> DecodeOneFileRecords(std::string_view recordBytes) {
    std::vector<DirRecord> records;
    records.reserve(recordBytes.size() / RecordSize);
    for (std::size_t at = 0; at + RecordSize <= recordBytes.size(); at += RecordSize) {
        const auto* raw = reinterpret_cast<const unsigned char*>(recordBytes.data() + at);
        DirRecord record;
        record.startSector = ReadLe32(raw);
        const std::uint16_t streamed = ReadLe16(raw + 4);
        record.sizeSectors = streamed != 0 ? streamed : ReadLe16(raw + 6);
        record.name = NameFromField(reinterpret_cast<const char*>(raw + 8));
        records.push_back(std::move(record));
    }
    return records;
}

std::string EncodeOneFileRecordArea(const std::vector<DirRecord>& records) {
    std::string out(OneFileMagic);
    out.reserve(OneFileRecordAreaBytes(records.size()));
    AppendLe32(out, static_cast<std::uint32_t>(records.size()));
    for (const DirRecord& record : records) {
        AppendLe32(out, record.startSector);
        AppendLe16(out, static_cast<std::uint16_t>(record.sizeSectors));
        AppendLe16(out, 0);
        AppendNameField(out, record.name);
    }
    return out;
}

bool HasImgExtension(std::string_view name) {
    return name.size() >= 4 && ToLowerCp1252(name.substr(name.size() - 4)) == ".img";
}

std::filesystem::path DirectoryPathFor(const std::filesystem::path& dataPath) {
#ifdef _WIN32
    // Case-insensitive file system: the classic rule names the file.
    return std::filesystem::path(ReplaceAll(ToLowerCp1252(dataPath.string()), ".img", ".dir"));
#else
    const std::string name = dataPath.filename().string();
    const std::filesystem::path folder = dataPath.parent_path();
    std::string swapped = name;
    if (HasImgExtension(name)) {
        const std::size_t at = name.size() - 4;
        swapped[at + 1] = MatchCase(name[at + 1], 'd');
        swapped[at + 2] = MatchCase(name[at + 2], 'i');
        swapped[at + 3] = MatchCase(name[at + 3], 'r');
    }
    const std::string classic = ReplaceAll(ToLowerCp1252(name), ".img", ".dir");
    std::error_code ec;
    for (const std::string& candidate : {swapped, classic}) {
        // A name without ".img" swaps to itself; the data file is never its
        // own directory file.
        if (candidate != name && std::filesystem::is_regular_file(folder / candidate, ec)) {
            return folder / candidate;
        }
    }
    const std::filesystem::path searchIn = folder.empty() ? "." : folder;
    for (const auto& item : std::filesystem::directory_iterator(searchIn, ec)) {
        const std::string found = item.path().filename().string();
        if (found != name &&
            (EqualsIgnoreCase(found, swapped) || EqualsIgnoreCase(found, classic)) &&
            item.is_regular_file(ec)) {
            return folder / found;
        }
    }
    return folder / swapped;
#endif
}

} // namespace korvel
