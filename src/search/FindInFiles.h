// Find in files: texture names inside the archive's texture dictionaries and
// model names inside its collision files. Dictionaries are read in place in
// the data file, names only; collision files are first copied to the temps
// folder (where viewing finds them too) and read from there.
#pragma once

#include "window/Editor.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace korvel {

// One name read from an entry (the window's hidden `names` list).
struct NameRow {
    std::string name;   // texture or model name, raw bytes
    std::string second; // texture mode: the mask name; collision mode: the .col entry's name
    std::size_t row;    // 1-based row of the entry that holds it
};

struct FoundInFile {
    std::string name;      // the texture or model name
    std::string entryName; // the .txd or .col entry that holds it
    std::size_t row;       // that entry's 1-based row at the time of the search
};

// Every texture of every dictionary in the archive, in row order and file
// order. Dictionaries named "odie..." (any case), "Partty_main_lights.txd"
// and "xmode.txd" are counted on the progress bar but never read.
// `bytesRead` (if given) receives how many bytes were read from the data file.
std::vector<NameRow> ReadTextureDictionaryNames(Editor& editor, std::uint64_t* bytesRead = nullptr);

// Copies the data of 1-based row `row` (all its sectors) to the temps folder
// under the entry's name. False when the name cannot be a file name or the
// copy fails.
bool CopyEntryToTempsFolder(Editor& editor, std::size_t row);

// Appends the models of the temps copy `fileName` (raw entry name), taken from
// 1-based row `row`, to `names`.
void ReadCollisionFileNames(const std::string& fileName, std::size_t row,
                            std::vector<NameRow>& names);

// The two searches. Both remember the text in lastFileSearch. Texture names
// match with case; model names without. `text` is UTF-8.
std::vector<FoundInFile> FindTexturesInArchive(Editor& editor, const std::string& text);
std::vector<FoundInFile> FindCollisionModelsInArchive(Editor& editor, const std::string& text);

// Save results: "name  --  entry" per line, asking before replacing a file.
// `results` is nothing before the first search.
void SaveFileSearchResults(Editor& editor, const std::optional<std::vector<FoundInFile>>& results);

} // namespace korvel
