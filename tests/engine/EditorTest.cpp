#include "window/Editor.h"
#include "ScriptedDesktop.h"
#include "TestFolder.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

namespace fs = std::filesystem;
using test::ScriptedDesktop;

// An editor over a fresh editor folder with the shipped texts.
class EditorTest : public ::testing::Test {
protected:
    EditorTest()
        : settings(folder / "korvel.ini", folder / "lang.ini"),
          editor(desktop, settings, folder.path()) {
        settings.EnsureSettingsFile();
        editor.LoadRecentMenu();
        editor.ResetToClosed();
        editor.AddPlaceholderRow();
        desktop.conversation.clear();
    }

    std::string text(const char* key) const { return settings.LookupText(key); }
    std::string path(const std::string& name) const { return (folder / name).string(); }
    std::array<std::string, 3> recent() const {
        return {settings.ReadSetting("recent1"), settings.ReadSetting("recent2"),
                settings.ReadSetting("recent3")};
    }
    // A small archive: three entries in a data file that covers them.
    std::string makeArchive(const std::string& name) {
        test::WriteArchive(folder / name, {{0, 1, "b.dff"}, {1, 2, "a.txd"}, {3, 1, "c.ifp"}},
                           4 * SectorSize);
        return path(name);
    }
    std::vector<std::string> names() const {
        std::vector<std::string> out;
        for (const Entry& e : editor.table().rows())
            out.push_back(e.name);
        return out;
    }

    test::TestFolder folder;
    ScriptedDesktop desktop;
    Settings settings;
    Editor editor;
};

TEST_F(EditorTest, OpeningListsTheRecordsAndEnablesTheCommands) {
    const std::string img = makeArchive("gta3.img");
    ASSERT_TRUE(editor.OpenArchive(img));

    EXPECT_EQ(editor.dataPath(), img);
    EXPECT_EQ(editor.dirPath(), path("gta3.dir"));
    EXPECT_EQ(names(), (std::vector<std::string>{"b.dff", "a.txd", "c.ifp"}));
    EXPECT_FALSE(editor.table().placeholder());
    EXPECT_EQ(desktop.stats, text("stats1") + " 3");
    EXPECT_EQ(desktop.archivePath, img);
    EXPECT_EQ(editor.highestOffset(), 3 * SectorSize);
    EXPECT_EQ(recent()[0], img);
    EXPECT_EQ(editor.menu().caption("recent1"), img);
    EXPECT_TRUE(editor.menu().isChecked("recent1"));
    for (const std::string& name : ArchiveCommandNames()) {
        EXPECT_TRUE(editor.menu().isEnabled(name)) << name;
    }
    EXPECT_TRUE(desktop.said("message").empty());
}

TEST_F(EditorTest, NameOrderListsTheSameRecordsSorted) {
    const std::string img = makeArchive("gta3.img");
    editor.table().setOrder(EntryTable::Order::Name);
    ASSERT_TRUE(editor.OpenArchive(img));
    EXPECT_EQ(names(), (std::vector<std::string>{"a.txd", "b.dff", "c.ifp"}));
    editor.table().setOrder(EntryTable::Order::Index);
    editor.ReloadArchive();
    EXPECT_EQ(names(), (std::vector<std::string>{"b.dff", "a.txd", "c.ifp"}));
    EXPECT_EQ(desktop.status, text("reloaded"));
}

