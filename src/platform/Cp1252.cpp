#include "platform/Cp1252.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace korvel {
namespace {

// Code points of bytes 0x80..0x9F; the undefined ones keep their own value.
constexpr std::array<char16_t, 32> HighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t CodePointOf(unsigned char byte) {
    if (byte >= 0x80 && byte <= 0x9F) {
        return HighControls[byte - 0x80];
    }
    return byte;
}

void AppendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

std::optional<char> ByteOf(char32_t cp) {
    if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) {
        return static_cast<char>(cp);
    }
    for (std::size_t i = 0; i < HighControls.size(); ++i) {
        if (HighControls[i] == cp) {
            return static_cast<char>(0x80 + i);
        }
    }
    return std::nullopt;
}

} // namespace

std::string Cp1252ToUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (char c : bytes) {
        AppendUtf8(out, CodePointOf(static_cast<unsigned char>(c)));
    }
    return out;
}

std::optional<char32_t> DecodeUtf8(std::string_view utf8, std::size_t& at) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
    const unsigned char lead = byteAt(at);
    if (lead < 0x80) {
        ++at;
        return lead;
    }
    // The shortest form is the only valid one: "C0 AF" would otherwise be a
    // second spelling of "/" that no check on "/" sees.
    int extra = 0;
    char32_t cp = 0;
    char32_t least = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        extra = 1;
        cp = lead & 0x1F;
        least = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        extra = 2;
        cp = lead & 0x0F;
        least = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        extra = 3;
        cp = lead & 0x07;
        least = 0x10000;
    } else {
        return std::nullopt; // a continuation byte, C0/C1, or F5..FF
    }
    if (utf8.size() - at <= static_cast<std::size_t>(extra)) {
        return std::nullopt; // a sequence cut short
    }
    for (int k = 1; k <= extra; ++k) {
        const unsigned char next = byteAt(at + static_cast<std::size_t>(k));
        if ((next & 0xC0) != 0x80) {
            return std::nullopt;
        }
        cp = (cp << 6) | (next & 0x3F);
    }
    if (cp < least || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        return std::nullopt;
    }
    at += static_cast<std::size_t>(extra) + 1;
    return cp;
}

std::optional<std::string> Utf8ToCp1252(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const std::optional<char32_t> cp = DecodeUtf8(utf8, i);
        const std::optional<char> byte = cp ? ByteOf(*cp) : std::nullopt;
        if (!byte) {
            return std::nullopt;
        }
        out.push_back(*byte);
    }
    return out;
}

bool IsControlByte(char c) {
    const auto b = static_cast<unsigned char>(c);
    return b < 0x20 || b == 0x7F || (b >= 0x80 && b <= 0x9F && CodePointOf(b) == b);
}

std::string EscapeControls(std::string_view bytes) {
    static constexpr char Hex[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(bytes.size());
    for (char c : bytes) {
        if (IsControlByte(c)) {
            const auto b = static_cast<unsigned char>(c);
            out += "\\x";
            out.push_back(Hex[b >> 4]);
            out.push_back(Hex[b & 0x0F]);
        } else {
            out.push_back(c);
        }
    }
    return out;
}

std::string ShownName(std::string_view bytes) {
    return Cp1252ToUtf8(EscapeControls(bytes));
}

char LowerCp1252(char c) {
    const auto b = static_cast<unsigned char>(c);
    if ((b >= 'A' && b <= 'Z') || (b >= 0xC0 && b <= 0xDE && b != 0xD7)) {
        return static_cast<char>(b + 0x20);
    }
    switch (b) {
    case 0x8A:
        return static_cast<char>(0x9A);
    case 0x8C:
        return static_cast<char>(0x9C);
    case 0x8E:
        return static_cast<char>(0x9E);
    case 0x9F:
        return static_cast<char>(0xFF);
    default:
        return c;
    }
}

std::string ToLowerCp1252(std::string_view bytes) {
    std::string out(bytes);
    std::transform(out.begin(), out.end(), out.begin(), LowerCp1252);
    return out;
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return LowerCp1252(x) == LowerCp1252(y);
           });
}

} // namespace korvel
