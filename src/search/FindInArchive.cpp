#include "search/FindInArchive.h"

namespace korvel {

std::vector<FoundEntry> FindEntries(const EntryTable& table, std::string_view text,
                                    std::optional<EntryKind> kind) {
    std::vector<FoundEntry> found;
    const auto wanted = Utf8ToCp1252(text);
    if (!wanted) {
        return found;
    }
    const std::string needle = ToLowerCp1252(*wanted);
    for (std::size_t i = 0; i < table.size(); ++i) {
        const std::string& name = table[i].name;
        if (ToLowerCp1252(name).find(needle) == std::string::npos) {
            continue;
        }
        if (!kind || KindOfName(name) == *kind) {
            found.push_back({name, i + 1, table.refOf(i)});
        }
    }
    return found;
}

std::vector<std::string> FoundEntryLines(const std::vector<FoundEntry>& found) {
    std::vector<std::string> lines;
    lines.reserve(found.size());
    for (const FoundEntry& entry : found) {
        lines.push_back(entry.name);
    }
    return lines;
}

} // namespace korvel
