// Rebuild against a plain copy of the data file: the rebuild streams every
// entry (copy_file_range) and flushes, so it should stay close to cp.
#include "ScriptedDesktop.h"
#include "ScriptedEntryDialogs.h"
#include "TestFolder.h"
#include "archive/EntryCommands.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

using namespace korvel;

int main(int argc, char** argv) {
    const std::uint32_t entries = argc > 1 ? static_cast<std::uint32_t>(std::atoi(argv[1])) : 4000;
    const std::uint32_t sectors = 32; // 64 KiB each
    test::TestFolder folder;
    std::vector<DirRecord> records;
    for (std::uint32_t i = 0; i < entries; ++i) {
        records.push_back({i * sectors, sectors, "e" + std::to_string(i) + ".dff"});
    }
    test::WriteArchive(folder / "big.img", records, std::uint64_t{entries} * sectors * SectorSize);
    const double megabytes = entries * sectors * SectorSize / 1048576.0;

    const std::string cp =
        "cp " + (folder / "big.img").string() + " " + (folder / "copy.img").string() + " && sync";
    auto start = std::chrono::steady_clock::now();
    if (std::system(cp.c_str()) != 0) {
        return 1;
    }
    const double cpSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();

    test::ScriptedDesktop desktop;
    Settings settings(folder / "korvel.ini", folder / "lang.ini");
    settings.EnsureSettingsFile();
    Editor editor(desktop, settings, folder.path());
    test::ScriptedEntryDialogs dialogs(settings);
    EntryCommands commands(editor, dialogs);
    if (!editor.OpenArchive((folder / "big.img").string())) {
        return 1;
    }
    start = std::chrono::steady_clock::now();
    const bool ok = commands.Rebuild();
    const double rebuildSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("rebuild of %u entries (%.0f MiB): %.3f s (%s); cp + sync: %.3f s; ratio %.2f\n",
                entries, megabytes, rebuildSeconds, ok ? "ok" : "FAILED", cpSeconds,
                rebuildSeconds / cpSeconds);
    return ok ? 0 : 1;
}
