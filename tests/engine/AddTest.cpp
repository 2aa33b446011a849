#include "EntryFixture.h"

namespace korvel::test {
namespace {

using Add = EntryFixture;

TEST_F(Add, FilesGoBehindTheLastEntryInWholeSectorsWithZeroPadding) {
    open({}, 0);
    const std::string a = Pattern(2048, 'a'), b = Pattern(1, 'b');
    EXPECT_EQ(commands.AddFileBatch({input("a.dff", a), input("b.dff", b), input("e.ifp", "")}),
              0u);
    EXPECT_EQ(tableRecords(),
              (std::vector<DirRecord>{{0, 2, "a.dff"}, {2, 1, "b.dff"}, {3, 1, "e.ifp"}}));
    EXPECT_EQ(records(), tableRecords());
    EXPECT_EQ(imgBytes(),
              a + std::string(2048, '\0') + b + std::string(2047, '\0') + std::string(2048, '\0'));
    EXPECT_EQ(desktop.stats, "Entries: 3");
    EXPECT_EQ(editor.highestOffset(), 3 * SectorSize);

    // Sorted by name the entry last in the data file is the first row.
    open({{9, 3, "zz.dff"}, {0, 1, "aa.dff"}}, 12 * SectorSize);
    editor.table().setOrder(EntryTable::Order::Name);
    std::string name = "mm.txd";
    EXPECT_EQ(AddFile(editor.archive(), input("mm.txd", "x"), name, true, {}).result,
              AddResult::Added);
    EXPECT_EQ(names(), (std::vector<std::string>{"aa.dff", "mm.txd", "zz.dff"}));
    EXPECT_EQ(editor.table()[1].startSector, 12u);
    EXPECT_EQ(FileLength(img()), 13 * SectorSize);
}

TEST_F(Add, EditAddPutsTextureDictionariesLastAndRemembersTheFolder) {
    open({}, 0);
    const std::string a = input("a.txd", "A"), b = input("b.dff", "B"), c = input("c.TXD", "C");
    desktop.answer({a + "|" + b + "|" + c});
    commands.AddFilesAskingPaths();

    EXPECT_EQ(names(), (std::vector<std::string>{"b.dff", "a.txd", "c.TXD"}));
    EXPECT_EQ(records(), tableRecords());
    EXPECT_EQ(settings.ReadSetting("lastAdd"), (folder / "in").string());
    const std::string of = " " + text("adding2") + " ";
    EXPECT_EQ(desktop.said("status"),
              (std::vector<std::string>{"status: " + text("adding1") + " 1" + of + "3",
                                        "status: " + text("adding1") + " 2" + of + "3",
                                        "status: " + text("adding1") + " 3" + of + "3",
                                        "status: " + text("adding4") + " 1" + of + "2",
                                        "status: " + text("adding4") + " 2" + of + "2",
                                        "status: 3 files added"}));

    // One file: its folder with the separator, and adding5.
    desktop.conversation.clear();
    desktop.answer({input("d.col", "D")});
    commands.AddFilesAskingPaths();
    EXPECT_EQ(settings.ReadSetting("lastAdd"), (folder / "in").string() + "/");
    EXPECT_EQ(desktop.status, text("adding5"));

    // Cancelled: nothing changes.
    const std::string img0 = imgBytes(), dir0 = dirBytes();
    settings.WriteSetting("keep", "lastAdd");
    desktop.answer({Cancel});
    commands.AddFilesAskingPaths();
    EXPECT_EQ(imgBytes(), img0);
    EXPECT_EQ(dirBytes(), dir0);
    EXPECT_EQ(settings.ReadSetting("lastAdd"), "keep");
}

TEST_F(Add, TheFourAnswersToADuplicate) {
    struct Case {
        const char* answer;
        std::vector<std::string> extra; // input box or rename dialog answers
        std::vector<DirRecord> expected;
        const char* stored = nullptr; // addingOpt afterwards, when not the answer
    };
    const Case cases[] = {
        {"skip", {}, {{0, 1, "CAR.DFF"}, {1, 1, "bus.dff"}}},
        {"replace", {}, {{0, 1, "CAR.DFF"}, {1, 1, "bus.dff"}}},
        {"renameNew", {"car2.dff"}, {{0, 1, "CAR.DFF"}, {1, 1, "bus.dff"}, {2, 1, "car2.dff"}}},
        {"renameOld", {"old.dff"}, {{0, 1, "old.dff"}, {1, 1, "bus.dff"}, {2, 1, "car.dff"}}},
        {"<close>", {}, {{0, 1, "CAR.DFF"}, {1, 1, "bus.dff"}}, "replace"}, // Escape: left out
        {"renameNew", {Cancel}, {{0, 1, "CAR.DFF"}, {1, 1, "bus.dff"}}},
        {"renameOld", {Cancel}, {{0, 1, "CAR.DFF"}, {1, 1, "bus.dff"}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer);
        settings.WriteSetting("replace", "addingOpt");
        open({{0, 1, "CAR.DFF"}, {1, 1, "bus.dff"}}, 2 * SectorSize);
        dialogs.shown.clear();
        dialogs.duplicateAnswers = {c.answer};
        if (std::string(c.answer) == "renameNew") {
            desktop.answer({c.extra.front()});
        } else if (!c.extra.empty()) {
            dialogs.renameAnswers = {c.extra.begin(), c.extra.end()};
        }
        const std::string path = input("car.dff", "new data");
        EXPECT_EQ(commands.AddFileBatch({path}), 0u);

        ASSERT_FALSE(dialogs.shown.empty());
        EXPECT_EQ(dialogs.shown.front(), "addingDup car.dff -> " + std::string(c.answer));
        EXPECT_EQ(settings.ReadSetting("addingOpt"), c.stored ? c.stored : c.answer);
        EXPECT_EQ(tableRecords(), c.expected);
        EXPECT_EQ(records(), c.expected);
        const bool replaced = std::string(c.answer) == "replace";
        EXPECT_EQ(imgBytes().substr(0, 8) == "new data", replaced);
        // Every answer but replace that leaves two entries left the file out.
        const bool leftOut = std::string(c.answer) != "replace" && c.expected.size() == 2;
        EXPECT_EQ(desktop.status,
                  leftOut ? "0 files added, 1 " + text("addSkipped") : "1 file added");
        if (std::string(c.answer) == "renameNew") {
            // The input box names the conflicting file.
            EXPECT_EQ(desktop.said("input"),
                      (std::vector<std::string>{"input " + text("reTrouble2") + ": " +
                                                text("reTrouble1") + " car.dff [] -> " +
                                                c.extra.front()}));
        }
    }
}

TEST_F(Add, DontPromptAgainAndTheMarkerAndNameOrder) {
    open({{0, 1, "a.dff"}, {1, 1, "B.DFF"}, {2, 1, "------------------------"}}, 3 * SectorSize);
    editor.table().setOrder(EntryTable::Order::Name); // the index searches sorted rows
    dialogs.duplicateAnswers = {"skip+dontPrompt"};
    const std::string b = input("b.dff", "b");
    EXPECT_EQ(commands.AddFileBatch({b}), 0u);
    EXPECT_EQ(settings.ReadSetting("scanPrompt"), "1");
    // Asked no more: the stored answer applies.
    EXPECT_EQ(commands.AddFileBatch({b}), 0u);
    EXPECT_EQ(dialogs.shown.size(), 1u);
    EXPECT_EQ(editor.table().size(), 3u);

    // The marker is never scanned: a second one is added, not skipped.
    EXPECT_EQ(commands.AddFileBatch({input(std::string(MarkerName), "m")}), 0u);
    EXPECT_EQ(editor.table().size(), 4u);

    // Switching the scan off adds duplicates as they come.
    editor.menu().setChecked("AddingScan", true);
    commands.ToggleAddingScan();
    EXPECT_EQ(settings.ReadSetting("addingScan"), "False");
    EXPECT_EQ(commands.AddFileBatch({b}), 0u);
    EXPECT_EQ(names(),
              (std::vector<std::string>{"------------------------", "------------------------",
                                        "a.dff", "B.DFF", "b.dff"}));
}

TEST_F(Add, ANewNameIsCheckedOnlyAgainstLaterRows) {
    open({{0, 1, "first.dff"}, {1, 1, "x.dff"}, {2, 1, "later.dff"}}, 3 * SectorSize);
    settings.WriteSetting("renameNew", "addingOpt");
    settings.WriteSetting("1", "scanPrompt");
    // x.dff clashes with row 2 and is renamed first.dff (an earlier row: not
    // seen), then later.dff would clash with row 3 and is asked again.
    desktop.answer({"first.dff"});
    EXPECT_EQ(commands.AddFileBatch({input("x.dff", "1")}), 0u);
    EXPECT_EQ(names().back(), "first.dff");
    desktop.answer({"later.dff", "fine.dff"});
    EXPECT_EQ(commands.AddFileBatch({input("x.dff", "2")}), 0u);
    EXPECT_EQ(names().back(), "fine.dff");
    EXPECT_EQ(desktop.said("input").size(), 3u);
}

TEST_F(Add, AFailedFileIsReportedAndTheBatchGoesOn) {
    open({{0, 1, "a.dff"}}, SectorSize);
    const std::string good = input("good.dff", "g");
    const std::string missing = (folder / "in" / "missing.dff").string();
    EXPECT_EQ(commands.AddFileBatch({missing, good}), 1u);
    const auto messages = desktop.said("message(Exclamation) Error: " + text("ohCrap1"));
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NE(messages[0].find("\r\n" + text("ohCrap2") + "\r\nmissing.dff"), std::string::npos);
    EXPECT_EQ(names(), (std::vector<std::string>{"a.dff", "good.dff"}));
    EXPECT_EQ(records(), tableRecords());

    // A copy that fails midway gives the data file its old length back.
    const std::string img0 = imgBytes();
    SetStepHook(
        [](std::string_view step) { return step == "copy" ? FsError("no space") : FsError(); });
    EXPECT_EQ(commands.AddFileBatch({input("c.dff", Pattern(9000, 'c'))}), 1u);
    EXPECT_EQ(imgBytes(), img0);
    EXPECT_EQ(records(), tableRecords());
    EXPECT_EQ(editor.table().size(), 2u);
    SetStepHook({});

    // A write that stops after some bytes have landed: the tail goes too.
    {
        const FileSizeLimit limit(img0.size() + SectorSize);
        EXPECT_EQ(commands.AddFileBatch({input("d.dff", Pattern(3 * SectorSize, 'd'))}), 1u);
    }
    EXPECT_EQ(imgBytes(), img0);
    EXPECT_EQ(records(), tableRecords());
}

TEST_F(Add, AFullDirectoryTakesNoMoreAndNothingIsWritten) {
    open(std::vector<DirRecord>(MaxRecords, DirRecord{0, 1, "x.dff"}), SectorSize);
    const std::string img0 = imgBytes();
    const std::string dir0 = dirBytes();
    EXPECT_EQ(commands.AddFileBatch({input("one.dff", "1")}), 1u);
    const auto messages = desktop.said("message(Exclamation) Error: " + text("ohCrap1"));
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NE(messages[0].find("32767"), std::string::npos);
    EXPECT_EQ(imgBytes(), img0);
    EXPECT_EQ(dirBytes(), dir0);
    EXPECT_EQ(editor.table().size(), MaxRecords);
}

} // namespace
} // namespace korvel::test
