// Adding files as new entries: the duplicate scan, the data appended behind
// the entry that lies last, and one directory write per batch.
#include "archive/EntryOperations.h"

#include "archive/EntryFiles.h"
#include "archive/Names.h"
#include "platform/Cp1252.h"
#include "platform/FileCopy.h"
#include "platform/FileSystem.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

namespace korvel {
namespace {

bool LowerLess(std::string_view a, std::string_view b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return static_cast<unsigned char>(LowerCp1252(x)) <
               static_cast<unsigned char>(LowerCp1252(y));
    });
}

AddOutcome Failure(Status failed) {
    AddOutcome outcome;
    outcome.result = AddResult::Failed;
    outcome.status = std::move(failed);
    return outcome;
}

AddOutcome Failure(std::string error) {
    return Failure(Status::Failed(std::move(error)));
}

} // namespace

std::string_view DuplicateAnswerWord(DuplicateAnswer answer) {
    switch (answer) {
    case DuplicateAnswer::Replace:
        return "replace";
    case DuplicateAnswer::RenameOld:
        return "renameOld";
    case DuplicateAnswer::RenameNew:
        return "renameNew";
    case DuplicateAnswer::Skip:
        return "skip";
    case DuplicateAnswer::AddBeside:
        break;
    }
    return {};
}

DuplicateAnswer DuplicateAnswerFromWord(std::string_view word) {
    for (DuplicateAnswer answer : {DuplicateAnswer::Replace, DuplicateAnswer::RenameOld,
                                   DuplicateAnswer::RenameNew, DuplicateAnswer::Skip}) {
        if (word == DuplicateAnswerWord(answer)) {
            return answer;
        }
    }
    // Deliberate: a word we do not know adds the file beside the old one.
    return DuplicateAnswer::AddBeside;
}

bool IsTextureDictionary(std::string_view fileName) {
    return fileName.size() >= 4 && ToLowerCp1252(fileName.substr(fileName.size() - 4)) == ".txd";
}

// Finds rows by name ignoring case without comparing every row with every
// file: a hash of lower-cased names while rows keep index order (new rows
// go to the end, so positions stay valid), a binary search while the table is
// kept in name order (names equal ignoring case then stand together).
class AddBatch::NameIndex {
public:
    explicit NameIndex(const EntryTable& table) : table_(table) {
        if (hashed()) {
            for (std::size_t row = 0; row < table.size(); ++row) {
                rows_[ToLowerCp1252(table[row].name)].push_back(row);
            }
        }
    }

    // The first row at or after `from` whose name equals `name` ignoring case.
    std::optional<std::size_t> next(const std::string& name, std::size_t from) const {
        if (hashed()) {
            const auto found = rows_.find(ToLowerCp1252(name));
            if (found == rows_.end()) {
                return std::nullopt;
            }
            const auto at = std::lower_bound(found->second.begin(), found->second.end(), from);
            return at == found->second.end() ? std::nullopt : std::optional<std::size_t>(*at);
        }
        const auto& rows = table_.rows();
        const auto first = std::partition_point(
            rows.begin(), rows.end(), [&](const Entry& e) { return LowerLess(e.name, name); });
        const std::size_t start = std::max(static_cast<std::size_t>(first - rows.begin()), from);
        if (start < rows.size() && EqualsIgnoreCase(rows[start].name, name)) {
            return start;
        }
        return std::nullopt;
    }

    void appended(std::size_t row) {
        if (hashed()) {
            rows_[ToLowerCp1252(table_[row].name)].push_back(row);
        }
    }

    void renamed(std::size_t row, const std::string& oldName) {
        if (!hashed() || row >= table_.size()) {
            return;
        }
        auto& before = rows_[ToLowerCp1252(oldName)];
        before.erase(std::remove(before.begin(), before.end(), row), before.end());
        auto& after = rows_[ToLowerCp1252(table_[row].name)];
        after.insert(std::lower_bound(after.begin(), after.end(), row), row);
    }

private:
    bool hashed() const { return table_.order() == EntryTable::Order::Index; }

    const EntryTable& table_;
    std::unordered_map<std::string, std::vector<std::size_t>> rows_;
};

AddBatch::AddBatch(Archive& archive, bool scan, DecideDuplicate decide)
    : archive_(archive), scan_(scan), decide_(std::move(decide)),
      index_(std::make_unique<NameIndex>(archive.table())) {}

AddBatch::~AddBatch() = default;

AddOutcome AddBatch::DataFailure(std::string error) {
    AddOutcome outcome = Failure(std::move(error));
    // Deliberate: after a failed copy the directory file is written from the
    // rows as they stand, so a rename answered before the copy is kept.
    outcome.directoryAfterFailure = archive_.WriteDirectory();
    return outcome;
}

AddOutcome AddBatch::Add(const std::string& path, std::string& name) {
    const ArchiveLock lock = LockForWriting(archive_);
    if (!lock.held()) {
        return Failure(lock.status());
    }
    std::string longName;
    AddOutcome outcome = AddUnderStoredName(path, name, longName);
    outcome.shortenedFrom = std::move(longName);
    return outcome;
}

