// Entry names are 8-bit text. We read and write them as Windows-1252 and keep
// the raw bytes in the engine; conversion to UTF-8 happens only where a name
// meets the screen, a file name on disk or the command line's output.
#pragma once

#include "platform/Cp1252.h"

#include <optional>
#include <string>
#include <string_view>

namespace korvel {

// What an entry holds, judged by its name alone.
enum class EntryKind { Model, Texture, Animation, Collision, Other };

// Ascending name order of the list: case-insensitive, raw bytes break ties.
bool NameLess(std::string_view a, std::string_view b);

// The icon rule: the last three characters of the lower-cased name, so
// "xdff" draws as a model. Deliberately looser than the extension rule below:
// the list has always drawn icons this way.
EntryKind IconKindOfName(std::string_view name);
// The extension rule: ".dff", ".txd", ".ifp" or ".col" at the end of the
// name, any case. Selecting by type, the show-me lists, the find filters and
// "texture dictionaries last" all judge by this.
EntryKind KindOfName(std::string_view name);
// KindOfName(name) == kind, except that the marker entry is of no kind: it is
// never selected or listed as an "other" file.
bool IsNameOfKind(EntryKind kind, std::string_view name);
// Icon key of a kind: "blue", "orange", "green", "grey" or "none".
std::string_view IconKey(EntryKind kind);

} // namespace korvel
