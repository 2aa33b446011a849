// Window layouts are given in twips (1/1440 inch), as the settings and the
// classic layouts are; the screen's logical DPI turns them into pixels.
#pragma once

#include <QKeyEvent>
#include <QPaintDevice>

#include <cmath>

namespace korvel::ui {

inline constexpr double TwipsPerInch = 1440.0;

inline int TwipsToPixelsX(const QPaintDevice& device, int twips) {
    return static_cast<int>(std::lround(twips * device.logicalDpiX() / TwipsPerInch));
}

inline int TwipsToPixelsY(const QPaintDevice& device, int twips) {
    return static_cast<int>(std::lround(twips * device.logicalDpiY() / TwipsPerInch));
}

// Return on the main keyboard or Enter on the keypad: both act on a list.
inline bool IsEnterKey(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace korvel::ui
