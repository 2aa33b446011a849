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
#include <vector>

namespace korvel {

// Refuses entry names that would not stay inside the chosen folder as a file
// name: empty, ".", "..", or holding "/", "\\" or NUL; on Windows also what
// WindowsFileNameProblem refuses. Empty when the name is safe, else a message
// that names the entry.
std::string UnsafeNameProblem(const std::string& rawName);
// The same as a failure the window says in the person's language.
Status UnsafeNameStatus(const std::string& rawName);

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

// The files that make up the open archive on disk: its data and directory
// files (one file for a one-file archive) and what Korvel keeps beside them
// while changing it. Nothing
// Korvel writes for the person may land on one of them.
std::vector<std::filesystem::path> ArchiveOwnFiles(const Archive& archive);

// How many of the entry's sectors the data file of `dataLength` bytes holds;
// a last sector held only in part counts as held (its missing end reads as
// zeros, as the padding it nearly always is).
std::uint32_t SectorsPresent(const Entry& entry, std::uint64_t dataLength);

// Whether `sectors` sectors of new data may be written at `offset` (behind
// the entry that lies last) of a data file of `dataLength` bytes. Refused
// when a record could not address them, and when `offset` lies past the end
// of the data file: a damaged record claiming sectors far out would make the
// data file terabytes of holes. A rebuild cuts such records to what exists.
Status CheckAppendPlacement(std::uint64_t offset, std::uint64_t sectors, std::uint64_t dataLength);
// Why nothing more may be written: entries reach past the end of the data
// file of `dataLength` bytes.
Status EntriesBeyondDataStatus(std::uint64_t dataLength);

// Says that the entry reaches past the end of the data file and how many of
// its bytes are missing; callers add what they did about it.
std::string MissingBytesText(const std::string& rawName, std::uint64_t missingBytes);
// The same as a failure the window says in the person's language.
Status MissingBytesStatus(const std::string& rawName, std::uint64_t missingBytes);

struct EntryCopy {
    Status status = Status::Ok();
    // The target was refused (status says why and names it); nothing changed.
    bool refused = false;
    // Bytes of the entry's sectors that lie past the end of the data file:
    // they were not written.
    std::uint64_t missingBytes = 0;
};

// Copies one entry's bytes into a new file at `target`, replacing a regular
// file there; anything else standing there, and the archive's own files, are
// refused (OpenOutputFile). Streams, and writes only the sectors the data
// file holds, so a record claiming terabytes costs nothing.
EntryCopy CopyEntryToFile(const Archive& archive, const Entry& entry,
                          const std::filesystem::path& target);

} // namespace korvel
