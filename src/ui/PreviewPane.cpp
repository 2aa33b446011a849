#include "ui/PreviewPane.h"

#include "platform/Cp1252.h"
#include "preview/EntryBytes.h"
#include "settings/FailureTexts.h"
#include "ui/ModelPage.h"
#include "ui/PreviewViews.h"
#include "ui/TextureImages.h"
#include "window/Editor.h"
#include "window/PreviewCommands.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDrag>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QStyle>
#include <QTableWidget>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <cmath>
#include <system_error>

namespace korvel::ui {
namespace fs = std::filesystem;

namespace {

constexpr int ThumbnailSide = 96;
// Thumbnails reach the grid in batches: the first ones show at once, and a
// large dictionary does not post one event per texture.
constexpr int ThumbnailBatch = 8;

QString Shown(const std::string& raw) {
    return QString::fromStdString(ShownName(raw));
}

QString Number(double v) {
    return QString::number(v, 'g', 4);
}

QString Point(const std::array<float, 3>& p) {
    return QStringLiteral("(%1, %2, %3)").arg(Number(p[0]), Number(p[1]), Number(p[2]));
}

// Offset, 16 bytes in hex and as characters (dots for the unprintable), a
// line per 16 bytes.
QString HexLines(const std::string& bytes) {
    QString out;
    for (std::size_t at = 0; at < bytes.size(); at += 16) {
        QString hex, chars;
        for (std::size_t i = at; i < at + 16; ++i) {
            if (i < bytes.size()) {
                const auto b = static_cast<unsigned char>(bytes[i]);
                hex += QStringLiteral("%1 ").arg(b, 2, 16, QLatin1Char('0')).toUpper();
                chars += b >= 0x20 && b < 0x7F ? QChar(b) : QChar('.');
            } else {
                hex += QStringLiteral("   ");
            }
        }
        out += QStringLiteral("%1  %2 %3\n")
                   .arg(QString::number(static_cast<qulonglong>(at), 16).toUpper(), 8,
                        QLatin1Char('0'))
                   .arg(hex, chars);
    }
    return out;
}

// The texture grid: icon mode, a texture dragged out arrives as a PNG file.
class TextureGrid : public QListWidget {
public:
    TextureGrid(std::function<QMimeData*(int)> files, QWidget* parent)
        : QListWidget(parent), files_(std::move(files)) {}

protected:
    void startDrag(Qt::DropActions) override {
        QListWidgetItem* item = currentItem();
        if (item == nullptr) {
            return;
        }
        QMimeData* data = files_(item->data(Qt::UserRole).toInt());
        if (data == nullptr) {
            return;
        }
        auto* drag = new QDrag(this);
        drag->setMimeData(data);
        drag->setPixmap(item->icon().pixmap(ThumbnailSide / 2));
        drag->exec(Qt::CopyAction);
    }

private:
    std::function<QMimeData*(int)> files_;
};

} // namespace

struct PreviewPane::Result {
    std::uint64_t generation = 0;
    Key key;
    Entry entry;
    EntryPreview preview;
    TextureImages modelTextures;
    std::vector<std::string> missing;
};

PreviewDock::PreviewDock(QWidget* parent) : QDockWidget(parent) {
    setObjectName(QStringLiteral("PreviewDock"));
    setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea | Qt::BottomDockWidgetArea);
}

void PreviewDock::closeEvent(QCloseEvent* event) {
    QDockWidget::closeEvent(event);
    emit closedByPerson();
}

