// Entries that would make a search read, write or keep more than it should:
// collision copies among planted files and links, results multiplied by
// records sharing one dictionary, entries that cannot be read.
#include "EditorHarness.h"
#include "EntryBytes.h"
#include "TestFolder.h"
#include "window/FindCommands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace korvel {
namespace {

namespace fs = std::filesystem;
using Found = std::vector<std::tuple<std::string, std::string, std::size_t>>;

class ResourcesTest : public test::EditorHarness {
protected:
    void openEntries(const std::vector<std::pair<std::string, std::string>>& entries) {
        test::WriteArchiveOf(folder / "hand.img", entries);
        ASSERT_TRUE(editor.OpenArchive((folder / "hand.img").string()));
        desktop.conversation.clear();
    }
};

// Collision entries are copied one at a time under a name of the search's
// own: whatever the entries are called and whatever already stands in the
// folder, only the search's own copies are read and removed.
TEST_F(ResourcesTest, CollisionSearchTouchesOnlyItsOwnCopies) {
    const std::string good = test::ColModel("COLL", "good", 40);
    openEntries(
        {{"../escape.col", good},
         {"sub/dir.col", test::ColModel("COLL", "sub", 40)},
         {"Same.col", test::ColModel("COLL", "upper", 40)},
         {"same.col", test::ColModel("COLL", "lower", 40)},
         {"damaged.col", "COLL" + test::U32(0xFFFFFF00) + test::Field("big", 24)},
         {"ok.col", good + test::ColModel("COL3", "", 40) + test::ColModel("COL2", "Two", 4)},
         {"far.col", good}});
    editor.table().setPlacement(6, 1000, 1);
    const fs::path copies = folder / "copies";
    fs::create_directories(copies);
    test::WriteBytes(folder / "escape.col", "keep");
    test::WriteBytes(copies / "ok.col", "mine");
    test::WriteBytes(folder / "target", "keep");
    fs::create_symlink(folder / "target", copies / "same.col");
    Found found;
    std::vector<std::string> unread;
    (void)FindCollisionModels(
        editor.archive(), copies, "",
        {[&](const FoundInFile& f) { found.emplace_back(f.name, f.entryName, f.row); },
         [&](const UnreadEntry& u) { unread.push_back(u.entryName + ": " + u.why); }});
    EXPECT_EQ(found, (Found{{"good", "../escape.col", 1},
                            {"sub", "sub/dir.col", 2},
                            {"upper", "Same.col", 3},
                            {"lower", "same.col", 4},
                            {"good", "ok.col", 6},
                            {"Two", "ok.col", 6}}));
    EXPECT_EQ(unread, (std::vector<std::string>{"far.col: the entry starts at byte 2048000, past "
                                                "the end of the data file (14336 bytes)"}));
    EXPECT_EQ(test::ReadBytes(folder / "escape.col"), "keep");
    EXPECT_EQ(test::ReadBytes(folder / "target"), "keep");
    EXPECT_EQ(test::ReadBytes(copies / "ok.col"), "mine");
    std::vector<fs::path> left;
    for (const auto& item : fs::directory_iterator(copies))
        left.push_back(item.path().filename());
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, (std::vector<fs::path>{"ok.col", "same.col"}));
}

