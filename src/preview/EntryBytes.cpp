#include "preview/EntryBytes.h"

#include "search/RwChunk.h"

#include <algorithm>

namespace korvel {

EntryRange PresentRange(const Entry& entry, std::uint64_t dataLength) {
    const std::uint64_t offset = entry.byteOffset();
    if (offset >= dataLength) {
        return {offset, 0};
    }
    return {offset, std::min(entry.byteCount(), dataLength - offset)};
}

std::string ReadBounded(ByteSource& source, std::uint64_t start, std::uint64_t length, bool& cut,
                        std::uint64_t cap) {
    const std::uint64_t want = std::min(length, cap);
    std::string bytes(static_cast<std::size_t>(want), '\0');
    bytes.resize(source.readAt(start, bytes.data(), bytes.size()));
    cut = bytes.size() < length;
    return bytes;
}

bool ReadRwChunk(std::string_view bytes, std::uint64_t at, std::uint64_t end, RwChunk& chunk) {
    end = std::min<std::uint64_t>(end, bytes.size());
    if (at > end || end - at < RwChunkHeaderSize) {
        return false;
    }
    chunk = {Le32(bytes.data() + at), Le32(bytes.data() + at + 4), Le32(bytes.data() + at + 8), at};
    return chunk.size <= end - at - RwChunkHeaderSize;
}

std::uint32_t RwVersion(std::uint32_t libraryId) {
    if (libraryId & 0xFFFF0000u) {
        return (((libraryId >> 14) & 0x3FF00u) + 0x30000u) | ((libraryId >> 16) & 0x3Fu);
    }
    return libraryId << 8;
}

} // namespace korvel