PreviewPane::PreviewPane(Editor& editor, PreviewExports& exports,
                         std::function<std::optional<std::size_t>()> currentRow,
                         std::function<QMimeData*(const Entry&, const std::string&)> textureFiles,
                         QWidget* parent)
    : QWidget(parent), editor_(editor), exports_(exports), currentRow_(std::move(currentRow)),
      textureFiles_(std::move(textureFiles)),
      generation_(std::make_shared<std::atomic<std::uint64_t>>(0)) {
    setObjectName(QStringLiteral("PreviewPane"));
    // One reader at a time: the window's other work keeps the second core.
    pool_.setMaxThreadCount(1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    pages_ = new QStackedWidget(this);
    hint_ = new QLabel(pages_);
    hint_->setAlignment(Qt::AlignCenter);
    hint_->setWordWrap(true);
    pages_->addWidget(hint_);
    pages_->addWidget(buildGridPage());
    pages_->addWidget(buildTexturePage());
    pages_->addWidget(buildModelPage());
    pages_->addWidget(buildCollisionPage());
    pages_->addWidget(buildAnimationPage());
    pages_->addWidget(buildOtherPage());
    status_ = new QLabel(this);
    status_->setObjectName(QStringLiteral("PreviewStatus"));
    status_->setWordWrap(true);
    status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    status_->hide();
    layout->addWidget(pages_, 1);
    layout->addWidget(status_);
    relabel();
    clear();
}

PreviewPane::~PreviewPane() {
    // Workers post to this pane: none may outlive it.
    ++*generation_;
    pool_.clear();
    pool_.waitForDone();
}

QString PreviewPane::text(const char* key) const {
    return QString::fromStdString(editor_.text(key));
}

QWidget* PreviewPane::currentPage() const {
    return pages_->currentWidget();
}

QWidget* PreviewPane::buildGridPage() {
    auto* grid = new TextureGrid(
        [this](int index) -> QMimeData* {
            if (!shown_ || index < 0 ||
                static_cast<std::size_t>(index) >= shown_->preview.textures.textures.size()) {
                return nullptr;
            }
            return textureFiles_(
                shown_->entry,
                shown_->preview.textures.textures[static_cast<std::size_t>(index)].name);
        },
        this);
    grid_ = grid;
    grid_->setObjectName(QStringLiteral("PreviewTextures"));
    grid_->setViewMode(QListView::IconMode);
    grid_->setMovement(QListView::Static);
    grid_->setResizeMode(QListView::Adjust);
    grid_->setIconSize(QSize(ThumbnailSide, ThumbnailSide));
    grid_->setGridSize(QSize(ThumbnailSide + 40, ThumbnailSide + 44));
    grid_->setWordWrap(true);
    grid_->setUniformItemSizes(true);
    grid_->setDragEnabled(true);
    grid_->setDragDropMode(QAbstractItemView::DragOnly);
    grid_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(grid_, &QListWidget::customContextMenuRequested, this, &PreviewPane::textureMenu);
    connect(grid_, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* item) { openTexture(item->data(Qt::UserRole).toInt()); });
    return grid_;
}

