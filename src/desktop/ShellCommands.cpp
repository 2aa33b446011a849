#include "desktop/ShellCommands.h"

#include "desktop/FileAssociation.h"
#include "platform/Folders.h"

namespace korvel {

std::optional<std::string> HelpTarget(std::string_view item) {
    if (item == "HelpHome") {
        return std::string(HomePageAddress);
    }
    if (item == "HelpCheckWeb") {
        return std::string(UpdatesAddress);
    }
    if (item == "HelpHelp") {
        return (ResourceFolder() / "readme - FAQ.html").string();
    }
    return std::nullopt;
}

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
