// The list's filter: which entries it shows, judged by name alone, ignoring
// letter case. Typed text matches anywhere in the name; text with `*` (any
// run of characters) or `?` (any one) matches the whole name, as file
// managers' filters do. The kind is judged by the same
// extension rule as selecting by type, so a filter and a selection of one
// kind always agree.
#pragma once

#include "archive/Names.h"

#include <optional>
#include <string>
#include <string_view>

namespace korvel {

class NameFilter {
public:
    // Shows every entry.
    NameFilter() = default;
    // `typed` is UTF-8 as the person typed it. A character Windows-1252
    // cannot hold can be in no entry's name: such a filter shows nothing.
    NameFilter(std::string_view typed, std::optional<EntryKind> kind);

    bool showsAll() const { return pattern_.empty() && !kind_ && !impossible_; }
    bool matches(std::string_view rawName) const;

private:
    std::string pattern_; // lower-cased Windows-1252
    std::optional<EntryKind> kind_;
    bool impossible_ = false;
};

} // namespace korvel
