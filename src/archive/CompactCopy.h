// The steps of writing a compact copy of an archive's rows beside the place
// it is to take, shared by the rebuild (which replaces the archive itself)
// and the conversion (which writes a new archive of the other kind). Each
// step flushes what it wrote; only the last renames anything into place.
#pragma once

#include "archive/DirectoryStore.h"
#include "archive/EntryOperations.h"
#include "archive/RebuildJournal.h"
#include "platform/FileCopy.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace korvel {

// Removes what a copy that stopped before its journal leaves behind.
void RemoveNewPair(const RebuildFiles& files);

// Step 1: the new data file, every row's sectors back to back in row order
// from the store's first data sector on, and the records that say where each
// now lies; where the store keeps the records in the data file they are
// written at its start. A record reaching past the end of the data file
// keeps only the sectors that exist (zeros invented for the rest could be
// terabytes); `cut` says which and how much went. A stop asked for before
// the last piece is copied sets `stopped` and returns at once; the caller
// removes the unfinished file. The new file takes the owner and mode of
// `modeFrom`, or of `in` (the file it replaces) when none is given.
Status WriteNewData(const EntryTable& table, const DirectoryStore& store, File& in,
                    const std::filesystem::path& newData, const RebuildProgress& progress,
                    std::vector<DirRecord>& records, std::vector<Status>& cut, bool& stopped,
                    const std::optional<std::filesystem::path>& modeFrom);

// Step 2: the new directory file, flushed with its folder.
Status WriteNewDirectory(const std::string& bytes, const RebuildFiles& files);

// Step 3: the journal, written whole under another name and renamed, so it
// exists only once it says everything.
Status WriteJournal(const RebuildFiles& files, const RebuildJournal& journal);

// Step 4: the renames (only the data file's for a one-file archive). From
// here on the journal finishes what we don't.
Status RenameNewPairIntoPlace(const RebuildFiles& files, bool dataFileOnly);

struct CompactCopy {
    Status status = Status::Ok();
    std::vector<Status> cut; // rows copied with only the sectors that exist
    bool stopped = false;    // stopped on request; nothing is left behind
};

// Steps 1 to 3 for an archive of the store's kind at `files`: when it ends
// well, the journal stands and RenameNewPairIntoPlace may follow; otherwise
// (failed or stopped) the new files are removed again.
CompactCopy PrepareCompactCopy(const EntryTable& table, const DirectoryStore& store, File& in,
                               const RebuildFiles& files, const RebuildProgress& progress,
                               const std::optional<std::filesystem::path>& modeFrom);

} // namespace korvel
