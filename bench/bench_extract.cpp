// Extracting every entry against unpacking the same files from a tar.
#include "ScriptedDesktop.h"
#include "ScriptedEntryDialogs.h"
#include "TestFolder.h"
#include "archive/EntryCommands.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

using namespace korvel;

int main(int argc, char** argv) {
    const std::uint32_t entries = argc > 1 ? static_cast<std::uint32_t>(std::atoi(argv[1])) : 5000;
    const std::uint32_t sectors = 8; // 16 KiB each
    test::TestFolder folder;
    std::vector<DirRecord> records;
    for (std::uint32_t i = 0; i < entries; ++i) {
        records.push_back({i * sectors, sectors, "e" + std::to_string(i) + ".txd"});
    }
    test::WriteArchive(folder / "big.img", records, std::uint64_t{entries} * sectors * SectorSize);

    test::ScriptedDesktop desktop;
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
    editor.table().selectAll();
    auto start = std::chrono::steady_clock::now();
    const std::size_t failed = commands.EditQuick();
    const double extractSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();

    const std::string pack =
        "tar -cf " + (folder / "all.tar").string() + " -C " + (folder / "out").string() + " .";
    if (std::system(pack.c_str()) != 0) {
        return 1;
    }
    std::filesystem::create_directories(folder / "untar");
    const std::string unpack =
        "tar -xf " + (folder / "all.tar").string() + " -C " + (folder / "untar").string();
    start = std::chrono::steady_clock::now();
    if (std::system(unpack.c_str()) != 0) {
        return 1;
    }
    const double tarSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("extract-all of %u entries: %.3f s (%zu failed); tar -xf: %.3f s; ratio %.2f\n",
                entries, extractSeconds, failed, tarSeconds, extractSeconds / tarSeconds);
    return failed == 0 ? 0 : 1;
}
