#include "window/ReportCommands.h"

#include "archive/ArchiveCheck.h"
#include "reports/Reports.h"
#include "window/SaveLines.h"

namespace korvel {
namespace {

// The status text repaints the window; on 32 767 rows that would cost more
// than the check itself, so it moves on in steps and always shows the end.
constexpr std::size_t CheckStatusStep = 512;

// The message box and the clipboard list this many pairs and then say how
// many more there are: one name held by every row of a full archive makes
// over half a billion pairs, more text than any window or clipboard can hold.
constexpr std::uint64_t CheckPairsListed = 10'000;

// "gta3.img" gives "gta3.txt"; a name without an extension keeps all of it.
std::string ReportNameFor(const std::string& archiveName, const std::string& extension) {
    const std::size_t dot = archiveName.rfind('.');
    return archiveName.substr(0, dot == 0 ? std::string::npos : dot) + "." + extension;
}

void SaveReportAskingPath(Editor& editor, ReportKind kind) {
    // Offered as the archive's own name with the report's extension, which
    // is also added when the person types a name without one.
    const std::string extension = kind == ReportKind::Text ? "txt" : "html";
    const FileDialogRequest request{editor.settings().LookupPlainText("menub10"),
                                    kind == ReportKind::Text ? editor.text("cdFiles3")
                                                             : editor.text("cdFiles4"),
                                    {},
                                    ReportNameFor(editor.ArchiveFileName(), extension),
                                    false};
    const SaveOutcome outcome = SaveLinesAskingPath(
        editor, request, true,
        [&](const std::filesystem::path& path) {
            return WriteReport(editor.archive(), editor.settings(), kind, path);
        },
        extension);
    if (outcome == SaveOutcome::Failed) {
        editor.desktop().SetStatus(editor.text("sd8"));
    } else if (outcome == SaveOutcome::Saved) {
        editor.desktop().SetStatus(editor.text("sd7"));
    }
}

} // namespace

void SaveTextReportAskingPath(Editor& editor) {
    SaveReportAskingPath(editor, ReportKind::Text);
}

void SaveHtmlReportAskingPath(Editor& editor) {
    SaveReportAskingPath(editor, ReportKind::Html);
}

void CheckArchiveAsking(Editor& editor) {
    Desktop& desktop = editor.desktop();
    if (desktop.AskYesNo(editor.text("aCheck1") + "\n" + editor.text("rebuild2"),
                         editor.settings().LookupPlainText("menub8") + "?")) {
        const std::string label = editor.text("aCheck4");
        DuplicateReport report(editor.settings(), CheckPairsListed);
        (void)ForEachDuplicatePair(
            editor.table(), [&](const std::string& name) { report.add(name); },
            [&](std::size_t row, std::size_t rows) {
                if (row == 1 || row == rows || row % CheckStatusStep == 0) {
                    desktop.SetStatus(label + " " + std::to_string(row) + "/" +
                                      std::to_string(rows));
                }
            });
        (void)ForEachCaseOnlyPair(editor.table(),
                                  [&](const std::string& first, const std::string& second) {
                                      report.addCaseOnly(first, second);
                                  });
        if (report.pairs() == 0) {
            desktop.ShowMessage(editor.text("aCheck5"), editor.text("aCheck6"),
                                MessageIcon::Information);
        } else {
            const std::string text = report.text();
            desktop.SetClipboardText(text);
            desktop.ShowMessage(text + "\n" + editor.text("aCheck3"), editor.text("aCheck6"),
                                MessageIcon::Information);
        }
    }
    desktop.SetStatus(editor.text("aCheck6"));
}

} // namespace korvel
