// A small INI module with the profile-string rules the settings and language
// files rely on: case-insensitive sections and keys, blanks around keys and
// values ignored, lines before the first section and lines without "=" ignored,
// values cut at 254 characters, and "Settings error" for anything missing.
// A write replaces the key's line in place (or adds it at the end of its
// section, creating section and file as needed) and keeps every other line
// byte for byte. Writes go through a temporary file and a rename.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace korvel {

inline constexpr std::string_view SettingsError = "Settings error";
inline constexpr std::size_t MaxValueLength = 254;

// Reads a key as the profile-string functions do. Every call sees the file as
// it is now, but a parsed copy is cached per file and reused while the file's
// identity (size, modification time, inode) is unchanged, so a loop over many
// rows does not parse the file each time.
std::string ReadProfileString(const std::filesystem::path& file, std::string_view section,
                              std::string_view key);

// Writes a key. Returns false when the file could not be written.
bool WriteProfileString(const std::filesystem::path& file, std::string_view section,
                        std::string_view key, std::string_view value);

// Parsing, exposed for tests: the value of a key in file content, or nothing.
std::optional<std::string> LookupInContent(std::string_view content, std::string_view section,
                                           std::string_view key);
// Editing, exposed for tests: the content with the key written. Line breaks
// in the value become spaces, so a value never adds a line.
std::string WriteInContent(std::string_view content, std::string_view section, std::string_view key,
                           std::string_view value);

} // namespace korvel
