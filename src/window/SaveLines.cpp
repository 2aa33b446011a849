#include "window/SaveLines.h"

#include "platform/FileSystem.h"

namespace korvel {

SaveOutcome SaveLinesAskingPath(Editor& editor, const FileDialogRequest& request,
                                bool askBeforeReplacing,
                                const std::function<Status(const std::filesystem::path&)>& write) {
    Desktop& desktop = editor.desktop();
    for (;;) {
        const FileDialogAnswer answer = desktop.SaveFileDialog(request);
        if (answer.outcome == FileDialogAnswer::Outcome::Failed) {
            return SaveOutcome::Failed;
        }
        if (!answer.chosen() || answer.paths.front().empty()) {
            return SaveOutcome::Cancelled;
        }
        const std::string& path = answer.paths.front();
        if (askBeforeReplacing && FileExists(path) &&
            !desktop.AskYesNo(path + "\r\n" + editor.text("fe3"), editor.text("fe2"))) {
            continue;
        }
        return write(path).ok() ? SaveOutcome::Saved : SaveOutcome::Failed;
    }
}

} // namespace korvel
