#include "window/MainCommands.h"
#include "platform/Folders.h"
#include "window/MenuTree.h"

#include "ScriptedDesktop.h"
#include "TestFolder.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

using test::ScriptedDesktop;
using test::TestFolder;
namespace fs = std::filesystem;

// Records what the commands asked of the list's looks.
struct RecordingList : ListAppearance {
    std::vector<std::string> headers;
    std::vector<int> widths;
    int clears = 0;
    std::optional<bool> grid;
    int stripeCalls = 0;
    std::optional<std::pair<Rgb, Rgb>> stripes;

    void ClearColumnHeaders() override {
        ++clears;
        headers.clear();
        widths.clear();
    }
    void AddColumnHeader(const std::string& text, int widthTwips) override {
        headers.push_back(text);
        widths.push_back(widthTwips);
    }
    void SetGridLines(bool shown) override { grid = shown; }
    void SetRowStripes(std::optional<std::pair<Rgb, Rgb>> colours) override {
        ++stripeCalls;
        stripes = colours;
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
    std::string archive(const std::string& name, const std::vector<std::string>& names) {
        std::vector<DirRecord> records;
        std::uint32_t sector = 0;
        for (const std::string& entry : names) {
            records.push_back({sector++, 1, entry});
        }
        const fs::path img = folder / name;
        test::WriteArchive(img, records, SectorSize * names.size());
        return img.string();
    }
    std::vector<std::string> rowNames() const {
        std::vector<std::string> names;
        for (const Entry& row : editor.table().rows()) {
            names.push_back(row.name);
        }
        return names;
    }
    std::vector<std::string> selectedNames() const {
        std::vector<std::string> names;
        for (const Entry& row : editor.table().rows()) {
            if (row.selected) {
                names.push_back(row.name);
            }
        }
        return names;
    }
};

TEST(CommandLine, ArgumentsAreJoinedAndQuotesRemoved) {
    EXPECT_EQ(CommandLineFromArguments({}), "");
    EXPECT_EQ(CommandLineFromArguments({"\"C:\\x\\a.img\""}), "C:\\x\\a.img");
    EXPECT_EQ(CommandLineFromArguments({"/a/my", "game\".img"}), "/a/my game.img");
}

TEST(ColourValues, WholeNumbersUpTo255) {
    const std::pair<std::string, std::optional<int>> cases[] = {{"0", 0},
                                                                {"233", 233},
                                                                {"255", 255},
                                                                {"256", 255},
                                                                {"99999999999", 255},
                                                                {"-1", std::nullopt},
                                                                {"1.5", std::nullopt},
                                                                {"abc", std::nullopt},
                                                                {"", std::nullopt},
                                                                {"Settings error", std::nullopt}};
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(ColourComponent(text), value) << text;
    }
}

TEST_F(MainFixture, FirstStartWritesDefaultsAsksOnceAndShowsOnlyThePlaceholder) {
    desktop.answer({"no"});
    commands.Startup("");
    EXPECT_TRUE(fs::exists(SettingsFilePath()));
    EXPECT_TRUE(fs::is_directory(TempsFolder()));
    EXPECT_EQ(desktop.said("ask").size(), 1u);
    EXPECT_NE(desktop.said("ask " + settings.LookupText("frun6")).size(), 0u);
    EXPECT_EQ(settings.ReadSetting("firstRun"), "False");
    EXPECT_TRUE(editor.table().empty());
    EXPECT_TRUE(editor.table().placeholder());
    EXPECT_FALSE(editor.isOpen());
    EXPECT_EQ(desktop.status, "Korvel 1.0");
    EXPECT_TRUE(desktop.shellOpened.empty());
    // autoLoad is "True" but recent1 is "none": nothing opened, OptAuto checked.
    EXPECT_TRUE(editor.menu().isChecked("OptAuto"));
    EXPECT_FALSE(editor.menu().isEnabled("FileClose"));
    // Columns came first, then the menus were relabelled and the slots filled.
    EXPECT_EQ(list.headers, (std::vector<std::string>{"Name", "Offset", "Size"}));
    EXPECT_EQ(list.widths, (std::vector<int>{2200, 1000, 1000}));
    EXPECT_EQ(editor.menu().caption("FileOpen"), settings.LookupText("menua3"));
    EXPECT_EQ(editor.menu().caption("lang2"), "francais");
    EXPECT_TRUE(editor.menu().isChecked("lang1"));

    // The second start asks nothing (no answers queued: a question would throw).
    MainCommands again(editor, list);
    again.Startup("");
    EXPECT_EQ(desktop.said("ask").size(), 1u);
}

