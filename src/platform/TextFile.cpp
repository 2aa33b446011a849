#include "platform/TextFile.h"

#include "platform/Cp1252.h"

#include <fstream>

namespace korvel {

std::string ToAnsi(std::string_view utf8) {
    if (auto whole = Utf8ToCp1252(utf8)) {
        return *whole;
    }
    // Convert one character at a time so one odd character (or one invalid
    // byte) costs only itself.
    std::string out;
    for (std::size_t i = 0; i < utf8.size();) {
        const std::size_t start = i;
        if (!DecodeUtf8(utf8, i)) {
            ++i;
        }
        const auto one = Utf8ToCp1252(utf8.substr(start, i - start));
        out += one ? *one : std::string("?");
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
