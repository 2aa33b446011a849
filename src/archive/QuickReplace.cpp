#include "archive/QuickReplace.h"

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

    std::optional<fs::path> find(const std::string& rawName) const {
        const fs::path exact = fs::path(folder_) / Cp1252ToUtf8(rawName);
        if (FileExists(exact)) {
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

QuickReplace::QuickReplace(Editor& editor, EntryCommands& commands, QuickReplaceDialogs& dialogs)
    : editor_(editor), commands_(commands), dialogs_(dialogs) {}

std::optional<std::string> QuickReplace::PickFolder() {
    auto folder = editor_.desktop().ChooseFolderDialog(editor_.text("repFrom"));
    if (folder && folder->empty()) {
        return std::nullopt;
    }
    return folder;
}

void QuickReplace::QuickReplaceSelected() {
    Desktop& desktop = editor_.desktop();
    const std::size_t count = editor_.table().selectedCount();
    if (count == 0) {
        desktop.SetStatus(editor_.text("noneSel"));
        return;
    }
    if (count == 1) {
        desktop.SetStatus(editor_.text("oneSel"));
        commands_.ReplaceSelectedAskingFiles();
        return;
    }
    const std::string lastQR = editor_.settings().ReadSetting("lastQR");
    std::optional<std::string> folder;
    if (lastQR != NoPath &&
        desktop.AskYesNo(editor_.text("useLastQR") + "\r\n" + lastQR, editor_.text("qrPickPath"))) {
        folder = lastQR;
    } else {
        folder = PickFolder();
    }
    if (!folder) {
        desktop.SetStatus(editor_.text("cancelQR"));
        return;
    }
    ReplaceFromFolder(*folder);
}

QuickReplaceCounts QuickReplace::ReplaceFromFolder(std::string folder) {
    EntryTable& table = editor_.table();
    Settings& settings = editor_.settings();
    QuickReplaceCounts counts;
    auto files = std::make_unique<FolderFiles>(folder);

    for (std::size_t row = 0; row < table.size() && !counts.failed; ++row) {
        if (!table[row].selected) {
            continue;
        }
        const std::string name = table[row].name;
        if (name == MarkerName) {
            ++counts.skipped;
            continue;
        }
        for (;;) {
            if (const auto path = files->find(name)) {
                if (FsError error = commands_.ReplaceEntry(path->string(), row); !error.empty()) {
                    // The rows replaced so far are complete; a failure here is
                    // most likely the data file itself, so going on would only
                    // repeat it for every row.
                    editor_.desktop().ShowMessage(editor_.text("ohCrap1") + " " + error + "\r\n" +
                                                      Cp1252ToUtf8(name),
                                                  "Error", MessageIcon::Exclamation);
                    counts.failed = true;
                } else {
                    ++counts.replaced;
                }
                break;
            }
            dialogs_.QrMissing(Cp1252ToUtf8(name), folder);
            const std::string choice = settings.ReadSetting("qrSetting");
            if (choice == "1") {
                ++counts.skipped;
            } else if (choice == "2") {
                // Counted whatever the person does in the file dialog.
                commands_.ReplaceEntryWithDialog(row);
                ++counts.replaced;
            } else if (choice == "3") {
                // A cancelled picker keeps the folder and skips this entry,
                // rather than looking for files in no folder at all.
                if (auto picked = PickFolder()) {
                    folder = *picked;
                    files = std::make_unique<FolderFiles>(folder);
                    continue;
                }
                ++counts.skipped;
            }
            break;
        }
    }

    settings.WriteSetting(folder, "lastQR");
    table.clearSelection();
    editor_.desktop().SetStatus(std::to_string(counts.replaced) + " " + editor_.text("filesRep") +
                                ", " + std::to_string(counts.skipped) + " " +
                                editor_.text("filesSkip"));
    return counts;
}

} // namespace korvel
