#include "window/MainCommands.h"
#include "platform/Folders.h"
#include "window/MenuTree.h"

#include "ScriptedDesktop.h"
#include "TestFolder.h"

#include <gtest/gtest.h>

#include <functional>

namespace korvel {
namespace {

using test::ScriptedDesktop;
using test::TestFolder;
namespace fs = std::filesystem;

// Records what the commands asked of the list's looks.
struct RecordingList : ListAppearance {
    std::vector<std::string> headers;
    int stripeCalls = 0;
    std::optional<bool> grid;
    std::optional<std::pair<Rgb, Rgb>> stripes;

    void ClearColumnHeaders() override { headers.clear(); }
    void AddColumnHeader(const std::string& text, int) override { headers.push_back(text); }
    void SetGridLines(bool shown) override { grid = shown; }
    void SetRowStripes(std::optional<std::pair<Rgb, Rgb>> colours) override {
        ++stripeCalls, stripes = colours;
    }
};

struct MainFixture : ::testing::Test {
    TestFolder folder;
    ScriptedDesktop desktop;
    Settings settings{SettingsFilePath(), LanguageFilePath()};
    Editor editor{desktop, settings, folder.path()};
    RecordingList list;
    MainCommands commands{editor, list};

    // A settings file that asks nothing at start.
    void quietSettings() {
        settings.EnsureSettingsFile();
        settings.WriteSetting("False", "firstRun");
    }
    // An archive of one-sector entries with these names.
    std::string archive(const std::string& name, const std::vector<std::string>& names) {
        std::vector<DirRecord> records;
        for (const std::string& entry : names)
            records.push_back({static_cast<std::uint32_t>(records.size()), 1, entry});
        test::WriteArchive(folder / name, records, SectorSize * names.size());
        return (folder / name).string();
    }
    std::vector<std::string> rowNames(bool onlySelected = false) const {
        std::vector<std::string> names;
        for (const Entry& row : editor.table().rows())
            if (row.selected || !onlySelected)
                names.push_back(row.name);
        return names;
    }
    std::string text(const char* key) const { return settings.LookupText(key); }
};

TEST(CommandLine, ArgumentsAreJoinedAndQuotesRemoved) {
    EXPECT_EQ(CommandLineFromArguments({}), "");
    EXPECT_EQ(CommandLineFromArguments({"\"C:\\x\\a.img\""}), "C:\\x\\a.img");
    EXPECT_EQ(CommandLineFromArguments({"/a/my", "game\".img"}), "/a/my game.img");
}

TEST(ColourValues, WholeNumbersUpTo255) {
    const std::optional<int> none;
    const std::pair<std::string, std::optional<int>> cases[] = {
        {"0", 0},     {"255", 255},  {"256", 255},  {"99999999999", 255},
        {"-1", none}, {"1.5", none}, {"abc", none}, {"", none}};
    for (const auto& [text, value] : cases)
        EXPECT_EQ(ColourComponent(text), value) << text;
}

TEST_F(MainFixture, FirstStartWritesDefaultsAsksOnceAndShowsOnlyThePlaceholder) {
    const std::string readme = (ResourceFolder() / "readme - FAQ.html").string();
    for (const std::string answer : {"no", "yes", ""}) { // "": the next start asks nothing
        if (!answer.empty()) {
            fs::remove(SettingsFilePath());
            desktop.answer({answer}); // an unexpected question would throw
        }
        desktop.shellOpened.clear();
        RecordingList freshList;
        MainCommands fresh(editor, freshList);
        fresh.Startup("");
        EXPECT_TRUE(fs::is_directory(TempsFolder()));
        EXPECT_EQ(settings.ReadSetting("firstRun"), "False");
        EXPECT_EQ(desktop.said("ask " + text("frun6")).size(), answer.empty() ? 0u : 1u);
        desktop.conversation.clear();
        EXPECT_EQ(desktop.shellOpened,
                  answer == "yes" ? std::vector{readme} : std::vector<std::string>{});
        EXPECT_EQ(freshList.headers, (std::vector<std::string>{"Name", "Offset", "Size"}));
    }
    EXPECT_TRUE(editor.table().placeholder());
    EXPECT_EQ(desktop.status, "Korvel 1.0");
    // autoLoad is "True" but recent1 is "none": nothing opened, OptAuto checked.
    EXPECT_FALSE(editor.isOpen());
    EXPECT_TRUE(editor.menu().isChecked("OptAuto"));
}

TEST_F(MainFixture, CommandLineArchiveOrElseTheMostRecentWhenAutoLoadIsExactlyTrue) {
    quietSettings();
    const std::string recent = archive("recent.img", {"r.dff"});
    const std::string wanted = archive("my game.img", {"a.dff", "b.txd"});
    const struct {
        std::string commandLine;
        std::string autoLoad;
        std::string opened; // empty: closed
        bool optAuto;
    } cases[] = {
        {"\"" + wanted + "\"", "True", wanted, false},
        {"\"" + wanted + "\"", "True", wanted, false}, // again, with a row selected
        {folder.path().string() + "/notes.txt", "True", recent, true},
        {"", "true", "", false},
        {folder.path().string() + "/GONE.IMG", "True", "", false}, // ".IMG" counts
    };
    for (const auto& c : cases) {
        settings.WriteSetting(recent, "recent1");
        settings.WriteSetting(c.autoLoad, "autoLoad");
        editor.menu().setChecked("OptAuto", false);
        if (editor.isOpen()) {
            editor.table().setSelected(0, true);
        }
        MainCommands fresh(editor, list);
        fresh.Startup(c.commandLine);
        EXPECT_EQ(editor.isOpen() ? editor.dataPath() : "", c.opened) << c.commandLine;
        EXPECT_EQ(editor.menu().isChecked("OptAuto"), c.optAuto) << c.commandLine;
        EXPECT_EQ(editor.table().selectedCount(), 0u) << c.commandLine;
    }
}

TEST_F(MainFixture, ShutdownOffersTheRebuildAndEmptiesTheTempsFolderButKeepsFolders) {
    quietSettings();
    commands.Startup("");
    int rebuilds = 0;
    editor.setRebuildCommand([&] { ++rebuilds; });
    editor.menu().setChecked("OptRebuildPrompt", true);
    editor.MarkArchiveChanged();
    test::WriteBytes(TempsFolder() / "a.dff", "x");
    fs::create_directories(TempsFolder() / "sub");
    commands.Shutdown();
    EXPECT_FALSE(fs::exists(TempsFolder() / "a.dff"));
    EXPECT_TRUE(fs::exists(TempsFolder() / "sub"));
    EXPECT_EQ(rebuilds, 1);
}

TEST_F(MainFixture, OptionItemsToggleTheirKeys) {
    quietSettings();
    const std::tuple<const char*, const char*, std::function<void()>> cases[] = {
        {"OptAuto", "autoLoad", [&] { commands.ToggleOption("OptAuto"); }},
        {"OptConDelete", "deleteProm", [&] { commands.ToggleOption("OptConDelete"); }},
        {"OptRebuildPrompt", "rebuildPrompt", [&] { commands.ToggleOption("OptRebuildPrompt"); }},
        {"OptGrid", "showGrid", [&] { commands.ToggleGridLines(); }}};
    for (const auto& [item, key, toggle] : cases) {
        for (const std::string expected : {"True", "False"}) {
            toggle();
            EXPECT_EQ(editor.menu().isChecked(item), expected == "True") << item;
            EXPECT_EQ(settings.ReadSetting(key), expected) << item;
        }
    }
    EXPECT_EQ(list.grid, false);
}

// The colours read are the row colours' to test; here: painted or not.
TEST_F(MainFixture, StripesStayUntilTheNextStartAndBadColoursPaintNone) {
    quietSettings();
    commands.ToggleRowStripes();
    EXPECT_TRUE(list.stripes.has_value());
    EXPECT_TRUE(desktop.said("message").empty());
    commands.ToggleRowStripes();
    EXPECT_TRUE(list.stripes.has_value());
    EXPECT_EQ(settings.ReadSetting("showColors"), "False");
    EXPECT_EQ(desktop.said("message(Information) Korvel: " + text("color1")).size(), 1u);
    settings.WriteSetting("12.5", "l2b");
    commands.PaintRowStripes();
    EXPECT_FALSE(list.stripes.has_value());
}

TEST_F(MainFixture, SortingReloadsInTheOrderAskedFor) {
    quietSettings();
    ASSERT_TRUE(editor.OpenArchive(archive("order.img", {"b.dff", "a.txd", "c.ifp"})));
    commands.SortByName();
    EXPECT_EQ(rowNames(), (std::vector<std::string>{"a.txd", "b.dff", "c.ifp"}));
    EXPECT_EQ(settings.ReadSetting("sort"), "name");
    EXPECT_EQ(desktop.status, text("sort1"));
    commands.SortByIndex();
    EXPECT_EQ(rowNames(), (std::vector<std::string>{"b.dff", "a.txd", "c.ifp"}));
    EXPECT_EQ(settings.ReadSetting("sort"), "offset");
    EXPECT_FALSE(editor.menu().isChecked("SortName"));
}

// Which names are of which kind is the name rules' to test; here: the
// selection and what the status says.
TEST_F(MainFixture, SelectionByTypeSelectsOnlyThatKindAndSaysHowMany) {
    quietSettings();
    ASSERT_TRUE(editor.OpenArchive(archive("types.img", {"a.dff", "B.DFF", "c.txd", "dff"})));
    const std::tuple<const char*, std::vector<std::string>, const char*> cases[] = {
        {"SelectModels", {"a.dff", "B.DFF"}, "select7"},
        {"SelectCols", {}, "select9"},
        {"SelectAllOther", {"dff"}, "select6"},
    };
    for (const auto& [item, selected, typeKey] : cases) {
        editor.table().selectAll();
        commands.SelectByType(item);
        EXPECT_EQ(rowNames(true), selected) << item;
        const std::string kind = text(typeKey);
        EXPECT_EQ(desktop.status, selected.empty()
                                      ? text("select4") + " " + kind + " " + text("select12") +
                                            " " + text("select5")
                                      : text("select1") + " " + kind + " " + text("select2"));
    }
    commands.SelectAllEntries();
    EXPECT_EQ(desktop.status, "Selected 4 files");
    commands.ClearSelection();
    EXPECT_EQ(editor.table().selectedCount(), 0u);
}

TEST_F(MainFixture, SwitchingLanguageRelabelsAndSaysSo) {
    quietSettings();
    const std::string path = archive("lang.img", {"a.dff"});
    settings.WriteSetting(path, "recent1");
    settings.WriteSetting("False", "autoLoad");
    commands.Startup("");
    ASSERT_FALSE(editor.isOpen());
    commands.SwitchLanguage(3); // deutsch, third in the shipped file
    EXPECT_EQ(settings.ReadSetting("language"), "deutsch");
    EXPECT_TRUE(editor.menu().isChecked("lang3"));
    EXPECT_FALSE(editor.menu().isChecked("lang1"));
    EXPECT_EQ(list.headers.front(), text("head1"));
    EXPECT_EQ(desktop.status, "deutsch " + text("sd5"));
    commands.SortByName();
    EXPECT_FALSE(editor.isOpen()); // neither reopened the most recent archive
}

} // namespace
} // namespace korvel
