// The open archive: the paths of its data and directory files and the rows of
// its directory. This is the state every operation works on; it knows nothing
// of windows, menus or settings, so the editor and the command-line tool share
// it as it is.
#pragma once

#include "archive/EntryTable.h"
#include "platform/Status.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace korvel {

// The path texts of a closed archive.
inline constexpr std::string_view NoPath = "none";

class Archive {
public:
    const std::string& dataPath() const { return dataPath_; }
    const std::string& dirPath() const { return dirPath_; }
    bool isOpen() const { return dataPath_ != NoPath; }
    EntryTable& table() { return table_; }
    const EntryTable& table() const { return table_; }

    // Largest byte offset among the rows, kept up to date by FindHighestOffset.
    std::uint64_t highestOffset() const { return highestOffset_; }
    void FindHighestOffset() { highestOffset_ = table_.highestOffset(); }

    // Reads the directory file of an archive whose two files exist and fills
    // the table from it. The length is checked before anything is read, so a
    // huge file is refused without reading it. On failure the archive is
    // closed and the text says why.
    Status ReadDirectory(const std::string& dataPath, const std::string& dirPath);

    // Writes the directory file anew from the rows, atomically (names longer
    // than a record holds are cut in the table first). On failure the old
    // file is still in place.
    Status WriteDirectory();

    // Makes the table list again what the directory file on disk lists: after
    // a failed write the rows must not claim what the archive does not hold.
    void FollowDirectoryOnDisk();

    // Forgets the archive: no paths, no rows.
    void Close();

private:
    std::string dataPath_{NoPath};
    std::string dirPath_{NoPath};
    std::uint64_t highestOffset_ = 0;
    EntryTable table_;
};

} // namespace korvel
