// Windows-1252, the 8-bit text of entry names and of the text files the
// editor writes. Conversion to and from UTF-8 happens only at the edges (the
// screen, file names on disk, the command line), so every layer shares this.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace korvel {

// Windows-1252 <-> UTF-8. The five bytes Windows-1252 leaves undefined map to
// the C1 control characters of the same value, so every byte string survives
// a round trip.
std::string Cp1252ToUtf8(std::string_view bytes);
// Nothing when the text is not valid UTF-8 or holds a character
// Windows-1252 cannot store. Never a "?" in place of a character: a name
// that changed on its way in would be a different name.
std::optional<std::string> Utf8ToCp1252(std::string_view utf8);

// The one UTF-8 decoder: the code point starting at `at`, moving `at` past
// it. Nothing (and `at` unmoved) for an invalid sequence: overlong forms
// ("C0 80", "C0 AF"), surrogates, code points past U+10FFFF, stray or missing
// continuation bytes. `at` must be inside `utf8`.
std::optional<char32_t> DecodeUtf8(std::string_view utf8, std::size_t& at);

// Control characters: 00-1F, 7F, and the five bytes Windows-1252 leaves
// undefined (81, 8D, 8F, 90, 9D), which read back as C1 controls.
bool IsControlByte(char c);

// How untrusted 8-bit text (names from an archive, paths) is shown in the
// command line's output and the text report: each control byte becomes the
// four characters "\xHH" (upper-case hex); every other byte stays as it is,
// so a name without control characters comes out unchanged and a name can
// never start a line or drive the terminal.
std::string EscapeControls(std::string_view bytes);
// EscapeControls, then as UTF-8: a raw name as the command line prints it.
std::string ShownName(std::string_view bytes);

// Lower-casing and case-insensitive comparison with the Windows-1252 case
// mapping (A-Z, the accented capitals, S/Z/OE with caron, Y with diaeresis).
char LowerCp1252(char c);
std::string ToLowerCp1252(std::string_view bytes);
bool EqualsIgnoreCase(std::string_view a, std::string_view b);

} // namespace korvel
