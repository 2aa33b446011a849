// Rebuilding: a compact copy of the archive in row order takes the old pair's
// place. The new pair is written beside the archive and flushed; a journal
// then says it is complete, the two renames follow, and the journal goes. An
// interruption at any moment leaves the old archive or, once the journal
// exists, one that the next open completes: never a mix, never neither.
#include "archive/EntryFiles.h"
#include "archive/EntryOperations.h"
#include "archive/RebuildJournal.h"

#include "platform/FileCopy.h"

#include <algorithm>
#include <limits>
#include <sstream>
#include <system_error>

namespace korvel {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view JournalHeader = "korvel rebuild journal 1";

struct JournalPair {
    fs::path from;
    fs::path to;
};

std::string JournalText(const RebuildFiles& files, const fs::path& data, const fs::path& dir) {
    std::string text(JournalHeader);
    for (const fs::path& line : {files.newData, data, files.newDir, dir}) {
        text += '\n' + line.string();
    }
    return text + '\n';
}

// The renames a journal asks for, or nothing when it is not a whole journal.
std::optional<std::vector<JournalPair>> ReadJournal(const fs::path& journal) {
    FsError error;
    const auto text = ReadSmallFile(journal, error);
    if (!text) {
        return std::nullopt;
    }
    std::istringstream lines(*text);
    std::vector<std::string> parts;
    for (std::string line; std::getline(lines, line);) {
        parts.push_back(line);
    }
    if (parts.size() != 5 || parts[0] != JournalHeader) {
        return std::nullopt;
    }
    return std::vector<JournalPair>{{parts[1], parts[2]}, {parts[3], parts[4]}};
}

void RemoveQuietly(const fs::path& path) {
    std::error_code ec;
    fs::remove(path, ec);
}

fs::path PartFor(const fs::path& journal) {
    return fs::path(journal.string() + ".part");
}

FsError WriteSynced(const fs::path& path, std::string_view bytes) {
    File out;
    FsError error = out.open(path, File::Mode::CreateTruncate);
    if (error.empty()) {
        error = out.writeAt(0, bytes);
    }
    if (error.empty()) {
        error = out.sync();
    }
    if (error.empty()) {
        error = out.close();
    }
    return error;
}

FsError FinishRenames(const fs::path& journal) {
    const auto pairs = ReadJournal(journal);
    if (!pairs) {
        return "the rebuild journal " + journal.string() + " cannot be read";
    }
    for (const JournalPair& pair : *pairs) {
        // A rename already done before the interruption left no source.
        if (FileExists(pair.from)) {
            if (FsError error = RenameFile(pair.from, pair.to); !error.empty()) {
                return error;
            }
        }
    }
    if (FsError error = SyncFolder(journal.parent_path()); !error.empty()) {
        return error;
    }
    std::error_code ec;
    fs::remove(journal, ec);
    return ec ? ec.message() : FsError{};
}

} // namespace

RebuildFiles RebuildFilesFor(const fs::path& dataPath, const fs::path& dirPath) {
    return {fs::path(dataPath.string() + ".korvel-new"), fs::path(dirPath.string() + ".korvel-new"),
            fs::path(dataPath.string() + ".korvel-journal")};
}

void RecoverInterruptedRebuild(const fs::path& dataPath) {
    const RebuildFiles files = RebuildFilesFor(dataPath, DirectoryPathFor(dataPath));
    RemoveQuietly(PartFor(files.journal));
    if (FileExists(files.journal) && ReadJournal(files.journal)) {
        // Complete: finish it. Should that fail, the journal stays for next time.
        (void)FinishRenames(files.journal);
        return;
    }
    // No whole journal: the new pair was never complete.
    RemoveQuietly(files.journal);
    RemoveQuietly(files.newData);
    RemoveQuietly(files.newDir);
}

