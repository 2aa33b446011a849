#include "archive/Archive.h"

#include "archive/Format.h"
#include "platform/FileSystem.h"

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

std::string TooManyEntries(const std::string& dirPath) {
    return "The directory file " + dirPath + " lists more than " + std::to_string(MaxRecords) +
           " entries, the most an archive can hold.";
}

} // namespace

Status Archive::ReadDirectory(const std::string& dataPath, const std::string& dirPath) {
    const auto fail = [this](std::string error) {
        Close();
        return Status::Failed(std::move(error));
    };
    const auto length = FileLength(dirPath);
    if (!length) {
        return fail("Cannot read the directory file " + dirPath + ".");
    }
    if (RecordCountForLength(*length) > MaxRecords) {
        return fail(TooManyEntries(dirPath));
    }
    FsError error;
    const auto bytes = ReadSmallFile(dirPath, error);
    if (!bytes) {
        return fail(error);
    }
    const std::vector<DirRecord> records = DecodeDirectory(*bytes);
    if (records.size() > MaxRecords) {
        return fail(TooManyEntries(dirPath));
    }
    dataPath_ = dataPath;
    dirPath_ = dirPath;
    table_.assign(RowsOf(records));
    FindHighestOffset();
    return Status::Ok();
}

Status Archive::WriteDirectory() {
    for (std::size_t row = 0; row < table_.size(); ++row) {
        if (table_[row].name.size() > NameFieldSize) {
            table_.setName(row, table_[row].name.substr(0, NameFieldSize));
        }
    }
    std::vector<DirRecord> records;
    records.reserve(table_.size());
    for (const Entry& entry : table_.rows()) {
        records.push_back({entry.startSector, entry.sizeSectors, entry.name});
    }
    const FsError error = WriteFileAtomically(dirPath_, EncodeDirectory(records));
    return error.empty() ? Status::Ok() : Status::Failed(error);
}

void Archive::FollowDirectoryOnDisk() {
    FsError error;
    if (const auto bytes = ReadSmallFile(dirPath_, error)) {
        table_.assign(RowsOf(DecodeDirectory(*bytes)));
    }
    FindHighestOffset();
}

void Archive::Close() {
    table_.clear();
    dataPath_ = NoPath;
    dirPath_ = NoPath;
    highestOffset_ = 0;
}

} // namespace korvel