TEST_F(EditorTest, MissingFilesAreReportedAndLeaveTheEditorClosed) {
    const std::string img = makeArchive("kept.img");
    ASSERT_TRUE(editor.OpenArchive(img));
    const auto before = recent();

    // No data file.
    EXPECT_FALSE(editor.OpenArchive(path("gone.img")));
    ASSERT_EQ(desktop.said("message").size(), 1u);
    EXPECT_EQ(desktop.said("message")[0], "message(Information) " + text("invalidFL") + ": " +
                                              text("openArchive1") + "\n" + path("gone.img"));
    // A data file without its directory file.
    test::WriteBytes(folder / "lonely.img", "");
    EXPECT_FALSE(editor.OpenArchive(path("lonely.img")));
    ASSERT_EQ(desktop.said("message").size(), 2u);
    EXPECT_EQ(desktop.said("message")[1], "message(Information) " + text("invalidFL") + ": " +
                                              text("openArchive2") + "\n" + path("lonely.dir"));

    EXPECT_EQ(editor.dataPath(), "none");
    EXPECT_EQ(editor.dirPath(), "none");
    EXPECT_TRUE(editor.table().empty());
    EXPECT_TRUE(editor.table().placeholder());
    EXPECT_EQ(recent(), before);
    for (const std::string& name : ArchiveCommandNames()) {
        EXPECT_FALSE(editor.menu().isEnabled(name)) << name;
    }
    EXPECT_FALSE(editor.menu().isChecked("recent1"));
}

TEST_F(EditorTest, RecentListSwapsRatherThanRotates) {
    for (const char* name : {"A.img", "B.img", "C.img", "D.img"}) {
        makeArchive(name);
    }
    for (const char* name : {"C.img", "B.img", "A.img"}) {
        ASSERT_TRUE(editor.OpenArchive(path(name)));
    }
    ASSERT_EQ(recent(), (std::array{path("A.img"), path("B.img"), path("C.img")}));

    struct Step {
        const char* open;
        std::array<const char*, 3> after;
    };
    const Step steps[] = {
        {"B.img", {"B.img", "A.img", "C.img"}}, // found in slot 2: swapped with slot 1
        {"B.img", {"B.img", "A.img", "C.img"}}, // already first
        {"C.img", {"C.img", "A.img", "B.img"}}, // slot 3 swaps with slot 1
        {"D.img", {"D.img", "C.img", "A.img"}}, // new: pushed on, B dropped
    };
    for (const Step& step : steps) {
        ASSERT_TRUE(editor.OpenArchive(path(step.open)));
        EXPECT_EQ(recent(),
                  (std::array{path(step.after[0]), path(step.after[1]), path(step.after[2])}))
            << "after opening " << step.open;
        EXPECT_EQ(editor.menu().caption("recent2"), path(step.after[1]));
    }
}

TEST_F(EditorTest, RecentItemsAndReload) {
    // recent1 = "none": reloading changes nothing but still says so.
    editor.ReloadArchive();
    EXPECT_EQ(desktop.status, text("reloaded"));
    EXPECT_EQ(editor.dataPath(), "none");
    editor.OpenRecent(2);
    EXPECT_EQ(editor.dataPath(), "none");

    const std::string a = makeArchive("a.img");
    const std::string b = makeArchive("b.img");
    ASSERT_TRUE(editor.OpenArchive(a));
    ASSERT_TRUE(editor.OpenArchive(b));
    editor.OpenRecent(2);
    EXPECT_EQ(editor.dataPath(), a);
    EXPECT_EQ(recent()[0], a);

    // A recent archive that has since disappeared ends in the missing-file message.
    fs::remove(folder / "a.img");
    editor.ReloadArchive();
    EXPECT_EQ(editor.dataPath(), "none");
    EXPECT_EQ(desktop.said("message").size(), 1u);
}

