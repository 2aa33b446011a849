#include "platform/FileSystem.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <system_error>

#ifndef _WIN32
#include <fcntl.h>
#include <unistd.h>
#endif

namespace korvel {
namespace fs = std::filesystem;

std::string SystemErrorText(int errorNumber) {
    return std::generic_category().message(errorNumber);
}

bool FileExists(const fs::path& path) {
    std::error_code ec;
    return fs::is_regular_file(path, ec);
}

std::optional<std::uint64_t> FileLength(const fs::path& path) {
    std::error_code ec;
    const auto size = fs::file_size(path, ec);
    if (ec) {
        return std::nullopt;
    }
    return size;
}

bool IsReadOnly(const fs::path& path) {
    std::error_code ec;
    const auto status = fs::status(path, ec);
    if (ec) {
        return false;
    }
    const auto writable = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    return (status.permissions() & writable) == fs::perms::none;
}

FsError ClearAttributes(const fs::path& path) {
    std::error_code ec;
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add,
                    ec);
    return ec ? ec.message() : FsError{};
}

std::optional<std::string> ReadSmallFile(const fs::path& path, FsError& error) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = SystemErrorText(errno);
        return std::nullopt;
    }
    std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) {
        error = SystemErrorText(errno);
        return std::nullopt;
    }
    return content;
}

FsError WriteFileAtomically(const fs::path& path, std::string_view bytes) {
    static std::mt19937_64 random{std::random_device{}()};
    const fs::path temporary =
        path.parent_path() / (".korvel-" + std::to_string(random() % 1000000000) + ".tmp");
#ifdef _WIN32
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (!out) {
            std::error_code ignored;
            fs::remove(temporary, ignored);
            return "could not write " + temporary.string();
        }
    }
#else
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) {
        return SystemErrorText(errno);
    }
    const char* data = bytes.data();
    std::size_t left = bytes.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, data, left);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            const int saved = errno;
            ::close(fd);
            ::unlink(temporary.c_str());
            return SystemErrorText(saved);
        }
        data += written;
        left -= static_cast<std::size_t>(written);
    }
    if (::fsync(fd) != 0 || ::close(fd) != 0) {
        const int saved = errno;
        ::unlink(temporary.c_str());
        return SystemErrorText(saved);
    }
    // Keep the permissions of the file we replace (a read-only directory file
    // the person chose to keep read-only stays so).
    std::error_code ec;
    const auto old = fs::status(path, ec);
    if (!ec && fs::exists(old)) {
        fs::permissions(temporary, old.permissions(), ec);
    }
#endif
    std::error_code ec2;
    fs::rename(temporary, path, ec2);
    if (ec2) {
        std::error_code ignored;
        fs::remove(temporary, ignored);
        return ec2.message();
    }
    return {};
}

FsError CreateEmptyFile(const fs::path& path) {
    std::FILE* file = std::fopen(path.string().c_str(), "wb");
    if (file == nullptr) {
        return SystemErrorText(errno);
    }
    if (std::fclose(file) != 0) {
        return SystemErrorText(errno);
    }
    return {};
}

} // namespace korvel
