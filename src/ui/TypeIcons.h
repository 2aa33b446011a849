// The five small type images of the list, drawn in code as shaded balls so
// they stay crisp at any screen scale and need no image files.
#pragma once

#include <QColor>
#include <QIcon>

#include <string_view>

namespace korvel::ui {

// The ball's colour for an icon key ("blue", "none", "green", "grey",
// "orange"); "none" and unknown keys are a pale ball.
QColor TypeIconColour(std::string_view key);
QIcon DrawTypeIcon(const QColor& colour);

} // namespace korvel::ui
