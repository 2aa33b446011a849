#include "search/ByteSource.h"

#include <algorithm>
#include <cstring>

#ifdef _WIN32
#include <fstream>
#else
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace korvel {

std::size_t MemorySource::readAt(std::uint64_t offset, char* buffer, std::size_t count) {
    if (offset >= bytes_.size()) {
        return 0;
    }
    const std::size_t n = std::min<std::uint64_t>(count, bytes_.size() - offset);
    std::memcpy(buffer, bytes_.data() + offset, n);
    return n;
}

#ifdef _WIN32
struct FileSource::Handle {
    std::ifstream in;
};
#else
struct FileSource::Handle {
    int fd = -1;
};
#endif

FileSource::FileSource() : handle_(std::make_unique<Handle>()) {}

FileSource::~FileSource() {
#ifndef _WIN32
    if (handle_->fd >= 0) {
        ::close(handle_->fd);
    }
#endif
}

#ifdef _WIN32
bool FileSource::open(const std::filesystem::path& path) {
    // No stream buffer: a seek and a read fetch only what is asked for.
    handle_->in.rdbuf()->pubsetbuf(nullptr, 0);
    handle_->in.open(path, std::ios::binary);
    return handle_->in.is_open();
}

bool FileSource::isOpen() const {
    return handle_->in.is_open();
}

std::size_t FileSource::readAt(std::uint64_t offset, char* buffer, std::size_t count) {
    auto& in = handle_->in;
    in.clear();
    in.seekg(static_cast<std::streamoff>(offset));
    in.read(buffer, static_cast<std::streamsize>(count));
    const auto n = static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0));
    bytesRead_ += n;
    return n;
}
#else
bool FileSource::open(const std::filesystem::path& path) {
    if (handle_->fd >= 0) {
        ::close(handle_->fd);
    }
    handle_->fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    return handle_->fd >= 0;
}

bool FileSource::isOpen() const {
    return handle_->fd >= 0;
}

std::size_t FileSource::readAt(std::uint64_t offset, char* buffer, std::size_t count) {
    std::size_t done = 0;
    while (done < count && handle_->fd >= 0) {
        const ssize_t n =
            ::pread(handle_->fd, buffer + done, count - done, static_cast<off_t>(offset + done));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            break;
        }
        done += static_cast<std::size_t>(n);
    }
    bytesRead_ += done;
    return done;
}
#endif

std::string_view FieldText(const char* field, std::size_t width) {
    const void* zero = std::memchr(field, 0, width);
    return {field, zero ? static_cast<std::size_t>(static_cast<const char*>(zero) - field) : width};
}

} // namespace korvel
