#include "reports/Reports.h"

#include "archive/Format.h"
#include "archive/Names.h"
#include "platform/FileSystem.h"
#include "platform/LocalTime.h"
#include "platform/TextFile.h"

#include <array>
#include <ctime>

namespace korvel {
namespace {

// The type groups in report order, by the last four characters of the
// lower-cased name; everything else is "other".
constexpr std::array<std::string_view, 4> TypeEndings = {".dff", ".txd", ".ifp", ".col"};

std::array<std::size_t, 5> CountTypes(const EntryTable& table) {
    std::array<std::size_t, 5> counts{};
    for (const Entry& entry : table.rows()) {
        const std::string lower = ToLowerCp1252(entry.name);
        std::size_t group = TypeEndings.size();
        for (std::size_t t = 0; t < TypeEndings.size(); ++t) {
            if (lower.ends_with(TypeEndings[t])) {
                group = t;
                break;
            }
        }
        ++counts[group];
    }
    return counts;
}

std::string PadTo(std::string text, std::size_t width) {
    if (text.size() < width) {
        text.append(width - text.size(), ' ');
    }
    return text;
}

void SaveReport(Editor& editor, ReportKind kind) {
    Desktop& desktop = editor.desktop();
    const auto failed = [&] { desktop.SetStatus(editor.text("sd8")); };
    for (;;) {
        const FileDialogAnswer answer = desktop.SaveFileDialog(
            {editor.text("menub10"),
             kind == ReportKind::Text ? editor.text("cdFiles3") : editor.text("cdFiles4"),
             {},
             {},
             false});
        if (answer.outcome == FileDialogAnswer::Outcome::Failed) {
            return failed();
        }
        if (!answer.chosen() || answer.paths.front().empty()) {
            return;
        }
        const std::string& path = answer.paths.front();
        if (FileExists(path) &&
            !desktop.AskYesNo(path + "\r\n" + editor.text("fe3"), editor.text("fe2"))) {
            continue;
        }
        const auto dataBytes = FileLength(editor.dataPath());
        if (!dataBytes ||
            !WriteLines(path, ReportLines(editor, kind, ReportFactsNow(*dataBytes)))) {
            return failed();
        }
        desktop.SetStatus(editor.text("sd7"));
        return;
    }
}

} // namespace

ReportFacts ReportFactsNow(std::uint64_t dataBytes) {
    return {LocalTimeText("%x"), LocalTimeText("%X"), dataBytes};
}

std::uint64_t ReportKilobytes(std::uint64_t bytes) {
    std::uint64_t kb = bytes / 1024;
    const std::uint64_t rest = bytes % 1024;
    if (rest > 512 || (rest == 512 && kb % 2 == 1)) {
        ++kb;
    }
    return kb;
}

std::vector<std::string> ReportLines(const Editor& editor, ReportKind kind,
                                     const ReportFacts& facts) {
    const auto text = [&](std::string_view key) { return ToAnsi(editor.text(key)); };
    const EntryTable& table = editor.table();
    const auto counts = CountTypes(table);
    const std::string rows = std::to_string(table.size());
    const std::string kb = std::to_string(ReportKilobytes(facts.dataBytes)) + "kb";
    const std::string path = ToAnsi(editor.dataPath());
    const std::string date = ToAnsi(facts.date) + " at " + ToAnsi(facts.time);
    const std::array<std::string, 5> typeLabels = {text("files2"), text("files3"), text("files4"),
                                                   text("files5"), text("files6")};
    std::vector<std::string> lines;
    lines.reserve(table.size() * 5 + 40);

    if (kind == ReportKind::Text) {
        lines = {"//   " + text("report1"),
                 "//   " + date,
                 "//   " + text("report2"),
                 "",
                 "",
                 text("report3") + " " + path,
                 text("report4") + " " + rows,
                 text("report5") + " " + kb};
        for (std::size_t i = 0; i < typeLabels.size(); ++i) {
            lines.push_back(typeLabels[i] + ": " + std::to_string(counts[i]));
        }
        lines.push_back("");
        lines.push_back(text("head1") + std::string(22, ' ') + text("head2") + std::string(4, ' ') +
                        text("head3"));
        lines.push_back(std::string(41, '-'));
        for (const Entry& entry : table.rows()) {
            lines.push_back(PadTo(entry.name, 26) + PadTo(OffsetText(entry.startSector), 10) +
                            SizeText(entry.sizeSectors));
        }
        return lines;
    }

    const auto strong = [](const std::string& label, std::string_view gap) {
        return "<strong>" + label + std::string(gap);
    };
    const auto cell = [](std::string_view width, std::string_view colour, const std::string& body) {
        return "    <td width=\"" + std::string(width) + "\" bgcolor=\"" + std::string(colour) +
               "\">" + body + "</td>";
    };
    lines = {"<title>" + text("report1") + "</title><style type=\"Text/css\">",
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
             "<p class=\"style1\">" + text("report1") + " </p>",
             "<p>" + date + "<br>",
             text("report2") + "</p>",
             "<p>" + strong(text("report3"), "</strong>            ") + path + "<br>",
             strong(text("report4"), "</strong>   ") + rows + "<br>",
             strong(text("report5"), "</strong>       ") + kb + "<br>",
             strong(typeLabels[0], " </strong>") + std::to_string(counts[0]) + "<br>",
             strong(typeLabels[1], "</strong>   ") + std::to_string(counts[1]) + "<br>",
             strong(typeLabels[2], "</strong>    ") + std::to_string(counts[2]) + "<br>",
             strong(typeLabels[3], "</strong>    ") + std::to_string(counts[3]) + "<br>",
             strong(typeLabels[4], "</strong>      ") + std::to_string(counts[4]) + "</p>",
             "<table width=\"55%\"border=\"1\">",
             "  <tr>",
             cell("62%", "#cccccc", "<strong>" + text("head1") + " </strong>"),
             cell("26%", "#cccccc", "<strong>" + text("head2") + " </strong>"),
             cell("12%", "#cccccc", "<strong>" + text("head3") + " </strong>"),
             "  </tr>"};
    for (const Entry& entry : table.rows()) {
        lines.push_back("  <tr>");
        lines.push_back(cell("62%", "FFFFF", PadTo(entry.name, 26)));
        lines.push_back(cell("26%", "#cccccc", PadTo(OffsetText(entry.startSector), 10)));
        lines.push_back(cell("12%", "FFFFF", SizeText(entry.sizeSectors)));
        lines.push_back("  </tr>");
    }
    lines.push_back("</table>");
    lines.push_back("<p>&nbsp;</p>");
    return lines;
}

void SaveTextReportAskingPath(Editor& editor) {
    SaveReport(editor, ReportKind::Text);
}

void SaveHtmlReportAskingPath(Editor& editor) {
    SaveReport(editor, ReportKind::Html);
}

} // namespace korvel
