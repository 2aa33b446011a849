// The steps of writing a compact copy of an archive's rows beside the place
// it is to take, shared by the rebuild (which replaces the archive itself)
// and the conversion (which writes a new archive of the other kind). Each
// step flushes what it wrote; only the last renames anything into place.
#pragma once

#include "archive/EntryOperations.h"
#include "archive/RebuildJournal.h"
#include "platform/FileCopy.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace korvel {

// Removes what a copy that stopped before its journal leaves behind.
void RemoveNewPair(const RebuildFiles& files);

// Where a compact copy puts things. The rebuild takes the defaults.
struct CopyLayout {
    // The first sector the entries' data goes to.
    std::uint32_t firstSector = 0;
    // Bytes written at the start of the new data file once the records are
    // known (a one-file archive's header and records); they must end by
    // firstSector.
    std::function<std::string(const std::vector<DirRecord>&)> head;
    // The file whose owner and mode the new data file takes (best effort);
    // none: the source data file's, as the file being replaced.
    std::optional<std::filesystem::path> modeFrom;
};

// Step 1: the new data file, every row's sectors back to back in row order
// from the layout's first sector on, and the records that say where each
// now lies. A record reaching past the end of
// the data file keeps only the sectors that exist (zeros invented for the
// rest could be terabytes); `cut` says which and how much went. A stop
// asked for before the last piece is copied sets `stopped` and returns at
// once; the caller removes the unfinished file.
Status WriteNewData(const EntryTable& table, File& in, const std::filesystem::path& newData,
                    const RebuildProgress& progress, std::vector<DirRecord>& records,
                    std::vector<Status>& cut, bool& stopped, const CopyLayout& layout = {});

// Step 2: the new directory file, flushed with its folder.
Status WriteNewDirectory(const std::string& bytes, const RebuildFiles& files);

// Step 3: the journal, written whole under another name and renamed, so it
// exists only once it says everything.
Status WriteJournal(const RebuildFiles& files, const RebuildJournal& journal);

// Step 4: the renames. From here on the journal finishes what we don't.
Status RenameNewPairIntoPlace(const RebuildFiles& files);

} // namespace korvel
