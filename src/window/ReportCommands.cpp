#include "window/ReportCommands.h"

#include "archive/ArchiveCheck.h"
#include "reports/Reports.h"
#include "window/SaveLines.h"

namespace korvel {
namespace {

// The status text repaints the window; on 32 767 rows that would cost more
// than the check itself, so it moves on in steps and always shows the end.
constexpr std::size_t CheckStatusStep = 512;

void SaveReportAskingPath(Editor& editor, ReportKind kind) {
    const FileDialogRequest request{editor.text("menub10"),
                                    kind == ReportKind::Text ? editor.text("cdFiles3")
                                                             : editor.text("cdFiles4"),
                                    {},
                                    {},
                                    false};
    const SaveOutcome outcome =
        SaveLinesAskingPath(editor, request, true, [&](const std::filesystem::path& path) {
            return WriteReport(editor.archive(), editor.settings(), kind, path);
        });
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
                         editor.text("menub8") + "?")) {
        const std::string label = editor.text("aCheck4");
        const auto pairs = DuplicatePairs(editor.table(), [&](std::size_t row, std::size_t rows) {
            if (row == 1 || row == rows || row % CheckStatusStep == 0) {
                desktop.SetStatus(label + " " + std::to_string(row) + "/" + std::to_string(rows));
            }
        });
        if (pairs.empty()) {
            desktop.ShowMessage(editor.text("aCheck5"), editor.text("aCheck6"),
                                MessageIcon::Information);
        } else {
            const std::string report = DuplicateReport(editor.settings(), pairs);
            desktop.SetClipboardText(report);
            desktop.ShowMessage(report + "\n" + editor.text("aCheck3"), editor.text("aCheck6"),
                                MessageIcon::Information);
        }
    }
    desktop.SetStatus(editor.text("aCheck6"));
}

} // namespace korvel
