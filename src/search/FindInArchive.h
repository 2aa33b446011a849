// Find in archive: entries of the open archive whose names hold a piece of
// text, optionally of one type. The search window calls these; so does
// `korvel-cli find`.
#pragma once

#include "window/Editor.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

// The window's five type options.
enum class FindType { All, Textures, Models, Animations, Collisions };

struct FoundEntry {
    std::string name; // raw Windows-1252 bytes, as the row shows it
    std::size_t row;  // 1-based row of the main list at the time of the search
};

// Rows whose lower-cased name holds the lower-cased text (no wildcards: "*"
// and "?" match themselves; empty text matches every name) and, unless
// `type` is All, whose lower-cased name ends in the type's ".xxx". `text` is
// UTF-8; a character no entry name can hold matches nothing.
std::vector<FoundEntry> FindEntries(const EntryTable& table, std::string_view text, FindType type);

// The search button: remembers the text in lastSearch, deselects the first
// row of the main list (as the search always has), and returns the results.
std::vector<FoundEntry> SearchArchive(Editor& editor, const std::string& text, FindType type);

// Save results: one name per line. `results` is nothing before the first
// search.
void SaveFoundNames(Editor& editor, const std::optional<std::vector<FoundEntry>>& results);

} // namespace korvel
