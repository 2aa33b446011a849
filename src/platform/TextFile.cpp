#include "platform/TextFile.h"

#include "platform/Cp1252.h"
#include "platform/OutputFile.h"

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

Status WriteLines(const std::filesystem::path& path, const std::vector<std::string>& lines,
                  const std::vector<std::filesystem::path>& archiveFiles) {
    const auto failed = [&] {
        const std::u8string name = path.u8string();
        return Status::Failed("cannot write " + std::string(name.begin(), name.end()));
    };
    File out;
    if (const OutputOpen opened = OpenOutputFile(out, path, archiveFiles); !opened.error.empty()) {
        return opened.refused ? Status::Failed(opened.error) : failed();
    }
    // Lines go out in blocks of about this size: one write per line would
    // cost a system call each on a 32 767-row report.
    constexpr std::size_t Block = 64 * 1024;
    std::string pending;
    std::uint64_t at = 0;
    const auto flush = [&] {
        const bool written = out.writeAt(at, pending).empty();
        at += pending.size();
        pending.clear();
        return written;
    };
    for (const std::string& line : lines) {
        // A line holds no line break of its own: a name or search text with
        // CR or LF in it would otherwise forge lines. Written as EscapeControls
        // writes them (bytes 0D and 0A never occur inside a character).
        for (const char c : line) {
            if (c == '\r' || c == '\n') {
                pending += c == '\r' ? "\\x0D" : "\\x0A";
            } else {
                pending += c;
            }
        }
        pending += "\r\n";
        if (pending.size() >= Block && !flush()) {
            return failed();
        }
    }
    if (!flush() || !out.close().empty()) {
        return failed();
    }
    return Status::Ok();
}

} // namespace korvel
