// Replacing an entry's data with a file: in place when it fits, else appended
// behind the entry that lies last in the data file.
#include "archive/EntryOperations.h"

#include "platform/FileCopy.h"
#include "platform/FileSystem.h"

#include <limits>

namespace korvel {
namespace {

ReplaceResult Failed(const std::string& error) {
    ReplaceResult result;
    result.status = Status::Failed(error);
    return result;
}

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

    if (needed <= old.sizeSectors) {
        // Fits in the entry's own sectors: the file, one zero byte, and the
        // rest of those sectors keeps its old bytes.
        if (FsError error = CopyRange(source, 0, data, old.byteOffset(), n); !error.empty()) {
            return Failed(error);
        }
        if (FsError error = data.writeAt(old.byteOffset() + n, std::string_view("\0", 1));
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
