#include "archive/Names.h"

#include "archive/Format.h"
#include "platform/Cp1252.h"

#include <algorithm>

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

} // namespace korvel
