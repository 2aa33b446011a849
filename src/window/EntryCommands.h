// The menu commands that work on entries (one file per family:
// EntryCommands*.cpp). Each gathers the selection, the
// settings and the person's answers through the Desktop and the
// EntryDialogs, calls the operation (archive/EntryOperations.h) and tells the
// person how it went. Rows are 0-based here.
#pragma once

#include "archive/EntryOperations.h"
#include "window/Editor.h"
#include "window/EntryDialogs.h"

#include <string>
#include <vector>

namespace korvel {

// A setting read the way a number is read from text: leading digits, else 0
// (`scanPrompt` is "1" or "0", but the file is the person's to edit).
long NumberSetting(const std::string& value);

// The duplicate answer korvel.ini remembers (`addingOpt`), and the one place
// that records the duplicate dialog's answer (`addingOpt`, `scanPrompt`).
DuplicateAnswer StoredDuplicateAnswer(const Settings& settings);
void RecordDuplicateAnswer(Settings& settings, const DuplicateDialogAnswer& answer);

class EntryCommands {
public:
    enum class ExtractMode { Ask, Quick };

    // Registers RebuildAsking as the editor's rebuild command (offered on
    // closing); the destructor takes it back.
    EntryCommands(Editor& editor, EntryDialogs& dialogs);
    ~EntryCommands();
    EntryCommands(const EntryCommands&) = delete;
    EntryCommands& operator=(const EntryCommands&) = delete;

    // --- extracting and viewing ----------------------------------------------
    // Both return the number of selected entries that could not be written
    // (a file the person chose to keep, or a cancel, is not a failure).
    std::size_t ExtractSelectedAskingFolder();
    std::size_t ExtractSelectedToLastFolder();
    // Asks before writing over a file that exists (Yes / Yes to all / No /
    // Cancel); false when the entry was not written.
    bool ExtractEntry(std::size_t row, ExtractMode mode);
    std::string ChooseFolder();
    void ViewSelectedEntries();
    // Needs no archive: start-up runs it too.
    static void EnsureTempsFolder();

    // --- replacing -----------------------------------------------------------
    void ReplaceSelectedAskingFiles();
    // True when the entry was replaced (not cancelled, not failed).
    bool ReplaceEntryWithDialog(std::size_t row);
    // Replaces the row from the file and tells the person as the window does.
    ReplaceResult ReplaceRow(std::size_t row, const std::string& path);

    // --- adding --------------------------------------------------------------
    // Adds files given by full path, texture dictionaries last, and writes
    // the directory once. `fromDialog` chooses the add dialog's status texts
    // over those of a drop. Returns the number of files that failed.
    std::size_t AddFileBatch(const std::vector<std::string>& paths, bool fromDialog = false);
    void AddFilesAskingPaths();
    // The `AddingScan` menu item: flips the duplicate scan.
    void ToggleAddingScan();

    // --- deleting and moving -------------------------------------------------
    void DeleteSelectedAsking();
    void MoveSelectedToEnd();

    // --- rebuilding ----------------------------------------------------------
    void RebuildAsking();
    // Returns true when the rebuilt archive is open.
    bool Rebuild();

    // --- renaming and name case ----------------------------------------------
    void RenameSelectedWithDialog();
    // The rename dialog's `DoRename`: `typed` is UTF-8. False keeps the
    // dialog open.
    bool DoRename(std::size_t row, const std::string& typed);
    // The same for the modeless dialog, which names its entry by identity:
    // an entry gone since (deleted, another archive opened) is not renamed,
    // and a message says so; the dialog closes.
    bool DoRenameEntry(const EntryRef& entry, const std::string& typed);
    void LowerCaseSelected(NameCase which);

    // --- the marker ----------------------------------------------------------
    // EditInsertMarker: true when the marker was added and the directory written.
    bool InsertMarker();

private:
    // How the answers about existing files carry from one entry to the next
    // within one extraction.
    struct OverwriteAsking {
        bool all = false;     // Yes to all was answered
        bool stopped = false; // Cancel was answered
        std::size_t skipped = 0;
    };
    bool ExtractEntry(std::size_t row, ExtractMode mode, OverwriteAsking& asking);
    OverwriteChoice AskOverwrite(const std::filesystem::path& existing, OverwriteAsking& asking);
    static std::string FolderWithSeparator(const std::string& path);
    std::vector<std::size_t> SelectedRows() const;
    std::size_t ExtractSelected(ExtractMode firstMode);
    std::vector<std::string> AddDialog();
    DecideDuplicate DuplicateDecider();
    // Tells the person about one add outcome; true when it failed.
    bool ReportAdded(const AddOutcome& outcome, const std::string& name);
    void ReportAddFailure(const std::string& description, const std::string& name);
    void ShowError(const std::string& error, const std::string& concerning = {});
    // The failure in the person's language (StatusText).
    void ShowError(const Status& failed, const std::string& concerning = {});
    void ShowDeleteProgress(std::size_t count);
    bool ReplaceWithDialog(std::size_t row);

    Editor& editor_;
    EntryDialogs& dialogs_;
    std::string pickedFolder_;
};

} // namespace korvel
