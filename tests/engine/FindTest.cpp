#include "EditorHarness.h"
#include "EntryBytes.h"
#include "platform/Folders.h"
#include "search/FindInArchive.h"
#include "search/FindInFiles.h"
#include "search/Results.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

namespace fs = std::filesystem;

class FindTest : public test::EditorHarness {
protected:
    void openDemo() {
        const fs::path demo = KORVEL_DEMO_ARCHIVE;
        fs::copy_file(demo, folder / "demo.img");
        fs::copy_file(fs::path(demo).replace_extension(".dir"), folder / "demo.dir");
        ASSERT_TRUE(editor.OpenArchive((folder / "demo.img").string()));
        desktop.conversation.clear();
    }
    void openNames(const std::vector<std::string>& names) {
        std::vector<std::pair<std::string, std::string>> entries;
        for (const std::string& n : names) {
            entries.emplace_back(n, "x");
        }
        openEntries(entries);
    }
    void openEntries(const std::vector<std::pair<std::string, std::string>>& entries) {
        test::WriteArchiveOf(folder / "hand.img", entries);
        ASSERT_TRUE(editor.OpenArchive((folder / "hand.img").string()));
        desktop.conversation.clear();
    }
};

using Rows = std::vector<std::pair<std::string, std::size_t>>;

Rows Listed(const std::vector<FoundEntry>& found) {
    Rows rows;
    for (const FoundEntry& f : found) {
        rows.emplace_back(f.name, f.row);
    }
    return rows;
}

TEST_F(FindTest, FindsNamesByTextAndTypeIgnoringCase) {
    openNames(
        {"a.TXD", "btxd", "c***.dff", "x.ifp", "caf\xE9.col", "Player.dff", "cafe.col", "abc"});
    struct Case {
        const char* text;
        FindType type;
        Rows rows;
    };
    const Case cases[] = {
        {"PLAYER", FindType::All, {{"Player.dff", 6}}},
        {"", FindType::Textures, {{"a.TXD", 1}}}, // "btxd" has no dot
        {"txd", FindType::All, {{"a.TXD", 1}, {"btxd", 2}}},
        {"***", FindType::All, {{"c***.dff", 3}}},
        {"*", FindType::Models, {{"c***.dff", 3}}},
        {"?", FindType::All, {}},
        {"CAF\xC3\x89", FindType::Collisions, {{"caf\xE9.col", 5}}}, // UTF-8 É, Windows-1252 é
        {"\xE2\x82\xAC", FindType::All, {}},                         // €: no name holds it
        {"\xE4\xB8\x80", FindType::All, {}},                         // not in Windows-1252
        {"", FindType::Animations, {{"x.ifp", 4}}},
        {"b", FindType::Collisions, {}},
        {"",
         FindType::All,
         {{"a.TXD", 1},
          {"btxd", 2},
          {"c***.dff", 3},
          {"x.ifp", 4},
          {"caf\xE9.col", 5},
          {"Player.dff", 6},
          {"cafe.col", 7},
          {"abc", 8}}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Listed(SearchArchive(editor, c.text, c.type)), c.rows) << c.text;
        EXPECT_EQ(settings.ReadSetting("lastSearch"), c.text);
    }
}

TEST_F(FindTest, SearchDeselectsOnlyTheFirstRow) {
    openNames({"a.dff", "b.dff", "c.dff"});
    editor.table().selectAll();
    SearchArchive(editor, "b", FindType::All);
    EXPECT_FALSE(editor.table()[0].selected);
    EXPECT_TRUE(editor.table()[1].selected);
    EXPECT_TRUE(editor.table()[2].selected);
}

TEST_F(FindTest, SelectingFoundRowsStopsAtAStaleNumber) {
    openNames({"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"});
    editor.table().setSelected(0, true);
    EXPECT_EQ(SelectFoundRows(editor.table(), {5, 9}), 8u);
    EXPECT_EQ(editor.table().selectedCount(), 2u);
    EXPECT_TRUE(editor.table()[4].selected && editor.table()[8].selected);

    EXPECT_EQ(SelectFoundRows(editor.table(), {2, 11, 3}), 1u);
    EXPECT_EQ(editor.table().selectedCount(), 1u);
    EXPECT_TRUE(editor.table()[1].selected);
}

