// Decoding for the preview: a 1024x1024 DXT1 texture with all its mip
// levels, and the first level of every texture of a 64-texture dictionary
// (what a thumbnail grid needs). Then the pane's read of an entry in an
// archive of 32,767 entries, a third of them texture dictionaries: the last
// dictionary, and a model's texture lookup that finds nothing and so walks
// every dictionary (the worst case). Prints the median of several runs; the
// window's frame budget is 16 ms.
#include "PreviewBench.h"
#include "preview/EntryPreview.h"
#include "preview/Textures.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

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

    // A data file of 32,767 one-sector entries on disk: dictionaries of one
    // 16x16 texture, and other entries. The rows are made here as the open
    // archive would hold them.
    const std::string small = Dictionary({Dxt1Native("small", 16, random)});
    std::vector<Entry> rows;
    std::string data;
    for (std::uint32_t i = 0; i < MaxRecords; ++i) {
        const bool dictionary = i % 3 == 0;
        std::string bytes = dictionary ? small : std::string(100, 'x');
        bytes.resize(SectorSize, '\0');
        data += bytes;
        rows.push_back({i, 1, "e" + std::to_string(i) + (dictionary ? ".txd" : ".dff")});
    }
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() / "korvel-bench-preview.img";
    std::ofstream(file, std::ios::binary)
        .write(data.data(), static_cast<std::streamsize>(data.size()));
    const Entry& lastDictionary = rows[MaxRecords - 1 - (MaxRecords - 1) % 3];
    const Times entry = MedianMs(
        15, [&] { pixels += ReadEntryPreview(file, lastDictionary).textures.textures.size(); });
    const Times lookup = MedianMs(
        5, [&] { pixels += FindModelTextures(file, rows, "e1.dff", {"absent"}).size() + 1; });
    std::filesystem::remove(file);
    std::printf("32,767-entry archive: the last dictionary read for the pane: %.2f ms, %.2f ms "
                "processor time (medians of 15)\n",
                entry.wallMs, entry.cpuMs);
    std::printf("32,767-entry archive: a model's texture looked for in all %zu dictionaries and "
                "not found: %.2f ms, %.2f ms processor time (medians of 5)\n",
                rows.size() / 3 + 1, lookup.wallMs, lookup.cpuMs);
    return pixels == 0 ? 1 : 0;
}
