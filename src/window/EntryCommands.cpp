#include "window/EntryCommands.h"

#include "settings/FailureTexts.h"

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

// The folder part of a chosen path, up to and including its last separator.
std::string FolderWithSeparator(const std::string& path) {
    const auto slash = path.find_last_of("/\\");
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// A rename still stands when the name holds one of these; the status line
// only answers back. Compared with letter case, as typed.
constexpr std::array<std::string_view, 10> RudeWords = {
    "fuck", "shit", "cunt", "bitch", "bastard", "wank", "twat", "arsehole", "bollocks", "piss"};

bool IsRude(std::string_view name) {
    return std::any_of(RudeWords.begin(), RudeWords.end(),
                       [&](std::string_view word) { return name.find(word) != name.npos; });
}

} // namespace

long NumberSetting(const std::string& value) {
    long number = 0;
    for (char c : value) {
        if (c < '0' || c > '9') {
            break;
        }
        number = number * 10 + (c - '0');
        if (number > 1000000) {
            break;
        }
    }
    return number;
}

DuplicateAnswer StoredDuplicateAnswer(const Settings& settings) {
    return DuplicateAnswerFromWord(settings.ReadSetting("addingOpt"));
}

void RecordDuplicateAnswer(Settings& settings, const DuplicateDialogAnswer& answer) {
    if ((NumberSetting(settings.ReadSetting("scanPrompt")) == 1) != answer.dontPrompt) {
        settings.WriteSetting(answer.dontPrompt ? "1" : "0", "scanPrompt");
    }
    if (answer.action) {
        settings.WriteSetting(std::string(DuplicateAnswerWord(*answer.action)), "addingOpt");
    }
}

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
    editor_.desktop().ShowMessage(FileFailureText(editor_.settings(), error, concerning), "Error",
                                  MessageIcon::Exclamation);
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
    std::size_t failed = 0;
    // Looked up once: every lookup reads the language file's identity.
    const std::string extracting = editor_.text("extract1") + " ";
    const std::string of = " " + editor_.text("adding2") + " " + std::to_string(rows.size());
    for (std::size_t k = 0; k < rows.size(); ++k) {
        desktop.SetStatus(extracting + std::to_string(k + 1) + of);
        // The folder is asked for once; later rows follow it through lastExtract.
        if (!ExtractEntry(rows[k], k == 0 ? firstMode : ExtractMode::Quick)) {
            ++failed;
        }
        table.setSelected(rows[k], false);
    }
    table.setSelected(rows.back(), true);
    return failed;
}

