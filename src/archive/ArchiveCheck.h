// The archive check (ComCheck): entries that share a name exactly, and names
// that differ only in letter case, which the game takes for one file.
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

// Hands `pair` each two spellings (raw bytes) of one name that differ only in
// letter case (Windows-1252 case mapping), once per pair of spellings however
// many rows hold them: the earlier spelling (by first row) comes first, and
// the groups come in the order their first row stands. Exact duplicates are
// ForEachDuplicatePair's; marker rows never count. Returns how many pairs it
// handed out.
std::uint64_t ForEachCaseOnlyPair(
    const EntryTable& table,
    const std::function<void(const std::string& first, const std::string& second)>& pair);

// The check's report as the window shows it and copies it: text(aCheck2),
// then CR LF and a name (UTF-8) for each of the first `listed` pairs; when
// more were found, CR LF, text(aCheck7), a space and how many more. Names
// differing only in case follow as a second group the same way, under
// text(aCheckCase), one "name / NAME" line per pair; a group with no pairs
// is left out. Keeps only the listed lines, however many pairs there are.
class DuplicateReport {
public:
    DuplicateReport(const Settings& texts, std::uint64_t listed);
    void add(const std::string& rawName);
    void addCaseOnly(const std::string& rawFirst, const std::string& rawSecond);
    std::uint64_t pairs() const { return pairs_ + casePairs_; }
    std::string text() const;

private:
    const Settings& texts_;
    std::uint64_t listed_;
    std::uint64_t pairs_ = 0;
    std::uint64_t casePairs_ = 0;
    std::string report_;
    std::string caseReport_;
};

} // namespace korvel
