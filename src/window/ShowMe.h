// The show-me lists (`showTheseFiles`): the entries of one kind with their
// row numbers in the main list, taken when the list is filled, and the
// entries themselves, which highlighting selects (SelectResultEntries). The
// window shows what ShowMeList gives and saves what ShowMeLines gives.
#pragma once

#include "window/Editor.h"
#include "window/MainCommands.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvel {

struct ShowMeFamily {
    std::string_view item; // ShowMeModels ...
    EntryKind kind;
    std::string_view titleKey;
};

inline constexpr std::array<ShowMeFamily, 5> ShowMeFamilies = {{
    {"ShowMeModels", EntryKind::Model, "show3"},
    {"ShowMeTextures", EntryKind::Texture, "show4"},
    {"ShowMeAni", EntryKind::Animation, "show1"},
    {"ShowMeCol", EntryKind::Collision, "show2"},
    {"ShowMeOthers", EntryKind::Other, "show5"},
}};

struct ShowMeRow {
    std::string name;      // raw Windows-1252 bytes
    std::size_t number;    // 1-based row of the main list when the list was filled
    std::string_view icon; // "blue", "orange", "green", "grey" or "none"
    EntryRef entry;
};

struct ShowMeList {
    std::string title; // ShowMeTitle of the family and the count
    std::string_view titleKey;
    std::vector<ShowMeRow> rows;
    // Shown as one row of text(`sd2`) with the "none" icon and no number.
    bool placeholder() const { return rows.empty(); }
};

// " ", text(titleKey), the count, "]".
std::string ShowMeTitle(const Editor& editor, const ShowMeList& list);

// Nothing when `item` is not one of the five commands.
std::optional<ShowMeList> BuildShowMeList(const Editor& editor, std::string_view item);

// The lines `saveList` writes (Windows-1252): every name, or the placeholder
// text alone for an empty list.
std::vector<std::string> ShowMeLines(const Editor& editor, const ShowMeList& list);

// saveList: asks for a file and writes the lines, each ended by CR LF.
// Returns true when a file was written.
bool SaveShowMeList(Editor& editor, const ShowMeList& list);

} // namespace korvel
