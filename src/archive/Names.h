// Entry names are 8-bit text. We read and write them as Windows-1252 and keep
// the raw bytes in the engine; conversion to UTF-8 happens only where a name
// meets the screen, a file name on disk or the command line's output.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvel {

enum class EntryType { Model, Texture, Animation, Collision, Other };

// Windows-1252 <-> UTF-8. The five bytes Windows-1252 leaves undefined map to
// the C1 control characters of the same value, so every byte string survives
// a round trip.
std::string Cp1252ToUtf8(std::string_view bytes);
// Nothing when the text holds a character Windows-1252 cannot store.
std::optional<std::string> Utf8ToCp1252(std::string_view utf8);

// Lower-casing and case-insensitive comparison with the Windows-1252 case
// mapping (A-Z, the accented capitals, S/Z/OE with caron, Y with diaeresis).
char LowerCp1252(char c);
std::string ToLowerCp1252(std::string_view bytes);
bool EqualsIgnoreCase(std::string_view a, std::string_view b);
// Ascending name order of the list: case-insensitive, raw bytes break ties.
bool NameLess(std::string_view a, std::string_view b);

// Type of an entry from the last three characters of its lower-cased name
// (so "xdff" is a model). This is the rule behind the list's icons.
EntryType TypeOfName(std::string_view name);
// Icon key of a type: "blue", "orange", "green", "grey" or "none".
std::string_view IconKey(EntryType type);

} // namespace korvel