QWidget* PreviewPane::buildTexturePage() {
    texturePage_ = new QWidget(this);
    texturePage_->setObjectName(QStringLiteral("PreviewTexture"));
    auto* layout = new QVBoxLayout(texturePage_);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* bar = new QHBoxLayout;
    const auto button = [this, bar](QToolButton*& b, QStyle::StandardPixmap icon) {
        b = new QToolButton(texturePage_);
        if (icon != QStyle::SP_CustomBase) {
            b->setIcon(style()->standardIcon(icon));
        }
        b->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        bar->addWidget(b);
    };
    button(back_, QStyle::SP_ArrowBack);
    back_->setObjectName(QStringLiteral("PreviewBack"));
    button(zoomOut_, QStyle::SP_CustomBase);
    button(zoomIn_, QStyle::SP_CustomBase);
    button(fit_, QStyle::SP_CustomBase);
    button(actual_, QStyle::SP_CustomBase);
    actual_->setText(QStringLiteral("1:1"));
    zoomOut_->setText(QStringLiteral("-"));
    zoomIn_->setText(QStringLiteral("+"));
    levelLabel_ = new QLabel(texturePage_);
    level_ = new QComboBox(texturePage_);
    level_->setObjectName(QStringLiteral("PreviewMipLevel"));
    levelLabel_->setBuddy(level_);
    bar->addWidget(levelLabel_);
    bar->addWidget(level_);
    bar->addStretch(1);
    layout->addLayout(bar);
    textureInfo_ = new QLabel(texturePage_);
    textureInfo_->setWordWrap(true);
    layout->addWidget(textureInfo_);
    textureView_ = new TextureView(texturePage_);
    layout->addWidget(textureView_, 1);

    connect(back_, &QToolButton::clicked, this, [this] {
        textureShown_ = -1;
        ++levelGeneration_;
        // The line said why the texture could not be shown; the grid gets
        // back its own (where reading the dictionary stopped, or none).
        if (shown_) {
            const EntryPreview& p = shown_->preview;
            showProblemLine(p);
        }
        pages_->setCurrentWidget(grid_);
        grid_->setFocus();
    });
    connect(zoomIn_, &QToolButton::clicked, this, [this] { textureView_->zoomBy(1.25); });
    connect(zoomOut_, &QToolButton::clicked, this, [this] { textureView_->zoomBy(0.8); });
    connect(fit_, &QToolButton::clicked, this, [this] { textureView_->fit(); });
    connect(actual_, &QToolButton::clicked, this, [this] { textureView_->actualSize(); });
    connect(level_, &QComboBox::currentIndexChanged, this, [this] { decodeShownLevel(); });
    const auto key = [this](QKeySequence sequence, std::function<void()> run) {
        auto* shortcut = new QShortcut(sequence, texturePage_);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, std::move(run));
    };
    key(QKeySequence(Qt::Key_Plus), [this] { textureView_->zoomBy(1.25); });
    key(QKeySequence(Qt::Key_Equal), [this] { textureView_->zoomBy(1.25); });
    key(QKeySequence(Qt::Key_Minus), [this] { textureView_->zoomBy(0.8); });
    key(QKeySequence(Qt::Key_Backspace), [this] { back_->click(); });
    return texturePage_;
}

QWidget* PreviewPane::buildModelPage() {
    modelFrame_ = new QWidget(this);
    modelFrame_->setObjectName(QStringLiteral("PreviewModel"));
    auto* layout = new QVBoxLayout(modelFrame_);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* bar = new QHBoxLayout;
    exportModel_ = new QPushButton(modelFrame_);
    exportModel_->setObjectName(QStringLiteral("PreviewExportModel"));
    bar->addWidget(exportModel_);
    bar->addStretch(1);
    layout->addLayout(bar);
    model_ = new ModelPage(editor_, modelFrame_);
    layout->addWidget(model_, 1);
    connect(exportModel_, &QPushButton::clicked, this, [this] {
        if (shown_ && currentKey() == shown_->key) {
            exports_.ExportModelAsking(shown_->entry);
        }
    });
    return modelFrame_;
}

QWidget* PreviewPane::buildCollisionPage() {
    auto* split = new QSplitter(Qt::Vertical, this);
    split->setObjectName(QStringLiteral("PreviewCollision"));
    collisionPage_ = split;
    collisions_ = new QTableWidget(split);
    collisions_->setColumnCount(8);
    collisions_->setSelectionBehavior(QAbstractItemView::SelectRows);
    collisions_->setSelectionMode(QAbstractItemView::SingleSelection);
    collisions_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    collisions_->verticalHeader()->hide();
    wire_ = new CollisionWire(split);
    split->setStretchFactor(0, 1);
    split->setStretchFactor(1, 2);
    connect(collisions_, &QTableWidget::currentCellChanged, this, [this](int row) {
        const auto count = shown_ ? shown_->preview.collision.models.size() : 0;
        if (row >= 0 && static_cast<std::size_t>(row) < count) {
            wire_->showModel(shown_->preview.collision.models[static_cast<std::size_t>(row)]);
        } else {
            wire_->clear();
        }
    });
    return split;
}

QWidget* PreviewPane::buildAnimationPage() {
    animations_ = new QTreeWidget(this);
    animations_->setObjectName(QStringLiteral("PreviewAnimations"));
    animations_->setColumnCount(2);
    animations_->setUniformRowHeights(true);
    return animations_;
}

