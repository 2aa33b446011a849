// Converting an archive to the other kind: a new archive (two-file or
// one-file) holding the same entries in the same order with the same bytes,
// packed from its first data sector. The open archive is only read.
#pragma once

#include "archive/EntryOperations.h"

#include <string>
#include <vector>

namespace korvel {

struct ConvertResult {
    Status status = Status::Ok();
    // Rows whose records reached past the end of the source's data file:
    // each was copied with the sectors that exist, as a rebuild does.
    std::vector<Status> cut;
    // Stopped on request: nothing was put in place.
    bool stopped = false;
};

// Writes the rows of `source`, in row order, as a new archive of `target`
// whose data file is `destDataPath` (a NewArchiveDataPath). Its files are
// written beside their places and renamed into them, so they appear whole
// or not at all (a two-file archive's pair through the rebuild's journal,
// which opening the new archive completes). Refused before anything is
// written: a destination that is one of the source's own files, a link, a
// FIFO, a device or a folder; an existing file of NewArchiveFiles that is
// not one of `confirmed`; more rows than an archive holds (MaxRecords); for a one-file
// target, an entry of more than MaxOneFileEntrySectors sectors (the first
// such one is named).
ConvertResult ConvertArchive(const Archive& source, const std::string& destDataPath,
                             ArchiveKind target, const std::vector<std::string>& confirmed,
                             const RebuildProgress& progress);

} // namespace korvel
