// The commands that work on entries: extracting and viewing, adding,
// replacing, deleting and moving, rebuilding, renaming and name case. They
// act on the open archive of an Editor, talk to the person through its
// Desktop and the EntryDialogs, and keep the table, the directory file and
// the data file in agreement when something fails. Rows are 0-based here.
#pragma once

#include "archive/EntryFiles.h"
#include "archive/RebuildJournal.h"
#include "platform/FileSystem.h"
#include "window/Editor.h"
#include "window/EntryDialogs.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace korvel {

// A setting read the way a number is read from text: leading digits, else 0
// (`scanPrompt` is "1" or "0", but the file is the person's to edit).
long NumberSetting(const std::string& value);

class EntryCommands {
public:
    enum class ExtractMode { Ask, Quick };
    enum class AddResult { Added, Skipped, Replaced, Failed };
    enum class NameCase { Whole, BeforeExtension, Extension };

    // Registers ComRebuild as the editor's rebuild command (offered on
    // closing); the destructor takes it back.
    EntryCommands(Editor& editor, EntryDialogs& dialogs);
    ~EntryCommands();
    EntryCommands(const EntryCommands&) = delete;
    EntryCommands& operator=(const EntryCommands&) = delete;

    // --- extracting and viewing ----------------------------------------------
    // Both return the number of selected entries that were not written.
    std::size_t ExtractSelectedAskingFolder();
    std::size_t ExtractSelectedToLastFolder();
    bool ExtractEntry(std::size_t row, ExtractMode mode);
    std::string ChooseFolder();
    void ViewSelectedEntries();
    // Needs no archive: start-up runs it too.
    static void EnsureTempsFolder();
    const std::string& pickedFolder() const { return pickedFolder_; }

    // --- replacing -----------------------------------------------------------
    // Puts the file's data in place of the row's; empty on success, else the
    // description of the failure (nothing reported to the person).
    FsError ReplaceEntry(const std::string& path, std::size_t row);
    void ReplaceSelectedAskingFiles();
    void ReplaceEntryWithDialog(std::size_t row);

    // --- adding --------------------------------------------------------------
    // Adds one file under `name` (raw Windows-1252 bytes; "renameNew" changes
    // it). Does not write the directory file.
    AddResult AddFile(const std::string& path, std::string& name);
    // Adds files given by full path, texture dictionaries last, and writes
    // the directory once. `fromDialog` chooses the add dialog's status texts
    // over those of a drop. Returns the number of files that failed.
    std::size_t AddFileBatch(const std::vector<std::string>& paths, bool fromDialog = false);
    // The open dialog's answer: full paths, none when cancelled.
    std::vector<std::string> AddDialog();
    void AddFilesAskingPaths();
    // The `AddingScan` menu item: flips the duplicate scan.
    void ToggleAddingScan();

    // --- deleting and moving -------------------------------------------------
    void DeleteSelectedAsking();
    bool DeleteSelectedEntries();
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
    void LowerCaseSelected(NameCase which);

private:
    class NameIndex;

    std::size_t ExtractSelected(ExtractMode firstMode);
    // `appendAt`, in a batch, carries where the next file goes from one file
    // to the next, so adding to a big archive costs no pass over its rows;
    // nullptr for a single file.
    AddResult AddFileIndexed(const std::string& path, std::string& name, NameIndex& index,
                             std::optional<std::uint64_t>* appendAt = nullptr);
    bool DeleteSelected(const std::vector<Entry>& restoreOnFailure);
    bool ReplaceWithDialog(std::size_t row);
    void ReportAddFailure(const std::string& description, const std::string& name);

    Editor& editor_;
    EntryDialogs& dialogs_;
    std::string pickedFolder_;
};

} // namespace korvel
