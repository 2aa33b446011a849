#include "window/ShowMe.h"

#include "platform/TextFile.h"
#include "search/Results.h"
#include "window/SaveLines.h"

#include <algorithm>
#include <iterator>

namespace korvel {

std::optional<ShowMeList> BuildShowMeList(const Editor& editor, std::string_view item) {
    const auto family = std::find_if(ShowMeFamilies.begin(), ShowMeFamilies.end(),
                                     [&](const ShowMeFamily& f) { return f.item == item; });
    if (family == ShowMeFamilies.end()) {
        return std::nullopt;
    }
    ShowMeList list;
    const EntryTable& table = editor.table();
    for (std::size_t row = 0; row < table.size(); ++row) {
        const std::string& name = table[row].name;
        if (IsNameOfKind(family->kind, name)) {
            list.rows.push_back({name, row + 1, IconKey(IconKindOfName(name))});
        }
    }
    list.titleKey = family->titleKey;
    list.title = ShowMeTitle(editor, list);
    return list;
}

std::string ShowMeTitle(const Editor& editor, const ShowMeList& list) {
    return " " + editor.text(list.titleKey) + std::to_string(list.rows.size()) + "]";
}

std::vector<std::string> ShowMeLines(const Editor& editor, const ShowMeList& list) {
    if (list.placeholder()) {
        return {ToAnsi(editor.text("sd2"))};
    }
    std::vector<std::string> lines;
    lines.reserve(list.rows.size());
    for (const ShowMeRow& row : list.rows) {
        lines.push_back(row.name);
    }
    return lines;
}

bool SaveShowMeList(Editor& editor, const ShowMeList& list) {
    // The list window shows no errors of its own; a failed save ends quietly.
    return SaveLinesAskingPath(editor, {editor.text("sd0"), editor.text("cdFiles3"), {}, {}, false},
                               false, [&](const std::filesystem::path& path) {
                                   return WriteLines(path, ShowMeLines(editor, list));
                               }) == SaveOutcome::Saved;
}

std::optional<std::size_t> HighlightShowMeRows(EntryTable& table,
                                               const std::vector<std::size_t>& numbers) {
    // Numbers past the end (the table shrank since the list was filled) are
    // skipped, whatever order the window hands them in.
    std::vector<std::size_t> inRange;
    std::copy_if(numbers.begin(), numbers.end(), std::back_inserter(inRange),
                 [&](std::size_t n) { return n >= 1 && n <= table.size(); });
    return SelectFoundRows(table, inRange);
}

} // namespace korvel
