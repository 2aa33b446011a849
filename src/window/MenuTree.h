// The main window's menu bar as plain data: every item in order with its
// name, its designed (English) caption, its shortcut, the text key that
// relabels it and its children. The window builds its menus from this, the
// relabelling walks it, and tests compare against it, so the tree is written
// down once.
#pragma once

#include "window/MenuState.h"

#include <string>
#include <string_view>
#include <vector>

namespace korvel {

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

inline constexpr int LanguageSlotCount = 7;
std::string LanguageSlotName(int slot); // "lang1".."lang7"

} // namespace korvel
