// Entries as files on disk: the one rule by which an entry's name becomes a
// file in a folder the person chose (extract, view, the temps copies, quick
// replace), and the one way an entry's bytes are copied out to such a file.
// Names come from the archive and are hostile until checked here.
#pragma once

#include "archive/Archive.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace korvel {

// Refuses entry names that would not stay inside the chosen folder as a file
// name: empty, ".", "..", or holding "/", "\\" or NUL; on Windows also what
// WindowsFileNameProblem refuses. Empty when the name is safe, else a message
// that names the entry.
std::string UnsafeNameProblem(const std::string& rawName);

// What Windows makes of a file name other than the plain file it reads as:
// ":" (a drive-relative path or an alternate data stream), a reserved device
// name (CON, PRN, AUX, NUL, COM1-COM9, LPT1-LPT9, any case, also with an
// extension) and trailing dots or spaces (dropped, so the name meets another
// file). Empty when none applies, else the reason. Plain so that it can be
// checked anywhere; only Windows builds apply it.
std::string WindowsFileNameProblem(std::string_view rawName);

// The file `rawName` names inside `folder`, or nothing when the name could
// leave the folder (UnsafeNameProblem says why).
std::optional<std::filesystem::path> EntryFileIn(const std::filesystem::path& folder,
                                                 const std::string& rawName);

// Copies one entry's bytes (all its sectors) into a new file at `target`,
// replacing any file there. Streams; bytes past the end of the data file come
// out as zeros, so the copy always holds exactly the entry's size.
Status CopyEntryToFile(const Archive& archive, const Entry& entry,
                       const std::filesystem::path& target);

} // namespace korvel
