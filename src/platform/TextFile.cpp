#include "platform/TextFile.h"

#include "platform/Cp1252.h"

#include <fstream>

namespace korvel {

std::string ToAnsi(std::string_view utf8) {
    if (auto whole = Utf8ToCp1252(utf8)) {
        return *whole;
    }
    // Convert one UTF-8 sequence at a time so one odd character costs only
    // itself.
    std::string out;
    for (std::size_t i = 0; i < utf8.size();) {
        std::size_t n = 1;
        while (i + n < utf8.size() && (static_cast<unsigned char>(utf8[i + n]) & 0xC0) == 0x80) {
            ++n;
        }
        const auto one = Utf8ToCp1252(utf8.substr(i, n));
        out += one ? *one : std::string("?");
        i += n;
    }
    return out;
}

Status WriteLines(const std::filesystem::path& path, const std::vector<std::string>& lines) {
    const auto failed = [&] {
        const std::u8string name = path.u8string();
        return Status::Failed("cannot write " + std::string(name.begin(), name.end()));
    };
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) {
        return failed();
    }
    for (const std::string& line : lines) {
        out << line << "\r\n";
        if (!out) {
            return failed();
        }
    }
    out.close();
    return out ? Status::Ok() : failed();
}

} // namespace korvel
