#include "ui/PreviewViews.h"

#include "ui/TextureImages.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <array>
#include <cmath>

namespace korvel::ui {

namespace {

constexpr double MinZoom = 1.0 / 16;
constexpr double MaxZoom = 32;
// A file may state millions of faces; beyond this many the picture says no
// more and only slows every repaint.
constexpr std::size_t MostFacesDrawn = 200000;

bool Finite(const QPointF& p) {
    return std::isfinite(p.x()) && std::isfinite(p.y());
}

} // namespace

TextureCanvas::TextureCanvas(QWidget* parent) : QWidget(parent) {}

void TextureCanvas::setImage(const QImage& image) {
    image_ = image;
    setZoom(zoom_);
}

void TextureCanvas::setZoom(double zoom) {
    zoom_ = zoom;
    resize(std::max(1, static_cast<int>(std::lround(image_.width() * zoom_))),
           std::max(1, static_cast<int>(std::lround(image_.height() * zoom_))));
    update();
}

void TextureCanvas::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const QRect area = rect().intersected(event->rect());
    PaintCheckerboard(painter, area);
    // Pixels stay sharp squares when magnified: a modder wants to see them.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, zoom_ < 1);
    painter.drawImage(rect(), image_);
}

TextureView::TextureView(QWidget* parent) : QScrollArea(parent), canvas_(new TextureCanvas) {
    setWidget(canvas_);
    setAlignment(Qt::AlignCenter);
    setWidgetResizable(false);
}

void TextureView::showImage(const QImage& image) {
    canvas_->setImage(image);
    const QSize room = viewport()->size();
    if (image.width() > room.width() || image.height() > room.height()) {
        fit();
    } else {
        setZoom(1);
    }
}

void TextureView::setZoom(double zoom) {
    canvas_->setZoom(std::clamp(zoom, MinZoom, MaxZoom));
    emit zoomChanged(canvas_->zoom());
}

void TextureView::zoomBy(double factor) {
    setZoom(canvas_->zoom() * factor);
}

void TextureView::fit() {
    const QImage& image = canvas_->image();
    if (image.isNull()) {
        return;
    }
    const QSize room = viewport()->size();
    setZoom(std::min(static_cast<double>(room.width()) / image.width(),
                     static_cast<double>(room.height()) / image.height()));
}

void TextureView::actualSize() {
    setZoom(1);
}

void TextureView::wheelEvent(QWheelEvent* event) {
    if (event->modifiers() & Qt::ControlModifier) {
        zoomBy(event->angleDelta().y() > 0 ? 1.25 : 0.8);
        event->accept();
        return;
    }
    QScrollArea::wheelEvent(event);
}

CollisionWire::CollisionWire(QWidget* parent) : QWidget(parent) {
    setMinimumHeight(120);
    setCursor(Qt::OpenHandCursor);
}

void CollisionWire::showModel(const CollisionModel& model) {
    model_ = model;
    shown_ = true;
    update();
}

void CollisionWire::clear() {
    model_ = {};
    shown_ = false;
    update();
}

