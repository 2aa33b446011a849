// The quick-replace dialog `qrMissing`, asked when an entry has no file of its
// name in the folder. Kept apart from EntryDialogs so the window can show it
// without the other entry dialogs. Text crossing it is UTF-8.
#pragma once

#include <string>

namespace korvel {

class QuickReplaceDialogs {
public:
    virtual ~QuickReplaceDialogs() = default;
    // Shows `qrMissing` modally with the entry's name and the folder it was
    // looked for in. Its Ok button writes the choice ("1", "2" or "3") to
    // `qrSetting`; closing it any other way leaves the setting as it was.
    virtual void QrMissing(const std::string& entryName, const std::string& folder) = 0;
};

} // namespace korvel
