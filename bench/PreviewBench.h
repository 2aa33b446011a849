// Pieces the preview benchmarks share: a DXT1 texture dictionary made of
// random blocks, and the median of several timed runs.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <random>
#include <string>
#include <vector>

namespace korvel::bench {

inline std::string U32(std::uint32_t v) {
    return {static_cast<char>(v), static_cast<char>(v >> 8), static_cast<char>(v >> 16),
            static_cast<char>(v >> 24)};
}

inline std::string Chunk(std::uint32_t type, const std::string& body) {
    return U32(type) + U32(static_cast<std::uint32_t>(body.size())) + U32(0x1803FFFF) + body;
}

// A Direct3D 9 DXT1 native of `side` x `side` with every mip level, filled
// with random blocks (the decoder's work does not depend on their values).
inline std::string Dxt1Native(const std::string& name, std::uint32_t side, std::mt19937& random) {
    std::string levels;
    int count = 0;
    for (std::uint32_t s = side;; s /= 2) {
        const std::uint32_t blocks = std::max(1u, s / 4);
        std::string level(blocks * blocks * 8, '\0');
        for (char& c : level) {
            c = static_cast<char>(random());
        }
        levels += U32(static_cast<std::uint32_t>(level.size())) + level;
        ++count;
        if (s == 1) {
            break;
        }
    }
    std::string field = name;
    field.resize(32, '\0');
    const std::string head =
        U32(9) + U32(0x1102) + field + std::string(32, '\0') + U32(0x8200) + "DXT1" +
        std::string{static_cast<char>(side & 0xFF), static_cast<char>(side >> 8),
                    static_cast<char>(side & 0xFF), static_cast<char>(side >> 8)} +
        std::string{16, static_cast<char>(count), 4, 8};
    return Chunk(0x15, Chunk(0x01, head + levels) + Chunk(0x03, ""));
}

inline std::string Dictionary(const std::vector<std::string>& natives) {
    std::string body = Chunk(0x01, U32(static_cast<std::uint32_t>(natives.size()) | 0x20000));
    for (const std::string& n : natives) {
        body += n;
    }
    return Chunk(0x16, body + Chunk(0x03, ""));
}

struct Times {
    double wallMs;
    double cpuMs; // this process's processor time: what a busy machine does not inflate
};

// Median milliseconds of `runs` calls of `work`, by the clock and by the
// processor time spent.
template <typename Work> Times MedianMs(int runs, Work work) {
    std::vector<double> wall;
    std::vector<double> cpu;
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const std::clock_t cpuStart = std::clock();
        work();
        cpu.push_back(1000.0 * static_cast<double>(std::clock() - cpuStart) / CLOCKS_PER_SEC);
        wall.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                .count());
    }
    std::sort(wall.begin(), wall.end());
    std::sort(cpu.begin(), cpu.end());
    return {wall[wall.size() / 2], cpu[cpu.size() / 2]};
}

} // namespace korvel::bench
