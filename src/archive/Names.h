// Entry names are 8-bit text. We read and write them as Windows-1252 and keep
// the raw bytes in the engine; conversion to UTF-8 happens only where a name
// meets the screen, a file name on disk or the command line's output.
#pragma once

#include "platform/Cp1252.h"

#include <optional>
#include <string>
#include <string_view>

namespace korvel {

enum class EntryType { Model, Texture, Animation, Collision, Other };

// Ascending name order of the list: case-insensitive, raw bytes break ties.
bool NameLess(std::string_view a, std::string_view b);

// Type of an entry from the last three characters of its lower-cased name
// (so "xdff" is a model). This is the rule behind the list's icons.
EntryType TypeOfName(std::string_view name);
// Icon key of a type: "blue", "orange", "green", "grey" or "none".
std::string_view IconKey(EntryType type);

} // namespace korvel
