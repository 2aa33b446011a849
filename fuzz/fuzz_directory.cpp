// libFuzzer target: the directory decoder on arbitrary bytes, and encoding
// what it decoded.
#include "archive/Format.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::vector<korvel::DirRecord> records = korvel::DecodeDirectory(bytes);
    if (records.size() != korvel::RecordCountForLength(size)) {
        std::abort();
    }
    for (const korvel::DirRecord& record : records) {
        if (record.name.size() > 24 || record.name.find('\0') != std::string::npos) {
            std::abort();
        }
    }
    // Decoding what we encode gives the same records back.
    const std::string encoded = korvel::EncodeDirectory(records);
    if (encoded.size() != records.size() * 32) {
        std::abort();
    }
    const std::vector<korvel::DirRecord> again = korvel::DecodeDirectory(encoded);
    if (again.size() != records.size()) {
        std::abort();
    }
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (again[i].startSector != records[i].startSector ||
            again[i].sizeSectors != records[i].sizeSectors || again[i].name != records[i].name) {
            std::abort();
        }
    }
    // A file of whole records whose name fields hold zeros after the name
    // comes back byte for byte.
    bool canonical = size % 32 == 0;
    for (std::size_t at = 0; canonical && at < size; at += 32) {
        const std::string_view field = bytes.substr(at + 8, 24);
        const std::size_t end = field.find('\0');
        canonical = end == std::string_view::npos ||
                    field.find_first_not_of('\0', end) == std::string_view::npos;
    }
    if (canonical && encoded != bytes) {
        std::abort();
    }
    return 0;
}
