#include "window/ShowMe.h"
#include "EntryFixture.h"
#include "window/FindCommands.h"

#include <algorithm>

namespace korvel::test {
namespace {

using ShowMe = EntryFixture;

TEST_F(ShowMe, EachFamilyListsItsRowsWithNumbersAndIcons) {
    open({{0, 1, "Car.DFF"},
          {1, 1, "readme.txt"},
          {2, 1, std::string(MarkerName)},
          {3, 1, "a.txd"},
          {4, 1, "walk.IFP"},
          {5, 1, "xdff"}},
         6 * SectorSize);
    struct Case {
        const char* item;
        const char* titleKey;
        std::vector<std::pair<std::string, std::size_t>> rows;
    };
    const Case cases[] = {{"ShowMeModels", "show3", {{"Car.DFF", 1}}},
                          {"ShowMeTextures", "show4", {{"a.txd", 4}}},
                          {"ShowMeAni", "show1", {{"walk.IFP", 5}}},
                          {"ShowMeCol", "show2", {}},
                          // Not the marker; "xdff" has no ".dff" ending.
                          {"ShowMeOthers", "show5", {{"readme.txt", 2}, {"xdff", 6}}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.item);
        const auto list = BuildShowMeList(editor, c.item);
        ASSERT_TRUE(list);
        std::vector<std::pair<std::string, std::size_t>> rows;
        for (const ShowMeRow& row : list->rows)
            rows.emplace_back(row.name, row.number);
        EXPECT_EQ(rows, c.rows);
        EXPECT_EQ(list->title, " " + text(c.titleKey) + std::to_string(c.rows.size()) + "]");
    }
    // Icons follow the name's ending, not the family: "xdff" is blue.
    EXPECT_EQ(BuildShowMeList(editor, "ShowMeOthers")->rows.back().icon, "blue");
    EXPECT_FALSE(BuildShowMeList(editor, "SelectModels"));
}

TEST_F(ShowMe, SavedListIsTheNamesOrThePlaceholderWithCrLf) {
    const std::string saved = (folder / "list.txt").string();
    open({{0, 1, "a.txd"}, {1, 1, "b.dff"}, {2, 1, "c.TXD"}, {3, 1, "d\xe9.txd"}}, 4 * SectorSize);
    desktop.answer({saved});
    ASSERT_TRUE(SaveShowMeList(editor, *BuildShowMeList(editor, "ShowMeTextures")));
    EXPECT_EQ(ReadBytes(saved), "a.txd\r\nc.TXD\r\nd\xe9.txd\r\n");
    const auto none = BuildShowMeList(editor, "ShowMeCol");
    EXPECT_TRUE(none->placeholder());
    desktop.answer({saved});
    ASSERT_TRUE(SaveShowMeList(editor, *none));
    EXPECT_EQ(ReadBytes(saved), text("sd2") + "\r\n");
}

TEST_F(ShowMe, ResultsAndTheRenameDialogKeepToTheirOwnEntries) {
    settings.WriteSetting("False", "deleteProm");
    const std::string gone = text("resGone") + " 1";
    // Change to e b c d a; what results for b, d select and say; b renamed by its dialog?
    const std::tuple<std::function<void()>, std::vector<std::string>, std::string, bool> cases[] = {
        {[&] { select({0}), commands.DeleteSelectedAsking(); }, {"b.dff", "d.dff"}, "", true},
        {[&] { select({1}), commands.DeleteSelectedAsking(); }, {"d.dff"}, gone, false},
        {[&] { select({1}), commands.MoveSelectedToEnd(); }, {"d.dff", "b.dff"}, "", true},
        {[&] { editor.table().setOrder(EntryTable::Order::Name); }, {"b.dff", "d.dff"}, "", true},
        {[&] { (void)commands.DoRename(3, "0.dff"); }, {"b.dff", "0.dff"}, "", true},
        {[&] { editor.ReloadArchive(); }, {"b.dff", "d.dff"}, "", true}, // the Sort menu's
        {[&] { editor.OpenArchive(img()); }, {}, text("resStale"), false},
        {[&] { editor.CloseArchive(); }, {}, text("resStale"), false},
    };
    for (const auto& [change, chosen, says, renamed] : cases) {
        SCOPED_TRACE(says + (chosen.empty() ? "" : chosen.back()));
        editor.table().setOrder(EntryTable::Order::Index);
        open({{0, 1, "e.dff"}, {1, 1, "b.dff"}, {2, 1, "c.txd"}, {3, 1, "d.dff"}, {4, 1, "a.txd"}},
             5 * SectorSize);
        const auto list = BuildShowMeList(editor, "ShowMeModels");
        const std::vector<EntryRef> found{list->rows[1].entry, list->rows[2].entry};
        (void)SelectResultEntries(editor, found); // a lookup made before the change
        select({1});
        dialogs.renameAnswers = {"<later>"};
        commands.RenameSelectedWithDialog();
        change();
        desktop.conversation.clear();
        (void)SelectResultEntries(editor, found);
        std::vector<std::string> picked;
        for (std::size_t row : selected())
            picked.push_back(editor.table()[row].name);
        EXPECT_EQ(picked, chosen);
        EXPECT_TRUE(dialogs.openRename.doRename("z.dff")); // Ok closes it either way
        EXPECT_EQ(std::ranges::count(names(), "z.dff"), renamed ? 1 : 0);
        std::string said;
        for (const std::string& message : desktop.said("message"))
            said += message.substr(std::string("message(Information) : ").size());
        EXPECT_EQ(said, says + (renamed ? "" : text("renGone")));
    }
}

} // namespace
} // namespace korvel::test
