// The open archive and the editor's commands. One Editor lives beside the
// main window (or inside the command-line tool) for the whole run; every
// command here catches its own failures, tells the person through Desktop and
// leaves the table, the directory file and the data file in agreement.
#pragma once

#include "archive/Archive.h"
#include "platform/Desktop.h"
#include "settings/Settings.h"
#include "window/MenuState.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace korvel {

inline constexpr std::string_view StartupStatus = "Korvel 1.0";

class Editor {
public:
    Editor(Desktop& desktop, Settings& settings, std::filesystem::path editorFolder);

    // --- session -----------------------------------------------------------
    Archive& archive() { return archive_; }
    const Archive& archive() const { return archive_; }
    const std::string& dataPath() const { return archive_.dataPath(); }
    const std::string& dirPath() const { return archive_.dirPath(); }
    bool isOpen() const { return archive_.isOpen(); }
    std::uint64_t highestOffset() const { return archive_.highestOffset(); }
    EntryTable& table() { return archive_.table(); }
    const EntryTable& table() const { return archive_.table(); }
    MenuState& menu() { return menu_; }
    const MenuState& menu() const { return menu_; }
    Settings& settings() { return settings_; }
    const Settings& settings() const { return settings_; }
    Desktop& desktop() { return desktop_; }
    std::string text(std::string_view key) const { return settings_.LookupText(key); }

    // The main window's title: the data file's name, " — Korvel"; the bare
    // " Korvel" while no archive is open.
    std::string WindowTitle() const;
    // The data file's name without its folder ("gta3.img").
    std::string ArchiveFileName() const;
    // The status summary beside the statistics: the selection (count and
    // bytes), the data file's size and the bytes a rebuild would free
    // (UnusedDataBytes). Empty while no archive is open.
    std::string ArchiveSummary() const;
    // Bytes as the window shows them: "512 bytes", "1.5 KB", "2.0 MB", with
    // the units and the decimal mark of the current language.
    std::string SizeText(std::uint64_t bytes) const;

    void FindHighestOffset();
    // Status panel 2: text(stats1) and the number of rows.
    void ShowEntryCount();
    // Writes the directory file anew from the rows, atomically. Returns false
    // (after telling the person) when it could not be written; the old file
    // is then still in place.
    bool WriteDirectory();
    void AssignTypeIcons();
    void EnableArchiveCommands();
    // SelectionCommandNames enabled exactly while an archive is open and at
    // least one of its entries is selected.
    void EnableSelectionCommands();
    void ResetToClosed();
    void AddPlaceholderRow();

    // --- opening, closing, recent archives ----------------------------------
    // Returns true when the archive is open afterwards.
    bool OpenArchive(const std::string& path);
    void PushRecent();
    void LoadRecentMenu();
    void OpenArchiveAskingPath();
    // recent1..recent3: slot is 1, 2 or 3.
    void OpenRecent(int slot);
    void ReloadArchive();
    void CloseArchive();
    void NewArchiveAskingPath();
    // Asks before a new archive empties or replaces existing files, naming
    // every one (a directory file found may be another archive's); true
    // when there are none or the person agreed.
    bool ConfirmEmptying(const std::vector<std::string>& files);

    // `archiveState` in korvel.ini: whether the archive changed (a delete or a
    // move left unused space) since it was last rebuilt.
    bool ArchiveChangedSinceRebuild() const;
    void MarkArchiveChanged();
    void MarkArchiveRebuilt();
    // Closing and quitting offer the rebuild when the person asked for that
    // and the archive changed; runs it when they accept.
    void OfferRebuild();

    // The rebuild command; set by the rebuild feature. Until then closing
    // offers nothing to run.
    void setRebuildCommand(std::function<void()> command) { rebuildCommand_ = std::move(command); }
    // Quitting offers the rebuild too; empty until the rebuild feature sets it.
    const std::function<void()>& rebuildCommand() const { return rebuildCommand_; }

private:
    void ApplyRecentCheck();

    Desktop& desktop_;
    Settings& settings_;
    std::filesystem::path editorFolder_;
    Archive archive_;
    MenuState menu_;
    std::function<void()> rebuildCommand_;
};

} // namespace korvel
