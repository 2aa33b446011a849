// The current local date and time as text, in the system's forms ("%x" the
// short date, "%X" the time), for the settings file header and the reports.
#pragma once

#include <string>

namespace korvel {

std::string LocalTimeText(const char* strftimeFormat);

} // namespace korvel