QWidget* PreviewPane::buildOtherPage() {
    otherPage_ = new QWidget(this);
    otherPage_->setObjectName(QStringLiteral("PreviewBytes"));
    auto* layout = new QVBoxLayout(otherPage_);
    layout->setContentsMargins(0, 0, 0, 0);
    otherSize_ = new QLabel(otherPage_);
    hex_ = new QPlainTextEdit(otherPage_);
    hex_->setReadOnly(true);
    hex_->setLineWrapMode(QPlainTextEdit::NoWrap);
    hex_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    layout->addWidget(otherSize_);
    layout->addWidget(hex_, 1);
    return otherPage_;
}

void PreviewPane::relabel() {
    hint_->setText(text("prvHint"));
    back_->setText(text("prvBack"));
    fit_->setText(text("prvFit"));
    zoomIn_->setToolTip(text("prvZoomIn"));
    zoomOut_->setToolTip(text("prvZoomOut"));
    levelLabel_->setText(text("prvLevel"));
    exportModel_->setText(text("prvExportModel"));
    collisions_->setHorizontalHeaderLabels(text("prvColumns").split('|'));
    animations_->setHeaderLabels(text("prvAnimColumns").split('|'));
    wire_->setToolTip(text("prvOrbit"));
    grid_->setToolTip(QString());
    if (shown_) {
        const auto& textures = shown_->preview.textures.textures;
        for (int i = 0; i < grid_->count(); ++i) {
            grid_->item(i)->setToolTip(textureTip(textures[static_cast<std::size_t>(i)]));
        }
        if (shown_->preview.kind == PreviewKind::Other) {
            showOther(shown_->preview);
        }
    }
    model_->Relabel();
}

std::optional<PreviewPane::Key> PreviewPane::currentKey(Entry* entry) const {
    if (!editor_.isOpen()) {
        return std::nullopt;
    }
    const auto row = PreviewedRow(editor_.table(), currentRow_());
    if (!row) {
        return std::nullopt;
    }
    const Entry& e = editor_.table()[*row];
    // The data file's time and length tell a replace that kept the entry's
    // place, or a reload of a changed archive, from the entry read before.
    std::error_code ec;
    const fs::path data = editor_.dataPath();
    const auto modified = fs::last_write_time(data, ec);
    const auto length = fs::file_size(data, ec);
    if (entry != nullptr) {
        *entry = e;
    }
    return Key{editor_.dataPath(),
               e.name,
               e.startSector,
               e.sizeSectors,
               static_cast<std::int64_t>(modified.time_since_epoch().count()),
               ec ? 0 : static_cast<std::uint64_t>(length)};
}

void PreviewPane::refresh() {
    Entry entry;
    const std::optional<Key> key = currentKey(&entry);
    if (!key) {
        if (key_ || shown_) {
            clear();
        }
        return;
    }
    if (key == key_) {
        return;
    }
    key_ = key;
    startRead(entry);
}

void PreviewPane::clear() {
    ++*generation_;
    key_.reset();
    shown_.reset();
    shownName_.clear();
    textureShown_ = -1;
    grid_->clear();
    collisions_->setRowCount(0);
    wire_->clear();
    animations_->clear();
    hex_->clear();
    model_->Clear();
    status_->hide();
    pages_->setCurrentWidget(hint_);
}

