// The replace commands: a file dialog per selected entry.
#include "window/EntryCommands.h"

#include "settings/FailureTexts.h"

#include "archive/Marker.h"

#include "platform/Blanks.h"
#include "platform/Cp1252.h"
#include "platform/FileSystem.h"
#include "platform/Folders.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <system_error>

namespace korvel {
namespace fs = std::filesystem;

// --- replacing -----------------------------------------------------------------

ReplaceResult EntryCommands::ReplaceRow(std::size_t row, const std::string& path) {
    ReplaceResult result = ReplaceEntry(editor_.archive(), row, path);
    if (result.directoryNotWritten) {
        ShowError(result.status);
    } else if (result.status.ok()) {
        editor_.desktop().SetStatus(Cp1252ToUtf8(editor_.table()[row].name) + " " +
                                    editor_.text("rep5"));
    }
    return result;
}

bool EntryCommands::ReplaceWithDialog(std::size_t row) {
    Desktop& desktop = editor_.desktop();
    const std::string lastAdd = editor_.settings().ReadSetting("lastAdd");
    const std::string name = Cp1252ToUtf8(editor_.table()[row].name);
    FileDialogRequest request;
    request.title = editor_.text("rep1");
    request.filter = editor_.text("cdFiles2");
    request.startFolder = lastAdd == NoPath ? std::string() : lastAdd;
    request.presetName = name;
    const FileDialogAnswer answer = desktop.OpenFileDialog(request);
    if (answer.outcome == FileDialogAnswer::Outcome::Cancelled) {
        desktop.SetStatus(editor_.text("rep3"));
        return false;
    }
    if (!answer.chosen() || answer.paths.front().empty()) {
        return false;
    }
    const std::string& path = answer.paths.front();
    if (!FileExists(path)) {
        desktop.ShowMessage(editor_.text("rep2") + " " + path, editor_.text("invalidFL"),
                            MessageIcon::Information);
        return false;
    }
    desktop.SetStatus(editor_.text("rep4") + " " + name);
    const ReplaceResult result = ReplaceRow(row, path);
    if (!result.status.ok()) {
        if (!result.directoryNotWritten) {
            ShowError(result.status);
        }
        return false;
    }
    editor_.settings().WriteSetting(FolderWithSeparator(path), "lastAdd");
    return true;
}

void EntryCommands::ReplaceSelectedAskingFiles() {
    EntryTable& table = editor_.table();
    for (std::size_t row = 0; row < table.size(); ++row) {
        if (table[row].selected && !ReplaceWithDialog(row)) {
            return;
        }
    }
}

bool EntryCommands::ReplaceEntryWithDialog(std::size_t row) {
    return row < editor_.table().size() && ReplaceWithDialog(row);
}

} // namespace korvel
