// Find in files: texture names inside an archive's texture dictionaries and
// model names inside its collision files. Dictionaries are read in place in
// the data file, names only; collision files are first copied to a folder
// (inside the window's temps folder) and read from there.
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
    EntryRef entry = {};   // that entry itself; the window fills it in
};

// How far a search has come, for a progress bar: `begin` with the number of
// entries of the kind searched, then `step` with 1, 2, ... as each is passed.
// Either may be empty.
struct SearchProgress {
    std::function<void(std::size_t entries)> begin;
    std::function<void(std::size_t done)> step;
    // Asked before each entry: true ends the search there, with what it found
    // so far.
    std::function<bool()> stop;
};

// An entry a search could not read, and why (the system's words or ours).
struct UnreadEntry {
    std::string entryName; // raw bytes
    std::size_t row;       // 1-based
    std::string why;
};

// Where a search's findings go, one at a time as they are found, so memory
// stays flat however many names the archive's entries hold. Either may be
// empty.
struct FileSearchOutput {
    std::function<void(FoundInFile found)> found;
    std::function<void(UnreadEntry unread)> unread;
};

// How many results and unread entries a search handed out.
struct FileSearchCounts {
    std::uint64_t found = 0;
    std::uint64_t unread = 0;
    bool stopped = false; // ended early on request
};

// Hands `name` every texture of every dictionary in the archive, in row
// order and file order. Dictionaries named "odie..." (any case),
// "Partty_main_lights.txd" and "xmode.txd" are counted on the progress bar
// but never read. A dictionary that cannot be read (the data file does not
// open, or the entry starts past its end) goes to `unread`. Returns how many
// bytes were read from the data file.
std::uint64_t ReadTextureDictionaryNames(const Archive& archive,
                                         const std::function<void(NameRow row)>& name,
                                         const std::function<void(UnreadEntry unread)>& unread,
                                         const SearchProgress& progress = {});

// Texture names holding `text` (UTF-8), with case: compared byte for byte.
FileSearchCounts FindTextures(const Archive& archive, std::string_view text,
                              const FileSearchOutput& output, const SearchProgress& progress = {});

// Model names holding `text` (UTF-8), any case. Each collision entry in turn
// is copied into a folder the search creates for itself inside
// `copiesFolder` (created when missing), under a name of the search's own,
// read there and removed before the next, so the search never touches a file
// it did not make and never holds more than one copy on the disk. The folder
// is removed at the end. An entry that cannot be copied or read goes to
// `unread`.
FileSearchCounts FindCollisionModels(const Archive& archive,
                                     const std::filesystem::path& copiesFolder,
                                     std::string_view text, const FileSearchOutput& output,
                                     const SearchProgress& progress = {});

// The lines a saved result list holds: "name  --  entry" per result.
std::vector<std::string> FoundInFileLines(const std::vector<FoundInFile>& found);

} // namespace korvel
