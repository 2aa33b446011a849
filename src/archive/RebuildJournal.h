// The files a rebuild keeps beside the archive, and the recovery that every
// open runs first. Kept apart from the commands so opening needs only this.
#pragma once

#include <filesystem>

namespace korvel {

struct RebuildFiles {
    std::filesystem::path newData; // the new data file until it is renamed
    std::filesystem::path newDir;  // the new directory file until it is renamed
    std::filesystem::path journal; // exists only while the new pair is complete
};
RebuildFiles RebuildFilesFor(const std::filesystem::path& dataPath,
                             const std::filesystem::path& dirPath);

// Finishes or clears a rebuild that was interrupted: with its journal present
// the new pair is renamed into place; without it, leftover temporary files
// are removed. Run before an archive is opened.
void RecoverInterruptedRebuild(const std::filesystem::path& dataPath);

} // namespace korvel
