// The files Korvel writes for the person (extracted entries, the temps copies
// view opens, reports, saved result lists, a new archive's pair) land at paths
// built from names in an archive or typed in a dialog. Whatever stands there
// already is not ours: a symbolic link would send the bytes elsewhere, a FIFO
// would make the write wait forever, a device or a folder is no file at all,
// and the open archive's own files must never be overwritten by one of its
// entries or by a report about it. This is the one rule for all of them.
#pragma once

#include "platform/FileCopy.h"

#include <filesystem>
#include <string>
#include <vector>

namespace korvel {

// Why `target` must not be written, naming it, or empty when it may be: what
// stands there is a link, a FIFO, a device or a folder, or it is one of
// `keepOff` (compared by file identity, so another spelling or a hard link is
// caught; a file of `keepOff` that does not exist yet is compared by folder
// identity and name). Looks without opening anything, so a FIFO costs nothing.
std::string OutputTargetProblem(const std::filesystem::path& target,
                                const std::vector<std::filesystem::path>& keepOff);

enum class OutputMode {
    Replace,  // create, or empty a regular file already there
    CreateNew // create; a file already there is an error and stays as it is
};

struct OutputOpen {
    FsError error;        // empty when `out` is open
    bool refused = false; // OutputTargetProblem's reason: nothing was touched
};

// Opens `target` for writing by the rule above. The check is made again on
// what was opened (without following a link, without waiting on a FIFO), so
// nothing swapped in between is written through; a regular file is emptied
// only after it passed.
OutputOpen OpenOutputFile(File& out, const std::filesystem::path& target,
                          const std::vector<std::filesystem::path>& keepOff,
                          OutputMode mode = OutputMode::Replace);

} // namespace korvel
