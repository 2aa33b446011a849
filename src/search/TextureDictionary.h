// Names of the textures in a texture dictionary (.txd). Only the names are
// read: a few header bytes and the two 32-byte name fields per texture.
#pragma once

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

// Reads the dictionary that occupies `length` bytes from `start` in `source`.
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
std::vector<TextureName> ReadTextureNames(ByteSource& source, std::uint64_t start,
                                          std::uint64_t length);

} // namespace korvel
