// Names of the models in a collision file (.col): a run of models, each a
// 4-byte tag, a 32-bit size of the rest, a 24-byte name field and a body.
#pragma once

#include "search/ByteSource.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvel {

// Bytes fetched per model: tag, size and the first 20 bytes of the name
// field (COL2 and COL3 keep a model id in the field's last bytes).
inline constexpr std::size_t ModelHeadBytes = 28;

// Reads the models of the file that occupies `length` bytes from `start`.
// The next model starts at start + 8 + size, which walks COLL, COL2 and COL3
// alike. Reading stops at a zero tag (the zero padding after the last model),
// at a size too small to hold the name field, or at a size that runs past the
// end. A model whose name is empty is passed over but not listed.
std::vector<std::string> ReadCollisionNames(ByteSource& source, std::uint64_t start,
                                            std::uint64_t length);

} // namespace korvel
