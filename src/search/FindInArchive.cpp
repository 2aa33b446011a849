#include "search/FindInArchive.h"

#include "archive/Names.h"
#include "search/Results.h"

namespace korvel {
namespace {

std::string_view Ending(FindType type) {
    switch (type) {
    case FindType::Textures:
        return ".txd";
    case FindType::Models:
        return ".dff";
    case FindType::Animations:
        return ".ifp";
    case FindType::Collisions:
        return ".col";
    case FindType::All:
        break;
    }
    return {};
}

} // namespace

std::vector<FoundEntry> FindEntries(const EntryTable& table, std::string_view text, FindType type) {
    std::vector<FoundEntry> found;
    const auto wanted = Utf8ToCp1252(text);
    if (!wanted) {
        return found;
    }
    const std::string needle = ToLowerCp1252(*wanted);
    const std::string_view ending = Ending(type);
    for (std::size_t i = 0; i < table.size(); ++i) {
        const std::string lower = ToLowerCp1252(table[i].name);
        if (lower.find(needle) == std::string::npos) {
            continue;
        }
        if (type == FindType::All || lower.ends_with(ending)) {
            found.push_back({table[i].name, i + 1});
        }
    }
    return found;
}

std::vector<FoundEntry> SearchArchive(Editor& editor, const std::string& text, FindType type) {
    editor.settings().WriteSetting(text, "lastSearch");
    if (!editor.table().empty()) {
        editor.table().setSelected(0, false);
    }
    return FindEntries(editor.table(), text, type);
}

void SaveFoundNames(Editor& editor, const std::optional<std::vector<FoundEntry>>& results) {
    std::vector<std::string> lines;
    if (results) {
        for (const FoundEntry& found : *results) {
            lines.push_back(found.name);
        }
    }
    SaveResultLines(editor, results.has_value(), lines, false);
}

} // namespace korvel
