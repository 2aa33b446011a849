#include "window/DesktopCommands.h"

#include "desktop/FileAssociation.h"
#include "desktop/ShellCommands.h"

namespace korvel {

void RunHelpCommand(Desktop& desktop, std::string_view item) {
    if (const auto target = HelpTarget(item)) {
        (void)desktop.OpenWithShell(*target);
    }
}

void AssociateWithImgFiles(Editor& editor) {
    (void)RegisterFileAssociation();
    editor.desktop().SetStatus(editor.text("fileReg"));
}

} // namespace korvel
