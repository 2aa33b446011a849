#include "preview/Textures.h"

#include "search/RwChunk.h"
#include "search/TextureDictionary.h"

#include <algorithm>

namespace korvel {
namespace {

// Platform, filter flags, name and mask (72), raster format, alpha or D3D
// format, width and height, depth, level count, raster type and the
// compression or flags byte.
constexpr std::uint32_t HeaderBytes = 88;

constexpr std::uint32_t RasterPal8 = 0x2000;
constexpr std::uint32_t RasterPal4 = 0x4000;

constexpr std::uint32_t FourCc(char a, char b, char c, char d) {
    return std::uint32_t(std::uint8_t(a)) | (std::uint32_t(std::uint8_t(b)) << 8) |
           (std::uint32_t(std::uint8_t(c)) << 16) | (std::uint32_t(std::uint8_t(d)) << 24);
}

// The D3D9 format codes the PC dictionaries use.
PixelFormat FromD3dFormat(std::uint32_t code) {
    switch (code) {
    case FourCc('D', 'X', 'T', '1'):
        return PixelFormat::Dxt1;
    case FourCc('D', 'X', 'T', '2'):
    case FourCc('D', 'X', 'T', '3'):
        return PixelFormat::Dxt3;
    case FourCc('D', 'X', 'T', '4'):
    case FourCc('D', 'X', 'T', '5'):
        return PixelFormat::Dxt5;
    case 21:
        return PixelFormat::Bgra8888; // A8R8G8B8
    case 22:
        return PixelFormat::Bgr888; // X8R8G8B8
    case 20:
        return PixelFormat::Bgr888; // R8G8B8
    case 23:
        return PixelFormat::Rgb565;
    case 24:
        return PixelFormat::Xrgb555;
    case 25:
        return PixelFormat::Argb1555;
    case 26:
        return PixelFormat::Argb4444;
    default:
        return PixelFormat::Unknown;
    }
}

// The raster format's pixel layout (bits 8-11), for the uncompressed formats.
PixelFormat FromRasterFormat(std::uint32_t raster) {
    if (raster & RasterPal8) {
        return PixelFormat::Pal8;
    }
    if (raster & RasterPal4) {
        return PixelFormat::Pal4;
    }
    switch (raster & 0xF00) {
    case 0x100:
        return PixelFormat::Argb1555;
    case 0x200:
        return PixelFormat::Rgb565;
    case 0x300:
        return PixelFormat::Argb4444;
    case 0x500:
        return PixelFormat::Bgra8888;
    case 0x600:
        return PixelFormat::Bgr888;
    case 0xA00:
        return PixelFormat::Xrgb555;
    default:
        return PixelFormat::Unknown;
    }
}

PixelFormat FormatOf(std::uint32_t platform, std::uint32_t raster, std::uint32_t alphaOrCode,
                     std::uint8_t compression) {
    if (platform == 9) {
        // Paletted D3D9 natives carry D3DFMT_P8 (41); the raster says which.
        if (raster & (RasterPal8 | RasterPal4)) {
            return FromRasterFormat(raster);
        }
        const PixelFormat byCode = FromD3dFormat(alphaOrCode);
        return byCode != PixelFormat::Unknown ? byCode : FromRasterFormat(raster);
    }
    switch (compression) {
    case 1:
        return PixelFormat::Dxt1;
    case 2:
    case 3:
        return PixelFormat::Dxt3;
    case 4:
    case 5:
        return PixelFormat::Dxt5;
    default:
        return FromRasterFormat(raster);
    }
}

std::uint32_t Half(std::uint32_t side) {
    return std::max<std::uint32_t>(1, side / 2);
}

// Reads one native's header, palette and level table; `at` is where the
// native chunk starts, `end` where it ends (both from the entry start).
void ReadNative(ByteSource& source, std::uint64_t start, std::uint64_t at, std::uint64_t end,
                TextureInfo& t) {
    char head[HeaderBytes];
    const std::uint64_t structAt = at + 2 * RwChunkHeaderSize;
    if (end - structAt < HeaderBytes ||
        source.readAt(start + structAt, head, HeaderBytes) != HeaderBytes) {
        t.problem = {"the texture's header is cut short", "whyTexHeaderCut", {}};
        return;
    }
    t.platform = Le32(head);
    t.rasterFormat = Le32(head + 72);
    const std::uint32_t alphaOrCode = Le32(head + 76);
    t.width = Le16(head + 80);
    t.height = Le16(head + 82);
    t.depth = static_cast<std::uint8_t>(head[84]);
    t.mipCount = static_cast<std::uint8_t>(head[85]);
    const auto compression = static_cast<std::uint8_t>(head[87]);
    if (t.platform != 8 && t.platform != 9) {
        const std::string platform = std::to_string(t.platform);
        t.problem = {"platform " + platform + " is not a PC texture", "whyTexPlatform", {platform}};
        return;
    }
    t.format = FormatOf(t.platform, t.rasterFormat, alphaOrCode, compression);
    if (t.format == PixelFormat::Unknown) {
        t.problem = UnknownFormatReason();
        return;
    }
    std::uint64_t pos = structAt + HeaderBytes;
    if (t.format == PixelFormat::Pal8 || t.format == PixelFormat::Pal4) {
        // A 4-bit palette is stored with 32 entries by some writers and 16 by
        // others: take the one after which a plausible first level size follows.
        std::vector<std::uint32_t> entries = {256};
        if (t.format == PixelFormat::Pal4) {
            entries = {32, 16};
        }
        for (const std::uint32_t n : entries) {
            std::string palette(n * 4 + 4, '\0');
            if (end - pos < palette.size() ||
                source.readAt(start + pos, palette.data(), palette.size()) != palette.size()) {
                continue;
            }
            const std::uint64_t first = Le32(palette.data() + n * 4);
            const std::uint64_t pixels = std::uint64_t{t.width} * t.height;
            if (entries.size() == 1 || first == pixels || first == (pixels + 1) / 2) {
                palette.resize(n * 4);
                t.palette = std::move(palette);
                pos += n * 4;
                break;
            }
        }
        if (t.palette.empty()) {
            t.problem = {"the palette is cut short", "whyTexPaletteCut", {}};
            return;
        }
    }
    std::uint32_t w = t.width;
    std::uint32_t h = t.height;
    const std::uint32_t levels = std::min(t.mipCount, MaxMipLevels);
    for (std::uint32_t i = 0; i < levels; ++i) {
        char sizeField[4];
        if (end - pos < 4 || source.readAt(start + pos, sizeField, 4) != 4) {
            const std::string n = std::to_string(i);
            t.problem = {"level " + n + " is missing", "whyTexLevelMissing", {n}};
            return;
        }
        const std::uint32_t size = Le32(sizeField);
        pos += 4;
        if (size > end - pos) {
            const std::string n = std::to_string(i);
            t.problem = {
                "level " + n + " runs past the end of the texture", "whyTexLevelPastEnd", {n}};
            return;
        }
        t.levels.push_back({w, h, pos, size});
        pos += size;
        w = Half(w);
        h = Half(h);
    }
    if (t.mipCount > MaxMipLevels) {
        const std::string n = std::to_string(MaxMipLevels);
        t.problem = {"only the first " + n + " levels are read", "whyTexLevelsCapped", {n}};
    }
}

} // namespace

TextureDictionaryInfo ReadTextureDictionary(ByteSource& source, std::uint64_t start,
                                            std::uint64_t length) {
    TextureDictionaryInfo info;
    const TextureNativeWalk walk = WalkTextureNatives(source, start, length);
    for (const TextureNativePlace& native : walk.natives) {
        TextureInfo& t = info.textures.emplace_back();
        t.name = native.names.name;
        t.mask = native.names.mask;
        const std::uint64_t end =
            std::min<std::uint64_t>(length, native.offset + RwChunkHeaderSize + native.nativeSize);
        const std::uint64_t structEnd = std::min<std::uint64_t>(
            end, native.offset + 2 * RwChunkHeaderSize + std::uint64_t{native.structSize});
        ReadNative(source, start, native.offset, structEnd, t);
    }
    info.stopped = walk.stopped;
    info.stoppedAt = walk.stoppedAt;
    return info;
}

DecodedImage DecodeTextureLevel(ByteSource& source, std::uint64_t start, const TextureInfo& texture,
                                std::size_t level) {
    if (level >= texture.levels.size()) {
        const std::string n = std::to_string(level);
        return {{}, {"the texture has no level " + n, "whyTexNoLevel", {n}}};
    }
    const TextureLevel& l = texture.levels[level];
    PixelFormat format = texture.format;
    unsigned bits = texture.depth;
    const std::uint64_t pixels = std::uint64_t{l.width} * l.height;
    // Some writers keep 4-bit palette indices one per byte.
    if (format == PixelFormat::Pal4 && l.size >= pixels) {
        format = PixelFormat::Pal8;
    }
    // A 888 level holds 3 or 4 bytes per pixel whatever the depth claims.
    if (format == PixelFormat::Bgr888) {
        bits = l.size >= pixels * 4 ? 32 : 24;
    }
    if (l.width > MaxTextureSide || l.height > MaxTextureSide) {
        return {{}, SizeReason(l.width, l.height)};
    }
    const std::uint64_t need =
        std::min<std::uint64_t>(l.size, LevelBytes(format, l.width, l.height, bits));
    std::string bytes(static_cast<std::size_t>(need), '\0');
    bytes.resize(source.readAt(start + l.offset, bytes.data(), bytes.size()));
    return DecodePixels(format, l.width, l.height, bits, bytes, texture.palette);
}

} // namespace korvel
