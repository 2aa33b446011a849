#include "platform/Cp1252.h"
#include "settings/IniFile.h"
#include "window/LanguageMenu.h"
#include "window/MenuTree.h"

#include "TestFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

namespace korvel {
namespace {

using test::TestFolder;

TEST(LanguageMenu, SlotsFillInFileOrderAndCheckTheSettingIgnoringCase) {
    TestFolder folder;
    Settings settings{folder / "korvel.ini", folder / "lang.ini"};
    settings.EnsureSettingsFile();
    struct Case {
        std::string file;
        std::string language;
        std::vector<std::string> slots;
        std::string checked; // empty: none
    } cases[] = {
        // Blanks stay in the name, every bracket goes.
        {"; [comment]\r\n  [alpha]\r\nkey=x]\r\n[open\r\n[ beta ]\r\nk=[v]\r\n[a]b]  "
         "\r\n[Gamma]\r\n",
         "gAMMA",
         {"  alpha", " beta ", "ab  ", "Gamma"},
         "lang4"},
        {"[l1]\n[l2]\n[l3]\n[l4]\n[l5]\n[l6]\n[l7]\n[l8]\n[l9]\n",
         "l8",
         {"l1", "l2", "l3", "l4", "l5", "l6", "l7"},
         ""},
        {"just=text\nno sections here\n", "english", {"lang1"}, ""},
        {"[lang1]\n[second]\n[third]\n", "third", {"second", "third"}, "lang2"},
    };
    for (const Case& c : cases) {
        MenuState menu;
        SeedMenuState(menu);
        test::WriteBytes(folder / "lang.ini", c.file);
        settings.WriteSetting(c.language, "language");
        BuildLanguageMenu(menu, settings);
        std::vector<std::string> shown;
        for (int slot = 1; slot <= LanguageSlotCount; ++slot) {
            const std::string name = LanguageSlotName(slot);
            if (menu.isVisible(name))
                shown.push_back(menu.caption(name));
            EXPECT_EQ(menu.isChecked(name), name == c.checked) << c.file << " " << name;
        }
        EXPECT_EQ(shown, c.slots) << c.file;
    }
}

// Every key of every section of the shipped lang.ini, lower-cased.
std::map<std::string, std::set<std::string>> ShippedKeys() {
    std::map<std::string, std::set<std::string>> sections;
    std::ifstream in(KORVEL_LANG_INI, std::ios::binary);
    std::string line, section;
    while (std::getline(in, line)) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (IsSectionLine(line)) {
            section = SectionNameOf(line);
            sections[section];
        } else if (const auto equals = line.find('='); equals != std::string::npos) {
            sections[section].insert(ToLowerCp1252(line.substr(0, equals)));
        }
    }
    return sections;
}

// Every literal in the sources that names a key of some shipped section (the
// keys held in the windows' own tables too, which this test cannot link).
std::set<std::string> KeysNamedInSources(const std::set<std::string>& anyShippedKey) {
    const std::regex literal(R"re("([A-Za-z][A-Za-z0-9_]*)")re");
    std::set<std::string> keys;
    for (const auto& file : std::filesystem::recursive_directory_iterator(
             std::filesystem::path(KORVEL_SOURCE_DIR) / "src")) {
        std::stringstream text;
        text << std::ifstream(file.path(), std::ios::binary).rdbuf();
        const std::string source = text.str();
        for (std::sregex_iterator word(source.begin(), source.end(), literal), end; word != end;
             ++word) {
            const std::string key = ToLowerCp1252((*word)[1].str());
            if (anyShippedKey.contains(key))
                keys.insert(key);
        }
    }
    return keys;
}

// A key missing from one section shows "Settings error" in that language.
TEST(ShippedLanguages, EverySectionHasEveryKeyTheEditorCanReach) {
    const auto sections = ShippedKeys();
    ASSERT_GE(sections.size(), 3u);
    std::set<std::string> anyShippedKey;
    for (const auto& [name, keys] : sections)
        anyShippedKey.insert(keys.begin(), keys.end());
    std::set<std::string> reached = KeysNamedInSources(anyShippedKey);
    ForEachMenuNode(MainMenuTree(), [&](const MenuNode& node) {
        if (!node.textKey.empty())
            reached.insert(ToLowerCp1252(node.textKey));
    });
    EXPECT_GT(reached.size(), 150u); // the scan found the sources
    for (const auto& [name, keys] : sections) {
        if (name.empty())
            continue; // lines before the first section
        for (const std::string& key : reached)
            EXPECT_TRUE(keys.contains(key)) << "[" << name << "] lacks " << key;
    }
}

} // namespace
} // namespace korvel