TEST_F(MainFixture, FirstRunYesOpensTheReadme) {
    desktop.answer({"yes"});
    commands.Startup("");
    ASSERT_EQ(desktop.shellOpened.size(), 1u);
    EXPECT_EQ(desktop.shellOpened[0], (ResourceFolder() / "readme - FAQ.html").string());
    EXPECT_EQ(settings.ReadSetting("firstRun"), "False");
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
        {folder.path().string() + "/notes.txt", "True", recent, true},
        {"", "true", "", false},
        {folder.path().string() + "/GONE.IMG", "True", "", false}, // ".IMG" counts
    };
    for (const auto& c : cases) {
        settings.WriteSetting(recent, "recent1");
        settings.WriteSetting(c.autoLoad, "autoLoad");
        editor.menu().setChecked("OptAuto", false);
        MainCommands fresh(editor, list);
        fresh.Startup(c.commandLine);
        EXPECT_EQ(editor.isOpen() ? editor.dataPath() : "", c.opened) << c.commandLine;
        EXPECT_EQ(editor.menu().isChecked("OptAuto"), c.optAuto) << c.commandLine;
    }
}

TEST_F(MainFixture, SingleRowIsUnselectedAtStart) {
    quietSettings();
    const std::string one = archive("one.img", {"only.dff"});
    // Selection survives reopening only through the table; start-up clears it.
    commands.Startup(one);
    editor.table().setSelected(0, true);
    MainCommands again(editor, list);
    again.Startup(one);
    EXPECT_EQ(editor.table().selectedCount(), 0u);
}

