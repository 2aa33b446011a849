// The archive reports: a plain-text report (EditSave) and an HTML page
// (EditSaveHtml) of an open archive: titles, date and time, the data file's
// path and size, the entry count, the count per type and a table of all
// entries in row order. Files are Windows-1252 with CR LF line ends.
#pragma once

#include "archive/Archive.h"
#include "platform/Status.h"
#include "settings/Settings.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace korvel {

enum class ReportKind { Text, Html };

struct ReportFacts {
    std::string date;        // short date form
    std::string time;        // long time form
    std::uint64_t dataBytes; // size of the data file on disk
};

// Now, in the system's short date and long time forms.
ReportFacts ReportFactsNow(std::uint64_t dataBytes);

// Kilobytes as the report shows them: bytes / 1024, halves to even.
std::uint64_t ReportKilobytes(std::uint64_t bytes);

// Every line of a report, without line ends. Texts come from `texts` in
// the current language.
std::vector<std::string> ReportLines(const Archive& archive, const Settings& texts, ReportKind kind,
                                     const ReportFacts& facts);

// Writes the report of `archive` as it is now to `path`, replacing any file
// there. Fails when the data file's size cannot be read or the file cannot
// be written; what was written then stays.
Status WriteReport(const Archive& archive, const Settings& texts, ReportKind kind,
                   const std::filesystem::path& path);

} // namespace korvel
