// Replacing an entry's data with a file: in place when it fits in sectors
// that are the entry's alone, else appended behind the entry that lies last
// in the data file.
#include "archive/EntryOperations.h"

#include "archive/EntryFiles.h"
#include "archive/RebuildJournal.h"

#include "platform/FileCopy.h"
#include "platform/FileSystem.h"
#include "platform/OutputFile.h"

#include <algorithm>
#include <limits>
#include <optional>
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
// record may claim sectors that other entries hold, or that hold a one-file
// archive's records; writing there would overwrite them.
bool SectorsAreOwn(const Archive& archive, std::size_t row, std::uint64_t start,
                   std::uint64_t count) {
    const EntryTable& table = archive.table();
    if (start < archive.firstDataSector()) {
        return false;
    }
    for (std::size_t other = 0; other < table.size(); ++other) {
        const Entry& entry = table[other];
        if (other != row && entry.sizeSectors > 0 && entry.startSector < start + count &&
            start < std::uint64_t{entry.startSector} + entry.sizeSectors) {
            return false;
        }
    }
    return true;
}

// The bytes an in-place write covers (only those the data file holds, at
// most the new file's size and its zero byte), kept in a scratch file beside
// the archive until the directory file says the new ones count: a failure at
// any step before that puts them back, and a file that grew is cut back, so
// the entry is wholly old or wholly new.
class OldBytes {
public:
    OldBytes(std::filesystem::path scratchPath) : path_(std::move(scratchPath)) {}
    ~OldBytes() {
        (void)scratch_.close();
        RemoveFile(path_);
    }
    OldBytes(const OldBytes&) = delete;
    OldBytes& operator=(const OldBytes&) = delete;

    FsError keep(const File& data, std::uint64_t offset, std::uint64_t n) {
        offset_ = offset;
        if (FsError error = data.length(oldLength_); !error.empty()) {
            return error;
        }
        kept_ = offset >= oldLength_ ? 0 : std::min(n + 1, oldLength_ - offset);
        if (kept_ == 0) {
            return {};
        }
        // Only a file made here and now: whatever stood under the name (a
        // leftover, or a link someone placed) is not written through.
        RemoveFile(path_);
        if (OutputOpen opened = OpenOutputFile(scratch_, path_, {}, OutputMode::CreateNew);
            !opened.error.empty()) {
            return "cannot keep the entry's old bytes: " + opened.error;
        }
        if (OpenFilesCanBeReplaced) {
            RemoveFile(path_); // nothing stays behind, even after a crash
        }
        return CopyRange(data, offset, scratch_, 0, kept_);
    }

    // Adds to `error` when the old bytes could not be put back.
    void putBack(const std::string& dataPath, FsError& error) const {
        File data;
        FsError undo = data.open(dataPath, File::Mode::ReadWrite);
        if (undo.empty() && kept_ > 0) {
            undo = CopyRange(scratch_, 0, data, offset_, kept_);
        }
        std::uint64_t length = oldLength_;
        if (undo.empty() && data.length(length).empty() && length > oldLength_) {
            undo = data.truncate(oldLength_);
        }
        if (undo.empty()) {
            undo = data.close();
        }
        if (!undo.empty()) {
            error += "; the entry's old bytes could not be put back (" + undo + ")";
        }
    }

private:
    std::filesystem::path path_;
    File scratch_;
    std::uint64_t offset_ = 0;
    std::uint64_t kept_ = 0;
    std::uint64_t oldLength_ = 0;
};

} // namespace

ReplaceResult ReplaceEntry(Archive& archive, std::size_t row, const std::string& path) {
    const ArchiveLock lock = LockForWriting(archive);
    if (!lock.held()) {
        return Failed(lock.status().error());
    }
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

    std::optional<OldBytes> oldBytes;
    if (Status tooLarge = archive.CheckEntrySectors(needed, path); !tooLarge.ok()) {
        ReplaceResult result;
        result.status = std::move(tooLarge);
        return result;
    }
    const DataWriteScope writing(archive);
    if (needed <= old.sizeSectors && SectorsAreOwn(archive, row, old.startSector, needed)) {
        // Fits in the entry's own sectors: the file, one zero byte, and the
        // rest of those sectors keeps its old bytes.
        oldBytes.emplace(RebuildFilesFor(archive.dataPath(), archive.dirPath()).oldBytes);
        FsError error = oldBytes->keep(data, old.byteOffset(), n);
        if (!error.empty()) {
            return Failed(error);
        }
        error = CopyRange(source, 0, data, old.byteOffset(), n);
        if (error.empty()) {
            error = data.writeAt(old.byteOffset() + n, std::string_view("\0", 1));
        }
        if (!error.empty()) {
            oldBytes->putBack(archive.dataPath(), error);
            return Failed(error);
        }
        if (needed < old.sizeSectors) {
            table.setPlacement(row, old.startSector, static_cast<std::uint32_t>(needed));
        }
    } else {
        const std::uint64_t offset = archive.appendOffset();
        const std::uint64_t newStart = offset / SectorSize;
        std::uint64_t oldLength = 0;
        if (FsError error = data.length(oldLength); !error.empty()) {
            return Failed(error);
        }
        if (Status placed = archive.CheckAppendAt(offset, needed, oldLength); !placed.ok()) {
            return Failed(placed.error());
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
        if (oldBytes) {
            oldBytes->putBack(archive.dataPath(), error);
        }
        return Failed(error);
    }
    archive.dataWritten();
    if (Status written = archive.WriteDirectory(); !written.ok()) {
        // The old directory file is still in place: the row must say what it
        // says, and the entry's sectors must hold what it said. Unless the
        // new records are pending: the next open writes them, so the row and
        // the new bytes stay.
        if (!archive.newRecordsPending()) {
            table.setPlacement(row, old.startSector, old.sizeSectors);
        }
        archive.FindHighestOffset();
        if (oldBytes && !archive.newRecordsPending()) {
            FsError error = written.error();
            oldBytes->putBack(archive.dataPath(), error);
            written = Status::Failed(error);
        }
        ReplaceResult result;
        result.status = std::move(written);
        result.directoryNotWritten = true;
        return result;
    }
    archive.FindHighestOffset();
    return {};
}

} // namespace korvel
