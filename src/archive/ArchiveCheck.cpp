#include "archive/ArchiveCheck.h"

#include "archive/Format.h"
#include "archive/Names.h"

#include <string_view>
#include <unordered_map>

namespace korvel {

std::uint64_t ForEachDuplicatePair(const EntryTable& table,
                                   const std::function<void(const std::string&)>& pair,
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
    std::uint64_t pairs = 0;
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
            pair(name);
        }
        pairs += later;
    }
    return pairs;
}

DuplicateReport::DuplicateReport(const Settings& texts, std::uint64_t listed)
    : texts_(texts), listed_(listed), report_(texts.LookupText("aCheck2")) {}

void DuplicateReport::add(const std::string& rawName) {
    if (pairs_++ < listed_) {
        report_ += "\r\n";
        report_ += Cp1252ToUtf8(rawName);
    }
}

std::string DuplicateReport::text() const {
    if (pairs_ <= listed_) {
        return report_;
    }
    return report_ + "\r\n" + texts_.LookupText("aCheck7") + " " + std::to_string(pairs_ - listed_);
}

} // namespace korvel
