// The separator entry: a small text file in the editor's folder, added to the
// archive under the marker name (24 hyphens).
#pragma once

#include "archive/EntryCommands.h"

#include <filesystem>
#include <string>

namespace korvel {

std::filesystem::path MarkerFilePath(); // icons/marker.gta in the editor's folder

// Writes text(`markText`) and CR LF to the marker file, creating the icons
// folder when needed. Empty on success, else what failed.
FsError WriteMarkerFile(const Settings& settings);

// EditInsertMarker: appends one marker entry to the open archive. Returns
// true when it was added and the directory written.
bool InsertMarker(EntryCommands& commands, Editor& editor);

} // namespace korvel