TEST_F(EditorTest, ReadOnlyArchiveIsOpenedEitherWay) {
    const std::string img = makeArchive("ro.img");
    fs::permissions(folder / "ro.dir",
                    fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    const std::string question =
        text("openArchive3") + "\n" + text("openArchive4") + "\n" + text("openArchive5");

    desktop.answer({"no"});
    ASSERT_TRUE(editor.OpenArchive(img));
    EXPECT_EQ(desktop.said("ask"), std::vector<std::string>{"ask : " + question + " -> no"});
    EXPECT_EQ(editor.table().size(), 3u);
    EXPECT_EQ(fs::status(folder / "ro.dir").permissions() & fs::perms::owner_write,
              fs::perms::none);

    desktop.answer({"yes"});
    ASSERT_TRUE(editor.OpenArchive(img));
    EXPECT_NE(fs::status(folder / "ro.dir").permissions() & fs::perms::owner_write,
              fs::perms::none);
    EXPECT_EQ(editor.table().size(), 3u);
}

TEST_F(EditorTest, DamagedDirectoriesOpenWithoutTrust) {
    struct Case {
        const char* what;
        std::string dir;
        std::size_t rows;
    };
    std::string oneRecord = EncodeDirectory({{2, 1, "ok.dff"}});
    const Case cases[] = {
        {"empty file", "", 0},
        {"one stray byte after a record", oneRecord + "x", 1},
        {"half a record more rounds to even", oneRecord + std::string(16, 'y'), 2},
        {"absurd size and start", EncodeDirectory({{0xFFFFFFFF, 0xFFFFFFFF, "huge.txd"}}), 1},
        {"empty name", EncodeDirectory({{0, 1, ""}}), 1},
        {"name bytes above 127", EncodeDirectory({{0, 1, "\xFF\x80\xE9.dff"}}), 1},
    };
    for (const Case& c : cases) {
        test::WriteBytes(folder / "bad.img", std::string(100, 'd'));
        test::WriteBytes(folder / "bad.dir", c.dir);
        EXPECT_TRUE(editor.OpenArchive(path("bad.img"))) << c.what;
        EXPECT_EQ(editor.table().size(), c.rows) << c.what;
    }
    EXPECT_EQ(editor.table()[0].name, "\xFF\x80\xE9.dff");
    EXPECT_TRUE(desktop.said("message").empty());
}

TEST_F(EditorTest, TooManyRecordsIsRefusedWithoutReading) {
    makeArchive("ok.img");
    ASSERT_TRUE(editor.OpenArchive(path("ok.img")));
    const auto before = recent();
    test::WriteBytes(folder / "big.img", "");
    // 32 767.5 records round to 32 768: one more than the count can hold.
    test::WriteBytes(folder / "big.dir", std::string(1048560, '\0'));
    EXPECT_FALSE(editor.OpenArchive(path("big.img")));
    ASSERT_EQ(desktop.said("message").size(), 1u);
    EXPECT_NE(desktop.said("message")[0].find("32767"), std::string::npos);
    EXPECT_EQ(editor.dataPath(), "none");
    EXPECT_TRUE(editor.table().empty());
    EXPECT_EQ(recent(), before);

    // One byte less is 32 767 records: the most an archive can list.
    test::WriteBytes(folder / "big.dir", std::string(1048559, '\0'));
    EXPECT_TRUE(editor.OpenArchive(path("big.img")));
    EXPECT_EQ(editor.table().size(), 32767u);
}

TEST_F(EditorTest, WriteDirectoryCutsLongNamesInTheRowToo) {
    makeArchive("w.img");
    ASSERT_TRUE(editor.OpenArchive(path("w.img")));
    editor.table().setName(0, std::string(25, 'r'));
    editor.table().setPlacement(1, 5, 2);
    ASSERT_TRUE(editor.WriteDirectory());
    EXPECT_EQ(editor.table()[0].name, std::string(24, 'r'));
    const auto records = DecodeDirectory(test::ReadBytes(folder / "w.dir"));
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].name, std::string(24, 'r'));
    EXPECT_EQ(records[1].startSector, 5u);
    EXPECT_EQ(records[1].sizeSectors, 2u);

    editor.table().clear();
    ASSERT_TRUE(editor.WriteDirectory());
    EXPECT_EQ(fs::file_size(folder / "w.dir"), 0u);
}