TEST_F(MainFixture, StartupOptionsFollowTheSettings) {
    struct Case {
        std::string sort;
        std::string grid;
        std::string colours;
        std::string deleteProm;
        bool byName;
    } cases[] = {
        {"offset", "True", "True", "1", false},
        {"name", "False", "true", "false", true},
        {"", "", "", "garbage", true}, // missing keys: name order, nothing on
    };
    for (const Case& c : cases) {
        fs::remove(SettingsFilePath());
        quietSettings();
        for (const auto& [key, value] :
             {std::pair{"sort", c.sort}, std::pair{"showGrid", c.grid},
              std::pair{"showColors", c.colours}, std::pair{"deleteProm", c.deleteProm}}) {
            if (value.empty()) {
                // Blank the key so it reads "Settings error".
                settings.WriteSetting("", key);
            } else {
                settings.WriteSetting(value, key);
            }
        }
        RecordingList freshList;
        MainCommands fresh(editor, freshList);
        fresh.ApplyStartupSettings();
        SCOPED_TRACE(c.sort);
        EXPECT_EQ(editor.menu().isChecked("SortName"), c.byName);
        EXPECT_EQ(editor.menu().isChecked("SortOffset"), !c.byName);
        EXPECT_EQ(editor.table().order(),
                  c.byName ? EntryTable::Order::Name : EntryTable::Order::Index);
        EXPECT_EQ(editor.menu().isChecked("OptGrid"), c.grid == "True");
        EXPECT_EQ(freshList.grid.has_value(), c.grid == "True");
        EXPECT_EQ(editor.menu().isChecked("OptCols"), c.colours == "True");
        EXPECT_EQ(freshList.stripeCalls, c.colours == "True" ? 1 : 0);
        EXPECT_EQ(editor.menu().isChecked("OptConDelete"), c.deleteProm == "1");
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
    test::WriteBytes(TempsFolder() / "b.txd", "y");
    fs::create_directories(TempsFolder() / "sub");
    commands.Shutdown();
    EXPECT_FALSE(fs::exists(TempsFolder() / "a.dff"));
    EXPECT_FALSE(fs::exists(TempsFolder() / "b.txd"));
    EXPECT_TRUE(fs::exists(TempsFolder() / "sub"));
    EXPECT_EQ(rebuilds, 1);
}

TEST_F(MainFixture, OptionItemsToggleTheirKeys) {
    quietSettings();
    for (const OptionSetting& option : OptionSettings) {
        for (const char* expected : {"True", "False"}) {
            commands.ToggleOption(option.item);
            EXPECT_EQ(editor.menu().isChecked(option.item), expected == std::string("True"));
            EXPECT_EQ(settings.ReadSetting(option.settingKey), expected) << option.item;
        }
    }
}

TEST_F(MainFixture, SortingReloadsInTheOrderAskedFor) {
    quietSettings();
    const std::string path = archive("order.img", {"b.dff", "a.txd", "c.ifp"});
    ASSERT_TRUE(editor.OpenArchive(path));
    commands.SortByName();
    EXPECT_EQ(rowNames(), (std::vector<std::string>{"a.txd", "b.dff", "c.ifp"}));
    EXPECT_EQ(settings.ReadSetting("sort"), "name");
    EXPECT_TRUE(editor.menu().isChecked("SortName"));
    EXPECT_FALSE(editor.menu().isChecked("SortOffset"));
    EXPECT_EQ(desktop.status, settings.LookupText("sort1"));
    commands.SortByIndex();
    EXPECT_EQ(rowNames(), (std::vector<std::string>{"b.dff", "a.txd", "c.ifp"}));
    EXPECT_EQ(settings.ReadSetting("sort"), "offset");
    EXPECT_EQ(desktop.status, settings.LookupText("sort2"));
}

TEST_F(MainFixture, SortingWithNothingOpenReopensTheMostRecentArchive) {
    quietSettings();
    settings.WriteSetting(archive("recent.img", {"z.dff", "y.dff"}), "recent1");
    editor.LoadRecentMenu();
    commands.SortByName();
    EXPECT_EQ(rowNames(), (std::vector<std::string>{"y.dff", "z.dff"}));
}

TEST_F(MainFixture, GridAndStripesFollowTheirItems) {
    quietSettings();
    commands.ToggleGridLines();
    EXPECT_EQ(list.grid, true);
    EXPECT_EQ(settings.ReadSetting("showGrid"), "True");
    commands.ToggleGridLines();
    EXPECT_EQ(list.grid, false);
    EXPECT_EQ(settings.ReadSetting("showGrid"), "False");

    settings.WriteSetting("300", "l1r");
    commands.ToggleRowStripes();
    ASSERT_TRUE(list.stripes.has_value());
    EXPECT_EQ(list.stripes->first, (Rgb{255, 233, 233}));
    EXPECT_EQ(list.stripes->second, (Rgb{255, 255, 255}));
    EXPECT_TRUE(desktop.said("message").empty());

    // Unchecking keeps the stripes until the next start and says so.
    commands.ToggleRowStripes();
    EXPECT_TRUE(list.stripes.has_value());
    EXPECT_EQ(settings.ReadSetting("showColors"), "False");
    EXPECT_EQ(desktop.said("message(Information) Korvel: " + settings.LookupText("color1")).size(),
              1u);

    settings.WriteSetting("12.5", "l2b");
    commands.PaintRowStripes();
    EXPECT_FALSE(list.stripes.has_value());
}

TEST_F(MainFixture, SelectByTypeTestsTheLastFourCharactersLowerCased) {
    quietSettings();
    const std::string marker(MarkerName);
    ASSERT_TRUE(editor.OpenArchive(
        archive("types.img", {"car.dff", "CAR.DFF", "car.txd", "walk.ifp", "wall.col", "xdff",
                              marker, "readme", "dff", "notes.dffx"})));
    const struct {
        std::string item;
        std::vector<std::string> selected;
        std::string typeKey;
    } cases[] = {
        {"SelectModels", {"car.dff", "CAR.DFF"}, "select7"},
        {"SelectTextures", {"car.txd"}, "select8"},
        {"SelectAni", {"walk.ifp"}, "select10"},
        {"SelectCols", {"wall.col"}, "select9"},
        {"SelectAllOther", {"xdff", "readme", "dff", "notes.dffx"}, "select6"},
    };
    for (const auto& c : cases) {
        editor.table().selectAll();
        commands.SelectByType(c.item);
        EXPECT_EQ(selectedNames(), c.selected) << c.item;
        EXPECT_EQ(desktop.status, settings.LookupText("select1") + " " +
                                      settings.LookupText(c.typeKey) + " " +
                                      settings.LookupText("select2"));
    }
}

TEST_F(MainFixture, SelectByTypeWithNoMatchClearsAndSaysNotFound) {
    quietSettings();
    ASSERT_TRUE(editor.OpenArchive(archive("noifp.img", {"a.dff", "b.txd"})));
    editor.table().selectAll();
    commands.SelectByType("SelectAni");
    EXPECT_EQ(editor.table().selectedCount(), 0u);
    EXPECT_EQ(desktop.status,
              settings.LookupText("select4") + " " + settings.LookupText("select10") + " " +
                  settings.LookupText("select12") + " " + settings.LookupText("select5"));
}

TEST_F(MainFixture, EditSelectSelectsEveryRowAndCountsThem) {
    quietSettings();
    std::vector<std::string> names;
    for (int i = 0; i < 500; ++i) {
        names.push_back("e" + std::to_string(i) + ".dff");
    }
    ASSERT_TRUE(editor.OpenArchive(archive("big.img", names)));
    commands.SelectAllEntries();
    EXPECT_EQ(editor.table().selectedCount(), 500u);
    EXPECT_EQ(desktop.status,
              settings.LookupText("select1") + " 500 " + settings.LookupText("select2"));
    commands.ClearSelection();
    EXPECT_EQ(editor.table().selectedCount(), 0u);
}

TEST_F(MainFixture, SwitchingLanguageRelabelsReloadsAndSaysSo) {
    quietSettings();
    const std::string path = archive("lang.img", {"a.dff"});
    settings.WriteSetting(path, "recent1");
    settings.WriteSetting("False", "autoLoad");
    commands.Startup("");
    ASSERT_FALSE(editor.isOpen());
    const int clearsBefore = list.clears;

    commands.SwitchLanguage(3); // deutsch, third in the shipped file
    EXPECT_EQ(settings.ReadSetting("language"), "deutsch");
    EXPECT_EQ(editor.menu().caption("FileOpen"), settings.LookupText("menua3"));
    EXPECT_NE(editor.menu().caption("FileOpen"), "Open");
    EXPECT_TRUE(editor.menu().isChecked("lang3"));
    EXPECT_FALSE(editor.menu().isChecked("lang1"));
    EXPECT_EQ(list.clears, clearsBefore + 1);
    EXPECT_EQ(list.headers.size(), 3u);
    EXPECT_EQ(list.headers[0], settings.LookupText("head1"));
    // Nothing was open: the reload opened the most recent archive.
    EXPECT_EQ(editor.dataPath(), path);
    EXPECT_EQ(desktop.status, "deutsch " + settings.LookupText("sd5"));
}

TEST_F(MainFixture, PickingTheUnfilledFirstSlotMakesEveryTextTheDefault) {
    quietSettings();
    test::WriteBytes(folder / "lang.ini", "no sections at all\n");
    commands.Startup("");
    commands.SwitchLanguage(1);
    EXPECT_EQ(settings.ReadSetting("language"), "lang1");
    EXPECT_EQ(editor.menu().caption("MenuFile"), "Settings error");
    EXPECT_EQ(list.headers, (std::vector<std::string>(3, "Settings error")));
}

} // namespace
} // namespace korvel
