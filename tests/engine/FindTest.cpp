// Finding entries by name and names inside entries (search layer), and the
// find windows' conversation around them (window layer).
#include "EditorHarness.h"
#include "EntryBytes.h"
#include "platform/Folders.h"
#include "window/FindCommands.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

namespace fs = std::filesystem;

class FindTest : public test::EditorHarness {
public:
    using Found = std::vector<std::tuple<std::string, std::string, std::size_t>>;

protected:
    void openDemo() {
        const fs::path demo = KORVEL_DEMO_ARCHIVE;
        fs::copy_file(demo, folder / "demo.img");
        fs::copy_file(fs::path(demo).replace_extension(".dir"), folder / "demo.dir");
        ASSERT_TRUE(editor.OpenArchive((folder / "demo.img").string()));
        desktop.conversation.clear();
    }
    void openEntries(const std::vector<std::pair<std::string, std::string>>& entries) {
        test::WriteArchiveOf(folder / "hand.img", entries);
        ASSERT_TRUE(editor.OpenArchive((folder / "hand.img").string()));
        desktop.conversation.clear();
    }
    const Archive& archive() { return editor.archive(); }
    FileSearchOutput into(Found& rows) {
        return {[&rows](const FoundInFile& f) { rows.emplace_back(f.name, f.entryName, f.row); },
                [this](const UnreadEntry& u) { unread.push_back(u.entryName + ": " + u.why); }};
    }
    Found textures(std::string_view text) {
        Found rows;
        (void)FindTextures(archive(), text, into(rows));
        return rows;
    }
    Found collisions(std::string_view text) {
        Found rows;
        (void)FindCollisionModels(archive(), folder / "copies", text, into(rows));
        return rows;
    }
    std::vector<std::string> unread;
};

using Rows = std::vector<std::pair<std::string, std::size_t>>;
using Found = FindTest::Found;

Rows Listed(const std::vector<FoundEntry>& found) {
    Rows rows;
    for (const FoundEntry& f : found)
        rows.emplace_back(f.name, f.row);
    return rows;
}

