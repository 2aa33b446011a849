#include "archive/EntryFiles.h"

#include "platform/Cp1252.h"
#include "platform/FileCopy.h"

namespace korvel {

std::string UnsafeNameProblem(const std::string& rawName) {
    const bool unsafe = rawName.empty() || rawName == "." || rawName == ".." ||
                        rawName.find_first_of(std::string_view("/\\\0", 3)) != std::string::npos;
    if (!unsafe) {
        return {};
    }
    std::string shown;
    for (char c : Cp1252ToUtf8(rawName)) {
        shown += c == '\0' ? std::string("\\0") : std::string(1, c);
    }
    return "The entry \"" + shown +
           "\" was not written: its name cannot be used as a file name, because it is empty, "
           "\".\" or \"..\", or holds \"/\", \"\\\" or a NUL character.";
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
