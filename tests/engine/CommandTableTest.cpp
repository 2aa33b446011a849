#include "window/CommandTable.h"

#include "window/EntryCommands.h"
#include "window/MainCommands.h"
#include "window/QuickReplaceCommand.h"

#include "EditorHarness.h"
#include "ScriptedEntryDialogs.h"

#include <set>

namespace korvel {
namespace {

struct NoLooks : ListAppearance {
    void ClearColumnHeaders() override {}
    void AddColumnHeader(const std::string&, int) override {}
    void SetGridLines(bool) override {}
    void SetRowStripes(std::optional<std::pair<Rgb, Rgb>>) override {}
};

struct NoQuickReplaceDialogs : QuickReplaceDialogs {
    std::optional<MissingFileOption> QrMissing(const std::string&, const std::string&) override {
        return std::nullopt;
    }
};

// Records which window-only command ran.
struct RecordingWindow : WindowOnlyCommands {
    std::vector<std::string> ran;
    void CloseMainWindow() override { ran.push_back("close"); }
    void ShowAboutBox() override { ran.push_back("about"); }
    void OpenFindWindow() override { ran.push_back("find"); }
    void OpenFindInFilesWindow() override { ran.push_back("findInFiles"); }
    void OpenLineColoursDialog() override { ran.push_back("lineColours"); }
    void OpenScanOptionsDialog() override { ran.push_back("scanOptions"); }
    void ShowEntryList(ShowMeList list) override { ran.push_back("list" + list.title); }
    void CopySelectedAsFiles() override { ran.push_back("copyFiles"); }
};

class CommandTableTest : public test::EditorHarness {
protected:
    NoLooks looks;
    MainCommands main{editor, looks};
    test::ScriptedEntryDialogs entryDialogs{settings};
    EntryCommands entries{editor, entryDialogs};
    NoQuickReplaceDialogs quickReplaceDialogs;
    QuickReplace quickReplace{editor, entries, quickReplaceDialogs};
    RecordingWindow window;
    std::vector<MenuCommand> table =
        BuildCommandTable({editor, main, entries, quickReplace, window});
};

TEST_F(CommandTableTest, EveryMenuItemHasExactlyOneCommandAndEveryCommandAnItem) {
    const std::vector<std::string> items = CommandItemNames();
    std::multiset<std::string> bound;
    for (const MenuCommand& command : table) {
        EXPECT_TRUE(command.run) << command.item;
        bound.insert(command.item);
    }
    EXPECT_EQ(bound, std::multiset<std::string>(items.begin(), items.end()));
    // recent1..3 and lang1..7 are items too, not just the fixed commands.
    EXPECT_EQ(bound.count("recent3") + bound.count("lang7"), 2u);
}

TEST_F(CommandTableTest, WindowOnlyItemsReachTheirWindowCommand) {
    openArchive("a.img", {{0, 1, "car.dff"}, {1, 1, "car.txd"}}, 2 * 2048);
    const std::pair<std::string_view, std::string> cases[] = {
        {"FileExit", "close"},          {"HelpAbout", "about"},
        {"EditFind", "find"},           {"EditFindIn", "findInFiles"},
        {"OptsPick", "lineColours"},    {"ScanSettings", "scanOptions"},
        {"EditCopyFiles", "copyFiles"}, {"ShowMeTextures", "list " + text("show4") + "1]"},
    };
    for (const auto& [item, expected] : cases) {
        window.ran.clear();
        for (const MenuCommand& command : table)
            if (command.item == item)
                command.run();
        EXPECT_EQ(window.ran, std::vector<std::string>{expected}) << item;
    }
}

} // namespace
} // namespace korvel
