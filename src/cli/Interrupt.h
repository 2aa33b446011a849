// Ctrl+C during a verb that changes or writes many files: instead of ending
// the process wherever it stands, the first interrupt asks the verb to stop
// at its next safe point (between two files; before a rebuild's renames), so
// the archive is left as it was or with the work done so far. A second
// interrupt ends the process as usual.
#pragma once

#include "archive/EntryOperations.h"

#include <string>

namespace korvel::cli {

// The exit status of a verb stopped by an interrupt, as a shell reports one.
inline constexpr int ExitInterrupted = 130;

// Makes the first Ctrl+C (SIGINT; on Windows Ctrl+C and Ctrl+Break) set the
// flag that Interrupted reads. Verbs that poll call this first.
void CatchInterrupt();
// Whether an interrupt came since CatchInterrupt.
bool Interrupted();
// Interrupted, for the operations that ask by themselves.
StopCheck InterruptCheck();
// Prints "korvel-cli: interrupted: <what was done>" and returns ExitInterrupted.
int ReportInterrupted(const std::string& done);

} // namespace korvel::cli
