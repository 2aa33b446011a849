#include "reports/Reports.h"
#include "EditorHarness.h"

#include <gtest/gtest.h>

#include <sstream>

namespace korvel {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> CrLfLines(const std::string& bytes) {
    std::vector<std::string> lines;
    std::size_t at = 0;
    for (std::size_t end; (end = bytes.find("\r\n", at)) != std::string::npos; at = end + 2) {
        lines.push_back(bytes.substr(at, end - at));
    }
    EXPECT_EQ(at, bytes.size()) << "text after the last CR LF";
    return lines;
}

class ReportsTest : public test::EditorHarness {
protected:
    void open(const std::vector<DirRecord>& records, std::uint64_t dataBytes) {
        openArchive("rep.img", records, dataBytes);
    }
    std::string img() const { return (folder / "rep.img").string(); }
    std::string t(const char* key) const { return text(key); }
    // Writes a report to `out` and returns its lines, checking the date line
    // against the clock around the call.
    std::vector<std::string> write(ReportKind kind, const std::string& out) {
        desktop.answer({out});
        const ReportFacts before = ReportFactsNow(0);
        kind == ReportKind::Text ? SaveTextReportAskingPath(editor) : SaveHtmlReportAskingPath(editor);
        const ReportFacts after = ReportFactsNow(0);
        EXPECT_EQ(desktop.status, t("sd7"));
        auto lines = CrLfLines(test::ReadBytes(out));
        const std::size_t dateLine = kind == ReportKind::Text ? 1 : 16;
        const std::string prefix = kind == ReportKind::Text ? "//   " : "<p>";
        const std::string suffix = kind == ReportKind::Text ? "" : "<br>";
        const std::string a = prefix + before.date + " at " + before.time + suffix;
        const std::string b = prefix + after.date + " at " + after.time + suffix;
        EXPECT_TRUE(lines.at(dateLine) == a || lines.at(dateLine) == b) << lines.at(dateLine);
        lines[dateLine] = "DATE";
        return lines;
    }
};

const std::vector<DirRecord> Rows = {{0, 1, "a.DFF"},
                                     {1, 2, "b.txd"},
                                     {0x35, 3, "c.ifp"},
                                     {5, 1, "d.col"},
                                     {6, 1, "e.wav"},
                                     {7, 1, "f"},
                                     {8, 1, "abcdefghijklmnopqrstuvwx"},
                                     {9, 1, "<b>&amp;.txt"},
                                     {10, 1, "xtxd"}};

TEST_F(ReportsTest, TextReportLines) {
    open(Rows, 3'000'000);
    const std::string out = (folder / "r.txt").string();
    EXPECT_EQ(write(ReportKind::Text, out),
              (std::vector<std::string>{
                  "//   " + t("report1"),
                  "DATE",
                  "//   " + t("report2"),
                  "",
                  "",
                  t("report3") + " " + img(),
                  t("report4") + " 9",
                  t("report5") + " 2930kb",
                  t("files2") + ": 1",
                  t("files3") + ": 1",
                  t("files4") + ": 1",
                  t("files5") + ": 1",
                  t("files6") + ": 5",
                  "",
                  t("head1") + "                      " + t("head2") + "    " + t("head3"),
                  "-----------------------------------------",
                  "a.DFF                     0         2kb",
                  "b.txd                     800       4kb",
                  "c.ifp                     1A800     6kb",
                  "d.col                     2800      2kb",
                  "e.wav                     3000      2kb",
                  "f                         3800      2kb",
                  "abcdefghijklmnopqrstuvwx  4000      2kb",
                  "<b>&amp;.txt              4800      2kb",
                  "xtxd                      5000      2kb",
              }));
}

TEST_F(ReportsTest, HtmlReportLines) {
    open(Rows, 3'000'000);
    const std::string out = (folder / "r.html").string();
    const auto lines = write(ReportKind::Html, out);
    std::vector<std::string> expected = {
        "<title>" + t("report1") + "</title><style type=\"Text/css\">",
        "<!--",
        "body,td,th {",
        " font-family: Arial, Helvetica, sans-serif;",
        " color: #000000;",
        "}",
        "body {",
        " background-color: #FFFFFF;",
        "}",
        ".style1 {",
        " font-size: 24px;",
        " font-weight: bold;",
        "}",
        "-->",
        "</style>",
        "<p class=\"style1\">" + t("report1") + " </p>",
        "DATE",
        t("report2") + "</p>",
        "<p><strong>" + t("report3") + "</strong>            " + img() + "<br>",
        "<strong>" + t("report4") + "</strong>   9<br>",
        "<strong>" + t("report5") + "</strong>       2930kb<br>",
        "<strong>" + t("files2") + " </strong>1<br>",
        "<strong>" + t("files3") + "</strong>   1<br>",
        "<strong>" + t("files4") + "</strong>    1<br>",
        "<strong>" + t("files5") + "</strong>    1<br>",
        "<strong>" + t("files6") + "</strong>      5</p>",
        "<table width=\"55%\"border=\"1\">",
        "  <tr>",
        "    <td width=\"62%\" bgcolor=\"#cccccc\"><strong>" + t("head1") + " </strong></td>",
        "    <td width=\"26%\" bgcolor=\"#cccccc\"><strong>" + t("head2") + " </strong></td>",
        "    <td width=\"12%\" bgcolor=\"#cccccc\"><strong>" + t("head3") + " </strong></td>",
        "  </tr>",
    };
    const std::pair<const char*, const char*> cells[] = {
        {"a.DFF                     ", "0         "}, {"b.txd                     ", "800       "},
        {"c.ifp                     ", "1A800     "}, {"d.col                     ", "2800      "},
        {"e.wav                     ", "3000      "}, {"f                         ", "3800      "},
        {"abcdefghijklmnopqrstuvwx  ", "4000      "}, {"<b>&amp;.txt              ", "4800      "},
        {"xtxd                      ", "5000      "},
    };
    for (std::size_t i = 0; i < Rows.size(); ++i) {
        expected.push_back("  <tr>");
        expected.push_back(std::string("    <td width=\"62%\" bgcolor=\"FFFFF\">") +
                           cells[i].first + "</td>");
        expected.push_back(std::string("    <td width=\"26%\" bgcolor=\"#cccccc\">") +
                           cells[i].second + "</td>");
        expected.push_back("    <td width=\"12%\" bgcolor=\"FFFFF\">" +
                           SizeText(Rows[i].sizeSectors) + "</td>");
        expected.push_back("  </tr>");
    }
    expected.push_back("</table>");
    expected.push_back("<p>&nbsp;</p>");
    EXPECT_EQ(lines, expected);
}

TEST_F(ReportsTest, AnEmptyArchiveGivesTheHeadingsOnly) {
    open({}, 0);
    const auto text = write(ReportKind::Text, (folder / "e.txt").string());
    ASSERT_EQ(text.size(), 16u);
    EXPECT_EQ(text[7], t("report5") + " 0kb");
    EXPECT_EQ(text[12], t("files6") + ": 0");
    EXPECT_EQ(text[15], std::string(41, '-'));
    const auto html = write(ReportKind::Html, (folder / "e.html").string());
    ASSERT_EQ(html.size(), 34u);
    EXPECT_EQ(html[31], "  </tr>");
    EXPECT_EQ(html[32], "</table>");
}

TEST_F(ReportsTest, ChoosingTheFile) {
    open({{0, 1, "a.dff"}}, SectorSize);
    const std::string out = (folder / "r.txt").string();
    test::WriteBytes(out, std::string(50'000, '#'));
    desktop.answer({out, "no", out, "yes"});
    SaveTextReportAskingPath(editor);
    const std::string save = "save " + t("menub10") + " [" + t("cdFiles3") + "] -> " + out;
    const std::string ask = "ask " + t("fe2") + ": " + out + "\r\n" + t("fe3");
    EXPECT_EQ(desktop.conversation,
              (std::vector<std::string>{save, ask + " -> no", save, ask + " -> yes",
                                        "status: " + t("sd7")}));
    const std::string written = test::ReadBytes(out);
    EXPECT_EQ(written.find('#'), std::string::npos); // replaced completely
    EXPECT_EQ(CrLfLines(written).back(), "a.dff                     0         2kb");

    // Cancel and an empty name: nothing written, nothing said.
    desktop.conversation.clear();
    desktop.answer({test::Cancel, ""});
    SaveHtmlReportAskingPath(editor);
    SaveHtmlReportAskingPath(editor);
    EXPECT_EQ(desktop.conversation.size(), 2u);

    // A failing dialog, a missing data file, a file that cannot be created.
    desktop.conversation.clear();
    desktop.answer({test::Fail});
    SaveTextReportAskingPath(editor);
    EXPECT_EQ(desktop.status, t("sd8"));
    desktop.status.clear();
    desktop.answer({(folder / "no-such-folder" / "r.txt").string()});
    SaveTextReportAskingPath(editor);
    EXPECT_EQ(desktop.status, t("sd8"));
    fs::remove(img());
    desktop.status.clear();
    desktop.answer({(folder / "r2.txt").string()});
    SaveTextReportAskingPath(editor);
    EXPECT_EQ(desktop.status, t("sd8"));
}

TEST(ReportKilobytes, RoundsHalvesToEven) {
    const std::pair<std::uint64_t, std::uint64_t> cases[] = {
        {0, 0}, {511, 0}, {512, 0}, {513, 1}, {1535, 1}, {1536, 2}, {2560, 2}, {3'000'000, 2930}};
    for (const auto& [bytes, kb] : cases) {
        EXPECT_EQ(ReportKilobytes(bytes), kb) << bytes;
    }
}

} // namespace
} // namespace korvel
