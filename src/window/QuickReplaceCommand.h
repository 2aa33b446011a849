// Quick replace (`CmdGroupReplace`): every selected entry takes the data of
// the file of the same name in one folder. The folder is remembered in
// `lastQR`; an entry without a file there goes to the `qrMissing` dialog,
// whose choice korvel.ini remembers in `qrSetting`.
#pragma once

#include "archive/QuickReplace.h"
#include "window/EntryCommands.h"
#include "window/QuickReplaceDialogs.h"

#include <optional>
#include <string>

namespace korvel {

// The option `qrSetting` remembers (nothing for a value we do not know), and
// the one place that records the dialog's answer there.
std::optional<MissingFileOption> StoredMissingFileOption(const Settings& settings);
void RecordMissingFileOption(Settings& settings, MissingFileOption option);

class QuickReplace {
public:
    QuickReplace(Editor& editor, EntryCommands& commands, QuickReplaceDialogs& dialogs);

    void QuickReplaceSelected();
    // The run once a folder is chosen: replaces the selected rows from it,
    // stores the last folder used in `lastQR`, clears the selection and shows
    // the counts in the status bar.
    QuickReplaceCounts ReplaceSelectedFromFolder(const std::string& folder);

private:
    // The folder picker; nothing when cancelled.
    std::optional<std::string> PickFolder();

    Editor& editor_;
    EntryCommands& commands_;
    QuickReplaceDialogs& dialogs_;
};

} // namespace korvel
