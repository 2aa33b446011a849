// Decoded textures as Qt images: the thumbnails of the preview's grid and the
// full-size view, alpha shown over a checkerboard. Pure functions on plain
// images, so the pane's worker thread makes them (QImage may live off the UI
// thread; pixmaps and icons are made on it).
#pragma once

#include "preview/EntryPreview.h"

#include <QImage>
#include <QPixmap>

#include <filesystem>

class QPainter;

namespace korvel::ui {

// The decoded pixels as a QImage of its own (a copy).
QImage ToQImage(const RgbaImage& image);

// Fills `area` of `painter` with the grey checkerboard that shows through
// transparent pixels.
void PaintCheckerboard(QPainter& painter, const QRect& area);

// A `side` x `side` picture of `image`: scaled to fit, keeping its
// proportions, over a checkerboard, centred.
QImage ThumbnailOf(const QImage& image, int side);

// The thumbnail of `texture` of the dictionary `entry`: decoded from the
// smallest mip level that still covers `side`. A null image when it cannot
// be decoded (the texture's problem says why).
QImage TextureThumbnail(const std::filesystem::path& dataPath, const Entry& entry,
                        const TextureInfo& texture, int side);

} // namespace korvel::ui
