#include "archive/ArchiveCheck.h"

#include "archive/Format.h"
#include "archive/Names.h"

#include <string_view>
#include <unordered_map>

namespace korvel {
namespace {

// The status text repaints the window; on 32 767 rows that would cost more
// than the check itself, so it moves on in steps and always shows the end.
constexpr std::size_t StatusStep = 512;

} // namespace

std::vector<std::string>
DuplicatePairs(const EntryTable& table,
               const std::function<void(std::size_t, std::size_t)>& progress) {
    const std::size_t n = table.size();
    // How many rows hold each name, then, walking down, how many still lie
    // below the current row: that many pairs are listed at this row.
    std::unordered_map<std::string_view, std::size_t> below;
    below.reserve(n);
    for (const Entry& entry : table.rows()) {
        if (entry.name != MarkerName) {
            ++below[entry.name];
        }
    }
    std::vector<std::string> pairs;
    for (std::size_t i = 0; i < n; ++i) {
        if (progress) {
            progress(i + 1, n);
        }
        const std::string& name = table[i].name;
        if (name == MarkerName) {
            continue;
        }
        const std::size_t later = --below[name];
        for (std::size_t k = 0; k < later; ++k) {
            pairs.push_back(name);
        }
    }
    return pairs;
}

std::string DuplicateReport(const Editor& editor, const std::vector<std::string>& pairs) {
    std::string report = editor.text("aCheck2");
    for (const std::string& name : pairs) {
        report += "\r\n";
        report += Cp1252ToUtf8(name);
    }
    return report;
}

void CheckArchiveAsking(Editor& editor) {
    Desktop& desktop = editor.desktop();
    if (desktop.AskYesNo(editor.text("aCheck1") + "\n" + editor.text("rebuild2"),
                         editor.text("menub8") + "?")) {
        const std::string label = editor.text("aCheck4");
        const auto pairs = DuplicatePairs(editor.table(), [&](std::size_t row, std::size_t rows) {
            if (row == 1 || row == rows || row % StatusStep == 0) {
                desktop.SetStatus(label + " " + std::to_string(row) + "/" + std::to_string(rows));
            }
        });
        if (pairs.empty()) {
            desktop.ShowMessage(editor.text("aCheck5"), editor.text("aCheck6"),
                                MessageIcon::Information);
        } else {
            const std::string report = DuplicateReport(editor, pairs);
            desktop.SetClipboardText(report);
            desktop.ShowMessage(report + "\n" + editor.text("aCheck3"), editor.text("aCheck6"),
                                MessageIcon::Information);
        }
    }
    desktop.SetStatus(editor.text("aCheck6"));
}

} // namespace korvel
