#include "TestFolder.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <random>
#include <stdexcept>
#include <sys/resource.h>

namespace korvel::test {
namespace fs = std::filesystem;

TestFolder::TestFolder() {
    std::random_device seed;
    path_ = fs::temp_directory_path() /
            ("korvel-test-" + std::to_string(seed()) + std::to_string(seed()));
    fs::create_directories(path_);
    fs::copy_file(KORVEL_LANG_INI, path_ / "lang.ini");
    if (const char* old = std::getenv("KORVEL_HOME")) {
        hadHome_ = true;
        oldHome_ = old;
    }
    setenv("KORVEL_HOME", path_.c_str(), 1);
}

TestFolder::~TestFolder() {
    if (hadHome_) {
        setenv("KORVEL_HOME", oldHome_.c_str(), 1);
    } else {
        unsetenv("KORVEL_HOME");
    }
    std::error_code ec;
    fs::permissions(path_, fs::perms::owner_all, fs::perm_options::add, ec);
    for (const auto& item : fs::recursive_directory_iterator(path_, ec)) {
        fs::permissions(item.path(), fs::perms::owner_all, fs::perm_options::add, ec);
    }
    fs::remove_all(path_, ec);
}

FileSizeLimit::FileSizeLimit(std::uint64_t bytes) {
    oldHandler_ = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    oldSoft_ = limit.rlim_cur;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

FileSizeLimit::~FileSizeLimit() {
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = oldSoft_;
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, oldHandler_);
}

std::string ReadBytes(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        throw std::runtime_error("cannot read " + file.string());
    }
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteBytes(const fs::path& file, const std::string& bytes) {
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out) {
        throw std::runtime_error("cannot write " + file.string());
    }
}

void WriteArchive(const fs::path& img, const std::vector<DirRecord>& records,
                  std::uint64_t dataBytes) {
    std::string data(dataBytes, '\0');
    for (std::uint64_t i = 0; i < dataBytes; ++i) {
        data[i] = static_cast<char>('a' + (i / SectorSize) % 26);
    }
    WriteBytes(img, data);
    fs::path dir = img;
    dir.replace_extension(".dir");
    WriteBytes(dir, EncodeDirectory(records));
}

void WriteOneFileTwin(const fs::path& img, const fs::path& twin) {
    std::vector<DirRecord> records =
        DecodeDirectory(ReadBytes(fs::path(img).replace_extension(".dir")));
    const std::uint64_t first = OneFileFirstDataSector(records.size());
    for (DirRecord& record : records) {
        record.startSector += static_cast<std::uint32_t>(first);
    }
    std::string bytes = EncodeOneFileRecordArea(records);
    bytes.resize(first * SectorSize, '\0');
    WriteBytes(twin, bytes + ReadBytes(img));
}

std::string ListedBytes(const fs::path& img) {
    const std::string data = ReadBytes(img);
    const auto count = OneFileRecordCount(data);
    std::string listed = count ? data.substr(0, OneFileRecordAreaBytes(*count))
                               : ReadBytes(fs::path(img).replace_extension(".dir"));
    const auto records =
        count ? DecodeOneFileRecords(listed.substr(OneFileHeaderSize)) : DecodeDirectory(listed);
    for (const DirRecord& r : records) {
        std::string bytes =
            data.substr(std::min<std::size_t>(data.size(), SectorToOffset(r.startSector)),
                        SectorToOffset(r.sizeSectors));
        listed += "|" + bytes.append(SectorToOffset(r.sizeSectors) - bytes.size(), '\0');
    }
    return listed;
}

} // namespace korvel::test
