// The archive check on a full directory (32 767 rows) with many duplicates:
// the counting check, and with --pairwise the all-pairs comparison it
// replaces, for reference.
#include "ScriptedDesktop.h"
#include "TestFolder.h"
#include "archive/ArchiveCheck.h"
#include "window/ReportCommands.h"

#include <chrono>
#include <cstdio>
#include <cstring>

using namespace korvel;

namespace {

double Seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

} // namespace

int main(int argc, char** argv) {
    const bool pairwise = argc > 1 && std::strcmp(argv[1], "--pairwise") == 0;
    const std::uint32_t rows = static_cast<std::uint32_t>(MaxRecords);
    test::TestFolder folder;
    std::vector<DirRecord> records;
    for (std::uint32_t i = 0; i < rows; ++i) {
        // 1 000 names held by about 33 rows each, every 100th row a marker.
        const std::string name =
            i % 100 == 0 ? std::string(MarkerName) : "model_" + std::to_string(i % 1000) + ".dff";
        records.push_back({i, 1, name});
    }
    test::WriteArchive(folder / "big.img", records, 0);
    test::ScriptedDesktop desktop;
    Settings settings(folder / "korvel.ini", folder / "lang.ini");
    settings.EnsureSettingsFile();
    Editor editor(desktop, settings, folder.path());
    if (!editor.OpenArchive((folder / "big.img").string())) {
        return 1;
    }

    auto start = std::chrono::steady_clock::now();
    const auto pairs = ForEachDuplicatePair(editor.table(), [](const std::string&) {});
    const double counting = Seconds(start);

    desktop.answer({"yes"});
    start = std::chrono::steady_clock::now();
    CheckArchiveAsking(editor);
    const double command = Seconds(start);

    std::printf("rows: %u, duplicate pairs: %llu, report: %zu bytes\n", rows,
                static_cast<unsigned long long>(pairs), desktop.clipboard.size());
    std::printf("ForEachDuplicatePair: %.4f s\n", counting);
    std::printf("CheckArchiveAsking (with status texts, report, clipboard): %.4f s\n", command);

    if (pairwise) {
        const auto& t = editor.table();
        start = std::chrono::steady_clock::now();
        std::size_t found = 0;
        for (std::size_t i = 0; i < t.size(); ++i) {
            for (std::size_t j = i + 1; j < t.size(); ++j) {
                found += t[i].name != MarkerName && t[j].name == t[i].name;
            }
        }
        std::printf("all-pairs comparison (reference): %.4f s, %zu pairs\n", Seconds(start), found);
    }
    return 0;
}
