// Selecting found entries in the main list, shared by the find windows and
// the show-me lists. Results name their entries by identity (EntryRef), not
// by row: rows move with every delete, move, sort or rename, and a result
// must never select an entry the person did not choose.
#pragma once

#include "archive/EntryTable.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace korvel {

struct FoundSelection {
    // The 0-based row of the last entry selected, for the window to scroll to.
    std::optional<std::size_t> last;
    // Results whose entry is no longer in the table (deleted since); skipped.
    std::size_t gone = 0;
    // The results are of another reading of the archive (closed, reopened,
    // another one opened): nothing was selected.
    bool stale = false;
};

// Deselects every row of the main list, then selects the entries the
// results name that are still in it, with one notification.
FoundSelection SelectFoundEntries(EntryTable& table, const std::vector<EntryRef>& entries);

} // namespace korvel
