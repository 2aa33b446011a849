#include "CliRunner.h"
#include "ScriptedDesktop.h"
#include "TestFolder.h"
#include "window/Editor.h"
#include "reports/Reports.h"

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

// What the report window writes for the same archive, with the date line
// taken from the command-line run (the two may fall in different seconds).
std::string WindowReport(const test::TestFolder& folder, const std::string& img, bool html,
                         const std::string& language, const std::string& cliBytes) {
    test::ScriptedDesktop desktop;
    Settings settings(folder / "korvel.ini", folder / "lang.ini");
    settings.EnsureSettingsFile();
    settings.WriteSetting(language, "language");
    Editor editor(desktop, settings, folder.path());
    EXPECT_TRUE(editor.OpenArchive(img));
    const std::string out = (folder / "window.out").string();
    fs::remove(out);
    desktop.answer({out});
    html ? SaveHtmlReportAskingPath(editor) : SaveTextReportAskingPath(editor);
    std::string bytes = test::ReadBytes(out);
    const auto dateLine = [&](const std::string& text) {
        std::size_t at = 0;
        for (int i = 0; i < (html ? 16 : 1); ++i) {
            at = text.find("\r\n", at) + 2;
        }
        return std::make_pair(at, text.find("\r\n", at) - at);
    };
    const auto [cliAt, cliLength] = dateLine(cliBytes);
    const auto [at, length] = dateLine(bytes);
    return bytes.replace(at, length, cliBytes.substr(cliAt, cliLength));
}

TEST(CliReport, WritesTheWindowsReportByteForByte) {
    test::TestFolder folder;
    fs::copy_file(Demo, folder / "demo.img");
    fs::copy_file(fs::path(Demo).replace_extension(".dir"), folder / "demo.dir");
    const std::string img = (folder / "demo.img").string();
    const std::string out = (folder / "report.out").string();
    struct Case {
        const char* flag;
        const char* language;
        const char* firstLine;
    };
    const Case cases[] = {{"--text", "english", "//   Archive report\r\n"},
                          {"--html", "english", "<title>Archive report</title>"},
                          {"--text", "DEUTSCH", "//   Archivbericht\r\n"}};
    for (const Case& c : cases) {
        test::WriteBytes(out, std::string(200'000, '#'));
        const auto result = RunCli({"report", img, out, c.flag, "--language", c.language});
        ASSERT_EQ(result.exitCode, 0) << result.err;
        const std::string written = test::ReadBytes(out);
        EXPECT_EQ(written.rfind(c.firstLine, 0), 0u) << c.flag << " " << c.language;
        EXPECT_EQ(written,
                  WindowReport(folder, img, std::string(c.flag) == "--html", c.language, written));
    }
    EXPECT_EQ(RunCli({"report", img, out, "--text", "--language", "klingon"}).exitCode, 1);
    EXPECT_EQ(RunCli({"report", img, (folder / "no" / "r.txt").string(), "--html"}).exitCode, 1);
    EXPECT_EQ(RunCli({"report", img, out}).exitCode, 2);
    EXPECT_FALSE(fs::exists(folder / "korvel.ini") &&
                 test::ReadBytes(folder / "korvel.ini").find("klingon") != std::string::npos);
}

} // namespace
} // namespace korvel
