#include "platform/OutputFile.h"

#include <optional>

#ifdef _WIN32
#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <fcntl.h>
#include <io.h>
#include <system_error>
#include <wchar.h>
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace korvel {
namespace fs = std::filesystem;
namespace {

std::string Refusal(const fs::path& target, const std::string& why) {
    const std::u8string shown = target.u8string();
    return "The file " + std::string(shown.begin(), shown.end()) + " was not written: " + why;
}

constexpr const char* LinkText =
    "a symbolic link stands there, and Korvel does not write through links.";
constexpr const char* FolderText = "a folder stands there.";
constexpr const char* SpecialText =
    "a device, a named pipe or another special file stands there, not a regular file.";
constexpr const char* ArchiveText = "it is one of the open archive's own files.";

fs::path FolderOf(const fs::path& path) {
    const fs::path folder = path.parent_path();
    return folder.empty() ? fs::path(".") : folder;
}

#ifdef _WIN32

struct Identity {
    DWORD volume = 0;
    DWORD high = 0;
    DWORD low = 0;
    bool operator==(const Identity&) const = default;
};

Identity IdentityFrom(const BY_HANDLE_FILE_INFORMATION& info) {
    return {info.dwVolumeSerialNumber, info.nFileIndexHigh, info.nFileIndexLow};
}

// The identity of what `path` names; through links unless `own` is set.
std::optional<Identity> IdentityOf(const fs::path& path, bool own = false) {
    const DWORD flags = FILE_FLAG_BACKUP_SEMANTICS | (own ? FILE_FLAG_OPEN_REPARSE_POINT : 0);
    const HANDLE handle =
        ::CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      nullptr, OPEN_EXISTING, flags, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return std::nullopt;
    }
    BY_HANDLE_FILE_INFORMATION info{};
    const bool got = ::GetFileInformationByHandle(handle, &info) != 0;
    ::CloseHandle(handle);
    return got ? std::optional<Identity>(IdentityFrom(info)) : std::nullopt;
}

bool SameName(const fs::path& a, const fs::path& b) {
    return ::_wcsicmp(a.filename().c_str(), b.filename().c_str()) == 0;
}

std::string KindProblem(DWORD attributes) {
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        return LinkText;
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return FolderText;
    }
    return {};
}

#else

struct Identity {
    dev_t device = 0;
    ino_t inode = 0;
    bool operator==(const Identity&) const = default;
};

Identity IdentityFrom(const struct stat& info) {
    return {info.st_dev, info.st_ino};
}

std::optional<Identity> IdentityOf(const fs::path& path, bool own = false) {
    struct stat info {};
    const int result = own ? ::lstat(path.c_str(), &info) : ::stat(path.c_str(), &info);
    return result == 0 ? std::optional<Identity>(IdentityFrom(info)) : std::nullopt;
}

bool SameName(const fs::path& a, const fs::path& b) {
    return a.filename() == b.filename();
}

std::string KindProblem(mode_t mode) {
    if (S_ISLNK(mode)) {
        return LinkText;
    }
    if (S_ISDIR(mode)) {
        return FolderText;
    }
    return S_ISREG(mode) ? std::string() : std::string(SpecialText);
}

#endif

// `found`: the identity of what stands at the target, nothing when nothing
// does (then a file of the archive's that does not exist yet, such as a
// rebuild's temporary, is matched by its folder and name).
std::string ArchiveProblem(const fs::path& target, const std::optional<Identity>& found,
                           const std::vector<fs::path>& archiveFiles) {
    std::optional<Identity> targetFolder;
    for (const fs::path& own : archiveFiles) {
        if (found) {
            if (IdentityOf(own) == found) {
                return ArchiveText;
            }
            continue;
        }
        if (!SameName(target, own)) {
            continue;
        }
        if (!targetFolder) {
            targetFolder = IdentityOf(FolderOf(target));
        }
        if (targetFolder && IdentityOf(FolderOf(own)) == targetFolder) {
            return ArchiveText;
        }
    }
    return {};
}

} // namespace

#ifdef _WIN32

