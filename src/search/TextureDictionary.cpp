#include "search/TextureDictionary.h"

namespace korvel {
namespace {

constexpr std::uint32_t StructId = 0x01;
constexpr std::uint32_t TextureNativeId = 0x15;
constexpr std::uint64_t FirstTexture = 28;
constexpr std::uint64_t ChunkHeader = 12;
// Platform and filter flags (8), then name and mask (64): the least a
// texture's struct must hold for the names to be inside it.
constexpr std::uint32_t MinStructSize = 72;

} // namespace

std::vector<TextureName> ReadTextureNames(ByteSource& source, std::uint64_t start,
                                          std::uint64_t length) {
    std::vector<TextureName> names;
    char head[TextureHeadBytes];
    if (length < FirstTexture || source.readAt(start, head, FirstTexture) != FirstTexture) {
        return names;
    }
    const std::uint32_t count = Le16(head + 24);
    const std::uint32_t wanted = count == 0 ? 1 : count;

    std::uint64_t at = FirstTexture;
    for (std::uint32_t i = 0; i < wanted; ++i) {
        // `at` never exceeds `length`, so this cannot wrap.
        if (length - at < TextureHeadBytes ||
            source.readAt(start + at, head, TextureHeadBytes) != TextureHeadBytes) {
            break;
        }
        const std::uint32_t nativeSize = Le32(head + 4);
        const std::uint32_t structSize = Le32(head + 16);
        if (Le32(head) != TextureNativeId || Le32(head + 12) != StructId ||
            structSize < MinStructSize || std::uint64_t{structSize} + ChunkHeader > nativeSize) {
            break;
        }
        names.push_back(
            {std::string(FieldText(head + 32, 32)), std::string(FieldText(head + 64, 32))});
        const std::uint64_t next = at + ChunkHeader + nativeSize;
        if (next > length) {
            break;
        }
        at = next;
    }
    return names;
}

} // namespace korvel
