// Hostile names: typed, taken from files, used as file names, and printed.
#include "../engine/EntryFixture.h"
#include "CliRunner.h"
#include "EntryBytes.h"
#include "archive/EntryFiles.h"
#include "platform/Folders.h"
#include "platform/TextFile.h"

namespace korvel::test {
namespace {

namespace fs = std::filesystem;

TEST(HostileNames, RenameAndAddRefuseBadNamesAndAddScansNamesAsStored) {
    TestFolder folder;
    const std::string img = (folder / "a.img").string(), name24 = "abcdefghijklmnopqrstuvwx";
    WriteArchiveOf(img, {{"car.dff", "car"}});
    const std::string before = ReadBytes(img) + ReadBytes(folder / "a.dir");
    for (const std::string typed :
         {"\xC0\x80", "c\xC0\xAFr.dff", "\xE0\x81\xA1.dff", "\xE0\x80\xAF.dff", "\xED\xA0\x80.dff",
          "\xF4\x90\x80\x80", "car\xC3", "a/b.dff", "a\\b.dff", "..", "a\x1B[2J.dff", "a\r\nb.dff",
          "\xC2\x9D.dff"}) {
        std::vector<std::vector<std::string>> calls = {{"rename", img, "car.dff", typed}};
        if (typed.find('/') == std::string::npos && typed != "..") {
            WriteBytes(folder / typed, "new"); // names from files being added
            calls.push_back({"add", img, (folder / typed).string()});
        }
        for (const auto& call : calls) {
            const CliResult run = RunCli(call);
            EXPECT_EQ(run.exitCode, 1) << call[0] << typed;
            EXPECT_EQ(run.err.find_first_of("\x1B\r"), std::string::npos) << call[0] << typed;
            EXPECT_EQ(ReadBytes(img) + ReadBytes(folder / "a.dir"), before) << call[0] << typed;
        }
    }
    // Two names alike in their first 24 characters meet in the duplicate scan.
    WriteBytes(folder / (name24 + "1.dff"), "one");
    WriteBytes(folder / (name24 + "2.dff"), "two");
    const CliResult run = RunCli({"add", img, (folder / (name24 + "1.dff")).string(),
                                  (folder / (name24 + "2.dff")).string(), "--on-duplicate=skip"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 2); // one line per name
    EXPECT_NE(run.err.find("it is stored as \"" + name24 + "\"\n"), std::string::npos);
    EXPECT_EQ(DecodeDirectory(ReadBytes(folder / "a.dir")),
              (std::vector<DirRecord>{{0, 1, "car.dff"}, {1, 1, name24}}));
    EXPECT_EQ(ReadBytes(img).substr(SectorSize, 3), "one");
}

TEST(HostileNames, QuickReplaceTakesNoFileFromOutsideTheFolder) {
    TestFolder folder;
    const std::string img = (folder / "a.img").string();
    WriteArchiveOf(img, {{"../secret.key", "old1"}, {"/etc/passwd", "old2"}, {"ok.dff", "old3"}});
    fs::create_directory(folder / "in");
    WriteBytes(folder / "secret.key", "SECRET");
    WriteBytes(folder / "in" / "ok.dff", "new3");
    const CliResult run = RunCli({"quick-replace", img, (folder / "in").string()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out, "replaced 1, skipped 2\n");
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 2);
    const std::string data = ReadBytes(img);
    EXPECT_EQ(data.substr(0, 4) + data.substr(SectorSize, 4) + data.substr(2 * SectorSize, 4),
              "old1old2new3");
}

TEST(HostileNames, ListingsAndTextReportsShowControlCharactersEscaped) {
    TestFolder folder;
    fs::create_directory(folder / "<i>\n");
    const fs::path img = folder / "<i>\n" / "a.img";
    WriteArchiveOf(img, {{"a\r\nb.dff", "1"}, {"\x1B]0;x\x07", "2"}, {"\x9Dz\xE9", "3"}});
    const CliResult list = RunCli({"list", img.string()});
    EXPECT_EQ(list.out,
              "a\\x0D\\x0Ab.dff\t0\t2kb\n\\x1B]0;x\\x07\t800\t2kb\n\\x9Dz\xC3\xA9\t1000\t2kb\n");
    EXPECT_EQ(RunCli({"report", img.string(), (folder / "r.txt").string(), "--text"}).exitCode, 0);
    EXPECT_EQ(RunCli({"report", img.string(), (folder / "r.htm").string(), "--html"}).exitCode, 0);
    const std::string text = ReadBytes(folder / "r.txt"), html = ReadBytes(folder / "r.htm");
    for (const char* shown : {"<i>\\x0A/a.img\r\n", "\r\na\\x0D\\x0Ab.dff   ", "\r\n\\x9Dz\xE9   "})
        EXPECT_NE(text.find(shown), std::string::npos) << shown;
    EXPECT_NE(html.find("&lt;i&gt;\\x0A/a.img<br>"), std::string::npos);
    // The window's saved result lists go through the same line writer.
    ASSERT_TRUE(WriteLines(folder / "saved.txt", {"a\r\nb.dff", "c"}).ok());
    EXPECT_EQ(ReadBytes(folder / "saved.txt"), "a\\x0D\\x0Ab.dff\r\nc\r\n");
}

TEST(HostileNames, WindowsFileNamesRefuseDevicesStreamsAndTrailingDots) {
    for (const char* name : {"CON", "con.txd", "Com1.dff", "lpt9", "nul .txt", "COM\xB9", "a:b",
                             "car.dff:x", "car.dff.", "car.dff "})
        EXPECT_NE(WindowsFileNameProblem(name), "") << name;
    for (const char* name : {"console", "com10.dff", "auxiliary", "lpt0.dff", "car.dff"})
        EXPECT_EQ(WindowsFileNameProblem(name), "") << name;
}

using HostileView = EntryFixture;

TEST_F(HostileView, OnlyKnownKindsOfFilesGoToTheDesktop) {
    std::vector<DirRecord> rows;
    for (const char* name :
         {"run.sh", "x.desktop", "a.exe", "noext", "car.DFF", "a.txt", "../up.dff"})
        rows.push_back({static_cast<std::uint32_t>(rows.size()), 1, name});
    open(rows, rows.size() * SectorSize);
    editor.table().selectAll();
    commands.ViewSelectedEntries();
    EXPECT_EQ(desktop.said("message(Information)").size(), 4u);
    EXPECT_EQ(desktop.said("message(Exclamation)").size(), 1u);
    EXPECT_EQ(desktop.shellOpened, (std::vector<std::string>{(TempsFolder() / "car.DFF").string(),
                                                             (TempsFolder() / "a.txt").string()}));
    EXPECT_EQ(ReadBytes(TempsFolder() / "car.DFF"), imgBytes().substr(4 * SectorSize, SectorSize));
    desktop.shellOpens = false;
    select({4});
    desktop.answer({"yes", folder.path().string()});
    commands.ViewSelectedEntries();
    EXPECT_EQ(desktop.said("ask").front().find("ask : " + text("openFail") + "\ncar.DFF"), 0u);
    EXPECT_TRUE(fs::exists(folder / "car.DFF"));
}

} // namespace
} // namespace korvel::test
