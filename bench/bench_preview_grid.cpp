// The preview pane's thumbnail grid of a 64-texture dictionary, as the pane
// makes it: the dictionary read from an archive's data file, each texture
// decoded from the mip level the thumbnail needs and scaled over the
// checkerboard (the worker's part), then made a pixmap and an icon (the UI
// thread's part). Dictionaries of 256x256 and of 1024x1024 textures, all
// with mip levels. Prints medians; the window's frame budget is 16 ms.
#include "PreviewBench.h"
#include "TestFolder.h"
#include "archive/Format.h"
#include "preview/EntryPreview.h"
#include "ui/TextureImages.h"
#include "window/PreviewCommands.h"

#include <QGuiApplication>
#include <QIcon>
#include <QPixmap>

#include <cstdio>

using namespace korvel;
using namespace korvel::bench;

namespace {

constexpr int Side = 96; // the pane's thumbnail side

void Measure(const std::filesystem::path& folder, std::uint32_t textureSide, std::mt19937& random) {
    std::vector<std::string> natives;
    for (int i = 0; i < 64; ++i) {
        natives.push_back(Dxt1Native("tex" + std::to_string(i), textureSide, random));
    }
    std::string data = Dictionary(natives);
    const auto sectors = static_cast<std::uint32_t>(SectorsForFile(data.size()));
    data.resize(SectorToOffset(sectors), '\0');
    const auto img = folder / ("grid" + std::to_string(textureSide) + ".img");
    test::WriteBytes(img, data);
    const Entry entry{0, sectors, "grid.txd", false};

    std::vector<QImage> thumbnails;
    std::size_t made0 = 0;
    const Times worker = MedianMs(9, [&] {
        thumbnails.clear();
        const EntryPreview preview = ReadEntryPreview(img, entry);
        for (const TextureInfo& t : preview.textures.textures) {
            thumbnails.push_back(ui::TextureThumbnail(img, entry, t, Side));
        }
    });
    const EntryPreview read = ReadEntryPreview(img, entry);
    const Times decodeOnly = MedianMs(9, [&] {
        for (const TextureInfo& t : read.textures.textures) {
            made0 += DecodeEntryTexture(img, entry, t, ThumbnailLevel(t, Side)).image.pixels.size();
        }
    });
    const Times readOnly = MedianMs(9, [&] { made0 += ReadEntryPreview(img, entry).size; });
    std::printf("  of which reading the dictionary %.2f ms, decoding %.2f ms processor\n",
                readOnly.cpuMs, decodeOnly.cpuMs);
    std::size_t made = 0;
    const Times uiThread = MedianMs(9, [&] {
        for (const QImage& image : thumbnails) {
            const QIcon icon(QPixmap::fromImage(image));
            made += icon.isNull() ? 0 : 1;
        }
    });
    std::printf("64 textures of %ux%u DXT1 with mips: read + decode + scale %.2f ms (%.2f ms "
                "processor), pixmaps + icons %.2f ms (%.2f ms processor); medians of 9, %zu "
                "thumbnails\n",
                textureSide, textureSide, worker.wallMs, worker.cpuMs, uiThread.wallMs,
                uiThread.cpuMs, made / 9);
}

} // namespace

int main(int argc, char** argv) {
    if (!CanDecodeDxt()) {
        std::printf("bench_preview_grid: this build decodes no DXT (made without libsquish)\n");
        return 0;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    test::TestFolder folder;
    std::mt19937 random(12);
    Measure(folder.path(), 256, random);
    Measure(folder.path(), 1024, random);
    return 0;
}
