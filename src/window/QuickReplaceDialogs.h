// The quick-replace dialog `qrMissing`, asked when an entry has no file of its
// name in the folder. Kept apart from EntryDialogs so the window can show it
// without the other entry dialogs. Text crossing it is UTF-8.
#pragma once

#include <optional>
#include <string>

namespace korvel {

// The three options of `qrMissing`.
enum class MissingFileOption { Skip, ReplaceSeparately, NewLocation };

class QuickReplaceDialogs {
public:
    virtual ~QuickReplaceDialogs() = default;
    // Shows `qrMissing` modally with the entry's name and the folder it was
    // looked for in. Returns the option chosen with Ok, nothing when it was
    // closed any other way (Cancel: that entry is skipped, nothing stored).
    virtual std::optional<MissingFileOption> QrMissing(const std::string& entryName,
                                                       const std::string& folder) = 0;
};

} // namespace korvel
