// Extracting one entry to a file in a folder.
#include "archive/EntryFiles.h"
#include "archive/EntryOperations.h"

namespace korvel {

ExtractResult ExtractEntryTo(const Archive& archive, std::size_t row,
                             const std::filesystem::path& folder) {
    ExtractResult result;
    if (row >= archive.table().size()) {
        result.status = Status::Failed("there is no row " + std::to_string(row + 1), "noSuchRow",
                                       {std::to_string(row + 1)});
        return result;
    }
    const Entry& entry = archive.table()[row];
    result.target = EntryFileIn(folder, entry.name);
    if (!result.target) {
        result.status = Status::Failed(UnsafeNameProblem(entry.name), "unsafeFileName",
                                       {ShownName(entry.name)});
        return result;
    }
    EntryCopy copy = CopyEntryToFile(archive, entry, *result.target);
    result.status = std::move(copy.status);
    result.refused = copy.refused;
    result.missingBytes = copy.missingBytes;
    return result;
}

} // namespace korvel
