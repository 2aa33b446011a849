// The usual test set-up for an engine command: a fresh editor folder with the
// shipped texts, a settings file, a scripted desktop and an editor over them.
#pragma once

#include "ScriptedDesktop.h"
#include "TestFolder.h"
#include "window/Editor.h"

#include <gtest/gtest.h>

namespace korvel::test {

class EditorHarness : public ::testing::Test {
protected:
    EditorHarness()
        : settings(folder / "korvel.ini", folder / "lang.ini"),
          editor(desktop, settings, folder.path()) {
        settings.EnsureSettingsFile();
    }

    // Writes the archive `name` (in the folder) and opens it; the recorded
    // conversation starts empty afterwards.
    void openArchive(const std::string& name, const std::vector<DirRecord>& records,
                     std::uint64_t dataBytes) {
        WriteArchive(folder / name, records, dataBytes);
        ASSERT_TRUE(editor.OpenArchive((folder / name).string()));
        desktop.conversation.clear();
    }
    std::string text(const char* key) const { return settings.LookupText(key); }

    TestFolder folder;
    ScriptedDesktop desktop;
    Settings settings;
    Editor editor;
};

} // namespace korvel::test
