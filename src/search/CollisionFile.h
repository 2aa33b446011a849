// Names of the models in a collision file (.col): a run of models, each a
// 4-byte tag, a 32-bit size of the rest, a 24-byte name field and a body.
#pragma once

#include "platform/Reason.h"
#include "search/ByteSource.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvel {

// Bytes fetched per model: tag, size and the first 20 bytes of the name
// field (COL2 and COL3 keep a model id in the field's last bytes).
inline constexpr std::size_t ModelHeadBytes = 28;

// A model found by the walk below; `offset` is from the start of the file.
struct CollisionModelPlace {
    std::uint64_t offset = 0;
    std::uint32_t tag = 0;  // "COLL", "COL2", "COL3" read as a little-endian number
    std::uint32_t size = 0; // bytes after the size field
    std::string nameField;  // the raw 24-byte name field (name and, in later files, id)
};

struct CollisionModelWalk {
    std::vector<CollisionModelPlace> models;
    // Empty when the walk reached the end or the zero padding after the last
    // model; else why it stopped, and the offset where it did.
    Reason stopped;
    std::uint64_t stoppedAt = 0;
};

// Walks the models of the file that occupies `length` bytes from `start`.
// The next model starts at start + 8 + size, which walks COLL, COL2 and COL3
// alike. Reading stops at a zero tag (the zero padding after the last model),
// at a size too small to hold the name field, or at a size that runs past the
// end.
CollisionModelWalk WalkCollisionModels(ByteSource& source, std::uint64_t start,
                                       std::uint64_t length);

// The names of WalkCollisionModels's models (the first 20 bytes of the field,
// up to a zero). A model whose name is empty is passed over but not listed.
std::vector<std::string> ReadCollisionNames(ByteSource& source, std::uint64_t start,
                                            std::uint64_t length);

} // namespace korvel
