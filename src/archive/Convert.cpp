#include "archive/Convert.h"

#include "archive/CompactCopy.h"
#include "archive/EntryFiles.h"
#include "platform/Cp1252.h"
#include "platform/OutputFile.h"

#include <algorithm>
#include <limits>
#include <system_error>

namespace korvel {
namespace fs = std::filesystem;
namespace {

bool SamePath(const std::string& a, const std::string& b) {
    std::error_code ec;
    return a == b || fs::equivalent(a, b, ec);
}

// Everything that keeps the conversion from starting, before a byte is
// written: where it would write, and whether the target kind holds the rows.
Status CheckConversion(const Archive& source, const std::string& destDataPath, ArchiveKind target,
                       const std::vector<std::string>& confirmed, const RebuildFiles& files,
                       std::uint64_t sourceLength) {
    if (target == ArchiveKind::TwoFile && DirectoryIsDataFile(destDataPath)) {
        return Status::Failed("cannot create " + destDataPath +
                                  ": its directory file would be the data file itself",
                              "dirIsData", {destDataPath});
    }
    const std::vector<fs::path> own = ArchiveOwnFiles(source);
    std::vector<std::string> written = NewArchiveFiles(destDataPath, target);
    // Our temporary names are removed before writing: none may be the source's.
    for (const fs::path& temporary :
         {files.newData, files.newDir, files.journal, fs::path(files.journal.string() + ".part")}) {
        written.push_back(temporary.string());
    }
    for (const std::string& path : written) {
        if (std::string problem = OutputTargetProblem(path, own); !problem.empty()) {
            return Status::Failed(problem);
        }
    }
    for (const std::string& path : FilesNewArchiveWouldEmpty(destDataPath, target)) {
        const bool agreed = std::any_of(confirmed.begin(), confirmed.end(),
                                        [&](const std::string& c) { return SamePath(c, path); });
        if (!agreed) {
            return Status::Failed("cannot create " + destDataPath + ": it would empty " + path +
                                      ", which was not confirmed",
                                  "emptyNotConfirmed", {destDataPath, path});
        }
    }
    const EntryTable& table = source.table();
    if (table.size() > MostEntriesOf(target)) {
        const std::string most = std::to_string(MostEntriesOf(target));
        return Status::Failed("the archive has " + std::to_string(table.size()) +
                                  " entries, more than the new archive can hold (" + most +
                                  "); nothing was written",
                              "convertTooMany", {std::to_string(table.size()), most});
    }
    if (target == ArchiveKind::OneFile) {
        for (const Entry& entry : table.rows()) {
            // What a copy writes: a record past the end keeps what exists.
            const std::uint32_t sectors = SectorsPresent(entry, sourceLength);
            if (sectors > MaxOneFileEntrySectors) {
                const std::string most = std::to_string(MaxOneFileEntrySectors);
                return Status::Failed("the entry \"" + Cp1252ToUtf8(entry.name) + "\" takes " +
                                          std::to_string(sectors) +
                                          " sectors, more than a one-file archive holds for one "
                                          "entry (" +
                                          most + "); nothing was written",
                                      "convertTooLarge",
                                      {Cp1252ToUtf8(entry.name), std::to_string(sectors), most});
            }
        }
    }
    return Status::Ok();
}

// A one-file archive's header and records, padded to its first data sector.
std::string OneFileHead(const std::vector<DirRecord>& records) {
    std::string head = EncodeOneFileRecordArea(records);
    head.resize(OneFileFirstDataSector(records.size()) * SectorSize, '\0');
    return head;
}

// A one-file archive is one file: a single rename puts it in place whole.
Status RenameDataIntoPlace(const RebuildFiles& files) {
    FsError error = RenameFile(files.newData, files.data);
    if (error.empty()) {
        error = SyncFolder(files.data.parent_path());
    }
    return error.empty() ? Status::Ok() : Status::Failed(error);
}

} // namespace

std::uint64_t MostEntriesOf(ArchiveKind kind) {
    return kind == ArchiveKind::TwoFile ? MaxRecords : std::numeric_limits<std::uint32_t>::max();
}

ConvertResult ConvertArchive(const Archive& source, const std::string& destDataPath,
                             ArchiveKind target, const std::vector<std::string>& confirmed,
                             const RebuildProgress& progress) {
    ConvertResult result;
    if (!source.isOpen()) {
        result.status = Status::Failed("no archive is open", "noArchiveOpen", {});
        return result;
    }
    // Nobody rebuilds or converts onto the destination meanwhile.
    const ArchiveLock lock = ArchiveLock::Take(destDataPath);
    if (!lock.held()) {
        result.status = lock.status();
        return result;
    }
    const RebuildFiles files = RebuildFilesFor(destDataPath, DirectoryPathFor(destDataPath));
    File in;
    std::uint64_t sourceLength = 0;
    FsError error = in.open(source.dataPath(), File::Mode::Read);
    if (error.empty()) {
        error = in.length(sourceLength);
    }
    if (!error.empty()) {
        result.status = Status::Failed("cannot read " + source.dataPath() + ": " + error);
        return result;
    }
    result.status = CheckConversion(source, destDataPath, target, confirmed, files, sourceLength);
    if (!result.status.ok()) {
        return result;
    }

    RemoveNewPair(files); // nothing planted under our names is followed
    CopyLayout layout;
    layout.modeFrom = files.data; // a new file gets the usual mode
    if (target == ArchiveKind::OneFile) {
        layout.firstSector =
            static_cast<std::uint32_t>(OneFileFirstDataSector(source.table().size()));
        layout.head = OneFileHead;
    }
    std::vector<DirRecord> records;
    result.status = WriteNewData(source.table(), in, files.newData, progress, records, result.cut,
                                 result.stopped, layout);
    const std::string directory =
        target == ArchiveKind::TwoFile ? EncodeDirectory(records) : std::string();
    if (result.status.ok() && !result.stopped && target == ArchiveKind::TwoFile) {
        if (progress.writingDirectory) {
            progress.writingDirectory();
        }
        result.status = WriteNewDirectory(directory, files);
    }
    // The last moment a stop leaves nothing behind.
    if (result.status.ok() && !result.stopped && StopAsked(progress.stop)) {
        result.stopped = true;
    }
    if (result.status.ok() && !result.stopped && target == ArchiveKind::TwoFile) {
        const auto written = FileLength(files.newData);
        result.status =
            written
                ? WriteJournal(files, {*written, directory.size(), DirectoryChecksum(directory)})
                : Status::Failed("cannot read the size of " + files.newData.string());
    }
    if (!result.status.ok() || result.stopped) {
        RemoveNewPair(files);
        if (result.stopped) {
            result.cut.clear();
        }
        return result;
    }
    result.status =
        target == ArchiveKind::TwoFile ? RenameNewPairIntoPlace(files) : RenameDataIntoPlace(files);
    return result;
}

} // namespace korvel