bool EntryCommands::ExtractEntry(std::size_t row, ExtractMode mode) {
    Desktop& desktop = editor_.desktop();
    if (row >= editor_.table().size()) {
        return false;
    }
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
    const ExtractResult result = ExtractEntryTo(editor_.archive(), row, folder);
    if (!result.target) {
        desktop.ShowMessage(result.status.error(), "Error", MessageIcon::Exclamation);
        return false;
    }
    if (!result.status.ok()) {
        ShowError(result.status.error(), result.target->string());
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
    for (std::size_t row : SelectedRows()) {
        const ExtractResult copy = ExtractEntryTo(editor_.archive(), row, TempsFolder());
        if (!copy.target) {
            editor_.desktop().ShowMessage(copy.status.error(), "Error", MessageIcon::Exclamation);
            continue;
        }
        // Viewing stops quietly at the first copy that cannot be made.
        if (!copy.status.ok()) {
            return;
        }
        editor_.desktop().OpenWithShell(copy.target->string());
    }
}

// --- replacing -----------------------------------------------------------------

ReplaceResult EntryCommands::ReplaceRow(std::size_t row, const std::string& path) {
    ReplaceResult result = ReplaceEntry(editor_.archive(), row, path);
    if (result.directoryNotWritten) {
        ShowError(result.status.error());
    } else if (result.status.ok()) {
        editor_.desktop().SetStatus(Cp1252ToUtf8(editor_.table()[row].name) + " " +
                                    editor_.text("rep5"));
    }
    return result;
}

bool EntryCommands::ReplaceWithDialog(std::size_t row) {
    Desktop& desktop = editor_.desktop();
    const std::string lastAdd = editor_.settings().ReadSetting("lastAdd");
    const std::string name = Cp1252ToUtf8(editor_.table()[row].name);
    FileDialogRequest request;
    request.title = editor_.text("rep1");
    request.filter = editor_.text("cdFiles2");
    request.startFolder = lastAdd == NoPath ? std::string() : lastAdd;
    request.presetName = name;
    const FileDialogAnswer answer = desktop.OpenFileDialog(request);
    if (answer.outcome == FileDialogAnswer::Outcome::Cancelled) {
        desktop.SetStatus(editor_.text("rep3"));
        return false;
    }
    if (!answer.chosen() || answer.paths.front().empty()) {
        return false;
    }
    const std::string& path = answer.paths.front();
    if (!FileExists(path)) {
        desktop.ShowMessage(editor_.text("rep2") + " " + path, editor_.text("invalidFL"),
                            MessageIcon::Information);
        return false;
    }
    desktop.SetStatus(editor_.text("rep4") + " " + name);
    const ReplaceResult result = ReplaceRow(row, path);
    if (!result.status.ok()) {
        if (!result.directoryNotWritten) {
            ShowError(result.status.error());
        }
        return false;
    }
    editor_.settings().WriteSetting(FolderWithSeparator(path), "lastAdd");
    return true;
}

void EntryCommands::ReplaceSelectedAskingFiles() {
    EntryTable& table = editor_.table();
    for (std::size_t row = 0; row < table.size(); ++row) {
        if (table[row].selected && !ReplaceWithDialog(row)) {
            return;
        }
    }
}

void EntryCommands::ReplaceEntryWithDialog(std::size_t row) {
    if (row < editor_.table().size()) {
        ReplaceWithDialog(row);
    }
}

// --- adding --------------------------------------------------------------------

void EntryCommands::ReportAddFailure(const std::string& description, const std::string& name) {
    editor_.desktop().ShowMessage(AddFailureText(editor_.settings(), description, name), "Error",
                                  MessageIcon::Exclamation);
}

DecideDuplicate EntryCommands::DuplicateDecider() {
    return [this](const std::string& name, std::size_t row) {
        Settings& settings = editor_.settings();
        if (NumberSetting(settings.ReadSetting("scanPrompt")) == 0) {
            RecordDuplicateAnswer(settings, dialogs_.AddingDup(Cp1252ToUtf8(name)));
        }
        DuplicateDecision decision;
        decision.answer = StoredDuplicateAnswer(settings);
        if (decision.answer == DuplicateAnswer::RenameOld) {
            RenameRequest request;
            request.row = row;
            request.currentName = Cp1252ToUtf8(editor_.table()[row].name);
            request.modal = true;
            request.doRename = [this, row](const std::string& typed) {
                return DoRename(row, typed);
            };
            dialogs_.RenameAItem(request);
        } else if (decision.answer == DuplicateAnswer::RenameNew) {
            const auto typed =
                editor_.desktop().InputBox(editor_.text("reTrouble1") + " " + Cp1252ToUtf8(name),
                                           editor_.text("reTrouble2"), "");
            const auto converted = Utf8ToCp1252(typed.value_or(""));
            if (converted) {
                decision.newName = *converted;
            } else {
                decision.problem =
                    Status::Failed("the new name holds characters an archive cannot store");
            }
        }
        return decision;
    };
}

bool EntryCommands::ReportAdded(const AddOutcome& outcome, const std::string& name) {
    Desktop& desktop = editor_.desktop();
    switch (outcome.result) {
    case AddResult::Added:
        editor_.ShowEntryCount();
        return false;
    case AddResult::Replaced:
        desktop.SetStatus(Cp1252ToUtf8(editor_.table()[outcome.row].name) + " " +
                          editor_.text("rep5"));
        return false;
    case AddResult::Skipped:
        return false;
    case AddResult::Failed:
        break;
    }
    if (outcome.directoryNotWritten) {
        ShowError(outcome.status.error());
        ReportAddFailure(std::string(DirectoryNotWrittenText), name);
    } else {
        ReportAddFailure(outcome.status.error(), name);
    }
    if (!outcome.directoryAfterFailure.ok()) {
        ShowError(outcome.directoryAfterFailure.error());
    }
    return true;
}

std::size_t EntryCommands::AddFileBatch(const std::vector<std::string>& paths, bool fromDialog) {
    Desktop& desktop = editor_.desktop();
    const bool scan = BooleanWord(editor_.settings().ReadSetting("addingScan")).value_or(false);
    AddBatch batch(editor_.archive(), scan, DuplicateDecider());
    std::size_t failed = 0;
    const auto addOne = [&](const std::string& path) {
        const std::string fileName = fs::path(path).filename().string();
        const auto converted = Utf8ToCp1252(fileName);
        if (!converted) {
            ReportAddFailure("its name holds characters an archive cannot store", fileName);
            ++failed;
            return;
        }
        std::string name = *converted;
        const AddOutcome outcome = batch.Add(path, name);
        if (ReportAdded(outcome, name)) {
            ++failed;
        }
    };

    if (fromDialog && paths.size() == 1) {
        addOne(paths.front());
        desktop.SetStatus(editor_.text("adding5"));
    } else {
        const std::string of = " " + editor_.text("adding2") + " ";
        std::vector<std::string> textures;
        for (std::size_t i = 0; i < paths.size(); ++i) {
            desktop.SetStatus(editor_.text("adding1") + " " + std::to_string(i + 1) + of +
                              std::to_string(paths.size()));
            if (IsTextureDictionary(fs::path(paths[i]).filename().string())) {
                textures.push_back(paths[i]);
            } else {
                addOne(paths[i]);
            }
        }
        for (std::size_t j = 0; j < textures.size(); ++j) {
            if (fromDialog) {
                desktop.SetStatus(editor_.text("adding4") + " " + std::to_string(j + 1) + of +
                                  std::to_string(textures.size()));
            }
            addOne(textures[j]);
        }
        desktop.SetStatus(std::to_string(paths.size()) + " " + editor_.text("adding3"));
    }
    if (const Status written = batch.Finish(); !written.ok()) {
        ShowError(written.error());
        failed = std::max<std::size_t>(failed, 1);
    }
    return failed;
}

std::vector<std::string> EntryCommands::AddDialog() {
    const std::string lastAdd = editor_.settings().ReadSetting("lastAdd");
    FileDialogRequest request;
    request.title = editor_.text("adding6");
    request.filter = editor_.text("cdFiles2");
    request.startFolder = lastAdd == NoPath ? std::string() : lastAdd;
    request.multiple = true;
    const FileDialogAnswer answer = editor_.desktop().OpenFileDialog(request);
    if (answer.outcome == FileDialogAnswer::Outcome::Failed) {
        editor_.desktop().SetStatus(editor_.text("adding7"));
        return {};
    }
    if (!answer.chosen()) {
        return {};
    }
    return answer.paths;
}

void EntryCommands::AddFilesAskingPaths() {
    const std::vector<std::string> paths = AddDialog();
    if (paths.empty() || (paths.size() == 1 && paths.front().empty())) {
        return;
    }
    // One file remembers its folder with the separator, several the folder
    // itself, as the dialog hands them over.
    const std::string folder = paths.size() == 1 ? FolderWithSeparator(paths.front())
                                                 : fs::path(paths.front()).parent_path().string();
    editor_.settings().WriteSetting(folder, "lastAdd");
    AddFileBatch(paths, true);
}

void EntryCommands::ToggleAddingScan() {
    MenuState& menu = editor_.menu();
    const bool scan = !menu.isChecked("AddingScan");
    menu.setChecked("AddingScan", scan);
    editor_.settings().WriteSetting(scan ? "True" : "False", "addingScan");
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
        const std::string question =
            editor_.text("del1") + " " + std::to_string(rows.size()) + " " + editor_.text("del2");
        if (!editor_.desktop().AskYesNo(question, editor_.text("del3"))) {
            return;
        }
    }
    ShowDeleteProgress(rows.size());
    if (const Status deleted = DeleteRows(editor_.archive(), rows); !deleted.ok()) {
        ShowError(deleted.error());
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
    ShowDeleteProgress(rows.size());
    if (const Status moved = MoveRowsToEnd(editor_.archive(), rows); !moved.ok()) {
        ShowError(moved.error());
        return;
    }
    editor_.MarkArchiveChanged();
    desktop.SetStatus(editor_.text("del4"));
    editor_.ShowEntryCount();
    // Deliberate: the row selected afterwards is the one now standing where
    // the last moved row stood.
    if (rows.back() < table.size()) {
        table.setSelected(rows.back(), true);
    }
    desktop.SetStatus(std::to_string(rows.size()) + " " + editor_.text("move3"));
}

// --- rebuilding ----------------------------------------------------------------

void EntryCommands::RebuildAsking() {
    const std::string question = editor_.text("rebuild1") + "\r\n" + editor_.text("rebuild2");
    if (editor_.desktop().AskYesNo(question, editor_.text("menuc9") + "?")) {
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
    RebuildProgress progress;
    progress.copying = [&](std::size_t i) {
        desktop.SetStatus(copying + std::to_string(i + 1) + of);
    };
    progress.writingDirectory = [&] { desktop.SetStatus(editor_.text("rebuild4")); };
    const RebuildResult result = RebuildArchive(editor_.archive(), progress);
    if (!result.status.ok()) {
        ShowError(result.status.error());
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

// --- renaming and name case ----------------------------------------------------

void EntryCommands::RenameSelectedWithDialog() {
    const std::vector<std::size_t> rows = SelectedRows();
    if (rows.empty()) {
        return;
    }
    // The dialog is refilled for each selected row and so shows the last one.
    const std::size_t row = rows.back();
    RenameRequest request;
    request.row = row;
    request.currentName = Cp1252ToUtf8(editor_.table()[row].name);
    request.modal = false;
    request.doRename = [this, row](const std::string& typed) { return DoRename(row, typed); };
    dialogs_.RenameAItem(request);
}

bool EntryCommands::DoRename(std::size_t row, const std::string& typed) {
    Desktop& desktop = editor_.desktop();
    if (typed.find_first_not_of(' ') == std::string::npos) {
        desktop.ShowMessage("No name entered", "", MessageIcon::Information);
        return false;
    }
    const auto name = Utf8ToCp1252(typed);
    if (!name) {
        desktop.ShowMessage("The name \"" + typed +
                                "\" holds characters an archive cannot store (names are "
                                "Windows-1252 text).",
                            "", MessageIcon::Information);
        return false;
    }
    if (row >= editor_.table().size()) {
        return true;
    }
    if (const Status renamed = RenameEntry(editor_.archive(), row, *name); !renamed.ok()) {
        ShowError(renamed.error());
        return true;
    }
    desktop.SetStatus(IsRude(*name) ? std::string("You kiss your mother with that mouth?")
                                    : editor_.text("sd1"));
    return true;
}

void EntryCommands::LowerCaseSelected(NameCase which) {
    if (editor_.table().empty()) {
        return;
    }
    const LowerCaseResult result = LowerCaseNames(editor_.archive(), SelectedRows(), which);
    if (!result.status.ok()) {
        ShowError(result.status.error());
        return;
    }
    editor_.desktop().SetStatus(
        std::to_string(result.count) + " " +
        (which == NameCase::Extension ? editor_.text("lcase2") : editor_.text("lcase1")));
}

// --- the marker ----------------------------------------------------------------

bool EntryCommands::InsertMarker() {
    if (!editor_.isOpen()) {
        return false;
    }
    const MarkerResult result = korvel::InsertMarker(editor_.archive(), editor_.text("markText"));
    switch (result.failed) {
    case MarkerResult::Failed::MarkerFile:
        ShowError(result.status.error());
        return false;
    case MarkerResult::Failed::Data:
        ReportAddFailure(result.status.error(), std::string(MarkerName));
        if (!result.directoryAfterFailure.ok()) {
            ShowError(result.directoryAfterFailure.error());
        }
        return false;
    case MarkerResult::Failed::Directory:
    case MarkerResult::Failed::Nothing:
        break;
    }
    editor_.ShowEntryCount();
    editor_.desktop().SetStatus(editor_.text("markerIn"));
    if (!result.status.ok()) {
        ShowError(result.status.error());
        return false;
    }
    return true;
}

} // namespace korvel
