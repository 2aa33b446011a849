// The open archive: the paths of its data and directory files and the rows of
// its directory. This is the state every operation works on; it knows nothing
// of windows, menus or settings, so the editor and the command-line tool share
// it as it is.
#pragma once

#include "archive/EntryTable.h"
#include "archive/Format.h"
#include "platform/FileSystem.h"
#include "platform/Status.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

// The path texts of a closed archive.
inline constexpr std::string_view NoPath = "none";

class Archive {
public:
    const std::string& dataPath() const { return dataPath_; }
    // The file that holds the directory: the ".dir" file of a two-file
    // archive, the data file itself for a one-file archive (so whatever
    // names "the directory file" names the file whose records it means).
    const std::string& dirPath() const { return dirPath_; }
    // Which kind of archive is open: where its directory lives.
    ArchiveKind kind() const { return kind_; }
    bool isOpen() const { return dataPath_ != NoPath; }
    EntryTable& table() { return table_; }
    const EntryTable& table() const { return table_; }

    // Largest byte offset among the rows, kept up to date by FindHighestOffset.
    std::uint64_t highestOffset() const { return highestOffset_; }
    void FindHighestOffset() { highestOffset_ = table_.highestOffset(); }

    // Where the data of a new entry goes: behind the entry that lies last,
    // and never below the sectors the directory needs (a one-file archive
    // keeps its records there). The one rule adding and replacing use.
    std::uint64_t appendOffset() const;
    // CheckAppendPlacement for this archive: the sectors kept for its records
    // count as held even where a short data file does not reach them yet.
    Status CheckAppendAt(std::uint64_t offset, std::uint64_t sectors,
                         std::uint64_t dataLength) const;
    // The lowest sector entries' data may use; in-place writes stay above it.
    std::uint64_t firstDataSector() const;
    // Refuses, before anything is written, a file of `sectors` sectors that
    // an entry of this kind of archive cannot hold.
    Status CheckEntrySectors(std::uint64_t sectors, const std::string& path) const;
    // Said by an operation holding the lock after it wrote to the data file.
    // Where the records live in the data file, its stamp is the directory's,
    // and our own write must not look like another program's change.
    void dataWritten();

    // Reads the directory of the archive whose data file is `dataPath` and
    // fills the table from it: from `dirPath` for a two-file archive, from
    // the data file itself for a one-file one (its first bytes say which).
    // The length is checked before anything is read, so a huge file is
    // refused without reading it. On failure the archive is closed and the
    // text says why.
    Status ReadDirectory(const std::string& dataPath, const std::string& dirPath);

    // Writes the directory anew from the rows (names longer than a record
    // holds are cut in the table first): the directory file atomically, or a
    // one-file archive's records in place under a journal, after moving the
    // entries that lie where more records need room to the end of the data
    // file. On failure the old directory is still in place and the rows say
    // what it says.
    Status WriteDirectory();

    // Makes the table list again what the directory file on disk lists: after
    // a failed write the rows must not claim what the archive does not hold.
    void FollowDirectoryOnDisk();

    // True after a WriteDirectory that failed midway and could not be undone
    // (a one-file archive's records half-written, the disk failing on the way
    // back): its journal holds the rows of the table, and the next open
    // writes them whole. The rows then stay as they are, and no data they
    // point at may be put back. Until the next WriteDirectory.
    bool newRecordsPending() const { return newRecordsPending_; }

    // After a failed WriteDirectory: the rows are `before` again, which is
    // what the archive on disk lists, unless the new records are pending.
    void RestoreRowsAfterFailedWrite(std::vector<Entry> before);

    // Forgets the archive: no paths, no rows.
    void Close();

    // True when the directory file on disk is no longer the one the rows were
    // read from or last written to: another program (a second window, the
    // command-line tool) changed the archive, and writing from these rows
    // would undo its change or put data over its entries.
    bool changedOnDisk() const;

private:
    std::optional<FileStamp> dirStamp_;
    std::string dataPath_{NoPath};
    std::string dirPath_{NoPath};
    ArchiveKind kind_ = ArchiveKind::TwoFile;
    std::uint64_t highestOffset_ = 0;
    bool newRecordsPending_ = false;
    EntryTable table_;

    // Moves the entries that lie where the records need room (their rows
    // follow); `moved` keeps their rows and old rows to put back.
    Status MakeRoomForRecords(std::vector<std::pair<std::size_t, Entry>>& moved,
                              std::uint64_t& lengthBefore);
};

// Held by an operation while it writes to the data file under the lock: on
// leaving, whatever way, the archive takes the write for its own
// (Archive::dataWritten).
class DataWriteScope {
public:
    explicit DataWriteScope(Archive& archive) : archive_(archive) {}
    ~DataWriteScope() { archive_.dataWritten(); }
    DataWriteScope(const DataWriteScope&) = delete;
    DataWriteScope& operator=(const DataWriteScope&) = delete;

private:
    Archive& archive_;
};

