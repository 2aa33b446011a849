#include "settings/IniFile.h"
#include "window/LanguageMenu.h"
#include "window/ListColumns.h"
#include "window/MainCommands.h"
#include "window/MenuTree.h"
#include "window/ShowMe.h"

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

struct LanguageFixture : ::testing::Test {
    TestFolder folder;
    Settings settings{folder / "korvel.ini", folder / "lang.ini"};
    MenuState menu;

    LanguageFixture() {
        settings.EnsureSettingsFile();
        SeedMenuState(menu);
    }
    void writeLanguages(const std::string& text) { test::WriteBytes(folder / "lang.ini", text); }
    std::vector<std::string> visibleSlots() const {
        std::vector<std::string> shown;
        for (int slot = 1; slot <= LanguageSlotCount; ++slot) {
            if (menu.isVisible(LanguageSlotName(slot))) {
                shown.push_back(menu.caption(LanguageSlotName(slot)));
            }
        }
        return shown;
    }
};

TEST(LanguageLines, SectionLinesAndNames) {
    struct Case {
        std::string line;
        bool section;
        std::string name;
    } cases[] = {
        {"[english]", true, "english"},
        {"   [deutsch]", true, "   deutsch"}, // blanks before the bracket stay too
        {"[ fr ca ]", true, " fr ca "},       // blanks inside stay in the name
        {"[a]b]", true, "ab"},                // every bracket goes
        {"  [x]  ", true, "  x  "},           // outer blanks are not trimmed from the name
        {"key=value]", false, ""},            // value ending in "]"
        {"key=[value]", false, ""},           // brackets in the middle
        {"[open", false, ""},
        {"", false, ""},
        {"   ", false, ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(IsSectionLine(c.line), c.section) << "'" << c.line << "'";
        if (c.section) {
            EXPECT_EQ(SectionNameOf(c.line), c.name) << "'" << c.line << "'";
        }
    }
}

TEST_F(LanguageFixture, SlotsFillInFileOrderAndCheckTheSettingIgnoringCase) {
    struct Case {
        std::string file; // empty: no lang.ini at all
        std::string language;
        std::vector<std::string> slots;
        std::string checked; // empty: none
    } cases[] = {
        {"; [comment] is no section\r\n  [alpha]\r\nkey=x]\r\n[ beta ]\r\nk=[v]\r\n[Gamma]\r\n",
         "gAMMA",
         {"  alpha", " beta ", "Gamma"},
         "lang3"},
        {"[l1]\n[l2]\n[l3]\n[l4]\n[l5]\n[l6]\n[l7]\n[l8]\n[l9]\n",
         "l8",
         {"l1", "l2", "l3", "l4", "l5", "l6", "l7"},
         ""},
        {"just=text\nno sections here\n", "english", {"lang1"}, ""},
        {"[lang1]\n[second]\n[third]\n", "third", {"second", "third"}, "lang2"},
        {"", "english", {"lang1"}, ""},
    };
    for (const Case& c : cases) {
        MenuState fresh;
        SeedMenuState(fresh);
        menu = fresh;
        if (c.file.empty()) {
            std::filesystem::remove(folder / "lang.ini");
        } else {
            writeLanguages(c.file);
        }
        settings.WriteSetting(c.language, "language");
        BuildLanguageMenu(menu, settings);
        EXPECT_EQ(visibleSlots(), c.slots) << c.file;
        for (int slot = 1; slot <= LanguageSlotCount; ++slot) {
            const std::string name = LanguageSlotName(slot);
            EXPECT_EQ(menu.isChecked(name), name == c.checked) << c.file << " " << name;
        }
    }
}

// Every key of every section of the shipped lang.ini, lower-cased.
std::map<std::string, std::set<std::string>> ShippedKeys() {
    std::map<std::string, std::set<std::string>> sections;
    std::ifstream in(KORVEL_LANG_INI, std::ios::binary);
    std::string line;
    std::string section;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (IsSectionLine(line)) {
            section = SectionNameOf(line);
            sections[section];
        } else if (const auto equals = line.find('='); equals != std::string::npos) {
            sections[section].insert(ToLowerCp1252(line.substr(0, equals)));
        }
    }
    return sections;
}

// The keys the sources name as literals: the argument of every text(...) and
// LookupText(...) call, and every literal that names a shipped key (the keys
// held in the windows' own tables, which this test cannot link).
std::set<std::string> KeysNamedInSources(const std::set<std::string>& anyShippedKey) {
    const std::regex call(R"(\b(?:text|LookupText)\(([^()]*)\))");
    const std::regex literal(R"re("([A-Za-z][A-Za-z0-9_]*)")re");
    std::set<std::string> keys;
    for (const auto& file : std::filesystem::recursive_directory_iterator(
             std::filesystem::path(KORVEL_SOURCE_DIR) / "src")) {
        std::ifstream in(file.path(), std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        const std::string source = text.str();
        for (std::sregex_iterator at(source.begin(), source.end(), call), end; at != end; ++at) {
            const std::string arguments = (*at)[1];
            for (std::sregex_iterator word(arguments.begin(), arguments.end(), literal);
                 word != end; ++word) {
                keys.insert(ToLowerCp1252((*word)[1].str()));
            }
        }
        for (std::sregex_iterator word(source.begin(), source.end(), literal), end; word != end;
             ++word) {
            if (anyShippedKey.contains(ToLowerCp1252((*word)[1].str()))) {
                keys.insert(ToLowerCp1252((*word)[1].str()));
            }
        }
    }
    return keys;
}

// A key missing from one section shows "Settings error" in that language.
TEST(ShippedLanguages, EverySectionHasEveryKeyTheEditorCanReach) {
    const auto sections = ShippedKeys();
    ASSERT_GE(sections.size(), 3u);
    std::set<std::string> anyShippedKey;
    for (const auto& [name, keys] : sections) {
        anyShippedKey.insert(keys.begin(), keys.end());
    }
    std::set<std::string> reached = KeysNamedInSources(anyShippedKey);
    ForEachMenuNode(MainMenuTree(), [&](const MenuNode& node) {
        if (!node.textKey.empty()) {
            reached.insert(ToLowerCp1252(node.textKey));
        }
    });
    const auto add = [&](std::string_view key) { reached.insert(ToLowerCp1252(key)); };
    for (const TypeSelection& selection : TypeSelections) {
        add(selection.textKey);
    }
    for (const ColumnSpec& column : ArchiveColumns) {
        add(column.textKey);
    }
    for (const ShowMeFamily& family : ShowMeFamilies) {
        add(family.titleKey);
    }
    EXPECT_GT(reached.size(), 150u); // the scan found the sources
    for (const auto& [name, keys] : sections) {
        if (name.empty()) {
            continue; // lines before the first section
        }
        for (const std::string& key : reached) {
            EXPECT_TRUE(keys.contains(key)) << "[" << name << "] lacks " << key;
        }
    }
}

TEST(MenuTreeData, NamesAreUniqueAndEveryArchiveCommandIsAnItem) {
    std::set<std::string> names;
    ForEachMenuNode(MainMenuTree(), [&](const MenuNode& node) {
        EXPECT_TRUE(names.insert(node.name).second) << node.name;
    });
    for (const std::string& name : ArchiveCommandNames()) {
        EXPECT_NE(FindMenuNode(name), nullptr) << name;
    }
}

} // namespace
} // namespace korvel
