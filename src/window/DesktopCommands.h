// The Help links and OptAss: the commands that hand things to the desktop.
#pragma once

#include "platform/Desktop.h"
#include "window/Editor.h"

#include <string_view>

namespace korvel {

// Opens the Help item's target; when nothing on this desktop can open it
// (no browser, a missing readme), the person is told which target failed.
void RunHelpCommand(Editor& editor, std::string_view item);

// OptAss: registers the association, then text(fileReg); when a file of it
// could not be written, a message names it and the status says
// text(fileRegFail) instead.
void AssociateWithImgFiles(Editor& editor);

} // namespace korvel
