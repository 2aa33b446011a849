#include "archive/Archive.h"

#include "archive/DirectoryStore.h"
#include "archive/EntryFiles.h"
#include "archive/Format.h"
#include "archive/RebuildJournal.h"
#include "platform/Cp1252.h"
#include "platform/FileCopy.h"
#include "platform/FileSystem.h"
#include "platform/OutputFile.h"

#include <system_error>

#include <map>
#include <memory>
#include <mutex>

namespace korvel {
namespace {

std::vector<Entry> RowsOf(const std::vector<DirRecord>& records) {
    std::vector<Entry> rows;
    rows.reserve(records.size());
    for (const DirRecord& record : records) {
        rows.push_back(Entry{record.startSector, record.sizeSectors, record.name, false});
    }
    return rows;
}

// The data path a new archive is opened under. On a case-insensitive system
// this is the classic "lower-cased directory path with .dir turned back into
// .img"; elsewhere lower-casing would name a different file, so we open the
// data file under the name it was created with.
std::string DataPathForNewArchive(const std::string& chosen, const std::filesystem::path& dir) {
#ifdef _WIN32
    (void)chosen;
    std::string path = ToLowerCp1252(dir.string());
    for (std::size_t at = path.find(".dir"); at != std::string::npos;
         at = path.find(".dir", at + 4)) {
        path.replace(at, 4, ".img");
    }
    return path;
#else
    (void)dir;
    return chosen;
#endif
}

} // namespace

Status Archive::ReadDirectory(const std::string& dataPath, const std::string& dirPath) {
    const ArchiveKind kind = ArchiveKindOfFile(dataPath);
    const DirectoryStore& store = DirectoryStoreOf(kind);
    const std::string recordsPath = store.recordsPath(dataPath, dirPath);
    // Taken before reading: a change in between makes the next write refuse,
    // which is the safe side.
    const std::optional<FileStamp> stamp = StampOf(recordsPath);
    std::vector<DirRecord> records;
    if (Status read = store.read(recordsPath, records); !read.ok()) {
        Close();
        return read;
    }
    dataPath_ = dataPath;
    dirPath_ = recordsPath;
    kind_ = kind;
    dirStamp_ = stamp;
    table_.assign(RowsOf(records));
    FindHighestOffset();
    return Status::Ok();
}

std::uint64_t Archive::firstDataSector() const {
    return DirectoryStoreOf(kind_).firstDataSector(table_.size());
}

std::uint64_t Archive::appendOffset() const {
    const DirectoryStore& store = DirectoryStoreOf(kind_);
    // Room for the record of the entry being added and some more, so that
    // the records' growth rarely has anything to move.
    const std::uint64_t records = store.firstDataSector(store.roomFor(table_.size() + 1));
    return std::max(table_.appendOffset(), records * SectorSize);
}

Status Archive::CheckAppendAt(std::uint64_t offset, std::uint64_t sectors,
                              std::uint64_t dataLength) const {
    const DirectoryStore& store = DirectoryStoreOf(kind_);
    const std::uint64_t kept = store.firstDataSector(store.roomFor(table_.size() + 1)) * SectorSize;
    return CheckAppendPlacement(offset, sectors, std::max(dataLength, kept));
}

Status Archive::CheckEntrySectors(std::uint64_t sectors, const std::string& path) const {
    const std::uint32_t most = DirectoryStoreOf(kind_).maxEntrySectors();
    if (sectors <= most) {
        return Status::Ok();
    }
    const std::string mib = std::to_string(std::uint64_t{most} * SectorSize / 1024 / 1024);
    return Status::Failed(
        path + " is too large for an entry of this archive, which holds at most " +
            std::to_string(most) + " sectors (" + mib + " MiB); nothing was changed",
        "entryTooLarge", {path, std::to_string(most), mib});
}

void Archive::dataWritten() {
    if (isOpen() && DirectoryStoreOf(kind_).recordsInDataFile()) {
        dirStamp_ = StampOf(dirPath_);
    }
}

Status Archive::MakeRoomForRecords(std::vector<std::pair<std::size_t, Entry>>& moved,
                                   std::uint64_t& lengthBefore) {
    const DirectoryStore& store = DirectoryStoreOf(kind_);
    const auto inTheWay = [this](std::size_t row, std::uint64_t below) {
        return table_[row].sizeSectors > 0 && table_[row].startSector < below;
    };
    const std::uint64_t needed = store.firstDataSector(table_.size());
    bool blocked = false;
    for (std::size_t row = 0; row < table_.size() && !blocked; ++row) {
        blocked = inTheWay(row, needed);
    }
    if (!blocked) {
        return Status::Ok();
    }
    const std::uint64_t room = store.firstDataSector(store.roomFor(table_.size()));
    File in;
    File data;
    FsError error = in.open(dataPath_, File::Mode::Read);
    if (error.empty()) {
        error = data.open(dataPath_, File::Mode::ReadWrite);
    }
    if (error.empty()) {
        error = data.length(lengthBefore);
    }
    std::vector<std::size_t> rows;
    std::uint64_t sectors = 0;
    for (std::size_t row = 0; row < table_.size() && error.empty(); ++row) {
        if (!inTheWay(row, room)) {
            continue;
        }
        // Moving is copying: an entry reaching past the end of the file has
        // no bytes to copy there, and a rebuild is what cuts it.
        if (SectorsPresent(table_[row], lengthBefore) < table_[row].sizeSectors) {
            return EntriesBeyondDataStatus(lengthBefore);
        }
        rows.push_back(row);
        sectors += table_[row].sizeSectors;
    }
    std::uint64_t at = appendOffset();
    if (Status placed = CheckAppendAt(at, sectors, lengthBefore); !placed.ok()) {
        return placed;
    }
    for (std::size_t i = 0; i < rows.size() && error.empty(); ++i) {
        const Entry entry = table_[rows[i]];
        error = CopyRange(in, entry.byteOffset(), data, at, entry.byteCount());
        moved.emplace_back(rows[i], entry);
        table_.setPlacement(rows[i], static_cast<std::uint32_t>(at / SectorSize),
                            entry.sizeSectors);
        at += entry.byteCount();
    }
    // The copies must be on the disk before records point at them.
    if (error.empty()) {
        error = data.sync();
    }
    if (error.empty()) {
        error = Step("records-room-made");
    }
    return error.empty() ? Status::Ok() : Status::Failed(error);
}

Status Archive::WriteDirectory() {
    const ArchiveLock lock = LockForWriting(*this);
    if (!lock.held()) {
        return lock.status();
    }
    const DirectoryStore& store = DirectoryStoreOf(kind_);
    newRecordsPending_ = false;
    for (std::size_t row = 0; row < table_.size(); ++row) {
        if (table_[row].name.size() > NameFieldSize) {
            table_.setName(row, table_[row].name.substr(0, NameFieldSize));
        }
        if (table_[row].sizeSectors > store.maxEntrySectors()) {
            return CheckEntrySectors(table_[row].sizeSectors, Cp1252ToUtf8(table_[row].name));
        }
    }
    std::vector<std::pair<std::size_t, Entry>> moved;
    std::uint64_t lengthBefore = 0;
    Status room = MakeRoomForRecords(moved, lengthBefore);
    DirectoryWrite written{room, true};
    if (room.ok()) {
        std::vector<DirRecord> records;
        records.reserve(table_.size());
        for (const Entry& entry : table_.rows()) {
            records.push_back({entry.startSector, entry.sizeSectors, entry.name});
        }
        written = store.write(dirPath_, records);
    }
    // A write that could not be undone is finished by the next open, which
    // is the one end that is always whole: the journal holds every new
    // record, while the old ones may be half overwritten. So the moved
    // copies, the rows and the data they point at stay as they are now.
    newRecordsPending_ = !written.status.ok() && !written.oldStands;
    if (!written.status.ok() && written.oldStands) {
        for (const auto& [row, entry] : moved) {
            table_.setPlacement(row, entry.startSector, entry.sizeSectors);
        }
        if (!moved.empty()) {
            // Nothing points at the copies; give the space back.
            File data;
            if (data.open(dataPath_, File::Mode::ReadWrite).empty()) {
                (void)data.truncate(lengthBefore);
            }
        }
    }
    // No one else writes while the lock is held, so the stamp is our write's
    // (failed writes of the records in place changed the data file too).
    if (written.status.ok() || store.recordsInDataFile()) {
        dirStamp_ = StampOf(dirPath_);
    }
    return written.status;
}

void Archive::RestoreRowsAfterFailedWrite(std::vector<Entry> before) {
    if (!newRecordsPending_) {
        table_.assign(std::move(before));
    }
}

void Archive::FollowDirectoryOnDisk() {
    if (newRecordsPending_) {
        // The records on disk may be half written; the rows are what the
        // next open finds.
        FindHighestOffset();
        return;
    }
    const std::optional<FileStamp> stamp = StampOf(dirPath_);
    std::vector<DirRecord> records;
    if (DirectoryStoreOf(kind_).read(dirPath_, records).ok()) {
        table_.assign(RowsOf(records));
        dirStamp_ = stamp;
    }
    FindHighestOffset();
}

bool Archive::changedOnDisk() const {
    // A file that has gone is left to the write to recreate or report.
    const std::optional<FileStamp> now = StampOf(dirPath_);
    return dirStamp_ && now && *now != *dirStamp_;
}

void Archive::Close() {
    dirStamp_.reset();
    newRecordsPending_ = false;
    table_.clear();
    dataPath_ = NoPath;
    dirPath_ = NoPath;
    kind_ = ArchiveKind::TwoFile;
    highestOffset_ = 0;
}

std::optional<OpenFailure>
OpenArchiveFiles(Archive& archive, const std::string& dataPath,
                 const std::function<void(const std::string&, const std::string&)>& beforeReading,
                 std::string* recoveryNotice) {
    // A one-file archive has no directory file, so any name will do.
    const bool oneFile = ArchiveKindOfFile(dataPath) == ArchiveKind::OneFile;
    if (!oneFile && DirectoryIsDataFile(dataPath)) {
        archive.Close();
        return OpenFailure{OpenFailure::Step::NotAnArchive,
                           dataPath + " is not an archive's data file: its directory file would "
                                      "be the file itself. Give the data file the extension .img."};
    }
    if (auto notice = RecoverInterruptedRebuild(dataPath); notice && recoveryNotice) {
        *recoveryNotice = std::move(*notice);
    }
    const std::string dirPath = DirectoryStoreOf(ArchiveKindOfFile(dataPath))
                                    .recordsPath(dataPath, DirectoryPathFor(dataPath).string());
    if (!FileExists(dataPath)) {
        archive.Close();
        return OpenFailure{OpenFailure::Step::DataFileMissing, dataPath};
    }
    if (!FileExists(dirPath)) {
        archive.Close();
        return OpenFailure{OpenFailure::Step::DirectoryFileMissing, dirPath};
    }
    if (beforeReading) {
        beforeReading(dataPath, dirPath);
    }
    if (const Status read = archive.ReadDirectory(dataPath, dirPath); !read.ok()) {
        return OpenFailure{OpenFailure::Step::DirectoryUnreadable, read.error(), read};
    }
    return std::nullopt;
}

namespace {

// The locks this process holds, by lock file, with how many holders each.
struct HeldLock {
    LockFile file;
    int holders = 0;
};
std::mutex& HeldLocksMutex() {
    static std::mutex mutex;
    return mutex;
}
std::map<std::string, std::unique_ptr<HeldLock>>& HeldLocks() {
    static std::map<std::string, std::unique_ptr<HeldLock>> locks;
    return locks;
}

} // namespace

ArchiveLock ArchiveLock::Take(const std::filesystem::path& dataPath) {
    const std::filesystem::path lockPath =
        RebuildFilesFor(dataPath, DirectoryPathFor(dataPath)).lock;
    ArchiveLock lock;
    lock.key_ = lockPath.string();
    const std::lock_guard<std::mutex> guard(HeldLocksMutex());
    auto& held = HeldLocks()[lock.key_];
    if (!held) {
        held = std::make_unique<HeldLock>();
    }
    if (held->holders == 0) {
        FsError error;
        switch (held->file.lock(lockPath, error)) {
        case LockFile::Result::Locked:
            break;
        case LockFile::Result::Busy:
            lock.state_ = State::Busy;
            lock.why_ = Status::Failed("The archive " + dataPath.string() +
                                           " is in use by another Korvel; nothing was changed. "
                                           "Try again when it has finished.",
                                       "archiveInUse", {dataPath.string()});
            return lock;
        case LockFile::Result::Failed:
            lock.why_ =
                Status::Failed("cannot lock the archive " + dataPath.string() + " (" +
                                   lockPath.string() + "): " + error,
                               "archiveNoLock", {dataPath.string(), lockPath.string(), error});
            return lock;
        }
    }
    ++held->holders;
    lock.state_ = State::Held;
    return lock;
}

ArchiveLock::ArchiveLock(ArchiveLock&& other) noexcept
    : state_(other.state_), key_(std::move(other.key_)), why_(other.why_) {
    other.state_ = State::Failed;
}

ArchiveLock::~ArchiveLock() {
    if (state_ != State::Held) {
        return;
    }
    const std::lock_guard<std::mutex> guard(HeldLocksMutex());
    auto found = HeldLocks().find(key_);
    if (found != HeldLocks().end() && --found->second->holders == 0) {
        found->second->file.release();
    }
}

Status ArchiveLock::status() const {
    return held() ? Status::Ok() : why_;
}

ArchiveLock ArchiveLock::Refused(Status why) {
    ArchiveLock lock;
    lock.why_ = std::move(why);
    return lock;
}

ArchiveLock LockForWriting(const Archive& archive) {
    if (!archive.isOpen()) {
        return ArchiveLock::Refused(Status::Failed("no archive is open", "noArchiveOpen", {}));
    }
    for (const std::string& path : {archive.dataPath(), archive.dirPath()}) {
        // A file that has gone is left to the write to recreate or report.
        if (FileExists(path) && !IsWritable(path)) {
            return ArchiveLock::Refused(
                Status::Failed(path + " is read-only, so the archive cannot be changed; nothing "
                                      "was changed.",
                               "archiveReadOnly", {path}));
        }
    }
    ArchiveLock lock = ArchiveLock::Take(archive.dataPath());
    if (lock.held() && archive.changedOnDisk()) {
        return ArchiveLock::Refused(Status::Failed(
            archive.dirPath() + " was changed by another program since Korvel read it; open "
                                "the archive again to see the change. Nothing was changed.",
            "archiveChanged", {archive.dirPath()}));
    }
    return lock;
}

bool DirectoryIsDataFile(const std::string& dataPath) {
    const std::filesystem::path data(dataPath);
    const std::filesystem::path dir = DirectoryPathFor(data);
    std::error_code ec;
    return dir.lexically_normal() == data.lexically_normal() ||
           std::filesystem::equivalent(dir, data, ec);
}

std::string NewArchiveDataPath(const std::string& chosen) {
    return HasImgExtension(chosen) ? chosen : chosen + ".img";
}

namespace {

std::vector<std::string> ExistingOf(const std::vector<std::string>& files) {
    std::vector<std::string> existing;
    for (const std::string& path : files) {
        std::error_code ec;
        if (std::filesystem::exists(std::filesystem::symlink_status(path, ec))) {
            existing.push_back(path);
        }
    }
    return existing;
}

bool IsConfirmed(const std::string& path, const std::vector<std::string>& confirmed) {
    for (const std::string& file : confirmed) {
        std::error_code ec;
        if (file == path || std::filesystem::equivalent(file, path, ec)) {
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<std::string> NewArchiveFiles(const std::string& dataPath, ArchiveKind kind) {
    if (kind == ArchiveKind::OneFile) {
        return {dataPath};
    }
    return {dataPath, DirectoryPathFor(dataPath).string()};
}

std::vector<std::string> FilesNewArchiveWouldEmpty(const std::string& dataPath, ArchiveKind kind) {
    return ExistingOf(NewArchiveFiles(dataPath, kind));
}

Status CreateEmptyArchive(const std::string& dataPath, const std::vector<std::string>& confirmed,
                          std::string& openPath, ArchiveKind kind) {
    if (kind == ArchiveKind::TwoFile && DirectoryIsDataFile(dataPath)) {
        return Status::Failed("cannot create " + dataPath +
                                  ": its directory file would be the data file itself",
                              "dirIsData", {dataPath});
    }
    const std::filesystem::path dirPath = DirectoryPathFor(dataPath);
    const std::vector<std::string> files = NewArchiveFiles(dataPath, kind);
    for (const std::string& file : ExistingOf(files)) {
        if (!IsConfirmed(file, confirmed)) {
            return Status::Failed("cannot create " + dataPath + ": it would empty " + file +
                                      ", which was not confirmed",
                                  "emptyNotConfirmed", {dataPath, file});
        }
    }
    for (const std::string& path : files) {
        File file;
        const OutputOpen opened = OpenOutputFile(
            file, path, {},
            IsConfirmed(path, confirmed) ? OutputMode::Replace : OutputMode::CreateNew);
        if (!opened.error.empty()) {
            return Status::Failed(opened.refused ? opened.error
                                                 : "cannot create " + path + ": " + opened.error);
        }
        FsError error;
        if (kind == ArchiveKind::OneFile) {
            std::string header = EncodeOneFileRecordArea({});
            header.resize(OneFileFirstDataSector(0) * SectorSize, '\0');
            error = file.writeAt(0, header);
        }
        if (error.empty()) {
            error = file.close();
        }
        if (!error.empty()) {
            return Status::Failed("cannot create " + path + ": " + error);
        }
    }
    openPath = DataPathForNewArchive(dataPath, dirPath);
    return Status::Ok();
}

} // namespace korvel
