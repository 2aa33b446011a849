#include "preview/Png.h"

#ifdef KORVEL_HAVE_PNG
#include <png.h>
#endif

namespace korvel {

bool CanWritePng() {
#ifdef KORVEL_HAVE_PNG
    return true;
#else
    return false;
#endif
}

std::optional<std::string> EncodePng(const RgbaImage& image) {
    if (image.width == 0 || image.height == 0 ||
        image.pixels.size() != std::size_t{image.width} * image.height * 4) {
        return std::nullopt;
    }
#ifdef KORVEL_HAVE_PNG
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = image.width;
    png.height = image.height;
    png.format = PNG_FORMAT_RGBA;
    png_alloc_size_t size = 0;
    if (!png_image_write_to_memory(&png, nullptr, &size, 0, image.pixels.data(), 0, nullptr)) {
        return std::nullopt;
    }
    std::string out(size, '\0');
    if (!png_image_write_to_memory(&png, out.data(), &size, 0, image.pixels.data(), 0, nullptr)) {
        png_image_free(&png);
        return std::nullopt;
    }
    out.resize(size);
    return out;
#else
    return std::nullopt;
#endif
}

} // namespace korvel
