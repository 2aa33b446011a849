// The drawn views of the preview pane: a texture at any zoom over a
// checkerboard, and the wire picture of a collision model's shapes that can
// be turned by dragging.
#pragma once

#include "preview/Collision.h"

#include <QImage>
#include <QScrollArea>
#include <QWidget>

namespace korvel::ui {

// The picture inside the texture view's scroll area, drawn at the zoom.
class TextureCanvas : public QWidget {
    Q_OBJECT
public:
    explicit TextureCanvas(QWidget* parent = nullptr);
    void setImage(const QImage& image);
    const QImage& image() const { return image_; }
    void setZoom(double zoom);
    double zoom() const { return zoom_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage image_;
    double zoom_ = 1;
};

// A texture at full size: Ctrl+wheel, + and - zoom, fit or 1:1.
class TextureView : public QScrollArea {
    Q_OBJECT
public:
    explicit TextureView(QWidget* parent = nullptr);
    // Shows `image`, fitted into the view when it is larger.
    void showImage(const QImage& image);
    void zoomBy(double factor);
    void fit();
    void actualSize();
    double zoom() const { return canvas_->zoom(); }

signals:
    void zoomChanged(double zoom);

protected:
    void wheelEvent(QWheelEvent* event) override;

private:
    void setZoom(double zoom);

    TextureCanvas* canvas_;
};

// The shapes of one collision model in wire lines: the faces' edges, the
// boxes and the spheres' outlines, seen from a direction dragging turns.
class CollisionWire : public QWidget {
    Q_OBJECT
public:
    explicit CollisionWire(QWidget* parent = nullptr);
    void showModel(const CollisionModel& model);
    void clear();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    CollisionModel model_;
    bool shown_ = false;
    double yaw_ = 0.6;
    double pitch_ = 0.5;
    double zoom_ = 1;
    QPoint dragFrom_;
};

} // namespace korvel::ui
