// Extracting every entry against unpacking a tar that holds the same files.
// usage: bench_extract [entries=20000] [archive MiB=1024] [unused %=25] [rounds=3]
#include "EntryBench.h"

#include <cstdio>

using namespace korvel;
using namespace korvel::bench;

int main(int argc, char** argv) {
    const ArchiveArgs args(argc, argv, 3);
    test::TestFolder folder;
    const Layout layout = MakeLayout(args.entries, args.archiveMiB, args.unused);
    test::WriteArchive(folder / "big.img", layout.records, layout.dataBytes);

    EntryBench bench(folder.path());
    Editor& editor = bench.editor;
    if (!editor.OpenArchive((folder / "big.img").string())) {
        return 1;
    }
    std::filesystem::create_directories(folder / "out");
    bench.settings.WriteSetting((folder / "out").string(), "lastExtract");
    std::size_t failed = 0;
    std::vector<double> extractTimes;
    for (unsigned long round = 0; round < args.rounds && failed == 0; ++round) {
        std::filesystem::remove_all(folder / "out");
        std::filesystem::create_directories(folder / "out");
        editor.table().selectAll();
        FlushAll();
        extractTimes.push_back(Seconds([&] { failed = bench.commands.ExtractSelectedToLastFolder(); }));
    }
    const double extractSeconds = Median(extractTimes);

    if (!Run("tar -cf " + Quoted(folder / "all.tar") + " -C " + Quoted(folder / "out") + " .") ||
        !Run("cat " + Quoted(folder / "all.tar") + " > /dev/null")) {
        return 1;
    }
    bool unpacked = true;
    std::vector<double> tarTimes;
    for (unsigned long round = 0; round < args.rounds && unpacked; ++round) {
        std::filesystem::remove_all(folder / "untar");
        std::filesystem::create_directories(folder / "untar");
        FlushAll();
        tarTimes.push_back(Seconds([&] {
            unpacked =
                Run("tar -xf " + Quoted(folder / "all.tar") + " -C " + Quoted(folder / "untar"));
        }));
    }
    const double tarSeconds = Median(tarTimes);
    std::printf("extract: %u entries, %.0f MiB of entries, median of %lu rounds\n", args.entries,
                layout.usedBytes / 1048576.0, args.rounds);
    std::printf("  extract all %.3f s (%zu failed); tar -xf %.3f s; ratio %.2f (target <= 1.0)\n",
                extractSeconds, failed, tarSeconds, extractSeconds / tarSeconds);
    return failed == 0 && unpacked ? 0 : 1;
}
