#include "ui/TextureImages.h"

#include "window/PreviewCommands.h"

#include <QPainter>

#include <cstring>

namespace korvel::ui {

QImage ToQImage(const RgbaImage& image) {
    const auto bytes = static_cast<std::size_t>(image.width) * image.height * 4;
    if (image.width == 0 || image.height == 0 || image.pixels.size() < bytes ||
        image.width > 32768 || image.height > 32768) {
        return {};
    }
    QImage out(static_cast<int>(image.width), static_cast<int>(image.height),
               QImage::Format_RGBA8888);
    if (out.isNull()) {
        return {};
    }
    const std::size_t row = static_cast<std::size_t>(image.width) * 4;
    for (int y = 0; y < out.height(); ++y) {
        std::memcpy(out.scanLine(y), image.pixels.data() + row * static_cast<std::size_t>(y), row);
    }
    return out;
}

void PaintCheckerboard(QPainter& painter, const QRect& area) {
    constexpr int Square = 8;
    static const QPixmap tile = [] {
        QPixmap p(2 * Square, 2 * Square);
        p.fill(QColor(204, 204, 204));
        QPainter t(&p);
        t.fillRect(0, 0, Square, Square, QColor(153, 153, 153));
        t.fillRect(Square, Square, Square, Square, QColor(153, 153, 153));
        return p;
    }();
    painter.drawTiledPixmap(area, tile, area.topLeft());
}

QImage ThumbnailOf(const QImage& image, int side) {
    QImage out(side, side, QImage::Format_ARGB32_Premultiplied);
    out.fill(Qt::transparent);
    if (image.isNull()) {
        return out;
    }
    const QImage scaled =
        image.width() > side || image.height() > side
            ? image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            : image;
    const QRect at((side - scaled.width()) / 2, (side - scaled.height()) / 2, scaled.width(),
                   scaled.height());
    QPainter painter(&out);
    // QPixmap cannot be drawn off the UI thread: the checkerboard goes in
    // square by square here.
    constexpr int Square = 8;
    for (int y = at.top(); y <= at.bottom(); y += Square) {
        for (int x = at.left(); x <= at.right(); x += Square) {
            const bool dark = (((x - at.left()) / Square) + ((y - at.top()) / Square)) % 2 == 0;
            painter.fillRect(QRect(x, y, Square, Square).intersected(at),
                             dark ? QColor(153, 153, 153) : QColor(204, 204, 204));
        }
    }
    painter.drawImage(at, scaled);
    return out;
}

QImage TextureThumbnail(const std::filesystem::path& dataPath, const Entry& entry,
                        const TextureInfo& texture, int side) {
    if (texture.levels.empty()) {
        return {};
    }
    const std::size_t level = ThumbnailLevel(texture, static_cast<std::uint32_t>(side));
    const DecodedImage decoded = DecodeEntryTexture(dataPath, entry, texture, level);
    if (!decoded.problem.empty()) {
        return {};
    }
    return ThumbnailOf(ToQImage(decoded.image), side);
}

} // namespace korvel::ui
