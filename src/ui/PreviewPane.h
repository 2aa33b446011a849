// The preview pane beside the list: what the current entry holds, read
// straight from the data file on a worker thread. Texture dictionaries show
// a thumbnail grid (and one texture at full size), models the model page,
// collision files their models and a wire picture, animation packages their
// animations and bones, anything else its first bytes. A read for an entry
// that is no longer the current one is dropped when it arrives, so the
// window never waits and never shows the wrong entry.
#pragma once

#include "preview/EntryPreview.h"

#include <QDockWidget>
#include <QImage>
#include <QThreadPool>
#include <QWidget>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QListWidget;
class QMimeData;
class QPlainTextEdit;
class QPushButton;
class QStackedWidget;
class QTableWidget;
class QTreeWidget;
class QToolButton;

namespace korvel {
class Editor;
class PreviewExports;
} // namespace korvel

namespace korvel::ui {

class CollisionWire;
class ModelPage;
class TextureView;

// The dock around the pane; its close button is the person hiding the pane.
class PreviewDock : public QDockWidget {
    Q_OBJECT
public:
    explicit PreviewDock(QWidget* parent = nullptr);

signals:
    void closedByPerson();

protected:
    void closeEvent(QCloseEvent* event) override;
};

class PreviewPane : public QWidget {
    Q_OBJECT
public:
    // `currentRow` gives the list's current row (a table row), if any;
    // `textureFiles` hands a texture over as files for a drag.
    PreviewPane(Editor& editor, PreviewExports& exports,
                std::function<std::optional<std::size_t>()> currentRow,
                std::function<QMimeData*(const Entry&, const std::string&)> textureFiles,
                QWidget* parent = nullptr);
    ~PreviewPane() override;

    // Reads the entry the list now points at, unless it is the one shown
    // (same place, name and data file as last read).
    void refresh();
    // Shows nothing until the next refresh.
    void clear();
    void relabel();

    // The entry whose contents are shown; empty while none is.
    const std::string& shownEntry() const { return shownName_; }
    QListWidget* textureGrid() const { return grid_; }
    QWidget* currentPage() const;

signals:
    // A read's result reached the screen (for the entry named).
    void entryShown(const QString& name);

private:
    struct Key {
        std::string dataPath;
        std::string name;
        std::uint32_t start = 0;
        std::uint32_t sectors = 0;
        std::int64_t modified = 0;
        std::uint64_t length = 0;
        friend bool operator==(const Key&, const Key&) = default;
    };
    struct Result;

    std::optional<Key> currentKey(Entry* entry = nullptr) const;
    void startRead(const Entry& entry);
    void showResult(const std::shared_ptr<Result>& result);
    void showThumbnails(std::uint64_t generation, int first, const std::vector<QImage>& images);
    // Under the page: why nothing could be read, where reading stopped, and
    // whether only the first part of the entry was read.
    void showProblemLine(const EntryPreview& preview);
    void showTextures(const TextureDictionaryInfo& info);
    void showCollision(const CollisionInfo& info);
    void showAnimation(const AnimationPackage& package);
    void showOther(const EntryPreview& preview);
    void openTexture(int index);
    void decodeShownLevel();
    void textureMenu(const QPoint& at);
    QString textureTip(const TextureInfo& texture) const;
    QString text(const char* key) const;

    QWidget* buildGridPage();
    QWidget* buildTexturePage();
    QWidget* buildModelPage();
    QWidget* buildCollisionPage();
    QWidget* buildAnimationPage();
    QWidget* buildOtherPage();

    Editor& editor_;
    PreviewExports& exports_;
    std::function<std::optional<std::size_t>()> currentRow_;
    std::function<QMimeData*(const Entry&, const std::string&)> textureFiles_;

    // Raised by every new read: a worker whose number is no longer this
    // stops, and its results are dropped.
    std::shared_ptr<std::atomic<std::uint64_t>> generation_;
    QThreadPool pool_;
    std::optional<Key> key_; // of the read asked for last
    Entry entry_;            // the entry read last
    std::string shownName_;
    std::shared_ptr<Result> shown_;
    int textureShown_ = -1;
    std::uint64_t levelGeneration_ = 0;

    QLabel* status_ = nullptr;
    QStackedWidget* pages_ = nullptr;
    QLabel* hint_ = nullptr;
    QListWidget* grid_ = nullptr;
    QWidget* texturePage_ = nullptr;
    QToolButton* back_ = nullptr;
    QToolButton* fit_ = nullptr;
    QToolButton* actual_ = nullptr;
    QToolButton* zoomIn_ = nullptr;
    QToolButton* zoomOut_ = nullptr;
    QLabel* levelLabel_ = nullptr;
    QComboBox* level_ = nullptr;
    QLabel* textureInfo_ = nullptr;
    TextureView* textureView_ = nullptr;
    QWidget* modelFrame_ = nullptr;
    ModelPage* model_ = nullptr;
    QPushButton* exportModel_ = nullptr;
    QWidget* collisionPage_ = nullptr;
    QTableWidget* collisions_ = nullptr;
    CollisionWire* wire_ = nullptr;
    QTreeWidget* animations_ = nullptr;
    QWidget* otherPage_ = nullptr;
    QLabel* otherSize_ = nullptr;
    QPlainTextEdit* hex_ = nullptr;
};

} // namespace korvel::ui
