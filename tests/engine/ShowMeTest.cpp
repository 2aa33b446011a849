#include "window/ShowMe.h"
#include "EntryFixture.h"

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

TEST_F(ShowMe, HighlightSelectsOnlyTheListedRowsAndSkipsVanishedOnes) {
    open({{0, 1, "a"}, {1, 1, "b"}, {2, 1, "c"}, {3, 1, "d"}}, 4 * SectorSize);
    select({0, 1});
    EXPECT_EQ(HighlightShowMeRows(editor.table(), {4, 9, 3}), 2u);
    EXPECT_EQ(selected(), (std::vector<std::size_t>{2, 3}));
    EXPECT_EQ(HighlightShowMeRows(editor.table(), {7}), std::nullopt);
    EXPECT_TRUE(selected().empty());
}

} // namespace
} // namespace korvel::test