void PreviewPane::startRead(const Entry& entry) {
    const std::uint64_t generation = ++*generation_;
    status_->setText(text("prvReading"));
    status_->show();
    auto result = std::make_shared<Result>();
    result->generation = generation;
    result->key = *key_;
    result->entry = entry;
    const fs::path dataPath = editor_.dataPath();
    // A model looks its textures up in every dictionary of the archive: the
    // worker gets the rows as they are now.
    auto rows = std::make_shared<std::vector<Entry>>();
    if (PreviewKindOf(entry.name) == PreviewKind::Model) {
        *rows = editor_.table().rows();
    }
    const auto current = generation_;
    // Thumbnails in the screen's own pixels: sharp at scale 2 too.
    const int side = static_cast<int>(std::lround(ThumbnailSide * devicePixelRatioF()));
    pool_.start([this, result, rows, dataPath, current, generation, side] {
        const auto stale = [&] { return current->load() != generation; };
        result->preview = ReadEntryPreview(dataPath, result->entry);
        if (stale()) {
            return;
        }
        if (result->preview.kind == PreviewKind::Model) {
            const auto names = ModelTextureNames(result->preview.model);
            result->modelTextures = FindModelTextures(dataPath, *rows, result->entry.name, names);
            for (const std::string& name : names) {
                if (result->modelTextures.count(ToLowerCp1252(name)) == 0) {
                    result->missing.push_back(name);
                }
            }
        }
        QMetaObject::invokeMethod(
            this, [this, result] { showResult(result); }, Qt::QueuedConnection);
        const auto& textures = result->preview.textures.textures;
        std::vector<QImage> batch;
        int first = 0;
        for (std::size_t i = 0; i < textures.size() && !stale(); ++i) {
            batch.push_back(TextureThumbnail(dataPath, result->entry, textures[i], side));
            if (batch.size() == ThumbnailBatch || i + 1 == textures.size()) {
                QMetaObject::invokeMethod(
                    this,
                    [this, generation, first, batch] { showThumbnails(generation, first, batch); },
                    Qt::QueuedConnection);
                first += static_cast<int>(batch.size());
                batch.clear();
            }
        }
    });
}

void PreviewPane::showResult(const std::shared_ptr<Result>& result) {
    // A read for an entry the list has moved away from: the next refresh
    // reads the one it points at now.
    if (result->generation != generation_->load() || currentKey() != result->key) {
        return;
    }
    // The same entry read again (the data file changed): a texture open at
    // full size stays open, at its mip level, when it is still there.
    int reopen = -1;
    int reopenLevel = 0;
    if (shown_ && textureShown_ >= 0 && shown_->entry.name == result->entry.name &&
        shown_->entry.startSector == result->entry.startSector) {
        const auto& now = result->preview.textures.textures;
        const auto index = static_cast<std::size_t>(textureShown_);
        if (index < now.size() &&
            now[index].name == shown_->preview.textures.textures[index].name) {
            reopen = textureShown_;
            reopenLevel = level_->currentIndex();
        }
    }
    shown_ = result;
    shownName_ = result->entry.name;
    textureShown_ = -1;
    const EntryPreview& p = result->preview;
    if (p.kind != PreviewKind::Model) {
        model_->Clear(); // its meshes and textures are not kept behind another page
    }
    showProblemLine(p);
    switch (p.kind) {
    case PreviewKind::Textures:
        showTextures(p.textures);
        if (reopen >= 0) {
            openTexture(reopen);
            if (reopenLevel > 0 && reopenLevel < level_->count()) {
                level_->setCurrentIndex(reopenLevel);
            }
        }
        break;
    case PreviewKind::Model:
        model_->ShowModel(p.model, result->modelTextures, result->missing);
        pages_->setCurrentWidget(modelFrame_);
        break;
    case PreviewKind::Collision:
        showCollision(p.collision);
        break;
    case PreviewKind::Animation:
        showAnimation(p.animation);
        break;
    case PreviewKind::Other:
        showOther(p);
        break;
    }
    emit entryShown(QString::fromStdString(Cp1252ToUtf8(result->entry.name)));
}

void PreviewPane::showProblemLine(const EntryPreview& preview) {
    const Reason& problem = preview.problem;
    const PreviewStop stop = StoppedAt(preview);
    QStringList lines;
    const Settings& settings = editor_.settings();
    if (!problem.empty()) {
        lines << QString::fromStdString(
            settings.LookupFilled("prvUnreadable", {ReasonText(settings, problem)}));
    }
    if (!stop.why.empty()) {
        lines << QString::fromStdString(settings.LookupFilled(
            "prvStopped", {std::to_string(stop.at), ReasonText(settings, stop.why)}));
    }
    if (preview.cut) {
        lines << QString::fromStdString(
            settings.LookupFilled("prvCut", {std::to_string(MaxPreviewBytes)}));
    }
    status_->setText(lines.join('\n'));
    status_->setVisible(!lines.isEmpty());
}

