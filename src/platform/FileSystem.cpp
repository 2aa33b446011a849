#include "platform/FileSystem.h"
#include "platform/FileCopy.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <system_error>

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
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

std::optional<FileStamp> StampOf(const fs::path& path) {
    std::error_code ec;
    const std::uint64_t length = fs::file_size(path, ec);
    if (ec) {
        return std::nullopt;
    }
    const fs::file_time_type modified = fs::last_write_time(path, ec);
    if (ec) {
        return std::nullopt;
    }
    FileStamp stamp{length, modified};
#ifndef _WIN32
    struct stat info {};
    if (stat(path.c_str(), &info) == 0) {
        stamp.device = static_cast<std::uint64_t>(info.st_dev);
        stamp.inode = static_cast<std::uint64_t>(info.st_ino);
    }
#endif
    return stamp;
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

bool IsWritable(const fs::path& path) {
    if (!FileExists(path) || IsReadOnly(path)) {
        return false;
    }
#ifdef _WIN32
    return true;
#else
    return ::access(path.c_str(), W_OK) == 0;
#endif
}

fs::path ResolvedPath(const fs::path& path) {
    std::error_code ec;
    fs::path absolute = fs::absolute(path, ec);
    if (ec) {
        absolute = path;
    }
    fs::path resolved = fs::weakly_canonical(absolute, ec);
    return ec ? absolute.lexically_normal() : resolved;
}

#ifndef _WIN32
namespace {

void TakeOwnerAndMode(int fd, const struct stat& old) {
    // Only an administrator may give a file away; anyone may pass it to a
    // group they belong to. The mode comes last, as a change of owner clears
    // the set-id bits.
    if (::fchown(fd, old.st_uid, old.st_gid) != 0) {
        (void)::fchown(fd, static_cast<uid_t>(-1), old.st_gid);
    }
    (void)::fchmod(fd, old.st_mode & 07777);
}

} // namespace
#endif

void KeepOwnerAndMode(int fd, const fs::path& model) {
#ifdef _WIN32
    (void)fd;
    (void)model;
#else
    struct stat old {};
    if (!model.empty() && ::stat(model.c_str(), &old) == 0) {
        TakeOwnerAndMode(fd, old);
    }
#endif
}

void KeepOwnerAndModeOf(int fd, int modelFd) {
#ifdef _WIN32
    (void)fd;
    (void)modelFd;
#else
    struct stat old {};
    if (::fstat(modelFd, &old) == 0) {
        TakeOwnerAndMode(fd, old);
    }
#endif
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

FsError WriteFileAtomically(const fs::path& requested, std::string_view bytes) {
    static std::mt19937_64 random{std::random_device{}()};
    const fs::path path = ResolvedPath(requested);
    const fs::path temporary =
        path.parent_path() / (".korvel-" + std::to_string(random() % 1000000000) + ".tmp");
    const auto failed = [&temporary](FsError error) {
        std::error_code ignored;
        fs::remove(temporary, ignored);
        return error;
    };
#ifdef _WIN32
    {
        if (FsError error = Step(StepWrite); !error.empty()) {
            return error;
        }
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (FsError error = Step(StepFlush); !error.empty()) {
            return failed(error);
        }
        out.flush();
        if (!out) {
            return failed("could not write " + temporary.string());
        }
    }
#else
    if (FsError error = Step(StepWrite); !error.empty()) {
        return error;
    }
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
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
            return failed(SystemErrorText(saved));
        }
        data += written;
        left -= static_cast<std::size_t>(written);
    }
    // Keep the mode and owner of the file we replace (a read-only directory
    // file the person chose to keep read-only stays so).
    KeepOwnerAndMode(fd, path);
    if (FsError error = Step(StepFlush); !error.empty()) {
        ::close(fd);
        return failed(error);
    }
    const bool synced = ::fsync(fd) == 0;
    const int syncError = errno;
    if (::close(fd) != 0 || !synced) {
        return failed(SystemErrorText(synced ? errno : syncError));
    }
#endif
    if (FsError error = RenameFile(temporary, path); !error.empty()) {
        return failed(error);
    }
    return {};
}

FsError CreateEmptyFile(const fs::path& path) {
    if (FsError error = Step(StepWrite); !error.empty()) {
        return error;
    }
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
