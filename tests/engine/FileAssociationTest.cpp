#include "desktop/FileAssociation.h"
#include "TestFolder.h"

#include <gtest/gtest.h>

namespace korvel {
namespace {

TEST(FileAssociation, RegistryValuesAreTheFourDesignedOnes) {
    const auto values = RegistryValues("C:\\Program Files\\Ed", "Edit");
    const std::vector<RegistryValue> expected = {
        {".img", "GTA IMG File"},
        {"GTA IMG File", "GTA IMG File"},
        // Unquoted on purpose: the whole command line becomes one path.
        {"GTA IMG File\\shell\\open\\command", "C:\\Program Files\\Ed\\Edit.exe %0"},
        {"GTA IMG File\\DefaultIcon", "C:\\Program Files\\Ed\\icons\\file.ico"},
    };
    EXPECT_EQ(values, expected);
}

TEST(FileAssociation, DesktopEntryQuotesOddExecutablePaths) {
    const std::pair<const char*, const char*> cases[] = {
        {"/usr/bin/korvel", "Exec=/usr/bin/korvel %f\n"},
        {"/opt/My Tools/korvel", "Exec=\"/opt/My Tools/korvel\" %f\n"},
        {"/opt/a$b/korvel", "Exec=\"/opt/a\\$b/korvel\" %f\n"},
    };
    for (const auto& [exe, line] : cases) {
        const std::string entry = DesktopEntryText(exe, "/usr/share/korvel/icons/korvel.svg");
        EXPECT_NE(entry.find(line), std::string::npos) << entry;
        EXPECT_NE(entry.find("MimeType=application/x-gta-img;\n"), std::string::npos);
    }
}

TEST(FileAssociation, MimeAppsKeepsOtherLinesAndReplacesOurs) {
    const std::string ours = "application/x-gta-img=korvel.desktop";
    struct Case {
        std::string before;
        std::string after;
    };
    const Case cases[] = {
        {"", "[Default Applications]\n" + ours + "\n"},
        {"[Default Applications]\ntext/plain=gedit.desktop\n\n[Added Associations]\nx=y\n",
         "[Default Applications]\ntext/plain=gedit.desktop\n" + ours +
             "\n\n[Added Associations]\nx=y\n"},
        {"[Default Applications]\napplication/x-gta-img=other.desktop\n",
         "[Default Applications]\n" + ours + "\n"},
        {"[Added Associations]\nx=y\n",
         "[Added Associations]\nx=y\n\n[Default Applications]\n" + ours + "\n"},
    };
    for (const Case& c : cases) {
        const std::string once = MimeAppsWithKorvel(c.before);
        EXPECT_EQ(once, c.after) << c.before;
        EXPECT_EQ(MimeAppsWithKorvel(once), once) << "a second run changes nothing";
    }
}

// The MIME package we install and the one we write for the user must agree.
TEST(FileAssociation, InstalledMimePackageMatchesTheWrittenOne) {
    EXPECT_EQ(test::ReadBytes(std::filesystem::path(KORVEL_SOURCE_DIR) / "data/korvel-img.xml"),
              MimePackageText());
}

} // namespace
} // namespace korvel
