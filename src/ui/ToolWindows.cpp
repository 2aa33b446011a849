#include "ui/ToolWindows.h"

#include "ui/LineColorsDialog.h"
#include "ui/MainWindow.h"
#include "ui/ShowMeWindow.h"
#include "window/ShowMe.h"

namespace korvel::ui {

ToolWindows::ToolWindows(MainWindow& main)
    : QObject(&main), main_(main),
      rowColours_(main.editor(), [&main] { main.commands().PaintRowStripes(); }) {
    setObjectName(QStringLiteral("toolWindows"));
}

LineColorsDialog* ToolWindows::lineColors() const {
    return lineColors_;
}

ShowMeWindow* ToolWindows::showMeWindow() const {
    return showMe_;
}

void ToolWindows::openLineColours() {
    if (lineColors_.isNull()) {
        lineColors_ = new LineColorsDialog(main_.editor(), rowColours_, &main_);
    }
    lineColors_->load();
    lineColors_->show();
    lineColors_->raise();
    lineColors_->activateWindow();
}

void ToolWindows::relabel() {
    if (!lineColors_.isNull()) {
        lineColors_->relabel();
    }
    if (!showMe_.isNull()) {
        showMe_->relabel();
    }
}

void ToolWindows::showEntryList(ShowMeList list) {
    if (showMe_.isNull()) {
        showMe_ = new ShowMeWindow(main_);
    }
    showMe_->show();
    showMe_->fill(std::move(list));
    showMe_->raise();
    showMe_->activateWindow();
}

} // namespace korvel::ui
