// What a texture dictionary holds, for the preview and the exports: every
// texture's names, size, pixel format and mip levels, and each level decoded
// to RGBA. The dictionary is walked by search/TextureDictionary (the one
// walker find-in-files uses too); this reads each native's struct.
//
// PC natives of RenderWare 3.1 to 3.6: platform 8 (Direct3D 8: a "has alpha"
// word and a DXT number in the compression byte) and platform 9 (Direct3D 9:
// a D3D format code, a FourCC for DXT, and a flags byte). Sizes in the file
// are never trusted: every level is checked against the bytes that are there.
#pragma once

#include "preview/Image.h"
#include "preview/PixelFormats.h"
#include "search/ByteSource.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvel {

struct TextureLevel {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint64_t offset = 0; // of the level's bytes, from the start of the entry
    std::uint32_t size = 0;   // bytes there (checked to lie inside the native)
};

struct TextureInfo {
    std::string name; // raw bytes of the name field up to its first zero
    std::string mask;
    std::uint32_t platform = 0; // 8 or 9
    std::uint32_t rasterFormat = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    unsigned depth = 0; // bits per pixel the native states
    PixelFormat format = PixelFormat::Unknown;
    std::uint32_t mipCount = 0;       // levels the native states
    std::string palette;              // RGBA entries of a PAL8/PAL4 texture
    std::vector<TextureLevel> levels; // the levels that are there
    // Empty when every level the native states is there; else why not all are.
    Reason problem;
};

struct TextureDictionaryInfo {
    std::vector<TextureInfo> textures;
    // Empty when the whole dictionary was read; else where reading stopped
    // (from the start of the entry) and why.
    Reason stopped;
    std::uint64_t stoppedAt = 0;
};

// The most bytes of one native read for its levels' sizes.
inline constexpr std::uint32_t MaxMipLevels = 32;

// Reads the dictionary occupying `length` bytes from `start` of `source`.
// Only headers and palettes are read; pixels stay in the source.
TextureDictionaryInfo ReadTextureDictionary(ByteSource& source, std::uint64_t start,
                                            std::uint64_t length);

// Decodes mip level `level` of `texture` (read from the same source and
// start). Reads only that level's bytes.
DecodedImage DecodeTextureLevel(ByteSource& source, std::uint64_t start, const TextureInfo& texture,
                                std::size_t level);

} // namespace korvel