QString PreviewPane::textureTip(const TextureInfo& t) const {
    QString tip =
        QStringLiteral("%1: %2\n%3: %4\n%5: %6 x %7\n%8: %9\n")
            .arg(text("prvName"), Shown(t.name), text("prvMask"), Shown(t.mask), text("prvDims"))
            .arg(t.width)
            .arg(t.height)
            .arg(text("prvFormat"), QString::fromLatin1(PixelFormatName(t.format)));
    tip += QStringLiteral("%1: %2\n%3").arg(text("prvMips")).arg(t.mipCount).arg(text("prvDrag"));
    if (!t.problem.empty()) {
        tip += '\n' + QString::fromStdString(ReasonText(editor_.settings(), t.problem));
    }
    return tip;
}

void PreviewPane::showTextures(const TextureDictionaryInfo& info) {
    grid_->clear();
    QPixmap blank(ThumbnailSide, ThumbnailSide);
    blank.fill(Qt::transparent);
    const QIcon waiting(blank);
    for (std::size_t i = 0; i < info.textures.size(); ++i) {
        const TextureInfo& t = info.textures[i];
        auto* item =
            new QListWidgetItem(waiting, QStringLiteral("%1\n%2x%3 %4")
                                             .arg(Shown(t.name))
                                             .arg(t.width)
                                             .arg(t.height)
                                             .arg(QString::fromLatin1(PixelFormatName(t.format))));
        item->setData(Qt::UserRole, static_cast<int>(i));
        item->setToolTip(textureTip(t));
        grid_->addItem(item);
    }
    pages_->setCurrentWidget(grid_);
}

void PreviewPane::showThumbnails(std::uint64_t generation, int first,
                                 const std::vector<QImage>& images) {
    if (generation != generation_->load() || !shown_) {
        return;
    }
    for (std::size_t k = 0; k < images.size(); ++k) {
        QListWidgetItem* item = grid_->item(first + static_cast<int>(k));
        if (item == nullptr) {
            continue;
        }
        if (images[k].isNull()) {
            item->setIcon(style()->standardIcon(QStyle::SP_MessageBoxWarning));
            continue;
        }
        QPixmap thumbnail = QPixmap::fromImage(images[k]);
        thumbnail.setDevicePixelRatio(static_cast<qreal>(images[k].width()) / ThumbnailSide);
        item->setIcon(QIcon(thumbnail));
    }
}

void PreviewPane::openTexture(int index) {
    if (!shown_ || index < 0 ||
        static_cast<std::size_t>(index) >= shown_->preview.textures.textures.size()) {
        return;
    }
    textureShown_ = index;
    const TextureInfo& t = shown_->preview.textures.textures[static_cast<std::size_t>(index)];
    textureInfo_->setText(textureTip(t).section('\n', 0, 4).replace('\n', QStringLiteral("   ")));
    const QSignalBlocker quiet(level_);
    level_->clear();
    for (std::size_t l = 0; l < t.levels.size(); ++l) {
        level_->addItem(
            QStringLiteral("%1: %2 x %3").arg(l).arg(t.levels[l].width).arg(t.levels[l].height));
    }
    pages_->setCurrentWidget(texturePage_);
    textureView_->setFocus();
    decodeShownLevel();
}

void PreviewPane::decodeShownLevel() {
    if (!shown_ || textureShown_ < 0) {
        return;
    }
    const std::uint64_t request = ++levelGeneration_;
    const std::uint64_t generation = generation_->load();
    const TextureInfo texture =
        shown_->preview.textures.textures[static_cast<std::size_t>(textureShown_)];
    const auto level = static_cast<std::size_t>(std::max(0, level_->currentIndex()));
    const Entry entry = shown_->entry;
    const fs::path dataPath = editor_.dataPath();
    pool_.start([this, request, generation, texture, level, entry, dataPath] {
        const DecodedImage decoded = DecodeEntryTexture(dataPath, entry, texture, level);
        const QImage image = decoded.problem.empty() ? ToQImage(decoded.image) : QImage();
        const Reason problem =
            decoded.problem.empty() && image.isNull()
                ? Reason{"the image is too large to show", "whyImageTooLarge", {}}
                : decoded.problem;
        QMetaObject::invokeMethod(
            this,
            [this, request, generation, image, problem] {
                if (request != levelGeneration_ || generation != generation_->load()) {
                    return;
                }
                textureView_->showImage(image);
                status_->setText(
                    problem.empty()
                        ? QString()
                        : QString::fromStdString(editor_.settings().LookupFilled(
                              "prvNoImage", {ReasonText(editor_.settings(), problem)})));
                status_->setVisible(!problem.empty());
            },
            Qt::QueuedConnection);
    });
}

