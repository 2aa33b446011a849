#include "archive/EntryFiles.h"

#include "platform/Cp1252.h"
#include "platform/FileCopy.h"

namespace korvel {

std::string WindowsFileNameProblem(std::string_view rawName) {
    if (rawName.find(':') != std::string_view::npos) {
        return "it holds \":\"";
    }
    if (!rawName.empty() && (rawName.back() == '.' || rawName.back() == ' ')) {
        return "it ends with a dot or a space";
    }
    // The device names stand for devices whatever follows the first dot, and
    // with blanks before it; COM and LPT also take the superscript digits.
    std::string stem = ToLowerCp1252(rawName.substr(0, rawName.find('.')));
    stem.erase(stem.find_last_not_of(' ') + 1);
    const auto digit = static_cast<unsigned char>(stem.size() == 4 ? stem[3] : 0);
    const bool numbered =
        (stem.starts_with("com") || stem.starts_with("lpt")) &&
        ((digit >= '1' && digit <= '9') || digit == 0xB9 || digit == 0xB2 || digit == 0xB3);
    if (numbered || stem == "con" || stem == "prn" || stem == "aux" || stem == "nul" ||
        stem == "conin$" || stem == "conout$") {
        return "it is a device name on Windows";
    }
    return {};
}

std::string UnsafeNameProblem(const std::string& rawName) {
    std::string reason;
    if (rawName.empty() || rawName == "." || rawName == ".." ||
        rawName.find_first_of(std::string_view("/\\\0", 3)) != std::string::npos) {
        reason = "it is empty, \".\" or \"..\", or holds \"/\", \"\\\" or a NUL character";
    }
#ifdef _WIN32
    if (reason.empty()) {
        reason = WindowsFileNameProblem(rawName);
    }
#endif
    if (reason.empty()) {
        return {};
    }
    return "The entry \"" + ShownName(rawName) +
           "\" was not written: its name cannot be used as a file name, because " + reason + ".";
}

std::optional<std::filesystem::path> EntryFileIn(const std::filesystem::path& folder,
                                                 const std::string& rawName) {
    if (!UnsafeNameProblem(rawName).empty()) {
        return std::nullopt;
    }
    return folder / Cp1252ToUtf8(rawName);
}

Status CopyEntryToFile(const Archive& archive, const Entry& entry,
                       const std::filesystem::path& target) {
    File in;
    if (FsError error = in.open(archive.dataPath(), File::Mode::Read); !error.empty()) {
        return Status::Failed(error);
    }
    File out;
    if (FsError error = out.open(target, File::Mode::CreateTruncate); !error.empty()) {
        return Status::Failed(error);
    }
    if (FsError error = CopyRange(in, entry.byteOffset(), out, 0, entry.byteCount());
        !error.empty()) {
        return Status::Failed(error);
    }
    const FsError closed = out.close();
    return closed.empty() ? Status::Ok() : Status::Failed(closed);
}

} // namespace korvel
