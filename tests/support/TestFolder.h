// A fresh folder per test, used as the editor's folder (KORVEL_HOME) with the
// shipped lang.ini copied in, and helpers to write archives byte by byte.
#pragma once

#include "archive/Format.h"

#include <filesystem>
#include <string>
#include <vector>

namespace korvel::test {

class TestFolder {
public:
    TestFolder();
    ~TestFolder();
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
    std::string oldHome_;
    bool hadHome_ = false;
};

// While it lives, writing a file past `bytes` fails (EFBIG) as a full disk
// would; the signal that would otherwise end the process is ignored.
class FileSizeLimit {
public:
    explicit FileSizeLimit(std::uint64_t bytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    std::uint64_t oldSoft_ = 0;
    void (*oldHandler_)(int) = nullptr;
};

std::string ReadBytes(const std::filesystem::path& file);
void WriteBytes(const std::filesystem::path& file, const std::string& bytes);
// Writes an archive pair: the records as given, and a data file of `dataBytes`
// bytes filled with a pattern that differs per sector.
void WriteArchive(const std::filesystem::path& img, const std::vector<DirRecord>& records,
                  std::uint64_t dataBytes);
// Writes at `twin` the one-file archive that lists what the two-file archive
// `img` lists: the same records moved behind the record area, the same data.
void WriteOneFileTwin(const std::filesystem::path& img, const std::filesystem::path& twin);
// What an archive of either kind says on disk: its raw records, then the
// bytes of each record's sectors (zeros past the end of the data file).
std::string ListedBytes(const std::filesystem::path& img);

} // namespace korvel::test
