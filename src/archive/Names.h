// Entry names are 8-bit text. We read and write them as Windows-1252 and keep
// the raw bytes in the engine; conversion to UTF-8 happens only where a name
// meets the screen, a file name on disk or the command line's output.
#pragma once

#include "platform/Cp1252.h"
#include "platform/Status.h"

#include <optional>
#include <string>
#include <string_view>

namespace korvel {

// What an entry holds, judged by its name alone.
enum class EntryKind { Model, Texture, Animation, Collision, Other };

// Ascending name order of the list: case-insensitive, raw bytes break ties.
bool NameLess(std::string_view a, std::string_view b);

// The icon rule: the last three characters of the lower-cased name, so
// "xdff" draws as a model. Deliberately looser than the extension rule below:
// the list has always drawn icons this way.
EntryKind IconKindOfName(std::string_view name);
// The extension rule: ".dff", ".txd", ".ifp" or ".col" at the end of the
// name, any case. Selecting by type, the show-me lists, the find filters and
// "texture dictionaries last" all judge by this.
EntryKind KindOfName(std::string_view name);
// KindOfName(name) == kind, except that the marker entry is of no kind: it is
// never selected or listed as an "other" file.
bool IsNameOfKind(EntryKind kind, std::string_view name);
// Why `raw` (Windows-1252) cannot be an entry's name, or empty when it can.
// Rename and add refuse an empty name, "." and "..", and any name holding
// "/", a backslash, NUL or another control character: such a name could not be
// extracted, or would forge lines wherever names are printed.
std::string EntryNameProblem(std::string_view raw);
// The same as a Status that also names its text key (nameEmpty, nameFolder,
// nameBadChars with the shown name as %1); Ok when the name can be given.
Status CheckEntryName(std::string_view raw);

// The name an entry is stored under: the first 24 bytes, all the directory
// record holds. Adding shortens longer file names to this, so the duplicate
// scan and the person must see this name, not the file's.
std::string StoredEntryName(std::string_view raw);

// View hands the copy of an entry to the desktop's default opener only for
// these: the kinds Korvel knows and the plain data, text, image and sound
// files modders open. Anything else (a script, a program, a launcher, a name
// without an extension) could run instead of being shown.
bool IsViewableName(std::string_view raw);

// Icon key of a kind: "blue", "orange", "green", "grey" or "none".
std::string_view IconKey(EntryKind kind);

} // namespace korvel
