#include "window/ConvertCommand.h"

#include "archive/Convert.h"
#include "settings/FailureTexts.h"
#include "window/Editor.h"
#include "window/LongWork.h"

namespace korvel {

std::string ConvertedArchiveName(const std::string& dataPath, ArchiveKind target) {
    // Cut from the UTF-8 text itself, as the title does.
    const std::size_t slash = dataPath.find_last_of("/\\");
    std::string name = dataPath.substr(slash == std::string::npos ? 0 : slash + 1);
    if (HasImgExtension(name)) {
        name.resize(name.size() - 4);
    }
    return name + (target == ArchiveKind::OneFile ? "-v2.img" : "-v1.img");
}

void ConvertArchiveAsking(Editor& editor) {
    if (!editor.isOpen()) {
        return;
    }
    Desktop& desktop = editor.desktop();
    const ArchiveKind target = editor.archive().kind() == ArchiveKind::TwoFile
                                   ? ArchiveKind::OneFile
                                   : ArchiveKind::TwoFile;
    const std::string& source = editor.dataPath();
    const std::size_t slash = source.find_last_of("/\\");
    const std::string title =
        editor.text(target == ArchiveKind::OneFile ? "convertToOne" : "convertToTwo");
    const FileDialogAnswer answer = desktop.SaveFileDialog(
        {title, editor.text("cdFiles1"), slash == std::string::npos ? "" : source.substr(0, slash),
         ConvertedArchiveName(source, target), false});
    if (!answer.chosen() || answer.paths.front().empty()) {
        return;
    }
    const std::string path = NewArchiveDataPath(answer.paths.front());
    const std::vector<std::string> replaced = FilesNewArchiveWouldEmpty(path, target);
    if (!editor.ConfirmEmptying(replaced)) {
        return;
    }
    const std::string copying = editor.text("convertStep") + " ";
    const std::string of =
        " " + editor.text("adding2") + " " + std::to_string(editor.table().size());
    ConvertResult result;
    {
        LongWork work(desktop, editor.table().size());
        result = ConvertArchive(editor.archive(), path, target, replaced,
                                work.copyProgress(copying, of, editor.text("rebuild4")));
    }
    if (result.stopped) {
        desktop.SetStatus(editor.text("convertCancelled"));
        return;
    }
    if (!result.status.ok()) {
        desktop.SetStatus(editor.text("convertFailed"));
        desktop.ShowMessage(
            FileFailureText(editor.settings(), StatusText(editor.settings(), result.status)),
            editor.text("errorTitle"), MessageIcon::Exclamation);
        return;
    }
    std::string said = editor.text("convertDone") + "\r\n" + path;
    for (const Status& cut : result.cut) {
        said += "\r\n\r\n" + StatusText(editor.settings(), cut) + ".";
    }
    if (!result.cut.empty()) {
        said += "\r\n" + editor.text("convertCut");
    }
    desktop.SetStatus(editor.text("convertDone") + " " + path);
    if (desktop.AskYesNo(said + "\r\n\r\n" + editor.text("convertOpen"), title)) {
        editor.OpenArchive(path);
    }
}

} // namespace korvel