void PreviewPane::textureMenu(const QPoint& at) {
    if (!shown_) {
        return;
    }
    QListWidgetItem* item = grid_->itemAt(at);
    const int index = item != nullptr ? item->data(Qt::UserRole).toInt() : -1;
    const std::shared_ptr<Result> shown = shown_;
    QMenu menu(this);
    QAction* one = menu.addAction(text("prvExportOne"));
    one->setEnabled(index >= 0);
    QAction* all = menu.addAction(text("prvExportAll"));
    QAction* chosen = menu.exec(grid_->viewport()->mapToGlobal(at));
    // The list may have moved on while the menu was open: the export is of
    // the entry the menu was opened on, and only while it is still current.
    if (chosen == nullptr || currentKey() != shown->key) {
        return;
    }
    if (chosen == one) {
        exports_.ExportTextureAsking(
            shown->entry, shown->preview.textures.textures[static_cast<std::size_t>(index)].name);
    } else if (chosen == all) {
        exports_.ExportAllTexturesAsking(shown->entry);
    }
}

void PreviewPane::showCollision(const CollisionInfo& info) {
    const QSignalBlocker quiet(collisions_);
    collisions_->setRowCount(static_cast<int>(info.models.size()));
    for (std::size_t i = 0; i < info.models.size(); ++i) {
        const CollisionModel& m = info.models[i];
        const QStringList cells = {Shown(m.name),
                                   Shown(m.version),
                                   QString::number(m.id),
                                   Point(m.boundsMin) + QStringLiteral(" - ") + Point(m.boundsMax),
                                   QString::number(m.spheres.size()),
                                   QString::number(m.boxes.size()),
                                   QString::number(m.vertices.size() / 3),
                                   QString::number(m.faceCount)};
        for (int c = 0; c < cells.size(); ++c) {
            auto* cell = new QTableWidgetItem(cells[c]);
            if (!m.problem.empty()) {
                cell->setToolTip(QString::fromStdString(ReasonText(editor_.settings(), m.problem)));
            }
            collisions_->setItem(static_cast<int>(i), c, cell);
        }
    }
    collisions_->resizeColumnsToContents();
    pages_->setCurrentWidget(collisionPage_);
    if (!info.models.empty()) {
        collisions_->setCurrentCell(0, 0);
        wire_->showModel(info.models.front());
    } else {
        wire_->clear();
    }
}

void PreviewPane::showAnimation(const AnimationPackage& package) {
    animations_->clear();
    QList<QTreeWidgetItem*> top;
    for (const Animation& a : package.animations) {
        auto* item = new QTreeWidgetItem({Shown(a.name), QString::number(a.frames())});
        for (const AnimationObject& o : a.objects) {
            item->addChild(new QTreeWidgetItem({Shown(o.name), QString::number(o.frames)}));
        }
        top << item;
    }
    animations_->addTopLevelItems(top);
    // A few animations open at once; a package of hundreds stays folded.
    if (top.size() <= 8) {
        animations_->expandAll();
    }
    animations_->resizeColumnToContents(0);
    pages_->setCurrentWidget(animations_);
}

void PreviewPane::showOther(const EntryPreview& preview) {
    otherSize_->setText(QString::fromStdString(
        editor_.settings().LookupFilled("prvSize", {std::to_string(preview.size)})));
    hex_->setPlainText(HexLines(preview.head));
    pages_->setCurrentWidget(otherPage_);
}

} // namespace korvel::ui
