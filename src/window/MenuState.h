// The state of the main window's menu items as the commands see it: caption,
// enabled, checked and visible, keyed by the item's name ("FileClose",
// "recent1", "lang3"). The engine owns it so that every rule about which item
// is enabled, checked or labelled how is tested without a window; the Qt
// window mirrors it into its actions through the observer.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

struct MenuItemState {
    std::string caption; // UTF-8
    bool enabled = true;
    bool checked = false;
    bool visible = true;
    std::string shortcut; // portable key text ("Ctrl+W"); empty for none
};

class MenuState {
public:
    using Observer = std::function<void(const std::string& name, const MenuItemState&)>;

    // Unknown names read as a default item (enabled, visible, no caption).
    const MenuItemState& item(std::string_view name) const;
    bool isChecked(std::string_view name) const { return item(name).checked; }
    bool isEnabled(std::string_view name) const { return item(name).enabled; }
    const std::string& caption(std::string_view name) const { return item(name).caption; }
    bool isVisible(std::string_view name) const { return item(name).visible; }
    const std::string& shortcut(std::string_view name) const { return item(name).shortcut; }

    void setCaption(std::string_view name, std::string caption);
    void setEnabled(std::string_view name, bool enabled);
    void setChecked(std::string_view name, bool checked);
    void setVisible(std::string_view name, bool visible);
    void setShortcut(std::string_view name, std::string shortcut);

    void setObserver(Observer observer) { observer_ = std::move(observer); }

private:
    MenuItemState& slot(std::string_view name);
    void changed(std::string_view name);

    std::map<std::string, MenuItemState, std::less<>> items_;
    Observer observer_;
};

// The 24 archive commands that are enabled only while an archive is open.
const std::vector<std::string>& ArchiveCommandNames();

// The archive commands that act on the selected entries: enabled only while
// at least one entry is selected, so that a menu item or key never does
// nothing without a word.
const std::vector<std::string>& SelectionCommandNames();

} // namespace korvel
