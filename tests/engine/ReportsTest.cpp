// The reports against golden files, and the report commands' conversation.
// Regenerate the golden files after a deliberate change with:
//   KORVEL_UPDATE_GOLDEN=1 build/bin/korvel_engine_tests --gtest_filter='Report*'
#include "reports/Reports.h"
#include "../golden/Golden.h"
#include "EditorHarness.h"
#include "platform/TextFile.h"
#include "window/ReportCommands.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

namespace fs = std::filesystem;

const std::vector<DirRecord> Rows = {{0, 1, "a.DFF"},
                                     {1, 2, "b.txd"},
                                     {0x35, 3, "c.ifp"},
                                     {5, 1, "d.col"},
                                     {6, 1, "e.wav"},
                                     {7, 1, "f"},
                                     {8, 1, "abcdefghijklmnopqrstuvwx"},
                                     {9, 1, "<b>&amp;.txt"},
                                     {10, 1, "xtxd"},
                                     {11, 1, std::string(MarkerName)}};

// The report of a fixed archive on fixed facts, as written to disk, with the
// archive's path (which lies in a fresh folder) written as "@IMG@".
std::string ReportBytes(ReportKind kind) {
    test::TestFolder folder;
    const fs::path img = folder / "rep.img";
    test::WriteArchive(img, Rows, 0);
    Archive archive;
    EXPECT_TRUE(archive.ReadDirectory(img.string(), (folder / "rep.dir").string()).ok());
    const Settings texts = Settings::InMemory(KORVEL_LANG_INI);
    std::vector<std::string> lines =
        ReportLines(archive, texts, kind, {"01/02/2003", "04:05:06", 3'000'000});
    for (std::string& line : lines)
        if (const auto at = line.find(img.string()); at != std::string::npos)
            line.replace(at, img.string().size(), "@IMG@");
    const fs::path out = folder / "report";
    EXPECT_TRUE(WriteLines(out, lines).ok());
    return test::ReadBytes(out);
}

TEST(ReportLines, MatchTheGoldenFiles) {
    test::ExpectGolden("report.txt", ReportBytes(ReportKind::Text));
    test::ExpectGolden("report.html", ReportBytes(ReportKind::Html));
}

TEST(ReportKilobytes, RoundsHalvesToEven) {
    const std::pair<std::uint64_t, std::uint64_t> cases[] = {
        {511, 0}, {512, 0}, {513, 1}, {1536, 2}, {2560, 2}, {3'000'000, 2930}};
    for (const auto& [bytes, kb] : cases)
        EXPECT_EQ(ReportKilobytes(bytes), kb) << bytes;
}

using ReportCommandsTest = test::EditorHarness;

TEST_F(ReportCommandsTest, AsksBeforeReplacingAndSaysHowItWent) {
    openArchive("rep.img", {{0, 1, "a.dff"}}, SectorSize);
    const std::string out = (folder / "r.txt").string();
    test::WriteBytes(out, std::string(50'000, '#'));
    // The archive's own data file is refused and the dialog offered again.
    const std::string img = (folder / "rep.img").string(), data = test::ReadBytes(img);
    desktop.answer({img, out, "no", out, "yes"});
    SaveTextReportAskingPath(editor);
    const std::string save = "save Save archive report [" + text("cdFiles3") + "] -> ";
    const std::string ask = "ask " + text("fe2") + ": " + out + "\r\n" + text("fe3");
    EXPECT_EQ(desktop.conversation,
              (std::vector<std::string>{save + img,
                                        "message(Exclamation) Error: The file " + img +
                                            " was not written: it is one of the open archive's "
                                            "own files.",
                                        save + out, ask + " -> no", save + out, ask + " -> yes",
                                        "status: " + text("sd7")}));
    EXPECT_EQ(test::ReadBytes(img), data);
    const std::string written = test::ReadBytes(out);
    EXPECT_EQ(written.find('#'), std::string::npos); // replaced completely
    EXPECT_TRUE(written.ends_with("a.dff                     0         2kb\r\n"));

    // Cancel and an empty name: nothing written, nothing said.
    desktop.conversation.clear();
    desktop.answer({test::Cancel, ""});
    SaveHtmlReportAskingPath(editor);
    SaveHtmlReportAskingPath(editor);
    EXPECT_EQ(desktop.conversation.size(), 2u);
    EXPECT_EQ(test::ReadBytes(out), written);

    // Offered under the archive's name; a name typed without extension gets one.
    desktop.answer({(folder / "mine").string()});
    SaveHtmlReportAskingPath(editor);
    EXPECT_EQ(desktop.lastFileDialog.presetName, "rep.html");
    EXPECT_TRUE(fs::exists(folder / "mine.html"));

    // A failing dialog, a file that cannot be created, a missing data file.
    const std::vector<std::string> failures = {
        test::Fail, (folder / "no-such-folder" / "r.txt").string(), (folder / "r2.txt").string()};
    for (const std::string& answer : failures) {
        if (answer == failures.back())
            fs::remove(folder / "rep.img");
        desktop.status.clear();
        desktop.answer({answer});
        SaveTextReportAskingPath(editor);
        EXPECT_EQ(desktop.status, text("sd8")) << answer;
    }
}

} // namespace
} // namespace korvel
