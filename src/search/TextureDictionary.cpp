#include "search/TextureDictionary.h"

#include "search/RwChunk.h"

namespace korvel {
namespace {

constexpr std::uint64_t FirstTexture = 28;
// Platform and filter flags (8), then name and mask (64): the least a
// texture's struct must hold for the names to be inside it.
constexpr std::uint32_t MinStructSize = 72;

} // namespace

TextureNativeWalk WalkTextureNatives(ByteSource& source, std::uint64_t start,
                                     std::uint64_t length) {
    TextureNativeWalk walk;
    const auto stop = [&walk](std::uint64_t at, Reason why) {
        walk.stoppedAt = at;
        walk.stopped = std::move(why);
        return walk;
    };
    char head[TextureHeadBytes];
    if (length < FirstTexture || source.readAt(start, head, FirstTexture) != FirstTexture) {
        return stop(0,
                    {"the entry is too short for a texture dictionary header", "whyTxdShort", {}});
    }
    walk.count = Le16(head + 24);
    const std::uint32_t wanted = walk.count == 0 ? 1 : walk.count;

    std::uint64_t at = FirstTexture;
    for (std::uint32_t i = 0; i < wanted; ++i) {
        // `at` never exceeds `length`, so this cannot wrap.
        if (length - at < TextureHeadBytes ||
            source.readAt(start + at, head, TextureHeadBytes) != TextureHeadBytes) {
            const std::string n = std::to_string(i + 1);
            return stop(at, {"the entry ends before texture " + n, "whyTxdEnds", {n}});
        }
        const std::uint32_t nativeSize = Le32(head + 4);
        const std::uint32_t structSize = Le32(head + 16);
        if (Le32(head) != RwTextureNativeId || Le32(head + 12) != RwStructId ||
            structSize < MinStructSize ||
            std::uint64_t{structSize} + RwChunkHeaderSize > nativeSize) {
            const std::string n = std::to_string(i + 1);
            return stop(at, {"texture " + n + " is not a texture native", "whyTxdNotNative", {n}});
        }
        walk.natives.push_back(
            {at,
             nativeSize,
             structSize,
             Le32(head + 20),
             {std::string(FieldText(head + 32, 32)), std::string(FieldText(head + 64, 32))}});
        const std::uint64_t next = at + RwChunkHeaderSize + nativeSize;
        if (next > length) {
            const std::string n = std::to_string(i + 1);
            return stop(at,
                        {"texture " + n + " runs past the end of the entry", "whyTxdPastEnd", {n}});
        }
        at = next;
    }
    return walk;
}

std::vector<TextureName> ReadTextureNames(ByteSource& source, std::uint64_t start,
                                          std::uint64_t length) {
    std::vector<TextureName> names;
    for (TextureNativePlace& native : WalkTextureNatives(source, start, length).natives) {
        names.push_back(std::move(native.names));
    }
    return names;
}

} // namespace korvel
