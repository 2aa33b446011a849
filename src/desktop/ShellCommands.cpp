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

} // namespace korvel