void CollisionWire::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    if (!shown_) {
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    // Everything is drawn around the middle of the model's bounds, scaled so
    // its bounding sphere fills the view at zoom 1.
    std::array<float, 3> mid{};
    float reach = 0;
    for (int i = 0; i < 3; ++i) {
        mid[static_cast<std::size_t>(i)] = (model_.boundsMin[static_cast<std::size_t>(i)] +
                                            model_.boundsMax[static_cast<std::size_t>(i)]) /
                                           2;
        const float half = (model_.boundsMax[static_cast<std::size_t>(i)] -
                            model_.boundsMin[static_cast<std::size_t>(i)]) /
                           2;
        reach += half * half;
    }
    reach = std::sqrt(reach);
    if (!std::isfinite(reach) || reach <= 0 || reach > 1e6F) {
        reach = 1;
    }
    const double scale = zoom_ * std::min(width(), height()) / 2.2 / reach;
    const double cy = std::cos(yaw_), sy = std::sin(yaw_);
    const double cp = std::cos(pitch_), sp = std::sin(pitch_);
    const QPointF centre(width() / 2.0, height() / 2.0);
    // Z is up in the games' models: turn about Z, then tilt towards the eye.
    const auto project = [&](float x, float y, float z) {
        const double dx = x - mid[0], dy = y - mid[1], dz = z - mid[2];
        const double rx = dx * cy - dy * sy;
        const double ry = dx * sy + dy * cy;
        const double up = dz * cp - ry * sp;
        return centre + QPointF(rx * scale, -up * scale);
    };
    const auto vertex = [&](std::uint32_t i) {
        const std::size_t at = static_cast<std::size_t>(i) * 3;
        return project(model_.vertices[at], model_.vertices[at + 1], model_.vertices[at + 2]);
    };
    painter.setPen(QPen(palette().text().color(), 0));
    QPainterPath faces;
    const std::size_t vertexCount = model_.vertices.size() / 3;
    const std::size_t drawn = std::min(model_.faces.size(), MostFacesDrawn);
    for (std::size_t i = 0; i < drawn; ++i) {
        const auto& f = model_.faces[i];
        if (f[0] >= vertexCount || f[1] >= vertexCount || f[2] >= vertexCount) {
            continue;
        }
        const QPointF a = vertex(f[0]), b = vertex(f[1]), c = vertex(f[2]);
        if (!Finite(a) || !Finite(b) || !Finite(c)) {
            continue;
        }
        faces.moveTo(a);
        faces.lineTo(b);
        faces.lineTo(c);
        faces.lineTo(a);
    }
    painter.drawPath(faces);
    painter.setPen(QPen(QColor(40, 120, 220), 0));
    for (const CollisionBox& b : model_.boxes) {
        std::array<QPointF, 8> c;
        for (int k = 0; k < 8; ++k) {
            c[static_cast<std::size_t>(k)] =
                project(k & 1 ? b.max[0] : b.min[0], k & 2 ? b.max[1] : b.min[1],
                        k & 4 ? b.max[2] : b.min[2]);
        }
        if (!std::all_of(c.begin(), c.end(), Finite)) {
            continue;
        }
        for (int k = 0; k < 8; ++k) {
            for (int bit : {1, 2, 4}) {
                if ((k & bit) == 0) {
                    painter.drawLine(c[static_cast<std::size_t>(k)],
                                     c[static_cast<std::size_t>(k | bit)]);
                }
            }
        }
    }
    painter.setPen(QPen(QColor(220, 90, 40), 0));
    for (const CollisionSphere& s : model_.spheres) {
        const double r = s.radius * scale;
        const QPointF at = project(s.center[0], s.center[1], s.center[2]);
        if (std::isfinite(r) && r >= 0 && r < 1e5 && Finite(at)) {
            painter.drawEllipse(at, r, r);
        }
    }
}

void CollisionWire::mousePressEvent(QMouseEvent* event) {
    dragFrom_ = event->position().toPoint();
}

void CollisionWire::mouseMoveEvent(QMouseEvent* event) {
    if (!(event->buttons() & Qt::LeftButton)) {
        return;
    }
    const QPoint now = event->position().toPoint();
    yaw_ += (now.x() - dragFrom_.x()) * 0.01;
    pitch_ = std::clamp(pitch_ + (now.y() - dragFrom_.y()) * 0.01, -1.57, 1.57);
    dragFrom_ = now;
    update();
}

void CollisionWire::wheelEvent(QWheelEvent* event) {
    zoom_ = std::clamp(zoom_ * (event->angleDelta().y() > 0 ? 1.2 : 1 / 1.2), 0.05, 50.0);
    update();
    event->accept();
}

} // namespace korvel::ui
