#include "CliRunner.h"
#include "TestFolder.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

namespace fs = std::filesystem;
using test::RunCli;

const std::string Demo = KORVEL_DEMO_ARCHIVE;

TEST(CliFind, ListsRowAndNameOfEachMatch) {
    test::TestFolder folder;
    struct Case {
        std::vector<std::string> args;
        std::string out;
    };
    const Case cases[] = {
        {{"find", Demo, "PLAYER"}, "1\tPlayer.DFF\n2\tPlayer.txd\n37\tplayer.dff\n"},
        {{"find", Demo, "generic", "--type", "txd"}, "12\tgeneric.txd\n38\tGENERIC.TXD\n"},
        {{"find", Demo, "", "--type=ifp"}, "13\tped.ifp\n14\tcar_doors.ifp\n"},
        {{"find", Demo, "***"}, ""},
        {{"find", "--type", "col", Demo, "es.c"}, "11\tvehicles.col\n18\tBridges.COL\n"},
    };
    for (const Case& c : cases) {
        const auto result = RunCli(c.args);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.out, c.out) << c.args[2];
    }
    // Names leave as UTF-8.
    test::WriteArchive(folder / "w.img", {{0, 1, "caf\xE9.col"}}, SectorSize);
    EXPECT_EQ(RunCli({"find", (folder / "w.img").string(), "CAF\xC3\x89"}).out,
              "1\tcaf\xC3\xA9.col\n");
    EXPECT_EQ(RunCli({"find", Demo, "a", "--type", "wav"}).exitCode, 1);
    EXPECT_EQ(RunCli({"find", Demo}).exitCode, 2);
    EXPECT_EQ(RunCli({"find", (folder / "none.img").string(), "a"}).exitCode, 1);
}

TEST(CliFindIn, ListsNameEntryAndRow) {
    test::TestFolder folder;
    const auto textures = RunCli({"find-in", Demo, "cheetah92", "--textures"});
    EXPECT_EQ(textures.exitCode, 0) << textures.err;
    EXPECT_EQ(textures.out, "cheetah92body\tcheetah.txd\t4\n"
                            "cheetah92interior\tcheetah.txd\t4\n"
                            "cheetah92wheel\tcheetah.txd\t4\n");
    EXPECT_EQ(RunCli({"find-in", Demo, "CHEETAH92", "--textures"}).out, "");

    const auto models = RunCli({"find-in", Demo, "LAMP", "--collisions"});
    EXPECT_EQ(models.exitCode, 0) << models.err;
    EXPECT_EQ(models.out, "lamppost1\tgeneric.col\t23\n");
    // The copies it read are gone again.
    EXPECT_TRUE(!fs::exists(folder / "temps") || fs::is_empty(folder / "temps"));

    EXPECT_EQ(RunCli({"find-in", Demo, "x"}).exitCode, 2);
    EXPECT_EQ(RunCli({"find-in", Demo, "x", "--textures", "--collisions"}).exitCode, 2);
}

TEST(CliCheck, PrintsOneLinePerPair) {
    test::TestFolder folder;
    const auto demo = RunCli({"check", Demo});
    EXPECT_EQ(demo.exitCode, 0) << demo.err;
    EXPECT_EQ(demo.out, "lamppost1.dff\n"); // Player.DFF/player.dff differ in case
    test::WriteArchive(folder / "c.img",
                       {{0, 1, "a"}, {0, 1, "a"}, {0, 1, "B"}, {0, 1, "a"}, {0, 1, "b"}}, 0);
    EXPECT_EQ(RunCli({"check", (folder / "c.img").string()}).out, "a\na\na\n");
    test::WriteArchive(folder / "u.img", {{0, 1, "a"}, {0, 1, "A"}}, 0);
    const auto clean = RunCli({"check", (folder / "u.img").string()});
    EXPECT_EQ(clean.exitCode, 0);
    EXPECT_EQ(clean.out, "");
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
                 {"--html", "english", "<title>Archive report</title>"},
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
