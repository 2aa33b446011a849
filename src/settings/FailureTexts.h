// The words a failed file operation is reported in. The window shows them in
// a message box and korvel-cli prints them as its error line, so both say the
// same thing in the person's language.
#pragma once

#include "platform/Reason.h"
#include "platform/Status.h"
#include "settings/Settings.h"

#include <string>

namespace korvel {

// A failed operation in the current language: its key's text with the
// arguments filled in, or its English text when it has no key or the language
// lacks it. Empty for success.
std::string StatusText(const Settings& texts, const Status& status);

// Why a reader stopped, said the same way: empty when it did not.
std::string ReasonText(const Settings& texts, const Reason& reason);

// text(ohCrap1), the system's description, and the file or entry concerned
// on a line of its own when there is one.
std::string FileFailureText(const Settings& texts, const std::string& error,
                            const std::string& concerning = {});

// A file that could not be added: text(ohCrap1) and the description, then
// text(ohCrap2) and the entry's name (raw Windows-1252 bytes) on lines of
// their own.
std::string AddFailureText(const Settings& texts, const std::string& error,
                           const std::string& rawName);

} // namespace korvel
