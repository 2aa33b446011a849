#include "archive/EntryFiles.h"

#include "archive/RebuildJournal.h"
#include "platform/Cp1252.h"
#include "platform/FileCopy.h"
#include "platform/OutputFile.h"

#include <algorithm>

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

std::vector<std::filesystem::path> ArchiveOwnFiles(const Archive& archive) {
    const RebuildFiles own = RebuildFilesFor(archive.dataPath(), archive.dirPath());
    return {archive.dataPath(), archive.dirPath(), own.data,    own.dir,
            own.newData,        own.newDir,        own.journal, own.journal.string() + ".part",
            own.lock,           own.oldBytes};
}

std::uint32_t SectorsPresent(const Entry& entry, std::uint64_t dataLength) {
    if (entry.byteOffset() >= dataLength) {
        return 0;
    }
    const std::uint64_t held = (dataLength - entry.byteOffset() + SectorSize - 1) / SectorSize;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(entry.sizeSectors, held));
}

std::string MissingBytesText(const std::string& rawName, std::uint64_t missingBytes) {
    return "The entry \"" + Cp1252ToUtf8(rawName) +
           "\" reaches past the end of the data file: " + std::to_string(missingBytes) +
           " bytes of it are missing";
}

EntryCopy CopyEntryToFile(const Archive& archive, const Entry& entry,
                          const std::filesystem::path& target) {
    EntryCopy copy;
    const auto fail = [&copy](FsError error) {
        copy.status = Status::Failed(std::move(error));
        return copy;
    };
    File in;
    std::uint64_t dataLength = 0;
    if (FsError error = in.open(archive.dataPath(), File::Mode::Read); !error.empty()) {
        return fail(error);
    }
    if (FsError error = in.length(dataLength); !error.empty()) {
        return fail(error);
    }
    File out;
    if (OutputOpen opened = OpenOutputFile(out, target, ArchiveOwnFiles(archive));
        !opened.error.empty()) {
        copy.refused = opened.refused;
        return fail(opened.error);
    }
    const std::uint64_t present = std::uint64_t{SectorsPresent(entry, dataLength)} * SectorSize;
    copy.missingBytes = entry.byteCount() - present;
    if (FsError error = CopyRange(in, entry.byteOffset(), out, 0, present); !error.empty()) {
        return fail(error);
    }
    if (FsError closed = out.close(); !closed.empty()) {
        return fail(closed);
    }
    return copy;
}

} // namespace korvel