AddOutcome AddBatch::AddUnderStoredName(const std::string& path, std::string& name,
                                        std::string& longName) {
    // The name is checked whole and then shortened as the directory record
    // will store it, so that two long names that end up alike meet in the
    // duplicate scan instead of silently becoming two rows of one name.
    const auto takeName = [&](const std::string& wanted) -> std::optional<AddOutcome> {
        if (Status problem = CheckEntryName(wanted); !problem.ok()) {
            return Failure(std::move(problem));
        }
        name = StoredEntryName(wanted);
        longName = name == wanted ? std::string() : wanted;
        return std::nullopt;
    };
    if (auto refused = takeName(std::string(name))) {
        return *refused;
    }
    EntryTable& table = archive_.table();
    const bool scan = scan_ && name != MarkerName && decide_;
    for (std::size_t from = 0; scan;) {
        const auto hit = index_->next(name, from);
        if (!hit) {
            break;
        }
        const std::size_t row = *hit;
        from = row + 1;
        const std::string oldName = table[row].name;
        const DuplicateDecision decision = decide_(name, row);
        if (decision.answer == DuplicateAnswer::Skip) {
            AddOutcome outcome;
            outcome.result = AddResult::Skipped;
            return outcome;
        }
        if (decision.answer == DuplicateAnswer::Replace) {
            appendAt_.reset(); // replacing may move data to the end
            ReplaceResult replaced = ReplaceEntry(archive_, row, path);
            AddOutcome outcome;
            outcome.row = row;
            if (replaced.status.ok()) {
                outcome.result = AddResult::Replaced;
                return outcome;
            }
            outcome.result = AddResult::Failed;
            outcome.status = std::move(replaced.status);
            outcome.directoryNotWritten = replaced.directoryNotWritten;
            return outcome;
        }
        if (decision.answer == DuplicateAnswer::RenameOld) {
            index_->renamed(row, oldName);
        } else if (decision.answer == DuplicateAnswer::RenameNew) {
            if (!decision.problem.ok()) {
                return Failure(decision.problem);
            }
            if (auto refused = takeName(decision.newName)) {
                return *refused;
            }
        }
    }

    // Checked before a byte is written: one more record would make a
    // directory file that no longer opens.
    if (table.size() >= MaxRecords) {
        return Failure("the archive already lists " + std::to_string(MaxRecords) +
                       " entries, the most a directory file can hold; no more fit");
    }
    if (!FileExists(path)) {
        return DataFailure(path + " is not a file that can be read");
    }
    const std::uint64_t size = FileLength(path).value_or(0);
    const std::uint64_t sectors = SectorsForFile(size);
    if (Status tooLarge = archive_.CheckEntrySectors(sectors, path); !tooLarge.ok()) {
        return Failure(std::move(tooLarge));
    }
    const std::uint64_t offset = appendAt_ ? *appendAt_ : archive_.appendOffset();
    File source;
    File data;
    FsError error = source.open(path, File::Mode::Read);
    if (error.empty()) {
        error = data.open(archive_.dataPath(), File::Mode::ReadWrite);
    }
    std::uint64_t oldLength = 0;
    if (error.empty()) {
        error = data.length(oldLength);
    }
    if (error.empty()) {
        error = archive_.CheckAppendAt(offset, sectors, oldLength).error();
    }
    if (error.empty()) {
        error = CopyRange(source, 0, data, offset, size);
        if (error.empty()) {
            error = WriteZeros(data, offset + size, sectors * SectorSize - size);
        }
        if (!error.empty()) {
            // No row points at the half-written tail; give it back.
            (void)data.truncate(oldLength);
        }
    }
    if (error.empty()) {
        error = data.close();
    }
    archive_.dataWritten();
    if (!error.empty()) {
        return DataFailure(error);
    }

    AddOutcome outcome;
    outcome.row = table.append(Entry{static_cast<std::uint32_t>(offset / SectorSize),
                                     static_cast<std::uint32_t>(sectors), name, false});
    index_->appended(outcome.row);
    // The new row lies behind every other, so the next one goes right after
    // it; the highest offset is found once at the end.
    appendAt_ = offset + sectors * SectorSize;
    return outcome;
}

Status AddBatch::Finish() {
    Status written = archive_.WriteDirectory();
    if (!written.ok()) {
        // The directory file on disk still lists what it listed before; the
        // table follows it, and the appended data is unused space.
        archive_.FollowDirectoryOnDisk();
    }
    archive_.FindHighestOffset();
    return written;
}

AddOutcome AddFile(Archive& archive, const std::string& path, std::string& name, bool scan,
                   const DecideDuplicate& decide) {
    AddBatch batch(archive, scan, decide);
    AddOutcome outcome = batch.Add(path, name);
    archive.FindHighestOffset();
    return outcome;
}

} // namespace korvel