TEST_F(FindTest, SavingTheFoundNames) {
    openNames({"a.dff", "caf\xE9.dff", "c.dff", "d.txd"});
    const std::string out = (folder / "found.txt").string();

    // Before any search, and after one that found nothing.
    SaveFoundNames(editor, std::nullopt);
    SaveFoundNames(editor, std::vector<FoundEntry>{});
    EXPECT_EQ(desktop.conversation,
              (std::vector<std::string>{"message(Information) " + text("sd4") + ": " + text("sd3"),
                                        "message(None) : " + text("sd3")}));

    desktop.conversation.clear();
    desktop.answer({test::Cancel});
    SaveFoundNames(editor, SearchArchive(editor, "dff", FindType::All));
    EXPECT_FALSE(fs::exists(out));

    // An existing file is replaced without asking; names stay Windows-1252.
    test::WriteBytes(out, std::string(100, 'z'));
    desktop.conversation.clear();
    desktop.answer({out});
    SaveFoundNames(editor, SearchArchive(editor, "dff", FindType::All));
    EXPECT_EQ(test::ReadBytes(out), "a.dff\r\ncaf\xE9.dff\r\nc.dff\r\n");
    EXPECT_EQ(desktop.conversation, (std::vector<std::string>{"save " + text("sd0") + " [" +
                                                              text("cdFiles3") + "] -> " + out}));
}

using Found = std::vector<std::tuple<std::string, std::string, std::size_t>>;

Found Listed(const std::vector<FoundInFile>& found) {
    Found rows;
    for (const FoundInFile& f : found) {
        rows.emplace_back(f.name, f.entryName, f.row);
    }
    return rows;
}

TEST_F(FindTest, FindsTexturesInTheDemoDictionariesWithCase) {
    openDemo();
    EXPECT_EQ(Listed(FindTexturesInArchive(editor, "cheetah92")),
              (Found{{"cheetah92body", "cheetah.txd", 4},
                     {"cheetah92interior", "cheetah.txd", 4},
                     {"cheetah92wheel", "cheetah.txd", 4}}));
    EXPECT_EQ(settings.ReadSetting("lastFileSearch"), "cheetah92");
    EXPECT_TRUE(FindTexturesInArchive(editor, "Cheetah92").empty());
    EXPECT_EQ(Listed(FindTexturesInArchive(editor, "Lights")),
              (Found{{"infernusLights", "infernus.txd", 6}}));
    // The mask names are read but not searched; "OdieSign.txd" is never read.
    EXPECT_TRUE(FindTexturesInArchive(editor, "bodyA").empty());
    EXPECT_TRUE(FindTexturesInArchive(editor, "odie").empty());
    EXPECT_EQ(Listed(FindTexturesInArchive(editor, "generic")),
              (Found{{"genericUpperOnly", "GENERIC.TXD", 38}}));

    desktop.conversation.clear();
    const auto all = FindTexturesInArchive(editor, "");
    EXPECT_EQ(all.size(), 26u);
    // Thirteen dictionaries on the progress bar, the skipped one included.
    EXPECT_EQ(desktop.conversation,
              (std::vector<std::string>{"progress shown: 13", "progress hidden"}));

    // Results carry the row's current name.
    editor.table().setName(3, "renamed.txd");
    EXPECT_EQ(std::get<1>(Listed(FindTexturesInArchive(editor, "cheetah92body"))[0]),
              "renamed.txd");
}

TEST_F(FindTest, PassesOverTheDictionariesItNeverRead) {
    const std::string dict = test::Dictionary(1, 0, {test::Native("tex", "")});
    openEntries({{"Partty_main_lights.txd", dict},
                 {"partty_main_lights.txd", dict},
                 {"xmode.txd", dict},
                 {"XMODE.TXD", dict},
                 {"oDIE.txd", dict},
                 {"my_odie.txd", dict},
                 {"tex.dff", dict}});
    std::vector<std::size_t> rows;
    for (const FoundInFile& f : FindTexturesInArchive(editor, "tex")) {
        rows.push_back(f.row);
    }
    EXPECT_EQ(rows, (std::vector<std::size_t>{2, 4, 6}));
}

