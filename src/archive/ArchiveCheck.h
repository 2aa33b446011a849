// The archive check (ComCheck): entries that share a name, case included.
#pragma once

#include "archive/EntryTable.h"
#include "settings/Settings.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace korvel {

// One name per pair of rows that share it, in the order the pairwise check
// lists them: a name held by k rows appears k(k-1)/2 times, each time at the
// place of the earlier row of the pair. Marker rows never count. Works in one
// counting pass plus one listing pass instead of comparing every pair.
// `progress` (if given) hears (row, rowCount) with 1-based rows as the listing
// pass moves on.
std::vector<std::string>
DuplicatePairs(const EntryTable& table,
               const std::function<void(std::size_t row, std::size_t rows)>& progress = {});

// The check's report: text(aCheck2), then CR LF and a name per pair (UTF-8).
std::string DuplicateReport(const Settings& texts, const std::vector<std::string>& pairs);

} // namespace korvel
