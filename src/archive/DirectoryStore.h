// Where an archive keeps its directory. A two-file archive keeps its records
// in the ".dir" file beside the data file; a one-file archive keeps them at
// the start of the data file itself. The open archive reads and writes its
// records only through this interface, so the table, the commands, the list,
// the reports and the command line never ask which kind they work on: what
// differs (where data may start, how large an entry may be, how the records
// reach the disk safely) is answered here.
#pragma once

#include "archive/Format.h"
#include "platform/Status.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

// How a write of the records ended. When `oldStands` is false the write
// failed midway and could not be undone: its journal stays, and the next open
// finishes it, so the bytes the new records point at must stay where they are.
struct DirectoryWrite {
    Status status = Status::Ok();
    bool oldStands = true;
};

class DirectoryStore {
public:
    virtual ~DirectoryStore() = default;
    virtual ArchiveKind kind() const = 0;
    // The file whose bytes hold the records.
    virtual std::string recordsPath(const std::string& dataPath,
                                    const std::string& dirPath) const = 0;
    // Reads the records. The file's bytes are hostile: their count is checked
    // against the file's length before anything is allocated, and what cannot
    // be read fails with a text that says why.
    virtual Status read(const std::string& recordsPath, std::vector<DirRecord>& records) const = 0;
    // Writes the records (every size within maxEntrySectors); on failure the
    // old records are what the next read finds unless `oldStands` says not.
    virtual DirectoryWrite write(const std::string& recordsPath,
                                 const std::vector<DirRecord>& records) const = 0;
    // The bytes a rebuilt archive keeps its records in: the whole directory
    // file, or the start of the new data file.
    virtual std::string encode(const std::vector<DirRecord>& records) const = 0;
    virtual bool recordsInDataFile() const = 0;
    // The lowest sector an entry's data may use while the directory lists
    // `recordCount` records.
    virtual std::uint64_t firstDataSector(std::uint64_t recordCount) const = 0;
    // How many records to make room for when the records of `recordCount`
    // entries no longer fit before the data: some more, so that adding files
    // one after another does not move entries each time.
    virtual std::uint64_t roomFor(std::uint64_t recordCount) const = 0;
    // The most sectors one entry may take.
    virtual std::uint32_t maxEntrySectors() const = 0;
};

const DirectoryStore& DirectoryStoreOf(ArchiveKind kind);

// The kind of the archive whose data file is `dataPath`, by its first four
// bytes; a file that cannot be read is taken for the two-file kind, whose
// opening then says what is wrong with it.
ArchiveKind ArchiveKindOfFile(const std::filesystem::path& dataPath);

// Finishes a write of a one-file archive's records that was cut short: a
// journal beside the data file that checks out is written into it again; a
// part-written journal is removed. Run under the archive's lock by every
// open. Says so when a journal did not check out.
std::optional<std::string> RecoverInterruptedRecordWrite(const std::filesystem::path& dataPath);

// The record journal's form: a text line naming it, one with the length and
// checksum of the bytes, then the bytes that go at the start of the data
// file. Nothing unless `journal` is exactly that, and the bytes begin a
// one-file header.
std::optional<std::string_view> RecordJournalBytes(std::string_view journal);
std::string RecordJournalText(std::string_view bytes);

} // namespace korvel
