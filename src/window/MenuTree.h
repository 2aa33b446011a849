// The main window's menu bar as plain data: every item in order with its
// name, its designed (English) caption, its shortcut, the text key that
// relabels it and its children. The window builds its menus from this, the
// relabelling walks it, and tests compare against it, so the tree is written
// down once.
#pragma once

#include "window/MenuState.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

class Settings;

struct MenuNode {
    std::string name;
    std::string caption;  // designed caption; "-" for a separator
    std::string shortcut; // portable key text: "Ctrl+N", "F8", "Del"; empty for none
    std::string textKey;  // key in lang.ini; empty when the item is not relabelled
    bool checkable = false;
    std::vector<MenuNode> children;

    bool isSeparator() const { return caption == "-"; }
    bool isSubMenu() const { return !children.empty(); }
};

// The five menus of the menu bar, in order.
const std::vector<MenuNode>& MainMenuTree();

// Calls `visit` for every node below the menu bar (the menus themselves
// included), depth first, in menu order.
template <typename Visit> void ForEachMenuNode(const std::vector<MenuNode>& nodes, Visit&& visit) {
    for (const MenuNode& node : nodes) {
        visit(node);
        ForEachMenuNode(node.children, visit);
    }
}

// Nothing when no item has that name.
const MenuNode* FindMenuNode(std::string_view name);

// The state every item starts in: designed caption, enabled, unchecked, and
// only the first language slot visible.
void SeedMenuState(MenuState& menu);

// Where the designed shortcuts and the desktop's standard keys disagree:
// an item whose designed key means something else on the desktop (Ctrl+C is
// copy, Ctrl+A select all, F1 help, F3 find next, F5 refresh, F11 full
// screen), or an item that the standard key means. With standard desktop
// shortcuts chosen, each item here answers to `standard` instead of
// `designed`; every other item keeps its designed key. No two items may end
// up with the same key in either scheme.
struct ShortcutChoice {
    std::string_view item;
    std::string_view designed; // as in the menu tree; empty for none
    std::string_view standard;
};

inline constexpr std::array<ShortcutChoice, 11> ShortcutChoices{{
    {"FileClose", "Ctrl+C", "Ctrl+W"},
    {"FileReload", "", "F5"},
    {"recent1", "F1", "Ctrl+1"},
    {"recent2", "F2", "Ctrl+2"},
    {"recent3", "F3", "Ctrl+3"},
    {"EditSelect", "F8", "Ctrl+A"},
    {"EditInsertMarker", "F11", "Ctrl+Shift+M"},
    {"EditAdd", "Ctrl+A", "Ins"},
    {"EditQuick", "F5", "Ctrl+Shift+E"},
    {"HelpHelp", "F12", "F1"},
    {"EditCopyFiles", "Ctrl+Shift+C", "Ctrl+C"},
}};

// The key an item answers to in the chosen scheme; empty for none.
std::string ShortcutFor(const MenuNode& node, bool standardKeys);
// Puts every item's key of the chosen scheme into the menu state and checks
// OptStdKeys accordingly.
void ApplyShortcutScheme(MenuState& menu, bool standardKeys);
// OptStdKeys: flips the scheme, remembers it in korvel.ini and applies it.
void ToggleStandardShortcuts(MenuState& menu, Settings& settings);

inline constexpr int LanguageSlotCount = 7;
std::string LanguageSlotName(int slot); // "lang1".."lang7"

} // namespace korvel
