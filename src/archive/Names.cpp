#include "archive/Names.h"

#include "archive/Format.h"
#include "platform/Cp1252.h"

#include <algorithm>
#include <array>

namespace korvel {

bool NameLess(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const auto x = static_cast<unsigned char>(LowerCp1252(a[i]));
        const auto y = static_cast<unsigned char>(LowerCp1252(b[i]));
        if (x != y) {
            return x < y;
        }
    }
    if (a.size() != b.size()) {
        return a.size() < b.size();
    }
    return a < b;
}

EntryKind IconKindOfName(std::string_view name) {
    const std::string tail = ToLowerCp1252(name.substr(name.size() >= 3 ? name.size() - 3 : 0));
    if (tail == "ifp")
        return EntryKind::Animation;
    if (tail == "col")
        return EntryKind::Collision;
    if (tail == "dff")
        return EntryKind::Model;
    if (tail == "txd")
        return EntryKind::Texture;
    return EntryKind::Other;
}

EntryKind KindOfName(std::string_view name) {
    if (name.size() < 4 || name[name.size() - 4] != '.') {
        return EntryKind::Other;
    }
    // The three letters after the dot are the icon rule's three.
    return IconKindOfName(name);
}

bool IsNameOfKind(EntryKind kind, std::string_view name) {
    return KindOfName(name) == kind && !(kind == EntryKind::Other && name == MarkerName);
}

std::string_view IconKey(EntryKind type) {
    switch (type) {
    case EntryKind::Model:
        return "blue";
    case EntryKind::Texture:
        return "orange";
    case EntryKind::Animation:
        return "green";
    case EntryKind::Collision:
        return "grey";
    case EntryKind::Other:
        break;
    }
    return "none";
}

std::string EntryNameProblem(std::string_view raw) {
    return CheckEntryName(raw).error();
}

Status CheckEntryName(std::string_view raw) {
    const std::string shown = ShownName(raw);
    const std::string quoted = "The name \"" + shown + "\" cannot be given to an entry";
    if (raw.empty()) {
        return Status::Failed(quoted + ": it is empty.", "nameEmpty", {shown});
    }
    if (raw == "." || raw == "..") {
        return Status::Failed(quoted + ": it would name a folder, not a file.", "nameFolder",
                              {shown});
    }
    if (std::any_of(raw.begin(), raw.end(),
                    [](char c) { return c == '/' || c == '\\' || IsControlByte(c); })) {
        return Status::Failed(
            quoted + ": it holds \"/\", \"\\\" or a control character (shown as \\xHH).",
            "nameBadChars", {shown});
    }
    return Status::Ok();
}

std::string StoredEntryName(std::string_view raw) {
    return std::string(raw.substr(0, NameFieldSize));
}

bool IsViewableName(std::string_view raw) {
    static constexpr std::array<std::string_view, 20> Viewable = {
        "dff", "txd", "ifp", "col", "txt", "ini", "cfg",  "dat", "ide", "ipl",
        "zon", "gxt", "fxt", "png", "bmp", "jpg", "jpeg", "tga", "dds", "wav"};
    const std::size_t dot = raw.rfind('.');
    if (dot == std::string_view::npos) {
        return false;
    }
    const std::string extension = ToLowerCp1252(raw.substr(dot + 1));
    return std::find(Viewable.begin(), Viewable.end(), extension) != Viewable.end();
}

} // namespace korvel
