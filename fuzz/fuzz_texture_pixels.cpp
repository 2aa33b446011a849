// libFuzzer target: the texture dictionary reader and the pixel decoders on
// arbitrary bytes. Every level found is decoded; reads must stay inside the
// entry and a decoded picture must be exactly as large as its level says.
#include "GuardedSource.h"
#include "preview/Textures.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Filler: a texture native header, so straying reads look real.
    static const char native[] = "\x15\0\0\0\x60\0\0\0\xff\xff\x03\x18\x01\0\0\0\x54\0\0\0";
    const std::string filler(native, sizeof native - 1);
    korvel::fuzz::GuardedSource source = korvel::fuzz::EntryFromInput(data, size, filler);
    const auto info = korvel::ReadTextureDictionary(source, source.start(), source.length());
    for (const korvel::TextureInfo& texture : info.textures) {
        for (std::size_t level = 0; level < texture.levels.size(); ++level) {
            const auto image = korvel::DecodeTextureLevel(source, source.start(), texture, level);
            const auto& l = texture.levels[level];
            if (image.problem.empty() &&
                (image.image.width != l.width || image.image.height != l.height ||
                 image.image.pixels.size() != std::size_t{l.width} * l.height * 4)) {
                std::abort();
            }
        }
    }
    return 0;
}
