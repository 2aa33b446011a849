#include "search/CollisionFile.h"

#include <algorithm>

namespace korvel {
namespace {

constexpr std::uint64_t ModelHeader = 8;
constexpr std::uint32_t NameFieldBytes = 24;
constexpr std::size_t NameBytes = 20;

} // namespace

CollisionModelWalk WalkCollisionModels(ByteSource& source, std::uint64_t start,
                                       std::uint64_t length) {
    CollisionModelWalk walk;
    char head[ModelHeader + NameFieldBytes];
    for (std::uint64_t at = 0; length - at >= ModelHeader;) {
        const auto want =
            static_cast<std::size_t>(std::min<std::uint64_t>(ModelHeadBytes, length - at));
        const std::size_t got = source.readAt(start + at, head, want);
        if (got < ModelHeader) {
            walk.stopped = {"the file cannot be read past this point", "whyColUnreadable", {}};
            walk.stoppedAt = at;
            break;
        }
        if (Le32(head) == 0) {
            break;
        }
        const std::uint32_t size = Le32(head + 4);
        if (size < NameFieldBytes || size > length - at - ModelHeader || got < ModelHeadBytes) {
            const std::string n = std::to_string(walk.models.size() + 1);
            walk.stopped =
                size < NameFieldBytes
                    ? Reason{"model " + n + " is too small to hold a name", "whyColNoName", {n}}
                    : Reason{"model " + n + " runs past the end of the file", "whyColPastEnd", {n}};
            walk.stoppedAt = at;
            break;
        }
        // The field's last 4 bytes come with the body; the name needs the first 20.
        std::string field(head + ModelHeader, ModelHeadBytes - ModelHeader);
        char rest[4];
        if (source.readAt(start + at + ModelHeadBytes, rest, 4) == 4) {
            field.append(rest, 4);
        }
        walk.models.push_back({at, Le32(head), size, std::move(field)});
        at += ModelHeader + size;
    }
    return walk;
}

std::vector<std::string> ReadCollisionNames(ByteSource& source, std::uint64_t start,
                                            std::uint64_t length) {
    std::vector<std::string> names;
    for (const CollisionModelPlace& model : WalkCollisionModels(source, start, length).models) {
        if (model.nameField[0] != '\0') {
            names.emplace_back(FieldText(model.nameField.data(), NameBytes));
        }
    }
    return names;
}

} // namespace korvel
