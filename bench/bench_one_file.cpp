// One-file archives against two-file ones: opening 32 767 entries (one read
// of the records either way), and adding 5 000 files to archives of 10 000
// and 27 000 entries, the one-file kind including the growth of its records
// (which moves only the entries in their way).
// usage: bench_one_file [entries to open=32767] [files=5000] [small=10000] [large=27000]
#include "BenchSupport.h"
#include "archive/EntryOperations.h"

#include <cstdio>

using namespace korvel;
using namespace korvel::bench;

namespace {

// A two-file archive of `entries` one-sector entries at `folder`/two.img and
// its one-file twin at one.img, whose records fill up to its first entry.
void WritePair(const std::filesystem::path& folder, std::uint32_t entries) {
    std::vector<DirRecord> records;
    for (std::uint32_t i = 0; i < entries; ++i) {
        records.push_back({i, 1, "e" + std::to_string(i) + (i % 2 ? ".dff" : ".txd")});
    }
    test::WriteArchive(folder / "two.img", records, std::uint64_t{entries} * SectorSize);
    test::WriteOneFileTwin(folder / "two.img", folder / "one.img");
}

double OpenSeconds(const std::filesystem::path& img) {
    std::vector<double> rounds;
    for (int round = 0; round < 7; ++round) {
        Archive archive;
        rounds.push_back(Seconds([&] {
            if (OpenArchiveFiles(archive, img.string())) {
                std::exit(1);
            }
        }));
    }
    return Median(rounds);
}

// Adds the files in one batch with the duplicate scan on; returns seconds.
double AddSeconds(const std::filesystem::path& img, const std::vector<std::string>& paths) {
    Archive archive;
    if (OpenArchiveFiles(archive, img.string())) {
        std::exit(1);
    }
    const std::size_t before = archive.table().size();
    FlushAll();
    const double seconds = Seconds([&] {
        AddBatch batch(archive, true,
                       [](const std::string&, std::size_t) { return DuplicateDecision{}; });
        for (const std::string& path : paths) {
            std::string name = std::filesystem::path(path).filename().string();
            if (batch.Add(path, name).result != AddResult::Added) {
                std::exit(1);
            }
        }
        if (!batch.Finish().ok()) {
            std::exit(1);
        }
    });
    if (archive.table().size() != before + paths.size()) {
        std::exit(1);
    }
    return seconds;
}

} // namespace

int main(int argc, char** argv) {
    const auto opened = static_cast<std::uint32_t>(Arg(argc, argv, 1, MaxRecords));
    const auto files = static_cast<std::uint32_t>(Arg(argc, argv, 2, 5000));
    const auto small = static_cast<std::uint32_t>(Arg(argc, argv, 3, 10000));
    const auto large = static_cast<std::uint32_t>(Arg(argc, argv, 4, 27000));
    if (opened > MaxRecords || std::uint64_t{large} + files > MaxRecords) {
        std::printf("more entries than the limit of %zu records\n", MaxRecords);
        return 1;
    }
    {
        test::TestFolder folder;
        WritePair(folder.path(), opened);
        const double two = OpenSeconds(folder / "two.img");
        const double one = OpenSeconds(folder / "one.img");
        std::printf("open: %u entries\n  two-file %.4f s; one-file %.4f s; ratio %.2f (target "
                    "about 1)\n",
                    opened, two, one, one / two);
    }
    double seconds[2][2] = {};
    for (int size = 0; size < 2; ++size) {
        test::TestFolder folder;
        WritePair(folder.path(), size == 0 ? small : large);
        std::filesystem::create_directories(folder / "in");
        std::vector<std::string> paths;
        for (std::uint32_t i = 0; i < files; ++i) {
            paths.push_back((folder / "in" / ("new" + std::to_string(i) + ".dff")).string());
            test::WriteBytes(paths.back(), std::string(100 + i % 3000, 'x'));
        }
        seconds[size][0] = AddSeconds(folder / "two.img", paths);
        seconds[size][1] = AddSeconds(folder / "one.img", paths);
    }
    std::printf("add: %u files, scan on\n", files);
    for (int kind = 0; kind < 2; ++kind) {
        std::printf("  %s: to %u entries %.3f s; to %u entries %.3f s; ratio %.2f (target about "
                    "1)\n",
                    kind == 0 ? "two-file" : "one-file", small, seconds[0][kind], large,
                    seconds[1][kind], seconds[1][kind] / seconds[0][kind]);
    }
    std::printf("  one-file / two-file at %u entries: %.2f\n", large,
                seconds[1][1] / seconds[1][0]);
    return 0;
}
