// Streaming copies between files for the entry commands. Entry sizes come from
// directory records nobody checked, so nothing here ever allocates a buffer
// sized by an entry: data moves through the kernel (copy_file_range, splice)
// where it can, else through a fixed buffer, and missing bytes become zeros
// by extending the file (sparse) or from a small fixed zero block.
#pragma once

#include "platform/FileSystem.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

namespace korvel {

// An open file that closes itself: a descriptor on every system (on Windows
// the C runtime's, over a handle that allows a rename to replace the file).
// Implemented per system in FilePosix.cpp and FileWindows.cpp.
class File {
public:
    enum class Mode { Read, ReadWrite, CreateTruncate };

    File() = default;
    ~File();
    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    // Empty on success, else the system's description of the error.
    FsError open(const std::filesystem::path& path, Mode mode);
    FsError close();
    bool isOpen() const { return fd_ >= 0; }
    // Takes over a descriptor opened elsewhere (OpenOutputFile opens with
    // checks of its own).
    void adopt(int fd) {
        (void)close();
        fd_ = fd;
    }
    int fd() const { return fd_; }

    FsError length(std::uint64_t& out) const;
    FsError truncate(std::uint64_t length);
    // Asks the file system for `length` bytes in one piece up front, so a file
    // written in many small copies still lies in few extents. Best effort.
    void reserve(std::uint64_t length);
    // Flushes data and metadata to the disk.
    FsError sync();
    FsError writeAt(std::uint64_t offset, std::string_view bytes);
    // Reads up to `size` bytes; `got` is less only at the end of the file.
    FsError readAt(std::uint64_t offset, char* data, std::size_t size, std::size_t& got) const;

private:
    int fd_ = -1;
};

// Copies `count` bytes from `in` at `inOffset` to `out` at `outOffset`. Bytes
// that lie past the end of `in` are written as zeros, so the result always
// holds exactly `count` bytes at the destination.
FsError CopyRange(const File& in, std::uint64_t inOffset, File& out, std::uint64_t outOffset,
                  std::uint64_t count);

// One range of the source for CopySpansInOrder.
struct CopySpan {
    std::uint64_t inOffset = 0;
    std::uint64_t count = 0;
};

// How CopySpansInOrder moves the bytes. Fastest splices through a pipe where
// the system can (Linux) and uses the buffer elsewhere; Buffered always uses
// the buffer, so tests can check both ways give the same file.
enum class CopyWay { Fastest, Buffered };

// Copies the spans one after another to `out`, starting at `outOffset`, and
// calls `progress(i)` before span i. Thousands of small entries must not cost
// a small write each: the new file would be written back in small pieces,
// far slower than a plain copy. So the spans are gathered into large writes,
// either in a pipe (the kernel moves the pages, no copy through our memory)
// or in one fixed buffer of SpanWindow bytes; spans larger than the buffer go
// through CopyRange. Bytes past the end of `in` are zeros.
inline constexpr std::uint64_t SpanWindow = 8u << 20;
FsError CopySpansInOrder(const File& in, File& out, std::uint64_t outOffset,
                         const std::vector<CopySpan>& spans,
                         const std::function<void(std::size_t)>& progress,
                         CopyWay way = CopyWay::Fastest);

// Makes `count` bytes at `offset` zeros: written where `out` already has
// bytes, by growing the file beyond its end.
FsError FillWithZeros(File& out, std::uint64_t offset, std::uint64_t count);

// Writes `count` zero bytes at `offset`, through a small fixed block.
FsError WriteZeros(File& out, std::uint64_t offset, std::uint64_t count);

// Flushes a folder's entry list, so renames in it survive a power cut.
FsError SyncFolder(const std::filesystem::path& folder);

// Whether a rename may replace a file that is still open. POSIX systems
// allow it; Windows refuses while any handle is open, so there the old file
// must be closed first.
#ifdef _WIN32
inline constexpr bool OpenFilesCanBeReplaced = false;
#else
inline constexpr bool OpenFilesCanBeReplaced = true;
#endif

// Closes `file` on a thread of its own. Closing the last descriptor of a file
// that a rename has replaced makes the file system free all its blocks and
// cached pages, which for a gigabyte takes a noticeable moment that nobody
// needs to wait for.
void CloseInBackground(File file);

// Renames `from` onto `to`, replacing it.
FsError RenameFile(const std::filesystem::path& from, const std::filesystem::path& to);

// Named points inside multi-step file operations (a rebuild's renames, a
// copy). Tests install a hook to make a chosen step fail; setting the
// environment variable KORVEL_TEST_KILL_AT to a step's name makes the process
// kill itself there, which is how the crash tests stop a real korvel-cli at an
// exact moment. Without either, a step costs one getenv.
//
// Besides the named steps, every primitive that changes a file passes one of
// three steps first: StepWrite (File::writeAt, File::truncate, a copy, the
// atomic write's bytes, creating an empty file), StepFlush (File::sync,
// SyncFolder, the atomic write's flush) and StepRename (RenameFile, the
// atomic write's rename). Counting them lets a test fail the n-th of each.
using StepHook = std::function<FsError(std::string_view step)>;
// Ends the process at once, as a crash or a kill would: no clean-up runs.
[[noreturn]] void KillThisProcess();
void SetStepHook(StepHook hook);
FsError Step(std::string_view step);
inline constexpr std::string_view StepWrite = "write";
inline constexpr std::string_view StepFlush = "flush";
inline constexpr std::string_view StepRename = "rename";

// An advisory lock through a small lock file, taken without waiting. Other
// processes that ask for the same file get Busy until it is released; the
// lock goes with the process should it die. Release removes the file while
// still holding it, and taking checks that the path still names the file we
// locked (else someone removed it in between and we try again), so removing
// never lets two holders in at once.
class LockFile {
public:
    enum class Result { Locked, Busy, Failed };
    LockFile() = default;
    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    // `error` says why on Failed.
    Result lock(const std::filesystem::path& path, FsError& error);
    void release();

private:
    std::filesystem::path path_;
    std::intptr_t handle_ = -1;
};

} // namespace korvel
