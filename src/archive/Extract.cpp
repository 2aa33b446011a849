// Extracting entries to a folder and viewing them through the temps folder.
#include "archive/EntryCommands.h"
#include "archive/EntryFiles.h"

#include "platform/Blanks.h"
#include "platform/FileCopy.h"
#include "platform/Folders.h"

#include <system_error>

namespace korvel {
namespace fs = std::filesystem;
EntryCommands::EntryCommands(Editor& editor, EntryDialogs& dialogs)
    : editor_(editor), dialogs_(dialogs) {
    editor_.setRebuildCommand([this] { RebuildAsking(); });
}

EntryCommands::~EntryCommands() {
    editor_.setRebuildCommand({});
}

std::size_t EntryCommands::ExtractSelectedAskingFolder() {
    return ExtractSelected(ExtractMode::Ask);
}

std::size_t EntryCommands::ExtractSelectedToLastFolder() {
    return ExtractSelected(ExtractMode::Quick);
}

std::size_t EntryCommands::ExtractSelected(ExtractMode firstMode) {
    EntryTable& table = editor_.table();
    Desktop& desktop = editor_.desktop();
    const std::size_t n = table.selectedCount();
    if (n == 0) {
        desktop.SetStatus(editor_.text("noneSel"));
        return 0;
    }
    std::size_t k = 0;
    std::size_t failed = 0;
    std::size_t last = 0;
    // Looked up once: every lookup reads the language file's identity.
    const std::string extracting = editor_.text("extract1") + " ";
    const std::string of = " " + editor_.text("adding2") + " " + std::to_string(n);
    for (std::size_t row = 0; row < table.size(); ++row) {
        if (!table[row].selected) {
            continue;
        }
        ++k;
        last = row;
        desktop.SetStatus(extracting + std::to_string(k) + of);
        // The folder is asked for once; later rows follow it through lastExtract.
        const ExtractMode mode = k == 1 ? firstMode : ExtractMode::Quick;
        if (!ExtractEntry(row, mode)) {
            ++failed;
        }
        table.setSelected(row, false);
    }
    table.setSelected(last, true);
    return failed;
}

bool EntryCommands::ExtractEntry(std::size_t row, ExtractMode mode) {
    EntryTable& table = editor_.table();
    Desktop& desktop = editor_.desktop();
    if (table.empty() || row >= table.size()) {
        return false;
    }
    const Entry entry = table[row];
    std::string folder;
    if (mode == ExtractMode::Quick) {
        folder = editor_.settings().ReadSetting("lastExtract");
        if (folder == NoPath) {
            desktop.ShowMessage(editor_.text("extract3") + "\r\n" + editor_.text("extract4"),
                                editor_.text("menuc3"), MessageIcon::Information);
            desktop.SetStatus(editor_.text("extract2"));
            return false;
        }
    } else {
        ChooseFolder();
        if (TrimBlanks(pickedFolder_).empty()) {
            desktop.SetStatus(editor_.text("extract2"));
            return false;
        }
        folder = pickedFolder_;
    }
    const auto target = EntryFileIn(folder, entry.name);
    if (!target) {
        desktop.ShowMessage(UnsafeNameProblem(entry.name), "Error", MessageIcon::Exclamation);
        return false;
    }
    if (const Status copied = CopyEntryToFile(editor_.archive(), entry, *target); !copied.ok()) {
        desktop.ShowMessage(editor_.text("ohCrap1") + " " + copied.error() + "\r\n" +
                                target->string(),
                            "Error", MessageIcon::Exclamation);
        return false;
    }
    if (mode == ExtractMode::Ask) {
        editor_.settings().WriteSetting(pickedFolder_, "lastExtract");
    }
    desktop.SetStatus(editor_.text("extract5"));
    return true;
}

std::string EntryCommands::ChooseFolder() {
    const auto chosen = editor_.desktop().ChooseFolderDialog(editor_.text("pickFolder"));
    pickedFolder_ = chosen.value_or("");
    // A folder path stops at its first NUL, as the system dialog hands it over.
    if (const auto nul = pickedFolder_.find('\0'); nul != std::string::npos) {
        pickedFolder_.resize(nul);
    }
    return pickedFolder_;
}

void EntryCommands::EnsureTempsFolder() {
    std::error_code ec;
    fs::create_directories(TempsFolder(), ec);
}

void EntryCommands::ViewSelectedEntries() {
    EnsureTempsFolder();
    EntryTable& table = editor_.table();
    Desktop& desktop = editor_.desktop();
    for (std::size_t row = 0; row < table.size(); ++row) {
        const Entry& entry = table[row];
        if (!entry.selected) {
            continue;
        }
        const auto copy = EntryFileIn(TempsFolder(), entry.name);
        if (!copy) {
            desktop.ShowMessage(UnsafeNameProblem(entry.name), "Error", MessageIcon::Exclamation);
            continue;
        }
        // Viewing stops quietly at the first copy that cannot be made.
        if (!CopyEntryToFile(editor_.archive(), entry, *copy).ok()) {
            return;
        }
        desktop.OpenWithShell(copy->string());
    }
}

} // namespace korvel
