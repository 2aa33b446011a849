#include "window/Editor.h"

#include "settings/FailureTexts.h"

#include "archive/Format.h"
#include "archive/FreeSpace.h"
#include "archive/RebuildJournal.h"
#include "platform/FileSystem.h"

#include <sstream>
#include <system_error>

namespace korvel {
namespace {

std::string RecentKey(int slot) {
    return "recent" + std::to_string(slot);
}

} // namespace

Editor::Editor(Desktop& desktop, Settings& settings, std::filesystem::path editorFolder)
    : desktop_(desktop), settings_(settings), editorFolder_(std::move(editorFolder)) {}

std::string Editor::WindowTitle() const {
    if (!isOpen()) {
        return " Korvel";
    }
    // The classic two-file kind keeps its plain title; only the other kind
    // is named.
    if (archive_.kind() == ArchiveKind::OneFile) {
        return ArchiveFileName() + " (" + text("kindOneFile") + ") \u2014 Korvel";
    }
    return ArchiveFileName() + " \u2014 Korvel";
}

std::string Editor::ArchiveFileName() const {
    // Cut from the UTF-8 text itself: a path object would read it in the
    // system's code page on Windows.
    const std::string& path = dataPath();
    const std::size_t slash = path.find_last_of("/\\");
    return path.substr(slash == std::string::npos ? 0 : slash + 1);
}

std::string Editor::SizeText(std::uint64_t bytes) const {
    // sizeUnits holds the four units separated by '|': bytes, KB, MB, GB.
    std::vector<std::string> units;
    std::stringstream parts(text("sizeUnits"));
    for (std::string unit; std::getline(parts, unit, '|');) {
        units.push_back(unit);
    }
    units.resize(4, units.empty() ? std::string() : units.back());
    if (bytes < 1024) {
        return std::to_string(bytes) + " " + units[0];
    }
    std::size_t unit = 1;
    std::uint64_t scale = 1024;
    while (unit < 3 && bytes / scale >= 1024) {
        scale *= 1024;
        ++unit;
    }
    // One decimal, rounded half up, in whole numbers: no locale in the way.
    const std::uint64_t tenths = (bytes * 10 + scale / 2) / scale;
    return std::to_string(tenths / 10) + text("decimalMark") + std::to_string(tenths % 10) + " " +
           units[unit];
}

std::string Editor::ArchiveSummary() const {
    if (!isOpen()) {
        return {};
    }
    std::size_t selected = 0;
    std::uint64_t selectedBytes = 0;
    for (const Entry& entry : table().rows()) {
        if (entry.selected) {
            ++selected;
            selectedBytes += entry.byteCount();
        }
    }
    std::string summary =
        text("sbSel") + " " + std::to_string(selected) + " (" + SizeText(selectedBytes) + ")";
    // The data file may have gone or be unreadable: then its size and the
    // space to win are not known, and nothing is claimed.
    if (const auto length = FileLength(dataPath())) {
        summary += "   " + text("sbSize") + " " + SizeText(*length) + "   " + text("sbFree") + " " +
                   SizeText(UnusedDataBytes(table(), *length));
    }
    return summary;
}

void Editor::FindHighestOffset() {
    archive_.FindHighestOffset();
}

void Editor::ShowEntryCount() {
    desktop_.SetStats(settings_.LookupCountText("entryCount", table().size()));
}

bool Editor::WriteDirectory() {
    const Status status = archive_.WriteDirectory();
    if (!status.ok()) {
        desktop_.ShowMessage(FileFailureText(settings_, StatusText(settings_, status)),
                             text("errorTitle"), MessageIcon::Exclamation);
    }
    return status.ok();
}

void Editor::AssignTypeIcons() {
    // Nothing to do: a row's icon follows from its name (IconKindOfName) and
    // the view asks for it when it paints the row. The table already tells the
    // view about each row it changed, so telling it that every row changed
    // would only repaint 30 000 rows after a one-row rename.
}

void Editor::EnableArchiveCommands() {
    for (const std::string& name : ArchiveCommandNames()) {
        menu_.setEnabled(name, true);
    }
    EnableSelectionCommands();
}

void Editor::EnableSelectionCommands() {
    const bool any = isOpen() && table().selectedCount() > 0;
    for (const std::string& name : SelectionCommandNames()) {
        menu_.setEnabled(name, any);
    }
}

void Editor::ResetToClosed() {
    archive_.Close();
    desktop_.SetStatus(text("stats2"));
    // The statistics of an archive that is no longer open would be a lie.
    desktop_.SetStats("");
    for (const std::string& name : ArchiveCommandNames()) {
        menu_.setEnabled(name, false);
    }
    menu_.setChecked("recent1", false);
}

void Editor::AddPlaceholderRow() {
    table().setPlaceholder(true);
}

bool Editor::OpenArchive(const std::string& path) {
    const auto askAboutReadOnly = [this](const std::string& dataPath, const std::string& dirPath) {
        if (IsReadOnly(dataPath) || IsReadOnly(dirPath)) {
            const std::string question =
                text("openArchive3") + "\n" + text("openArchive4") + "\n" + text("openArchive5");
            if (desktop_.AskYesNo(question, "")) {
                ClearAttributes(dataPath);
                ClearAttributes(dirPath);
            }
        }
    };
    std::string recoveryNotice;
    const auto failure = OpenArchiveFiles(archive_, path, askAboutReadOnly, &recoveryNotice);
    if (!recoveryNotice.empty()) {
        desktop_.ShowMessage(recoveryNotice, "", MessageIcon::Exclamation);
    }
    if (failure) {
        switch (failure->step) {
        case OpenFailure::Step::DataFileMissing:
            desktop_.ShowMessage(text("openArchive1") + "\n" + failure->detail, text("invalidFL"),
                                 MessageIcon::Information);
            break;
        case OpenFailure::Step::DirectoryFileMissing:
            desktop_.ShowMessage(text("openArchive2") + "\n" + failure->detail, text("invalidFL"),
                                 MessageIcon::Information);
            break;
        case OpenFailure::Step::DirectoryUnreadable:
            desktop_.ShowMessage(StatusText(settings_, failure->reason), "", MessageIcon::None);
            break;
        case OpenFailure::Step::NotAnArchive:
            desktop_.ShowMessage(failure->detail, "", MessageIcon::None);
            break;
        }
        ResetToClosed();
        AddPlaceholderRow();
        return false;
    }

    PushRecent();
    ShowEntryCount();
    desktop_.SetArchivePath(archive_.dataPath());
    ApplyRecentCheck();
    EnableArchiveCommands();
    AssignTypeIcons();
    FindHighestOffset();
    return true;
}

void Editor::ApplyRecentCheck() {
    menu_.setChecked("recent1", menu_.caption("recent1") == dataPath());
}

void Editor::PushRecent() {
    std::array<std::string, 3> slots;
    for (int i = 0; i < 3; ++i) {
        slots[static_cast<std::size_t>(i)] = settings_.ReadSetting(RecentKey(i + 1));
    }
    std::size_t found = slots.size();
    for (std::size_t i = 0; i < slots.size(); ++i) {
        if (slots[i] == dataPath()) {
            found = i;
            break;
        }
    }
    if (found < slots.size()) {
        // A swap with slot 1, not a rotation: A, B, C opening C gives C, B, A.
        slots[found] = slots[0];
    } else {
        slots[2] = slots[1];
        slots[1] = slots[0];
    }
    slots[0] = dataPath();
    for (int i = 0; i < 3; ++i) {
        settings_.WriteSetting(slots[static_cast<std::size_t>(i)], RecentKey(i + 1));
    }
    LoadRecentMenu();
}

void Editor::LoadRecentMenu() {
    for (int i = 1; i <= 3; ++i) {
        menu_.setCaption(RecentKey(i), settings_.ReadSetting(RecentKey(i)));
    }
}

void Editor::OpenArchiveAskingPath() {
    const FileDialogAnswer answer =
        desktop_.OpenFileDialog({text("openArc1"), text("cdFiles1"), "", "", false});
    if (answer.outcome == FileDialogAnswer::Outcome::Failed) {
        desktop_.SetStatus(text("openArc2"));
        return;
    }
    if (answer.chosen() && !answer.paths.front().empty()) {
        OpenArchive(answer.paths.front());
    }
}

void Editor::OpenRecent(int slot) {
    const std::string path = menu_.caption(RecentKey(slot));
    if (path != NoPath) {
        OpenArchive(path);
    }
}

void Editor::ReloadArchive() {
    const std::string path = menu_.caption("recent1");
    if (path != NoPath) {
        // The same archive read again keeps its entries' identities when its
        // directory did not change, so open result lists stay usable.
        if (isOpen() && path == dataPath()) {
            table().rereadSameArchive();
        }
        OpenArchive(path);
    }
    desktop_.SetStatus(text("reloaded"));
}

void Editor::CloseArchive() {
    OfferRebuild();
    ResetToClosed();
}

// The two words are the file's own spelling, kept so existing korvel.ini
// files keep working.
bool Editor::ArchiveChangedSinceRebuild() const {
    return settings_.ReadSetting("archiveState") == "shit";
}

void Editor::MarkArchiveChanged() {
    settings_.WriteSetting("shit", "archiveState");
}

void Editor::MarkArchiveRebuilt() {
    settings_.WriteSetting("peachy", "archiveState");
}

void Editor::OfferRebuild() {
    if (menu_.isChecked("OptRebuildPrompt") && ArchiveChangedSinceRebuild() && rebuildCommand_) {
        rebuildCommand_();
    }
}

bool Editor::ConfirmEmptying(const std::vector<std::string>& files) {
    if (files.empty()) {
        return true;
    }
    std::string question = text("fe1");
    for (const std::string& file : files) {
        question += (&file == &files.front() ? " " : "\n") + file;
    }
    return desktop_.AskDestructive(question + "\n" + text("fe2"), text("fe3"));
}

void Editor::NewArchiveAskingPath() {
    const FileDialogAnswer answer =
        desktop_.SaveFileDialog({text("newArc1"), text("newKinds"), "", "", false});
    if (answer.outcome == FileDialogAnswer::Outcome::Failed) {
        desktop_.SetStatus(text("newArc3"));
        return;
    }
    if (!answer.chosen() || answer.paths.front().empty()) {
        return;
    }
    const std::string path = NewArchiveDataPath(answer.paths.front());
    // The dialog's second file type is the one-file kind; the first, the
    // classic pair, is what it offers unless the person picks the other.
    const ArchiveKind kind = answer.filterIndex == 1 ? ArchiveKind::OneFile : ArchiveKind::TwoFile;
    // Every file that would be emptied is named, the directory file too: it
    // may be another archive's.
    const std::vector<std::string> emptied = FilesNewArchiveWouldEmpty(path, kind);
    if (!ConfirmEmptying(emptied)) {
        return;
    }
    std::string openPath;
    if (!CreateEmptyArchive(path, emptied, openPath, kind).ok()) {
        desktop_.SetStatus(text("newArc3"));
        return;
    }
    OpenArchive(openPath);
    desktop_.SetStatus(text("newArc2"));
}

} // namespace korvel
