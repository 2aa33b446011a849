#include "platform/Cp1252.h"
#include "settings/IniFile.h"
#include "settings/TextForms.h"
#include "window/LanguageMenu.h"
#include "window/MenuTree.h"

#include "TestFolder.h"

#include <gtest/gtest.h>

#include <array>
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

// Every section's key lines in file order, keys lower-cased, repeats kept.
using Lines = std::vector<std::pair<std::string, std::string>>;
std::map<std::string, Lines> ShippedLines() {
    std::map<std::string, Lines> sections;
    std::ifstream in(KORVEL_LANG_INI, std::ios::binary);
    std::string line, section;
    while (std::getline(in, line)) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (IsSectionLine(line)) {
            section = SectionNameOf(line);
        } else if (const auto equals = line.find('='); equals != std::string::npos) {
            sections[section].emplace_back(ToLowerCp1252(line.substr(0, equals)),
                                           line.substr(equals + 1));
        }
    }
    return sections;
}

// Every literal in the sources that names a key of some shipped section (the
// keys held in the windows' own tables too, which this test cannot link).
std::set<std::string> KeysNamedInSources(const std::set<std::string>& anyShippedKey) {
    const std::regex literal(R"re("([A-Za-z][A-Za-z0-9_]*)")re");
    // A literal handed to a lookup is a key even when no section has it.
    const std::regex lookup(R"re((text|Lookup\w*Text|LookupFilled)\(\s*"(\w+)")re");
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
            if (anyShippedKey.contains(key + "one"))
                keys.insert({key + "one", key + "many"});
        }
        for (std::sregex_iterator call(source.begin(), source.end(), lookup), end; call != end;
             ++call)
            for (const char* form :
                 (*call)[1] == "LookupCountText" ? std::array{"one", "many"} : std::array{"", ""})
                keys.insert(ToLowerCp1252((*call)[2].str()) + form);
    }
    return keys;
}

// A key missing from one section shows "Settings error" in that language.
TEST(ShippedLanguages, EverySectionHasEveryKeyTheEditorCanReach) {
    const auto sections = ShippedLines();
    ASSERT_GE(sections.size(), 3u);
    std::set<std::string> anyShippedKey;
    for (const auto& [name, lines] : sections)
        for (const auto& [key, value] : lines)
            anyShippedKey.insert(key);
    std::set<std::string> reached = KeysNamedInSources(anyShippedKey);
    ForEachMenuNode(MainMenuTree(), [&](const MenuNode& node) {
        if (!node.textKey.empty())
            reached.insert(ToLowerCp1252(node.textKey));
    });
    EXPECT_GT(reached.size(), 150u); // the scan found the sources
    for (const auto& [name, lines] : sections) {
        if (name.empty())
            continue; // lines before the first section
        const std::map<std::string, std::string> keys(lines.begin(), lines.end());
        for (const std::string& key : reached)
            EXPECT_TRUE(keys.contains(key)) << "[" << name << "] lacks " << key;
    }
}

// Every language has the same keys, each once, with the same placeholders.
TEST(ShippedLanguages, SectionsMatchKeyForKey) {
    const auto sections = ShippedLines();
    std::map<std::string, std::vector<int>> reference;
    for (const auto& [key, value] : sections.at("english"))
        reference[key] = PlaceholdersOf(value);
    for (const auto& [name, lines] : sections) {
        std::map<std::string, std::vector<int>> keys;
        for (const auto& [key, value] : lines)
            EXPECT_TRUE(keys.emplace(key, PlaceholdersOf(value)).second)
                << "[" << name << "] repeats " << key;
        EXPECT_EQ(keys, reference) << "[" << name << "] differs from [english]";
    }
}

// The captions shown together: every menu of the tree, and each dialog's
// controls (the find windows show files1..files5 beside their own buttons).
TEST(ShippedLanguages, MnemonicsAreUniqueWhereShownTogether) {
    // clang-format off
    std::vector<std::vector<std::string>> groups = {
        {"dup3", "dup4", "dup5", "dup6", "dup8"}, {"qr4", "qr5", "qr6"},
        {"sd6", "nn2"}, {"lc1", "lc2", "lc4"}, {"find6", "find4"},
        {"find1", "sd9", "find2", "files1", "files2", "files3", "files4", "files5", "find3", "find4"},
        {"sd10", "sd11", "sd12", "sd13", "menuc2", "menuc3"}};
    // clang-format on
    const std::vector<MenuNode> bar{{"bar", "", "", "", false, MainMenuTree()}};
    ForEachMenuNode(bar, [&](const MenuNode& node) {
        if (node.isSubMenu())
            groups.emplace_back();
        for (const MenuNode& item : node.children)
            if (!item.textKey.empty())
                groups.back().push_back(item.textKey);
    });
    for (const auto& [name, lines] : ShippedLines()) {
        const std::map<std::string, std::string> values(lines.begin(), lines.end());
        for (const auto& group : groups) {
            std::map<char, std::string> taken;
            for (const std::string& key : group) {
                const auto mnemonic = MnemonicOf(values.at(ToLowerCp1252(key)));
                ASSERT_TRUE(mnemonic) << "[" << name << "] " << key << " has no mnemonic";
                EXPECT_TRUE(taken.emplace(*mnemonic, key).second)
                    << "[" << name << "] " << key << " repeats &" << *mnemonic;
            }
        }
    }
}

} // namespace
} // namespace korvel
