// Opens an archive of 32 767 entries (the most a directory holds) in the real
// main window, fills and paints the list, sorts it by name and selects in it,
// and prints how long each step took. Runs offscreen unless told otherwise.
#include "archive/Format.h"
#include "platform/FileSystem.h"
#include "ui/ArchiveView.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>

namespace fs = std::filesystem;

namespace {

std::string MakeArchive(const fs::path& folder) {
    static const char* const endings[] = {".dff", ".txd", ".col", ".ifp", ".dat"};
    std::mt19937 random(7);
    std::vector<korvel::DirRecord> records;
    for (std::uint32_t i = 0; i < korvel::MaxRecords; ++i) {
        std::string name;
        for (int c = 0; c < 10; ++c) {
            name += static_cast<char>('a' + random() % 26);
        }
        name += endings[random() % 5];
        records.push_back({i, 1, name});
    }
    const fs::path img = folder / "big.img";
    korvel::WriteFileAtomically(folder / "big.dir", korvel::EncodeDirectory(records));
    korvel::CreateEmptyFile(img);
    fs::resize_file(img, korvel::MaxRecords * korvel::SectorSize); // sparse
    return img.string();
}

template <typename Step> double Measure(korvel::ui::MainWindow& window, Step&& step) {
    QElapsedTimer timer;
    timer.start();
    step();
    QApplication::processEvents();
    window.archiveView()->viewport()->repaint();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const fs::path folder =
        fs::temp_directory_path() / ("korvel-bench-" + std::to_string(::getpid()));
    fs::create_directories(folder);
    fs::copy_file(KORVEL_LANG_INI, folder / "lang.ini", fs::copy_options::overwrite_existing);
    setenv("KORVEL_HOME", folder.c_str(), 1);
    int result = 0;
    {
        QApplication app(argc, argv);
        korvel::Settings settings(folder / "korvel.ini", folder / "lang.ini");
        settings.EnsureSettingsFile();
        settings.WriteSetting("False", "firstRun");
        settings.WriteSetting("offset", "sort");
        const std::string archive = MakeArchive(folder);

        korvel::ui::MainWindow window(settings);
        window.startup("");
        window.show();
        QApplication::processEvents();

        const int rounds = 5;
        double open = 0, sortName = 0, sortIndex = 0, selectAll = 0, selectType = 0;
        double filterTyping = 0, filterClear = 0, headerSort = 0;
        for (int round = 0; round < rounds; ++round) {
            open += Measure(window, [&] { window.editor().OpenArchive(archive); });
            sortName += Measure(window, [&] { window.runCommand("SortName"); });
            selectAll += Measure(window, [&] { window.runCommand("EditSelect"); });
            selectType += Measure(window, [&] { window.runCommand("SelectModels"); });
            sortIndex += Measure(window, [&] { window.runCommand("SortOffset"); });
            // Typed a letter at a time, each one filtering the whole list.
            filterTyping += Measure(window, [&] {
                for (const QString typed : {"a", "a*", "a*b", "a*b?", "a*b?.d"}) {
                    window.filterBox()->setText(typed);
                    QApplication::processEvents();
                }
            });
            filterClear += Measure(window, [&] { window.filterBox()->clear(); });
            headerSort += Measure(window, [&] { window.archiveView()->model()->sort(2); });
            window.archiveView()->clearHeaderSort();
        }
        const auto rows = window.editor().table().size();
        std::printf("rows: %zu (mean of %d rounds, milliseconds)\n", rows, rounds);
        std::printf("open archive and fill view : %8.2f\n", open / rounds);
        std::printf("sort by name (with reload) : %8.2f\n", sortName / rounds);
        std::printf("sort by index (with reload): %8.2f\n", sortIndex / rounds);
        std::printf("select all (F8)            : %8.2f\n", selectAll / rounds);
        std::printf("select model files         : %8.2f\n", selectType / rounds);
        std::printf("filter, 5 keystrokes       : %8.2f\n", filterTyping / rounds);
        std::printf("clear the filter           : %8.2f\n", filterClear / rounds);
        std::printf("header sort by size        : %8.2f\n", headerSort / rounds);
        result = rows == korvel::MaxRecords ? 0 : 1;
    }
    std::error_code ec;
    fs::remove_all(folder, ec);
    return result;
}
