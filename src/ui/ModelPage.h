// The preview pane's page for a model (.dff): a 3D view that can be orbited
// and zoomed, with flat or smooth shading or a wireframe, textured with the
// textures found in the archive; beside it the frame hierarchy, the counts of
// geometries, vertices, triangles and materials, and the textures no
// dictionary of the archive holds. The pane reads the model off the UI thread
// and hands the page the finished result.
#pragma once

#include "preview/EntryPreview.h"

#include <QWidget>

#include <string>
#include <vector>

namespace korvel {
class Editor;
}

namespace korvel::ui {

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

private:
    Editor& editor_;
};

} // namespace korvel::ui
