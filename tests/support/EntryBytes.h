// Header-only builders for entry contents the find-in-files readers parse
// (texture dictionaries, collision files) and for archives holding given
// entries, so tests can make both well-formed and damaged data.
#pragma once

#include "TestFolder.h"
#include "archive/Format.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace korvel::test {

inline std::string U32(std::uint32_t v) {
    std::string s(4, '\0');
    for (int i = 0; i < 4; ++i) {
        s[i] = static_cast<char>((v >> (8 * i)) & 0xFF);
    }
    return s;
}

inline std::string Field(const std::string& text, std::size_t width) {
    std::string s = text.substr(0, width);
    s.resize(width, '\0');
    return s;
}

inline std::string Chunk(std::uint32_t id, const std::string& body) {
    return U32(id) + U32(static_cast<std::uint32_t>(body.size())) + U32(0x1803FFFF) + body;
}

// A texture native: struct (platform, flags, name, mask, `pixels` bytes),
// then an extension chunk with the given body.
inline std::string Native(const std::string& name, const std::string& mask, std::size_t pixels = 20,
                          const std::string& extension = "") {
    const std::string body =
        U32(8) + U32(0x1102) + Field(name, 32) + Field(mask, 32) + std::string(pixels, '\x7F');
    return Chunk(0x15, Chunk(0x01, body) + Chunk(0x03, extension));
}

// A dictionary: 16-bit count and 16-bit device id, then the natives.
inline std::string Dictionary(std::uint16_t count, std::uint16_t device,
                              const std::vector<std::string>& natives) {
    std::string body =
        Chunk(0x01, std::string{static_cast<char>(count & 0xFF), static_cast<char>(count >> 8),
                                static_cast<char>(device), '\0'});
    for (const std::string& n : natives) {
        body += n;
    }
    return Chunk(0x16, body + Chunk(0x03, ""));
}

// A collision model: tag, size, 24-byte name field, `body` filler bytes.
inline std::string ColModel(const std::string& tag, const std::string& name, std::uint32_t body) {
    return tag + U32(24 + body) + Field(name, 24) + std::string(body, '\x01');
}

// Writes an archive whose entries lie one after another from sector 0, each
// padded with zeros to its sectors.
inline void WriteArchiveOf(const std::filesystem::path& img,
                           const std::vector<std::pair<std::string, std::string>>& entries) {
    std::vector<DirRecord> records;
    std::string data;
    for (const auto& [name, bytes] : entries) {
        const auto start = static_cast<std::uint32_t>(data.size() / SectorSize);
        const auto sectors = static_cast<std::uint32_t>(SectorsForFile(bytes.size()));
        records.push_back({start, sectors, name});
        data += bytes;
        data.resize(SectorToOffset(start + sectors), '\0');
    }
    WriteBytes(img, data);
    std::filesystem::path dir = img;
    WriteBytes(dir.replace_extension(".dir"), EncodeDirectory(records));
}

} // namespace korvel::test
