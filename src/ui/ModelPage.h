// The preview pane's page for a model (.dff): a 3D view that can be orbited
// and zoomed, with flat or smooth shading or a wireframe, textured with the
// textures found in the archive; beside it the frame hierarchy, the counts of
// geometries, vertices, triangles and materials, and the textures no
// dictionary of the archive holds. The pane reads the model off the UI thread
// and hands the page the finished result.
#pragma once

#include "preview/EntryPreview.h"

#include <QWidget>

#include <cstdint>

#include <string>
#include <vector>

namespace korvel {
class Editor;
}

class QAbstractButton;
class QButtonGroup;
class QLabel;
class QSplitter;
class QTreeWidget;
class QTreeWidgetItem;

namespace korvel::ui {

class ModelView;

class ModelPage : public QWidget {
    Q_OBJECT
public:
    explicit ModelPage(Editor& editor, QWidget* parent = nullptr);
    ~ModelPage() override;

    // Shows `model`, textured with `textures` (by the names the materials
    // use); `missing` are the names no dictionary of the archive holds.
    void ShowModel(const ModelInfo& model, const TextureImages& textures,
                   const std::vector<std::string>& missing);
    // Shows nothing (another entry is selected, or the archive closed).
    void Clear();
    // The page's captions anew in the person's language.
    void Relabel();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    // The counts, the texture list's marks and the stop line in the current
    // language, from what ShowModel kept.
    void fillTexts();

    Editor& editor_;
    ModelView* view_;
    QButtonGroup* shadings_;
    QAbstractButton* fit_;
    QSplitter* split_;
    QTreeWidget* frames_;
    QLabel* counts_;
    QTreeWidget* textures_;
    QLabel* stopped_;
    QTreeWidgetItem* moreFrames_ = nullptr; // the tree's last row when frames are left out

    // What the texts are made of, kept for Relabel.
    bool shown_ = false;
    std::size_t framesNotShown_ = 0;
    std::uint64_t geometries_ = 0, vertices_ = 0, triangles_ = 0, materials_ = 0;
    bool drawable_ = false;
    std::vector<std::string> textureNames_;
    std::vector<bool> textureMissing_;
    Reason stopReason_;
    std::uint64_t stopOffset_ = 0;
};

} // namespace korvel::ui
