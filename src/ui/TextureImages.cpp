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

namespace {

// The checkerboard as a brush of an image: usable on the worker thread too,
// where pixmaps cannot be made.
const QBrush& CheckerBrush() {
    static const QBrush brush = [] {
        constexpr int Square = 8;
        QImage tile(2 * Square, 2 * Square, QImage::Format_RGB32);
        tile.fill(QColor(204, 204, 204));
        QPainter t(&tile);
        t.fillRect(0, 0, Square, Square, QColor(153, 153, 153));
        t.fillRect(Square, Square, Square, Square, QColor(153, 153, 153));
        return QBrush(tile);
    }();
    return brush;
}

} // namespace

void PaintCheckerboard(QPainter& painter, const QRect& area) {
    painter.fillRect(area, CheckerBrush());
}

QImage ThumbnailOf(const QImage& image, int side) {
    QImage out(side, side, QImage::Format_ARGB32_Premultiplied);
    out.fill(Qt::transparent);
    if (image.isNull()) {
        return out;
    }
    // Qt scales and draws premultiplied pixels on its fast paths; the
    // decoder's straight RGBA is turned once, before scaling.
    const QImage premultiplied = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    // Shrunk smoothly; a small texture is enlarged with its pixels kept
    // square, as a modder expects to see them.
    const bool shrinking = image.width() > side || image.height() > side;
    const QImage scaled =
        premultiplied.scaled(side, side, Qt::KeepAspectRatio,
                             shrinking ? Qt::SmoothTransformation : Qt::FastTransformation);
    const QRect at((side - scaled.width()) / 2, (side - scaled.height()) / 2, scaled.width(),
                   scaled.height());
    QPainter painter(&out);
    painter.setBrushOrigin(at.topLeft());
    painter.fillRect(at, CheckerBrush());
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
