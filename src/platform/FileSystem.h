// File-system helpers the commands share. They report failures as text (the
// system's description of the error) instead of throwing, because every
// command shows its own message and carries on.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace korvel {

// Empty on success, else the system's description of what went wrong.
using FsError = std::string;

bool FileExists(const std::filesystem::path& path);
std::optional<std::uint64_t> FileLength(const std::filesystem::path& path);

// A file's length, modification time and (on POSIX) identity: every write
// through WriteFileAtomically makes a new file, so a different stamp means
// someone wrote the file since the stamp was taken. (Windows has no identity
// here; two writes of one length within its clock's tick look alike.)
struct FileStamp {
    std::uint64_t length = 0;
    std::filesystem::file_time_type modified;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    bool operator==(const FileStamp&) const = default;
};
std::optional<FileStamp> StampOf(const std::filesystem::path& path);
bool IsReadOnly(const std::filesystem::path& path);
// Whether we may change the file: it exists, has a write permission bit (a
// file the person made read-only stays so, even for an administrator) and the
// system lets us open it for writing.
bool IsWritable(const std::filesystem::path& path);
// The file a path finally names: absolute, with every symbolic link on the
// way resolved, so that a file replaced by rename is the link's target and
// the link stays a link. A path that does not exist yet is made absolute.
std::filesystem::path ResolvedPath(const std::filesystem::path& path);
// Gives the open file `fd` the permission bits and, where the system permits
// us, the owner and group of `model`, so a file we replace by rename keeps
// them. Best effort: nothing happens when `model` does not exist.
void KeepOwnerAndMode(int fd, const std::filesystem::path& model);
// The same, with the model given as an open descriptor.
void KeepOwnerAndModeOf(int fd, int modelFd);
// Makes the file writable again (the nearest thing to clearing all attributes).
FsError ClearAttributes(const std::filesystem::path& path);

// Reads a whole small file (the directory file, at most 1 MiB).
std::optional<std::string> ReadSmallFile(const std::filesystem::path& path, FsError& error);

// Writes `bytes` to a temporary file in the target's folder, flushes it and
// renames it over `path`, so a crash leaves the old file or the new one. A
// symbolic link is followed: its target is replaced and keeps its mode and
// owner, and the link stays.
FsError WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes);

// Creates an empty file, cutting an existing one to zero bytes.
FsError CreateEmptyFile(const std::filesystem::path& path);

// The system's description of an errno value.
std::string SystemErrorText(int errorNumber);

} // namespace korvel
