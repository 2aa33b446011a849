// The one-file kind's directory: the header and records at the start of the
// data file. They are read with one read after their count was checked
// against the file's length, and written in place under a journal: the new
// bytes go to a journal file beside the archive first (flushed, and named
// only once whole), then into the data file (flushed), then the journal
// goes. A kill before the journal is whole leaves the old records; after it,
// the next open writes the journal's bytes again, so the records are old or
// new, never a mix.
#include "archive/DirectoryStore.h"

#include "archive/RebuildJournal.h"
#include "platform/FileCopy.h"
#include "platform/FileSystem.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace korvel {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view RecordJournalHeader = "korvel record journal 1\n";
// The journal's text lines, with room to spare.
constexpr std::uint64_t RecordJournalTextBytes = 128;
// The most bytes one write of the records covers: a full record area (the
// old one, zeroed, can be no larger, as an archive of more does not open).
constexpr std::uint64_t MaxRecordAreaBytes = OneFileRecordAreaBytes(MaxRecords);

fs::path PartOf(const fs::path& journal) {
    return fs::path(journal.string() + ".part");
}

void RemoveQuietly(const fs::path& path) {
    std::error_code ec;
    fs::remove(path, ec);
}

bool IsRegularFile(const fs::path& path) {
    std::error_code ec;
    return fs::is_regular_file(fs::symlink_status(path, ec));
}

std::optional<std::uint64_t> ParseNumber(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || text.empty() ||
        (text.size() > 1 && text[0] == '0')) {
        return std::nullopt;
    }
    return value;
}

// Reads `count` bytes at `offset`; fewer only at the end of the file.
FsError ReadBytes(const File& in, std::uint64_t offset, std::uint64_t count, std::string& out) {
    out.assign(count, '\0');
    std::size_t got = 0;
    FsError error = in.readAt(offset, out.data(), out.size(), got);
    out.resize(got);
    return error;
}

FsError WriteJournal(const fs::path& journal, std::string_view bytes) {
    const fs::path part = PartOf(journal);
    RemoveQuietly(part); // a link planted under our name is not followed
    File out;
    FsError error = out.open(part, File::Mode::CreateTruncate);
    if (error.empty()) {
        error = out.writeAt(0, RecordJournalText(bytes));
    }
    if (error.empty()) {
        error = out.sync();
    }
    if (error.empty()) {
        error = out.close();
    }
    if (error.empty()) {
        error = Step("records-journal-part");
    }
    if (error.empty()) {
        error = RenameFile(part, journal);
    }
    if (error.empty()) {
        error = SyncFolder(journal.parent_path());
    }
    if (!error.empty()) {
        RemoveQuietly(part);
        RemoveQuietly(journal);
    }
    return error;
}

FsError RemoveJournal(const fs::path& journal) {
    std::error_code ec;
    fs::remove(journal, ec);
    if (ec) {
        return ec.message();
    }
    // A journal that came back after a power cut would write these records
    // over whatever a later rebuild put there.
    return SyncFolder(journal.parent_path());
}

FsError WriteAndSync(File& data, std::string_view bytes) {
    FsError error = data.writeAt(0, bytes);
    return error.empty() ? data.sync() : error;
}

// The records a journal at `journal` holds, when it is ours and whole.
std::optional<std::string> JournalRecords(const fs::path& journal) {
    std::string text;
    File in;
    // Ours is a regular file of bounded size; anything else is not read.
    const bool readable =
        IsRegularFile(journal) && in.open(journal, File::Mode::Read).empty() &&
        ReadBytes(in, 0, RecordJournalTextBytes + MaxRecordAreaBytes + 1, text).empty() &&
        text.size() <= RecordJournalTextBytes + MaxRecordAreaBytes;
    const auto bytes = readable ? RecordJournalBytes(text) : std::nullopt;
    return bytes ? std::optional<std::string>(*bytes) : std::nullopt;
}

class OneFileDirectory final : public DirectoryStore {
public:
    ArchiveKind kind() const override { return ArchiveKind::OneFile; }
    std::string recordsPath(const std::string& dataPath, const std::string&) const override {
        return dataPath;
    }