TEST_F(EditorTest, WriteDirectoryFailureKeepsTheOldFile) {
    makeArchive("w.img");
    ASSERT_TRUE(editor.OpenArchive(path("w.img")));
    const std::string before = test::ReadBytes(folder / "w.dir");
    editor.table().setName(0, "changed.dff");
    {
        // A file-size limit below the directory's size makes the write fail
        // the way a full disk does, even for root.
        test::FileSizeLimit limit(RecordSize);
        EXPECT_FALSE(editor.WriteDirectory());
    }
    ASSERT_EQ(desktop.said("message").size(), 1u);
    EXPECT_EQ(
        desktop.said("message")[0].rfind("message(Exclamation) Error: " + text("ohCrap1") + " ", 0),
        0u);
    EXPECT_EQ(test::ReadBytes(folder / "w.dir"), before);
    EXPECT_EQ(editor.table()[0].name, "changed.dff");
    // No temporary file is left behind.
    std::size_t files = 0;
    for ([[maybe_unused]] const auto& item : fs::directory_iterator(folder.path()))
        ++files;
    EXPECT_EQ(files, 4u); // lang.ini, korvel.ini, w.img, w.dir
}

TEST_F(EditorTest, HighestOffsetIgnoresRowOrder) {
    test::WriteArchive(folder / "h.img", {{0, 1, "a"}, {0x35, 1, "b"}, {1, 1, "c"}}, 0);
    ASSERT_TRUE(editor.OpenArchive(path("h.img")));
    EXPECT_EQ(editor.highestOffset(), 0x1A800u);
    editor.ResetToClosed();
    EXPECT_EQ(editor.highestOffset(), 0u);
}

TEST_F(EditorTest, CloseOffersTheRebuildOnlyWhenAsked) {
    int rebuilds = 0;
    editor.setRebuildCommand([&] { ++rebuilds; });
    makeArchive("c.img");
    struct Case {
        bool prompt;
        const char* state;
        int rebuilds;
    };
    const Case cases[] = {{false, "shit", 0}, {true, "peachy", 0}, {true, "shit", 1}};
    for (const Case& c : cases) {
        ASSERT_TRUE(editor.OpenArchive(path("c.img")));
        editor.menu().setChecked("OptRebuildPrompt", c.prompt);
        settings.WriteSetting(c.state, "archiveState");
        rebuilds = 0;
        editor.CloseArchive();
        EXPECT_EQ(rebuilds, c.rebuilds) << c.prompt << " " << c.state;
        EXPECT_EQ(editor.dataPath(), "none");
        EXPECT_TRUE(editor.table().empty());
        EXPECT_EQ(desktop.status, text("stats2"));
    }
}

TEST_F(EditorTest, FileOpenDialog) {
    const std::string img = makeArchive("o.img");
    desktop.answer({test::Cancel});
    editor.OpenArchiveAskingPath();
    EXPECT_EQ(editor.dataPath(), "none");
    desktop.answer({test::Fail});
    editor.OpenArchiveAskingPath();
    EXPECT_EQ(desktop.status, text("openArc2"));
    desktop.answer({img});
    editor.OpenArchiveAskingPath();
    EXPECT_EQ(editor.dataPath(), img);
    EXPECT_EQ(desktop.said("open")[0],
              "open " + text("openArc1") + " [" + text("cdFiles1") + "] -> " + test::Cancel);
}

TEST_F(EditorTest, FileNewCreatesAnEmptyPairAndOpensIt) {
    desktop.answer({path("New.img")});
    editor.NewArchiveAskingPath();
    EXPECT_EQ(fs::file_size(folder / "New.img"), 0u);
    EXPECT_EQ(fs::file_size(folder / "New.dir"), 0u);
    EXPECT_EQ(editor.dataPath(), path("New.img"));
    EXPECT_TRUE(editor.isOpen());
    EXPECT_TRUE(editor.table().empty());
    EXPECT_EQ(desktop.stats, text("stats1") + " 0");
    EXPECT_EQ(desktop.status, text("newArc2"));
    EXPECT_EQ(recent()[0], path("New.img"));

    // A name without the extension gets it.
    desktop.answer({path("plain")});
    editor.NewArchiveAskingPath();
    EXPECT_TRUE(fs::exists(folder / "plain.img"));
    EXPECT_TRUE(fs::exists(folder / "plain.dir"));
    EXPECT_EQ(editor.dataPath(), path("plain.img"));
}

