// The Help links and `OptAss`: what the editor hands to the shell, and the
// status text after registering itself as the opener of ".img" files.
#pragma once

#include "window/Editor.h"

#include <optional>
#include <string>
#include <string_view>

namespace korvel {

// The target of HelpHome, HelpCheckWeb or HelpHelp; nothing for other items.
std::optional<std::string> HelpTarget(std::string_view item);

// Opens the item's target. The shell's answer is not looked at: a missing
// readme or browser opens nothing and says nothing.
void RunHelpCommand(Desktop& desktop, std::string_view item);

// OptAss: registers the association, then text(`fileReg`) whatever happened
// (a desktop that refuses the change is not the person's concern here).
void AssociateWithImgFiles(Editor& editor);

} // namespace korvel
