#include "EntryFixture.h"

namespace korvel::test {
namespace {

using Replace = EntryFixture;

TEST_F(Replace, InPlaceShrinkOrAppendByTheSectorRule) {
    struct Case {
        const char* what;
        std::uint32_t oldSize; // sectors of the entry at sector 1
        std::size_t fileSize;
        bool inPlace;
        std::uint32_t newSize;
    };
    const Case cases[] = {
        {"fits and keeps its size", 2, 4000, true, 2},
        {"fits and shrinks", 2, 1500, true, 1},
        {"exactly two sectors needs three", 2, 4096, false, 3},
        {"an empty entry always moves", 0, 1, false, 1},
        // A damaged record reaching into last.dff must not write over it.
        {"fits but reaches into the next entry", 5, 9000, false, 5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        // Row 0 lies last in the data file, so appended data goes behind it.
        open({{5, 1, "last.dff"}, {1, c.oldSize, "car.dff"}}, 6 * SectorSize);
        const std::string before = imgBytes();
        const std::string file = Pattern(c.fileSize, 'A');
        const std::string path = input("new.dff", file);

        ASSERT_TRUE(ReplaceEntry(editor.archive(), 1, path).status.ok());

        const std::string after = imgBytes();
        const Entry& row = editor.table()[1];
        EXPECT_EQ(row.sizeSectors, c.newSize);
        if (c.inPlace) {
            EXPECT_EQ(row.startSector, 1u);
            EXPECT_EQ(after.size(), before.size());
            EXPECT_EQ(after.substr(SectorSize, c.fileSize), file);
            EXPECT_EQ(after[SectorSize + c.fileSize], '\0');
            // The rest of the old sectors keeps its bytes.
            const std::size_t rest = SectorSize + c.fileSize + 1;
            EXPECT_EQ(after.substr(rest, 3 * SectorSize - rest),
                      before.substr(rest, 3 * SectorSize - rest));
        } else {
            EXPECT_EQ(row.startSector, 6u);
            EXPECT_EQ(after.substr(0, before.size()), before);
            EXPECT_EQ(after.size(), (6 + c.newSize) * SectorSize);
            EXPECT_EQ(after.substr(6 * SectorSize, c.fileSize), file);
            EXPECT_EQ(after.substr(6 * SectorSize + c.fileSize),
                      std::string(c.newSize * SectorSize - c.fileSize, '\0'));
        }
        EXPECT_EQ(records(), tableRecords());
        EXPECT_EQ(editor.highestOffset(), SectorToOffset(row.startSector > 5 ? 6 : 5));
        EXPECT_EQ(settings.ReadSetting("archiveState"), "peachy");
    }
}

TEST_F(Replace, TheLastEntryGrowsBehindItselfNotOverIt) {
    open({{0, 1, "a.dff"}, {1, 1, "last.dff"}}, 2 * SectorSize);
    const std::string before = imgBytes();
    ASSERT_TRUE(ReplaceEntry(editor.archive(), 1, input("x", Pattern(3000, 'k'))).status.ok());
    EXPECT_EQ(editor.table()[1].startSector, 2u);
    EXPECT_EQ(imgBytes().substr(0, 2 * SectorSize), before);
}

TEST_F(Replace, ComReplaceAsksPerRowAndStopsOnCancelOrMissingFile) {
    open({{0, 1, "a.dff"}, {1, 1, "b.dff"}, {2, 1, "c.dff"}}, 3 * SectorSize);
    const std::string path = input("new a.dff", Pattern(100, 'q'));
    select({0, 2});
    desktop.answer({path, Cancel});
    commands.ReplaceSelectedAskingFiles();

    EXPECT_EQ(imgBytes().substr(0, 100), Pattern(100, 'q'));
    EXPECT_EQ(editor.table()[2].sizeSectors, 1u);
    EXPECT_EQ(imgBytes().substr(2 * SectorSize, 100), std::string(100, 'c'));
    EXPECT_EQ(settings.ReadSetting("lastAdd"), (folder / "in").string() + "/");
    const auto asked = desktop.said("open");
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0], "open " + text("rep1") + " [" + text("cdFiles2") + "] -> " + path);
    EXPECT_EQ(
        desktop.said("status"),
        (std::vector<std::string>{"status: " + text("rep4") + " a.dff",
                                  "status: a.dff " + text("rep5"), "status: " + text("rep3")}));

    desktop.conversation.clear();
    const std::string dirBefore = dirBytes();
    select({1});
    desktop.answer({(folder / "nothing-here").string()});
    commands.ReplaceSelectedAskingFiles();
    EXPECT_EQ(desktop.said("message"),
              (std::vector<std::string>{"message(Information) " + text("invalidFL") + ": " +
                                        text("rep2") + " " + (folder / "nothing-here").string()}));
    EXPECT_EQ(dirBytes(), dirBefore);
}

TEST_F(Replace, AFailedWriteLeavesTheArchiveAsItWas) {
    struct Case {
        const char* what;
        std::size_t row;       // row 0: two sectors at 0; row 1 at sector 2, of `claimed` sectors
        std::uint32_t claimed; // the data file holds only one sector of row 1
        std::size_t fileSize;
        std::uint64_t limit; // largest file size a write may reach; 0: the copy step fails
    };
    const Case cases[] = {
        {"appended, the copy fails", 0, 1, 5000, 0},
        {"appended, stops after a sector landed", 0, 1, 5000, 4 * SectorSize},
        {"in place, stops before a byte landed", 0, 1, 1500, 100},
        {"in place, stops after the old bytes were covered", 1, 3, 4000, 3 * SectorSize},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        open({{0, 2, "a.dff"}, {2, c.claimed, "b.dff"}}, 3 * SectorSize);
        const std::string img0 = imgBytes(), dir0 = dirBytes();
        const std::string path = input("big", Pattern(c.fileSize, 'z'));
        if (c.limit == 0) {
            SetStepHook([](std::string_view step) {
                return step == "copy" ? FsError("disk full") : FsError();
            });
            EXPECT_EQ(ReplaceEntry(editor.archive(), c.row, path).status.error(), "disk full");
        } else {
            const FileSizeLimit limit(c.limit);
            EXPECT_FALSE(ReplaceEntry(editor.archive(), c.row, path).status.ok());
        }
        SetStepHook({});
        EXPECT_EQ(imgBytes(), img0);
        EXPECT_EQ(dirBytes(), dir0);
        EXPECT_EQ(tableRecords(), records());
        EXPECT_FALSE(std::filesystem::exists(folder / "a.img.korvel-old"));
    }
}

} // namespace
} // namespace korvel::test