// Why an archive could not be opened; the window and the command-line tool
// each word it their own way.
struct OpenFailure {
    // NotAnArchive: the directory file would be the data file itself (a data
    // file named without ".img", such as "gta3.img.bak"); writing it would
    // destroy the data.
    enum class Step { DataFileMissing, DirectoryFileMissing, DirectoryUnreadable, NotAnArchive };
    Step step;
    std::string detail; // the missing file's path, or what went wrong reading
    // DirectoryUnreadable: the same, to be said in the person's language.
    Status reason = Status::Ok();
};

// Opens the archive whose data file is `dataPath`, in the order every opener
// follows: a rebuild cut short is finished or cleared first, the directory
// file is found, both files must exist, `beforeReading` (if given) runs with
// both paths (the window asks about read-only files there), then the
// directory is read. Nothing when the archive is open. What the recovery had
// to say (a journal it did not trust) goes to `recoveryNotice`, opened or not.
std::optional<OpenFailure>
OpenArchiveFiles(Archive& archive, const std::string& dataPath,
                 const std::function<void(const std::string& dataPath, const std::string& dirPath)>&
                     beforeReading = {},
                 std::string* recoveryNotice = nullptr);

// The advisory lock on an archive, held by every change to its files and by
// the recovery of an interrupted rebuild, so that a second Korvel (window or
// command line) neither writes at the same time nor clears the temporary
// files of a rebuild in progress. Reading needs no lock: a rebuild replaces
// the old pair only by its final renames. The lock belongs to the archive's
// data file (its link target), is taken without waiting, and within one
// process may be taken again by an operation that another one calls.
class ArchiveLock {
public:
    enum class State { Held, Busy, Failed };
    // Takes the lock on the archive whose data file is `dataPath`.
    static ArchiveLock Take(const std::filesystem::path& dataPath);
    // A lock not taken, for the reason given.
    static ArchiveLock Refused(Status why);

    ArchiveLock(ArchiveLock&& other) noexcept;
    ArchiveLock& operator=(ArchiveLock&&) = delete;
    ArchiveLock(const ArchiveLock&) = delete;
    ArchiveLock& operator=(const ArchiveLock&) = delete;
    ~ArchiveLock();

    State state() const { return state_; }
    bool held() const { return state_ == State::Held; }
    // Why the lock is not held; Ok when it is.
    Status status() const;

private:
    ArchiveLock() = default;
    State state_ = State::Failed;
    std::string key_;
    Status why_ = Status::Failed("the archive is not locked");
};

// Takes the lock for a change to the open archive. Refused (status says why,
// nothing has changed) when another Korvel holds it or when one of its files
// is not writable. Every operation that writes takes it first.
[[nodiscard]] ArchiveLock LockForWriting(const Archive& archive);

// The data file a new archive gets for a chosen path: one without ".img" gets
// the extension (otherwise it would pair with itself as its own directory
// file).
std::string NewArchiveDataPath(const std::string& chosen);

// True when the directory file of `dataPath` would be the data file itself.
bool DirectoryIsDataFile(const std::string& dataPath);

// The files a new archive of `kind` at `dataPath` consists of: the data file,
// and for a two-file archive the directory file found for it.
std::vector<std::string> NewArchiveFiles(const std::string& dataPath, ArchiveKind kind);

// The existing files a new archive at `dataPath` would empty: the data file
// and, for a two-file archive, the directory file found for it, which may be
// another archive's (in a folder holding "LOWER.IMG" and "lower.dir", a new
// "lower.img" finds "lower.dir"). A one-file archive leaves a directory file
// beside it alone. The person must confirm exactly these.
std::vector<std::string> FilesNewArchiveWouldEmpty(const std::string& dataPath,
                                                   ArchiveKind kind = ArchiveKind::TwoFile);

// Creates an empty archive and returns the path to open it under; `dataPath`
// is a NewArchiveDataPath. An existing file is cut to nothing only when it is
// one of `confirmed` (the person agreed to empty exactly that file); any
// other existing file of FilesNewArchiveWouldEmpty makes it fail before
// anything changes, and one appearing meanwhile is not touched. A link, FIFO,
// device or folder is never written through. On failure the status says
// what could not be created. A one-file archive is its data file alone: one
// sector holding the header of no records, which is also where the first
// entry's data will start.
Status CreateEmptyArchive(const std::string& dataPath, const std::vector<std::string>& confirmed,
                          std::string& openPath, ArchiveKind kind = ArchiveKind::TwoFile);

} // namespace korvel
