#include "search/Results.h"

#include "platform/FileSystem.h"
#include "platform/TextFile.h"

namespace korvel {

std::string FoundCountText(const Editor& editor, std::size_t count) {
    return editor.text("find5") + " " + std::to_string(count);
}

std::optional<std::size_t> SelectFoundRows(EntryTable& table,
                                           const std::vector<std::size_t>& rows) {
    table.clearSelection();
    std::optional<std::size_t> last;
    for (std::size_t row : rows) {
        if (row == 0 || row > table.size()) {
            break;
        }
        table.setSelected(row - 1, true);
        last = row - 1;
    }
    return last;
}

void SaveResultLines(Editor& editor, bool searched, const std::vector<std::string>& lines,
                     bool askBeforeReplacing) {
    Desktop& desktop = editor.desktop();
    if (!searched) {
        desktop.ShowMessage(editor.text("sd3"), editor.text("sd4"), MessageIcon::Information);
        return;
    }
    if (lines.empty()) {
        desktop.ShowMessage(editor.text("sd3"), "", MessageIcon::None);
        return;
    }
    for (;;) {
        const FileDialogAnswer answer =
            desktop.SaveFileDialog({editor.text("sd0"), editor.text("cdFiles3"), {}, {}, false});
        if (!answer.chosen() || answer.paths.front().empty()) {
            return;
        }
        const std::string& path = answer.paths.front();
        if (askBeforeReplacing && FileExists(path) &&
            !desktop.AskYesNo(path + "\r\n" + editor.text("fe3"), editor.text("fe2"))) {
            continue;
        }
        // Saving ends quietly on failure, as the result windows show no errors.
        WriteLines(path, lines);
        return;
    }
}

} // namespace korvel
