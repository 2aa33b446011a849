#include "ui/ArchiveView.h"
#include "ui/WidgetUnits.h"

#include <QContextMenuEvent>
#include <QAbstractProxyModel>
#include <QDrag>
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
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::CopyAction);
    horizontalHeader()->setSectionsClickable(true);
    horizontalHeader()->setSortIndicatorShown(false);
    connect(horizontalHeader(), &QHeaderView::sectionClicked, this, &ArchiveView::sortByHeader);
    connect(horizontalHeader(), &QHeaderView::sectionResized, this, &ArchiveView::columnResized);
}

void ArchiveView::setNameFloor(int pixels) {
    nameFloor_ = pixels;
    fitNameColumn();
}

// The Name column is as wide as the room left of the viewport, never
// narrower than its floor; the list scrolls sideways only below that.
void ArchiveView::fitNameColumn() {
    QHeaderView* header = horizontalHeader();
    if (model() == nullptr || header->count() == 0 || fitting_) {
        return;
    }
    int others = 0;
    for (int column = 1; column < header->count(); ++column) {
        others += header->sectionSize(column);
    }
    fitting_ = true;
    header->resizeSection(0, std::max(nameFloor_, viewport()->width() - others));
    fitting_ = false;
}

void ArchiveView::columnResized(int column, int, int newWidth) {
    if (fitting_) {
        return;
    }
    if (column == 0) {
        // The person dragged the Name column: that width is its new floor.
        nameFloor_ = newWidth;
    }
    fitNameColumn();
}

void ArchiveView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    fitNameColumn();
}

void ArchiveView::sortByHeader(int column) {
    if (model() == nullptr) {
        return;
    }
    // A first click sorts ascending, the next click on the same header
    // flips. Kept here: the header flips its own indicator before telling us.
    headerOrder_ = headerColumn_ == column && headerOrder_ == Qt::AscendingOrder
                       ? Qt::DescendingOrder
                       : Qt::AscendingOrder;
    headerColumn_ = column;
    model()->sort(column, headerOrder_);
    horizontalHeader()->setSortIndicator(column, headerOrder_);
    horizontalHeader()->setSortIndicatorShown(true);
}

void ArchiveView::clearHeaderSort() {
    headerColumn_ = -1;
    if (model() != nullptr) {
        model()->sort(-1);
    }
    horizontalHeader()->setSortIndicatorShown(false);
}

void ArchiveView::scrollTo(const QModelIndex& index, ScrollHint hint) {
    const auto* proxy = qobject_cast<const QAbstractProxyModel*>(model());
    if (proxy != nullptr && index.isValid() && index.model() == proxy->sourceModel()) {
        const QModelIndex shown = proxy->mapFromSource(index);
        if (shown.isValid()) {
            QTableView::scrollTo(shown, hint);
        }
        return;
    }
    QTableView::scrollTo(index, hint);
}

void ArchiveView::startDrag(Qt::DropActions) {
    QMimeData* data = dragData_ ? dragData_() : nullptr;
    if (data == nullptr) {
        return;
    }
    auto* drag = new QDrag(this);
    drag->setMimeData(data);
    drag->exec(Qt::CopyAction, Qt::CopyAction);
}

bool ArchiveView::acceptsDrop(const QDropEvent& event) const {
    return event.source() != this && event.mimeData()->hasUrls();
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
    if (acceptsDrop(*event)) {
        event->acceptProposedAction();
    } else {
        event->ignore();
    }
}

void ArchiveView::dragMoveEvent(QDragMoveEvent* event) {
    if (acceptsDrop(*event)) {
        event->acceptProposedAction();
    } else {
        event->ignore();
    }
}

void ArchiveView::dropEvent(QDropEvent* event) {
    if (!acceptsDrop(*event)) {
        event->ignore();
        return;
    }
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
