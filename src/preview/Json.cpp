#include "preview/Json.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace korvel {

std::string JsonQuoted(std::string_view utf8) {
    std::string out = "\"";
    for (const char c : utf8) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned char>(c));
            out += escaped;
        } else {
            out += c;
        }
    }
    return out + '"';
}

std::string JsonNumber(float value) {
    if (!std::isfinite(value)) {
        return "0";
    }
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, value);
    return std::string(text, result.ptr);
}

} // namespace korvel
