#include "window/MenuState.h"

namespace korvel {

const MenuItemState& MenuState::item(std::string_view name) const {
    static const MenuItemState defaults;
    const auto found = items_.find(name);
    return found == items_.end() ? defaults : found->second;
}

MenuItemState& MenuState::slot(std::string_view name) {
    auto found = items_.find(name);
    if (found == items_.end()) {
        found = items_.emplace(std::string(name), MenuItemState{}).first;
    }
    return found->second;
}

void MenuState::changed(std::string_view name) {
    if (observer_) {
        observer_(std::string(name), item(name));
    }
}

void MenuState::setCaption(std::string_view name, std::string caption) {
    MenuItemState& s = slot(name);
    if (s.caption != caption) {
        s.caption = std::move(caption);
        changed(name);
    }
}

void MenuState::setEnabled(std::string_view name, bool enabled) {
    MenuItemState& s = slot(name);
    if (s.enabled != enabled) {
        s.enabled = enabled;
        changed(name);
    }
}

void MenuState::setChecked(std::string_view name, bool checked) {
    MenuItemState& s = slot(name);
    if (s.checked != checked) {
        s.checked = checked;
        changed(name);
    }
}

void MenuState::setVisible(std::string_view name, bool visible) {
    MenuItemState& s = slot(name);
    if (s.visible != visible) {
        s.visible = visible;
        changed(name);
    }
}

void MenuState::setShortcut(std::string_view name, std::string shortcut) {
    MenuItemState& s = slot(name);
    if (s.shortcut != shortcut) {
        s.shortcut = std::move(shortcut);
        changed(name);
    }
}

const std::vector<std::string>& ArchiveCommandNames() {
    static const std::vector<std::string> names = {
        "FileReload",  "FileClose",        "EditAdd",         "EditExtract", "ComDel",
        "ComRename",   "ComReplace",       "ComMove",         "ComRebuild",  "EditView",
        "EditSelect",  "EditFind",         "EditSave",        "EditQuick",   "ComCheck",
        "EditLowCase", "EditInsertMarker", "ConvLFName",      "ShowMe",      "arcReport",
        "MenuLCase",   "EditFindIn",       "CmdGroupReplace", "edSel",       "ComConvert"};
    return names;
}

const std::vector<std::string>& SelectionCommandNames() {
    static const std::vector<std::string> names = {
        "EditView", "EditExtract", "EditQuick",       "ComDel",      "ComReplace", "ComRename",
        "ComMove",  "MenuLCase",   "EditLowCaseName", "EditLowCase", "ConvLFName"};
    return names;
}

} // namespace korvel
