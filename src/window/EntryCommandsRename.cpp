// The rename dialog and the name-case commands.
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
namespace {

// A rename still stands when the name holds one of these; the status line
// only answers back. Compared with letter case, as typed.
constexpr std::array<std::string_view, 10> RudeWords = {
    "fuck", "shit", "cunt", "bitch", "bastard", "wank", "twat", "arsehole", "bollocks", "piss"};

bool IsRude(std::string_view name) {
    return std::any_of(RudeWords.begin(), RudeWords.end(),
                       [&](std::string_view word) { return name.find(word) != name.npos; });
}

} // namespace

// --- renaming and name case ----------------------------------------------------

void EntryCommands::RenameSelectedWithDialog() {
    const std::vector<std::size_t> rows = SelectedRows();
    if (rows.empty()) {
        return;
    }
    // The dialog is refilled for each selected row and so shows the last one.
    const std::size_t row = rows.back();
    RenameRequest request;
    request.row = row;
    request.currentName = Cp1252ToUtf8(editor_.table()[row].name);
    request.modal = false;
    // The dialog stays open while the list changes under it: Ok renames the
    // entry it was opened for, wherever that stands by then.
    request.doRename = [this, entry = editor_.table().refOf(row)](const std::string& typed) {
        return DoRenameEntry(entry, typed);
    };
    dialogs_.RenameAItem(request);
}

bool EntryCommands::DoRenameEntry(const EntryRef& entry, const std::string& typed) {
    const auto row = editor_.table().rowOf(entry);
    if (!row) {
        editor_.desktop().ShowMessage(editor_.text("renGone"), "", MessageIcon::Information);
        return true;
    }
    return DoRename(*row, typed);
}

bool EntryCommands::DoRename(std::size_t row, const std::string& typed) {
    Desktop& desktop = editor_.desktop();
    if (typed.find_first_not_of(' ') == std::string::npos) {
        desktop.ShowMessage("No name entered", "", MessageIcon::Information);
        return false;
    }
    const auto name = Utf8ToCp1252(typed);
    if (!name) {
        desktop.ShowMessage(editor_.settings().LookupFilled("nameNotStorable", {typed}), "",
                            MessageIcon::Information);
        return false;
    }
    if (const Status problem = CheckEntryName(*name); !problem.ok()) {
        desktop.ShowMessage(StatusText(editor_.settings(), problem), "", MessageIcon::Information);
        return false;
    }
    if (row >= editor_.table().size()) {
        return true;
    }
    if (const Status renamed = RenameEntry(editor_.archive(), row, *name); !renamed.ok()) {
        ShowError(renamed);
        return true;
    }
    desktop.SetStatus(IsRude(*name) ? "You kiss your mother with that mouth?" : editor_.text("sd1"));
    return true;
}

void EntryCommands::LowerCaseSelected(NameCase which) {
    if (editor_.table().empty()) {
        return;
    }
    const LowerCaseResult result = LowerCaseNames(editor_.archive(), SelectedRows(), which);
    if (!result.status.ok()) {
        ShowError(result.status);
        return;
    }
    editor_.desktop().SetStatus(editor_.settings().LookupCountText(
        which == NameCase::Extension ? "lowerExts" : "lowerNames", result.count));
}

} // namespace korvel
