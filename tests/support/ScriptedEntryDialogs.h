// EntryDialogs for tests: the duplicate dialog answers with queued actions
// and writes the settings as the real dialog does; the rename dialog types
// queued names until one is accepted or "<cancel>" closes it. Every dialog
// shown is recorded; one shown with no answer left throws.
#pragma once

#include "window/EntryDialogs.h"
#include "settings/Settings.h"

#include <deque>
#include <string>
#include <vector>

namespace korvel::test {

class ScriptedEntryDialogs : public EntryDialogs {
public:
    explicit ScriptedEntryDialogs(Settings& settings) : settings_(settings) {}

    // "replace", "skip", "renameOld", "renameNew" (written to addingOpt),
    // each optionally followed by "+dontPrompt" (scanPrompt "1"), or
    // "<close>" (closed by the frame: nothing written).
    std::deque<std::string> duplicateAnswers;
    // Texts typed into the name box, one per press of Ok; "<cancel>" closes.
    std::deque<std::string> renameAnswers;
    // "addingDup NAME -> ANSWER", "rename ROW (modal|modeless) [NAME] -> TYPED ok|kept open".
    std::vector<std::string> shown;

    void AddingDup(const std::string& conflictingName) override;
    void RenameAItem(const RenameRequest& request) override;

private:
    Settings& settings_;
};

} // namespace korvel::test
