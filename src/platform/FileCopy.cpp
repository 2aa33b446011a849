#include "platform/FileCopy.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace korvel {
namespace {

constexpr std::size_t BufferSize = std::size_t{1} << 20;
constexpr std::size_t ZeroBlockSize = 64 * 1024;

StepHook& Hook() {
    static StepHook hook;
    return hook;
}

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

// Copies through a fixed buffer; returns the bytes copied (fewer than `count`
// only at the end of `in`).
FsError BufferedCopy(int in, std::uint64_t inOffset, int out, std::uint64_t outOffset,
                     std::uint64_t count, std::uint64_t& copied) {
    static thread_local std::vector<char> buffer(BufferSize);
    copied = 0;
    while (copied < count) {
        const std::size_t want =
            static_cast<std::size_t>(std::min<std::uint64_t>(count - copied, BufferSize));
        std::size_t got = 0;
        if (FsError error = ReadAt(in, inOffset + copied, buffer.data(), want, got);
            !error.empty()) {
            return error;
        }
        if (FsError error = WriteAllAt(out, outOffset + copied, buffer.data(), got);
            !error.empty()) {
            return error;
        }
        copied += got;
        if (got < want) {
            break;
        }
    }
    return {};
}

FsError KernelCopy(int in, std::uint64_t inOffset, int out, std::uint64_t outOffset,
                   std::uint64_t count, std::uint64_t& copied) {
    copied = 0;
#ifdef __linux__
    while (copied < count) {
        auto from = static_cast<off64_t>(inOffset + copied);
        auto to = static_cast<off64_t>(outOffset + copied);
        const std::size_t want =
            static_cast<std::size_t>(std::min<std::uint64_t>(count - copied, 1u << 30));
        const ssize_t n = ::copy_file_range(in, &from, out, &to, want, 0);
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            // Not supported between these files: the buffer does the rest.
            if (errno == EXDEV || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP ||
                errno == EBADF) {
                std::uint64_t more = 0;
                FsError error = BufferedCopy(in, inOffset + copied, out, outOffset + copied,
                                             count - copied, more);
                copied += more;
                return error;
            }
            return LastError();
        }
        if (n == 0) {
            break; // end of file
        }
        copied += static_cast<std::uint64_t>(n);
    }
    return {};
#else
    return BufferedCopy(in, inOffset, out, outOffset, count, copied);
#endif
}

} // namespace

File::~File() {
    close();
}

File::File(File&& other) noexcept : fd_(other.fd_) {
    other.fd_ = -1;
}

File& File::operator=(File&& other) noexcept {
    if (this != &other) {
        close();
        fd_ = other.fd_;
        other.fd_ = -1;
    }
    return *this;
}

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
    return ::fsync(fd_) == 0 ? FsError{} : LastError();
}

FsError File::writeAt(std::uint64_t offset, std::string_view bytes) {
    return WriteAllAt(fd_, offset, bytes.data(), bytes.size());
}

FsError File::readAt(std::uint64_t offset, char* data, std::size_t size, std::size_t& got) const {
    return ReadAt(fd_, offset, data, size, got);
}

FsError CopySpansInOrder(const File& in, File& out, std::uint64_t outOffset,
                         const std::vector<CopySpan>& spans,
                         const std::function<void(std::size_t)>& progress) {
    std::string pending; // output not yet written, at most SpanWindow bytes
    pending.reserve(static_cast<std::size_t>(SpanWindow));
    std::uint64_t pendingStart = outOffset;
    const auto flush = [&]() -> FsError {
        FsError error = out.writeAt(pendingStart, pending);
        pendingStart += pending.size();
        pending.clear();
        return error;
    };
    for (std::size_t i = 0; i < spans.size(); ++i) {
        progress(i);
        const CopySpan& span = spans[i];
        if (FsError error = Step("copy"); !error.empty()) {
            return error;
        }
        if (pending.size() + span.count > SpanWindow) {
            if (FsError error = flush(); !error.empty()) {
                return error;
            }
        }
        if (span.count > SpanWindow) {
            // Larger than the buffer: the kernel copies it directly.
            if (FsError error = CopyRange(in, span.inOffset, out, pendingStart, span.count);
                !error.empty()) {
                return error;
            }
            pendingStart += span.count;
            continue;
        }
        // Read straight into the output buffer; past the end of the file the
        // zeros of the resize stay.
        const std::size_t at = pending.size();
        pending.resize(at + static_cast<std::size_t>(span.count), '\0');
        std::size_t got = 0;
        if (FsError error = in.readAt(span.inOffset, pending.data() + at,
                                      static_cast<std::size_t>(span.count), got);
            !error.empty()) {
            return error;
        }
    }
    return flush();
}

FsError WriteZeros(File& out, std::uint64_t offset, std::uint64_t count) {
    static const std::array<char, ZeroBlockSize> zeros{};
    while (count > 0) {
        const std::size_t now =
            static_cast<std::size_t>(std::min<std::uint64_t>(count, zeros.size()));
        if (FsError error = out.writeAt(offset, {zeros.data(), now}); !error.empty()) {
            return error;
        }
        offset += now;
        count -= now;
    }
    return {};
}

FsError CopyRange(const File& in, std::uint64_t inOffset, File& out, std::uint64_t outOffset,
                  std::uint64_t count) {
    if (FsError error = Step("copy"); !error.empty()) {
        return error;
    }
    std::uint64_t copied = 0;
    if (FsError error = KernelCopy(in.fd(), inOffset, out.fd(), outOffset, count, copied);
        !error.empty()) {
        return error;
    }
    if (copied == count) {
        return {};
    }
    // The source ended early: the rest reads as zeros. Where the destination
    // has no bytes yet, growing it gives zeros without writing them.
    std::uint64_t at = outOffset + copied;
    const std::uint64_t end = outOffset + count;
    std::uint64_t outLength = 0;
    if (FsError error = out.length(outLength); !error.empty()) {
        return error;
    }
    if (at < outLength) {
        const std::uint64_t overwrite = std::min(end, outLength) - at;
        if (FsError error = WriteZeros(out, at, overwrite); !error.empty()) {
            return error;
        }
        at += overwrite;
    }
    if (at < end && end > outLength) {
        return out.truncate(end);
    }
    return {};
}

FsError SyncFolder(const std::filesystem::path& folder) {
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
    return std::rename(from.c_str(), to.c_str()) == 0 ? FsError{} : LastError();
}

void SetStepHook(StepHook hook) {
    Hook() = std::move(hook);
}

FsError Step(std::string_view step) {
    if (const char* kill = std::getenv("KORVEL_TEST_KILL_AT"); kill != nullptr && step == kill) {
        std::fprintf(stderr, "korvel-cli: killed at %s\n", kill);
        std::fflush(stderr);
        ::raise(SIGKILL);
    }
    if (Hook()) {
        return Hook()(step);
    }
    return {};
}

} // namespace korvel
