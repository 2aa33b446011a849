#include "window/SaveLines.h"

#include "archive/EntryFiles.h"
#include "platform/FileSystem.h"
#include "platform/OutputFile.h"

namespace korvel {

SaveOutcome SaveLinesAskingPath(Editor& editor, const FileDialogRequest& request,
                                bool askBeforeReplacing,
                                const std::function<Status(const std::filesystem::path&)>& write,
                                const std::string& defaultExtension) {
    Desktop& desktop = editor.desktop();
    for (;;) {
        const FileDialogAnswer answer = desktop.SaveFileDialog(request);
        if (answer.outcome == FileDialogAnswer::Outcome::Failed) {
            return SaveOutcome::Failed;
        }
        if (!answer.chosen() || answer.paths.front().empty()) {
            return SaveOutcome::Cancelled;
        }
        std::string path = answer.paths.front();
        if (!defaultExtension.empty() && !std::filesystem::path(path).has_extension()) {
            path += "." + defaultExtension;
        }
        // A link, FIFO, device or folder, or a file of the open archive, is
        // never written; the person hears why and may choose again.
        if (const std::string problem =
                OutputTargetProblem(path, editor.isOpen() ? ArchiveOwnFiles(editor.archive())
                                                          : std::vector<std::filesystem::path>{});
            !problem.empty()) {
            desktop.ShowMessage(problem, editor.text("errorTitle"), MessageIcon::Exclamation);
            continue;
        }
        if (askBeforeReplacing && FileExists(path) &&
            !desktop.AskYesNo(path + "\r\n" + editor.text("fe3"), editor.text("fe2"))) {
            continue;
        }
        return write(path).ok() ? SaveOutcome::Saved : SaveOutcome::Failed;
    }
}

} // namespace korvel
