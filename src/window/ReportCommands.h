// The report and check commands: they ask the person where and whether, call
// the report and check operations, and say how it went.
#pragma once

#include "window/Editor.h"

namespace korvel {

// EditSave / EditSaveHtml: choose a file (asking before replacing one), write
// the report, and say so in the status bar (text(sd7), or text(sd8) when the
// dialog or the writing failed).
void SaveTextReportAskingPath(Editor& editor);
void SaveHtmlReportAskingPath(Editor& editor);

// ComCheck: asks first, checks, shows the findings and puts the report on the
// clipboard when there are any.
void CheckArchiveAsking(Editor& editor);

} // namespace korvel
