// Quick replace (`CmdGroupReplace`): every selected entry takes the data of
// the file of the same name in one folder. The folder is remembered in
// `lastQR`; an entry without a file there goes to the `qrMissing` dialog,
// whose stored choice (`qrSetting`) says what happens to it.
#pragma once

#include "archive/EntryCommands.h"
#include "window/QuickReplaceDialogs.h"

#include <cstddef>
#include <string>

namespace korvel {

struct QuickReplaceCounts {
    std::size_t replaced = 0;
    std::size_t skipped = 0;
    // A replacement failed (the person was told) and the run stopped there.
    bool failed = false;
};

class QuickReplace {
public:
    QuickReplace(Editor& editor, EntryCommands& commands, QuickReplaceDialogs& dialogs);

    void QuickReplaceSelected();
    // The run once a folder is chosen: replaces the selected rows from it,
    // stores the last folder used in `lastQR`, clears the selection and shows
    // the counts in the status bar.
    QuickReplaceCounts ReplaceFromFolder(std::string folder);

private:
    // The folder picker; nothing when cancelled.
    std::optional<std::string> PickFolder();

    Editor& editor_;
    EntryCommands& commands_;
    QuickReplaceDialogs& dialogs_;
};

} // namespace korvel
