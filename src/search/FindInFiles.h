// Find in files: texture names inside an archive's texture dictionaries and
// model names inside its collision files. Dictionaries are read in place in
// the data file, names only; collision files are first copied to a folder
// (the window's temps folder, where viewing finds them too) and read from
// there.
#pragma once

#include "archive/Archive.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

// One name read from an entry.
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

// How far a search has come, for a progress bar: `begin` with the number of
// entries of the kind searched, then `step` with 1, 2, ... as each is passed.
// The collision search makes two passes (copying, then reading) and steps
// back to 0 between them. Either may be empty.
struct SearchProgress {
    std::function<void(std::size_t entries)> begin;
    std::function<void(std::size_t done)> step;
};

// Every texture of every dictionary in the archive, in row order and file
// order. Dictionaries named "odie..." (any case), "Partty_main_lights.txd"
// and "xmode.txd" are counted on the progress bar but never read. A data file
// that cannot be opened reads as holding nothing. `bytesRead` (if given)
// receives how many bytes were read from the data file.
std::vector<NameRow> ReadTextureDictionaryNames(const Archive& archive,
                                                const SearchProgress& progress = {},
                                                std::uint64_t* bytesRead = nullptr);

// Texture names holding `text` (UTF-8), with case: compared byte for byte.
std::vector<FoundInFile> FindTextures(const Archive& archive, std::string_view text,
                                      const SearchProgress& progress = {});

// Model names holding `text` (UTF-8), any case. Every collision entry is
// first copied into `copiesFolder` (created when missing) under its name; an
// entry whose name cannot be a file name there, or whose copy fails, lists
// nothing. The copies stay for the caller to clear.
std::vector<FoundInFile> FindCollisionModels(const Archive& archive,
                                             const std::filesystem::path& copiesFolder,
                                             std::string_view text,
                                             const SearchProgress& progress = {});

// The lines a saved result list holds: "name  --  entry" per result.
std::vector<std::string> FoundInFileLines(const std::vector<FoundInFile>& found);

} // namespace korvel
