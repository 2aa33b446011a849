// Find in files over an archive of 5 000 texture dictionaries: time, and how
// many bytes the search reads from the data file against its size.
#include "EntryBytes.h"
#include "ScriptedDesktop.h"
#include "TestFolder.h"
#include "search/FindInFiles.h"
#include "window/Editor.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include <sys/resource.h>

using namespace korvel;

namespace {

long PeakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// Many dictionary records over one large dictionary: every record lists all
// its textures, so the results outnumber what the data file holds by far.
// The search hands them out one at a time; the peak memory must not grow with
// their number.
int SharedDictionary(const test::TestFolder& folder) {
    const int textures = 2000;
    const int records = 1000;
    std::vector<std::string> natives;
    for (int t = 0; t < textures; ++t) {
        natives.push_back(test::Native("shared_texture_" + std::to_string(t), "", 0));
    }
    std::string bytes = test::Dictionary(textures, 0, natives);
    const auto sectors = static_cast<std::uint32_t>(SectorsForFile(bytes.size()));
    bytes.resize(SectorToOffset(sectors), '\0');
    test::WriteBytes(folder / "shared.img", bytes);
    std::vector<DirRecord> rows;
    for (int r = 0; r < records; ++r) {
        rows.push_back({0, sectors, "same" + std::to_string(r) + ".txd"});
    }
    test::WriteBytes(folder / "shared.dir", EncodeDirectory(rows));
    Archive archive;
    if (OpenArchiveFiles(archive, (folder / "shared.img").string())) {
        return 1;
    }
    const long before = PeakKilobytes();
    const auto start = std::chrono::steady_clock::now();
    const std::uint64_t found = FindTextures(archive, "", {}).found;
    const double search =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%d records over one dictionary of %d textures: %llu results in %.2f s, "
                "peak memory %ld KiB before the search, %ld KiB after\n",
                records, textures, static_cast<unsigned long long>(found), search, before,
                PeakKilobytes());
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const int dictionaries = argc > 1 ? std::atoi(argv[1]) : 5000;
    const int perDictionary = 4;
    const std::size_t pixels = 32 * 32 * 4;
    test::TestFolder folder;

    // Written entry by entry, so the benchmark never holds the whole file.
    std::ofstream img(folder / "big.img", std::ios::binary);
    std::vector<DirRecord> records;
    std::uint32_t sector = 0;
    for (int d = 0; d < dictionaries; ++d) {
        std::vector<std::string> natives;
        for (int t = 0; t < perDictionary; ++t) {
            natives.push_back(test::Native("tex" + std::to_string(d) + "_" + std::to_string(t),
                                           t % 2 ? "mask" : "", pixels));
        }
        std::string bytes = test::Dictionary(perDictionary, 0, natives);
        const auto sectors = static_cast<std::uint32_t>(SectorsForFile(bytes.size()));
        bytes.resize(SectorToOffset(sectors), '\0');
        img.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        records.push_back({sector, sectors, "dict" + std::to_string(d) + ".txd"});
        sector += sectors;
    }
    img.close();
    test::WriteBytes(folder / "big.dir", EncodeDirectory(records));

    test::ScriptedDesktop desktop;
    Settings settings(folder / "korvel.ini", folder / "lang.ini");
    settings.EnsureSettingsFile();
    Editor editor(desktop, settings, folder.path());
    if (!editor.OpenArchive((folder / "big.img").string())) {
        return 1;
    }

    auto start = std::chrono::steady_clock::now();
    std::uint64_t bytesRead = 0;
    std::size_t names = 0;
    bytesRead = ReadTextureDictionaryNames(editor.archive(), [&](NameRow) { ++names; }, {});
    const double read =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();

    start = std::chrono::steady_clock::now();
    const std::size_t found = FindTextures(editor.archive(), "_3", {}).found;
    const double search =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();

    const std::uint64_t dataBytes = SectorToOffset(sector);
    std::printf("dictionaries: %d, textures: %zu, data file: %llu bytes\n", dictionaries, names,
                static_cast<unsigned long long>(dataBytes));
    std::printf("ReadTextureDictionaryNames: %.4f s, %llu bytes read (%.3f%% of the file, %.1f "
                "per texture)\n",
                read, static_cast<unsigned long long>(bytesRead), 100.0 * bytesRead / dataBytes,
                static_cast<double>(bytesRead) / static_cast<double>(names));
    std::printf("FindTextures(\"_3\"): %.4f s, %zu results\n", search, found);
    return SharedDictionary(folder);
}
