#include "window/EntryCommands.h"
#include "window/LongWork.h"

#include "settings/FailureTexts.h"

#include "archive/EntryFiles.h"
#include "archive/Marker.h"

#include "platform/Blanks.h"
#include "platform/Cp1252.h"
#include "platform/FileSystem.h"
#include "platform/Folders.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <system_error>

namespace korvel {
namespace fs = std::filesystem;
namespace {

// An entry whose record reaches past the end of the data file was written
// with the bytes that exist; the person hears which and how much is missing.
void ShowMissingBytes(Editor& editor, std::size_t row, const ExtractResult& result) {
    if (result.missingBytes > 0) {
        editor.desktop().ShowMessage(
            editor.settings().LookupFilled("missingBytes", {Cp1252ToUtf8(editor.table()[row].name),
                                                            std::to_string(result.missingBytes)}),
            editor.text("errorTitle"), MessageIcon::Exclamation);
    }
}

} // namespace

EntryCommands::EntryCommands(Editor& editor, EntryDialogs& dialogs)
    : editor_(editor), dialogs_(dialogs) {
    editor_.setRebuildCommand([this] { RebuildAsking(); });
}

EntryCommands::~EntryCommands() {
    editor_.setRebuildCommand({});
}

std::vector<std::size_t> EntryCommands::SelectedRows() const {
    std::vector<std::size_t> rows;
    const EntryTable& table = editor_.table();
    for (std::size_t row = 0; row < table.size(); ++row) {
        if (table[row].selected) {
            rows.push_back(row);
        }
    }
    return rows;
}

void EntryCommands::ShowError(const std::string& error, const std::string& concerning) {
    editor_.desktop().ShowMessage(FileFailureText(editor_.settings(), error, concerning),
                                  editor_.text("errorTitle"), MessageIcon::Exclamation);
}

void EntryCommands::ShowError(const Status& failed, const std::string& concerning) {
    ShowError(StatusText(editor_.settings(), failed), concerning);
}

// The folder part of a chosen path, up to and including its last separator,
// as `lastAdd` remembers it.
std::string EntryCommands::FolderWithSeparator(const std::string& path) {
    const auto slash = path.find_last_of("/\\");
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// --- extracting and viewing --------------------------------------------------

std::size_t EntryCommands::ExtractSelectedAskingFolder() {
    return ExtractSelected(ExtractMode::Ask);
}

std::size_t EntryCommands::ExtractSelectedToLastFolder() {
    return ExtractSelected(ExtractMode::Quick);
}

std::size_t EntryCommands::ExtractSelected(ExtractMode firstMode) {
    EntryTable& table = editor_.table();
    Desktop& desktop = editor_.desktop();
    const std::vector<std::size_t> rows = SelectedRows();
    if (rows.empty()) {
        desktop.SetStatus(editor_.text("noneSel"));
        return 0;
    }
    std::size_t written = 0;
    std::size_t failed = 0;
    OverwriteAsking asking;
    // Looked up once: every lookup reads the language file's identity.
    const std::string extracting = editor_.text("extract1") + " ";
    const std::string of = " " + editor_.text("adding2") + " " + std::to_string(rows.size());
    // Shown once the folder is known, so not behind the folder dialog.
    std::optional<LongWork> work;
    for (std::size_t k = 0; k < rows.size() && !asking.stopped; ++k) {
        if (k == 1) {
            work.emplace(desktop, rows.size());
        }
        if (work && (work->step(k), work->cancelled())) {
            // The rows not yet extracted stay selected, so that extracting
            // again goes on from here.
            desktop.SetStatus(editor_.settings().LookupFilled(
                "extractCancelled", {std::to_string(written), std::to_string(rows.size())}));
            return failed;
        }
        desktop.SetStatus(extracting + std::to_string(k + 1) + of);
        const std::size_t skippedBefore = asking.skipped;
        // The folder is asked for once; later rows follow it through lastExtract.
        if (ExtractEntry(rows[k], k == 0 ? firstMode : ExtractMode::Quick, asking)) {
            ++written;
        } else if (asking.skipped == skippedBefore && !asking.stopped) {
            ++failed;
            const bool noFolder = firstMode == ExtractMode::Ask
                                      ? TrimBlanks(pickedFolder_).empty()
                                      : editor_.settings().ReadSetting("lastExtract") == NoPath;
            if (k == 0 && noFolder) {
                // No folder chosen: the rest must not go to the last one used,
                // nor each bring the same message again.
                return rows.size();
            }
        }
        table.setSelected(rows[k], false);
    }
    table.setSelected(rows.back(), true);
    if (failed != 0) {
        // The last entry's "complete" must not stand for the ones that failed.
        desktop.SetStatus(editor_.text("extract5") + ": " + std::to_string(written) + " " +
                          editor_.text("extracted") + ", " + std::to_string(failed) + " " +
                          editor_.text("addFailed"));
    } else if (asking.skipped != 0 || asking.stopped) {
        desktop.SetStatus(std::to_string(written) + " " + editor_.text("ovw3") + ", " +
                          std::to_string(rows.size() - written) + " " + editor_.text("filesSkip"));
    }
    return failed;
}

bool EntryCommands::ExtractEntry(std::size_t row, ExtractMode mode) {
    OverwriteAsking asking;
    return ExtractEntry(row, mode, asking);
}

OverwriteChoice EntryCommands::AskOverwrite(const fs::path& existing, OverwriteAsking& asking) {
    if (asking.all) {
        return OverwriteChoice::Overwrite;
    }
    const std::string question =
        editor_.text("ovw1") + "\n" + existing.string() + "\n" + editor_.text("ovw2");
    switch (editor_.desktop().AskOverwrite(question, editor_.text("ovw0"))) {
    case OverwriteAnswer::YesToAll:
        asking.all = true;
        return OverwriteChoice::Overwrite;
    case OverwriteAnswer::Yes:
        return OverwriteChoice::Overwrite;
    case OverwriteAnswer::No:
        ++asking.skipped;
        return OverwriteChoice::Skip;
    case OverwriteAnswer::Cancel:
        break;
    }
    asking.stopped = true;
    return OverwriteChoice::Stop;
}

bool EntryCommands::ExtractEntry(std::size_t row, ExtractMode mode, OverwriteAsking& asking) {
    Desktop& desktop = editor_.desktop();
    if (row >= editor_.table().size()) {
        return false;
    }
    std::string folder;
    if (mode == ExtractMode::Quick) {
        folder = editor_.settings().ReadSetting("lastExtract");
        if (folder == NoPath) {
            desktop.ShowMessage(editor_.text("extract3") + "\r\n" + editor_.text("extract4"),
                                editor_.settings().LookupPlainText("menuc3"),
                                MessageIcon::Information);
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
    const ExtractResult result =
        ExtractEntryTo(editor_.archive(), row, folder,
                       [&](const fs::path& existing) { return AskOverwrite(existing, asking); });
    if (result.skipped) {
        // The folder was chosen all the same: the entries after this one go
        // there too, not to the one extracted into last time.
        if (mode == ExtractMode::Ask) {
            editor_.settings().WriteSetting(pickedFolder_, "lastExtract");
        }
        return false;
    }
    if (!result.target || result.refused) {
        desktop.ShowMessage(StatusText(editor_.settings(), result.status),
                            editor_.text("errorTitle"), MessageIcon::Exclamation);
        return false;
    }
    if (!result.status.ok()) {
        ShowError(result.status, result.target->string());
        return false;
    }
    ShowMissingBytes(editor_, row, result);
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
    for (std::size_t row : SelectedRows()) {
        const std::string& name = editor_.table()[row].name;
        if (!IsViewableName(name)) {
            // The desktop would run a script or a program rather than show it.
            editor_.desktop().ShowMessage(
                editor_.settings().LookupFilled("notViewable", {ShownName(name)}), "",
                MessageIcon::Information);
            continue;
        }
        const ExtractResult copy = ExtractEntryTo(editor_.archive(), row, TempsFolder());
        if (!copy.target || copy.refused) {
            editor_.desktop().ShowMessage(StatusText(editor_.settings(), copy.status),
                                          editor_.text("errorTitle"), MessageIcon::Exclamation);
            continue;
        }
        // Viewing stops quietly at the first copy that cannot be made.
        if (!copy.status.ok()) {
            return;
        }
        ShowMissingBytes(editor_, row, copy);
        if (!editor_.desktop().OpenWithShell(copy.target->string())) {
            // Nothing on this desktop opens the type (no Linux desktop opens
            // ".txd"): say so and offer to put the entry in a folder instead.
            if (editor_.desktop().AskYesNo(editor_.text("openFail") + "\n" + ShownName(name) +
                                               "\n\n" + editor_.text("viewExtract"),
                                           "")) {
                (void)ExtractEntry(row, ExtractMode::Ask);
            }
        }
    }
}

// --- deleting and moving -------------------------------------------------------

void EntryCommands::ShowDeleteProgress(std::size_t count) {
    Desktop& desktop = editor_.desktop();
    // The progress bar is worth showing only for larger deletions.
    const bool showProgress = count > 10;
    if (showProgress) {
        desktop.ShowProgress(static_cast<int>(count));
    }
    for (std::size_t deleted = 1; deleted <= count; ++deleted) {
        desktop.SetStatus("Deleted " + std::to_string(deleted));
        if (showProgress) {
            desktop.SetProgress(static_cast<int>(deleted));
        }
    }
    desktop.HideProgress();
}

void EntryCommands::DeleteSelectedAsking() {
    const std::vector<std::size_t> rows = SelectedRows();
    if (rows.empty()) {
        return;
    }
    if (BooleanWord(editor_.settings().ReadSetting("deleteProm")).value_or(false)) {
        const std::string question = editor_.settings().LookupCountText("deleteAsk", rows.size());
        if (!editor_.desktop().AskDestructive(question, editor_.text("del3"))) {
            return;
        }
    }
    ShowDeleteProgress(rows.size());
    if (const Status deleted = DeleteRows(editor_.archive(), rows); !deleted.ok()) {
        // The count shown while working must not stand: nothing was deleted.
        editor_.desktop().SetStatus("Deleted 0");
        ShowError(deleted);
        return;
    }
    editor_.MarkArchiveChanged();
    editor_.desktop().SetStatus(editor_.text("del4"));
    editor_.ShowEntryCount();
}

void EntryCommands::MoveSelectedToEnd() {
    EntryTable& table = editor_.table();
    Desktop& desktop = editor_.desktop();
    const std::vector<std::size_t> rows = SelectedRows();
    if (rows.empty()) {
        desktop.SetStatus(editor_.text("noneSel"));
        return;
    }
    if (rows.front() + 1 == table.size()) {
        // Only the last row is selected: it is at the end already.
        desktop.ShowMessage(editor_.text("move1") + "\r\nDe dum de de, de diddle dum.",
                            editor_.text("move2"), MessageIcon::Information);
        table.setSelected(table.size() - 1, true);
        return;
    }
    std::vector<EntryRef> moving;
    moving.reserve(rows.size());
    for (std::size_t row : rows) {
        moving.push_back(table.refOf(row));
    }
    ShowDeleteProgress(rows.size());
    if (const Status moved = MoveRowsToEnd(editor_.archive(), rows); !moved.ok()) {
        ShowError(moved);
        return;
    }
    editor_.MarkArchiveChanged();
    desktop.SetStatus(editor_.text("del4"));
    editor_.ShowEntryCount();
    // The moved entries stay selected, and nothing else: the next command
    // (a Delete, say) must hit what the person moved, not the row that slid
    // into its place.
    std::vector<bool> selected(table.size(), false);
    for (const EntryRef& entry : moving) {
        if (const auto row = table.rowOf(entry)) {
            selected[*row] = true;
        }
    }
    table.setSelection(selected);
    desktop.SetStatus(editor_.settings().LookupCountText("moved", rows.size()));
}

// --- rebuilding ----------------------------------------------------------------

void EntryCommands::RebuildAsking() {
    const std::string question = editor_.text("rebuild1") + "\r\n" + editor_.text("rebuild2");
    if (editor_.desktop().AskDestructive(question,
                                         editor_.settings().LookupPlainText("menuc9") + "?")) {
        Rebuild();
    }
}

bool EntryCommands::Rebuild() {
    if (!editor_.isOpen()) {
        return false;
    }
    Desktop& desktop = editor_.desktop();
    const std::string dataPath = editor_.dataPath();
    // Looked up once: every lookup reads the language file's identity.
    const std::string copying = editor_.text("rebuild3") + " ";
    const std::string of =
        " " + editor_.text("adding2") + " " + std::to_string(editor_.table().size());
    RebuildResult result;
    {
        LongWork work(desktop, editor_.table().size());
        result = RebuildArchive(editor_.archive(),
                                work.copyProgress(copying, of, editor_.text("rebuild4")));
    }
    if (result.stopped) {
        desktop.SetStatus(editor_.text("rebuildCancelled"));
        return false;
    }
    if (!result.status.ok()) {
        ShowError(result.status);
    }
    if (!result.cut.empty()) {
        std::string cut;
        for (const Status& line : result.cut) {
            cut += StatusText(editor_.settings(), line) + ".\r\n";
        }
        desktop.ShowMessage(cut + editor_.text("rebuildCut"), editor_.text("errorTitle"),
                            MessageIcon::Exclamation);
    }
    if (!result.reopen) {
        return false;
    }
    // Opening completes a journalled rebuild that stopped above.
    const bool open = editor_.OpenArchive(dataPath);
    editor_.FindHighestOffset();
    if (!result.status.ok() || !open) {
        return false;
    }
    editor_.MarkArchiveRebuilt();
    desktop.SetStatus(editor_.text("rebuild5"));
    return true;
}

// --- the marker ----------------------------------------------------------------

bool EntryCommands::InsertMarker() {
    if (!editor_.isOpen()) {
        return false;
    }
    const MarkerResult result = korvel::InsertMarker(editor_.archive(), editor_.text("markText"));
    switch (result.failed) {
    case MarkerResult::Failed::MarkerFile:
        ShowError(result.status);
        return false;
    case MarkerResult::Failed::Data:
        ReportAddFailure(StatusText(editor_.settings(), result.status), std::string(MarkerName));
        if (!result.directoryAfterFailure.ok()) {
            ShowError(result.directoryAfterFailure);
        }
        return false;
    case MarkerResult::Failed::Directory:
    case MarkerResult::Failed::Nothing:
        break;
    }
    editor_.ShowEntryCount();
    editor_.desktop().SetStatus(editor_.text("markerIn"));
    if (!result.status.ok()) {
        ShowError(result.status);
        return false;
    }
    return true;
}

} // namespace korvel
