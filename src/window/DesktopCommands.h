// The Help links and OptAss: the commands that hand things to the desktop.
#pragma once

#include "platform/Desktop.h"
#include "window/Editor.h"

#include <string_view>

namespace korvel {

// Opens the Help item's target. The shell's answer is not looked at: a
// missing readme or browser opens nothing and says nothing.
void RunHelpCommand(Desktop& desktop, std::string_view item);

// OptAss: registers the association, then text(fileReg) whatever happened
// (a desktop that refuses the change is not the person's concern here).
void AssociateWithImgFiles(Editor& editor);

} // namespace korvel
