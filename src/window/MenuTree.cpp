#include "window/MenuTree.h"

#include "desktop/FileAssociation.h"
#include "settings/Settings.h"

#include <algorithm>

namespace korvel {
namespace {

MenuNode Item(std::string name, std::string caption, std::string key, std::string shortcut = {}) {
    return MenuNode{
        std::move(name), std::move(caption), std::move(shortcut), std::move(key), false, {}};
}

MenuNode Check(std::string name, std::string caption, std::string key) {
    MenuNode node = Item(std::move(name), std::move(caption), std::move(key));
    node.checkable = true;
    return node;
}

MenuNode Gap(std::string name) {
    return Item(std::move(name), "-", {});
}

MenuNode Sub(std::string name, std::string caption, std::string key,
             std::vector<MenuNode> children) {
    MenuNode node = Item(std::move(name), std::move(caption), std::move(key));
    node.children = std::move(children);
    return node;
}

std::vector<MenuNode> BuildTree() {
    std::vector<MenuNode> languages;
    for (int slot = 1; slot <= LanguageSlotCount; ++slot) {
        // A slot's designed caption is its own name: that is how a free slot
        // is recognised while the Language menu is filled.
        languages.push_back(Check(LanguageSlotName(slot), LanguageSlotName(slot), {}));
    }
    MenuNode recent1 = Item("recent1", "recent1", {}, "F1");
    recent1.checkable = true; // checked while it names the open archive
    MenuNode previewPane = Item("OptPreview", "Preview pane", "menud2d", "F9");
    previewPane.checkable = true;

    return {
        Sub("MenuFile", "File", "menua1",
            {Item("FileNew", "New", "menua2", "Ctrl+N"), Gap("g0"),
             Item("FileOpen", "Open", "menua3", "Ctrl+O"),
             Sub("FileRecent", "Open recent", "menua4",
                 {recent1, Item("recent2", "recent2", {}, "F2"),
                  Item("recent3", "recent3", {}, "F3")}),
             Gap("g1"), Item("FileClose", "Close archive", "menua5", "Ctrl+C"),
             Item("FileReload", "Reload archive", "menua6"), Gap("g2"),
             Item("FileExit", "Exit", "menua7")}),
        Sub("Edit2Menu", "Edit", "menub1",
            {Item("EditView", "View", "menub2"),
             Item("EditCopyFiles", "Copy as files", "copyFiles", "Ctrl+Shift+C"),
             Sub("edSel", "Select all", "menub3",
                 {Item("EditSelect", "All files", "files1", "F8"), Gap("selectGap"),
                  Item("SelectModels", "Model files", "files2"),
                  Item("SelectTextures", "Texture files", "files3"),
                  Item("SelectAni", "Animation files", "files4"),
                  Item("SelectCols", "Collision files", "files5"), Gap("gapDD"),
                  Item("SelectAllOther", "Other files", "files7")}),
             Gap("ewrwerwe"), Item("EditFind", "Find", "menub4", "Ctrl+F"),
             Item("EditFindIn", "Find in files", "menub5"), Gap("g3"),
             Item("EditInsertMarker", "Insert marker", "menub6", "F11"),
             Sub("MenuLCase", "Lower case", "menub7",
                 {Item("EditLowCaseName", "Name", "menub7a"),
                  Item("EditLowCase", "Extension", "menub7b", "F4"),
                  Item("ConvLFName", "Name and extension", "menub7c")}),
             Gap("g8"), Item("ComCheck", "Archive check", "menub8"),
             Sub("ShowMe", "Show me", "menub9",
                 {Item("ShowMeModels", "Model files", "files2"),
                  Item("ShowMeTextures", "Texture files", "files3"),
                  Item("ShowMeAni", "Animation files", "files4"),
                  Item("ShowMeCol", "Collision files", "files5"), Gap("erwererwer"),
                  Item("ShowMeOthers", "Other files", "files7")}),
             Sub("arcReport", "Save archive report", "menub10",
                 {Item("EditSave", "Text", "menub10a"),
                  Item("EditSaveHtml", "HTML", "menub10b")})}),
        Sub("MenuEdit", "Commands", "menuc0",
            {Item("EditAdd", "Add", "menuc1", "Ctrl+A"),
             Item("EditExtract", "Extract", "menuc2", "Ctrl+E"),
             Item("EditQuick", "Quick extract", "menuc3", "F5"), Gap("g6"),
             Item("ComDel", "Delete", "menuc4", "Del"), Item("ComReplace", "Replace", "menuc5"),
             Item("CmdGroupReplace", "Quick replace", "menuc6"), Gap("dfdsdsfsdf"),
             Item("ComRename", "Rename", "menuc7", "Ctrl+R"),
             Item("ComMove", "Move to end", "menuc8", "Ctrl+M"),
             Item("ComRebuild", "Rebuild archive", "menuc9"),
             Item("ComConvert", "Convert archive...", "menuConvert")}),
        Sub("MenuOptions", "Options", "menud0",
            {Sub("OptionsLanguage", "Language", "menud01", languages),
             Sub("OptSort", "Sort by", "menud1",
                 {Check("SortOffset", "Index", "menud1a"), Check("SortName", "Name", "menud1b")}),
             Gap("gap2222"),
             Sub("ArcViz", "Display", "menud2",
                 {Check("OptGrid", "Show grid lines", "menud2a"),
                  Check("OptCols", "Show grid colors", "menud2b"), Gap("vgap"),
                  Item("OptsPick", "Pick line colors", "menud2c"), Gap("previewGap"), previewPane}),
             Sub("AddScan", "Adding scan", "menud3",
                 {Check("AddingScan", "Scan when adding", "menud3a"),
                  Item("ScanSettings", "Scan options", "menud3b")}),
             Gap("g4"), Check("OptAuto", "Auto load last used archive", "menud4"),
             Check("OptConDelete", "Confirm file delete", "menud5"),
             Check("OptRebuildPrompt", "Rebuild prompt on close", "menud6"),
             Check("OptStdKeys", "Standard desktop shortcuts", "menud8"), Gap("sexySpacerNo5"),
             Item("OptAss", "Associate with IMG files", "menud7")}),
        Sub("MenuHelp", "Help", "menue0",
            {Item("HelpHome", std::string(HomePageCaption), {}),
             Item("HelpCheckWeb", "Updates / Languages", "menue1"), Gap("drfsdfsdf"),
             Item("HelpHelp", "Readme / Help   ", "menue2", "F12"),
             Item("HelpAbout", "About", "menue3")}),
    };
}

} // namespace

std::string LanguageSlotName(int slot) {
    return "lang" + std::to_string(slot);
}

const std::vector<MenuNode>& MainMenuTree() {
    static const std::vector<MenuNode> tree = BuildTree();
    return tree;
}

const MenuNode* FindMenuNode(std::string_view name) {
    const MenuNode* found = nullptr;
    ForEachMenuNode(MainMenuTree(), [&](const MenuNode& node) {
        if (found == nullptr && node.name == name) {
            found = &node;
        }
    });
    return found;
}

std::string ShortcutFor(const MenuNode& node, bool standardKeys) {
    if (standardKeys) {
        const auto choice =
            std::find_if(ShortcutChoices.begin(), ShortcutChoices.end(),
                         [&](const ShortcutChoice& c) { return c.item == node.name; });
        if (choice != ShortcutChoices.end()) {
            return std::string(choice->standard);
        }
    }
    return node.shortcut;
}

void ApplyShortcutScheme(MenuState& menu, bool standardKeys) {
    ForEachMenuNode(MainMenuTree(), [&](const MenuNode& node) {
        menu.setShortcut(node.name, ShortcutFor(node, standardKeys));
    });
    menu.setChecked("OptStdKeys", standardKeys);
}

void ToggleStandardShortcuts(MenuState& menu, Settings& settings) {
    const bool standardKeys = !menu.isChecked("OptStdKeys");
    settings.SetStandardShortcuts(standardKeys);
    ApplyShortcutScheme(menu, standardKeys);
}

void SeedMenuState(MenuState& menu) {
    ApplyShortcutScheme(menu, false);
    ForEachMenuNode(MainMenuTree(), [&](const MenuNode& node) {
        menu.setCaption(node.name, node.caption);
        menu.setEnabled(node.name, true);
        menu.setChecked(node.name, false);
        menu.setVisible(node.name, true);
    });
    for (int slot = 2; slot <= LanguageSlotCount; ++slot) {
        menu.setVisible(LanguageSlotName(slot), false);
    }
}

} // namespace korvel
