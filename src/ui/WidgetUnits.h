// Window layouts are given in twips (1/1440 inch), as the settings and the
// classic layouts are; the screen's logical DPI turns them into pixels.
#pragma once

#include "settings/TextForms.h"
#include "window/MenuTree.h"

#include <QKeyEvent>
#include <QPaintDevice>
#include <QShortcut>
#include <QString>
#include <QWidget>

#include <cmath>
#include <initializer_list>

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

// The Menu key, or Shift+F10: both ask for the focused widget's pop-up menu.
inline bool IsContextMenuKey(const QKeyEvent& event) {
    return event.key() == Qt::Key_Menu ||
           (event.key() == Qt::Key_F10 && event.modifiers() == Qt::ShiftModifier);
}

// Escape and Ctrl+W close a tool window, as they do a dialog or a tab.
inline void AddCloseKeys(QWidget& window) {
    for (const QKeySequence& key :
         {QKeySequence(Qt::Key_Escape), QKeySequence(QStringLiteral("Ctrl+W"))}) {
        auto* shortcut = new QShortcut(key, &window);
        QObject::connect(shortcut, &QShortcut::activated, &window, &QWidget::close);
    }
}

// Tab visits `widgets` in this order (nulls skipped): the order they are
// laid out in, where that differs from the order they were made in.
inline void ChainTabOrder(std::initializer_list<QWidget*> widgets) {
    QWidget* previous = nullptr;
    for (QWidget* widget : widgets) {
        if (widget == nullptr) {
            continue;
        }
        if (previous != nullptr) {
            QWidget::setTabOrder(previous, widget);
        }
        previous = widget;
    }
}

// A caption from the language file without its mnemonic marks, for window
// titles; the one rule is PlainCaption.
inline QString WithoutMnemonic(const QString& caption) {
    return QString::fromStdString(korvel::PlainCaption(caption.toStdString()));
}

} // namespace korvel::ui
