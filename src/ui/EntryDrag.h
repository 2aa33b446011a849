// The entries handed to other programs as files, in the forms file managers
// read on a drop or a paste: file URLs, and GNOME's form naming them as a
// copy.
#pragma once

#include <filesystem>
#include <vector>

class QMimeData;

namespace korvel::ui {

// A new QMimeData naming the files (the caller or the drag owns it), or
// nothing when there are none.
QMimeData* EntryFilesMimeData(const std::vector<std::filesystem::path>& files);

} // namespace korvel::ui
