// Find in archive: entries of an archive whose names hold a piece of text,
// optionally of one kind. The search window calls this through its command;
// `korvel-cli find` calls it directly.
#pragma once

#include "archive/EntryTable.h"
#include "archive/Names.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

struct FoundEntry {
    std::string name; // raw Windows-1252 bytes, as the row shows it
    std::size_t row;  // 1-based row of the main list at the time of the search
    EntryRef entry;   // the entry itself, wherever it stands later
};

// Rows whose lower-cased name holds the lower-cased text (no wildcards: "*"
// and "?" match themselves; empty text matches every name) and, when `kind`
// is given, whose name is of that kind by the extension rule (KindOfName).
// `text` is UTF-8; a character no entry name can hold matches nothing.
std::vector<FoundEntry> FindEntries(const EntryTable& table, std::string_view text,
                                    std::optional<EntryKind> kind);

// The lines a saved result list holds: one name per found entry.
std::vector<std::string> FoundEntryLines(const std::vector<FoundEntry>& found);

} // namespace korvel
