// Renaming one entry and lower-casing the names of rows. Only the directory
// file changes; no data moves.
#include "archive/EntryOperations.h"

#include "archive/Names.h"
#include "platform/Cp1252.h"

namespace korvel {
namespace {

bool HasExtension(std::string_view name) {
    return name.size() >= 4 && name[name.size() - 4] == '.';
}

} // namespace

Status RenameEntry(Archive& archive, std::size_t row, const std::string& rawName) {
    const ArchiveLock lock = LockForWriting(archive);
    if (!lock.held()) {
        return lock.status();
    }
    EntryTable& table = archive.table();
    if (row >= table.size()) {
        return Status::Failed("there is no row " + std::to_string(row + 1), "noSuchRow",
                              {std::to_string(row + 1)});
    }
    if (Status problem = CheckEntryName(rawName); !problem.ok()) {
        return problem;
    }
    const std::vector<Entry> before = table.rows();
    table.setName(row, rawName);
    Status written = archive.WriteDirectory();
    if (!written.ok()) {
        archive.RestoreRowsAfterFailedWrite(before);
    }
    return written;
}

LowerCaseResult LowerCaseNames(Archive& archive, const std::vector<std::size_t>& rows,
                               NameCase which) {
    EntryTable& table = archive.table();
    LowerCaseResult result;
    if (table.empty()) {
        return result;
    }
    const ArchiveLock lock = LockForWriting(archive);
    if (!lock.held()) {
        result.status = lock.status();
        return result;
    }
    const std::vector<Entry> before = table.rows();
    std::vector<Entry> after = before;
    std::vector<std::size_t> changed;
    for (std::size_t row : rows) {
        if (row >= after.size()) {
            continue;
        }
        std::string& name = after[row].name;
        if (which == NameCase::Whole) {
            name = ToLowerCp1252(name);
        } else if (HasExtension(name)) {
            const std::size_t cut = name.size() - 4;
            name = which == NameCase::BeforeExtension
                       ? ToLowerCp1252(name.substr(0, cut)) + name.substr(cut)
                       : name.substr(0, cut) + ToLowerCp1252(name.substr(cut));
        } else {
            continue;
        }
        if (name != before[row].name) {
            changed.push_back(row);
        }
    }
    // Names that were lower case already are not counted: the message tells
    // how many names this command changed.
    result.count = changed.size();
    if (table.order() == EntryTable::Order::Index) {
        for (std::size_t row : changed) {
            table.setName(row, after[row].name);
        }
    } else if (!changed.empty()) {
        // Renamed rows may move in name order; set them all at once.
        table.assign(std::move(after));
    }
    result.status = archive.WriteDirectory();
    if (!result.status.ok()) {
        archive.RestoreRowsAfterFailedWrite(before);
    }
    return result;
}

} // namespace korvel
