// Shared pieces of the entry benchmarks: a stopwatch and the
// archive layout the figures are quoted for.
#pragma once

#include "TestFolder.h"
#include "archive/Format.h"
#include "platform/NullDesktop.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

namespace korvel::bench {

template <typename Step> double Seconds(Step&& step) {
    const auto start = std::chrono::steady_clock::now();
    step();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Dirty pages of one step must not be written back on the next one's time.
inline void FlushAll() {
    ::sync();
}

inline bool Run(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

inline std::string Quoted(const std::filesystem::path& path) {
    return "'" + path.string() + "'";
}

// `entries` entries over an archive of `archiveMiB`, of which `unusedPercent`
// of the sectors lie in gaps between them. Sizes vary around the mean so the
// copies are not all alike.
struct Layout {
    std::vector<DirRecord> records;
    std::uint64_t dataBytes = 0;
    std::uint64_t usedBytes = 0;
};

inline Layout MakeLayout(std::uint32_t entries, std::uint64_t archiveMiB, unsigned unusedPercent) {
    Layout layout;
    const std::uint64_t totalSectors = archiveMiB * 1024 * 1024 / SectorSize;
    const std::uint64_t slot = std::max<std::uint64_t>(1, totalSectors / entries);
    const std::uint64_t used = std::max<std::uint64_t>(1, slot * (100 - unusedPercent) / 100);
    std::uint64_t sector = 0;
    for (std::uint32_t i = 0; i < entries; ++i) {
        const std::int64_t swing = static_cast<std::int64_t>(i % 7) - 3;
        const std::uint64_t size = static_cast<std::uint64_t>(std::clamp<std::int64_t>(
            static_cast<std::int64_t>(used) + swing, 1, static_cast<std::int64_t>(slot)));
        layout.records.push_back({static_cast<std::uint32_t>(sector),
                                  static_cast<std::uint32_t>(size),
                                  "e" + std::to_string(i) + (i % 2 ? ".dff" : ".txd")});
        layout.usedBytes += size * SectorSize;
        sector += slot;
    }
    layout.dataBytes = sector * SectorSize;
    return layout;
}

// The middle of several rounds: the disk of a shared machine is noisy.
inline double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

inline unsigned long Arg(int argc, char** argv, int index, unsigned long fallback) {
    return argc > index ? std::strtoul(argv[index], nullptr, 10) : fallback;
}

} // namespace korvel::bench
