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
Status CheckConversion(const Archive& source, const std::string& destDataPath,
                       const DirectoryStore& store, const std::vector<std::string>& confirmed,
                       const RebuildFiles& files, std::uint64_t sourceLength) {
    const ArchiveKind target = store.kind();
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
    for (const Entry& entry : table.rows()) {
        // What a copy writes: a record past the end keeps what exists.
        const std::uint32_t sectors = SectorsPresent(entry, sourceLength);
        if (sectors > store.maxEntrySectors()) {
            const std::string most = std::to_string(store.maxEntrySectors());
            return Status::Failed(
                "the entry \"" + Cp1252ToUtf8(entry.name) + "\" takes " + std::to_string(sectors) +
                    " sectors, more than a one-file archive holds for one "
                    "entry (" +
                    most + "); nothing was written",
                "convertTooLarge", {Cp1252ToUtf8(entry.name), std::to_string(sectors), most});
        }
    }
    if (table.size() > MaxRecords) {
        const std::string most = std::to_string(MaxRecords);
        return Status::Failed("the archive has " + std::to_string(table.size()) +
                                  " entries, more than the new archive can hold (" + most +
                                  "); nothing was written",
                              "convertTooMany", {std::to_string(table.size()), most});
    }
    return Status::Ok();
}

} // namespace

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
    const DirectoryStore& store = DirectoryStoreOf(target);
    result.status = CheckConversion(source, destDataPath, store, confirmed, files, sourceLength);
    if (!result.status.ok()) {
        return result;
    }

    // The new archive is a fresh file: it takes the mode new files get.
    CompactCopy copy = PrepareCompactCopy(source.table(), store, in, files, progress, files.data);
    result.status = copy.status;
    result.cut = std::move(copy.cut);
    result.stopped = copy.stopped;
    if (result.status.ok() && !result.stopped) {
        result.status = RenameNewPairIntoPlace(files, store.recordsInDataFile());
    }
    return result;
}

} // namespace korvel
