// Saving lines of text to a file the person chooses: the result lists of the
// find windows and the show-me window, and the two reports, all hold the
// same conversation.
#pragma once

#include "platform/Status.h"
#include "window/Editor.h"

#include <filesystem>
#include <functional>

namespace korvel {

enum class SaveOutcome { Saved, Cancelled, Failed };

// Offers the save dialog with `request`; an empty path or Cancel ends it. A
// path that must not be written (OutputTargetProblem, the open archive's own
// files included) is refused with a message and the dialog offered again.
// With `askBeforeReplacing` an existing file is only replaced after a Yes to
// text(fe3) under text(fe2); No offers the dialog again. Then `write` writes
// the chosen file. A dialog that fails, or a write that fails, is Failed:
// the caller decides whether the person hears of it. A chosen name without an
// extension gets `defaultExtension` ("txt", no dot) when one is given.
SaveOutcome SaveLinesAskingPath(Editor& editor, const FileDialogRequest& request,
                                bool askBeforeReplacing,
                                const std::function<Status(const std::filesystem::path&)>& write,
                                const std::string& defaultExtension = {});

} // namespace korvel
