// Deleting rows and moving rows to the end. Both change only the directory
// file; the data stays in the data file until a rebuild.
#include "archive/EntryCommands.h"

namespace korvel {

void EntryCommands::DeleteSelectedAsking() {
    const std::size_t n = editor_.table().selectedCount();
    if (n == 0) {
        return;
    }
    if (BooleanWord(editor_.settings().ReadSetting("deleteProm")).value_or(false)) {
        const std::string question =
            editor_.text("del1") + " " + std::to_string(n) + " " + editor_.text("del2");
        if (!editor_.desktop().AskYesNo(question, editor_.text("del3"))) {
            return;
        }
    }
    DeleteSelectedEntries();
}

bool EntryCommands::DeleteSelectedEntries() {
    return DeleteSelected(editor_.table().rows());
}

bool EntryCommands::DeleteSelected(const std::vector<Entry>& restoreOnFailure) {
    EntryTable& table = editor_.table();
    Desktop& desktop = editor_.desktop();
    if (table.empty()) {
        return false;
    }
    const std::size_t count = table.selectedCount();
    // The progress bar is worth showing only for larger deletions.
    const bool showProgress = count > 10;
    if (showProgress) {
        desktop.ShowProgress(static_cast<int>(count));
    }
    std::vector<bool> doomed(table.size(), false);
    std::size_t deleted = 0;
    for (std::size_t row = 0; row < table.size(); ++row) {
        if (!table[row].selected) {
            continue;
        }
        doomed[row] = true;
        ++deleted;
        desktop.SetStatus("Deleted " + std::to_string(deleted));
        if (showProgress) {
            desktop.SetProgress(static_cast<int>(deleted));
        }
    }
    // One removal for all rows: removing them one by one is quadratic.
    table.removeWhere(doomed);
    desktop.HideProgress();
    if (!editor_.WriteDirectory()) {
        // The old directory file is still in place; so are its rows.
        table.assign(restoreOnFailure);
        editor_.FindHighestOffset();
        return false;
    }
    editor_.MarkArchiveChanged();
    desktop.SetStatus(editor_.text("del4"));
    desktop.SetStats(editor_.text("stats1") + " " + std::to_string(table.size()));
    editor_.FindHighestOffset();
    return true;
}

void EntryCommands::MoveSelectedToEnd() {
    EntryTable& table = editor_.table();
    Desktop& desktop = editor_.desktop();
    if (table.selectedCount() == 0) {
        desktop.SetStatus(editor_.text("noneSel"));
        return;
    }
    const std::vector<Entry> before = table.rows();
    std::size_t moved = 0;
    std::size_t lastMoved = 0; // 1-based position of the last row moved
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (!before[i].selected) {
            continue;
        }
        lastMoved = i + 1;
        ++moved;
        if (moved == 1 && i + 1 == before.size()) {
            // Only the last row is selected: it is at the end already.
            desktop.ShowMessage(editor_.text("move1") + "\r\nDe dum de de, de diddle dum.",
                                editor_.text("move2"), MessageIcon::Information);
            table.setSelected(table.size() - 1, true);
            return;
        }
        Entry copy = before[i];
        copy.selected = false;
        table.append(std::move(copy));
    }
    if (!DeleteSelected(before)) {
        return;
    }
    editor_.AssignTypeIcons();
    if (lastMoved >= 1 && lastMoved <= table.size()) {
        table.setSelected(lastMoved - 1, true);
    }
    desktop.SetStatus(std::to_string(moved) + " " + editor_.text("move3"));
}

} // namespace korvel
