// Hostile names: text typed or taken from file names, entry names used as
// file names in a folder, and names printed to a terminal or a report.
#include "../engine/EntryFixture.h"
#include "CliRunner.h"
#include "EntryBytes.h"
#include "archive/EntryFiles.h"
#include "platform/Folders.h"

namespace korvel::test {
namespace {

namespace fs = std::filesystem;

TEST(HostileNames, RenameRefusesInvalidTextAndNamesThatAreNoFileNames) {
    TestFolder folder;
    const std::string img = (folder / "a.img").string();
    WriteArchiveOf(img, {{"car.dff", "car"}});
    const std::string before = ReadBytes(folder / "a.dir");
    for (const char* typed : {"\xC0\x80", "c\xC0\xAFr.dff", "\xE0\x81\xA1.dff", "\xE0\x80\xAF.dff",
                              "\xED\xA0\x80.dff", "\xF4\x90\x80\x80", "car\xC3", "a/b.dff",
                              "a\\b.dff", "..", "a\x1B[2J.dff", "a\r\nb.dff", "\xC2\x9D.dff"}) {
        const CliResult run = RunCli({"rename", img, "car.dff", typed});
        EXPECT_EQ(run.exitCode, 1) << typed;
        EXPECT_EQ(run.err.find_first_of("\x1B\r"), std::string::npos) << typed;
        EXPECT_EQ(ReadBytes(folder / "a.dir"), before) << typed;
    }
}

TEST(HostileNames, AddRefusesBadFileNamesAndScansLongNamesAsStored) {
    TestFolder folder;
    const std::string img = (folder / "a.img").string(), name24 = "abcdefghijklmnopqrstuvwx";
    WriteArchiveOf(img, {{"car.dff", "car"}});
    const std::string imgBefore = ReadBytes(img), dirBefore = ReadBytes(folder / "a.dir");
    for (const char* bad : {"a\\b.dff", "new\x1B.dff", "new\n.dff"}) {
        WriteBytes(folder / bad, "bad");
        EXPECT_EQ(RunCli({"add", img, (folder / bad).string()}).exitCode, 1) << bad;
        EXPECT_EQ(ReadBytes(img) + ReadBytes(folder / "a.dir"), imgBefore + dirBefore) << bad;
    }
    // Two names alike in their first 24 characters meet in the duplicate scan.
    WriteBytes(folder / (name24 + "1.dff"), "one");
    WriteBytes(folder / (name24 + "2.dff"), "two");
    const CliResult run = RunCli({"add", img, (folder / (name24 + "1.dff")).string(),
                                  (folder / (name24 + "2.dff")).string(), "--on-duplicate=skip"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err, "korvel-cli: the name \"" + name24 +
                           "1.dff\" is longer than 24 characters; it is stored as \"" + name24 +
                           "\"\nkorvel-cli: the name \"" + name24 +
                           "2.dff\" is longer than 24 characters; it is stored as \"" + name24 +
                           "\"\n");
    const auto records = DecodeDirectory(ReadBytes(folder / "a.dir"));
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[1].name, name24);
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
    EXPECT_EQ(text.find('\x1B'), std::string::npos);
    EXPECT_NE(html.find("&lt;i&gt;\\x0A/a.img<br>"), std::string::npos);
}

TEST(HostileNames, WindowsFileNamesRefuseDevicesStreamsAndTrailingDots) {
    const std::pair<const char*, bool> cases[] = {
        {"CON", true},        {"con.txd", true},   {"Com1.dff", true}, {"lpt9", true},
        {"nul .txt", true},   {"COM\xB9", true},   {"a:b", true},      {"car.dff:x", true},
        {"car.dff.", true},   {"car.dff ", true},  {"console", false}, {"com10.dff", false},
        {"auxiliary", false}, {"lpt0.dff", false}, {"car.dff", false}};
    for (const auto& [name, refused] : cases)
        EXPECT_EQ(!WindowsFileNameProblem(name).empty(), refused) << name;
}

using HostileView = EntryFixture;

TEST_F(HostileView, OnlyKnownKindsOfFilesGoToTheDesktop) {
    const std::vector<std::string> names = {"run.sh",  "x.desktop", "evil.exe", "noext",
                                            "car.DFF", "notes.txt", "../up.dff"};
    std::vector<DirRecord> rows;
    for (std::uint32_t i = 0; i < names.size(); ++i)
        rows.push_back({i, 1, names[i]});
    open(rows, names.size() * SectorSize);
    editor.table().selectAll();
    commands.ViewSelectedEntries();
    EXPECT_EQ(desktop.said("message(Information)").size(), 4u);
    EXPECT_EQ(desktop.said("message(Exclamation)").size(), 1u);
    EXPECT_EQ(desktop.shellOpened,
              (std::vector<std::string>{(TempsFolder() / "car.DFF").string(),
                                        (TempsFolder() / "notes.txt").string()}));
    EXPECT_FALSE(fs::exists(TempsFolder() / "run.sh"));
    EXPECT_EQ(ReadBytes(TempsFolder() / "car.DFF"), imgBytes().substr(4 * SectorSize, SectorSize));
    EXPECT_EQ(selected().size(), names.size());
    EXPECT_TRUE(desktop.said("status").empty());
}

} // namespace
} // namespace korvel::test
