// The one table that binds every item of the main menu to what it does. The
// window connects its actions from this table and nowhere else, so an item
// without a command, or a command for an item that does not exist, is caught
// by a test instead of doing nothing when clicked.
#pragma once

#include "window/ShowMe.h"

#include <functional>
#include <string>
#include <vector>

namespace korvel {

class Editor;
class EntryCommands;
class MainCommands;
class QuickReplace;

// What only the Qt window can do; the window implements it.
class WindowOnlyCommands {
public:
    virtual ~WindowOnlyCommands() = default;
    virtual void CloseMainWindow() = 0;
    virtual void ShowAboutBox() = 0;
    // The find windows and the line-colours dialog are single instances:
    // opening one again brings it forward.
    virtual void OpenFindWindow() = 0;
    virtual void OpenFindInFilesWindow() = 0;
    virtual void OpenLineColoursDialog() = 0;
    virtual void OpenScanOptionsDialog() = 0;
    virtual void ShowEntryList(ShowMeList list) = 0;
    // Puts the selected entries on the clipboard as files.
    virtual void CopySelectedAsFiles() = 0;
};

struct MenuCommand {
    std::string item; // the menu item's name
    std::function<void()> run;
};

// The objects the commands act on; they must outlive the table.
struct CommandTargets {
    Editor& editor;
    MainCommands& main;
    EntryCommands& entries;
    QuickReplace& quickReplace;
    WindowOnlyCommands& window;
};

std::vector<MenuCommand> BuildCommandTable(const CommandTargets& targets);

// The names of the menu tree's items that run a command: every node that is
// neither a separator nor a menu of its own, in menu order.
std::vector<std::string> CommandItemNames();

} // namespace korvel
