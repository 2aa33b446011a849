#include "EntryFixture.h"

#include "platform/Folders.h"

#include <algorithm>

namespace korvel::test {
namespace {

namespace fs = std::filesystem;
using Extract = EntryFixture;

TEST_F(Extract, EditExtractAsksOnceAndWritesEachEntryFromItsOwnOffset) {
    open({{0, 1, "b.dff"}, {1, 2, "a.txd"}, {3, 1, "c.ifp"}}, 4 * SectorSize);
    editor.table().setOrder(EntryTable::Order::Name); // a.txd, b.dff, c.ifp
    select({0, 1, 2});
    fs::create_directories(folder / "out");
    desktop.answer({(folder / "out").string()});

    EXPECT_EQ(commands.ExtractSelectedAskingFolder(), 0u);

    const std::string data = imgBytes();
    EXPECT_EQ(ReadBytes(folder / "out" / "a.txd"), data.substr(SectorSize, 2 * SectorSize));
    EXPECT_EQ(ReadBytes(folder / "out" / "b.dff"), data.substr(0, SectorSize));
    EXPECT_EQ(ReadBytes(folder / "out" / "c.ifp"), data.substr(3 * SectorSize, SectorSize));
    EXPECT_EQ(desktop.said("folder").size(), 1u);
    EXPECT_EQ(settings.ReadSetting("lastExtract"), (folder / "out").string());
    EXPECT_EQ(selected(), (std::vector<std::size_t>{2}));
    const auto statuses = desktop.said("status");
    ASSERT_EQ(statuses.size(), 6u);
    EXPECT_EQ(statuses[0], "status: " + text("extract1") + " 1 " + text("adding2") + " 3");
    EXPECT_EQ(statuses[5], "status: " + text("extract5"));
    EXPECT_EQ(ReadBytes(folder / "a.img"), data); // extraction never changes the archive
}

TEST_F(Extract, OnlyTheSectorsTheDataFileHoldsAreWrittenAndTheRestIsNamed) {
    // The entry claims 8 TiB from sector 3; the data file ends 100 bytes in.
    open({{3, 0xFFFFFFFF, "tail.dff"}}, 3 * SectorSize + 100);
    fs::create_directories(folder / "out");
    WriteBytes(folder / "out" / "tail.dff", std::string(5 * SectorSize, 'x'));
    settings.WriteSetting((folder / "out").string(), "lastExtract");
    select({0});
    desktop.answer({"yes"}); // write over the file that is there

    EXPECT_EQ(commands.ExtractSelectedToLastFolder(), 0u);

    const std::string got = ReadBytes(folder / "out" / "tail.dff");
    ASSERT_EQ(got.size(), SectorSize);
    EXPECT_EQ(got.substr(0, 100), imgBytes().substr(3 * SectorSize, 100));
    EXPECT_EQ(got.substr(100), std::string(SectorSize - 100, '\0'));
    const auto messages = desktop.said("message(Exclamation)");
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NE(messages[0].find("\"tail.dff\" reaches past the end of the data file: " +
                               std::to_string((0xFFFFFFFFull - 1) * SectorSize) + " bytes"),
              std::string::npos);
}

TEST_F(Extract, AnExistingFileIsWrittenOverOnlyWhenThePersonSaysSo) {
    const std::tuple<std::vector<std::string>, std::string, std::size_t> cases[] = {
        {{"yes", "no", "yes"}, "ac", 1},
        {{"no", "all"}, "bc", 1},
        {{"yes", Cancel}, "a", 2}, // Cancel stops: c is not asked about
    };
    for (const auto& [answers, written, notWritten] : cases) {
        open({{0, 1, "a.dff"}, {1, 1, "b.dff"}, {2, 1, "c.dff"}}, 3 * SectorSize);
        fs::create_directories(folder / "out");
        for (const char* name : {"a.dff", "b.dff", "c.dff"})
            WriteBytes(folder / "out" / name, "mine");
        settings.WriteSetting((folder / "out").string(), "lastExtract");
        editor.table().selectAll();
        desktop.answers = {answers.begin(), answers.end()};
        EXPECT_EQ(commands.ExtractSelectedToLastFolder(), 0u); // kept files are not failures
        std::string got;
        for (const std::string name : {"a", "b", "c"})
            got += ReadBytes(folder / "out" / (name + ".dff")) == "mine" ? "" : name;
        EXPECT_EQ(got, written);
        EXPECT_EQ(desktop.status, std::to_string(3 - notWritten) + " " + text("ovw3") + ", " +
                                      std::to_string(notWritten) + " " + text("filesSkip"));
    }
}

TEST_F(Extract, QuickWithoutAFolderAndACancelledDialog) {
    open({{0, 1, "a.dff"}, {1, 1, "b.dff"}}, 2 * SectorSize);
    select({0, 1});
    // No folder remembered: one message, no files, extract2.
    EXPECT_EQ(commands.ExtractSelectedToLastFolder(), 2u);
    const std::string message =
        "message(Information) Quick extract: " + text("extract3") + "\r\n" + text("extract4");
    EXPECT_EQ(desktop.said("message"), (std::vector<std::string>{message}));
    EXPECT_EQ(desktop.status, text("extract2"));

    // Cancelling the dialog extracts nothing, not even to lastExtract.
    fs::create_directories(folder / "last");
    settings.WriteSetting((folder / "last").string(), "lastExtract");
    select({0, 1});
    desktop.answer({Cancel});
    EXPECT_EQ(commands.ExtractSelectedAskingFolder(), 2u);
    EXPECT_TRUE(fs::is_empty(folder / "last"));
    EXPECT_EQ(settings.ReadSetting("lastExtract"), (folder / "last").string());

    // A failed entry is counted, not hidden behind the last one's "complete".
    open({{0, 1, "a.dff"}, {0, 1, "../up.dff"}}, SectorSize);
    select({0, 1});
    EXPECT_EQ(commands.ExtractSelectedToLastFolder(), 1u);
    EXPECT_EQ(desktop.status,
              text("extract5") + ": 1 " + text("extracted") + ", 1 " + text("addFailed"));
}

TEST_F(Extract, NamesThatWouldLeaveTheFolderAreRefusedAndTheRestWritten) {
    open({{0, 1, ""},
          {0, 1, "."},
          {0, 1, ".."},
          {0, 1, "x/evil"},
          {0, 1, "..\\evil"},
          {1, 1, "ok.dff"}},
         2 * SectorSize);
    fs::create_directories(folder / "out" / "x");
    settings.WriteSetting((folder / "out").string(), "lastExtract");
    editor.table().selectAll();

    EXPECT_EQ(commands.ExtractSelectedToLastFolder(), 5u);
    const auto messages = desktop.said("message(Exclamation)");
    ASSERT_EQ(messages.size(), 5u);
    EXPECT_NE(messages[3].find("\"x/evil\""), std::string::npos) << messages[3];
    EXPECT_NE(messages[4].find("\"..\\evil\""), std::string::npos) << messages[4];
    EXPECT_FALSE(fs::exists(folder / "out" / "x" / "evil"));
    EXPECT_FALSE(fs::exists(folder / "evil"));
    EXPECT_FALSE(fs::exists(folder / "out" / "..\\evil"));
    std::vector<std::string> written;
    for (const auto& item : fs::directory_iterator(folder / "out")) {
        written.push_back(item.path().filename().string());
    }
    std::sort(written.begin(), written.end());
    EXPECT_EQ(written, (std::vector<std::string>{"ok.dff", "x"}));
}

} // namespace
} // namespace korvel::test
