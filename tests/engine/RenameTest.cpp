#include "EntryFixture.h"

namespace korvel::test {
namespace {

using Rename = EntryFixture;

TEST_F(Rename, TheDialogRefusesBlankNamesAndStoresWhatWasTyped) {
    open({{0, 1, "car.dff"}, {1, 1, "bus.dff"}, {2, 1, "van.dff"}}, 3 * SectorSize);
    select({0, 1, 2});
    dialogs.renameAnswers = {"   ", " car.txd"};
    commands.RenameSelectedWithDialog();

    // The dialog shows the last selected row; only that row changes.
    EXPECT_EQ(dialogs.shown,
              (std::vector<std::string>{"rename 3 (modeless) [van.dff] ->     kept open",
                                        "rename 3 (modeless) [van.dff] ->  car.txd ok"}));
    EXPECT_EQ(desktop.said("message"),
              (std::vector<std::string>{"message(Information) : No name entered"}));
    EXPECT_EQ(names(), (std::vector<std::string>{"car.dff", "bus.dff", " car.txd"}));
    EXPECT_EQ(editor.table()[2].type(), EntryKind::Texture);
    EXPECT_EQ(records(), tableRecords());
    EXPECT_EQ(desktop.status, text("sd1"));

    // A rude name still stands; only the status answers back, and only in small letters.
    EXPECT_TRUE(commands.DoRename(0, "shitcar.dff"));
    EXPECT_EQ(desktop.status, "You kiss your mother with that mouth?");
    EXPECT_TRUE(commands.DoRename(0, "SHITCAR.dff"));
    EXPECT_EQ(desktop.status, text("sd1"));
    // A name Windows-1252 cannot hold is refused and the dialog stays open.
    EXPECT_FALSE(commands.DoRename(1, "\xe6\x97\xa5.dff"));
    EXPECT_EQ(editor.table()[1].name, "bus.dff");
    // Accented letters are stored as their Windows-1252 bytes.
    EXPECT_TRUE(commands.DoRename(1, "b\xc3\xa9.dff"));
    EXPECT_EQ(records()[1].name, "b\xe9.dff");
}

TEST_F(Rename, NameCaseCommands) {
    struct Case {
        NameCase which;
        std::vector<std::string> names;
        const char* status;
    };
    const Case cases[] = {
        {NameCase::BeforeExtension, {"bus.DFF", "NOTES", "a.b", "KEEP.TXD"}, "1 name changed to lower case"},
        {NameCase::Extension, {"BUS.dff", "NOTES", "a.b", "KEEP.TXD"}, "1 extension changed to lower case"},
        {NameCase::Whole, {"bus.dff", "notes", "a.b", "KEEP.TXD"}, "2 names changed to lower case"}, // a.b was already
    };
    for (const Case& c : cases) {
        open({{0, 1, "BUS.DFF"}, {1, 1, "NOTES"}, {2, 1, "a.b"}, {3, 1, "KEEP.TXD"}},
             4 * SectorSize);
        select({0, 1, 2});
        commands.LowerCaseSelected(c.which);
        EXPECT_EQ(names(), c.names);
        EXPECT_EQ(records(), tableRecords());
        EXPECT_EQ(desktop.status, c.status);
    }
}

TEST_F(Rename, RenamingTheOldEntryOfADuplicateWhileSortedByName) {
    open({{0, 1, "b.dff"}, {1, 1, "a.dff"}}, 2 * SectorSize);
    editor.table().setOrder(EntryTable::Order::Name);
    settings.WriteSetting("renameOld", "addingOpt");
    settings.WriteSetting("1", "scanPrompt");
    dialogs.renameAnswers = {"z.dff"};
    EXPECT_EQ(commands.AddFileBatch({input("a.dff", "new")}), 0u);
    EXPECT_EQ(dialogs.shown, (std::vector<std::string>{"rename 1 (modal) [a.dff] -> z.dff ok"}));
    EXPECT_EQ(names(), (std::vector<std::string>{"a.dff", "b.dff", "z.dff"}));
    EXPECT_EQ(records(), tableRecords());
}

} // namespace
} // namespace korvel::test
