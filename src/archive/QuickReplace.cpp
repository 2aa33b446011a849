#include "archive/QuickReplace.h"

#include "archive/EntryFiles.h"
#include "platform/Cp1252.h"
#include "platform/FileSystem.h"

#include <memory>

#include <system_error>
#include <unordered_map>

namespace korvel {
namespace fs = std::filesystem;
namespace {

// The regular files of one folder by lower-cased name, so that an entry finds
// its file whatever the letter case on a case-sensitive file system, without
// listing the folder once per entry.
class FolderFiles {
public:
    explicit FolderFiles(const std::string& folder) {
        std::error_code ec;
        for (const auto& item : fs::directory_iterator(fs::path(folder), ec)) {
            std::error_code ignored;
            if (!item.is_regular_file(ignored)) {
                continue;
            }
            const auto name = Utf8ToCp1252(item.path().filename().string());
            if (name) {
                // An exact match wins over one that differs only in case.
                files_.try_emplace(ToLowerCp1252(*name), item.path());
            }
        }
        folder_ = folder;
    }

    // `rawName` must be one EntryFileIn accepts.
    std::optional<fs::path> find(const std::string& rawName) const {
        const auto exact = EntryFileIn(folder_, rawName);
        if (exact && FileExists(*exact)) {
            return exact;
        }
        const auto found = files_.find(ToLowerCp1252(rawName));
        return found == files_.end() ? std::nullopt : std::optional<fs::path>(found->second);
    }

private:
    std::string folder_;
    std::unordered_map<std::string, fs::path> files_;
};

} // namespace

QuickReplaceCounts ReplaceFromFolder(Archive& archive, const std::vector<std::size_t>& rows,
                                     std::string folder, const AskAboutMissingFile& ask,
                                     const std::function<void(std::size_t row)>& replaced,
                                     const StopCheck& stop) {
    EntryTable& table = archive.table();
    QuickReplaceCounts counts;
    const ArchiveLock lock = LockForWriting(archive);
    if (!lock.held()) {
        counts.status = lock.status();
        return counts;
    }
    auto files = std::make_unique<FolderFiles>(folder);

    for (std::size_t row : rows) {
        if (row >= table.size()) {
            continue;
        }
        if (StopAsked(stop)) {
            counts.stopped = true;
            break;
        }
        const std::string name = table[row].name;
        if (name == MarkerName) {
            ++counts.skipped;
            continue;
        }
        // A name that is no plain file name in the folder ("../secret.key",
        // an absolute path) would take its data from outside it.
        if (!EntryFileIn(folder, name)) {
            ++counts.skipped;
            counts.refused.push_back(UnsafeNameStatus(name));
            continue;
        }
        for (;;) {
            if (const auto path = files->find(name)) {
                ReplaceResult result = ReplaceEntry(archive, row, path->string());
                if (!result.status.ok()) {
                    // The rows replaced so far are complete; a failure here is
                    // most likely the data file itself, so going on would only
                    // repeat it for every row.
                    counts.status = std::move(result.status);
                    counts.failedName = name;
                    counts.directoryNotWritten = result.directoryNotWritten;
                    counts.folder = folder;
                    return counts;
                }
                ++counts.replaced;
                if (replaced) {
                    replaced(row);
                }
                break;
            }
            const MissingFileAnswer answer = ask(name, row, folder);
            if (answer.choice == MissingFileAnswer::Choice::Skip) {
                ++counts.skipped;
            } else if (answer.choice == MissingFileAnswer::Choice::ReplacedElse) {
                ++counts.replaced;
            } else if (answer.choice == MissingFileAnswer::Choice::LookElsewhere) {
                folder = answer.folder;
                files = std::make_unique<FolderFiles>(folder);
                continue;
            }
            break;
        }
    }
    counts.folder = folder;
    return counts;
}

} // namespace korvel
