// Streaming copies for the entry commands: single ranges, the rebuild's spans
// in order, zeros. The file primitives themselves live in FilePosix.cpp and
// FileWindows.cpp.
#include "platform/FileCopy.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

#ifdef __linux__
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace korvel {
namespace {

constexpr std::size_t BufferSize = std::size_t{1} << 20;
constexpr std::size_t ZeroBlockSize = 64 * 1024;

StepHook& Hook() {
    static StepHook hook;
    return hook;
}

// Copies through a fixed buffer; returns the bytes copied (fewer than `count`
// only at the end of `in`).
FsError BufferedCopy(const File& in, std::uint64_t inOffset, File& out, std::uint64_t outOffset,
                     std::uint64_t count, std::uint64_t& copied) {
    static thread_local std::vector<char> buffer(BufferSize);
    copied = 0;
    while (copied < count) {
        const std::size_t want =
            static_cast<std::size_t>(std::min<std::uint64_t>(count - copied, BufferSize));
        std::size_t got = 0;
        if (FsError error = in.readAt(inOffset + copied, buffer.data(), want, got);
            !error.empty()) {
            return error;
        }
        if (FsError error = out.writeAt(outOffset + copied, {buffer.data(), got}); !error.empty()) {
            return error;
        }
        copied += got;
        if (got < want) {
            break;
        }
    }
    return {};
}

#ifdef __linux__
FsError LastError() {
    return SystemErrorText(errno);
}

// copy_file_range: the kernel copies (or shares) the bytes itself.
FsError KernelCopy(const File& in, std::uint64_t inOffset, File& out, std::uint64_t outOffset,
                   std::uint64_t count, std::uint64_t& copied) {
    copied = 0;
    while (copied < count) {
        auto from = static_cast<off64_t>(inOffset + copied);
        auto to = static_cast<off64_t>(outOffset + copied);
        const std::size_t want =
            static_cast<std::size_t>(std::min<std::uint64_t>(count - copied, 1u << 30));
        const ssize_t n = ::copy_file_range(in.fd(), &from, out.fd(), &to, want, 0);
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
}
#else
FsError KernelCopy(const File& in, std::uint64_t inOffset, File& out, std::uint64_t outOffset,
                   std::uint64_t count, std::uint64_t& copied) {
    return BufferedCopy(in, inOffset, out, outOffset, count, copied);
}
#endif

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

FsError FillWithZeros(File& out, std::uint64_t offset, std::uint64_t count) {
    // Where the destination has no bytes yet, growing it gives zeros without
    // writing them.
    std::uint64_t at = offset;
    const std::uint64_t end = offset + count;
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

namespace {

// Copies spans one after another through a fixed buffer: small spans are read
// straight into it and it is written in large blocks; a span larger than the
// buffer goes through CopyRange. The portable way, and the fallback where the
// kernel cannot splice a file.
class BufferedSpanWriter {
public:
    BufferedSpanWriter(const File& in, File& out, std::uint64_t outAt)
        : in_(in), out_(out), outAt_(outAt) {}

    FsError add(const CopySpan& span) {
        if (fill_ + span.count > SpanWindow) {
            if (FsError error = flush(); !error.empty()) {
                return error;
            }
        }
        if (span.count > SpanWindow) {
            FsError error = CopyRange(in_, span.inOffset, out_, outAt_, span.count);
            outAt_ += span.count;
            return error;
        }
        if (!buffer_) {
            buffer_ = std::make_unique<char[]>(SpanWindow);
        }
        const auto count = static_cast<std::size_t>(span.count);
        std::size_t got = 0;
        if (FsError error = in_.readAt(span.inOffset, buffer_.get() + fill_, count, got);
            !error.empty()) {
            return error;
        }
        // Past the end of the source the entry reads as zeros.
        std::fill(buffer_.get() + fill_ + got, buffer_.get() + fill_ + count, '\0');
        fill_ += count;
        return {};
    }

    FsError flush() {
        if (fill_ == 0) {
            return {};
        }
        FsError error = out_.writeAt(outAt_, {buffer_.get(), fill_});
        outAt_ += fill_;
        fill_ = 0;
        return error;
    }

private:
    const File& in_;
    File& out_;
    std::unique_ptr<char[]> buffer_;
    std::size_t fill_ = 0;
    std::uint64_t outAt_;
};

#ifdef __linux__
// Copies spans one after another through a pipe. splice moves page-cache
// pages into the pipe and from there into the new file without a trip
// through our memory, and since the pipe is drained only when full, many
// small entries reach the new file as one large write, which the kernel
// writes back as fast as a plain copy of one file.
class SplicedSpanWriter {
public:
    SplicedSpanWriter(const File& in, File& out, std::uint64_t outAt)
        : in_(in), out_(out), outAt_(outAt) {
        if (::pipe2(pipe_, O_CLOEXEC) != 0) {
            pipe_[0] = pipe_[1] = -1;
            return;
        }
        // A larger pipe means larger writes; where the system refuses, the
        // default size still works.
        (void)::fcntl(pipe_[1], F_SETPIPE_SZ, PipeBytes);
    }
    ~SplicedSpanWriter() {
        for (const int fd : pipe_) {
            if (fd >= 0) {
                ::close(fd);
            }
        }
    }
    SplicedSpanWriter(const SplicedSpanWriter&) = delete;
    SplicedSpanWriter& operator=(const SplicedSpanWriter&) = delete;

    bool ready() const { return pipe_[0] >= 0; }
    std::uint64_t outAt() const { return outAt_; }

    // `unsupported` is set, with nothing of the span moved, when the source
    // cannot be spliced at all; the caller then copies the rest another way.
    FsError add(const CopySpan& span, bool& unsupported) {
        std::uint64_t done = 0;
        while (done < span.count) {
            auto from = static_cast<loff_t>(span.inOffset + done);
            const auto want =
                static_cast<std::size_t>(std::min<std::uint64_t>(span.count - done, 1u << 30));
            // Not waiting only matters for a full pipe, which a drain
            // empties; with an empty one the call may wait for the disk.
            const unsigned flags = inPipe_ > 0 ? SPLICE_F_NONBLOCK : 0;
            const ssize_t n = ::splice(in_.fd(), &from, pipe_[1], nullptr, want, flags);
            if (n < 0) {
                if (errno == EINTR) {
                    continue;
                }
                if (errno == EAGAIN && inPipe_ > 0) {
                    if (FsError error = drain(); !error.empty()) {
                        return error;
                    }
                    continue;
                }
                if (!moved_ && (errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP)) {
                    unsupported = true;
                    return {};
                }
                return LastError();
            }
            if (n == 0) {
                break; // end of the source
            }
            moved_ = true;
            done += static_cast<std::uint64_t>(n);
            inPipe_ += static_cast<std::size_t>(n);
        }
        if (done < span.count) {
            // Everything before must be in the file before it grows.
            if (FsError error = drain(); !error.empty()) {
                return error;
            }
            const std::uint64_t missing = span.count - done;
            if (FsError error = FillWithZeros(out_, outAt_, missing); !error.empty()) {
                return error;
            }
            outAt_ += missing;
        }
        return {};
    }

    FsError drain() {
        while (inPipe_ > 0) {
            if (!outSplices_) {
                if (FsError error = drainByReading(); !error.empty()) {
                    return error;
                }
                continue;
            }
            auto to = static_cast<loff_t>(outAt_);
            const ssize_t n = ::splice(pipe_[0], nullptr, out_.fd(), &to, inPipe_, 0);
            if (n < 0 && errno == EINTR) {
                continue;
            }
            if (n < 0 && (errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP)) {
                // The destination takes no splice: read the pipe out instead.
                outSplices_ = false;
                continue;
            }
            if (n <= 0) {
                return n < 0 ? LastError() : SystemErrorText(EIO);
            }
            outAt_ += static_cast<std::uint64_t>(n);
            inPipe_ -= static_cast<std::size_t>(n);
        }
        return {};
    }

private:
    static constexpr int PipeBytes = 1 << 20;

    FsError drainByReading() {
        std::array<char, 64 * 1024> block; // NOLINT: filled by the read
        const ssize_t n = ::read(pipe_[0], block.data(), std::min(block.size(), inPipe_));
        if (n <= 0) {
            return n < 0 ? LastError() : SystemErrorText(EIO);
        }
        const auto got = static_cast<std::size_t>(n);
        if (FsError error = out_.writeAt(outAt_, {block.data(), got}); !error.empty()) {
            return error;
        }
        outAt_ += got;
        inPipe_ -= got;
        return {};
    }

    const File& in_;
    File& out_;
    int pipe_[2] = {-1, -1};
    std::uint64_t outAt_;
    std::size_t inPipe_ = 0;
    bool moved_ = false;
    bool outSplices_ = true;
};
#endif

} // namespace

FsError CopySpansInOrder(const File& in, File& out, std::uint64_t outOffset,
                         const std::vector<CopySpan>& spans,
                         const std::function<void(std::size_t)>& progress, CopyWay way) {
    std::size_t next = 0;
    bool announced = false; // progress and the step were called for `next`
    const auto announce = [&]() -> FsError {
        if (announced) {
            return {};
        }
        announced = true;
        progress(next);
        return Step("copy");
    };
#ifdef __linux__
    if (way == CopyWay::Fastest) {
        SplicedSpanWriter spliced(in, out, outOffset);
        bool unsupported = false;
        while (spliced.ready() && !unsupported && next < spans.size()) {
            if (FsError error = announce(); !error.empty()) {
                return error;
            }
            if (FsError error = spliced.add(spans[next], unsupported); !error.empty()) {
                return error;
            }
            if (!unsupported) {
                ++next;
                announced = false;
            }
        }
        if (FsError error = spliced.drain(); !error.empty()) {
            return error;
        }
        outOffset = spliced.outAt();
    }
#else
    (void)way;
#endif
    // What the pipe could not take (or everything, off Linux) goes through
    // the buffer.
    BufferedSpanWriter buffered(in, out, outOffset);
    for (; next < spans.size(); ++next, announced = false) {
        if (FsError error = announce(); !error.empty()) {
            return error;
        }
        if (FsError error = buffered.add(spans[next]); !error.empty()) {
            return error;
        }
    }
    return buffered.flush();
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
    if (FsError error = KernelCopy(in, inOffset, out, outOffset, count, copied); !error.empty()) {
        return error;
    }
    if (copied == count) {
        return {};
    }
    // The source ended early: the rest reads as zeros.
    return FillWithZeros(out, outOffset + copied, count - copied);
}

void CloseInBackground(File file) {
    std::thread([closing = std::move(file)]() mutable { (void)closing.close(); }).detach();
}

void SetStepHook(StepHook hook) {
    Hook() = std::move(hook);
}

FsError Step(std::string_view step) {
    if (const char* kill = std::getenv("KORVEL_TEST_KILL_AT"); kill != nullptr && step == kill) {
        std::fprintf(stderr, "korvel-cli: killed at %s\n", kill);
        std::fflush(stderr);
        KillThisProcess();
    }
    if (Hook()) {
        return Hook()(step);
    }
    return {};
}

} // namespace korvel
