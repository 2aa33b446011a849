// Replacing an entry's data with a file: in place when it fits, else appended
// behind the entry that lies last in the data file.
#include "archive/EntryCommands.h"

#include "platform/FileCopy.h"

#include <limits>

namespace korvel {
namespace {

constexpr std::string_view DirectoryNotWritten = "the directory file could not be written";

// The folder part of a chosen path, up to and including its last separator.
std::string FolderWithSeparator(const std::string& path) {
    const auto slash = path.find_last_of("/\\");
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

} // namespace

FsError EntryCommands::ReplaceEntry(const std::string& path, std::size_t row) {
    EntryTable& table = editor_.table();
    const Entry old = table[row];
    if (!FileExists(path)) {
        return path + " is not a file";
    }
    const auto fileLength = FileLength(path);
    if (!fileLength) {
        return "cannot read the size of " + path;
    }
    const std::uint64_t n = *fileLength;
    const std::uint64_t needed = SectorsForFile(n);
    editor_.FindHighestOffset();

    File source;
    if (FsError error = source.open(path, File::Mode::Read); !error.empty()) {
        return error;
    }
    File data;
    if (FsError error = data.open(editor_.dataPath(), File::Mode::ReadWrite); !error.empty()) {
        return error;
    }

    if (needed <= old.sizeSectors) {
        // Fits in the entry's own sectors: the file, one zero byte, and the
        // rest of those sectors keeps its old bytes.
        if (FsError error = CopyRange(source, 0, data, old.byteOffset(), n); !error.empty()) {
            return error;
        }
        if (FsError error = data.writeAt(old.byteOffset() + n, std::string_view("\0", 1));
            !error.empty()) {
            return error;
        }
        if (needed < old.sizeSectors) {
            table.setPlacement(row, old.startSector, static_cast<std::uint32_t>(needed));
        }
    } else {
        const std::uint64_t offset = table.appendOffset();
        const std::uint64_t newStart = offset / SectorSize;
        if (newStart > std::numeric_limits<std::uint32_t>::max() ||
            needed > std::numeric_limits<std::uint32_t>::max()) {
            return "the archive cannot address data beyond 8 TiB";
        }
        std::uint64_t oldLength = 0;
        if (FsError error = data.length(oldLength); !error.empty()) {
            return error;
        }
        FsError error = CopyRange(source, 0, data, offset, n);
        if (error.empty()) {
            error = WriteZeros(data, offset + n, needed * SectorSize - n);
        }
        if (!error.empty()) {
            // Nothing points at the half-written tail; give it back.
            (void)data.truncate(oldLength);
            return error;
        }
        table.setPlacement(row, static_cast<std::uint32_t>(newStart),
                           static_cast<std::uint32_t>(needed));
    }
    if (FsError error = data.close(); !error.empty()) {
        table.setPlacement(row, old.startSector, old.sizeSectors);
        return error;
    }
    if (!editor_.WriteDirectory()) {
        // The old directory file is still in place: the row must say what it says.
        table.setPlacement(row, old.startSector, old.sizeSectors);
        editor_.FindHighestOffset();
        return std::string(DirectoryNotWritten);
    }
    editor_.FindHighestOffset();
    editor_.desktop().SetStatus(Cp1252ToUtf8(table[row].name) + " " + editor_.text("rep5"));
    return {};
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
    if (FsError error = ReplaceEntry(path, row); !error.empty()) {
        if (error != DirectoryNotWritten) {
            desktop.ShowMessage(editor_.text("ohCrap1") + " " + error, "Error",
                                MessageIcon::Exclamation);
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

} // namespace korvel
