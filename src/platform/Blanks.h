// Trimming blanks off the ends of a piece of text: settings lines, language
// section lines and typed folder paths all use this one rule, each with the
// blanks its format knows.
#pragma once

#include <string_view>

namespace korvel {

inline std::string_view TrimBlanks(std::string_view text, std::string_view blanks = " \t") {
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace korvel
