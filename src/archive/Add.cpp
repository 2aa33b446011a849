// Adding files as new entries: the duplicate scan with its four answers, the
// data appended behind the entry that lies last, texture dictionaries last in
// a batch, and one directory write per batch.
#include "archive/EntryCommands.h"

#include "platform/FileCopy.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

namespace korvel {
namespace fs = std::filesystem;
namespace {

bool LowerLess(std::string_view a, std::string_view b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return static_cast<unsigned char>(LowerCp1252(x)) <
               static_cast<unsigned char>(LowerCp1252(y));
    });
}

bool IsTextureDictionary(std::string_view name) {
    return name.size() >= 4 && ToLowerCp1252(name.substr(name.size() - 4)) == ".txd";
}

std::string FolderWithSeparator(const std::string& path) {
    const auto slash = path.find_last_of("/\\");
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

} // namespace

long NumberSetting(const std::string& value) {
    long number = 0;
    for (char c : value) {
        if (c < '0' || c > '9') {
            break;
        }
        number = number * 10 + (c - '0');
        if (number > 1000000) {
            break;
        }
    }
    return number;
}

// Finds rows by name ignoring case without comparing every row with every
// file: a hash of lower-cased names while rows keep index order (new rows
// go to the end, so positions stay valid), a binary search while the table is
// kept in name order (names equal ignoring case then stand together).
class EntryCommands::NameIndex {
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

void EntryCommands::ReportAddFailure(const std::string& description, const std::string& name) {
    editor_.desktop().ShowMessage(editor_.text("ohCrap1") + " " + description + "\r\n" +
                                      editor_.text("ohCrap2") + "\r\n" + Cp1252ToUtf8(name),
                                  "Error", MessageIcon::Exclamation);
}

EntryCommands::AddResult EntryCommands::AddFile(const std::string& path, std::string& name) {
    NameIndex index(editor_.table());
    return AddFileIndexed(path, name, index);
}

EntryCommands::AddResult EntryCommands::AddFileIndexed(const std::string& path, std::string& name,
                                                       NameIndex& index,
                                                       std::optional<std::uint64_t>* appendAt) {
    EntryTable& table = editor_.table();
    Settings& settings = editor_.settings();
    Desktop& desktop = editor_.desktop();

    const bool scan =
        name != MarkerName && BooleanWord(settings.ReadSetting("addingScan")).value_or(false);
    for (std::size_t from = 0; scan;) {
        const auto hit = index.next(name, from);
        if (!hit) {
            break;
        }
        const std::size_t row = *hit;
        from = row + 1;
        if (NumberSetting(settings.ReadSetting("scanPrompt")) == 0) {
            dialogs_.AddingDup(Cp1252ToUtf8(name));
        }
        const std::string action = settings.ReadSetting("addingOpt");
        if (action == "skip") {
            return AddResult::Skipped;
        }
        if (action == "replace") {
            if (appendAt != nullptr) {
                appendAt->reset(); // replacing may move data to the end
            }
            FsError error = ReplaceEntry(path, row);
            if (error.empty()) {
                return AddResult::Replaced;
            }
            ReportAddFailure(error, name);
            return AddResult::Failed;
        }
        if (action == "renameOld") {
            const std::string oldName = table[row].name;
            RenameRequest request;
            request.row = row;
            request.currentName = Cp1252ToUtf8(oldName);
            request.modal = true;
            request.doRename = [this, row](const std::string& typed) {
                return DoRename(row, typed);
            };
            dialogs_.RenameAItem(request);
            index.renamed(row, oldName);
        } else if (action == "renameNew") {
            const auto typed =
                desktop.InputBox(editor_.text("reTrouble1") + " " + Cp1252ToUtf8(name),
                                 editor_.text("reTrouble2"), "");
            const auto converted = Utf8ToCp1252(typed.value_or(""));
            if (!converted) {
                ReportAddFailure("the new name holds characters an archive cannot store", name);
                return AddResult::Failed;
            }
            name = *converted;
        }
    }

    if (!FileExists(path)) {
        ReportAddFailure(path + " is not a file that can be read", name);
        editor_.WriteDirectory();
        return AddResult::Failed;
    }
    const std::uint64_t size = FileLength(path).value_or(0);
    const std::uint64_t sectors = SectorsForFile(size);
    const std::uint64_t offset =
        appendAt != nullptr && appendAt->has_value() ? **appendAt : table.appendOffset();
    FsError error;
    if (offset / SectorSize > std::numeric_limits<std::uint32_t>::max() ||
        sectors > std::numeric_limits<std::uint32_t>::max()) {
        error = "the archive cannot address data beyond 8 TiB";
    }
    File source;
    File data;
    if (error.empty()) {
        error = source.open(path, File::Mode::Read);
    }
    if (error.empty()) {
        error = data.open(editor_.dataPath(), File::Mode::ReadWrite);
    }
    std::uint64_t oldLength = 0;
    if (error.empty()) {
        error = data.length(oldLength);
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
    if (!error.empty()) {
        ReportAddFailure(error, name);
        editor_.WriteDirectory();
        return AddResult::Failed;
    }

    const std::size_t row = table.append(Entry{static_cast<std::uint32_t>(offset / SectorSize),
                                               static_cast<std::uint32_t>(sectors), name, false});
    index.appended(row);
    if (appendAt != nullptr) {
        // The new row lies behind every other, so the next one goes right
        // after it; the batch finds the highest offset once at its end.
        *appendAt = offset + sectors * SectorSize;
    } else {
        editor_.FindHighestOffset();
    }
    desktop.SetStats(editor_.text("stats1") + " " + std::to_string(table.size()));
    return AddResult::Added;
}

std::size_t EntryCommands::AddFileBatch(const std::vector<std::string>& paths, bool fromDialog) {
    Desktop& desktop = editor_.desktop();
    NameIndex index(editor_.table());
    std::optional<std::uint64_t> appendAt;
    std::size_t failed = 0;
    const auto addOne = [&](const std::string& path) {
        const auto converted = Utf8ToCp1252(fs::path(path).filename().string());
        if (!converted) {
            ReportAddFailure("its name holds characters an archive cannot store",
                             fs::path(path).filename().string());
            ++failed;
            return;
        }
        std::string name = *converted;
        if (AddFileIndexed(path, name, index, &appendAt) == AddResult::Failed) {
            ++failed;
        }
    };

    if (fromDialog && paths.size() == 1) {
        addOne(paths.front());
        desktop.SetStatus(editor_.text("adding5"));
    } else {
        const std::string of = " " + editor_.text("adding2") + " ";
        std::vector<std::string> textures;
        for (std::size_t i = 0; i < paths.size(); ++i) {
            desktop.SetStatus(editor_.text("adding1") + " " + std::to_string(i + 1) + of +
                              std::to_string(paths.size()));
            if (IsTextureDictionary(fs::path(paths[i]).filename().string())) {
                textures.push_back(paths[i]);
            } else {
                addOne(paths[i]);
            }
        }
        for (std::size_t j = 0; j < textures.size(); ++j) {
            if (fromDialog) {
                desktop.SetStatus(editor_.text("adding4") + " " + std::to_string(j + 1) + of +
                                  std::to_string(textures.size()));
            }
            addOne(textures[j]);
        }
        desktop.SetStatus(std::to_string(paths.size()) + " " + editor_.text("adding3"));
    }
    if (!editor_.WriteDirectory()) {
        // The directory file on disk still lists what it listed before; the
        // table follows it, and the appended data is unused space.
        editor_.archive().FollowDirectoryOnDisk();
        failed = std::max<std::size_t>(failed, 1);
    }
    editor_.FindHighestOffset();
    editor_.AssignTypeIcons();
    return failed;
}

std::vector<std::string> EntryCommands::AddDialog() {
    const std::string lastAdd = editor_.settings().ReadSetting("lastAdd");
    FileDialogRequest request;
    request.title = editor_.text("adding6");
    request.filter = editor_.text("cdFiles2");
    request.startFolder = lastAdd == NoPath ? std::string() : lastAdd;
    request.multiple = true;
    const FileDialogAnswer answer = editor_.desktop().OpenFileDialog(request);
    if (answer.outcome == FileDialogAnswer::Outcome::Failed) {
        editor_.desktop().SetStatus(editor_.text("adding7"));
        return {};
    }
    if (!answer.chosen()) {
        return {};
    }
    return answer.paths;
}

void EntryCommands::AddFilesAskingPaths() {
    const std::vector<std::string> paths = AddDialog();
    if (paths.empty() || (paths.size() == 1 && paths.front().empty())) {
        return;
    }
    // One file remembers its folder with the separator, several the folder
    // itself, as the dialog hands them over.
    const std::string folder = paths.size() == 1 ? FolderWithSeparator(paths.front())
                                                 : fs::path(paths.front()).parent_path().string();
    editor_.settings().WriteSetting(folder, "lastAdd");
    AddFileBatch(paths, true);
}

void EntryCommands::ToggleAddingScan() {
    MenuState& menu = editor_.menu();
    const bool scan = !menu.isChecked("AddingScan");
    menu.setChecked("AddingScan", scan);
    editor_.settings().WriteSetting(scan ? "True" : "False", "addingScan");
}

} // namespace korvel
