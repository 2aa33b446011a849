// The file primitives on Windows. Files are opened with CreateFileW so they
// can be shared for deletion (a rename may then replace a file we still hold
// open) and handed to the C runtime as descriptors, which keeps File the same
// type everywhere; reads and writes are positioned with OVERLAPPED offsets.
#include "platform/FileCopy.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <system_error>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace korvel {
namespace {

constexpr std::size_t MaxChunk = std::size_t{1} << 30;

FsError LastError() {
    return std::system_category().message(static_cast<int>(::GetLastError()));
}

HANDLE HandleOf(int fd) {
    return reinterpret_cast<HANDLE>(::_get_osfhandle(fd));
}

OVERLAPPED At(std::uint64_t offset) {
    OVERLAPPED at{};
    at.Offset = static_cast<DWORD>(offset & 0xFFFFFFFFu);
    at.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return at;
}

} // namespace

FsError File::open(const std::filesystem::path& path, Mode mode) {
    close();
    DWORD access = GENERIC_READ;
    DWORD disposition = OPEN_EXISTING;
    int flags = _O_BINARY | _O_RDONLY;
    if (mode != Mode::Read) {
        access |= GENERIC_WRITE;
        flags = _O_BINARY | _O_RDWR;
    }
    if (mode == Mode::CreateTruncate) {
        disposition = CREATE_ALWAYS;
    }
    const HANDLE handle =
        ::CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return LastError();
    }
    fd_ = ::_open_osfhandle(reinterpret_cast<intptr_t>(handle), flags);
    if (fd_ < 0) {
        ::CloseHandle(handle);
        return SystemErrorText(EMFILE);
    }
    return {};
}

FsError File::close() {
    if (fd_ < 0) {
        return {};
    }
    const int result = ::_close(fd_); // closes the handle too
    fd_ = -1;
    return result == 0 ? FsError{} : SystemErrorText(errno);
}

FsError File::length(std::uint64_t& out) const {
    LARGE_INTEGER size{};
    if (!::GetFileSizeEx(HandleOf(fd_), &size)) {
        return LastError();
    }
    out = static_cast<std::uint64_t>(size.QuadPart);
    return {};
}

FsError File::truncate(std::uint64_t length) {
    if (FsError error = Step(StepWrite); !error.empty()) {
        return error;
    }
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(length);
    return ::SetFileInformationByHandle(HandleOf(fd_), FileEndOfFileInfo, &end, sizeof end)
               ? FsError{}
               : LastError();
}

void File::reserve(std::uint64_t length) {
    FILE_ALLOCATION_INFO allocation{};
    allocation.AllocationSize.QuadPart = static_cast<LONGLONG>(length);
    (void)::SetFileInformationByHandle(HandleOf(fd_), FileAllocationInfo, &allocation,
                                       sizeof allocation);
}

FsError File::sync() {
    if (FsError error = Step(StepFlush); !error.empty()) {
        return error;
    }
    return ::FlushFileBuffers(HandleOf(fd_)) ? FsError{} : LastError();
}

FsError File::writeAt(std::uint64_t offset, std::string_view bytes) {
    if (FsError error = Step(StepWrite); !error.empty()) {
        return error;
    }
    std::size_t done = 0;
    while (done < bytes.size()) {
        OVERLAPPED at = At(offset + done);
        const auto want = static_cast<DWORD>(std::min(bytes.size() - done, MaxChunk));
        DWORD written = 0;
        if (!::WriteFile(HandleOf(fd_), bytes.data() + done, want, &written, &at)) {
            return LastError();
        }
        done += written;
    }
    return {};
}

FsError File::readAt(std::uint64_t offset, char* data, std::size_t size, std::size_t& got) const {
    got = 0;
    while (got < size) {
        OVERLAPPED at = At(offset + got);
        const auto want = static_cast<DWORD>(std::min(size - got, MaxChunk));
        DWORD read = 0;
        if (!::ReadFile(HandleOf(fd_), data + got, want, &read, &at)) {
            if (::GetLastError() == ERROR_HANDLE_EOF) {
                break;
            }
            return LastError();
        }
        if (read == 0) {
            break; // end of file
        }
        got += read;
    }
    return {};
}

FsError SyncFolder(const std::filesystem::path&) {
    // Windows has no flush for a folder's entries; the renames below are
    // written through instead.
    return Step(StepFlush);
}

FsError RenameFile(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (FsError error = Step(StepRename); !error.empty()) {
        return error;
    }
    return ::MoveFileExW(from.c_str(), to.c_str(),
                         MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)
               ? FsError{}
               : LastError();
}

LockFile::~LockFile() {
    release();
}

LockFile::Result LockFile::lock(const std::filesystem::path& path, FsError& error) {
    release();
    // The file goes when its last handle closes, so nothing is left behind;
    // while it is being removed others cannot open it, which counts as busy.
    const HANDLE handle =
        ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                      FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        if (::GetLastError() == ERROR_ACCESS_DENIED ||
            ::GetLastError() == ERROR_SHARING_VIOLATION) {
            return Result::Busy;
        }
        error = LastError();
        return Result::Failed;
    }
    OVERLAPPED at = At(0);
    if (!::LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &at)) {
        const DWORD code = ::GetLastError();
        ::CloseHandle(handle);
        if (code == ERROR_LOCK_VIOLATION || code == ERROR_IO_PENDING) {
            return Result::Busy;
        }
        error = std::system_category().message(static_cast<int>(code));
        return Result::Failed;
    }
    path_ = path;
    handle_ = reinterpret_cast<std::intptr_t>(handle);
    return Result::Locked;
}

void LockFile::release() {
    if (handle_ == -1) {
        return;
    }
    const auto handle = reinterpret_cast<HANDLE>(handle_);
    OVERLAPPED at = At(0);
    ::UnlockFileEx(handle, 0, 1, 0, &at);
    ::CloseHandle(handle);
    handle_ = -1;
    path_.clear();
}

void KillThisProcess() {
    ::TerminateProcess(::GetCurrentProcess(), 137);
    std::abort(); // not reached
}

} // namespace korvel
