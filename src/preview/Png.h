// PNG files of decoded pictures (libpng where the build has it).
#pragma once

#include "preview/Image.h"

#include <optional>
#include <string>

namespace korvel {

// Whether this build writes PNG (it is built with libpng).
bool CanWritePng();

// The PNG file of `image` (8-bit RGBA), or nothing when this build cannot
// write PNG or the image is empty.
std::optional<std::string> EncodePng(const RgbaImage& image);

// Why EncodePng gives nothing in this build.
inline constexpr const char* PngUnavailableText =
    "PNG files cannot be written in this build (made without libpng)";

} // namespace korvel
