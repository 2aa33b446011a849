// Extracting one entry to a file in a folder.
#include "archive/EntryFiles.h"
#include "archive/EntryOperations.h"

#include <system_error>

namespace korvel {

ExtractResult ExtractEntryTo(const Archive& archive, std::size_t row,
                             const std::filesystem::path& folder, const DecideOverwrite& decide) {
    ExtractResult result;
    if (row >= archive.table().size()) {
        result.status = Status::Failed("there is no row " + std::to_string(row + 1), "noSuchRow",
                                       {std::to_string(row + 1)});
        return result;
    }
    const Entry& entry = archive.table()[row];
    result.target = EntryFileIn(folder, entry.name);
    if (!result.target) {
        result.status = UnsafeNameStatus(entry.name);
        return result;
    }
    // Anything at all standing there counts, a dangling link too: the
    // person decides before a byte of theirs is lost.
    std::error_code ec;
    if (decide && std::filesystem::exists(std::filesystem::symlink_status(*result.target, ec))) {
        switch (decide(*result.target)) {
        case OverwriteChoice::Overwrite:
            break;
        case OverwriteChoice::Skip:
            result.skipped = true;
            return result;
        case OverwriteChoice::Stop:
            result.skipped = true;
            result.stopped = true;
            return result;
        }
    }
    EntryCopy copy = CopyEntryToFile(archive, entry, *result.target);
    result.status = std::move(copy.status);
    result.refused = copy.refused;
    result.missingBytes = copy.missingBytes;
    return result;
}

} // namespace korvel
