// The editor's own small dialogs that entry commands open: the duplicate
// dialog `addingDup` and the rename dialog `RenameAItem`. The window shows
// real dialogs, tests replay scripted answers, the command-line tool never
// asks. Text crossing this interface is UTF-8.
#pragma once

#include "archive/EntryOperations.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace korvel {

struct RenameRequest {
    std::size_t row = 0;     // 0-based row of the entry (the dialog's `itemNo` is row + 1)
    std::string currentName; // fills `objectName`
    // Blocking when adding opens it for a duplicate; the rename command shows
    // it without blocking the main window.
    bool modal = false;
    // Run by `DoRename` with the typed text. True means the rename was applied
    // and the dialog closes; false keeps it open (a blank name was refused).
    std::function<bool(const std::string& typed)> doRename;
};

// The duplicate dialog's answer: the chosen action (nothing when it was
// cancelled by Escape or its frame: that file is then left out and nothing
// is remembered) and its "don't prompt again" box.
struct DuplicateDialogAnswer {
    std::optional<DuplicateAnswer> action;
    bool dontPrompt = false;
};

class EntryDialogs {
public:
    virtual ~EntryDialogs() = default;
    // Shows `addingDup` modally with `conflictingName` in `Label4` and
    // returns the person's answer once it is closed.
    virtual DuplicateDialogAnswer AddingDup(const std::string& conflictingName) = 0;
    // Shows (or refills) `RenameAItem`. A modal request returns when the
    // dialog is closed; a modeless one returns at once and the dialog calls
    // request.doRename later.
    virtual void RenameAItem(const RenameRequest& request) = 0;
};

} // namespace korvel
