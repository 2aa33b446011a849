// The main window's own commands, without the window: start-up and shutdown,
// the simple options, list order, grid lines and row stripes, the selection
// commands and switching language. The window turns gestures into these
// calls and shows the list as the ListAppearance calls tell it.
#pragma once

#include "archive/Names.h"
#include "window/Editor.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvel {

// What the commands ask of the list's looks; the Qt window implements it.
class ListAppearance {
public:
    virtual ~ListAppearance() = default;
    virtual void ClearColumnHeaders() = 0;
    virtual void AddColumnHeader(const std::string& text, int widthTwips) = 0;
    virtual void SetGridLines(bool shown) = 0;
    // Rows in colour 1 and colour 2 in turn, colour 1 at the top; nothing
    // removes the stripes.
    virtual void SetRowStripes(std::optional<std::pair<Rgb, Rgb>> colours) = 0;
    // The interface language changed and the menus are relabelled: whatever
    // else shows texts (open windows, the toolkit's own) follows.
    virtual void LanguageChanged() {}
};

// The "Select all" items for one kind of entry: the item, the kind it
// selects and the key of the kind's name in the status text.
struct TypeSelection {
    std::string_view item;
    EntryKind kind;
    std::string_view textKey;
};

inline constexpr std::array<TypeSelection, 5> TypeSelections = {{
    {"SelectModels", EntryKind::Model, "select7"},
    {"SelectTextures", EntryKind::Texture, "select8"},
    {"SelectAni", EntryKind::Animation, "select10"},
    {"SelectCols", EntryKind::Collision, "select9"},
    {"SelectAllOther", EntryKind::Other, "select6"},
}};

// The check items of the Options menu that only flip their korvel.ini key.
struct OptionSetting {
    std::string_view item;
    std::string_view settingKey;
};

inline constexpr std::array<OptionSetting, 4> OptionSettings = {{
    {"OptAuto", "autoLoad"},
    {"OptConDelete", "deleteProm"},
    {"OptRebuildPrompt", "rebuildPrompt"},
    {"OptPreview", "previewPane"},
}};

// The text the window is started with: the arguments joined by blanks,
// every double quote removed.
std::string CommandLineFromArguments(const std::vector<std::string>& arguments);

// A colour value as the stripes take it: a whole number, above 255 counting
// as 255; nothing for anything else (negative, fractional, not a number).
std::optional<int> ColourComponent(std::string_view value);

class MainCommands {
public:
    MainCommands(Editor& editor, ListAppearance& list);

    void Startup(const std::string& commandLine);
    void ApplyStartupSettings();
    // Offers the rebuild when the archive changed, then empties the temps
    // folder. Errors are ignored: the editor is going away.
    void Shutdown();

    // One of OptionSettings' items: flips its check and its setting.
    void ToggleOption(std::string_view item);

    void AddListColumnHeaders();
    // Slot 1..7 of the Language menu.
    void SwitchLanguage(int slot);

    void SortByName();
    void SortByIndex();
    void ToggleGridLines();
    void ToggleRowStripes();
    void PaintRowStripes();
    void Resized();

    void ClearSelection();
    void SelectAllEntries();
    // One of TypeSelections' items.
    void SelectByType(std::string_view item);

private:
    std::string text(std::string_view key) const { return editor_.text(key); }
    void Sort(EntryTable::Order order);

    Editor& editor_;
    ListAppearance& list_;
};

} // namespace korvel
