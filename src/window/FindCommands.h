// The find windows' side of the conversation: each search remembers its
// text in korvel.ini and shows the busy pointer and progress; the result
// lists are saved through the one save conversation.
#pragma once

#include "search/FindInArchive.h"
#include "search/FindInFiles.h"
#include "search/Results.h"
#include "window/Editor.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace korvel {

// text(find5), " ", the count.
std::string FoundCountText(const Editor& editor, std::size_t count);

// The search window's button: remembers the text in lastSearch, deselects
// the first row of the main list (as the search always has), and returns the
// entries found. `kind` nothing: every kind.
std::vector<FoundEntry> SearchArchive(Editor& editor, const std::string& text,
                                      std::optional<EntryKind> kind);

// The find-in-files window's button, in either mode: remembers the text in
// lastFileSearch and shows the busy pointer and progress while it reads.
// Collision files are copied into the temps folder one at a time. The list
// keeps the first hundred thousand results; a message says how many more
// there were, and another names the entries that could not be read.
std::vector<FoundInFile> SearchTextures(Editor& editor, const std::string& text);
std::vector<FoundInFile> SearchCollisionModels(Editor& editor, const std::string& text);

// Selects the entries the chosen results name in the main list (the find
// windows' and the show-me lists' highlight). Results of another reading of
// the archive select nothing, and results whose entry was deleted since are
// skipped; a message says which happened. Returns the row to scroll to,
// nothing when no entry was selected (the window then runs no command).
std::optional<std::size_t> SelectResultEntries(Editor& editor,
                                               const std::vector<EntryRef>& entries);

// Save results: the names (archive search) or "name  --  entry" lines (find
// in files, which asks before replacing a file). `found` is nothing before
// the first search.
void SaveFoundEntries(Editor& editor, const std::optional<std::vector<FoundEntry>>& found);
void SaveFoundInFiles(Editor& editor, const std::optional<std::vector<FoundInFile>>& found);

} // namespace korvel
