#include "window/Editor.h"
#include "EditorHarness.h"

namespace korvel {
namespace {

namespace fs = std::filesystem;
using test::Cancel;

// An editor over a fresh editor folder, closed as after start-up.
class EditorTest : public test::EditorHarness {
protected:
    EditorTest() {
        editor.LoadRecentMenu();
        editor.ResetToClosed();
        editor.AddPlaceholderRow();
        desktop.conversation.clear();
    }
    std::string path(const std::string& name) const { return (folder / name).string(); }
    std::array<std::string, 3> recent() const {
        return {settings.ReadSetting("recent1"), settings.ReadSetting("recent2"),
                settings.ReadSetting("recent3")};
    }
    // Three entries in a data file that covers them.
    std::string makeArchive(const std::string& name) {
        test::WriteArchive(folder / name, {{0, 1, "b.dff"}, {1, 2, "a.txd"}, {3, 1, "c.ifp"}},
                           4 * SectorSize);
        return path(name);
    }
    void expectClosed(const std::string& label) {
        EXPECT_EQ(editor.dataPath(), "none") << label;
        EXPECT_TRUE(editor.table().empty()) << label;
        for (const std::string& name : ArchiveCommandNames())
            EXPECT_FALSE(editor.menu().isEnabled(name)) << label << " " << name;
        EXPECT_EQ(desktop.stats + editor.ArchiveSummary() + editor.WindowTitle(), " Korvel");
    }
};

TEST_F(EditorTest, OpeningListsTheRecordsAndEnablesTheCommands) {
    const std::string img = makeArchive("gta3.img");
    ASSERT_TRUE(editor.OpenArchive(img));
    EXPECT_EQ(editor.table()[1].name, "a.txd"); // directory order
    EXPECT_FALSE(editor.table().placeholder());
    EXPECT_EQ(desktop.stats, "Entries: 3");
    EXPECT_EQ(desktop.archivePath, img);
    EXPECT_EQ(editor.highestOffset(), 3 * SectorSize);
    EXPECT_EQ(editor.menu().caption("recent1"), img);
    for (const std::string& name : ArchiveCommandNames())
        EXPECT_NE(editor.menu().isEnabled(name),
                  std::count(SelectionCommandNames().begin(), SelectionCommandNames().end(), name));
    editor.table().setSelected(1, true);
    editor.EnableSelectionCommands();
    EXPECT_TRUE(editor.menu().isEnabled("ComDel"));
    EXPECT_TRUE(desktop.said("message").empty());
    // The fifth sector is unused; a.txd (two sectors) is selected.
    test::WriteBytes(img, std::string(5 * SectorSize, 'x'));
    EXPECT_EQ(editor.ArchiveSummary(), text("sbSel") + " 1 (4.0 KB)   " + text("sbSize") +
                                           " 10.0 KB   " + text("sbFree") + " 2.0 KB");
    EXPECT_EQ(editor.SizeText(1023) + editor.SizeText(3 << 20), "1023 bytes3.0 MB");
    settings.WriteSetting("francais", "language");
    EXPECT_EQ(editor.SizeText(1536) + editor.SizeText(5ull << 30), "1,5 Ko5,0 Go");
}

TEST_F(EditorTest, RefusedArchivesAreReportedAndLeaveTheEditorClosed) {
    ASSERT_TRUE(editor.OpenArchive(makeArchive("kept.img")));
    const auto before = recent();
    test::WriteBytes(folder / "lonely.img", "");
    test::WriteBytes(folder / "big.img", "");
    // 32 767.5 records round to 32 768: one more than the count can hold.
    test::WriteBytes(folder / "big.dir", std::string(1048560, '\0'));
    // A copy saved without ".img" would be its own directory file.
    test::WriteBytes(folder / "kept.img.bak", "data");
    const std::string invalid = "(Information) " + text("invalidFL") + ": ";
    const std::pair<const char*, std::string> cases[] = {
        {"gone.img", invalid + text("openArchive1") + "\n" + path("gone.img")},
        {"lonely.img", invalid + text("openArchive2") + "\n" + path("lonely.dir")},
        {"big.img", "32767"},
        {"kept.img.bak", "its directory file would be the file itself"},
    };
    for (const auto& [name, said] : cases) {
        desktop.conversation.clear();
        EXPECT_FALSE(editor.OpenArchive(path(name))) << name;
        ASSERT_EQ(desktop.said("message").size(), 1u) << name;
        EXPECT_NE(desktop.said("message")[0].find(said), std::string::npos) << name;
        expectClosed(name);
        EXPECT_TRUE(editor.table().placeholder());
        EXPECT_EQ(recent(), before);
    }
    EXPECT_EQ(test::ReadBytes(folder / "kept.img.bak"), "data");
}

// How a length rounds to records is the format's to test; here: the editor
// opens whatever the count allows, silently.
TEST_F(EditorTest, DamagedDirectoriesOpenWithoutTrust) {
    const std::pair<std::string, std::size_t> cases[] = {
        {"", 0},
        {EncodeDirectory({{0xFFFFFFFF, 0xFFFFFFFF, "huge.txd"}}), 1},
        {std::string(1048559, '\0'), 32767}, // the most an archive can list
        {EncodeDirectory({{0, 1, "\xFF\x80\xE9.dff"}}), 1},
    };
    for (const auto& [dir, rows] : cases) {
        test::WriteBytes(folder / "bad.img", std::string(100, 'd'));
        test::WriteBytes(folder / "bad.dir", dir);
        EXPECT_TRUE(editor.OpenArchive(path("bad.img"))) << rows;
        EXPECT_EQ(editor.table().size(), rows);
    }
    EXPECT_EQ(editor.table()[0].name, "\xFF\x80\xE9.dff");
    EXPECT_TRUE(desktop.said("message").empty());
}

TEST_F(EditorTest, RecentListSwapsRatherThanRotates) {
    for (const char* name : {"A.img", "B.img", "C.img", "D.img"})
        makeArchive(name);
    for (const char* name : {"C.img", "B.img", "A.img"})
        ASSERT_TRUE(editor.OpenArchive(path(name)));
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
    const std::string a = makeArchive("a.img");
    ASSERT_TRUE(editor.OpenArchive(a));
    ASSERT_TRUE(editor.OpenArchive(makeArchive("b.img")));
    editor.OpenRecent(2);
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
    for (const std::string answer : {"no", "yes"}) {
        desktop.conversation.clear();
        desktop.answer({answer});
        ASSERT_TRUE(editor.OpenArchive(img));
        EXPECT_EQ(desktop.said("ask"),
                  std::vector<std::string>{"ask : " + text("openArchive3") + "\n" +
                                           text("openArchive4") + "\n" + text("openArchive5") +
                                           " -> " + answer});
        const fs::perms perms = fs::status(folder / "ro.dir").permissions();
        EXPECT_EQ((perms & fs::perms::owner_write) != fs::perms::none, answer == "yes");
        EXPECT_EQ(editor.table().size(), 3u);
    }
}

// Cutting the record's name is the format's to test; here: the row follows.
TEST_F(EditorTest, WriteDirectoryCutsLongNamesInTheRowToo) {
    ASSERT_TRUE(editor.OpenArchive(makeArchive("w.img")));
    editor.table().setName(0, std::string(25, 'r'));
    ASSERT_TRUE(editor.WriteDirectory());
    EXPECT_EQ(editor.table()[0].name, std::string(24, 'r'));
    EXPECT_EQ(DecodeDirectory(test::ReadBytes(folder / "w.dir"))[0].name, std::string(24, 'r'));
}

TEST_F(EditorTest, WriteDirectoryFailureKeepsTheOldFile) {
    ASSERT_TRUE(editor.OpenArchive(makeArchive("w.img")));
    editor.table().setName(0, "changed.dff");
    {
        // A file-size limit below the directory's size makes the write fail
        // midway the way a full disk does, even for root.
        test::FileSizeLimit limit(RecordSize);
        EXPECT_FALSE(editor.WriteDirectory());
    }
    ASSERT_EQ(desktop.said("message").size(), 1u);
    EXPECT_EQ(
        desktop.said("message")[0].rfind("message(Exclamation) Error: " + text("ohCrap1") + " ", 0),
        0u);
    EXPECT_EQ(editor.table()[0].name, "changed.dff");
}

TEST_F(EditorTest, CloseOffersTheRebuildOnlyWhenAsked) {
    int rebuilds = 0;
    editor.setRebuildCommand([&] { ++rebuilds; });
    const std::string img = makeArchive("c.img");
    const std::tuple<bool, const char*, int> cases[] = {
        {false, "shit", 0}, {true, "peachy", 0}, {true, "shit", 1}};
    for (const auto& [prompt, state, expected] : cases) {
        ASSERT_TRUE(editor.OpenArchive(img));
        editor.menu().setChecked("OptRebuildPrompt", prompt);
        settings.WriteSetting(state, "archiveState");
        rebuilds = 0;
        editor.CloseArchive();
        EXPECT_EQ(rebuilds, expected) << prompt << " " << state;
        expectClosed(state);
        EXPECT_EQ(editor.highestOffset(), 0u);
        EXPECT_EQ(desktop.status, text("stats2"));
    }
}

TEST_F(EditorTest, FileNewCreatesAnEmptyPairAndAsksBeforeReplacing) {
    ASSERT_TRUE(editor.OpenArchive(makeArchive("full.img")));
    const std::string dirBefore = test::ReadBytes(folder / "full.dir");
    struct Case {
        std::vector<std::string> answers;
        const char* img; // the pair that must now be empty and open, or nullptr
        const char* status;
    };
    const Case cases[] = {
        {{path("full.img"), "no"}, nullptr, nullptr},
        {{Cancel}, nullptr, nullptr},
        {{path("no/such/folder/x.img")}, nullptr, "newArc3"},
        {{path("plain")}, "plain.img", "newArc2"}, // the extension is added
        {{path("full.img"), "yes"}, "full.img", "newArc2"},
    };
    for (const Case& c : cases) {
        desktop.answers.assign(c.answers.begin(), c.answers.end());
        desktop.status.clear();
        editor.NewArchiveAskingPath();
        EXPECT_EQ(desktop.status, c.status ? text(c.status) : "") << c.answers[0];
        if (c.img == nullptr) { // the open archive stays open and untouched
            EXPECT_EQ(test::ReadBytes(folder / "full.dir"), dirBefore);
            EXPECT_EQ(editor.table().size(), 3u);
            continue;
        }
        const fs::path img = folder / c.img;
        EXPECT_EQ(fs::file_size(img) + fs::file_size(fs::path(img).replace_extension(".dir")), 0u);
        EXPECT_EQ(editor.dataPath(), img.string());
        EXPECT_EQ(desktop.stats, "Entries: 0");
        EXPECT_EQ(recent()[0], img.string());
    }
    EXPECT_EQ(desktop.said("ask")[0], "ask !" + text("fe3") + ": " + text("fe1") + " " +
                                          path("full.img") + "\n" + path("full.dir") + "\n" +
                                          text("fe2") + " -> no");
}

TEST(EntryTable, AppendOffsetIsBehindTheLastEntryInTheDataFile) {
    EntryTable table;
    EXPECT_EQ(table.appendOffset(), 0u);
    // The highest start is neither first nor last; of two rows sharing it the
    // larger one decides.
    table.assign({{2, 3, "y", false}, {7, 4, "z", false}, {7, 1, "x", false}, {0, 1, "w", false}});
    EXPECT_EQ(table.highestOffset(), 7 * SectorSize);
    EXPECT_EQ(table.appendOffset(), 11 * SectorSize);
}

} // namespace
} // namespace korvel