TEST_F(FindTest, FindsNamesByTextAndKindIgnoringCase) {
    openEntries(
        {{"a.TXD", ""}, {"btxd", ""}, {"c***.dff", ""}, {"caf\xE9.col", ""}, {"P.dff", ""}});
    const std::optional<EntryKind> all;
    const struct {
        const char* text;
        std::optional<EntryKind> kind;
        Rows rows;
    } cases[] = {
        {"p.DFF", all, {{"P.dff", 5}}},
        {"", EntryKind::Texture, {{"a.TXD", 1}}}, // "btxd" has no dot
        {"txd", all, {{"a.TXD", 1}, {"btxd", 2}}},
        {"*", EntryKind::Model, {{"c***.dff", 3}}},                  // no wildcards
        {"CAF\xC3\x89", EntryKind::Collision, {{"caf\xE9.col", 4}}}, // UTF-8 É finds Windows-1252 é
        {"\xE4\xB8\x80", all, {}},                                   // not in Windows-1252
        {"", EntryKind::Other, {{"btxd", 2}}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Listed(FindEntries(editor.table(), c.text, c.kind)), c.rows) << c.text;
}

TEST_F(FindTest, FindsTexturesWithCaseAndCollisionModelsThroughCopies) {
    openDemo();
    const struct {
        const char* text;
        Found found;
    } cases[] = {
        {"cheetah92",
         {{"cheetah92body", "cheetah.txd", 4},
          {"cheetah92interior", "cheetah.txd", 4},
          {"cheetah92wheel", "cheetah.txd", 4}}},
        {"Cheetah92", {}},
        {"bodyA", {}}, // mask names are read but not searched
        {"odie", {}},  // "OdieSign.txd" is never read
    };
    for (const auto& c : cases)
        EXPECT_EQ(textures(c.text), c.found) << c.text;
    EXPECT_EQ(collisions("LAMP"), (Found{{"lamppost1", "generic.col", 23}}));
    EXPECT_EQ(collisions("_SA"),
              (Found{{"vendmach_sa", "sa_props.col", 25}, {"phonebooth_sa", "sa_props.col", 25}}));
    EXPECT_EQ(collisions("").size(), 11u);
    EXPECT_TRUE(unread.empty());
    // Results carry the row's current name.
    editor.table().setName(3, "renamed.txd");
    EXPECT_EQ(std::get<1>(textures("cheetah92body")[0]), "renamed.txd");
}

TEST_F(FindTest, PassesOverSkippedAndDamagedEntries) {
    const std::string dict = test::Dictionary(1, 0, {test::Native("tex", "")});
    std::string cut = test::Dictionary(2, 0, {test::Native("texA", ""), test::Native("texB", "")});
    cut.replace(28 + test::Native("texA", "").size(), 4, test::U32(0x99)); // not a texture native
    // Four names the search skips, in any case; a name that is no dictionary.
    openEntries({{"Partty_main_lights.txd", dict},
                 {"partty_main_lights.txd", dict},
                 {"xmode.txd", dict},
                 {"XMODE.TXD", dict},
                 {"oDIE.txd", dict},
                 {"my_odie.txd", dict},
                 {"tex.dff", dict},
                 {"cut.txd", cut},
                 {"pad.txd", test::Dictionary(0xFFFF, 2, {test::Native("tex", "")})},
                 {"far.txd", dict}});
    // An entry whose record claims sectors past the end of the data file.
    editor.table().setPlacement(9, 1000, 50);
    std::vector<std::size_t> rows;
    for (const auto& f : textures("tex"))
        rows.push_back(std::get<2>(f));
    EXPECT_EQ(rows, (std::vector<std::size_t>{2, 4, 6, 8, 9}));
    EXPECT_EQ(unread, (std::vector<std::string>{"far.txd: the entry starts at byte 2048000, past "
                                                "the end of the data file (20480 bytes)"}));
}

// The window's side: remembering the text, the busy pointer and progress,
// and the save conversation of both windows.
TEST_F(FindTest, SearchCommandsRememberTheTextShowProgressAndSave) {
    openDemo();
    editor.table().selectAll();
    EXPECT_EQ(SearchArchive(editor, "cheetah", EntryKind::Texture).size(), 1u);
    EXPECT_EQ(settings.ReadSetting("lastSearch"), "cheetah");
    EXPECT_FALSE(editor.table()[0].selected);
    EXPECT_TRUE(editor.table()[1].selected);
    EXPECT_EQ(SearchTextures(editor, "cheetah92").size(), 3u);
    EXPECT_EQ(SearchCollisionModels(editor, "LAMP").size(), 1u);
    EXPECT_EQ(settings.ReadSetting("lastFileSearch"), "LAMP");
    EXPECT_TRUE(fs::is_empty(TempsFolder())); // each copy went once it was read
    // Thirteen dictionaries on the bar, the skipped one included; five collision files.
    EXPECT_EQ(desktop.conversation,
              (std::vector<std::string>{"progress shown: 13", "progress hidden",
                                        "progress shown: 5", "progress hidden"}));
    // The save conversation itself is the reports' to test; here: which list
    // asks before replacing, and what is written.
    desktop.conversation.clear();
    const std::string out = (folder / "found.txt").string();
    const std::string save = "save " + text("sd0") + " [" + text("cdFiles3") + "] -> " + out;
    const std::string ask = "ask " + text("fe2") + ": " + out + "\r\n" + text("fe3");
    SaveFoundEntries(editor, std::nullopt);
    SaveFoundInFiles(editor, std::vector<FoundInFile>{});
    test::WriteBytes(out, "old");
    desktop.answer({out, "yes"});
    SaveFoundInFiles(editor, std::vector<FoundInFile>{{"cheetah92wheel", "cheetah.txd", 4}});
    EXPECT_EQ(test::ReadBytes(out), "cheetah92wheel  --  cheetah.txd\r\n");
    // The archive search replaces without asking; names stay Windows-1252.
    desktop.answer({out});
    editor.table().setName(0, "caf\xE9.ifp");
    SaveFoundEntries(editor, FindEntries(editor.table(), "caf", std::nullopt));
    EXPECT_EQ(test::ReadBytes(out), "caf\xE9.ifp\r\n");
    EXPECT_EQ(
        desktop.conversation,
        (std::vector<std::string>{"message(Information) " + text("sd4") + ": " + text("sd3"),
                                  "message(None) : " + text("sd3"), save, ask + " -> yes", save}));
}

} // namespace
} // namespace korvel
