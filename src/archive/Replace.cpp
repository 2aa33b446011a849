// Replacing an entry's data with a file: in place when it fits in sectors
// that are the entry's alone, else appended behind the entry that lies last
// in the data file.
#include "archive/EntryOperations.h"

#include "platform/FileCopy.h"
#include "platform/FileSystem.h"
#include "platform/OutputFile.h"

#include <algorithm>
#include <limits>
#include <system_error>

namespace korvel {
namespace {

void RemoveFile(const std::filesystem::path& path) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

ReplaceResult Failed(const std::string& error) {
    ReplaceResult result;
    result.status = Status::Failed(error);
    return result;
}

// Whether sectors [start, start + count) belong to the row alone. A damaged
// record may claim sectors that other entries hold; writing there would
// overwrite them.
bool SectorsAreOwn(const EntryTable& table, std::size_t row, std::uint64_t start,
                   std::uint64_t count) {
    for (std::size_t other = 0; other < table.size(); ++other) {
        const Entry& entry = table[other];
        if (other != row && entry.sizeSectors > 0 && entry.startSector < start + count &&
            start < std::uint64_t{entry.startSector} + entry.sizeSectors) {
            return false;
        }
    }
    return true;
}

// Writes the file's `n` bytes and one zero byte at `offset` over the entry's
// old bytes. A write failing halfway must not leave the entry half new, so
// the bytes about to be covered (only those the data file holds, at most the
// new file's size) are first kept in a scratch file beside the archive and
// put back on failure; a file that grew is cut back.
FsError WriteInPlace(File& data, const File& source, const std::string& dataPath,
                     std::uint64_t offset, std::uint64_t n) {
    std::uint64_t oldLength = 0;
    if (FsError error = data.length(oldLength); !error.empty()) {
        return error;
    }
    const std::uint64_t kept = offset >= oldLength ? 0 : std::min(n + 1, oldLength - offset);
    const std::filesystem::path scratchPath = dataPath + ".korvel-old";
    File scratch;
    if (kept > 0) {
        // Only a file made here and now: whatever stood under the name (a
        // leftover, or a link someone placed) is not written through.
        RemoveFile(scratchPath);
        if (OutputOpen opened = OpenOutputFile(scratch, scratchPath, {}, OutputMode::CreateNew);
            !opened.error.empty()) {
            return "cannot keep the entry's old bytes: " + opened.error;
        }
        if (OpenFilesCanBeReplaced) {
            RemoveFile(scratchPath); // nothing stays behind, even after a crash
        }
        if (FsError error = CopyRange(data, offset, scratch, 0, kept); !error.empty()) {
            (void)scratch.close();
            RemoveFile(scratchPath);
            return error;
        }
    }
    FsError error = CopyRange(source, 0, data, offset, n);
    if (error.empty()) {
        error = data.writeAt(offset + n, std::string_view("\0", 1));
    }
    if (!error.empty()) {
        FsError undo = kept > 0 ? CopyRange(scratch, 0, data, offset, kept) : FsError();
        std::uint64_t length = oldLength;
        if (undo.empty() && data.length(length).empty() && length > oldLength) {
            undo = data.truncate(oldLength);
        }
        if (!undo.empty()) {
            error += "; the entry's old bytes could not be put back (" + undo + ")";
        }
    }
    (void)scratch.close();
    RemoveFile(scratchPath);
    return error;
}

} // namespace

ReplaceResult ReplaceEntry(Archive& archive, std::size_t row, const std::string& path) {
    EntryTable& table = archive.table();
    if (row >= table.size()) {
        return Failed("there is no row " + std::to_string(row + 1));
    }
    const Entry old = table[row];
    if (!FileExists(path)) {
        return Failed(path + " is not a file");
    }
    const auto fileLength = FileLength(path);
    if (!fileLength) {
        return Failed("cannot read the size of " + path);
    }
    const std::uint64_t n = *fileLength;
    const std::uint64_t needed = SectorsForFile(n);
    archive.FindHighestOffset();

    File source;
    if (FsError error = source.open(path, File::Mode::Read); !error.empty()) {
        return Failed(error);
    }
    File data;
    if (FsError error = data.open(archive.dataPath(), File::Mode::ReadWrite); !error.empty()) {
        return Failed(error);
    }

    if (needed <= old.sizeSectors && SectorsAreOwn(table, row, old.startSector, needed)) {
        // Fits in the entry's own sectors: the file, one zero byte, and the
        // rest of those sectors keeps its old bytes.
        if (FsError error = WriteInPlace(data, source, archive.dataPath(), old.byteOffset(), n);
            !error.empty()) {
            return Failed(error);
        }
        if (needed < old.sizeSectors) {
            table.setPlacement(row, old.startSector, static_cast<std::uint32_t>(needed));
        }
    } else {
        const std::uint64_t offset = table.appendOffset();
        const std::uint64_t newStart = offset / SectorSize;
        if (newStart > std::numeric_limits<std::uint32_t>::max() ||
            needed > std::numeric_limits<std::uint32_t>::max()) {
            return Failed("the archive cannot address data beyond 8 TiB");
        }
        std::uint64_t oldLength = 0;
        if (FsError error = data.length(oldLength); !error.empty()) {
            return Failed(error);
        }
        FsError error = CopyRange(source, 0, data, offset, n);
        if (error.empty()) {
            error = WriteZeros(data, offset + n, needed * SectorSize - n);
        }
        if (!error.empty()) {
            // Nothing points at the half-written tail; give it back.
            (void)data.truncate(oldLength);
            return Failed(error);
        }
        table.setPlacement(row, static_cast<std::uint32_t>(newStart),
                           static_cast<std::uint32_t>(needed));
    }
    if (FsError error = data.close(); !error.empty()) {
        table.setPlacement(row, old.startSector, old.sizeSectors);
        return Failed(error);
    }
    if (Status written = archive.WriteDirectory(); !written.ok()) {
        // The old directory file is still in place: the row must say what it says.
        table.setPlacement(row, old.startSector, old.sizeSectors);
        archive.FindHighestOffset();
        ReplaceResult result;
        result.status = std::move(written);
        result.directoryNotWritten = true;
        return result;
    }
    archive.FindHighestOffset();
    return {};
}

} // namespace korvel
