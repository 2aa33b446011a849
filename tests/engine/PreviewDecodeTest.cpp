#include "preview/PixelFormats.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

using Pixels = std::vector<std::uint8_t>;
using namespace std::string_literals;

// Each format decoded from a tiny picture of known pixels, compared pixel by
// pixel. DXT blocks use endpoints whose 565 colours expand exactly (pure
// red, green, blue, white and black), so the interpolated colours are known.
TEST(PixelDecoders, DecodeEachFormatPixelByPixel) {
    // DXT1, 4-colour mode (c0 > c1): red, blue and the thirds between them;
    // indices row by row 0,1,2,3.
    const std::string dxt1 = "\x00\xF8\x1F\x00"s + "\xE4\xE4\xE4\xE4"s;
    // DXT1, 3-colour mode (c0 <= c1): black, white, grey, transparent.
    const std::string dxt1Alpha = "\x00\x00\xFF\xFF"s + "\xE4\xE4\xE4\xE4"s;
    const Pixels rowDxt1 = {255, 0, 0, 255, 0, 0, 255, 255, 170, 0, 85, 255, 85, 0, 170, 255};
    const Pixels rowAlpha = {0, 0, 0, 255, 255, 255, 255, 255, 127, 127, 127, 255, 0, 0, 0, 0};
    // DXT3: explicit 4-bit alphas 0, 5, 10, 15 per row; colour all green.
    const std::string dxt3 =
        "\x50\xFA\x50\xFA\x50\xFA\x50\xFA"s + "\xE0\x07\xE0\x07"s + std::string(4, '\0');
    const Pixels rowDxt3 = {0, 255, 0, 0, 0, 255, 0, 85, 0, 255, 0, 170, 0, 255, 0, 255};
    // DXT5: alpha endpoints 255 and 0, indices 0 (255) and 1 (0) alternating
    // by pixel; colour all white.
    const std::string dxt5 =
        "\xFF\x00"s + "\x08\x82\x20\x08\x82\x20"s + "\xFF\xFF\xFF\xFF"s + std::string(4, '\0');
    const Pixels rowDxt5 = {255, 255, 255, 255, 255, 255, 255, 0,
                            255, 255, 255, 255, 255, 255, 255, 0};
    const auto repeat = [](const Pixels& row, int times) {
        Pixels out;
        for (int i = 0; i < times; ++i) {
            out.insert(out.end(), row.begin(), row.end());
        }
        return out;
    };
    const std::string palette = "\x10\x20\x30\x40"s + "\xA0\xB0\xC0\xD0"s;
    struct Case {
        const char* what;
        PixelFormat format;
        std::uint32_t width, height;
        unsigned bits;
        std::string bytes;
        Pixels expected;
    };
    const Case cases[] = {
        {"DXT1 opaque", PixelFormat::Dxt1, 4, 4, 16, dxt1, repeat(rowDxt1, 4)},
        {"DXT1 1-bit alpha", PixelFormat::Dxt1, 4, 4, 16, dxt1Alpha, repeat(rowAlpha, 4)},
        {"DXT1 2x2 mip of a block", PixelFormat::Dxt1, 2, 1, 16, dxt1,
         Pixels(rowDxt1.begin(), rowDxt1.begin() + 8)},
        {"DXT3", PixelFormat::Dxt3, 4, 4, 16, dxt3, repeat(rowDxt3, 4)},
        {"DXT5", PixelFormat::Dxt5, 4, 4, 16, dxt5, repeat(rowDxt5, 4)},
        {"PAL8, index past the palette is clear",
         PixelFormat::Pal8,
         3,
         1,
         8,
         "\x01\x00\x07"s,
         {160, 176, 192, 208, 16, 32, 48, 64, 0, 0, 0, 0}},
        {"PAL4, low nibble first",
         PixelFormat::Pal4,
         3,
         1,
         4,
         "\x01\x01"s,
         {160, 176, 192, 208, 16, 32, 48, 64, 160, 176, 192, 208}},
        {"8888 is BGRA", PixelFormat::Bgra8888, 1, 1, 32, "\x01\x02\x03\x04"s, {3, 2, 1, 4}},
        {"888 in 4 bytes", PixelFormat::Bgr888, 1, 1, 32, "\x01\x02\x03\x04"s, {3, 2, 1, 255}},
        {"888 in 3 bytes",
         PixelFormat::Bgr888,
         2,
         1,
         24,
         "\x01\x02\x03\x04\x05\x06"s,
         {3, 2, 1, 255, 6, 5, 4, 255}},
        {"1555",
         PixelFormat::Argb1555,
         2,
         1,
         16,
         "\x1F\x80\xE0\x03"s,
         {0, 0, 255, 255, 0, 255, 0, 0}},
        {"565",
         PixelFormat::Rgb565,
         2,
         1,
         16,
         "\x00\xF8\xE0\x07"s,
         {255, 0, 0, 255, 0, 255, 0, 255}},
        {"4444", PixelFormat::Argb4444, 1, 1, 16, "\x21\x43"s, {51, 34, 17, 68}},
        {"555 ignores the top bit", PixelFormat::Xrgb555, 1, 1, 16, "\x00\x7C"s, {255, 0, 0, 255}},
    };
    for (const Case& c : cases) {
        if (!CanDecodeDxt() && c.format <= PixelFormat::Dxt5) {
            continue;
        }
        const DecodedImage d = DecodePixels(c.format, c.width, c.height, c.bits, c.bytes, palette);
        ASSERT_EQ(d.problem.english, "") << c.what;
        EXPECT_EQ(d.image.pixels, c.expected) << c.what;
    }
}

TEST(PixelDecoders, RefuseWhatCannotBeDecoded) {
    struct Case {
        const char* what;
        PixelFormat format;
        std::uint32_t width, height;
        std::string bytes;
    };
    const Case cases[] = {
        {"one byte short", PixelFormat::Rgb565, 2, 2, std::string(7, '\0')},
        {"DXT5 block short", PixelFormat::Dxt5, 4, 4, std::string(15, '\0')},
        {"no pixels", PixelFormat::Bgra8888, 0, 4, ""},
        {"wider than any texture", PixelFormat::Pal8, MaxTextureSide + 1, 1,
         std::string(MaxTextureSide + 1, '\0')},
        {"unknown format", PixelFormat::Unknown, 1, 1, std::string(4, '\0')},
    };
    for (const Case& c : cases) {
        const DecodedImage d = DecodePixels(c.format, c.width, c.height, 32, c.bytes);
        EXPECT_NE(d.problem.english, "") << c.what;
        EXPECT_TRUE(d.image.pixels.empty()) << c.what;
    }
}

} // namespace
} // namespace korvel
