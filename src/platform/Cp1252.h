// Windows-1252, the 8-bit text of entry names and of the text files the
// editor writes. Conversion to and from UTF-8 happens only at the edges (the
// screen, file names on disk, the command line), so every layer shares this.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace korvel {

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

} // namespace korvel
