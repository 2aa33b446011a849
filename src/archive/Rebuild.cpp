// Rebuilding: a compact copy of the archive in row order takes the old pair's
// place. The new pair is written beside the archive and flushed; a journal
// then says it is complete, the two renames follow, and the journal goes. An
// interruption at any moment leaves the old archive or, once the journal
// exists, one that the next open completes: never a mix, never neither.
#include "archive/CompactCopy.h"
#include "archive/DirectoryStore.h"
#include "archive/EntryFiles.h"
#include "archive/EntryOperations.h"
#include "archive/RebuildJournal.h"

#include "platform/FileCopy.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <system_error>

namespace korvel {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view JournalHeader = "korvel rebuild journal 2";

void RemoveQuietly(const fs::path& path) {
    std::error_code ec;
    fs::remove(path, ec);
}

fs::path PartFor(const fs::path& journal) {
    return fs::path(journal.string() + ".part");
}

// A decimal number of at most 20 digits that fits 64 bits, the whole of `text`.
std::optional<std::uint64_t> ParseNumber(std::string_view text) {
    if (text.empty() || text.size() > 20 || (text.size() > 1 && text[0] == '0')) {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        const auto digit = static_cast<std::uint64_t>(c - '0');
        if (value > (std::numeric_limits<std::uint64_t>::max() - digit) / 10) {
            return std::nullopt;
        }
        value = value * 10 + digit;
    }
    return value;
}

bool IsRegularFile(const fs::path& path) {
    std::error_code ec;
    return fs::is_regular_file(fs::symlink_status(path, ec));
}

// The journal's bytes, read with a small bound whatever the file's size.
std::optional<std::string> ReadJournalBytes(const fs::path& journal) {
    File in;
    // Ours is a regular file; a link, a FIFO or a device is never read.
    if (!IsRegularFile(journal) || !in.open(journal, File::Mode::Read).empty()) {
        return std::nullopt;
    }
    std::string text(MaxJournalBytes + 1, '\0');
    std::size_t got = 0;
    if (!in.readAt(0, text.data(), text.size(), got).empty() || got > MaxJournalBytes) {
        return std::nullopt;
    }
    text.resize(got);
    return text;
}

// Whether anything, a dangling link too, stands under `path`.
bool Stands(const fs::path& path) {
    std::error_code ec;
    return fs::exists(fs::symlink_status(path, ec));
}

// Whether `path` is a regular file of `length` bytes (and, for a directory
// file, with `checksum`).
bool HasLength(const fs::path& path, std::uint64_t length) {
    return IsRegularFile(path) && FileLength(path) == length;
}
bool IsDirectoryFile(const fs::path& path, std::uint64_t length, std::uint64_t checksum) {
    // Never longer than the most records a directory holds, so it is cheap to read.
    if (length > std::uint64_t{MaxRecords} * RecordSize || !HasLength(path, length)) {
        return false;
    }
    FsError error;
    const auto bytes = ReadSmallFile(path, error);
    return bytes && bytes->size() == length && DirectoryChecksum(*bytes) == checksum;
}
// Whether `path` is a one-file archive of `length` bytes whose first
// `recordBytes` bytes (its records) have `checksum`.
bool IsOneFileArchive(const fs::path& path, std::uint64_t length, std::uint64_t recordBytes,
                      std::uint64_t checksum) {
    File in;
    if (recordBytes > OneFileRecordAreaBytes(MaxRecords) || recordBytes > length ||
        !HasLength(path, length) || !in.open(path, File::Mode::Read).empty()) {
        return false;
    }
    std::string bytes(recordBytes, '\0');
    std::size_t got = 0;
    return in.readAt(0, bytes.data(), bytes.size(), got).empty() && got == recordBytes &&
           DirectoryChecksum(bytes) == checksum;
}

// How far a journalled rebuild got, judged only by the files beside the
// archive: the data file is renamed first, then the directory file.
enum class RenameProgress { NoneDone, DataDone, BothDone, Mismatch };
RenameProgress ProgressOf(const RebuildFiles& files, const RebuildJournal& journal) {
    if (journal.oneFile) {
        // One file, one rename.
        if (IsOneFileArchive(files.newData, journal.dataLength, journal.dirLength,
                             journal.dirChecksum)) {
            return RenameProgress::NoneDone;
        }
        return !Stands(files.newData) && IsOneFileArchive(files.data, journal.dataLength,
                                                          journal.dirLength, journal.dirChecksum)
                   ? RenameProgress::BothDone
                   : RenameProgress::Mismatch;
    }
    const bool newDirWaiting =
        IsDirectoryFile(files.newDir, journal.dirLength, journal.dirChecksum);
    if (HasLength(files.newData, journal.dataLength) && newDirWaiting) {
        return RenameProgress::NoneDone;
    }
    const bool dataDone = !Stands(files.newData) && HasLength(files.data, journal.dataLength);
    if (dataDone && newDirWaiting) {
        return RenameProgress::DataDone;
    }
    if (dataDone && !Stands(files.newDir) &&
        IsDirectoryFile(files.dir, journal.dirLength, journal.dirChecksum)) {
        return RenameProgress::BothDone;
    }
    return RenameProgress::Mismatch;
}

FsError WriteSynced(const fs::path& path, std::string_view bytes, const fs::path& ownerAndMode) {
    RemoveQuietly(path); // a link planted under our name is not followed
    File out;
    FsError error = out.open(path, File::Mode::CreateTruncate);
    if (error.empty()) {
        KeepOwnerAndMode(out.fd(), ownerAndMode);
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

// The last of a rebuild: once both renames are done, the journal goes.
FsError RemoveJournal(const RebuildFiles& files) {
    if (FsError error = SyncFolder(files.data.parent_path()); !error.empty()) {
        return error;
    }
    if (files.dir.parent_path() != files.data.parent_path()) {
        if (FsError error = SyncFolder(files.dir.parent_path()); !error.empty()) {
            return error;
        }
    }
    std::error_code ec;
    fs::remove(files.journal, ec);
    return ec ? ec.message() : FsError{};
}

} // namespace

std::string RebuildJournalText(const RebuildJournal& journal) {
    return std::string(JournalHeader) + "\ndata " + std::to_string(journal.dataLength) +
           (journal.oneFile ? "\nrecords " : "\ndir ") + std::to_string(journal.dirLength) + " " +
           std::to_string(journal.dirChecksum) + "\n";
}

std::optional<RebuildJournal> ParseRebuildJournal(std::string_view text) {
    if (text.size() > MaxJournalBytes) {
        return std::nullopt;
    }
    const auto take = [&text](std::string_view prefix,
                              char end) -> std::optional<std::string_view> {
        if (text.substr(0, prefix.size()) != prefix) {
            return std::nullopt;
        }
        text.remove_prefix(prefix.size());
        const std::size_t at = text.find(end);
        if (at == std::string_view::npos) {
            return std::nullopt;
        }
        const std::string_view field = text.substr(0, at);
        text.remove_prefix(at + 1);
        return field;
    };
    const auto header = take("", '\n');
    const auto data = take("data ", '\n');
    const bool oneFile = text.starts_with("records ");
    const auto dirLength = take(oneFile ? "records " : "dir ", ' ');
    const auto checksum = take("", '\n');
    if (!header || *header != JournalHeader || !data || !dirLength || !checksum || !text.empty()) {
        return std::nullopt;
    }
    const auto dataValue = ParseNumber(*data);
    const auto dirValue = ParseNumber(*dirLength);
    const auto checksumValue = ParseNumber(*checksum);
    if (!dataValue || !dirValue || !checksumValue) {
        return std::nullopt;
    }
    return RebuildJournal{*dataValue, *dirValue, *checksumValue, oneFile};
}

std::uint64_t DirectoryChecksum(std::string_view bytes) {
    // FNV-1a: enough to tell our new directory file from any other.
    std::uint64_t hash = 14695981039346656037ull;
    for (const char c : bytes) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ull;
    }
    return hash;
}

RebuildFiles RebuildFilesFor(const fs::path& dataPath, const fs::path& dirPath) {
    const fs::path data = ResolvedPath(dataPath);
    const fs::path dir = ResolvedPath(dirPath);
    return {data,
            dir,
            fs::path(data.string() + ".korvel-new"),
            fs::path(dir.string() + ".korvel-new"),
            fs::path(data.string() + ".korvel-journal"),
            fs::path(data.string() + ".korvel-lock"),
            fs::path(data.string() + ".korvel-old"),
            fs::path(data.string() + ".korvel-records")};
}

std::optional<std::string> RecoverInterruptedRebuild(const fs::path& dataPath) {
    const ArchiveLock lock = ArchiveLock::Take(dataPath);
    if (!lock.held()) {
        // A rebuild in progress elsewhere, or a folder we may not change:
        // either way its files are not ours to touch.
        return std::nullopt;
    }
    RebuildFiles files = RebuildFilesFor(dataPath, DirectoryPathFor(dataPath));
    RemoveQuietly(PartFor(files.journal));
    if (!Stands(files.journal)) {
        // No journal: the new pair was never complete.
        RemoveQuietly(files.newData);
        RemoveQuietly(files.newDir);
        return RecoverInterruptedRecordWrite(dataPath);
    }
    const auto bytes = ReadJournalBytes(files.journal);
    const auto journal = bytes ? ParseRebuildJournal(*bytes) : std::nullopt;
    if (journal && journal->oneFile) {
        // A one-file archive has no directory file: the data file is both.
        files = RebuildFilesFor(dataPath, dataPath);
    }
    const RenameProgress progress =
        journal ? ProgressOf(files, *journal) : RenameProgress::Mismatch;
    FsError error;
    switch (progress) {
    case RenameProgress::NoneDone:
        error = RenameFile(files.newData, files.data);
        [[fallthrough]];
    case RenameProgress::DataDone:
        if (error.empty() && !journal->oneFile) {
            error = RenameFile(files.newDir, files.dir);
        }
        [[fallthrough]];
    case RenameProgress::BothDone:
        if (error.empty()) {
            error = RemoveJournal(files);
        }
        if (error.empty()) {
            return RecoverInterruptedRecordWrite(dataPath);
        }
        // Should that fail, the journal stays for next time.
        if (!error.empty()) {
            return "An interrupted rebuild of " + dataPath.string() +
                   " could not be finished yet: " + error;
        }
        return std::nullopt;
    case RenameProgress::Mismatch:
        break;
    }
    return "Ignored " + files.journal.string() +
           ": it is not a rebuild journal that matches the files beside it. Nothing was "
           "changed; remove it to stop this message.";
}

namespace {
constexpr std::uint64_t CopyPieceBytes = 4 * SpanWindow;
} // namespace

void RemoveNewPair(const RebuildFiles& files) {
    RemoveQuietly(files.newData);
    RemoveQuietly(files.newDir);
    RemoveQuietly(PartFor(files.journal));
}

Status WriteNewData(const EntryTable& table, const DirectoryStore& store, File& in,
                    const fs::path& newData, const RebuildProgress& progress,
                    std::vector<DirRecord>& records, std::vector<Status>& cut, bool& stopped,
                    const std::optional<fs::path>& modeFrom) {
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
    if (modeFrom) {
        KeepOwnerAndMode(out.fd(), *modeFrom);
    } else {
        KeepOwnerAndModeOf(out.fd(), in.fd());
    }
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
    const std::uint64_t firstSector = store.firstDataSector(table.size());
    std::uint64_t running = firstSector; // in sectors
    for (std::size_t row = 0; row < table.size(); ++row) {
        const Entry& entry = table[row];
        if (running > std::numeric_limits<std::uint32_t>::max()) {
            return Status::Failed("the rebuilt archive would be larger than an archive can address",
                                  "rebuildTooBig", {});
        }
        spans.push_back({entry.byteOffset(), std::uint64_t{present[row]} * SectorSize});
        records.push_back({static_cast<std::uint32_t>(running), present[row], entry.name});
        running += present[row];
        if (present[row] < entry.sizeSectors) {
            cut.push_back(MissingBytesStatus(
                entry.name, std::uint64_t{entry.sizeSectors - present[row]} * SectorSize));
        }
    }
    FsError error;
    // The spans go in pieces of about CopyPieceBytes, so that a request to
    // stop is heard within a moment; each piece still gathers its spans into
    // large writes.
    std::uint64_t outAt = firstSector * SectorSize;
    if (store.recordsInDataFile()) {
        error = out.writeAt(0, store.encode(records));
        if (error.empty()) {
            error = FillWithZeros(out, OneFileRecordAreaBytes(records.size()),
                                  outAt - OneFileRecordAreaBytes(records.size()));
        }
    }
    for (std::size_t first = 0; error.empty() && first < spans.size();) {
        if (StopAsked(progress.stop)) {
            stopped = true;
            return Status::Ok();
        }
        std::size_t end = first;
        std::uint64_t pieceBytes = 0;
        while (end < spans.size() && (end == first || pieceBytes < CopyPieceBytes)) {
            pieceBytes += spans[end++].count;
        }
        const std::vector<CopySpan> piece(spans.begin() + static_cast<std::ptrdiff_t>(first),
                                          spans.begin() + static_cast<std::ptrdiff_t>(end));
        error = CopySpansInOrder(in, out, outAt, piece, [&](std::size_t i) {
            if (progress.copying) {
                progress.copying(first + i);
            }
        });
        outAt += pieceBytes;
        first = end;
    }
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

Status WriteNewDirectory(const std::string& bytes, const RebuildFiles& files) {
    FsError error = WriteSynced(files.newDir, bytes, files.dir);
    if (error.empty()) {
        error = Step("rebuild-dir-written");
    }
    if (error.empty()) {
        error = SyncFolder(files.dir.parent_path());
    }
    return error.empty() ? Status::Ok() : Status::Failed(error);
}

Status WriteJournal(const RebuildFiles& files, const RebuildJournal& journal) {
    const fs::path part = PartFor(files.journal);
    FsError error = WriteSynced(part, RebuildJournalText(journal), {});
    if (error.empty()) {
        error = Step("rebuild-journal-part");
    }
    if (error.empty()) {
        error = RenameFile(part, files.journal);
    }
    if (error.empty()) {
        error = SyncFolder(files.data.parent_path());
    }
    if (!error.empty()) {
        RemoveQuietly(files.journal);
        return Status::Failed(error);
    }
    return Status::Ok();
}

Status RenameNewPairIntoPlace(const RebuildFiles& files, bool dataFileOnly) {
    FsError error = Step("rebuild-journal-written");
    if (error.empty()) {
        error = RenameFile(files.newData, files.data);
    }
    if (error.empty()) {
        error = Step("rebuild-data-renamed");
    }
    if (error.empty() && !dataFileOnly) {
        error = RenameFile(files.newDir, files.dir);
    }
    if (error.empty()) {
        error = Step("rebuild-dir-renamed");
    }
    if (error.empty()) {
        error = RemoveJournal(files);
    }
    return error.empty() ? Status::Ok() : Status::Failed(error);
}

CompactCopy PrepareCompactCopy(const EntryTable& table, const DirectoryStore& store, File& in,
                               const RebuildFiles& files, const RebuildProgress& progress,
                               const std::optional<fs::path>& modeFrom) {
    CompactCopy copy;
    RemoveNewPair(files); // nothing planted under our names is followed
    std::vector<DirRecord> records;
    copy.status = WriteNewData(table, store, in, files.newData, progress, records, copy.cut,
                               copy.stopped, modeFrom);
    const std::string newDirectory = store.encode(records);
    if (copy.status.ok() && !copy.stopped && !store.recordsInDataFile()) {
        if (progress.writingDirectory) {
            progress.writingDirectory();
        }
        copy.status = WriteNewDirectory(newDirectory, files);
    }
    // The last moment a stop leaves everything as it was: once the journal
    // exists the new files take their places.
    if (copy.status.ok() && !copy.stopped && StopAsked(progress.stop)) {
        copy.stopped = true;
    }
    if (copy.status.ok() && !copy.stopped) {
        const auto written = FileLength(files.newData);
        copy.status =
            written
                ? WriteJournal(files, {*written, newDirectory.size(),
                                       DirectoryChecksum(newDirectory), store.recordsInDataFile()})
                : Status::Failed("cannot read the size of " + files.newData.string());
    }
    if (!copy.status.ok() || copy.stopped) {
        RemoveNewPair(files);
        if (copy.stopped) {
            copy.cut.clear(); // nothing was copied, so nothing was cut
        }
    }
    return copy;
}

RebuildResult RebuildArchive(const Archive& archive, const RebuildProgress& progress) {
    RebuildResult result;
    if (!archive.isOpen()) {
        result.status = Status::Failed("no archive is open", "noArchiveOpen", {});
        return result;
    }
    const ArchiveLock lock = LockForWriting(archive);
    if (!lock.held()) {
        result.status = lock.status();
        return result;
    }
    // Links are followed: the new pair is written beside the files they
    // point at and renamed over those, so the links stay links.
    const DirectoryStore& store = DirectoryStoreOf(archive.kind());
    const RebuildFiles files = RebuildFilesFor(archive.dataPath(), archive.dirPath());
    // A record journal still standing is of records the rows already say;
    // written again over the rebuilt file it would spoil it.
    RemoveQuietly(files.records);

    // The old data file stays open until its replacement is in place, so that
    // freeing it happens when we close it, off the command's time.
    File in;
    if (FsError error = in.open(files.data, File::Mode::Read); !error.empty()) {
        result.status = Status::Failed(error);
        return result;
    }
    CompactCopy copy = PrepareCompactCopy(archive.table(), store, in, files, progress, {});
    result.status = copy.status;
    result.cut = std::move(copy.cut);
    result.stopped = copy.stopped;
    if (!result.status.ok() || result.stopped) {
        return result;
    }

    if (!OpenFilesCanBeReplaced) {
        (void)in.close();
    }
    result.reopen = true;
    result.status = RenameNewPairIntoPlace(files, store.recordsInDataFile());
    CloseInBackground(std::move(in));
    return result;
}

} // namespace korvel
