#include "search/FindInFiles.h"

#include "archive/EntryFiles.h"

#include "archive/Names.h"
#include "platform/FileCopy.h"
#include "platform/Folders.h"
#include "search/ByteSource.h"
#include "search/CollisionFile.h"
#include "search/Results.h"
#include "search/TextureDictionary.h"

#include <system_error>

namespace korvel {
namespace {

namespace fs = std::filesystem;

bool EndsWithType(const Entry& entry, std::string_view ending) {
    return ToLowerCp1252(entry.name).ends_with(ending);
}

std::size_t CountOfType(const EntryTable& table, std::string_view ending) {
    std::size_t n = 0;
    for (const Entry& entry : table.rows()) {
        n += EndsWithType(entry, ending) ? 1 : 0;
    }
    return n;
}

// Dictionaries the texture search has always passed over.
bool SkippedDictionary(const std::string& name) {
    return ToLowerCp1252(name).starts_with("odie") || name == "Partty_main_lights.txd" ||
           name == "xmode.txd";
}

fs::path TempsCopy(const std::string& rawName) {
    return TempsFolder() / Cp1252ToUtf8(rawName);
}

// With nothing to read the bar keeps the range it had.
void ShowProgressFor(Desktop& desktop, std::size_t entries) {
    desktop.SetProgress(0);
    if (entries != 0) {
        desktop.ShowProgress(static_cast<int>(entries));
    }
}

// Ends a search as the window does: normal pointer, progress back to 0.
void EndSearch(Desktop& desktop) {
    desktop.SetBusy(false);
    desktop.SetProgress(0);
    desktop.HideProgress();
}

} // namespace

std::vector<NameRow> ReadTextureDictionaryNames(Editor& editor, std::uint64_t* bytesRead) {
    const EntryTable& table = editor.table();
    Desktop& desktop = editor.desktop();
    ShowProgressFor(desktop, CountOfType(table, ".txd"));
    std::vector<NameRow> names;
    // A data file that cannot be opened reads as holding nothing.
    FileSource data;
    data.open(editor.dataPath());
    int step = 0;
    for (std::size_t i = 0; i < table.size(); ++i) {
        const Entry& entry = table[i];
        if (!EndsWithType(entry, ".txd")) {
            continue;
        }
        desktop.SetProgress(++step);
        if (SkippedDictionary(entry.name) || !data.isOpen()) {
            continue;
        }
        for (TextureName& texture : ReadTextureNames(data, entry.byteOffset(), entry.byteCount())) {
            names.push_back({std::move(texture.name), std::move(texture.mask), i + 1});
        }
    }
    if (bytesRead) {
        *bytesRead = data.bytesRead();
    }
    return names;
}

bool CopyEntryToTempsFolder(Editor& editor, std::size_t row) {
    if (row == 0 || row > editor.table().size()) {
        return false;
    }
    const Entry& entry = editor.table()[row - 1];
    const auto copy = EntryFileIn(TempsFolder(), entry.name);
    if (!copy) {
        return false;
    }
    std::error_code ec;
    fs::create_directories(TempsFolder(), ec);
    return CopyEntryToFile(editor.archive(), entry, *copy).ok();
}

void ReadCollisionFileNames(const std::string& fileName, std::size_t row,
                            std::vector<NameRow>& names) {
    const fs::path path = TempsCopy(fileName);
    FileSource file;
    const auto length = FileLength(path);
    if (!length || !file.open(path)) {
        return;
    }
    for (std::string& model : ReadCollisionNames(file, 0, *length)) {
        names.push_back({std::move(model), fileName, row});
    }
}

std::vector<FoundInFile> FindTexturesInArchive(Editor& editor, const std::string& text) {
    Desktop& desktop = editor.desktop();
    desktop.SetBusy(true);
    editor.settings().WriteSetting(text, "lastFileSearch");
    const std::vector<NameRow> names = ReadTextureDictionaryNames(editor);
    std::vector<FoundInFile> found;
    // Texture names match with case: the text is compared byte for byte.
    if (const auto wanted = Utf8ToCp1252(text)) {
        for (const NameRow& n : names) {
            if (n.name.find(*wanted) != std::string::npos) {
                found.push_back({n.name, editor.table()[n.row - 1].name, n.row});
            }
        }
    }
    EndSearch(desktop);
    return found;
}

std::vector<FoundInFile> FindCollisionModelsInArchive(Editor& editor, const std::string& text) {
    Desktop& desktop = editor.desktop();
    desktop.SetBusy(true);
    editor.settings().WriteSetting(text, "lastFileSearch");
    const EntryTable& table = editor.table();
    ShowProgressFor(desktop, CountOfType(table, ".col"));
    std::vector<std::pair<std::string, std::size_t>> files;
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (EndsWithType(table[i], ".col")) {
            files.emplace_back(table[i].name, i + 1);
            CopyEntryToTempsFolder(editor, i + 1);
            desktop.SetProgress(static_cast<int>(files.size()));
        }
    }
    desktop.SetProgress(0);
    std::vector<NameRow> names;
    int step = 0;
    for (const auto& [name, row] : files) {
        desktop.SetProgress(++step);
        ReadCollisionFileNames(name, row, names);
    }
    std::vector<FoundInFile> found;
    if (const auto wanted = Utf8ToCp1252(text)) {
        const std::string needle = ToLowerCp1252(*wanted);
        for (NameRow& n : names) {
            if (ToLowerCp1252(n.name).find(needle) != std::string::npos) {
                found.push_back({std::move(n.name), std::move(n.second), n.row});
            }
        }
    }
    EndSearch(desktop);
    return found;
}

void SaveFileSearchResults(Editor& editor, const std::optional<std::vector<FoundInFile>>& results) {
    std::vector<std::string> lines;
    if (results) {
        for (const FoundInFile& found : *results) {
            lines.push_back(found.name + "  --  " + found.entryName);
        }
    }
    SaveResultLines(editor, results.has_value(), lines, true);
}

} // namespace korvel
