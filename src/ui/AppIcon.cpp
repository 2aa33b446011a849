#include "ui/AppIcon.h"

#include <QImage>
#include <QPainter>
#include <QPen>
#include <QPixmap>

namespace korvel::ui {
namespace {

// Draws in the 64-unit square of the SVG's view box; keep it in step with
// data/icons/korvel.svg.
void PaintIcon(QPainter& painter) {
    painter.setPen(Qt::NoPen);
    const auto box = [&](qreal x, qreal y, qreal w, qreal h, qreal r, const char* colour) {
        painter.setBrush(QColor(QLatin1String(colour)));
        painter.drawRoundedRect(QRectF(x, y, w, h), r, r);
    };
    box(6, 4, 52, 56, 6, "#37474f");
    box(10, 8, 44, 48, 3, "#eceff1");
    box(14, 12, 36, 7, 2, "#1e88e5");
    box(14, 22, 24, 7, 2, "#fb8c00");
    box(14, 32, 30, 7, 2, "#43a047");
    box(14, 42, 18, 7, 2, "#9e9e9e");
    painter.setBrush(QColor(QLatin1String("#37474f")));
    painter.drawEllipse(QPointF(47, 47), 9, 9);
    painter.setPen(QPen(QColor(QLatin1String("#eceff1")), 2.5, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(43, 47), QPointF(51, 47));
    painter.drawLine(QPointF(47, 43), QPointF(47, 51));
}

} // namespace

QIcon ApplicationIcon() {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / 64.0, size / 64.0);
        PaintIcon(painter);
        painter.end();
        icon.addPixmap(QPixmap::fromImage(image));
    }
    return icon;
}

} // namespace korvel::ui
