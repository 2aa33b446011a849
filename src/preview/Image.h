// A decoded picture: 8-bit red, green, blue and alpha per pixel, rows top to
// bottom. What every decoder returns and every exporter takes.
#pragma once

#include "platform/Reason.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvel {

struct RgbaImage {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> pixels; // width * height * 4 bytes
};

// An image, or why there is none.
struct DecodedImage {
    RgbaImage image;
    Reason problem; // empty when `image` holds the pixels
};

} // namespace korvel
