#include "EntryFixture.h"

namespace korvel::test {
namespace {

namespace fs = std::filesystem;
using Rebuild = EntryFixture;

TEST_F(Rebuild, CopiesEntriesInRowOrderIntoACompactPair) {
    const std::string name24 = "abcdefghijklmnopqrstu.dff";
    // Overlapping records, a zero-size row, a row past the end of the data,
    // a 24-character name, and unused sectors between them.
    open({{4, 2, "zz.dff"},
          {5, 1, "overlap.txd"},
          {0, 0, "empty.col"},
          {7, 3, "tail.ifp"},
          {1, 1, name24.substr(0, 24)}},
         8 * SectorSize);
    editor.table().setOrder(EntryTable::Order::Name);
    const std::string old = imgBytes();
    settings.WriteSetting("shit", "archiveState");

    ASSERT_TRUE(commands.Rebuild());

    // Name order: abc..., empty.col, overlap.txd, tail.ifp (cut to the one
    // sector that exists), zz.dff.
    const std::string expected =
        old.substr(SectorSize, SectorSize) + old.substr(5 * SectorSize, SectorSize) +
        old.substr(7 * SectorSize) + old.substr(4 * SectorSize, 2 * SectorSize);
    EXPECT_EQ(imgBytes(), expected);
    EXPECT_EQ(records(), (std::vector<DirRecord>{{0, 1, name24.substr(0, 24)},
                                                 {1, 0, "empty.col"},
                                                 {1, 1, "overlap.txd"},
                                                 {2, 1, "tail.ifp"},
                                                 {3, 2, "zz.dff"}}));
    EXPECT_EQ(dirBytes().substr(8, 24), name24.substr(0, 24)); // no zero byte
    EXPECT_EQ(tableRecords(), records());
    EXPECT_EQ(settings.ReadSetting("archiveState"), "peachy");
    EXPECT_EQ(desktop.status, text("rebuild5"));
    const auto statuses = desktop.said("status");
    EXPECT_EQ(statuses.front(), "status: " + text("rebuild3") + " 1 " + text("adding2") + " 5");
}

TEST_F(Rebuild, TheConfirmationAndTheOfferOnClosing) {
    open({{3, 1, "a.dff"}}, 4 * SectorSize);
    const std::string img0 = imgBytes(), dir0 = dirBytes();
    settings.WriteSetting("shit", "archiveState");
    desktop.answer({"no"});
    commands.RebuildAsking();
    EXPECT_EQ(desktop.said("ask"),
              (std::vector<std::string>{"ask !Rebuild archive?: " + text("rebuild1") + "\r\n" +
                                        text("rebuild2") + " -> no"}));
    EXPECT_EQ(imgBytes(), img0);
    EXPECT_EQ(dirBytes(), dir0);
    EXPECT_EQ(settings.ReadSetting("archiveState"), "shit");

    // Closing with the option on runs the same command; afterwards closing
    // offers nothing until the archive changes again.
    editor.menu().setChecked("OptRebuildPrompt", true);
    desktop.answer({"yes"});
    editor.CloseArchive();
    EXPECT_EQ(ReadBytes(folder / "a.img"), img0.substr(3 * SectorSize));
    EXPECT_EQ(settings.ReadSetting("archiveState"), "peachy");
    ASSERT_TRUE(editor.OpenArchive(img()));
    desktop.conversation.clear();
    editor.CloseArchive();
    EXPECT_TRUE(desktop.said("ask").empty());
}

} // namespace
} // namespace korvel::test
