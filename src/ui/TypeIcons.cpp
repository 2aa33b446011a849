#include "ui/TypeIcons.h"

#include <QPainter>
#include <QPixmap>
#include <QRadialGradient>

namespace korvel::ui {

QColor TypeIconColour(std::string_view key) {
    if (key == "blue") {
        return QColor(0x2f, 0x6f, 0xd6);
    }
    if (key == "orange") {
        return QColor(0xf0, 0x8a, 0x24);
    }
    if (key == "green") {
        return QColor(0x3a, 0xa8, 0x45);
    }
    if (key == "grey") {
        return QColor(0x8a, 0x8f, 0x96);
    }
    return QColor(0xf2, 0xf2, 0xf2);
}

QIcon DrawTypeIcon(const QColor& colour) {
    QIcon icon;
    // Draw each size the list may ask for so scaling never blurs the ball.
    for (int side : {16, 24, 32, 48}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF ball(side * 0.125, side * 0.125, side * 0.75, side * 0.75);
        QRadialGradient shade(ball.center() - QPointF(side * 0.12, side * 0.12), side * 0.45);
        shade.setColorAt(0.0, colour.lighter(170));
        shade.setColorAt(0.6, colour);
        shade.setColorAt(1.0, colour.darker(150));
        painter.setBrush(shade);
        painter.setPen(QPen(colour.darker(200), side / 16.0));
        painter.drawEllipse(ball);
        painter.end();
        icon.addPixmap(pixmap);
        // Keep the type colour readable on a selected row.
        icon.addPixmap(pixmap, QIcon::Selected);
    }
    return icon;
}

} // namespace korvel::ui