    Status read(const std::string& path, std::vector<DirRecord>& records) const override {
        File in;
        std::uint64_t length = 0;
        std::string header;
        if (FsError error = in.open(path, File::Mode::Read); !error.empty()) {
            return Status::Failed("Cannot read the data file " + path + ": " + error);
        }
        if (FsError error = in.length(length); !error.empty()) {
            return Status::Failed("Cannot read the data file " + path + ": " + error);
        }
        if (FsError error = ReadBytes(in, 0, OneFileHeaderSize, header); !error.empty()) {
            return Status::Failed("Cannot read the data file " + path + ": " + error);
        }
        const std::optional<std::uint32_t> count = OneFileRecordCount(header);
        if (!count) {
            return Status::Failed("The archive " + path +
                                      " begins like a one-file archive (\"VER2\"), but its "
                                      "header is cut short.",
                                  "oneFileShortHeader", {path});
        }
        const std::string stated = std::to_string(*count);
        if (*count > MaxRecords) {
            return Status::Failed("The archive " + path + " says it lists " + stated +
                                      " entries, more than the " + std::to_string(MaxRecords) +
                                      " an archive can hold.",
                                  "oneFileTooMany", {path, stated, std::to_string(MaxRecords)});
        }
        std::string bytes;
        const std::uint64_t recordBytes = std::uint64_t{*count} * RecordSize;
        FsError error;
        if (OneFileRecordAreaBytes(*count) <= length) {
            error = ReadBytes(in, OneFileHeaderSize, recordBytes, bytes);
        }
        if (!error.empty()) {
            return Status::Failed("Cannot read the data file " + path + ": " + error);
        }
        if (bytes.size() != recordBytes) { // too short, or cut while we read
            return Status::Failed("The archive " + path + " says it lists " + stated +
                                      " entries, but the file is too short to hold their "
                                      "records (" +
                                      std::to_string(length) + " bytes).",
                                  "oneFileCountPastEnd", {path, stated, std::to_string(length)});
        }
        records = DecodeOneFileRecords(bytes);
        return Status::Ok();
    }

    DirectoryWrite write(const std::string& path,
                         const std::vector<DirRecord>& records) const override {
        const auto failed = [](FsError error) {
            return DirectoryWrite{Status::Failed(error), true};
        };
        File data;
        std::uint64_t length = 0;
        std::string oldHeader;
        const fs::path journal = RebuildFilesFor(path, path).records;
        FsError error = data.open(path, File::Mode::ReadWrite);
        // An earlier write whose undo failed left its journal: it is finished
        // first, as this write's undo would put back its half-written records
        // and remove the journal that alone knows them.
        if (const auto pending = error.empty() ? JournalRecords(journal) : std::nullopt) {
            error = WriteAndSync(data, *pending);
            if (error.empty()) {
                error = RemoveJournal(journal);
            }
        }
        if (error.empty()) {
            error = data.length(length);
        }
        if (error.empty()) {
            error = ReadBytes(data, 0, OneFileHeaderSize, oldHeader);
        }
        if (!error.empty()) {
            return failed(error);
        }
        // Records the old header listed and the new one does not are zeroed:
        // stale records confuse anyone who reads past the count.
        const std::uint64_t oldArea =
            std::min(length, OneFileRecordAreaBytes(OneFileRecordCount(oldHeader).value_or(0)));
        std::string bytes = EncodeOneFileRecordArea(records);
        bytes.resize(std::max<std::uint64_t>(bytes.size(), std::min(oldArea, MaxRecordAreaBytes)),
                     '\0');
        // What the write covers now, to put back should it fail midway.
        std::string undo;
        if (error = ReadBytes(data, 0, bytes.size(), undo); !error.empty()) {
            return failed(error);
        }
        if (error = WriteJournal(journal, bytes); !error.empty()) {
            return failed(error);
        }
        error = Step("records-journal-written");
        if (error.empty()) {
            error = WriteAndSync(data, bytes);
        }
        if (error.empty()) {
            error = Step("records-written");
        }
        if (!error.empty()) {
            FsError undone = WriteAndSync(data, undo);
            if (undone.empty() && length < bytes.size()) {
                undone = data.truncate(length);
            }
            if (undone.empty()) {
                undone = RemoveJournal(journal);
            }
            // Which records the next open finds is decided by the journal
            // alone: while it is there, the open writes the new records whole
            // over whatever the failed undo left. Once it is gone (only the
            // folder's flush failed) the old records, put back, stand.
            std::error_code ec;
            if (!undone.empty() && fs::exists(fs::symlink_status(journal, ec))) {
                return {Status::Failed(error + "; the old records could not be put back (" +
                                       undone + "), the next open finishes the change"),
                        false};
            }
            return failed(error);
        }
        // The records are in place; a journal that stays is written again,
        // harmlessly, by the next open.
        (void)RemoveJournal(journal);
        return {};
    }

