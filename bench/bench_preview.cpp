// Decoding for the preview: a 1024x1024 DXT1 texture with all its mip
// levels, and the first level of every texture of a 64-texture dictionary
// (what a thumbnail grid needs). Prints the median of several runs; the
// window's frame budget is 16 ms.
#include "PreviewBench.h"
#include "preview/Textures.h"

#include <cstdio>

using namespace korvel;
using namespace korvel::bench;

int main() {
    if (!CanDecodeDxt()) {
        std::printf("bench_preview: this build decodes no DXT (made without libsquish)\n");
        return 0;
    }
    std::mt19937 random(12);
    const std::string big = Dictionary({Dxt1Native("big", 1024, random)});
    MemorySource bigSource(big);
    std::size_t pixels = 0;
    const Times big1024 = MedianMs(15, [&] {
        const TextureDictionaryInfo info = ReadTextureDictionary(bigSource, 0, big.size());
        for (std::size_t level = 0; level < info.textures.at(0).levels.size(); ++level) {
            pixels += DecodeTextureLevel(bigSource, 0, info.textures[0], level).image.pixels.size();
        }
    });
    std::printf("1024x1024 DXT1, 11 levels read and decoded: %.2f ms, %.2f ms processor time "
                "(medians of 15)\n",
                big1024.wallMs, big1024.cpuMs);

    std::vector<std::string> natives;
    for (int i = 0; i < 64; ++i) {
        natives.push_back(Dxt1Native("tex" + std::to_string(i), 256, random));
    }
    const std::string grid = Dictionary(natives);
    MemorySource gridSource(grid);
    const Times grid64 = MedianMs(15, [&] {
        const TextureDictionaryInfo info = ReadTextureDictionary(gridSource, 0, grid.size());
        for (const TextureInfo& t : info.textures) {
            pixels += DecodeTextureLevel(gridSource, 0, t, 0).image.pixels.size();
        }
    });
    std::printf("64 textures of 256x256 DXT1, first levels read and decoded: %.2f ms, %.2f ms "
                "processor time (medians of 15)\n",
                grid64.wallMs, grid64.cpuMs);
    return pixels == 0 ? 1 : 0;
}
