#include "window/MainCommands.h"

#include "archive/Marker.h"
#include "archive/Names.h"
#include "platform/Folders.h"
#include "window/EntryCommands.h"
#include "window/LanguageMenu.h"
#include "window/ListColumns.h"
#include "window/MenuTree.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

namespace korvel {
namespace fs = std::filesystem;

std::string CommandLineFromArguments(const std::vector<std::string>& arguments) {
    std::string line;
    for (const std::string& argument : arguments) {
        if (!line.empty()) {
            line += ' ';
        }
        line += argument;
    }
    std::erase(line, '"');
    return line;
}

std::optional<int> ColourComponent(std::string_view value) {
    if (value.empty() ||
        !std::all_of(value.begin(), value.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        return std::nullopt;
    }
    int number = 0;
    for (char c : value) {
        number = std::min(255, number * 10 + (c - '0'));
    }
    return number;
}

MainCommands::MainCommands(Editor& editor, ListAppearance& list) : editor_(editor), list_(list) {
    SeedMenuState(editor_.menu());
}

void MainCommands::Startup(const std::string& commandLine) {
    std::string line = commandLine;
    std::erase(line, '"');
    EntryCommands::EnsureTempsFolder();
    // Rewritten at each start so the marker carries the current language;
    // a folder that cannot be written only costs the marker command.
    (void)WriteMarkerFile(editor_.text("markText"));
    editor_.settings().EnsureSettingsFile();
    AddListColumnHeaders();
    editor_.LoadRecentMenu();
    editor_.ResetToClosed();
    editor_.AddPlaceholderRow();
    if (line.size() >= 4 && ToLowerCp1252(line.substr(line.size() - 4)) == ".img") {
        editor_.OpenArchive(line);
    } else if (editor_.settings().ReadSetting("autoLoad") == "True") {
        editor_.menu().setChecked("OptAuto", true);
        editor_.OpenRecent(1);
    }
    ApplyStartupSettings();
    RelabelMainMenus(editor_.menu(), editor_.settings());
    BuildLanguageMenu(editor_.menu(), editor_.settings());
    if (editor_.table().size() == 1) {
        editor_.table().setSelected(0, false);
    }
    editor_.desktop().SetStatus(std::string(StartupStatus));
}

void MainCommands::ApplyStartupSettings() {
    Settings& settings = editor_.settings();
    MenuState& menu = editor_.menu();
    if (settings.ReadSetting("showGrid") == "True") {
        menu.setChecked("OptGrid", true);
        list_.SetGridLines(true);
    }
    if (settings.ReadSetting("sort") == "offset") {
        menu.setChecked("SortOffset", true);
        editor_.table().setOrder(EntryTable::Order::Index);
    } else {
        menu.setChecked("SortName", true);
        editor_.table().setOrder(EntryTable::Order::Name);
    }
    if (settings.ReadSetting("showColors") == "True") {
        menu.setChecked("OptCols", true);
        PaintRowStripes();
    }
    for (const auto& [key, item] :
         {std::pair{"deleteProm", "OptConDelete"}, std::pair{"addingScan", "AddingScan"},
          std::pair{"rebuildPrompt", "OptRebuildPrompt"}, std::pair{"previewPane", "OptPreview"}}) {
        if (BooleanWord(settings.ReadSetting(key)).value_or(false)) {
            menu.setChecked(item, true);
        }
    }
    if (settings.ReadSetting("firstRun") == "True") {
        const std::string message = text("frun1") + "\n" + text("frun2") + "\n" + text("frun3") +
                                    "\n\n" + text("frun4") + "\n" + text("frun5");
        if (editor_.desktop().AskYesNo(message, text("frun6"))) {
            // A missing readme opens nothing; the shell's answer is not looked at.
            editor_.desktop().OpenWithShell((ResourceFolder() / "readme - FAQ.html").string());
        }
        settings.WriteSetting("False", "firstRun");
    }
}

void MainCommands::Shutdown() {
    editor_.OfferRebuild();
    std::error_code ec;
    for (const auto& item : fs::directory_iterator(TempsFolder(), ec)) {
        std::error_code ignored;
        if (item.is_regular_file(ignored)) {
            fs::remove(item.path(), ignored);
        }
    }
}

void MainCommands::ToggleOption(std::string_view item) {
    const auto found =
        std::find_if(OptionSettings.begin(), OptionSettings.end(),
                     [&](const OptionSetting& option) { return option.item == item; });
    if (found == OptionSettings.end()) {
        return;
    }
    const bool checked = !editor_.menu().isChecked(item);
    editor_.menu().setChecked(item, checked);
    editor_.settings().WriteSetting(checked ? "True" : "False", found->settingKey);
}

void MainCommands::AddListColumnHeaders() {
    for (const ColumnSpec& column : ArchiveColumns) {
        list_.AddColumnHeader(text(column.textKey), column.widthTwips);
    }
}

void MainCommands::SwitchLanguage(int slot) {
    if (slot < 1 || slot > LanguageSlotCount) {
        return;
    }
    MenuState& menu = editor_.menu();
    const std::string slotName = LanguageSlotName(slot);
    editor_.settings().WriteSetting(menu.caption(slotName), "language");
    RelabelMainMenus(menu, editor_.settings());
    UncheckLanguageItems(menu);
    menu.setChecked(slotName, true);
    list_.ClearColumnHeaders();
    AddListColumnHeaders();
    // A closed archive stays closed: reloading would open the last one again.
    if (editor_.isOpen()) {
        editor_.ReloadArchive();
    }
    list_.LanguageChanged();
    editor_.desktop().SetStatus(editor_.settings().ReadSetting("language") + " " + text("sd5"));
}

void MainCommands::Sort(EntryTable::Order order) {
    const bool byName = order == EntryTable::Order::Name;
    editor_.menu().setChecked("SortName", byName);
    editor_.menu().setChecked("SortOffset", !byName);
    editor_.settings().WriteSetting(byName ? "name" : "offset", "sort");
    editor_.table().setOrder(order);
    // A closed archive stays closed: reloading would open the last one again.
    if (editor_.isOpen()) {
        editor_.ReloadArchive();
        editor_.FindHighestOffset();
    }
    editor_.desktop().SetStatus(text(byName ? "sort1" : "sort2"));
}

void MainCommands::SortByName() {
    Sort(EntryTable::Order::Name);
}
void MainCommands::SortByIndex() {
    Sort(EntryTable::Order::Index);
}

void MainCommands::ToggleGridLines() {
    const bool shown = !editor_.menu().isChecked("OptGrid");
    editor_.menu().setChecked("OptGrid", shown);
    editor_.settings().WriteSetting(shown ? "True" : "False", "showGrid");
    list_.SetGridLines(shown);
}

void MainCommands::ToggleRowStripes() {
    if (editor_.menu().isChecked("OptCols")) {
        editor_.menu().setChecked("OptCols", false);
        editor_.settings().WriteSetting("False", "showColors");
        // The stripes stay until the next start; the message says so.
        PaintRowStripes();
        editor_.desktop().ShowMessage(text("color1"), "Korvel", MessageIcon::Information);
    } else {
        editor_.menu().setChecked("OptCols", true);
        editor_.settings().WriteSetting("True", "showColors");
        PaintRowStripes();
    }
}

void MainCommands::PaintRowStripes() {
    const Settings& settings = editor_.settings();
    std::array<int, 6> values{};
    const std::array<std::string_view, 6> keys = {"l1r", "l1g", "l1b", "l2r", "l2g", "l2b"};
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const std::optional<int> value = ColourComponent(settings.ReadSetting(keys[i]));
        if (!value) {
            list_.SetRowStripes(std::nullopt);
            return;
        }
        values[i] = *value;
    }
    list_.SetRowStripes(
        std::pair{Rgb{values[0], values[1], values[2]}, Rgb{values[3], values[4], values[5]}});
}

void MainCommands::Resized() {
    if (editor_.menu().isChecked("OptCols")) {
        PaintRowStripes();
    }
}

void MainCommands::ClearSelection() {
    editor_.table().clearSelection();
}

void MainCommands::SelectAllEntries() {
    ClearSelection();
    editor_.table().selectAll();
    editor_.desktop().SetStatus(
        editor_.settings().LookupCountText("selected", editor_.table().selectedCount()));
}

void MainCommands::SelectByType(std::string_view item) {
    const auto type = std::find_if(TypeSelections.begin(), TypeSelections.end(),
                                   [&](const TypeSelection& t) { return t.item == item; });
    if (type == TypeSelections.end()) {
        return;
    }
    ClearSelection();
    EntryTable& table = editor_.table();
    std::vector<bool> chosen(table.size(), false);
    bool found = false;
    for (std::size_t row = 0; row < table.size(); ++row) {
        const std::string& name = table[row].name;
        chosen[row] = IsNameOfKind(type->kind, name);
        found = found || chosen[row];
    }
    table.setSelection(chosen);
    const std::string typeText = text(type->textKey);
    editor_.desktop().SetStatus(found ? text("select1") + " " + typeText + " " + text("select2")
                                      : text("select4") + " " + typeText + " " + text("select12") +
                                            " " + text("select5"));
}

} // namespace korvel
