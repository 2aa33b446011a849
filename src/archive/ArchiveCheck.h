// The archive check (ComCheck): entries that share a name, case included.
#pragma once

#include "archive/EntryTable.h"
#include "settings/Settings.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace korvel {

// Hands `pair` one name per pair of rows that share it, in the order the
// pairwise check lists them: a name held by k rows comes k(k-1)/2 times, each
// time at the place of the earlier row of the pair. Marker rows never count.
// Works in one counting pass plus one listing pass instead of comparing every
// pair, and keeps nothing per pair: 32 767 rows of one name make over half a
// billion pairs, which only a stream can carry. `progress` (if given) hears
// (row, rowCount) with 1-based rows as the listing pass moves on. Returns how
// many pairs it handed out.
std::uint64_t
ForEachDuplicatePair(const EntryTable& table, const std::function<void(const std::string&)>& pair,
                     const std::function<void(std::size_t row, std::size_t rows)>& progress = {});

// The check's report as the window shows it and copies it: text(aCheck2),
// then CR LF and a name (UTF-8) for each of the first `listed` pairs; when
// more were found, CR LF, text(aCheck7), a space and how many more. Keeps
// only the listed lines, however many pairs the table holds.
class DuplicateReport {
public:
    DuplicateReport(const Settings& texts, std::uint64_t listed);
    void add(const std::string& rawName);
    std::uint64_t pairs() const { return pairs_; }
    std::string text() const;

private:
    const Settings& texts_;
    std::uint64_t listed_;
    std::uint64_t pairs_ = 0;
    std::string report_;
};

} // namespace korvel
