// Selecting found rows in the main list, shared by the find windows and the
// show-me lists. Row numbers in results are 1-based, as the windows show
// them, and are those of the time of the search.
#pragma once

#include "archive/EntryTable.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace korvel {

// Deselects every row of the main list, then selects the given rows in turn.
// A number past the end (the list changed since the search) stops it there,
// quietly; rows already selected stay so. Returns the 0-based index of the
// last row selected, for the window to scroll to.
std::optional<std::size_t> SelectFoundRows(EntryTable& table, const std::vector<std::size_t>& rows);

} // namespace korvel
