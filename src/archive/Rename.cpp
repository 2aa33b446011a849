// Renaming one entry and lower-casing the names of the selected entries. Only
// the directory file changes; no data moves.
#include "archive/EntryCommands.h"

#include <array>

namespace korvel {
namespace {

// A rename still stands when the name holds one of these; the status line
// only answers back. Compared with letter case, as typed.
constexpr std::array<std::string_view, 10> RudeWords = {
    "fuck", "shit", "cunt", "bitch", "bastard", "wank", "twat", "arsehole", "bollocks", "piss"};

bool IsRude(std::string_view name) {
    for (std::string_view word : RudeWords) {
        if (name.find(word) != std::string_view::npos) {
            return true;
        }
    }
    return false;
}

bool HasExtension(std::string_view name) {
    return name.size() >= 4 && name[name.size() - 4] == '.';
}

} // namespace

void EntryCommands::RenameSelectedWithDialog() {
    const EntryTable& table = editor_.table();
    // The dialog is refilled for each selected row and so shows the last one.
    std::optional<std::size_t> last;
    for (std::size_t row = 0; row < table.size(); ++row) {
        if (table[row].selected) {
            last = row;
        }
    }
    if (!last) {
        return;
    }
    RenameRequest request;
    request.row = *last;
    request.currentName = Cp1252ToUtf8(table[*last].name);
    request.modal = false;
    request.doRename = [this, row = *last](const std::string& typed) {
        return DoRename(row, typed);
    };
    dialogs_.RenameAItem(request);
}

bool EntryCommands::DoRename(std::size_t row, const std::string& typed) {
    EntryTable& table = editor_.table();
    Desktop& desktop = editor_.desktop();
    if (typed.find_first_not_of(' ') == std::string::npos) {
        desktop.ShowMessage("No name entered", "", MessageIcon::Information);
        return false;
    }
    const auto name = Utf8ToCp1252(typed);
    if (!name) {
        desktop.ShowMessage("The name \"" + typed +
                                "\" holds characters an archive cannot store (names are "
                                "Windows-1252 text).",
                            "", MessageIcon::Information);
        return false;
    }
    if (row >= table.size()) {
        return true;
    }
    const std::vector<Entry> before = table.rows();
    table.setName(row, *name);
    if (!editor_.WriteDirectory()) {
        table.assign(before);
        return true;
    }
    desktop.SetStatus(IsRude(*name) ? std::string("You kiss your mother with that mouth?")
                                    : editor_.text("sd1"));
    editor_.AssignTypeIcons();
    return true;
}

void EntryCommands::LowerCaseSelected(NameCase which) {
    EntryTable& table = editor_.table();
    if (table.empty()) {
        return;
    }
    const std::vector<Entry> before = table.rows();
    std::vector<Entry> after = before;
    std::vector<std::size_t> changed;
    std::size_t count = 0;
    for (std::size_t row = 0; row < after.size(); ++row) {
        std::string& name = after[row].name;
        if (!after[row].selected) {
            continue;
        }
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
        ++count;
        if (name != before[row].name) {
            changed.push_back(row);
        }
    }
    if (table.order() == EntryTable::Order::Index) {
        for (std::size_t row : changed) {
            table.setName(row, after[row].name);
        }
    } else if (!changed.empty()) {
        // Renamed rows may move in name order; set them all at once.
        table.assign(std::move(after));
    }
    if (!editor_.WriteDirectory()) {
        table.assign(before);
        return;
    }
    editor_.desktop().SetStatus(
        std::to_string(count) + " " +
        (which == NameCase::Extension ? editor_.text("lcase2") : editor_.text("lcase1")));
}

} // namespace korvel
