// The textures of a texture dictionary (.txd): where each texture native
// lies and its names. Only a few header bytes and the two 32-byte name
// fields per texture are read; the preview reads the rest of a native from
// the place this walk found it.
#pragma once

#include "platform/Reason.h"
#include "search/ByteSource.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvel {

struct TextureName {
    std::string name; // raw bytes up to the field's first zero
    std::string mask;
};

// Bytes fetched per texture: the texture-native header, its struct header,
// platform and filter flags, the name and the mask name.
inline constexpr std::size_t TextureHeadBytes = 96;

// A texture native found by the walk below. `offset` is from the start of the
// entry; the native's struct chunk starts 12 bytes later.
struct TextureNativePlace {
    std::uint64_t offset = 0;
    std::uint32_t nativeSize = 0; // the native chunk's size (after its header)
    std::uint32_t structSize = 0; // the struct chunk's size (after its header)
    std::uint32_t libraryId = 0;  // the struct chunk's RenderWare library id
    TextureName names;
};

struct TextureNativeWalk {
    std::vector<TextureNativePlace> natives;
    std::uint32_t count = 0; // the dictionary's 16-bit count field
    // Empty when the walk ended at the count; else why it stopped early, and
    // the entry offset where it did.
    Reason stopped;
    std::uint64_t stoppedAt = 0;
};

// Walks the dictionary that occupies `length` bytes from `start` in `source`.
//
// The first texture sits at byte 28 with its name at 60 and mask at 92. From
// one texture to the next we step by the texture-native chunk's own size, so a
// texture carrying an extension (converted dictionaries often keep a 16-byte
// mipmap one) does not derail the rest. The count at byte 24 is 16 bits wide;
// the next 16 bits are a device id (2 in later dictionaries), which is why the
// count is never read as one 32-bit number. The first texture is read whatever
// the count says. Reading stops at the count, at the entry's end, when the
// native or struct chunk id is not where it should be (padding, damage), or
// when the struct is too small to hold the names. Nothing outside
// [start, start + length) is ever read.
TextureNativeWalk WalkTextureNatives(ByteSource& source, std::uint64_t start, std::uint64_t length);

// The names of WalkTextureNatives's textures.
std::vector<TextureName> ReadTextureNames(ByteSource& source, std::uint64_t start,
                                          std::uint64_t length);

} // namespace korvel
