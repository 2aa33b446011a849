#include "archive/ArchiveCheck.h"

#include "archive/Format.h"
#include "archive/Names.h"

#include "platform/Cp1252.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

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

std::uint64_t
ForEachCaseOnlyPair(const EntryTable& table,
                    const std::function<void(const std::string&, const std::string&)>& pair) {
    // The distinct spellings of each case-folded name, in the order they
    // first appear; the groups themselves in the order of their first row.
    std::unordered_map<std::string, std::size_t> groupOf;
    std::vector<std::vector<std::string_view>> groups;
    std::unordered_set<std::string_view> seen;
    for (const Entry& entry : table.rows()) {
        if (entry.name == MarkerName || !seen.insert(entry.name).second) {
            continue;
        }
        const auto [found, added] = groupOf.try_emplace(ToLowerCp1252(entry.name), groups.size());
        if (added) {
            groups.emplace_back();
        }
        groups[found->second].push_back(entry.name);
    }
    std::uint64_t pairs = 0;
    for (const auto& spellings : groups) {
        for (std::size_t i = 0; i < spellings.size(); ++i) {
            for (std::size_t k = i + 1; k < spellings.size(); ++k) {
                pair(std::string(spellings[i]), std::string(spellings[k]));
                ++pairs;
            }
        }
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

void DuplicateReport::addCaseOnly(const std::string& rawFirst, const std::string& rawSecond) {
    if (casePairs_++ < listed_) {
        caseReport_ += "\r\n";
        caseReport_ += Cp1252ToUtf8(rawFirst) + " / " + Cp1252ToUtf8(rawSecond);
    }
}

std::string DuplicateReport::text() const {
    const auto group = [&](const std::string& lines, std::uint64_t pairs) {
        return pairs <= listed_ ? lines
                                : lines + "\r\n" + texts_.LookupText("aCheck7") + " " +
                                      std::to_string(pairs - listed_);
    };
    const std::string exact = group(report_, pairs_);
    if (casePairs_ == 0) {
        return exact;
    }
    const std::string caseOnly = group(texts_.LookupText("aCheckCase") + caseReport_, casePairs_);
    return pairs_ == 0 ? caseOnly : exact + "\r\n\r\n" + caseOnly;
}

} // namespace korvel