    std::string encode(const std::vector<DirRecord>& records) const override {
        return EncodeOneFileRecordArea(records);
    }
    bool recordsInDataFile() const override { return true; }
    std::uint64_t firstDataSector(std::uint64_t recordCount) const override {
        return OneFileFirstDataSector(recordCount);
    }
    std::uint64_t roomFor(std::uint64_t recordCount) const override {
        // An eighth more and at least two sectors' worth: a growth then
        // moves the entries in the way once for many adds to come, and
        // never more than a sliver of the archive.
        return std::min<std::uint64_t>(MaxRecords,
                                       recordCount + std::max<std::uint64_t>(recordCount / 8, 128));
    }
    std::uint32_t maxEntrySectors() const override { return MaxOneFileEntrySectors; }
};

} // namespace

const DirectoryStore& OneFileDirectoryStore() {
    static const OneFileDirectory oneFile;
    return oneFile;
}

std::string RecordJournalText(std::string_view bytes) {
    return std::string(RecordJournalHeader) + "length " + std::to_string(bytes.size()) +
           " checksum " + std::to_string(DirectoryChecksum(bytes)) + "\n" + std::string(bytes);
}

std::optional<std::string_view> RecordJournalBytes(std::string_view journal) {
    if (!journal.starts_with(RecordJournalHeader)) {
        return std::nullopt;
    }
    journal.remove_prefix(RecordJournalHeader.size());
    const std::size_t lineEnd = journal.find('\n');
    if (lineEnd == std::string_view::npos || lineEnd > RecordJournalTextBytes) {
        return std::nullopt;
    }
    const std::string_view line = journal.substr(0, lineEnd);
    const std::string_view bytes = journal.substr(lineEnd + 1);
    const std::size_t space = line.find(" checksum ");
    if (!line.starts_with("length ") || space == std::string_view::npos) {
        return std::nullopt;
    }
    const auto length = ParseNumber(line.substr(7, space - 7));
    const auto checksum = ParseNumber(line.substr(space + 10));
    const auto count = OneFileRecordCount(bytes);
    if (!length || !checksum || *length != bytes.size() || DirectoryChecksum(bytes) != *checksum ||
        !count || OneFileRecordAreaBytes(*count) > bytes.size()) {
        return std::nullopt;
    }
    return bytes;
}

std::optional<std::string> RecoverInterruptedRecordWrite(const fs::path& dataPath) {
    const fs::path journal = RebuildFilesFor(dataPath, dataPath).records;
    RemoveQuietly(PartOf(journal)); // never complete: the records were not touched
    std::error_code ec;
    if (!fs::exists(fs::symlink_status(journal, ec))) {
        return std::nullopt;
    }
    File data;
    std::string dataHeader;
    const auto bytes = JournalRecords(journal);
    // The journal belongs to a one-file archive; a data file that is not one
    // any more (replaced meanwhile) is not written.
    if (bytes && IsRegularFile(dataPath) && data.open(dataPath, File::Mode::ReadWrite).empty() &&
        ReadBytes(data, 0, OneFileMagic.size(), dataHeader).empty() &&
        ArchiveKindOf(dataHeader) == ArchiveKind::OneFile && dataHeader.size() == 4) {
        FsError error = WriteAndSync(data, *bytes);
        if (error.empty()) {
            error = data.close();
        }
        if (error.empty()) {
            error = RemoveJournal(journal);
        }
        if (!error.empty()) {
            return "An interrupted change of " + dataPath.string() +
                   " could not be finished yet: " + error;
        }
        return std::nullopt;
    }
    return "Ignored " + journal.string() +
           ": it is not a record journal that matches the archive beside it. Nothing was "
           "changed; remove it to stop this message.";
}

} // namespace korvel
