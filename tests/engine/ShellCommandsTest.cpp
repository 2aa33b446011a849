#include "EditorHarness.h"
#include "desktop/FileAssociation.h"
#include "platform/Folders.h"
#include "window/DesktopCommands.h"

#include <cstdlib>

namespace korvel::test {
namespace {

using ShellCommands = EditorHarness;

TEST_F(ShellCommands, HelpItemsOpenTheirTargetsAndNothingElse) {
    for (const char* item : {"HelpHome", "HelpCheckWeb", "HelpHelp", "HelpAbout", "OptAss"})
        RunHelpCommand(editor, item);
    EXPECT_EQ(desktop.shellOpened,
              (std::vector<std::string>{std::string(HomePageAddress), std::string(UpdatesAddress),
                                        (ResourceFolder() / "readme - FAQ.html").string()}));
    EXPECT_EQ(desktop.conversation.size(), 3u) << "no message besides the shell requests";
    // A desktop with no browser: the person hears which target did not open.
    desktop.shellOpens = false;
    RunHelpCommand(editor, "HelpHome");
    EXPECT_EQ(desktop.conversation.back(),
              "message(Exclamation) : " + text("openFail") + "\n" + std::string(HomePageAddress));
}

// What the files hold is the association's to test; here: they land in the
// person's own folders, a second run changes nothing, and the status says so.
TEST_F(ShellCommands, OptAssRegistersForThePersonThenSaysSo) {
    const char* home = std::getenv("HOME");
    const std::string oldHome = home != nullptr ? home : "";
    setenv("HOME", folder.path().c_str(), 1);
    unsetenv("XDG_DATA_HOME");
    unsetenv("XDG_CONFIG_HOME");
    AssociateWithImgFiles(editor);
    const std::string apps = ReadBytes(folder / ".config/mimeapps.list");
    AssociateWithImgFiles(editor);
    setenv("HOME", oldHome.c_str(), 1);
    EXPECT_EQ(apps, "[Default Applications]\napplication/x-gta-img=korvel.desktop\n");
    EXPECT_EQ(ReadBytes(folder / ".config/mimeapps.list"), apps);
    EXPECT_NE(ReadBytes(folder / ".local/share/applications/korvel.desktop").find(" %f\n"),
              std::string::npos);
    EXPECT_EQ(ReadBytes(folder / ".local/share/mime/packages/korvel-img.xml"), MimePackageText());
    EXPECT_EQ(desktop.said("status"), std::vector<std::string>(2, "status: " + text("fileReg")));
    // A folder that cannot be made is reported, naming it; nothing else is touched.
    std::filesystem::remove_all(folder / ".local/share/applications");
    WriteBytes(folder / ".local/share/applications", "a file");
    setenv("HOME", folder.path().c_str(), 1);
    AssociateWithImgFiles(editor);
    setenv("HOME", oldHome.c_str(), 1);
    EXPECT_NE(
        desktop.said("message").back().find(text("fileRegFail") + "\n" + folder.path().string()),
        std::string::npos);
    EXPECT_EQ(ReadBytes(folder / ".config/mimeapps.list"), apps);
}

} // namespace
} // namespace korvel::test
