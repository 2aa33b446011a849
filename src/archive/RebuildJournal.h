// The files Korvel keeps beside an archive while it changes it (a rebuild's
// new pair and journal, the lock, an in-place replace's old bytes), and the
// recovery that every open runs first. Kept apart from the commands so opening needs only this.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace korvel {

// Every name here is derived from the archive's own two paths, made absolute
// with their links resolved: a rebuild and its recovery touch these files
// and no others, from whatever folder Korvel runs in.
struct RebuildFiles {
    std::filesystem::path data;     // the archive's data file (a link's target)
    std::filesystem::path dir;      // the archive's directory file (a link's target)
    std::filesystem::path newData;  // the new data file until it is renamed
    std::filesystem::path newDir;   // the new directory file until it is renamed
    std::filesystem::path journal;  // exists only while the new pair is complete
    std::filesystem::path lock;     // held by whoever changes the archive
    std::filesystem::path oldBytes; // an entry's old bytes while it is replaced in place
    std::filesystem::path records;  // a one-file archive's new records while they are written
};
RebuildFiles RebuildFilesFor(const std::filesystem::path& dataPath,
                             const std::filesystem::path& dirPath);

// What a journal says: the lengths of the new pair and a checksum of the new
// directory file; for a one-file archive, the new data file's length and the
// length and checksum of the records at its start. It names no files, so what it says can only be
// checked against the files beside it, never point anywhere else.
struct RebuildJournal {
    std::uint64_t dataLength = 0;
    std::uint64_t dirLength = 0;
    std::uint64_t dirChecksum = 0;
    bool oneFile = false;
    bool operator==(const RebuildJournal&) const = default;
};
// A journal is never longer than this; a longer file is not one of ours.
inline constexpr std::size_t MaxJournalBytes = 4096;
std::string RebuildJournalText(const RebuildJournal& journal);
// Nothing unless `text` is exactly what RebuildJournalText writes.
std::optional<RebuildJournal> ParseRebuildJournal(std::string_view text);
std::uint64_t DirectoryChecksum(std::string_view bytes);

// Finishes or clears a rebuild that was interrupted: with a journal that
// matches the new pair beside the archive the renames are completed; without
// a journal, leftover temporary files are removed. A journal that does not
// match is left alone and the returned text says so. While another process
// holds the archive's lock (a rebuild in progress) nothing is touched. Run
// before an archive is opened.
std::optional<std::string> RecoverInterruptedRebuild(const std::filesystem::path& dataPath);

} // namespace korvel
