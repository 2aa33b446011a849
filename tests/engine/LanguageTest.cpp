#include "window/LanguageMenu.h"
#include "window/MenuTree.h"

#include "ScriptedDesktop.h"
#include "TestFolder.h"

#include <gtest/gtest.h>

#include <set>

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

TEST_F(LanguageFixture, ShippedLanguagesFillSlotsInFileOrderAndCheckIgnoringCase) {
    settings.WriteSetting("ENGLISH", "language");
    BuildLanguageMenu(menu, settings);
    EXPECT_EQ(visibleSlots(), (std::vector<std::string>{"english", "francais", "deutsch"}));
    EXPECT_TRUE(menu.isChecked("lang1"));
    EXPECT_FALSE(menu.isChecked("lang2"));
    EXPECT_FALSE(menu.isVisible("lang4"));
    EXPECT_EQ(menu.caption("lang4"), "lang4");
}

TEST_F(LanguageFixture, SectionLineRulesAndCrlfFiles) {
    writeLanguages("; [comment] is no section\r\n  [alpha]\r\nkey=x]\r\n[ beta ]\r\nk=[v]\r\n"
                   "[Gamma]\r\n");
    settings.WriteSetting("gAMMA", "language");
    BuildLanguageMenu(menu, settings);
    EXPECT_EQ(visibleSlots(), (std::vector<std::string>{"  alpha", " beta ", "Gamma"}));
    EXPECT_FALSE(menu.isChecked("lang1"));
    EXPECT_TRUE(menu.isChecked("lang3"));
}

TEST_F(LanguageFixture, NineSectionsGiveSevenSlots) {
    std::string text;
    for (int i = 1; i <= 9; ++i) {
        text += "[l" + std::to_string(i) + "]\nk=v\n";
    }
    writeLanguages(text);
    settings.WriteSetting("l8", "language");
    BuildLanguageMenu(menu, settings);
    EXPECT_EQ(visibleSlots(), (std::vector<std::string>{"l1", "l2", "l3", "l4", "l5", "l6", "l7"}));
    for (int slot = 1; slot <= LanguageSlotCount; ++slot) {
        EXPECT_FALSE(menu.isChecked(LanguageSlotName(slot)));
    }
}

TEST_F(LanguageFixture, FileWithoutSectionsLeavesTheFirstSlotAsDesigned) {
    writeLanguages("just=text\nno sections here\n");
    BuildLanguageMenu(menu, settings);
    EXPECT_EQ(visibleSlots(), (std::vector<std::string>{"lang1"}));
}

TEST_F(LanguageFixture, MissingLanguageFileLeavesTheMenuAlone) {
    std::filesystem::remove(folder / "lang.ini");
    BuildLanguageMenu(menu, settings);
    EXPECT_EQ(visibleSlots(), (std::vector<std::string>{"lang1"}));
}

TEST_F(LanguageFixture, SectionNamedLikeASlotLeavesItFree) {
    writeLanguages("[lang1]\n[second]\n[third]\n");
    BuildLanguageMenu(menu, settings);
    EXPECT_EQ(visibleSlots(), (std::vector<std::string>{"second", "third"}));
}

TEST_F(LanguageFixture, UncheckLanguageItemsClearsEverySlot) {
    for (int slot = 1; slot <= LanguageSlotCount; ++slot) {
        menu.setChecked(LanguageSlotName(slot), true);
    }
    UncheckLanguageItems(menu);
    for (int slot = 1; slot <= LanguageSlotCount; ++slot) {
        EXPECT_FALSE(menu.isChecked(LanguageSlotName(slot)));
    }
}

// Every shipped language labels every relabelled item and column; a key
// missing from one section would show "Settings error" in that language.
TEST_F(LanguageFixture, EveryShippedLanguageLabelsTheWholeMenuAndTheColumns) {
    for (const char* language : {"english", "francais", "deutsch"}) {
        settings.WriteSetting(language, "language");
        RelabelMainMenus(menu, settings);
        std::set<std::string> captions;
        ForEachMenuNode(MainMenuTree(), [&](const MenuNode& node) {
            if (node.textKey.empty()) {
                return;
            }
            EXPECT_EQ(menu.caption(node.name), settings.LookupText(node.textKey));
            EXPECT_NE(menu.caption(node.name), "Settings error") << language << " " << node.name;
            captions.insert(menu.caption(node.name));
        });
        EXPECT_GT(captions.size(), 40u) << language;
        for (const ColumnSpec& column : ArchiveColumns) {
            EXPECT_NE(settings.LookupText(column.textKey), "Settings error") << language;
        }
        // Items whose captions are data keep them.
        EXPECT_EQ(menu.caption("recent1"), "recent1");
        EXPECT_EQ(menu.caption("lang3"), "lang3");
        EXPECT_EQ(menu.caption("HelpHome"), FindMenuNode("HelpHome")->caption);
    }
}

TEST_F(LanguageFixture, UnknownLanguageLabelsWithTheLookupDefault) {
    settings.WriteSetting("klingon", "language");
    RelabelMainMenus(menu, settings);
    EXPECT_EQ(menu.caption("FileOpen"), "Settings error");
    EXPECT_EQ(menu.caption("HelpAbout"), "Settings error");
}

TEST(MenuTreeData, NamesAreUniqueAndRelabelKeysMatchTheDesign) {
    std::set<std::string> names;
    std::vector<std::pair<std::string, std::string>> keyed;
    ForEachMenuNode(MainMenuTree(), [&](const MenuNode& node) {
        EXPECT_TRUE(names.insert(node.name).second) << node.name;
        if (!node.textKey.empty()) {
            keyed.emplace_back(node.name, node.textKey);
        }
    });
    // 63 relabelled items; spot checks where keys are shared or irregular.
    EXPECT_EQ(keyed.size(), 63u);
    const std::pair<std::string, std::string> expected[] = {
        {"EditSelect", "files1"},       {"SelectAllOther", "files7"}, {"ShowMeOthers", "files7"},
        {"OptionsLanguage", "menud01"}, {"EditSaveHtml", "menub10b"}, {"ConvLFName", "menub7c"},
        {"HelpAbout", "menue3"}};
    for (const auto& pair : expected) {
        EXPECT_NE(std::find(keyed.begin(), keyed.end(), pair), keyed.end()) << pair.first;
    }
    EXPECT_EQ(keyed.front().first, "MenuFile");
    EXPECT_EQ(keyed.back().first, "HelpAbout");
    // Every archive command the engine enables is an item of the tree.
    for (const std::string& name : ArchiveCommandNames()) {
        EXPECT_NE(FindMenuNode(name), nullptr) << name;
    }
}

} // namespace
} // namespace korvel
