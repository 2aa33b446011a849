#include "ui/ArchiveView.h"
#include "ui/WidgetUnits.h"

#include <QContextMenuEvent>
#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

#include <algorithm>

namespace korvel::ui {

ArchiveView::ArchiveView(QWidget* parent) : QTableView(parent) {
    setObjectName(QStringLiteral("Archive"));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setShowGrid(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setTabKeyNavigation(false);
    // Fixed row heights let the view lay out 32 767 rows without measuring any.
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setStretchLastSection(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DropOnly);
}

void ArchiveView::keyPressEvent(QKeyEvent* event) {
    if (IsEnterKey(*event)) {
        emit viewRequested();
        return;
    }
    if (IsContextMenuKey(*event)) {
        popupAtCurrentRow();
        event->accept();
        return;
    }
    QTableView::keyPressEvent(event);
}

void ArchiveView::contextMenuEvent(QContextMenuEvent* event) {
    // The right button is handled on press; only the keyboard's request
    // (which some platforms deliver as a context menu event) comes here.
    if (event->reason() == QContextMenuEvent::Keyboard) {
        popupAtCurrentRow();
    }
    event->accept();
}

void ArchiveView::popupAtCurrentRow() {
    // As with the right button: the menu works on the selection, and with
    // nothing selected there is nothing to offer.
    if (selectionModel() == nullptr || !selectionModel()->hasSelection()) {
        return;
    }
    QModelIndex row = currentIndex();
    if (!row.isValid() || !selectionModel()->isSelected(row)) {
        row = selectionModel()->selectedIndexes().value(0);
    }
    QRect cell = visualRect(row);
    if (!cell.isValid() || !viewport()->rect().intersects(cell)) {
        scrollTo(row);
        cell = visualRect(row);
    }
    QPoint at = cell.isValid() ? cell.bottomLeft() : QPoint(0, 0);
    at.setX(std::max(at.x(), 0) + cell.height() / 2);
    emit popupRequested(viewport()->mapToGlobal(at));
}

void ArchiveView::mouseDoubleClickEvent(QMouseEvent* event) {
    QTableView::mouseDoubleClickEvent(event);
    emit viewRequested();
}

void ArchiveView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) {
        // The right button works on the rows already selected and never
        // changes the selection; with nothing selected it does nothing.
        if (selectionModel() != nullptr && selectionModel()->hasSelection()) {
            emit popupRequested(event->globalPosition().toPoint());
        }
        event->accept();
        return;
    }
    QTableView::mousePressEvent(event);
}

void ArchiveView::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    } else {
        event->ignore();
    }
}

void ArchiveView::dragMoveEvent(QDragMoveEvent* event) {
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    } else {
        event->ignore();
    }
}

void ArchiveView::dropEvent(QDropEvent* event) {
    QStringList paths;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile()) {
            paths.append(url.toLocalFile());
        }
    }
    event->acceptProposedAction();
    if (!paths.isEmpty()) {
        emit filesDropped(paths);
    }
}

} // namespace korvel::ui
