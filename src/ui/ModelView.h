// The model page's 3D view: the software renderer's picture of a prepared
// model, turned by dragging with the left button, moved with the right or
// middle button, zoomed with the wheel and framed anew by a double-click;
// from the keyboard the arrows turn it, + and - zoom and Home frames it.
// Works wherever Qt paints, with or without a graphics card.
#pragma once

#include "preview/ModelExport.h"
#include "preview/ModelRender.h"

#include <QWidget>

namespace korvel::ui {

class ModelView : public QWidget {
    Q_OBJECT
public:
    explicit ModelView(QWidget* parent = nullptr);

    // Shows `mesh`, textured with those of `textures` its materials name.
    void setMesh(PreparedMesh mesh, const TextureImages& textures);
    // Shows `text` in place of a model (nothing to draw, or nothing chosen).
    void showText(const QString& text);
    void setShading(ModelShading shading);
    ModelShading shading() const { return shading_; }
    // Frames the whole model again.
    void fit();

    QSize sizeHint() const override { return {320, 240}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    PreparedMesh mesh_;
    TextureImages textures_;                   // those the materials name
    std::vector<const RgbaImage*> byMaterial_; // into textures_, per mesh material
    ModelShading shading_ = ModelShading::Smooth;
    ModelCamera camera_;
    bool fitPending_ = true; // framed at the next paint, when the size is known
    QString text_;
    RenderBuffer buffer_;
    QPointF last_;
    Qt::MouseButton dragging_ = Qt::NoButton;
};

} // namespace korvel::ui
