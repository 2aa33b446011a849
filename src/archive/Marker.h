// The separator entry: a small text file in the editor's folder, added to the
// archive under the marker name (24 hyphens).
#pragma once

#include "archive/EntryOperations.h"

#include <filesystem>
#include <string>

namespace korvel {

std::filesystem::path MarkerFilePath(); // icons/marker.gta in the editor's folder

// Writes `markText` (UTF-8, stored one byte per character) and CR LF to the
// marker file, creating the icons folder when needed.
Status WriteMarkerFile(const std::string& markText);

struct MarkerResult {
    Status status = Status::Ok();
    enum class Failed { Nothing, MarkerFile, Data, Directory } failed = Failed::Nothing;
    // Data: how writing the directory file from the rows as they stand went.
    Status directoryAfterFailure = Status::Ok();
};
// Writes the marker file anew (so the marker carries the current language),
// appends it as one entry and writes the directory file.
MarkerResult InsertMarker(Archive& archive, const std::string& markText);

} // namespace korvel
