#include "archive/Names.h"

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

EntryType TypeOfName(std::string_view name) {
    const std::string tail = ToLowerCp1252(name.substr(name.size() >= 3 ? name.size() - 3 : 0));
    if (tail == "ifp")
        return EntryType::Animation;
    if (tail == "col")
        return EntryType::Collision;
    if (tail == "dff")
        return EntryType::Model;
    if (tail == "txd")
        return EntryType::Texture;
    return EntryType::Other;
}

std::string_view IconKey(EntryType type) {
    switch (type) {
    case EntryType::Model:
        return "blue";
    case EntryType::Texture:
        return "orange";
    case EntryType::Animation:
        return "green";
    case EntryType::Collision:
        return "grey";
    case EntryType::Other:
        break;
    }
    return "none";
}

} // namespace korvel
