#include "window/LanguageMenu.h"

#include "platform/Blanks.h"

#include "archive/Names.h"
#include "window/MenuTree.h"

#include <algorithm>
#include <fstream>

namespace korvel {
bool IsSectionLine(std::string_view line) {
    const std::string_view trimmed = TrimBlanks(line, " ");
    return !trimmed.empty() && trimmed.front() == '[' && trimmed.back() == ']';
}

std::string SectionNameOf(std::string_view line) {
    std::string name(line);
    std::erase_if(name, [](char c) { return c == '[' || c == ']'; });
    return name;
}

void BuildLanguageMenu(MenuState& menu, const Settings& settings) {
    std::ifstream in(settings.languageFile(), std::ios::binary);
    if (!in) {
        return;
    }
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (!IsSectionLine(line)) {
            continue;
        }
        const std::string name = SectionNameOf(line);
        int slot = 1;
        while (slot <= LanguageSlotCount &&
               menu.caption(LanguageSlotName(slot)) != LanguageSlotName(slot)) {
            ++slot;
        }
        if (slot > LanguageSlotCount) {
            continue;
        }
        const std::string slotName = LanguageSlotName(slot);
        menu.setCaption(slotName, name);
        if (EqualsIgnoreCase(settings.ReadSetting("language"), name)) {
            menu.setChecked(slotName, true);
        }
        menu.setVisible(slotName, true);
    }
}

void RelabelMainMenus(MenuState& menu, const Settings& settings) {
    ForEachMenuNode(MainMenuTree(), [&](const MenuNode& node) {
        if (!node.textKey.empty()) {
            menu.setCaption(node.name, settings.LookupText(node.textKey));
        }
    });
}

void UncheckLanguageItems(MenuState& menu) {
    for (int slot = 1; slot <= LanguageSlotCount; ++slot) {
        menu.setChecked(LanguageSlotName(slot), false);
    }
}

} // namespace korvel