namespace {

// Removes what a rebuild that stopped before its journal leaves behind.
void RemoveNewPair(const RebuildFiles& files) {
    RemoveQuietly(files.newData);
    RemoveQuietly(files.newDir);
    RemoveQuietly(PartFor(files.journal));
}

// Step 1: the new data file, every row's sectors back to back in row order,
// and the records that say where each now lies. A record reaching past the
// end of the data file keeps only the sectors that exist (zeros invented for
// the rest could be terabytes); `cut` says which and how much went.
Status WriteNewData(const EntryTable& table, File& in, const fs::path& newData,
                    const RebuildProgress& progress, std::vector<DirRecord>& records,
                    std::vector<std::string>& cut) {
    File out;
    if (FsError error = out.open(newData, File::Mode::CreateTruncate); !error.empty()) {
        return Status::Failed(error);
    }
    std::uint64_t dataLength = 0;
    if (FsError error = in.length(dataLength); !error.empty()) {
        return Status::Failed(error);
    }
    std::vector<std::uint32_t> present;
    present.reserve(table.size());
    std::uint64_t total = 0;
    for (const Entry& entry : table.rows()) {
        present.push_back(SectorsPresent(entry, dataLength));
        total += std::uint64_t{present.back()} * SectorSize;
    }
    // Rows that share sectors are copied once each, but the space asked for
    // up front never exceeds the data that exists.
    out.reserve(std::min(total, dataLength));
    records.reserve(table.size());
    std::vector<CopySpan> spans;
    spans.reserve(table.size());
    std::uint64_t running = 0; // in sectors
    for (std::size_t row = 0; row < table.size(); ++row) {
        const Entry& entry = table[row];
        if (running > std::numeric_limits<std::uint32_t>::max()) {
            return Status::Failed(
                "the rebuilt archive would be larger than an archive can address");
        }
        spans.push_back({entry.byteOffset(), std::uint64_t{present[row]} * SectorSize});
        records.push_back({static_cast<std::uint32_t>(running), present[row], entry.name});
        running += present[row];
        if (present[row] < entry.sizeSectors) {
            cut.push_back(MissingBytesText(
                entry.name, std::uint64_t{entry.sizeSectors - present[row]} * SectorSize));
        }
    }
    FsError error = CopySpansInOrder(in, out, 0, spans, [&](std::size_t i) {
        if (progress.copying) {
            progress.copying(i);
        }
    });
    if (error.empty()) {
        error = Step("rebuild-data-written");
    }
    if (error.empty()) {
        error = out.sync();
    }
    if (error.empty()) {
        error = out.close();
    }
    return error.empty() ? Status::Ok() : Status::Failed(error);
}

// Step 2: the new directory file, flushed with its folder.
Status WriteNewDirectory(const std::vector<DirRecord>& records, const RebuildFiles& files,
                         const fs::path& folder) {
    FsError error = WriteSynced(files.newDir, EncodeDirectory(records));
    if (error.empty()) {
        error = Step("rebuild-dir-written");
    }
    if (error.empty()) {
        error = SyncFolder(folder);
    }
    return error.empty() ? Status::Ok() : Status::Failed(error);
}

// Step 3: the journal, written whole under another name and renamed, so it
// exists only once it says everything.
Status WriteJournal(const RebuildFiles& files, const fs::path& dataPath, const fs::path& dirPath) {
    const fs::path part = PartFor(files.journal);
    FsError error = WriteSynced(part, JournalText(files, dataPath, dirPath));
    if (error.empty()) {
        error = Step("rebuild-journal-part");
    }
    if (error.empty()) {
        error = RenameFile(part, files.journal);
    }
    if (error.empty()) {
        error = SyncFolder(dataPath.parent_path());
    }
    if (!error.empty()) {
        RemoveQuietly(files.journal);
        return Status::Failed(error);
    }
    return Status::Ok();
}

// Step 4: the renames. From here on the journal finishes what we don't.
Status RenameNewPairIntoPlace(const RebuildFiles& files, const fs::path& dataPath,
                              const fs::path& dirPath) {
    FsError error = Step("rebuild-journal-written");
    if (error.empty()) {
        error = RenameFile(files.newData, dataPath);
    }
    if (error.empty()) {
        error = Step("rebuild-data-renamed");
    }
    if (error.empty()) {
        error = RenameFile(files.newDir, dirPath);
    }
    if (error.empty()) {
        error = Step("rebuild-dir-renamed");
    }
    if (error.empty()) {
        error = FinishRenames(files.journal);
    }
    return error.empty() ? Status::Ok() : Status::Failed(error);
}

} // namespace

RebuildResult RebuildArchive(const Archive& archive, const RebuildProgress& progress) {
    RebuildResult result;
    if (!archive.isOpen()) {
        result.status = Status::Failed("no archive is open");
        return result;
    }
    const fs::path dataPath = archive.dataPath();
    const fs::path dirPath = archive.dirPath();
    const RebuildFiles files = RebuildFilesFor(dataPath, dirPath);

    // The old data file stays open until its replacement is in place, so that
    // freeing it happens when we close it, off the command's time.
    File in;
    std::vector<DirRecord> records;
    if (FsError error = in.open(dataPath, File::Mode::Read); !error.empty()) {
        result.status = Status::Failed(error);
    } else {
        result.status =
            WriteNewData(archive.table(), in, files.newData, progress, records, result.cut);
    }
    if (result.status.ok()) {
        if (progress.writingDirectory) {
            progress.writingDirectory();
        }
        result.status = WriteNewDirectory(records, files, dataPath.parent_path());
    }
    if (result.status.ok()) {
        result.status = WriteJournal(files, dataPath, dirPath);
    }
    if (!result.status.ok()) {
        RemoveNewPair(files);
        return result;
    }

    if (!OpenFilesCanBeReplaced) {
        (void)in.close();
    }
    result.reopen = true;
    result.status = RenameNewPairIntoPlace(files, dataPath, dirPath);
    CloseInBackground(std::move(in));
    return result;
}

} // namespace korvel
