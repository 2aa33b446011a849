// Extracting every entry against unpacking a tar that holds the same files.
// usage: bench_extract [entries=20000] [archive MiB=1024] [unused %=25] [rounds=3]
#include "BenchSupport.h"
#include "ScriptedEntryDialogs.h"
#include "archive/EntryCommands.h"

#include <cstdio>

using namespace korvel;
using namespace korvel::bench;

int main(int argc, char** argv) {
    const auto entries = static_cast<std::uint32_t>(Arg(argc, argv, 1, 20000));
    const std::uint64_t archiveMiB = Arg(argc, argv, 2, 1024);
    const auto unused = static_cast<unsigned>(Arg(argc, argv, 3, 25));
    const auto rounds = std::max(1ul, Arg(argc, argv, 4, 3));
    test::TestFolder folder;
    const Layout layout = MakeLayout(entries, archiveMiB, unused);
    test::WriteArchive(folder / "big.img", layout.records, layout.dataBytes);

    NullDesktop desktop;
    Settings settings(folder / "korvel.ini", folder / "lang.ini");
    settings.EnsureSettingsFile();
    Editor editor(desktop, settings, folder.path());
    test::ScriptedEntryDialogs dialogs(settings);
    EntryCommands commands(editor, dialogs);
    if (!editor.OpenArchive((folder / "big.img").string())) {
        return 1;
    }
    std::filesystem::create_directories(folder / "out");
    settings.WriteSetting((folder / "out").string(), "lastExtract");
    std::size_t failed = 0;
    std::vector<double> extractTimes;
    for (unsigned long round = 0; round < rounds && failed == 0; ++round) {
        std::filesystem::remove_all(folder / "out");
        std::filesystem::create_directories(folder / "out");
        editor.table().selectAll();
        FlushAll();
        extractTimes.push_back(Seconds([&] { failed = commands.EditQuick(); }));
    }
    const double extractSeconds = Median(extractTimes);

    if (!Run("tar -cf " + Quoted(folder / "all.tar") + " -C " + Quoted(folder / "out") + " .") ||
        !Run("cat " + Quoted(folder / "all.tar") + " > /dev/null")) {
        return 1;
    }
    bool unpacked = true;
    std::vector<double> tarTimes;
    for (unsigned long round = 0; round < rounds && unpacked; ++round) {
        std::filesystem::remove_all(folder / "untar");
        std::filesystem::create_directories(folder / "untar");
        FlushAll();
        tarTimes.push_back(Seconds([&] {
            unpacked =
                Run("tar -xf " + Quoted(folder / "all.tar") + " -C " + Quoted(folder / "untar"));
        }));
    }
    const double tarSeconds = Median(tarTimes);
    std::printf("extract: %u entries, %.0f MiB of entries, median of %lu rounds\n", entries,
                layout.usedBytes / 1048576.0, rounds);
    std::printf("  extract all %.3f s (%zu failed); tar -xf %.3f s; ratio %.2f (target <= 1.0)\n",
                extractSeconds, failed, tarSeconds, extractSeconds / tarSeconds);
    return failed == 0 && unpacked ? 0 : 1;
}
