#include "EntryFixture.h"
#include "window/LongWork.h"
#include "window/QuickReplaceCommand.h"

#include <functional>
#include <set>

namespace korvel::test {
namespace {

namespace fs = std::filesystem;

struct NoMissingFiles : QuickReplaceDialogs {
    std::optional<MissingFileOption> QrMissing(const std::string&, const std::string&) override {
        return {}; // never asked: every file is there
    }
};

class Cancel : public EntryFixture {
protected:
    // Four entries; in "in" their replacements and four new files; "out" empty.
    void fresh() {
        open({{0, 1, "a.dff"}, {1, 2, "b.dff"}, {3, 1, "c.dff"}, {4, 1, "d.dff"}}, 6 * SectorSize);
        files.clear();
        for (const char* name : {"a.dff", "b.dff", "c.dff", "d.dff", "e", "f", "g", "h"}) {
            files.push_back(input(name, Pattern(3000, name[0])));
        }
        fs::remove_all(folder / "out");
        fs::create_directories(folder / "out");
        settings.WriteSetting((folder / "out").string(), "lastExtract");
    }
    void run(const char* command, std::size_t items) {
        for (std::size_t row = 0; row < items; ++row) {
            editor.table().setSelected(row, true);
        }
        if (command == std::string("add")) {
            (void)commands.AddFileBatch({files.begin() + 4, files.begin() + 4 + items}, true);
        } else if (command == std::string("extract")) {
            (void)commands.ExtractSelectedToLastFolder();
        } else if (command == std::string("quick replace")) {
            (void)quick.ReplaceSelectedFromFolder((folder / "in").string());
        } else if (items == 4) {
            (void)commands.Rebuild();
        }
    }
    // The pair, whether the table agrees, the extracted files and what a rebuild left.
    std::set<std::string> leftOnDisk() {
        std::set<std::string> found{imgBytes(), dirBytes(),
                                    tableRecords() == records() ? "" : "table differs"};
        for (const auto& item : fs::recursive_directory_iterator(folder.path())) {
            const std::string name = item.path().filename().string();
            if (item.path().parent_path().filename() == "out" ||
                name.find(".korvel") != std::string::npos) {
                found.insert(name + ReadBytes(item.path()));
            }
        }
        return found;
    }

    std::vector<std::string> files;
    NoMissingFiles noMissing;
    QuickReplace quick{editor, commands, noMissing};
};

// Each long command cancelled at its k-th question "stop here?" leaves on disk exactly
// what the same command leaves when run on the items done before the stop, and says so.
TEST_F(Cancel, StopsAtASafePointWithWhatWasDoneSoFar) {
    // The extract folder is known after the first entry, so its questions start there. A
    // rebuild asks before the copy and before the journal: either way nothing changed.
    const std::tuple<const char*, const char*, std::function<std::size_t(std::size_t)>> cases[] = {
        {"add", "addCancelled", [](std::size_t k) { return k - 1; }},
        {"extract", "extractCancelled", [](std::size_t k) { return k; }},
        {"quick replace", "qrCancelled", [](std::size_t k) { return k - 1; }},
        {"rebuild", "rebuildCancelled", [](std::size_t k) { return k < 3 ? 0 : 4; }},
    };
    for (const auto& [command, key, doneAt] : cases) {
        for (std::size_t k = 1; doneAt(k) < 4; ++k) {
            SCOPED_TRACE(std::string(command) + " cancelled at question " + std::to_string(k));
            fresh();
            run(command, doneAt(k));
            const auto expected = leftOnDisk();
            fresh();
            desktop.cancelAtPoll = k;
            run(command, 4);
            desktop.cancelAtPoll = 0;
            EXPECT_EQ(leftOnDisk(), expected);
            EXPECT_EQ(desktop.status, settings.LookupFilled(key, {std::to_string(doneAt(k)), "4"}));
        }
    }
}

} // namespace
} // namespace korvel::test
