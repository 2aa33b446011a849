// The frame every RenderWare binary stream is built of (texture
// dictionaries, models): a chunk is its type, its size and the library
// version, 4 bytes each, then `size` bytes of body. The chunk types that
// more than one reader meets live here, once.
#pragma once

#include <cstdint>

namespace korvel {

inline constexpr std::uint64_t RwChunkHeaderSize = 12;

inline constexpr std::uint32_t RwStructId = 0x01;
inline constexpr std::uint32_t RwStringId = 0x02;
inline constexpr std::uint32_t RwExtensionId = 0x03;
inline constexpr std::uint32_t RwTextureNativeId = 0x15;

} // namespace korvel
