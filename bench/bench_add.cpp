// Adding 5 000 files to an archive of 5 000 entries with the duplicate scan
// on and off: with the name index the scan should cost little.
#include "ScriptedDesktop.h"
#include "ScriptedEntryDialogs.h"
#include "TestFolder.h"
#include "archive/EntryCommands.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

using namespace korvel;

namespace {

double AddAll(bool scan, std::uint32_t count) {
    test::TestFolder folder;
    std::vector<DirRecord> records;
    for (std::uint32_t i = 0; i < count; ++i) {
        records.push_back({i, 1, "old" + std::to_string(i) + ".dff"});
    }
    test::WriteArchive(folder / "a.img", records, std::uint64_t{count} * SectorSize);
    std::filesystem::create_directories(folder / "in");
    std::vector<std::string> paths;
    for (std::uint32_t i = 0; i < count; ++i) {
        paths.push_back((folder / "in" / ("new" + std::to_string(i) + ".dff")).string());
        test::WriteBytes(paths.back(), std::string(100 + i % 3000, 'x'));
    }
    test::ScriptedDesktop desktop;
    Settings settings(folder / "korvel.ini", folder / "lang.ini");
    settings.EnsureSettingsFile();
    settings.WriteSetting(scan ? "True" : "False", "addingScan");
    Editor editor(desktop, settings, folder.path());
    test::ScriptedEntryDialogs dialogs(settings);
    EntryCommands commands(editor, dialogs);
    if (!editor.OpenArchive((folder / "a.img").string())) {
        std::exit(1);
    }
    const auto start = std::chrono::steady_clock::now();
    if (commands.AddFileBatch(paths) != 0) {
        std::exit(1);
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main(int argc, char** argv) {
    const std::uint32_t count = argc > 1 ? static_cast<std::uint32_t>(std::atoi(argv[1])) : 5000;
    const double withScan = AddAll(true, count);
    const double withoutScan = AddAll(false, count);
    std::printf("adding %u files to %u entries: scan on %.3f s, scan off %.3f s\n", count, count,
                withScan, withoutScan);
    return 0;
}
