#include "preview/PixelFormats.h"

#include <algorithm>

#ifdef KORVEL_HAVE_SQUISH
#include <squish.h>
#endif

namespace korvel {
namespace {

std::uint32_t Blocks(std::uint32_t side) {
    return (side + 3) / 4;
}

std::uint8_t Expand5(unsigned v) {
    return static_cast<std::uint8_t>((v << 3) | (v >> 2));
}
std::uint8_t Expand6(unsigned v) {
    return static_cast<std::uint8_t>((v << 2) | (v >> 4));
}
std::uint8_t Expand4(unsigned v) {
    return static_cast<std::uint8_t>(v * 17);
}

struct Rgba {
    std::uint8_t r, g, b, a;
};

// One pixel of the 16-bit formats, D3D's bit order (high bits first: A R G B).
Rgba Decode16(PixelFormat format, unsigned v) {
    switch (format) {
    case PixelFormat::Argb1555:
        return {Expand5((v >> 10) & 31), Expand5((v >> 5) & 31), Expand5(v & 31),
                static_cast<std::uint8_t>((v & 0x8000) ? 255 : 0)};
    case PixelFormat::Xrgb555:
        return {Expand5((v >> 10) & 31), Expand5((v >> 5) & 31), Expand5(v & 31), 255};
    case PixelFormat::Rgb565:
        return {Expand5((v >> 11) & 31), Expand6((v >> 5) & 63), Expand5(v & 31), 255};
    default: // Argb4444
        return {Expand4((v >> 8) & 15), Expand4((v >> 4) & 15), Expand4(v & 15),
                Expand4((v >> 12) & 15)};
    }
}

} // namespace

std::string_view PixelFormatName(PixelFormat format) {
    switch (format) {
    case PixelFormat::Dxt1:
        return "DXT1";
    case PixelFormat::Dxt3:
        return "DXT3";
    case PixelFormat::Dxt5:
        return "DXT5";
    case PixelFormat::Pal8:
        return "PAL8";
    case PixelFormat::Pal4:
        return "PAL4";
    case PixelFormat::Bgra8888:
        return "8888";
    case PixelFormat::Bgr888:
        return "888";
    case PixelFormat::Argb1555:
        return "1555";
    case PixelFormat::Rgb565:
        return "565";
    case PixelFormat::Argb4444:
        return "4444";
    case PixelFormat::Xrgb555:
        return "555";
    case PixelFormat::Unknown:
        break;
    }
    return "unknown";
}

std::uint64_t LevelBytes(PixelFormat format, std::uint32_t width, std::uint32_t height,
                         unsigned bitsPerPixel) {
    const std::uint64_t pixels = std::uint64_t{width} * height;
    switch (format) {
    case PixelFormat::Dxt1:
        return std::uint64_t{Blocks(width)} * Blocks(height) * 8;
    case PixelFormat::Dxt3:
    case PixelFormat::Dxt5:
        return std::uint64_t{Blocks(width)} * Blocks(height) * 16;
    case PixelFormat::Pal8:
        return pixels;
    case PixelFormat::Pal4:
        return (pixels + 1) / 2;
    case PixelFormat::Bgra8888:
        return pixels * 4;
    case PixelFormat::Bgr888:
        return pixels * (bitsPerPixel == 24 ? 3 : 4);
    case PixelFormat::Unknown:
        return 0;
    default:
        return pixels * 2;
    }
}

bool CanDecodeDxt() {
#ifdef KORVEL_HAVE_SQUISH
    return true;
#else
    return false;
#endif
}

Reason UnknownFormatReason() {
    return {"the pixel format is not one Korvel knows", "whyUnknownFormat", {}};
}

Reason SizeReason(std::uint32_t width, std::uint32_t height) {
    const std::string w = std::to_string(width);
    const std::string h = std::to_string(height);
    return {"the size " + w + "x" + h + " is not one Korvel decodes", "whySize", {w, h}};
}

DecodedImage DecodePixels(PixelFormat format, std::uint32_t width, std::uint32_t height,
                          unsigned bitsPerPixel, std::string_view pixels,
                          std::string_view palette) {
    DecodedImage out;
    if (format == PixelFormat::Unknown) {
        out.problem = UnknownFormatReason();
        return out;
    }
    if (width == 0 || height == 0 || width > MaxTextureSide || height > MaxTextureSide) {
        out.problem = SizeReason(width, height);
        return out;
    }
    const std::uint64_t need = LevelBytes(format, width, height, bitsPerPixel);
    if (pixels.size() < need) {
        const std::string needed = std::to_string(need);
        const std::string there = std::to_string(pixels.size());
        out.problem = {"the pixels need " + needed + " bytes, only " + there + " are there",
                       "whyPixelsShort",
                       {needed, there}};
        return out;
    }
    RgbaImage& image = out.image;
    image.width = width;
    image.height = height;
    const std::size_t count = std::size_t{width} * height;
    image.pixels.assign(count * 4, 0);
    auto* px = image.pixels.data();
    const auto* in = reinterpret_cast<const std::uint8_t*>(pixels.data());
    const auto* pal = reinterpret_cast<const std::uint8_t*>(palette.data());
    const std::size_t palEntries = palette.size() / 4;

    switch (format) {
    case PixelFormat::Dxt1:
    case PixelFormat::Dxt3:
    case PixelFormat::Dxt5: {
#ifdef KORVEL_HAVE_SQUISH
        const int flags = format == PixelFormat::Dxt1   ? squish::kDxt1
                          : format == PixelFormat::Dxt3 ? squish::kDxt3
                                                        : squish::kDxt5;
        // Block by block: Debian's libsquish runs DecompressImage on OpenMP
        // threads that spin while they wait, which costs more than the
        // decoding on a busy machine and puts threads under the caller's.
        const std::size_t blockBytes = format == PixelFormat::Dxt1 ? 8 : 16;
        std::uint8_t block[64];
        const std::uint8_t* source = in;
        for (std::uint32_t by = 0; by < height; by += 4) {
            for (std::uint32_t bx = 0; bx < width; bx += 4, source += blockBytes) {
                squish::Decompress(block, source, flags);
                const std::uint32_t rows = std::min<std::uint32_t>(4, height - by);
                const std::uint32_t cols = std::min<std::uint32_t>(4, width - bx);
                for (std::uint32_t y = 0; y < rows; ++y) {
                    std::copy(block + y * 16, block + y * 16 + cols * 4,
                              px + ((std::size_t{by} + y) * width + bx) * 4);
                }
            }
        }
        break;
#else
        out.image = {};
        out.problem = {"DXT textures cannot be decoded in this build (made without libsquish)",
                       "whyNoDxt",
                       {}};
        return out;
#endif
    }
    case PixelFormat::Pal8:
    case PixelFormat::Pal4:
        for (std::size_t i = 0; i < count; ++i) {
            const unsigned index = format == PixelFormat::Pal8
                                       ? in[i]
                                       : (i % 2 == 0 ? in[i / 2] & 15 : in[i / 2] >> 4);
            if (index < palEntries) {
                std::copy(pal + index * 4, pal + index * 4 + 4, px + i * 4);
            }
        }
        break;
    case PixelFormat::Bgra8888:
    case PixelFormat::Bgr888: {
        const std::size_t step = format == PixelFormat::Bgr888 && bitsPerPixel == 24 ? 3 : 4;
        for (std::size_t i = 0; i < count; ++i) {
            const auto* p = in + i * step;
            px[i * 4] = p[2];
            px[i * 4 + 1] = p[1];
            px[i * 4 + 2] = p[0];
            px[i * 4 + 3] = format == PixelFormat::Bgra8888 ? p[3] : 255;
        }
        break;
    }
    default:
        for (std::size_t i = 0; i < count; ++i) {
            const Rgba c = Decode16(format, in[i * 2] | (in[i * 2 + 1] << 8));
            px[i * 4] = c.r;
            px[i * 4 + 1] = c.g;
            px[i * 4 + 2] = c.b;
            px[i * 4 + 3] = c.a;
        }
        break;
    }
    return out;
}

} // namespace korvel
