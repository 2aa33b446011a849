// libFuzzer target: the name codec (UTF-8 <-> Windows-1252 both ways), the
// shown form of names and the name rules, on arbitrary bytes read both as
// UTF-8 text and as raw Windows-1252 names.
#include "archive/EntryFiles.h"
#include "archive/Names.h"
#include "platform/Cp1252.h"
#include "platform/TextFile.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

bool HasAny(std::string_view text, bool (*bad)(char)) {
    for (char c : text) {
        if (bad(c)) {
            return true;
        }
    }
    return false;
}

bool IsSeparatorOrControl(char c) {
    return c == '/' || c == '\\' || korvel::IsControlByte(c);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);

    // Every byte string is a name, and its UTF-8 form reads back as itself.
    const std::string utf8 = korvel::Cp1252ToUtf8(input);
    const auto back = korvel::Utf8ToCp1252(utf8);
    Require(back && *back == input);

    // Text read as UTF-8: what is accepted is exactly the shortest form of
    // what it stands for, so writing it out again gives the same bytes (an
    // overlong "C0 AF" cannot pass for "/").
    if (const auto name = korvel::Utf8ToCp1252(input)) {
        Require(korvel::Cp1252ToUtf8(*name) == input);
    }
    // The decoder either steps forward or refuses without moving.
    for (std::size_t at = 0; at < input.size();) {
        const std::size_t before = at;
        const auto cp = korvel::DecodeUtf8(input, at);
        Require(cp ? at > before && at - before <= 4 && *cp <= 0x10FFFF : at == before);
        at = cp ? at : at + 1;
    }
    Require(korvel::ToAnsi(input).size() <= input.size());

    // The shown form holds no control byte, and is the name itself when the
    // name holds none.
    const std::string escaped = korvel::EscapeControls(input);
    Require(!HasAny(escaped, korvel::IsControlByte));
    Require(HasAny(input, korvel::IsControlByte) || escaped == input);

    // A name rename and add accept is one a folder can hold as a file.
    if (korvel::EntryNameProblem(input).empty()) {
        Require(!input.empty() && !HasAny(input, IsSeparatorOrControl));
        Require(korvel::EntryFileIn("folder", std::string(input)).has_value() ||
                !korvel::WindowsFileNameProblem(input).empty());
    }
    Require(korvel::StoredEntryName(input).size() <= 24);
    (void)korvel::IsViewableName(input);
    return 0;
}
