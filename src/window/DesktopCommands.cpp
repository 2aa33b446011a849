#include "window/DesktopCommands.h"

#include "desktop/FileAssociation.h"
#include "desktop/ShellCommands.h"

namespace korvel {

void RunHelpCommand(Editor& editor, std::string_view item) {
    if (const auto target = HelpTarget(item); target && !editor.desktop().OpenWithShell(*target)) {
        editor.desktop().ShowMessage(editor.text("openFail") + "\n" + *target, "",
                                     MessageIcon::Exclamation);
    }
}

void AssociateWithImgFiles(Editor& editor) {
    if (const std::string failed = RegisterFileAssociation(); !failed.empty()) {
        editor.desktop().ShowMessage(editor.text("fileRegFail") + "\n" + failed, "",
                                     MessageIcon::Exclamation);
        editor.desktop().SetStatus(editor.text("fileRegFail"));
        return;
    }
    editor.desktop().SetStatus(editor.text("fileReg"));
}

} // namespace korvel
