// Adding files with the duplicate scan on, to a small and to a large archive:
// the name index keeps the cost per file independent of the archive's size.
// usage: bench_add [files=5000] [small archive=10000] [large archive=27000]
#include "EntryBench.h"

#include <cstdio>

using namespace korvel;
using namespace korvel::bench;

namespace {

double AddAll(std::uint32_t files, std::uint32_t existing) {
    test::TestFolder folder;
    std::vector<DirRecord> records;
    for (std::uint32_t i = 0; i < existing; ++i) {
        records.push_back({i, 1, "old" + std::to_string(i) + ".dff"});
    }
    test::WriteArchive(folder / "a.img", records, std::uint64_t{existing} * SectorSize);
    std::filesystem::create_directories(folder / "in");
    std::vector<std::string> paths;
    for (std::uint32_t i = 0; i < files; ++i) {
        paths.push_back((folder / "in" / ("new" + std::to_string(i) + ".dff")).string());
        test::WriteBytes(paths.back(), std::string(100 + i % 3000, 'x'));
    }
    EntryBench bench(folder.path());
    bench.settings.WriteSetting("True", "addingScan");
    Editor& editor = bench.editor;
    if (!editor.OpenArchive((folder / "a.img").string())) {
        std::exit(1);
    }
    FlushAll();
    std::size_t failed = 0;
    const double seconds = Seconds([&] { failed = bench.commands.AddFileBatch(paths); });
    if (failed != 0 || editor.table().size() != std::size_t{existing} + files) {
        std::printf("adding failed (%zu files)\n", failed);
        std::exit(1);
    }
    return seconds;
}

} // namespace

int main(int argc, char** argv) {
    const auto files = static_cast<std::uint32_t>(Arg(argc, argv, 1, 5000));
    const auto small = static_cast<std::uint32_t>(Arg(argc, argv, 2, 10000));
    const auto large = static_cast<std::uint32_t>(Arg(argc, argv, 3, 27000));
    if (std::uint64_t{large} + files > MaxRecords) {
        std::printf("%u + %u entries would pass the limit of %u records\n", large, files,
                    static_cast<unsigned>(MaxRecords));
        return 1;
    }
    const double toSmall = AddAll(files, small);
    const double toLarge = AddAll(files, large);
    std::printf("add: %u files, scan on\n", files);
    std::printf("  to %u entries %.3f s; to %u entries %.3f s; ratio %.2f (target about 1)\n",
                small, toSmall, large, toLarge, toLarge / toSmall);
    return 0;
}
