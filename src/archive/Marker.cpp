#include "archive/Marker.h"

#include "platform/FileSystem.h"
#include "platform/Folders.h"
#include "platform/TextFile.h"

#include <system_error>

namespace korvel {
namespace fs = std::filesystem;

fs::path MarkerFilePath() {
    return EditorFolder() / "icons" / "marker.gta";
}

Status WriteMarkerFile(const std::string& markText) {
    const fs::path path = MarkerFilePath();
    std::error_code ec;
    fs::create_directories(path.parent_path(), ec);
    if (ec) {
        return Status::Failed("cannot create " + path.parent_path().string() + ": " + ec.message());
    }
    // The marker's data is text for people, one byte per character like the
    // names around it.
    const FsError error = WriteFileAtomically(path, ToAnsi(markText) + "\r\n");
    return error.empty() ? Status::Ok() : Status::Failed(error);
}

MarkerResult InsertMarker(Archive& archive, const std::string& markText) {
    MarkerResult result;
    if (!archive.isOpen()) {
        result.status = Status::Failed("no archive is open", "noArchiveOpen", {});
        result.failed = MarkerResult::Failed::MarkerFile;
        return result;
    }
    const ArchiveLock lock = LockForWriting(archive);
    if (!lock.held()) {
        result.status = lock.status();
        result.failed = MarkerResult::Failed::Directory;
        return result;
    }
    if (result.status = WriteMarkerFile(markText); !result.status.ok()) {
        result.failed = MarkerResult::Failed::MarkerFile;
        return result;
    }
    std::string name(MarkerName);
    // The marker never meets the duplicate scan.
    AddOutcome added = AddFile(archive, MarkerFilePath().string(), name, false, {});
    if (added.result != AddResult::Added) {
        result.status = std::move(added.status);
        result.failed = MarkerResult::Failed::Data;
        result.directoryAfterFailure = std::move(added.directoryAfterFailure);
        return result;
    }
    result.status = archive.WriteDirectory();
    archive.FindHighestOffset();
    if (!result.status.ok()) {
        result.failed = MarkerResult::Failed::Directory;
    }
    return result;
}

} // namespace korvel
