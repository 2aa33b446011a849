#include "EntryFixture.h"
#include "desktop/FileAssociation.h"
#include "platform/Folders.h"
#include "window/DesktopCommands.h"

#include <cstdlib>

namespace korvel::test {
namespace {

using ShellCommands = EntryFixture;

TEST_F(ShellCommands, HelpItemsOpenTheirTargetsAndNothingElse) {
    for (const char* item : {"HelpHome", "HelpCheckWeb", "HelpHelp", "HelpAbout", "OptAss"}) {
        RunHelpCommand(desktop, item);
    }
    EXPECT_EQ(desktop.shellOpened,
              (std::vector<std::string>{std::string(HomePageAddress), std::string(UpdatesAddress),
                                        (ResourceFolder() / "readme - FAQ.html").string()}));
    EXPECT_EQ(desktop.conversation.size(), 3u) << "no message besides the shell requests";
}

TEST_F(ShellCommands, OptAssRegistersThenSaysSo) {
    const char* home = std::getenv("HOME");
    const std::string oldHome = home != nullptr ? home : "";
    setenv("HOME", folder.path().c_str(), 1);
    unsetenv("XDG_DATA_HOME");
    unsetenv("XDG_CONFIG_HOME");
    AssociateWithImgFiles(editor);
    setenv("HOME", oldHome.c_str(), 1);
    EXPECT_TRUE(std::filesystem::exists(folder / ".config/mimeapps.list"));
    EXPECT_EQ(desktop.conversation, std::vector<std::string>{"status: " + text("fileReg")});
}

} // namespace
} // namespace korvel::test
