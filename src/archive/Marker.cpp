#include "archive/Marker.h"

#include "platform/Folders.h"
#include "platform/TextFile.h"

#include <system_error>

namespace korvel {
namespace fs = std::filesystem;

fs::path MarkerFilePath() {
    return EditorFolder() / "icons" / "marker.gta";
}

FsError WriteMarkerFile(const Settings& settings) {
    const fs::path path = MarkerFilePath();
    std::error_code ec;
    fs::create_directories(path.parent_path(), ec);
    if (ec) {
        return "cannot create " + path.parent_path().string() + ": " + ec.message();
    }
    // The marker's data is text for people, one byte per character like the
    // names around it.
    return WriteFileAtomically(path, ToAnsi(settings.LookupText("markText")) + "\r\n");
}

bool InsertMarker(EntryCommands& commands, Editor& editor) {
    if (!editor.isOpen()) {
        return false;
    }
    // Written again each time, so the marker carries the current language.
    if (FsError error = WriteMarkerFile(editor.settings()); !error.empty()) {
        editor.desktop().ShowMessage(editor.text("ohCrap1") + " " + error, "Error",
                                     MessageIcon::Exclamation);
        return false;
    }
    std::string name(MarkerName);
    // AddFile tells the person itself when the data cannot be appended, and
    // leaves the directory as the rows say.
    if (commands.AddFile(MarkerFilePath().string(), name) != EntryCommands::AddResult::Added) {
        return false;
    }
    editor.desktop().SetStatus(editor.text("markerIn"));
    const bool written = editor.WriteDirectory();
    editor.FindHighestOffset();
    editor.AssignTypeIcons();
    return written;
}

} // namespace korvel
