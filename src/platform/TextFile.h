// The text files the editor writes for people (reports, saved result lists)
// hold one byte per character in Windows-1252, like the entry names inside
// them, and end every line with CR LF.
#pragma once

#include "platform/Status.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

// UTF-8 text (interface texts, paths) as Windows-1252; a character that
// Windows-1252 cannot hold becomes "?".
std::string ToAnsi(std::string_view utf8);

// Creates `path` (emptying an existing file) and writes each line followed by
// CR LF, line by line. Fails at the first failure; what was written stays.
Status WriteLines(const std::filesystem::path& path, const std::vector<std::string>& lines);

} // namespace korvel
