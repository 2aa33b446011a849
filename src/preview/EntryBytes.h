// The bytes of an entry as the preview reads them: streamed from the data
// file through a ByteSource, never more than the entry's sectors the data
// file holds, and never more than a fixed cap whatever the directory claims.
#pragma once

#include "archive/Archive.h"
#include "search/ByteSource.h"

#include <cstdint>
#include <string>

namespace korvel {

// The most bytes of one entry the model, collision and animation readers
// hold in memory; a larger entry is read up to here and said to be cut.
inline constexpr std::uint64_t MaxPreviewBytes = 64ull << 20;

// Where an entry's bytes lie in the data file and how many of them are there.
struct EntryRange {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

// The entry's range, cut to the data file's `dataLength`.
EntryRange PresentRange(const Entry& entry, std::uint64_t dataLength);

// Up to `cap` bytes of [start, start + length) from `source`; `cut` says
// whether the cap (or a short read) left bytes out.
std::string ReadBounded(ByteSource& source, std::uint64_t start, std::uint64_t length, bool& cut,
                        std::uint64_t cap = MaxPreviewBytes);

// RenderWare chunks: a 12-byte header (type, size, library id) and a body.
struct RwChunk {
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    std::uint32_t libraryId = 0;
    std::uint64_t at = 0; // of the header, from the start of the bytes
};

// The chunk header at `at` of `bytes`, if 12 bytes are there and the body
// fits inside `end`.
bool ReadRwChunk(std::string_view bytes, std::uint64_t at, std::uint64_t end, RwChunk& chunk);

// The version a library id stands for, as 0x3XYZ0 (3.6.0.3 -> 0x36003):
// newer files pack it in the high bits, the oldest store it plainly.
std::uint32_t RwVersion(std::uint32_t libraryId);

} // namespace korvel