TEST_F(EditorTest, FileNewAsksBeforeReplacingAndKeepsFilesOnNo) {
    const std::string img = makeArchive("full.img");
    ASSERT_TRUE(editor.OpenArchive(img));
    const std::string dirBefore = test::ReadBytes(folder / "full.dir");

    desktop.answer({img, "no"});
    editor.NewArchiveAskingPath();
    EXPECT_EQ(desktop.said("ask").back(), "ask " + text("fe3") + ": " + text("fe1") + " " + img +
                                              "\n" + text("fe2") + " -> no");
    EXPECT_EQ(test::ReadBytes(folder / "full.dir"), dirBefore);
    EXPECT_EQ(fs::file_size(folder / "full.img"), 4 * SectorSize);
    EXPECT_EQ(editor.table().size(), 3u); // the open archive stays open

    desktop.answer({test::Cancel});
    editor.NewArchiveAskingPath();
    EXPECT_EQ(editor.table().size(), 3u);

    desktop.answer({img, "yes"});
    editor.NewArchiveAskingPath();
    EXPECT_EQ(fs::file_size(folder / "full.img"), 0u);
    EXPECT_EQ(fs::file_size(folder / "full.dir"), 0u);
    EXPECT_TRUE(editor.table().empty());
}

TEST_F(EditorTest, FileNewInAFolderThatIsNotThere) {
    desktop.answer({path("no/such/folder/x.img")});
    editor.NewArchiveAskingPath();
    EXPECT_EQ(desktop.status, text("newArc3"));
    EXPECT_EQ(editor.dataPath(), "none");
}

// The table tells its observers exactly what changed.
class Recorder : public EntryTableObserver {
public:
    std::vector<std::string> events;
    void rowsInserted(std::size_t f, std::size_t n) override { add("ins", f, n); }
    void rowsRemoved(std::size_t f, std::size_t n) override { add("rem", f, n); }
    void rowsChanged(std::size_t f, std::size_t l) override { add("chg", f, l); }
    void tableReset() override { events.push_back("reset"); }

private:
    void add(const char* what, std::size_t a, std::size_t b) {
        events.push_back(std::string(what) + " " + std::to_string(a) + " " + std::to_string(b));
    }
};

TEST(EntryTable, NotifiesEachChangeAndKeepsNameOrder) {
    EntryTable table;
    Recorder recorder;
    table.addObserver(&recorder);
    table.assign({{0, 1, "d", false},
                  {1, 1, "b", false},
                  {2, 1, "a", false},
                  {3, 1, "c", false},
                  {4, 1, "e", false}});
    table.setSelected(1, true);
    table.setSelected(1, true); // no change, no event
    table.removeWhere({true, false, true, true, false});
    EXPECT_EQ(recorder.events,
              (std::vector<std::string>{"reset", "chg 1 1", "rem 2 2", "rem 0 1"}));
    EXPECT_EQ(table.size(), 2u);
    EXPECT_EQ(table[0].name, "b");
    EXPECT_TRUE(table[0].selected);

    recorder.events.clear();
    table.setOrder(EntryTable::Order::Name);
    EXPECT_EQ(table.append({9, 1, "C", false}), 1u); // between "b" and "e"
    table.setName(0, "z");                           // moves to the end
    std::vector<std::string> names;
    for (const Entry& e : table.rows())
        names.push_back(e.name);
    EXPECT_EQ(names, (std::vector<std::string>{"C", "e", "z"}));
    EXPECT_EQ(recorder.events,
              (std::vector<std::string>{"reset", "ins 1 1", "rem 0 1", "ins 2 1"}));
    EXPECT_EQ(table.appendOffset(), 10 * SectorSize);
}

TEST(EntryTable, AppendOffsetIsBehindTheLastEntryInTheDataFile) {
    EntryTable table;
    EXPECT_EQ(table.appendOffset(), 0u);
    // Two rows share the highest offset: the larger one decides.
    table.assign({{7, 1, "x", false}, {2, 3, "y", false}, {7, 4, "z", false}});
    EXPECT_EQ(table.highestOffset(), 7 * SectorSize);
    EXPECT_EQ(table.appendOffset(), 11 * SectorSize);
}

} // namespace
} // namespace korvel
