// Commands > Convert archive: the open archive written anew as the other
// kind (two-file to one-file, one-file to two-file). The open archive is
// only read and stays open; the new one is opened when the person says so.
#pragma once

#include "archive/Format.h"

#include <string>

namespace korvel {

class Editor;

// The name the save dialog proposes for the converted copy of `dataPath`:
// its base name with "-v2" (one-file, the San Andreas "VER2" kind) or "-v1"
// (the two-file kind), so the copy never proposes the source's own name.
std::string ConvertedArchiveName(const std::string& dataPath, ArchiveKind target);

void ConvertArchiveAsking(Editor& editor);

} // namespace korvel
