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

} // namespace korvel::test
