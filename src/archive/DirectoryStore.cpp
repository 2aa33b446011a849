// The two-file kind's directory: the ".dir" file beside the data file, read
// whole and written anew atomically. The one-file kind's is in
// OneFileDirectory.cpp.
#include "archive/DirectoryStore.h"

#include "platform/FileCopy.h"
#include "platform/FileSystem.h"

#include <limits>
#include <system_error>

namespace korvel {
namespace {

std::string TooManyEntries(const std::string& dirPath) {
    return "The directory file " + dirPath + " lists more than " + std::to_string(MaxRecords) +
           " entries, the most an archive can hold.";
}

class TwoFileDirectory final : public DirectoryStore {
public:
    ArchiveKind kind() const override { return ArchiveKind::TwoFile; }
    std::string recordsPath(const std::string&, const std::string& dirPath) const override {
        return dirPath;
    }

    Status read(const std::string& dirPath, std::vector<DirRecord>& records) const override {
        const auto length = FileLength(dirPath);
        if (!length) {
            return Status::Failed("Cannot read the directory file " + dirPath + ".");
        }
        if (RecordCountForLength(*length) > MaxRecords) {
            return Status::Failed(TooManyEntries(dirPath));
        }
        FsError error;
        const auto bytes = ReadSmallFile(dirPath, error);
        if (!bytes) {
            return Status::Failed(error);
        }
        records = DecodeDirectory(*bytes);
        if (records.size() > MaxRecords) {
            return Status::Failed(TooManyEntries(dirPath));
        }
        return Status::Ok();
    }

    DirectoryWrite write(const std::string& dirPath,
                         const std::vector<DirRecord>& records) const override {
        if (FsError error = WriteFileAtomically(dirPath, EncodeDirectory(records));
            !error.empty()) {
            return {Status::Failed(error), true};
        }
        return {};
    }

    std::string encode(const std::vector<DirRecord>& records) const override {
        return EncodeDirectory(records);
    }
    bool recordsInDataFile() const override { return false; }
    std::uint64_t firstDataSector(std::uint64_t) const override { return 0; }
    std::uint64_t roomFor(std::uint64_t recordCount) const override { return recordCount; }
    std::uint32_t maxEntrySectors() const override {
        return std::numeric_limits<std::uint32_t>::max();
    }
};

} // namespace

const DirectoryStore& OneFileDirectoryStore();

const DirectoryStore& DirectoryStoreOf(ArchiveKind kind) {
    static const TwoFileDirectory twoFile;
    return kind == ArchiveKind::OneFile ? OneFileDirectoryStore() : twoFile;
}

ArchiveKind ArchiveKindOfFile(const std::filesystem::path& dataPath) {
    std::error_code ec;
    File in;
    char first[OneFileMagic.size()] = {};
    std::size_t got = 0;
    // Only a regular file is read: opening a FIFO would wait for a writer.
    if (!std::filesystem::is_regular_file(dataPath, ec) ||
        !in.open(dataPath, File::Mode::Read).empty() ||
        !in.readAt(0, first, sizeof first, got).empty()) {
        return ArchiveKind::TwoFile;
    }
    return ArchiveKindOf(std::string_view(first, got));
}

} // namespace korvel
