#include "reports/Reports.h"

#include "archive/EntryFiles.h"
#include "archive/Format.h"
#include "archive/Names.h"
#include "platform/Cp1252.h"
#include "platform/FileSystem.h"
#include "platform/LocalTime.h"
#include "platform/TextFile.h"

#include <array>
#include <ctime>

namespace korvel {
namespace {

// The type groups in report order; the marker counts as "other".
constexpr std::array<EntryKind, 5> ReportGroups = {EntryKind::Model, EntryKind::Texture,
                                                   EntryKind::Animation, EntryKind::Collision,
                                                   EntryKind::Other};

std::array<std::size_t, 5> CountGroups(const EntryTable& table) {
    std::array<std::size_t, 5> counts{};
    for (const Entry& entry : table.rows()) {
        const EntryKind kind = KindOfName(entry.name);
        for (std::size_t g = 0; g < ReportGroups.size(); ++g) {
            counts[g] += ReportGroups[g] == kind ? 1 : 0;
        }
    }
    return counts;
}

std::string PadTo(std::string text, std::size_t width) {
    if (text.size() < width) {
        text.append(width - text.size(), ' ');
    }
    return text;
}

// Names and the archive's path come from outside: in HTML they are text,
// never markup.
std::string HtmlEscape(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\'':
            out += "&#39;";
            break;
        default:
            out.push_back(c);
        }
    }
    return out;
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

std::vector<std::string> ReportLines(const Archive& archive, const Settings& texts, ReportKind kind,
                                     const ReportFacts& facts) {
    const auto text = [&](std::string_view key) { return ToAnsi(texts.LookupPlainText(key)); };
    const EntryTable& table = archive.table();
    const auto counts = CountGroups(table);
    const std::string rows = std::to_string(table.size());
    const std::string kb = std::to_string(ReportKilobytes(facts.dataBytes)) + "kb";
    // Every untrusted text is shown with its control characters escaped, so
    // that a name holding CR LF cannot forge lines of the report.
    const std::string path = EscapeControls(ToAnsi(archive.dataPath()));
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
            lines.push_back(PadTo(EscapeControls(entry.name), 26) +
                            PadTo(OffsetText(entry.startSector), 10) + SizeText(entry.sizeSectors));
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
    // The bytes are Windows-1252 (ToAnsi): a browser must not guess UTF-8 and
    // show accented names and texts as garbage.
    lines = {"<meta charset=\"windows-1252\">",
             "<title>" + text("report1") + "</title><style type=\"Text/css\">",
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
             "<p>" + strong(text("report3"), "</strong>            ") + HtmlEscape(path) + "<br>",
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
        lines.push_back(cell("62%", "FFFFF", HtmlEscape(PadTo(EscapeControls(entry.name), 26))));
        lines.push_back(cell("26%", "#cccccc", PadTo(OffsetText(entry.startSector), 10)));
        lines.push_back(cell("12%", "FFFFF", SizeText(entry.sizeSectors)));
        lines.push_back("  </tr>");
    }
    lines.push_back("</table>");
    lines.push_back("<p>&nbsp;</p>");
    return lines;
}

Status WriteReport(const Archive& archive, const Settings& texts, ReportKind kind,
                   const std::filesystem::path& path) {
    const auto dataBytes = FileLength(archive.dataPath());
    if (!dataBytes) {
        return Status::Failed("cannot read the size of " + archive.dataPath());
    }
    return WriteLines(path, ReportLines(archive, texts, kind, ReportFactsNow(*dataBytes)),
                      ArchiveOwnFiles(archive));
}

} // namespace korvel
