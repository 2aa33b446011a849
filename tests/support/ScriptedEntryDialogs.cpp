#include "ScriptedEntryDialogs.h"

#include <stdexcept>

namespace korvel::test {

DuplicateDialogAnswer ScriptedEntryDialogs::AddingDup(const std::string& conflictingName) {
    if (duplicateAnswers.empty()) {
        throw std::logic_error("no scripted answer for addingDup " + conflictingName);
    }
    std::string answer = duplicateAnswers.front();
    duplicateAnswers.pop_front();
    shown.push_back("addingDup " + conflictingName + " -> " + answer);
    DuplicateDialogAnswer result;
    result.dontPrompt = settings_.ReadSetting("scanPrompt") == "1";
    if (answer == "<close>") {
        return result;
    }
    const std::string dontPrompt = "+dontPrompt";
    if (answer.size() > dontPrompt.size() &&
        answer.compare(answer.size() - dontPrompt.size(), dontPrompt.size(), dontPrompt) == 0) {
        answer.resize(answer.size() - dontPrompt.size());
        result.dontPrompt = true;
    }
    result.action = DuplicateAnswerFromWord(answer);
    return result;
}

void ScriptedEntryDialogs::RenameAItem(const RenameRequest& request) {
    const std::string how = request.modal ? "modal" : "modeless";
    for (;;) {
        if (renameAnswers.empty()) {
            throw std::logic_error("no scripted answer for RenameAItem " + request.currentName);
        }
        const std::string typed = renameAnswers.front();
        renameAnswers.pop_front();
        if (typed == "<later>")
            return void(openRename = request);
        if (typed == "<cancel>") {
            shown.push_back("rename " + std::to_string(request.row + 1) + " (" + how + ") [" +
                            request.currentName + "] -> cancelled");
            return;
        }
        const bool closed = request.doRename(typed);
        shown.push_back("rename " + std::to_string(request.row + 1) + " (" + how + ") [" +
                        request.currentName + "] -> " + typed + (closed ? " ok" : " kept open"));
        if (closed) {
            return;
        }
    }
}

} // namespace korvel::test
