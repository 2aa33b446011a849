#include "CliRunner.h"
#include "TestFolder.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

namespace fs = std::filesystem;
using test::RunCli;

const std::string Demo = KORVEL_DEMO_ARCHIVE;

// What matches is the engine's to test; here: the lines printed, the
// options read, the exit codes.
TEST(CliFind, PrintsOneLinePerMatchAndExitCodes) {
    test::TestFolder folder;
    test::WriteArchive(folder / "w.img", {{0, 1, "caf\xE9.col"}, {0, 1, "x.dff"}}, SectorSize);
    const std::string w = (folder / "w.img").string();
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        std::string out;
    };
    const Case cases[] = {
        {{"find", Demo, "generic", "--type", "txd"}, 0, "12\tgeneric.txd\n38\tGENERIC.TXD\n"},
        {{"find", "--type=col", w, ""}, 0, "1\tcaf\xC3\xA9.col\n"}, // names leave as UTF-8
        {{"find", Demo, "a", "--type", "wav"}, 1, ""},
        {{"find", Demo}, 2, ""},
        {{"find", (folder / "none.img").string(), "a"}, 1, ""},
        {{"find-in", Demo, "cheetah92", "--textures"},
         0,
         "cheetah92body\tcheetah.txd\t4\ncheetah92interior\tcheetah.txd\t4\n"
         "cheetah92wheel\tcheetah.txd\t4\n"},
        {{"find-in", Demo, "LAMP", "--collisions"}, 0, "lamppost1\tgeneric.col\t23\n"},
        {{"find-in", Demo, "x"}, 2, ""},
        {{"find-in", Demo, "x", "--textures", "--collisions"}, 2, ""},
        {{"check", Demo},
         0,
         "lamppost1.dff\ncase\tPlayer.DFF\tplayer.dff\ncase\tgeneric.txd\tGENERIC.TXD\n"},
    };
    for (const Case& c : cases) {
        const auto result = RunCli(c.args);
        EXPECT_EQ(result.exitCode, c.exitCode) << c.args[1] << " " << result.err;
        EXPECT_EQ(result.out, c.out) << c.args[1];
    }
    // Entries that cannot be read are named; the exit status says the list
    // may be incomplete.
    test::WriteArchive(folder / "far.img", {{0, 1, "a.col"}, {1000, 1, "far.col"}}, SectorSize);
    const auto far = RunCli({"find-in", (folder / "far.img").string(), "", "--collisions"});
    EXPECT_EQ(far.exitCode, 3);
    EXPECT_EQ(far.err, "korvel-cli: cannot read far.col (row 2): the entry starts at byte 2048000, "
                       "past the end of the data file (2048 bytes)\n"
                       "korvel-cli: entries that could not be read: 1\n");
    // The copies find-in read are gone again.
    EXPECT_TRUE(!fs::exists(folder / "temps") || fs::is_empty(folder / "temps"));
}

// What a report holds is the engine's to test; here: the file replaced, the
// language chosen, the exit codes.
TEST(CliReport, WritesTheReportInTheChosenLanguage) {
    test::TestFolder folder;
    const std::string out = (folder / "report.out").string();
    const struct {
        const char* flag;
        const char* language;
        const char* firstLine;
    } cases[] = {{"--text", "english", "//   Archive report\r\n"},
                 {"--html", "english", "<meta charset=\"windows-1252\">\r\n"},
                 {"--text", "DEUTSCH", "//   Archivbericht\r\n"}};
    for (const auto& c : cases) {
        test::WriteBytes(out, std::string(200'000, '\x01'));
        const auto result = RunCli({"report", Demo, out, c.flag, "--language", c.language});
        ASSERT_EQ(result.exitCode, 0) << result.err;
        const std::string written = test::ReadBytes(out);
        EXPECT_EQ(written.rfind(c.firstLine, 0), 0u) << c.flag << " " << c.language;
        EXPECT_EQ(written.find('\x01'), std::string::npos); // replaced, not overwritten
    }
    const auto klingon = RunCli({"report", Demo, out, "--text", "--language", "klingon"});
    EXPECT_EQ(klingon.exitCode, 1);
    EXPECT_EQ(klingon.err, "korvel-cli: lang.ini has no language \"klingon\"\n");
    const std::string nowhere = (folder / "no" / "r.txt").string();
    const auto unwritable = RunCli({"report", Demo, nowhere, "--html"});
    EXPECT_EQ(unwritable.exitCode, 1);
    EXPECT_EQ(unwritable.err, "korvel-cli: cannot write the report " + nowhere + "\n");
    EXPECT_EQ(RunCli({"report", Demo, out}).exitCode, 2);
}

} // namespace
} // namespace korvel
