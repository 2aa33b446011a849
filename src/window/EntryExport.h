// Entries handed to other programs as files: dragged out of the list onto a
// file manager, or copied to the clipboard. Each hand-over extracts the
// selected entries into a fresh folder under the temps folder, by the same
// name-to-file rule as extracting; the folder of the hand-over before is
// removed then, and the last one when the export goes away with the window.
// A file manager copies the files after the drop or paste, so they must stay
// until the next hand-over replaces them.
#pragma once

#include "window/Editor.h"

#include <filesystem>
#include <vector>

namespace korvel {

class EntryExport {
public:
    explicit EntryExport(Editor& editor);
    ~EntryExport();
    EntryExport(const EntryExport&) = delete;
    EntryExport& operator=(const EntryExport&) = delete;

    // Extracts the selected entries and returns the files written. Entries
    // that could not be written (an unsafe name, a read failure) are left
    // out, and the person is told which and why.
    std::vector<std::filesystem::path> ExportSelected();
    // Writes the texture `texture` of the dictionary `entry` as a PNG file in
    // a fresh hand-over folder and returns it; nothing, after telling the
    // person why, when it could not be written.
    std::vector<std::filesystem::path> ExportTexture(const Entry& entry,
                                                     const std::string& texture);
    // Removes the folder of the last hand-over, if there is one.
    void RemoveExported();

private:
    // A new folder of our own under the temps folder, the last one removed.
    bool MakeFreshFolder();

    Editor& editor_;
    std::filesystem::path folder_;
};

} // namespace korvel
