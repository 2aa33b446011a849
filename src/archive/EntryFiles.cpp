#include "archive/EntryFiles.h"

#include "archive/RebuildJournal.h"
#include "platform/Cp1252.h"
#include "platform/FileCopy.h"
#include "platform/OutputFile.h"

#include <algorithm>

#include <limits>

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

std::vector<std::filesystem::path> ArchiveOwnFiles(const Archive& archive) {
    const RebuildFiles own = RebuildFilesFor(archive.dataPath(), archive.dirPath());
    return {archive.dataPath(), archive.dirPath(), own.data,    own.dir,
            own.newData,        own.newDir,        own.journal, own.journal.string() + ".part",
            own.lock,           own.oldBytes,      own.records, own.records.string() + ".part"};
}

std::uint32_t SectorsPresent(const Entry& entry, std::uint64_t dataLength) {
    if (entry.byteOffset() >= dataLength) {
        return 0;
    }
    const std::uint64_t held = (dataLength - entry.byteOffset() + SectorSize - 1) / SectorSize;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(entry.sizeSectors, held));
}

Status CheckAppendPlacement(std::uint64_t offset, std::uint64_t sectors, std::uint64_t dataLength) {
    if (offset / SectorSize > std::numeric_limits<std::uint32_t>::max() ||
        sectors > std::numeric_limits<std::uint32_t>::max()) {
        return Status::Failed("the archive cannot address data beyond 8 TiB", "archiveTooBig", {});
    }
    // A last entry held only in part still counts as held, as in SectorsPresent.
    if (offset > SectorsForFile(dataLength) * SectorSize) {
        return EntriesBeyondDataStatus(dataLength);
    }
    return Status::Ok();
}

Status EntriesBeyondDataStatus(std::uint64_t dataLength) {
    return Status::Failed("the directory lists entries beyond the end of the data file (" +
                              std::to_string(dataLength) +
                              " bytes); rebuild the archive before adding to it",
                          "entriesBeyondData", {std::to_string(dataLength)});
}

Status UnsafeNameStatus(const std::string& rawName) {
    return Status::Failed(UnsafeNameProblem(rawName), "unsafeFileName", {ShownName(rawName)});
}

std::string MissingBytesText(const std::string& rawName, std::uint64_t missingBytes) {
    return "The entry \"" + Cp1252ToUtf8(rawName) +
           "\" reaches past the end of the data file: " + std::to_string(missingBytes) +
           " bytes of it are missing";
}

Status MissingBytesStatus(const std::string& rawName, std::uint64_t missingBytes) {
    return Status::Failed(MissingBytesText(rawName, missingBytes), "bytesMissing",
                          {Cp1252ToUtf8(rawName), std::to_string(missingBytes)});
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
