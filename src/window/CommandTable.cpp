#include "window/CommandTable.h"

#include "window/ConvertCommand.h"
#include "window/DesktopCommands.h"
#include "window/Editor.h"
#include "window/EntryCommands.h"
#include "window/MainCommands.h"
#include "window/MenuTree.h"
#include "window/QuickReplaceCommand.h"
#include "window/ReportCommands.h"

namespace korvel {

std::vector<MenuCommand> BuildCommandTable(const CommandTargets& targets) {
    Editor& editor = targets.editor;
    MainCommands& main = targets.main;
    EntryCommands& entries = targets.entries;
    QuickReplace& quickReplace = targets.quickReplace;
    WindowOnlyCommands& window = targets.window;

    std::vector<MenuCommand> table = {
        // File
        {"FileNew", [&editor] { editor.NewArchiveAskingPath(); }},
        {"FileOpen", [&editor] { editor.OpenArchiveAskingPath(); }},
        {"FileClose", [&editor] { editor.CloseArchive(); }},
        {"FileReload", [&editor] { editor.ReloadArchive(); }},
        {"FileExit", [&window] { window.CloseMainWindow(); }},
        // Edit
        {"EditView", [&entries] { entries.ViewSelectedEntries(); }},
        {"EditCopyFiles", [&window] { window.CopySelectedAsFiles(); }},
        {"EditSelect", [&main] { main.SelectAllEntries(); }},
        {"EditFind", [&window] { window.OpenFindWindow(); }},
        {"EditFindIn", [&window] { window.OpenFindInFilesWindow(); }},
        {"EditInsertMarker", [&entries] { (void)entries.InsertMarker(); }},
        {"EditLowCaseName", [&entries] { entries.LowerCaseSelected(NameCase::BeforeExtension); }},
        {"EditLowCase", [&entries] { entries.LowerCaseSelected(NameCase::Extension); }},
        {"ConvLFName", [&entries] { entries.LowerCaseSelected(NameCase::Whole); }},
        {"ComCheck", [&editor] { CheckArchiveAsking(editor); }},
        {"EditSave", [&editor] { SaveTextReportAskingPath(editor); }},
        {"EditSaveHtml", [&editor] { SaveHtmlReportAskingPath(editor); }},
        // Commands
        {"EditAdd", [&entries] { entries.AddFilesAskingPaths(); }},
        {"EditExtract", [&entries] { entries.ExtractSelectedAskingFolder(); }},
        {"EditQuick", [&entries] { entries.ExtractSelectedToLastFolder(); }},
        {"ComDel", [&entries] { entries.DeleteSelectedAsking(); }},
        {"ComReplace", [&entries] { entries.ReplaceSelectedAskingFiles(); }},
        {"CmdGroupReplace", [&quickReplace] { quickReplace.QuickReplaceSelected(); }},
        {"ComRename", [&entries] { entries.RenameSelectedWithDialog(); }},
        {"ComMove", [&entries] { entries.MoveSelectedToEnd(); }},
        {"ComRebuild", [&entries] { entries.RebuildAsking(); }},
        {"ComConvert", [&editor] { ConvertArchiveAsking(editor); }},
        // Options
        {"SortOffset", [&main] { main.SortByIndex(); }},
        {"SortName", [&main] { main.SortByName(); }},
        {"OptGrid", [&main] { main.ToggleGridLines(); }},
        {"OptCols", [&main] { main.ToggleRowStripes(); }},
        {"OptsPick", [&window] { window.OpenLineColoursDialog(); }},
        {"AddingScan", [&entries] { entries.ToggleAddingScan(); }},
        {"ScanSettings", [&window] { window.OpenScanOptionsDialog(); }},
        {"OptAss", [&editor] { AssociateWithImgFiles(editor); }},
        {"OptStdKeys", [&editor] { ToggleStandardShortcuts(editor.menu(), editor.settings()); }},
        // Help
        {"HelpAbout", [&window] { window.ShowAboutBox(); }},
    };
    for (int slot = 1; slot <= 3; ++slot) {
        table.push_back(
            {"recent" + std::to_string(slot), [&editor, slot] { editor.OpenRecent(slot); }});
    }
    for (const TypeSelection& selection : TypeSelections) {
        const std::string_view item = selection.item;
        table.push_back({std::string(item), [&main, item] { main.SelectByType(item); }});
    }
    for (const ShowMeFamily& family : ShowMeFamilies) {
        const std::string_view item = family.item;
        table.push_back({std::string(item), [&editor, &window, item] {
                             if (auto list = BuildShowMeList(editor, item)) {
                                 window.ShowEntryList(std::move(*list));
                             }
                         }});
    }
    for (const OptionSetting& option : OptionSettings) {
        const std::string_view item = option.item;
        table.push_back({std::string(item), [&main, item] { main.ToggleOption(item); }});
    }
    for (int slot = 1; slot <= LanguageSlotCount; ++slot) {
        table.push_back({LanguageSlotName(slot), [&main, slot] { main.SwitchLanguage(slot); }});
    }
    for (const std::string_view item : {"HelpHome", "HelpCheckWeb", "HelpHelp"}) {
        table.push_back({std::string(item), [&editor, item] { RunHelpCommand(editor, item); }});
    }
    return table;
}

std::vector<std::string> CommandItemNames() {
    std::vector<std::string> names;
    for (const MenuNode& menu : MainMenuTree()) {
        ForEachMenuNode(menu.children, [&](const MenuNode& node) {
            if (!node.isSeparator() && !node.isSubMenu()) {
                names.push_back(node.name);
            }
        });
    }
    return names;
}

} // namespace korvel
