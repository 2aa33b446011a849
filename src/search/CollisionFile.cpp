#include "search/CollisionFile.h"

#include <algorithm>

namespace korvel {
namespace {

constexpr std::uint64_t ModelHeader = 8;
constexpr std::uint32_t NameFieldBytes = 24;
constexpr std::size_t NameBytes = 20;

} // namespace

std::vector<std::string> ReadCollisionNames(ByteSource& source, std::uint64_t start,
                                            std::uint64_t length) {
    std::vector<std::string> names;
    char head[ModelHeadBytes];
    for (std::uint64_t at = 0; length - at >= ModelHeader;) {
        const auto want =
            static_cast<std::size_t>(std::min<std::uint64_t>(ModelHeadBytes, length - at));
        const std::size_t got = source.readAt(start + at, head, want);
        if (got < ModelHeader || Le32(head) == 0) {
            break;
        }
        const std::uint32_t size = Le32(head + 4);
        if (size < NameFieldBytes || size > length - at - ModelHeader || got < ModelHeadBytes) {
            break;
        }
        if (head[ModelHeader] != '\0') {
            names.emplace_back(FieldText(head + ModelHeader, NameBytes));
        }
        at += ModelHeader + size;
    }
    return names;
}

} // namespace korvel
