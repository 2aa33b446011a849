// The Help links: what the editor hands to the shell for each Help item.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvel {

// The target of HelpHome, HelpCheckWeb or HelpHelp; nothing for other items.
std::optional<std::string> HelpTarget(std::string_view item);

} // namespace korvel
