// How much of the data file no entry uses: what a rebuild would give back.
#pragma once

#include "archive/EntryTable.h"

#include <cstdint>

namespace korvel {

// The data file's length minus the bytes covered by at least one entry's
// sectors. Entries that overlap count once, and sectors past the end of the
// file (a record that claims more than the file holds) cover nothing.
std::uint64_t UnusedDataBytes(const EntryTable& table, std::uint64_t dataFileLength);

} // namespace korvel
