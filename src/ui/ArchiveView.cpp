#include "ui/ArchiveView.h"
#include "ui/WidgetUnits.h"

#include <QDropEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

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
    QTableView::keyPressEvent(event);
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
