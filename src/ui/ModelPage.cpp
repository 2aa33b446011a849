#include "ui/ModelPage.h"

#include "platform/Cp1252.h"
#include "preview/ModelMesh.h"
#include "settings/FailureTexts.h"
#include "ui/ModelView.h"
#include "window/Editor.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QSplitter>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace korvel::ui {
namespace {

QString Q(const std::string& text) {
    return QString::fromStdString(text);
}

// Names come from the archive: Windows-1252, control bytes shown as \xHH.
QString Shown(const std::string& name) {
    return Q(ShownName(name));
}

// A crafted clump may hold a million frames, each the child of the one
// before: the tree shows the first MaxFramesShown and nests no deeper than
// MaxTreeDepth (deeper frames stand at the top level), so neither the list's
// size nor Qt's recursive deletion of nested items can run away.
constexpr std::size_t MaxFramesShown = 4096;
constexpr int MaxTreeDepth = 64;

QTreeWidget* NamedTree(const char* name) {
    auto* tree = new QTreeWidget;
    tree->setObjectName(QString::fromLatin1(name));
    tree->setColumnCount(1);
    tree->setRootIsDecorated(true);
    tree->setUniformRowHeights(true);
    tree->header()->setStretchLastSection(true);
    return tree;
}

// Each way of drawing: its button and its word in korvel.ini.
struct ShadingButton {
    const char* objectName;
    ModelShading shading;
    const char* word;
};
constexpr ShadingButton Shadings[] = {{"modelFlat", ModelShading::Flat, "flat"},
                                      {"modelSmooth", ModelShading::Smooth, "smooth"},
                                      {"modelWire", ModelShading::Wireframe, "wire"}};

ModelShading ShadingOfWord(const std::string& word) {
    for (const ShadingButton& s : Shadings) {
        if (word == s.word) {
            return s.shading;
        }
    }
    return ModelShading::Flat;
}

} // namespace

ModelPage::ModelPage(Editor& editor, QWidget* parent)
    : QWidget(parent), editor_(editor), view_(new ModelView), shadings_(new QButtonGroup(this)),
      fit_(new QToolButton), split_(new QSplitter), frames_(NamedTree("modelFrames")),
      counts_(new QLabel), textures_(NamedTree("modelTextures")), stopped_(new QLabel) {
    view_->setObjectName(QStringLiteral("modelView"));
    auto* tools = new QHBoxLayout;
    tools->setContentsMargins(0, 0, 0, 0);
    view_->setShading(ShadingOfWord(editor_.settings().ModelShadingWord()));
    for (const auto& [name, shading, word] : Shadings) {
        auto* button = new QToolButton;
        button->setObjectName(QString::fromLatin1(name));
        button->setCheckable(true);
        button->setChecked(shading == view_->shading());
        button->setAutoRaise(true);
        shadings_->addButton(button, static_cast<int>(shading));
        tools->addWidget(button);
    }
    connect(shadings_, &QButtonGroup::idClicked, this, [this](int id) {
        const auto shading = static_cast<ModelShading>(id);
        view_->setShading(shading);
        for (const auto& [name, each, word] : Shadings) {
            if (each == shading) {
                editor_.settings().StoreModelShading(word);
            }
        }
    });
    fit_->setObjectName(QStringLiteral("modelFit"));
    static_cast<QToolButton*>(fit_)->setAutoRaise(true);
    connect(fit_, &QAbstractButton::clicked, view_, &ModelView::fit);
    tools->addStretch(1);
    tools->addWidget(fit_);

    auto* viewSide = new QWidget;
    auto* viewLayout = new QVBoxLayout(viewSide);
    viewLayout->setContentsMargins(0, 0, 0, 0);
    viewLayout->addLayout(tools);
    viewLayout->addWidget(view_, 1);

    auto* infoSide = new QWidget;
    auto* info = new QVBoxLayout(infoSide);
    info->setContentsMargins(0, 0, 0, 0);
    counts_->setObjectName(QStringLiteral("modelCounts"));
    counts_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    stopped_->setObjectName(QStringLiteral("modelStopped"));
    stopped_->setWordWrap(true);
    stopped_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    stopped_->hide();
    info->addWidget(frames_, 2);
    info->addWidget(counts_);
    info->addWidget(textures_, 1);
    info->addWidget(stopped_);

    split_->addWidget(viewSide);
    split_->addWidget(infoSide);
    split_->setStretchFactor(0, 3);
    split_->setStretchFactor(1, 1);
    split_->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(split_);
    Relabel();
    Clear();
}

ModelPage::~ModelPage() = default;

