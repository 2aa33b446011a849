#include "window/ShowMe.h"

#include "platform/TextFile.h"
#include "window/SaveLines.h"

#include <algorithm>

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
            list.rows.push_back({name, row + 1, IconKey(IconKindOfName(name)), table.refOf(row)});
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

} // namespace korvel
