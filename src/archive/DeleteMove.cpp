// Deleting rows and moving rows to the end. Both change only the directory
// file; the data stays in the data file until a rebuild.
#include "archive/EntryOperations.h"

namespace korvel {
namespace {

// Removes the rows and writes the directory file; on failure the table is
// `restoreOnFailure` again, which is what the old directory file lists.
Status RemoveRowsAndWrite(Archive& archive, const std::vector<std::size_t>& rows,
                          const std::vector<Entry>& restoreOnFailure) {
    const ArchiveLock lock = LockForWriting(archive);
    if (!lock.held()) {
        archive.table().assign(restoreOnFailure);
        return lock.status();
    }
    EntryTable& table = archive.table();
    std::vector<bool> doomed(table.size(), false);
    for (std::size_t row : rows) {
        if (row < doomed.size()) {
            doomed[row] = true;
        }
    }
    // One removal for all rows: removing them one by one is quadratic.
    table.removeWhere(doomed);
    Status written = archive.WriteDirectory();
    if (!written.ok()) {
        archive.RestoreRowsAfterFailedWrite(restoreOnFailure);
    }
    archive.FindHighestOffset();
    return written;
}

} // namespace

Status DeleteRows(Archive& archive, const std::vector<std::size_t>& rows) {
    return RemoveRowsAndWrite(archive, rows, archive.table().rows());
}

Status MoveRowsToEnd(Archive& archive, const std::vector<std::size_t>& rows) {
    EntryTable& table = archive.table();
    const std::vector<Entry> before = table.rows();
    for (std::size_t row : rows) {
        if (row < before.size()) {
            Entry copy = before[row];
            copy.selected = false;
            table.append(std::move(copy));
        }
    }
    return RemoveRowsAndWrite(archive, rows, before);
}

} // namespace korvel
