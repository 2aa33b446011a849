// Positioned reads for the name readers. A texture search reads only a few
// bytes per texture straight from the data file, so the readers ask for
// exactly the bytes they need at exact offsets instead of loading entries.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>

namespace korvel {

class ByteSource {
public:
    virtual ~ByteSource() = default;
    // Reads up to `count` bytes at `offset` into `buffer`; returns how many
    // were read. Fewer means the end of the data (or a read error).
    virtual std::size_t readAt(std::uint64_t offset, char* buffer, std::size_t count) = 0;
};

// Bytes already in memory (tests, fuzzing).
class MemorySource : public ByteSource {
public:
    explicit MemorySource(std::string_view bytes) : bytes_(bytes) {}
    std::size_t readAt(std::uint64_t offset, char* buffer, std::size_t count) override;

private:
    std::string_view bytes_;
};

// A file opened for reading, unbuffered, so every read is exactly the bytes
// asked for. Counts the bytes it delivered.
class FileSource : public ByteSource {
public:
    FileSource();
    ~FileSource() override;
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;

    bool open(const std::filesystem::path& path);
    bool isOpen() const;
    std::size_t readAt(std::uint64_t offset, char* buffer, std::size_t count) override;
    std::uint64_t bytesRead() const { return bytesRead_; }

private:
    struct Handle;
    std::unique_ptr<Handle> handle_;
    std::uint64_t bytesRead_ = 0;
};

// Little-endian numbers from a buffer the caller has bounds-checked.
inline std::uint32_t Le32(const char* p) {
    const auto* u = reinterpret_cast<const unsigned char*>(p);
    return std::uint32_t{u[0]} | (std::uint32_t{u[1]} << 8) | (std::uint32_t{u[2]} << 16) |
           (std::uint32_t{u[3]} << 24);
}
inline std::uint16_t Le16(const char* p) {
    const auto* u = reinterpret_cast<const unsigned char*>(p);
    return static_cast<std::uint16_t>(u[0] | (u[1] << 8));
}

// The bytes of a fixed-width name field up to its first zero byte.
std::string_view FieldText(const char* field, std::size_t width);

} // namespace korvel
