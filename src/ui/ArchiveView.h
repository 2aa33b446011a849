// The list view `Archive`: a table view with the list's gestures. Double
// click and Enter ask for the view command, the right button pops up the
// Commands menu while rows are selected (so do the Menu key and Shift+F10,
// at the current row), and dropped files are handed on.
#pragma once

#include <QStringList>
#include <QTableView>

namespace korvel::ui {

class ArchiveView : public QTableView {
    Q_OBJECT
public:
    explicit ArchiveView(QWidget* parent = nullptr);

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

private:
    void popupAtCurrentRow();
};

} // namespace korvel::ui