void ModelPage::ShowModel(const ModelInfo& model, const TextureImages& textures,
                          const std::vector<std::string>& missing) {
    frames_->clear();
    // Parents come before their children (the reader keeps only such), so
    // each frame's parent item exists when the frame is added.
    std::vector<QTreeWidgetItem*> items;
    std::vector<int> depths;
    const std::size_t shown = std::min(model.frames.size(), MaxFramesShown);
    for (std::size_t i = 0; i < shown; ++i) {
        const ModelFrame& f = model.frames[i];
        const QString label = f.name.empty() ? QStringLiteral("#%1").arg(i) : Shown(f.name);
        const auto parent = static_cast<std::size_t>(f.parent);
        const bool nested = f.parent >= 0 && parent < i && depths[parent] < MaxTreeDepth;
        auto* item = nested ? new QTreeWidgetItem(items[parent]) : new QTreeWidgetItem(frames_);
        item->setText(0, label);
        items.push_back(item);
        depths.push_back(nested ? depths[parent] + 1 : 0);
    }
    framesNotShown_ = model.frames.size() - shown;
    moreFrames_ = framesNotShown_ > 0 ? new QTreeWidgetItem(frames_) : nullptr;
    frames_->expandAll();

    geometries_ = model.geometries.size();
    vertices_ = triangles_ = materials_ = 0;
    for (const ModelGeometry& g : model.geometries) {
        vertices_ += g.vertexCount;
        triangles_ += g.triangleCount;
        materials_ += g.materials.size();
    }
    textureNames_ = ModelTextureNames(model);
    textureMissing_.clear();
    for (const std::string& name : textureNames_) {
        const std::string key = ToLowerCp1252(name);
        textureMissing_.push_back(std::any_of(missing.begin(), missing.end(), [&](const auto& m) {
            return ToLowerCp1252(m) == key;
        }));
    }
    stopReason_ = model.stopped;
    stopOffset_ = model.stoppedAt;

    PreparedMesh mesh = PrepareModelMesh(model);
    drawable_ = !mesh.empty();
    shown_ = true;
    if (drawable_) {
        view_->setMesh(std::move(mesh), textures);
    }
    fillTexts();
}

void ModelPage::Clear() {
    shown_ = false;
    drawable_ = false;
    frames_->clear();
    moreFrames_ = nullptr;
    textures_->clear();
    textureNames_.clear();
    textureMissing_.clear();
    stopReason_ = {};
    geometries_ = vertices_ = triangles_ = materials_ = 0;
    fillTexts();
}

void ModelPage::Relabel() {
    const Settings& s = editor_.settings();
    const std::pair<QAbstractButton*, const char*> captions[] = {
        {shadings_->button(static_cast<int>(ModelShading::Flat)), "mdlFlat"},
        {shadings_->button(static_cast<int>(ModelShading::Smooth)), "mdlSmooth"},
        {shadings_->button(static_cast<int>(ModelShading::Wireframe)), "mdlWire"},
        {fit_, "mdlFit"}};
    for (const auto& [button, key] : captions) {
        button->setText(Q(s.LookupText(key)));
    }
    fit_->setToolTip(Q(s.LookupPlainText("mdlFitTip")));
    view_->setToolTip(Q(s.LookupPlainText("mdlViewTip")));
    frames_->setHeaderLabels({Q(s.LookupPlainText("mdlFrames"))});
    textures_->setHeaderLabels({Q(s.LookupPlainText("mdlTextures"))});
    fillTexts();
}

void ModelPage::fillTexts() {
    const Settings& s = editor_.settings();
    if (!shown_) {
        view_->showText(QString());
        counts_->clear();
        stopped_->hide();
        return;
    }
    if (!drawable_) {
        view_->showText(Q(s.LookupPlainText("mdlNothing")));
    }
    const auto count = [&s](const char* key, std::uint64_t n) {
        return Q(s.LookupFilled(key, {std::to_string(n)}));
    };
    counts_->setText(count("mdlGeometries", geometries_) + '\n' + count("mdlVertices", vertices_) +
                     '\n' + count("mdlTriangles", triangles_) + '\n' +
                     count("mdlMaterials", materials_));
    if (moreFrames_ != nullptr) {
        moreFrames_->setText(0,
                             Q(s.LookupFilled("mdlMoreFrames", {std::to_string(framesNotShown_)})));
    }
    textures_->clear();
    for (std::size_t i = 0; i < textureNames_.size(); ++i) {
        auto* item = new QTreeWidgetItem(textures_);
        if (textureMissing_[i]) {
            item->setText(0, Q(s.LookupFilled("mdlMissing", {ShownName(textureNames_[i])})));
            item->setForeground(0, QColor(Qt::red));
        } else {
            item->setText(0, Shown(textureNames_[i]));
        }
    }
    stopped_->setText(
        Q(s.LookupFilled("mdlStopped", {std::to_string(stopOffset_), ReasonText(s, stopReason_)})));
    stopped_->setVisible(!stopReason_.empty());
}

void ModelPage::resizeEvent(QResizeEvent* event) {
    // Beside the list the pane is often tall and narrow: the facts then go
    // under the view rather than squeezing it from the side.
    split_->setOrientation(width() >= height() ? Qt::Horizontal : Qt::Vertical);
    QWidget::resizeEvent(event);
}

} // namespace korvel::ui
