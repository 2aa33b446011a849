// The file primitives on POSIX systems: positioned reads and writes on a
// descriptor.
#include "platform/FileCopy.h"

#include <cerrno>
#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korvel {
namespace {

FsError LastError() {
    return SystemErrorText(errno);
}

FsError ReadAt(int fd, std::uint64_t offset, char* data, std::size_t size, std::size_t& got) {
    got = 0;
    while (got < size) {
        const ssize_t n = ::pread(fd, data + got, size - got, static_cast<off_t>(offset + got));
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return LastError();
        }
        if (n == 0) {
            break; // end of file
        }
        got += static_cast<std::size_t>(n);
    }
    return {};
}

FsError WriteAllAt(int fd, std::uint64_t offset, const char* data, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t n = ::pwrite(fd, data + done, size - done, static_cast<off_t>(offset + done));
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return LastError();
        }
        done += static_cast<std::size_t>(n);
    }
    return {};
}

} // namespace

FsError File::open(const std::filesystem::path& path, Mode mode) {
    close();
    int flags = O_CLOEXEC;
    switch (mode) {
    case Mode::Read:
        flags |= O_RDONLY;
        break;
    case Mode::ReadWrite:
        flags |= O_RDWR;
        break;
    case Mode::CreateTruncate:
        flags |= O_RDWR | O_CREAT | O_TRUNC;
        break;
    }
    fd_ = ::open(path.c_str(), flags, 0644);
    if (fd_ < 0) {
        return LastError();
    }
    struct stat info {};
    if (::fstat(fd_, &info) == 0 && S_ISDIR(info.st_mode)) {
        close();
        return SystemErrorText(EISDIR);
    }
    return {};
}

FsError File::close() {
    if (fd_ < 0) {
        return {};
    }
    const int result = ::close(fd_);
    fd_ = -1;
    return result == 0 ? FsError{} : LastError();
}

FsError File::length(std::uint64_t& out) const {
    struct stat info {};
    if (::fstat(fd_, &info) != 0) {
        return LastError();
    }
    out = static_cast<std::uint64_t>(info.st_size);
    return {};
}

FsError File::truncate(std::uint64_t length) {
    if (FsError error = Step(StepWrite); !error.empty()) {
        return error;
    }
    return ::ftruncate(fd_, static_cast<off_t>(length)) == 0 ? FsError{} : LastError();
}

void File::reserve(std::uint64_t length) {
#ifdef __linux__
    if (length > 0) {
        (void)::fallocate(fd_, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(length));
    }
#else
    (void)length;
#endif
}

FsError File::sync() {
    if (FsError error = Step(StepFlush); !error.empty()) {
        return error;
    }
    return ::fsync(fd_) == 0 ? FsError{} : LastError();
}

FsError File::writeAt(std::uint64_t offset, std::string_view bytes) {
    if (FsError error = Step(StepWrite); !error.empty()) {
        return error;
    }
    return WriteAllAt(fd_, offset, bytes.data(), bytes.size());
}

FsError File::readAt(std::uint64_t offset, char* data, std::size_t size, std::size_t& got) const {
    return ReadAt(fd_, offset, data, size, got);
}

FsError SyncFolder(const std::filesystem::path& folder) {
    if (FsError error = Step(StepFlush); !error.empty()) {
        return error;
    }
    const std::filesystem::path name = folder.empty() ? "." : folder;
    const int fd = ::open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return LastError();
    }
    const int result = ::fsync(fd);
    const int saved = errno;
    ::close(fd);
    return result == 0 ? FsError{} : SystemErrorText(saved);
}

FsError RenameFile(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (FsError error = Step(StepRename); !error.empty()) {
        return error;
    }
    return std::rename(from.c_str(), to.c_str()) == 0 ? FsError{} : LastError();
}

LockFile::~LockFile() {
    release();
}

LockFile::Result LockFile::lock(const std::filesystem::path& path, FsError& error) {
    release();
    // Each round either locks the file the path names or finds that a holder
    // removed it on release; a few rounds are plenty.
    for (int round = 0; round < 16; ++round) {
        const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
        if (fd < 0) {
            error = LastError();
            return Result::Failed;
        }
        if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
            const int saved = errno;
            ::close(fd);
            if (saved == EWOULDBLOCK || saved == EINTR) {
                return Result::Busy;
            }
            error = SystemErrorText(saved);
            return Result::Failed;
        }
        struct stat held {};
        struct stat named {};
        if (::fstat(fd, &held) == 0 && ::lstat(path.c_str(), &named) == 0 &&
            held.st_dev == named.st_dev && held.st_ino == named.st_ino) {
            path_ = path;
            handle_ = fd;
            return Result::Locked;
        }
        ::close(fd);
    }
    error = SystemErrorText(EAGAIN);
    return Result::Failed;
}

void LockFile::release() {
    if (handle_ < 0) {
        return;
    }
    ::unlink(path_.c_str()); // while still holding: see lock()
    ::close(static_cast<int>(handle_));
    handle_ = -1;
    path_.clear();
}

void KillThisProcess() {
    ::raise(SIGKILL);
    std::abort(); // not reached
}

} // namespace korvel
