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

// Creates `path` (emptying an existing regular file) and writes each line
// followed by CR LF (a CR or LF inside a line is written as \x0D or \x0A,
// so no line can add lines). Fails at the first failure; what was written stays. A
// link, FIFO, device or folder at `path`, or one of `archiveFiles`, is
// refused untouched, with OutputTargetProblem's text.
Status WriteLines(const std::filesystem::path& path, const std::vector<std::string>& lines,
                  const std::vector<std::filesystem::path>& archiveFiles = {});

} // namespace korvel
