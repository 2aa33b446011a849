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
bool IsReadOnly(const std::filesystem::path& path);
// Makes the file writable again (the nearest thing to clearing all attributes).
FsError ClearAttributes(const std::filesystem::path& path);

// Reads a whole small file (the directory file, at most 1 MiB).
std::optional<std::string> ReadSmallFile(const std::filesystem::path& path, FsError& error);

// Writes `bytes` to a temporary file in the target's folder, flushes it and
// renames it over `path`, so a crash leaves the old file or the new one.
FsError WriteFileAtomically(const std::filesystem::path& path, std::string_view bytes);

// Creates an empty file, cutting an existing one to zero bytes.
FsError CreateEmptyFile(const std::filesystem::path& path);

// The system's description of an errno value.
std::string SystemErrorText(int errorNumber);

} // namespace korvel