TEST_F(FindTest, DamagedDictionariesYieldWhatLiesBeforeTheDamage) {
    std::string cut =
        test::Dictionary(2, 0, {test::Native("first", ""), test::Native("second", "")});
    cut.replace(28 + test::Native("first", "").size(), 4, test::U32(0x99)); // not a texture native
    openEntries({{"cut.txd", cut},
                 {"pad.txd", test::Dictionary(0xFFFF, 2, {test::Native("only", "")})},
                 {"empty.txd", test::Dictionary(0, 0, {})},
                 {"next.txd", test::Dictionary(1, 0, {test::Native("after", "")})}});
    // An entry whose record claims sectors past the end of the data file.
    editor.table().setPlacement(2, 1000, 50);
    std::vector<std::string> names;
    for (const FoundInFile& f : FindTexturesInArchive(editor, "")) {
        names.push_back(f.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"first", "only", "after"}));
}

TEST_F(FindTest, FindsCollisionModelsThroughTheTempsCopies) {
    openDemo();
    EXPECT_EQ(Listed(FindCollisionModelsInArchive(editor, "LAMP")),
              (Found{{"lamppost1", "generic.col", 23}}));
    EXPECT_EQ(settings.ReadSetting("lastFileSearch"), "LAMP");
    EXPECT_EQ(Listed(FindCollisionModelsInArchive(editor, "_SA")),
              (Found{{"vendmach_sa", "sa_props.col", 25}, {"phonebooth_sa", "sa_props.col", 25}}));

    desktop.conversation.clear();
    const auto all = FindCollisionModelsInArchive(editor, "");
    EXPECT_EQ(all.size(), 11u);
    EXPECT_EQ(desktop.conversation,
              (std::vector<std::string>{"progress shown: 5", "progress hidden"}));
    // One copy per collision entry, exactly the entry's sectors.
    const std::string data = test::ReadBytes(folder / "demo.img");
    for (std::size_t row : {11, 18, 23, 24, 25}) {
        const Entry& entry = editor.table()[row - 1];
        EXPECT_EQ(test::ReadBytes(TempsFolder() / entry.name),
                  data.substr(entry.byteOffset(), entry.byteCount()))
            << entry.name;
    }
}

TEST_F(FindTest, CollisionEntriesThatCannotBeCopiedOrReadListNothing) {
    const std::string good = test::ColModel("COLL", "good", 40);
    openEntries(
        {{"../escape.col", good},
         {"damaged.col", "COLL" + test::U32(0xFFFFFF00) + test::Field("big", 24)},
         {"ok.col", good + test::ColModel("COL3", "", 40) + test::ColModel("COL2", "Two", 4)}});
    EXPECT_EQ(Listed(FindCollisionModelsInArchive(editor, "")),
              (Found{{"good", "ok.col", 3}, {"Two", "ok.col", 3}}));
    EXPECT_FALSE(fs::exists(folder / "escape.col"));
    EXPECT_FALSE(CopyEntryToTempsFolder(editor, 1));
    EXPECT_FALSE(CopyEntryToTempsFolder(editor, 4));
}

TEST_F(FindTest, SavingFileResultsAsksBeforeReplacing) {
    openDemo();
    const auto found = FindTexturesInArchive(editor, "cheetah92");
    const std::string out = (folder / "found.txt").string();
    const std::string other = (folder / "other.txt").string();
    test::WriteBytes(out, "old");
    desktop.conversation.clear();
    desktop.answer({out, "no", out, "yes"});
    SaveFileSearchResults(editor, found);
    EXPECT_EQ(test::ReadBytes(out), "cheetah92body  --  cheetah.txd\r\n"
                                    "cheetah92interior  --  cheetah.txd\r\n"
                                    "cheetah92wheel  --  cheetah.txd\r\n");
    const std::string save = "save " + text("sd0") + " [" + text("cdFiles3") + "] -> " + out;
    const std::string ask = "ask " + text("fe2") + ": " + out + "\r\n" + text("fe3");
    EXPECT_EQ(desktop.conversation,
              (std::vector<std::string>{save, ask + " -> no", save, ask + " -> yes"}));

    desktop.conversation.clear();
    SaveFileSearchResults(editor, std::nullopt);
    SaveFileSearchResults(editor, std::vector<FoundInFile>{});
    desktop.answer({""});
    SaveFileSearchResults(editor, found);
    EXPECT_EQ(desktop.conversation.size(), 3u);
    EXPECT_FALSE(fs::exists(other));
}

} // namespace
} // namespace korvel
