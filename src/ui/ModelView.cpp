#include "ui/ModelView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace korvel::ui {
namespace {

constexpr QRgb Background = 0xFF474B51u;
constexpr QRgb WireColor = 0xFFD6DCE4u;

} // namespace

ModelView::ModelView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(120, 90);
    setFocusPolicy(Qt::StrongFocus);
}

void ModelView::setMesh(PreparedMesh mesh, const TextureImages& textures) {
    mesh_ = std::move(mesh);
    textures_.clear();
    for (const MeshMaterial& m : mesh_.materials) {
        const auto found = textures.find(m.texture);
        if (!m.texture.empty() && found != textures.end()) {
            textures_.emplace(found->first, found->second);
        }
    }
    byMaterial_.clear();
    for (const MeshMaterial& m : mesh_.materials) {
        const auto found = textures_.find(m.texture);
        byMaterial_.push_back(found == textures_.end() ? nullptr : &found->second);
    }
    text_.clear();
    fit();
}

void ModelView::showText(const QString& text) {
    mesh_ = {};
    textures_.clear();
    byMaterial_.clear();
    text_ = text;
    update();
}

void ModelView::setShading(ModelShading shading) {
    shading_ = shading;
    update();
}

void ModelView::fit() {
    fitPending_ = true;
    update();
}

void ModelView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (mesh_.empty()) {
        painter.fillRect(rect(), QColor::fromRgb(Background));
        painter.setPen(QColor::fromRgb(WireColor));
        painter.drawText(rect().adjusted(8, 8, -8, -8), Qt::AlignCenter | Qt::TextWordWrap, text_);
        return;
    }
    // Drawn at the screen's own pixels, so a scaled desktop stays sharp.
    const qreal ratio = devicePixelRatioF();
    const int w = std::max(1, static_cast<int>(std::lround(width() * ratio)));
    const int h = std::max(1, static_cast<int>(std::lround(height() * ratio)));
    if (fitPending_) {
        camera_ = FitCamera(mesh_, w, h);
        fitPending_ = false;
    }
    buffer_.reset(w, h, Background);
    if (shading_ != ModelShading::Wireframe) {
        RenderModel(mesh_, byMaterial_, camera_, shading_, buffer_);
    }
    QImage image(reinterpret_cast<const uchar*>(buffer_.color.data()), w, h, w * 4,
                 QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    painter.drawImage(QPointF(0, 0), image);
    if (shading_ == ModelShading::Wireframe) {
        const std::vector<ScreenSegment> segments = WireSegments(mesh_, camera_, w, h);
        QList<QLineF> lines;
        lines.reserve(static_cast<qsizetype>(segments.size()));
        for (const ScreenSegment& s : segments) {
            lines.append(QLineF(s.x0 / ratio, s.y0 / ratio, s.x1 / ratio, s.y1 / ratio));
        }
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor::fromRgb(WireColor), 0));
        painter.drawLines(lines);
    }
}

void ModelView::mousePressEvent(QMouseEvent* event) {
    dragging_ = event->button();
    last_ = event->position();
}

void ModelView::mouseMoveEvent(QMouseEvent* event) {
    if (dragging_ == Qt::NoButton || mesh_.empty()) {
        return;
    }
    const QPointF delta = event->position() - last_;
    last_ = event->position();
    if (dragging_ == Qt::LeftButton) {
        camera_.orbit(static_cast<float>(delta.x()), static_cast<float>(delta.y()));
    } else {
        camera_.pan(static_cast<float>(delta.x()), static_cast<float>(delta.y()), height());
    }
    update();
}

void ModelView::mouseReleaseEvent(QMouseEvent*) {
    dragging_ = Qt::NoButton;
}

void ModelView::mouseDoubleClickEvent(QMouseEvent*) {
    fit();
}

void ModelView::wheelEvent(QWheelEvent* event) {
    if (!mesh_.empty()) {
        camera_.zoom(static_cast<float>(event->angleDelta().y()) / 120.0f);
        update();
    }
    event->accept();
}

void ModelView::keyPressEvent(QKeyEvent* event) {
    // One press turns as far as a short drag does.
    constexpr float Step = 15;
    switch (event->key()) {
    case Qt::Key_Left:
        camera_.orbit(-Step, 0);
        break;
    case Qt::Key_Right:
        camera_.orbit(Step, 0);
        break;
    case Qt::Key_Up:
        camera_.orbit(0, -Step);
        break;
    case Qt::Key_Down:
        camera_.orbit(0, Step);
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        camera_.zoom(1);
        break;
    case Qt::Key_Minus:
        camera_.zoom(-1);
        break;
    case Qt::Key_Home:
        fit();
        return;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    update();
}

} // namespace korvel::ui
