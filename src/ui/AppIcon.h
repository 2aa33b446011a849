// Korvel's application icon for the window and the task bar.
#pragma once

#include <QIcon>

namespace korvel::ui {

// The picture of data/icons/korvel.svg (which the desktop uses through the
// installed desktop entry), painted here at the usual icon sizes: Qt reads
// SVG only through a plug-in that many systems lack, and a window without
// its icon looks broken in the task bar.
QIcon ApplicationIcon();

} // namespace korvel::ui
