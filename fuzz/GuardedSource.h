// A source for the fuzzers: the input sits inside a larger buffer, and any
// read that leaves the window the reader was given aborts the run.
#pragma once

#include "search/ByteSource.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace korvel::fuzz {

class GuardedSource : public ByteSource {
public:
    GuardedSource(std::string bytes, std::uint64_t start, std::uint64_t length)
        : bytes_(std::move(bytes)), inner_(bytes_), start_(start), end_(start + length) {}
    std::size_t readAt(std::uint64_t offset, char* buffer, std::size_t count) override {
        if (offset < start_ || offset + count > end_) {
            std::abort();
        }
        return inner_.readAt(offset, buffer, count);
    }
    std::uint64_t start() const { return start_; }
    std::uint64_t length() const { return end_ - start_; }

private:
    std::string bytes_;
    MemorySource inner_;
    std::uint64_t start_;
    std::uint64_t end_;
};

// The fuzz input becomes an entry at offset 16 of a buffer whose bytes around
// it look like more of the same format, so a reader that strays finds
// plausible data instead of stopping by luck. The first input byte cuts the
// entry short by up to 255 bytes, as a directory record claiming less than the
// data holds would.
inline GuardedSource EntryFromInput(const std::uint8_t* data, std::size_t size,
                                    const std::string& filler) {
    std::size_t cut = 0;
    if (size > 0) {
        cut = data[0];
        ++data;
        --size;
    }
    const std::uint64_t length = size > cut ? size - cut : 0;
    std::string buffer(16, '\0');
    buffer += std::string(reinterpret_cast<const char*>(data), size);
    for (int i = 0; i < 64; ++i) {
        buffer += filler;
    }
    return GuardedSource(std::move(buffer), 16, length);
}

} // namespace korvel::fuzz