std::string OutputTargetProblem(const fs::path& target, const std::vector<fs::path>& archiveFiles) {
    const DWORD attributes = ::GetFileAttributesW(target.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        const std::string kept = ArchiveProblem(target, std::nullopt, archiveFiles);
        return kept.empty() ? kept : Refusal(target, kept);
    }
    std::string problem = KindProblem(attributes);
    if (problem.empty()) {
        problem = ArchiveProblem(target, IdentityOf(target, true), archiveFiles);
    }
    return problem.empty() ? problem : Refusal(target, problem);
}

OutputOpen OpenOutputFile(File& out, const fs::path& target,
                          const std::vector<fs::path>& archiveFiles, OutputMode mode) {
    if (std::string problem = OutputTargetProblem(target, archiveFiles); !problem.empty()) {
        return {std::move(problem), true};
    }
    // Without following a reparse point: a link swapped in after the look
    // above is opened as itself and refused below.
    const HANDLE handle =
        ::CreateFileW(target.c_str(), GENERIC_READ | GENERIC_WRITE,
                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                      mode == OutputMode::CreateNew ? CREATE_NEW : OPEN_ALWAYS,
                      FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return {std::system_category().message(static_cast<int>(::GetLastError())), false};
    }
    std::string problem;
    BY_HANDLE_FILE_INFORMATION info{};
    if (::GetFileType(handle) != FILE_TYPE_DISK) {
        problem = SpecialText; // CON, NUL, COM1 and pipes open as devices
    } else if (::GetFileInformationByHandle(handle, &info) == 0) {
        problem = SpecialText;
    } else {
        problem = KindProblem(info.dwFileAttributes);
        if (problem.empty()) {
            problem = ArchiveProblem(target, IdentityFrom(info), archiveFiles);
        }
    }
    if (!problem.empty()) {
        ::CloseHandle(handle);
        return {Refusal(target, problem), true};
    }
    FILE_END_OF_FILE_INFO end{};
    if (mode == OutputMode::Replace &&
        !::SetFileInformationByHandle(handle, FileEndOfFileInfo, &end, sizeof end)) {
        const std::string error =
            std::system_category().message(static_cast<int>(::GetLastError()));
        ::CloseHandle(handle);
        return {error, false};
    }
    const int fd = ::_open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_BINARY | _O_RDWR);
    if (fd < 0) {
        ::CloseHandle(handle);
        return {SystemErrorText(EMFILE), false};
    }
    out.adopt(fd);
    return {};
}

#else

std::string OutputTargetProblem(const fs::path& target, const std::vector<fs::path>& archiveFiles) {
    struct stat info {};
    std::string problem;
    if (::lstat(target.c_str(), &info) != 0) {
        problem = ArchiveProblem(target, std::nullopt, archiveFiles);
    } else {
        problem = KindProblem(info.st_mode);
        if (problem.empty()) {
            problem = ArchiveProblem(target, IdentityFrom(info), archiveFiles);
        }
    }
    return problem.empty() ? problem : Refusal(target, problem);
}

OutputOpen OpenOutputFile(File& out, const fs::path& target,
                          const std::vector<fs::path>& archiveFiles, OutputMode mode) {
    if (std::string problem = OutputTargetProblem(target, archiveFiles); !problem.empty()) {
        return {std::move(problem), true};
    }
    // Not truncating yet, not following a link, not waiting for a FIFO's
    // reader: whatever was swapped in after the look above is checked again
    // on the descriptor before a byte changes.
    const int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC |
                      (mode == OutputMode::CreateNew ? O_EXCL : 0);
    const int fd = ::open(target.c_str(), flags, 0644);
    if (fd < 0) {
        const int saved = errno;
        if (std::string problem = OutputTargetProblem(target, archiveFiles); !problem.empty()) {
            return {std::move(problem), true};
        }
        return {SystemErrorText(saved), false};
    }
    struct stat info {};
    std::string problem;
    if (::fstat(fd, &info) != 0) {
        problem = SpecialText;
    } else {
        problem = KindProblem(info.st_mode);
        if (problem.empty()) {
            problem = ArchiveProblem(target, IdentityFrom(info), archiveFiles);
        }
    }
    if (!problem.empty()) {
        ::close(fd);
        return {Refusal(target, problem), true};
    }
    if ((mode == OutputMode::Replace && info.st_size > 0 && ::ftruncate(fd, 0) != 0) ||
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK) != 0) {
        const int saved = errno;
        ::close(fd);
        return {SystemErrorText(saved), false};
    }
    out.adopt(fd);
    return {};
}

#endif

} // namespace korvel
