// The archive reports: a plain-text report (EditSave) and an HTML page
// (EditSaveHtml) of the open archive: titles, date and time, the data file's
// path and size, the entry count, the count per type and a table of all
// entries in row order. Files are Windows-1252 with CR LF line ends.
#pragma once

#include "window/Editor.h"

#include <cstdint>
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

// Every line of a report, without line ends.
std::vector<std::string> ReportLines(const Editor& editor, ReportKind kind,
                                     const ReportFacts& facts);

// The commands: choose a file (asking before replacing one), write the
// report, and say so in the status bar.
void SaveTextReportAskingPath(Editor& editor);
void SaveHtmlReportAskingPath(Editor& editor);

} // namespace korvel
