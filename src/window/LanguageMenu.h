// The Language menu and the main window's interface texts. A language is a
// section of lang.ini; the menu offers the first seven sections in file order
// in the slots lang1..lang7, and every relabelled caption is looked up anew in
// the current language.
#pragma once

#include "settings/Settings.h"
#include "window/MenuState.h"

#include <string>
#include <string_view>

namespace korvel {

// A section line: after leading blanks the first character is "[", and before
// trailing blanks the last one is "]". Key lines whose values end in "]" are
// not sections.
bool IsSectionLine(std::string_view line);
// The line with every "[" and "]" removed, wherever they stand; blanks stay.
std::string SectionNameOf(std::string_view line);

// Fills the free language slots (a slot is free while its caption is its own
// name) from lang.ini, in file order, checking the one that matches the
// setting `language` without regard to case. A missing file leaves the menu
// as it is.
void BuildLanguageMenu(MenuState& menu, const Settings& settings);
// Every relabelled item of the menu tree gets the text of its key.
void RelabelMainMenus(MenuState& menu, const Settings& settings);
void UncheckLanguageItems(MenuState& menu);

} // namespace korvel
