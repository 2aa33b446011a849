#include "search/Results.h"

#include <algorithm>

namespace korvel {

FoundSelection SelectFoundEntries(EntryTable& table, const std::vector<EntryRef>& entries) {
    FoundSelection selection;
    std::vector<bool> selected(table.size(), false);
    const bool stale = std::any_of(entries.begin(), entries.end(), [&](const EntryRef& entry) {
        return entry.generation != table.generation();
    });
    if (stale) {
        selection.stale = true;
        table.setSelection(selected);
        return selection;
    }
    for (const EntryRef& entry : entries) {
        if (const auto row = table.rowOf(entry)) {
            selected[*row] = true;
            selection.last = *row;
        } else {
            ++selection.gone;
        }
    }
    table.setSelection(selected);
    return selection;
}

} // namespace korvel
