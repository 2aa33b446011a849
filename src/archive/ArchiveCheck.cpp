#include "archive/ArchiveCheck.h"

#include "archive/Format.h"
#include "archive/Names.h"

#include <string_view>
#include <unordered_map>

namespace korvel {

std::vector<std::string>
DuplicatePairs(const EntryTable& table,
               const std::function<void(std::size_t, std::size_t)>& progress) {
    const std::size_t n = table.size();
    // How many rows hold each name, then, walking down, how many still lie
    // below the current row: that many pairs are listed at this row.
    std::unordered_map<std::string_view, std::size_t> below;
    below.reserve(n);
    for (const Entry& entry : table.rows()) {
        if (entry.name != MarkerName) {
            ++below[entry.name];
        }
    }
    std::vector<std::string> pairs;
    for (std::size_t i = 0; i < n; ++i) {
        if (progress) {
            progress(i + 1, n);
        }
        const std::string& name = table[i].name;
        if (name == MarkerName) {
            continue;
        }
        const std::size_t later = --below[name];
        for (std::size_t k = 0; k < later; ++k) {
            pairs.push_back(name);
        }
    }
    return pairs;
}

std::string DuplicateReport(const Settings& texts, const std::vector<std::string>& pairs) {
    std::string report = texts.LookupText("aCheck2");
    for (const std::string& name : pairs) {
        report += "\r\n";
        report += Cp1252ToUtf8(name);
    }
    return report;
}

} // namespace korvel
