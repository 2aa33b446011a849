// Pixel decoders for the texture formats of the PC texture dictionaries:
// block-compressed DXT1/3/5 (through libsquish where the build has it),
// 8-bit and 4-bit palettes, 32-bit and 24-bit BGRA and the 16-bit formats.
// Pure functions over bytes: safe to call from any thread.
#pragma once

#include "preview/Image.h"

#include <cstdint>
#include <string_view>

namespace korvel {

enum class PixelFormat {
    Dxt1,
    Dxt3,
    Dxt5,
    Pal8,
    Pal4,
    Bgra8888,
    Bgr888,
    Argb1555,
    Rgb565,
    Argb4444,
    Xrgb555,
    Unknown
};

// The short name the info lines and the preview show ("DXT1", "PAL8", "8888").
std::string_view PixelFormatName(PixelFormat format);

// The largest width or height decoded: 8192 x 8192 x 4 bytes is 256 MiB, the
// most one picture may cost whatever a file claims.
inline constexpr std::uint32_t MaxTextureSide = 8192;

// Bytes one level of `width` x `height` pixels takes in `format`
// (`bitsPerPixel` says whether 888 is stored in 3 or 4 bytes).
std::uint64_t LevelBytes(PixelFormat format, std::uint32_t width, std::uint32_t height,
                         unsigned bitsPerPixel);

// The reasons a texture and its pixels share: a format Korvel does not know,
// and a side of 0 or past MaxTextureSide.
Reason UnknownFormatReason();
Reason SizeReason(std::uint32_t width, std::uint32_t height);

// Whether this build decodes DXT blocks (it is built with libsquish).
bool CanDecodeDxt();

// Decodes one level. `pixels` must hold at least LevelBytes; `palette` holds
// the palette's RGBA entries for Pal8/Pal4 (an index past its end reads as
// transparent black). Fails with a reason for short data, a side of 0 or past
// MaxTextureSide, an unknown format, or DXT without libsquish.
DecodedImage DecodePixels(PixelFormat format, std::uint32_t width, std::uint32_t height,
                          unsigned bitsPerPixel, std::string_view pixels,
                          std::string_view palette = {});

} // namespace korvel