// Records pointing at one dictionary multiply its textures: the list keeps
// its bound and says how many it left out; unread entries are named.
TEST_F(ResourcesTest, FileSearchWindowKeepsItsBoundAndNamesUnreadEntries) {
    std::vector<std::string> natives;
    for (int t = 0; t < 2000; ++t)
        natives.push_back(test::Native("t" + std::to_string(t), ""));
    openEntries({{"one.txd", test::Dictionary(2000, 0, natives)}, {"far.txd", ""}});
    std::vector<Entry> rows(51, editor.table()[0]);
    rows.push_back(editor.table()[1]);
    rows.back().startSector = 1000;
    editor.table().assign(rows);
    EXPECT_EQ(SearchTextures(editor, "").size(), 100'000u);
    EXPECT_EQ(desktop.conversation,
              (std::vector<std::string>{
                  "progress shown: 52", "progress hidden",
                  "message(Information) " + text("fif0") + ": " + text("fif1") + " 2000",
                  "message(Exclamation) " + text("fif0") + ": " + text("fif2") +
                      "\nfar.txd: the entry starts at byte 2048000, past the end of the data "
                      "file (" +
                      std::to_string(fs::file_size(folder / "hand.img")) + " bytes)"}));
}

// A collision entry whose copy does not fit on the disk is named, the others
// are still read, and no copy is left behind.
TEST_F(ResourcesTest, CollisionCopiesThatDoNotFitAreNamed) {
    openEntries({{"big.col", test::ColModel("COLL", "big", 20000)},
                 {"small.col", test::ColModel("COLL", "small", 40)}});
    Found found;
    std::vector<std::string> unread;
    {
        test::FileSizeLimit disk(8192);
        (void)FindCollisionModels(
            editor.archive(), folder / "copies", "",
            {[&](const FoundInFile& f) { found.emplace_back(f.name, f.entryName, f.row); },
             [&](const UnreadEntry& u) { unread.push_back(u.entryName + ": " + u.why); }});
    }
    EXPECT_EQ(found, (Found{{"small", "small.col", 2}}));
    EXPECT_EQ(unread, (std::vector<std::string>{"big.col: cannot copy it out: File too large"}));
    EXPECT_TRUE(fs::is_empty(folder / "copies"));
}

// Pairs of one name on many rows, and results of many records over one
// dictionary, go out as they are found: korvel-cli prints them all with 48 MB
// of address space, where gathering them first would take several times that.
TEST(ResourcesCli, ManyPairsAndResultsStreamInLittleMemory) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the address sanitizer reserves more address space than the limit";
#endif
    test::TestFolder folder;
    test::WriteArchive(folder / "pairs.img",
                       std::vector<DirRecord>(2000, {0, 1, "one_long_shared_name.dff"}),
                       SectorSize);
    std::vector<std::string> natives;
    for (int t = 0; t < 500; ++t)
        natives.push_back(test::Native("shared_texture_" + std::to_string(t), ""));
    test::WriteBytes(folder / "shared.img", test::Dictionary(500, 0, natives));
    const auto sectors =
        static_cast<std::uint32_t>(SectorsForFile(fs::file_size(folder / "shared.img")));
    std::vector<DirRecord> records;
    for (int r = 0; r < 2000; ++r)
        records.push_back({0, sectors, "same" + std::to_string(r) + ".txd"});
    test::WriteBytes(folder / "shared.dir", EncodeDirectory(records));
    const struct {
        std::string args;
        const char* archive;
        std::string lines;
    } cases[] = {
        {"check pairs.img", "pairs", "1999000"},
        {"find-in shared.img '' --textures", "shared", "1000000"},
    };
    for (const auto& c : cases) {
        const fs::path img = folder / (std::string(c.archive) + ".img");
        const fs::path dir = folder / (std::string(c.archive) + ".dir");
        const std::string before = test::ReadBytes(img) + test::ReadBytes(dir);
        const std::string command = "cd '" + folder.path().string() + "' && ulimit -v 48000 && ('" +
                                    KORVEL_CLI + "' " + c.args +
                                    "; echo $? > status) | wc -l | tr -d ' \n' > count";
        ASSERT_EQ(std::system(command.c_str()), 0) << c.args;
        EXPECT_EQ(test::ReadBytes(folder / "status"), "0\n") << c.args;
        EXPECT_EQ(test::ReadBytes(folder / "count"), c.lines) << c.args;
        EXPECT_EQ(test::ReadBytes(img) + test::ReadBytes(dir), before) << c.args;
    }
}

} // namespace
} // namespace korvel
