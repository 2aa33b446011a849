// EntryDialogs for tests: the duplicate dialog answers with queued actions; the rename dialog types
// queued names until one is accepted or "<cancel>" closes it. Every dialog
// shown is recorded; one shown with no answer left throws.
#pragma once

#include "settings/Settings.h"
#include "window/EntryDialogs.h"

#include <deque>
#include <string>
#include <vector>

namespace korvel::test {

class ScriptedEntryDialogs : public EntryDialogs {
public:
    explicit ScriptedEntryDialogs(Settings& settings) : settings_(settings) {}

    // "replace", "skip", "renameOld", "renameNew", each optionally followed
    // by "+dontPrompt" (the check box ticked), or "<close>" (closed by the
    // frame: no action).
    std::deque<std::string> duplicateAnswers;
    // Texts typed into the name box, one per press of Ok; "<cancel>" closes.
    std::deque<std::string> renameAnswers;
    RenameRequest openRename; // answered "<later>": left open to press Ok on later
    // "addingDup NAME -> ANSWER", "rename ROW (modal|modeless) [NAME] -> TYPED ok|kept open".
    std::vector<std::string> shown;

    DuplicateDialogAnswer AddingDup(const std::string& conflictingName) override;
    void RenameAItem(const RenameRequest& request) override;

private:
    Settings& settings_;
};

} // namespace korvel::test
