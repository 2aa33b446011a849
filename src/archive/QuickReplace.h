// Quick replace: each of the given rows takes the data of the file of the
// same name in one folder. A row without a file there is put to the caller,
// who may skip it, replace it some other way, or name another folder.
#pragma once

#include "archive/EntryOperations.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace korvel {

struct MissingFileAnswer {
    enum class Choice {
        Skip,          // counted as skipped
        ReplacedElse,  // the caller dealt with the row itself; counted as replaced
        LookElsewhere, // look again in `folder`
        Nothing,       // counted as neither
    } choice = Choice::Skip;
    std::string folder;
};
using AskAboutMissingFile = std::function<MissingFileAnswer(
    const std::string& rawName, std::size_t row, const std::string& folder)>;

struct QuickReplaceCounts {
    std::size_t replaced = 0;
    std::size_t skipped = 0;
    // The replacement that failed stopped the run: its status, its row's
    // name, and whether it was the directory file that could not be written.
    Status status = Status::Ok();
    std::string failedName;
    bool directoryNotWritten = false;
    std::string folder; // the folder used last
    // Rows skipped because their names cannot be file names in the folder:
    // one message each (UnsafeNameStatus), counted in `skipped`.
    std::vector<Status> refused;
    // `stop` ended the run between two rows; those before are replaced.
    bool stopped = false;
};

// Replaces `rows` (in the order given) from `folder`. Markers are skipped.
// `replaced` hears of each row replaced from the folder. Each row's
// replacement writes the directory file, so `stop`, asked before each row,
// leaves the archive whole with the rows done so far.
QuickReplaceCounts ReplaceFromFolder(Archive& archive, const std::vector<std::size_t>& rows,
                                     std::string folder, const AskAboutMissingFile& ask,
                                     const std::function<void(std::size_t row)>& replaced,
                                     const StopCheck& stop = {});

} // namespace korvel
