// The list view `Archive`: a table view with the list's gestures. Double
// click and Enter ask for the view command, the right button pops up the
// Commands menu while rows are selected (so do the Menu key and Shift+F10,
// at the current row), and dropped files are handed on.
// The Name column takes the room the window has beyond the other columns;
// clicking a header sorts what the view shows, and the selected rows can be
// dragged out as files.
#pragma once

#include <QStringList>
#include <QTableView>

#include <functional>

class QMimeData;

namespace korvel::ui {

class ArchiveView : public QTableView {
    Q_OBJECT
public:
    explicit ArchiveView(QWidget* parent = nullptr);

    // The narrowest the Name column gets however small the window is: its
    // designed width, or the width the person dragged it to.
    void setNameFloor(int pixels);
    int nameFloor() const { return nameFloor_; }
    // Back to the order the table has (the Sort menu's order).
    void clearHeaderSort();
    // What a drag of the selected rows carries; nothing cancels the drag.
    void setDragData(std::function<QMimeData*()> make) { dragData_ = std::move(make); }

    // Also takes an index of the model behind the view's proxy.
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

signals:
    void viewRequested();
    void popupRequested(const QPoint& globalPosition);
    void filesDropped(const QStringList& paths);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;

private:
    void popupAtCurrentRow();
    void sortByHeader(int column);
    void fitNameColumn();
    void columnResized(int column, int oldWidth, int newWidth);
    // Files dragged from this list back onto it are not an add.
    bool acceptsDrop(const QDropEvent& event) const;

    std::function<QMimeData*()> dragData_;
    int nameFloor_ = 0;
    int headerColumn_ = -1; // the column the header sorts by, if any
    Qt::SortOrder headerOrder_ = Qt::AscendingOrder;
    bool fitting_ = false;
};

} // namespace korvel::ui
