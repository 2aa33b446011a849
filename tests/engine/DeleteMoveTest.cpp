#include "EntryFixture.h"

namespace korvel::test {
namespace {

using DeleteMove = EntryFixture;

std::vector<DirRecord> Five() {
    return {{0, 1, "r1"}, {1, 1, "r2"}, {2, 1, "r3"}, {3, 1, "r4"}, {4, 1, "r5"}};
}

TEST_F(DeleteMove, TheConfirmationDecidesAndDeletingKeepsTheData) {
    open(Five(), 5 * SectorSize);
    const std::string img0 = imgBytes(), dir0 = dirBytes();
    select({1, 2});
    desktop.answer({"no"});
    commands.DeleteSelectedAsking();
    EXPECT_EQ(desktop.said("ask"),
              (std::vector<std::string>{"ask !" + text("del3") +
                                        ": Delete 2 selected entries from the archive? -> no"}));
    EXPECT_EQ(dirBytes(), dir0);
    EXPECT_EQ(settings.ReadSetting("archiveState"), "peachy");

    desktop.conversation.clear();
    desktop.answer({"yes"});
    commands.DeleteSelectedAsking();
    EXPECT_EQ(names(), (std::vector<std::string>{"r1", "r4", "r5"}));
    EXPECT_EQ(records(), tableRecords());
    EXPECT_EQ(imgBytes(), img0);
    EXPECT_EQ(settings.ReadSetting("archiveState"), "shit");
    EXPECT_EQ(desktop.said("status"),
              (std::vector<std::string>{"status: Deleted 1", "status: Deleted 2",
                                        "status: " + text("del4")}));
    EXPECT_EQ(desktop.stats, "Entries: 3");

    // Nothing selected: not even a question.
    desktop.conversation.clear();
    editor.table().clearSelection();
    commands.DeleteSelectedAsking();
    EXPECT_TRUE(desktop.conversation.empty());
}

TEST_F(DeleteMove, TheProgressBarShowsFromElevenRows) {
    for (std::size_t count : {10u, 11u}) {
        std::vector<DirRecord> rows;
        for (std::uint32_t i = 0; i < count; ++i) {
            rows.push_back({i, 1, "e" + std::to_string(i)});
        }
        open(rows, count * SectorSize);
        settings.WriteSetting("False", "deleteProm");
        editor.table().selectAll();
        commands.DeleteSelectedAsking();
        EXPECT_EQ(desktop.said("progress shown"),
                  count > 10 ? std::vector<std::string>{"progress shown: 11"}
                             : std::vector<std::string>{});
        EXPECT_EQ(dirBytes(), "");
        // With every row gone the next file goes to offset 0.
        std::string name = "n.dff";
        EXPECT_EQ(AddFile(editor.archive(), input("n.dff", "n"), name, false, {}).result,
                  AddResult::Added);
        EXPECT_EQ(editor.table()[0].startSector, 0u);
    }
}

TEST_F(DeleteMove, MovingKeepsPlacementAndChangesOnlyTheOrder) {
    open(Five(), 5 * SectorSize);
    const std::string img0 = imgBytes();
    select({1, 3});
    commands.MoveSelectedToEnd();
    EXPECT_EQ(tableRecords(),
              (std::vector<DirRecord>{
                  {0, 1, "r1"}, {2, 1, "r3"}, {4, 1, "r5"}, {1, 1, "r2"}, {3, 1, "r4"}}));
    EXPECT_EQ(records(), tableRecords());
    EXPECT_EQ(imgBytes(), img0);
    EXPECT_EQ(selected(), (std::vector<std::size_t>{3, 4})); // the moved ones, nothing else
    EXPECT_EQ(desktop.status, "2 entries moved to the end");
    EXPECT_EQ(settings.ReadSetting("archiveState"), "shit");

    // The last row together with others moves too, behind them.
    select({0, 4});
    commands.MoveSelectedToEnd();
    EXPECT_EQ(names(), (std::vector<std::string>{"r3", "r5", "r2", "r1", "r4"}));

    // The last row alone is already at the end; nothing selected, nothing to do.
    settings.WriteSetting("peachy", "archiveState");
    const std::string dir0 = dirBytes();
    desktop.conversation.clear();
    select({4});
    commands.MoveSelectedToEnd();
    EXPECT_EQ(desktop.said("message"),
              (std::vector<std::string>{"message(Information) " + text("move2") + ": " +
                                        text("move1") + "\r\nDe dum de de, de diddle dum."}));
    EXPECT_EQ(dirBytes(), dir0);
    EXPECT_EQ(settings.ReadSetting("archiveState"), "peachy");
    editor.table().clearSelection();
    commands.MoveSelectedToEnd();
    EXPECT_EQ(desktop.status, text("noneSel"));
}

} // namespace
} // namespace korvel::test
