// What the two find windows share: the count label, selecting the found rows
// in the main list and saving a result list. Row numbers in results are
// 1-based, as the windows show them, and are those of the time of the search.
#pragma once

#include "window/Editor.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace korvel {

// text(find5), " ", the count.
std::string FoundCountText(const Editor& editor, std::size_t count);

// Deselects every row of the main list, then selects the given rows in turn.
// A number past the end (the list changed since the search) stops it there,
// quietly; rows already selected stay so. Returns the 0-based index of the
// last row selected, for the window to scroll to.
std::optional<std::size_t> SelectFoundRows(EntryTable& table, const std::vector<std::size_t>& rows);

// Saves a result list. `searched` is false before the first search (the list
// has no rows at all); an empty `lines` after a search is the placeholder
// list. Lines are Windows-1252 bytes. With `askBeforeReplacing` an existing
// file is only replaced after a Yes; No offers the dialog again.
void SaveResultLines(Editor& editor, bool searched, const std::vector<std::string>& lines,
                     bool askBeforeReplacing);

} // namespace korvel
