#include "archive/FreeSpace.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace korvel {

std::uint64_t UnusedDataBytes(const EntryTable& table, std::uint64_t dataFileLength) {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> ranges;
    ranges.reserve(table.size());
    for (const Entry& entry : table.rows()) {
        const std::uint64_t begin = std::min(entry.byteOffset(), dataFileLength);
        const std::uint64_t end = std::min(begin + entry.byteCount(), dataFileLength);
        if (begin < end) {
            ranges.emplace_back(begin, end);
        }
    }
    std::sort(ranges.begin(), ranges.end());
    std::uint64_t used = 0;
    std::uint64_t reached = 0;
    for (const auto& [begin, end] : ranges) {
        if (end <= reached) {
            continue;
        }
        used += end - std::max(begin, reached);
        reached = end;
    }
    return dataFileLength - used;
}

} // namespace korvel
