// Rebuild against a plain copy of a file of the rebuilt size. The rebuild
// streams every entry and flushes the new data file, so the copy is timed
// with an fsync of that one file too: like against like.
// usage: bench_rebuild [entries=20000] [archive MiB=1024] [unused %=25] [rounds=5]
#include "EntryBench.h"

#include <cstdio>

using namespace korvel;
using namespace korvel::bench;

int main(int argc, char** argv) {
    const ArchiveArgs args(argc, argv, 5);
    test::TestFolder folder;
    const Layout layout = MakeLayout(args.entries, args.archiveMiB, args.unused);
    test::WriteArchive(folder / "pristine.img", layout.records, layout.dataBytes);

    EntryBench bench(folder.path());
    Editor& editor = bench.editor;
    // A file of the rebuilt size, its bytes in the page cache as the
    // archive's are for the rebuild.
    const std::string makeSource = "head -c " + std::to_string(layout.usedBytes) +
                                   " /dev/urandom > " + Quoted(folder / "source.img") + " && cat " +
                                   Quoted(folder / "source.img") + " > /dev/null";
    if (!Run(makeSource)) {
        return 1;
    }
    // On a virtual machine, memory that was not used lately costs far more
    // to fill the first time (the host backs it lazily), and a plain copy
    // right after deleting the last one gets the pages just freed. So each
    // timed step starts right after a file of the rebuilt size was written
    // and deleted, and everything is on the disk.
    const auto WarmUp = [&] {
        const bool done =
            Run("cp " + Quoted(folder / "source.img") + " " + Quoted(folder / "scratch.img") +
                " && sync && rm " + Quoted(folder / "scratch.img"));
        FlushAll();
        return done;
    };
    // Rounds alternate between the two, so a slow spell of a shared disk
    // falls on both alike.
    std::vector<double> rebuildTimes;
    std::vector<double> cpTimes;
    bool ok = true;
    bool copied = true;
    for (unsigned long round = 0; round < args.rounds && ok && copied; ++round) {
        // Each round rebuilds a fresh copy of the same archive.
        const auto copy = std::filesystem::copy_options::overwrite_existing;
        std::filesystem::copy_file(folder / "pristine.img", folder / "big.img", copy);
        std::filesystem::copy_file(folder / "pristine.dir", folder / "big.dir", copy);
        if (!editor.OpenArchive((folder / "big.img").string()) ||
            !Run("cat " + Quoted(folder / "big.img") + " > /dev/null")) {
            return 1;
        }
        if (!WarmUp()) {
            return 1;
        }
        rebuildTimes.push_back(Seconds([&] { ok = bench.commands.Rebuild(); }));

        std::filesystem::remove(folder / "copy.img");
        if (!WarmUp()) {
            return 1;
        }
        cpTimes.push_back(Seconds([&] {
            copied = Run("cp " + Quoted(folder / "source.img") + " " + Quoted(folder / "copy.img") +
                         " && sync " + Quoted(folder / "copy.img"));
        }));
    }
    const double rebuildSeconds = Median(rebuildTimes);
    const double cpSeconds = Median(cpTimes);
    const auto rebuilt = std::filesystem::file_size(folder / "big.img");
    std::printf("rebuild: %u entries, %.0f MiB archive, %.0f MiB rebuilt (%u%% unused), "
                "median of %lu rounds\n",
                args.entries, layout.dataBytes / 1048576.0, rebuilt / 1048576.0, args.unused,
                args.rounds);
    std::printf("  rebuild %.3f s (%s); cp + fsync of the rebuilt size %.3f s; ratio %.2f "
                "(target <= 1.2)\n",
                rebuildSeconds, ok ? "ok" : "FAILED", cpSeconds, rebuildSeconds / cpSeconds);
    std::printf("  rounds (rebuild / cp):");
    for (std::size_t i = 0; i < rebuildTimes.size(); ++i) {
        std::printf(" %.2f/%.2f", rebuildTimes[i], cpTimes[i]);
    }
    std::printf("\n");
    return ok && copied && rebuilt == layout.usedBytes ? 0 : 1;
}
